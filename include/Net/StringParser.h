#pragma once

#include <Net/Export.h>
#include <Net/IParser.h>

#include <string>

namespace Net {

/// Collects text up to a delimiter. One parser serves one thread at a time.
class NET_API StringParser : public IParser
{
public:
    /// \param out takes the text, replacing what it held; it must outlive the parser.
    /// \param delimiterRequired whether a text without the delimiter is a failure. If not, its end will do as well, and
    ///                          all of it is collected.
    StringParser(std::string& out, char delimiter, bool delimiterRequired);

    /// Collects what stands ahead of the first delimiter, which may be nothing, and leaves the delimiter as the front
    /// of `input`. Fails only for a missing delimiter that is required.
    bool Parse(Orlek::StrPtrLen& input, std::string* error) override;

private:
    std::string& m_out;
    char m_delimiter;
    bool m_delimiterRequired;
};

} // namespace Net
