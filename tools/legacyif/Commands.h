#pragma once

#include <string>

namespace Command {

/// What the command line says, for whichever command it names.
struct Options_t
{
    std::string file;
    std::string second; ///< the other file, or the one that is written
    std::string path;   ///< of a parameter
    std::string value;
    std::string schema;
    std::string language = "en";
    std::string format = "text";
    bool isCompact = false;
};

/// What a command ends with.
enum ExitStatus_t
{
    k_success = 0,
    k_finding = 1, ///< findings, differences, or no such parameter
    k_trouble = 2, ///< a file is damaged or cannot be had, or the command line is wrong
};

/// Each prints to the standard output, and complaints to the standard error.
/// @throws Failure
/// @{
ExitStatus_t Show(Options_t const& options);
ExitStatus_t Check(Options_t const& options);
ExitStatus_t ToJson(Options_t const& options);
ExitStatus_t ToRecords(Options_t const& options);
ExitStatus_t Diff(Options_t const& options);
ExitStatus_t ExplainFile(Options_t const& options);
ExitStatus_t Get(Options_t const& options);
ExitStatus_t Set(Options_t const& options);
/// @}

} // namespace Command
