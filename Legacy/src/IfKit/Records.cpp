#include <Legacy/IfKit/Records.h>

#include <boost/endian/conversion.hpp>

#include <cstdint>
#include <cstring>

namespace Legacy::IfKit {

using If::ItemBase;

static_assert(k_recordHeaderSize == offsetof(ItemBase::SerialStruct_t, data));

int Record_t::Rebuild(boost::intrusive_ptr<ItemBase>& item) const
{
    ItemBase::ConstSerialStruct_t record;
    record.id = boost::endian::native_to_big(static_cast<std::uint32_t>(id));
    record.size = boost::endian::native_to_big(static_cast<std::uint32_t>(payload.size()));
    record.type = static_cast<unsigned char>(type);
    record.numericType = static_cast<unsigned char>(numericType);
    record.data = payload.data();
    boost::intrusive_ptr<ItemBase> rebuilt;
    if (int const code = ItemBase::Deserialize(&record, rebuilt))
        return code;
    item = std::move(rebuilt);
    return 0;
}

int AppendRecord(ItemBase const& item, std::vector<unsigned char>& bytes)
{
    ItemBase::SerialStruct_t record;
    if (int const code = item.Serialize(&record))
        return code;
    // The header words are kept in the order in which they travel, so header and payload are copied as they stand.
    std::size_t const payload = boost::endian::big_to_native(std::uint32_t{record.size});
    std::size_t const start = bytes.size();
    bytes.resize(start + k_recordHeaderSize + payload);
    std::memcpy(bytes.data() + start, static_cast<void const*>(&record), k_recordHeaderSize);
    if (payload != 0)
        std::memcpy(bytes.data() + start + k_recordHeaderSize, record.data, payload);
    return 0;
}

int ReadRecord(std::span<unsigned char const> bytes, boost::intrusive_ptr<ItemBase>& item)
{
    RecordReader reader(bytes);
    auto const record = reader.Next();
    return record && reader.IsAtEnd() ? record->Rebuild(item) : If::IfErrInvalidArgument;
}

std::optional<Record_t> RecordReader::Next() noexcept
{
    auto const rest = m_bytes.subspan(m_offset);
    if (rest.size() < k_recordHeaderSize)
        return std::nullopt;
    std::size_t const payload = boost::endian::load_big_u32(rest.data() + 4);
    if (payload > rest.size() - k_recordHeaderSize)
        return std::nullopt;
    m_offset += k_recordHeaderSize + payload;
    return Record_t{boost::endian::load_big_u32(rest.data()), static_cast<If::IfType_t>(rest[8]),
                    static_cast<If::NumericType_t>(rest[9]), rest.subspan(k_recordHeaderSize, payload)};
}

} // namespace Legacy::IfKit
