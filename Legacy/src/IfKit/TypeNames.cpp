#include "NameTable.h"

#include <Legacy/IfKit/TypeNames.h>

namespace Legacy::IfKit {

using If::IfType_t;
using If::NumericType_t;

namespace {

constexpr Detail::Named<IfType_t> k_types[] = {
    {IfType_t::Undefined, "Undefined"},
    {IfType_t::Bool, "Bool"},
    {IfType_t::Numeric, "Numeric"},
    {IfType_t::NumericArray, "NumericArray"},
    {IfType_t::NumericSparse, "NumericSparse"},
    {IfType_t::Enum, "Enum"},
    {IfType_t::String, "String"},
    {IfType_t::StringArray, "StringArray"},
    {IfType_t::BoolArray, "BoolArray"},
    {IfType_t::StringSparse, "StringSparse"},
    {IfType_t::Colour, "Colour"},
    {IfType_t::Coordinate, "Coordinate"},
    {IfType_t::Rectangle, "Rectangle"},
    {IfType_t::Orientation, "Orientation"},
    {IfType_t::Addr, "Addr"},
    {IfType_t::LocalizedString, "LocalizedString"},
    {IfType_t::Endpoint, "Endpoint"},
    {IfType_t::AppEndpoint, "AppEndpoint"},
    {IfType_t::Connection, "Connection"},
    {IfType_t::AppEndpointArray, "AppEndpointArray"},
    {IfType_t::RectArray, "RectArray"},
    {IfType_t::Extended, "Extended"},
    {IfType_t::Composite, "Composite"},
    {IfType_t::Collection, "Collection"},
};

constexpr Detail::Named<NumericType_t> k_numericTypes[] = {
    {NumericType_t::Undefined, "Undefined"},
    {NumericType_t::U8, "U8"},
    {NumericType_t::S8, "S8"},
    {NumericType_t::U16, "U16"},
    {NumericType_t::S16, "S16"},
    {NumericType_t::U32, "U32"},
    {NumericType_t::S32, "S32"},
    {NumericType_t::U64, "U64"},
    {NumericType_t::S64, "S64"},
    {NumericType_t::Float, "Float"},
    {NumericType_t::Double, "Double"},
};

} // namespace

std::string_view NameOf(IfType_t type) noexcept { return Detail::NameIn(k_types, type); }
std::string_view NameOf(NumericType_t type) noexcept { return Detail::NameIn(k_numericTypes, type); }
std::optional<IfType_t> IfTypeOf(std::string_view name) noexcept { return Detail::ValueIn(k_types, name); }
std::optional<NumericType_t> NumericTypeOf(std::string_view name) noexcept
{
    return Detail::ValueIn(k_numericTypes, name);
}

} // namespace Legacy::IfKit
