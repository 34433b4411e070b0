#pragma once

#include <Legacy/If/Detail/NetValue.h>
#include <Net/Endpoint.h>

namespace Legacy::If {

/// An address as text, and a port.
struct LEGACY_IF_API EndpointFamily
{
    using Value = Net::Endpoint<Net::AddrStr>;
    static constexpr IfType_t k_type = IfType_t::Endpoint;
};

extern template class Detail::NetInfo<EndpointFamily>;
extern template class Detail::NetItem<EndpointFamily>;

/// Schema of an endpoint.
using EndpointInfo = Detail::NetInfo<EndpointFamily>;
/// An endpoint. It prints as `host:port`.
using EndpointItem = Detail::NetItem<EndpointFamily>;

} // namespace Legacy::If
