#include <Net/IParser.h>
#include <Net/StringParser.h>

namespace Net {

IParser::~IParser() = default;

StringParser::StringParser(std::string& out, char delimiter, bool delimiterRequired)
    : m_out(out), m_delimiter(delimiter), m_delimiterRequired(delimiterRequired)
{}

bool StringParser::Parse(Orlek::StrPtrLen& input, std::string* error)
{
    auto const text = input.ToStringView();
    auto const delimiter = text.find(m_delimiter);
    if (delimiter == text.npos && m_delimiterRequired) {
        if (error)
            *error = std::string("Missing delimiter '") + m_delimiter + '\'';
        return false;
    }
    auto const collected = text.substr(0, delimiter);
    m_out = collected;
    input.Advance(collected.size());
    return true;
}

} // namespace Net
