#pragma once

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Export.h>

#include <string>

namespace Net {
class AppEndpoint;
class UriScheme;
} // namespace Net

namespace Pb::Legacy::If {
class AppEndpointStr;
class AppProtocolInfo;
} // namespace Pb::Legacy::If

// The messages and the networking library's own endpoint are only named here, so that this header costs little, and
// <Legacy/If.h> leaves it out even so. Who makes or reads a message includes <Pb/Legacy/If/AppEndpoint.pb.h>, which
// needs protobuf's headers; who hands over an endpoint of that library, <Net/AppEndpoint.h>. The libraries Pb::Pb and
// Net::Net behind them come with Legacy::If.

namespace Legacy::If {

/// From application endpoints to messages. It holds no state; any thread may call it.
///
/// A message is overwritten whole and all its fields are set, so that a zero travels too. A protocol that the messages
/// do not know becomes 0.
class LEGACY_IF_API Sys2LegacyPb
{
public:
    static void Convert(AppProtocolInfo_t const& info, ::Pb::Legacy::If::AppProtocolInfo& message);
    static void Convert(AppEndpoint<Net::Endpoint<Net::AddrStr>> const& endpoint,
                        ::Pb::Legacy::If::AppEndpointStr& message);
    /// The text becomes the endpoint's URI.
    static void Convert(AppEndpoint<Net::Endpoint<Net::AddrStr>> const& endpoint, std::string& uri);
};

/// From messages to application endpoints. It holds no state; any thread may call it.
///
/// Nothing is refused: a protocol that is not known becomes `Unknown`, a field that is not set its default, and numbers
/// are cut to the width of their field without a look at their range.
class LEGACY_IF_API LegacyPb2Sys
{
public:
    static void Convert(::Pb::Legacy::If::AppProtocolInfo const& message, AppProtocolInfo_t& info);
    static void Convert(::Pb::Legacy::If::AppEndpointStr const& message,
                        AppEndpoint<Net::Endpoint<Net::AddrStr>>& endpoint);
    /// The endpoint becomes what the URI says.
    static void Convert(std::string const& uri, AppEndpoint<Net::Endpoint<Net::AddrStr>>& endpoint);
};

/// The protocol that a scheme stands for, in any case; `Unknown` for a scheme of no protocol. Only `Rtsp` has versions,
/// 1 and 1.
LEGACY_IF_API AppProtocolInfo_t ToLegacyAppProtocolInfo(Net::UriScheme const& scheme);

/// The same endpoint with a numeric address and no address group. Names are not looked up, and a path is lost.
LEGACY_IF_API AppEndpoint<Net::Endpoint<Net::AddrIp>> ToLegacyAppEndpointIp(Net::AppEndpoint const& endpoint);

/// The same endpoint without an address group. Of an RTSP endpoint the whole URL becomes the address, with port 0,
/// since its path says which stream is meant; `AppEndpoint::ToUri` gives that URL back.
LEGACY_IF_API AppEndpoint<Net::Endpoint<Net::AddrStr>> ToLegacyAppEndpointStr(Net::AppEndpoint const& endpoint);

} // namespace Legacy::If
