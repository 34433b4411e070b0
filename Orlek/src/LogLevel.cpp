#include <Orlek/LogLevel.h>

#include <algorithm>

namespace Orlek {

LogLevel_t GetLogLevelFromSeverity(SeverityLevel_t severity) noexcept
{
    auto const level = static_cast<std::int32_t>(severity);
    return static_cast<LogLevel_t>(
        std::clamp(level, static_cast<std::int32_t>(LogLevel_t::Trace), static_cast<std::int32_t>(LogLevel_t::Fatal)));
}

} // namespace Orlek
