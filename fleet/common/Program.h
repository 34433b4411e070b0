#pragma once

#include <Legacy/IfKit/ValueText.h>
#include <Net/AddrStr.h>
#include <Net/Endpoint.h>
#include <Orlek/LogLevel.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What the programs of the fleet do alike around their work.
namespace Fleet {

using Legacy::IfKit::Printable;

/// The command line cannot be understood; the text says why.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The options of a command line, each with a value: `--name value` or `--name=value`.
class Options
{
public:
    /// @throws UsageError for an option that is not among those known, a missing value, and words that are no option.
    Options(std::span<char const* const> arguments, std::initializer_list<std::string_view> known);

    /// Whether `--help` is among them.
    bool WantsHelp() const noexcept { return m_help; }
    /// The value that was given last, if any.
    std::optional<std::string> Value(std::string const& name) const;
    /// All values in order.
    std::vector<std::string> Values(std::string const& name) const;

private:
    std::multimap<std::string, std::string> m_values;
    bool m_help = false;
};

/// The frame of `main`: reads the options, prints the help if it is wanted, and reports what is thrown.
/// @return 0 for success, 1 for a failure, 2 for a command line that cannot be understood.
int RunProgram(int argc, char const* const* argv, std::string_view help, std::initializer_list<std::string_view> known,
               std::function<void(Options const&)> const& work);

/// The option `--broker`, by default the local host with the usual port.
/// @throws UsageError
Net::Endpoint<Net::AddrStr> BrokerOf(Options const& options);

/// Tests a name of a device or a controller.
/// @throws UsageError
std::string const& RequireName(std::string const& option, std::string const& name);

/// SIGINT and SIGTERM, which do not end the process any more but make the descriptor readable. To be made before the
/// process has a second thread.
class StopSignal
{
public:
    StopSignal();
    StopSignal(StopSignal const&) = delete;
    StopSignal& operator=(StopSignal const&) = delete;
    ~StopSignal();

    int Descriptor() const noexcept { return m_descriptor; }

private:
    int m_descriptor;
};

/// Waits until one of the descriptors is readable or at its end, or until the time is up. Negative ones are passed
/// over.
/// @return for each descriptor whether it can be read
std::vector<bool> WaitReadable(std::initializer_list<int> descriptors, std::chrono::milliseconds time);

/// Writes to the log, which goes to the standard error stream.
void Log(Orlek::LogLevel_t level, std::string const& text);

/// Takes the texts of the programs, beside those that the library brings along, from where they stand relative to the
/// program's own file, `../share/legacyif-fleet/locale`.
void UseCatalogues();

/// A number that grows from call to call and from run to run: the clock, in microseconds, pushed on where it stands
/// still. It fails across runs only for a clock that was set back behind the former run.
std::uint64_t NextNumber();

} // namespace Fleet
