#include "controller/Shell.h"

#include "common/Program.h"
#include "controller/Terminal.h"
#include "controller/Text.h"

#include <Legacy/IfKit/AtomicFile.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Fleet {

using namespace Legacy::If;

namespace {

constexpr std::string_view k_commands = R"(  list                   the devices
  show DEVICE            all values of a device
  get DEVICE PATH        one value
  set DEVICE PATH VALUE  asks the device for another value: text as it stands, an element's name, or JSON: [1, 2]
  export DEVICE FILE     writes schemas and values as a document of JSON
  wait                   until the devices are there with all values, and every request is answered
  wait SECONDS           so long
  quit                   ends the program)";

class Shell
{
public:
    explicit Shell(FleetOptions_t const& options)
        : m_options(options), m_signals(m_context, SIGINT, SIGTERM), m_waitTimer(m_context),
          m_controller(m_context, SettingsOf(options)),
          m_terminal(
              m_context, [this](std::string const& line) { Command_(line); }, [this] { AtEnd_(); },
              [this](std::vector<std::string> const& before) { return Complete_(before); })
    {}

    int Run()
    {
        auto& signals = m_controller.Signals();
        signals.link.connect([this](bool isConnected, std::string const& reason) {
            m_terminal.Print(isConnected ? "connected to " + m_controller.Settings().broker.ToText()
                                         : "no connection: " + Printable(reason));
        });
        signals.device.connect([this](Controller::Device const& device) { Announce_(device); });
        signals.change.connect([this](Controller::Change_t const& change) { m_terminal.Print(ChangeText(change)); });
        signals.complete.connect([this](auto const&) { Settle_(); });
        signals.listed.connect([this] { Settle_(); });
        m_signals.async_wait([this](boost::system::error_code const& error, int) {
            if (!error)
                Quit_();
        });
        m_controller.Start();
        m_terminal.Start();
        m_context.run();
        return k_success;
    }

private:
    void Announce_(Controller::Device const& device)
    {
        auto const text = device.Name() + ": " + Printable(device.Title()) + ", " + std::string(StateOf(device));
        if (std::exchange(m_announced[device.Name()], text) != text)
            m_terminal.Print(text);
        Settle_();
    }

    void Quit_()
    {
        if (std::exchange(m_isQuitting, true))
            return;
        m_terminal.SetReading(false);
        m_waitTimer.cancel();
        m_controller.Stop([this] { m_context.stop(); });
    }

    void AtEnd_()
    {
        m_isAtEnd = true;
        if (!m_controller.HasRequests())
            Quit_();
    }

    std::vector<std::string> Complete_(std::vector<std::string> const& before) const
    {
        std::vector<std::string> words;
        if (before.empty())
            return {"list", "show", "get", "set", "export", "wait", "quit"};
        if (before.size() == 1 && before[0] != "list" && before[0] != "wait" && before[0] != "quit")
            m_controller.ForEach([&](Controller::Device const& device) { words.push_back(device.Name()); });
        auto const* const device = before.size() >= 2 ? m_controller.Find(before[1]) : nullptr;
        if (!device || !device->Directory() || (before[0] != "get" && before[0] != "set"))
            return words;
        std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
        device->Directory()->GetAllInfoItems(parameters);
        for (auto const& parameter : parameters) {
            if (before.size() == 2)
                words.push_back(PathOf(*device, *parameter));
            else if (before.size() == 3 && PathOf(*device, *parameter) == before[2] && parameter->GetItem())
                words.push_back(
                    Legacy::IfKit::ValueText(*parameter->GetItem()->GetItem(), parameter->GetInfo()->GetInfo().get()));
        }
        return words;
    }

    void Command_(std::string const& text)
    {
        std::istringstream line(text);
        std::string word;
        if (m_isQuitting || !(line >> word))
            return;
        if (word == "list")
            List_();
        else if (word == "show")
            Show_(line);
        else if (word == "get")
            Get_(line);
        else if (word == "set")
            Set_(line);
        else if (word == "export")
            Export_(line);
        else if (word == "wait")
            Wait_(line);
        else if (word == "quit")
            Quit_();
        else
            m_terminal.Print("The commands are:\n" + std::string(k_commands));
    }

    void List_()
    {
        std::string text;
        m_controller.ForEach([&](Controller::Device const& device) {
            text +=
                "  " + device.Name() + ": " + Printable(device.Title()) + ", " + std::string(StateOf(device)) + '\n';
        });
        m_terminal.Print(text + std::to_string(m_controller.Size()) + " devices");
    }

    Controller::Device const* Find_(std::string const& name)
    {
        auto const* const device = m_controller.Find(name);
        if (!device)
            m_terminal.Print("error: no such device: " + Printable(name));
        return device;
    }

    Mirror::ParameterPtr Find_(std::istringstream& line, std::string& name, std::string& path)
    {
        line >> name >> path;
        auto const* const device = Find_(name);
        if (!device)
            return {};
        auto parameter = device->Directory() ? device->Directory()->FindInfoItem(path) : nullptr;
        if (!parameter)
            m_terminal.Print("error: no such parameter: " + Printable(path));
        return parameter;
    }

    void Show_(std::istringstream& line)
    {
        std::string name;
        line >> name;
        if (auto const* device = Find_(name)) {
            std::ostringstream text;
            WriteParameters(text, *device);
            m_terminal.Print(name + '\n' + text.str());
        }
    }

    void Get_(std::istringstream& line)
    {
        std::string name;
        std::string path;
        if (auto const parameter = Find_(line, name, path))
            m_terminal.Print(parameter->GetItem() ? TextOf(*parameter, parameter->GetItem()->GetItem())
                                                  : "(not known yet)");
    }

    void Set_(std::istringstream& line)
    {
        std::string name;
        std::string path;
        std::string text;
        auto const parameter = Find_(line, name, path);
        if (!parameter)
            return;
        std::getline(line >> std::ws, text);
        std::string fault = "the value is missing";
        auto const item =
            text.empty() ? ItemPtr() : Legacy::IfKit::ParseValueText(*parameter->GetInfo()->GetInfo(), text, fault);
        if (!item)
            return m_terminal.Print("error: " + path + ": " + fault);
        m_controller.Set(name, item, m_options.language, std::chrono::milliseconds(0),
                         [this, what = name + ' ' + path](Controller::Answer_t const& answer) {
                             using enum Controller::Answer_t::Outcome_t;
                             m_terminal.Print(what + (answer.outcome == Set
                                                          ? " is set"
                                                          : " is refused (" + std::to_string(answer.code) +
                                                                "): " + Printable(answer.text)));
                             Settle_();
                         });
    }

    void Export_(std::istringstream& line)
    {
        std::string name;
        std::string path;
        line >> name;
        std::getline(line >> std::ws, path);
        auto const* const device = Find_(name);
        if (!device)
            return;
        std::ostringstream document;
        auto fault = WriteDocument(document, *device);
        if (fault.empty()) {
            Legacy::IfKit::AtomicFile file(path);
            file.Write(document.view());
            if (auto const error = file.Commit())
                fault = error->ToText();
        }
        m_terminal.Print(fault.empty() ? name + " is written to " + Printable(path) : "error: " + Printable(fault));
    }

    void Wait_(std::istringstream& line)
    {
        std::string word;
        if (!(line >> word)) {
            m_waitsForAll = true;
            m_terminal.SetReading(false);
            return Settle_();
        }
        char* end = nullptr;
        double const seconds = std::strtod(word.c_str(), &end);
        if (*end != '\0' || !(seconds >= 0 && seconds <= 86400))
            return m_terminal.Print("error: not a number of seconds: " + Printable(word));
        m_terminal.SetReading(false);
        m_waitTimer.expires_after(std::chrono::milliseconds(static_cast<long>(seconds * 1000)));
        m_waitTimer.async_wait([this](boost::system::error_code const& error) {
            if (!error)
                m_terminal.SetReading(true);
        });
    }

    /// Whether there is nothing to wait for: all devices are known, and those online with all their values.
    bool IsSettled_() const
    {
        bool isSettled = m_controller.IsListed() && m_controller.Size() > 0 && !m_controller.HasRequests();
        for (auto const& name : m_controller.Settings().devices)
            isSettled = isSettled && m_controller.Find(name);
        m_controller.ForEach([&](Controller::Device const& device) {
            isSettled = isSettled && (!device.IsOnline() || device.IsComplete());
        });
        return isSettled;
    }

    void Settle_()
    {
        if (m_waitsForAll && IsSettled_()) {
            m_waitsForAll = false;
            m_terminal.SetReading(true);
        }
        if (m_isAtEnd && !m_controller.HasRequests())
            Quit_();
    }

    FleetOptions_t const& m_options;
    boost::asio::io_context m_context{1};
    boost::asio::signal_set m_signals;
    boost::asio::steady_timer m_waitTimer;
    Controller m_controller;
    Terminal m_terminal;
    std::map<std::string, std::string> m_announced;
    bool m_waitsForAll = false;
    bool m_isAtEnd = false;
    bool m_isQuitting = false;
};

} // namespace

int RunShell(FleetOptions_t const& options) { return Shell(options).Run(); }

} // namespace Fleet
