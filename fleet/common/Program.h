#pragma once

#include <Legacy/IfKit/ValueText.h>
#include <Orlek/LogLevel.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

/// What the programs of the fleet do alike around their work.
namespace Fleet {

using Legacy::IfKit::Printable;

/// What a program of the fleet ends with.
enum ExitStatus_t
{
    k_success = 0,
    k_failure = 1,
    k_usage = 2,       ///< the command line is wrong, or a value is none of its parameter's type
    k_noDevice = 3,    ///< there is no such device; of a device: another one has the name
    k_offline = 4,     ///< the device is not there
    k_refused = 5,     ///< the device has refused the value
    k_noBroker = 6,    ///< no broker, or it does not let this user in
    k_noAnswer = 7,    ///< the time was up
    k_noParameter = 8, ///< the device has no such parameter
};

/// The command line cannot be understood; the text says why.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The frame of `main`: reads the command line, prints the help if it is wanted, and reports what is thrown.
/// @param work returns the exit status
int RunProgram(CLI::App& app, int argc, char const* const* argv, std::function<int()> const& work);

/// Tests a name of a device or a controller.
/// @throws UsageError
std::string const& RequireName(std::string const& option, std::string const& name);

/// Writes to the log, which goes to the standard error stream.
void Log(Orlek::LogLevel_t level, std::string const& text);

/// Takes the texts of the programs, beside those that the library brings along, from where they stand relative to the
/// program's own file, `../share/legacyif-fleet/locale`.
void UseCatalogues();

/// A number by chance, which nobody else has drawn.
std::uint64_t RandomNumber();

} // namespace Fleet
