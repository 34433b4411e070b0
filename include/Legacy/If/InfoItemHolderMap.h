#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/InfoItemSectionId.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Legacy::If {

/// A read-only view of a map that somebody else owns and keeps alive: its entries in ascending key order, without the
/// map. As good as the map itself beside threads that change it.
template<typename K, typename V>
class LEGACY_IF_API MapIterator
{
public:
    /// A place in the map, valid as long as its entry stands. Step with `++it`, read `it->first` and `it->second`.
    struct Iterator
    {
        typename std::map<K, V>::const_iterator place;

        std::pair<K const, V> const& operator*() const noexcept { return *place; }
        std::pair<K const, V> const* operator->() const noexcept { return &*place; }

        Iterator& operator++() noexcept
        {
            ++place;
            return *this;
        }
        Iterator operator++(int) noexcept { return Iterator{place++}; }

        friend bool operator==(Iterator const&, Iterator const&) noexcept = default;
    };

    explicit MapIterator(std::map<K, V>& map) noexcept : m_map(&map) {}

    Iterator IterBegin() const noexcept { return Iterator{m_map->cbegin()}; }
    Iterator IterEnd() const noexcept { return Iterator{m_map->cend()}; }
    unsigned int Size() const noexcept { return static_cast<unsigned int>(m_map->size()); }

private:
    std::map<K, V> const* m_map;
};

extern template class LEGACY_IF_API MapIterator<unsigned int, boost::intrusive_ptr<InfoItemHolder>>;

/// The parameters of a directory by id and by name. Ids are unique; parameters of different sections may bear one name.
/// The base walks them in ascending id order.
///
/// Const operations may run on many threads while none changes the map; the search by name is not one of them.
class LEGACY_IF_API InfoItemHolderMap : public MapIterator<unsigned int, boost::intrusive_ptr<InfoItemHolder>>
{
    using ById = std::map<unsigned int, boost::intrusive_ptr<InfoItemHolder>>;
    using ByName = std::multimap<std::string, boost::intrusive_ptr<InfoItemHolder>>;

public:
    InfoItemHolderMap();
    /// Not to be copied: the base looks at this object's own map.
    InfoItemHolderMap(InfoItemHolderMap const&) = delete;
    InfoItemHolderMap& operator=(InfoItemHolderMap const&) = delete;
    ~InfoItemHolderMap();

    /// Enters the holder under the id and the name of its schema.
    /// @return 0; #IfErrNullArgument; #IfErrAlreadyExists if the id is taken. On failure nothing is changed.
    int Insert(boost::intrusive_ptr<InfoItemHolder> const& holder);
    /// @return 0; #IfErrNotFound.
    int Erase(unsigned int const& id);

    /// Whether the id is present, and its place, or the end.
    std::pair<bool, ById::const_iterator> Find(unsigned int const& id) const;
    /// The range of all holders of that name in the order of their arrival, empty if there is none.
    ///
    /// Not const: holders are sorted by name when a name is first asked for, so that those who never ask do not pay.
    /// This may allocate, and is a change as far as threads are concerned.
    std::pair<ByName::const_iterator, ByName::const_iterator> Find(std::string const& name);

    bool Empty() const noexcept { return m_holdersById.empty(); }
    void Clear() noexcept;

private:
    friend class InfoItemDirectory;
    struct Lookup;
    struct Place;

    InfoItemHolder* Get_(unsigned int id) const;
    /// Finds parameters, null where there is none, and starts to bring all of them into the cache, where one search
    /// after the other would wait for each.
    void Get_(std::span<unsigned int const> ids, InfoItemHolder** found) const;
    /// Finds what a directory entered in the section, whose path has that hash.
    InfoItemHolder* Get_(InfoItemSectionId section, std::uint32_t pathHash, std::string_view name,
                         std::uint32_t nameHash) const;
    /// Starts to bring that into the cache.
    void Fetch_(std::uint32_t pathHash, std::uint32_t nameHash) const noexcept;
    bool KnowsAllInSections_() const noexcept;
    void MakeRoomInSections_();
    void EnterInSection_(InfoItemHolder& holder, std::uint32_t pathHash) noexcept;
    static InfoBase const& InfoOf_(InfoItemHolder const& holder) noexcept { return *holder.m_schema; }
    std::pair<bool, ById::iterator> Find_(unsigned int const& id);
    std::pair<ByName::iterator, ByName::iterator> Find_(std::string const& name);
    void EnterPending_();
    void EraseName_(InfoItemHolder const& holder) noexcept;

    ById m_holdersById;
    ByName m_holdersByName; // without those that are pending
    std::unique_ptr<Lookup> m_lookup;
};

} // namespace Legacy::If
