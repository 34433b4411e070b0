#include "TestSupport.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <cmath>

namespace Legacy::If::Test {
namespace {

using Bits = std::vector<bool>;

TEST(Bool, IsHeldToAFixedDefault)
{
    for (int row = 0; row < 8; ++row) {
        bool const fixed = row & 1, standard = row & 2, value = row & 4;
        auto const info = MakeInfo<BoolInfo>();
        info->SetFixed(fixed);
        info->SetDefault(standard);
        auto const item = Hold(BoolItem::Create(3, value));
        Texts const finding{"TypesSystemBoolValidationFixedVal", "speed", standard ? "1" : "0"};
        EXPECT_EQ(Validated(*item, info), fixed && value != standard ? finding : Texts{});
        EXPECT_EQ(item->WithinBounds(*info), !fixed || value == standard);
        item->BoundVal(*info);
        EXPECT_EQ(item->GetVal(), fixed ? standard : value);
    }
}

TEST(Bool, MergesTowardsFixed)
{
    auto const free = MakeInfo<BoolInfo>();
    auto const fixed = MakeInfo<BoolInfo>();
    fixed->SetFixed(true);
    fixed->SetDefault(true);
    EXPECT_FALSE(free->IsEqualBounds(fixed));
    EXPECT_EQ(free->MergeBounds(fixed), 0);
    EXPECT_TRUE(free->GetFixed());
    EXPECT_FALSE(free->GetDefault());
    EXPECT_TRUE(free->IsEqualBounds(fixed)); // whatever their defaults
}

TEST(Bool, TakesTheTruthOfNumbers)
{
    for (auto const& [number, truth] : {std::pair(2.0, true), std::pair(0.5, true), std::pair(1e-11, false),
                                        std::pair(-1e-9, true), std::pair(std::nan(""), false)})
    {
        auto const item = Hold(BoolItem::Create(1, !truth));
        EXPECT_EQ(Assign(*item, Hold(NumericItem<DoubleTraits>::Create(2, number)), 99), (Outcome{0, 1})) << number;
        EXPECT_EQ(item->GetVal(), truth);
    }
}

TEST(Bool, BecomesAWord)
{
    StringItem text(1);
    EXPECT_EQ(Assign(text, Hold(BoolItem::Create(2, true)), 9), (Outcome{0, 1}));
    EXPECT_EQ(text.GetVal(), "True");
}

TEST(Bool, HasItsForms)
{
    auto const info = MakeInfo<BoolInfo>();
    info->SetDefault(true);
    info->SetFixed(true);
    EXPECT_EQ(Printed(*info), "default=True (fixed)");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Bool\nfixed: 1\ndefault: 1\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Bool\nvalue: 1\n");
    for (char const* const bad : {"2", "", "true"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing boolItem\n")));
    EXPECT_EQ(Printed(*item), "True");
    EXPECT_TRUE(ReadText(*item, "0").first);
    std::istringstream words("true");
    std::ostringstream out;
    EXPECT_TRUE(item->SetValFromStream(words >> std::boolalpha, out, nullptr));

    EXPECT_EQ(RecordOf(*item).payload, Bytes{1});
    EXPECT_EQ(Read(*item, {7, 1, 0, {0x80}}), 0);
    for (Bytes const& bad : {Bytes{}, Bytes{0, 0}})
        EXPECT_EQ(Read(*item, {7, 1, 0, bad}), IfErrInvalidArgument);
    EXPECT_EQ(Printed(*item), "True");
}

TEST(BoolArray, ValidatesItsSizeUnderOneKey)
{
    auto const info = MakeInfo<BoolArrayInfo>();
    EXPECT_EQ(info->SetDefault(Bits(100)), 0); // nothing is refused at the start
    info->SetMaxSize(3);
    info->SetMinSize(2);
    auto const item = Hold(BoolArrayItem::Create(3, {true}));
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "2"}));
    item->SetVal(Bits(4));
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "3"}));
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
                          Case{{false, false, false, false, false, false, false, false, true}, {1, 0, 0x80}}})
    {
        auto const item = Hold(BoolArrayItem::Create(1, c.value));
        EXPECT_EQ(RecordOf(*item).payload, c.payload);
        BoolArrayItem back(1);
        EXPECT_EQ(Read(back, RecordOf(*item)), 0);
        EXPECT_EQ(back.GetVal(), c.value);
        EXPECT_EQ(Read(back, RecordOf(*item)), 0); // appended
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
    EXPECT_EQ(ReadText(*item, "2 1 2"), std::pair(false, std::string("Error parsing arrayItem\n")));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: BoolArray\nvalue: (True, False)\n");
}

} // namespace
} // namespace Legacy::If::Test
