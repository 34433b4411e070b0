#pragma once

#include <Legacy/If/Detail/SeededHash.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
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
        std::size_t const i = FindSlot_(tag, isIt);
        return i != m_slots.size() ? &m_slots[i].place : nullptr;
    }

    /// Starts to bring what #Find will look at first into the cache.
    void Prefetch(std::uint32_t tag) const noexcept
    {
        if (!m_slots.empty())
            __builtin_prefetch(&m_slots[Home_(tag)]);
    }

    /// Whether what #Find does not find is not in the map either.
    bool IsComplete() const noexcept { return m_isComplete; }

    /// To be called before #Insert, and before the map is changed, since it may fail.
    void MakeRoom()
    {
        if ((m_used + 1) * 2 <= m_slots.size())
            return;
        std::vector<Slot> slots(m_count * 4 <= m_slots.size() ? m_slots.size() : m_slots.size() * 2);
        if (slots.empty())
            slots.resize(k_firstSize);
        m_slots.swap(slots);
        m_shift = 64 - std::countr_zero(m_slots.size());
        m_count = m_used = 0;
        for (Slot const& slot : slots)
            if (slot.state == State::Taken)
                Insert(slot.tag, slot.place);
    }

    void Insert(std::uint32_t tag, Place place) noexcept
    {
        for (std::size_t i = Home_(tag), steps = Reach_(); steps != 0; i = Next_(i), --steps) {
            Slot& slot = m_slots[i];
            if (slot.state == State::Taken)
                continue;
            m_used += slot.state == State::Free;
            ++m_count;
            slot = {tag, State::Taken, place};
            return;
        }
        m_isComplete = false;
    }

    /// Takes the entry of that place out, if it is there.
    void Erase(std::uint32_t tag, Place place) noexcept
    {
        std::size_t const i = FindSlot_(tag, [&](Place other) { return other == place; });
        if (i == m_slots.size())
            return;
        m_slots[i].state = State::Left;
        --m_count;
    }

    void Clear() noexcept
    {
        std::vector<Slot>().swap(m_slots);
        m_count = m_used = 0;
        m_isComplete = true;
    }

private:
    enum class State : std::uint32_t
    {
        Free,
        Taken,
        Left, // free again, but entries behind it were put there because it was not
    };
    struct Slot
    {
        std::uint32_t tag = 0;
        State state = State::Free;
        Place place{};
    };
    static constexpr std::size_t k_firstSize = 8;
    static constexpr std::size_t k_reach = 128;

    std::size_t Home_(std::uint32_t tag) const noexcept { return static_cast<std::size_t>(SeededMix(tag) >> m_shift); }
    template<typename IsIt>
    std::size_t FindSlot_(std::uint32_t tag, IsIt&& isIt) const
    {
        for (std::size_t i = Home_(tag), steps = Reach_(); steps != 0; i = Next_(i), --steps) {
            Slot const& slot = m_slots[i];
            if (slot.state == State::Free)
                break;
            if (slot.state == State::Taken && slot.tag == tag && isIt(slot.place))
                return i;
        }
        return m_slots.size();
    }
    std::size_t Next_(std::size_t i) const noexcept { return (i + 1) & (m_slots.size() - 1); }
    std::size_t Reach_() const noexcept { return std::min(k_reach, m_slots.size()); }

    std::vector<Slot> m_slots; // a power of two of them, at most half of them used
    std::size_t m_count = 0;   // taken ones
    std::size_t m_used = 0;    // taken and left ones
    int m_shift = 0;
    bool m_isComplete = true;
};

} // namespace Legacy::If::Detail
