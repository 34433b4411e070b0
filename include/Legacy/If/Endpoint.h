#pragma once

#include <Legacy/If/NetValue.h>
#include <Net/Endpoint.h>

namespace Legacy::If {

/// An address as text, and a port.
struct LEGACY_IF_API EndpointFamily
{
    using Value = Net::Endpoint<Net::AddrStr>;
    static constexpr IfType_t k_type = IfType_t::Endpoint;
};

extern template class NetInfo<EndpointFamily>;
extern template class NetItem<EndpointFamily>;

/// Schema of an endpoint.
using EndpointInfo = NetInfo<EndpointFamily>;
/// An endpoint. It prints as `host:port`.
using EndpointItem = NetItem<EndpointFamily>;

} // namespace Legacy::If
