#include "common/Mqtt.h"

#include <mosquitto.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace Fleet {

namespace {

using namespace std::chrono_literals;

constexpr int k_qos = 1;
constexpr int k_keepalive = 15; // seconds
constexpr std::size_t k_maxEvents = 4096;
constexpr auto k_loopTime = 500ms;
constexpr auto k_firstDelay = 250ms;
constexpr auto k_maxDelay = 8000ms;
constexpr auto k_leaveTime = 2s;

/// The client library, started with the first connection and ended with the process.
struct Library_t
{
    Library_t() { mosquitto_lib_init(); }
    ~Library_t() { mosquitto_lib_cleanup(); }
};

struct Destroy_t
{
    void operator()(mosquitto* client) const { mosquitto_destroy(client); }
};

/// A descriptor that is readable while it was told to be.
class Flag
{
public:
    Flag() : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        if (m_descriptor < 0)
            throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    Flag(Flag const&) = delete;
    Flag& operator=(Flag const&) = delete;
    ~Flag() { close(m_descriptor); }

    int Descriptor() const noexcept { return m_descriptor; }

    void Set() noexcept { static_cast<void>(eventfd_write(m_descriptor, 1)); }

    void Reset() noexcept
    {
        eventfd_t count = 0;
        static_cast<void>(eventfd_read(m_descriptor, &count));
    }

private:
    int m_descriptor;
};

std::string Reason(int code)
{
    return code == MOSQ_ERR_ERRNO ? std::generic_category().message(errno) : mosquitto_strerror(code);
}

} // namespace

class Mqtt::Client
{
public:
    Client(std::string const& clientId, Net::Endpoint<Net::AddrStr> const& broker, std::optional<Retained_t> will)
        : m_host(broker.GetAddr().ToString()), m_port(broker.GetPort())
    {
        static Library_t const library;
        m_mosquitto.reset(mosquitto_new(clientId.c_str(), true, this));
        if (!m_mosquitto)
            throw std::runtime_error("the MQTT client cannot be started");
        if (will && mosquitto_will_set(m_mosquitto.get(), will->topic.c_str(), static_cast<int>(will->payload.size()),
                                       will->payload.data(), k_qos, true) != MOSQ_ERR_SUCCESS)
            throw std::runtime_error("the MQTT client does not accept the will");
        mosquitto_threaded_set(m_mosquitto.get(), true);
        mosquitto_connect_callback_set(m_mosquitto.get(), &Client::OnConnect_);
        mosquitto_message_callback_set(m_mosquitto.get(), &Client::OnMessage_);
        m_thread = std::thread([this] { Run_(); });
    }

    ~Client()
    {
        {
            std::lock_guard const lock(m_mutex);
            m_stopping = true;
        }
        m_change.notify_all();
        mosquitto_disconnect(m_mosquitto.get());
        m_thread.join();
    }

    int Descriptor() const noexcept { return m_waiting.Descriptor(); }
    bool IsConnected() const noexcept { return m_connected; }

    std::vector<Event_t> Take()
    {
        std::vector<Event_t> events;
        {
            std::lock_guard const lock(m_mutex);
            m_waiting.Reset();
            events.swap(m_events);
        }
        m_change.notify_all();
        return events;
    }

    void Publish(std::string const& topic, std::span<unsigned char const> payload, bool retain)
    {
        if (m_connected)
            mosquitto_publish(m_mosquitto.get(), nullptr, topic.c_str(), static_cast<int>(payload.size()),
                              payload.data(), k_qos, retain);
    }

    void Subscribe(std::string const& filter)
    {
        if (m_connected)
            mosquitto_subscribe(m_mosquitto.get(), nullptr, filter.c_str(), k_qos);
    }

private:
    /// The life of the library's thread: connect, serve the connection until it ends, wait a little, once more.
    void Run_()
    {
        auto delay = k_firstDelay;
        bool outage = false;
        int code = mosquitto_connect_async(m_mosquitto.get(), m_host.c_str(), m_port, k_keepalive);
        for (;;) {
            code = Serve_(code);
            if (m_stopping)
                return;
            if (m_connected.exchange(false)) {
                delay = k_firstDelay;
                outage = false;
            }
            // An outage is told once, however often the attempts to end it fail.
            if (!std::exchange(outage, true))
                Push_({EventKind_t::Disconnected, Reason(code), {}});
            std::unique_lock lock(m_mutex);
            if (m_change.wait_for(lock, delay, [this] { return m_stopping.load(); }))
                return;
            lock.unlock();
            delay = std::min<std::chrono::milliseconds>(2 * delay, k_maxDelay);
            code = mosquitto_reconnect_async(m_mosquitto.get());
        }
    }

    /// Until the connection ends, or the program does and has had its time to take leave.
    /// @return why
    int Serve_(int code)
    {
        std::optional<std::chrono::steady_clock::time_point> end;
        while (code == MOSQ_ERR_SUCCESS) {
            if (m_stopping && !end)
                end = std::chrono::steady_clock::now() + (m_connected ? k_leaveTime : 0s);
            if (end && std::chrono::steady_clock::now() >= *end)
                break;
            code = mosquitto_loop(m_mosquitto.get(), static_cast<int>(k_loopTime.count()), 1);
        }
        return code;
    }

    void Push_(Event_t event)
    {
        std::unique_lock lock(m_mutex);
        m_change.wait(lock, [this] { return m_stopping || m_events.size() < k_maxEvents; });
        m_events.push_back(std::move(event));
        m_waiting.Set();
    }

    static void OnConnect_(mosquitto*, void* self, int refusal)
    {
        // The loop ends by itself after a refusal.
        if (refusal != 0)
            return;
        auto& client = *static_cast<Client*>(self);
        client.m_connected = true;
        client.Push_({EventKind_t::Connected, {}, {}});
    }

    static void OnMessage_(mosquitto*, void* self, mosquitto_message const* message)
    {
        auto const* begin = static_cast<unsigned char const*>(message->payload);
        auto const size = static_cast<std::size_t>(message->payloadlen);
        Bytes payload;
        if (size <= k_maxMessage)
            payload.assign(begin, begin + size);
        static_cast<Client*>(self)->Push_({EventKind_t::Message, message->topic, std::move(payload)});
    }

    std::string const m_host;
    int const m_port;
    std::unique_ptr<mosquitto, Destroy_t> m_mosquitto;
    Flag m_waiting;
    std::mutex m_mutex;
    std::condition_variable m_change; // of the two below
    std::vector<Event_t> m_events;
    std::atomic<bool> m_stopping = false;
    std::atomic<bool> m_connected = false;
    std::thread m_thread;
};

Mqtt::Mqtt(std::string const& clientId, Net::Endpoint<Net::AddrStr> const& broker, std::optional<Retained_t> will)
    : m_client(std::make_unique<Client>(clientId, broker, std::move(will)))
{}

Mqtt::~Mqtt() = default;

int Mqtt::Descriptor() const noexcept { return m_client->Descriptor(); }

std::vector<Mqtt::Event_t> Mqtt::Take() { return m_client->Take(); }

bool Mqtt::IsConnected() const noexcept { return m_client->IsConnected(); }

void Mqtt::Publish(std::string const& topic, std::span<unsigned char const> payload, bool retain)
{
    m_client->Publish(topic, payload, retain);
}

void Mqtt::Subscribe(std::string const& filter) { m_client->Subscribe(filter); }

} // namespace Fleet
