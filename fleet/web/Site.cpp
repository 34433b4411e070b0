#include "web/Site.h"

#include "common/Program.h"
#include "controller/Text.h"
#include "web/DeviceJson.h"
#include "web/PageFiles.h"

#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace Fleet {

namespace http = boost::beast::http;
using namespace Legacy::If;
using namespace std::chrono_literals;

namespace {

constexpr auto k_patience = 10s;
constexpr std::size_t k_rows = 100;
constexpr std::size_t k_maxValues = 500; // in one text of events
constexpr char k_tokenField[] = "X-Legacyif-Token";

std::string NewToken()
{
    std::array<char, 33> text{};
    std::snprintf(text.data(), text.size(), "%016llx%016llx", static_cast<unsigned long long>(RandomNumber()),
                  static_cast<unsigned long long>(RandomNumber()));
    return text.data();
}

std::string View(boost::beast::string_view text) { return {text.data(), text.size()}; }

HttpExchange::Response JsonResponse(http::status status, std::string text)
{
    auto response = TextResponse(status, std::move(text));
    response.set(http::field::content_type, "application/json");
    return response;
}

HttpExchange::Response Refusal(http::status status, std::string const& why) { return TextResponse(status, why + '\n'); }

/// The only value of a field, or nothing.
std::optional<std::string> Single(HttpExchange::Request const& request, http::field name)
{
    auto const [begin, end] = request.equal_range(name);
    if (std::distance(begin, end) != 1)
        return {};
    return View(begin->value());
}

/// Whether a name, perhaps with a port, is this machine's own: those of others may be made to lead here.
bool IsOwnName(std::string const& host)
{
    auto const colon = host.rfind(':');
    auto const port = colon == std::string::npos || host.ends_with(']') ? std::string() : host.substr(colon + 1);
    auto const name = boost::algorithm::to_lower_copy(port.empty() ? host : host.substr(0, colon));
    return port.find_first_not_of("0123456789") == std::string::npos &&
           (name == "127.0.0.1" || name == "localhost" || name == "[::1]");
}

std::string Parameter(boost::urls::url_view const& url, std::string_view name)
{
    auto const params = url.params();
    auto const found = params.find(boost::urls::string_view(name.data(), name.size()));
    return found == params.end() ? std::string() : std::string((*found).value);
}

std::string Event(std::string const& name, std::string const& data)
{
    return "event: " + name + "\ndata: " + data + "\n\n";
}

std::string LanguageOf(HttpExchange::Request const& request)
{
    return PreferredLanguage(View(request[http::field::accept_language]));
}

/// What somebody wants to set. Places are named as they were shown.
struct Wish_t
{
    std::string device;
    unsigned int id = 0;
    std::string section;
    std::string name;
    std::string value;
};

std::optional<Wish_t> ReadWish(std::string const& body)
{
    boost::json::error_code error;
    auto const document = boost::json::parse(body, error);
    if (error || !document.is_object())
        return {};
    Wish_t wish;
    auto const& object = document.get_object();
    auto const* const id = object.if_contains("id");
    if (!id || !id->is_int64() || id->get_int64() < 0 || id->get_int64() > std::numeric_limits<unsigned int>::max())
        return {};
    wish.id = static_cast<unsigned int>(id->get_int64());
    for (auto const& [key, target] : {std::pair<char const*, std::string*>{"device", &wish.device},
                                      {"section", &wish.section},
                                      {"name", &wish.name},
                                      {"value", &wish.value}})
    {
        auto const* const member = object.if_contains(key);
        if (!member || !member->is_string())
            return {};
        target->assign(member->get_string().data(), member->get_string().size());
    }
    return wish;
}

/// The parameter that was shown at that place: its device may have other ones by now.
boost::intrusive_ptr<InfoItemHolder const> FindShown(InfoItemDirectory const& directory, Wish_t const& wish)
{
    auto const parameter = directory.FindInfoItem(wish.id);
    if (!parameter)
        return {};
    auto const& info = *parameter->GetInfo()->GetInfo();
    bool const isSame = Printable(info.GetName()) == wish.name &&
                        Printable(Legacy::IfKit::PathOf(directory, info)) == wish.section + '/' + wish.name;
    return isSame ? parameter : nullptr;
}

HttpExchange::Response OutcomeResponse(http::status status, std::string_view outcome, std::string const& message = {},
                                       int code = 0)
{
    JsonLine line;
    line.Add("outcome", outcome).Add("message", message).AddRaw("code", std::to_string(code));
    return JsonResponse(status, line.ToString());
}

HttpExchange::Response AnswerResponse(Controller::Answer_t const& answer)
{
    using enum Controller::Answer_t::Outcome_t;
    switch (answer.outcome) {
    case Set:
        return OutcomeResponse(http::status::ok, "set");
    case Refused:
        return OutcomeResponse(http::status::conflict, "refused", answer.text, answer.code);
    case NoAnswer:
        break;
    case NoDevice:
    case NoParameter:
        return OutcomeResponse(http::status::not_found, "no-parameter");
    }
    return OutcomeResponse(http::status::gateway_timeout, "no-answer");
}

} // namespace

/// What one open page is told. It keeps which values are to be told, and not what they were: a slow page gets the last.
class Site::Feed : public EventFeed
{
public:
    Feed(Site& site, std::string device, std::string language)
        : m_site(site), m_device(std::move(device)), m_language(std::move(language))
    {
        m_site.m_feeds.insert(this);
    }

    ~Feed() override { m_site.m_feeds.erase(this); }

    void TellFleet()
    {
        m_isFleetNew = true;
        Wake_();
    }

    void TellDevice(Controller::Device const& device)
    {
        if (device.Name() != m_device)
            return;
        m_isStateNew = true;
        m_isTreeNew = m_isTreeNew || !m_isKnown || device.Directory() != m_directory;
        m_directory = device.Directory();
        Wake_();
    }

    void TellChange(Controller::Change_t const& change)
    {
        if (change.device.Name() != m_device)
            return;
        m_values.insert(change.parameter.GetInfo()->GetInfo()->GetId());
        Wake_();
    }

    std::string Next() override
    {
        std::string text;
        if (std::exchange(m_isFleetNew, false))
            text += Event("fleet", JsonLine()
                                       .AddRaw("connected", m_site.m_controller.IsConnected() ? "true" : "false")
                                       .Add("reason", m_site.m_lost)
                                       .Add("run", m_site.m_run)
                                       .ToString());
        if (m_device.empty())
            return text;
        auto const* const device = m_site.m_controller.Find(m_device);
        if (std::exchange(m_isTreeNew, false)) {
            m_isStateNew = false;
            m_values.clear();
            m_isKnown = device != nullptr;
            m_directory = device ? device->Directory() : nullptr;
            return text + Event("device", device ? TreeJson(*device, m_language) : "null");
        }
        if (std::exchange(m_isStateNew, false) && device)
            text += Event("state", DeviceJson(*device));
        return text + Values_(device);
    }

private:
    std::string Values_(Controller::Device const* device)
    {
        if (!device || !device->Directory() || m_values.empty())
            return {};
        std::string values;
        for (std::size_t i = 0; i < k_maxValues && !m_values.empty(); ++i)
            if (auto const parameter = device->Directory()->FindInfoItem(m_values.extract(m_values.begin()).value()))
                values += (values.empty() ? "" : ",") + ValueJson(*parameter, m_language);
        return Event("values", '[' + values + ']');
    }

    Site& m_site;
    std::string const m_device;
    std::string const m_language;
    std::set<unsigned int> m_values;                // to be told, by the ids of the parameters
    InfoItemDirectory const* m_directory = nullptr; // to see that it is another one, not to be looked into
    bool m_isKnown = false;                         // whether the page was told that there is the device
    bool m_isFleetNew = true;
    bool m_isTreeNew = true;
    bool m_isStateNew = false;
};

Site::Site(Controller& controller) : m_controller(controller), m_run(NewToken()), m_token(NewToken())
{
    auto& signals = m_controller.Signals();
    m_connections.emplace_back(signals.link.connect([this](bool, std::string const& reason) {
        m_lost = reason;
        Tell_([](Feed& feed) { feed.TellFleet(); });
    }));
    m_connections.emplace_back(signals.device.connect([this](Controller::Device const& device) {
        Tell_([&](Feed& feed) {
            feed.TellFleet();
            feed.TellDevice(device);
        });
    }));
    m_connections.emplace_back(signals.complete.connect(
        [this](Controller::Device const& device) { Tell_([&](Feed& feed) { feed.TellDevice(device); }); }));
    m_connections.emplace_back(signals.change.connect(
        [this](Controller::Change_t const& change) { Tell_([&](Feed& feed) { feed.TellChange(change); }); }));
}

Site::~Site() = default;

template<typename Tell>
void Site::Tell_(Tell tell) const
{
    for (auto* const feed : m_feeds)
        tell(*feed);
}

void Site::Handle(std::shared_ptr<HttpExchange> const& exchange)
{
    auto const& request = exchange->Asked();
    auto const host = Single(request, http::field::host);
    auto const url = boost::urls::parse_origin_form(request.target());
    if (!host || !url)
        return exchange->Reply(Refusal(http::status::bad_request, "not a request for this server"));
    if (!IsOwnName(*host))
        return exchange->Reply(Refusal(http::status::misdirected_request, "this server has another name"));
    auto const path = View(url->encoded_path());
    bool isPage = false;
    auto page = Page_(request, path, isPage);
    if (!MayComeFrom_(request, isPage))
        return exchange->Reply(Refusal(http::status::forbidden, "other pages have no access"));
    bool const isSet = path == "/api/set";
    bool const isKnown = isPage || isSet || path == "/api/devices" || path == "/api/events";
    bool const isRead =
        request.method() == http::verb::get || (request.method() == http::verb::head && path != "/api/events");
    if (!isKnown)
        return exchange->Reply(Refusal(http::status::not_found, "there is nothing of this name"));
    if (isSet ? request.method() != http::verb::post : !isRead) {
        auto response = Refusal(http::status::method_not_allowed, "not this method");
        response.set(http::field::allow, isSet ? "POST" : path == "/api/events" ? "GET" : "GET, HEAD");
        return exchange->Reply(std::move(response));
    }
    if (isPage)
        exchange->Reply(std::move(page));
    else if (isSet)
        Set_(exchange);
    else if (path == "/api/events")
        Events_(*exchange);
    else
        exchange->Reply(Devices_(request));
}

/// Browsers tell which page a request comes from. Others, whom nobody can lead here, need not.
bool Site::MayComeFrom_(Request const& request, bool isPage) const
{
    if (request.count(http::field::origin) != 0 &&
        Single(request, http::field::origin) != "http://" + *Single(request, http::field::host))
        return false;
    auto const [begin, end] = request.equal_range("Sec-Fetch-Site");
    bool const isOwn = std::all_of(
        begin, end, [](auto const& field) { return field.value() == "same-origin" || field.value() == "none"; });
    // A link may lead here from anywhere, but not into a frame.
    return isOwn || (isPage && request["Sec-Fetch-Mode"] == "navigate" && request["Sec-Fetch-Dest"] == "document");
}

Site::Response Site::Page_(Request const& request, std::string_view path, bool& isFound) const
{
    static constexpr std::pair<std::string_view, char const*> k_types[] = {{".html", "text/html; charset=utf-8"},
                                                                           {".js", "text/javascript; charset=utf-8"},
                                                                           {".css", "text/css; charset=utf-8"},
                                                                           {".svg", "image/svg+xml"}};
    auto const name = path == "/" ? "index.html" : path.substr(std::min<std::size_t>(1, path.size()));
    for (auto const& file : PageFiles()) {
        if (file.name != name)
            continue;
        isFound = true;
        auto response = TextResponse(http::status::ok, std::string(file.content));
        if (name == "index.html") {
            auto const language = LanguageOf(request);
            boost::algorithm::replace_all(response.body(), "{{language}}", language);
            boost::algorithm::replace_all(response.body(), "{{token}}", m_token);
            response.set(http::field::content_language, language);
            response.set(http::field::vary, "Accept-Language");
        }
        for (auto const& [ending, type] : k_types)
            if (name.ends_with(ending))
                response.set(http::field::content_type, type);
        return response;
    }
    return {};
}

Site::Response Site::Devices_(Request const& request) const
{
    auto const url = boost::urls::parse_origin_form(request.target()).value();
    auto const filter = boost::algorithm::to_lower_copy(Parameter(url, "filter"));
    auto const state = Parameter(url, "state");
    auto const after = Parameter(url, "after");
    std::size_t online = 0;
    std::size_t matches = 0;
    std::size_t shown = 0;
    bool hasMore = false;
    std::string rows;
    m_controller.ForEach([&](Controller::Device const& device) {
        online += device.IsOnline();
        bool const isMatch =
            (state.empty() || StateOf(device) == state) &&
            (filter.empty() || boost::algorithm::contains(boost::algorithm::to_lower_copy(device.Name()), filter) ||
             boost::algorithm::contains(boost::algorithm::to_lower_copy(device.Title()), filter));
        if (!isMatch)
            return;
        ++matches;
        if (device.Name() <= after)
            return;
        hasMore = shown == k_rows;
        if (!hasMore) {
            ++shown;
            rows += (rows.empty() ? "" : ",") + DeviceJson(device);
        }
    });
    return JsonResponse(http::status::ok, JsonLine()
                                              .AddRaw("total", std::to_string(m_controller.Size()))
                                              .AddRaw("online", std::to_string(online))
                                              .AddRaw("matches", std::to_string(matches))
                                              .AddRaw("more", hasMore ? "true" : "false")
                                              .AddRaw("devices", '[' + rows + ']')
                                              .ToString());
}

void Site::Events_(HttpExchange& exchange)
{
    auto const device = Parameter(boost::urls::parse_origin_form(exchange.Asked().target()).value(), "device");
    exchange.Stream(std::make_unique<Feed>(*this, device, LanguageOf(exchange.Asked())));
}

void Site::Set_(std::shared_ptr<HttpExchange> const& exchange)
{
    auto const& request = exchange->Asked();
    if (request[k_tokenField] != m_token)
        return exchange->Reply(Refusal(http::status::forbidden, "the token is missing"));
    if (request[http::field::content_type] != "application/json")
        return exchange->Reply(Refusal(http::status::unsupported_media_type, "not application/json"));
    auto const wish = ReadWish(request.body());
    if (!wish)
        return exchange->Reply(Refusal(http::status::bad_request, "not a wish for a value"));
    auto const* const device = m_controller.Find(wish->device);
    auto const parameter = device && device->Directory() ? FindShown(*device->Directory(), *wish) : nullptr;
    if (!parameter)
        return exchange->Reply(OutcomeResponse(http::status::not_found, "no-parameter"));
    if (!device->IsOnline() || !m_controller.IsConnected())
        return exchange->Reply(OutcomeResponse(http::status::conflict, "offline"));
    std::string fault;
    auto const item = Legacy::IfKit::ParseValueText(*parameter->GetInfo()->GetInfo(), wish->value, fault);
    if (!item)
        return exchange->Reply(OutcomeResponse(http::status::unprocessable_entity, "unreadable", fault));
    m_controller.Set(wish->device, item, LanguageOf(request), k_patience,
                     [exchange](Controller::Answer_t const& answer) { exchange->Reply(AnswerResponse(answer)); });
}

} // namespace Fleet
