#pragma once

#include "common/Wire.h"

#include <Net/AddrStr.h>
#include <Net/Endpoint.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Fleet {

/// A connection to an MQTT broker that is made, and made again whenever it is lost, until the object ends.
///
/// The client library runs on a thread of its own, and this class alone meets it there. Whatever happens is queued and
/// taken by the program on its one thread, so that nothing else needs a lock. A program waits on #Descriptor together
/// with all else that it waits for.
///
/// Messages go both ways with quality of service 1, at least once, within one connection. The broker keeps no session:
/// after each #EventKind_t::Connected the program subscribes and publishes anew.
class Mqtt
{
public:
    enum class EventKind_t
    {
        Connected,
        Disconnected, ///< the text says why
        Message,      ///< the text is the topic
    };

    struct Event_t
    {
        EventKind_t kind;
        std::string text;
        Bytes payload; ///< empty for one that is longer than #k_maxMessage
    };

    /// A retained message.
    struct Retained_t
    {
        std::string topic;
        Bytes payload;
    };

    /// Begins to connect.
    /// @param clientId unique at the broker, which ends the older of two connections with one id.
    /// @param will what the broker publishes when the connection is lost.
    /// @throws std::runtime_error if the client library cannot start.
    Mqtt(std::string const& clientId, Net::Endpoint<Net::AddrStr> const& broker, std::optional<Retained_t> will);
    Mqtt(Mqtt const&) = delete;
    Mqtt& operator=(Mqtt const&) = delete;

    /// Sends what was published, takes leave of the broker, which then drops the will, and ends within seconds.
    ~Mqtt();

    /// Readable while there are events to take.
    int Descriptor() const noexcept;

    /// All events since the last call, in order. While very many wait, the broker is left waiting too.
    std::vector<Event_t> Take();

    bool IsConnected() const noexcept;

    /// Hand a message or a wish to the connection. Without one they do nothing: #EventKind_t::Connected is the time to
    /// begin again.
    /// @{
    void Publish(std::string const& topic, std::span<unsigned char const> payload, bool retain);
    void Subscribe(std::string const& filter);
    /// @}

private:
    class Client;
    std::unique_ptr<Client> m_client;
};

} // namespace Fleet
