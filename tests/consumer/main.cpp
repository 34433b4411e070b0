// What a user's first program does: a schema, a value, a finding, a record and its way back.
#include <Legacy/If/Result.h>
#include <Legacy/If/String.h>

#include <boost/endian/conversion.hpp>

#include <iostream>

using namespace Legacy::If;

int main()
{
    boost::intrusive_ptr<StringInfo> const info(new StringInfo(1, "host", Permission_t{}));
    info->SetMaxLength(4);
    boost::intrusive_ptr<ItemBase> const item(info->CreateItem());
    dynamic_cast<StringItem&>(*item).SetVal("too long");

    Result result(1);
    result.AddResultElem(item->Validate(info));
    if (result.GetNumResults() != 1)
        return 1;

    ItemBase::SerialStruct_t written;
    if (item->Serialize(&written) != 0)
        return 2;
    ItemBase::ConstSerialStruct_t record;
    record.id = written.id;
    record.size = written.size;
    record.type = written.type;
    record.data = written.data;
    boost::intrusive_ptr<ItemBase> rebuilt;
    if (ItemBase::Deserialize(&record, rebuilt) != 0 || !rebuilt->IsEqualValue(item))
        return 3;
    std::cout << *rebuilt << '\n';
    return 0;
}
