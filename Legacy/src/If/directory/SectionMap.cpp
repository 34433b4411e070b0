#include <Legacy/If/SectionMap.h>
#include <Legacy/If/SectionMapElement.h>

namespace Legacy::If {

SectionMap::SectionMap() : m_root(new SectionMapElement) {}
SectionMap::SectionMap(SectionMap const& other) = default;
SectionMap& SectionMap::operator=(SectionMap const& other) = default;
SectionMap::~SectionMap() = default;

int SectionMap::AddSection(SectionId const& id) { return m_root->AddSection_(id); }

int SectionMap::AddSection(std::string const& path, SectionId& section) { return m_root->AddSection_(path, section); }

int SectionMap::FindSection(std::string const& path, SectionId& section) const
{
    return m_root->FindSection_(path, section);
}

int SectionMap::FindSection(InfoItemSectionId const& id, SectionId& section) const
{
    return m_root->FindSection_(id, section);
}

void SectionMap::GetTopLevelSections(std::vector<SectionId>& sections) const { m_root->GetTopLevelSections_(sections); }

int SectionMap::GetSubsections(InfoItemSectionId const& id, std::vector<SectionId>& sections) const
{
    return m_root->GetSubsections_(id, sections);
}

void SectionMap::GetLeafSections(std::list<SectionId>& sections) const { m_root->GetLeafSections_(sections); }

int SectionMap::AddInfo(InfoItemSectionId const& id, std::string const& name) { return m_root->AddInfo_(id, name); }

int SectionMap::AddInfo(std::string const& path, std::string const& name, InfoItemSectionId& id)
{
    return m_root->AddInfo_(path, name, id);
}

int SectionMap::FindInfo(std::string const& path, std::string const& name, InfoItemSectionId& id) const
{
    return m_root->FindInfo_(path, name, id);
}

int SectionMap::FindInfo(InfoItemSectionId const& id, std::string& path, std::string& name) const
{
    return m_root->FindInfo_(id, path, name);
}

int SectionMap::GetInfos(InfoItemSectionId const& id, std::vector<unsigned int>& infos) const
{
    return m_root->GetInfos_(id, infos);
}

void SectionMap::Clear() { m_root.reset(new SectionMapElement); }

} // namespace Legacy::If
