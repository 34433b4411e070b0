#include "net/AppProtocol.h"
#include "net/NetValueImpl.h"

#include <Legacy/If/AppEndpoint.h>
#include <Net/StringParser.h>
#include <Orlek/StrPtrLen.h>

#include <array>
#include <string_view>

namespace Legacy::If {

namespace {

/// How a protocol is written. Device protocols without a public scheme have a private one.
struct Row
{
    AppProtocolType_t type;
    std::string_view scheme;
    std::string_view displayScheme; ///< empty: the name of the protocol shows instead
    std::string_view name;
};

constexpr auto k_rows = std::to_array<Row>({
    {AppProtocolType_t::Unknown, "x-qrv-unknown", "", "Unknown"},
    {AppProtocolType_t::Http, "http", "http", "Http"},
    {AppProtocolType_t::Https, "https", "https", "Https"},
    {AppProtocolType_t::Soap, "x-qrv-devsoap", "http", "Soap"},
    {AppProtocolType_t::SoapSsl, "x-qrv-devsoapssl", "https", "SoapSsl"},
    {AppProtocolType_t::TcpRaw, "x-qrv-tcpraw", "", "TcpRaw"},
    {AppProtocolType_t::HttpXml, "x-qrv-httpxml", "", "HttpXml"},
    {AppProtocolType_t::Modbus, "x-qrv-modbus", "", "Modbus"},
    {AppProtocolType_t::Ntp, "x-qrv-ntp", "", "Ntp"},
    {AppProtocolType_t::Rtsp, "rtsp", "rtsp", "Rtsp"},
});

/// A number that names no protocol.
constexpr Row k_invalid{AppProtocolType_t::Unknown, "x-qrv-unknown", "", "Invalid"};

constexpr std::string_view k_schemeEnd = "://";
constexpr std::string_view k_rtspUrl = "rtsp://";

constexpr Row const& RowOf(AppProtocolType_t type)
{
    for (Row const& row : k_rows) {
        if (row.type == type)
            return row;
    }
    return k_invalid;
}

std::string Joined(std::string_view scheme, std::string_view endpoint)
{
    std::string text;
    text.reserve(scheme.size() + k_schemeEnd.size() + endpoint.size());
    text.append(scheme).append(k_schemeEnd).append(endpoint);
    return text;
}

} // namespace

AppProtocolInfo_t Detail::AppProtocolInfoFromScheme(std::string const& scheme)
{
    AppProtocolInfo_t info;
    for (Row const& row : k_rows) {
        if (!Orlek::StrPtrLen(scheme).EqualIgnoreCase(row.scheme))
            continue;
        info.type = row.type;
        // RTSP is spoken in one version, so its scheme tells it; no other scheme does.
        if (row.type == AppProtocolType_t::Rtsp)
            info.version = info.compatVersion = 1;
        break;
    }
    return info;
}

template<class E>
bool AppEndpoint<E>::IsEqual(AppEndpoint const& other) const
{
    if (m_protocolInfo.type != other.m_protocolInfo.type)
        return false;
    if (m_endpoint != other.m_endpoint)
        return false;
    if (m_addrGroupPrefix == 0 || other.m_addrGroupPrefix == 0)
        return true;
    return m_addrGroupPrefix == other.m_addrGroupPrefix;
}

template<class E>
std::string AppEndpoint<E>::ToUri() const
{
    std::string endpoint = m_endpoint.ToString();
    if (endpoint.starts_with(k_rtspUrl))
        return endpoint.substr(0, endpoint.rfind(':'));
    return Joined(RowOf(GetAppProtocolType()).scheme, endpoint);
}

template<class E>
AppEndpoint<E> AppEndpoint<E>::FromUri(std::string const& text)
{
    Orlek::StrPtrLen rest(text);
    std::string scheme;
    Net::StringParser(scheme, ':', false).Parse(rest, nullptr);
    while (rest.Front() == ':' || rest.Front() == '/')
        rest.Advance();
    return AppEndpoint(Detail::AppProtocolInfoFromScheme(scheme), E::FromString(rest.ToStdString()), 0);
}

template<class E>
std::string AppEndpoint<E>::ToString() const
{
    std::string text = m_endpoint.ToString();
    Row const& row = RowOf(GetAppProtocolType());
    if (!row.displayScheme.empty())
        return Joined(row.displayScheme, text);
    text.append(" (").append(row.name).append(")");
    return text;
}

template class AppEndpoint<Net::Endpoint<Net::AddrIp>>;
template class AppEndpoint<Net::Endpoint<Net::AddrStr>>;

AppEndpointInfo* AppEndpointInfo::DeepCopy(unsigned int id, std::string const& name,
                                           Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

AppEndpointItem* AppEndpointItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

template class Detail::NetInfo<AppEndpointInfo, AppEndpointItem, IfType_t::AppEndpoint,
                               AppEndpoint<Net::Endpoint<Net::AddrStr>>>;
template class Detail::NetItem<AppEndpointItem, AppEndpointInfo, IfType_t::AppEndpoint,
                               AppEndpoint<Net::Endpoint<Net::AddrStr>>>;

} // namespace Legacy::If
