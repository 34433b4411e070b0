// Reads a value, a schema, a delta and a directory in JSON. What is taken is written, and the same when read again.

#include "Input.h"

#include <Legacy/IfKit/Json.h>

#include <memory>
#include <sstream>

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

std::string Written(auto const& object)
{
    std::ostringstream os;
    Require(!WriteJson(os, object));
    return os.str();
}

/// Nothing if the text was refused, with the object as it was.
template<typename Object>
std::string ReadAndWritten(std::string const& text, Object&& object)
{
    std::istringstream is(text);
    if (ReadJson(is, object))
        return {};
    if constexpr (requires { object.get(); })
        return Written(*object);
    else
        return Written(object);
}

template<typename Object>
void TryAs(std::string const& text)
{
    std::string const once = ReadAndWritten(text, Object());
    if (!once.empty())
        Require(ReadAndWritten(once, Object()) == once);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const text = Input(data, size).Rest();
    TryAs<boost::intrusive_ptr<ItemBase>>(text);
    TryAs<boost::intrusive_ptr<InfoBase>>(text);
    TryAs<InfoItemDirectoryDelta>(text);
    TryAs<InfoItemDirectory>(text);
    return 0;
}
