#include "convert/Convert.h"
#include "convert/Visit.h"
#include "core/Finding.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <locale>
#include <new>
#include <sstream>
#include <utility>

namespace Legacy::If {

namespace {

/// The text of a number, a text, an address or an endpoint as a stream without settings prints it: most values are one
/// of these, and making a stream costs several times as much as printing them. False for other classes, derived ones
/// among them, whose own operators decide, and for a number in a locale that groups digits.
bool PrintPlain(ItemBase const& item, std::string& text)
{
    if (Detail::IsExactly<StringItem>(item)) {
        text = static_cast<StringItem const&>(item).Val();
        return true;
    }
    if (Detail::IsExactly<AddrItem>(item)) {
        text = static_cast<AddrItem const&>(item).Val().ToString();
        return true;
    }
    if (Detail::IsExactly<EndpointItem>(item)) {
        text = static_cast<EndpointItem const&>(item).Val().ToString();
        return true;
    }
    if (item.GetType() != IfType_t::Numeric || std::locale() != std::locale::classic())
        return false;
    auto const print = [&item, &text]<typename T>(T) {
        if (!Detail::IsExactly<NumericItem<T>>(item))
            return IfErrTypeNotAssignable;
        text = Detail::DefaultText(Detail::TextForm<typename T::T>{static_cast<NumericItem<T> const&>(item).Val()});
        return 0;
    };
    return Detail::VisitElement(item.GetNumericType(), print) == 0;
}

} // namespace

std::string ItemBase::GetValAsString() const
{
    std::string text;
    if (PrintPlain(*this, text))
        return text;
    std::ostringstream os;
    operator<<(os);
    // The stream swallows what its buffer throws when memory ends: half a text is none.
    if (os.bad())
        throw std::bad_alloc();
    return std::move(os).str();
}

} // namespace Legacy::If
