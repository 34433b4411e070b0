#pragma once

#include <Net/Export.h>

#include <array>
#include <cstdint>
#include <string>

namespace boost::asio::ip {
class address;
}

namespace Net {

/// A numeric network address, IPv4 or IPv6, the latter with its zone.
///
/// It stands for an `ip::address` of Asio and converts both ways, but holds the bytes itself, so that this header does
/// not bring Asio along. A plain value: distinct objects may be used on distinct threads.
class NET_API AddrIp
{
public:
    /// The unspecified address, IPv4 `0.0.0.0`.
    AddrIp() = default;

    AddrIp(boost::asio::ip::address const& address);

    /// A dotted IPv4 or an IPv6 text, the latter without brackets and with or without a zone (`fe80::1%eth0`). Any
    /// other text, names included, gives the unspecified address; nothing is looked up.
    AddrIp(std::string const& text);

    /// Null gives the unspecified address.
    AddrIp(char const* text);

    /// The same address for Asio. To call it, include `<boost/asio/ip/address.hpp>`.
    boost::asio::ip::address GetAddress() const;

    /// The canonical text: `0.0.0.0` for the unspecified address, IPv6 without brackets.
    std::string ToString() const;

    /// False for `0.0.0.0` and `::`.
    bool IsSpecified() const;

    /// Whether this is a loopback address: all of 127.0.0.0/8, `::1`, and the former mapped into IPv6.
    bool IsLocalhost() const;

    /// Same family, same bytes, same zone: an IPv4 address and its form mapped into IPv6 differ.
    friend bool operator==(AddrIp const&, AddrIp const&) = default;

private:
    std::array<unsigned char, 16> m_bytes{}; ///< network order; IPv4 uses the first four
    std::uint32_t m_zone = 0;
    bool m_isV6 = false;
};

} // namespace Net
