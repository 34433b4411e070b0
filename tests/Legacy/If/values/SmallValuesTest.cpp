#include "../TestSupport.h"

#include <Legacy/If/Colour.h>
#include <Legacy/If/Extended.h>
#include <Legacy/If/Orientation.h>
#include <Legacy/If/String.h>

#include <cmath>
#include <limits>
#include <tuple>

namespace Legacy::If::Test {
namespace {

using Orlek::Colour_t;
constexpr float k_nan = std::numeric_limits<float>::quiet_NaN();

template<typename Item, typename Value>
boost::intrusive_ptr<Item> MakeValue(Value const& value)
{
    auto item = Make<Item>(7U);
    item->Val() = value;
    return item;
}

auto MakeColour(Colour_t const& colour) { return MakeValue<ColourItem>(colour); }
auto MakeOrientation(Orientation_t const& orientation) { return MakeValue<OrientationItem>(orientation); }

TEST(Colour, IsPackedWithoutRoundingOrClamping)
{
    auto const info = MakeInfo<ColourInfo>();
    for (auto const& [component, ofItem, ofInfo] :
         {std::tuple(std::nextafter(1.0F, 0.0F), 0xFEU, 0xFEU), std::tuple(1.5F, 126U, 126U),
          std::tuple(-0.5F, 0U, 0x81U), std::tuple(16777215.0F, 1U, 1U), std::tuple(k_nan, 0U, 0U)})
    {
        Colour_t const colour{component, component, component, component};
        info->SetMin(colour);
        EXPECT_EQ(info->GetMinARGB(), ofInfo * 0x01010101U) << component;
        EXPECT_EQ(MakeColour(colour)->GetARGB(), ofItem * 0x01010101U) << component;
    }
    info->SetMax({1, 0.75F, 0.5F, 0.25F});
    info->SetDefault({0.25F, 0.5F, 0.75F, 1});
    EXPECT_EQ(info->GetMaxARGB(), 0xFFBF7F3FU);
    EXPECT_EQ(info->GetDefaultARGB(), 0x3F7FBFFFU);
    auto const item = MakeColour({1, 1, 1, 1});
    item->Set(0.25F, 0.5F, 0.75F); // and transparent
    EXPECT_EQ(item->GetARGB(), 0x003F7FBFU);
}

TEST(Colour, SchemasAreAssignedExactlyAndValuesWithinTheTolerance)
{
    Colour_t const tiny{1e-11F, 0.0F, 0.0F, 0.0F};
    for (auto const set : {&ColourInfo::SetMin, &ColourInfo::SetMax, &ColourInfo::SetDefault}) {
        auto const a = MakeInfo<ColourInfo>();
        auto const b = MakeInfo<ColourInfo>();
        ((*b).*set)(tiny);
        EXPECT_TRUE(a->IsEqualBounds(b));
        EXPECT_EQ(a->MergeBounds(b), 0);
        EXPECT_EQ(Assign(*a, b), (Outcome{0, 1}));
        EXPECT_EQ(Printed(*a), Printed(*b));
    }
    auto const item = MakeColour({});
    EXPECT_TRUE(item->IsEqualValue(MakeColour({0, 0, 0, -k_floatTolerance})));
    EXPECT_EQ(Assign(*item, MakeColour(tiny)), (Outcome{0, 0}));
    EXPECT_EQ(item->GetA(), 0.0F);
    for (Colour_t const& other : {Colour_t{2e-10F, 0, 0, 0}, Colour_t{0, -2e-10F, 0, 0}, Colour_t{0, 0, 2e-10F, 0},
                                  Colour_t{0, 0, 0, 2e-10F}, Colour_t{k_nan, 0, 0, 0}})
    {
        EXPECT_FALSE(item->IsEqualValue(MakeColour(other)));
        EXPECT_EQ(Assign(*MakeColour({}), MakeColour(other), 99), (Outcome{0, 1}));
    }
}

TEST(Colour, HasItsTextForms)
{
    auto const info = MakeInfo<ColourInfo>();
    info->SetMin({1, 2, 3, 4});
    info->SetMax({0.5F, 6, 7, 8});
    info->SetDefault({9, 10, 11, 12.25F});
    std::string const compact = "1, 2, 3, 4 < 9, 10, 11, 12.25 < 0.5, 6, 7, 8";
    EXPECT_EQ(Dumped(*info) + Printed(*info),
              "id: 7\npermission: 4660\nname: speed\ntype: Colour\ndefault: " + compact + '\n' + compact);
    auto const item = MakeColour({1, 0.5F, 0.25F, 0});
    EXPECT_EQ(Printed(*item), "(1 0.5 0.25 0)");
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Colour\nvalue: a1, r0.5, g0.25, b 0\n");

    EXPECT_TRUE(ReadText(*item, "12 0.5 0.25 0").first); // the first character is skipped
    for (auto const& [text, part] : {std::pair(" (1 2 3 4)", 'a'), std::pair("", 'a'), std::pair("(1", 'r'),
                                     std::pair("(1 2 word", 'g'), std::pair("(1 2 3", 'b'), std::pair("(1 2 3)", 'b')})
    {
        std::istringstream in(text);
        std::ostringstream out;
        EXPECT_FALSE(item->SetValFromStream(in, out, nullptr));
        EXPECT_EQ(out.str(), std::string("Error parsing colourItem.") + part + '\n');
        EXPECT_TRUE(in.fail()); // whoever reads on sees that something was missing
    }
    EXPECT_EQ(Printed(*item), "(2 0.5 0.25 0)");
    std::istringstream in("(1 2 3 4)rest");
    std::ostringstream out;
    EXPECT_TRUE(item->SetValFromStream(in, out, nullptr));
    EXPECT_EQ(in.get(), ')');
    in.setstate(std::ios::eofbit);
    EXPECT_FALSE(item->SetValFromStream(in, out, nullptr));
    EXPECT_EQ(out.str(), "Error parsing colourItem\n");
}

TEST(FloatRecords, HoldTheirPartsInOrder)
{
    // In this form of a float the bytes of its integer part are swapped: 1 stands as 16777216.
    Record const colour = RecordOf(*MakeColour({1, 2, 3, 255}));
    EXPECT_EQ(colour.payload, NativeBytes({16777216, 33554432, 50331648, 4278190080}));
    EXPECT_EQ(Printed(*Rebuild(colour).second), "(1 2 3 255)");
    Record const orientation = RecordOf(*MakeOrientation({1, 2.5F, -1}));
    EXPECT_TRUE(Rebuild(orientation).second->IsEqualValue(MakeOrientation({1, 2, 0}))); // no fraction, none below 0
    for (Record const& good : {colour, orientation}) {
        for (std::size_t const size : {std::size_t{0}, good.payload.size() - 1, good.payload.size() + 1})
            EXPECT_EQ(Rebuild({7, good.type, 0, Bytes(size, 0x40)}).first, IfErrInvalidArgument) << size;
    }
}

TEST(Orientation, ComparesWithinTheToleranceAndHasNoText)
{
    auto const item = MakeOrientation({1.5F, 0, -2});
    EXPECT_EQ(Assign(*item, MakeOrientation({1.5F, 1e-11F, -2})), (Outcome{0, 0}));
    EXPECT_EQ(item->Val(), (Orientation_t{1.5F, 0, -2}));
    EXPECT_NE(item->Val(), (Orientation_t{1.5F, 1e-11F, -2})); // the record itself is compared exactly
    for (Orientation_t const& other : {Orientation_t{1, 0, -2}, Orientation_t{1.5F, -1, -2}, Orientation_t{1.5F, 0, 2}})
    {
        EXPECT_FALSE(item->IsEqualValue(MakeOrientation(other)));
        EXPECT_EQ(Assign(*Hold(item->DeepCopy()), MakeOrientation(other), 5), (Outcome{0, 1}));
    }
    EXPECT_EQ(ReadText(*item, "1 2 3"), std::pair(false, std::string("Impl. me")));
    EXPECT_EQ(item->GetValAsString(), "OrientationItem");
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Orientation\nbearing: 1.5\ninclination: 0\nroll: -2\n");
}

TEST(Extended, IsAPairOfTextsThatIsNotPrinted)
{
    auto const info = MakeInfo<ExtendedInfo>();
    info->SetDefault({"", "b"});
    EXPECT_EQ(Dumped(*info) + Printed(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_TRUE(item->IsEmpty()); // by the first text alone
    EXPECT_EQ(Validated(*item, info), Texts{});
    EXPECT_EQ(Dumped(*item) + Printed(*item), "id: 7\ntype: Invalid\n");
    EXPECT_EQ(ReadText(*item, "a b"), std::pair(false, std::string()));
    auto const other = Hold(ExtendedItem::Create(1, {"", "c"}));
    EXPECT_EQ(Assign(*other, item, 9), (Outcome{0, 1})); // the second text counts too
    EXPECT_EQ(Assign(*MakeInfo<ExtendedInfo>(), info), (Outcome{0, 1}));
}

TEST(LocalizedStringValue, IsShownInTheDefaultLanguage)
{
    LocalizedString message("TypesSystemNumericValidationMin");
    message.AddArgument(Hold(StringItem::Create(0, "speed")));
    message.AddArgument(Hold(StringItem::Create(0, "10")));
    std::string const text = "speed: the value is below the minimum of 10.";
    auto const info = MakeInfo<LocalizedStringInfo>();
    EXPECT_FALSE(Hold(info->CreateItem())->IsEmpty()); // although its message is
    info->SetDefault(message);
    EXPECT_EQ(Printed(*info), '"' + text);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: LocalizedString\ndefault: " + text + '\n');
    auto const item = Hold(info->CreateItem());
    auto const other = Make<LocalizedStringItem>(7U);
    EXPECT_EQ(Assign(*other, item, 9), (Outcome{0, 1}));
    EXPECT_EQ(Dumped(*other), "id: 7\ntype: LocalizedString\nvalue: " + text + '\n');
    EXPECT_EQ(ReadText(*item, "x"), std::pair(false, std::string("Impl. me")));
    message.AddArgument(nullptr); // an empty text, in excess of what the message asks for
    EXPECT_EQ(message.GetString(""), text + ' ');
}

} // namespace
} // namespace Legacy::If::Test
