#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/ReturnCodes.h>
#include <Legacy/If/Section.h>

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Legacy::If {

/// The storage behind `GenericContainer`, and the container of sections: the same operations under the same rules,
/// except that a copy of the storage shares the elements and only #DeepCopy copies them.
///
/// This header alone shows how elements are stored; include it for a container of sections and nothing else. Not for
/// two threads at once while one of them changes it.
template<typename Element, typename Ptr, typename ConstPtr, typename Key>
class LEGACY_IF_API GenericContainerImpl
{
public:
    GenericContainerImpl();
    /// Shares the elements.
    GenericContainerImpl(GenericContainerImpl const& other);
    virtual ~GenericContainerImpl();
    /// Replaces the content by the other's elements, which both then share.
    GenericContainerImpl& operator=(GenericContainerImpl const& other);

    /// New storage that holds a copy of every element, made by the element's own `DeepCopy`. The caller owns it.
    GenericContainerImpl* DeepCopy() const;

    int Add(Ptr const& element);
    int Add(std::vector<Ptr> const& elements);
    void Set(Ptr const& element);
    void Set(std::vector<Ptr> const& elements);

    Ptr Get(Key const& key) const;
    int Get(Key const& key, Ptr& element) const;
    int Get(std::vector<Key> const& keys, std::vector<Ptr>& elements) const;
    void Get(std::vector<Ptr>& elements) const;
    void Get(std::vector<ConstPtr>& elements) const;

    Ptr Find(std::string const& name) const;
    bool FindId(std::string const& name, Key& key) const;
    bool IsPresent(Key const& key) const;

    int Remove(Key key);
    int Remove(std::vector<Key> const& keys);
    void Clear();

    bool Empty() const;
    unsigned int Size() const;

private:
    /// An element beside what the indices ask it for again and again: its key, if that is a number, and the hash of its
    /// name.
    struct Entry
    {
        Ptr element;
        unsigned int number = 0;
        unsigned int nameHash = 0;

        explicit Entry(Ptr const& stored);
        operator Ptr const&() const noexcept { return element; }
        operator ConstPtr() const noexcept { return element; }
    };
    /// A name to search for, or that of an element.
    struct Name
    {
        std::string const* text;
        unsigned int hash;

        explicit Name(std::string const& name);
        explicit Name(Entry const& entry);
        bool operator==(Name const& other) const;
    };
    struct KeyOf
    {
        using result_type = Key;
        Key const& operator()(Entry const& entry) const;
    };
    struct NameOf
    {
        using result_type = Name;
        Name operator()(Entry const& entry) const;
    };
    struct HashOf
    {
        std::size_t operator()(Key const& key) const;
        std::size_t operator()(Name const& name) const;
    };
    using Store = boost::multi_index_container<
        Entry, boost::multi_index::indexed_by<boost::multi_index::ordered_unique<KeyOf>,
                                              boost::multi_index::hashed_unique<KeyOf, HashOf>,
                                              boost::multi_index::hashed_non_unique<NameOf, HashOf>>>;

    Store m_store;
};

extern template class LEGACY_IF_API
    GenericContainerImpl<InfoBase, boost::intrusive_ptr<InfoBase>, boost::intrusive_ptr<InfoBase const>, unsigned int>;
extern template class LEGACY_IF_API
    GenericContainerImpl<ItemBase, boost::intrusive_ptr<ItemBase>, boost::intrusive_ptr<ItemBase const>, unsigned int>;
extern template class LEGACY_IF_API GenericContainerImpl<InfoHolder, boost::intrusive_ptr<InfoHolder>,
                                                         boost::intrusive_ptr<InfoHolder const>, unsigned int>;
extern template class LEGACY_IF_API GenericContainerImpl<ItemHolder, boost::intrusive_ptr<ItemHolder>,
                                                         boost::intrusive_ptr<ItemHolder const>, unsigned int>;
extern template class LEGACY_IF_API
    GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>, SectionId_t>;

} // namespace Legacy::If
