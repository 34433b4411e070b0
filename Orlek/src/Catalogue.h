#pragma once

#include <boost/locale/message.hpp>

#include <locale>
#include <string>
#include <string_view>
#include <vector>

namespace Orlek::Detail {

/// The texts of one language. Immutable, so that any number of threads may look up at once.
class Catalogue
{
public:
    /// Takes a compiled catalogue (.mo). Throws `std::runtime_error` if it is damaged.
    Catalogue(std::string language, std::vector<char> content);

    /// Whether this is the language `name`, which may have "-" where ours has "_".
    bool IsLanguage(std::string_view name) const noexcept;

    /// The text for a key, or null. It lives as long as the catalogue.
    char const* Find(char const* key) const;

private:
    std::string m_language;
    std::locale m_locale; // owns the messages
    boost::locale::message_format<char> const* m_messages;
};

/// The catalogues `<directory>/<language>/LC_MESSAGES/<domain>.mo`, without the damaged ones.
std::vector<Catalogue> ReadCatalogues(std::string const& directory, std::string const& domain);

} // namespace Orlek::Detail
