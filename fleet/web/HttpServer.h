#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Fleet {

/// Events for one client, as long as it stays. It is asked for them when the client has room for more, so that a slow
/// one never has more than one text under way; what is not told yet is for the feed to keep, in a bounded way.
class EventFeed
{
public:
    EventFeed() = default;
    EventFeed(EventFeed const&) = delete;
    EventFeed& operator=(EventFeed const&) = delete;
    virtual ~EventFeed() = default; ///< the client is gone

    /// All that is new, as server-sent events; empty for nothing.
    virtual std::string Next() = 0;

protected:
    /// There is something new. Cheap, and may be called again and again.
    void Wake_() const
    {
        if (m_wake)
            m_wake();
    }

private:
    friend class HttpConnection;

    std::function<void()> m_wake;
};

/// One request, which is answered once, at once or later. It may be kept; an answer to a client that is gone is
/// nothing.
class HttpExchange
{
public:
    using Request = boost::beast::http::request<boost::beast::http::string_body>;
    using Response = boost::beast::http::response<boost::beast::http::string_body>;

    virtual ~HttpExchange() = default;

    virtual Request const& Asked() const = 0;
    /// Length and the fields that guard the page are added.
    virtual void Reply(Response response) = 0;
    /// Answers with events until the client leaves.
    /// @return false if there are too many already, which was answered then.
    virtual bool Stream(std::unique_ptr<EventFeed> feed) = 0;
};

/// A response of a short text.
HttpExchange::Response TextResponse(boost::beast::http::status status, std::string text);

/// Serves HTTP/1.1 to programs on this machine: it listens on the loopback, and nowhere else.
///
/// Everything happens on the thread that runs the context. Whatever clients send costs a bounded amount of memory and
/// time, and is answered with a status or not at all.
class HttpServer
{
public:
    /// Requests that keep to the limits are handed on one after another for each connection.
    using Handler = std::function<void(std::shared_ptr<HttpExchange> exchange)>;

    struct Limits_t
    {
        std::size_t header = 8 * 1024;
        std::size_t body = 128 * 1024;
        std::size_t connections = 64;
        std::size_t streams = 32;                  ///< of these; events take a connection each
        std::chrono::milliseconds request{15'000}; ///< until one is there as a whole, and until its answer is taken
        std::chrono::milliseconds pace{50};        ///< before each text of events, so that one tells many changes
    };

    /// @param port zero for one that is free
    /// @throws boost::system::system_error if the port is taken.
    HttpServer(boost::asio::io_context& context, unsigned short port, Limits_t limits, Handler handler);
    HttpServer(HttpServer const&) = delete;
    HttpServer& operator=(HttpServer const&) = delete;
    /// Ends all connections.
    ~HttpServer();

    unsigned short Port() const noexcept { return m_port; }

private:
    friend class HttpConnection;

    struct Listener_t
    {
        boost::asio::ip::tcp::acceptor acceptor;
        boost::asio::steady_timer retry;
    };

    void Listen_(boost::asio::ip::tcp::endpoint const& endpoint);
    void Accept_(Listener_t& listener);

    Limits_t const m_limits;
    Handler const m_handler;
    boost::asio::io_context& m_context;
    std::vector<std::unique_ptr<Listener_t>> m_listeners;
    std::set<class HttpConnection*> m_connections;
    std::size_t m_streams = 0;
    unsigned short m_port;
};

} // namespace Fleet
