// A device of the fleet: it has parameters of its own, publishes them, and lets controllers set them.

#include "common/Mqtt.h"
#include "common/Program.h"
#include "common/Topics.h"
#include "common/Wire.h"
#include "device/Answers.h"
#include "device/Model.h"

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Explain.h>
#include <Legacy/IfKit/ValueText.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Fleet {

using namespace Legacy::If;
using Legacy::IfKit::PathOf;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view k_help = R"(usage: legacyif-device --name NAME [options]

A device whose parameters are mirrored through an MQTT broker. It runs until SIGINT or SIGTERM.

  --name NAME            what the device is called; letters, digits, '-', '_' and '.'
  --kind KIND            which parameters it has: camera (the default) or climate
  --broker HOST:PORT     where the broker listens (127.0.0.1:1883)
  --interval SECONDS     how often it measures, 0.1 to 3600 (5)
  --help                 this text
)";

struct Settings_t
{
    std::string name;
    std::string kind;
    Net::Endpoint<Net::AddrStr> broker;
    std::chrono::milliseconds interval{};
};

/// The device's directory. The hook publishes what changes, whoever changed it.
class Device : private InfoItemDirectory
{
public:
    explicit Device(Settings_t const& settings)
        : m_settings(settings), m_mqtt("fleet-device-" + settings.name, settings.broker,
                                       Mqtt::Retained_t{AboutTopic_(), Encode(AboutMessage{false, settings.kind})})
    {
        UpdateFromDelta(BuildModel(settings.kind), true, false);
        for (auto const& parameter : Parameters_())
            SetItem(new ItemHolder(parameter->GetInfo()->GetInfo()->CreateItem()));
        Set_<StringItem>("system/hostname", settings.name);
    }

    /// Works until the signal.
    void Run(StopSignal const& stop)
    {
        auto next = Clock::now();
        for (;;) {
            auto const rest = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
            auto const readable = WaitReadable({stop.Descriptor(), m_mqtt.Descriptor()}, rest);
            if (readable[0])
                break;
            for (auto const& event : m_mqtt.Take())
                Handle_(event);
            if (Clock::now() >= next) {
                Measure_();
                next = Clock::now() + m_settings.interval;
            }
        }
        std::cout << "stopping" << std::endl;
        m_mqtt.Publish(AboutTopic_(), Encode(AboutMessage{false, m_settings.kind}), true);
    }

private:
    using Holder_t = boost::intrusive_ptr<InfoItemHolder const>;

    void ItemChanged_(boost::intrusive_ptr<ItemHolder const> const&, Holder_t const& parameter) override
    {
        m_sequences[parameter->GetInfo()->GetInfo()->GetId()] = NextNumber();
        PublishValue_(*parameter);
    }

    std::vector<Holder_t> Parameters_() const
    {
        std::vector<Holder_t> parameters;
        GetAllInfoItems(parameters);
        return parameters;
    }

    std::string AboutTopic_() const { return ToText({TopicKind_t::About, m_settings.name, {}, {}}); }

    /// A value keeps its number however often it is published: who has it already takes no notice.
    void PublishValue_(InfoItemHolder const& parameter)
    {
        auto const& info = *parameter.GetInfo()->GetInfo();
        m_mqtt.Publish(ToText({TopicKind_t::Value, m_settings.name, {}, PathOf(*this, info)}),
                       Encode(ValueMessage{m_sequences[info.GetId()], parameter.GetItem()->GetItem()}), true);
    }

    void Handle_(Mqtt::Event_t const& event)
    {
        switch (event.kind) {
        case Mqtt::EventKind_t::Connected:
            std::cout << "connected to " << m_settings.broker.ToString() << std::endl;
            // The broker may have lost everything, so it gets everything.
            m_mqtt.Subscribe(Filter(TopicKind_t::Set, m_settings.name, k_anyName));
            m_mqtt.Publish(AboutTopic_(), Encode(AboutMessage{true, m_settings.kind}), true);
            for (auto const& parameter : Parameters_())
                PublishValue_(*parameter);
            break;
        case Mqtt::EventKind_t::Disconnected:
            std::cout << "no connection: " << event.text << std::endl;
            break;
        case Mqtt::EventKind_t::Message:
            HandleSet_(event);
            break;
        }
    }

    void HandleSet_(Mqtt::Event_t const& event)
    {
        auto const topic = ParseTopic(event.text);
        auto const message = DecodeSet(event.payload);
        if (!topic || topic->kind != TopicKind_t::Set || topic->device != m_settings.name || !message) {
            Log(Orlek::LogLevel_t::Warning, "dropped a damaged or foreign message: " + Printable(event.text));
            return;
        }
        auto const* answer =
            m_answers.Find(topic->controller, message->request, [&] { return Execute_(*topic, *message); });
        if (answer)
            m_mqtt.Publish(ToText({TopicKind_t::Answer, m_settings.name, topic->controller, {}}), Encode(*answer),
                           false);
    }

    /// Tests the wish against the schema, as the device alone may judge, and fulfils it.
    AnswerMessage Execute_(Topic_t const& topic, SetMessage const& message)
    {
        auto const parameter = FindInfoItem(topic.path);
        if (!parameter || parameter->GetInfo()->GetInfo()->GetId() != message.item->GetId())
            return Refuse_(topic, IfErrNotFound, Say_("FleetUnknownParameter", topic.path), message.language);
        auto const& info = parameter->GetInfo()->GetInfo();
        if (!IsWritable(*info))
            return Refuse_(topic, IfErrInvalidArgument, Say_("FleetReadOnlyParameter", info->GetName()),
                           message.language);
        if (auto const finding = Legacy::IfKit::Explain(*message.item, info); finding.IsValid())
            return Refuse_(topic, IfErrInvalidArgument, finding, message.language);
        if (parameter->GetItem()->GetItem()->IsEqualValue(message.item))
            return {};
        // A value of another type passes in the families that bound nothing, and is refused here.
        if (int const code = SetItem(new ItemHolder(message.item)))
            return Refuse_(topic, code, Say_("FleetUnknownParameter", topic.path), message.language);
        std::cout << topic.controller << " sets " << topic.path << ": "
                  << Legacy::IfKit::ValueText(*parameter->GetInfo(), *message.item) << std::endl;
        return {};
    }

    static AnswerMessage Refuse_(Topic_t const& topic, int code, LocalizedString const& why,
                                 std::string const& language)
    {
        std::cout << topic.controller << " is refused: " << Printable(why.GetString({})) << std::endl;
        return {0, code, why.GetString(language)};
    }

    static LocalizedString Say_(std::string const& key, std::string const& argument)
    {
        LocalizedString message(key);
        message.AddArgument(StringItem::Create(0, argument));
        return message;
    }

    template<typename Item, typename Value>
    void Set_(std::string const& path, Value const& value)
    {
        auto const parameter = FindInfoItem(path);
        boost::intrusive_ptr<ItemBase> const item(Item::Create(parameter->GetInfo()->GetInfo()->GetId(), value));
        if (!parameter->GetItem()->GetItem()->IsEqualValue(item))
            SetItem(new ItemHolder(item));
    }

    /// What a real device would read from its hardware.
    void Measure_()
    {
        auto const uptime = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_start).count();
        Set_<NumericItem<U32Traits>>("system/uptime", static_cast<unsigned int>(uptime));
        constexpr std::array<short, 8> tenths{200, 203, 207, 210, 212, 210, 206, 202};
        Set_<NumericItem<S16Traits>>("system/temperature", tenths[m_measured++ % tenths.size()]);
    }

    Settings_t const m_settings;
    Clock::time_point const m_start = Clock::now();
    std::size_t m_measured = 0;
    std::map<unsigned int, std::uint64_t> m_sequences; // by the id of the parameter
    Answers m_answers;
    Mqtt m_mqtt;
};

Settings_t SettingsOf(Options const& options)
{
    Settings_t settings;
    auto const name = options.Value("--name");
    if (!name)
        throw UsageError("--name is missing");
    settings.name = RequireName("--name", *name);
    settings.kind = options.Value("--kind").value_or("camera");
    auto const kinds = Kinds();
    if (std::find(kinds.begin(), kinds.end(), settings.kind) == kinds.end())
        throw UsageError("--kind: there is no such kind: " + Printable(settings.kind));
    settings.broker = BrokerOf(options);
    auto const interval = options.Value("--interval").value_or("5");
    char* end = nullptr;
    double const seconds = std::strtod(interval.c_str(), &end);
    if (interval.empty() || *end != '\0' || !(seconds >= 0.1 && seconds <= 3600))
        throw UsageError("--interval: not a number of seconds from 0.1 to 3600: " + Printable(interval));
    settings.interval = std::chrono::milliseconds(std::lround(seconds * 1000));
    return settings;
}

void Work(Options const& options)
{
    auto const settings = SettingsOf(options);
    StopSignal const stop;
    UseCatalogues();
    Device(settings).Run(stop);
}

} // namespace

} // namespace Fleet

int main(int argc, char** argv)
{
    return Fleet::RunProgram(argc, argv, Fleet::k_help, {"--name", "--kind", "--broker", "--interval"}, Fleet::Work);
}
