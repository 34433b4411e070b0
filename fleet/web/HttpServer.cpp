#include "web/HttpServer.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/write.hpp>

#include <array>
#include <optional>
#include <sstream>
#include <utility>

namespace Fleet {

namespace http = boost::beast::http;
using boost::asio::ip::tcp;
using boost::system::error_code;
using namespace std::chrono_literals;

namespace {

constexpr auto k_acceptPause = 100ms;
constexpr auto k_fullTime = 1s;
constexpr auto k_lingerTime = 2s;
constexpr std::size_t k_lingerBytes = 1'048'576;
constexpr std::size_t k_turnedAway = 16; // connections beyond the limit that are told so; others are closed
constexpr auto k_heartbeat = 15s;

/// Nothing of this page is for other pages, and nothing of others is for this one.
void AddGuards(http::fields& fields)
{
    fields.set(http::field::cache_control, "no-store");
    fields.set("Content-Security-Policy",
               "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
               "base-uri 'none'; form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'");
    fields.set("Cross-Origin-Opener-Policy", "same-origin");
    fields.set("Cross-Origin-Resource-Policy", "same-origin");
    fields.set("Referrer-Policy", "no-referrer");
    fields.set("X-Content-Type-Options", "nosniff");
    fields.set("X-Frame-Options", "DENY");
}

/// What a request is answered with that cannot be read; nothing for a client that is gone.
std::optional<http::status> StatusOf(error_code const& code)
{
    using http::error;
    static auto const& category = make_error_code(error::end_of_stream).category();
    if (code.category() != category || code == error::end_of_stream || code == error::partial_message)
        return {};
    if (code == error::header_limit || code == error::buffer_overflow)
        return http::status::request_header_fields_too_large;
    if (code == error::body_limit)
        return http::status::payload_too_large;
    if (code == error::bad_version)
        return http::status::http_version_not_supported;
    return http::status::bad_request;
}

} // namespace

HttpExchange::Response TextResponse(http::status status, std::string text)
{
    HttpExchange::Response response(status, 11);
    response.set(http::field::content_type, "text/plain; charset=utf-8");
    response.body() = std::move(text);
    return response;
}

/// One client. It lives as long as something of it is under way, and serves as the exchange of the request at hand.
class HttpConnection : public HttpExchange, public std::enable_shared_from_this<HttpConnection>
{
public:
    HttpConnection(tcp::socket socket, HttpServer& server)
        : m_socket(std::move(socket)), m_timer(m_socket.get_executor()), m_pace(m_socket.get_executor()),
          m_server(&server)
    {
        m_server->m_connections.insert(this);
    }

    ~HttpConnection() override { Leave_(); }

    void Start() { Read_(); }

    /// For one client too many.
    void TurnAway()
    {
        m_parser.emplace();
        auto response = TextResponse(http::status::service_unavailable, "too many connections\n");
        response.keep_alive(false);
        Write_(std::move(response), k_fullTime);
    }

    /// At once, from inside or outside.
    void Close()
    {
        Leave_();
        error_code ignored;
        m_socket.close(ignored);
        m_timer.cancel();
        m_pace.cancel();
    }

    Request const& Asked() const override { return m_parser->get(); }

    void Reply(Response response) override
    {
        if (!m_server || !std::exchange(m_isAsked, false))
            return;
        response.version(Asked().version());
        response.keep_alive(Asked().keep_alive());
        Write_(std::move(response), m_server->m_limits.request);
    }

    bool Stream(std::unique_ptr<EventFeed> feed) override
    {
        if (!m_server || !m_isAsked)
            return false;
        if (m_server->m_streams >= m_server->m_limits.streams) {
            Reply(TextResponse(http::status::service_unavailable, "too many streams of events\n"));
            return false;
        }
        m_isAsked = false;
        ++m_server->m_streams;
        m_feed = std::move(feed);
        m_feed->m_wake = [this] {
            if (!m_isFeeding)
                Pause_();
        };
        // The end of the connection is that of the events.
        http::response_header<> header;
        header.version(11);
        header.result(http::status::ok);
        header.set(http::field::content_type, "text/event-stream");
        header.set(http::field::connection, "close");
        AddGuards(header);
        std::ostringstream text;
        text << header;
        m_isFeeding = true;
        WriteEvents_(text.str());
        Watch_();
        return true;
    }

private:
    using Parser = http::request_parser<http::string_body>;

    /// The server, or what it serves, may be gone after this.
    void Leave_()
    {
        auto* const server = std::exchange(m_server, nullptr);
        if (!server)
            return;
        server->m_connections.erase(this);
        if (m_feed)
            --server->m_streams;
        m_feed.reset();
    }

    template<typename Late>
    void Within_(std::chrono::milliseconds time, Late late)
    {
        m_timer.expires_after(time);
        m_timer.async_wait([self = shared_from_this(), late](error_code const& error) {
            if (!error)
                late(*self);
        });
    }

    void Read_()
    {
        m_isLate = false;
        m_parser.emplace();
        m_parser->header_limit(static_cast<std::uint32_t>(m_server->m_limits.header));
        m_parser->body_limit(m_server->m_limits.body);
        // The read ends with an error, which is told apart from others by the mark.
        Within_(m_server->m_limits.request, [](HttpConnection& self) {
            self.m_isLate = true;
            error_code ignored;
            self.m_socket.cancel(ignored);
        });
        http::async_read(m_socket, m_buffer, *m_parser,
                         [self = shared_from_this()](error_code const& error, std::size_t) { self->Read_(error); });
    }

    void Read_(error_code const& error)
    {
        m_timer.cancel();
        if (!m_server)
            return;
        if (!error) {
            m_isAsked = true;
            m_server->m_handler(shared_from_this());
            return;
        }
        auto status = StatusOf(error);
        if (m_isLate && m_parser->got_some())
            status = http::status::request_timeout;
        if (!status)
            return Close();
        auto response = TextResponse(*status, std::string(http::obsolete_reason(*status)) + '\n');
        response.keep_alive(false);
        Write_(std::move(response), m_server->m_limits.request);
    }

    void Write_(Response response, std::chrono::milliseconds time)
    {
        AddGuards(response);
        response.prepare_payload();
        m_response = std::move(response);
        m_serializer.emplace(m_response);
        Within_(time, [](HttpConnection& self) { self.Close(); });
        auto done = [self = shared_from_this()](error_code const& error, std::size_t) {
            self->m_timer.cancel();
            if (!self->m_server)
                return;
            if (error)
                self->Close();
            else if (self->m_response.keep_alive())
                self->Read_();
            else
                self->Linger_();
        };
        if (m_parser->get().method() == http::verb::head)
            http::async_write_header(m_socket, *m_serializer, std::move(done));
        else
            http::async_write(m_socket, *m_serializer, std::move(done));
    }

    /// Closed with something unread, a connection would be reset, and the client might not see its answer.
    void Linger_()
    {
        error_code ignored;
        m_socket.shutdown(tcp::socket::shutdown_send, ignored);
        Within_(k_lingerTime, [](HttpConnection& self) { self.Close(); });
        m_lingered = 0;
        Watch_();
    }

    /// Nothing is expected any more but that the client leaves.
    void Watch_()
    {
        m_socket.async_read_some(boost::asio::buffer(m_ignored),
                                 [self = shared_from_this()](error_code const& error, std::size_t size) {
                                     self->m_lingered += size;
                                     if (error || self->m_lingered > k_lingerBytes)
                                         self->Close();
                                     else if (self->m_server)
                                         self->Watch_();
                                 });
    }

    void WriteEvents_(std::string text)
    {
        m_events = std::move(text);
        Within_(m_server->m_limits.request, [](HttpConnection& self) { self.Close(); });
        boost::asio::async_write(m_socket, boost::asio::buffer(m_events),
                                 [self = shared_from_this()](error_code const& error, std::size_t) {
                                     self->m_timer.cancel();
                                     if (error)
                                         self->Close();
                                     else if (self->m_server)
                                         self->Pause_();
                                 });
    }

    /// A little later the feed is asked what is new. If that is nothing, it wakes the connection when there is; until
    /// then a client that is gone without leave is only noticed by what is sent to it.
    void Pause_()
    {
        m_isFeeding = true;
        m_pace.expires_after(m_server->m_limits.pace);
        m_pace.async_wait([self = shared_from_this()](error_code const& error) {
            if (error || !self->m_feed)
                return;
            auto text = self->m_feed->Next();
            if (!text.empty())
                return self->WriteEvents_(std::move(text));
            self->m_isFeeding = false;
            self->m_pace.expires_after(k_heartbeat);
            self->m_pace.async_wait([self](error_code const& woken) {
                if (!woken && self->m_feed && !std::exchange(self->m_isFeeding, true))
                    self->WriteEvents_(": still here\n\n");
            });
        });
    }

    tcp::socket m_socket;
    boost::asio::steady_timer m_timer; // for what is under way
    boost::asio::steady_timer m_pace;  // for the next events
    HttpServer* m_server;              // null when the connection has ended
    boost::beast::flat_buffer m_buffer;
    std::optional<Parser> m_parser;
    Response m_response;
    std::optional<http::response_serializer<http::string_body>> m_serializer;
    std::unique_ptr<EventFeed> m_feed;
    std::string m_events;
    std::array<char, 4096> m_ignored{};
    std::size_t m_lingered = 0;
    bool m_isAsked = false; // a request waits for its answer
    bool m_isLate = false;
    bool m_isFeeding = false; // events are under way, or will be in a moment
};

HttpServer::HttpServer(boost::asio::io_context& context, unsigned short port, Limits_t limits, Handler handler)
    : m_limits(limits), m_handler(std::move(handler)), m_context(context)
{
    Listen_({boost::asio::ip::address_v4::loopback(), port});
    m_port = m_listeners.front()->acceptor.local_endpoint().port();
    // Browsers may try this one first for "localhost". Not every machine has it.
    try {
        Listen_({boost::asio::ip::address_v6::loopback(), m_port});
    } catch (boost::system::system_error const&) {
    }
}

HttpServer::~HttpServer()
{
    while (!m_connections.empty())
        (*m_connections.begin())->Close();
}

void HttpServer::Listen_(tcp::endpoint const& endpoint)
{
    m_listeners.push_back(std::make_unique<Listener_t>(
        Listener_t{tcp::acceptor(m_context, endpoint), boost::asio::steady_timer(m_context)}));
    Accept_(*m_listeners.back());
}

void HttpServer::Accept_(Listener_t& listener)
{
    listener.acceptor.async_accept([this, &listener](error_code const& error, tcp::socket socket) {
        if (error == boost::asio::error::operation_aborted)
            return;
        if (error) { // no descriptor is left, for one
            listener.retry.expires_after(k_acceptPause);
            listener.retry.async_wait([this, &listener](error_code const& ended) {
                if (!ended)
                    Accept_(listener);
            });
            return;
        }
        if (m_connections.size() < m_limits.connections)
            std::make_shared<HttpConnection>(std::move(socket), *this)->Start();
        else if (m_connections.size() < m_limits.connections + k_turnedAway)
            std::make_shared<HttpConnection>(std::move(socket), *this)->TurnAway();
        Accept_(listener);
    });
}

} // namespace Fleet
