#include "Families.h"

#include <algorithm>
#include <functional>
#include <span>
#include <sstream>

/// Which family takes what from which other, refusals included: every cell is run.
namespace Legacy::If::Test {
namespace {

/// A row: how a value of it is made, with ones in it, four where it is a list, how an empty one, and how a schema.
struct Row
{
    std::string name;
    std::function<boost::intrusive_ptr<ItemBase>()> value, empty;
    std::function<boost::intrusive_ptr<InfoBase>()> schema;
};

/// The value is read from the text; without one it is as #Filled makes it.
template<typename Info, typename Item>
Row RowOf(char const* name, std::string const& text = {})
{
    auto const value = [text] {
        auto const item = text.empty() ? Filled<Item>(3) : Make<Item>(3U);
        EXPECT_TRUE(text.empty() || ReadText(*item, text).first) << text;
        return item;
    };
    auto const schema = [] {
        auto const info = FreshInfo<Info>(7, "speed", {0x1234});
        if constexpr (requires { info->SetMinSize(4); }) { // sizes that a list of rectangles can take over
            info->SetMaxSize(8);
            info->SetMinSize(4);
        }
        return info;
    };
    return {name, value, [] { return Make<Item>(4U); }, schema};
}

// In the order of the columns below: Bool to BoolArray, Coordinate to RectArray, the texts, the rest.
Row const k_families[] = {
    RowOf<BoolInfo, BoolItem>("Bool", "1"),
    RowOf<NumericInfo<S32Traits>, NumericItem<S32Traits>>("Numeric", "1"),
    RowOf<NumericArrayInfo<U16Traits>, NumericArrayItem<U16Traits>>("NumericArray", "4 1 1 1 1"),
    RowOf<NumericSparseInfo<DoubleTraits>, NumericSparseItem<DoubleTraits>>("NumericSparse", "1"),
    RowOf<EnumInfo, EnumItem>("Enum", "1"),
    RowOf<BoolArrayInfo, BoolArrayItem>("BoolArray", "4 1 1 1 1"),
    RowOf<CoordinateInfo<S32Traits>, CoordinateItem<S32Traits>>("Coordinate", "1 1"),
    RowOf<RectInfo<FloatTraits>, RectItem<FloatTraits>>("Rectangle", "1 1 1 1"),
    RowOf<RectArrayInfo<U16Traits>, RectArrayItem<U16Traits>>("RectArray", "4 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1"),
    RowOf<StringInfo, StringItem>("String", "1"),
    RowOf<StringArrayInfo, StringArrayItem>("StringArray", "4 1 1 1 1"),
    RowOf<StringSparseInfo, StringSparseItem>("StringSparse", "1"),
    RowOf<ColourInfo, ColourItem>("Colour"),
    RowOf<ExtendedInfo, ExtendedItem>("Extended"),
    RowOf<CompositeInfo, CompositeItem>("Composite"),
    RowOf<CollectionInfo, CollectionItem>("Collection"),
};

void ExpectCell(Row const& to, Row const& from, char letter)
{
    auto const source = from.value();
    auto const target = to.empty();
    std::string const before = Printed(*target);
    auto const assigned = [&](unsigned int index) { return Assign(*target, source, index); };
    switch (letter) {
    case '.': // refused
        EXPECT_EQ(assigned(0), (Outcome{IfErrTypeNotAssignable, -1}));
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
        EXPECT_GT(target->GetSerialDataSize(), size);
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

// A line is a target's name and a letter for each source.
constexpr char k_matrix[] = R"(
    Numeric       v v e . v .  . . .  . . .  . . . .
    NumericArray  i i v . i .  . i v  . . .  . . . .
    NumericSparse . . . v . .  . . .  . . .  . . . .
    Enum          v v e . v .  . . .  . . .  . . . .
    Bool          v v e . . e  . . .  . . .  . . . .
    BoolArray     i . . . . v  . . .  . . .  . . . .
    Coordinate    . . . . . .  v . .  . . .  . . . .
    Rectangle     . . . . . .  . v .  . . .  . . . .
    RectArray     . . v . . .  . i v  . . .  . . . .
    String        v . . . . .  . . .  v e .  . . . .
    StringArray   i . . . . .  . . .  i v .  . . . .
    StringSparse  . . . . . .  . . .  . . v  . . . .
)";

TEST(AssignMatrix, HoldsForValues)
{
    std::istringstream lines(k_matrix);
    std::string target;
    while (lines >> target) {
        auto const* const row = std::ranges::find(k_families, target, &Row::name);
        for (Row const& source : k_families) {
            char letter = 0;
            lines >> letter;
            SCOPED_TRACE(target + " from " + source.name + ": " + letter);
            ExpectCell(*row, source, letter);
        }
    }
}

TEST(AssignMatrix, OfSchemasIsADiagonalButForListsOfNumbersAndOfRectangles)
{
    for (Row const& to : std::span(k_families).first<12>()) {
        for (Row const& from : k_families) {
            SCOPED_TRACE(to.name + " from " + from.name);
            auto const target = to.schema();
            std::string const before = Dumped(*target);
            bool const flat =
                to.name + from.name == "NumericArrayRectArray" || to.name + from.name == "RectArrayNumericArray";
            if (flat || to.name == from.name) {
                EXPECT_EQ(Assign(*target, from.schema()).code, 0);
                EXPECT_EQ(Assign(*target, from.schema()), (Outcome{0, 0}));
            } else {
                EXPECT_EQ(Assign(*target, from.schema()), (Outcome{IfErrTypeNotAssignable, -1}));
                EXPECT_EQ(Dumped(*target), before);
            }
        }
    }
}

/// An item whose tags say more than its class holds.
struct Impostor : StringItem
{
    Impostor(IfType_t type, NumericType_t numericType) : StringItem(1), m_type(type), m_numericType(numericType) {}
    IfType_t GetType() const override { return m_type; }
    NumericType_t GetNumericType() const override { return m_numericType; }
    IfType_t m_type;
    NumericType_t m_numericType;
};

TEST(AssignMatrix, TrustsNoTag)
{
    for (Row const& to : k_families) {
        SCOPED_TRACE(to.name);
        auto const target = to.value();
        if (target->GetType() == IfType_t::String || target->GetType() == IfType_t::StringArray)
            continue; // an impostor is a text all the same
        std::string const before = Printed(*target);
        for (Row const& from : k_families) {
            for (int numericType = -1; numericType <= 11; ++numericType) {
                auto const impostor = Make<Impostor>(from.empty()->GetType(), static_cast<NumericType_t>(numericType));
                EXPECT_EQ(target->AssignArrayValue(impostor, 0, nullptr), IfErrTypeNotAssignable) << from.name;
            }
        }
        EXPECT_EQ(Printed(*target), before);
    }
}

} // namespace
} // namespace Legacy::If::Test
