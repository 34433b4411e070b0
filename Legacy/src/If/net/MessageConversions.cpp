#include "net/AppProtocol.h"

#include <Legacy/If/MessageConversions.h>
#include <Net/AppEndpoint.h>
#include <Net/Pb2Sys.h>
#include <Net/Sys2Pb.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <array>

namespace Legacy::If {

namespace {

using EndpointStr = Net::Endpoint<Net::AddrStr>;

/// The messages number the protocols in a way of their own.
struct Row
{
    AppProtocolType_t type;
    ::Pb::Legacy::If::AppProtocolType message;
};

constexpr auto k_rows = std::to_array<Row>({
    {AppProtocolType_t::Unknown, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_UNKNOWN},
    {AppProtocolType_t::Soap, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_SOAP},
    {AppProtocolType_t::SoapSsl, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_SOAP_SSL},
    {AppProtocolType_t::Http, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_HTTP},
    {AppProtocolType_t::Https, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_HTTPS},
    {AppProtocolType_t::TcpRaw, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_TCP_RAW},
    {AppProtocolType_t::Ntp, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_NTP},
    {AppProtocolType_t::Rtsp, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_RTSP},
    {AppProtocolType_t::HttpXml, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_HTTP_XML},
    {AppProtocolType_t::Modbus, ::Pb::Legacy::If::APP_PROTOCOL_TYPE_MODBUS},
});

::Pb::Legacy::If::AppProtocolType ToMessage(AppProtocolType_t type)
{
    for (Row const& row : k_rows) {
        if (row.type == type)
            return row.message;
    }
    return ::Pb::Legacy::If::APP_PROTOCOL_TYPE_UNKNOWN;
}

AppProtocolType_t FromMessage(::Pb::Legacy::If::AppProtocolType message)
{
    for (Row const& row : k_rows) {
        if (row.message == message)
            return row.type;
    }
    return AppProtocolType_t::Unknown;
}

} // namespace

void Sys2LegacyPb::Convert(AppProtocolInfo_t const& info, ::Pb::Legacy::If::AppProtocolInfo& message)
{
    message.Clear();
    message.set_app_protocol_type(ToMessage(info.type));
    message.set_version(info.version);
    message.set_compat_version(info.compatVersion);
}

void Sys2LegacyPb::Convert(AppEndpoint<EndpointStr> const& endpoint, ::Pb::Legacy::If::AppEndpointStr& message)
{
    message.Clear();
    Convert(endpoint.GetAppProtocolInfo(), *message.mutable_protocol_info());
    Net::Sys2Pb::Convert(endpoint.GetEndpoint(), *message.mutable_endpoint());
    message.set_addr_group_prefix(endpoint.GetAddrGroupPrefix());
}

void Sys2LegacyPb::Convert(AppEndpoint<EndpointStr> const& endpoint, std::string& uri) { uri = endpoint.ToUri(); }

void LegacyPb2Sys::Convert(::Pb::Legacy::If::AppProtocolInfo const& message, AppProtocolInfo_t& info)
{
    info.type = FromMessage(message.app_protocol_type());
    info.version = static_cast<unsigned short>(message.version());
    info.compatVersion = static_cast<unsigned short>(message.compat_version());
}

void LegacyPb2Sys::Convert(::Pb::Legacy::If::AppEndpointStr const& message, AppEndpoint<EndpointStr>& endpoint)
{
    AppProtocolInfo_t info;
    Convert(message.protocol_info(), info);
    EndpointStr place;
    Net::Pb2Sys::Convert(message.endpoint(), place);
    endpoint = AppEndpoint<EndpointStr>(info, place, static_cast<unsigned char>(message.addr_group_prefix()));
}

void LegacyPb2Sys::Convert(std::string const& uri, AppEndpoint<EndpointStr>& endpoint)
{
    endpoint = AppEndpoint<EndpointStr>::FromUri(uri);
}

AppProtocolInfo_t ToLegacyAppProtocolInfo(Net::UriScheme const& scheme)
{
    return Detail::AppProtocolInfoFromScheme(scheme.GetString());
}

AppEndpoint<Net::Endpoint<Net::AddrIp>> ToLegacyAppEndpointIp(Net::AppEndpoint const& endpoint)
{
    return {ToLegacyAppProtocolInfo(endpoint.GetUri().GetScheme()), endpoint.GetEndpoint().ToIp(), 0};
}

AppEndpoint<EndpointStr> ToLegacyAppEndpointStr(Net::AppEndpoint const& endpoint)
{
    auto const info = ToLegacyAppProtocolInfo(endpoint.GetUri().GetScheme());
    if (info.type != AppProtocolType_t::Rtsp)
        return {info, endpoint.GetEndpoint(), 0};
    EndpointStr url{Net::AddrStr(endpoint.ToString())};
    url.SetPort(0);
    return {info, url, 0};
}

} // namespace Legacy::If
