#pragma once

#include "convert/Change.h"
#include "convert/Convert.h"
#include "convert/FloatLoops.h"
#include "convert/Wide.h"

#include <boost/integer.hpp>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstddef>
#include <vector>

namespace Legacy::If::Detail {

/// How lists of numbers are compared with bounds and become one another.
///
/// The loops run over plain arrays and know no branch: what a comparison finds is gathered in bits as wide as the
/// elements, so that compilers can work on several elements at a time. Their shape is measured, not taste.

/// An unsigned number as wide as an element.
template<typename Element>
using BitsOf = typename boost::uint_t<sizeof(Element) * CHAR_BIT>::exact;

/// Whether a number is below the one or above the other; a NaN is neither.
template<typename Element>
constexpr bool IsOutside(Element value, Element min, Element max) noexcept
{
    return (static_cast<unsigned int>(min > value) | static_cast<unsigned int>(value > max)) != 0;
}

/// The same for any of many.
template<typename Element>
bool AnyOutside(std::vector<Element> const& list, Element min, Element max) noexcept
{
    return RunLoop([first = list.data(), count = list.size(), min, max] {
        BitsOf<Element> outside = 0;
        for (std::size_t i = 0; i < count; ++i)
            outside = IsOutside(first[i], min, max) ? 1 : outside;
        return outside != 0;
    });
}

/// Converts and stores `count` numbers, `valueAt` giving each, and tells whether anything changed. An element that the
/// traits find equal to the new one keeps its value.
template<typename Traits, typename Target, typename ValueAt>
bool StoreUnequal(Target* target, std::size_t count, ValueAt valueAt) noexcept
{
    BitsOf<Target> changed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        auto const value = ConvertTo<Target>(valueAt(i));
        Target const old = target[i];
        if constexpr (std::floating_point<Target>) {
            bool const unequal = !Traits::Equal(old, value);
            target[i] = unequal ? value : old;
            changed |= std::bit_cast<BitsOf<Target>>(unequal ? Target{1} : Target{0});
        } else {
            target[i] = value;
            changed = static_cast<BitsOf<Target>>(changed | static_cast<BitsOf<Target>>(old ^ value));
        }
    }
    return changed != 0;
}

/// The same with every number stored; only a difference beyond the tolerance counts as a change.
template<typename Target, typename ValueAt>
bool StoreAll(Target* target, std::size_t count, ValueAt valueAt) noexcept
{
    bool changed = false;
    for (std::size_t i = 0; i < count; ++i) {
        auto const value = ConvertTo<Target>(valueAt(i));
        changed |= Differs(target[i], value);
        target[i] = value;
    }
    return changed;
}

/// Runs one of the loops above over elements of a list, each converted, and tells whether anything changed.
template<typename Target, typename Source, typename Store>
bool StoreConverted(Target* to, Source const* from, std::size_t count, Store store)
{
    return RunLoop([store, to, from, count] { return store(to, count, [from](std::size_t i) { return from[i]; }); });
}

/// The same where the conversion is a loop of its own: which of the loops above it is makes no difference to integers.
template<typename Store>
bool StoreConverted(std::uint32_t* to, float const* from, std::size_t count, Store)
{
    return WidestFloatLoops().cut(to, from, count);
}

/// Makes a list what a whole-list assignment sets it to; `store` is one of the loops above.
///
/// Contract: the size becomes the source's bytes divided by the width of an own element, also where the widths differ,
/// and not the source's number of elements: receivers count on it. Places beyond the source's elements become 0.
template<typename Target, typename Source, typename Store>
void AssignByBytes(Change& change, std::vector<Target>& target, std::vector<Source> const& source, Store store)
{
    change.Resize(target, source.size() * sizeof(Source) / sizeof(Target));
    std::size_t const taken = std::min(target.size(), source.size());
    change.Note(StoreConverted(target.data(), source.data(), taken, store));
    change.Note(RunLoop([store, to = target.data() + taken, count = target.size() - taken] {
        return store(to, count, [](std::size_t) { return Target{0}; });
    }));
}

} // namespace Legacy::If::Detail
