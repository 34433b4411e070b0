#pragma once

#include <cstdint>
#include <stdexcept>

namespace Legacy::If::Detail {

/// The text of the length error of every list that is asked to grow beyond what it can hold.
inline constexpr char k_tooLong[] = "vector<T> too long";

/// Throws the length error for a length above the limit. Lengths come from indices, counts and sums of 32 bits, so that
/// none wraps on a machine whose lists are shorter.
inline void CheckLength(std::uint64_t length, std::uint64_t limit)
{
    if (length > limit)
        throw std::length_error(k_tooLong);
}

} // namespace Legacy::If::Detail
