#include "controller/Measure.h"

#include "common/Program.h"
#include "controller/Text.h"

#include <Legacy/If/Numeric.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Fleet {

using namespace Legacy::If;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds k_look(50);
constexpr char k_stamp[] = "stamp";

std::uint64_t ResidentBytes()
{
    std::ifstream statm("/proc/self/statm");
    std::uint64_t size = 0;
    std::uint64_t resident = 0;
    statm >> size >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

double Seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

class Measure
{
public:
    explicit Measure(FleetOptions_t const& options)
        : m_options(options), m_signals(m_context, SIGINT, SIGTERM), m_timer(m_context), m_empty(ResidentBytes()),
          m_controller(m_context, SettingsOf(options))
    {}

    int Run()
    {
        auto& signals = m_controller.Signals();
        signals.link.connect([this](bool isConnected, std::string const& reason) {
            if (isConnected) {
                m_since = Clock::now();
                m_isComplete = false;
            } else {
                Say_(JsonLine().Add("phase", "lost").Add("reason", reason));
            }
        });
        signals.change.connect([this](Controller::Change_t const& change) { Count_(change); });
        m_signals.async_wait([this](boost::system::error_code const& error, int) {
            if (!error)
                Quit_();
        });
        m_end = m_options.timeout > 0 ? Clock::now() + m_options.Timeout(0) : Clock::time_point::max();
        m_controller.Start();
        Look_();
        m_context.run();
        return m_controller.Size() > 0 ? k_success : k_noDevice;
    }

private:
    void Say_(JsonLine line)
    {
        std::cout << line.AddRaw("at", std::to_string(Seconds(Clock::now() - m_start))).ToString() << std::endl;
    }

    void Quit_()
    {
        m_timer.cancel();
        m_controller.Stop([this] { m_context.stop(); });
    }

    void Count_(Controller::Change_t const& change)
    {
        if (!m_isComplete || !change.former)
            return;
        ++m_changes;
        auto const* const item =
            dynamic_cast<NumericItem<U64Traits> const*>(change.parameter.GetItem()->GetItem().get());
        if (!item || change.parameter.GetInfo()->GetInfo()->GetName() != k_stamp)
            return;
        auto const now = static_cast<std::uint64_t>(Clock::now().time_since_epoch().count());
        m_delays.push_back(now > item->GetVal() ? now - item->GetVal() : 0);
        // What was told once is not told again, nor anything that is older.
        auto& last = m_stamps[&change.device];
        m_doubled += item->GetVal() <= last;
        last = item->GetVal();
    }

    void Look_()
    {
        auto const now = Clock::now();
        if (now >= m_end)
            return Quit_();
        if (m_controller.IsListed() && !m_isComplete)
            LookWhetherComplete_();
        else if (m_isComplete && now >= m_window + std::chrono::seconds(k_window))
            SayWindow_();
        m_timer.expires_after(k_look);
        m_timer.async_wait([this](boost::system::error_code const& error) {
            if (!error)
                Look_();
        });
    }

    void LookWhetherComplete_()
    {
        std::size_t complete = 0;
        std::size_t inStep = 0;
        std::size_t parameters = 0;
        m_controller.ForEach([&](Controller::Device const& device) {
            complete += device.IsComplete();
            inStep += device.IsComplete() && device.IsInStep();
            parameters += device.ParameterCount();
        });
        if (!m_hasAll && complete == m_controller.Size() && complete >= m_options.expected) {
            m_hasAll = true;
            Say_(JsonLine().Add("phase", "all").AddRaw("seconds", std::to_string(Seconds(Clock::now() - m_since))));
        }
        if (Clock::now() >= m_window + std::chrono::seconds(k_window)) {
            m_window = Clock::now();
            Say_(JsonLine()
                     .Add("phase", "filling")
                     .AddRaw("devices", std::to_string(m_controller.Size()))
                     .AddRaw("complete", std::to_string(complete))
                     .AddRaw("inStep", std::to_string(inStep))
                     .AddRaw("values", std::to_string(m_controller.ValueCount())));
        }
        if (inStep != m_controller.Size() || inStep < std::max(m_options.expected, 1U))
            return;
        auto const bytes = ResidentBytes() - m_empty;
        Say_(JsonLine()
                 .Add("phase", "complete")
                 .AddRaw("seconds", std::to_string(Seconds(Clock::now() - m_since)))
                 .AddRaw("devices", std::to_string(m_controller.Size()))
                 .AddRaw("parameters", std::to_string(parameters))
                 .AddRaw("values", std::to_string(m_controller.ValueCount()))
                 .AddRaw("schemas", std::to_string(m_controller.SchemaCount()))
                 .AddRaw("bytes", std::to_string(bytes))
                 .AddRaw("bytesPerParameter", std::to_string(bytes / std::max<std::size_t>(parameters, 1))));
        m_isComplete = true;
        Begin_();
    }

    void Begin_()
    {
        m_window = Clock::now();
        m_changes = 0;
        m_delays.clear();
    }

    void SayWindow_()
    {
        std::sort(m_delays.begin(), m_delays.end());
        auto const at = [&](double part) {
            auto const place = static_cast<std::size_t>(part * static_cast<double>(m_delays.size()));
            return m_delays.empty()
                       ? std::string("null")
                       : std::to_string(static_cast<double>(m_delays[std::min(place, m_delays.size() - 1)]) / 1e6);
        };
        Say_(JsonLine()
                 .Add("phase", "steady")
                 .AddRaw("changesPerSecond",
                         std::to_string(static_cast<double>(m_changes) / Seconds(Clock::now() - m_window)))
                 .AddRaw("p50ms", at(0.5))
                 .AddRaw("p99ms", at(0.99))
                 .AddRaw("maxms", at(1))
                 .AddRaw("doubled", std::to_string(m_doubled)));
        Begin_();
    }

    static constexpr int k_window = 5; // seconds

    FleetOptions_t const& m_options;
    Clock::time_point const m_start = Clock::now();
    boost::asio::io_context m_context{1};
    boost::asio::signal_set m_signals;
    boost::asio::steady_timer m_timer;
    std::uint64_t const m_empty; // what the process takes without devices
    Controller m_controller;
    Clock::time_point m_since = m_start; // when the connection was made
    Clock::time_point m_window = m_start;
    Clock::time_point m_end{};
    std::vector<std::uint64_t> m_delays; // in nanoseconds
    std::unordered_map<Controller::Device const*, std::uint64_t> m_stamps;
    std::uint64_t m_changes = 0;
    std::uint64_t m_doubled = 0;
    bool m_hasAll = false;     // a value for each parameter
    bool m_isComplete = false; // and the devices' sums agree with that, since the connection was made
};

} // namespace

int MeasureFleet(FleetOptions_t const& options) { return Measure(options).Run(); }

} // namespace Fleet
