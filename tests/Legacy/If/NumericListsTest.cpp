#include "TestSupport.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Enum.h>
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
    EXPECT_EQ(info->GetMinSize(), 1U);
    EXPECT_EQ(info->GetMaxSize(), 2147483647U);
    auto const fresh = Hold(info->CreateItem());
    EXPECT_EQ(Validated(*fresh, info), (Texts{"TypesSystemNumericArrayValidationMinSize", "speed", "1"}));

    info->SetMin(7);
    info->SetMax(3);
    EXPECT_EQ(info->GetMin(), 3);
    EXPECT_EQ(info->SetMinSize(5), 0);
    EXPECT_EQ(info->GetDefaultSize(), 0U); // an empty default stays empty
    EXPECT_EQ(info->SetDefault({1, 2, 3, 4}), IfErrSizeOutOfRange);
    info->SetMinSize(2);
    EXPECT_EQ(info->SetDefault({1, 2}), 0); // outside the element bounds, which nobody asks
    info->SetMinSize(4);
    EXPECT_EQ(info->GetDefault(), (List<S16Traits>{1, 2, 0, 0}));
    info->SetMaxSize(3);
    EXPECT_EQ(info->GetMinSize(), 3U);
    EXPECT_EQ(info->GetDefault(), (List<S16Traits>{1, 2, 0}));

    NumericArrayItem<S16Traits> item(1);
    EXPECT_EQ(item.SetVal({1, 2}, *info), IfErrSizeOutOfRange);
    EXPECT_TRUE(item.IsEmpty());
    item.SetVal({1, 2, 3, 100}); // a size error hides what the elements are
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemNumericArrayValidationMaxSize", "speed", "3"}));
}

TEST(NumericArrayInfo, LosesElementBoundsInDeepCopiesAlone)
{
    auto const info = MakeInfo<NumericArrayInfo<U8Traits>>();
    info->SetMinSize(2);
    info->SetDefault({1, 2});
    info->SetMin(3);
    info->SetMax(4);
    auto const deep = Hold(info->DeepCopy(9, "other"));
    EXPECT_EQ(deep->GetMin(), 0);
    EXPECT_EQ(deep->GetMax(), 255);
    EXPECT_TRUE(info->IsEqualBounds(deep)); // element bounds are not compared
    NumericArrayInfo<U8Traits> const copy(*info);
    EXPECT_EQ(copy.GetMin(), 3);
    NumericArrayInfo<U8Traits> target(1, "target", {});
    target = *info;
    EXPECT_EQ(target.GetMax(), 4);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: NumericArray\nnumericType: U8\nminSize: 2\n"
                             "maxSize: 2147483647\ndefaultSize: 2\n");
    EXPECT_EQ(Printed(*info), "array size: 2 <= 2 <= 2147483647");
}

TEST(NumericArrayInfo, AssignsByTheBytesOfTheDefault)
{
    auto const from = MakeInfo<NumericArrayInfo<U32Traits>>();
    from->SetMaxSize(9);
    from->SetDefault({1, 70000, 3});
    from->SetMin(300);
    from->SetMax(400);
    auto const to = MakeInfo<NumericArrayInfo<FloatTraits>>();
    EXPECT_EQ(Assign(*to, from), (Outcome{0, 1}));
    EXPECT_EQ(to->GetDefault(), (List<FloatTraits>{1, 70000, 3}));
    EXPECT_EQ(to->GetMin(), 300);
    EXPECT_EQ(to->GetMax(), 400);
    auto const bytes = MakeInfo<NumericArrayInfo<U8Traits>>();
    bytes->SetDefault({1, 2, 3, 4, 5});
    auto const words = MakeInfo<NumericArrayInfo<U16Traits>>();
    EXPECT_EQ(Assign(*words, bytes).code, 0);
    EXPECT_EQ(words->GetDefault(), (List<U16Traits>{1, 2}));
    EXPECT_EQ(Assign(*bytes, words).code, 0);
    EXPECT_EQ(bytes->GetDefault(), (List<U8Traits>{1, 2, 0, 0})); // beyond the source's elements

    // A difference within the tolerance is stored here, other than in a value, and not told.
    auto const near = MakeInfo<NumericArrayInfo<FloatTraits>>();
    auto const zero = MakeInfo<NumericArrayInfo<FloatTraits>>();
    near->SetDefault({1e-11F});
    zero->SetDefault({0});
    EXPECT_EQ(Assign(*zero, near), (Outcome{0, 0}));
    EXPECT_EQ(zero->GetDefault(), (List<FloatTraits>{1e-11F}));
}

TEST(NumericArrayItem, TakesAListByItsBytes)
{
    NumericArrayItem<U16Traits> words(1);
    EXPECT_EQ(Assign(words, MakeList<U8Traits>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), 77), (Outcome{0, 1}));
    EXPECT_EQ(words.GetVal(), (List<U16Traits>{1, 2, 3, 4, 5}));
    EXPECT_EQ(Assign(words, MakeList<U32Traits>({1, 70000, 3})), (Outcome{0, 1}));
    EXPECT_EQ(words.GetVal(), (List<U16Traits>{1, 4464, 3, 0, 0, 0}));
    words.Val()[5] = 9; // a place beyond the source's elements is cleared as well
    EXPECT_EQ(Assign(words, MakeList<U32Traits>({1, 70000, 3})), (Outcome{0, 1}));
    EXPECT_EQ(words.GetVal().back(), 0);

    auto const self = MakeList<S64Traits>({1, -2, 3});
    EXPECT_EQ(Assign(*self, self), (Outcome{0, 0}));
    EXPECT_EQ(self->GetVal(), (List<S64Traits>{1, -2, 3}));
}

TEST(NumericArrayItem, ConvertsListsOfEveryElementType)
{
    ForAllTraits([]<typename To>(To) {
        ForAllTraits([]<typename From>(From) {
            // Enough elements for the widest target, odd so that no loop ends on a round number.
            List<From> values;
            for (int i = 0; i < 8 * 37; ++i)
                values.push_back(static_cast<typename From::T>(i % 100));
            NumericArrayItem<To> item(1);
            EXPECT_EQ(Assign(item, MakeList<From>(values)), (Outcome{0, 1}));
            std::size_t const count = values.size() * sizeof(typename From::T) / sizeof(typename To::T);
            ASSERT_EQ(item.GetSize(), count);
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_EQ(item.Val()[i], i < values.size() ? static_cast<typename To::T>(i % 100) : 0) << i;
            EXPECT_EQ(Assign(item, MakeList<From>(values)), (Outcome{0, 0}));
            values[36] = 101;
            bool const taken = count > 36;
            EXPECT_EQ(Assign(item, MakeList<From>(values)), (Outcome{0, taken}));
        });
    });
}

TEST(NumericArrayItem, KeepsElementsThatAreNearEnough)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    auto const item = MakeList<FloatTraits>({0, 0, 1});
    EXPECT_EQ(Assign(*item, MakeList<FloatTraits>({1e-11F, 0, 1})), (Outcome{0, 0}));
    EXPECT_EQ(item->GetVal()[0], 0);
    EXPECT_EQ(Assign(*item, Hold(NumericItem<FloatTraits>::Create(2, 1e-11F)), 1), (Outcome{0, 0}));
    EXPECT_EQ(item->GetVal()[1], 0);
    EXPECT_TRUE(item->IsEqualValue(MakeList<FloatTraits>({1e-11F, 0, 1})));

    // A NaN is unequal to everything: it is stored and told each time.
    EXPECT_EQ(Assign(*item, MakeList<FloatTraits>({nan, 0, 1})), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, MakeList<FloatTraits>({nan, 0, 1})), (Outcome{0, 1}));
    EXPECT_FALSE(item->IsEqualValue(item));
    auto const info = MakeInfo<NumericArrayInfo<FloatTraits>>();
    item->SetVal({nan, 1});
    EXPECT_EQ(Validated(*item, info), Texts{});
    item->SetVal({1, 1e-39F});
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemNumericValidationMin", "speed", "1.17549e-38"}));
}

TEST(NumericArrayItem, ReadsNoPartOfAnElement)
{
    auto const item = MakeList<U16Traits>({7});
    EXPECT_EQ(Read(*item, {2, 3, 3, {1, 2, 3}}), IfErrInvalidArgument);
    EXPECT_EQ(item->GetVal(), (List<U16Traits>{7}));
    for (auto const& [text, message] :
         {std::pair("", "arraySize"), std::pair("-", "arraySize"), std::pair("2 1", "arrayItem"),
          std::pair("1 x", "arrayItem"), std::pair("4000000000 1", "arrayItem")})
    {
        EXPECT_EQ(ReadText(*item, text), std::pair(false, "Error parsing " + std::string(message) + "\n")) << text;
        EXPECT_EQ(item->GetVal(), (List<U16Traits>{7}));
    }
}

TEST(NumericSparseInfo, KeepsItsDefaultInTheTable)
{
    auto const info = MakeInfo<NumericSparseInfo<U8Traits>>();
    EXPECT_EQ(info->SetDefault(0), IfErrNotInSet);
    std::vector<unsigned char> table{65, 66};
    EXPECT_EQ(info->SetTable(table), 0);
    EXPECT_EQ(info->GetDefault(), 65);
    EXPECT_EQ(info->SetDefault(66), 0);
    EXPECT_EQ(Printed(*info), "65, 66; default=66");
    EXPECT_EQ(Dumped(*info),
              "id: 7\npermission: 4660\nname: speed\ntype: NumericSparse\nnumericType: U8\ndefault: B\n");
    info->GetTable().push_back(0);
    EXPECT_FALSE(info->IsEqualBounds(info));
    EXPECT_EQ(info->MergeBounds(info), IfErrTypeNotAssignable);

    NumericSparseItem<U8Traits> item(3);
    item.SetVal(67, *info);
    EXPECT_EQ(item.GetVal(), 66);
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemIllegalValidatationError", "speed", "NumericSparse(U8)"}));
    table.clear();
    info->SetTable(table);
    EXPECT_EQ(info->GetDefault(), 0);
    EXPECT_EQ(Printed(*info), "; default=0");

    auto const near = MakeInfo<NumericSparseInfo<DoubleTraits>>();
    std::vector<double> values{1.5, std::numeric_limits<double>::quiet_NaN()};
    near->SetTable(values);
    EXPECT_TRUE(near->IsPresent(1.5 + 1e-11));
    EXPECT_FALSE(near->IsPresent(values[1]));
}

TEST(NumericSparse, AssignsAcrossElementTypes)
{
    auto const from = MakeInfo<NumericSparseInfo<U32Traits>>();
    std::vector<unsigned int> table{1, 300};
    from->SetTable(table);
    from->SetDefault(300);
    auto const to = MakeInfo<NumericSparseInfo<U16Traits>>();
    EXPECT_EQ(Assign(*to, from), (Outcome{0, 1}));
    EXPECT_EQ(to->GetTable(), (List<U16Traits>{1, 300, 0, 0}));
    EXPECT_EQ(to->GetDefault(), 300);

    NumericSparseItem<U8Traits> item(1);
    EXPECT_EQ(Assign(item, Hold(NumericSparseItem<S32Traits>::Create(2, 300)), 99), (Outcome{0, 1}));
    EXPECT_EQ(item.GetVal(), 44);
    NumericSparseItem<DoubleTraits> near(1);
    EXPECT_EQ(Assign(near, Hold(NumericSparseItem<DoubleTraits>::Create(2, 1e-11))), (Outcome{0, 0}));
    EXPECT_EQ(near.GetVal(), 1e-11);
}

} // namespace
} // namespace Legacy::If::Test
