#include <Legacy/If/InfoBase.h>

#include <ostream>

namespace Legacy::If {

InfoBase::InfoBase(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : m_id(id), m_name(name), m_permission(permission)
{}

InfoBase::InfoBase(InfoBase const& other) : m_id(other.m_id), m_name(other.m_name), m_permission(other.m_permission) {}

NumericType_t InfoBase::GetNumericType() const { return NumericType_t::Undefined; }

bool InfoBase::IsEqualType(boost::intrusive_ptr<ItemBase const> const& item) const
{
    return item && GetType() == item->GetType() && GetNumericType() == item->GetNumericType();
}

bool InfoBase::IsEqualType(boost::intrusive_ptr<InfoBase const> const& info) const
{
    return info && GetType() == info->GetType() && GetNumericType() == info->GetNumericType();
}

std::ostream& operator<<(std::ostream& os, InfoBase const& info) { return info.operator<<(os); }

} // namespace Legacy::If
