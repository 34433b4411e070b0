#pragma once

#include <Legacy/If/Detail/NetValue.h>
#include <Net/Endpoint.h>

namespace Legacy::If {

class LEGACY_IF_API EndpointItem;

/// Schema of an endpoint: an address as text, and a port.
class LEGACY_IF_API EndpointInfo
    : public Detail::NetInfo<EndpointInfo, EndpointItem, IfType_t::Endpoint, Net::Endpoint<Net::AddrStr>>
{
public:
    using NetInfo::NetInfo;

    using NetInfo::DeepCopy;
    [[nodiscard]] EndpointInfo* DeepCopy(unsigned int id, std::string const& name,
                                         Permission_t const& permission) const override;
};

/// An endpoint. It prints as `host:port`.
class LEGACY_IF_API EndpointItem
    : public Detail::NetItem<EndpointItem, EndpointInfo, IfType_t::Endpoint, Net::Endpoint<Net::AddrStr>>
{
public:
    using NetItem::NetItem;

    using NetItem::DeepCopy;
    [[nodiscard]] EndpointItem* DeepCopy(unsigned int id) const override;
};

extern template class LEGACY_IF_BASE_API
    Detail::NetInfo<EndpointInfo, EndpointItem, IfType_t::Endpoint, Net::Endpoint<Net::AddrStr>>;
extern template class LEGACY_IF_BASE_API
    Detail::NetItem<EndpointItem, EndpointInfo, IfType_t::Endpoint, Net::Endpoint<Net::AddrStr>>;

} // namespace Legacy::If
