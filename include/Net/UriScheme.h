#pragma once

#include <Net/Export.h>

#include <string>

namespace Net {

/// The scheme of a URI, such as `rtsp`. The case of a scheme has no meaning, so it is kept in lower case. A plain
/// value: distinct objects may be used on distinct threads.
class NET_API UriScheme
{
public:
    /// No scheme: an empty text.
    UriScheme() = default;

    /// ASCII letters become lower case; nothing else is changed or checked.
    explicit UriScheme(std::string text);

    std::string const& GetString() const noexcept { return m_text; }

    friend bool operator==(UriScheme const&, UriScheme const&) = default;

private:
    std::string m_text;
};

} // namespace Net
