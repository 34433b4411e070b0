#include "text/TypeText.h"

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <ostream>

namespace Legacy::If {

namespace {

std::string Combined(IfType_t type, NumericType_t numericType)
{
    std::string text(Detail::TypeText(type));
    text.append("(").append(Detail::TypeText(numericType)).append(")");
    return text;
}

} // namespace

namespace Detail {

std::string_view TypeText(IfType_t type) noexcept
{
    switch (type) {
    case IfType_t::Undefined:
        return "Undefined";
    case IfType_t::Bool:
        return "Bool";
    case IfType_t::Numeric:
        return "Numeric";
    case IfType_t::NumericArray:
        return "NumericArray";
    case IfType_t::NumericSparse:
        return "NumericSparse";
    case IfType_t::Enum:
        return "Enum";
    case IfType_t::String:
        return "String";
    case IfType_t::StringArray:
        return "StringArray";
    case IfType_t::BoolArray:
        return "BoolArray";
    case IfType_t::Colour:
        return "Colour";
    case IfType_t::Coordinate:
        return "Coordinate";
    case IfType_t::Rectangle:
        return "Rectangle";
    case IfType_t::Orientation:
        return "Orientation";
    case IfType_t::Addr:
        return "Addr";
    case IfType_t::LocalizedString:
        return "LocalizedString";
    case IfType_t::Endpoint:
        return "Endpoint";
    case IfType_t::AppEndpoint:
        return "AppEndpoint";
    case IfType_t::Connection:
        return "Connection";
    case IfType_t::Composite:
        return "Composite";
    case IfType_t::Collection:
        return "Collection";
    // Contract: these four are real tags that print as unknown ones; dumps in the field are compared with this text.
    case IfType_t::StringSparse:
    case IfType_t::AppEndpointArray:
    case IfType_t::RectArray:
    case IfType_t::Extended:
        break;
    }
    return "Invalid";
}

std::string_view TypeText(NumericType_t type) noexcept
{
    switch (type) {
    case NumericType_t::Undefined:
        return "Undefined";
    case NumericType_t::U8:
        return "U8";
    case NumericType_t::S8:
        return "S8";
    case NumericType_t::U16:
        return "U16";
    case NumericType_t::S16:
        return "S16";
    case NumericType_t::U32:
        return "U32";
    case NumericType_t::S32:
        return "S32";
    case NumericType_t::U64:
        return "U64";
    case NumericType_t::S64:
        return "S64";
    case NumericType_t::Float:
        return "Float";
    case NumericType_t::Double:
        return "Double";
    }
    return "Invalid";
}

std::string CombinedTypeText(InfoBase const& info) { return Combined(info.GetType(), info.GetNumericType()); }
std::string CombinedTypeText(ItemBase const& item) { return Combined(item.GetType(), item.GetNumericType()); }

} // namespace Detail

std::ostream& operator<<(std::ostream& os, IfType_t const& type) { return os << Detail::TypeText(type); }
std::ostream& operator<<(std::ostream& os, NumericType_t const& type) { return os << Detail::TypeText(type); }

} // namespace Legacy::If
