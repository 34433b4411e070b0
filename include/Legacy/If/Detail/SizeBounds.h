#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/ReturnCodes.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Legacy::If::Detail {

/// The least and the greatest number of elements that a list schema allows, both inclusive. The least is never above
/// the greatest: setting one pushes the other along. A plain value.
class SizeBounds
{
public:
    constexpr SizeBounds(unsigned int min, unsigned int max) noexcept : m_min(min), m_max(max) {}

    constexpr unsigned int Min() const noexcept { return m_min; }
    constexpr unsigned int Max() const noexcept { return m_max; }

    constexpr void SetMin(unsigned int n) noexcept
    {
        m_min = n;
        m_max = std::max(m_max, n);
    }

    constexpr void SetMax(unsigned int n) noexcept
    {
        m_max = n;
        m_min = std::min(m_min, n);
    }

    /// #SetMin, and a default that is not empty grows to the new minimum. An empty default stays empty.
    template<typename List>
    void SetMin(unsigned int n, List& defaultVal)
    {
        if (!defaultVal.empty() && defaultVal.size() < n)
            defaultVal.resize(n); // first, so that nothing has changed if there is no memory for it
        SetMin(n);
    }

    /// #SetMax, and a longer default is cut to the new maximum.
    template<typename List>
    void SetMax(unsigned int n, List& defaultVal)
    {
        SetMax(n);
        if (defaultVal.size() > n)
            defaultVal.resize(n);
    }

    constexpr bool Contains(std::size_t size) const noexcept { return m_min <= size && size <= m_max; }

    /// Stores `from` in `to` if its size is allowed; otherwise #IfErrSizeOutOfRange and nothing is stored.
    template<typename From, typename List>
    int Store(From&& from, List& to) const
    {
        if (!Contains(from.size()))
            return IfErrSizeOutOfRange;
        to = std::forward<From>(from);
        return 0;
    }

    /// Narrows to what both allow; #IfErrBoundsDisjoint, and nothing changes, if the ranges do not meet.
    constexpr int Merge(SizeBounds const& other) noexcept
    {
        if (other.m_min > m_max || m_min > other.m_max)
            return IfErrBoundsDisjoint;
        m_min = std::max(m_min, other.m_min);
        m_max = std::min(m_max, other.m_max);
        return 0;
    }

    friend constexpr bool operator==(SizeBounds const&, SizeBounds const&) noexcept = default;

private:
    unsigned int m_min;
    unsigned int m_max;
};

} // namespace Legacy::If::Detail
