#pragma once

#include <Legacy/If/NumericTraits.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Legacy::If::Detail {

/// How one arithmetic value becomes another: the plain language conversion wherever the language defines it, and a
/// fixed, harmless result wherever it does not. No clamping, no rounding to nearest, no range test.

/// Cuts towards zero. Out of range, and for a NaN, the result is the lowest number of the type: the bit pattern
/// 0x80… that processors give for such a conversion.
template<std::signed_integral Target, std::floating_point Source>
constexpr Target Truncate(Source value) noexcept
{
    // Both ends are powers of two and so exact in every floating-point type.
    constexpr auto end = static_cast<Source>(std::uint64_t{1} << (std::numeric_limits<Target>::digits - 1)) * 2;
    // What lies below the lower end by a fraction is cut to it, in the types that are wide enough to hold such a value.
    bool isAbove = false;
    if constexpr (std::numeric_limits<Source>::digits > std::numeric_limits<Target>::digits)
        isAbove = value > -end - 1;
    else
        isAbove = value >= -end;
    // Only now converted, so that nothing but the choice is conditional: compilers then cut many values at a time.
    bool const fits = (static_cast<unsigned int>(isAbove) & static_cast<unsigned int>(value < end)) != 0;
    return static_cast<Target>(fits ? value : -end);
}

/// Cuts towards zero; what is negative but in the signed range wraps modulo 2 to the 64. Out of range, and for a NaN,
/// the result is 0x8000000000000000.
template<std::floating_point Source>
constexpr std::uint64_t TruncateU64(Source value) noexcept
{
    constexpr auto half = static_cast<Source>(std::uint64_t{1} << 63);
    if (value >= half)
        return value < half * 2 ? static_cast<std::uint64_t>(value) : std::uint64_t{1} << 63;
    return static_cast<std::uint64_t>(Truncate<std::int64_t>(value));
}

/// The test by which a number becomes a boolean: not 0 for integers; for floating-point values at least the tolerance
/// away from 0, so a NaN is false.
template<typename Source>
constexpr bool ToBool(Source value) noexcept
{
    if constexpr (std::floating_point<Source>)
        return value >= static_cast<Source>(k_floatTolerance) || value <= -static_cast<Source>(k_floatTolerance);
    else
        return value != 0;
}

/// The one rule of conversion between any two of the ten element types, booleans and enumeration values. Only a boolean
/// target is different: it takes the test.
template<typename Target, typename Source>
constexpr Target ConvertTo(Source value) noexcept
{
    if constexpr (std::same_as<Target, bool>)
        return ToBool(value);
    else if constexpr (std::floating_point<Target>)
        return Rounded(static_cast<Target>(value));
    else if constexpr (std::integral<Source>)
        return static_cast<Target>(value);
    else if constexpr (sizeof(Target) < 4)
        return static_cast<Target>(Truncate<std::int32_t>(value)); // through a signed 32-bit number, low bits kept
    else if constexpr (std::signed_integral<Target>)
        return Truncate<Target>(value);
    else if constexpr (sizeof(Target) == 8)
        return TruncateU64(value);
    else
        return static_cast<Target>(Truncate<std::int64_t>(value));
}

/// Whether a stored value counts as changed: unequal for integers; for floating-point types apart by more than the
/// tolerance, so that a NaN on either side counts as no change (it is not equal either, see `Equal` of the traits).
template<typename Value>
constexpr bool Differs(Value a, Value b) noexcept
{
    if constexpr (std::floating_point<Value>)
        return Distance(a, b) > static_cast<Value>(k_floatTolerance);
    else
        return a != b;
}

/// What an element is printed as in compact forms and read as from text: 8-bit numbers go through 16 bits, since the
/// streams take them for characters.
template<typename Element>
using TextForm = std::conditional_t<std::is_same_v<Element, unsigned char>, unsigned short,
                                    std::conditional_t<std::is_same_v<Element, signed char>, short, Element>>;

} // namespace Legacy::If::Detail
