// The controller of the fleet: it mirrors devices, tells what changes on them, and sets values on them.

#include "common/Program.h"
#include "controller/Measure.h"
#include "controller/OneShot.h"
#include "controller/Options.h"
#include "controller/Shell.h"
#include "web/Serve.h"

#include <CLI/CLI.hpp>

namespace Fleet {

namespace {

using Work = int (*)(FleetOptions_t const& options);

/// Gives each command the options that it knows.
class CommandLine
{
public:
    CommandLine()
    {
        m_app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
        m_options.broker.AddTo(m_app);
        m_app.add_option("--name", m_options.name,
                         "What devices know this controller as: letters, digits, '-', '_' and '.' (that of the user)");
        m_app.add_option("--language", m_options.language, "Of the messages with which devices refuse a value")
            ->capture_default_str();
        m_app.add_option("--device", m_options.devices, "Devices to mirror (all)")
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->allow_extra_args(false);
        m_app
            .add_option("--share", m_options.share,
                        "Mirror the devices of one share of N, 0 to N - 1: controllers divide a fleet")
            ->type_name("I/N");
        m_app.add_option("--timeout", m_options.timeout, "Seconds after which a command gives up (10; watch: never)")
            ->check(CLI::Range(0.0, 1e6));
        m_app.add_option("--format", m_options.format, "Form of the output")
            ->check(CLI::IsMember({"text", "json"}))
            ->capture_default_str();
        m_app.require_subcommand(0, 1);
        m_app.fallthrough();
        m_app.footer(
            "Without a command it takes commands from its input, on a terminal with history and completion;\n"
            "\"help\" there tells which.\n"
            "Exit status: 0 done, 1 failure, 2 wrong command line or value, 3 no such device, 4 the device is\n"
            "offline, 5 the device refused the value, 6 no broker or no access to it, 7 no answer in time,\n"
            "8 no such parameter.");

        Add_("list", "Tell which devices there are, and whether they are online", ListDevices);
        Path_(Device_(Add_("get", "Print one value", GetValue)));
        Path_(Device_(Add_("set", "Ask a device for another value", SetValue)))
            ->add_option("VALUE", m_options.value,
                         "Text or an address as it stands, an element's name or number, host:port, or JSON")
            ->required();
        Device_(Add_("export", "Print schemas and values of a device as a document of JSON", ExportDevice));
        Add_("watch", "Print each change", WatchDevices);
        Add_("measure", "Tell how long it takes until all devices are there, and how late changes come", MeasureFleet)
            ->add_option("--expect", m_options.expected, "Wait for so many devices");
        Add_("serve", "Show the fleet on a page, to browsers on this machine", Serve)
            ->add_option("--port", m_options.port, "Where the page is; 0 for any that is free")
            ->capture_default_str();
    }

    int Run(int argc, char** argv)
    {
        return RunProgram(m_app, argc, argv, [this] { return m_work(m_options); });
    }

private:
    CLI::App* Add_(char const* name, char const* description, Work work)
    {
        auto* const command = m_app.add_subcommand(name, description);
        command->callback([this, work] { m_work = work; });
        return command;
    }

    CLI::App* Device_(CLI::App* command)
    {
        command->add_option("DEVICE", m_options.device, "Name of the device")->required();
        return command;
    }

    CLI::App* Path_(CLI::App* command)
    {
        command->add_option("PATH", m_options.path, "Path of the parameter, such as network/web/port")->required();
        return command;
    }

    CLI::App m_app{"Mirrors the parameters of devices through an MQTT broker, and sets them", "legacyif-fleet"};
    FleetOptions_t m_options;
    Work m_work = RunShell;
};

} // namespace

} // namespace Fleet

int main(int argc, char** argv) { return Fleet::CommandLine().Run(argc, argv); }
