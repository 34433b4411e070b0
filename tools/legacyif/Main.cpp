// Files of values on the command line: shown, checked, converted, compared, taken apart and changed.

#include "Commands.h"
#include "Store.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <functional>
#include <iostream>

namespace {

using namespace Command;

/// Gives each command the options that it knows.
class CommandLine
{
public:
    CommandLine()
    {
        m_app.require_subcommand(1);
        m_app.get_formatter()->column_width(24);
        m_app.footer("FILE is a file of records or a document of JSON, whichever it is; - is the standard input.\n"
                     "Exit status: 0 all is well, 1 findings, differences or no such parameter, 2 trouble.");
        m_app.set_version_flag("--version", LEGACYIF_VERSION);
        Languages_(Schema_(Add_("show", "Show sections, names, types and values as a table", Show)));
        Formats_(
            Languages_(Schema_(Add_("check", "Hold every value against its schema, one finding to a line", Check))));
        Schema_(Add_("json", "Write a file as JSON", ToJson))
            ->add_flag("--compact", m_options.isCompact, "On one line without blanks");
        Schema_(Add_("records", "Write a document of JSON as a file of records", ToRecords))
            ->add_option("OUT", m_options.second, "The file that is written; by default FILE with .rec for .json");
        Languages_(Schema_(Add_("diff", "Tell how two files differ", Diff)))
            ->add_option("OTHER", m_options.second, "The second file")
            ->required();
        Add_("explain", "Show each record byte by byte, and where one stops to make sense", ExplainFile);
        Formats_(Languages_(Schema_(Path_(Add_("get", "Print the value of one parameter", Get)))));
        Languages_(Schema_(Path_(Add_("set", "Change the value of one parameter, if its schema allows that", Set))))
            ->add_option("VALUE", m_options.value,
                         "Text or an address as it stands, an element's name or number, host:port, or JSON")
            ->required();
    }

    int Run(int argc, char** argv)
    {
        try {
            m_app.parse(argc, argv);
        } catch (CLI::ParseError const& error) {
            return m_app.exit(error) == 0 ? k_success : k_trouble;
        }
        return m_run(m_options);
    }

private:
    CLI::App* Add_(char const* name, char const* description, ExitStatus_t (*run)(Options_t const&))
    {
        auto* const command = m_app.add_subcommand(name, description);
        command->add_option("FILE", m_options.file, "File of records or document of JSON; - is the standard input")
            ->required();
        command->callback([this, run] { m_run = run; });
        return command;
    }

    CLI::App* Schema_(CLI::App* command)
    {
        command->add_option("--schema", m_options.schema, "Document of JSON with the schemas")->type_name("S.json");
        return command;
    }

    CLI::App* Languages_(CLI::App* command)
    {
        command->add_option("--language", m_options.language, "Language of the messages")
            ->check(CLI::IsMember({"en", "de"}))
            ->capture_default_str();
        return command;
    }

    CLI::App* Formats_(CLI::App* command)
    {
        command->add_option("--format", m_options.format, "Form of the output")
            ->check(CLI::IsMember({"text", "json"}))
            ->capture_default_str();
        return command;
    }

    CLI::App* Path_(CLI::App* command)
    {
        command->add_option("PATH", m_options.path, "Path of the parameter, such as port/stp/timer")->required();
        return command;
    }

    CLI::App m_app{"Show, check, convert, compare and change files of configuration values", "legacyif"};
    Options_t m_options;
    std::function<ExitStatus_t(Options_t const&)> m_run;
};

} // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    try {
        int const status = CommandLine().Run(argc, argv);
        if (!std::cout.flush()) {
            std::cerr << "legacyif: the output cannot be written\n";
            return k_trouble;
        }
        return status;
    } catch (std::exception const& error) {
        std::cout << std::flush;
        std::cerr << "legacyif: " << error.what() << '\n';
        return k_trouble;
    }
}
