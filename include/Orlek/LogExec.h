#pragma once

#include <Orlek/Export.h>
#include <Orlek/PrintfState.h>

#include <string>
#include <string_view>

namespace Orlek {

/// The printf-style format of a log message, ready to be applied to texts any number of times:
///
///     stream << (LogExec("%s: %s") % name % text);
///
/// What a format may contain, and what too few or too many texts give, is told at `PrintfState`. Immutable, so any
/// number of threads may apply one object at once.
class ORLEK_API LogExec
{
public:
    explicit LogExec(std::string format);

    std::string const& GetFormat() const noexcept { return m_format; }

    /// A fresh state that was fed nothing.
    PrintfState Begin() const;

    /// A fresh state that was fed `text`.
    PrintfState operator%(std::string_view text) const;

private:
    std::string m_format;
};

} // namespace Orlek
