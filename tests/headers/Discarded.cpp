// Objects that nobody takes would never be released: the compiler warns of each of these lines.
#include <Legacy/If.h>

using namespace Legacy::If;

void Discard(NumericArrayInfo<U8Traits> const& info, InfoBase const& schema, ItemBase const& value,
             StringItem const& text, AddrItem const& addr, CompositeItem const& composite,
             ItemCreator<BoolItem> const& creator, InfoHolder const& holder, Result const& result)
{
    info.DeepCopy();
    info.DeepCopy(1, "", Permission_t{}); // virtual
    info.CreateItem();                    // virtual
    schema.DeepCopy(1);
    schema.DeepCopy(1, "", Permission_t{}); // virtual
    schema.CreateItem();                    // virtual
    value.DeepCopy();
    value.DeepCopy(1); // virtual
    text.DeepCopy(1);  // virtual
    addr.DeepCopy(1);  // virtual
    composite.DeepCopy();
    StringItem::Create(1, "");
    creator.CreateItem(1); // virtual
    creator.CreateDerivedItem(1);
    holder.DeepCopy(); // virtual
    result.Clone();    // virtual
}
