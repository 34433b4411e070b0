#include "Device.h"

#include "ValueText.h"

#include <sstream>

namespace HostNetwork {

using namespace Legacy::If;

namespace {

std::string SchemaText(InfoBase const& info)
{
    std::ostringstream text;
    text << info;
    return Printable(text.str());
}

} // namespace

std::shared_ptr<InfoItemDirectoryDelta> Device::TakeChanges()
{
    auto delta = std::make_shared<InfoItemDirectoryDelta>();
    for (auto const& [id, info] : m_changedInfos)
        delta->AddInfo(info);
    for (auto const& [id, item] : m_changedItems)
        delta->AddItem(item);
    m_changedInfos.clear();
    m_changedItems.clear();
    return delta;
}

std::vector<SectionId> Device::GetSections() const
{
    std::vector<SectionId> sections;
    std::vector<SectionId> waiting;
    GetTopLevelSections(waiting);
    while (!waiting.empty()) {
        sections.push_back(waiting.front());
        std::vector<SectionId> below;
        GetSubsections(waiting.front().GetInfoItemSectionId(), below);
        waiting.erase(waiting.begin());
        waiting.insert(waiting.begin(), below.begin(), below.end());
    }
    return sections;
}

std::map<InfoItemSectionId, std::vector<Device::Parameter_t>> Device::GetParameters() const
{
    std::map<InfoItemSectionId, std::vector<Parameter_t>> parameters;
    std::vector<Parameter_t> all;
    GetAllInfoItems(all);
    for (auto const& parameter : all) {
        InfoItemSectionId const id(parameter->GetInfo()->GetInfo()->GetId());
        parameters[id.GetSectionId(id.Depth())].push_back(parameter);
    }
    return parameters;
}

std::string Device::PathOf(InfoBase const& info) const
{
    std::string const section = FindSection(InfoItemSectionId(info.GetId())).GetSectionName();
    return Printable(section + SectionId::k_sectionDelim + info.GetName());
}

void Device::InfoChanged_(boost::intrusive_ptr<InfoHolder const> const& former, Parameter_t const& infoItem)
{
    auto const& info = *infoItem->GetInfo()->GetInfo();
    m_changedInfos[info.GetId()] = infoItem->GetInfo();
    ++m_infoChanges;
    if (m_watcher)
        m_watcher("InfoChanged_  " + PathOf(info) + ": " +
                  (former ? SchemaText(*former->GetInfo()) + "  ->  " : std::string()) + SchemaText(info));
}

void Device::ItemChanged_(boost::intrusive_ptr<ItemHolder const> const& former, Parameter_t const& infoItem)
{
    auto const& info = *infoItem->GetInfo()->GetInfo();
    m_changedItems[info.GetId()] = infoItem->GetItem();
    ++m_itemChanges;
    if (m_watcher)
        m_watcher("ItemChanged_  " + PathOf(info) + ": " +
                  (former ? ShowValue(info, *former->GetItem()) + "  ->  " : std::string()) +
                  ShowValue(info, *infoItem->GetItem()->GetItem()));
}

} // namespace HostNetwork
