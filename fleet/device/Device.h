#pragma once

#include "common/Broker.h"
#include "common/Schemas.h"
#include "common/Session.h"
#include "common/Topics.h"
#include "common/Wire.h"
#include "device/ValueStore.h"

#include <Legacy/If/InfoItemDirectory.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace Fleet {

/// A device: a directory whose values are published, kept in a file, and set by controllers.
///
/// A value that a controller sets is on the disk before it is published and before the controller has its answer. What
/// changes on the device itself is published at once and on the disk within #k_writeBehind.
class Device : private Legacy::If::InfoItemDirectory
{
public:
    /// How long a wish waits for others that go to the disk with it, and a change of the device's own.
    /// @{
    static constexpr std::chrono::milliseconds k_groupTime{5};
    static constexpr std::chrono::milliseconds k_writeBehind{5000};
    /// @}

    struct Settings_t
    {
        Broker_t broker;
        std::string name;
        std::string title;  ///< for people: what the device is
        std::string values; ///< the file that values are kept in; empty to keep nothing
        bool isQuiet = false;
        std::shared_ptr<ConnectGate> gate; ///< of the devices of a process, or null
    };

    /// Why a device cannot go on.
    enum class End_t
    {
        NameTaken, ///< another one has the name
        Denied,    ///< the broker does not let this user be the device
    };

    /// Takes the values of the file, and for all others what the schemas say.
    /// @throws std::runtime_error for schemas that cannot be published and for a file that cannot be used.
    Device(boost::asio::io_context& context, Settings_t settings, SchemasPtr schemas,
           std::function<void(End_t why)> end);

    /// Begins to connect.
    void Start();
    /// Brings values to the disk, tells that the device goes, takes leave of the broker, and calls `done`.
    void Stop(std::function<void()> done);

    std::string const& Name() const noexcept { return m_settings.name; }
    Legacy::If::InfoItemDirectory const& Directory() const noexcept { return *this; }
    /// Whether the device has its name and has published everything.
    bool IsSettled() const noexcept { return m_state == State_t::Holding && m_outbox.empty(); }

    /// A change of the device's own, such as a measurement. Nothing happens if the value is the same.
    /// @return 0 or the code of `SetItem`.
    int Change(ItemPtr const& item);

private:
    enum class State_t
    {
        Away,
        Claiming, ///< connected, and asks whether somebody else has the name
        Holding,
    };
    struct Answer_t
    {
        std::string controller;
        AnswerMessage message;
    };
    struct Total_t
    {};
    /// What is to be published: the value at a place, as it stands then, or something else.
    using Entry = std::variant<std::size_t, Answer_t, Total_t>;
    /// A wish that was fulfilled and is not on the disk yet.
    struct Pending_t
    {
        Answer_t answer;
        std::string language;
        boost::intrusive_ptr<Legacy::If::InfoItemHolder const> parameter;
        boost::intrusive_ptr<Legacy::If::ItemHolder const> former;
    };

    void ItemChanged_(boost::intrusive_ptr<Legacy::If::ItemHolder const> const& former,
                      boost::intrusive_ptr<Legacy::If::InfoItemHolder const> const& parameter) override;

    void Connected_();
    void Acknowledged_();
    void Handle_(Message_t const& message);
    bool HandleAbout_(Message_t const& message);
    bool HandleClaim_(Message_t const& message);
    bool HandleSet_(Topic_t const& topic, Message_t const& message);
    void Hold_();
    void GiveUp_(End_t why);
    void PublishAbout_(bool isOnline);
    void PublishClaim_();
    void PublishValue_(std::size_t place);
    void PublishTotal_();
    void Queue_(std::size_t place);
    void Pump_();
    void Execute_(Topic_t const& topic, SetMessage const& message);
    void Refuse_(std::string const& controller, AnswerMessage answer, Legacy::If::LocalizedString const& why,
                 std::string const& language);
    void Answer_(Answer_t answer);
    void SaveSoon_(std::chrono::milliseconds time);
    void Save_();
    std::string Topic_(TopicKind_t kind, std::string const& controller = {}, std::string const& path = {}) const;
    std::size_t PlaceOf_(unsigned int id) const;
    void Say_(std::string const& text) const;

    Settings_t const m_settings;
    SchemasPtr const m_schemas;
    std::string const m_document; // the schemas as they travel
    std::function<void(End_t)> const m_end;
    std::uint64_t const m_instance;
    ValueStore m_store;
    ValueStore::Memory_t m_memory;
    std::vector<std::uint64_t> m_sequences; // in the order of the schemas' ids
    std::uint64_t m_first = 0;
    std::uint64_t m_last = 0;
    /// What was told of that within this connection.
    /// @{
    std::vector<std::uint64_t> m_told;
    std::uint64_t m_toldLast = 0;
    std::uint64_t m_toldSum = 0;
    /// @}

    State_t m_state = State_t::Away;
    bool m_isContested = false; // somebody had the name, as the broker remembers it
    bool m_isEchoed = false;    // the claim has come back
    std::deque<Entry> m_outbox;
    std::vector<bool> m_isQueued; // whether the value at a place is in the outbox
    std::set<std::size_t> m_held; // places of values that wait for the disk
    bool m_isExecuting = false;
    bool m_isUnsaved = false;
    std::vector<Pending_t> m_pending;
    boost::asio::steady_timer m_claimTimer;
    boost::asio::steady_timer m_saveTimer;
    boost::asio::steady_timer m_totalTimer;
    std::chrono::steady_clock::time_point m_saveAt = std::chrono::steady_clock::time_point::max();
    std::chrono::milliseconds m_totalDelay{1000};
    bool m_isTotalDue = false;
    Session m_session;
};

} // namespace Fleet
