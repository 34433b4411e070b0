#include <Legacy/If/InfoItemHolderContainer.h>

namespace Legacy::If {

InfoHolderContainer::InfoHolderContainer() = default;
InfoHolderContainer::InfoHolderContainer(InfoHolderContainer const& other) = default;
InfoHolderContainer::~InfoHolderContainer() = default;

InfoHolderContainer const& InfoHolderContainer::operator=(InfoHolderContainer const& other)
{
    GenericContainer::operator=(other);
    return *this;
}

ItemHolderContainer::ItemHolderContainer() = default;
ItemHolderContainer::ItemHolderContainer(ItemHolderContainer const& other) = default;
ItemHolderContainer::~ItemHolderContainer() = default;

ItemHolderContainer const& ItemHolderContainer::operator=(ItemHolderContainer const& other)
{
    GenericContainer::operator=(other);
    return *this;
}

InfoItemHolderContainer::InfoItemHolderContainer() = default;
InfoItemHolderContainer::InfoItemHolderContainer(InfoItemHolderContainer const& other) = default;
InfoItemHolderContainer::~InfoItemHolderContainer() = default;
InfoItemHolderContainer& InfoItemHolderContainer::operator=(InfoItemHolderContainer const& other) = default;

bool InfoItemHolderContainer::FindInfoItemId(std::string const& name, unsigned int& id) const
{
    return m_infos.FindId(name, id);
}

} // namespace Legacy::If
