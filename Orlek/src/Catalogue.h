#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orlek::Detail {

/// The texts of one language: a table as `msgfmt` compiles it (.mo), looked up where it lies. Immutable, so that any
/// number of threads may look up at once.
class Catalogue
{
public:
    /// Takes a compiled catalogue in either byte order. Throws `std::runtime_error` unless all of it lies inside
    /// `content`, its keys ascend and its texts are UTF-8 by their own account; what passes may then be trusted.
    Catalogue(std::string language, std::vector<char> content);

    /// Whether this is the language `name`, which may have "-" where ours has "_".
    bool IsLanguage(std::string_view name) const noexcept;

    /// The text for a key that holds no zero, or null. It lives as long as the catalogue.
    char const* Find(std::string_view key) const noexcept;

    auto operator<=>(Catalogue const& other) const = default;

private:
    std::uint32_t Word_(std::size_t offset) const noexcept;
    char const* Text_(std::size_t table, std::size_t index) const noexcept;
    std::size_t CheckedTable_(std::size_t headerOffset) const;
    void RequireAscendingKeys_() const;
    void RequireUtf8_() const;

    std::string m_language;
    std::vector<char> m_content;
    bool m_isBig = false;
    std::size_t m_count = 0;
    std::size_t m_keys = 0;
    std::size_t m_texts = 0;
};

/// The catalogues `<directory>/<language>/LC_MESSAGES/<domain>.mo` by the names of their folders, without the damaged
/// ones.
std::vector<Catalogue> ReadCatalogues(std::string const& directory, std::string const& domain);

} // namespace Orlek::Detail
