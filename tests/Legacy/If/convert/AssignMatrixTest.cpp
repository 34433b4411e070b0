#include "../Families.h"
#include "convert/Convert.h"

/// Which family takes what from which other, refusals included: every cell is run.
namespace Legacy::If::Test {
namespace {

using U16 = U16Traits;

/// A value of a family with ones in it, four where it is a list, an empty one and a schema.
struct Objects
{
    boost::intrusive_ptr<ItemBase> value, empty;
    boost::intrusive_ptr<InfoBase> schema;
};

/// The value is as #Filled makes it, or as it is read from the text.
template<typename Info, typename Item>
Objects Of(std::string const& text = {})
{
    auto const value = Filled<Item>(3);
    EXPECT_TRUE(text.empty() || ReadText(*value, text).first) << text;
    auto const schema = FreshInfo<Info>(7, "speed", {0x1234});
    if constexpr (requires { schema->SetMinSize(4); }) { // sizes that a list of rectangles can take over
        schema->SetMaxSize(8);
        schema->SetMinSize(4);
    }
    return {value, Make<Item>(4U), schema};
}

/// Each family with a letter for each other as its source, in this order; the last four are sources alone.
std::vector<std::pair<std::string, Objects>> Families()
{
    return {
        {"vve..e ... ... ....", Of<BoolInfo, BoolItem>()},
        {"vve.v. ... ... ....", Of<NumericInfo<S32Traits>, NumericItem<S32Traits>>()},
        {"iiv.i. .iv ... ....", Of<NumericArrayInfo<U16>, NumericArrayItem<U16>>("4 1 1 1 1")},
        {"...v.. ... ... ....", Of<NumericSparseInfo<DoubleTraits>, NumericSparseItem<DoubleTraits>>()},
        {"vve.v. ... ... ....", Of<EnumInfo, EnumItem>()},
        {"i....v ... ... ....", Of<BoolArrayInfo, BoolArrayItem>("4 1 1 1 1")},
        {"...... v.. ... ....", Of<CoordinateInfo<S32Traits>, CoordinateItem<S32Traits>>()},
        {"...... .v. ... ....", Of<RectInfo<FloatTraits>, RectItem<FloatTraits>>()},
        {"..v... .iv ... ....", Of<RectArrayInfo<U16>, RectArrayItem<U16>>("4 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1")},
        {"v..... ... ve. ....", Of<StringInfo, StringItem>()},
        {"i..... ... iv. ....", Of<StringArrayInfo, StringArrayItem>("4 1 1 1 1")},
        {"...... ... ..v ....", Of<StringSparseInfo, StringSparseItem>()},
        {"", Of<ColourInfo, ColourItem>()},
        {"", Of<ExtendedInfo, ExtendedItem>()},
        {"", Of<CompositeInfo, CompositeItem>()},
        {"", Of<CollectionInfo, CollectionItem>()},
    };
}

void ExpectCell(Objects const& to, ItemPtr const& source, char letter)
{
    auto const target = Hold(to.empty->DeepCopy());
    std::string const before = Printed(*target);
    auto const assigned = [&](unsigned int index) { return Assign(*target, source, index); };
    switch (letter) {
    case '.': // refused
        EXPECT_EQ(assigned(1000), (Outcome{IfErrTypeNotAssignable, -1}));
        EXPECT_EQ(Printed(*target), before);
        return;
    case 'e': // the source's element at the index
        EXPECT_EQ(assigned(4), (Outcome{IfErrInvalidArgument, -1}));
        EXPECT_EQ(Printed(*target), before);
        EXPECT_EQ(assigned(3), (Outcome{0, 1}));
        break;
    case 'i': { // into the target at the index, which grows it and never shrinks it
        EXPECT_EQ(assigned(2), (Outcome{0, 1}));
        unsigned int const size = target->GetSerialDataSize();
        EXPECT_EQ(assigned(20), (Outcome{0, 1}));
        EXPECT_EQ(assigned(20), (Outcome{0, 0}));
        EXPECT_EQ(assigned(0), (Outcome{0, 1}));
        EXPECT_GT(target->GetSerialDataSize(), size);
        break;
    }
    case 'v': // the whole value, whatever the index
        EXPECT_EQ(assigned(1000), (Outcome{0, 1}));
        EXPECT_EQ(assigned(0), (Outcome{0, 0}));
        break;
    default:
        FAIL();
    }
    EXPECT_NE(Printed(*target), before);
}

TEST(AssignMatrix, HoldsForValues)
{
    auto const families = Families();
    for (auto const& [row, to] : std::span(families).first<12>()) {
        std::istringstream letters(row);
        for (auto const& [unused, from] : families) {
            char letter = 0;
            letters >> letter;
            SCOPED_TRACE(Dumped(*to.empty) + letter + " from " + Dumped(*from.value));
            ExpectCell(to, from.value, letter);
        }
    }
}

TEST(AssignMatrix, OfSchemasIsADiagonalButForListsOfNumbersAndOfRectangles)
{
    auto const families = Families();
    std::set const flat{IfType_t::NumericArray, IfType_t::RectArray};
    for (auto const& [row, to] : std::span(families).first<12>()) {
        for (auto const& [unused, from] : families) {
            auto const target = Hold(to.schema->DeepCopy(7));
            std::string const before = Dumped(*target);
            SCOPED_TRACE(before + "from " + Dumped(*from.schema));
            if (&to == &from || (flat.contains(to.value->GetType()) && flat.contains(from.value->GetType()))) {
                EXPECT_EQ(Assign(*target, from.schema).code, 0);
                EXPECT_EQ(Assign(*target, from.schema), (Outcome{0, 0}));
            } else {
                EXPECT_EQ(Assign(*target, from.schema), (Outcome{IfErrTypeNotAssignable, -1}));
                EXPECT_EQ(Dumped(*target), before);
            }
        }
    }
}

TEST(AssignMatrix, GoesByTheTagAndThenByTheClass)
{
    auto const families = Families();
    ForAllFamilies([&]<typename Info, typename Item>(Family<Info, Item>) {
        auto const impostor = Make<Tagged<Item>>(1U);
        for (auto const& [unused, like] : families) {
            impostor->type = like.value->GetType();
            for (int numericType = -1; numericType <= 11 && impostor->type != Item::GetTypeStatic(); ++numericType) {
                impostor->numericType = static_cast<NumericType_t>(numericType);
                for (auto const& [letters, to] : families)
                    ASSERT_EQ(to.value->AssignArrayValue(impostor, 0, nullptr), IfErrTypeNotAssignable)
                        << Dumped(*to.value) << Dumped(*impostor) << numericType;
            }
        }
    });
}

/// A value of an application's class that has an element tag of its own.
template<typename Item>
ItemPtr WithElementTag(NumericType_t tag)
{
    auto const item = Make<Tagged<Item>>(1U);
    item->type = Item::GetTypeStatic();
    item->numericType = tag;
    return item;
}

TEST(AssignMatrix, AsksForTheElementTagInListsOfNumbersAlone)
{
    auto const codes = [](ItemPtr const& source, auto const&... targets) {
        return std::vector{targets->AssignArrayValue(source, 0, nullptr)...};
    };
    constexpr int no = IfErrTypeNotAssignable;
    auto const numbers = Make<NumericArrayItem<U16>>(1U);
    auto const rects = Make<RectArrayItem<U16>>(1U);
    for (auto const tag : {NumericType_t::Undefined, NumericType_t::U8}) {
        EXPECT_EQ(codes(WithElementTag<RectArrayItem<U16>>(tag), numbers, rects), (std::vector{no, 0}));
        EXPECT_EQ(codes(WithElementTag<RectItem<FloatTraits>>(tag), numbers, rects, Make<RectItem<S32Traits>>(1U)),
                  (std::vector{no, 0, 0}));
        EXPECT_EQ(codes(WithElementTag<CoordinateItem<S32Traits>>(tag), Make<CoordinateItem<U16>>(1U)), std::vector{0});
        EXPECT_EQ(codes(WithElementTag<NumericSparseItem<U16>>(tag), Make<NumericSparseItem<U16>>(1U)), std::vector{0});
    }
}

using Detail::ConvertTo;
using Detail::Differs;

constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_inf = std::numeric_limits<double>::infinity();
constexpr double k_2to63 = 9223372036854775808.0;
constexpr std::uint64_t k_highBit = std::uint64_t{1} << 63;
constexpr std::int64_t k_s64Min = std::numeric_limits<std::int64_t>::min();
constexpr int k_s32Min = std::numeric_limits<int>::min();

// A value and what each integer type takes of it, the narrow ones through 32 bits; what does not fit there is the
// lowest.
using Cut = std::tuple<double, unsigned char, signed char, unsigned short, short, unsigned int, int, std::uint64_t,
                       std::int64_t>;
constexpr Cut k_cuts[] = {
    {2.9, 2, 2, 2, 2, 2, 2, 2, 2},
    {-2.9, 254, -2, 65534, -2, 4294967294, -2, ~std::uint64_t{1}, -2},
    {70000.5, 112, 112, 4464, 4464, 70000, 70000, 70000, 70000},
    {-70000.5, 144, -112, 61072, -4464, 4294897296, -70000, std::uint64_t(-70000), -70000},
    {2147483647.9, 255, -1, 65535, -1, 2147483647, 2147483647, 2147483647, 2147483647},
    {2147483648.0, 0, 0, 0, 0, 2147483648, k_s32Min, 2147483648, 2147483648},
    {-2147483649.0, 0, 0, 0, 0, 2147483647, k_s32Min, std::uint64_t(-2147483649), -2147483649},
    {4294967301.0, 0, 0, 0, 0, 5, k_s32Min, 4294967301, 4294967301},
    {k_2to63, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
    {-k_2to63 - 2048, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
    {k_2to63 * 2 - 2048, 0, 0, 0, 0, 0, k_s32Min, ~std::uint64_t{2047}, k_s64Min},
    {k_inf, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
    {k_nan, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
};

template<typename Source>
void ExpectCut(Source value, Cut const& cut)
{
    auto const expect = [value](auto cutTo) { EXPECT_EQ(ConvertTo<decltype(cutTo)>(value), cutTo) << value; };
    std::apply([&](double, auto... cutTo) { (expect(cutTo), ...); }, cut);
}

TEST(Convert, CutsFractionsKeepsLowBitsAndTakesTheNearestFloat)
{
    for (Cut const& cut : k_cuts) {
        double const value = std::get<0>(cut);
        ExpectCut(value, cut);
        // Where the value is a float as well, it converts alike.
        if (auto const narrow = static_cast<float>(value); narrow == value || std::isnan(narrow))
            ExpectCut(narrow, cut);
    }
    EXPECT_EQ((ConvertTo<unsigned char>(300)), 44);
    EXPECT_EQ((ConvertTo<std::uint64_t>(static_cast<signed char>(-1))), ~std::uint64_t{0});
    EXPECT_EQ((ConvertTo<int>(static_cast<unsigned char>(255))), 255);
    EXPECT_EQ((ConvertTo<float>(16777217)), 16777216.0F);
    EXPECT_EQ((ConvertTo<float>(~std::uint64_t{0})), 18446744073709551616.0F); // not -1
}

TEST(Convert, TestsForTruthAndComparesWithinTheTolerance)
{
    double const tolerance = k_floatTolerance;
    for (auto const& [value, truth] :
         {std::pair(-0.0, false), std::pair(-1e-9, true), std::pair(-k_inf, true), std::pair(k_nan, false),
          std::pair(tolerance, true), std::pair(std::nextafter(tolerance, 0.0), false)})
        EXPECT_EQ(ConvertTo<bool>(value), truth) << value;
    EXPECT_TRUE(ConvertTo<bool>(256)); // no low byte is taken
    for (auto const& [a, b, equal, differs] :
         {std::tuple(0.0, tolerance, true, false), std::tuple(0.0, std::nextafter(tolerance, 1.0), false, true),
          std::tuple(k_inf, k_inf, false, false), std::tuple(k_inf, -k_inf, false, true),
          std::tuple(k_nan, k_nan, false, false), std::tuple(k_nan, 0.0, false, false)})
    {
        EXPECT_EQ(std::pair(DoubleTraits::Equal(a, b), DoubleTraits::Equal(b, a)), std::pair(equal, equal)) << a;
        EXPECT_EQ(std::pair(Differs(a, b), Differs(b, a)), std::pair(differs, differs)) << a;
    }
    EXPECT_FALSE(U64Traits::Equal(k_highBit, k_highBit + 1));
}

} // namespace
} // namespace Legacy::If::Test
