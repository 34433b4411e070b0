#include "NumericText.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace Net::Detail {

namespace ip = boost::asio::ip;

namespace {

/// An IPv4 address that stands inside an IPv6 one, taken out; any other as it is.
ip::address Unmapped(ip::address const& address)
{
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6());
    return address;
}

} // namespace

std::optional<ip::address> ParseIp(std::string_view text)
{
    if (text.find('\0') != text.npos)
        return {};
    boost::system::error_code error;
    ip::address const address = ip::make_address(std::string(text), error);
    if (error)
        return {};
    return address;
}

bool IsIpv6Text(std::string_view text)
{
    auto const percent = text.find('%');
    if (percent != text.npos) {
        auto const zone = text.substr(percent + 1);
        if (zone.empty() || zone.find(':') != zone.npos)
            return false;
    }
    return ParseIp(text.substr(0, percent)).has_value();
}

std::optional<std::uint16_t> ParsePort(std::string_view text)
{
    // More digits than a port has are no port: a text could otherwise be far longer than what it prints as, and readers
    // that step by the printed length would read such texts over and over.
    constexpr std::size_t maxDigits = 5;
    std::uint16_t port = 0;
    if (text.empty())
        return port;
    if (text.size() > maxDigits)
        return {};
    auto const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc{} || stop != end)
        return {};
    return port;
}

bool IsSpecified(ip::address const& address) { return !Unmapped(address).is_unspecified(); }

bool IsLoopback(ip::address const& address) { return Unmapped(address).is_loopback(); }

} // namespace Net::Detail
