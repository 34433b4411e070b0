#include "Options.h"

#include <array>
#include <filesystem>
#include <optional>
#include <utility>

namespace HostNetwork {

namespace {

struct TextOption_t
{
    std::string_view name;
    std::string Options_t::*target;
};

constexpr std::array k_textOptions = {
    TextOption_t{"--file", &Options_t::file},
    TextOption_t{"--read", &Options_t::read},
    TextOption_t{"--language", &Options_t::language},
    TextOption_t{"--section", &Options_t::section},
};

/// Takes `--name value` and `--name=value` off the front of the arguments.
std::optional<std::string> TakeValue(std::string_view name, std::span<char* const>& arguments)
{
    std::string_view const argument = arguments.front();
    std::string value;
    if (argument == name) {
        if (arguments.size() < 2)
            throw UsageError(std::string(name) + " needs a value");
        value = arguments[1];
        arguments = arguments.subspan(1);
    } else if (argument.starts_with(name) && argument[name.size()] == '=')
        value = argument.substr(name.size() + 1);
    else
        return {};
    if (value.empty())
        throw UsageError(std::string(name) + " needs a value that is not empty");
    arguments = arguments.subspan(1);
    return value;
}

void SetDetail(Options_t& options, Detail_t detail)
{
    if (options.detail != Detail_t::Normal && options.detail != detail)
        throw UsageError("--quiet and --full exclude each other");
    options.detail = detail;
}

bool TakeText(Options_t& options, std::span<char* const>& arguments)
{
    for (auto const& [name, target] : k_textOptions) {
        if (auto value = TakeValue(name, arguments)) {
            options.*target = std::move(*value);
            return true;
        }
    }
    if (auto const value = TakeValue("--root", arguments)) {
        options.root = *value;
        return true;
    }
    return false;
}

void TakeFlag(Options_t& options, std::span<char* const>& arguments)
{
    std::string_view const argument = arguments.front();
    if (argument == "--help" || argument == "-h")
        options.help = true;
    else if (argument == "--quiet")
        SetDetail(options, Detail_t::Quiet);
    else if (argument == "--full")
        SetDetail(options, Detail_t::Full);
    else
        throw UsageError("unknown argument '" + std::string(argument) + "'");
    arguments = arguments.subspan(1);
}

} // namespace

Options_t ParseOptions(std::span<char* const> arguments)
{
    Options_t options;
    while (!arguments.empty()) {
        if (!TakeText(options, arguments))
            TakeFlag(options, arguments);
    }
    if (!options.file.empty() && !options.read.empty())
        throw UsageError("--file writes records and --read reads them: choose one");
    // Paths of sections are known without delimiters at their ends.
    options.section.erase(0, options.section.find_first_not_of('/'));
    options.section.erase(options.section.find_last_not_of('/') + 1);
    std::error_code error;
    if (!std::filesystem::is_directory(options.root, error))
        throw UsageError("--root: there is no directory '" + options.root.string() + "'");
    if (options.language.empty())
        options.language = "en";
    if (options.language != "en" && options.language != "de")
        throw UsageError("no messages in the language '" + options.language + "': choose en or de");
    return options;
}

std::string_view HelpText()
{
    return R"(usage: host_network [option]...

Models this machine as a networked device. Reads the network configuration of the
host, makes a section for each interface and protocol, holds every value against
its schema, writes all values to a file of serial records, rebuilds a second
directory from it, and changes a few values of the model. Nothing of the
machine itself is changed.

  --file PATH       write the records to PATH, the schemas to PATH.schema.json, and
                    keep both (default: temporary files that are removed)
  --read PATH       show the device in two such files instead of this machine
  --language LANG   language of the messages about findings: en (default) or de
  --section PATH    show only this section and those below it, such as interface/lo
  --root DIR        look for /sys, /proc and /etc of the host below DIR; what only the
                    running system can tell, such as addresses, is left out
  --quiet           print nothing but the closing summary
  --full            print every value of every section, and all notes
  -h, --help        print this text

Exit status: 0 all went well, values outside their schema included; 1 a file cannot
be read or written, or is damaged; 2 the command line is wrong.
)";
}

} // namespace HostNetwork
