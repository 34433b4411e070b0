#include "net/NetValueImpl.h"

#include <Legacy/If/Endpoint.h>

namespace Legacy::If {

EndpointInfo* EndpointInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

EndpointItem* EndpointItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

template class Detail::NetInfo<EndpointInfo, EndpointItem, IfType_t::Endpoint, Net::Endpoint<Net::AddrStr>>;
template class Detail::NetItem<EndpointItem, EndpointInfo, IfType_t::Endpoint, Net::Endpoint<Net::AddrStr>>;

} // namespace Legacy::If
