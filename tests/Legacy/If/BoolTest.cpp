#include "TestSupport.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/String.h>

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
    EXPECT_EQ(fixed->MergeBounds(free), 0);
    EXPECT_FALSE(free->IsEqualBounds(fixed));
    EXPECT_EQ(free->MergeBounds(fixed), 0);
    EXPECT_TRUE(free->IsEqualBounds(fixed)); // whatever their defaults
    EXPECT_EQ(Printed(*free), "default=False (fixed)");
}

TEST(Bool, HasItsForms)
{
    auto const info = MakeInfo<BoolInfo>();
    info->SetDefault(true);
    EXPECT_EQ(Printed(*info), "default=True");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Bool\nfixed: 0\ndefault: 1\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Bool\nvalue: 1\n");
    for (char const* const bad : {"2", "", "true"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing boolItem\n")));
    EXPECT_EQ(Printed(*item), "True");
    EXPECT_TRUE(ReadText(*item, "0").first);
    EXPECT_EQ(Printed(*item), "False");
    EXPECT_EQ(RecordOf(*item).payload, Bytes{0});
    EXPECT_EQ(Read(*item, {7, 1, 0, {0x80}}), 0);
    for (Bytes const& bad : {Bytes{}, Bytes{0, 0}})
        EXPECT_EQ(Read(*item, {7, 1, 0, bad}), IfErrInvalidArgument);
    StringItem text(1);
    EXPECT_EQ(Assign(text, item, 9), (Outcome{0, 1}));
    EXPECT_EQ(text.GetVal(), "True");
}

TEST(BoolArray, ValidatesItsSizeUnderOneKey)
{
    auto const info = MakeInfo<BoolArrayInfo>();
    auto const item = Hold(BoolArrayItem::Create(3, Bits(100)));
    EXPECT_EQ(Validated(*item, info), Texts{}); // nothing is refused at the start
    info->SetMaxSize(3);
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "3"}));
    info->SetMinSize(200);
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "200"}));
}

TEST(BoolArray, PacksItsElementsIntoBits)
{
    for (auto const& [value, payload] :
         {std::pair(Bits{}, Bytes{0}), std::pair(Bits{false, true, true}, Bytes{3, 0x60}),
          std::pair(Bits{true, false, false, false, false, false, false, true}, Bytes{0, 0x81}),
          std::pair(Bits{false, false, false, false, false, false, false, false, true}, Bytes{1, 0, 0x80})})
    {
        auto const item = Hold(BoolArrayItem::Create(1, value));
        EXPECT_EQ(RecordOf(*item).payload, payload);
        BoolArrayItem back(1);
        EXPECT_EQ(Read(back, RecordOf(*item)), 0);
        EXPECT_EQ(back.GetVal(), value);
        EXPECT_EQ(Read(back, RecordOf(*item)), 0); // appended
        EXPECT_EQ(back.GetSize(), 2 * value.size());
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
    EXPECT_EQ(Dumped(*info) + Printed(*info),
              "id: 7\npermission: 4660\nname: speed\ntype: BoolArray\nminSize: 0\nmaxSize: 5\ndefaultSize: 2\n"
              "array size: 0 <= 2 <= 5");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(ReadText(*item, "2 1 2"), std::pair(false, std::string("Error parsing arrayItem\n")));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: BoolArray\nvalue: (True, False)\n");
}

} // namespace
} // namespace Legacy::If::Test
