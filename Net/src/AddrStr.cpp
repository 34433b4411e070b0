#include "NumericText.h"

#include <Net/AddrStr.h>
#include <Orlek/StrPtrLen.h>

#include <utility>

namespace Net {

AddrStr::AddrStr(std::string text) : m_text(std::move(text)) {}

AddrStr::AddrStr(char const* text) : m_text(text ? text : "") {}

bool AddrStr::IsSpecified() const
{
    if (m_text.empty())
        return false;
    auto const address = Detail::ParseIp(m_text);
    return !address || Detail::IsSpecified(*address);
}

bool AddrStr::IsLocalhost() const
{
    if (Orlek::StrPtrLen(m_text).EqualIgnoreCase("localhost"))
        return true;
    auto const address = Detail::ParseIp(m_text);
    return address && Detail::IsLoopback(*address);
}

} // namespace Net
