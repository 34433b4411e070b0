// Lets schemas and values of any two families meet: assigned, merged, compared, validated, printed, read, recorded.

#include "Parts.h"

#include <Legacy/If/FormattedInfoItemDump.h>
#include <Legacy/If/Result.h>

using namespace Parts;

namespace {

std::string Dump(auto const& object)
{
    std::ostringstream os;
    object.DumpVal(os);
    os << object;
    return os.str();
}

/// What an assignment leaves behind is what a second one finds.
template<typename Object>
void Settles(Object& target, Object const& source, auto&& assign)
{
    bool changed = false;
    std::string const before = Dump(target);
    if (assign(target, source, changed) != 0)
        return;
    Require(changed || Dump(target) == before);
}

void Record(ItemBase const& item)
{
    ItemPtr again;
    ItemBase::SerialStruct_t record;
    item.Serialize(&record);
    ItemBase::ConstSerialStruct_t const view{record.id, record.size, record.type, record.numericType, record.data};
    ItemBase::Deserialize(&view, again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    InfoPtr const info = MakeInfo(input);
    InfoPtr const other = MakeInfo(input);
    ItemPtr const made(info->CreateItem());
    ItemPtr const item = MakeItem(input);
    ItemPtr const copy(item->DeepCopy());
    InfoPtr const duplicate(info->DeepCopy());
    Require(Dump(*copy) == Dump(*item) && Dump(*duplicate) == Dump(*info));
    Require(duplicate->IsEqualType(info) && copy->IsEqualType(item));
    Require(copy->IsEqualValue(item) == item->IsEqualValue(copy));

    for (ItemPtr const& value : {made, item}) {
        If::Result result(1);
        for (auto const& finding : {value->Validate(info), value->ValidateMin(info), value->ValidateMax(other)})
            if (finding)
                result.AddResultElem(finding);
        std::ostringstream os;
        If::FormattedInfoItemDump(os, info, value);
        value->GetValAsString();
        value->IsEmpty();
        Record(*value);
    }

    unsigned int const index = input.Byte();
    auto const assignItem = [index](ItemBase& target, ItemBase const& source, bool& changed) {
        return target.AssignArrayValue(&source, index, &changed);
    };
    Settles(*made, *item, assignItem);
    Settles(*item, *made, assignItem);
    ReadText(*made, input.Text(), info);

    info->MergeBounds(other);
    other->MergeBounds(info);
    Settles(*info, *other, [](InfoBase& target, InfoBase const& source, bool& changed) {
        return target.AssignValue(&source, &changed);
    });
    info->IsEqualBounds(other);
    return 0;
}
