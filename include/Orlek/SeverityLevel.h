#pragma once

#include <cstdint>

namespace Orlek {

/// How grave a finding is. Comparisons are signed: a filter lets its own level and all above pass.
enum class SeverityLevel_t : std::int32_t
{
    Trace = 0,
    Debug = 1,
    Info = 2,
    Warning = 3,
    Error = 4,
    Fatal = 5,
};

} // namespace Orlek
