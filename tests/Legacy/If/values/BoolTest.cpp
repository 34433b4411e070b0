#include "../TestSupport.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/String.h>

namespace Legacy::If::Test {
namespace {

using Bits = std::vector<bool>;

TEST(Bool, IsHeldToAFixedDefaultAndMergesTowardsFixed)
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
        auto const other = MakeInfo<BoolInfo>();
        other->SetFixed(value);
        EXPECT_EQ(info->IsEqualBounds(other), fixed == value); // whatever their defaults
        EXPECT_EQ(info->MergeBounds(other), 0);
        EXPECT_EQ(Printed(*info),
                  std::string("default=") + (standard ? "True" : "False") + (fixed || value ? " (fixed)" : ""));
    }
}

TEST(Bool, HasItsForms)
{
    auto const info = MakeInfo<BoolInfo>();
    info->SetDefault(true);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Bool\nfixed: 0\ndefault: 1\n");
    auto const item = Hold(info->CreateItem());
    for (char const* const bad : {"2", "", "true"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing boolItem\n")));
    for (Bytes const& bad : {Bytes{}, Bytes{0, 0}})
        EXPECT_EQ(Read(*item, {7, 1, 0, bad}), IfErrInvalidArgument);
    EXPECT_EQ(Dumped(*item) + Printed(*item), "id: 7\ntype: Bool\nvalue: 1\nTrue");
    EXPECT_TRUE(ReadText(*item, "0").first);
    EXPECT_EQ(Printed(*item), "False");
    EXPECT_EQ(Read(*item, {7, 1, 0, {0x80}}), 0);
    EXPECT_EQ(RecordOf(*item).payload, Bytes{1});
    StringItem text(1);
    EXPECT_EQ(Assign(text, item, 9), (Outcome{0, 1}));
    EXPECT_EQ(text.GetVal(), "True");
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
        EXPECT_EQ(Read(*item, RecordOf(*item)), 0);
        Bits twice = value;
        twice.insert(twice.end(), value.begin(), value.end());
        EXPECT_EQ(item->GetVal(), twice); // appended
    }
    BoolArrayItem item(1);
    for (Bytes const& bad : {Bytes{}, Bytes{8}, Bytes{8, 0}, Bytes{255, 0}})
        EXPECT_EQ(Read(item, {1, 8, 0, bad}), IfErrInvalidArgument);
    EXPECT_EQ(Read(item, {1, 8, 0, {5}}), 0); // no byte follows, so there are no elements
    EXPECT_TRUE(item.IsEmpty());
}

TEST(BoolArray, HasItsFormsAndValidatesItsSizeUnderOneKey)
{
    auto const info = MakeInfo<BoolArrayInfo>();
    info->SetDefault({true, false});
    EXPECT_EQ(Dumped(*info) + Printed(*info),
              "id: 7\npermission: 4660\nname: speed\ntype: BoolArray\nminSize: 0\nmaxSize: 2147483647\n"
              "defaultSize: 2\narray size: 0 <= 2 <= 2147483647");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Validated(*item, info), Texts{}); // nothing is refused at the start
    EXPECT_EQ(ReadText(*item, "2 1 2"), std::pair(false, std::string("Error parsing arrayItem\n")));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: BoolArray\nvalue: (True, False)\n");
    info->SetMaxSize(1);
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "1"}));
    info->SetMinSize(5);
    EXPECT_EQ(Validated(*item, info), (Texts{"BoolArrayValidationMinSize", "speed", "5"}));
}

} // namespace
} // namespace Legacy::If::Test
