#include <Legacy/If/Detail/ContainerStore.h>
#include <Legacy/If/Section.h>

#include <boost/container_hash/hash.hpp>

#include <ostream>
#include <utility>
#include <vector>

namespace Legacy::If {

SectionId_t::SectionId_t(unsigned int const& primaryId, std::string const& secondaryId)
    : m_primaryId(primaryId), m_secondaryId(secondaryId)
{}

bool SectionId_t::operator<(SectionId_t other) const noexcept
{
    return Detail::PartsOf(*this) < Detail::PartsOf(other);
}
bool SectionId_t::operator==(SectionId_t other) const noexcept
{
    return Detail::PartsOf(*this) == Detail::PartsOf(other);
}
bool SectionId_t::operator!=(SectionId_t other) const noexcept
{
    return Detail::PartsOf(*this) != Detail::PartsOf(other);
}

unsigned int SectionId_t::hash_value() const
{
    unsigned int hash = m_hash.Get();
    if (hash == 0) {
        hash = static_cast<unsigned int>(boost::hash_range(m_secondaryId.begin(), m_secondaryId.end())) + m_primaryId;
        m_hash.Set(hash);
    }
    return hash;
}

std::size_t hash_value(SectionId_t const& id) { return id.hash_value(); }

Section::Section(SectionId_t const& id, std::string const& name, unsigned int flags)
    : m_id(id), m_name(name), m_flags(flags)
{}

Section::Section(Section const& other) = default;
Section& Section::operator=(Section const& other) = default;
Section::~Section() = default;

bool Section::operator==(SectionId_t const& id) const noexcept { return Detail::PartsOf(m_id) == Detail::PartsOf(id); }

std::ostream& operator<<(std::ostream& os, Section const& section)
{
    os << "Name: " << section.GetName() << std::endl;
    os << "PrimaryId: " << section.GetPrimaryId() << std::endl;
    os << "SecondaryId: " << section.GetSecondaryId() << std::endl;
    os << "Flags: " << section.GetFlags() << std::endl;

    os << "===Infos For This Section=================" << std::endl;
    std::vector<boost::intrusive_ptr<InfoHolder const>> infos;
    section.Infos().Get(infos);
    for (auto const& info : infos)
        os << *info->GetInfo() << std::endl;

    os << "===Items For This Section=================" << std::endl;
    std::vector<boost::intrusive_ptr<ItemHolder const>> items;
    section.Items().Get(items);
    for (auto const& item : items)
        os << *item->GetItem() << std::endl;
    return os;
}

} // namespace Legacy::If
