#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/ReturnCodes.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
class LEGACY_IF_API GenericContainerImpl;

/// A set of shared objects, found by key or by name and walked in ascending key order.
///
/// Keys are unique, names need not be, and a null pointer is never stored. A holder of nothing has no key and counts as
/// a null pointer. Each container owns its storage; the elements are shared with whoever else holds them, but a copy
/// of a container holds copies of the elements. Const operations may run on many threads while none changes it.
template<typename Element, typename Ptr, typename ConstPtr, typename Key>
class LEGACY_IF_API GenericContainer
{
public:
    GenericContainer();
    /// Copies every element by its own `DeepCopy`. One that gives null or a holder of nothing is left out.
    GenericContainer(GenericContainer const& other);
    virtual ~GenericContainer();

    /// Replaces the content by copies of the other's elements. If a copy fails, this container is as it was.
    GenericContainer const& operator=(GenericContainer const& other);

    /// Stores the element.
    /// @return 0, also for a null pointer, which stores nothing; #IfErrDuplicateId if the key is taken: the first
    ///         element stays.
    int Add(Ptr const& element);
    /// Stores all elements or none.
    ///
    /// Only keys that the container held before the call count as taken: of two new elements with one key the later
    /// one is kept.
    /// @return 0; #IfErrDuplicateId if any key is taken: nothing is stored.
    int Add(std::vector<Ptr> const& elements);

    /// Stores the element in place of one with the same key. A null pointer does nothing.
    void Set(Ptr const& element);
    /// The same for each element in turn.
    void Set(std::vector<Ptr> const& elements);

    /// The element with that key, or null.
    Ptr Get(Key const& key) const;
    /// @return 0; #IfErrNotFound, with `element` null.
    int Get(Key const& key, Ptr& element) const;
    /// Appends the element of each key.
    /// @return 0; #IfErrNotFound at the first key that is absent: what was found before it stays appended.
    int Get(std::vector<Key> const& keys, std::vector<Ptr>& elements) const;
    /// Appends all elements in ascending key order.
    void Get(std::vector<Ptr>& elements) const;
    void Get(std::vector<ConstPtr>& elements) const;

    /// Some element with that name, or null.
    Ptr Find(std::string const& name) const;
    /// The key of some element with that name.
    /// @return whether there is one; otherwise `key` is left alone.
    bool FindId(std::string const& name, Key& key) const;
    bool IsPresent(Key const& key) const;

    /// @return 0; #IfErrNotFound.
    int Remove(Key key);
    /// Removes all elements or none. A key may stand in the list twice.
    /// @return 0; #IfErrNotFound if any key is absent: nothing is removed.
    int Remove(std::vector<Key> const& keys);
    void Clear();

    bool Empty() const;
    unsigned int Size() const;

private:
    std::unique_ptr<GenericContainerImpl<Element, Ptr, ConstPtr, Key>> m_impl;
};

} // namespace Legacy::If
