#include <Legacy/IfKit/ObservableDirectory.h>

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal_type.hpp>

#include <deque>
#include <exception>
#include <map>
#include <utility>

namespace Legacy::IfKit {

using namespace If;

namespace {

/// Lets no listener keep the next ones from hearing; the result is the first exception.
struct HearAll
{
    using result_type = std::exception_ptr;

    template<typename Iterator>
    std::exception_ptr operator()(Iterator first, Iterator const& last) const
    {
        std::exception_ptr failure;
        for (; first != last; ++first) {
            try {
                *first;
            } catch (...) {
                failure = failure ? failure : std::current_exception();
            }
        }
        return failure;
    }
};

// The directory is for one thread at a time, so there is nothing to lock.
namespace keywords = boost::signals2::keywords;
using Signal = boost::signals2::signal_type<void(Change_t const&), keywords::combiner_type<HearAll>,
                                            keywords::mutex_type<boost::signals2::dummy_mutex>>::type;

} // namespace

class ObservableDirectory::Listeners
{
public:
    Signal& Everything() { return m_everything; }
    Signal& Of(unsigned int id) { return m_byId[id]; }

    void Tell(Change_t change)
    {
        m_waiting.push_back(std::move(change));
        if (m_isTelling)
            return;
        Telling const telling(m_isTelling);
        std::exception_ptr failure;
        while (!m_waiting.empty()) {
            Change_t const next = std::move(m_waiting.front());
            m_waiting.pop_front();
            TellAll_(next, failure);
        }
        if (failure)
            std::rethrow_exception(failure);
    }

private:
    /// While it lives, changes wait; without memory too it comes to an end.
    struct Telling
    {
        explicit Telling(bool& state) noexcept : isTelling(state) { isTelling = true; }
        Telling(Telling const&) = delete;
        Telling& operator=(Telling const&) = delete;
        ~Telling() { isTelling = false; }

        bool& isTelling;
    };

    void TellAll_(Change_t const& change, std::exception_ptr& failure)
    {
        InfoItemSectionId const id(change.parameter->GetInfo()->GetInfo()->GetId());
        TellOne_(id, change, failure);
        for (unsigned int level = id.Depth(); level > 0; --level)
            TellOne_(id.GetSectionId(level), change, failure);
        Note_(m_everything(change), failure);
    }

    void TellOne_(unsigned int id, Change_t const& change, std::exception_ptr& failure)
    {
        auto const place = m_byId.find(id);
        if (place == m_byId.end())
            return;
        Note_(place->second(change), failure);
        if (place->second.empty())
            m_byId.erase(place); // the last one has gone
    }

    static void Note_(std::exception_ptr const& found, std::exception_ptr& failure)
    {
        if (!failure)
            failure = found;
    }

    Signal m_everything;
    std::map<unsigned int, Signal> m_byId; // places stay while listeners connect
    std::deque<Change_t> m_waiting;
    bool m_isTelling = false;
};

ObservableDirectory::ObservableDirectory() = default;
ObservableDirectory::~ObservableDirectory() = default;

ObservableDirectory::Connection ObservableDirectory::Connect(Listener listener)
{
    if (!m_listeners)
        m_listeners = std::make_unique<Listeners>();
    return m_listeners->Everything().connect(listener);
}

ObservableDirectory::Connection ObservableDirectory::Connect(InfoItemSectionId const& id, Listener listener)
{
    if (!m_listeners)
        m_listeners = std::make_unique<Listeners>();
    return m_listeners->Of(id).connect(listener);
}

void ObservableDirectory::InfoChanged_(boost::intrusive_ptr<InfoHolder const> const& former,
                                       boost::intrusive_ptr<InfoItemHolder const> const& infoItem)
{
    if (m_listeners)
        m_listeners->Tell({infoItem, former, infoItem->GetInfo(), nullptr, nullptr});
}

void ObservableDirectory::ItemChanged_(boost::intrusive_ptr<ItemHolder const> const& former,
                                       boost::intrusive_ptr<InfoItemHolder const> const& infoItem)
{
    if (m_listeners)
        m_listeners->Tell({infoItem, nullptr, nullptr, former, infoItem->GetItem()});
}

} // namespace Legacy::IfKit
