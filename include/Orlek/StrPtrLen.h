#pragma once

#include <Orlek/Export.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Orlek {

/// A view of a text: a pointer and a length. The text belongs to somebody else, who keeps it alive and unchanged as
/// long as the view is used; it need not end with a zero and may contain some.
///
/// It is what parsers move along: they look at the front and advance. A plain value; any thread may read it.
class StrPtrLen
{
public:
    /// The empty text.
    constexpr StrPtrLen() noexcept = default;

    /// `length` bytes from `text` on. A null `text` is the empty text, whatever the length.
    constexpr StrPtrLen(char const* text, std::size_t length) noexcept : m_text(text, text ? length : 0) {}

    /// A text that ends with a zero, such as a literal. Null is the empty text.
    constexpr StrPtrLen(char const* text) noexcept : m_text(text ? std::string_view(text) : std::string_view()) {}

    /// All of `text`. A view of a temporary string ends with the full expression.
    StrPtrLen(std::string const& text) noexcept : m_text(text) {}

    constexpr StrPtrLen(std::string_view text) noexcept : m_text(text) {}

    constexpr char const* Data() const noexcept { return m_text.data(); }
    constexpr std::size_t Size() const noexcept { return m_text.size(); }
    constexpr bool IsEmpty() const noexcept { return m_text.empty(); }

    /// The first byte, or the zero byte when nothing is left.
    constexpr char Front() const noexcept { return m_text.empty() ? '\0' : m_text.front(); }

    /// Drops `count` bytes from the front, all of them if there are fewer.
    constexpr void Advance(std::size_t count = 1) noexcept { m_text.remove_prefix(std::min(count, m_text.size())); }

    /// A copy of the text.
    std::string ToStdString() const { return std::string(m_text); }

    constexpr std::string_view ToStringView() const noexcept { return m_text; }

    /// Equal if the ASCII letters are taken without regard to case. All other bytes, also those of letters beyond
    /// ASCII, must agree as they stand; no locale has a say.
    constexpr bool EqualIgnoreCase(StrPtrLen const& other) const noexcept
    {
        return std::equal(m_text.begin(), m_text.end(), other.m_text.begin(), other.m_text.end(),
                          [](char a, char b) { return ToLower_(a) == ToLower_(b); });
    }

    /// Byte for byte.
    friend constexpr bool operator==(StrPtrLen const&, StrPtrLen const&) noexcept = default;

private:
    static constexpr char ToLower_(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

    std::string_view m_text;
};

} // namespace Orlek
