#include <Orlek/PrintfState.h>

#include <ostream>
#include <utility>

namespace Orlek {

PrintfState::PrintfState(std::string format) : m_format(std::move(format)) {}

/// Appends the plain text from `next` on and moves `next` behind the placeholder that ends it. False if there is none.
bool PrintfState::CopyToPlaceholder_(std::string& text, std::size_t& next) const
{
    while (next < m_format.size()) {
        char const c = m_format[next++];
        if (c == '%' && next < m_format.size()) {
            if (m_format[next] == 's') {
                ++next;
                return true;
            }
            if (m_format[next] == '%')
                ++next;
        }
        text += c;
    }
    return false;
}

PrintfState& PrintfState::operator%(std::string_view text)
{
    if (!m_exhausted)
        m_exhausted = !CopyToPlaceholder_(m_text, m_next);
    if (m_exhausted)
        m_text += ' ';
    m_text += text;
    return *this;
}

std::string PrintfState::ToString() const
{
    auto text = m_text;
    auto next = m_next;
    while (CopyToPlaceholder_(text, next))
        text += "%s";
    return text;
}

std::ostream& operator<<(std::ostream& out, PrintfState const& state) { return out << state.ToString(); }

} // namespace Orlek
