#include <Legacy/If/InfoItemDirectoryDelta.h>

namespace Legacy::If {

namespace {

template<typename Map>
int Enter(Map& map, typename Map::key_type const& key, typename Map::mapped_type const& value)
{
    auto const size = map.size();
    map.try_emplace(map.end(), key, value); // deltas are mostly gathered in order
    return map.size() != size ? 0 : IfErrAlreadyExists;
}

} // namespace

InfoItemDirectoryDelta::InfoItemDirectoryDelta() = default;
InfoItemDirectoryDelta::InfoItemDirectoryDelta(InfoItemDirectoryDelta const& other) = default;
InfoItemDirectoryDelta& InfoItemDirectoryDelta::operator=(InfoItemDirectoryDelta const& other) = default;
InfoItemDirectoryDelta::~InfoItemDirectoryDelta() = default;

int InfoItemDirectoryDelta::AddSection(SectionId const& section)
{
    return Enter(m_sectionIdMap, section.GetInfoItemSectionId(), section);
}

int InfoItemDirectoryDelta::AddInfo(boost::intrusive_ptr<InfoHolder const> const& info)
{
    if (!info || !info->GetInfo())
        return IfErrNullArgument;
    return Enter(m_infoHolderPtrMap, info->GetInfo()->GetId(), info);
}

int InfoItemDirectoryDelta::AddItem(boost::intrusive_ptr<ItemHolder const> const& item)
{
    if (!item || !item->GetItem())
        return IfErrNullArgument;
    return Enter(m_itemHolderPtrMap, item->GetItem()->GetId(), item);
}

bool InfoItemDirectoryDelta::Empty() const noexcept
{
    return m_sectionIdMap.empty() && m_infoHolderPtrMap.empty() && m_itemHolderPtrMap.empty();
}

} // namespace Legacy::If
