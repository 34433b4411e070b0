#include "core/Finding.h"

#include <Legacy/If/ItemBase.h>

#include <ostream>

namespace Legacy::If {

NumericType_t ItemBase::GetNumericType() const { return NumericType_t::Undefined; }

bool ItemBase::IsEmpty() const { return false; }

bool ItemBase::IsEqualType(boost::intrusive_ptr<ItemBase const> const& other) const
{
    return other && GetType() == other->GetType() && GetNumericType() == other->GetNumericType();
}

std::shared_ptr<ResultElem const> ItemBase::ValidateMin(boost::intrusive_ptr<InfoBase const> const& info)
{
    return Detail::IllegalValidation(info, *this);
}

std::shared_ptr<ResultElem const> ItemBase::ValidateMax(boost::intrusive_ptr<InfoBase const> const& info)
{
    return Detail::IllegalValidation(info, *this);
}

std::string const& ItemBase::GetName() const noexcept
{
    static std::string const empty;
    return empty;
}

std::ostream& operator<<(std::ostream& os, ItemBase const& item) { return item.operator<<(os); }

} // namespace Legacy::If
