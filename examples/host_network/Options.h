#pragma once

#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace HostNetwork {

/// How much the program tells.
enum class Detail_t
{
    Quiet,  ///< the closing summary alone
    Normal, ///< the sections, one of them in full, and what happened
    Full,   ///< every value and every note
};

/// What the command line asks for.
struct Options_t
{
    bool help = false;
    std::string file;                 ///< where the records are written; empty for a temporary file
    std::string read;                 ///< a record file to show instead of this machine; empty for none
    std::string language;             ///< of the messages about findings
    std::string section;              ///< the only section to show, with those below it; empty for all
    std::filesystem::path root = "/"; ///< the directory in which /sys, /proc and /etc are looked for
    Detail_t detail = Detail_t::Normal;
};

/// The command line cannot be understood; the text says why.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments behind the program's name.
/// @throws UsageError
Options_t ParseOptions(std::span<char* const> arguments);

/// What --help prints.
std::string_view HelpText();

} // namespace HostNetwork
