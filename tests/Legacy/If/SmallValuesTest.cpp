#include "TestSupport.h"

#include <Legacy/If/Colour.h>
#include <Legacy/If/Extended.h>
#include <Legacy/If/Orientation.h>
#include <Legacy/If/String.h>

#include <cmath>
#include <limits>

namespace Legacy::If::Test {
namespace {

using Orlek::Colour_t;
using TextPair = std::pair<std::string, std::string>;

constexpr float k_nan = std::numeric_limits<float>::quiet_NaN();
constexpr float k_inf = std::numeric_limits<float>::infinity();

boost::intrusive_ptr<ColourItem> MakeColour(Colour_t const& colour)
{
    auto item = Make<ColourItem>(7U);
    item->SetVal(colour);
    return item;
}

boost::intrusive_ptr<OrientationItem> MakeOrientation(Orientation_t const& orientation)
{
    auto item = Make<OrientationItem>(7U);
    item->Set(orientation);
    return item;
}

TEST(Colour, IsPackedWithoutRoundingOrClamping)
{
    struct Case
    {
        float component;
        unsigned int ofItem;
        unsigned int ofInfo;
    };
    for (Case const& c : {Case{0.5F, 0x7F, 0x7F}, Case{std::nextafter(1.0F, 0.0F), 0xFE, 0xFE}, Case{1.0F, 0xFF, 0xFF},
                          Case{1.5F, 126, 126}, Case{-0.5F, 0, 0x81}, Case{-1.0F / 256, 0, 0}, Case{-1.0F, 0, 1},
                          Case{16777215.0F, 1, 1}, Case{-16777215.0F, 0, 0xFF}, Case{3e38F, 0, 0}, Case{-3e38F, 0, 0},
                          Case{k_nan, 0, 0}, Case{k_inf, 0, 0}, Case{-k_inf, 0, 0}})
    {
        auto const info = MakeInfo<ColourInfo>();
        for (int place = 0; place < 4; ++place) {
            Colour_t colour;
            (place == 0 ? colour.b : place == 1 ? colour.g : place == 2 ? colour.r : colour.a) = c.component;
            info->SetMin(colour);
            EXPECT_EQ(MakeColour(colour)->GetARGB(), c.ofItem << 8 * place) << c.component;
            EXPECT_EQ(info->GetMinARGB(), c.ofInfo << 8 * place) << c.component;
        }
    }
    auto const item = MakeColour({1, 1, 1, 1});
    item->Set(0.25F, 0.5F, 0.75F); // and transparent
    EXPECT_EQ(item->GetARGB(), 0x003F7FBFU);
}

TEST(Colour, SchemaBindsNothing)
{
    auto const info = MakeInfo<ColourInfo>();
    info->SetMax({0.5F, 0.5F, 0.5F, 0.5F});
    EXPECT_EQ(Validated(*MakeColour({9, 9, 9, 9}), info), Texts{});
    EXPECT_TRUE(info->IsEqualBounds(MakeInfo<ColourInfo>()));
    EXPECT_EQ(info->MergeBounds(MakeInfo<ColourInfo>()), 0);
    EXPECT_EQ(info->GetMax().a, 0.5F);
}

TEST(Colour, SchemasAreAssignedExactlyAndValuesWithinTheTolerance)
{
    Colour_t const tiny{1e-11F, 0.0F, 0.0F, 0.0F};
    for (auto const set : {&ColourInfo::SetMin, &ColourInfo::SetMax, &ColourInfo::SetDefault}) {
        auto const a = MakeInfo<ColourInfo>();
        auto const b = MakeInfo<ColourInfo>();
        ((*b).*set)(tiny);
        EXPECT_EQ(Assign(*a, b), (Outcome{0, 1}));
        EXPECT_EQ(Printed(*a), Printed(*b));
    }
    auto const item = MakeColour({});
    EXPECT_TRUE(item->IsEqualValue(MakeColour({0, 0, 0, -k_floatTolerance})));
    EXPECT_EQ(Assign(*item, MakeColour(tiny)), (Outcome{0, 0}));
    EXPECT_EQ(item->GetA(), 0.0F);
    for (Colour_t const& other :
         {Colour_t{2e-10F, 0, 0, 0}, Colour_t{0, -2e-10F, 0, 0}, Colour_t{0, 0, 2e-10F, 0}, Colour_t{0, 0, 0, k_inf}})
    {
        EXPECT_FALSE(item->IsEqualValue(MakeColour(other)));
        EXPECT_EQ(Assign(*MakeColour({}), MakeColour(other), 99), (Outcome{0, 1}));
    }
    EXPECT_EQ(Assign(*item, MakeColour({k_nan, 0, 0, 0})), (Outcome{0, 1})); // equals nothing, so it always differs
    EXPECT_FALSE(item->IsEqualValue(item));
}

TEST(Colour, HasItsTextForms)
{
    auto const info = MakeInfo<ColourInfo>();
    info->SetMin({1, 2, 3, 4});
    info->SetMax({0.5F, 6, 7, 8});
    info->SetDefault({9, 10, 11, 12.25F});
    std::string const compact = "1, 2, 3, 4 < 9, 10, 11, 12.25 < 0.5, 6, 7, 8";
    EXPECT_EQ(Printed(*info), compact);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Colour\ndefault: " + compact + '\n');
    auto const item = MakeColour({1, 0.5F, 0.25F, 0});
    EXPECT_EQ(Printed(*item), "(1 0.5 0.25 0)");
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Colour\nvalue: a1, r0.5, g0.25, b 0\n");

    struct Case
    {
        char const* text;
        char const* message;
        Colour_t value;
    };
    Colour_t const old{4, 3, 2, 1};
    for (Case const& c :
         {Case{"(1 0.5 0.25 0)", "", {1, 0.5F, 0.25F, 0}}, Case{"12 3 4 5", "", {2, 3, 4, 5}},
          Case{" (1 2 3 4)", "Error parsing colourItem.a\n", old}, Case{"(1", "Error parsing colourItem.r\n", old},
          Case{"(1 2 word", "Error parsing colourItem.g\n", old}, Case{"(1 2 3)", "Error parsing colourItem.b\n", old}})
    {
        auto const target = MakeColour(old);
        EXPECT_EQ(ReadText(*target, c.text), std::pair(*c.message == '\0', std::string(c.message))) << c.text;
        EXPECT_EQ(target->Val(), c.value) << c.text;
    }
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
    EXPECT_EQ(colour.payload, (Bytes{0, 0, 0x80, 0x4B, 0, 0, 0, 0x4C, 0, 0, 0x40, 0x4C, 0, 0, 0x7F, 0x4F}));
    Record const orientation = RecordOf(*MakeOrientation({1, 2.5F, -1}));
    EXPECT_TRUE(Rebuild(orientation).second->IsEqualValue(MakeOrientation({1, 2, 0}))); // no fraction, none below 0
    for (Record const& good : {colour, orientation}) {
        auto const item = Rebuild(good).second;
        std::string const before = Dumped(*item);
        for (std::size_t size = 0; size < 20; ++size) {
            Record other = good;
            other.payload.assign(size == good.payload.size() ? 0 : size, 0x40);
            EXPECT_EQ(Read(*item, other), IfErrInvalidArgument) << size;
        }
        EXPECT_EQ(Dumped(*item), before);
    }
}

TEST(Orientation, ComparesWithinTheToleranceAndHasNoText)
{
    auto const item = MakeOrientation({1.5F, 0, -2});
    EXPECT_EQ(Assign(*item, MakeOrientation({1.5F, 1e-11F, -2})), (Outcome{0, 0}));
    EXPECT_EQ(item->GetInclination(), 0.0F);
    for (Orientation_t const& other : {Orientation_t{1, 0, -2}, Orientation_t{1.5F, -1, -2}, Orientation_t{1.5F, 0, 2}})
    {
        EXPECT_FALSE(item->IsEqualValue(MakeOrientation(other)));
        EXPECT_EQ(Assign(*Hold(item->DeepCopy()), MakeOrientation(other), 5), (Outcome{0, 1}));
    }
    EXPECT_EQ(ReadText(*item, "1 2 3"), std::pair(false, std::string("Impl. me")));
    EXPECT_EQ(item->GetValAsString(), "OrientationItem");
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Orientation\nbearing: 1.5\ninclination: 0\nroll: -2\n");
}

TEST(Extended, HoldsAPairOfTextsInMemoryAlone)
{
    auto const info = MakeInfo<ExtendedInfo>();
    EXPECT_FALSE(info->IsEqualBounds(info));
    EXPECT_EQ(info->MergeBounds(info), IfErrTypeNotAssignable);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\n");
    EXPECT_EQ(Printed(*info), "");
    info->SetDefault({"", "b"});
    auto const item = Hold(info->CreateItem());
    EXPECT_TRUE(item->IsEmpty()); // by the first text alone
    EXPECT_EQ(Validated(*item, info), Texts{});
    EXPECT_EQ(Validated(*item, nullptr),
              (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "Invalid(Undefined)"}));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Invalid\n");
    EXPECT_EQ(ReadText(*item, "a b"), std::pair(false, std::string()));
    ItemBase::SerialStruct_t record;
    EXPECT_EQ(item->Serialize(&record), IfErrNotSerializable);
    EXPECT_EQ(record.id, 0U);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_EQ(item->GetSerialDataSize(), 0U);

    auto const other = Hold(ExtendedItem::Create(1, {"", "c"})); // the second text counts too
    EXPECT_FALSE(other->IsEqualValue(item));
    EXPECT_EQ(Assign(*other, item, 9), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*other, item), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*MakeInfo<ExtendedInfo>(), info), (Outcome{0, 1}));
}

LocalizedString Message(std::string const& key, Texts const& arguments = {})
{
    LocalizedString message(key);
    for (std::string const& argument : arguments)
        message.AddArgument(Hold(StringItem::Create(0, argument)));
    return message;
}

TEST(LocalizedStringValue, IsShownInTheDefaultLanguage)
{
    auto const info = MakeInfo<LocalizedStringInfo>();
    auto const item = Make<LocalizedStringItem>(7U);
    EXPECT_FALSE(item->IsEmpty()); // although its message is
    item->SetVal(Message("TypesSystemNumericValidationMin", {"speed", "10"}));
    info->SetDefault(item->GetVal());
    std::string const text = "speed: the value is below the minimum of 10.";
    EXPECT_EQ(Printed(*item), text);
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: LocalizedString\nvalue: " + text + '\n');
    EXPECT_EQ(Printed(*info), '"' + text);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: LocalizedString\ndefault: " + text + '\n');
    EXPECT_EQ(item->GetVal().GetString("de"), "speed: Der Wert liegt unter dem Minimum von 10.");
    LocalizedString withNull("TypesSystemNumericValidationMin");
    withNull.AddArgument(nullptr);
    EXPECT_EQ(withNull.GetString("").find(": the value"), 0U);
}

TEST(LocalizedStringValue, SharesTheArgumentsOfItsMessageAndDoesNotTravel)
{
    auto const info = MakeInfo<LocalizedStringInfo>();
    info->SetDefault(Message("K", {"x"}));
    EXPECT_FALSE(info->IsEqualBounds(info));
    EXPECT_EQ(info->MergeBounds(info), IfErrTypeNotAssignable);
    auto const created = Hold(info->CreateItem());
    auto const item = Make<LocalizedStringItem>(7U);
    EXPECT_EQ(Assign(*item, created, 9), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, created), (Outcome{0, 0}));
    item->SetVal(Message("K", {"x"}));
    EXPECT_FALSE(item->IsEqualValue(created)); // arguments are compared as objects
    ItemBase::SerialStruct_t record;
    EXPECT_EQ(item->Serialize(&record), IfErrTypeNotAssignable);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_EQ(item->GetSerialDataSize(), 0U);
    EXPECT_EQ(Rebuild({7, 0x87, 0, {}}).first, IfErrInvalidArgument);
    EXPECT_EQ(ReadText(*item, "x"), std::pair(false, std::string("Impl. me")));
}

} // namespace
} // namespace Legacy::If::Test
