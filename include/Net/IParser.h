#pragma once

#include <Net/Export.h>
#include <Orlek/StrPtrLen.h>

#include <string>

namespace Net {

/// A step of parsing: it takes what it understands from the front of a text.
class NET_API IParser
{
public:
    virtual ~IParser();

    /// Consumes from the front of `input` and moves it past what was consumed.
    ///
    /// \param error takes a message in English on failure, and is left alone on success; may be null.
    /// \return false if the text does not fit; then `input` and whatever the parser fills are as they were.
    virtual bool Parse(Orlek::StrPtrLen& input, std::string* error) = 0;

protected:
    IParser() = default;
    IParser(IParser const&) = default;
    IParser& operator=(IParser const&) = default;
};

} // namespace Net
