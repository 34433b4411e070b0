// A device of the fleet, or many of them: parameters of its own, published, kept, and set by controllers.

#include "common/Program.h"
#include "device/Device.h"
#include "device/Templates.h"

#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Fleet {

namespace {

using namespace Legacy::If;
using Clock = std::chrono::steady_clock;

struct Options_t
{
    std::string name;
    std::string kind;
    std::string schema;
    std::string values;
    std::string state;
    std::string title;
    unsigned int count = 1;
    double interval = 5;
    double changes = 0;
    bool isQuiet = false;
    BrokerOptions broker;
};

void AddOptions(CLI::App& app, Options_t& options)
{
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    app.add_option("--name", options.name, "What the device is called: letters, digits, '-', '_' and '.'")->required();
    app.add_option("--schema", options.schema, "Document of JSON with its sections and schemas")->type_name("S.json");
    app.add_option("--template", options.kind, "What it is without a schema file")
        ->check(CLI::IsMember(TemplateNames()))
        ->excludes("--schema");
    app.add_option("--values", options.values,
                   "File of records that values are kept in; without it and --state nothing is kept")
        ->type_name("FILE");
    app.add_option("--state", options.state, "Folder for such files, NAME.rec for each device")
        ->type_name("DIR")
        ->excludes("--values");
    app.add_option("--title", options.title, "What it is, for people (that of the template or file)");
    app.add_option("--interval", options.interval, "Seconds between the measurements of a template")
        ->check(CLI::Range(0.1, 3600.0))
        ->capture_default_str();
    app.add_flag("--quiet", options.isQuiet, "Print nothing but what goes wrong");
    app.add_option("--count", options.count, "So many devices, called NAME-1, NAME-2, …")
        ->check(CLI::Range(1U, 1000000U))
        ->group("Load");
    app.add_option("--changes", options.changes, "Changes in a second over all devices of the template \"load\"")
        ->check(CLI::Range(0.0, 1e6))
        ->group("Load");
    options.broker.AddTo(app);
    app.footer("It runs until SIGINT or SIGTERM. Exit status: 0 stopped, 1 failure, 2 wrong command line,\n"
               "3 another device has the name, 6 the broker does not let this user be the device.");
}

SchemasPtr SchemasOf(Options_t const& options)
{
    if (options.schema.empty())
        return BuildTemplate(options.kind.empty() ? "camera" : options.kind);
    std::ifstream file(options.schema, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    if (!file && !file.eof())
        throw UsageError("--schema: the file cannot be read: " + Printable(options.schema));
    std::string fault;
    auto schemas = ReadSchemas(text, fault);
    if (!schemas)
        throw UsageError("--schema: " + Printable(options.schema) + ": " + fault);
    return schemas;
}

/// What real devices would read from their hardware.
class Measurements
{
public:
    template<typename Item, typename Value>
    static void Set(Device& device, std::string const& path, Value const& value)
    {
        auto const parameter = device.Directory().FindInfoItem(path);
        if (parameter && dynamic_cast<Item const*>(parameter->GetItem()->GetItem().get()))
            device.Change(Item::Create(parameter->GetInfo()->GetInfo()->GetId(), value));
    }

    void Take(Device& device)
    {
        auto const uptime = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_start).count();
        Set<NumericItem<U32Traits>>(device, "system/uptime", static_cast<unsigned int>(uptime));
        constexpr std::array<short, 8> tenths{200, 203, 207, 210, 212, 210, 206, 202};
        Set<NumericItem<S16Traits>>(device, "system/temperature", tenths[m_taken++ % tenths.size()]);
    }

    /// Tells when it was made, by the clock that all processes of a machine share.
    static void Stamp(Device& device)
    {
        Set<NumericItem<U64Traits>>(device, "load/stamp",
                                    static_cast<unsigned long long>(Clock::now().time_since_epoch().count()));
    }

private:
    Clock::time_point const m_start = Clock::now();
    std::size_t m_taken = 0;
};

/// Asks for as many open files as so many devices need: a connection with the pair of sockets that wakes it, and a
/// file.
void MakeRoomForFiles(unsigned int devices)
{
    constexpr unsigned int perDevice = 4;
    constexpr unsigned int others = 100;
    std::uint64_t const needed = std::uint64_t{devices} * perDevice + others;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= needed)
        return;
    if (limit.rlim_max < needed)
        throw UsageError("--count: so many devices open " + std::to_string(needed) +
                         " files, and this program may open " + std::to_string(limit.rlim_max) +
                         "; raise the limit or start several programs");
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

class Program
{
public:
    explicit Program(Options_t const& options)
        : m_options(options), m_signals(m_context, SIGINT, SIGTERM), m_timer(m_context)
    {
        if (options.count > 1 && !options.values.empty())
            throw UsageError("--values: many devices have a file each, see --state");
        MakeRoomForFiles(options.count);
        auto const schemas = SchemasOf(options);
        auto const broker = options.broker.Read();
        auto title = options.title;
        if (title.empty())
            title = options.schema.empty() ? (options.kind.empty() ? "camera" : options.kind)
                                           : std::filesystem::path(options.schema).stem().string();
        auto const gate = std::make_shared<ConnectGate>();
        bool const isTemplate = options.schema.empty();
        for (unsigned int i = 1; i <= options.count; ++i) {
            auto const name = options.count == 1 ? options.name : options.name + '-' + std::to_string(i);
            RequireName("--name", name);
            auto const values = options.state.empty() ? options.values : options.state + '/' + name + ".rec";
            m_devices.push_back(std::make_unique<Device>(m_context,
                                                         Device::Settings_t{broker, name, title.substr(0, 256), values,
                                                                            options.isQuiet || options.count > 1, gate},
                                                         schemas,
                                                         [this, name](Device::End_t why) { End_(name, why); }));
            if (isTemplate)
                Measurements::Set<StringItem>(*m_devices.back(), "system/hostname", name);
        }
    }

    int Run()
    {
        m_signals.async_wait([this](boost::system::error_code const& error, int) {
            if (!error)
                Stop_(k_success);
        });
        for (auto const& device : m_devices)
            device->Start();
        if (m_options.changes > 0)
            AwaitAll_();
        else if (m_options.schema.empty())
            Measure_();
        m_context.run();
        return m_status;
    }

private:
    void End_(std::string const& name, Device::End_t why)
    {
        std::cerr << "legacyif-device: " << name
                  << (why == Device::End_t::NameTaken ? ": another device has this name"
                                                      : ": the broker does not let this user be the device")
                  << std::endl;
        Stop_(why == Device::End_t::NameTaken ? k_noDevice : k_noBroker);
    }

    void Stop_(int status)
    {
        if (std::exchange(m_isStopping, true))
            return;
        m_status = status;
        m_timer.cancel();
        if (!m_options.isQuiet)
            std::cout << "stopping" << std::endl;
        m_running = m_devices.size();
        for (auto const& device : m_devices)
            device->Stop([this] {
                if (--m_running == 0)
                    m_context.stop();
            });
    }

    void Measure_()
    {
        for (auto const& device : m_devices)
            m_measurements.Take(*device);
        Wait_(std::chrono::milliseconds(std::lround(m_options.interval * 1000)), [this] { Measure_(); });
    }

    /// Load begins when all devices have told what they have.
    void AwaitAll_()
    {
        if (std::all_of(m_devices.begin(), m_devices.end(), [](auto const& device) { return device->IsSettled(); }))
            Load_(Clock::now(), 0);
        else
            Wait_(std::chrono::milliseconds(100), [this] { AwaitAll_(); });
    }

    /// Changes one value of one device after the other, as many as are due by now.
    void Load_(Clock::time_point start, std::uint64_t done)
    {
        constexpr std::chrono::milliseconds k_step(5);
        std::chrono::duration<double> const passed = Clock::now() - start;
        auto const due = static_cast<std::uint64_t>(passed.count() * m_options.changes);
        for (; done < due; ++done)
            Measurements::Stamp(*m_devices[done % m_devices.size()]);
        Wait_(k_step, [this, start, done] { Load_(start, done); });
    }

    template<typename Next>
    void Wait_(std::chrono::milliseconds time, Next next)
    {
        m_timer.expires_after(time);
        m_timer.async_wait([next](boost::system::error_code const& error) {
            if (!error)
                next();
        });
    }

    Options_t const& m_options;
    boost::asio::io_context m_context{1};
    boost::asio::signal_set m_signals;
    boost::asio::steady_timer m_timer;
    std::vector<std::unique_ptr<Device>> m_devices;
    Measurements m_measurements;
    std::size_t m_running = 0;
    int m_status = k_success;
    bool m_isStopping = false;
};

} // namespace

} // namespace Fleet

int main(int argc, char** argv)
{
    CLI::App app("A device whose parameters are mirrored and set through an MQTT broker", "legacyif-device");
    Fleet::Options_t options;
    Fleet::AddOptions(app, options);
    return Fleet::RunProgram(app, argc, argv, [&] {
        Fleet::UseCatalogues();
        return Fleet::Program(options).Run();
    });
}
