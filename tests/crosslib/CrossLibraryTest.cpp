#include "Maker.h"

#include <Legacy/If/ResultElem.h>
#include <Orlek/LogicError.h>

#include <gtest/gtest.h>

// All validation and assignment rests on run-time casts. Were a class's identity duplicated in two shared objects, each
// cast across the border would fail, and every value of the other side would be of a wrong type.

namespace Legacy::If {
namespace {

template<typename T>
boost::intrusive_ptr<T> Hold(T* object)
{
    return boost::intrusive_ptr<T>(object);
}

TEST(CrossLibrary, ValuesAndSchemasMeetAcrossSharedObjects)
{
    auto const info = Maker::MakePercentInfo();
    auto const good = Hold(NumericItem<U8Traits>::Create(1, 100));
    auto const bad = Hold(NumericItem<U8Traits>::Create(1, 101));
    EXPECT_TRUE(Maker::Passes(good, info));
    EXPECT_FALSE(Maker::Passes(bad, info));
    EXPECT_FALSE(good->Validate(info));
    EXPECT_NE(dynamic_cast<NumericInfo<U8Traits> const*>(info.get()), nullptr);

    auto const text = Hold(StringItem::Create(2, ""));
    EXPECT_EQ(text->AssignValue(Maker::MakeText("made there"), nullptr), 0);
    EXPECT_EQ(text->GetVal(), "made there");
    auto const address = Hold(AddrItem::Create(2, Net::AddrStr()));
    EXPECT_EQ(address->AssignValue(Maker::MakeAddress("::1"), nullptr), 0);
    EXPECT_EQ(address->GetValAsString(), "::1");
}

TEST(CrossLibrary, AnApplicationsClassIsItsFamilysAndKeepsItsOwnWays)
{
    auto const percent = Maker::MakePercent(101);
    auto const number = Hold(NumericItem<U16Traits>::Create(3, 0));
    EXPECT_EQ(number->AssignValue(percent, nullptr), 0);
    EXPECT_EQ(number->GetVal(), 101);
    auto const finding = percent->Validate(Maker::MakePercentInfo());
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->GetItem()->GetValAsString(), "101%"); // copied as what it is
}

TEST(CrossLibrary, WhatIsThrownThereIsCaughtHere)
{
    try {
        Maker::PairWithNothing();
        FAIL();
    } catch (Orlek::LogicError const& error) {
        EXPECT_EQ(error.GetCode(), IfErrNullArgument);
        EXPECT_EQ(error.GetMessage(), "Null InfoHolder Pointer");
        EXPECT_EQ(error.GetLocation().GetLine(), 273);
    }
}

} // namespace
} // namespace Legacy::If
