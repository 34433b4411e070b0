#include "containers/PlaceIndex.h"

#include <Legacy/If/InfoItemHolderMap.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace Legacy::If {

namespace {

/// Whether the id is present in the map, and its place, by the index where that can tell.
template<typename Map, typename Index, typename Iterator = decltype(std::declval<Map&>().begin())>
std::pair<bool, Iterator> FindIn(Map& map, Index const& index, unsigned int id)
{
    if (auto const* const place = index.Find(id, [](auto const&) { return true; }))
        return {true, place->entry};
    Iterator const place = index.IsComplete() ? map.end() : map.find(id);
    return {place != map.end(), place};
}

InfoItemSectionId SectionOf(InfoBase const& info)
{
    InfoItemSectionId const id(info.GetId());
    return id.GetSectionId(id.Depth());
}

/// Of a parameter, by the hashes of the path of its section and of its name.
std::uint32_t TagOf(std::uint32_t pathHash, std::uint32_t nameHash) { return Detail::SeededHash(pathHash) + nameHash; }

} // namespace

template class MapIterator<unsigned int, boost::intrusive_ptr<InfoItemHolder>>;

/// An entry of the map by id, and what it holds, so that those who want only that need not go by the entry.
struct InfoItemHolderMap::Place
{
    ById::iterator entry;
    InfoItemHolder* holder = nullptr;

    friend bool operator==(Place const&, Place const&) = default;
};

struct InfoItemHolderMap::Lookup
{
    Detail::PlaceIndex<Place> byId;
    Detail::PlaceIndex<ByName::iterator> firstOfName;  // by the hash of the name
    Detail::PlaceIndex<ByName::iterator> othersOfName; // by id
    Detail::PlaceIndex<InfoItemHolder*> inSections;    // by path and name, of a directory, which erases none of them
    std::vector<InfoItemHolder*> pending;              // entered by id alone so far, in the order of their arrival
};

InfoItemHolderMap::InfoItemHolderMap() : MapIterator(m_holdersById), m_lookup(std::make_unique<Lookup>()) {}
InfoItemHolderMap::~InfoItemHolderMap() = default;

int InfoItemHolderMap::Insert(boost::intrusive_ptr<InfoItemHolder> const& holder)
{
    if (!holder)
        return IfErrNullArgument;
    unsigned int const id = InfoOf_(*holder).GetId();
    m_lookup->byId.MakeRoom();
    m_lookup->pending.push_back(holder.get());
    try {
        // Parameters mostly come in ascending order.
        auto const count = m_holdersById.size();
        auto const place = m_holdersById.try_emplace(m_holdersById.end(), id, holder);
        if (m_holdersById.size() != count) {
            m_lookup->byId.Insert(id, {place, holder.get()});
            return 0;
        }
    } catch (...) {
        m_lookup->pending.pop_back();
        throw;
    }
    m_lookup->pending.pop_back();
    return IfErrAlreadyExists;
}

int InfoItemHolderMap::Erase(unsigned int const& id)
{
    auto const [found, place] = Find_(id);
    if (!found)
        return IfErrNotFound;
    auto const holder = place->second;
    // What is taken out at once, because its section did not want it, is the last one that came.
    auto& pending = m_lookup->pending;
    if (!pending.empty() && pending.back() == holder.get()) {
        pending.pop_back();
    } else {
        EnterPending_();
        EraseName_(*holder);
    }
    InfoBase const& info = InfoOf_(*holder);
    m_lookup->byId.Erase(info.GetId(), {place, holder.get()});
    m_holdersById.erase(place);
    return 0;
}

void InfoItemHolderMap::EraseName_(InfoItemHolder const& holder) noexcept
{
    InfoBase const& info = InfoOf_(holder);
    auto const isIt = [&](auto const& entry) { return entry.second.get() == &holder; };
    if (auto const* const other =
            m_lookup->othersOfName.Find(info.GetId(), [&](auto const& place) { return isIt(*place); }))
    {
        auto const place = *other;
        m_lookup->othersOfName.Erase(info.GetId(), place);
        m_holdersByName.erase(place);
        return;
    }
    auto const [first, last] = Find_(info.GetName());
    auto const place = std::find_if(first, last, isIt);
    if (place == last)
        return;
    if (place == first) {
        std::uint32_t const tag = Detail::SeededHash(info.GetName());
        m_lookup->firstOfName.Erase(tag, first);
        if (auto const next = std::next(first); next != last) {
            m_lookup->othersOfName.Erase(InfoOf_(*next->second).GetId(), next);
            m_lookup->firstOfName.Insert(tag, next); // into the slot that was left
        }
    }
    m_holdersByName.erase(place);
}

std::pair<bool, InfoItemHolderMap::ById::const_iterator> InfoItemHolderMap::Find(unsigned int const& id) const
{
    return FindIn(m_holdersById, m_lookup->byId, id);
}

std::pair<InfoItemHolderMap::ByName::const_iterator, InfoItemHolderMap::ByName::const_iterator>
InfoItemHolderMap::Find(std::string const& name)
{
    return Find_(name);
}

void InfoItemHolderMap::Clear() noexcept
{
    m_lookup->byId.Clear();
    m_lookup->firstOfName.Clear();
    m_lookup->othersOfName.Clear();
    m_lookup->inSections.Clear();
    m_lookup->pending.clear();
    m_holdersById.clear();
    m_holdersByName.clear();
}

InfoItemHolder* InfoItemHolderMap::Get_(unsigned int id) const
{
    if (auto const* const place = m_lookup->byId.Find(id, [](auto const&) { return true; }))
        return place->holder;
    if (m_lookup->byId.IsComplete())
        return nullptr;
    auto const entry = m_holdersById.find(id);
    return entry != m_holdersById.end() ? entry->second.get() : nullptr;
}

void InfoItemHolderMap::Get_(std::span<unsigned int const> ids, InfoItemHolder** found) const
{
    for (unsigned int const id : ids)
        m_lookup->byId.Prefetch(id);
    for (unsigned int const id : ids) {
        *found = Get_(id);
        __builtin_prefetch(*found++, 1);
    }
}

InfoItemHolder* InfoItemHolderMap::Get_(InfoItemSectionId section, std::uint32_t pathHash, std::string_view name,
                                        std::uint32_t nameHash) const
{
    auto const* const place = m_lookup->inSections.Find(TagOf(pathHash, nameHash), [&](InfoItemHolder const* holder) {
        InfoBase const& info = InfoOf_(*holder);
        return SectionOf(info) == section && info.GetName() == name;
    });
    return place ? *place : nullptr;
}

void InfoItemHolderMap::Fetch_(std::uint32_t pathHash, std::uint32_t nameHash) const noexcept
{
    m_lookup->inSections.Prefetch(TagOf(pathHash, nameHash));
}

bool InfoItemHolderMap::KnowsAllInSections_() const noexcept { return m_lookup->inSections.IsComplete(); }

void InfoItemHolderMap::MakeRoomInSections_() { m_lookup->inSections.MakeRoom(); }

void InfoItemHolderMap::EnterInSection_(InfoItemHolder& holder, std::uint32_t pathHash) noexcept
{
    m_lookup->inSections.Insert(TagOf(pathHash, Detail::SeededHash(InfoOf_(holder).GetName())), &holder);
}

std::pair<bool, InfoItemHolderMap::ById::iterator> InfoItemHolderMap::Find_(unsigned int const& id)
{
    return FindIn(m_holdersById, m_lookup->byId, id);
}

std::pair<InfoItemHolderMap::ByName::iterator, InfoItemHolderMap::ByName::iterator>
InfoItemHolderMap::Find_(std::string const& name)
{
    EnterPending_();
    auto const* const first =
        m_lookup->firstOfName.Find(Detail::SeededHash(name), [&](auto const& place) { return place->first == name; });
    if (!first)
        return m_lookup->firstOfName.IsComplete() ? std::pair(m_holdersByName.end(), m_holdersByName.end())
                                                  : m_holdersByName.equal_range(name);
    auto last = std::next(*first);
    if (last != m_holdersByName.end() && last->first == name)
        last = m_holdersByName.upper_bound(name);
    return {*first, last};
}

/// Sorted by name first, they mostly go to the end. Where memory fails, those that were not entered stay pending.
void InfoItemHolderMap::EnterPending_()
{
    auto& pending = m_lookup->pending;
    if (pending.empty())
        return;
    std::ranges::stable_sort(
        pending, {}, [](InfoItemHolder const* holder) -> auto& { return InfoOf_(*holder).GetName(); });
    auto next = pending.begin();
    try {
        for (; next != pending.end(); ++next) {
            m_lookup->firstOfName.MakeRoom();
            m_lookup->othersOfName.MakeRoom();
            InfoBase const& info = InfoOf_(**next);
            auto const place = m_holdersByName.emplace_hint(m_holdersByName.end(), info.GetName(), *next);
            if (place == m_holdersByName.begin() || std::prev(place)->first != info.GetName())
                m_lookup->firstOfName.Insert(Detail::SeededHash(info.GetName()), place);
            else
                m_lookup->othersOfName.Insert(info.GetId(), place);
        }
    } catch (...) {
        pending.erase(pending.begin(), next);
        throw;
    }
    std::vector<InfoItemHolder*>().swap(pending);
}

} // namespace Legacy::If
