#include "TestSupport.h"

#include <Legacy/If/Colour.h>
#include <Legacy/If/Extended.h>
#include <Legacy/If/NumericTraits.h>
#include <Legacy/If/Orientation.h>
#include <Legacy/If/String.h>

#include <cmath>
#include <cstring>
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
    for (Case const& c : {Case{0.0F, 0, 0}, Case{0.5F, 0x7F, 0x7F}, Case{0.999F, 0xFE, 0xFE}, Case{1.0F, 0xFF, 0xFF},
                          Case{std::nextafter(1.0F, 0.0F), 0xFE, 0xFE}, Case{1.5F, 126, 126}, Case{-0.5F, 0, 0x81},
                          Case{-1.0F / 256, 0, 0}, Case{-1.0F, 0, 1}, Case{16777216.0F, 0, 0}, Case{16777215.0F, 1, 1},
                          Case{-16777215.0F, 0, 0xFF}, Case{3e38F, 0, 0}, Case{-3e38F, 0, 0}, Case{k_nan, 0, 0},
                          Case{k_inf, 0, 0}, Case{-k_inf, 0, 0}})
    {
        auto const info = MakeInfo<ColourInfo>();
        for (int place = 0; place < 4; ++place) {
            Colour_t colour;
            (place == 0 ? colour.b : place == 1 ? colour.g : place == 2 ? colour.r : colour.a) = c.component;
            info->SetMin(colour);
            info->SetMax(colour);
            info->SetDefault(colour);
            EXPECT_EQ(MakeColour(colour)->GetARGB(), c.ofItem << 8 * place) << c.component;
            EXPECT_EQ(info->GetMinARGB(), c.ofInfo << 8 * place) << c.component;
            EXPECT_EQ(info->GetMaxARGB(), c.ofInfo << 8 * place) << c.component;
            EXPECT_EQ(info->GetDefaultARGB(), c.ofInfo << 8 * place) << c.component;
        }
    }
}

TEST(Colour, SetOfThreeMakesItTransparent)
{
    ColourItem item(1);
    item.Set(1.0F, 0.25F, 0.5F, 0.75F);
    EXPECT_EQ(item.GetARGB(), 0xFF3F7FBFU);
    item.Set(0.25F, 0.5F, 0.75F);
    EXPECT_EQ(item.Val(), (Colour_t{0.0F, 0.25F, 0.5F, 0.75F}));
    EXPECT_EQ(item.GetARGB(), 0x003F7FBFU);
    EXPECT_FALSE(item.IsEmpty());
}

TEST(Colour, SchemaBindsNothing)
{
    auto const info = MakeInfo<ColourInfo>();
    info->SetMax({0.5F, 0.5F, 0.5F, 0.5F});
    info->SetDefault({9.0F, 9.0F, 9.0F, 9.0F});
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(item->GetId(), 7U);
    EXPECT_EQ(item->GetValAsString(), "(9 9 9 9)");
    EXPECT_EQ(Validated(*item, info), Texts{});
    EXPECT_EQ(Validated(*item, nullptr), Texts{});
    EXPECT_TRUE(info->IsEqualBounds(MakeInfo<StringInfo>()));
    EXPECT_TRUE(info->IsEqualBounds(nullptr));
    EXPECT_EQ(info->MergeBounds(MakeInfo<ColourInfo>()), 0);
    EXPECT_EQ(info->GetMax().a, 0.5F);
    EXPECT_EQ(info->MergeBounds(MakeInfo<StringInfo>()), IfErrBoundsTypeMismatch);
    EXPECT_EQ(info->MergeBounds(nullptr), IfErrBoundsTypeMismatch);
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
        EXPECT_EQ(Assign(*a, b), (Outcome{0, 0}));
        EXPECT_EQ(Printed(*Hold(a->DeepCopy(9))), Printed(*b));
    }
    EXPECT_EQ(Assign(*MakeInfo<ColourInfo>(), nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*MakeInfo<ColourInfo>(), MakeInfo<StringInfo>()), (Outcome{IfErrTypeNotAssignable, -1}));

    auto const item = MakeColour({});
    EXPECT_TRUE(item->IsEqualValue(MakeColour(tiny)));
    EXPECT_EQ(Assign(*item, MakeColour(tiny)), (Outcome{0, 0}));
    EXPECT_EQ(item->GetA(), 0.0F);
    EXPECT_TRUE(item->IsEqualValue(MakeColour({0, 0, 0, -k_floatTolerance})));
    for (Colour_t const& other :
         {Colour_t{2e-10F, 0, 0, 0}, Colour_t{0, -2e-10F, 0, 0}, Colour_t{0, 0, 2e-10F, 0}, Colour_t{0, 0, 0, k_inf}})
    {
        auto const target = MakeColour({});
        auto const source = MakeColour(other);
        EXPECT_FALSE(target->IsEqualValue(source));
        EXPECT_EQ(Assign(*target, source, 99), (Outcome{0, 1}));
        EXPECT_EQ(target->Val(), other);
    }
    EXPECT_EQ(Assign(*item, MakeColour({k_nan, 0, 0, 0})), (Outcome{0, 1})); // equals nothing, so it always differs
    EXPECT_TRUE(std::isnan(item->GetA()));
    EXPECT_FALSE(item->IsEqualValue(item));
    EXPECT_FALSE(item->IsEqualValue(nullptr));
    EXPECT_EQ(Assign(*item, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*item, MakeOrientation({})), (Outcome{IfErrTypeNotAssignable, -1}));
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
}

TEST(Colour, IsReadFromItsCompactForm)
{
    struct Case
    {
        char const* text;
        char const* message;
        Colour_t value;
    };
    Colour_t const old{4, 3, 2, 1};
    for (Case const& c :
         {Case{"(1 0.5 0.25 0)", "", {1, 0.5F, 0.25F, 0}}, Case{"x1 2 3 4", "", {1, 2, 3, 4}},
          Case{"12 3 4 5", "", {2, 3, 4, 5}}, Case{"(1 2 3 4", "", {1, 2, 3, 4}},
          Case{"", "Error parsing colourItem.a\n", old}, Case{" (1 2 3 4)", "Error parsing colourItem.a\n", old},
          Case{"(", "Error parsing colourItem.a\n", old}, Case{"(1", "Error parsing colourItem.r\n", old},
          Case{"(1 2 word", "Error parsing colourItem.g\n", old}, Case{"(1 2 3)", "Error parsing colourItem.b\n", old}})
    {
        auto const item = MakeColour(old);
        EXPECT_EQ(ReadText(*item, c.text), std::pair(*c.message == '\0', std::string(c.message))) << c.text;
        EXPECT_EQ(item->Val(), c.value) << c.text;
    }
    std::istringstream in("(1 2 3 4)rest");
    std::ostringstream out;
    EXPECT_TRUE(MakeColour({})->SetValFromStream(in, out, nullptr));
    EXPECT_EQ(in.get(), ')');
    in.setstate(std::ios::eofbit);
    EXPECT_FALSE(MakeColour({})->SetValFromStream(in, out, nullptr));
    EXPECT_EQ(out.str(), "Error parsing colourItem\n");
}

TEST(FloatRecords, HoldTheirPartsInOrder)
{
    // In this form of a float the bytes of its integer part are swapped: 1 stands as 16777216.
    auto const colour = MakeColour({1, 2, 3, 255});
    Record record = RecordOf(*colour);
    EXPECT_EQ(record.type, 0x80);
    EXPECT_EQ(record.numericType, 0);
    EXPECT_EQ(colour->GetSerialDataSize(), 16U);
    std::vector<float> stored(4);
    ASSERT_EQ(record.payload.size(), 16U);
    std::memcpy(stored.data(), record.payload.data(), 16);
    EXPECT_EQ(stored, (std::vector<float>{16777216.0F, 33554432.0F, 50331648.0F, 4278190080.0F}));
    auto const [code, copy] = Rebuild(record);
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(colour->IsEqualValue(copy));

    auto const orientation = MakeOrientation({1, 2.5F, -1});
    Record const short_ = RecordOf(*orientation);
    EXPECT_EQ(short_.type, 0x83);
    ASSERT_EQ(short_.payload.size(), 12U);
    EXPECT_EQ(Rebuild(short_).first, 0);
    EXPECT_TRUE(Rebuild(short_).second->IsEqualValue(MakeOrientation({1, 2, 0}))); // no fractions, nothing below 0

    for (ItemBase* const item : {static_cast<ItemBase*>(colour.get()), static_cast<ItemBase*>(orientation.get())}) {
        Record const good = RecordOf(*item);
        std::string const before = Dumped(*item);
        for (std::size_t size = 0; size < 20; ++size) {
            Record cut = good;
            cut.payload.assign(size == good.payload.size() ? 0 : size, 0x40);
            EXPECT_EQ(Read(*item, cut), IfErrInvalidArgument) << size;
        }
        EXPECT_EQ(Read(*item, {8, good.type, 0, good.payload}), IfErrInvalidArgument);
        EXPECT_EQ(Read(*item, {7, 1, 0, good.payload}), IfErrInvalidArgument);
        EXPECT_EQ(Read(*item, {7, good.type, 9, good.payload}), IfErrInvalidArgument);
        EXPECT_EQ(item->Deserialize(nullptr), IfErrNullArgument);
        EXPECT_EQ(item->Serialize(nullptr), IfErrInvalidArgument);
        EXPECT_EQ(Dumped(*item), before);
    }
}

TEST(Orientation, ComparesWithinTheToleranceAndHasNoText)
{
    auto const item = MakeOrientation({});
    EXPECT_TRUE(item->IsEqualValue(MakeOrientation({0, 1e-11F, 0})));
    EXPECT_EQ(Assign(*item, MakeOrientation({0, 1e-11F, 0})), (Outcome{0, 0}));
    EXPECT_EQ(item->GetInclination(), 0.0F);
    for (Orientation_t const& other : {Orientation_t{1, 0, 0}, Orientation_t{0, -1, 0}, Orientation_t{0, 0, 2e-10F}}) {
        auto const target = MakeOrientation({});
        EXPECT_FALSE(target->IsEqualValue(MakeOrientation(other)));
        EXPECT_EQ(Assign(*target, MakeOrientation(other), 5), (Outcome{0, 1}));
        EXPECT_EQ(target->GetBearing(), other.bearing);
        EXPECT_EQ(target->GetInclination(), other.inclination);
        EXPECT_EQ(target->GetRoll(), other.roll);
        EXPECT_TRUE(Hold(target->DeepCopy(9))->IsEqualValue(target));
    }
    EXPECT_EQ(Assign(*item, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*item, MakeColour({})), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Validated(*item, nullptr), Texts{});
    EXPECT_EQ(ReadText(*item, "1 2 3"), std::pair(false, std::string("Impl. me")));
    EXPECT_EQ(item->GetValAsString(), "OrientationItem");
    EXPECT_EQ(Dumped(*MakeOrientation({1.5F, 0, -2})),
              "id: 7\ntype: Orientation\nbearing: 1.5\ninclination: 0\nroll: -2\n");
}

TEST(Extended, LivesInMemoryAlone)
{
    auto const item = Hold(ExtendedItem::Create(7, {"a", "b"}));
    EXPECT_EQ(item->GetSerialDataSize(), 0U);
    EXPECT_EQ(item->Serialize(nullptr), IfErrNotSerializable);
    EXPECT_EQ(item->Deserialize(nullptr), IfErrNotSerializable);
    ItemBase::SerialStruct_t record;
    EXPECT_EQ(item->Serialize(&record), IfErrNotSerializable);
    EXPECT_EQ(record.id, 0U);
    EXPECT_EQ(record.type, 0);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_EQ(Rebuild({7, 0xfc, 0, {}}), std::pair(IfErrInvalidArgument, boost::intrusive_ptr<ItemBase>()));
    EXPECT_EQ(ReadText(*item, "a b"), std::pair(false, std::string()));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Invalid\n");
    EXPECT_EQ(item->GetValAsString(), "");
    EXPECT_EQ(item->GetVal(), (TextPair{"a", "b"}));
}

TEST(Extended, HoldsAPairOfTexts)
{
    auto const info = MakeInfo<ExtendedInfo>();
    EXPECT_EQ(info->SetDefault({"", "b"}), 0);
    EXPECT_FALSE(info->IsEqualBounds(info));
    EXPECT_EQ(info->MergeBounds(info), IfErrTypeNotAssignable);
    EXPECT_EQ(info->MergeBounds(nullptr), IfErrTypeNotAssignable);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\n");
    EXPECT_EQ(Printed(*info), "");
    auto const other = Hold(info->DeepCopy(9, "other"));
    EXPECT_EQ(Assign(*other, info), (Outcome{0, 0}));
    other->SetDefault({"", "c"});
    EXPECT_EQ(Assign(*other, info), (Outcome{0, 1}));
    EXPECT_EQ(other->GetDefault(), (TextPair{"", "b"}));
    EXPECT_EQ(Assign(*other, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*other, MakeInfo<StringInfo>()), (Outcome{IfErrTypeNotAssignable, -1}));

    auto const created = Hold(info->CreateItem());
    EXPECT_TRUE(created->IsEmpty()); // by the first text alone
    auto const item = Hold(ExtendedItem::Create(1, {"a", ""}));
    EXPECT_FALSE(item->IsEmpty());
    EXPECT_EQ(Assign(*item, created, 9), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, created), (Outcome{0, 0}));
    EXPECT_TRUE(item->IsEqualValue(created));
    item->SetVal({"", "x"}, *info);
    EXPECT_EQ(item->Val().second, "x");
    EXPECT_FALSE(item->IsEqualValue(created));
    EXPECT_EQ(Assign(*item, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*item, Hold(StringItem::Create(1, "a"))), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(item->GetVal(), (TextPair{"", "x"}));
    EXPECT_TRUE(Hold(item->DeepCopy())->IsEqualValue(item));

    EXPECT_EQ(Validated(*item, info), Texts{});
    EXPECT_EQ(Validated(*item, MakeInfo<StringInfo>()),
              (Texts{"TypesSystemValidateTypeMismatch", "speed", "String(Undefined)", "Invalid(Undefined)"}));
    EXPECT_EQ(Validated(*item, nullptr),
              (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "Invalid(Undefined)"}));
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
    EXPECT_EQ(Printed(*item), "");
    EXPECT_EQ(Printed(*info), "\"");
    EXPECT_FALSE(item->IsEmpty()); // although its message is
    item->SetVal(Message("TypesSystemNumericValidationMin", {"speed", "10"}));
    info->SetDefault(item->GetVal());
    std::string const text = "speed: the value is below the minimum of 10.";
    EXPECT_EQ(Printed(*item), text);
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: LocalizedString\nvalue: " + text + '\n');
    EXPECT_EQ(Printed(*info), '"' + text);
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: LocalizedString\ndefault: " + text + '\n');
    EXPECT_EQ(item->GetVal().GetString("de"), "speed: Der Wert liegt unter dem Minimum von 10.");
    item->SetVal(Message("no such key"));
    EXPECT_EQ(Printed(*item), "no such key");
    LocalizedString withNull("TypesSystemNumericValidationMin");
    withNull.AddArgument(nullptr);
    EXPECT_EQ(withNull.GetString("").find(": the value"), 0U);
}

TEST(LocalizedStringValue, SharesTheArgumentsOfItsMessage)
{
    auto const info = MakeInfo<LocalizedStringInfo>();
    info->SetDefault(Message("K", {"x"}));
    auto const created = Hold(info->CreateItem());
    auto const item = Make<LocalizedStringItem>(1U);
    EXPECT_EQ(Assign(*item, created, 9), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, created), (Outcome{0, 0}));
    EXPECT_TRUE(item->IsEqualValue(created));
    EXPECT_TRUE(Hold(item->DeepCopy(2))->IsEqualValue(item));
    EXPECT_EQ(item->GetVal().GetArguments(), info->GetDefault().GetArguments());
    item->SetVal(Message("K", {"x"}));
    EXPECT_FALSE(item->IsEqualValue(created)); // arguments are compared as objects
    EXPECT_EQ(Assign(*item, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*item, Hold(StringItem::Create(1, "K"))), (Outcome{IfErrTypeNotAssignable, -1}));

    auto const other = MakeInfo<LocalizedStringInfo>();
    EXPECT_EQ(Assign(*other, info), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*other, Hold(info->DeepCopy())), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*other, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*other, MakeInfo<StringInfo>()), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_FALSE(info->IsEqualBounds(info));
    EXPECT_EQ(info->MergeBounds(info), IfErrTypeNotAssignable);
}

TEST(LocalizedStringValue, DoesNotTravel)
{
    auto const item = Make<LocalizedStringItem>(7U);
    item->SetVal(Message("K"));
    ItemBase::SerialStruct_t record;
    EXPECT_EQ(item->Serialize(&record), IfErrTypeNotAssignable);
    EXPECT_EQ(item->Serialize(nullptr), IfErrTypeNotAssignable);
    EXPECT_EQ(item->Deserialize(nullptr), IfErrTypeNotAssignable);
    EXPECT_EQ(record.type, 0);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_EQ(item->GetSerialDataSize(), 0U);
    EXPECT_EQ(Rebuild({7, 0x87, 0, {}}).first, IfErrInvalidArgument);
    EXPECT_EQ(Validated(*item, nullptr), Texts{});
    EXPECT_EQ(ReadText(*item, "x"), std::pair(false, std::string("Impl. me")));
    EXPECT_EQ(item->GetVal().GetKey(), "K");
}

} // namespace
} // namespace Legacy::If::Test
