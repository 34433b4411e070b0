#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/GenericContainer.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>

namespace Legacy::If {

extern template class LEGACY_IF_API
    GenericContainer<InfoBase, boost::intrusive_ptr<InfoBase>, boost::intrusive_ptr<InfoBase const>, unsigned int>;
extern template class LEGACY_IF_API
    GenericContainer<ItemBase, boost::intrusive_ptr<ItemBase>, boost::intrusive_ptr<ItemBase const>, unsigned int>;

/// Schemas by id and by name.
class LEGACY_IF_API InfoContainer : public GenericContainer<InfoBase, boost::intrusive_ptr<InfoBase>,
                                                            boost::intrusive_ptr<InfoBase const>, unsigned int>
{
public:
    InfoContainer();
    InfoContainer(InfoContainer const& other);
    ~InfoContainer() override;
    InfoContainer const& operator=(InfoContainer const& other);
};

/// Values by id. They have no names of their own: all are found under the empty name.
class LEGACY_IF_API ItemContainer : public GenericContainer<ItemBase, boost::intrusive_ptr<ItemBase>,
                                                            boost::intrusive_ptr<ItemBase const>, unsigned int>
{
public:
    ItemContainer();
    ItemContainer(ItemContainer const& other);
    ~ItemContainer() override;
    ItemContainer const& operator=(ItemContainer const& other);
};

/// Schemas and values side by side. Nothing ties the ones to the others. A copy holds copies of all objects.
class LEGACY_IF_API InfoItemContainer
{
public:
    InfoItemContainer();
    InfoItemContainer(InfoItemContainer const& other);
    virtual ~InfoItemContainer();
    /// Takes the schemas first, then the values; each of the two is taken whole or not at all.
    InfoItemContainer& operator=(InfoItemContainer const& other);

    InfoContainer& Infos() noexcept { return m_infos; }
    InfoContainer const& Infos() const noexcept { return m_infos; }
    ItemContainer& Items() noexcept { return m_items; }
    ItemContainer const& Items() const noexcept { return m_items; }

    /// The id of some schema with that name; the values are not searched.
    /// @return whether there is one; otherwise `id` is left alone.
    bool FindInfoItemId(std::string const& name, unsigned int& id) const;

private:
    InfoContainer m_infos;
    ItemContainer m_items;
};

} // namespace Legacy::If
