#pragma once

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
#include <Legacy/If/Extended.h>
#include <Legacy/If/LocalizedString.h>
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
#include <cstddef>
#include <type_traits>

/// All concrete classes of the library, by their tags. Everything here is constant and may be used from any thread.
///
/// @code
/// auto const isClass = []<typename Info, typename Item>(Family<Info, Item>) { return !std::is_void_v<Item>; };
/// std::cout << VisitFamily(IfType_t::Numeric, NumericType_t::U8, isClass) << '\n';
/// @endcode
namespace Legacy::IfKit {

/// The two classes of one family under one element type. Both are `void` where tags name no family; the schema alone is
/// `void` for an orientation, which has none.
template<typename InfoClass, typename ItemClass>
struct Family
{
    using Info = InfoClass;
    using Item = ItemClass;
};

/// Several families, to be gone through at compile time.
template<typename... Families>
struct FamilyList
{
    static constexpr std::size_t k_size = sizeof...(Families);

    /// Calls `use` with an object of each `Family` in turn.
    template<typename Use>
    static constexpr void ForEach(Use&& use)
    {
        (use(Families{}), ...);
    }
};

/// Both lists as one.
template<typename... Families, typename... Others>
constexpr FamilyList<Families..., Others...> operator+(FamilyList<Families...>, FamilyList<Others...>)
{
    return {};
}

namespace Detail {

template<template<typename> typename Info, template<typename> typename Item, typename... Traits>
using NumbersOf = FamilyList<Family<Info<Traits>, Item<Traits>>...>;

template<template<typename> typename Info, template<typename> typename Item>
using AllNumbersOf = NumbersOf<Info, Item, If::U8Traits, If::S8Traits, If::U16Traits, If::S16Traits, If::U32Traits,
                               If::S32Traits, If::U64Traits, If::S64Traits, If::FloatTraits, If::DoubleTraits>;

template<template<typename> typename Info, template<typename> typename Item>
using ShapesOf = NumbersOf<Info, Item, If::U16Traits, If::S32Traits, If::FloatTraits>;

using PlainFamilies =
    FamilyList<Family<If::BoolInfo, If::BoolItem>, Family<If::EnumInfo, If::EnumItem>,
               Family<If::StringInfo, If::StringItem>, Family<If::StringArrayInfo, If::StringArrayItem>,
               Family<If::BoolArrayInfo, If::BoolArrayItem>, Family<If::StringSparseInfo, If::StringSparseItem>,
               Family<If::ColourInfo, If::ColourItem>, Family<void, If::OrientationItem>,
               Family<If::AddrInfo, If::AddrItem>, Family<If::LocalizedStringInfo, If::LocalizedStringItem>,
               Family<If::EndpointInfo, If::EndpointItem>, Family<If::AppEndpointInfo, If::AppEndpointItem>,
               Family<If::AppEndpointArrayInfo, If::AppEndpointArrayItem>,
               Family<If::RectArrayInfo<If::U16Traits>, If::RectArrayItem<If::U16Traits>>,
               Family<If::ExtendedInfo, If::ExtendedItem>, Family<If::CompositeInfo, If::CompositeItem>,
               Family<If::CollectionInfo, If::CollectionItem>>;

} // namespace Detail

/// Every family, under every element type that it has: the one list from which everything else here is made.
using AllFamilies = decltype(Detail::PlainFamilies() + Detail::AllNumbersOf<If::NumericInfo, If::NumericItem>() +
                             Detail::AllNumbersOf<If::NumericArrayInfo, If::NumericArrayItem>() +
                             Detail::AllNumbersOf<If::NumericSparseInfo, If::NumericSparseItem>() +
                             Detail::ShapesOf<If::CoordinateInfo, If::CoordinateItem>() +
                             Detail::ShapesOf<If::RectInfo, If::RectItem>());

namespace Detail {

constexpr std::size_t k_types = 256;
constexpr std::size_t k_numericTypes = static_cast<std::size_t>(If::NumericType_t::Double) + 1;

/// The place of each family in the list, counted from 1, by its two tags; 0 is none.
using Places = std::array<std::array<unsigned char, k_numericTypes>, k_types>;

inline constexpr Places k_places = [] {
    Places places{};
    unsigned char place = 0;
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item>) {
        places[static_cast<std::size_t>(Item::GetTypeStatic())]
              [static_cast<std::size_t>(Item::GetNumericTypeStatic())] = ++place;
    });
    return places;
}();

/// One function for each place. The first one is for tags that name no family.
template<typename Result, typename Use, typename List>
struct Steps;

template<typename Result, typename Use, typename... Families>
struct Steps<Result, Use, FamilyList<Families...>>
{
    template<typename Found>
    static Result Call(Use& use)
    {
        return use(Found{});
    }

    static constexpr Result (*k_table[])(Use&) = {&Call<Family<void, void>>, &Call<Families>...};
};

} // namespace Detail

/// Calls `use` with the `Family` that two tags name, with `Family<void, void>` if they name none, and returns what it
/// returns, which must be of one type for all. The tags may come from anywhere; one look-up, whatever they are.
template<typename Use>
decltype(auto) VisitFamily(If::IfType_t type, If::NumericType_t numericType, Use&& use)
{
    using Plain = std::remove_reference_t<Use>;
    using Result = decltype(use(Family<void, void>{}));
    auto const row = static_cast<std::size_t>(type);
    auto const column = static_cast<std::size_t>(numericType);
    bool const known = row < Detail::k_types && column < Detail::k_numericTypes;
    return Detail::Steps<Result, Plain, AllFamilies>::k_table[known ? Detail::k_places[row][column] : 0](use);
}

} // namespace Legacy::IfKit
