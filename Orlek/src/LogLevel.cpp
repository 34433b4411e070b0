#include <Orlek/LogLevel.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace Orlek {

namespace {

constexpr std::array<std::string_view, 6> k_names = {"Trace", "Debug", "Info", "Warning", "Error", "Fatal"};

constexpr std::int32_t ToNearest(std::int32_t level) noexcept
{
    return std::clamp(level, static_cast<std::int32_t>(LogLevel_t::Trace),
                      static_cast<std::int32_t>(LogLevel_t::Fatal));
}

} // namespace

LogLevel_t GetLogLevelFromSeverity(SeverityLevel_t severity) noexcept
{
    return static_cast<LogLevel_t>(ToNearest(static_cast<std::int32_t>(severity)));
}

std::string_view GetLogLevelText(LogLevel_t level) noexcept
{
    return k_names[static_cast<std::size_t>(ToNearest(static_cast<std::int32_t>(level)))];
}

} // namespace Orlek
