#pragma once

#include <Orlek/Export.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Orlek {

/// A printf-like format on its way to a text: each text fed to it takes the place of the next `%s`.
///
/// `%%` stands for one percent sign. Everything else is text, also other conversions and a percent sign at the end, and
/// so is every text fed: it is never looked at for conversions. No text is lost: a `%s` that nothing was fed for stays
/// visible, and what is fed beyond the last `%s` is appended, each behind a blank.
/// One state belongs to one thread.
class ORLEK_API PrintfState
{
public:
    explicit PrintfState(std::string format);

    /// Feeds the next text.
    PrintfState& operator%(std::string_view text);

    /// The text as it stands now.
    std::string ToString() const;

    /// Prints `ToString()`; width and fill of the stream apply to the whole.
    ORLEK_API friend std::ostream& operator<<(std::ostream& out, PrintfState const& state);

private:
    bool CopyToPlaceholder_(std::string& text, std::size_t& next) const;

    std::string m_format;
    std::size_t m_next = 0; // behind the last placeholder that was fed
    bool m_exhausted = false;
    std::string m_text;
};

} // namespace Orlek
