#pragma once

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace HostNetwork {

/// A directory that notes every change of itself: its hooks count the changes, tell them to whoever watches, and keep
/// them for another directory that is to follow.
class Device : public Legacy::If::InfoItemDirectory
{
public:
    using Parameter_t = boost::intrusive_ptr<Legacy::If::InfoItemHolder const>;
    using Watcher_t = std::function<void(std::string const& change)>;

    /// From now on tells each change in one line; an empty watcher ends that.
    void Watch(Watcher_t watcher) { m_watcher = std::move(watcher); }

    /// All that has changed since the last call, ready for `UpdateFromDelta`; of each parameter the latest.
    std::shared_ptr<Legacy::If::InfoItemDirectoryDelta> TakeChanges();

    std::size_t GetNumInfoChanges() const noexcept { return m_infoChanges; }
    std::size_t GetNumItemChanges() const noexcept { return m_itemChanges; }

    /// All sections, each before those below it.
    std::vector<Legacy::If::SectionId> GetSections() const;

    /// The parameters of each section, without those of the sections below it, in the order of their numbers.
    std::map<Legacy::If::InfoItemSectionId, std::vector<Parameter_t>> GetParameters() const;

    /// The path of a parameter: that of its section, and its name.
    std::string PathOf(Legacy::If::InfoBase const& info) const;

protected:
    void InfoChanged_(boost::intrusive_ptr<Legacy::If::InfoHolder const> const& former,
                      Parameter_t const& infoItem) override;
    void ItemChanged_(boost::intrusive_ptr<Legacy::If::ItemHolder const> const& former,
                      Parameter_t const& infoItem) override;

private:
    Watcher_t m_watcher;
    std::map<unsigned int, boost::intrusive_ptr<Legacy::If::InfoHolder const>> m_changedInfos;
    std::map<unsigned int, boost::intrusive_ptr<Legacy::If::ItemHolder const>> m_changedItems;
    std::size_t m_infoChanges = 0;
    std::size_t m_itemChanges = 0;
};

} // namespace HostNetwork
