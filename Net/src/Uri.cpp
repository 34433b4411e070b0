#include "NumericText.h"

#include <Net/Uri.h>
#include <Net/UriScheme.h>

#include <boost/url/grammar/alnum_chars.hpp>
#include <boost/url/grammar/alpha_chars.hpp>
#include <boost/url/grammar/charset.hpp>
#include <boost/url/grammar/ci_string.hpp>
#include <boost/url/parse.hpp>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace Net {

namespace urls = boost::urls;

namespace {

/// The length of the scheme at the front of the text, 0 if there is none.
std::size_t SchemeLength(std::string_view text)
{
    auto const colon = text.find(':');
    if (colon == text.npos || colon == 0 || !urls::grammar::alpha_chars(text.front()))
        return 0;
    auto const scheme = text.substr(0, colon);
    bool const fits = std::ranges::all_of(
        scheme, [](char c) { return urls::grammar::alnum_chars(c) || c == '+' || c == '-' || c == '.'; });
    return fits ? colon : 0;
}

/// The host and port of a well-formed URI, nothing for any other text.
std::optional<Endpoint<AddrStr>> ParseEndpoint(std::string_view text)
{
    auto const uri = urls::parse_uri(text);
    if (!uri)
        return {};
    // The library lets a path without a slash follow the authority, so that "a@b@c" would name the host b. It also
    // wraps ports round at 65536. Neither is a URI.
    std::string_view const path = uri->encoded_path();
    if (uri->has_authority() && !path.empty() && path.front() != '/')
        return {};
    auto const port = Detail::ParsePort(uri->port());
    if (!port)
        return {};
    return Endpoint<AddrStr>(AddrStr(uri->host_address()), *port);
}

} // namespace

UriScheme::UriScheme(std::string text) : m_text(std::move(text))
{
    std::ranges::transform(m_text, m_text.begin(), urls::grammar::to_lower);
}

Uri::Uri(std::string text) : m_text(std::move(text))
{
    auto const length = SchemeLength(m_text);
    m_scheme = UriScheme(m_text.substr(0, length));
    m_text.replace(0, length, m_scheme.GetString());
    if (auto endpoint = ParseEndpoint(m_text)) {
        m_endpoint = *std::move(endpoint);
        m_isWellFormed = true;
    }
}

} // namespace Net
