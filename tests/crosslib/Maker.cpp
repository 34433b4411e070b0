#include "Maker.h"

#include <Legacy/If/ResultElem.h>

#include <ostream>

namespace Maker {

using namespace Legacy::If;

Percent* Percent::DeepCopy(unsigned int id) const
{
    auto* const copy = new Percent(id);
    copy->SetVal(GetVal());
    return copy;
}

std::ostream& Percent::operator<<(std::ostream& os) const { return NumericItem::operator<<(os) << '%'; }

boost::intrusive_ptr<ItemBase> MakePercent(unsigned char value)
{
    boost::intrusive_ptr<Percent> const item(new Percent(1));
    item->SetVal(value);
    return item;
}

boost::intrusive_ptr<InfoBase> MakePercentInfo()
{
    boost::intrusive_ptr<NumericInfo<U8Traits>> const info(new NumericInfo<U8Traits>(1, "load", Permission_t{}));
    info->SetMax(100);
    return info;
}

bool Passes(boost::intrusive_ptr<ItemBase> const& item, boost::intrusive_ptr<InfoBase const> const& info)
{
    return !item->Validate(info);
}

} // namespace Maker
