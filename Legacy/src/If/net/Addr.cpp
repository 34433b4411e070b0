#include "net/NetValueImpl.h"

#include <Legacy/If/Addr.h>

namespace Legacy::If {

AddrInfo* AddrInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

AddrItem* AddrItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

template class Detail::NetInfo<AddrInfo, AddrItem, IfType_t::Addr, Net::AddrStr>;
template class Detail::NetItem<AddrItem, AddrInfo, IfType_t::Addr, Net::AddrStr>;

} // namespace Legacy::If
