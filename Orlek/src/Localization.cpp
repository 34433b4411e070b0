#include "Catalogue.h"
#include "EmbeddedCatalogues.h"

#include <Orlek/Localization.h>

#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orlek {

namespace {

using Catalogues = std::vector<Detail::Catalogue>;

constexpr char const* k_domain = "legacyif";
constexpr std::string_view k_lastResort = "en";

Catalogues LoadEmbedded()
{
    Catalogues catalogues;
    for (auto const& [language, content] : Detail::GetEmbeddedCatalogues())
        catalogues.emplace_back(std::string(language), std::vector<char>(content.begin(), content.end()));
    return catalogues;
}

/// A value that is read without a lock. Each value that ever stood is kept, since somebody may still read it; one that
/// comes again costs nothing, so a program that goes back and forth between a few does not grow.
template<typename T>
class Published
{
public:
    explicit Published(T first) { Set(std::move(first)); }

    T const& Get() const noexcept { return *m_current.load(std::memory_order_acquire); }

    void Set(T value)
    {
        std::lock_guard const lock(m_mutex);
        m_current.store(&*m_values.insert(std::move(value)).first, std::memory_order_release);
    }

private:
    std::atomic<T const*> m_current;
    std::mutex m_mutex;
    std::set<T> m_values;
};

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
        auto const& overrides = m_overrides.Get();
        for (std::string_view const name :
             {std::string_view(language), std::string_view(m_defaultLanguage.Get()), k_lastResort})
            if (auto const* const text = FindNamed_(overrides, key, name))
                return text;
        return key;
    }

    std::string const& GetDefaultLanguage() const noexcept { return m_defaultLanguage.Get(); }
    void SetDefaultLanguage(std::string const& language) { m_defaultLanguage.Set(language); }
    void SetOverrides(Catalogues catalogues) { m_overrides.Set(std::move(catalogues)); }

private:
    Texts() = default;

    /// Under the full name, then without the country.
    char const* FindNamed_(Catalogues const& overrides, std::string_view key, std::string_view name) const
    {
        auto const full = name.substr(0, name.find_first_of(".@"));
        auto const primary = full.substr(0, full.find_first_of("_-"));
        auto const* const text = FindExact_(overrides, key, full);
        return text || primary == full ? text : FindExact_(overrides, key, primary);
    }

    char const* FindExact_(Catalogues const& overrides, std::string_view key, std::string_view language) const
    {
        if (language.empty())
            return nullptr;
        for (auto const* const catalogues : {&overrides, &m_embedded})
            for (auto const& catalogue : *catalogues)
                if (catalogue.IsLanguage(language))
                    if (auto const* const text = catalogue.Find(key); text && *text)
                        return text;
        return nullptr;
    }

    Published<std::string> m_defaultLanguage{std::string(k_lastResort)};
    Published<Catalogues> m_overrides{Catalogues()};
    Catalogues const m_embedded = LoadEmbedded();
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
