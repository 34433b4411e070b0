#include "containers/PlaceIndex.h"
#include "core/ReserveMore.h"

#include <Legacy/If/SectionMapElement.h>

#include <utility>

namespace Legacy::If {

namespace {

constexpr unsigned int k_noId = 0xFFFFFFFF;
constexpr unsigned char k_noSubsection = 0xFF;

/// The first of the ascending numbers 0, 1, 2… that the keys of a map leave out.
template<typename Map, typename Number>
unsigned int FirstGap(Map const& map, Number&& number)
{
    unsigned int gap = 0;
    for (auto const& entry : map) {
        if (number(entry.first) != gap)
            break;
        ++gap;
    }
    return gap;
}

template<typename Map>
void CopyChildren(Map& children)
{
    for (auto& child : children)
        child.second = std::make_shared<SectionMapElement>(*child.second);
}

} // namespace

SectionMapElement::SectionMapElement()
    : m_pools(std::make_shared<Pools>()), m_infosByName(m_pools->infosByName), m_infosById(m_pools->infosById),
      m_isRoot(true), m_ownPaths(std::make_unique<PathIndex>())
{
    m_paths = m_ownPaths.get();
}

SectionMapElement::SectionMapElement(SectionId const& sectionId)
    : SectionMapElement(sectionId, InTree{std::make_shared<Pools>()})
{}

SectionMapElement::SectionMapElement(SectionId const& sectionId, InTree const& tree)
    : m_sectionId(sectionId), m_pools(tree.pools), m_infosByName(m_pools->infosByName), m_infosById(m_pools->infosById),
      m_isRoot(false)
{}

SectionMapElement::SectionMapElement(SectionMapElement const& other)
    : m_sectionId(other.m_sectionId), m_pools(std::make_shared<Pools>()),
      m_subsectionsByName(other.m_subsectionsByName), m_subsectionsById(other.m_subsectionsById),
      m_infosByName(other.m_infosByName, m_pools->infosByName), m_infosById(m_pools->infosById),
      m_isRoot(other.m_isRoot), m_subsections(other.m_subsections.size())
{
    CopyChildren(m_subsectionsByName);
    CopyChildren(m_subsectionsById);
    for (auto const& [sub, child] : m_subsectionsById)
        m_subsections[sub] = child.get();
    for (auto const& [name, id] : m_infosByName)
        m_infosById.emplace(id, &name);
}

SectionMapElement::~SectionMapElement() = default;

int SectionMapElement::AddSection_(SectionId const& id)
{
    if (id == SectionId())
        return IfErrInvalidArgument;
    if (id == m_sectionId)
        return 0;
    unsigned int const depth = Depth_();
    if (id.GetSectionDepth() <= depth)
        return IfErrInvalidArgument;
    if (!m_isRoot && (id.GetSectionName(depth) != m_sectionId.GetSectionName() ||
                      id.GetInfoItemSectionId(depth) != m_sectionId.GetInfoItemSectionId()))
        return IfErrInvalidArgument;
    Child child;
    SectionId const childId(id.GetSectionName(depth + 1), id.GetInfoItemSectionId(depth + 1));
    if (int const code = AddNewSectionMapElement_(childId, child))
        return code;
    return child->AddSection_(id);
}

int SectionMapElement::AddSection_(std::string_view path, SectionId& section)
{
    if (path.empty()) {
        if (m_isRoot)
            return IfErrInvalidArgument;
        section = m_sectionId;
        return 0;
    }
    std::string_view first;
    std::string_view rest;
    ParseSectionName_(path, first, rest);
    if (first.empty())
        return IfErrInvalidArgument;
    if (auto const place = m_subsectionsByName.find(first); place != m_subsectionsByName.end()) {
        if (!rest.empty())
            return place->second->AddSection_(rest, section);
        section = place->second->m_sectionId;
        return IfErrAlreadyExists;
    }
    unsigned char sub = 0;
    if (int const code = AllocateSubsectionId_(sub))
        return code;
    std::string const name(first);
    Child child;
    if (int const code =
            AddNewSectionMapElement_(m_isRoot ? SectionId(name, InfoItemSectionId::CreateLevel1SectionId(sub))
                                              : m_sectionId.CreateSectionId(name, sub),
                                     child))
        return code;
    return child->AddSection_(rest, section);
}

int SectionMapElement::FindSection_(std::string_view path, SectionId& section) const
{
    SectionMapElement const* element = nullptr;
    if (int const code = Descend_(*this, path, element))
        return code;
    section = element->m_sectionId;
    return 0;
}

int SectionMapElement::FindSection_(InfoItemSectionId const& id, SectionId& section) const
{
    SectionMapElement const* element = nullptr;
    if (int const code = Descend_(*this, id, IfErrNotFound, element))
        return code;
    section = element->m_sectionId;
    return 0;
}

void SectionMapElement::GetTopLevelSections_(std::vector<SectionId>& sections) const
{
    Detail::ReserveMore(sections, m_subsectionsById.size());
    for (auto const& [sub, child] : m_subsectionsById)
        sections.push_back(child->m_sectionId);
}

int SectionMapElement::GetSubsections_(InfoItemSectionId const& id, std::vector<SectionId>& sections) const
{
    SectionMapElement const* element = nullptr;
    if (int const code = Descend_(*this, id, IfErrNotFound, element))
        return code;
    element->GetTopLevelSections_(sections);
    return 0;
}

void SectionMapElement::GetLeafSections_(std::list<SectionId>& sections) const
{
    if (!m_isRoot && m_subsectionsByName.empty()) {
        if (m_sectionId.IsValid())
            sections.push_back(m_sectionId);
        return;
    }
    for (auto const& [name, child] : m_subsectionsByName)
        child->GetLeafSections_(sections);
}

int SectionMapElement::AddInfo_(InfoItemSectionId const& id, std::string const& name)
{
    SectionMapElement* element = nullptr;
    return AddInfoAt_(id, name, element);
}

int SectionMapElement::AddInfoAt_(InfoItemSectionId const& id, std::string const& name, SectionMapElement*& element)
{
    if (int const code = Descend_(*this, id, IfErrInvalidArgument, element))
        return code;
    InfoItemSectionId stored(k_noId);
    return element->AddNewInfo_(id, name, stored);
}

int SectionMapElement::AddInfo_(std::string_view path, std::string const& name, InfoItemSectionId& id)
{
    SectionMapElement* element = nullptr;
    if (int const code = Descend_(*this, path, element))
        return code;
    unsigned int number = 0;
    if (int const code = element->AllocateInfoNumber_(number))
        return code;
    id = element->m_sectionId.GetInfoItemSectionId().CreateInfoItemId(number);
    return element->AddNewInfo_(id, name, id);
}

int SectionMapElement::FindInfo_(std::string_view path, std::string_view name, InfoItemSectionId& id) const
{
    SectionMapElement const* element = nullptr;
    if (int const code = Descend_(*this, path, element))
        return code;
    auto const place = element->m_infosByName.find(name);
    if (place == element->m_infosByName.end())
        return IfErrNotFound;
    id = place->second;
    return 0;
}

int SectionMapElement::FindInfo_(InfoItemSectionId const& id, std::string& path, std::string& name) const
{
    if (id == k_noId)
        return IfErrInvalidArgument;
    if (Depth_() < id.Depth()) {
        SectionMapElement* next = nullptr;
        if (int const code = FindNextSectionMapElement_(id, next))
            return code;
        return next->FindInfo_(id, path, name);
    }
    if (m_sectionId.GetInfoItemSectionId(id.Depth()) != id.GetSectionId(id.Depth()))
        return IfErrNotFound;
    if (!id.IsValidInfoItemId())
        return IfErrInvalidArgument;
    auto const place = m_infosById.find(id);
    if (place == m_infosById.end())
        return IfErrNotFound;
    std::string foundPath = m_sectionId.GetSectionName();
    std::string foundName = *place->second;
    path = std::move(foundPath); // both or none
    name = std::move(foundName);
    return 0;
}

int SectionMapElement::GetInfos_(InfoItemSectionId const& id, std::vector<unsigned int>& infos) const
{
    if (id == k_noId)
        return IfErrInvalidArgument;
    unsigned int const depth = id.Depth();
    if (Depth_() < depth) {
        SectionMapElement* next = nullptr;
        if (int const code = FindNextSectionMapElement_(id, next))
            return code;
        return next->GetInfos_(id, infos);
    }
    bool const isWildcard = id.IsValidWildcardSectionId();
    // Contract: the whole id is compared, item field included, where the other operations compare its section. So the
    // id of a parameter finds nothing, which callers use to tell sections from parameters.
    if (!isWildcard && id != m_sectionId.GetInfoItemSectionId(depth))
        return IfErrNotFound;
    // A wildcard means what lies below the section and not the section's own.
    if (!isWildcard || depth < Depth_())
        for (auto const& [name, info] : m_infosByName)
            infos.push_back(info);
    for (auto const& [name, child] : m_subsectionsByName)
        if (int const code = child->GetInfos_(id, infos))
            return code;
    return 0;
}

SectionMapElement const* SectionMapElement::At_(std::string_view path, std::uint32_t pathHash) const
{
    if (auto const* const known = Known_(path, pathHash))
        return known;
    SectionMapElement const* element = nullptr;
    return Walk_(*this, path, element) == 0 ? element : nullptr;
}

SectionMapElement* SectionMapElement::Known_(std::string_view path, std::uint32_t pathHash) const
{
    if (!m_ownPaths)
        return nullptr;
    auto const* const known = m_ownPaths->Find(
        pathHash, [&](SectionMapElement const* section) { return section->m_sectionId.GetSectionName() == path; });
    return known ? *known : nullptr;
}

int SectionMapElement::AddNewSectionMapElement_(SectionId const& child, Child& element)
{
    unsigned int const level = child.GetSectionDepth();
    std::string name = child.GetSubsectionName(level);
    unsigned char const sub = child.GetSubsectionId(level);
    if (name.empty() || sub == k_noSubsection)
        return IfErrInvalidArgument;
    auto const byName = m_subsectionsByName.find(name);
    auto const byId = m_subsectionsById.find(sub);
    bool const hasName = byName != m_subsectionsByName.end();
    bool const hasId = byId != m_subsectionsById.end();
    if (hasName && hasId && byName->second == byId->second) {
        element = byName->second;
        return 0;
    }
    if (hasName || hasId)
        return IfErrAlreadyExists;
    if (m_subsections.size() <= sub)
        m_subsections.resize(sub + 1U);
    if (m_paths)
        m_paths->MakeRoom();
    auto created = std::make_shared<SectionMapElement>(child, InTree{m_pools});
    auto const place = m_subsectionsByName.emplace(std::move(name), created).first;
    try {
        m_subsectionsById.emplace(sub, created);
    } catch (...) {
        m_subsectionsByName.erase(place);
        throw;
    }
    m_subsections[sub] = created.get();
    created->m_paths = m_paths;
    created->m_pathHash = Detail::SeededHash(child.GetSectionName());
    // The name of the fourth level may hold delimiters. No search by path finds that section, since it splits there.
    if (m_paths && place->first.find(SectionId::k_sectionDelim) == std::string::npos)
        m_paths->Insert(created->m_pathHash, created.get());
    element = std::move(created);
    return 0;
}

int SectionMapElement::AddNewInfo_(InfoItemSectionId const& id, std::string const& name, InfoItemSectionId& stored)
{
    auto const [byName, isNewName] = m_infosByName.try_emplace(name, id);
    stored = byName->second;
    if (!isNewName)
        return IfErrAlreadyExists;
    auto const count = m_infosById.size();
    try {
        m_infosById.try_emplace(m_infosById.end(), byName->second, &byName->first); // ids mostly ascend
    } catch (...) {
        m_infosByName.erase(byName);
        throw;
    }
    if (m_infosById.size() == count) {
        m_infosByName.erase(byName);
        return IfErrAlreadyExists;
    }
    return 0;
}

int SectionMapElement::AllocateSubsectionId_(unsigned char& sub) const
{
    unsigned int const greatest = InfoItemSectionId::MaxSubsectionPerSubsection();
    unsigned int number = 0;
    if (!m_subsectionsById.empty())
        number = m_subsectionsById.rbegin()->first + 1U;
    if (number > greatest)
        number = FirstGap(m_subsectionsById, [](unsigned char id) { return id; });
    if (number > greatest)
        return IfErrNoFreeId;
    sub = static_cast<unsigned char>(number);
    return 0;
}

// Contract: the greatest number in use is known by its low eight bits alone. At depth 1 to 3 numbers run from 0 to 256,
// then 1 is offered again, which is taken. At depth 4 the last number, 63, gives the id of the section itself. Stored
// configurations hold ids that were numbered so, and the same sections must number the same way again.
int SectionMapElement::AllocateInfoNumber_(unsigned int& number) const
{
    unsigned int const greatest = m_sectionId.GetMaxNumInfoItemsInSection();
    number = 0;
    if (!m_infosById.empty())
        number = m_infosById.rbegin()->first.GetInfoItemSubsectionId() + 1U;
    if (number > greatest)
        number = FirstGap(m_infosById, [](InfoItemSectionId id) { return id.GetInfoItemSubsectionId(); });
    return number > greatest ? IfErrNoFreeId : 0;
}

int SectionMapElement::FindNextSectionMapElement_(std::string_view path, std::string_view& rest,
                                                  SectionMapElement*& next) const
{
    std::string_view first;
    ParseSectionName_(path, first, rest);
    if (first.empty())
        return IfErrInvalidArgument;
    auto const place = m_subsectionsByName.find(first);
    if (place == m_subsectionsByName.end())
        return IfErrNotFound;
    next = place->second.get();
    return 0;
}

int SectionMapElement::FindNextSectionMapElement_(InfoItemSectionId const& id, SectionMapElement*& next) const
{
    unsigned char const sub = id.GetSubsectionId(Depth_() + 1);
    if (sub == k_noSubsection)
        return IfErrInvalidArgument;
    if (sub >= m_subsections.size() || !m_subsections[sub])
        return IfErrNotFound;
    next = m_subsections[sub];
    return 0;
}

// One leading delimiter is skipped, at each level anew.
void SectionMapElement::ParseSectionName_(std::string_view path, std::string_view& first, std::string_view& rest)
{
    if (path.starts_with(SectionId::k_sectionDelim))
        path.remove_prefix(1);
    std::size_t const delim = path.find(SectionId::k_sectionDelim);
    first = path.substr(0, delim);
    rest = delim == std::string_view::npos ? std::string_view() : path.substr(delim + 1);
}

/// Leads down to the node of the section with that path, which is not the root. A root knows its sections by their own
/// paths; another spelling takes the way through the levels.
template<typename Self>
int SectionMapElement::Descend_(Self& self, std::string_view path, Self*& element)
{
    if (path.empty()) {
        element = &self;
        return self.m_isRoot ? IfErrNotFound : 0;
    }
    if (self.m_ownPaths)
        if (auto* const known = self.Known_(path, Detail::SeededHash(path))) {
            element = known;
            return 0;
        }
    return Walk_(self, path, element);
}

template<typename Self>
int SectionMapElement::Walk_(Self& self, std::string_view path, Self*& element)
{
    SectionMapElement* next = nullptr;
    for (SectionMapElement const* from = &self; !path.empty(); from = next)
        if (int const code = from->FindNextSectionMapElement_(path, path, next))
            return code;
    element = next;
    return 0;
}

/// Leads down to the node of the section that the id names or lies in; `mismatch` is the code for a node on the way
/// that the id does not fit.
template<typename Self>
int SectionMapElement::Descend_(Self& self, InfoItemSectionId const& id, int mismatch, Self*& element)
{
    unsigned int const depth = self.Depth_();
    if (id == k_noId || depth > id.Depth())
        return IfErrInvalidArgument;
    if (!self.m_isRoot && id.GetSectionId(depth) != self.m_sectionId.GetInfoItemSectionId())
        return mismatch;
    if (id.Depth() == depth) {
        element = &self;
        return 0;
    }
    SectionMapElement* next = nullptr;
    if (int const code = self.FindNextSectionMapElement_(id, next))
        return code;
    return Descend_<Self>(*next, id, mismatch, element);
}

} // namespace Legacy::If
