#pragma once

#include "TestSupport.h"

#include <Legacy/If.h>

/// All families, for the tests of what they have in common.
namespace Legacy::If::Test {

/// A schema's class, `void` where there is none, and its value's.
template<typename InfoClass, typename ItemClass>
struct Family
{
    using Info = InfoClass;
    using Item = ItemClass;
};

/// Calls `call` with a `Family` of each pair of classes.
void ForAllFamilies(auto&& call)
{
    ForAllTraits([&]<typename T>(T) {
        call(Family<NumericInfo<T>, NumericItem<T>>());
        call(Family<NumericArrayInfo<T>, NumericArrayItem<T>>());
        call(Family<NumericSparseInfo<T>, NumericSparseItem<T>>());
    });
    TraitsList<U16Traits, S32Traits, FloatTraits>::ForEach([&]<typename T>(T) {
        call(Family<CoordinateInfo<T>, CoordinateItem<T>>());
        call(Family<RectInfo<T>, RectItem<T>>());
    });
    TraitsList<Family<RectArrayInfo<U16Traits>, RectArrayItem<U16Traits>>, Family<BoolInfo, BoolItem>,
               Family<BoolArrayInfo, BoolArrayItem>, Family<EnumInfo, EnumItem>, Family<StringInfo, StringItem>,
               Family<StringArrayInfo, StringArrayItem>, Family<StringSparseInfo, StringSparseItem>,
               Family<ColourInfo, ColourItem>, Family<void, OrientationItem>, Family<AddrInfo, AddrItem>,
               Family<EndpointInfo, EndpointItem>, Family<AppEndpointInfo, AppEndpointItem>,
               Family<AppEndpointArrayInfo, AppEndpointArrayItem>, Family<ExtendedInfo, ExtendedItem>,
               Family<LocalizedStringInfo, LocalizedStringItem>, Family<CompositeInfo, CompositeItem>,
               Family<CollectionInfo, CollectionItem>>::ForEach(call);
}

/// A new schema as its constructor makes it.
template<typename Info>
boost::intrusive_ptr<Info> FreshInfo(unsigned int id, std::string const& name, Permission_t const& permission)
{
    if constexpr (std::is_base_of_v<EnumInfo, Info>)
        return Make<Info>(id, name, permission, false);
    else
        return Make<Info>(id, name, permission);
}

/// An application's class that has tags of its own.
template<typename Base>
struct Tagged : Base
{
    using Base::Base;
    IfType_t GetType() const override { return type; }
    NumericType_t GetNumericType() const override { return numericType; }
    IfType_t type = IfType_t::Connection;
    NumericType_t numericType = Base::GetNumericTypeStatic();
};

/// A value that is not what a fresh one is.
template<typename Item>
boost::intrusive_ptr<Item> Filled(unsigned int id)
{
    auto const item = Make<Item>(id);
    if constexpr (std::is_same_v<Item, OrientationItem>)
        item->Set({1, 2, 3});
    else if constexpr (std::is_same_v<Item, ExtendedItem>)
        item->SetVal({"1", "1"});
    else if constexpr (std::is_same_v<Item, LocalizedStringItem>)
        item->SetVal(LocalizedString("1"));
    else if constexpr (std::is_same_v<Item, CompositeItem> || std::is_same_v<Item, CollectionItem>)
        item->SetItems({Filled<BoolItem>(1)});
    else if constexpr (std::is_same_v<Item, AppEndpointItem> || std::is_same_v<Item, AppEndpointArrayItem>)
        EXPECT_EQ(Read(*item, {id, static_cast<unsigned char>(item->GetType()), 0, {1, 2, 0, 3, 0, 4, '1', 0}}), 0);
    else // a count for the lists, and numbers enough for each
        EXPECT_TRUE(ReadText(*item, "1 1 1 1 1").first);
    return item;
}

/// A schema under #MakeInfo's identity whose default, where it can be set, is the value of #Filled.
template<typename Info, typename Item>
boost::intrusive_ptr<Info> FilledInfo()
{
    auto const info = FreshInfo<Info>(7, "speed", {0x1234});
    auto const item = Filled<Item>(1);
    if constexpr (requires { info->SetMaxSize(9); })
        info->SetMaxSize(9);
    if constexpr (std::is_same_v<Info, ColourInfo>)
        info->SetDefault(item->Val());
    else if constexpr (requires { info->SetTable({item->GetVal()}); })
        info->SetTable({item->GetVal()});
    else if constexpr (requires { info->SetDefault(item->GetVal()); })
        info->SetDefault(item->GetVal());
    else if constexpr (requires { info->SetInfos({}); })
        info->SetInfos({MakeInfo<BoolInfo>()});
    return info;
}

} // namespace Legacy::If::Test
