// Makes a value of the class that the first two bytes name by their tags, from the rest as a record and as a text. What
// was rebuilt must survive every operation, and what it writes must be read back.

#include "Parts.h"

using namespace Parts;

namespace {

constexpr std::uint32_t k_id = 0x05000007;

/// The code, and the value whatever the code is, if the tags name a class.
std::pair<int, ItemPtr> Rebuild(unsigned char type, unsigned char numericType, unsigned char const* payload,
                                std::size_t size)
{
    ItemBase::ConstSerialStruct_t const record{boost::endian::native_to_big(k_id),
                                               boost::endian::native_to_big(static_cast<std::uint32_t>(size)), type,
                                               numericType, payload};
    ItemPtr item;
    int const code = ItemBase::Deserialize(&record, item);
    Require(code < 0 || (code == 0 && item && item->GetId() == k_id));
    return {code, item};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    unsigned char const type = input.Byte();
    unsigned char const numericType = input.Byte();
    auto const [code, item] = Rebuild(type, numericType, input.Data(), input.Size());
    if (!item)
        return 0;
    if (code == 0) {
        ItemPtr const copy(item->DeepCopy());
        copy->AssignValue(item, nullptr);
        item->IsEqualValue(copy);
        item->Validate(nullptr);
        item->GetValAsString();
        std::ostringstream dump;
        item->DumpVal(dump);
        ItemBase::SerialStruct_t written;
        Require(item->Serialize(&written) == 0);
        Rebuild(written.type, written.numericType, written.data,
                boost::endian::big_to_native(std::uint32_t{written.size}));
    }
    ItemPtr const fresh = Rebuild(type, numericType, nullptr, 0).second;
    ReadText(*fresh, input.Rest(), nullptr);
    // What a value prints, it can be asked to read; whether it can is the family's affair.
    ReadText(*fresh, fresh->GetValAsString(), nullptr);
    return 0;
}
