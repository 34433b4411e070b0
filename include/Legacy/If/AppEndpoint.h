#pragma once

#include <Legacy/If/Detail/NetValue.h>
#include <Legacy/If/Export.h>
#include <Net/Endpoint.h>

#include <string>

namespace Legacy::If {

/// Application protocols. The numbers travel in serial records and have gaps; other numbers can be stored.
enum class AppProtocolType_t : int
{
    Unknown = 0,
    Soap = 1,
    SoapSsl = 2,
    Http = 5,
    Https = 7,
    TcpRaw = 8,
    HttpXml = 9,
    Modbus = 10,
    Ntp = 32,
    Rtsp = 66,
};

/// An application protocol with the range of versions spoken. A plain value.
struct LEGACY_IF_API AppProtocolInfo_t
{
    AppProtocolType_t type = AppProtocolType_t::Unknown;
    unsigned short version = 0;       ///< the newest version spoken
    unsigned short compatVersion = 0; ///< the oldest version still accepted

    constexpr AppProtocolInfo_t() noexcept = default;
    constexpr AppProtocolInfo_t(AppProtocolType_t t, unsigned short v, unsigned short compat) noexcept
        : type(t), version(v), compatVersion(compat)
    {}

    /// Whether a peer with this protocol and version can be talked to: the same type, and a version from compatVersion
    /// to version. A record with compatVersion above version accepts nothing.
    constexpr bool IsProtocolCompatible(AppProtocolType_t peerType, unsigned short peerVersion) const noexcept
    {
        return peerType == type && compatVersion <= peerVersion && peerVersion <= version;
    }

    /// `SoapSsl` and `Https`.
    constexpr bool ProtocolRequiresEncryption() const noexcept
    {
        return type == AppProtocolType_t::SoapSsl || type == AppProtocolType_t::Https;
    }

    friend constexpr bool operator==(AppProtocolInfo_t const&, AppProtocolInfo_t const&) noexcept = default;
};

/// Where a service listens and which application protocol it speaks there.
///
/// `E` is `Net::Endpoint<Net::AddrStr>`, which the value families use, or `Net::Endpoint<Net::AddrIp>`. No operation
/// fails: what the networking library makes of a text is taken as it is. A plain value: distinct objects may be used on
/// distinct threads.
template<class E>
class LEGACY_IF_API AppEndpoint
{
public:
    using Addr = typename E::AddrType;

    /// An unknown protocol at an unspecified endpoint, in no address group.
    AppEndpoint() = default;
    AppEndpoint(AppProtocolInfo_t const& protocolInfo, E const& endpoint, unsigned char addrGroupPrefix)
        : m_protocolInfo(protocolInfo), m_endpoint(endpoint), m_addrGroupPrefix(addrGroupPrefix)
    {}

    /// Exactly the same in all fields.
    friend bool operator==(AppEndpoint const&, AppEndpoint const&) = default;
    /// Whether both are the same place: same protocol, same endpoint, and the same address group, where the group 0
    /// matches any. The versions are not compared.
    bool IsEqual(AppEndpoint const& other) const;

    AppProtocolInfo_t const& GetAppProtocolInfo() const noexcept { return m_protocolInfo; }
    void SetAppProtocolInfo(AppProtocolInfo_t const& info) noexcept { m_protocolInfo = info; }
    AppProtocolType_t GetAppProtocolType() const noexcept { return m_protocolInfo.type; }
    void SetAppProtocolType(AppProtocolType_t type) noexcept { m_protocolInfo.type = type; }
    unsigned short const& GetAppProtocolVersion() const noexcept { return m_protocolInfo.version; }
    void SetAppProtocolVersion(unsigned short version) noexcept { m_protocolInfo.version = version; }
    unsigned short const& GetAppProtocolCompatVersion() const noexcept { return m_protocolInfo.compatVersion; }
    void SetAppProtocolCompatVersion(unsigned short version) noexcept { m_protocolInfo.compatVersion = version; }

    E const& GetEndpoint() const noexcept { return m_endpoint; }
    void SetEndpoint(E const& endpoint) { m_endpoint = endpoint; }
    Addr const& GetAddr() const noexcept { return m_endpoint.GetAddr(); }
    void SetAddr(Addr const& addr) { m_endpoint.SetAddr(addr); }
    unsigned short GetPort() const noexcept { return m_endpoint.GetPort(); }
    void SetPort(unsigned short port) noexcept { m_endpoint.SetPort(port); }

    /// The address group; 0 means that none is set.
    unsigned char GetAddrGroupPrefix() const noexcept { return m_addrGroupPrefix; }
    void SetAddrGroupPrefix(unsigned char prefix) noexcept { m_addrGroupPrefix = prefix; }

    bool IsLocalhost() const { return m_endpoint.IsLocalhostAddr(); }
    /// Whether the endpoint is complete enough to connect to; the protocol has no say in it.
    bool IsSpecified() const { return m_endpoint.IsFullySpecified(); }
    bool IsUnspecified() const { return !IsSpecified(); }
    bool RequiresEncryption() const noexcept { return m_protocolInfo.ProtocolRequiresEncryption(); }
    bool IsAppProtocolCompatible(AppProtocolType_t type, unsigned short const& version) const noexcept
    {
        return m_protocolInfo.IsProtocolCompatible(type, version);
    }

    /// The scheme of the protocol, "://" and the endpoint. Versions and address group are not in it, and there are no
    /// default ports.
    ///
    /// An endpoint whose address holds a whole URL, so that its text begins with "rtsp://", gives that URL, whatever
    /// the protocol: its text up to the last colon.
    std::string ToUri() const;
    /// Reads what #ToUri writes. Nothing is refused: an unknown scheme gives `Unknown`, in whatever case it is written,
    /// and all that follows the scheme and any colons and slashes behind it, a path included, is for `E::FromString`.
    ///
    /// What a URI does not tell does not come back: the address group becomes 0, the versions 0, of `Rtsp` 1 and 1, a
    /// number that names no protocol `Unknown`. An address that holds a whole URL comes back as the place in that URL.
    static AppEndpoint FromUri(std::string const& text);

    /// The form for display: the endpoint behind a public scheme where the protocol has one, otherwise with the name of
    /// the protocol, "host:port (Modbus)". It cannot be read back.
    ///
    /// Contract: an address that holds a URL is no special case here, unlike in #ToUri; it shows "rtsp://" twice and
    /// its port 0, and displays are compared with that text.
    std::string ToString() const;

private:
    AppProtocolInfo_t m_protocolInfo;
    E m_endpoint;
    unsigned char m_addrGroupPrefix = 0;
};

extern template class AppEndpoint<Net::Endpoint<Net::AddrIp>>;
extern template class AppEndpoint<Net::Endpoint<Net::AddrStr>>;

class LEGACY_IF_API AppEndpointItem;

/// Schema of an application endpoint. The protocol of its default is that of every value read from a stream.
class LEGACY_IF_API AppEndpointInfo : public Detail::NetInfo<AppEndpointInfo, AppEndpointItem, IfType_t::AppEndpoint,
                                                             AppEndpoint<Net::Endpoint<Net::AddrStr>>>
{
public:
    using NetInfo::NetInfo;

    using NetInfo::DeepCopy;
    [[nodiscard]] AppEndpointInfo* DeepCopy(unsigned int id, std::string const& name,
                                            Permission_t const& permission) const override;
};

/// An application endpoint. It prints in the form for display.
class LEGACY_IF_API AppEndpointItem : public Detail::NetItem<AppEndpointItem, AppEndpointInfo, IfType_t::AppEndpoint,
                                                             AppEndpoint<Net::Endpoint<Net::AddrStr>>>
{
public:
    using NetItem::NetItem;

    using NetItem::DeepCopy;
    [[nodiscard]] AppEndpointItem* DeepCopy(unsigned int id) const override;
};

extern template class LEGACY_IF_BASE_API
    Detail::NetInfo<AppEndpointInfo, AppEndpointItem, IfType_t::AppEndpoint, AppEndpoint<Net::Endpoint<Net::AddrStr>>>;
extern template class LEGACY_IF_BASE_API
    Detail::NetItem<AppEndpointItem, AppEndpointInfo, IfType_t::AppEndpoint, AppEndpoint<Net::Endpoint<Net::AddrStr>>>;

} // namespace Legacy::If
