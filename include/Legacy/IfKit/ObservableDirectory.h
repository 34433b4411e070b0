#pragma once

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/IfKit/Export.h>

#include <boost/signals2/connection.hpp>

#include <functional>
#include <memory>

/// A directory that tells whoever wants to know of each change.
///
/// @code
/// ObservableDirectory directory;
/// auto const print = [](Change_t const& change) { std::cout << change.parameter->GetInfo()->GetDisplayName(); };
/// boost::signals2::scoped_connection const watch = directory.Connect(print);
/// @endcode
///
/// What the base says of threads holds here too: one thread at a time, connecting and disconnecting included.
namespace Legacy::IfKit {

/// One change of a parameter's schema or of its value.
struct Change_t
{
    boost::intrusive_ptr<If::InfoItemHolder const> parameter; ///< as it stands now, perhaps after further changes
    /// The two schemas, if that changed; the former one is null for a new parameter.
    boost::intrusive_ptr<If::InfoHolder const> formerInfo;
    boost::intrusive_ptr<If::InfoHolder const> info;
    /// The two values, if that changed; the former one is null for the first value.
    boost::intrusive_ptr<If::ItemHolder const> formerItem;
    boost::intrusive_ptr<If::ItemHolder const> item;

    bool IsSchema() const noexcept { return info != nullptr; }
};

/// The directory. Listeners hear of each successful `AddInfo`, `SetInfo` and `SetItem`, also those of a delta, and of
/// nothing else: neither of sections nor of `Clear`, nor of changes through a copy made of the base.
///
/// The order. One change is told to the listeners of the parameter, then to those of its section, of the section above
/// and so on, then to those of everything, and among each of these in the order in which they connected. A listener may
/// change the directory: that change is made at once and told when the one at hand has been told to all, so that all
/// hear all changes in the order in which they were made. What changes itself whenever it hears of a change has to come
/// to an end on its own. A listener may connect others, which hear the next change, and disconnect any, itself
/// included, which then hear nothing more; it may not destroy the directory.
///
/// What a listener throws keeps no other from hearing; the first exception goes to the caller of the operation that
/// began it, when all has been told, and the change stays.
class LEGACY_IFKIT_API ObservableDirectory : public If::InfoItemDirectory
{
public:
    using Listener = std::function<void(Change_t const&)>;
    using Connection = boost::signals2::connection;

    ObservableDirectory();
    /// Listeners belong to one object, so there are no copies.
    ObservableDirectory(ObservableDirectory const&) = delete;
    ObservableDirectory& operator=(ObservableDirectory const&) = delete;
    ~ObservableDirectory() override;

    /// From now on tells every change. Keep the result in a `boost::signals2::scoped_connection` to stop with a block;
    /// dropping it as it is leaves the listener connected. A connection may outlive the directory.
    Connection Connect(Listener listener);
    /// The changes of one parameter, or of a section and all below it: the id tells which. The parameter or section may
    /// come into being later. The id of neither is never heard of.
    Connection Connect(If::InfoItemSectionId const& id, Listener listener);

protected:
    void InfoChanged_(boost::intrusive_ptr<If::InfoHolder const> const& former,
                      boost::intrusive_ptr<If::InfoItemHolder const> const& infoItem) override;
    void ItemChanged_(boost::intrusive_ptr<If::ItemHolder const> const& former,
                      boost::intrusive_ptr<If::InfoItemHolder const> const& infoItem) override;

private:
    class Listeners;

    std::unique_ptr<Listeners> m_listeners; // null until somebody connects
};

} // namespace Legacy::IfKit
