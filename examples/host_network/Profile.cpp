#include "Profile.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Bool.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace HostNetwork {

namespace {

using namespace Legacy::If;

using Texts = std::vector<std::string>;
using Names = std::vector<std::pair<std::string, int>>;

/// The bits that this program gives the library's permissions.
constexpr Permission_t k_readOnly{0x4};
constexpr Permission_t k_writable{0x6};

constexpr char k_anyInterface = '*';

// --- Schemas -----------------------------------------------------------------------------------------------------

template<typename T>
Schema_t Number(typename T::T min, typename T::T max, typename T::T standard)
{
    return [=](unsigned int id, std::string const& name, Permission_t permission) {
        boost::intrusive_ptr<NumericInfo<T>> const info(new NumericInfo<T>(id, name, permission));
        info->SetMin(min);
        info->SetMax(max);
        info->SetDefault(standard);
        return InfoPtr(info);
    };
}

/// A list of as many numbers as the default has, and between what each of them lies.
template<typename T>
Schema_t Numbers(typename T::T min, typename T::T max, std::vector<typename T::T> standard)
{
    return
        [min, max, standard = std::move(standard)](unsigned int id, std::string const& name, Permission_t permission) {
            boost::intrusive_ptr<NumericArrayInfo<T>> const info(new NumericArrayInfo<T>(id, name, permission));
            info->SetMinSize(static_cast<unsigned int>(standard.size()));
            info->SetMaxSize(static_cast<unsigned int>(standard.size()));
            info->SetMin(min);
            info->SetMax(max);
            info->SetDefault(standard);
            return InfoPtr(info);
        };
}

Schema_t Text(unsigned int maxLength)
{
    return [=](unsigned int id, std::string const& name, Permission_t permission) {
        boost::intrusive_ptr<StringInfo> const info(new StringInfo(id, name, permission));
        info->SetMaxLength(maxLength);
        return InfoPtr(info);
    };
}

/// A list of at least as many texts as the default has.
Schema_t TextList(unsigned int maxSize, Texts standard)
{
    return
        [maxSize, standard = std::move(standard)](unsigned int id, std::string const& name, Permission_t permission) {
            boost::intrusive_ptr<StringArrayInfo> const info(new StringArrayInfo(id, name, permission));
            info->SetMaxSize(maxSize);
            info->SetMinSize(static_cast<unsigned int>(standard.size()));
            info->SetDefault(standard);
            return InfoPtr(info);
        };
}

Schema_t Flag(bool standard)
{
    return [=](unsigned int id, std::string const& name, Permission_t permission) {
        boost::intrusive_ptr<BoolInfo> const info(new BoolInfo(id, name, permission));
        info->SetDefault(standard);
        return InfoPtr(info);
    };
}

/// A flag that a device is not to change from its default.
Schema_t FixedFlag(bool value)
{
    return [=](unsigned int id, std::string const& name, Permission_t permission) {
        boost::intrusive_ptr<BoolInfo> const info(new BoolInfo(id, name, permission));
        info->SetDefault(value);
        info->SetFixed(true);
        return InfoPtr(info);
    };
}

Schema_t Choice(Names names)
{
    return [names = std::move(names)](unsigned int id, std::string const& name, Permission_t permission) {
        boost::intrusive_ptr<EnumInfo> const info(new EnumInfo(id, name, permission, false));
        for (auto const& [text, value] : names)
            info->AddElem({text, value, false});
        info->SetDefault(names.front().second);
        return InfoPtr(info);
    };
}

Schema_t Address()
{
    return [](unsigned int id, std::string const& name, Permission_t permission) {
        return InfoPtr(new AddrInfo(id, name, permission));
    };
}

Schema_t AddressAndPort()
{
    return [](unsigned int id, std::string const& name, Permission_t permission) {
        return InfoPtr(new EndpointInfo(id, name, permission));
    };
}

/// Members are numbered from 1 and belong together: they are set, sent and compared as one value.
Schema_t Group(std::vector<std::pair<std::string, Schema_t>> members)
{
    return [members = std::move(members)](unsigned int id, std::string const& name, Permission_t permission) {
        boost::intrusive_ptr<CompositeInfo> const info(new CompositeInfo(id, name, permission));
        unsigned int number = 0;
        for (auto const& [text, schema] : members)
            info->AddInfo(schema(++number, text, permission));
        return InfoPtr(info);
    };
}

Schema_t AddressWithPrefix(unsigned char bits)
{
    return Group({{"address", Address()}, {"prefix", Number<U8Traits>(1, bits, bits)}});
}

Texts const k_counters = {"rx_bytes",   "rx_packets", "rx_errors",  "rx_dropped", "tx_bytes",
                          "tx_packets", "tx_errors",  "tx_dropped", "multicast",  "collisions"};

Schema_t Counters()
{
    std::vector<std::pair<std::string, Schema_t>> members;
    for (auto const& name : k_counters)
        members.emplace_back(name, Number<U64Traits>(0, UINT64_MAX, 0));
    return Group(std::move(members));
}

// --- Sources -----------------------------------------------------------------------------------------------------

Texts OneOrNone(std::optional<std::string> const& text) { return text ? Texts{*text} : Texts{}; }

/// The contents of a file in the section's folder.
Source_t File(std::string name)
{
    return [name = std::move(name)](HostReader const& host, Place_t const& place) {
        return OneOrNone(host.File(place.folder + '/' + name));
    };
}

/// The same, or what the system's call says where there is no such file.
Texts FromFileOrSystem(HostReader const& host, Place_t const& place, char const* file,
                       std::optional<std::string> (HostReader::*system)(std::string const&) const)
{
    auto const text = host.File(place.folder + '/' + file);
    return OneOrNone(text ? text : (host.*system)(place.interface));
}

/// One bit of the interface's flags, which the host writes as a hexadecimal number.
Source_t FlagBit(unsigned int bit)
{
    return [bit](HostReader const& host, Place_t const& place) -> Texts {
        Texts const texts = FromFileOrSystem(host, place, "flags", &HostReader::Flags);
        if (texts.empty())
            return {};
        bool const hex = texts.front().starts_with("0x");
        char const* const end = texts.front().data() + texts.front().size();
        unsigned int flags = 0;
        auto const [stop, error] = std::from_chars(texts.front().data() + (hex ? 2 : 0), end, flags, hex ? 16 : 10);
        if (error != std::errc() || stop != end)
            return {};
        return {flags & bit ? "1" : "0"};
    };
}

/// All counters in one text; none if one is missing, since they are one value.
Texts CounterTexts(HostReader const& host, Place_t const& place)
{
    std::string text;
    for (auto const& name : k_counters) {
        auto const counter = host.File(place.folder + "/statistics/" + name);
        if (!counter)
            return {};
        text += *counter + ' ';
    }
    return {text};
}

Source_t Addresses(HostReader::Family_t family)
{
    return [family](HostReader const& host, Place_t const& place) { return host.Addresses(place.interface, family); };
}

Texts Gateways(HostReader const& host, Place_t const& place) { return host.Gateways(place.interface); }

/// The name servers with the port that they all listen on.
Texts NameServers(HostReader const& host, Place_t const&)
{
    Texts servers = host.ResolverWords("nameserver");
    for (auto& server : servers)
        server = (server.find(':') == std::string::npos ? server : '[' + server + ']') + ":53";
    return servers;
}

Texts SearchDomains(HostReader const& host, Place_t const&)
{
    std::string text;
    for (auto const& domain : host.ResolverWords("search"))
        text += domain + ' ';
    return {text};
}

// --- The sections ------------------------------------------------------------------------------------------------

/// A parameter whose value stands in a file of its name.
Parameter_t FromFile(unsigned int number, std::string const& name, std::string const& unit, Schema_t schema,
                     Permission_t permission = k_writable)
{
    return {number, 1, name, unit, permission, std::move(schema), File(name)};
}

Parameter_t FromElsewhere(unsigned int number, std::string const& name, std::string const& unit, Schema_t schema,
                          Source_t source, unsigned int repetitions = 1)
{
    return {number, repetitions, name, unit, k_readOnly, std::move(schema), std::move(source)};
}

SectionKind_t Host()
{
    return {"host",
            "/proc/sys/kernel",
            {
                FromFile(1, "hostname", "", Text(64)),
                FromFile(2, "ostype", "", Text(32), k_readOnly),
                FromFile(3, "osrelease", "", Text(128), k_readOnly),
                FromElsewhere(4, "search domains", "", TextList(6, {}), SearchDomains),
                FromElsewhere(16, "name server", "", AddressAndPort(), NameServers, 8),
            }};
}

SectionKind_t Interface()
{
    Source_t const mtu = [](HostReader const& host, Place_t const& place) {
        return FromFileOrSystem(host, place, "mtu", &HostReader::Mtu);
    };
    Parameter_t mtuRow = FromElsewhere(4, "mtu", "bytes", Number<U32Traits>(68, 9216, 1500), mtu);
    mtuRow.permission = k_writable;
    return {"interface/*",
            "/sys/class/net/*",
            {
                FromFile(1, "ifindex", "", Number<U32Traits>(1, INT32_MAX, 1), k_readOnly),
                FromFile(2, "type", "",
                         Choice({{"ethernet", 1},
                                 {"infiniband", 32},
                                 {"ppp", 512},
                                 {"tunnel", 768},
                                 {"tunnel6", 769},
                                 {"loopback", 772},
                                 {"sit", 776},
                                 {"gre", 778},
                                 {"wireless", 801},
                                 {"none", 65534}}),
                         k_readOnly),
                FromFile(3, "address", "", Text(17)),
                std::move(mtuRow),
                FromFile(5, "tx_queue_len", "packets", Number<U32Traits>(0, 100000, 1000)),
                FromFile(6, "operstate", "",
                         Choice({{"unknown", 0},
                                 {"notpresent", 1},
                                 {"down", 2},
                                 {"lowerlayerdown", 3},
                                 {"testing", 4},
                                 {"dormant", 5},
                                 {"up", 6}}),
                         k_readOnly),
                // A link without a speed says -1, which no device should have to report.
                FromFile(7, "speed", "Mbit/s", Number<S32Traits>(10, 400000, 1000), k_readOnly),
                FromFile(8, "duplex", "", Choice({{"half", 0}, {"full", 1}}), k_readOnly),
                FromFile(9, "carrier", "", Flag(true), k_readOnly),
                FromFile(10, "carrier_changes", "", Number<U32Traits>(0, UINT32_MAX, 0), k_readOnly),
                FromFile(11, "ifalias", "", Text(255)),
                FromElsewhere(12, "up", "", Flag(true), FlagBit(0x1)),
                FromElsewhere(13, "broadcast", "", Flag(true), FlagBit(0x2)),
                FromElsewhere(14, "loopback", "", Flag(false), FlagBit(0x8)),
                FromElsewhere(15, "pointtopoint", "", Flag(false), FlagBit(0x10)),
                FromElsewhere(16, "noarp", "", Flag(false), FlagBit(0x80)),
                FromElsewhere(17, "promiscuous", "", FixedFlag(false), FlagBit(0x100)),
                FromElsewhere(18, "multicast", "", Flag(true), FlagBit(0x1000)),
                FromElsewhere(19, "statistics", "", Counters(), CounterTexts),
            }};
}

SectionKind_t InterfaceIPv4()
{
    return {"interface/*/ipv4",
            "/proc/sys/net/ipv4/conf/*",
            {
                FromFile(1, "forwarding", "", Flag(false)),
                FromFile(2, "rp_filter", "", Choice({{"off", 0}, {"strict", 1}, {"loose", 2}})),
                FromFile(3, "accept_redirects", "", FixedFlag(false)),
                FromFile(4, "accept_source_route", "", Flag(false)),
                FromFile(5, "arp_announce", "", Number<U8Traits>(0, 2, 0)),
                FromFile(6, "arp_ignore", "", Number<U8Traits>(0, 8, 0)),
                FromFile(7, "log_martians", "", Flag(false)),
                FromElsewhere(24, "gateway", "", Address(), Gateways, 4),
                FromElsewhere(32, "address", "", AddressWithPrefix(32), Addresses(HostReader::Family_t::IPv4), 32),
            }};
}

SectionKind_t InterfaceIPv6()
{
    return {"interface/*/ipv6",
            "/proc/sys/net/ipv6/conf/*",
            {
                FromFile(1, "disable_ipv6", "", Flag(false)),
                FromFile(2, "hop_limit", "hops", Number<U16Traits>(1, 255, 64)),
                FromFile(3, "mtu", "bytes", Number<U32Traits>(1280, 9216, 1500)),
                FromFile(4, "accept_ra", "", Choice({{"no", 0}, {"unless forwarding", 1}, {"always", 2}})),
                FromFile(5, "autoconf", "", Flag(true)),
                FromFile(6, "forwarding", "", Flag(false)),
                FromFile(7, "dad_transmits", "probes", Number<U16Traits>(0, 10, 1)),
                FromFile(8, "use_tempaddr", "", Number<S32Traits>(-1, 2, 0)),
                FromElsewhere(32, "address", "", AddressWithPrefix(128), Addresses(HostReader::Family_t::IPv6), 32),
            }};
}

SectionKind_t Core()
{
    return {"protocol/core",
            "/proc/sys/net/core",
            {
                FromFile(1, "somaxconn", "connections", Number<U32Traits>(1, 65535, 4096)),
                FromFile(2, "rmem_default", "bytes", Number<U32Traits>(2304, INT32_MAX, 212992)),
                FromFile(3, "rmem_max", "bytes", Number<U32Traits>(2304, INT32_MAX, 212992)),
                FromFile(4, "wmem_default", "bytes", Number<U32Traits>(4608, INT32_MAX, 212992)),
                FromFile(5, "wmem_max", "bytes", Number<U32Traits>(4608, INT32_MAX, 212992)),
                FromFile(6, "netdev_max_backlog", "packets", Number<U32Traits>(1, 100000, 1000)),
                FromFile(7, "netdev_budget", "packets", Number<U32Traits>(1, 100000, 300)),
                FromFile(8, "optmem_max", "bytes", Number<U32Traits>(0, INT32_MAX, 131072)),
                FromFile(9, "default_qdisc", "", Text(15)),
            }};
}

SectionKind_t IPv4()
{
    return {
        "protocol/ipv4",
        "/proc/sys/net/ipv4",
        {
            FromFile(1, "ip_default_ttl", "hops", Number<U8Traits>(1, 255, 64)),
            FromFile(2, "ip_forward", "", Flag(false)),
            FromFile(3, "ip_local_port_range", "port", Numbers<U16Traits>(1024, 65535, {32768, 60999})),
            FromFile(4, "ip_unprivileged_port_start", "port", Number<U16Traits>(0, 65535, 1024)),
            FromFile(5, "ip_no_pmtu_disc", "", Choice({{"discover", 0}, {"never", 1}, {"ignore", 2}, {"hardened", 3}})),
            FromFile(6, "ip_nonlocal_bind", "", Flag(false)),
            FromFile(7, "ipfrag_time", "s", Number<U32Traits>(1, 600, 30)),
            FromFile(8, "icmp_ratelimit", "ms", Number<U32Traits>(0, INT32_MAX, 1000)),
            FromFile(9, "icmp_echo_ignore_all", "", Flag(false)),
            FromFile(10, "icmp_echo_ignore_broadcasts", "", FixedFlag(true)),
        }};
}

SectionKind_t IPv6()
{
    return {"protocol/ipv6",
            "/proc/sys/net/ipv6",
            {
                FromFile(1, "bindv6only", "", Flag(false)),
                FromFile(2, "auto_flowlabels", "", Number<U16Traits>(0, 3, 1)),
                FromFile(3, "ip6frag_time", "s", Number<U32Traits>(1, 600, 60)),
                FromFile(4, "mld_qrv", "", Number<U32Traits>(1, 255, 2)),
            }};
}

SectionKind_t Tcp()
{
    return {"protocol/tcp",
            "/proc/sys/net/ipv4",
            {
                FromFile(1, "tcp_congestion_control", "", Text(15)),
                FromFile(2, "tcp_available_congestion_control", "", TextList(16, {"reno"}), k_readOnly),
                FromFile(3, "tcp_rmem", "bytes", Numbers<U32Traits>(2304, 16777216, {4096, 131072, 6291456})),
                FromFile(4, "tcp_wmem", "bytes", Numbers<U32Traits>(4096, 16777216, {4096, 16384, 4194304})),
                FromFile(5, "tcp_mem", "pages", Numbers<U64Traits>(0, INT64_MAX, {0, 0, 0})),
                FromFile(6, "tcp_keepalive_time", "s", Number<U16Traits>(1, 32767, 7200)),
                FromFile(7, "tcp_keepalive_intvl", "s", Number<U16Traits>(1, 32767, 75)),
                FromFile(8, "tcp_keepalive_probes", "probes", Number<U8Traits>(1, 127, 9)),
                FromFile(9, "tcp_syn_retries", "", Number<U8Traits>(1, 127, 6)),
                FromFile(10, "tcp_fin_timeout", "s", Number<U16Traits>(1, 600, 60)),
                FromFile(11, "tcp_syncookies", "", Choice({{"off", 0}, {"on overflow", 1}, {"always", 2}})),
                FromFile(12, "tcp_ecn", "", Number<U8Traits>(0, 5, 2)),
                FromFile(13, "tcp_sack", "", Flag(true)),
                FromFile(14, "tcp_window_scaling", "", Flag(true)),
                FromFile(15, "tcp_timestamps", "", Choice({{"off", 0}, {"random offset", 1}, {"plain", 2}})),
                FromFile(16, "tcp_max_syn_backlog", "connections", Number<U32Traits>(1, INT32_MAX, 1024)),
            }};
}

SectionKind_t Udp()
{
    return {"protocol/udp",
            "/proc/sys/net/ipv4",
            {
                FromFile(1, "udp_rmem_min", "bytes", Number<U32Traits>(2304, INT32_MAX, 4096)),
                FromFile(2, "udp_wmem_min", "bytes", Number<U32Traits>(4096, INT32_MAX, 4096)),
                FromFile(3, "udp_mem", "pages", Numbers<U64Traits>(0, INT64_MAX, {0, 0, 0})),
                FromFile(4, "udp_early_demux", "", Flag(true)),
            }};
}

} // namespace

HostInfoHolder::HostInfoHolder(InfoPtr const& info, std::string unit) : InfoHolder(info), m_unit(std::move(unit)) {}

HostInfoHolder* HostInfoHolder::DeepCopy() const { return new HostInfoHolder(InfoPtr(GetInfo()->DeepCopy()), m_unit); }

std::string HostInfoHolder::GetUnit() const { return m_unit; }

std::vector<SectionKind_t> const& SectionKinds()
{
    static std::vector<SectionKind_t> const kinds = {
        Host(),          {"interface", "", {}},
        Interface(),     InterfaceIPv4(),
        InterfaceIPv6(), {"protocol", "", {}},
        Core(),          IPv4(),
        IPv6(),          Tcp(),
        Udp(),
    };
    return kinds;
}

boost::intrusive_ptr<InfoHolder const> MakeInfo(InfoItemSectionId const& section, Parameter_t const& parameter,
                                                unsigned int repetition)
{
    std::string const name =
        parameter.repetitions == 1 ? parameter.name : parameter.name + ' ' + std::to_string(repetition + 1);
    unsigned int const id = section.CreateInfoItemId(parameter.number + repetition);
    return boost::intrusive_ptr<InfoHolder const>(
        new HostInfoHolder(parameter.schema(id, name, parameter.permission), parameter.unit));
}

std::string WithInterface(std::string path, std::string const& interface)
{
    std::size_t const star = path.find(k_anyInterface);
    return star == std::string::npos ? path : path.replace(star, 1, interface);
}

} // namespace HostNetwork
