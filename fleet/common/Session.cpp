#include "common/Session.h"

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <openssl/ssl.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Fleet {

namespace asio = boost::asio;

namespace {

using namespace std::chrono_literals;
using Error = boost::system::error_code;

constexpr int k_qos = 1;
constexpr int k_maxReads = 256; // packets for each time that the socket is readable, so that others have their turn
constexpr int k_unused = 1;     // the client library takes this number and looks at no other
constexpr auto k_firstDelay = 250ms;
constexpr auto k_maxDelay = 8000ms;
constexpr auto k_connectTime = 10s;
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

std::string Reason(int code)
{
    return code == MOSQ_ERR_ERRNO ? std::generic_category().message(errno) : mosquitto_strerror(code);
}

/// Part of the time, so that those who lost one broker do not come back all at once.
std::chrono::milliseconds Scattered(std::chrono::milliseconds time)
{
    static std::minstd_rand random{std::random_device{}()};
    return time / 2 + std::chrono::milliseconds(random() % static_cast<unsigned long>(time.count() / 2 + 1));
}

} // namespace

void ConnectGate::Enter(std::function<void()> begin)
{
    if (m_inside < k_places) {
        ++m_inside;
        begin();
    } else {
        m_waiting.push_back(std::move(begin));
    }
}

void ConnectGate::Leave()
{
    if (m_next < m_waiting.size()) {
        auto const begin = std::exchange(m_waiting[m_next++], {});
        if (m_next == m_waiting.size()) {
            m_waiting.clear();
            m_next = 0;
        }
        begin();
    } else {
        --m_inside;
    }
}

/// Each attempt has a client of the library to itself, so that nothing of a lost connection is sent in the next one.
class Session::Impl : public std::enable_shared_from_this<Impl>
{
public:
    Impl(asio::io_context& context, Broker_t const& broker, std::string clientId, Handlers_t handlers)
        : m_broker(broker), m_clientId(std::move(clientId)), m_handlers(std::move(handlers)), m_socket(context),
          m_timer(context), m_service(context)
    {
        static Library_t const library;
    }

    void SetWill(std::string topic, Bytes payload)
    {
        m_willTopic = std::move(topic);
        m_will = std::move(payload);
    }
    void SetGate(std::shared_ptr<ConnectGate> gate) { m_gate = std::move(gate); }

    void Start() { Enter_(); }

    void Stop(std::function<void()> done)
    {
        m_isMute = true;
        if (!m_isConnected) {
            Abandon();
            asio::post(m_socket.get_executor(), std::move(done));
            return;
        }
        m_leave = std::move(done);
        m_service.cancel();
        m_timer.expires_after(k_leaveTime);
        m_timer.async_wait([self = shared_from_this()](Error const& error) {
            if (!error)
                self->Leave_();
        });
        LeaveIfSent_();
    }

    void Abandon()
    {
        m_isAbandoned = true;
        m_isMute = true;
        m_timer.cancel();
        m_service.cancel();
        Close_();
    }

    bool IsConnected() const noexcept { return m_isConnected; }
    bool IsRefused() const noexcept { return m_isRefused; }
    std::size_t Unacknowledged() const noexcept { return m_unacknowledged; }

    void Publish(std::string const& topic, std::span<unsigned char const> payload, bool retain)
    {
        if (!m_isConnected)
            return;
        int const code = mosquitto_publish(m_client.get(), nullptr, topic.c_str(), static_cast<int>(payload.size()),
                                           payload.data(), k_qos, retain);
        if (code == MOSQ_ERR_SUCCESS)
            ++m_unacknowledged;
        Check_(code);
    }

    void Subscribe(std::vector<std::string> const& filters)
    {
        Many_(filters, [this](int count, char* const* texts) {
            return mosquitto_subscribe_multiple(m_client.get(), nullptr, count, texts, k_qos, 0, nullptr);
        });
    }

    void Unsubscribe(std::vector<std::string> const& filters)
    {
        Many_(filters, [this](int count, char* const* texts) {
            return mosquitto_unsubscribe_multiple(m_client.get(), nullptr, count, texts, nullptr);
        });
    }

private:
    template<typename Call>
    void Many_(std::vector<std::string> const& filters, Call call)
    {
        if (!m_isConnected || filters.empty())
            return;
        std::vector<char*> texts;
        for (auto const& filter : filters)
            texts.push_back(const_cast<char*>(filter.c_str())); // the library only reads them
        Check_(call(static_cast<int>(texts.size()), texts.data()));
    }

    void Enter_()
    {
        if (!m_gate)
            return Connect_();
        m_gate->Enter([self = shared_from_this()] {
            self->m_isInGate = true;
            if (self->m_isAbandoned)
                self->LeaveGate_();
            else
                self->Connect_();
        });
    }

    void LeaveGate_()
    {
        if (std::exchange(m_isInGate, false))
            asio::post(m_socket.get_executor(), [gate = m_gate] { gate->Leave(); });
    }

    void Connect_()
    {
        m_unacknowledged = 0;
        m_isRefused = false;
        m_why.clear();
        m_client.reset(mosquitto_new(m_clientId.c_str(), true, this));
        int const code = m_client ? Prepare_() : MOSQ_ERR_NOMEM;
        if (code != MOSQ_ERR_SUCCESS && mosquitto_socket(m_client.get()) < 0)
            return Lost_(code);
        m_timer.expires_after(k_connectTime);
        m_timer.async_wait([self = shared_from_this()](Error const& error) {
            if (error || self->m_isConnected)
                return;
            self->m_why = "the broker does not answer";
            self->Lost_(MOSQ_ERR_CONN_LOST);
        });
        m_socket.assign(mosquitto_socket(m_client.get()));
        Read_();
        Write_();
        Serve_();
    }

    int Prepare_()
    {
        auto* const client = m_client.get();
        mosquitto_connect_callback_set(client, &Impl::OnConnect_);
        mosquitto_message_callback_set(client, &Impl::OnMessage_);
        mosquitto_publish_callback_set(client, &Impl::OnPublish_);
        mosquitto_subscribe_callback_set(client, &Impl::OnSubscribe_);
        mosquitto_log_callback_set(client, &Impl::OnLog_);
        mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
        mosquitto_max_inflight_messages_set(client, 0); // whoever publishes bounds what is on its way
        int code = MOSQ_ERR_SUCCESS;
        if (!m_broker.user.empty())
            code = mosquitto_username_pw_set(client, m_broker.user.c_str(), m_broker.password.c_str());
        if (code == MOSQ_ERR_SUCCESS && !m_broker.ca.empty())
            code = mosquitto_tls_set(client, m_broker.ca.c_str(), nullptr,
                                     m_broker.certificate.empty() ? nullptr : m_broker.certificate.c_str(),
                                     m_broker.key.empty() ? nullptr : m_broker.key.c_str(), nullptr);
        if (code == MOSQ_ERR_SUCCESS && !m_willTopic.empty())
            code = mosquitto_will_set(client, m_willTopic.c_str(), static_cast<int>(m_will.size()), m_will.data(),
                                      k_qos, true);
        if (code == MOSQ_ERR_SUCCESS)
            code = mosquitto_connect_async(client, m_broker.host.c_str(), m_broker.port,
                                           static_cast<int>(m_broker.keepalive.count()));
        return code;
    }

    /// Waits for what the broker sends.
    void Read_()
    {
        m_socket.async_wait(asio::posix::stream_descriptor::wait_read,
                            [self = shared_from_this(), attempt = m_attempt](Error const& error) {
                                if (!error && self->m_attempt == attempt)
                                    self->TakeIn_();
                            });
    }

    void TakeIn_()
    {
        int code = MOSQ_ERR_SUCCESS;
        for (int i = 0; i < k_maxReads && code == MOSQ_ERR_SUCCESS && !m_isLost; ++i) {
            code = mosquitto_loop_read(m_client.get(), k_unused);
            if (code != MOSQ_ERR_SUCCESS || !HasInput_())
                break;
        }
        if (!Check_(code))
            return;
        // What the library has decrypted already makes no socket readable.
        if (HasInput_())
            asio::post(m_socket.get_executor(), [self = shared_from_this(), attempt = m_attempt] {
                if (self->m_attempt == attempt)
                    self->TakeIn_();
            });
        else
            Read_();
    }

    bool HasInput_() const
    {
        int const socket = mosquitto_socket(m_client.get());
        int bytes = 0;
        if (socket < 0)
            return false;
        if (auto* const ssl = static_cast<SSL*>(mosquitto_ssl_get(m_client.get())); ssl && SSL_pending(ssl) > 0)
            return true;
        return ioctl(socket, FIONREAD, &bytes) == 0 && bytes > 0;
    }

    /// Waits for room for what is to be sent, if there is any.
    void Write_()
    {
        if (m_isWriting || !m_socket.is_open())
            return;
        m_isWriting = true;
        m_socket.async_wait(asio::posix::stream_descriptor::wait_write,
                            [self = shared_from_this(), attempt = m_attempt](Error const& error) {
                                if (self->m_attempt != attempt)
                                    return;
                                self->m_isWriting = false;
                                if (!error)
                                    self->Check_(mosquitto_loop_write(self->m_client.get(), k_unused));
                            });
    }

    /// Keeps the connection alive.
    void Serve_()
    {
        m_service.expires_after(m_broker.keepalive / 3);
        m_service.async_wait([self = shared_from_this(), attempt = m_attempt](Error const& error) {
            if (error || self->m_attempt != attempt)
                return;
            if (!self->m_isConnected || self->Check_(mosquitto_loop_misc(self->m_client.get())))
                self->Serve_();
        });
    }

    /// To be called after each call of the library: sees whether the connection still stands.
    bool Check_(int code)
    {
        if (m_isInCallback)
            return true;
        if (mosquitto_socket(m_client.get()) < 0 || m_isLost) {
            Lost_(code);
            return false;
        }
        if (mosquitto_want_write(m_client.get()))
            Write_();
        return true;
    }

    void Lost_(int code)
    {
        bool const wasConnected = m_isConnected;
        auto const why = m_why.empty() ? Reason(code) : m_why;
        Close_();
        if (m_leave)
            return Done_();
        if (wasConnected) {
            m_delay = k_firstDelay;
            m_isOutage = false;
        }
        m_timer.expires_after(Scattered(m_delay));
        m_delay = std::min<std::chrono::milliseconds>(2 * m_delay, k_maxDelay);
        m_timer.async_wait([self = shared_from_this()](Error const& error) {
            if (!error && !self->m_isAbandoned)
                self->Enter_();
        });
        // An outage is told once, however often the attempts to end it fail. Whoever hears of it may stop all this.
        if (!std::exchange(m_isOutage, true) && IsHeard_(m_handlers.disconnected))
            m_handlers.disconnected(why);
    }

    void Close_()
    {
        m_isConnected = false;
        m_isLost = false;
        m_isWriting = false;
        m_service.cancel();
        // The client library closes its socket itself, or has done so.
        if (m_socket.is_open())
            m_socket.release();
        m_client.reset();
        ++m_attempt;
        LeaveGate_();
    }

    void LeaveIfSent_()
    {
        if (m_leave && !m_isInCallback && m_unacknowledged == 0)
            Leave_();
    }

    void Leave_()
    {
        if (m_client)
            mosquitto_disconnect(m_client.get());
        Close_();
        Done_();
    }

    void Done_()
    {
        m_isAbandoned = true;
        m_timer.cancel();
        // The time may have been up at the same moment.
        if (m_leave)
            asio::post(m_socket.get_executor(), std::exchange(m_leave, {}));
    }

    /// The library's callbacks run within its calls, so what they begin is looked after when these return.
    struct Callback_t
    {
        explicit Callback_t(void* self) : impl(*static_cast<Impl*>(self)) { impl.m_isInCallback = true; }
        Callback_t(Callback_t const&) = delete;
        Callback_t& operator=(Callback_t const&) = delete;
        ~Callback_t()
        {
            impl.m_isInCallback = false;
            if (impl.m_leave && impl.m_unacknowledged == 0)
                asio::post(impl.m_socket.get_executor(), [self = impl.shared_from_this()] { self->LeaveIfSent_(); });
        }
        Impl& impl;
    };

    template<typename Handler>
    bool IsHeard_(Handler const& handler) const
    {
        return !m_isMute && handler;
    }

    static void OnConnect_(mosquitto*, void* self, int refusal)
    {
        Callback_t const call(self);
        auto& impl = call.impl;
        if (refusal != 0) {
            impl.m_isRefused =
                refusal == CONNACK_REFUSED_BAD_USERNAME_PASSWORD || refusal == CONNACK_REFUSED_NOT_AUTHORIZED;
            impl.m_why = mosquitto_connack_string(refusal);
            impl.m_isLost = true;
            return;
        }
        impl.m_isConnected = true;
        impl.m_timer.cancel();
        impl.LeaveGate_();
        if (impl.IsHeard_(impl.m_handlers.connected))
            impl.m_handlers.connected();
    }

    static void OnMessage_(mosquitto*, void* self, mosquitto_message const* message)
    {
        Callback_t const call(self);
        if (call.impl.IsHeard_(call.impl.m_handlers.message))
            call.impl.m_handlers.message(
                {message->topic,
                 {static_cast<unsigned char const*>(message->payload), static_cast<std::size_t>(message->payloadlen)},
                 message->retain});
    }

    static void OnPublish_(mosquitto*, void* self, int)
    {
        Callback_t const call(self);
        call.impl.m_unacknowledged -= call.impl.m_unacknowledged > 0;
        if (call.impl.IsHeard_(call.impl.m_handlers.acknowledged))
            call.impl.m_handlers.acknowledged();
    }

    static void OnSubscribe_(mosquitto*, void* self, int, int count, int const* granted)
    {
        Callback_t const call(self);
        if (std::any_of(granted, granted + count, [](int qos) { return qos > 2; }) &&
            call.impl.IsHeard_(call.impl.m_handlers.denied))
            call.impl.m_handlers.denied();
    }

    /// What the library says of TLS is more than its code tells.
    static void OnLog_(mosquitto*, void* self, int level, char const* text)
    {
        if (level == MOSQ_LOG_ERR)
            static_cast<Impl*>(self)->m_why = text;
    }

    Broker_t const m_broker;
    std::string const m_clientId;
    Handlers_t const m_handlers;
    std::string m_willTopic;
    Bytes m_will;
    std::shared_ptr<ConnectGate> m_gate;
    std::unique_ptr<mosquitto, Destroy_t> m_client;
    asio::posix::stream_descriptor m_socket; // that of the client, which owns it
    asio::steady_timer m_timer;              // of the attempt, the wait for the next, or the leave
    asio::steady_timer m_service;
    std::chrono::milliseconds m_delay = k_firstDelay;
    std::function<void()> m_leave;
    std::string m_why;
    std::size_t m_unacknowledged = 0;
    std::size_t m_attempt = 0; // tells what belongs to a connection that is gone
    bool m_isConnected = false;
    bool m_isRefused = false;
    bool m_isLost = false;
    bool m_isWriting = false;
    bool m_isInCallback = false;
    bool m_isInGate = false;
    bool m_isOutage = false;
    bool m_isAbandoned = false;
    bool m_isMute = false;
};

Session::Session(asio::io_context& context, Broker_t const& broker, std::string clientId, Handlers_t handlers)
    : m_impl(std::make_shared<Impl>(context, broker, std::move(clientId), std::move(handlers)))
{}

Session::~Session() { m_impl->Abandon(); }

void Session::SetWill(std::string topic, Bytes payload) { m_impl->SetWill(std::move(topic), std::move(payload)); }
void Session::SetGate(std::shared_ptr<ConnectGate> gate) { m_impl->SetGate(std::move(gate)); }
void Session::Start() { m_impl->Start(); }
void Session::Stop(std::function<void()> done) { m_impl->Stop(std::move(done)); }
bool Session::IsConnected() const noexcept { return m_impl->IsConnected(); }
bool Session::IsRefused() const noexcept { return m_impl->IsRefused(); }
std::size_t Session::Unacknowledged() const noexcept { return m_impl->Unacknowledged(); }

void Session::Publish(std::string const& topic, std::span<unsigned char const> payload, bool retain)
{
    m_impl->Publish(topic, payload, retain);
}

void Session::Subscribe(std::vector<std::string> const& filters) { m_impl->Subscribe(filters); }
void Session::Unsubscribe(std::vector<std::string> const& filters) { m_impl->Unsubscribe(filters); }

} // namespace Fleet
