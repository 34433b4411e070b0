#include "containers/PlaceIndex.h"

#include <Legacy/If/InfoItemHolderMap.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace Legacy::If {

namespace {

InfoBase const& InfoOf(InfoItemHolder const& holder) { return *holder.GetInfo()->GetInfo(); }

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
    Detail::PlaceIndex<ByName::iterator> byName; // the first of each name
    std::vector<InfoItemHolder*> pending;        // entered by id alone so far
};

InfoItemHolderMap::InfoItemHolderMap() : MapIterator(m_holdersById), m_lookup(std::make_unique<Lookup>()) {}
InfoItemHolderMap::~InfoItemHolderMap() = default;

int InfoItemHolderMap::Insert(boost::intrusive_ptr<InfoItemHolder> const& holder)
{
    if (!holder)
        return IfErrNullArgument;
    unsigned int const id = InfoOf(*holder).GetId();
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
        std::string const& name = InfoOf(*holder).GetName();
        auto const [first, last] = Find_(name);
        auto const byName = std::find_if(first, last, [&](auto const& entry) { return entry.second == holder; });
        if (byName == first) {
            m_lookup->byName.Erase(Detail::TagOf(name), first);
            if (std::next(first) != last)
                m_lookup->byName.Insert(Detail::TagOf(name), std::next(first));
        }
        m_holdersByName.erase(byName);
    }
    m_lookup->byId.Erase(id, {place, holder.get()});
    m_holdersById.erase(place);
    return 0;
}

std::pair<bool, InfoItemHolderMap::ById::const_iterator> InfoItemHolderMap::Find(unsigned int const& id)
{
    return Find_(id);
}

std::pair<InfoItemHolderMap::ByName::const_iterator, InfoItemHolderMap::ByName::const_iterator>
InfoItemHolderMap::Find(std::string const& name)
{
    return Find_(name);
}

void InfoItemHolderMap::Clear() noexcept
{
    m_lookup->byId.Clear();
    m_lookup->byName.Clear();
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

std::pair<bool, InfoItemHolderMap::ById::iterator> InfoItemHolderMap::Find_(unsigned int const& id)
{
    if (auto const* const place = m_lookup->byId.Find(id, [](auto const&) { return true; }))
        return {true, place->entry};
    if (m_lookup->byId.IsComplete())
        return {false, m_holdersById.end()};
    auto const place = m_holdersById.find(id);
    return {place != m_holdersById.end(), place};
}

std::pair<InfoItemHolderMap::ByName::iterator, InfoItemHolderMap::ByName::iterator>
InfoItemHolderMap::Find_(std::string const& name)
{
    EnterPending_();
    auto const* const first =
        m_lookup->byName.Find(Detail::TagOf(name), [&](auto const& place) { return place->first == name; });
    if (!first)
        return m_lookup->byName.IsComplete() ? std::pair(m_holdersByName.end(), m_holdersByName.end())
                                             : m_holdersByName.equal_range(name);
    auto last = std::next(*first);
    if (last != m_holdersByName.end() && last->first == name)
        last = m_holdersByName.upper_bound(name);
    return {*first, last};
}

void InfoItemHolderMap::EnterPending_()
{
    auto& pending = m_lookup->pending;
    // The least name is the last one: what is entered leaves at once, and goes to the end of a map that was empty.
    std::sort(pending.begin(), pending.end(), [](InfoItemHolder const* a, InfoItemHolder const* b) {
        return InfoOf(*b).GetName() < InfoOf(*a).GetName();
    });
    while (!pending.empty()) {
        std::string const& name = InfoOf(*pending.back()).GetName();
        m_lookup->byName.MakeRoom();
        auto const place = m_holdersByName.emplace_hint(m_holdersByName.end(), name, pending.back());
        if (place == m_holdersByName.begin() || std::prev(place)->first != name)
            m_lookup->byName.Insert(Detail::TagOf(name), place);
        pending.pop_back();
    }
}

} // namespace Legacy::If
