#pragma once

#include <Legacy/If/ItemBase.h>
#include <Legacy/IfKit/AtomicFile.h>
#include <Legacy/IfKit/Export.h>
#include <Legacy/IfKit/Records.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Files of records, whose format `docs/record-file.md` tells.
///
/// @code
/// RecordFileWriter writer("values.rec");
/// writer.Append(*boost::intrusive_ptr<ItemBase>(BoolItem::Create(7, true)));
/// if (auto const error = writer.Commit()) std::cerr << error->ToText() << '\n';
/// RecordFileReader reader("values.rec");
/// while (auto const record = reader.Next()) std::cout << record->id << '\n';
/// if (auto const& error = reader.GetError()) std::cerr << error->ToText() << '\n';
/// @endcode
///
/// Both need memory for one block of the file, a few kilobytes or the largest record, however large the file is. One
/// object is for one thread at a time; any number of readers may read one file at once, beside one that replaces it.
namespace Legacy::IfKit {

/// What an id is called: the path of a section, or the name of a parameter in its section.
struct RecordFileName_t
{
    unsigned int id = 0;
    std::string_view text;
};

/// One entry of a file, valid until the next one is read.
using RecordFileEntry = std::variant<Record_t, RecordFileName_t>;

/// Writes a file of records. The file that is there is replaced at the end, in one step.
class LEGACY_IFKIT_API RecordFileWriter
{
public:
    explicit RecordFileWriter(std::string const& path);

    /// Appends the record of a value.
    /// @return 0; the code of `Serialize` for a value without a serial form, which is then left out.
    int Append(If::ItemBase const& item);

    /// Appends what an id is called. Readers that want records alone do not see it.
    void AppendName(unsigned int id, std::string_view text);

    /// Finishes the file and brings it to the disk. To be called once, as the last thing; without it the file that was
    /// there stays.
    /// @return nothing; otherwise the first failure of all, and the file that was there stays.
    std::optional<FileError_t> Commit();

private:
    void Choose_(unsigned char kind);
    void Close_(std::size_t start);
    void WriteBlock_(std::span<unsigned char const> body);

    AtomicFile m_file;
    std::uint64_t m_records = 0;
    unsigned char m_kind = 0; // of the entries in the block
    std::vector<unsigned char> m_block;
};

/// Reads a file of records, whoever wrote it: nothing in it is believed before it was tested. What stands before the
/// first damaged block is given out.
class LEGACY_IFKIT_API RecordFileReader
{
public:
    explicit RecordFileReader(std::string const& path);
    /// Reads from a stream that stands at the beginning of the file, a pipe for instance. `name` is for messages.
    RecordFileReader(std::istream& in, std::string name);
    RecordFileReader(RecordFileReader const&) = delete;
    RecordFileReader& operator=(RecordFileReader const&) = delete;
    ~RecordFileReader();

    /// The next record, with names passed over; nothing at the end of the file or after an error. Records of types that
    /// are not known here are given out like any other: it is `Record_t::Rebuild` that tells.
    std::optional<Record_t> Next();
    /// The next record or name.
    std::optional<RecordFileEntry> NextEntry();

    /// Where in the file the entry starts that was given out last.
    std::uint64_t GetOffset() const noexcept { return m_entryOffset; }
    /// Number of records that the file claims to have.
    std::uint64_t GetCount() const noexcept { return m_count; }
    /// Why reading came to its end, unless the file did.
    std::optional<FileError_t> const& GetError() const noexcept { return m_error; }

private:
    void ReadHeader_();
    bool ReadBlock_();
    bool ReadBody_(std::uint64_t size);
    std::optional<RecordFileEntry> TakeRecord_();
    std::optional<RecordFileEntry> TakeName_();
    bool Read_(std::span<unsigned char> bytes);
    bool IsAtEnd_();
    bool Fail_(std::uint64_t offset, std::string const& reason);

    std::unique_ptr<std::istream> m_own; // the stream of a path
    std::istream& m_in;
    std::string m_name;
    std::optional<FileError_t> m_error;
    std::uint64_t m_offset = 0; // how far the stream was read
    std::uint64_t m_size = 0;   // what the header says of the file
    std::uint64_t m_count = 0;  // likewise
    std::uint64_t m_records = 0;
    bool m_isForeign = false; // floating-point numbers stand in the other byte order
    unsigned char m_kind = 0; // of the block
    std::vector<unsigned char> m_block;
    std::size_t m_taken = 0; // bytes of the block that were given out
    std::uint64_t m_entryOffset = 0;
};

} // namespace Legacy::IfKit
