#include "controller/Controller.h"

#include "common/Program.h"
#include "common/Topics.h"

#include <Legacy/IfKit/Difference.h>

#include <algorithm>
#include <utility>

namespace Fleet {

using namespace Legacy::If;
using namespace std::chrono_literals;

namespace {

constexpr auto k_tick = 200ms;
constexpr auto k_repeatTime = 3s;
constexpr auto k_confirmTime = 15s;
constexpr std::chrono::milliseconds k_firstRepair = 2s;
constexpr std::chrono::milliseconds k_maxRepair = 300s;

/// The same on every machine, so that controllers agree about who has which device.
std::uint32_t HashOf(std::string_view name)
{
    std::uint32_t hash = 2166136261U;
    for (char const c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return hash ^ (hash >> 15);
}

std::vector<std::string> ValueFilters(std::string const& name)
{
    return {Filter(TopicKind_t::Value, name), Filter(TopicKind_t::Total, name)};
}

} // namespace

struct Controller::Device::Request_t
{
    std::uint64_t number;
    std::string path;
    std::string language;
    ItemPtr item;
    Clock::time_point deadline;
    Done done;
};

Controller::Device::Device(std::string name) : m_name(std::move(name)) {}

Controller::Device::~Device() = default;

Controller::Controller(boost::asio::io_context& context, Settings_t settings)
    : m_settings(std::move(settings)), m_sessionId(RandomNumber()), m_timer(context),
      m_session(context, m_settings.broker, "legacyif-fleet-" + m_settings.name + '-' + std::to_string(m_sessionId),
                {.connected = [this] { Begin_(); },
                 .disconnected = [this](std::string const& reason) { Lost_(reason); },
                 .message = [this](Message_t const& message) { Handle_(message); },
                 .acknowledged = {},
                 .denied = [this] { Drop_("", "the broker refuses a subscription"); }})
{}

Controller::~Controller() = default;

void Controller::Start()
{
    m_session.Start();
    Tick_();
}

void Controller::Stop(std::function<void()> done)
{
    m_timer.cancel();
    m_session.Stop(std::move(done));
}

Controller::Device const* Controller::Find(std::string const& name) const
{
    auto const found = m_devices.find(name);
    return found == m_devices.end() ? nullptr : found->second.get();
}

Controller::Device* Controller::Find_(std::string const& name)
{
    auto const found = m_devices.find(name);
    return found == m_devices.end() ? nullptr : found->second.get();
}

void Controller::ForEach(std::function<void(Device const& device)> const& use) const
{
    for (auto const& [name, device] : m_devices)
        use(*device);
}

bool Controller::IsMine_(std::string_view name) const
{
    if (!m_settings.devices.empty())
        return std::find(m_settings.devices.begin(), m_settings.devices.end(), name) != m_settings.devices.end();
    return m_settings.shares <= 1 || HashOf(name) % m_settings.shares == m_settings.share;
}

/// First who there is; what each one has follows when it is known.
void Controller::Begin_()
{
    m_isListed = false;
    m_token = RandomNumber();
    m_confirmBy = Clock::time_point::max();
    for (auto& [name, device] : m_devices) {
        device->m_isSubscribed = false;
        device->m_isConfirmed = false;
        device->m_isInStep = false;
    }
    std::vector<std::string> filters{Filter(TopicKind_t::Answer, k_anyName, m_settings.name),
                                     Filter(TopicKind_t::Echo, m_settings.name)};
    if (m_settings.devices.empty())
        filters.push_back(Filter(TopicKind_t::About, k_anyName));
    for (auto const& name : m_settings.devices)
        filters.push_back(Filter(TopicKind_t::About, name));
    m_session.Subscribe(filters);
    // It comes back behind all that the broker has to say about devices.
    m_session.Publish(ToText({TopicKind_t::Echo, m_settings.name, {}, {}}), Encode(EchoMessage{m_token}), false);
    m_signals.link(true, {});
}

void Controller::Lost_(std::string const& reason)
{
    m_isListed = false;
    m_confirmBy = Clock::time_point::max();
    m_signals.link(false, reason);
}

void Controller::Handle_(Message_t const& message)
{
    auto const topic = ParseTopic(message.topic);
    bool isGood = false;
    if (topic) {
        auto const& name = topic->device;
        switch (topic->kind) {
        case TopicKind_t::About:
            isGood = HandleAbout_(name, message);
            break;
        case TopicKind_t::Schema:
            isGood = HandleSchema_(name, message);
            break;
        case TopicKind_t::Value:
            isGood = HandleValue_(name, topic->path, message);
            break;
        case TopicKind_t::Total:
            isGood = HandleTotal_(name, message);
            break;
        case TopicKind_t::Answer:
            isGood = topic->controller == m_settings.name && HandleAnswer_(name, message);
            break;
        case TopicKind_t::Echo:
            isGood = name == m_settings.name && HandleEcho_(message);
            break;
        case TopicKind_t::Claim:
        case TopicKind_t::Set:
            break;
        }
    }
    if (!isGood)
        Drop_(message.topic, {});
}

bool Controller::HandleAbout_(std::string const& name, Message_t const& message)
{
    auto const about = DecodeAbout(message.payload);
    if (!about)
        return false;
    if (!IsMine_(name))
        return true;
    auto& slot = m_devices[name];
    bool const isNew = !slot;
    if (isNew)
        slot = std::make_unique<Device>(name);
    auto& device = *slot;
    if (device.m_about) {
        // What a broker remembers may be older than what is known.
        if (device.m_about->lineage == about->lineage && about->first < device.m_about->first)
            return true;
        // Of two processes of one name, the one that leaves is not the one that stays.
        if (device.m_isOnline && !about->online && device.m_about->instance != about->instance)
            return true;
    }
    bool const isChanged = isNew || device.m_isOnline != about->online || device.m_title != about->title;
    device.m_about = about;
    device.m_title = about->title;
    device.m_isOnline = about->online;
    device.m_isConfirmed = true;
    if (device.m_mirror)
        device.m_mirror->Begin(about->lineage, about->first);
    if (isChanged)
        m_signals.device(device);
    if (!m_settings.isListOnly && !std::exchange(device.m_isSubscribed, true)) {
        // The schema first: values that come before it would be for nothing.
        auto filters = ValueFilters(name);
        filters.insert(filters.begin(), Filter(TopicKind_t::Schema, name));
        m_session.Subscribe(filters);
    }
    Send_(device);
    return true;
}

bool Controller::HandleSchema_(std::string const& name, Message_t const& message)
{
    auto* const device = Find_(name);
    if (!device || !device->m_about)
        return !IsMine_(name);
    std::string fault;
    auto schemas =
        m_schemas.Read({reinterpret_cast<char const*>(message.payload.data()), message.payload.size()}, fault);
    if (!schemas) {
        Drop_(message.topic, fault);
        return true;
    }
    if (device->m_mirror && device->m_mirror->Schemas() == schemas)
        return true;
    bool const isFirst = !device->m_mirror;
    device->m_mirror = std::make_unique<Mirror>(
        std::move(schemas), [this, device](Mirror::ParameterPtr const& parameter, ItemPtr const& former) {
            m_signals.change({*device, *parameter, former});
        });
    device->m_mirror->Begin(device->m_about->lineage, device->m_about->first);
    // Values that came under the former schemas come again.
    if (!isFirst)
        m_session.Subscribe(ValueFilters(name));
    m_signals.device(*device);
    if (device->IsComplete())
        m_signals.complete(*device);
    return true;
}

bool Controller::HandleValue_(std::string const& name, std::string const& path, Message_t const& message)
{
    auto const value = message.payload.size() <= k_maxMessage ? DecodeValue(message.payload) : std::nullopt;
    auto* const device = Find_(name);
    if (!value || !device || !device->m_mirror)
        return false;
    ++m_values;
    bool const wasComplete = device->IsComplete();
    auto const outcome = device->m_mirror->Apply(path, *value);
    if (!wasComplete && device->IsComplete())
        m_signals.complete(*device);
    return outcome != Mirror::Outcome_t::Foreign;
}

bool Controller::HandleTotal_(std::string const& name, Message_t const& message)
{
    auto const total = DecodeTotal(message.payload);
    auto* const device = Find_(name);
    if (!total || !device)
        return false;
    if (device->m_mirror && device->m_mirror->Agrees(*total)) {
        device->m_total = total;
        Repaired_(*device);
        return true;
    }
    if (!device->m_total) {
        device->m_repairDelay = k_firstRepair;
        device->m_repairAt = Clock::now() + k_firstRepair;
    }
    device->m_total = total;
    device->m_isInStep = false;
    m_suspected.insert(device);
    return true;
}

bool Controller::HandleAnswer_(std::string const& name, Message_t const& message)
{
    auto const answer = DecodeAnswer(message.payload);
    auto* const device = Find_(name);
    if (!answer || !device)
        return false;
    // Another controller of this name may have asked, and the answer to a repeated request comes repeatedly.
    if (answer->session != m_sessionId || device->m_requests.empty() ||
        device->m_requests.front()->number != answer->request)
        return true;
    using enum Answer_t::Outcome_t;
    Finish_(*device, {answer->code == 0 ? Set : Refused, answer->code, answer->text});
    return true;
}

bool Controller::HandleEcho_(Message_t const& message)
{
    auto const echo = DecodeEcho(message.payload);
    if (!echo)
        return false;
    if (echo->token != m_token || m_isListed)
        return true;
    m_isListed = true;
    m_confirmBy = Clock::now() + k_confirmTime;
    m_signals.listed();
    return true;
}

void Controller::Set(std::string const& name, ItemPtr const& item, std::string const& language,
                     std::chrono::milliseconds patience, Done done)
{
    using enum Answer_t::Outcome_t;
    auto* const device = Find_(name);
    if (!device)
        return done({NoDevice, 0, {}});
    auto const parameter = device->m_mirror ? device->m_mirror->Directory().FindInfo(item->GetId()) : nullptr;
    if (!parameter)
        return done({NoParameter, 0, {}});
    auto path = Legacy::IfKit::PathOf(device->m_mirror->Directory(), *parameter->GetInfo());
    device->m_requests.push_back(std::make_unique<Device::Request_t>(
        Device::Request_t{++m_requests, std::move(path), language, item,
                          patience == 0ms ? Clock::time_point::max() : Clock::now() + patience, std::move(done)}));
    m_asking.insert(device);
    if (device->m_requests.size() == 1)
        Send_(*device);
}

/// Sends the request that is under way, for the first time or once more. The device executes a number once.
void Controller::Send_(Device& device)
{
    if (device.m_requests.empty() || !device.m_isOnline)
        return;
    auto const& request = *device.m_requests.front();
    m_session.Publish(ToText({TopicKind_t::Set, device.m_name, m_settings.name, request.path}),
                      Encode(SetMessage{m_sessionId, request.number, request.language, request.item}), false);
    device.m_sent = Clock::now();
}

void Controller::Finish_(Device& device, Answer_t const& answer)
{
    auto const request = std::move(device.m_requests.front());
    device.m_requests.pop_front();
    if (device.m_requests.empty())
        m_asking.erase(&device);
    Send_(device);
    request->done(answer);
}

void Controller::Tick_()
{
    auto const now = Clock::now();
    auto const asking = m_asking; // an answer may bring the next question
    for (auto* const device : asking) {
        while (!device->m_requests.empty() && device->m_requests.front()->deadline <= now)
            Finish_(*device, {Answer_t::Outcome_t::NoAnswer, 0, {}});
        if (!device->m_requests.empty() && now >= device->m_sent + k_repeatTime)
            Send_(*device);
    }
    auto const suspected = m_suspected;
    for (auto* const device : suspected)
        if (now >= device->m_repairAt)
            Repair_(*device);
    // Who has not told that it is there since the broker came back is not.
    if (now >= m_confirmBy) {
        m_confirmBy = Clock::time_point::max();
        for (auto& [name, device] : m_devices)
            if (!device->m_isConfirmed && std::exchange(device->m_isOnline, false))
                m_signals.device(*device);
    }
    m_timer.expires_after(k_tick);
    m_timer.async_wait([this](boost::system::error_code const& error) {
        if (!error)
            Tick_();
    });
}

/// Values were lost on the way, as a broker does that has too many for a slow client. It remembers the last of each.
void Controller::Repair_(Device& device)
{
    if (device.m_mirror && (device.m_mirror->Agrees(*device.m_total) || device.m_mirror->IsAhead(*device.m_total)))
        return Repaired_(device);
    device.m_repairDelay = std::min(2 * device.m_repairDelay, k_maxRepair);
    device.m_repairAt = Clock::now() + device.m_repairDelay;
    if (!m_session.IsConnected() || !device.m_isSubscribed)
        return;
    Log(Orlek::LogLevel_t::Info, device.m_name + ": values are missing, and are asked for again");
    auto filters = ValueFilters(device.m_name);
    filters.insert(filters.begin(), Filter(TopicKind_t::Schema, device.m_name));
    m_session.Subscribe(filters);
}

void Controller::Repaired_(Device& device)
{
    // A sum that is older than what is here tells nothing; the next one will.
    device.m_isInStep = device.m_isInStep || (device.m_total && device.m_mirror->Agrees(*device.m_total));
    device.m_total.reset();
    m_suspected.erase(&device);
}

void Controller::Drop_(std::string_view topic, std::string const& why)
{
    auto const what = "dropped a damaged or foreign message: " + Printable(topic) + (why.empty() ? "" : ": ") + why;
    Log(Orlek::LogLevel_t::Warning, what);
    m_signals.dropped(what);
}

} // namespace Fleet
