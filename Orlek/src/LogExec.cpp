#include <Orlek/LogExec.h>

#include <utility>

namespace Orlek {

LogExec::LogExec(std::string format) : m_format(std::move(format)) {}

PrintfState LogExec::Begin() const { return PrintfState(m_format); }

PrintfState LogExec::operator%(std::string_view text) const
{
    PrintfState state(m_format);
    state % text;
    return state;
}

} // namespace Orlek
