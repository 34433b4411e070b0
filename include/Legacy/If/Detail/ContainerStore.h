#pragma once

#include <Legacy/If/Detail/NodePool.h>
#include <Legacy/If/Detail/SeededHash.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/Section.h>

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>

#include <cstddef>
#include <string>
#include <tuple>
#include <type_traits>

namespace Legacy::If::Detail {

/// What an element goes by: the element itself, or what a holder holds.
template<typename Element>
auto const* Subject(Element const& element)
{
    if constexpr (std::is_same_v<Element, InfoHolder>)
        return element.GetInfo().get();
    else if constexpr (std::is_same_v<Element, ItemHolder>)
        return element.GetItem().get();
    else
        return &element;
}

/// A key by its parts, which are compared in place: the operators of `SectionId_t` copy.
inline auto PartsOf(SectionId_t const& key) noexcept { return std::tie(key.PrimaryId(), key.SecondaryId()); }
template<typename Plain>
Plain const& PartsOf(Plain const& value) noexcept
{
    return value;
}

inline unsigned int HashOf(SectionId_t const& key) noexcept
{
    return SeededHash(key.PrimaryId()) + SeededHash(key.SecondaryId());
}
inline unsigned int HashOf(std::string const& name) noexcept { return SeededHash(name); }

/// A key or a name, and its hash.
template<typename Value>
struct Hashed
{
    Value const* value;
    unsigned int hash;

    static Hashed Of(Value const& value) noexcept { return {&value, HashOf(value)}; }

    bool operator==(Hashed const& other) const noexcept
    {
        return hash == other.hash && PartsOf(*value) == PartsOf(*other.value);
    }
    friend std::size_t hash_value(Hashed const& hashed) noexcept { return hashed.hash; }
};

/// A number as a key, which is its own text and needs no hash beside it.
template<>
struct Hashed<unsigned int>
{
    unsigned int number;

    static Hashed Of(unsigned int number) noexcept { return {number}; }

    bool operator==(Hashed const&) const noexcept = default;
    friend std::size_t hash_value(Hashed const& hashed) noexcept { return SeededHash(hashed.number); }
};

/// An element beside what the indices ask it for again and again: its key, if that is a number, or the hash of its key,
/// and the hash of its name.
template<typename Ptr, typename Key>
struct Stored
{
    Ptr element;
    unsigned int numberOrHash;
    unsigned int nameHash;

    explicit Stored(Ptr const& stored) : element(stored), nameHash(HashOf(Subject(*stored)->GetName()))
    {
        if constexpr (std::is_integral_v<Key>)
            numberOrHash = Subject(*stored)->GetId();
        else
            numberOrHash = HashOf(Subject(*stored)->GetId());
    }
};

template<typename Ptr, typename Key>
struct StoredKey
{
    using result_type = Key;
    Key const& operator()(Stored<Ptr, Key> const& stored) const noexcept
    {
        if constexpr (std::is_integral_v<Key>)
            return stored.numberOrHash;
        else
            return Subject(*stored.element)->GetId();
    }
};

template<typename Key>
struct KeyOrder
{
    bool operator()(Key const& a, Key const& b) const noexcept { return PartsOf(a) < PartsOf(b); }
};

template<typename Ptr, typename Key>
struct StoredHashedKey
{
    using result_type = Hashed<Key>;
    result_type operator()(Stored<Ptr, Key> const& stored) const noexcept
    {
        if constexpr (std::is_integral_v<Key>)
            return {stored.numberOrHash};
        else
            return {&Subject(*stored.element)->GetId(), stored.numberOrHash};
    }
};

template<typename Ptr, typename Key>
struct StoredHashedName
{
    using result_type = Hashed<std::string>;
    result_type operator()(Stored<Ptr, Key> const& stored) const noexcept
    {
        return {&Subject(*stored.element)->GetName(), stored.nameHash};
    }
};

/// What a container stores its elements in: in the order of the keys, by key, and by name. The two last hash under the
/// seed of this process, so that nobody who chooses keys and names can crowd them.
template<typename Ptr, typename Key>
using ContainerStore = boost::multi_index_container<
    Stored<Ptr, Key>,
    boost::multi_index::indexed_by<boost::multi_index::ordered_unique<StoredKey<Ptr, Key>, KeyOrder<Key>>,
                                   boost::multi_index::hashed_unique<StoredHashedKey<Ptr, Key>>,
                                   boost::multi_index::hashed_non_unique<StoredHashedName<Ptr, Key>>>,
    PoolAllocator<Stored<Ptr, Key>>>;

} // namespace Legacy::If::Detail
