#include "TestSupport.h"

#include <Legacy/If/Coordinate.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/Rect.h>
#include <Legacy/If/RectArray.h>

#include <limits>
#include <stdexcept>

namespace Legacy::If::Test {
namespace {

using U16 = U16Traits;
using S32 = S32Traits;
using F = FloatTraits;

template<typename T>
using Flat = typename RectItem<T>::Flat;
using Rects = std::vector<Flat<U16>>;

/// The message of every validation, whatever the value.
constexpr char k_illegal[] = "TypesSystemIllegalValidatationError";

template<typename T>
boost::intrusive_ptr<CoordinateItem<T>> Point(typename T::T x, typename T::T y)
{
    auto item = Make<CoordinateItem<T>>(7U);
    item->SetValX(x);
    item->SetValY(y);
    return item;
}

template<typename T>
boost::intrusive_ptr<RectItem<T>> Rectangle(Flat<T> const& numbers)
{
    auto item = Make<RectItem<T>>(7U);
    item->SetFlat(numbers);
    return item;
}

boost::intrusive_ptr<RectArrayItem<U16>> List(Rects const& rects)
{
    auto item = Make<RectArrayItem<U16>>(7U);
    for (auto const& numbers : rects)
        item->Val().emplace_back(0U).SetFlat(numbers);
    return item;
}

Rects RectsOf(RectArrayItem<U16> const& item)
{
    Rects rects;
    for (auto const& rect : item.Val())
        rects.push_back(rect.GetFlat());
    return rects;
}

template<typename T>
void Bound(boost::intrusive_ptr<NumericInfo<T>> const& axis, typename T::T min, typename T::T defaultVal,
           typename T::T max)
{
    axis->SetMax(max);
    axis->SetMin(min);
    axis->SetDefault(defaultVal);
}

template<typename T>
void Bound(boost::intrusive_ptr<CoordinateInfo<T>> const& point, typename T::T min, typename T::T max)
{
    Bound<T>(point->X(), min, min, max);
    Bound<T>(point->Y(), min, min, max);
}

template<typename T>
class Shapes : public testing::Test
{};
using ShapeTraits = testing::Types<U16, S32, F>;
TYPED_TEST_SUITE(Shapes, ShapeTraits);

TYPED_TEST(Shapes, CopiesNeverShareParts)
{
    using T = TypeParam;
    auto const info = MakeInfo<RectInfo<T>>();
    auto const deep = Hold(info->DeepCopy(9, "other", Permission_t{1}));
    RectInfo<T> assigned(1, "target", {});
    assigned = *info;
    info->BottomRight()->Y()->SetMax(60);
    EXPECT_EQ(assigned.BottomRight()->Y()->GetMax(), T::k_defaultMax);
    EXPECT_EQ(deep->BottomRight()->Y()->GetMax(), T::k_defaultMax);
    EXPECT_EQ(deep->BottomRight()->Y()->GetPermission(), info->GetPermission()); // the part's own, not the copy's

    auto const item = Rectangle<T>({1, 2, 3, 4});
    auto const copy = Hold(item->DeepCopy(9));
    RectItem<T> target(1);
    target = *item;
    RectItem<T> moved(std::move(target));
    item->TopLeft()->SetValX(50);
    moved.BottomRight()->SetValY(60);
    EXPECT_EQ(copy->GetFlat(), (Flat<T>{1, 2, 3, 4}));
    EXPECT_EQ(moved.GetFlat(), (Flat<T>{1, 2, 3, 60}));
    EXPECT_EQ(target.GetFlat(), (Flat<T>{1, 2, 3, 4})); // whole after the move
}

TYPED_TEST(Shapes, AreBoundedPartByPartAndNeverValidate)
{
    using T = TypeParam;
    auto const info = MakeInfo<RectInfo<T>>();
    // What a fresh schema of a float allows begins above 0.
    EXPECT_EQ(Point<T>(0, 0)->WithinBounds(*info->TopLeft()), T::k_numericType != NumericType_t::Float);
    Bound<T>(info->TopLeft()->X(), 10, 10, 20);
    Bound<T>(info->TopLeft()->Y(), 30, 30, 40);
    Bound<T>(info->BottomRight()->X(), 1, 1, 2);
    Bound<T>(info->BottomRight()->Y(), 3, 3, 4);
    auto const item = Rectangle<T>({5, 50, 0, 9});
    item->BoundVal(*info);
    EXPECT_EQ(item->GetFlat(), (Flat<T>{10, 40, 1, 4})); // the corners stay the wrong way round
    EXPECT_TRUE(item->WithinBounds(*info));
    EXPECT_EQ(Validated(*item, info).front(), k_illegal);
    EXPECT_EQ(Validated(*Point<T>(15, 35), info->TopLeft()).front(), k_illegal);
    for (std::size_t place = 0; place < 4; ++place) {
        auto outside = item->GetFlat();
        outside[place] += 20;
        EXPECT_FALSE(Rectangle<T>(outside)->WithinBounds(*info));
        outside[place] = 0;
        EXPECT_FALSE(Rectangle<T>(outside)->WithinBounds(*info));
    }
}

TYPED_TEST(Shapes, MergePartAfterPart)
{
    using T = TypeParam;
    auto const a = MakeInfo<RectInfo<T>>();
    auto const b = MakeInfo<RectInfo<T>>();
    Bound<T>(a->TopLeft(), 1, 10);
    Bound<T>(b->TopLeft(), 5, 20);
    Bound<T>(a->BottomRight(), 1, 10);
    Bound<T>(b->BottomRight()->X(), 5, 5, 20);
    Bound<T>(b->BottomRight()->Y(), 11, 11, 20);
    EXPECT_EQ(a->MergeBounds(b), IfErrBoundsDisjoint);
    std::string const merged = "5 <= 1 <= 10"; // defaults stay where they are
    EXPECT_EQ(Printed(*a), "TLC[x(" + merged + ") y(" + merged + ")] BRC[x(" + merged + ") y(1 <= 1 <= 10)]");
    Bound<T>(b->BottomRight()->Y(), 1, 3, 10);
    EXPECT_EQ(a->MergeBounds(b), 0);
    EXPECT_FALSE(a->IsEqualBounds(b)); // the maximum of the others is 20
    EXPECT_EQ(b->MergeBounds(a), 0);
    EXPECT_TRUE(a->IsEqualBounds(b));
    EXPECT_EQ(a->MergeBounds(a->TopLeft()), IfErrBoundsTypeMismatch);

    Bound<T>(b->TopLeft(), 50, 60); // fails at once: nothing behind it is touched
    Bound<T>(b->BottomRight(), 6, 7);
    std::string const before = Printed(*a);
    EXPECT_EQ(a->MergeBounds(b), IfErrBoundsDisjoint);
    EXPECT_EQ(Printed(*a), before);
}

TYPED_TEST(Shapes, AreAssignedFromTheirOwnKindOfAnyElementType)
{
    using T = TypeParam;
    auto const item = Make<RectItem<T>>(7U);
    auto const narrow = Rectangle<U16>({1, 2, 3, 65535});
    EXPECT_EQ(Assign(*item, narrow, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, narrow), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*item, item), (Outcome{0, 0}));
    EXPECT_EQ(item->GetFlat(), (Flat<T>{1, 2, 3, static_cast<typename T::T>(65535)}));
    EXPECT_EQ(item->IsEqualValue(narrow), T::k_numericType == NumericType_t::U16);
    EXPECT_EQ(Assign(*item->TopLeft(), Point<S32>(9, 8)), (Outcome{0, 1}));
    EXPECT_EQ(Printed(*item->TopLeft()), "(9,  8)");

    auto const info = MakeInfo<RectInfo<T>>();
    auto const source = MakeInfo<RectInfo<S32>>();
    Bound<S32>(source->TopLeft(), 1, 10);
    Bound<S32>(source->BottomRight(), 2, 20);
    EXPECT_EQ(Assign(*info, source), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*info, source), (Outcome{0, 0}));
    EXPECT_EQ(Printed(*info), Printed(*source));
    Bound<S32>(source->BottomRight()->Y(), 2, 3, 20);
    EXPECT_EQ(Assign(*info, source), (Outcome{0, 1}));
}

TEST(ShapeTexts, HaveTheirForms)
{
    auto const info = MakeInfo<RectInfo<U16>>();
    Bound<U16>(info->TopLeft()->X(), 1, 2, 3);
    Bound<U16>(info->TopLeft()->Y(), 4, 5, 6);
    Bound<U16>(info->BottomRight(), 7, 8);
    std::string const topLeft = "x(1 <= 2 <= 3) y(4 <= 5 <= 6)";
    std::string const bottomRight = "x(7 <= 7 <= 8) y(7 <= 7 <= 8)";
    std::string const head = "id: 7\npermission: 4660\nname: speed\ntype: ";
    EXPECT_EQ(Dumped(*info),
              head + "Rectangle\nnumericType: U16\ntopLeft: " + topLeft + "\ntopRight: " + bottomRight + '\n');
    EXPECT_EQ(Printed(*info), "TLC[" + topLeft + "] BRC[" + bottomRight + ']');
    auto const point = MakeInfo<CoordinateInfo<U16>>();
    *point = *info->TopLeft();
    EXPECT_EQ(Dumped(*point), head + "Coordinate\nnumericType: U16\nX 1 <= 2 <= 3\nY 4 <= 5 <= 6\n");
    EXPECT_EQ(Dumped(*Hold(point->CreateItem())), "id: 7\ntype: Coordinate\nvalue: (2,  5)\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Rectangle\nvalue: (TLC(2,  5),  BRC(7,  7))\n");

    EXPECT_EQ(Validated(*item, info), (Texts{k_illegal, "speed", "Rectangle(U16)"}));
    EXPECT_EQ(Validated(*Point<F>(1, 1), point), (Texts{k_illegal, "speed", "Coordinate(Float)"}));

    // What was read before a failure stays.
    EXPECT_EQ(ReadText(*item, "1 x").second, "Error parsing numericItem\nError parsing Y\nError parsing TopLeft\n");
    EXPECT_EQ(Printed(*item), "(TLC(1,  5),  BRC(7,  7))");
    EXPECT_EQ(ReadText(*item, "3 4").second, "Error parsing numericItem\nError parsing X\nError parsing BottomRight\n");
    EXPECT_EQ(Printed(*item), "(TLC(3,  4),  BRC(7,  7))");
    EXPECT_EQ(ReadText(*item, "1 2 3 4"), std::pair(true, std::string()));
    EXPECT_EQ(Printed(*item), "(TLC(1,  2),  BRC(3,  4))");
}

TEST(ShapeRecords, HaveTheirBytesAndSizes)
{
    struct Case
    {
        ItemPtr item;
        unsigned char type;
        unsigned char numericType;
        Bytes payload;
        bool takesMore; ///< whether more bytes than these are read
    };
    // In this form of a float the bytes of its integer part are swapped: 1.5 stands as 16777216.
    for (auto const& [item, type, numericType, payload, takesMore] :
         {Case{Point<U16>(0x0102, 3), 0x81, 3, {1, 2, 0, 3}, false},
          Case{Point<S32>(-2, 0x01020304), 0x81, 6, {255, 255, 255, 254, 1, 2, 3, 4}, false},
          Case{Point<F>(1.5F, 255), 0x81, 9, {0, 0, 0x80, 0x4B, 0, 0, 0x7F, 0x4F}, false},
          Case{Rectangle<U16>({1, 2, 3, 0x0405}), 0x82, 3, {0, 1, 0, 2, 0, 3, 4, 5}, true},
          Case{List({{1, 2, 3, 4}}), 0x8d, 3, {0, 1, 0, 2, 0, 3, 0, 4}, false}})
    {
        Record const record = RecordOf(*item);
        EXPECT_EQ(record.type, type);
        EXPECT_EQ(record.numericType, numericType);
        EXPECT_EQ(record.payload, payload);
        auto const target = Rebuild(record).second;
        std::string const before = Dumped(*target);
        for (std::size_t size = 1; size < 2 * payload.size(); ++size) {
            Record other = record;
            other.payload.resize(size);
            bool const fits = size == payload.size() || (takesMore && size > payload.size());
            EXPECT_EQ(Read(*target, other), fits ? 0 : IfErrInvalidArgument) << size;
            EXPECT_EQ(Dumped(*target), before);
        }
    }
}

TEST(Rect, CountsBothEdgesAndWraps)
{
    EXPECT_EQ(Rectangle<U16>({10, 20, 19, 29})->GetWidth(), 10);
    EXPECT_EQ(Rectangle<U16>({5, 5, 2, 5})->GetWidth(), 65534);
    EXPECT_EQ(Rectangle<U16>({0, 0, 65535, 0})->GetWidth(), 0);
    constexpr int max = std::numeric_limits<int>::max();
    constexpr int min = std::numeric_limits<int>::min();
    EXPECT_EQ(Rectangle<S32>({min, max, max, min})->GetWidth(), 0);
    EXPECT_EQ(Rectangle<S32>({min, max, max, min})->GetHeight(), 2);
    EXPECT_EQ(Rectangle<F>({1.5F, 4, 3, 1})->GetWidth(), 2.5F);
    EXPECT_EQ(Rectangle<F>({1.5F, 4, 3, 1})->GetHeight(), -2.0F);
}

TEST(Rect, TakesCornersFromTheDefaultsOfASchema)
{
    auto const corner = MakeInfo<CoordinateInfo<U16>>();
    Bound<U16>(corner, 5, 9);
    auto const item = Rectangle<U16>({1, 2, 3, 4});
    item->SetValTopLeft(corner);
    EXPECT_EQ(item->GetFlat(), (Flat<U16>{5, 5, 3, 4}));
    item->SetValBottomRight(corner);
    EXPECT_EQ(item->GetFlat(), (Flat<U16>{5, 5, 5, 5}));
}

TEST(Coordinate, ComparesFloatsWithinTheToleranceAndLetsANaNPass)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(Point<F>(0, 0)->IsEqualValue(Point<F>(0, 1e-9F)));
    EXPECT_FALSE(Point<F>(nan, 0)->IsEqualValue(Point<F>(nan, 0)));
    auto const info = MakeInfo<CoordinateInfo<F>>();
    auto const point = Point<F>(nan, nan);
    EXPECT_TRUE(point->WithinBounds(*info));
    point->BoundVal(*info);
    EXPECT_EQ(Printed(*point), "(nan,  nan)");
    // A difference within the tolerance is taken over and not told.
    auto const target = Point<F>(0, 0);
    EXPECT_TRUE(target->IsEqualValue(Point<F>(1e-11F, 0)));
    EXPECT_EQ(Assign(*target, Point<F>(1e-11F, 0)), (Outcome{0, 0}));
    EXPECT_EQ(target->X()->GetVal(), 1e-11F);
}

TEST(RectArrayInfo, SharesTheBoundsOfItsCornersAlone)
{
    auto const info = MakeInfo<RectArrayInfo<U16>>();
    EXPECT_EQ(info->GetMaxSize(), 0x7FFFFFFFU);
    Bound<U16>(info->TopLeft(), 0, 10);
    Bound<U16>(info->BottomRight(), 100, 200);
    info->SetMaxSize(1);
    info->SetMinSize(3);
    EXPECT_EQ(info->GetMaxSize(), 3U);
    info->SetMaxSize(2);
    std::string const topLeft = "x(0 <= 0 <= 10) y(0 <= 0 <= 10)";
    std::string const bottomRight = "x(100 <= 100 <= 200) y(100 <= 100 <= 200)";
    EXPECT_EQ(Printed(*info), "size(2, 2) " + topLeft + ",  " + bottomRight);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\nnumericType: U16\nminSize: 2\n"
                             "maxSize: 2\ntopLeft: " +
                                 topLeft + "\ntopRight: " + bottomRight + '\n');

    auto const copy = Hold(info->DeepCopy(9));
    copy->SetMaxSize(50);
    EXPECT_TRUE(copy->IsEqualBounds(info));
    EXPECT_EQ(copy->MergeBounds(info), 0);
    EXPECT_EQ(copy->GetMaxSize(), 50U);
    Bound<U16>(copy->TopLeft(), 1, 2);
    EXPECT_FALSE(copy->IsEqualBounds(info));
    Bound<U16>(copy->BottomRight(), 1, 2);
    EXPECT_EQ(info->MergeBounds(copy), IfErrBoundsDisjoint);
    EXPECT_EQ(info->TopLeft()->X()->GetMax(), 2); // merged before the failure
}

TEST(RectArrayInfo, IsAssignedFromItsKindAndFromListsOfNumbers)
{
    auto const info = MakeInfo<RectArrayInfo<U16>>();
    auto const source = MakeInfo<RectArrayInfo<U16>>();
    Bound<U16>(source->BottomRight(), 1, 10);
    EXPECT_EQ(Assign(*info, source), (Outcome{0, 1}));
    source->SetMaxSize(9);
    EXPECT_EQ(Assign(*info, source), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*info, source), (Outcome{0, 0}));
    EXPECT_EQ(Printed(*info), Printed(*source));

    // Sizes and a default that are no whole rectangles.
    auto const numbers = MakeInfo<NumericArrayInfo<S32>>();
    std::string const before = Printed(*info);
    numbers->SetMaxSize(12);
    EXPECT_EQ(Assign(*info, numbers), (Outcome{IfErrInvalidArgument, -1}));
    numbers->SetMinSize(4);
    numbers->SetMaxSize(13);
    EXPECT_EQ(Assign(*info, numbers), (Outcome{IfErrInvalidArgument, -1}));
    numbers->SetMaxSize(12);
    numbers->SetDefault({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(Assign(*info, numbers), (Outcome{IfErrInvalidArgument, -1}));
    EXPECT_EQ(Printed(*info), before);
    auto const noDefault = MakeInfo<NumericArrayInfo<S32>>();
    noDefault->SetMinSize(4);
    noDefault->SetMaxSize(12);
    EXPECT_EQ(Assign(*info, noDefault), (Outcome{0, 1}));
    EXPECT_EQ(Printed(*info), "size(1, 3) " + before.substr(before.find(") ") + 2));

    // Every axis ends at the source's least number, its default with it; the greatest plays no part.
    numbers->SetDefault({60, 70, 80, 90});
    numbers->SetMin(50);
    numbers->SetMax(100);
    EXPECT_EQ(Assign(*info, numbers), (Outcome{0, 1}));
    std::string const axes = "x(50 <= 50 <= 50) y(50 <= 50 <= 50)";
    EXPECT_EQ(Printed(*info), "size(1, 3) " + axes + ",  " + axes);
    info->TopLeft()->X()->SetMax(99);
    EXPECT_EQ(Assign(*info, numbers), (Outcome{0, 0})); // bounds are no change
    EXPECT_EQ(info->TopLeft()->X()->GetMax(), 50);
}

TEST(NumericArrayInfo, IsAssignedFromASchemaOfRectangles)
{
    auto const rects = MakeInfo<RectArrayInfo<U16>>();
    auto const whole = MakeInfo<NumericArrayInfo<U16>>();
    EXPECT_EQ(Assign(*whole, rects), (Outcome{0, 1}));
    EXPECT_EQ(whole->GetMinSize(), 0U);
    EXPECT_EQ(whole->GetMaxSize(), 4294967292U);

    Bound<U16>(rects->TopLeft()->X(), 5, 6, 7);
    Bound<U16>(rects->TopLeft()->Y(), 3, 4, 300);
    Bound<U16>(rects->BottomRight(), 8, 9);
    rects->SetMinSize(0x40000001);
    auto const info = MakeInfo<NumericArrayInfo<U8Traits>>();
    EXPECT_EQ(Assign(*info, rects), (Outcome{0, 1}));
    EXPECT_EQ(info->GetMinSize(), 4U); // 32 bits of the product
    EXPECT_EQ(info->GetDefault(), (std::vector<unsigned char>{6, 4, 8, 8}));
    EXPECT_EQ(info->GetMin(), 3);
    EXPECT_EQ(info->GetMax(), 44); // 300, converted
    EXPECT_EQ(Assign(*info, rects), (Outcome{0, 0}));
}

TEST(NumericArrayItem, TakesRectanglesInFlatOrder)
{
    NumericArrayItem<U16> item(1);
    auto const rect = Rectangle<S32>({-1, 70000, 3, 4});
    EXPECT_EQ(Assign(item, rect, 2), (Outcome{0, 1}));
    EXPECT_EQ(Assign(item, rect, 2), (Outcome{0, 0}));
    EXPECT_EQ(Assign(item, Rectangle<F>({1.9F, 2.9F, 3.9F, 4.9F}), 1), (Outcome{0, 1}));
    EXPECT_EQ(item.GetVal(), (std::vector<unsigned short>{0, 1, 2, 3, 4, 4}));
    EXPECT_EQ(Assign(item, List({{1, 2, 3, 4}}), 99), (Outcome{0, 1}));
    EXPECT_EQ(item.GetVal(), (std::vector<unsigned short>{1, 2, 3, 4}));
    // Compared exactly: the tolerance of other sources plays no part.
    NumericArrayItem<F> floats(1);
    floats.SetVal({1e-11F, 0, 0, 0});
    EXPECT_EQ(Assign(floats, Rectangle<U16>({0, 0, 0, 0})), (Outcome{0, 1}));
    EXPECT_EQ(floats.Val()[0], 0.0F);
}

TEST(RectArrayItem, TakesNumbersRectanglesAndLists)
{
    auto const item = List({{9, 9, 9, 9}});
    NumericArrayItem<F> numbers(1);
    numbers.SetVal({1.5F, 2, 3, -1, 70000.5F, 6, 7, 8});
    EXPECT_EQ(Assign(*item, Hold(numbers.DeepCopy()), 99), (Outcome{0, 1}));
    numbers.Val().pop_back();
    EXPECT_EQ(Assign(*item, Hold(numbers.DeepCopy())), (Outcome{IfErrInvalidArgument, -1}));
    auto const rect = Rectangle<S32>({1, 2, 3, 65536 + 4});
    EXPECT_EQ(Assign(*item, rect, 3), (Outcome{0, 1}));
    EXPECT_EQ(RectsOf(*item), (Rects{{1, 2, 3, 65535}, {4464, 6, 7, 8}, {0, 0, 0, 0}, {1, 2, 3, 4}}));
    EXPECT_EQ(Assign(*item, rect, 3), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*item, Rectangle<U16>({0, 0, 0, 0}), 4), (Outcome{0, 1})); // growing is a change
    EXPECT_EQ(item->Val()[3].GetId(), 0U);

    auto const list = List({{1, 1, 1, 1}, {2, 2, 2, 2}});
    EXPECT_EQ(Assign(*item, list, 9), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, item), (Outcome{0, 0}));
    item->Val()[1].BottomRight()->SetValY(3);
    EXPECT_EQ(list->Val()[1].GetFlat()[3], 2); // nothing is shared
    EXPECT_FALSE(item->IsEqualValue(list));
    for (unsigned int const index : {214748364U, 0xFFFFFFFFU})
        EXPECT_THROW(item->AssignArrayValue(rect, index, nullptr), std::length_error);
    EXPECT_EQ(item->GetSize(), 2U);

    // A rectangle of its own, held by the list and not by this pointer, while the list grows.
    item->Val().shrink_to_fit();
    ItemPtr own(&item->Val()[0], false);
    EXPECT_EQ(item->AssignArrayValue(own, 2, nullptr), 0);
    own.detach();
    EXPECT_EQ(RectsOf(*item), (Rects{{1, 1, 1, 1}, {2, 2, 2, 3}, {1, 1, 1, 1}}));
}

TEST(RectArrayItem, ElementsStayWholeAsTheListMovesThem)
{
    auto const item = List({});
    for (unsigned short i = 0; i < 100; ++i)
        item->Val().push_back(*Rectangle<U16>({i, i, i, i}));
    item->Val().erase(item->Val().begin());
    std::swap(item->Val()[0], item->Val()[1]);
    auto const deep = Hold(item->DeepCopy(9));
    deep->Val()[0].TopLeft()->SetValX(50);
    for (unsigned short i = 0; i < 99; ++i)
        EXPECT_EQ(item->Val()[i].GetFlat()[0], i == 0 ? 2 : i == 1 ? 1 : i + 1);
}

TEST(RectArrayItem, IsBoundedByTheTopLeftSchemaAlone)
{
    auto const info = MakeInfo<RectArrayInfo<U16>>();
    Bound<U16>(info->TopLeft(), 0, 10);
    Bound<U16>(info->BottomRight(), 100, 200);
    info->SetMinSize(3); // no matter here
    auto const item = List({{1, 1, 150, 150}, {20, 5, 150, 150}});
    EXPECT_FALSE(item->WithinBounds(*info));
    item->Val()[1].TopLeft()->SetValX(10);
    EXPECT_TRUE(item->WithinBounds(*info));
    item->BoundVal(*info);
    EXPECT_EQ(RectsOf(*item), (Rects{{1, 1, 10, 10}, {10, 5, 10, 10}}));
    EXPECT_FALSE(item->WithinBounds(*info));

    EXPECT_EQ(item->SetVal(item->GetVal(), *info), IfErrSizeOutOfRange);
    info->SetMinSize(0);
    info->SetMaxSize(1);
    EXPECT_EQ(item->SetVal(item->GetVal(), *info), IfErrSizeOutOfRange);
    EXPECT_EQ(item->GetSize(), 2U);
    EXPECT_EQ(item->SetVal(List({{1, 2, 3, 4}})->GetVal(), *info), 0);
    EXPECT_EQ(RectsOf(*item), (Rects{{1, 2, 3, 4}}));
    EXPECT_EQ(Validated(*item, info), (Texts{k_illegal, "speed", "Invalid(U16)"}));
}

TEST(RectArrayItem, LooksForTheEndAloneBehindItsCount)
{
    EXPECT_EQ(Printed(*List({})), "()");
    EXPECT_EQ(Dumped(*List({{1, 2, 3, 4}, {5, 6, 7, 8}})),
              "id: 7\ntype: Invalid\nvalue: ((TLC(1,  2),  BRC(3,  4)), (TLC(5,  6),  BRC(7,  8)))\n");
    struct Case
    {
        char const* text;
        std::string message;
        Rects rects;
    };
    Rects const old{{9, 9, 9, 9}};
    std::string const atX = "Error parsing numericItem\nError parsing X\nError parsing TopLeft\n";
    for (Case const& c : {Case{"1 1 2 3 4", "", {{1, 2, 3, 4}}}, Case{"0 ", "", {}},
                          Case{"x", "", {}}, // no number, but no end either: taken as 0
                          Case{"0", "Error parsing arraySize\n", old}, Case{"", "Error parsing arraySize\n", old},
                          Case{"2 1 2 3 4 ", atX, old}, Case{"214748364 ", atX, old}})
    {
        auto const item = List(old);
        EXPECT_EQ(ReadText(*item, c.text), std::pair(c.message.empty(), c.message)) << c.text;
        EXPECT_EQ(RectsOf(*item), c.rects) << c.text;
    }
    for (char const* const tooLong : {"214748365 ", "4294967295 1 2 3 4", "99999999999 "}) {
        auto const item = List(old);
        try {
            ReadText(*item, tooLong);
            ADD_FAILURE() << tooLong;
        } catch (std::length_error const& error) {
            EXPECT_STREQ(error.what(), "vector<T> too long");
        }
        EXPECT_EQ(RectsOf(*item), old);
    }
}

} // namespace
} // namespace Legacy::If::Test
