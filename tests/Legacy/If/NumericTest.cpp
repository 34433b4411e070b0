#include "../../../Legacy/src/If/Convert.h"
#include "../../../Legacy/src/If/TypeText.h"
#include "TestSupport.h"

#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/NumericSparse.h>
#include <Legacy/If/String.h>

#include <cstring>
#include <limits>
#include <tuple>

namespace Legacy::If::Test {
namespace {

template<typename Traits>
struct Numeric : testing::Test
{};

TYPED_TEST_SUITE(Numeric, AllTraits);

/// A least, a default and a greatest value that every element type holds, with room on both sides.
template<typename Traits>
boost::intrusive_ptr<NumericInfo<Traits>> Bounded()
{
    auto const info = MakeInfo<NumericInfo<Traits>>();
    info->SetMin(50);
    info->SetMax(70);
    info->SetDefault(60);
    return info;
}

TYPED_TEST(Numeric, BoundsPushOneAnotherAndTheDefault)
{
    using E = typename TypeParam::T;
    auto const info = MakeInfo<NumericInfo<TypeParam>>();

    info->SetMax(50);
    info->SetMin(100);
    EXPECT_EQ(info->GetMin(), 100);
    EXPECT_EQ(info->GetMax(), 100);
    EXPECT_EQ(info->GetDefault(), 100);
    for (auto const& [asked, stored] : {std::pair(99, 100), std::pair(110, 110), std::pair(121, 120)}) {
        info->SetMax(120);
        info->SetDefault(static_cast<E>(asked));
        EXPECT_EQ(info->GetDefault(), stored);
    }
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
    auto const info = Bounded<TypeParam>();
    auto const lists = MakeInfo<NumericArrayInfo<TypeParam>>();
    lists->SetMin(50);
    lists->SetMax(70);
    for (Case const& c : {Case{Limits::lowest(), -1}, Case{49, -1}, Case{50, 0}, Case{60, 0}, Case{70, 0}, Case{71, 1},
                          Case{Limits::max(), 1}})
    {
        NumericItem<TypeParam> item(3);
        item.SetVal(c.value);
        EXPECT_EQ(item.WithinBounds(*info), c.verdict == 0);
        bool const character = sizeof(E) == 1; // the bound is printed as the character of that code
        Texts const min{"TypesSystemNumericValidationMin", "speed", character ? "2" : "50"};
        Texts const max{"TypesSystemNumericValidationMax", "speed", character ? "F" : "70"};
        Texts const verdict = c.verdict < 0 ? min : c.verdict > 0 ? max : Texts{};
        EXPECT_EQ(Validated(item, info), verdict);
        EXPECT_EQ(MessageOf(item, [&] { return item.ValidateMin(info); }), c.verdict < 0 ? min : Texts{});
        EXPECT_EQ(MessageOf(item, [&] { return item.ValidateMax(info); }), c.verdict > 0 ? max : Texts{});
        for (std::size_t const place : {0U, 1U, 31U, 999U}) { // the first of a list, the last, and between
            NumericArrayItem<TypeParam> list(3);
            list.Val().assign(1000, 60);
            list.Val()[place] = c.value;
            EXPECT_EQ(Validated(list, lists), verdict);
        }
        item.BoundVal(*info);
        EXPECT_EQ(item.GetVal(), c.verdict < 0 ? E{50} : c.verdict > 0 ? E{70} : c.value);
        item.SetVal(c.value, *info);
        EXPECT_EQ(item.GetVal(), c.verdict != 0 ? E{60} : c.value);
    }
}

TYPED_TEST(Numeric, ValidatesAgainstItsOwnElementTypeAlone)
{
    std::string const own = "Numeric(" + std::string(Detail::TypeText(TypeParam::k_numericType)) + ")";
    NumericItem<TypeParam> item(3);
    ForAllTraits([&]<typename Other>(Other) {
        auto const info = MakeInfo<NumericInfo<Other>>();
        info->SetMin(0);
        bool const same = std::is_same_v<Other, TypeParam>;
        std::string const other = "Numeric(" + std::string(Detail::TypeText(Other::k_numericType)) + ")";
        EXPECT_EQ(Validated(item, info),
                  same ? Texts{} : (Texts{"TypesSystemValidateTypeMismatch", "speed", other, own}));
        EXPECT_EQ(Bounded<TypeParam>()->MergeBounds(info), same ? 0 : IfErrBoundsTypeMismatch);
    });
}

TEST(NumericInfo, MergesToTheCommonRange)
{
    struct Case
    {
        int minA, maxA, minB, maxB;
        int code, min, max;
    };
    for (Case const& c : {Case{0, 10, 5, 20, 0, 5, 10}, Case{0, 10, 10, 20, 0, 10, 10}, Case{10, 20, 0, 10, 0, 10, 10},
                          Case{0, 10, 11, 20, IfErrBoundsDisjoint, 0, 10},
                          Case{11, 20, 0, 10, IfErrBoundsDisjoint, 11, 20}, Case{0, 10, 2, 4, 0, 2, 4}})
    {
        auto const a = MakeInfo<NumericInfo<S32Traits>>();
        auto const b = MakeInfo<NumericInfo<S32Traits>>();
        a->SetMin(c.minA);
        a->SetMax(c.maxA);
        a->SetDefault(c.minA);
        b->SetMin(c.minB);
        b->SetMax(c.maxB);
        EXPECT_EQ(a->MergeBounds(b), c.code);
        EXPECT_EQ(a->GetMin(), c.min);
        EXPECT_EQ(a->GetMax(), c.max);
        EXPECT_EQ(a->GetDefault(), c.minA); // also where it lies outside now
    }
}

TEST(NumericInfo, ComparesBoundsWithinTheTolerance)
{
    auto const a = MakeInfo<NumericInfo<DoubleTraits>>();
    auto const b = MakeInfo<NumericInfo<DoubleTraits>>();
    a->SetMax(5);
    b->SetMax(5 + 1e-11);
    b->SetDefault(1);
    EXPECT_TRUE(a->IsEqualBounds(b));
    b->SetMax(5 + 1e-9);
    EXPECT_FALSE(a->IsEqualBounds(b));
}

TEST(NumericInfo, AssignsConvertedBoundsUnclamped)
{
    auto const a = MakeInfo<NumericInfo<U8Traits>>();
    auto const b = MakeInfo<NumericInfo<S32Traits>>();
    b->SetMin(-1);
    b->SetMax(300);
    b->SetDefault(70000);
    EXPECT_EQ(Assign(*a, b), (Outcome{0, 1}));
    EXPECT_EQ(a->GetMin(), 255); // above the greatest value: nothing keeps the order
    EXPECT_EQ(a->GetMax(), 44);
    EXPECT_EQ(a->GetDefault(), 44); // the source's own setter made it 300

    auto const f = MakeInfo<NumericInfo<DoubleTraits>>();
    auto const g = MakeInfo<NumericInfo<DoubleTraits>>();
    g->SetDefault(1e-11);
    EXPECT_EQ(Assign(*f, g), (Outcome{0, 0})); // stored, and too small to tell
    EXPECT_EQ(f->GetDefault(), 1e-11);
}

TEST(NumericItem, ToleratesLittleAndPassesNaN)
{
    auto const f = Hold(NumericItem<FloatTraits>::Create(1, 0.0F));
    auto const info = MakeInfo<NumericInfo<FloatTraits>>();
    EXPECT_EQ(Validated(*f, info), (Texts{"TypesSystemNumericValidationMin", "speed", "1.17549e-38"}));
    f->SetVal(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(Validated(*f, info), Texts{});
    EXPECT_TRUE(f->WithinBounds(*info));
    EXPECT_FALSE(f->IsEqualValue(f)); // a NaN equals nothing

    f->SetVal(0);
    EXPECT_TRUE(f->IsEqualValue(Hold(NumericItem<FloatTraits>::Create(2, 1e-11F))));
    EXPECT_FALSE(f->IsEqualValue(Hold(NumericItem<FloatTraits>::Create(2, 1e-9F))));
}

TEST(NumericItem, ConvertsEveryElementType)
{
    ForAllTraits([]<typename To>(To) {
        ForAllTraits([]<typename From>(From) {
            NumericItem<To> item(1);
            auto const source = Hold(NumericItem<From>::Create(2, std::numeric_limits<typename From::T>::lowest()));
            EXPECT_EQ(Assign(item, source).code, 0);
            EXPECT_EQ(item.GetVal(), (Detail::ConvertTo<typename To::T>(source->GetVal())));
        });
    });
}

TEST(NumericItem, StoresWhatItDoesNotReport)
{
    NumericItem<DoubleTraits> item(1);
    item.SetVal(1.0);
    EXPECT_EQ(Assign(item, Hold(NumericItem<DoubleTraits>::Create(2, 1.0 + 1e-11))), (Outcome{0, 0}));
    EXPECT_EQ(item.GetVal(), 1.0 + 1e-11);
    EXPECT_EQ(Assign(item, Hold(NumericItem<FloatTraits>::Create(2, std::numeric_limits<float>::quiet_NaN()))),
              (Outcome{0, 0}));
    EXPECT_NE(item.GetVal(), item.GetVal());
}

template<typename Traits>
void ExpectRecord(typename Traits::T value, Bytes const& bytes, typename Traits::T readBack)
{
    NumericItem<Traits> number(1);
    NumericSparseItem<Traits> sparse(1);
    NumericArrayItem<Traits> list(1);
    number.SetVal(value);
    sparse.SetVal(value);
    list.SetVal({value, value});
    Bytes twice = bytes;
    twice.insert(twice.end(), bytes.begin(), bytes.end());
    for (auto const& [item, type, payload] :
         {std::tuple<ItemBase*, int, Bytes>(&number, 2, bytes), std::tuple<ItemBase*, int, Bytes>(&sparse, 4, bytes),
          std::tuple<ItemBase*, int, Bytes>(&list, 3, twice)})
    {
        Record const record = RecordOf(*item);
        EXPECT_EQ(record.payload, payload) << value;
        EXPECT_EQ(Read(*item, record), 0);
        Record longer = record;
        longer.payload.push_back(0);
        EXPECT_EQ(Read(*item, longer), sizeof(value) == 1 && type == 3 ? 0 : IfErrInvalidArgument);
        Read(*item, record);
    }
    EXPECT_EQ(number.GetVal(), readBack);
    EXPECT_EQ(sparse.GetVal(), readBack);
    EXPECT_EQ(list.GetVal(), (std::vector{readBack, readBack}));
}

TEST(NumericRecords, HoldIntegersBigEndian)
{
    ExpectRecord<S8Traits>(-2, {0xFE}, -2);
    ExpectRecord<U16Traits>(0x0102, {1, 2}, 0x0102);
    ExpectRecord<S32Traits>(-2, {0xFF, 0xFF, 0xFF, 0xFE}, -2);
    ExpectRecord<U64Traits>(0x0102030405060708, {1, 2, 3, 4, 5, 6, 7, 8}, 0x0102030405060708);
    ExpectRecord<S64Traits>(-2, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}, -2);
}

/// A value, the number whose native bytes stand in the record, and what reading makes of it.
template<typename E>
struct Passed
{
    E value, stored, readBack;
};

template<typename Traits>
void ExpectPassed(std::initializer_list<Passed<typename Traits::T>> cases)
{
    for (auto const& c : cases) {
        Bytes stored(sizeof(c.stored));
        std::memcpy(stored.data(), &c.stored, sizeof(c.stored));
        ExpectRecord<Traits>(c.value, stored, c.readBack);
    }
}

TEST(NumericRecords, PassFloatsThroughAnInteger)
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    ExpectPassed<FloatTraits>({
        {1.5F, 16777216.0F, 1.0F},
        {255.0F, 4278190080.0F, 255.0F},
        {-1.0F, 4294967296.0F, 0.0F}, // 0xFFFFFFFF is no float
        {16909060.0F, 67305984.0F, 131844.0F},
        {3e9F, 6213810.0F, 3e9F},
        {4294967296.0F, 0.0F, 0.0F}, // the low 32 bits
        {-1e30F, 0.0F, 0.0F},
        {inf, 0.0F, 0.0F},
        {std::numeric_limits<float>::quiet_NaN(), 0.0F, 0.0F},
    });
}

TEST(NumericRecords, PassDoublesThroughAnInteger)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr double swapped = 9223372036854775808.0; // 128 with its bytes swapped
    ExpectPassed<DoubleTraits>({
        {1.5, 72057594037927936.0, 1.0},
        {255.0, 18374686479671623680.0, 255.0},
        {-1.0, 18446744073709551616.0, 128.0}, // 2 to the 64 is out of range on the way back
        {16909060.0, 289077004400066560.0, 16909060.0},
        {18446744073709551616.0, 128.0, swapped},
        {-1e300, 128.0, swapped},
        {inf, 128.0, swapped},
        {std::numeric_limits<double>::quiet_NaN(), 128.0, swapped},
    });
}

TYPED_TEST(Numeric, ReadsNumbersAndPrintsCharactersInDumps)
{
    using E = typename TypeParam::T;
    std::string const type(Detail::TypeText(TypeParam::k_numericType));
    auto const info = MakeInfo<NumericInfo<TypeParam>>();
    info->SetMin(65);
    info->SetMax(67);
    bool const character = sizeof(E) == 1;
    EXPECT_EQ(Printed(*info), "65 <= 65 <= 67");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Numeric\nnumericType: " + type +
                                 (character ? "\nmin: A\nmax: C\ndefault: A\n" : "\nmin: 65\nmax: 67\ndefault: 65\n"));
    NumericItem<TypeParam> item(7);
    EXPECT_EQ(ReadText(item, "65"), std::pair(true, std::string()));
    EXPECT_EQ(Dumped(item), std::string("id: 7\ntype: Numeric\nvalue: ") + (character ? "A\n" : "65\n"));
    for (char const* const bad : {"", "x", "99999999999999999999999999999999999999999999999999e999"}) {
        EXPECT_EQ(ReadText(item, bad), std::pair(false, std::string("Error parsing numericItem\n")));
        EXPECT_EQ(item.GetVal(), 65);
    }
    EXPECT_EQ(ReadText(item, " 300 1").first, true); // 8-bit numbers keep the low byte
    EXPECT_EQ(item.GetVal(), character ? E{44} : static_cast<E>(300));

    NumericSparseItem<TypeParam> sparse(7);
    sparse.SetVal(65);
    EXPECT_EQ(Dumped(sparse), std::string("id: 7\ntype: NumericSparse\nvalue: ") + (character ? "A\n" : "65\n"));
    EXPECT_EQ(ReadText(sparse, "x"), std::pair(false, std::string("Error parsing numericSparseItem\n")));

    NumericArrayItem<TypeParam> list(7);
    EXPECT_EQ(ReadText(list, "3 65 66 300"), std::pair(true, std::string()));
    EXPECT_EQ(Printed(list), character ? "(65, 66, 44)" : "(65, 66, 300)");
    EXPECT_EQ(Dumped(list), "id: 7\ntype: NumericArray\nvalue: " + Printed(list) + "\n");
}

} // namespace
} // namespace Legacy::If::Test
