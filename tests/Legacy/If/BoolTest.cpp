#include "TestSupport.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <limits>

namespace Legacy::If::Test {
namespace {

using Bits = std::vector<bool>;

TEST(Bool, FixesItsDefault)
{
    auto const info = MakeInfo<BoolInfo>();
    auto const item = Hold(BoolItem::Create(3, true));
    EXPECT_EQ(Validated(*item, info), Texts{});
    info->SetFixed(true);
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemBoolValidationFixedVal", "speed", "0"}));
    EXPECT_FALSE(item->WithinBounds(*info));
    info->SetDefault(true);
    EXPECT_EQ(Validated(*item, info), Texts{});
    item->SetVal(false);
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemBoolValidationFixedVal", "speed", "1"}));
    item->BoundVal(*info);
    EXPECT_TRUE(item->GetVal());
    info->SetFixed(false);
    item->SetVal(false);
    EXPECT_TRUE(item->WithinBounds(*info));
    item->BoundVal(*info);
    EXPECT_FALSE(item->GetVal());
    EXPECT_EQ(Validated(*item, MakeInfo<BoolArrayInfo>()),
              (Texts{"TypesSystemValidateTypeMismatch", "speed", "BoolArray(Undefined)", "Bool(Undefined)"}));
}

TEST(Bool, MergesTowardsFixed)
{
    auto const free = MakeInfo<BoolInfo>();
    auto const fixed = MakeInfo<BoolInfo>();
    fixed->SetFixed(true);
    fixed->SetDefault(true);
    EXPECT_FALSE(free->IsEqualBounds(fixed));
    EXPECT_EQ(fixed->MergeBounds(free), 0);
    EXPECT_TRUE(fixed->GetFixed());
    EXPECT_EQ(free->MergeBounds(fixed), 0);
    EXPECT_TRUE(free->GetFixed());
    EXPECT_FALSE(free->GetDefault());
    EXPECT_TRUE(free->IsEqualBounds(fixed)); // whatever their defaults
    EXPECT_EQ(free->MergeBounds(nullptr), IfErrBoundsTypeMismatch);
    EXPECT_EQ(Assign(*free, fixed), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*free, fixed), (Outcome{0, 0}));
    EXPECT_TRUE(free->GetDefault());
}

TEST(Bool, TakesTheTruthOfNumbers)
{
    BoolItem item(1);
    struct Case
    {
        ItemPtr source;
        bool truth;
    };
    for (Case const& c :
         {Case{Hold(NumericItem<U8Traits>::Create(2, 2)), true},
          Case{Hold(NumericItem<S64Traits>::Create(2, 0)), false},
          Case{Hold(NumericItem<U64Traits>::Create(2, std::uint64_t{1} << 63)), true},
          Case{Hold(NumericItem<DoubleTraits>::Create(2, 1e-11)), false},
          Case{Hold(NumericItem<DoubleTraits>::Create(2, -1e-9)), true},
          Case{Hold(NumericItem<DoubleTraits>::Create(2, std::numeric_limits<double>::quiet_NaN())), false},
          Case{Hold(NumericItem<FloatTraits>::Create(2, 0.5F)), true}, Case{Hold(BoolItem::Create(2, false)), false}})
    {
        bool const before = item.GetVal();
        EXPECT_EQ(Assign(item, c.source, 99), (Outcome{0, before != c.truth})) << Dumped(*c.source);
        EXPECT_EQ(item.GetVal(), c.truth);
    }
    auto const numbers = Make<NumericArrayItem<S16Traits>>(2U);
    numbers->SetVal({0, -1});
    auto const bits = Hold(BoolArrayItem::Create(2, {false, true}));
    for (ItemPtr const& list : {ItemPtr(numbers), ItemPtr(bits)}) {
        item.SetVal(false);
        EXPECT_EQ(Assign(item, list, 1), (Outcome{0, 1}));
        EXPECT_EQ(Assign(item, list, 2), (Outcome{IfErrInvalidArgument, -1}));
        EXPECT_TRUE(item.GetVal());
        EXPECT_EQ(Assign(item, list), (Outcome{0, 1}));
    }
}

TEST(Bool, BecomesAWord)
{
    StringItem text(1);
    EXPECT_EQ(Assign(text, Hold(BoolItem::Create(2, true)), 9), (Outcome{0, 1}));
    EXPECT_EQ(text.GetVal(), "True");
    EXPECT_EQ(Assign(text, Hold(BoolItem::Create(2, true))), (Outcome{0, 0}));
    StringArrayItem texts(1);
    EXPECT_EQ(Assign(texts, Hold(BoolItem::Create(2, false)), 1), (Outcome{0, 1}));
    EXPECT_EQ(texts.GetVal(), (std::vector<std::string>{"", "False"}));
    EXPECT_EQ(Assign(texts, Hold(BoolItem::Create(2, false)), 1), (Outcome{0, 0}));
}

TEST(Bool, HasItsForms)
{
    auto const info = MakeInfo<BoolInfo>();
    EXPECT_EQ(Printed(*info), "default=False");
    info->SetDefault(true);
    info->SetFixed(true);
    EXPECT_EQ(Printed(*info), "default=True (fixed)");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Bool\nfixed: 1\ndefault: 1\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Printed(*item), "True");
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Bool\nvalue: 1\n");
    for (char const* const bad : {"2", "", "true"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing boolItem\n")));
    EXPECT_EQ(Printed(*item), "True");
    EXPECT_TRUE(ReadText(*item, "0").first);
    EXPECT_EQ(Printed(*item), "False");
    std::istringstream words("true");
    std::ostringstream out;
    EXPECT_TRUE(item->SetValFromStream(words >> std::boolalpha, out, nullptr));

    EXPECT_EQ(RecordOf(*item).payload, Bytes{1});
    EXPECT_EQ(Read(*item, {7, 1, 0, {0}}), 0);
    EXPECT_EQ(Read(*item, {7, 1, 0, {0x80}}), 0);
    EXPECT_EQ(Printed(*item), "True");
    for (Bytes const& bad : {Bytes{}, Bytes{0, 0}})
        EXPECT_EQ(Read(*item, {7, 1, 0, bad}), IfErrInvalidArgument);
}

TEST(BoolArray, ValidatesItsSizeUnderOneKey)
{
    auto const info = MakeInfo<BoolArrayInfo>();
    EXPECT_EQ(info->SetDefault(Bits(100)), 0); // nothing is refused at the start
    info->SetMaxSize(3);
    EXPECT_EQ(info->GetDefaultSize(), 3U);
    info->SetMinSize(2);
    EXPECT_EQ(info->SetDefault({true}), IfErrSizeOutOfRange);
    auto const item = Hold(BoolArrayItem::Create(3, {true}));
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "2"}));
    item->SetVal(Bits(4));
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "3"}));
    EXPECT_EQ(item->SetVal(Bits(5), *info), IfErrSizeOutOfRange);
    EXPECT_EQ(item->SetVal(Bits(2), *info), 0);
    EXPECT_EQ(Validated(*item, info), Texts{});
    info->SetDefault({true, true});
    info->SetMinSize(4);
    EXPECT_EQ(info->GetDefault(), (Bits{true, true, false, false}));
    EXPECT_EQ(info->GetMaxSize(), 4U);

    auto const other = MakeInfo<BoolArrayInfo>();
    EXPECT_FALSE(info->IsEqualBounds(other));
    EXPECT_EQ(other->MergeBounds(info), 0);
    EXPECT_TRUE(info->IsEqualBounds(other));
    other->SetMaxSize(3);
    EXPECT_EQ(info->MergeBounds(other), IfErrBoundsDisjoint);
    EXPECT_EQ(Assign(*other, info), (Outcome{0, 1}));
    EXPECT_EQ(other->GetDefaultSize(), 4U);
    EXPECT_EQ(Assign(*other, info), (Outcome{0, 0}));
}

TEST(BoolArray, TakesBooleansAndLists)
{
    BoolArrayItem item(1);
    EXPECT_EQ(Assign(item, Hold(BoolItem::Create(2, true)), 2), (Outcome{0, 1}));
    EXPECT_EQ(item.GetVal(), (Bits{false, false, true}));
    EXPECT_EQ(Assign(item, Hold(BoolItem::Create(2, true)), 2), (Outcome{0, 0}));
    EXPECT_EQ(Assign(item, Hold(BoolItem::Create(2, false)), 3), (Outcome{0, 1})); // grown
    auto const list = Hold(BoolArrayItem::Create(2, {true, false}));
    EXPECT_EQ(Assign(item, list, 9), (Outcome{0, 1}));
    EXPECT_TRUE(item.IsEqualValue(list));
    EXPECT_EQ(Assign(item, list), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*list, list), (Outcome{0, 0}));
}

TEST(BoolArray, PacksItsElementsIntoBits)
{
    struct Case
    {
        Bits value;
        Bytes payload;
    };
    for (Case const& c : {Case{{}, {0}}, Case{{true}, {1, 0x80}}, Case{{false, true, true}, {3, 0x60}},
                          Case{{true, false, false, false, false, false, false, true}, {0, 0x81}},
                          Case{{false, false, false, false, false, false, false, false, true}, {1, 0, 0x80}},
                          Case{Bits(16, true), {0, 0xFF, 0xFF}}})
    {
        auto const item = Hold(BoolArrayItem::Create(1, c.value));
        Record const record = RecordOf(*item);
        EXPECT_EQ(record.payload, c.payload);
        EXPECT_EQ(item->GetSerialDataSize(), c.payload.size());
        BoolArrayItem back(1);
        EXPECT_EQ(Read(back, record), 0);
        EXPECT_EQ(back.GetVal(), c.value);
        EXPECT_EQ(Read(back, record), 0); // appended
        EXPECT_EQ(back.GetSize(), 2 * c.value.size());
    }
    BoolArrayItem item(1);
    for (Bytes const& bad : {Bytes{}, Bytes{8}, Bytes{8, 0}, Bytes{255, 0}})
        EXPECT_EQ(Read(item, {1, 8, 0, bad}), IfErrInvalidArgument);
    EXPECT_EQ(Read(item, {1, 8, 0, {5}}), 0); // no byte follows, so there are no elements
    EXPECT_TRUE(item.IsEmpty());
}

TEST(BoolArray, HasItsForms)
{
    auto const info = MakeInfo<BoolArrayInfo>();
    info->SetMaxSize(5);
    info->SetDefault({true, false});
    EXPECT_EQ(Printed(*info), "array size: 0 <= 2 <= 5");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: BoolArray\nminSize: 0\nmaxSize: 5\n"
                             "defaultSize: 2\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: BoolArray\nvalue: (True, False)\n");
    EXPECT_EQ(Printed(BoolArrayItem(1)), "()");
    EXPECT_EQ(ReadText(*item, "2 1 2"), std::pair(false, std::string("Error parsing arrayItem\n")));
    EXPECT_EQ(Printed(*item), "(True, False)");
    EXPECT_TRUE(ReadText(*item, "3 0 1 1").first);
    EXPECT_EQ(Printed(*item), "(False, True, True)");
}

} // namespace
} // namespace Legacy::If::Test
