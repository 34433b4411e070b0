#pragma once

#include "common/Broker.h"
#include "common/Wire.h"

#include <boost/asio/io_context.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Fleet {

/// A message as it arrives, valid within the call alone.
struct Message_t
{
    std::string_view topic;
    std::span<unsigned char const> payload;
    bool isRetained; ///< it comes from the broker's memory
};

/// How many connections of a process may be in the making at once, so that thousands of them do not run into each other
/// at the broker's door.
class ConnectGate
{
public:
    /// Calls `begin` now or when it is its turn; #Leave follows each.
    void Enter(std::function<void()> begin);
    void Leave();

private:
    static constexpr std::size_t k_places = 64;

    std::size_t m_inside = 0;
    std::vector<std::function<void()>> m_waiting;
    std::size_t m_next = 0;
};

/// A connection to an MQTT broker that is made, and made again whenever it is lost, until it is stopped.
///
/// Everything happens on the thread that runs the context, so nothing needs a lock, and one thread serves thousands of
/// connections. Messages go both ways with quality of service 1, at least once, within one connection. Neither side
/// keeps anything beyond it: after each connect the program subscribes and publishes anew.
class Session
{
public:
    /// Each may call anything on the session but its destructor.
    struct Handlers_t
    {
        std::function<void()> connected;
        /// Once for each connection that ended and for each series of attempts that failed.
        std::function<void(std::string const& reason)> disconnected;
        std::function<void(Message_t const& message)> message;
        /// The broker has taken a message; perhaps there is room for the next.
        std::function<void()> acknowledged;
        /// The broker does not let this client have what it subscribed to.
        std::function<void()> denied;
    };

    /// Nothing happens before #Start.
    /// @param clientId unique at the broker, which ends the older of two connections with one id.
    Session(boost::asio::io_context& context, Broker_t const& broker, std::string clientId, Handlers_t handlers);
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;
    /// Ends the connection at once, without leave: the broker publishes the will.
    ~Session();

    /// What the broker publishes and keeps when the connection is lost. To be called before #Start.
    void SetWill(std::string topic, Bytes payload);
    /// Sessions that share a gate take turns in connecting.
    void SetGate(std::shared_ptr<ConnectGate> gate);

    void Start();

    /// Sends what was published, takes leave of the broker, which then drops the will, and calls `done`: within two
    /// seconds, whatever the broker does. No handler is called any more.
    void Stop(std::function<void()> done);

    bool IsConnected() const noexcept;
    /// Whether the broker has refused the user, the password or the certificate, which waiting does not mend.
    bool IsRefused() const noexcept;
    /// Messages that the broker has not acknowledged yet.
    std::size_t Unacknowledged() const noexcept;

    /// Hand a message or a wish to the connection. Without one they do nothing: the handler `connected` is the time to
    /// begin again.
    /// @{
    void Publish(std::string const& topic, std::span<unsigned char const> payload, bool retain);
    void Subscribe(std::vector<std::string> const& filters);
    void Unsubscribe(std::vector<std::string> const& filters);
    /// @}

private:
    class Impl;
    std::shared_ptr<Impl> m_impl;
};

} // namespace Fleet
