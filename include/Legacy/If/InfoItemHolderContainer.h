#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/GenericContainer.h>
#include <Legacy/If/InfoItemHolderDefs.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>

namespace Legacy::If {

extern template class LEGACY_IF_API GenericContainer<InfoHolder, boost::intrusive_ptr<InfoHolder>,
                                                     boost::intrusive_ptr<InfoHolder const>, unsigned int>;
extern template class LEGACY_IF_API GenericContainer<ItemHolder, boost::intrusive_ptr<ItemHolder>,
                                                     boost::intrusive_ptr<ItemHolder const>, unsigned int>;

/// Holders of schemas by the id and the name of the schema.
class LEGACY_IF_API InfoHolderContainer : public GenericContainer<InfoHolder, boost::intrusive_ptr<InfoHolder>,
                                                                  boost::intrusive_ptr<InfoHolder const>, unsigned int>
{
public:
    InfoHolderContainer();
    InfoHolderContainer(InfoHolderContainer const& other);
    ~InfoHolderContainer() override;
    InfoHolderContainer const& operator=(InfoHolderContainer const& other);
};

/// Holders of values by the id of the value. Values have no names: all are found under the empty one.
class LEGACY_IF_API ItemHolderContainer : public GenericContainer<ItemHolder, boost::intrusive_ptr<ItemHolder>,
                                                                  boost::intrusive_ptr<ItemHolder const>, unsigned int>
{
public:
    ItemHolderContainer();
    ItemHolderContainer(ItemHolderContainer const& other);
    ~ItemHolderContainer() override;
    ItemHolderContainer const& operator=(ItemHolderContainer const& other);
};

/// Holders of schemas and of values side by side. Nothing ties the ones to the others. A copy holds copies of all
/// holders.
class LEGACY_IF_API InfoItemHolderContainer
{
public:
    InfoItemHolderContainer();
    InfoItemHolderContainer(InfoItemHolderContainer const& other);
    virtual ~InfoItemHolderContainer();
    /// Takes the schemas first, then the values; each of the two is taken whole or not at all.
    InfoItemHolderContainer& operator=(InfoItemHolderContainer const& other);

    InfoHolderContainer& Infos() noexcept { return m_infos; }
    InfoHolderContainer const& Infos() const noexcept { return m_infos; }
    ItemHolderContainer& Items() noexcept { return m_items; }
    ItemHolderContainer const& Items() const noexcept { return m_items; }

    /// The id of some schema with that name; the values are not searched.
    /// @return whether there is one; otherwise `id` is left alone.
    bool FindInfoItemId(std::string const& name, unsigned int& id) const;

private:
    InfoHolderContainer m_infos;
    ItemHolderContainer m_items;
};

} // namespace Legacy::If
