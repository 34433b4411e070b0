#pragma once

#include <Net/Endpoint.h>
#include <Net/Export.h>

namespace Pb::Net {
class EndpointStr;
}

namespace Net {

/// Fills messages from the types of this library. It holds no state; any thread may call it.
class NET_API Sys2Pb
{
public:
    /// Overwrites the whole message. Both fields are set, also to an empty address and port 0.
    static void Convert(Endpoint<AddrStr> const& endpoint, ::Pb::Net::EndpointStr& message);
};

} // namespace Net
