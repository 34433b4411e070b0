#include "Maker.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/ResultElem.h>
#include <Orlek/LogicError.h>

#include <gtest/gtest.h>

// All validation and assignment rests on run-time casts. Were a class's identity duplicated in two shared objects, each
// cast across the border would fail, and every value of the other side would be of a wrong type.

namespace Legacy::If {
namespace {

TEST(CrossLibrary, ValuesAndSchemasMeetAcrossSharedObjects)
{
    auto const info = Maker::MakePercentInfo();
    boost::intrusive_ptr const item(NumericItem<U8Traits>::Create(1, 101));
    EXPECT_FALSE(Maker::Passes(item, info));
    item->SetVal(100);
    EXPECT_TRUE(Maker::Passes(item, info));
    EXPECT_FALSE(item->Validate(info));

    auto const percent = Maker::MakePercent(101);
    EXPECT_EQ(item->AssignValue(percent, nullptr), 0);
    EXPECT_EQ(item->GetVal(), 101);
    auto const finding = percent->Validate(info);
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->GetItem()->GetValAsString(), "101%"); // of an application's class, and copied as what it is
}

TEST(CrossLibrary, ContainersAreExported)
{
    InfoContainer infos;
    EXPECT_EQ(infos.Add(Maker::MakePercentInfo()), 0);
    EXPECT_TRUE(InfoContainer(infos).Find("load"));
    GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>, SectionId_t> const
        sections;
    EXPECT_TRUE(sections.Empty());
}

TEST(CrossLibrary, WhatIsThrownThereIsCaughtHere)
{
    try {
        Maker::PairWithNothing();
        FAIL();
    } catch (Orlek::LogicError const& error) {
        EXPECT_EQ(error.GetCode(), IfErrNullArgument);
        EXPECT_EQ(error.GetMessage(), "Null InfoHolder Pointer");
    }
}

} // namespace
} // namespace Legacy::If
