#pragma once

#include "convert/Convert.h"

#include <boost/endian/conversion.hpp>

#include <cstddef>
#include <cstdint>
#include <span>

namespace Legacy::If::Detail {

/// What compilers cannot do with several floating-point numbers at a time, since the plain form goes through 64-bit
/// integers: written out for the processors that can, and chosen when it runs. Bit for bit the plain form.

/// A number cut to an integer of its own width whose bytes are swapped, and which becomes a number again.
/// @{
inline float Swapped(float value) noexcept
{
    return static_cast<float>(static_cast<double>(boost::endian::endian_reverse(ConvertTo<std::uint32_t>(value))));
}

inline double Swapped(double value) noexcept
{
    return static_cast<double>(boost::endian::endian_reverse(TruncateU64(value)));
}
/// @}

/// The loops for one kind of processor. Payloads know no alignment, and a loop may work in place.
struct FloatLoops
{
    /// `count` numbers swapped.
    void (*copyFloats)(unsigned char* to, unsigned char const* from, std::size_t count) noexcept;
    void (*copyDoubles)(unsigned char* to, unsigned char const* from, std::size_t count) noexcept;
    /// Each number as #ConvertTo makes it a 32-bit one; tells whether any was another before.
    bool (*cut)(std::uint32_t* to, float const* from, std::size_t count) noexcept;
};

/// Those that this processor can run, from the plain ones to the widest.
std::span<FloatLoops const> AllFloatLoops() noexcept;

/// The widest of them.
FloatLoops const& WidestFloatLoops() noexcept;

} // namespace Legacy::If::Detail
