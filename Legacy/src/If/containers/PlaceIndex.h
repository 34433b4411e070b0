#pragma once

#include <Legacy/If/Detail/NodePool.h>
#include <Legacy/If/Detail/SeededHash.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Legacy::If::Detail {

/// A flat table beside a map that finds its entries by a 32-bit tag, a number or the hash of a text, in a cache line or
/// two where the tree would take a miss on each of twenty levels. A place is an iterator of the map.
///
/// The map remains the truth. No search takes more than a fixed number of steps, whatever the keys, also such as were
/// chosen to collide: an entry that finds no room within that reach is left out, and from then on a miss means nothing.
template<typename Place>
class PlaceIndex
{
public:
    /// The place with that tag that `isIt` accepts, or null.
    template<typename IsIt>
    Place const* Find(std::uint32_t tag, IsIt&& isIt) const
    {
        auto const [group, i] = Find_(*this, tag, isIt);
        return group ? &group->places[i] : nullptr;
    }

    /// Starts to bring what #Find will look at first into the cache.
    void Prefetch(std::uint32_t tag) const noexcept
    {
        if (!m_groups.empty())
            __builtin_prefetch(&m_groups[Home_(tag)]);
    }

    /// Whether what #Find does not find is not in the map either.
    bool IsComplete() const noexcept { return m_isComplete; }

    /// To be called before #Insert, and before the map is changed, since it may fail.
    void MakeRoom()
    {
        if (m_used < Capacity_(m_groups.size()))
            return;
        // Half as many more, unless so much was erased that a table of that size has room again.
        std::size_t const wanted = m_groups.size() + (m_groups.size() + 1) / 2;
        Groups groups(m_count * 2 <= Capacity_(m_groups.size()) ? std::max<std::size_t>(m_groups.size(), 1) : wanted);
        m_groups.swap(groups);
        m_count = m_used = 0;
        for (Group const& group : groups)
            for (unsigned int i = 0; i < k_slots; ++i)
                if (group.taken >> i & 1)
                    Insert(group.tags[i], group.places[i]);
    }

    void Insert(std::uint32_t tag, Place place) noexcept
    {
        for (std::size_t at = Home_(tag), steps = Reach_(); steps != 0; at = Next_(at), --steps) {
            Group& group = m_groups[at];
            unsigned int const i = static_cast<unsigned int>(std::countr_one(group.taken));
            if (i >= k_slots)
                continue;
            m_used += (group.used >> i & 1) == 0;
            ++m_count;
            group.taken = static_cast<std::uint8_t>(group.taken | 1U << i);
            group.used |= group.taken;
            group.tags[i] = tag;
            group.places[i] = place;
            return;
        }
        m_isComplete = false;
    }

    /// Takes the entry of that place out, if it is there.
    void Erase(std::uint32_t tag, Place place) noexcept
    {
        auto const [group, i] = Find_(*this, tag, [&](Place other) { return other == place; });
        if (!group)
            return;
        group->taken = static_cast<std::uint8_t>(group->taken & ~(1U << i));
        --m_count;
    }

    void Clear() noexcept
    {
        Groups().swap(m_groups);
        m_count = m_used = 0;
        m_isComplete = true;
    }

private:
    static constexpr std::size_t k_line = 64;
    static constexpr unsigned int k_slots =
        // NOLINTNEXTLINE(bugprone-sizeof-expression): a place may be a pointer
        std::min<std::size_t>((k_line - sizeof(std::uint32_t)) / (sizeof(std::uint32_t) + sizeof(Place)), 7);
    static constexpr std::size_t k_reach = 192;

    /// As many as fit into a line of the cache. A slot that was taken once stays used, since entries further on were
    /// put there because it was.
    struct alignas(k_line) Group
    {
        std::uint8_t taken = 0; // a bit for each slot
        std::uint8_t used = 0;
        std::uint32_t tags[k_slots]{};
        Place places[k_slots]{};
    };
    static_assert(sizeof(Group) == k_line);
    using Groups = std::vector<Group, LargeAllocator<Group>>;

    /// Three quarters: most searches see one group, and no run of full ones comes near the reach by chance.
    static std::size_t Capacity_(std::size_t groups) noexcept { return groups * k_slots * 3 / 4; }

    /// In the order of the mixed tags, so that a table that grows is read and written in order.
    std::size_t Home_(std::uint32_t tag) const noexcept
    {
        return static_cast<std::size_t>((SeededMix(tag) >> 32) * m_groups.size() >> 32);
    }
    std::size_t Next_(std::size_t at) const noexcept { return at + 1 == m_groups.size() ? 0 : at + 1; }
    std::size_t Reach_() const noexcept { return std::min(k_reach, m_groups.size()); }

    template<typename Self, typename IsIt>
    static auto Find_(Self& self, std::uint32_t tag, IsIt&& isIt)
    {
        using Found = std::pair<decltype(self.m_groups.data()), unsigned int>;
        for (std::size_t at = self.Home_(tag), steps = self.Reach_(); steps != 0; at = self.Next_(at), --steps) {
            auto& group = self.m_groups[at];
            // Without a branch for each slot: one that is guessed wrong keeps the processor from going on to the next
            // search while this one waits for memory.
            unsigned int matching = 0;
            for (unsigned int i = 0; i < k_slots; ++i)
                matching |= static_cast<unsigned int>(group.tags[i] == tag) << i;
            for (matching &= group.taken; matching != 0; matching &= matching - 1)
                if (auto const i = static_cast<unsigned int>(std::countr_zero(matching)); isIt(group.places[i]))
                    return Found(&group, i);
            if (group.used != (1U << k_slots) - 1)
                break;
        }
        return Found(nullptr, 0);
    }

    Groups m_groups;
    std::size_t m_count = 0; // taken slots
    std::size_t m_used = 0;
    bool m_isComplete = true;
};

} // namespace Legacy::If::Detail
