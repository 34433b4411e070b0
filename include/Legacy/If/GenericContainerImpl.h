#pragma once

#include <Legacy/If/Detail/ContainerStore.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/ReturnCodes.h>
#include <Legacy/If/Section.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// The storage behind `GenericContainer`, and the container of sections: the same operations under the same rules,
/// except that a copy of the storage shares the elements and only #DeepCopy copies them.
///
/// This header alone shows how elements are stored; include it for a container of sections and nothing else. Const
/// operations may run on many threads while none changes it.
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
    [[nodiscard]] GenericContainerImpl* DeepCopy() const;

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
    using Store = Detail::ContainerStore<Ptr, Key>;

    std::unique_ptr<Detail::NodePool> m_pool; // of the nodes, whose allocator stays with them
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
