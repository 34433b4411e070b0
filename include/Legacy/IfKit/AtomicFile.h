#pragma once

#include <Legacy/IfKit/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Files that are whole: whatever happens while one is written, its name stands for the former contents or for the new
/// ones.
///
/// @code
/// AtomicFile file("settings.txt");
/// file.Write("volume=7\n");
/// if (auto const error = file.Commit()) std::cerr << error->ToText() << '\n';
/// @endcode
///
/// One object is for one thread at a time; different ones, also for the same name, may be used on different threads.
namespace Legacy::IfKit {

/// Why a file cannot be read or written.
struct FileError_t
{
    std::string path;
    std::uint64_t offset = 0; ///< where in the file, in bytes
    std::string reason;       ///< what was expected there, or what the system says

    /// In one line without control characters: "values.rec: byte 24: expected the checksum 0x1f, found 0x2f".
    LEGACY_IFKIT_API std::string ToText() const;
};

/// Writes a file under a name of its own beside the one that is wanted, and takes its place at the end.
class LEGACY_IFKIT_API AtomicFile
{
public:
    /// Nothing is opened before the first byte is written. A symbolic link is followed; a file that is there keeps its
    /// permissions.
    explicit AtomicFile(std::string path);
    AtomicFile(AtomicFile const&) = delete;
    AtomicFile& operator=(AtomicFile const&) = delete;
    /// Without #Commit the file that was there stays, and what was written is gone.
    ~AtomicFile();

    /// Appends. A failure is told by #Commit.
    /// @{
    void Write(std::span<unsigned char const> bytes);
    void Write(std::string_view text);
    /// @}

    /// Replaces bytes that were written before.
    void Rewrite(std::uint64_t offset, std::span<unsigned char const> bytes);

    /// Number of bytes written so far.
    std::uint64_t GetSize() const noexcept { return m_size; }

    /// Brings all bytes to the disk and then gives the file its name. To be called once, as the last thing.
    /// @return nothing; otherwise the first failure of all that was done, and the file that was there stays, but when
    ///         the last step alone failed, which brings the new name to the disk.
    std::optional<FileError_t> Commit();

private:
    void Open_();
    void Flush_();
    void Put_(std::span<unsigned char const> bytes, std::uint64_t offset);
    void Fail_(std::uint64_t offset, std::string const& what, int error);
    void SyncFolder_();

    std::string m_path;
    std::string m_target;    // the path behind symbolic links
    std::string m_temporary; // empty while there is none
    int m_descriptor = -1;
    std::uint64_t m_size = 0;
    std::vector<unsigned char> m_pending; // the last bytes written, which are not in the file yet
    std::optional<FileError_t> m_error;
};

} // namespace Legacy::IfKit
