#include "Catalogue.h"
#include "EmbeddedCatalogues.h"

#include <Orlek/Localization.h>

#include <mutex>
#include <shared_mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace Orlek {

namespace {

constexpr char const* k_domain = "legacyif";
constexpr std::string_view k_lastResort = "en";

std::vector<Detail::Catalogue> LoadEmbedded()
{
    std::vector<Detail::Catalogue> catalogues;
    for (auto const& [language, content] : Detail::GetEmbeddedCatalogues())
        catalogues.emplace_back(std::string(language), std::vector<char>(content.begin(), content.end()));
    return catalogues;
}

class Texts
{
public:
    /// Never destroyed, so that static destructors still get their texts.
    static Texts& Instance()
    {
        static auto* const instance = new Texts;
        return *instance;
    }

    std::string Find(std::string const& key, std::string const& language) const
    {
        // The empty key is the catalogue's own header, and one with a zero inside would be taken for its head.
        if (key.empty() || key.find('\0') != std::string::npos)
            return key;
        std::shared_lock const lock(m_mutex);
        for (std::string_view const name :
             {std::string_view(language), std::string_view(m_defaultLanguage), k_lastResort})
            if (auto const* const text = FindNamed_(key.c_str(), name))
                return text;
        return key;
    }

    std::string GetDefaultLanguage() const
    {
        std::shared_lock const lock(m_mutex);
        return m_defaultLanguage;
    }

    void SetDefaultLanguage(std::string language)
    {
        std::unique_lock const lock(m_mutex);
        m_defaultLanguage.swap(language);
    }

    void SetOverrides(std::vector<Detail::Catalogue> catalogues)
    {
        std::unique_lock const lock(m_mutex);
        m_overrides.swap(catalogues);
    }

private:
    Texts() = default;

    /// Under the full name, then without the country.
    char const* FindNamed_(char const* key, std::string_view name) const
    {
        auto const full = name.substr(0, name.find_first_of(".@"));
        auto const primary = full.substr(0, full.find_first_of("_-"));
        auto const* const text = FindExact_(key, full);
        return text || primary == full ? text : FindExact_(key, primary);
    }

    char const* FindExact_(char const* key, std::string_view language) const
    {
        if (language.empty())
            return nullptr;
        for (auto const* const catalogues : {&m_overrides, &m_embedded})
            for (auto const& catalogue : *catalogues)
                if (catalogue.IsLanguage(language))
                    if (auto const* const text = catalogue.Find(key); text && *text)
                        return text;
        return nullptr;
    }

    mutable std::shared_mutex m_mutex;
    std::string m_defaultLanguage{k_lastResort};
    std::vector<Detail::Catalogue> m_overrides;
    std::vector<Detail::Catalogue> const m_embedded = LoadEmbedded();
};

} // namespace

LocalizationHelper Localization::GetString(std::string const& key, std::string const& language)
{
    return LocalizationHelper(Texts::Instance().Find(key, language));
}

std::string Localization::GetDefaultLanguage() { return Texts::Instance().GetDefaultLanguage(); }

void Localization::SetDefaultLanguage(std::string const& language) { Texts::Instance().SetDefaultLanguage(language); }

std::size_t Localization::SetCatalogueDirectory(std::string const& directory)
{
    auto catalogues = Detail::ReadCatalogues(directory, k_domain);
    auto const count = catalogues.size();
    Texts::Instance().SetOverrides(std::move(catalogues));
    return count;
}

} // namespace Orlek
