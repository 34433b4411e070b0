#include <Legacy/If/InfoItemHolderMap.h>

namespace Legacy::If {

template class MapIterator<unsigned int, boost::intrusive_ptr<InfoItemHolder>>;

InfoItemHolderMap::InfoItemHolderMap() : MapIterator(m_holdersById) {}
InfoItemHolderMap::~InfoItemHolderMap() = default;

int InfoItemHolderMap::Insert(boost::intrusive_ptr<InfoItemHolder> const& holder)
{
    if (!holder)
        return IfErrNullArgument;
    InfoBase const& info = *holder->GetInfo()->GetInfo();
    auto const [place, inserted] = m_holdersById.try_emplace(info.GetId(), holder);
    if (!inserted)
        return IfErrAlreadyExists;
    try {
        m_holdersByName.emplace(info.GetName(), holder);
    } catch (...) {
        m_holdersById.erase(place);
        throw;
    }
    return 0;
}

int InfoItemHolderMap::Erase(unsigned int const& id)
{
    auto const [found, place] = Find_(id);
    if (!found)
        return IfErrNotFound;
    auto const holder = place->second;
    m_holdersById.erase(place);
    auto [first, last] = Find_(holder->GetInfo()->GetInfo()->GetName());
    // From the back: the entry that is taken out at once, because its section did not want it, is the latest one.
    while (last != first)
        if ((--last)->second == holder) {
            m_holdersByName.erase(last);
            break;
        }
    return 0;
}

std::pair<bool, InfoItemHolderMap::ById::const_iterator> InfoItemHolderMap::Find(unsigned int const& id)
{
    return Find_(id);
}

std::pair<InfoItemHolderMap::ByName::const_iterator, InfoItemHolderMap::ByName::const_iterator>
InfoItemHolderMap::Find(std::string const& name)
{
    return Find_(name);
}

void InfoItemHolderMap::Clear() noexcept
{
    m_holdersById.clear();
    m_holdersByName.clear();
}

std::pair<bool, InfoItemHolderMap::ById::iterator> InfoItemHolderMap::Find_(unsigned int const& id)
{
    auto const place = m_holdersById.find(id);
    return {place != m_holdersById.end(), place};
}

std::pair<InfoItemHolderMap::ByName::iterator, InfoItemHolderMap::ByName::iterator>
InfoItemHolderMap::Find_(std::string const& name)
{
    return m_holdersByName.equal_range(name);
}

} // namespace Legacy::If
