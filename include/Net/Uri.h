#pragma once

#include <Net/Endpoint.h>
#include <Net/Export.h>
#include <Net/UriScheme.h>

#include <string>

namespace Net {

/// A URI as text, with the parts that say where and how to connect.
///
/// Any text makes one, since URIs come from devices whose user names and paths often break the grammar. Such a text is
/// kept and gives its scheme, but names no place. A plain value: distinct objects may be used on distinct threads.
class NET_API Uri
{
public:
    /// The empty text, which is not well formed.
    Uri() = default;

    explicit Uri(std::string text);

    /// Whether the text is an absolute URI by the grammar of RFC 3986, with a port, if any, up to 65535.
    bool IsWellFormed() const noexcept { return m_isWellFormed; }

    /// What stands ahead of the first colon, if that is made as a scheme is: a letter, then letters, digits, plus
    /// signs, hyphens and dots. Otherwise empty. Given for a text that is not well formed, too.
    UriScheme const& GetScheme() const noexcept { return m_scheme; }

    /// Host and port. The host is percent-decoded and without the brackets of IPv6; the port is 0 if none is given,
    /// whatever the scheme. The user part, path, query and fragment have no part in it. The default endpoint if the
    /// text is not well formed or has no host; IPv6 with a zone is not well formed in a URI.
    Endpoint<AddrStr> const& GetEndpoint() const noexcept { return m_endpoint; }

    /// The text as it was given, but for its scheme, which is in lower case.
    std::string const& ToString() const noexcept { return m_text; }

    friend bool operator==(Uri const& a, Uri const& b) { return a.m_text == b.m_text; }

private:
    std::string m_text;
    UriScheme m_scheme;
    Endpoint<AddrStr> m_endpoint;
    bool m_isWellFormed = false;
};

} // namespace Net
