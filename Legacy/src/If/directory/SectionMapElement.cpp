#include "containers/PlaceIndex.h"
#include "core/ReserveMore.h"

#include <Legacy/If/SectionMapElement.h>

#include <boost/multi_index/member.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>

#include <utility>

namespace Legacy::If {

namespace {

constexpr unsigned int k_noId = 0xFFFFFFFF;
constexpr unsigned char k_noSubsection = 0xFF;

/// The first of the ascending numbers 0, 1, 2… that the entries leave out.
template<typename Entries, typename Number>
unsigned int FirstGap(Entries const& entries, Number&& number)
{
    unsigned int gap = 0;
    for (auto const& entry : entries) {
        if (number(entry) != gap)
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

namespace {

struct Info
{
    std::string name;
    InfoItemSectionId id;

    Info(std::string const& itsName, InfoItemSectionId itsId) : name(itsName), id(itsId) {}
};

namespace Index = boost::multi_index;

} // namespace

/// One node stands in both orders, which takes a quarter less than a node in each of two maps.
struct SectionMapElement::Infos
    : Index::multi_index_container<
          Info,
          Index::indexed_by<Index::ordered_unique<Index::member<Info, std::string, &Info::name>, std::less<>>,
                            Index::ordered_unique<Index::member<Info, InfoItemSectionId, &Info::id>>>,
          Detail::PoolAllocator<Info>>
{
    explicit Infos(Detail::NodePool& pool) : multi_index_container(ctor_args_list(), pool) {}

    auto const& ByName() const noexcept { return get<0>(); }
    auto const& ById() const noexcept { return get<1>(); }

    /// False, and nothing changes, if the name or the id is taken. Ids mostly ascend.
    bool Add(std::string const& name, InfoItemSectionId id)
    {
        auto const count = size();
        get<1>().emplace_hint(get<1>().end(), name, id);
        return size() != count;
    }
};

SectionMapElement::SectionMapElement()
    : m_pool(std::make_shared<Detail::NodePool>()), m_isRoot(true), m_ownPaths(std::make_unique<PathIndex>())
{
    m_paths = m_ownPaths.get();
}

SectionMapElement::SectionMapElement(SectionId const& sectionId)
    : SectionMapElement(sectionId, InTree{std::make_shared<Detail::NodePool>()})
{}

SectionMapElement::SectionMapElement(SectionId const& sectionId, InTree const& tree)
    : m_sectionId(sectionId), m_pool(tree.pool), m_isRoot(false)
{}

SectionMapElement::SectionMapElement(SectionMapElement const& other)
    : m_sectionId(other.m_sectionId), m_pool(std::make_shared<Detail::NodePool>()),
      m_subsectionsByName(other.m_subsectionsByName), m_subsectionsById(other.m_subsectionsById),
      m_isRoot(other.m_isRoot), m_subsections(other.m_subsections.size())
{
    CopyChildren(m_subsectionsByName);
    CopyChildren(m_subsectionsById);
    for (auto const& [sub, child] : m_subsectionsById)
        m_subsections[sub] = child.get();
    if (!other.m_infos)
        return;
    m_infos = std::make_unique<Infos>(*m_pool);
    for (auto const& [name, id] : other.m_infos->ById())
        m_infos->Add(name, id);
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
    if (!element->m_infos)
        return IfErrNotFound;
    auto const& infos = element->m_infos->ByName();
    auto const place = infos.find(name);
    if (place == infos.end())
        return IfErrNotFound;
    id = place->id;
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
    if (!m_infos)
        return IfErrNotFound;
    auto const place = m_infos->ById().find(id);
    if (place == m_infos->ById().end())
        return IfErrNotFound;
    std::string foundPath = m_sectionId.GetSectionName();
    std::string foundName = place->name;
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
    if (m_infos && (!isWildcard || depth < Depth_()))
        for (Info const& info : m_infos->ByName())
            infos.push_back(info.id);
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
    auto created = std::make_shared<SectionMapElement>(child, InTree{m_pool});
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
    if (!m_infos)
        m_infos = std::make_unique<Infos>(*m_pool);
    if (m_infos->Add(name, id)) {
        stored = id;
        return 0;
    }
    auto const taken = m_infos->ByName().find(name);
    stored = taken != m_infos->ByName().end() ? taken->id : id;
    return IfErrAlreadyExists;
}

int SectionMapElement::AllocateSubsectionId_(unsigned char& sub) const
{
    unsigned int const greatest = InfoItemSectionId::MaxSubsectionPerSubsection();
    unsigned int number = 0;
    if (!m_subsectionsById.empty())
        number = m_subsectionsById.rbegin()->first + 1U;
    if (number > greatest)
        number = FirstGap(m_subsectionsById, [](auto const& entry) { return entry.first; });
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
    if (m_infos && !m_infos->empty())
        number = m_infos->ById().rbegin()->id.GetInfoItemSubsectionId() + 1U;
    if (number > greatest)
        number = FirstGap(m_infos->ById(), [](Info const& info) { return info.id.GetInfoItemSubsectionId(); });
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
