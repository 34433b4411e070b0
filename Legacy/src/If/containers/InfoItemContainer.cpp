#include <Legacy/If/InfoItemContainer.h>

namespace Legacy::If {

InfoContainer::InfoContainer() = default;
InfoContainer::InfoContainer(InfoContainer const& other) = default;
InfoContainer::~InfoContainer() = default;

InfoContainer const& InfoContainer::operator=(InfoContainer const& other)
{
    GenericContainer::operator=(other);
    return *this;
}

ItemContainer::ItemContainer() = default;
ItemContainer::ItemContainer(ItemContainer const& other) = default;
ItemContainer::~ItemContainer() = default;

ItemContainer const& ItemContainer::operator=(ItemContainer const& other)
{
    GenericContainer::operator=(other);
    return *this;
}

InfoItemContainer::InfoItemContainer() = default;
InfoItemContainer::InfoItemContainer(InfoItemContainer const& other) = default;
InfoItemContainer::~InfoItemContainer() = default;
InfoItemContainer& InfoItemContainer::operator=(InfoItemContainer const& other) = default;

bool InfoItemContainer::FindInfoItemId(std::string const& name, unsigned int& id) const
{
    return m_infos.FindId(name, id);
}

} // namespace Legacy::If
