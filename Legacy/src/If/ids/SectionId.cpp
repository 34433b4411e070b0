#include <Legacy/If/SectionId.h>

#include <cstddef>
#include <utility>

namespace Legacy::If {

namespace {

constexpr unsigned int k_noId = 0xFFFFFFFF;

} // namespace

SectionId::SectionId() : m_infoItemSectionId(k_noId), m_isValid(false) {}

SectionId::SectionId(std::string const& name, InfoItemSectionId const& id)
    : m_sectionName(name), m_infoItemSectionId(id), m_isValid(false)
{
    ParseSectionName_();
    m_isValid = Validate_();
    if (!m_isValid)
        Clear();
}

SectionId::SectionId(SectionId&& other) noexcept : SectionId() { *this = std::move(other); }

SectionId& SectionId::operator=(SectionId&& other) noexcept
{
    m_sectionName = std::exchange(other.m_sectionName, {});
    m_infoItemSectionId = std::exchange(other.m_infoItemSectionId, k_noId);
    m_levels = std::exchange(other.m_levels, {});
    m_isValid = std::exchange(other.m_isValid, false);
    return *this;
}

SectionId SectionId::CreateSectionId(std::string const& subsectionName, unsigned char const& subsectionId) const
{
    return SectionId(m_sectionName + k_sectionDelim + subsectionName,
                     m_infoItemSectionId.CreateSectionId(subsectionId));
}

void SectionId::Clear() noexcept
{
    m_sectionName.clear();
    m_infoItemSectionId.Clear();
    m_levels = {};
    m_isValid = false;
}

bool SectionId::operator==(SectionId const& other) const noexcept
{
    return m_infoItemSectionId == other.m_infoItemSectionId && m_sectionName == other.m_sectionName;
}

bool SectionId::operator<(SectionId const& other) const noexcept
{
    if (m_infoItemSectionId != other.m_infoItemSectionId)
        return m_infoItemSectionId < other.m_infoItemSectionId;
    return m_sectionName < other.m_sectionName;
}

std::string SectionId::GetSectionName(unsigned int level) const
{
    if (!m_isValid || level == 0 || level > GetSectionDepth())
        return {};
    if (level == GetSectionDepth())
        return m_sectionName;
    return m_sectionName.substr(0, m_levels.offsets[level] - 1); // without the delimiter before the next level
}

std::string SectionId::GetSubsectionName(unsigned int level) const
{
    if (!m_isValid || level == 0 || level > GetSectionDepth())
        return {};
    unsigned int const start = m_levels.offsets[level - 1];
    if (level == GetSectionDepth())
        return m_sectionName.substr(start);
    return m_sectionName.substr(start, m_levels.offsets[level] - start - 1);
}

void SectionId::ParseSectionName_() noexcept
{
    auto const add = [this](std::size_t offset) {
        m_levels.offsets[m_levels.count++] = static_cast<unsigned int>(offset);
    };
    m_levels = {};
    if (m_sectionName.empty())
        return;
    if (m_sectionName.front() != k_sectionDelim)
        add(0);
    std::size_t delim = m_sectionName.find(k_sectionDelim);
    while (delim != std::string::npos && m_levels.count < k_maxSectionLevels) {
        add(delim + 1);
        delim = m_sectionName.find(k_sectionDelim, delim + 1);
    }
}

bool SectionId::Validate_() const noexcept
{
    return GetSectionDepth() == m_infoItemSectionId.Depth() && m_infoItemSectionId.IsValidSectionId();
}

} // namespace Legacy::If
