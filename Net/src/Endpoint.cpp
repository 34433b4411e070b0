#include "NumericText.h"

#include <Net/Endpoint.h>

#include <charconv>
#include <iterator>
#include <limits>
#include <string_view>
#include <type_traits>

namespace Net {

namespace {

/// Whether an address stands in brackets ahead of its port: IPv6 does, and so does what the port would complete to
/// IPv6.
bool NeedsBrackets(std::string_view address, std::uint16_t port)
{
    if (address.find(':') == address.npos)
        return false;
    return Detail::IsIpv6Text(address) || Detail::IsIpv6Text(std::string(address) + ':' + std::to_string(port));
}

/// The inside of brackets that are needed; any other text as it is.
std::string_view WithoutBrackets(std::string_view text, std::uint16_t port)
{
    if (text.size() < 2 || text.front() != '[' || text.back() != ']')
        return text;
    auto const inside = text.substr(1, text.size() - 2);
    return NeedsBrackets(inside, port) ? inside : text;
}

} // namespace

template<class Addr>
Endpoint<Addr> Endpoint<Addr>::FromString(std::string const& text)
{
    std::string_view address = text;
    std::uint16_t port = 0;
    if (auto const colon = address.rfind(':'); colon != address.npos && !Detail::IsIpv6Text(address)) {
        if (auto const parsed = Detail::ParsePort(address.substr(colon + 1))) {
            port = *parsed;
            address = address.substr(0, colon);
        }
    }
    return Endpoint(Addr(std::string(WithoutBrackets(address, port))), port);
}

template<class Addr>
std::string Endpoint<Addr>::ToString() const
{
    auto const& address = m_addr.ToString();
    char port[std::numeric_limits<std::uint16_t>::digits10 + 1];
    auto const end = std::to_chars(port, std::end(port), m_port).ptr;
    bool const brackets = NeedsBrackets(address, m_port);

    std::string text;
    text.reserve(address.size() + sizeof("[]:") + sizeof(port));
    if (brackets)
        text += '[';
    text += address;
    if (brackets)
        text += ']';
    text += ':';
    text.append(port, end);
    return text;
}

template<class Addr>
bool Endpoint<Addr>::IsFullySpecified() const
{
    return m_port != 0 && m_addr.IsSpecified();
}

template<class Addr>
bool Endpoint<Addr>::IsLocalhostAddr() const
{
    return m_addr.IsLocalhost();
}

template<class Addr>
Endpoint<AddrIp> Endpoint<Addr>::ToIp() const requires std::same_as<Addr, AddrStr>
{
    return Endpoint<AddrIp>(AddrIp(m_addr.ToString()), m_port);
}

template class Endpoint<AddrIp>;
template class Endpoint<AddrStr>;

} // namespace Net
