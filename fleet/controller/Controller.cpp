// The controller of the fleet: it mirrors devices, tells what changes on them, and sets values on them.

#include "common/Mqtt.h"
#include "common/Program.h"
#include "common/Topics.h"
#include "common/Wire.h"
#include "controller/Mirror.h"
#include "device/Model.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Fleet {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view k_help = R"(usage: legacyif-fleet [options]

Mirrors the parameters of devices through an MQTT broker, tells what changes, and sets values.

  --broker HOST:PORT     where the broker listens (127.0.0.1:1883)
  --device NAME          a device to mirror; may be repeated (all devices)
  --language LANGUAGE    of the messages with which devices refuse a value, such as de (en)
  --name NAME            what devices know this controller as; letters, digits, '-', '_' and '.'
                         (a name of its own for each run)
  --help                 this text

It reads commands from the standard input, one to a line:

)";

constexpr std::string_view k_commands = R"(  list                   the devices
  show DEVICE            all values of a device
  set DEVICE PATH VALUE  asks the device for another value; a list is its length and its elements
  wait                   until the devices are there with all values, and every request is answered
  wait SECONDS           so long
  quit                   ends the program

At the end of the input it waits for the answers that are due and ends.
)";

constexpr std::size_t k_maxDevices = 1000;
constexpr auto k_repeatTime = std::chrono::seconds(3);
constexpr auto k_tick = std::chrono::milliseconds(200);

struct Settings_t
{
    std::string name;
    std::string language;
    std::vector<std::string> devices; ///< empty for all
    Net::Endpoint<Net::AddrStr> broker;
};

class Controller
{
public:
    explicit Controller(Settings_t settings)
        : m_settings(std::move(settings)), m_mqtt("fleet-controller-" + m_settings.name, m_settings.broker, {})
    {}

    /// Works until the signal, the command or the end of the input.
    void Run(StopSignal const& stop)
    {
        while (!m_quit) {
            bool const reading = !m_atEnd && m_input.size() < k_maxInput && !IsWaiting_();
            auto const readable =
                WaitReadable({stop.Descriptor(), m_mqtt.Descriptor(), reading ? STDIN_FILENO : -1}, k_tick);
            if (readable[0])
                return;
            for (auto const& event : m_mqtt.Take())
                Handle_(event);
            RepeatRequests_();
            if (readable[2])
                ReadInput_();
            RunCommands_();
        }
    }

private:
    /// A value that a device was asked for and has not answered for yet.
    struct Request_t
    {
        std::uint64_t number;
        std::string path;
        ItemPtr item;
    };

    struct Device_t
    {
        std::unique_ptr<Mirror> mirror;
        bool online = false;
        bool subscribed = false;        ///< within this connection
        std::deque<Request_t> requests; ///< the first one is under way; the others follow in order
        Clock::time_point sent;
    };

    static constexpr std::size_t k_maxInput = 64 * 1024;

    void Handle_(Mqtt::Event_t const& event)
    {
        switch (event.kind) {
        case Mqtt::EventKind_t::Connected:
            std::cout << "connected to " << m_settings.broker.ToString() << std::endl;
            Begin_();
            break;
        case Mqtt::EventKind_t::Disconnected:
            std::cout << "no connection: " << event.text << std::endl;
            break;
        case Mqtt::EventKind_t::Message:
            if (!HandleMessage_(event))
                Log(Orlek::LogLevel_t::Warning, "dropped a damaged or foreign message: " + Printable(event.text));
            break;
        }
    }

    /// First what the devices are; the values of each follow once its schemas are known.
    void Begin_()
    {
        m_mqtt.Subscribe(Filter(TopicKind_t::Answer, k_anyName, m_settings.name));
        if (m_settings.devices.empty())
            m_mqtt.Subscribe(Filter(TopicKind_t::About, k_anyName));
        for (auto const& name : m_settings.devices)
            m_mqtt.Subscribe(Filter(TopicKind_t::About, name));
        for (auto& [name, device] : m_devices) {
            device.subscribed = false;
            Send_(name, device);
        }
    }

    bool HandleMessage_(Mqtt::Event_t const& event)
    {
        auto const topic = ParseTopic(event.text);
        if (!topic)
            return false;
        switch (topic->kind) {
        case TopicKind_t::About:
            return HandleAbout_(*topic, event.payload);
        case TopicKind_t::Value:
            return HandleValue_(*topic, event.payload);
        case TopicKind_t::Answer:
            return HandleAnswer_(*topic, event.payload);
        case TopicKind_t::Set:
            break;
        }
        return false;
    }

    bool HandleAbout_(Topic_t const& topic, Bytes const& payload)
    {
        auto const message = DecodeAbout(payload);
        auto const kinds = Kinds();
        if (!message || std::find(kinds.begin(), kinds.end(), message->kind) == kinds.end())
            return false;
        if (m_devices.size() >= k_maxDevices && !m_devices.contains(topic.device))
            return false;
        auto& device = m_devices[topic.device];
        bool const news = !device.mirror || device.mirror->Kind() != message->kind;
        if (news) {
            device.mirror = std::make_unique<Mirror>(topic.device, message->kind);
            device.subscribed = false;
        }
        if (news || device.online != message->online)
            std::cout << topic.device << ": " << message->kind << ", " << (message->online ? "online" : "offline")
                      << std::endl;
        device.online = message->online;
        // The retained values come with the subscription, and whatever is known already is passed over.
        if (!std::exchange(device.subscribed, true))
            m_mqtt.Subscribe(Filter(TopicKind_t::Value, topic.device));
        Send_(topic.device, device);
        return true;
    }

    bool HandleValue_(Topic_t const& topic, Bytes const& payload)
    {
        auto const device = m_devices.find(topic.device);
        auto const message = DecodeValue(payload);
        return device != m_devices.end() && message &&
               device->second.mirror->Apply(topic.path, *message) != Mirror::Outcome_t::Foreign;
    }

    bool HandleAnswer_(Topic_t const& topic, Bytes const& payload)
    {
        auto const found = m_devices.find(topic.device);
        auto const message = DecodeAnswer(payload);
        if (found == m_devices.end() || topic.controller != m_settings.name || !message)
            return false;
        auto& device = found->second;
        // The answer to a repeated request comes repeatedly.
        if (device.requests.empty() || device.requests.front().number != message->request)
            return true;
        std::cout << topic.device << ' ' << device.requests.front().path;
        if (message->code == 0)
            std::cout << " is set" << std::endl;
        else
            std::cout << " is refused (" << message->code << "): " << Printable(message->text) << std::endl;
        device.requests.pop_front();
        Send_(topic.device, device);
        return true;
    }

    /// Sends the request that is under way, for the first time or once more. The device executes a number once.
    void Send_(std::string const& name, Device_t& device)
    {
        if (device.requests.empty() || !device.online)
            return;
        auto const& request = device.requests.front();
        m_mqtt.Publish(ToText({TopicKind_t::Set, name, m_settings.name, request.path}),
                       Encode(SetMessage{request.number, m_settings.language, request.item}), false);
        device.sent = Clock::now();
    }

    void RepeatRequests_()
    {
        for (auto& [name, device] : m_devices) {
            if (Clock::now() >= device.sent + k_repeatTime)
                Send_(name, device);
        }
    }

    /// Takes what is there of the standard input.
    void ReadInput_()
    {
        std::array<char, 4096> buffer;
        auto const count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count > 0)
            m_input.append(buffer.data(), static_cast<std::size_t>(count));
        else
            m_atEnd = true;
    }

    void RunCommands_()
    {
        for (auto end = m_input.find('\n'); end != std::string::npos && !m_quit && !IsWaiting_();
             end = m_input.find('\n')) {
            std::istringstream line(m_input.substr(0, end));
            m_input.erase(0, end + 1);
            Command_(line);
        }
        if (m_input.size() >= k_maxInput && m_input.find('\n') == std::string::npos)
            m_input.clear();
        if (m_atEnd && !IsWaiting_()) {
            // A last line may end with the input.
            std::istringstream line(std::exchange(m_input, {}));
            Command_(line);
            m_quit = m_quit || !HasRequests_();
        }
    }

    void Command_(std::istringstream& line)
    {
        std::string word;
        if (!(line >> word))
            return;
        if (word == "list")
            List_();
        else if (word == "show")
            Show_(line);
        else if (word == "set")
            Set_(line);
        else if (word == "wait")
            Wait_(line);
        else if (word == "quit")
            m_quit = true;
        else
            std::cout << "The commands are:\n" << k_commands << std::flush;
    }

    void List_() const
    {
        for (auto const& [name, device] : m_devices)
            std::cout << "  " << name << ": " << device.mirror->Kind() << ", " << (device.online ? "online" : "offline")
                      << '\n';
        std::cout << m_devices.size() << " devices" << std::endl;
    }

    Device_t* Find_(std::string const& name)
    {
        auto const found = m_devices.find(name);
        if (found == m_devices.end()) {
            std::cout << "error: no such device: " << Printable(name) << std::endl;
            return nullptr;
        }
        return &found->second;
    }

    void Show_(std::istringstream& line)
    {
        std::string name;
        line >> name;
        if (auto const* device = Find_(name)) {
            std::cout << name << '\n';
            device->mirror->Show(std::cout);
            std::cout << std::flush;
        }
    }

    void Set_(std::istringstream& line)
    {
        std::string name;
        std::string path;
        std::string text;
        line >> name >> path;
        std::getline(line >> std::ws, text);
        auto* const device = Find_(name);
        if (!device)
            return;
        auto const info = device->mirror->Find(path);
        if (!info) {
            std::cout << "error: no such parameter: " << Printable(path) << std::endl;
            return;
        }
        std::string error;
        auto const item = ReadValue(info->GetInfo(), text, error);
        if (!item) {
            std::cout << "error: " << path << ": " << error << std::endl;
            return;
        }
        device->requests.push_back({NextNumber(), path, item});
        if (device->requests.size() == 1)
            Send_(name, *device);
    }

    void Wait_(std::istringstream& line)
    {
        std::string word;
        if (!(line >> word)) {
            m_waitsForAll = true;
            return;
        }
        char* end = nullptr;
        double const seconds = std::strtod(word.c_str(), &end);
        if (*end == '\0' && seconds >= 0 && seconds <= 86400)
            m_waitsUntil = Clock::now() + std::chrono::milliseconds(static_cast<long>(seconds * 1000));
        else
            std::cout << "error: not a number of seconds: " << Printable(word) << std::endl;
    }

    bool HasRequests_() const
    {
        return std::any_of(m_devices.begin(), m_devices.end(),
                           [](auto const& entry) { return !entry.second.requests.empty(); });
    }

    /// Whether there is nothing to wait for: all devices are known, and those online with all their values.
    bool IsSettled_() const
    {
        return m_mqtt.IsConnected() && !m_devices.empty() && !HasRequests_() &&
               std::all_of(m_settings.devices.begin(), m_settings.devices.end(),
                           [this](auto const& name) { return m_devices.contains(name); }) &&
               std::all_of(m_devices.begin(), m_devices.end(),
                           [](auto const& entry) { return !entry.second.online || entry.second.mirror->IsComplete(); });
    }

    bool IsWaiting_()
    {
        if (m_waitsForAll && IsSettled_())
            m_waitsForAll = false;
        if (m_waitsUntil && Clock::now() >= *m_waitsUntil)
            m_waitsUntil.reset();
        return m_waitsForAll || m_waitsUntil;
    }

    Settings_t const m_settings;
    std::map<std::string, Device_t> m_devices;
    std::string m_input;
    bool m_atEnd = false;
    bool m_quit = false;
    bool m_waitsForAll = false;
    std::optional<Clock::time_point> m_waitsUntil;
    Mqtt m_mqtt;
};

Settings_t SettingsOf(Options const& options)
{
    Settings_t settings;
    settings.name = options.Value("--name").value_or("controller-" + std::to_string(std::random_device()()));
    RequireName("--name", settings.name);
    settings.language = options.Value("--language").value_or("en");
    if (settings.language.size() > 32)
        throw UsageError("--language: not a language: " + Printable(settings.language));
    settings.devices = options.Values("--device");
    for (auto const& device : settings.devices)
        RequireName("--device", device);
    settings.broker = BrokerOf(options);
    return settings;
}

void Work(Options const& options)
{
    auto settings = SettingsOf(options);
    StopSignal const stop;
    Controller(std::move(settings)).Run(stop);
}

} // namespace

} // namespace Fleet

int main(int argc, char** argv)
{
    static std::string const help = std::string(Fleet::k_help) + std::string(Fleet::k_commands);
    return Fleet::RunProgram(argc, argv, help, {"--broker", "--device", "--language", "--name"}, Fleet::Work);
}
