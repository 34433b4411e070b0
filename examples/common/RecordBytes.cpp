#include "RecordBytes.h"

#include <boost/endian/conversion.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Examples {

using Legacy::If::ItemBase;

namespace {

constexpr std::size_t k_headerSize = offsetof(ItemBase::SerialStruct_t, data);

} // namespace

int AppendRecord(ItemBase const& item, std::vector<unsigned char>& bytes)
{
    ItemBase::SerialStruct_t record;
    if (int const code = item.Serialize(&record))
        return code;
    // The header words are kept in the order in which they travel, so header and payload are copied as they stand.
    auto const* header = reinterpret_cast<unsigned char const*>(&record);
    bytes.insert(bytes.end(), header, header + k_headerSize);
    bytes.insert(bytes.end(), record.data, record.data + boost::endian::big_to_native(std::uint32_t{record.size}));
    return 0;
}

int ReadRecord(std::span<unsigned char const> bytes, boost::intrusive_ptr<ItemBase>& item)
{
    if (bytes.size() < k_headerSize)
        return Legacy::If::IfErrInvalidArgument;
    ItemBase::ConstSerialStruct_t record;
    std::memcpy(static_cast<void*>(&record), bytes.data(), k_headerSize);
    if (boost::endian::big_to_native(std::uint32_t{record.size}) != bytes.size() - k_headerSize)
        return Legacy::If::IfErrInvalidArgument;
    record.data = bytes.data() + k_headerSize;

    boost::intrusive_ptr<ItemBase> rebuilt;
    if (int const code = ItemBase::Deserialize(&record, rebuilt))
        return code;
    item = rebuilt;
    return 0;
}

} // namespace Examples
