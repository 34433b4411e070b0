#pragma once

#include "TestSupport.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/IfKit/Families.h>

/// All families, for the tests of what they have in common.
namespace Legacy::If::Test {

using IfKit::Family;

/// Calls `call` with a `Family` of each pair of classes.
void ForAllFamilies(auto&& call) { IfKit::AllFamilies::ForEach(call); }

/// A section as an application has it.
struct PlainSection : Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

using Sections =
    GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>, SectionId_t>;

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
    // All of it can be had, and the codes say so.
    int code = 0;
    if constexpr (requires { info->SetMaxSize(9); })
        code += info->SetMinSize(0) + info->SetMaxSize(9);
    if constexpr (requires { info->SetMaxLength(9); })
        code += info->SetMaxLength(9);
    if constexpr (requires { info->SetTable({item->GetVal()}); })
        code += info->SetTable({item->GetVal()});
    else if constexpr (requires { code += info->SetDefault(item->GetVal()); })
        code += info->SetDefault(item->GetVal());
    else if constexpr (requires { info->SetDefault(item->GetVal()); })
        info->SetDefault(item->GetVal());
    else if constexpr (requires { info->SetInfos({}); })
        info->SetInfos({MakeInfo<BoolInfo>()});
    EXPECT_EQ(code, 0);
    return info;
}

} // namespace Legacy::If::Test
