#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>

namespace Legacy::If::Detail {

/// As many characters as a number can have as text.
inline constexpr std::size_t k_longestNumber = 32;

/// A number as a default-formatted stream prints it; 8-bit numbers as the single character that a stream makes of them.
/// There is room for #k_longestNumber characters; returns their end.
template<typename Number>
char* PrintDefault(char* to, Number value) noexcept
{
    if constexpr (sizeof(Number) == 1 && !std::same_as<Number, bool>) {
        *to = static_cast<char>(value);
        return to + 1;
    } else if constexpr (std::floating_point<Number>) {
        return std::to_chars(to, to + k_longestNumber, value, std::chars_format::general, 6).ptr;
    } else if constexpr (std::same_as<Number, bool>) {
        return std::to_chars(to, to + k_longestNumber, static_cast<int>(value)).ptr;
    } else {
        return std::to_chars(to, to + k_longestNumber, value).ptr;
    }
}

template<typename Number>
std::string DefaultText(Number value)
{
    char text[k_longestNumber];
    return std::string(text, PrintDefault(text, value));
}

} // namespace Legacy::If::Detail
