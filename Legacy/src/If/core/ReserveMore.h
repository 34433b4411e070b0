#pragma once

#include <algorithm>
#include <vector>

namespace Legacy::If::Detail {

/// Makes room for `count` more elements, and for more than that if the vector must move: a caller who gathers the
/// elements of many sections in one vector does not move all of them for each.
template<typename Value>
void ReserveMore(std::vector<Value>& values, typename std::vector<Value>::size_type count)
{
    auto const size = values.size() + count;
    if (size > values.capacity())
        values.reserve(std::max(size, 2 * values.capacity()));
}

} // namespace Legacy::If::Detail
