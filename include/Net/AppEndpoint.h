#pragma once

#include <Net/Endpoint.h>
#include <Net/Export.h>
#include <Net/Uri.h>

#include <string>

namespace Net {

/// Where an application listens and how to speak to it, as a URI. A plain value: distinct objects may be used on
/// distinct threads.
class NET_API AppEndpoint
{
public:
    /// The empty URI.
    AppEndpoint() = default;

    explicit AppEndpoint(Uri const& uri);

    /// From the text of a URI; nothing is refused.
    explicit AppEndpoint(std::string const& uri);

    Uri const& GetUri() const noexcept { return m_uri; }

    /// Host and port of the URI, see `Uri::GetEndpoint`.
    Endpoint<AddrStr> const& GetEndpoint() const noexcept { return m_uri.GetEndpoint(); }

    /// The whole URI: user part, path and query included, the scheme in lower case.
    std::string const& ToString() const noexcept { return m_uri.ToString(); }

    friend bool operator==(AppEndpoint const&, AppEndpoint const&) = default;

private:
    Uri m_uri;
};

} // namespace Net
