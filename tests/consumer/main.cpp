// What a user's first program does: a schema, a value, a finding, records and their way back.
#include <Legacy/If/Bool.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/Result.h>
#include <Legacy/If/String.h>

#include <iostream>

using namespace Legacy::If;

namespace {

/// Over its record into a new value of the right class.
bool Travels(boost::intrusive_ptr<ItemBase> const& item)
{
    ItemBase::SerialStruct_t written;
    if (item->Serialize(&written) != 0)
        return false;
    ItemBase::ConstSerialStruct_t record;
    record.id = written.id;
    record.size = written.size;
    record.type = written.type;
    record.numericType = written.numericType;
    record.data = written.data;
    boost::intrusive_ptr<ItemBase> rebuilt;
    return ItemBase::Deserialize(&record, rebuilt) == 0 && rebuilt->IsEqualValue(item);
}

} // namespace

int main()
{
    boost::intrusive_ptr<StringInfo> const info(new StringInfo(1, "host", Permission_t{}));
    info->SetMaxLength(4);
    boost::intrusive_ptr<ItemBase> const text(info->CreateItem());
    dynamic_cast<StringItem&>(*text).SetVal("too long");
    boost::intrusive_ptr<ItemBase> const flag(BoolItem::Create(2, true));

    // The length, and the class.
    Result result(1);
    result.AddResultElem(text->Validate(info));
    result.AddResultElem(flag->Validate(info));
    if (result.GetNumResults() != 2)
        return 1;

    boost::intrusive_ptr<CompositeItem> const both(new CompositeItem(3));
    both->AddItem(text);
    both->AddItem(flag);
    for (auto const& item : {text, flag, boost::intrusive_ptr<ItemBase>(both),
                             boost::intrusive_ptr<ItemBase>(NumericItem<S16Traits>::Create(4, -5))})
        if (!Travels(item))
            return 2;
    std::cout << *text << '\n';
}
