#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/IfType.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace Legacy::If {

/// The greatest difference at which two floating-point values still count as equal: absolute, it does not scale with
/// the operands. `double` values are compared against this very `float`, widened (bits 0x2EDBE6FF).
constexpr float k_floatTolerance = 1e-10F;

namespace Detail {

/// A floating-point result in the precision of its type. Processors whose registers are wider keep more digits until a
/// number is stored, and then tell differences between numbers that are the same.
template<typename Number>
constexpr Number Rounded(Number value) noexcept
{
#if FLT_EVAL_METHOD == 0
    return value;
#else
    if (std::is_constant_evaluated())
        return value;
    Number const volatile stored = value;
    return stored;
#endif
}

/// How far two values are apart; a NaN for a NaN and for two equal infinities.
template<typename Number>
constexpr Number Distance(Number a, Number b) noexcept
{
    if (std::is_constant_evaluated())
        return a > b ? a - b : b - a;
    return Rounded(std::fabs(a - b)); // the same without a branch
}

} // namespace Detail

/// What the ten traits share: the element type, its tag and its default bounds.
template<typename Element, NumericType_t Tag>
struct NumericTraitsBase
{
    using T = Element; ///< the element type

    static constexpr NumericType_t k_numericType = Tag; ///< the element tag
    /// Contract: for `float` and `double` this is the smallest positive normal number (IEEE 754), not the most
    /// negative one, so a schema left at its defaults rejects zero and every negative value; stored schemas rely on it.
    static constexpr T k_defaultMin = std::numeric_limits<T>::min();
    static constexpr T k_defaultMax = std::numeric_limits<T>::max(); ///< the greatest finite value

    /// Whether two values count as equal: exactly for integers; for floating-point types when the greater less the
    /// lesser is at most `k_floatTolerance`, so a NaN equals nothing and neither do two infinities.
    static constexpr bool Equal(T a, T b) noexcept
    {
        if constexpr (std::numeric_limits<T>::is_integer)
            return a == b;
        else
            return Detail::Distance(a, b) <= static_cast<T>(k_floatTolerance);
    }
};

/// The element types of the numeric families: compile-time policies that the family templates take as their parameter.
/// @{
struct LEGACY_IF_API U8Traits : NumericTraitsBase<unsigned char, NumericType_t::U8>
{};
struct LEGACY_IF_API S8Traits : NumericTraitsBase<signed char, NumericType_t::S8>
{};
struct LEGACY_IF_API U16Traits : NumericTraitsBase<unsigned short, NumericType_t::U16>
{};
struct LEGACY_IF_API S16Traits : NumericTraitsBase<short, NumericType_t::S16>
{};
struct LEGACY_IF_API U32Traits : NumericTraitsBase<unsigned int, NumericType_t::U32>
{};
struct LEGACY_IF_API S32Traits : NumericTraitsBase<int, NumericType_t::S32>
{};
struct LEGACY_IF_API U64Traits : NumericTraitsBase<std::uint64_t, NumericType_t::U64>
{};
struct LEGACY_IF_API S64Traits : NumericTraitsBase<std::int64_t, NumericType_t::S64>
{};
struct LEGACY_IF_API FloatTraits : NumericTraitsBase<float, NumericType_t::Float>
{};
struct LEGACY_IF_API DoubleTraits : NumericTraitsBase<double, NumericType_t::Double>
{};
/// @}

/// Equality of numbers, and of lists number by number, in the sense of the traits.
template<typename Traits>
struct LEGACY_IF_API NumericEqual
{
    using T = typename Traits::T;

    bool operator()(T a, T b) const noexcept { return Traits::Equal(a, b); }
    bool operator()(std::vector<T> const& a, std::vector<T> const& b) const noexcept
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), Traits::Equal);
    }
};

/// Equality of what is a few floats, part by part, within their tolerance.
template<auto... parts>
struct LEGACY_IF_API SameParts
{
    bool operator()(auto const& a, auto const& b) const noexcept
    {
        return (FloatTraits::Equal(a.*parts, b.*parts) && ...);
    }
};

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559,
              "values and records rest on IEEE 754");
static_assert(sizeof(short) == 2 && sizeof(int) == 4, "element widths are those of the record format");

} // namespace Legacy::If
