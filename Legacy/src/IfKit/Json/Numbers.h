#pragma once

#include "Node.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Legacy::IfKit::Detail {

template<typename N>
concept Integer = std::integral<N> && !std::same_as<N, bool>;

/// Stores a number of a document in an integer; false if it is none or does not fit. A fraction of 0 makes no
/// difference.
template<Integer N>
bool ToInteger(json::value const& value, N& number)
{
    if (auto const* const narrow = value.if_int64()) {
        number = static_cast<N>(*narrow);
        return std::in_range<N>(*narrow);
    }
    if (auto const* const wide = value.if_uint64()) {
        number = static_cast<N>(*wide);
        return std::in_range<N>(*wide);
    }
    auto const* const real = value.if_double();
    // Integers beyond 2^53 stand in documents without a fraction or an exponent.
    if (!real || std::trunc(*real) != *real || std::fabs(*real) > 0x1p53)
        return false;
    auto const whole = static_cast<std::int64_t>(*real);
    number = static_cast<N>(whole);
    return std::in_range<N>(whole);
}

/// The number in a document's text; nothing for what no number of 64 bits comes near to. The sign of zero is kept.
std::optional<json::value> ParseNumber(std::string_view text);

/// The shortest text that reads as this number and no other.
void AppendNumber(std::string& text, double number);

/// The number whose shortest text is that of the float.
double Widen(float number);
inline double Widen(double number) { return number; }

template<std::floating_point N>
using BitsOf = std::conditional_t<sizeof(N) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;

/// What stands in a document for a number that is not finite: "Infinity", "-Infinity", "NaN", and for a NaN with other
/// bits than the usual ones these in brackets.
template<std::floating_point N>
std::string NotFiniteText(N number)
{
    if (!std::isnan(number))
        return number < 0 ? "-Infinity" : "Infinity";
    auto const bits = std::bit_cast<BitsOf<N>>(number);
    if (bits == std::bit_cast<BitsOf<N>>(std::numeric_limits<N>::quiet_NaN()))
        return "NaN";
    char digits[16];
    auto const end = std::to_chars(digits, digits + sizeof(digits), bits, 16).ptr;
    return "NaN(0x" + std::string(digits, end) + ")";
}

template<std::floating_point N>
std::optional<N> ParseNotFinite(std::string_view text)
{
    if (text == "Infinity")
        return std::numeric_limits<N>::infinity();
    if (text == "-Infinity")
        return -std::numeric_limits<N>::infinity();
    if (text == "NaN")
        return std::numeric_limits<N>::quiet_NaN();
    if (!text.starts_with("NaN(0x") || !text.ends_with(')'))
        return std::nullopt;
    text = text.substr(6, text.size() - 7);
    BitsOf<N> bits = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), bits, 16);
    N const number = std::bit_cast<N>(bits);
    bool const isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isnan(number) ? std::optional<N>(number) : std::nullopt;
}

/// The same for a float or a double: its nearest value. A number beyond the greatest finite one does not fit.
template<std::floating_point N>
bool ToReal(json::value const& value, N& number)
{
    double real = 0;
    if (auto const* const text = value.if_string()) {
        auto const special = ParseNotFinite<N>(View(json::string_view(*text)));
        number = special.value_or(N());
        return special.has_value();
    }
    if (auto const* const narrow = value.if_int64()) {
        number = static_cast<N>(*narrow);
        return true;
    }
    if (auto const* const wide = value.if_uint64()) {
        number = static_cast<N>(*wide);
        return true;
    }
    if (auto const* const found = value.if_double())
        real = *found;
    else
        return false;
    // Halfway between the greatest float and what would come next.
    if (sizeof(N) == sizeof(float) && !(std::fabs(real) < 0x1.ffffffp127))
        return false;
    number = static_cast<N>(real);
    return true;
}

} // namespace Legacy::IfKit::Detail
