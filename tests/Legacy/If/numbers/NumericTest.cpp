#include "../TestSupport.h"

namespace Legacy::If::Test {
namespace {

template<typename T>
boost::intrusive_ptr<NumericInfo<T>> Bounded(typename T::T min, typename T::T defaultVal, typename T::T max)
{
    auto const info = MakeInfo<NumericInfo<T>>();
    info->SetMax(max);
    info->SetMin(min);
    info->SetDefault(defaultVal);
    return info;
}

TEST(NumericInfo, BoundsPushOneAnotherAndTheDefaultUnlessAssigned)
{
    auto const info = MakeInfo<NumericInfo<S32Traits>>();
    info->SetMax(50);
    info->SetMin(100);
    EXPECT_EQ(Printed(*info), "100 <= 100 <= 100");
    info->SetMax(-5);
    EXPECT_EQ(Printed(*info), "-5 <= -5 <= -5");
    info->SetMax(120);
    for (auto const& [asked, stored] : {std::pair(-6, -5), std::pair(110, 110), std::pair(121, 120)}) {
        info->SetDefault(asked);
        EXPECT_EQ(info->GetDefault(), stored);
    }
    auto const narrow = MakeInfo<NumericInfo<U8Traits>>();
    EXPECT_EQ(Assign(*narrow, Bounded<S32Traits>(-1, 300, 300)), (Outcome{0, 1}));
    EXPECT_EQ(Printed(*narrow), "255 <= 44 <= 44"); // converted, and nothing keeps the order
}

TEST(NumericItem, ValidatesAtItsBounds)
{
    ForAllTraits([]<typename T>(T) {
        using E = typename T::T;
        using Limits = std::numeric_limits<E>;
        auto const info = Bounded<T>(50, 60, 70);
        auto const lists = MakeInfo<NumericArrayInfo<T>>();
        lists->SetMin(50);
        lists->SetMax(70);
        bool const character = sizeof(E) == 1; // the bound is printed as the character of that code
        Texts const below{"TypesSystemNumericValidationMin", "speed", character ? "2" : "50"};
        Texts const above{"TypesSystemNumericValidationMax", "speed", character ? "F" : "70"};
        for (E const value : {Limits::lowest(), E{49}, E{50}, E{70}, E{71}, Limits::max()}) {
            Texts const verdict = value < 50 ? below : value > 70 ? above : Texts{};
            NumericItem<T> item(3);
            item.SetVal(value);
            EXPECT_EQ(item.WithinBounds(*info), verdict.empty());
            EXPECT_EQ(Validated(item, info), verdict);
            EXPECT_EQ(MessageOf(item, [&] { return item.ValidateMin(info); }), value < 50 ? below : Texts{});
            EXPECT_EQ(MessageOf(item, [&] { return item.ValidateMax(info); }), value > 70 ? above : Texts{});
            NumericArrayItem<T> list(3);
            list.SetVal({60, value, verdict == below ? E{71} : verdict == above ? E{49} : E{60}});
            EXPECT_EQ(Validated(list, lists), verdict); // the first in order is told
            item.BoundVal(*info);
            EXPECT_EQ(item.GetVal(), value < 50 ? E{50} : value > 70 ? E{70} : value);
            item.SetVal(value, *info);
            EXPECT_EQ(item.GetVal(), verdict.empty() ? value : E{60});
        }
    });
}

/// A number with an upper bound of its own idea.
struct Odd : NumericItem<S32Traits>
{
    using NumericItem::NumericItem;
    std::shared_ptr<ResultElem const> ValidateMax(InfoPtr const& info) override { return ItemBase::ValidateMax(info); }
};

TEST(NumericItem, ValidatesByTheHalvesOfADerivedClassAndItsOwnElementTypeAlone)
{
    Odd item(3);
    EXPECT_EQ(Validated(item, Bounded<S32Traits>(0, 0, 9)).at(0), "TypesSystemIllegalValidatationError");
    auto const other = Bounded<U8Traits>(0, 0, 9);
    EXPECT_EQ(Validated(*Make<NumericItem<U16Traits>>(3U), other).size(), 4U); // a mismatch
    EXPECT_EQ(Validated(*Make<NumericArrayItem<U16Traits>>(3U), MakeInfo<NumericArrayInfo<S16Traits>>()).size(), 4U);
    EXPECT_FALSE((Bounded<U16Traits>(0, 0, 9)->IsEqualBounds(other)));
    EXPECT_EQ((Bounded<U16Traits>(0, 0, 9)->MergeBounds(other)), IfErrBoundsTypeMismatch);
}

TEST(NumericInfo, MergesToTheCommonRange)
{
    for (auto const& [min, max, code, merged] : {std::tuple(20, 30, 0, "20 <= 10 <= 20"),
                                                 {0, 10, 0, "10 <= 10 <= 10"},
                                                 {21, 30, IfErrBoundsDisjoint, "10 <= 10 <= 20"},
                                                 {0, 9, IfErrBoundsDisjoint, "10 <= 10 <= 20"}})
    {
        auto const info = Bounded<S32Traits>(10, 10, 20);
        EXPECT_EQ(info->MergeBounds(Bounded<S32Traits>(min, min, max)), code);
        EXPECT_EQ(Printed(*info), merged); // the default stays, also where it lies outside now
    }
}

TEST(Numeric, ToleratesLittleAndPassesNaN)
{
    EXPECT_TRUE(Bounded<DoubleTraits>(1, 2, 5)->IsEqualBounds(Bounded<DoubleTraits>(1, 3, 5 + 1e-11)));
    auto const item = Hold(NumericItem<FloatTraits>::Create(1, 0.0F));
    auto const info = MakeInfo<NumericInfo<FloatTraits>>();
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemNumericValidationMin", "speed", "1.17549e-38"}));
    EXPECT_TRUE(item->IsEqualValue(Hold(NumericItem<FloatTraits>::Create(2, 1e-11F))));
    item->SetVal(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(Validated(*item, info), Texts{});
    EXPECT_FALSE(item->IsEqualValue(item)); // a NaN equals nothing

    // What differs too little to be told is stored all the same.
    NumericItem<DoubleTraits> target(1);
    EXPECT_EQ(Assign(target, Hold(NumericItem<DoubleTraits>::Create(2, 1e-11))), (Outcome{0, 0}));
    EXPECT_EQ(target.GetVal(), 1e-11);
    auto const schema = Bounded<DoubleTraits>(-1, 0, 1);
    EXPECT_EQ(Assign(*schema, Bounded<DoubleTraits>(-1, 1e-11, 1)), (Outcome{0, 0}));
    EXPECT_EQ(schema->GetDefault(), 1e-11);

    // Only registers wider than the numbers could tell these apart.
    auto const fine = Hold(NumericItem<DoubleTraits>::Create(2, k_floatTolerance));
    EXPECT_TRUE(fine->IsEqualValue(Hold(NumericItem<DoubleTraits>::Create(2, -5e-27))));
    auto const coarse = Hold(NumericItem<FloatTraits>::Create(2, k_floatTolerance));
    EXPECT_TRUE(coarse->IsEqualValue(Hold(NumericItem<FloatTraits>::Create(2, -1e-20F))));
    coarse->SetVal(16777216);
    EXPECT_EQ(Assign(*coarse, Hold(NumericItem<S32Traits>::Create(2, 16777217))), (Outcome{0, 0}));
}

/// A value, the number whose native bytes stand in the record, and what reading makes of it.
template<typename Traits>
void ExpectRecords(std::initializer_list<std::array<typename Traits::T, 3>> cases)
{
    for (auto const& [value, stored, readBack] : cases) {
        NumericItem<Traits> number(1);
        number.SetVal(value);
        Bytes bytes(sizeof(stored));
        std::memcpy(bytes.data(), &stored, sizeof(stored));
        Record record = RecordOf(number);
        EXPECT_EQ(record.payload, bytes) << value;
        EXPECT_EQ(Read(number, record), 0);
        EXPECT_EQ(number.GetVal(), readBack);
        record.payload.insert(record.payload.end(), bytes.begin(), bytes.end());
        EXPECT_EQ(Read(number, record), IfErrInvalidArgument);
        NumericArrayItem<Traits> list(1);
        record.type = 3;
        EXPECT_EQ(Read(list, record), 0);
        EXPECT_EQ(list.GetVal(), (std::vector{readBack, readBack}));
        record.payload.pop_back();
        EXPECT_EQ(Read(list, record), IfErrInvalidArgument);
        EXPECT_EQ(list.GetSize(), 2U);
    }
}

TEST(NumericRecords, HoldIntegersBigEndianAndPassFloatsThroughThem)
{
    ExpectRecords<S64Traits>({{-2, boost::endian::native_to_big(std::int64_t{-2}), -2}});
    ExpectRecords<FloatTraits>({{1.5F, 16777216.0F, 1.0F},
                                {-1.0F, 4294967296.0F, 0.0F}, // 0xFFFFFFFF is no float
                                {16909060.0F, 67305984.0F, 131844.0F},
                                {3e9F, 6213810.0F, 3e9F},
                                {4294967296.0F, 0.0F, 0.0F}}); // the low 32 bits
    constexpr double swapped = 9223372036854775808.0;          // 128 with its bytes swapped
    ExpectRecords<DoubleTraits>({{1.5, 72057594037927936.0, 1.0},
                                 {-1.0, 18446744073709551616.0, 128.0}, // 2 to the 64 is out of range on the way back
                                 {18446744073709551616.0, 128.0, swapped},
                                 {std::numeric_limits<double>::quiet_NaN(), 128.0, swapped}});
}

TEST(Numeric, ReadsNumbersAndPrintsCharactersInDumps)
{
    ForAllTraits([]<typename T>(T) {
        bool const character = sizeof(typename T::T) == 1;
        auto const info = Bounded<T>(65, 65, 67);
        EXPECT_EQ(Printed(*info), "65 <= 65 <= 67");
        EXPECT_TRUE(Dumped(*info).ends_with(character ? "\nmin: A\nmax: C\ndefault: A\n"
                                                      : "\nmin: 65\nmax: 67\ndefault: 65\n"));
        NumericItem<T> item(7);
        NumericSparseItem<T> sparse(7);
        NumericArrayItem<T> list(7);
        EXPECT_EQ(ReadText(item, "65"), std::pair(true, std::string()));
        EXPECT_TRUE(ReadText(sparse, "65").first);
        std::string const value = character ? "value: A\n" : "value: 65\n";
        EXPECT_EQ(Dumped(item), "id: 7\ntype: Numeric\n" + value);
        EXPECT_EQ(Dumped(sparse), "id: 7\ntype: NumericSparse\n" + value);
        for (char const* const bad : {"", "x", "99999999999999999999999999999999999999999999999999e999"}) {
            EXPECT_EQ(ReadText(item, bad), std::pair(false, std::string("Error parsing numericItem\n")));
            EXPECT_EQ(ReadText(sparse, bad), std::pair(false, std::string("Error parsing numericSparseItem\n")));
            EXPECT_EQ(Printed(item) + Printed(sparse), "6565");
        }
        EXPECT_EQ(ReadText(list, "3 65 66 300"), std::pair(true, std::string())); // 8-bit numbers keep the low byte
        EXPECT_EQ(Dumped(list),
                  std::string("id: 7\ntype: NumericArray\nvalue: (65, 66, ") + (character ? "44)\n" : "300)\n"));
    });
}

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
