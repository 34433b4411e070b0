#pragma once

#include <Net/Export.h>

#include <string>

namespace Net {

/// A network address as text: a host name, a numeric address, or whatever else a peer understands, up to a whole URL.
///
/// The text is kept byte for byte; nothing is trimmed, checked or looked up, and two addresses are equal if their texts
/// are. IPv6 addresses stand without brackets, `fe80::1%eth0`. A plain value: distinct objects may be used on distinct
/// threads.
class NET_API AddrStr
{
public:
    /// The unspecified address, whose text is empty.
    AddrStr() = default;

    AddrStr(std::string text);

    /// Null is the unspecified address.
    AddrStr(char const* text);

    /// The text, empty for the unspecified address.
    std::string const& ToString() const noexcept { return m_text; }

    /// Whether the text names a place that one can connect to: it is neither empty nor a numeric wildcard (`0.0.0.0`,
    /// `::`). Whether a name exists is not asked.
    bool IsSpecified() const;

    /// Whether the text is `localhost` in any case, or a numeric loopback address: all of 127.0.0.0/8, `::1`, and the
    /// former mapped into IPv6 as RFC 4291 tells. Other names are not looked up, and a URL is no address here.
    bool IsLocalhost() const;

    friend bool operator==(AddrStr const&, AddrStr const&) = default;

private:
    std::string m_text;
};

} // namespace Net
