#include "Catalogue.h"

#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Orlek::Detail {

namespace {

// The header of a compiled catalogue, and the two tables that it points to: for each text its length and its place,
// keys in one table and what they stand for in the other.
constexpr std::size_t k_headerSize = 28;
constexpr std::size_t k_revisionOffset = 4;
constexpr std::size_t k_countOffset = 8;
constexpr std::size_t k_keysOffset = 12;
constexpr std::size_t k_textsOffset = 16;
constexpr std::size_t k_rowSize = 8;
constexpr std::uint32_t k_magic = 0x950412de;
constexpr std::uint32_t k_lastMajorRevision = 1;

std::uint32_t LoadWord(char const* at, bool isBig) noexcept
{
    auto const* const bytes = reinterpret_cast<unsigned char const*>(at);
    return isBig ? boost::endian::load_big_u32(bytes) : boost::endian::load_little_u32(bytes);
}

std::vector<char> ReadFile(std::filesystem::path const& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace

Catalogue::Catalogue(std::string language, std::vector<char> content)
    : m_language(std::move(language)), m_content(std::move(content))
{
    if (m_content.size() < k_headerSize)
        throw std::runtime_error("Message catalogue too short");
    m_isBig = LoadWord(m_content.data(), true) == k_magic;
    if (Word_(0) != k_magic || Word_(k_revisionOffset) >> 16 > k_lastMajorRevision)
        throw std::runtime_error("No message catalogue");
    m_count = Word_(k_countOffset);
    m_keys = CheckedTable_(k_keysOffset);
    m_texts = CheckedTable_(k_textsOffset);
    RequireAscendingKeys_();
    RequireUtf8_();
}

bool Catalogue::IsLanguage(std::string_view name) const noexcept
{
    return std::equal(name.begin(), name.end(), m_language.begin(), m_language.end(),
                      [](char theirs, char ours) { return theirs == ours || (theirs == '-' && ours == '_'); });
}

char const* Catalogue::Find(std::string_view key) const noexcept
{
    std::size_t first = 0;
    for (auto last = m_count; first < last;) {
        auto const middle = first + (last - first) / 2;
        if (std::string_view(Text_(m_keys, middle)) < key)
            first = middle + 1;
        else
            last = middle;
    }
    return first < m_count && std::string_view(Text_(m_keys, first)) == key ? Text_(m_texts, first) : nullptr;
}

std::uint32_t Catalogue::Word_(std::size_t offset) const noexcept { return LoadWord(&m_content[offset], m_isBig); }

char const* Catalogue::Text_(std::size_t table, std::size_t index) const noexcept
{
    return &m_content[Word_(table + k_rowSize * index + 4)];
}

/// A table whose rows and texts all lie inside the file, each text with a zero at its end.
std::size_t Catalogue::CheckedTable_(std::size_t headerOffset) const
{
    auto const size = m_content.size();
    std::size_t const table = Word_(headerOffset);
    if (table > size || m_count > (size - table) / k_rowSize)
        throw std::runtime_error("Table of a message catalogue lies outside");
    for (std::size_t row = table; row != table + k_rowSize * m_count; row += k_rowSize) {
        std::size_t const length = Word_(row);
        std::size_t const text = Word_(row + 4);
        if (text >= size || length >= size - text || m_content[text + length] != '\0')
            throw std::runtime_error("Text of a message catalogue lies outside");
    }
    return table;
}

void Catalogue::RequireAscendingKeys_() const
{
    for (std::size_t i = 1; i < m_count; ++i)
        if (std::string_view(Text_(m_keys, i - 1)) >= Text_(m_keys, i))
            throw std::runtime_error("Keys of a message catalogue do not ascend");
}

/// The text of the empty key tells the encoding.
void Catalogue::RequireUtf8_() const
{
    constexpr std::string_view label = "charset=";
    auto const* const told = Find("");
    std::string_view encoding(told ? told : "");
    auto const at = encoding.find(label);
    encoding.remove_prefix(at == encoding.npos ? encoding.size() : at + label.size());
    encoding = encoding.substr(0, encoding.find_first_of(" \r\n;"));
    for (std::string_view const ours : {"UTF-8", "utf-8", "US-ASCII", "us-ascii"})
        if (encoding == ours)
            return;
    throw std::runtime_error("Message catalogue that is not in UTF-8");
}

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
    // A directory has no order of its own, and the first of two catalogues for one language counts.
    std::sort(catalogues.begin(), catalogues.end());
    return catalogues;
}

} // namespace Orlek::Detail
