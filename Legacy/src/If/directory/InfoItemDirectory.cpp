#include "core/ReserveMore.h"

#include <Legacy/If/Detail/SeededHash.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/InfoItemHolderMap.h>
#include <Legacy/If/SectionMap.h>
#include <Legacy/If/SectionMapElement.h>

#include <algorithm>
#include <array>
#include <span>
#include <type_traits>

namespace Legacy::If {

namespace {

using Info = boost::intrusive_ptr<InfoHolder const>;
using Item = boost::intrusive_ptr<ItemHolder const>;
using InfoItem = boost::intrusive_ptr<InfoItemHolder const>;

/// What a lookup of a parameter gives out: a part of it, the whole, or null. The lookup itself hands on plain pointers,
/// since each counted one on the way would write to the parameter twice.
Info InfoOf(InfoItemHolder const* infoItem) { return infoItem ? infoItem->GetInfo() : Info(); }
Item ItemOf(InfoItemHolder const* infoItem) { return infoItem ? infoItem->GetItem() : Item(); }
InfoItem Whole(InfoItemHolder const* infoItem) { return infoItem; }

/// What such a pointer is to point at.
template<typename Pointer>
void const* Held(InfoItemHolder const& infoItem)
{
    if constexpr (std::is_same_v<Pointer, Info>)
        return infoItem.GetInfo().get();
    else if constexpr (std::is_same_v<Pointer, Item>)
        return infoItem.GetItem().get();
    else
        return &infoItem;
}

constexpr std::size_t k_atATime = 16;

} // namespace

InfoItemDirectory::InfoItemDirectory()
    : m_sectionMap(std::make_shared<SectionMap>()), m_infoItemHolderMap(std::make_shared<InfoItemHolderMap>())
{}

InfoItemDirectory::InfoItemDirectory(InfoItemDirectory const& other) = default;
InfoItemDirectory& InfoItemDirectory::operator=(InfoItemDirectory const& other) = default;
InfoItemDirectory::~InfoItemDirectory() = default;

int InfoItemDirectory::AddSection(std::string const& path, SectionId& section)
{
    return std::min(m_sectionMap->AddSection(path, section), 0);
}

int InfoItemDirectory::AddSection(SectionId const& section) { return std::min(m_sectionMap->AddSection(section), 0); }

SectionId InfoItemDirectory::FindSection(std::string const& path) const
{
    SectionId section;
    return m_sectionMap->FindSection(path, section) == 0 ? section : SectionId();
}

SectionId InfoItemDirectory::FindSection(InfoItemSectionId const& id) const
{
    SectionId section;
    return m_sectionMap->FindSection(id, section) == 0 ? section : SectionId();
}

void InfoItemDirectory::GetTopLevelSections(std::vector<SectionId>& sections) const
{
    sections.clear();
    m_sectionMap->GetTopLevelSections(sections);
}

int InfoItemDirectory::GetSubsections(InfoItemSectionId const& id, std::vector<SectionId>& sections) const
{
    InfoItemSectionId const wanted = id; // it may lie in the vector
    sections.clear();
    return m_sectionMap->GetSubsections(wanted, sections);
}

void InfoItemDirectory::GetLeafSections(std::list<SectionId>& sections) const
{
    m_sectionMap->GetLeafSections(sections);
}

int InfoItemDirectory::AddInfo(boost::intrusive_ptr<InfoHolder const> const& info)
{
    if (!info || !info->GetInfo())
        return IfErrNullArgument;
    boost::intrusive_ptr<InfoItemHolder> const infoItem(new InfoItemHolder(info));
    if (int const code = m_infoItemHolderMap->Insert(infoItem))
        return code;
    InfoBase const& schema = *info->GetInfo();
    SectionMapElement* section = nullptr;
    int code = 0;
    try {
        m_infoItemHolderMap->MakeRoomInSections_();
        code = m_sectionMap->m_root->AddInfoAt_(schema.GetId(), schema.GetName(), section);
    } catch (...) {
        m_infoItemHolderMap->Erase(schema.GetId());
        throw;
    }
    if (code != 0) {
        m_infoItemHolderMap->Erase(schema.GetId());
        return code;
    }
    m_infoItemHolderMap->EnterInSection_(*infoItem, section->m_pathHash);
    InfoChanged_(nullptr, infoItem);
    return 0;
}

int InfoItemDirectory::SetInfo(boost::intrusive_ptr<InfoHolder const> const& info)
{
    if (!info || !info->GetInfo())
        return IfErrNullArgument;
    boost::intrusive_ptr<InfoItemHolder> const infoItem(m_infoItemHolderMap->Get_(info->GetInfo()->GetId()));
    if (!infoItem)
        return IfErrNotFound;
    auto const former = infoItem->GetInfo();
    if (!infoItem->SetInfo(info))
        return IfErrInvalidArgument;
    InfoChanged_(former, infoItem);
    return 0;
}

int InfoItemDirectory::SetItem(boost::intrusive_ptr<ItemHolder const> const& item)
{
    if (!item || !item->GetItem())
        return IfErrNullArgument;
    return SetItem_(item->GetItem()->GetId(), item);
}

int InfoItemDirectory::SetItem_(unsigned int id, Item const& item)
{
    boost::intrusive_ptr<InfoItemHolder> const infoItem(m_infoItemHolderMap->Get_(id));
    if (!infoItem)
        return IfErrNotFound;
    Item former;
    if (!infoItem->SetItem_(item, former))
        return IfErrInvalidArgument;
    ItemChanged_(former, infoItem);
    return 0;
}

Info InfoItemDirectory::FindInfo(unsigned int const& id) const { return InfoOf(m_infoItemHolderMap->Get_(id)); }

Info InfoItemDirectory::FindInfo(std::string const& sectionPath, std::string const& infoName) const
{
    return InfoOf(Find_(sectionPath, infoName));
}

Item InfoItemDirectory::FindItem(unsigned int const& id) const { return ItemOf(m_infoItemHolderMap->Get_(id)); }

Item InfoItemDirectory::FindItem(std::string const& sectionPath, std::string const& infoName) const
{
    return ItemOf(Find_(sectionPath, infoName));
}

Item InfoItemDirectory::FindItem(std::string const& infoPath) const
{
    std::string_view sectionPath;
    std::string_view infoName;
    if (!ParseInfoPath_(infoPath, sectionPath, infoName))
        return nullptr;
    // Contract: reversed on purpose. Callers of this form hand over paths that begin with the parameter's name.
    return ItemOf(Find_(infoName, sectionPath));
}

InfoItem InfoItemDirectory::FindInfoItem(unsigned int const& id) const { return Whole(m_infoItemHolderMap->Get_(id)); }

InfoItem InfoItemDirectory::FindInfoItem(std::string const& sectionPath, std::string const& infoName) const
{
    return Whole(Find_(sectionPath, infoName));
}

InfoItem InfoItemDirectory::FindInfoItem(std::string const& infoPath) const
{
    std::string_view sectionPath;
    std::string_view infoName;
    if (!ParseInfoPath_(infoPath, sectionPath, infoName))
        return nullptr;
    return Whole(Find_(sectionPath, infoName));
}

InfoItemHolder* InfoItemDirectory::Find_(std::string_view sectionPath, std::string_view infoName) const
{
    if (sectionPath.empty() || infoName.empty())
        return nullptr;
    std::uint32_t const pathHash = Detail::SeededHash(sectionPath);
    std::uint32_t const nameHash = Detail::SeededHash(infoName);
    // Most paths are spelled as the section's own: the parameter is fetched while the section is looked for.
    m_infoItemHolderMap->Fetch_(pathHash, nameHash);
    SectionMapElement const* const section = m_sectionMap->m_root->At_(sectionPath, pathHash);
    if (!section)
        return nullptr;
    if (auto* const known = m_infoItemHolderMap->Get_(section->GetSectionId().GetInfoItemSectionId(),
                                                      section->m_pathHash, infoName, nameHash))
        return known;
    InfoItemSectionId id(0);
    if (m_infoItemHolderMap->KnowsAllInSections_() || section->FindInfo_({}, infoName, id) != 0)
        return nullptr;
    return m_infoItemHolderMap->Get_(id);
}

/// Appends a part of each parameter of a section; null is left out.
template<typename Pointer>
int InfoItemDirectory::FindAll_(InfoItemSectionId const& id, std::vector<Pointer>& found,
                                Pointer (*part)(InfoItemHolder const*)) const
{
    std::vector<unsigned int> ids;
    if (int const code = m_sectionMap->GetInfos(id, ids))
        return code;
    Detail::ReserveMore(found, ids.size());
    for (std::span<unsigned int const> left(ids); !left.empty();) {
        auto const some = left.first(std::min(left.size(), k_atATime));
        std::array<InfoItemHolder*, k_atATime> infoItems;
        m_infoItemHolderMap->Get_(some, infoItems.data());
        for (std::size_t i = 0; i < some.size(); ++i)
            if (infoItems[i])
                __builtin_prefetch(Held<Pointer>(*infoItems[i]), 1);
        for (std::size_t i = 0; i < some.size(); ++i)
            if (Pointer pointer = part(infoItems[i]))
                found.push_back(std::move(pointer));
        left = left.subspan(some.size());
    }
    return 0;
}

int InfoItemDirectory::FindInfos(InfoItemSectionId const& id, std::vector<Info>& infos) const
{
    return FindAll_(id, infos, InfoOf);
}

int InfoItemDirectory::FindItems(InfoItemSectionId const& id, std::vector<Item>& items) const
{
    return FindAll_(id, items, ItemOf);
}

int InfoItemDirectory::FindInfoItems(InfoItemSectionId const& id, std::vector<InfoItem>& infoItems) const
{
    return FindAll_(id, infoItems, Whole);
}

void InfoItemDirectory::GetAllInfoItems(std::vector<boost::intrusive_ptr<InfoItemHolder const>>& infoItems) const
{
    infoItems.clear();
    infoItems.reserve(m_infoItemHolderMap->Size());
    for (auto it = m_infoItemHolderMap->IterBegin(); it != m_infoItemHolderMap->IterEnd(); ++it)
        infoItems.push_back(it->second);
}

int InfoItemDirectory::UpdateFromDelta(std::shared_ptr<InfoItemDirectoryDelta> const& delta, bool updateInfos,
                                       bool updateItems)
{
    if (!delta)
        return IfErrNullArgument;
    // The caller's own pointer may be one that a hook changes.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    auto const held = delta;
    for (auto const& [id, section] : held->GetSectionIdMap_addMod())
        if (int const code = m_sectionMap->AddSection(section))
            return code;
    if (updateInfos)
        for (auto const& [id, info] : held->GetInfoHolderPtrMap_addMod())
            if (int const code = m_infoItemHolderMap->Get_(id) ? SetInfo(info) : AddInfo(info))
                return code;
    return updateItems ? SetItems_(held->GetItemHolderPtrMap_addMod()) : 0;
}

/// Some at a time, so that they can be fetched together.
int InfoItemDirectory::SetItems_(std::map<unsigned int, Item> const& items)
{
    std::array<unsigned int, k_atATime> ids;
    for (auto next = items.begin(); next != items.end();) {
        auto const first = next;
        std::size_t count = 0;
        for (; next != items.end() && count != ids.size(); ++next) {
            ids[count++] = next->first;
            __builtin_prefetch(next->second.get(), 1);
        }
        std::array<InfoItemHolder*, k_atATime> infoItems;
        m_infoItemHolderMap->Get_({ids.data(), count}, infoItems.data());
        for (std::size_t i = 0; i < count; ++i)
            if (infoItems[i])
                __builtin_prefetch(infoItems[i]->GetItem().get(), 1);
        // A hook may change the directory, so each is asked for once more.
        for (auto it = first; it != next; ++it)
            if (int const code = SetItem_(it->first, it->second))
                return code;
    }
    return 0;
}

bool InfoItemDirectory::Empty() const { return m_infoItemHolderMap->Empty(); }

void InfoItemDirectory::Clear()
{
    m_sectionMap->Clear();
    m_infoItemHolderMap->Clear();
}

void InfoItemDirectory::InfoChanged_(boost::intrusive_ptr<InfoHolder const> const&,
                                     boost::intrusive_ptr<InfoItemHolder const> const&)
{}

void InfoItemDirectory::ItemChanged_(boost::intrusive_ptr<ItemHolder const> const&,
                                     boost::intrusive_ptr<InfoItemHolder const> const&)
{}

bool InfoItemDirectory::ParseInfoPath_(std::string_view infoPath, std::string_view& sectionPath,
                                       std::string_view& infoName) const
{
    std::size_t const delim = infoPath.rfind(SectionId::k_sectionDelim);
    if (delim == std::string_view::npos)
        return false;
    infoName = infoPath.substr(delim + 1);
    sectionPath = infoPath.substr(0, delim);
    return true;
}

} // namespace Legacy::If
