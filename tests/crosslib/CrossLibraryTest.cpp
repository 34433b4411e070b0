#include "Maker.h"

#include <Legacy/If/ResultElem.h>

#include <gtest/gtest.h>

// Were a class's identity duplicated in two shared objects, each run-time cast across the border would fail.

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

} // namespace
} // namespace Legacy::If
