// What all lists have in common.
#include "../Families.h"

namespace Legacy::If::Test {
namespace {

/// No schema itself, but one can be had of it.
template<typename Info>
struct Parameter
{
    Info const& info;

    operator Info const&() const { return info; }
};

TEST(Lists, AreCheckedAgainstTheSizesOfTheirSchemas)
{
    auto const expect = []<typename Info, typename Item>(Family<Info, Item>) {
        using List = std::remove_reference_t<decltype(Item(1).Val())>;
        int (Item::*const set)(List const&, Info const&) = &Item::SetVal; // as tables of members name it
        auto const info = MakeInfo<Info>();
        info->SetMaxSize(1);
        List const one = Filled<Item>(1)->GetVal();
        List two = one;
        two.push_back(one[0]);
        Item item(7);
        EXPECT_EQ((item.*set)(two, *info), IfErrSizeOutOfRange);
        EXPECT_TRUE(item.IsEmpty());
        EXPECT_EQ(item.SetVal(one, Parameter<Info>{*info}), 0);
        EXPECT_EQ(item.GetSize(), 1U);
    };
    ForAllTraits([&]<typename T>(T) { expect(Family<NumericArrayInfo<T>, NumericArrayItem<T>>()); });
    TraitsList<Family<RectArrayInfo<U16Traits>, RectArrayItem<U16Traits>>, Family<BoolArrayInfo, BoolArrayItem>,
               Family<StringArrayInfo, StringArrayItem>>::ForEach(expect);
}

template<typename Item>
void ExpectMoved()
{
    using Held = std::remove_reference_t<decltype(Item(1).Val())>;
    auto const roomy = [] {
        Held held;
        held.reserve(1000);
        return held;
    };
    Item item(7);
    item.SetVal(roomy());
    EXPECT_GE(item.Val().capacity(), 1000U);
    if constexpr (requires { Item::Create(7U, Held()); }) {
        EXPECT_GE(Hold(Item::Create(7U, roomy()))->Val().capacity(), 1000U);
    }
}

TEST(Lists, AreTakenOverWithTheirStorage)
{
    ExpectMoved<NumericArrayItem<U8Traits>>();
    ExpectMoved<BoolArrayItem>();
    ExpectMoved<StringItem>();
    ExpectMoved<StringArrayItem>();
    ExpectMoved<RectArrayItem<U16Traits>>();
    ExpectMoved<AppEndpointArrayItem>();
    StringItem text(7);
    std::string roomy;
    roomy.reserve(1000);
    text.SetVal(std::move(roomy), *MakeInfo<StringInfo>());
    EXPECT_GE(text.Val().capacity(), 1000U);
    auto const info = MakeInfo<BoolArrayInfo>();
    info->SetMaxSize(1);
    std::vector<bool> two{true, false};
    BoolArrayItem item(7);
    EXPECT_EQ(item.SetVal(static_cast<std::vector<bool>&&>(two), *info), IfErrSizeOutOfRange);
    EXPECT_EQ(two.size(), 2U); // refused, it is still the caller's
    two.pop_back();
    EXPECT_EQ(item.SetVal(static_cast<std::vector<bool>&&>(two), *info), 0);
    EXPECT_EQ(item.GetVal(), std::vector<bool>{true});
}

TEST(Lists, GrowOneByOneWithoutMovingTheirElementsEachTime)
{
    auto const expect = []<typename One, typename Item>(Family<One, Item>) {
        constexpr unsigned int count = 500;
        auto const one = Filled<One>(1);
        Item item(7);
        std::size_t moved = 0;
        for (unsigned int i = 0; i < count; ++i) {
            auto const capacity = item.Val().capacity();
            EXPECT_EQ(item.AssignArrayValue(one, i, nullptr), 0);
            moved += item.Val().capacity() != capacity ? i : 0;
        }
        EXPECT_LT(moved, 3 * count) << Dumped(*one);
    };
    TraitsList<Family<NumericItem<U8Traits>, NumericArrayItem<U8Traits>>,
               Family<RectItem<U16Traits>, RectArrayItem<U16Traits>>, Family<BoolItem, BoolArrayItem>,
               Family<StringItem, StringArrayItem>, Family<AppEndpointItem, AppEndpointArrayItem>>::ForEach(expect);
}

// A list of endpoints has sizes that nobody checks, and is made by its constructor.
template<typename Item>
concept IsMadeOf = requires(AppEndpointList list)
{
    Item::Create(1U, list);
};
template<typename Item>
concept IsChecked = requires(Item item, AppEndpointList list, AppEndpointArrayInfo info)
{
    item.SetVal(list, info);
};
static_assert(!IsMadeOf<AppEndpointArrayItem> && !IsChecked<AppEndpointArrayItem>);

} // namespace
} // namespace Legacy::If::Test
