#include "TestSupport.h"

#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <cstring>
#include <limits>

namespace Legacy::If::Test {
namespace {

template<typename Traits>
struct Numeric : testing::Test
{};

using AllTraits = testing::Types<U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits,
                                 FloatTraits, DoubleTraits>;
TYPED_TEST_SUITE(Numeric, AllTraits);

TYPED_TEST(Numeric, BoundsPushOneAnotherAndTheDefault)
{
    using E = typename TypeParam::T;
    using Limits = std::numeric_limits<E>;
    auto const info = MakeInfo<NumericInfo<TypeParam>>();
    EXPECT_EQ(info->GetMin(), Limits::min());
    EXPECT_EQ(info->GetMax(), Limits::max());
    EXPECT_EQ(info->GetDefault(), 0);
    EXPECT_EQ(info->GetType(), IfType_t::Numeric);
    EXPECT_EQ(info->GetNumericType(), TypeParam::k_numericType);

    info->SetMax(50);
    info->SetMin(100);
    EXPECT_EQ(info->GetMin(), 100);
    EXPECT_EQ(info->GetMax(), 100);
    EXPECT_EQ(info->GetDefault(), 100);
    info->SetMax(10);
    EXPECT_EQ(info->GetMin(), 10);
    EXPECT_EQ(info->GetMax(), 10);
    EXPECT_EQ(info->GetDefault(), 10);
    info->SetMax(20);
    for (auto const& [asked, stored] : {std::pair(9, 10), std::pair(10, 10), std::pair(15, 15), std::pair(21, 20)}) {
        info->SetDefault(static_cast<E>(asked));
        EXPECT_EQ(info->GetDefault(), stored);
    }
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(item->GetId(), 7U);
    EXPECT_EQ(dynamic_cast<NumericItem<TypeParam>&>(*item).GetVal(), 20);
}

TYPED_TEST(Numeric, ValidatesAtItsBounds)
{
    using E = typename TypeParam::T;
    using Limits = std::numeric_limits<E>;
    struct Case
    {
        E value;
        int verdict; // below, within, above
    };
    auto const info = MakeInfo<NumericInfo<TypeParam>>();
    info->SetMin(50);
    info->SetMax(70);
    info->SetDefault(60);
    for (Case const& c : {Case{Limits::lowest(), -1}, Case{49, -1}, Case{50, 0}, Case{60, 0}, Case{70, 0}, Case{71, 1},
                          Case{Limits::max(), 1}})
    {
        NumericItem<TypeParam> item(3);
        item.SetVal(c.value);
        EXPECT_EQ(item.WithinBounds(*info), c.verdict == 0);
        std::string const bound = std::string(sizeof(E) == 1  ? (c.verdict < 0 ? "2" : "F")
                                              : c.verdict < 0 ? "50"
                                                              : "70");
        Texts const min{"TypesSystemNumericValidationMin", "speed", bound};
        Texts const max{"TypesSystemNumericValidationMax", "speed", bound};
        EXPECT_EQ(Validated(item, info), c.verdict < 0 ? min : c.verdict > 0 ? max : Texts{});
        EXPECT_EQ(MessageOf(item, [&] { return item.ValidateMin(info); }), c.verdict < 0 ? min : Texts{});
        EXPECT_EQ(MessageOf(item, [&] { return item.ValidateMax(info); }), c.verdict > 0 ? max : Texts{});
        item.BoundVal(*info);
        EXPECT_EQ(item.GetVal(), c.verdict < 0 ? E{50} : c.verdict > 0 ? E{70} : c.value);
        item.SetVal(c.value, *info);
        EXPECT_EQ(item.GetVal(), c.verdict != 0 ? E{60} : c.value);
    }
}

} // namespace
} // namespace Legacy::If::Test
