#include "Catalogue.h"

#include <boost/endian/conversion.hpp>
#include <boost/locale/gnu_gettext.hpp>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Orlek::Detail {

namespace {

constexpr std::size_t k_headerSize = 28;
constexpr std::size_t k_countOffset = 8;
constexpr std::size_t k_keysOffset = 12;
constexpr std::size_t k_textsOffset = 16;
constexpr std::size_t k_hashSizeOffset = 20;

/// The words of a compiled catalogue, in whichever byte order it was written.
class Words
{
public:
    explicit Words(std::vector<char> const& content) : m_content(content)
    {
        constexpr std::uint32_t magic = 0x950412de;
        if (content.size() < k_headerSize)
            throw std::runtime_error("Message catalogue too short");
        m_isBig = boost::endian::load_big_u32(At_(0)) == magic;
        if (!m_isBig && boost::endian::load_little_u32(At_(0)) != magic)
            throw std::runtime_error("No message catalogue");
    }

    std::size_t Get(std::size_t offset) const
    {
        return m_isBig ? boost::endian::load_big_u32(At_(offset)) : boost::endian::load_little_u32(At_(offset));
    }

private:
    unsigned char const* At_(std::size_t offset) const
    {
        return reinterpret_cast<unsigned char const*>(m_content.data()) + offset;
    }

    std::vector<char> const& m_content;
    bool m_isBig = false;
};

/// The loader trusts the offsets of keys, so they are tested before it sees them: each of the two tables and each text
/// that they point to must lie inside the file, the texts with a zero at their end.
void RequireSound(std::vector<char> const& content)
{
    Words const words(content);
    auto const size = content.size();
    auto const count = words.Get(k_countOffset);
    for (auto const header : {k_keysOffset, k_textsOffset}) {
        auto const table = words.Get(header);
        if (table > size || count > (size - table) / 8)
            throw std::runtime_error("Table of a message catalogue lies outside");
        for (std::size_t i = 0; i < count; ++i) {
            auto const length = words.Get(table + 8 * i);
            auto const text = words.Get(table + 8 * i + 4);
            if (text >= size || length >= size - text || content[text + length] != '\0')
                throw std::runtime_error("Text of a message catalogue lies outside");
        }
    }
}

std::vector<char> ReadFile(std::filesystem::path const& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace

Catalogue::Catalogue(std::string language, std::vector<char> content) : m_language(std::move(language))
{
    RequireSound(content);
    // Without the hash table the loader makes an index of its own and need not trust the one in the file.
    std::fill_n(content.begin() + k_hashSizeOffset, 4, '\0');

    boost::locale::gnu_gettext::messages_info info;
    info.language = "any";
    info.encoding = "UTF-8";
    info.paths.emplace_back("built-in");
    info.domains.emplace_back("any");
    info.callback = [&content](std::string const&, std::string const&) { return content; };
    auto* const messages = boost::locale::gnu_gettext::create_messages_facet<char>(info);
    m_locale = std::locale(std::locale::classic(), messages);
    m_messages = messages;
}

bool Catalogue::IsLanguage(std::string_view name) const noexcept
{
    return std::equal(name.begin(), name.end(), m_language.begin(), m_language.end(),
                      [](char theirs, char ours) { return theirs == ours || (theirs == '-' && ours == '_'); });
}

char const* Catalogue::Find(char const* key) const { return m_messages->get(0, nullptr, key); }

std::vector<Catalogue> ReadCatalogues(std::string const& directory, std::string const& domain)
{
    std::vector<Catalogue> catalogues;
    std::error_code error;
    std::filesystem::directory_iterator entry(directory, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        try {
            auto content = ReadFile(entry->path() / "LC_MESSAGES" / (domain + ".mo"));
            catalogues.emplace_back(entry->path().filename().string(), std::move(content));
        } catch (std::bad_alloc const&) {
            throw;
        } catch (std::exception const&) {
            continue; // one damaged file costs its own texts only
        }
    }
    return catalogues;
}

} // namespace Orlek::Detail
