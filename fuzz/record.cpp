// Rebuilds a value from a record: two tag bytes, then the payload. What was rebuilt must survive every operation, and
// what it writes must be read back.

#include "Input.h"

#include <Legacy/If/ItemBase.h>

#include <boost/endian/conversion.hpp>

#include <sstream>

using namespace Legacy::If;

namespace {

constexpr std::uint32_t k_id = 0x05000007;

boost::intrusive_ptr<ItemBase> Rebuild(unsigned char type, unsigned char numericType, unsigned char const* payload,
                                       std::size_t size)
{
    ItemBase::ConstSerialStruct_t record;
    record.id = boost::endian::native_to_big(k_id);
    record.size = boost::endian::native_to_big(static_cast<std::uint32_t>(size));
    record.type = type;
    record.numericType = numericType;
    record.data = payload;
    boost::intrusive_ptr<ItemBase> item;
    int const code = ItemBase::Deserialize(&record, item);
    Require(code <= 0);
    if (code != 0)
        return nullptr;
    Require(item && item->GetId() == k_id);
    return item;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    unsigned char const type = input.Byte();
    unsigned char const numericType = input.Byte();
    auto const item = Rebuild(type, numericType, input.Data(), input.Size());
    if (!item)
        return 0;

    boost::intrusive_ptr<ItemBase> const copy(item->DeepCopy());
    copy->AssignValue(item, nullptr);
    item->IsEqualValue(copy);
    item->Validate(nullptr);
    item->GetValAsString();
    std::ostringstream dump;
    item->DumpVal(dump);

    ItemBase::SerialStruct_t written;
    Require(item->Serialize(&written) == 0);
    Rebuild(written.type, written.numericType, written.data, boost::endian::big_to_native(std::uint32_t{written.size}));
    return 0;
}
