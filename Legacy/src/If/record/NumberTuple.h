#pragma once

#include "record/SerialRecord.h"

#include <Legacy/If/NumericTraits.h>

#include <array>
#include <cstddef>
#include <span>

namespace Legacy::If::Detail {

/// What the values share that are a few numbers of one type: colours, orientations, points, rectangles. They give their
/// numbers as an array, in the order of their record.

/// Whether the numbers are equal one by one, in the sense of the traits.
template<typename Traits, std::size_t N>
constexpr bool Equal(std::array<typename Traits::T, N> const& a, std::array<typename Traits::T, N> const& b) noexcept
{
    for (std::size_t i = 0; i < N; ++i)
        if (!Traits::Equal(a[i], b[i]))
            return false;
    return true;
}

template<typename Number, std::size_t N>
int WriteNumbers(ItemBase const& item, ItemBase::SerialStruct_t* record, std::array<Number, N> const& numbers)
{
    return WriteRecord(item, record, sizeof(numbers),
                       [&numbers](PayloadWriter payload) { payload.PutAll(std::span<Number const>(numbers)); });
}

/// Fills `numbers` from a record of exactly their size, or writes nothing.
template<typename Number, std::size_t N>
int ReadNumbers(ItemBase const& item, ItemBase::ConstSerialStruct_t const* record, std::array<Number, N>& numbers)
{
    PayloadReader payload;
    if (int const code = OpenRecord(item, record, payload))
        return code;
    if (payload.Left() != sizeof(numbers))
        return IfErrInvalidArgument;
    payload.GetAll(std::span<Number>(numbers));
    return 0;
}

} // namespace Legacy::If::Detail
