#pragma once

#include "Change.h"
#include "Convert.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Legacy::If::Detail {

/// How lists of numbers of different element types become one another.
///
/// The loops are over plain arrays and free of branches, with the comparison folded in, so that they vectorize.

/// Converts `count` numbers into place. An element that the traits find equal to the new one keeps its value; the
/// others are stored and make the result true.
template<typename Traits, typename Target, typename Source>
bool StoreUnequal(Target* target, Source const* source, std::size_t count) noexcept
{
    bool changed = false;
    for (std::size_t i = 0; i < count; ++i) {
        Target const value = ConvertTo<Target>(source[i]);
        bool const equal = Traits::Equal(target[i], value);
        target[i] = equal ? target[i] : value;
        changed |= !equal;
    }
    return changed;
}

/// Converts and stores `count` numbers, and tells whether any differs beyond the tolerance.
template<typename Target, typename Source>
bool StoreAll(Target* target, Source const* source, std::size_t count) noexcept
{
    bool changed = false;
    for (std::size_t i = 0; i < count; ++i) {
        Target const value = ConvertTo<Target>(source[i]);
        changed |= Differs(target[i], value);
        target[i] = value;
    }
    return changed;
}

/// Makes a list what a whole-list assignment sets it to; `store` is the loop: it takes target, source and count, and
/// tells whether anything changed.
///
/// Contract: the size becomes the source's bytes divided by the width of an own element, also where the widths differ,
/// and not the source's number of elements: receivers count on it. Places beyond the source's elements become 0.
template<typename Target, typename Source, typename Store>
void AssignByBytes(Change& change, std::vector<Target>& target, std::vector<Source> const& source, Store&& store)
{
    change.Resize(target, source.size() * sizeof(Source) / sizeof(Target));
    std::size_t const taken = std::min(target.size(), source.size());
    change.Note(store(target.data(), source.data(), taken));
    Target const zero{};
    for (std::size_t i = taken; i < target.size(); ++i)
        change.Note(store(&target[i], &zero, 1));
}

} // namespace Legacy::If::Detail
