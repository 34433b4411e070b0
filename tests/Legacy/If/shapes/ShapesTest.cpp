#include "../TestSupport.h"

#include <stdexcept>

namespace Legacy::If::Test {
namespace {

using U16 = U16Traits;
using S32 = S32Traits;
using F = FloatTraits;

template<typename T>
using Flat = typename RectItem<T>::Flat;
/// Least, default and greatest number of each axis, in flat order.
using Axes = std::array<std::array<int, 3>, 4>;

constexpr float k_nan = std::numeric_limits<float>::quiet_NaN();

template<typename T>
boost::intrusive_ptr<RectItem<T>> Rectangle(Flat<T> const& numbers)
{
    auto item = Make<RectItem<T>>(7U);
    item->SetFlat(numbers);
    return item;
}

template<typename T>
boost::intrusive_ptr<CoordinateItem<T>> Point(typename T::T x, typename T::T y)
{
    return Rectangle<T>({x, y})->TopLeft();
}

boost::intrusive_ptr<RectArrayItem<U16>> List(std::vector<Flat<U16>> const& rects)
{
    auto item = Make<RectArrayItem<U16>>(7U);
    for (auto const& numbers : rects)
        item->Val().emplace_back(0U).SetFlat(numbers);
    return item;
}

/// A schema of a rectangle or of a list of them.
template<typename Info>
boost::intrusive_ptr<Info> Bounded(Axes const& axes)
{
    auto info = MakeInfo<Info>();
    auto const* bounds = axes.data();
    auto const& [first, last] = std::pair(info->TopLeft(), info->BottomRight());
    for (auto const& axis : {first->X(), first->Y(), last->X(), last->Y()}) {
        using E = decltype(axis->GetMin());
        auto const& [min, defaultVal, max] = *bounds++;
        axis->SetMax(static_cast<E>(max));
        axis->SetMin(static_cast<E>(min));
        axis->SetDefault(static_cast<E>(defaultVal));
    }
    return info;
}

/// Of a schema of rectangles or of lists of them.
template<typename Info>
void ExpectCornersMergedAndAssigned()
{
    auto const a = Bounded<Info>({{{1, 1, 10}, {1, 1, 10}, {1, 1, 10}, {1, 1, 10}}});
    auto b = Bounded<Info>({{{50, 50, 60}, {6, 6, 7}, {6, 6, 7}, {6, 6, 7}}});
    EXPECT_EQ(a->MergeBounds(b), IfErrBoundsDisjoint); // fails at once: nothing behind it is touched
    b = Bounded<Info>({{{5, 5, 20}, {5, 5, 20}, {5, 5, 20}, {11, 11, 20}}});
    EXPECT_EQ(a->MergeBounds(b), IfErrBoundsDisjoint); // what was merged before stays, and every default
    EXPECT_EQ(Printed(*a->TopLeft()), "x(5 <= 1 <= 10) y(5 <= 1 <= 10)");
    EXPECT_EQ(Printed(*a->BottomRight()), "x(5 <= 1 <= 10) y(1 <= 1 <= 10)");

    b = Bounded<Info>({{{5, 5, 10}, {5, 5, 10}, {5, 5, 10}, {1, 3, 11}}});
    EXPECT_FALSE(a->IsEqualBounds(b)); // the last of the axes
    EXPECT_EQ(b->MergeBounds(a), 0);
    EXPECT_TRUE(a->IsEqualBounds(b));

    using Source = std::conditional_t<std::is_same_v<Info, RectArrayInfo<U16>>, Info, RectInfo<S32>>;
    for (int const last : {2, 3}) { // the default of the last axis is a change as well
        auto const source = Bounded<Source>({{{1, 1, 10}, {1, 1, 10}, {2, 2, 20}, {2, last, 20}}});
        EXPECT_EQ(Assign(*a, source), (Outcome{0, 1}));
        EXPECT_EQ(Printed(*a), Printed(*source));
    }
}

TEST(Corners, AreMergedAndAssignedPartAfterPart)
{
    ExpectCornersMergedAndAssigned<RectInfo<U16>>();
    ExpectCornersMergedAndAssigned<RectInfo<F>>();
    ExpectCornersMergedAndAssigned<RectArrayInfo<U16>>();
}

TEST(Rect, SharesNoCorner)
{
    auto const info = MakeInfo<RectInfo<S32>>();
    auto const deep = Hold(info->DeepCopy(9, "other", Permission_t{1}));
    EXPECT_EQ(deep->BottomRight()->Y()->GetPermission(), info->GetPermission()); // the part's own, not the copy's
    RectInfo<S32> assigned(1, "target", {});
    assigned = *info;
    info->BottomRight()->Y()->SetMax(60);
    EXPECT_FALSE(deep->IsEqualBounds(info) || assigned.IsEqualBounds(info));

    auto const item = Rectangle<S32>({1, 2, 3, 4});
    auto const copy = Hold(item->DeepCopy(9));
    RectItem<S32> target(1);
    target = *item;
    RectItem<S32> moved(std::move(target));
    item->TopLeft()->SetValX(50);
    moved.BottomRight()->SetValY(60);
    EXPECT_EQ(copy->GetFlat(), (Flat<S32>{1, 2, 3, 4}));
    EXPECT_EQ(moved.GetFlat(), (Flat<S32>{1, 2, 3, 60}));
    EXPECT_EQ(target.GetFlat(), (Flat<S32>{1, 2, 3, 4})); // whole after the move
}

TEST(Rect, TakesBoundsAndDefaultsPartByPartAndIsNeverValid)
{
    auto const info = Bounded<RectInfo<S32>>({{{10, 10, 20}, {30, 30, 40}, {1, 1, 2}, {3, 3, 4}}});
    auto const item = Rectangle<S32>({5, 50, 0, 9});
    item->BoundVal(*info);
    EXPECT_EQ(item->GetFlat(), (Flat<S32>{10, 40, 1, 4})); // the corners stay the wrong way round
    EXPECT_TRUE(item->WithinBounds(*info));
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemIllegalValidatationError", "speed", "Rectangle(S32)"}));
    for (std::size_t place = 0; place < 4; ++place) {
        auto numbers = item->GetFlat();
        numbers[place] = 60;
        EXPECT_FALSE(Rectangle<S32>(numbers)->WithinBounds(*info));
    }
    item->SetValTopLeft(info->BottomRight());
    item->SetValBottomRight(info->TopLeft());
    EXPECT_EQ(item->GetFlat(), (Flat<S32>{1, 3, 10, 30}));
    auto const floats = MakeInfo<CoordinateInfo<F>>(); // what it allows begins above 0; a NaN passes
    EXPECT_FALSE(Point<F>(k_nan, 0)->WithinBounds(*floats));
    EXPECT_TRUE(Point<F>(k_nan, 1)->WithinBounds(*floats));
}

TEST(Rect, IsAssignedFromAnyElementTypeAndComparedToItsOwn)
{
    TraitsList<U16, S32, F>::ForEach([]<typename T>(T) {
        auto const item = Make<RectItem<T>>(7U);
        auto const narrow = Rectangle<U16>({1, 2, 3, 65535});
        EXPECT_EQ(Assign(*item, narrow, 99), (Outcome{0, 1}));
        EXPECT_EQ(Assign(*item, narrow), (Outcome{0, 0}));
        EXPECT_EQ(Printed(*item), "(TLC(1,  2),  BRC(3,  65535))");
        EXPECT_EQ(item->IsEqualValue(narrow), T::k_numericType == NumericType_t::U16);
        EXPECT_EQ(Assign(*item->TopLeft(), Point<S32>(1, 9)), (Outcome{0, 1}));
    });
    EXPECT_TRUE(Point<F>(0, 0)->IsEqualValue(Point<F>(1e-11F, 0)));
    EXPECT_FALSE(Point<F>(0, 0)->IsEqualValue(Point<F>(0, 1e-9F)));
}

TEST(ShapeTexts, HaveTheirForms)
{
    auto const info = Bounded<RectInfo<U16>>({{{1, 2, 3}, {4, 5, 6}, {7, 7, 8}, {7, 7, 8}}});
    std::string const topLeft = "x(1 <= 2 <= 3) y(4 <= 5 <= 6)";
    std::string const bottomRight = "x(7 <= 7 <= 8) y(7 <= 7 <= 8)";
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Rectangle\nnumericType: U16\ntopLeft: " +
                                 topLeft + "\ntopRight: " + bottomRight + '\n');
    EXPECT_EQ(Printed(*info), "TLC[" + topLeft + "] BRC[" + bottomRight + ']');
    EXPECT_EQ(Dumped(*info->TopLeft()), "id: 0\npermission: 4660\nname: \ntype: Coordinate\nnumericType: U16\n"
                                        "X 1 <= 2 <= 3\nY 4 <= 5 <= 6\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Dumped(*Hold(info->TopLeft()->CreateItem())), "id: 0\ntype: Coordinate\nvalue: (2,  5)\n");
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Rectangle\nvalue: (TLC(2,  5),  BRC(7,  7))\n");

    // What was read before a failure stays.
    EXPECT_EQ(ReadText(*item, "1 x").second, "Error parsing numericItem\nError parsing Y\nError parsing TopLeft\n");
    EXPECT_EQ(Printed(*item), "(TLC(1,  5),  BRC(7,  7))");
    EXPECT_EQ(ReadText(*item, "3 4").second, "Error parsing numericItem\nError parsing X\nError parsing BottomRight\n");
    EXPECT_EQ(Printed(*item), "(TLC(3,  4),  BRC(7,  7))");
}

TEST(Rect, IgnoresWhatFollowsItInARecord)
{
    for (auto const& [item, takesMore] :
         {std::pair(ItemPtr(Point<S32>(-2, 1)), false), std::pair(ItemPtr(Rectangle<U16>({1, 2, 3, 4})), true),
          std::pair(ItemPtr(List({{1, 2, 3, 4}})), false)})
    {
        Record record = RecordOf(*item);
        record.payload.push_back(0);
        EXPECT_EQ(Rebuild(record).first, takesMore ? 0 : IfErrInvalidArgument);
    }
}

TEST(Rect, CountsBothEdgesAndWraps)
{
    auto const size = [](auto const& rect) { return std::pair(rect->GetWidth(), rect->GetHeight()); };
    EXPECT_EQ(size(Rectangle<U16>({5, 20, 2, 29})), (std::pair<unsigned short, unsigned short>(65534, 10)));
    EXPECT_EQ(size(Rectangle<S32>({-2147483647 - 1, 2147483647, 2147483647, -2147483647 - 1})), std::pair(0, 2));
    EXPECT_EQ(size(Rectangle<F>({1.5F, 4, 3, 1})), std::pair(2.5F, -2.0F));
    EXPECT_EQ(Rectangle<F>({-1, 0, 16777216, 0})->GetWidth(), 16777216.0F); // each step in the precision of a float
}

TEST(RectArrayInfo, SharesTheBoundsOfItsCornersAlone)
{
    auto const info = Bounded<RectArrayInfo<U16>>({{{0, 0, 10}, {1, 1, 11}, {100, 100, 200}, {101, 101, 201}}});
    info->SetMaxSize(1);
    EXPECT_EQ(info->SetMinSize(2), 0); // and the greatest with it
    std::string const corners = "x(0 <= 0 <= 10) y(1 <= 1 <= 11),  x(100 <= 100 <= 200) y(101 <= 101 <= 201)";
    EXPECT_EQ(Printed(*info), "size(2, 2) " + corners);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\nnumericType: U16\nminSize: 2\n"
                             "maxSize: 2\ntopLeft: x(0 <= 0 <= 10) y(1 <= 1 <= 11)\n"
                             "topRight: x(100 <= 100 <= 200) y(101 <= 101 <= 201)\n");
    auto const copy = Hold(info->DeepCopy(9));
    copy->SetMaxSize(50);
    EXPECT_TRUE(copy->IsEqualBounds(info));
    EXPECT_EQ(copy->MergeBounds(info), 0);
    EXPECT_EQ(Printed(*copy), "size(2, 50) " + corners);
    EXPECT_EQ(Assign(*info, copy), (Outcome{0, 1})); // the sizes are a change
}

TEST(RectArrayInfo, IsAssignedFromListsOfNumbers)
{
    std::string const initial = "x(0 <= 0 <= 65535) y(0 <= 0 <= 65535),  x(0 <= 0 <= 65535) y(0 <= 0 <= 65535)";
    std::string const before = "size(0, 2147483647) " + initial;
    // Every axis ends at the source's least number, its default with it; the greatest plays no part.
    std::string const axes = "x(50 <= 50 <= 50) y(50 <= 50 <= 50),  x(50 <= 50 <= 50) y(50 <= 50 <= 50)";
    for (auto const& [minSize, maxSize, numbers, printed] :
         {std::tuple(1U, 12U, 0U, before), std::tuple(4U, 13U, 0U, before), std::tuple(4U, 12U, 8U, before),
          std::tuple(4U, 12U, 0U, "size(1, 3) " + initial), std::tuple(4U, 12U, 4U, "size(1, 3) " + axes)})
    {
        auto const info = MakeInfo<RectArrayInfo<U16>>();
        auto const source = MakeInfo<NumericArrayInfo<S32>>();
        source->SetMin(65536 + 50);
        source->SetMax(65536 + 100);
        source->SetMaxSize(maxSize);
        source->SetMinSize(minSize);
        EXPECT_EQ(source->SetDefault(std::vector(numbers, 60)), numbers == 0 ? IfErrSizeOutOfRange : 0);
        bool const taken = printed != before;
        EXPECT_EQ(Assign(*info, source), (taken ? Outcome{0, 1} : Outcome{IfErrInvalidArgument, -1}));
        EXPECT_EQ(Printed(*info), printed);
        info->TopLeft()->X()->SetMax(99);
        EXPECT_EQ(Assign(*info, source).changed, taken ? 0 : -1); // bounds are no change
        source->SetMin(65536 + 51);
        EXPECT_EQ(Assign(*info, source).changed, taken ? int{numbers != 0} : -1); // which take the default along
    }
}

TEST(NumericArray, TakesRectanglesInFlatOrderAndTheirSchemas)
{
    auto const rects = Bounded<RectArrayInfo<U16>>({{{5, 6, 7}, {3, 4, 300}, {8, 8, 9}, {8, 8, 9}}});
    rects->SetMinSize(0x40000001);
    auto const info = MakeInfo<NumericArrayInfo<U8Traits>>();
    EXPECT_EQ(Assign(*info, rects), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*info, rects), (Outcome{0, 0}));
    EXPECT_EQ(Printed(*info), "array size: 4 <= 4 <= 4294967292"); // 32 bits of the products
    EXPECT_EQ(info->GetDefault(), (std::vector<unsigned char>{6, 4, 8, 8}));
    EXPECT_EQ(info->GetMin(), 3);
    EXPECT_EQ(info->GetMax(), 44); // 300, converted
    auto const floats = MakeInfo<NumericArrayInfo<F>>();
    auto const corners = MakeInfo<RectArrayInfo<U16>>();
    for (int const changed : {1, 0}) { // a 0 below 0 is replaced as well, though no other number
        EXPECT_EQ(Assign(*floats, corners), (Outcome{0, changed}));
        for (float const number : floats->GetDefault())
            EXPECT_FALSE(std::signbit(number));
        EXPECT_FALSE(std::signbit(floats->GetMin()));
        floats->SetDefault({-0.0F, -0.0F, -0.0F, -0.0F});
        floats->SetMin(-0.0F);
    }

    NumericArrayItem<U16> item(1);
    EXPECT_EQ(Assign(item, Rectangle<F>({1.9F, 2.9F, 3.9F, 4.9F}), 1), (Outcome{0, 1}));
    EXPECT_EQ(Assign(item, Rectangle<S32>({-1, 70000, 3, 4}), 4), (Outcome{0, 1}));
    EXPECT_EQ(Printed(item), "(0, 1, 2, 3, 65535, 4464, 3, 4)");
    EXPECT_EQ(Assign(item, List({{1, 2, 3, 4}}), 99), (Outcome{0, 1}));
    EXPECT_EQ(Printed(item), "(1, 2, 3, 4)");
    // Compared exactly: the tolerance of other sources plays no part.
    NumericArrayItem<F> near(1);
    near.SetVal({1e-11F, 0, 0, 0});
    EXPECT_EQ(Assign(near, Rectangle<U16>({0, 0, 0, 0})), (Outcome{0, 1}));
}

TEST(RectArrayItem, TakesNumbersRectanglesAndLists)
{
    auto const item = List({{9, 9, 9, 9}});
    EXPECT_FALSE(item->IsEmpty());
    auto const numbers = Make<NumericArrayItem<F>>(1U);
    numbers->SetVal({1.5F, 2, 3, -1, 70000.5F, 6, 7, 8});
    EXPECT_EQ(Assign(*item, numbers, 99), (Outcome{0, 1}));
    numbers->Val().pop_back();
    EXPECT_EQ(Assign(*item, numbers), (Outcome{IfErrInvalidArgument, -1}));
    auto const rect = Rectangle<S32>({1, 2, 3, 65536 + 4});
    EXPECT_EQ(Assign(*item, rect, 3), (Outcome{0, 1}));
    EXPECT_EQ(Printed(*item), Printed(*List({{1, 2, 3, 65535}, {4464, 6, 7, 8}, {0, 0, 0, 0}, {1, 2, 3, 4}})));
    EXPECT_EQ(Assign(*item, Rectangle<U16>({0, 0, 0, 0}), 4), (Outcome{0, 1})); // growing is a change

    auto const list = List({{1, 1, 1, 1}, {2, 2, 2, 2}});
    EXPECT_EQ(Assign(*item, list, 9), (Outcome{0, 1}));
    item->Val()[1].BottomRight()->SetValY(3);
    EXPECT_FALSE(item->IsEqualValue(list)); // nothing is shared
    for (unsigned int const index : {214748364U, 0xFFFFFFFFU})
        EXPECT_THROW(item->AssignArrayValue(rect, index, nullptr), std::length_error);

    // A rectangle of its own, held by the list and not by this pointer, while the list grows.
    item->Val().shrink_to_fit();
    ItemPtr own(&item->Val()[0], false);
    EXPECT_EQ(item->AssignArrayValue(own, 2, nullptr), 0);
    own.detach();
    EXPECT_EQ(Printed(*item), Printed(*List({{1, 1, 1, 1}, {2, 2, 2, 3}, {1, 1, 1, 1}})));
}

TEST(RectArrayItem, IsBoundedByTheTopLeftSchemaAlone)
{
    auto const info = Bounded<RectArrayInfo<U16>>({{{0, 0, 10}, {0, 0, 10}, {100, 100, 200}, {100, 100, 200}}});
    info->SetMinSize(3); // binds the checked setter alone
    auto const item = List({{1, 1, 150, 150}, {10, 5, 150, 150}});
    EXPECT_TRUE(item->WithinBounds(*info));
    EXPECT_FALSE(List({{1, 1, 150, 150}, {11, 5, 150, 150}})->WithinBounds(*info));
    item->BoundVal(*info);
    EXPECT_EQ(Printed(*item), Printed(*List({{1, 1, 10, 10}, {10, 5, 10, 10}})));
    EXPECT_FALSE(item->WithinBounds(*info));
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemIllegalValidatationError", "speed", "Invalid(U16)"}));
    EXPECT_EQ(List({})->SetVal(item->GetVal(), *info), IfErrSizeOutOfRange);
    info->SetMinSize(2);
    EXPECT_EQ(List({})->SetVal(item->GetVal(), *info), 0);
}

TEST(RectArrayItem, LooksForTheEndAloneBehindItsCount)
{
    auto const item = List({{9, 9, 9, 9}});
    constexpr char noSize[] = "Error parsing arraySize\n";
    constexpr char noX[] = "Error parsing numericItem\nError parsing X\nError parsing TopLeft\n";
    for (auto const& [text, message] :
         {std::pair("0", noSize), std::pair("", noSize), std::pair("2 1 2 3 4 ", noX), std::pair("214748364 ", noX)})
        EXPECT_EQ(ReadText(*item, text), std::pair(false, std::string(message))) << text;
    for (char const* const text : {"214748365 ", "99999999999 "}) {
        try {
            ADD_FAILURE() << ReadText(*item, text).second;
        } catch (std::length_error const& error) {
            EXPECT_STREQ(error.what(), "vector<T> too long");
        }
    }
    EXPECT_EQ(Printed(*item), "((TLC(9,  9),  BRC(9,  9)))");
    EXPECT_TRUE(ReadText(*item, "x").first); // no number, but no end either: taken as 0
    EXPECT_EQ(Printed(*item), "()");
    EXPECT_EQ(ReadText(*item, "2 1 2 3 4 5 6 7 8"), std::pair(true, std::string()));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Invalid\nvalue: ((TLC(1,  2),  BRC(3,  4)), (TLC(5,  6),  BRC(7,  8)))\n");
}

} // namespace
} // namespace Legacy::If::Test
