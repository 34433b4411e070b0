#include "Families.h"

#include <sstream>

/// Which family takes what from which other, refusals included: every cell is run.
namespace Legacy::If::Test {
namespace {

/// A row: how a value of it is made, with ones in it, four where it is a list, and how a schema.
struct Row
{
    char const* name;
    boost::intrusive_ptr<ItemBase> (*value)();
    boost::intrusive_ptr<ItemBase> (*empty)();
    boost::intrusive_ptr<InfoBase> (*schema)();
};

/// A value read from text; one without a text is as #Filled makes it.
template<typename Item, char const* Text>
boost::intrusive_ptr<ItemBase> FromText()
{
    auto const item = Text[0] == 0 ? Filled<Item>(3) : Make<Item>(3U);
    EXPECT_TRUE(Text[0] == 0 || ReadText(*item, Text).first) << Text;
    return item;
}

template<typename Item>
boost::intrusive_ptr<ItemBase> Empty()
{
    return Make<Item>(4U);
}

template<typename Info>
boost::intrusive_ptr<InfoBase> Schema()
{
    return FreshInfo<Info>(7, "speed", {0x1234});
}

/// Sizes that a list of rectangles can take over.
template<typename Info>
boost::intrusive_ptr<InfoBase> FlatSchema()
{
    auto const info = MakeInfo<Info>();
    info->SetMaxSize(8);
    info->SetMinSize(4);
    return info;
}

constexpr char k_one[] = "1";
constexpr char k_two[] = "1 1";
constexpr char k_four[] = "1 1 1 1";
constexpr char k_list[] = "4 1 1 1 1";
constexpr char k_rects[] = "4 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1";
constexpr char k_none[] = "";

template<typename Info, typename Item, char const* Text>
constexpr Row RowOf(char const* name)
{
    return {name, &FromText<Item, Text>, &Empty<Item>, &Schema<Info>};
}

// In the order of the columns below.
constexpr Row k_families[] = {
    RowOf<BoolInfo, BoolItem, k_one>("Bool"),
    RowOf<NumericInfo<S32Traits>, NumericItem<S32Traits>, k_one>("Numeric"),
    {"NumericArray", &FromText<NumericArrayItem<U16Traits>, k_list>, &Empty<NumericArrayItem<U16Traits>>,
     &FlatSchema<NumericArrayInfo<U16Traits>>},
    RowOf<NumericSparseInfo<DoubleTraits>, NumericSparseItem<DoubleTraits>, k_one>("NumericSparse"),
    RowOf<EnumInfo, EnumItem, k_one>("Enum"),
    RowOf<BoolArrayInfo, BoolArrayItem, k_list>("BoolArray"),
    RowOf<CoordinateInfo<S32Traits>, CoordinateItem<S32Traits>, k_two>("Coordinate"),
    RowOf<RectInfo<FloatTraits>, RectItem<FloatTraits>, k_four>("Rectangle"),
    RowOf<RectArrayInfo<U16Traits>, RectArrayItem<U16Traits>, k_rects>("RectArray"),
    RowOf<StringInfo, StringItem, k_one>("String"),
    RowOf<StringArrayInfo, StringArrayItem, k_list>("StringArray"),
    RowOf<StringSparseInfo, StringSparseItem, k_one>("StringSparse"),
    RowOf<ColourInfo, ColourItem, k_none>("Colour"),
    RowOf<ExtendedInfo, ExtendedItem, k_none>("Extended"),
    RowOf<CompositeInfo, CompositeItem, k_none>("Composite"),
    RowOf<CollectionInfo, CollectionItem, k_none>("Collection"),
};

Row const& FamilyOf(std::string const& name)
{
    for (Row const& family : k_families) {
        if (name == family.name)
            return family;
    }
    ADD_FAILURE() << name;
    return k_families[0];
}

/// Runs `cell` for every letter of a table whose lines are a target's name and a letter for each source.
template<typename Cell>
void ForCells(char const* table, Cell&& cell)
{
    std::istringstream lines(table);
    std::string target;
    while (lines >> target) {
        for (Row const& source : k_families) {
            char letter = 0;
            lines >> letter;
            SCOPED_TRACE(target + " from " + source.name + ": " + letter);
            cell(FamilyOf(target), source, letter);
        }
    }
}

void ExpectItemCell(Row const& to, Row const& from, char letter)
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

TEST(AssignMatrix, HoldsForValues)
{
    //            Bool Numeric NumericArray NumericSparse Enum BoolArray | Coordinate Rectangle RectArray |
    //            String StringArray StringSparse | Colour Extended Composite Collection
    ForCells(R"(
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
    )",
             ExpectItemCell);
}

TEST(AssignMatrix, HoldsForSchemas)
{
    ForCells(R"(
        Numeric       . v . . . .  . . .  . . .  . . . .
        NumericArray  . . v . . .  . . v  . . .  . . . .
        NumericSparse . . . v . .  . . .  . . .  . . . .
        Enum          . . . . v .  . . .  . . .  . . . .
        Bool          v . . . . .  . . .  . . .  . . . .
        BoolArray     . . . . . v  . . .  . . .  . . . .
        Coordinate    . . . . . .  v . .  . . .  . . . .
        Rectangle     . . . . . .  . v .  . . .  . . . .
        RectArray     . . v . . .  . . v  . . .  . . . .
        String        . . . . . .  . . .  v . .  . . . .
        StringArray   . . . . . .  . . .  . v .  . . . .
        StringSparse  . . . . . .  . . .  . . v  . . . .
    )",
             [](Row const& to, Row const& from, char letter) {
                 auto const target = to.schema();
                 std::string const before = Dumped(*target);
                 Outcome const outcome = Assign(*target, from.schema());
                 if (letter == '.') {
                     EXPECT_EQ(outcome, (Outcome{IfErrTypeNotAssignable, -1}));
                     EXPECT_EQ(Dumped(*target), before);
                 } else {
                     EXPECT_EQ(outcome.code, 0);
                     EXPECT_EQ(Assign(*target, from.schema()), (Outcome{0, 0}));
                 }
             });
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
