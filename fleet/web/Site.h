#pragma once

#include "controller/Controller.h"
#include "web/HttpServer.h"

#include <memory>
#include <set>
#include <string>

namespace Fleet {

/// The page, and what it asks for:
///
/// | Request | Answer |
/// |---|---|
/// | `GET /` and the other files of the page | these |
/// | `GET /api/devices?filter=&state=&after=` | a hundred devices by name, and how many there are |
/// | `GET /api/events?device=` | that something of the fleet changed; all of one device, and each change of it |
/// | `POST /api/set` | what the device answers to `{"device", "id", "section", "name", "value"}` |
///
/// Only programs that speak to this machine's own name, and pages that came from here, are served. To set something, a
/// page has to bring the token along that it was given.
class Site
{
public:
    /// Requests of a controller that lives longer.
    explicit Site(Controller& controller);
    Site(Site const&) = delete;
    Site& operator=(Site const&) = delete;
    /// No exchange and no feed may be left but those that a server has ended.
    ~Site();

    void Handle(std::shared_ptr<HttpExchange> const& exchange);

private:
    class Feed;
    using Request = HttpExchange::Request;
    using Response = HttpExchange::Response;

    Response Page_(Request const& request, std::string_view path, bool& isFound) const;
    Response Devices_(Request const& request) const;
    void Events_(HttpExchange& exchange);
    void Set_(std::shared_ptr<HttpExchange> const& exchange);
    bool MayComeFrom_(Request const& request, bool isPage) const;
    template<typename Tell>
    void Tell_(Tell tell) const;

    Controller& m_controller;
    std::string const m_run; // by which a page sees that the program was started again
    std::string const m_token;
    std::string m_lost; // why there is no connection to the broker
    std::set<Feed*> m_feeds;
    std::vector<boost::signals2::scoped_connection> m_connections;
};

} // namespace Fleet
