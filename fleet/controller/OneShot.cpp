#include "controller/OneShot.h"

#include "common/Program.h"
#include "controller/Text.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <csignal>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

namespace Fleet {

using namespace Legacy::If;

namespace {

constexpr double k_usualTime = 10; // seconds

void Complain(std::string const& text) { std::cerr << "legacyif-fleet: " << text << std::endl; }

/// A controller that lives until one thing is done, or the time is up.
class OneShot
{
public:
    OneShot(Controller::Settings_t settings, std::chrono::milliseconds time)
        : m_signals(m_context, SIGINT, SIGTERM), m_deadline(m_context), m_time(time),
          m_controller(m_context, std::move(settings))
    {}

    /// @param look at what there is now and #End if it is enough; called after all that happens once the devices that
    ///        there are have told of themselves
    /// @param expired the time is up: what to end with
    int Run(std::function<void()> look, std::function<int()> expired)
    {
        m_look = std::move(look);
        auto& signals = m_controller.Signals();
        signals.link.connect([this](bool isConnected, std::string const& reason) {
            m_why = isConnected ? "" : reason;
            if (!isConnected && m_controller.IsRefused())
                End(NoBroker_());
        });
        signals.listed.connect([this] { LookSoon_(); });
        signals.device.connect([this](auto const&) { LookSoon_(); });
        signals.complete.connect([this](auto const&) { LookSoon_(); });
        signals.change.connect([this](auto const&) { LookSoon_(); });
        if (m_time.count() > 0) {
            m_deadline.expires_after(m_time);
            m_deadline.async_wait([this, expired](boost::system::error_code const& error) {
                if (!error)
                    End(m_controller.IsConnected() ? expired() : NoBroker_());
            });
        }
        m_signals.async_wait([this](boost::system::error_code const& error, int) {
            if (!error)
                End(k_failure);
        });
        m_controller.Start();
        m_context.run();
        return m_status;
    }

    void End(int status)
    {
        if (std::exchange(m_isEnding, true))
            return;
        m_status = status;
        m_deadline.cancel();
        m_controller.Stop([this] { m_context.stop(); });
    }

    Controller& Fleet() noexcept { return m_controller; }

private:
    int NoBroker_()
    {
        Complain("no broker at " + m_controller.Settings().broker.ToText() + (m_why.empty() ? "" : ": ") +
                 Printable(m_why));
        return k_noBroker;
    }

    /// Once for all that happens together.
    void LookSoon_()
    {
        if (!m_controller.IsListed() || m_isEnding || std::exchange(m_isLooking, true))
            return;
        boost::asio::post(m_context, [this] {
            m_isLooking = false;
            if (!m_isEnding)
                m_look();
        });
    }

    boost::asio::io_context m_context{1};
    boost::asio::signal_set m_signals;
    boost::asio::steady_timer m_deadline;
    std::chrono::milliseconds m_time;
    Controller m_controller;
    std::function<void()> m_look;
    std::string m_why;
    int m_status = k_failure;
    bool m_isLooking = false;
    bool m_isEnding = false;
};

int NoDevice(std::string const& name)
{
    Complain("there is no device " + Printable(name));
    return k_noDevice;
}

int NoParameter(FleetOptions_t const& options)
{
    Complain("the device " + options.device + " has no parameter " + Printable(options.path));
    return k_noParameter;
}

int NoAnswer(OneShot& run, std::string const& name)
{
    auto const* const device = run.Fleet().Find(name);
    bool const isOffline = device && !device->IsOnline();
    Complain("the device " + name + (isOffline ? " is offline" : " has not answered in time"));
    return isOffline ? k_offline : k_noAnswer;
}

/// What is told of a device that is not there is the last that it told, and the status says so.
int Told(Controller::Device const& device)
{
    if (device.IsOnline())
        return k_success;
    Complain("the device " + device.Name() + " is offline; this is what it told last");
    return k_offline;
}

int SayAnswer(FleetOptions_t const& options, OneShot& run, Controller::Answer_t const& answer)
{
    using enum Controller::Answer_t::Outcome_t;
    if (answer.outcome == NoAnswer)
        return Fleet::NoAnswer(run, options.device);
    bool const isSet = answer.outcome == Set;
    if (options.IsJson()) {
        JsonLine line;
        line.Add("device", options.device).Add("path", options.path).Add("result", isSet ? "set" : "refused");
        if (!isSet)
            line.AddRaw("code", std::to_string(answer.code)).Add("message", answer.text);
        std::cout << line.ToString() << '\n';
    } else if (!isSet) {
        Complain("refused (" + std::to_string(answer.code) + "): " + Printable(answer.text));
    }
    return isSet ? k_success : k_refused;
}

} // namespace

int ListDevices(FleetOptions_t const& options)
{
    auto settings = SettingsOf(options);
    settings.isListOnly = true;
    OneShot run(std::move(settings), options.Timeout(k_usualTime));
    auto const look = [&] {
        std::string rows;
        run.Fleet().ForEach([&](Controller::Device const& device) {
            if (options.IsJson())
                rows += (rows.empty() ? "" : ",\n ") + JsonLine()
                                                           .Add("device", device.Name())
                                                           .Add("title", device.Title())
                                                           .Add("state", StateOf(device))
                                                           .ToString();
            else
                rows += device.Name() + '\t' + std::string(StateOf(device)) + '\t' + Printable(device.Title()) + '\n';
        });
        std::cout << (options.IsJson() ? '[' + rows + "]\n" : rows);
        run.End(k_success);
    };
    return run.Run(look, [] {
        Complain("the broker has not told of the devices in time");
        return k_noAnswer;
    });
}

int GetValue(FleetOptions_t const& options)
{
    OneShot run(SettingsOf(options), options.Timeout(k_usualTime));
    auto const look = [&] {
        auto const* const device = run.Fleet().Find(options.device);
        if (!device)
            return run.End(NoDevice(options.device));
        if (!device->Directory())
            return;
        auto const parameter = device->Directory()->FindInfoItem(options.path);
        if (!parameter)
            return run.End(NoParameter(options));
        if (!parameter->GetItem())
            return;
        auto const& item = parameter->GetItem()->GetItem();
        if (options.IsJson())
            std::cout << JsonLine()
                             .Add("device", device->Name())
                             .Add("path", options.path)
                             .AddRaw("value", JsonOf(*item))
                             .Add("text", TextOf(*parameter, item))
                             .Add("state", StateOf(*device))
                             .ToString()
                      << '\n';
        else
            std::cout << TextOf(*parameter, item) << '\n';
        std::cout << std::flush;
        run.End(Told(*device));
    };
    return run.Run(look, [&] { return NoAnswer(run, options.device); });
}

int SetValue(FleetOptions_t const& options)
{
    OneShot run(SettingsOf(options), options.Timeout(k_usualTime));
    bool isAsked = false;
    auto const look = [&] {
        auto const* const device = run.Fleet().Find(options.device);
        if (!device)
            return run.End(NoDevice(options.device));
        if (!device->IsOnline())
            return run.End(NoAnswer(run, options.device));
        if (!device->Directory() || std::exchange(isAsked, device->Directory() != nullptr))
            return;
        auto const parameter = device->Directory()->FindInfoItem(options.path);
        if (!parameter)
            return run.End(NoParameter(options));
        std::string fault;
        auto const item = Legacy::IfKit::ParseValueText(*parameter->GetInfo()->GetInfo(), options.value, fault);
        if (!item) {
            Complain(fault);
            return run.End(k_usage);
        }
        run.Fleet().Set(options.device, item, options.language, std::chrono::milliseconds(0),
                        [&](Controller::Answer_t const& answer) { run.End(SayAnswer(options, run, answer)); });
    };
    return run.Run(look, [&] { return NoAnswer(run, options.device); });
}

int ExportDevice(FleetOptions_t const& options)
{
    OneShot run(SettingsOf(options), options.Timeout(k_usualTime));
    auto const look = [&] {
        auto const* const device = run.Fleet().Find(options.device);
        if (!device)
            return run.End(NoDevice(options.device));
        if (!device->IsComplete())
            return;
        std::ostringstream document;
        if (auto const fault = WriteDocument(document, *device); !fault.empty()) {
            Complain(Printable(fault));
            return run.End(k_failure);
        }
        std::cout << document.str() << std::flush;
        run.End(Told(*device));
    };
    return run.Run(look, [&] { return NoAnswer(run, options.device); });
}

int WatchDevices(FleetOptions_t const& options)
{
    OneShot run(SettingsOf(options), options.Timeout(0));
    run.Fleet().Signals().change.connect([&](Controller::Change_t const& change) {
        std::cout << (options.IsJson() ? ChangeJson(change) : ChangeText(change)) << std::endl;
        if (!std::cout)
            run.End(k_failure);
    });
    run.Fleet().Signals().device.connect([&](Controller::Device const& device) {
        if (options.IsJson())
            std::cout << JsonLine().Add("device", device.Name()).Add("state", StateOf(device)).ToString() << std::endl;
        else
            std::cout << device.Name() << ": " << Printable(device.Title()) << ", " << StateOf(device) << std::endl;
    });
    return run.Run([] {}, [] { return k_success; });
}

} // namespace Fleet
