#pragma once

#include <Legacy/If/IfType.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/IfKit/Export.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

/// Serial records as the bytes that travel: the ten header bytes and the payload, one record behind the other.
///
/// @code
/// std::vector<unsigned char> bytes;
/// AppendRecord(*boost::intrusive_ptr<ItemBase>(BoolItem::Create(7, true)), bytes);
/// RecordReader reader(bytes);
/// while (auto const record = reader.Next()) std::cout << record->id << '\n';
/// @endcode
///
/// Bytes may come from anywhere: nothing is read outside of them. Objects of these classes are for one thread at a
/// time; many threads may read the same bytes, and write records of the same values, which nobody changes meanwhile.
namespace Legacy::IfKit {

/// Bytes of a record before its payload: id and payload size, both 32 bits and big-endian, type and element type.
constexpr std::size_t k_recordHeaderSize = 10;

/// One record in a buffer that somebody else owns.
struct Record_t
{
    unsigned int id = 0;
    If::IfType_t type{};                    ///< perhaps a number that is no enumerator
    If::NumericType_t numericType{};        ///< likewise
    std::span<unsigned char const> payload; ///< points into the buffer

    /// Number of bytes with the header.
    std::size_t Size() const noexcept { return k_recordHeaderSize + payload.size(); }

    /// Makes the value.
    /// @return 0; otherwise a code of `ItemBase::Deserialize`, with `item` untouched: `IfErrInvalidArgument` for tags
    ///         that name no class and for a payload that does not fit, `IfErrTypeNotAssignable` for a class whose
    ///         values do not travel, `IfErrNotSerializable` for a composite with such a member.
    LEGACY_IFKIT_API int Rebuild(boost::intrusive_ptr<If::ItemBase>& item) const;
};

/// Appends the record of a value.
/// @return 0; the code of `Serialize` for a value without a serial form, with `bytes` as they were.
LEGACY_IFKIT_API int AppendRecord(If::ItemBase const& item, std::vector<unsigned char>& bytes);

/// Makes a value of bytes that are one whole record and nothing else.
/// @return as `Record_t::Rebuild`, and `IfErrInvalidArgument` for bytes that are more or less than one record.
LEGACY_IFKIT_API int ReadRecord(std::span<unsigned char const> bytes, boost::intrusive_ptr<If::ItemBase>& item);

/// Goes through a buffer of records without copying a payload.
class LEGACY_IFKIT_API RecordReader
{
public:
    /// The buffer must outlive the reader and the records that it gives out.
    explicit RecordReader(std::span<unsigned char const> bytes) noexcept : m_bytes(bytes) {}

    /// The next record; nothing at the end of the buffer and where what is left is not a whole record.
    std::optional<Record_t> Next() noexcept;

    /// How many bytes the records so far take: the place of the next one, or of what is no whole record.
    std::size_t GetOffset() const noexcept { return m_offset; }
    /// Whether nothing is left. False after #Next gave nothing: the rest of the buffer is no whole record.
    bool IsAtEnd() const noexcept { return m_offset == m_bytes.size(); }

private:
    std::span<unsigned char const> m_bytes;
    std::size_t m_offset = 0;
};

} // namespace Legacy::IfKit
