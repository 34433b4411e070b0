#pragma once

#include "SerialRecord.h"

#include <Legacy/If/NumericTraits.h>

#include <array>
#include <cstddef>

namespace Legacy::If::Detail {

/// The parts of a small value that is nothing but floats, in the order of its record.
template<std::size_t N>
using FloatTuple = std::array<float, N>;

/// Whether each part of the one is equal to that of the other within the tolerance.
template<std::size_t N>
constexpr bool Equal(FloatTuple<N> const& a, FloatTuple<N> const& b) noexcept
{
    for (std::size_t i = 0; i < N; ++i)
        if (!FloatTraits::Equal(a[i], b[i]))
            return false;
    return true;
}

template<std::size_t N>
int WriteFloats(ItemBase const& item, ItemBase::SerialStruct_t* record, FloatTuple<N> const& parts)
{
    return WriteRecord(item, record, sizeof(parts),
                       [&parts](PayloadWriter payload) { payload.PutAll(std::span<float const>(parts)); });
}

/// Fills `parts` from a record of exactly their size.
template<std::size_t N>
int ReadFloats(ItemBase const& item, ItemBase::ConstSerialStruct_t const* record, FloatTuple<N>& parts)
{
    PayloadReader payload;
    if (int const code = OpenRecord(item, record, payload))
        return code;
    if (payload.Left() != sizeof(parts))
        return IfErrInvalidArgument;
    payload.GetAll(std::span<float>(parts));
    return 0;
}

} // namespace Legacy::If::Detail
