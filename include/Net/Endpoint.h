#pragma once

#include <Net/AddrIp.h>
#include <Net/AddrStr.h>
#include <Net/Export.h>

#include <concepts>
#include <cstdint>
#include <string>

namespace Net {

/// An address and a port; port 0 means that none is set.
///
/// There are two instances, over the text address `AddrStr` and over the numeric `AddrIp`. A plain value: distinct
/// objects may be used on distinct threads.
template<class Addr>
class NET_API Endpoint
{
public:
    using AddrType = Addr;

    /// The unspecified address and port 0.
    Endpoint() = default;

    Endpoint(Addr const& addr, std::uint16_t port = 0) : m_addr(addr), m_port(port) {}

    /// Reads the text of an address and a port. Every text gives an endpoint; nothing is refused.
    ///
    /// - The port stands behind the last colon: one to five decimal digits up to 65535, or nothing for port 0.
    /// - IPv6 with a port stands in brackets, `[::1]:80`. Without brackets such a text is all address, port 0.
    /// - If what follows the last colon is no port (a sign, a blank, another byte, a larger number, the path of a URL)
    ///   or if there is no colon, the whole text is the address and the port is 0: nothing is guessed or dropped.
    ///
    /// A numeric endpoint turns an address that is not numeric into the unspecified one; the port stays.
    ///
    /// `FromString(e.ToString()) == e` for every endpoint but one whose text address is IPv6 in brackets already, which
    /// no text gives: it loses them.
    static Endpoint FromString(std::string const& text);

    /// The address, a colon and the port, also port 0. An IPv6 address, with or without zone, stands in brackets, as
    /// does a text that would be one together with the port; any other, also one with colons such as a URL, stands as
    /// it is.
    std::string ToString() const;

    Addr const& GetAddr() const noexcept { return m_addr; }
    void SetAddr(Addr const& addr) { m_addr = addr; }

    std::uint16_t GetPort() const noexcept { return m_port; }
    void SetPort(std::uint16_t port) noexcept { m_port = port; }

    /// Whether there is enough to connect to: an address (`IsSpecified`) and a port other than 0.
    bool IsFullySpecified() const;

    /// Whether the address is the local host (`IsLocalhost`); the port has no say in it.
    bool IsLocalhostAddr() const;

    /// The same endpoint with a numeric address. A name is not looked up, not even `localhost`: it gives the
    /// unspecified address, with the port kept.
    Endpoint<AddrIp> ToIp() const requires std::same_as<Addr, AddrStr>;

    friend bool operator==(Endpoint const&, Endpoint const&) = default;

private:
    Addr m_addr;
    std::uint16_t m_port = 0;
};

extern template class Endpoint<AddrIp>;
extern template class Endpoint<AddrStr>;

} // namespace Net
