#pragma once

#include <Net/Endpoint.h>
#include <Net/Export.h>

namespace Pb::Net {
class EndpointStr;
}

namespace Net {

/// Fills the types of this library from messages. It holds no state; any thread may call it.
class NET_API Pb2Sys
{
public:
    /// Overwrites the whole endpoint. A field that is not set gives its default, an unspecified address or port 0. A
    /// number above 65535 is no port and gives 0, rather than some other service's port.
    static void Convert(::Pb::Net::EndpointStr const& message, Endpoint<AddrStr>& endpoint);
};

} // namespace Net
