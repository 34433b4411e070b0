#include "../TestSupport.h"

#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/NumericSparse.h>

#include <limits>

namespace Legacy::If::Test {
namespace {

template<typename Traits>
using List = std::vector<typename Traits::T>;

template<typename Traits>
boost::intrusive_ptr<NumericArrayItem<Traits>> MakeList(List<Traits> const& values)
{
    auto item = Make<NumericArrayItem<Traits>>(2U);
    item->SetVal(values);
    return item;
}

TEST(NumericArrayInfo, KeepsItsSizesAndItsElementBoundsApart)
{
    auto const info = MakeInfo<NumericArrayInfo<S16Traits>>();
    EXPECT_EQ(Printed(*info), "array size: 1 <= 0 <= 2147483647");
    info->SetMax(3);
    info->SetMin(10);
    EXPECT_EQ(info->GetMax(), 10);
    info->SetMax(9);                              // and the least with it
    EXPECT_EQ(info->SetDefault({1, 2, 3, 4}), 0); // outside the element bounds, which nobody asks
    info->SetMaxSize(3);
    EXPECT_EQ(info->GetDefault(), (List<S16Traits>{1, 2, 3}));
    NumericArrayItem<S16Traits> item(1);
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemNumericArrayValidationMinSize", "speed", "1"}));
    item.SetVal({1, 2, 3, 100}); // a size error hides what the elements are
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemNumericArrayValidationMaxSize", "speed", "3"}));

    // Deep copies alone lose the element bounds; comparing and merging look at the sizes alone.
    auto const deep = Hold(info->DeepCopy(7));
    EXPECT_EQ(std::pair(deep->GetMin(), deep->GetMax()), (std::pair<short, short>(-32768, 32767)));
    EXPECT_TRUE(info->IsEqualBounds(deep));
    deep->SetMinSize(2);
    EXPECT_FALSE(info->IsEqualBounds(deep));
    EXPECT_EQ(deep->MergeBounds(info), 0);
    EXPECT_EQ(NumericArrayInfo<S16Traits>(*info).GetMin(), 9);
    *deep = *info;
    EXPECT_EQ(deep->GetMax(), 9);
    EXPECT_TRUE(Dumped(*deep).ends_with("S16\nminSize: 1\nmaxSize: 3\ndefaultSize: 3\n"));
}

TEST(NumericArrayInfo, AssignsByTheBytesOfTheDefault)
{
    auto const words = MakeInfo<NumericArrayInfo<U16Traits>>();
    words->SetMaxSize(5);
    words->SetDefault({1, 300, 3});
    words->SetMin(300);
    words->SetMax(400);
    auto const bytes = MakeInfo<NumericArrayInfo<U8Traits>>();
    EXPECT_EQ(Assign(*bytes, words), (Outcome{0, 1}));
    EXPECT_EQ(bytes->GetDefault(), (List<U8Traits>{1, 44, 3, 0, 0, 0}));
    EXPECT_EQ(std::pair(bytes->GetMin(), bytes->GetMax()), (std::pair<unsigned char, unsigned char>(44, 144)));
    EXPECT_EQ(Printed(*bytes), "array size: 1 <= 6 <= 5"); // no size is looked at
    EXPECT_EQ(Assign(*words, bytes), (Outcome{0, 1}));
    EXPECT_EQ(words->GetDefault(), (List<U16Traits>{1, 44, 3}));

    // A difference within the tolerance is stored here, other than in a value, and not told.
    auto const near = MakeInfo<NumericArrayInfo<FloatTraits>>();
    auto const zero = MakeInfo<NumericArrayInfo<FloatTraits>>();
    near->SetDefault({1e-11F});
    zero->SetDefault({0});
    EXPECT_EQ(Assign(*zero, near), (Outcome{0, 0}));
    EXPECT_EQ(zero->GetDefault(), (List<FloatTraits>{1e-11F}));
}

TEST(NumericArrayItem, TakesAListByItsBytesAndNoneFromATextThatIsNone)
{
    NumericArrayItem<U16Traits> words(1);
    EXPECT_EQ(Assign(words, MakeList<U8Traits>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), 77), (Outcome{0, 1}));
    for (auto const& [text, word] : {std::pair("-", "arraySize"), std::pair("2 1", "arrayItem")})
        EXPECT_EQ(ReadText(words, text), std::pair(false, "Error parsing " + std::string(word) + "\n"));
    EXPECT_EQ(words.GetVal(), (List<U16Traits>{1, 2, 3, 4, 5}));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Assign(words, MakeList<U32Traits>({1, 70000, 3})), (Outcome{0, 1}));
        EXPECT_EQ(words.GetVal(), (List<U16Traits>{1, 4464, 3, 0, 0, 0}));
        words.Val()[5] = 9; // a place beyond the source's elements is cleared as well
    }
    auto const self = MakeList<S64Traits>({1, -2, 3});
    EXPECT_EQ(Assign(*self, self), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*self, Hold(NumericItem<S8Traits>::Create(2, -1)), 4), (Outcome{0, 1}));
    EXPECT_EQ(self->GetVal(), (List<S64Traits>{1, -2, 3, 0, -1}));
}

TEST(NumericArrayItem, TellsChangesOfEveryElement)
{
    ForAllTraits([]<typename T>(T) {
        List<T> values(67, 5); // no round number, for the loops over several at a time
        auto const item = MakeList<T>(values);
        EXPECT_EQ(Assign(*item, MakeList<T>(values)), (Outcome{0, 0}));
        for (auto& value : values) {
            value = 101;
            EXPECT_EQ(Assign(*item, MakeList<T>(values)), (Outcome{0, 1}));
        }
        EXPECT_EQ(item->GetVal(), values);
    });
}

TEST(NumericArrayItem, KeepsElementsThatAreNearEnough)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    auto const item = MakeList<FloatTraits>({0, 0, 1});
    EXPECT_EQ(Assign(*item, MakeList<FloatTraits>({1e-11F, 0, 1})), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*item, Hold(NumericItem<FloatTraits>::Create(2, 1e-11F)), 1), (Outcome{0, 0}));
    EXPECT_EQ(item->GetVal(), (List<FloatTraits>{0, 0, 1}));
    EXPECT_TRUE(item->IsEqualValue(MakeList<FloatTraits>({1e-11F, 0, 1})));

    // A NaN is unequal to everything: it is stored and told each time.
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(Assign(*item, MakeList<FloatTraits>({nan, 0, 1})), (Outcome{0, 1}));
    EXPECT_FALSE(item->IsEqualValue(item));
    auto const info = MakeInfo<NumericArrayInfo<FloatTraits>>();
    item->SetVal({nan, 1});
    EXPECT_EQ(Validated(*item, info), Texts{});
}

TEST(NumericSparse, KeepsItsDefaultInTheTableAndAssignsAcrossElementTypes)
{
    auto const info = MakeInfo<NumericSparseInfo<U8Traits>>();
    EXPECT_EQ(info->SetTable({65, 66}), 0);
    EXPECT_EQ(Printed(*info), "65, 66; default=65");
    EXPECT_EQ(info->SetDefault(0), IfErrNotInSet);
    EXPECT_EQ(info->SetDefault(66), 0);
    EXPECT_TRUE(Dumped(*info).ends_with("U8\ndefault: B\n"));
    NumericSparseItem<U8Traits> item(3);
    item.SetVal(67, *info);
    EXPECT_EQ(item.GetVal(), 66);
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemIllegalValidatationError", "speed", "NumericSparse(U8)"}));
    info->SetTable({});
    EXPECT_EQ(Printed(*info), "; default=0");

    auto const from = MakeInfo<NumericSparseInfo<DoubleTraits>>();
    from->GetTable() = {1, 300};
    EXPECT_TRUE(from->IsPresent(1 + 1e-11));
    from->SetDefault(300);
    auto const to = MakeInfo<NumericSparseInfo<U16Traits>>();
    EXPECT_EQ(Assign(*to, from), (Outcome{0, 1}));
    EXPECT_EQ(Printed(*to), "1, 300, 0, 0, 0, 0, 0, 0; default=300"); // by the table's bytes
    EXPECT_EQ(Assign(item, Hold(NumericSparseItem<S32Traits>::Create(2, 300)), 99), (Outcome{0, 1}));
    EXPECT_EQ(item.GetVal(), 44);
}

} // namespace
} // namespace Legacy::If::Test
