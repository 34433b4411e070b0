#include "core/ReserveMore.h"

#include <Legacy/If/GenericContainer.h>
#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/InfoItemHolderContainer.h>

#include <memory>
#include <utility>

namespace Legacy::If {

namespace {

template<typename Ptr>
bool IsStorable(Ptr const& element)
{
    return element && Detail::Subject(*element);
}

/// Makes room for all elements, the length of what was asked for notwithstanding.
template<typename Pointer>
void Reserve(std::vector<Pointer>& elements, std::size_t size)
{
    if (elements.capacity() < size)
        elements.reserve(size);
}

/// By a loop, since the vector's own insertion would walk the tree once more to count it.
template<typename Store, typename Pointer>
void AppendAll(Store const& store, std::vector<Pointer>& elements)
{
    Detail::ReserveMore(elements, store.size());
    for (auto const& stored : store)
        elements.emplace_back(stored.element);
}

/// Whether the key was free. Elements mostly come in ascending order, so the end is looked at first.
template<typename Store, typename Ptr>
bool Insert(Store& store, Ptr const& element)
{
    auto const size = store.size();
    store.emplace_hint(store.end(), element);
    return store.size() != size;
}

} // namespace

// The storage.

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainerImpl<Element, Ptr, ConstPtr, Key>::GenericContainerImpl()
    : m_pool(std::make_unique<Detail::NodePool>()), m_store(typename Store::ctor_args_list(), *m_pool)
{}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainerImpl<Element, Ptr, ConstPtr, Key>::GenericContainerImpl(GenericContainerImpl const& other)
    : m_pool(std::make_unique<Detail::NodePool>()), m_store(other.m_store, *m_pool)
{}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainerImpl<Element, Ptr, ConstPtr, Key>::~GenericContainerImpl() = default;

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainerImpl<Element, Ptr, ConstPtr, Key>&
GenericContainerImpl<Element, Ptr, ConstPtr, Key>::operator=(GenericContainerImpl const& other)
{
    if (this != &other) {
        GenericContainerImpl copy(other);
        m_store.swap(copy.m_store);
        m_pool.swap(copy.m_pool);
    }
    return *this;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainerImpl<Element, Ptr, ConstPtr, Key>* GenericContainerImpl<Element, Ptr, ConstPtr, Key>::DeepCopy() const
{
    auto copy = std::make_unique<GenericContainerImpl>();
    Store& store = copy->m_store;
    store.template get<1>().rehash(m_store.template get<1>().bucket_count());
    store.template get<2>().rehash(m_store.template get<2>().bucket_count());
    // The walk is in key order, so each copy goes to the end.
    for (auto const& stored : m_store) {
        Ptr const element(stored.element->DeepCopy());
        if (IsStorable(element)) // the holders of applications may give no copy
            Insert(store, element);
    }
    return copy.release();
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Add(Ptr const& element)
{
    if (!IsStorable(element))
        return 0;
    return Insert(m_store, element) ? 0 : IfErrDuplicateId;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Add(std::vector<Ptr> const& elements)
{
    for (Ptr const& element : elements)
        if (IsStorable(element) && IsPresent(Detail::Subject(*element)->GetId()))
            return IfErrDuplicateId;
    auto next = elements.begin();
    try {
        for (; next != elements.end(); ++next)
            Set(*next);
    } catch (...) {
        for (auto added = elements.begin(); added != next; ++added) // all were new
            if (IsStorable(*added))
                m_store.template get<1>().erase(Detail::Hashed<Key>::Of(Detail::Subject(**added)->GetId()));
        throw;
    }
    return 0;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Set(Ptr const& element)
{
    if (!IsStorable(element))
        return;
    auto& byKey = m_store.template get<1>();
    auto const place = byKey.find(Detail::Hashed<Key>::Of(Detail::Subject(*element)->GetId()));
    if (place == byKey.end())
        Insert(m_store, element);
    else
        byKey.replace(place, typename Store::value_type(element));
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Set(std::vector<Ptr> const& elements)
{
    for (Ptr const& element : elements)
        Set(element);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
Ptr GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Get(Key const& key) const
{
    auto const& byKey = m_store.template get<1>();
    auto const place = byKey.find(Detail::Hashed<Key>::Of(key));
    return place == byKey.end() ? Ptr() : place->element;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Get(Key const& key, Ptr& element) const
{
    element = Get(key);
    return element ? 0 : IfErrNotFound;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Get(std::vector<Key> const& keys,
                                                           std::vector<Ptr>& elements) const
{
    Reserve(elements, m_store.size());
    for (Key const& key : keys) {
        Ptr element = Get(key);
        if (!element)
            return IfErrNotFound;
        elements.push_back(std::move(element));
    }
    return 0;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Get(std::vector<Ptr>& elements) const
{
    AppendAll(m_store, elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Get(std::vector<ConstPtr>& elements) const
{
    AppendAll(m_store, elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
Ptr GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Find(std::string const& name) const
{
    auto const& byName = m_store.template get<2>();
    auto const place = byName.find(Detail::Hashed<std::string>::Of(name));
    return place == byName.end() ? Ptr() : place->element;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
bool GenericContainerImpl<Element, Ptr, ConstPtr, Key>::FindId(std::string const& name, Key& key) const
{
    Ptr const element = Find(name);
    if (!element)
        return false;
    key = Detail::Subject(*element)->GetId();
    return true;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
bool GenericContainerImpl<Element, Ptr, ConstPtr, Key>::IsPresent(Key const& key) const
{
    auto const& byKey = m_store.template get<1>();
    return byKey.find(Detail::Hashed<Key>::Of(key)) != byKey.end();
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Remove(Key key)
{
    return m_store.template get<1>().erase(Detail::Hashed<Key>::Of(key)) != 0 ? 0 : IfErrNotFound;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Remove(std::vector<Key> const& keys)
{
    for (Key const& key : keys)
        if (!IsPresent(key))
            return IfErrNotFound;
    for (Key const& key : keys)
        m_store.template get<1>().erase(Detail::Hashed<Key>::Of(key));
    return 0;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Clear()
{
    m_store.clear();
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
bool GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Empty() const
{
    return m_store.empty();
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
unsigned int GenericContainerImpl<Element, Ptr, ConstPtr, Key>::Size() const
{
    return static_cast<unsigned int>(m_store.size());
}

// The facade.

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainer<Element, Ptr, ConstPtr, Key>::GenericContainer()
    : m_impl(std::make_unique<GenericContainerImpl<Element, Ptr, ConstPtr, Key>>())
{}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainer<Element, Ptr, ConstPtr, Key>::GenericContainer(GenericContainer const& other)
    : m_impl(other.m_impl->DeepCopy())
{}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainer<Element, Ptr, ConstPtr, Key>::~GenericContainer() = default;

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
GenericContainer<Element, Ptr, ConstPtr, Key> const&
GenericContainer<Element, Ptr, ConstPtr, Key>::operator=(GenericContainer const& other)
{
    if (this != &other)
        m_impl.reset(other.m_impl->DeepCopy());
    return *this;
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainer<Element, Ptr, ConstPtr, Key>::Add(Ptr const& element)
{
    return m_impl->Add(element);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainer<Element, Ptr, ConstPtr, Key>::Add(std::vector<Ptr> const& elements)
{
    return m_impl->Add(elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainer<Element, Ptr, ConstPtr, Key>::Set(Ptr const& element)
{
    m_impl->Set(element);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainer<Element, Ptr, ConstPtr, Key>::Set(std::vector<Ptr> const& elements)
{
    m_impl->Set(elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
Ptr GenericContainer<Element, Ptr, ConstPtr, Key>::Get(Key const& key) const
{
    return m_impl->Get(key);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainer<Element, Ptr, ConstPtr, Key>::Get(Key const& key, Ptr& element) const
{
    return m_impl->Get(key, element);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainer<Element, Ptr, ConstPtr, Key>::Get(std::vector<Key> const& keys, std::vector<Ptr>& elements) const
{
    return m_impl->Get(keys, elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainer<Element, Ptr, ConstPtr, Key>::Get(std::vector<Ptr>& elements) const
{
    m_impl->Get(elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainer<Element, Ptr, ConstPtr, Key>::Get(std::vector<ConstPtr>& elements) const
{
    m_impl->Get(elements);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
Ptr GenericContainer<Element, Ptr, ConstPtr, Key>::Find(std::string const& name) const
{
    return m_impl->Find(name);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
bool GenericContainer<Element, Ptr, ConstPtr, Key>::FindId(std::string const& name, Key& key) const
{
    return m_impl->FindId(name, key);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
bool GenericContainer<Element, Ptr, ConstPtr, Key>::IsPresent(Key const& key) const
{
    return m_impl->IsPresent(key);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainer<Element, Ptr, ConstPtr, Key>::Remove(Key key)
{
    return m_impl->Remove(key);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
int GenericContainer<Element, Ptr, ConstPtr, Key>::Remove(std::vector<Key> const& keys)
{
    return m_impl->Remove(keys);
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
void GenericContainer<Element, Ptr, ConstPtr, Key>::Clear()
{
    m_impl->Clear();
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
bool GenericContainer<Element, Ptr, ConstPtr, Key>::Empty() const
{
    return m_impl->Empty();
}

template<typename Element, typename Ptr, typename ConstPtr, typename Key>
unsigned int GenericContainer<Element, Ptr, ConstPtr, Key>::Size() const
{
    return m_impl->Size();
}

template class GenericContainerImpl<InfoBase, boost::intrusive_ptr<InfoBase>, boost::intrusive_ptr<InfoBase const>,
                                    unsigned int>;
template class GenericContainerImpl<ItemBase, boost::intrusive_ptr<ItemBase>, boost::intrusive_ptr<ItemBase const>,
                                    unsigned int>;
template class GenericContainerImpl<InfoHolder, boost::intrusive_ptr<InfoHolder>,
                                    boost::intrusive_ptr<InfoHolder const>, unsigned int>;
template class GenericContainerImpl<ItemHolder, boost::intrusive_ptr<ItemHolder>,
                                    boost::intrusive_ptr<ItemHolder const>, unsigned int>;
template class GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>,
                                    SectionId_t>;

template class GenericContainer<InfoBase, boost::intrusive_ptr<InfoBase>, boost::intrusive_ptr<InfoBase const>,
                                unsigned int>;
template class GenericContainer<ItemBase, boost::intrusive_ptr<ItemBase>, boost::intrusive_ptr<ItemBase const>,
                                unsigned int>;
template class GenericContainer<InfoHolder, boost::intrusive_ptr<InfoHolder>, boost::intrusive_ptr<InfoHolder const>,
                                unsigned int>;
template class GenericContainer<ItemHolder, boost::intrusive_ptr<ItemHolder>, boost::intrusive_ptr<ItemHolder const>,
                                unsigned int>;

} // namespace Legacy::If
