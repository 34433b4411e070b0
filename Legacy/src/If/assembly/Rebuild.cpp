#include "core/FirstReference.h"
#include "record/SerialRecord.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Collection.h>
#include <Legacy/If/Colour.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/NumericSparse.h>
#include <Legacy/If/Orientation.h>
#include <Legacy/If/Rect.h>
#include <Legacy/If/RectArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Legacy/If/StringSparse.h>

#include <array>

namespace Legacy::If {

namespace {

using Factory = ItemBase* (*)(unsigned int id);

/// Which class a record's two tags name. A family that has no element type takes any element tag here and refuses a
/// wrong one when it reads the header.
struct Row
{
    IfType_t type;
    NumericType_t numericType;
    Factory create;
};

template<typename Item>
ItemBase* Create(unsigned int id)
{
    return new Item(id);
}

template<typename Item>
constexpr Row RowOf(IfType_t type, NumericType_t numericType = NumericType_t::Undefined)
{
    return {type, numericType, &Create<Item>};
}

/// The rows of a numeric family, one for each of the traits named.
template<template<typename> typename Family, typename... Traits>
constexpr std::array<Row, sizeof...(Traits)> RowsOf(IfType_t type)
{
    return {RowOf<Family<Traits>>(type, Traits::k_numericType)...};
}

/// The rows of a numeric family that has all element types.
template<template<typename> typename Family>
constexpr auto AllRowsOf(IfType_t type)
{
    return RowsOf<Family, U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits,
                  FloatTraits, DoubleTraits>(type);
}

template<std::size_t... Sizes>
constexpr auto Join(std::array<Row, Sizes> const&... parts)
{
    std::array<Row, (Sizes + ...)> rows{};
    std::size_t end = 0;
    auto const add = [&](auto const& part) {
        for (Row const& row : part)
            rows[end++] = row;
    };
    (add(parts), ...);
    return rows;
}

constexpr auto k_plainRows = std::to_array<Row>({
    RowOf<BoolItem>(IfType_t::Bool),
    RowOf<EnumItem>(IfType_t::Enum),
    RowOf<StringItem>(IfType_t::String),
    RowOf<StringArrayItem>(IfType_t::StringArray),
    RowOf<BoolArrayItem>(IfType_t::BoolArray),
    RowOf<StringSparseItem>(IfType_t::StringSparse),
    RowOf<AddrItem>(IfType_t::Addr),
    RowOf<EndpointItem>(IfType_t::Endpoint),
    RowOf<AppEndpointItem>(IfType_t::AppEndpoint),
    RowOf<AppEndpointArrayItem>(IfType_t::AppEndpointArray),
    RowOf<ColourItem>(IfType_t::Colour),
    RowOf<OrientationItem>(IfType_t::Orientation),
    RowOf<CompositeItem>(IfType_t::Composite),
    RowOf<CollectionItem>(IfType_t::Collection),
});

constexpr auto k_rows =
    Join(k_plainRows, AllRowsOf<NumericItem>(IfType_t::Numeric), AllRowsOf<NumericArrayItem>(IfType_t::NumericArray),
         AllRowsOf<NumericSparseItem>(IfType_t::NumericSparse),
         RowsOf<CoordinateItem, U16Traits, S32Traits, FloatTraits>(IfType_t::Coordinate),
         RowsOf<RectItem, U16Traits, S32Traits, FloatTraits>(IfType_t::Rectangle),
         RowsOf<RectArrayItem, U16Traits>(IfType_t::RectArray));

constexpr std::size_t k_numericTypes = static_cast<std::size_t>(NumericType_t::Double) + 1;

/// The rows by their tags, so that finding one is two look-ups. A family without an element type stands under each.
struct Table
{
    std::array<unsigned char, 256> familyOf{}; // 0 is none
    std::array<std::array<Factory, k_numericTypes>, k_rows.size() + 1> factories{};
    std::array<bool, k_rows.size() + 1> hasElements{};
};

constexpr Table MakeTable()
{
    Table table;
    unsigned char families = 0;
    for (Row const& row : k_rows) {
        unsigned char& family = table.familyOf[static_cast<std::size_t>(row.type)];
        if (family == 0)
            family = ++families;
        table.factories[family][static_cast<std::size_t>(row.numericType)] = row.create;
        if (row.numericType != NumericType_t::Undefined)
            table.hasElements[family] = true;
    }
    return table;
}

constexpr Table k_table = MakeTable();

Factory FindFactory(unsigned char type, unsigned char numericType)
{
    unsigned char const family = k_table.familyOf[type];
    if (!k_table.hasElements[family])
        return k_table.factories[family][0];
    return numericType < k_numericTypes ? k_table.factories[family][numericType] : nullptr;
}

} // namespace

int ItemBase::Deserialize(ConstSerialStruct_t const* record, boost::intrusive_ptr<ItemBase>& item)
{
    if (!record)
        return IfErrNullArgument;
    Factory const create = FindFactory(record->type, record->numericType);
    if (!create)
        return IfErrInvalidArgument;
    item = Detail::FirstReference::Of(create(boost::endian::big_to_native(std::uint32_t{record->id})));
    return item->Deserialize(record);
}

} // namespace Legacy::If
