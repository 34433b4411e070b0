#pragma once

#include "common/Broker.h"
#include "common/Schemas.h"
#include "common/Session.h"
#include "common/Wire.h"
#include "controller/Mirror.h"

#include <Legacy/If/InfoItemDirectory.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/signals2/signal.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Fleet {

/// Mirrors the devices of a fleet: who there is, their directories as they change, and wishes for other values.
///
/// Devices tell everything about themselves, so there is nothing that a controller needs to know beforehand. All of
/// this happens on the thread that runs the context; whoever listens is called there, may call anything here but the
/// destructor, and must not keep references to devices beyond the call, since names are what lasts.
class Controller
{
public:
    struct Settings_t
    {
        Broker_t broker;
        std::string name;                 ///< what devices know this controller as
        std::vector<std::string> devices; ///< to mirror; empty for all
        /// Of all devices only those of one share, by their names: several controllers divide a fleet so.
        /// @{
        unsigned int share = 0;
        unsigned int shares = 1;
        /// @}
        bool isListOnly = false; ///< only who there is, and nothing of what they have
    };

    /// A device that has told something of itself.
    class Device
    {
    public:
        explicit Device(std::string name);
        Device(Device const&) = delete;
        Device& operator=(Device const&) = delete;
        ~Device();

        std::string const& Name() const noexcept { return m_name; }
        /// What it is, for people, in its own words; not printable by all means.
        std::string const& Title() const noexcept { return m_title; }
        bool IsOnline() const noexcept { return m_isOnline; }
        /// Whether its schemas have arrived and a value of the session at hand for each parameter.
        bool IsComplete() const noexcept { return m_mirror && m_mirror->IsComplete(); }
        /// Whether, since the connection was made, nothing was missing when the device last summed up what it has told.
        bool IsInStep() const noexcept { return m_isInStep; }
        std::size_t ParameterCount() const noexcept { return m_mirror ? m_mirror->Schemas()->ids.size() : 0; }
        /// Sections, schemas and values as far as they have arrived; null before the schemas.
        Legacy::If::InfoItemDirectory const* Directory() const noexcept
        {
            return m_mirror ? &m_mirror->Directory() : nullptr;
        }

    private:
        friend class Controller;

        struct Request_t;

        std::string m_name;
        std::string m_title;
        std::unique_ptr<Mirror> m_mirror;
        std::optional<AboutMessage> m_about; // what the session is, also while the schemas are on their way
        std::optional<TotalMessage> m_total; // that was not agreed with yet
        std::deque<std::unique_ptr<Request_t>> m_requests; // the first one is under way; the others follow in order
        std::chrono::steady_clock::time_point m_sent{};
        std::chrono::steady_clock::time_point m_repairAt{};
        std::chrono::milliseconds m_repairDelay{};
        bool m_isOnline = false;
        bool m_isSubscribed = false; // within this connection
        bool m_isConfirmed = false;  // likewise: it has told that it is there
        bool m_isInStep = false;     // likewise
    };

    /// What became of a wish.
    struct Answer_t
    {
        enum class Outcome_t
        {
            Set,
            Refused,  ///< the device's code and its message tell why
            NoAnswer, ///< the time was up; the device may have set the value all the same, or do so still
            NoDevice,
            NoParameter,
        };
        Outcome_t outcome;
        int code = 0;
        std::string text; ///< as the device wrote it; not printable by all means
    };
    using Done = std::function<void(Answer_t const& answer)>;

    /// One value that is new or has changed.
    struct Change_t
    {
        Device const& device;
        Legacy::If::InfoItemHolder const& parameter;
        ItemPtr former; ///< null for the first
    };

    /// What happens, each for as many as connect.
    struct Signals_t
    {
        /// The connection to the broker was made, with an empty text, or ended or cannot be made, with the reason.
        boost::signals2::signal<void(bool isConnected, std::string const& reason)> link;
        /// A device is new, came or went, or has other schemas.
        boost::signals2::signal<void(Device const& device)> device;
        boost::signals2::signal<void(Change_t const& change)> change;
        /// A device has told all that it has.
        boost::signals2::signal<void(Device const& device)> complete;
        /// All devices that the broker knows of are there, or it is clear that there are none; after each connect.
        boost::signals2::signal<void()> listed;
        /// A message was dropped, which the log has as well.
        boost::signals2::signal<void(std::string const& what)> dropped;
    };

    Controller(boost::asio::io_context& context, Settings_t settings);
    Controller(Controller const&) = delete;
    Controller& operator=(Controller const&) = delete;
    ~Controller();

    /// Begins to connect, and goes on until #Stop.
    void Start();
    /// Takes leave of the broker and calls `done`, within two seconds. Wishes that wait are not answered any more.
    void Stop(std::function<void()> done);

    Signals_t& Signals() noexcept { return m_signals; }
    Settings_t const& Settings() const noexcept { return m_settings; }
    bool IsConnected() const noexcept { return m_session.IsConnected(); }
    /// Whether the broker does not let this user in.
    bool IsRefused() const noexcept { return m_session.IsRefused(); }
    /// Whether all devices that the broker knows of are there.
    bool IsListed() const noexcept { return m_isListed; }

    /// The device of a name, or null.
    Device const* Find(std::string const& name) const;
    /// Goes through all devices in the order of their names.
    void ForEach(std::function<void(Device const& device)> const& use) const;
    std::size_t Size() const noexcept { return m_devices.size(); }
    /// Number of different documents of schemas that devices have, and of values that arrived.
    /// @{
    std::size_t SchemaCount() const noexcept { return m_schemas.Size(); }
    std::uint64_t ValueCount() const noexcept { return m_values; }
    /// @}

    /// Asks a device for another value. The wish is repeated until there is an answer; one for the same device follows
    /// then. `done` is called once, perhaps within the call.
    /// @param item under the id of its parameter
    /// @param language of the message with which the device refuses it
    /// @param patience how long to wait for the answer; zero for ever.
    void Set(std::string const& device, ItemPtr const& item, std::string const& language,
             std::chrono::milliseconds patience, Done done);

    /// Whether some wish waits for its answer.
    bool HasRequests() const noexcept { return !m_asking.empty(); }

private:
    using Clock = std::chrono::steady_clock;

    void Begin_();
    void Lost_(std::string const& reason);
    void Handle_(Message_t const& message);
    bool HandleAbout_(std::string const& name, Message_t const& message);
    bool HandleSchema_(std::string const& name, Message_t const& message);
    bool HandleValue_(std::string const& name, std::string const& path, Message_t const& message);
    bool HandleTotal_(std::string const& name, Message_t const& message);
    bool HandleAnswer_(std::string const& name, Message_t const& message);
    bool HandleEcho_(Message_t const& message);
    bool IsMine_(std::string_view name) const;
    Device* Find_(std::string const& name);
    void Send_(Device& device);
    void Finish_(Device& device, Answer_t const& answer);
    void Tick_();
    void Repair_(Device& device);
    void Repaired_(Device& device);
    void Drop_(std::string_view topic, std::string const& why);

    Settings_t const m_settings;
    std::uint64_t const m_sessionId;
    Signals_t m_signals;
    SchemaCache m_schemas;
    std::map<std::string, std::unique_ptr<Device>> m_devices;
    std::set<Device*> m_asking;    // have requests
    std::set<Device*> m_suspected; // have a total that was not agreed with
    std::uint64_t m_requests = 0;
    std::uint64_t m_values = 0;
    std::uint64_t m_token = 0; // of the echo that is awaited
    bool m_isListed = false;
    Clock::time_point m_confirmBy = Clock::time_point::max();
    boost::asio::steady_timer m_timer;
    Session m_session;
};

} // namespace Fleet
