#pragma once

#include <Orlek/Export.h>
#include <Orlek/SeverityLevel.h>

#include <cstdint>
#include <string_view>

namespace Orlek {

/// The level of a log record, in ascending weight.
enum class LogLevel_t : std::int32_t
{
    Trace = 0,
    Debug = 1,
    Info = 2,
    Warning = 3,
    Error = 4,
    Fatal = 5,
};

/// The level under which something of this severity is logged. Total: what lies outside the named severities goes to
/// the nearest end.
ORLEK_API LogLevel_t GetLogLevelFromSeverity(SeverityLevel_t severity) noexcept;

/// The level's English name, such as "Warning". Total in the same way.
ORLEK_API std::string_view GetLogLevelText(LogLevel_t level) noexcept;

} // namespace Orlek
