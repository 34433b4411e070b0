#include "TestSupport.h"

#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Numeric.h>

#include <thread>

namespace Legacy::If::Test {
namespace {

TEST(FindingScope, HearsWhatItsOwnBlockFinds)
{
    auto const info = MakeInfo<NumericInfo<U8Traits>>();
    info->SetMax(65);
    auto const item = Hold(NumericItem<U8Traits>::Create(7, 66));
    FindingScope const outer;
    EXPECT_TRUE(Heard(outer).empty());
    ASSERT_TRUE(item->Validate(info));
    Texts const told = {"TypesSystemNumericValidationMax", "speed", "A"};
    EXPECT_EQ(Heard(outer), told);
    {
        FindingScope const inner(FindingScope::Bytes_t::AsNumbers);
        ASSERT_TRUE(item->Validate(info));
        EXPECT_EQ(Heard(inner).back(), "65");
        std::thread([&] { EXPECT_TRUE(item->Validate(nullptr)); }).join();
        EXPECT_EQ(Heard(inner).back(), "65");
    }
    EXPECT_EQ(Heard(outer), told);
    ASSERT_TRUE(item->Validate(nullptr));
    EXPECT_EQ(Heard(outer), (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "Numeric(U8)"}));
}

struct CountingItem : CoordinateItem<U16Traits>
{
    using CoordinateItem::CoordinateItem;
    IfType_t GetType() const override { return ++asked, CoordinateItem::GetType(); }
    mutable int asked = 0;
};

TEST(FindingScope, BuildsNoMessageForNobody)
{
    auto const item = Make<CountingItem>(7U);
    ASSERT_TRUE(item->Validate(nullptr));
    EXPECT_EQ(item->asked, 0);
    FindingScope const scope;
    ASSERT_TRUE(item->Validate(nullptr));
    EXPECT_EQ(item->asked, 1);
    EXPECT_EQ(Heard(scope).back(), "Coordinate(U16)");
}

} // namespace
} // namespace Legacy::If::Test
