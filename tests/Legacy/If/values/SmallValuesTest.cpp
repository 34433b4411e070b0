#include "../TestSupport.h"

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
    other->SetVal({"x", "y"}, *info);                    // without any bounds
    EXPECT_EQ(other->GetVal(), (std::pair<std::string, std::string>("x", "y")));
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

using Elem = ElemType<int>;

boost::intrusive_ptr<EnumInfo> Switch()
{
    auto info = MakeInfo<EnumInfo>(true);
    for (Elem const& elem : {Elem{"off", 0}, Elem{"auto", 1, true}, Elem{"on", 2}})
        EXPECT_EQ(info->AddElem(elem), 0);
    return info;
}

TEST(EnumInfo, FindsItsElements)
{
    auto const info = Switch();
    for (Elem const& taken : {Elem{"new", 2}, Elem{"on", 9}})
        EXPECT_EQ(info->AddElem(taken), IfErrAlreadyExists);
    EXPECT_EQ(info->AddElem({"On", 9}), 0); // names compare byte for byte
    Elem elem;
    std::string name;
    int value = 0;
    EXPECT_EQ(info->GetElem(1, elem) + info->GetElemName(2, name) + info->GetElemVal("on", value), 0);
    for (int const code : {info->GetElem(3, elem), info->GetElemName(3, name), info->GetElemVal("none", value),
                           info->DisableElem(3), info->EnableElem(3), info->RemoveElem(3)})
        EXPECT_EQ(code, IfErrNotFound);
    EXPECT_EQ(elem, (Elem{"auto", 1, true}));
    EXPECT_EQ(std::pair(name, value), std::pair(std::string("on"), 2));
    EXPECT_TRUE(info->IsPresent(1) && !info->IsEnabled(1) && !info->IsEnabled(3));
    EXPECT_TRUE(info->EnableElem(1) == 0 && info->IsEnabled(1));
    EXPECT_EQ(info->RemoveElem(1), 0);
    EXPECT_EQ(Printed(*info), "off=0, on=2, On=9; default=0");
}

TEST(EnumInfo, KeepsADefaultAsFarAsTold)
{
    auto const info = MakeInfo<EnumInfo>(false);
    EXPECT_EQ(info->SetDefault(7), 0); // anything goes without elements
    info->AddElem({"one", 1});
    EXPECT_EQ(info->GetDefault(), 7);
    EXPECT_EQ(info->SetDefault(8), IfErrNotInSet);
    EXPECT_EQ(info->SetTable({{"a", 1}, {"b", 2}}), 0);
    EXPECT_EQ(info->GetDefault(), 1);
    info->DisableElem(2);
    EXPECT_EQ(info->SetDefault(2), 0);
    EXPECT_EQ(info->RemoveElem(2), 0);
    EXPECT_EQ(Validated(*Hold(info->CreateItem()), info), (Texts{"TypesSystemEnumValidationValue", "speed", "2"}));
    EXPECT_EQ(info->SetTable({}), 0);
    EXPECT_EQ(info->GetDefault(), 2);
}

TEST(EnumInfo, AssignsAllButWhetherItIsLocalized)
{
    auto const info = Switch();
    EXPECT_TRUE(Hold(info->DeepCopy(9))->IsLocalized());
    auto const target = MakeInfo<EnumInfo>(false);
    for (auto const change : {+[](EnumInfo& i) { i.EnableElem(1); }, +[](EnumInfo& i) { i.SetDefault(2); },
                              +[](EnumInfo& i) { i.GetTable()[0].name = "zero"; }})
    {
        change(*info);
        EXPECT_EQ(Assign(*target, info), (Outcome{0, 1}));
        EXPECT_EQ(Assign(*target, info), (Outcome{0, 0}));
    }
    EXPECT_FALSE(target->IsLocalized()); // stays
}

TEST(Enum, HasItsFormsAndRefusesInItsCheckedSetterOnly)
{
    auto const info = Switch();
    info->SetDefault(2);
    EXPECT_EQ(Dumped(*info) + Printed(*info), "id: 7\npermission: 4660\nname: speed\ntype: Enum\n"
                                              "off=0, auto*=1, on=2; default=2");
    auto const item = Hold(EnumItem::Create(7, -2));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Enum\nvalue: -2\n");
    EXPECT_EQ(RecordOf(*item).payload, (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(Read(*item, {7, 5, 0, {0, 0, 1}}), IfErrInvalidArgument);
    for (char const* const bad : {"", "on", "4294967296"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing enumItem\n")));
    EXPECT_EQ(Printed(*item), "-2");
    EXPECT_TRUE(ReadText(*item, "4294967295").first); // unsigned, its bits taken
    EXPECT_EQ(Printed(*item), "-1");
    item->SetVal(0, *info);
    EXPECT_EQ(item->GetVal(), 0);
    item->SetVal(1, *info); // disabled
    EXPECT_EQ(item->GetVal(), 2);
    item->SetVal(1);
    EXPECT_EQ(Validated(*item, info), Texts{}); // disabled and valid
}

std::string Dump(InfoPtr const& info, ItemPtr const& item)
{
    std::ostringstream os;
    os << std::setfill('*') << std::right;
    FormattedInfoItemDump(os, info, item);
    os << std::setw(3) << 1;
    return os.str();
}

/// Tells all types apart from its own. Dumps go by the tags.
struct Aloof : NumericInfo<U16Traits>
{
    using NumericInfo::NumericInfo;
    bool IsEqualType(ItemPtr const&) const override { return false; }
    bool IsEqualType(InfoPtr const&) const override { return false; }
};

TEST(FormattedDump, PrintsOneParameterInColumns)
{
    auto const info = MakeInfo<StringInfo>();
    auto const number = Make<NumericItem<U16Traits>>(7U);
    auto const numbers = MakeInfo<NumericInfo<U16Traits>>();
    std::string const name(40, 'n'); // wider than its column
    std::tuple<InfoPtr, ItemPtr, std::string> const rows[] = {
        // Columns leave their alignment and fill behind, as the number after them shows.
        {nullptr, nullptr, "**1"},
        {info, Hold(StringItem::Create(7, "fast")),
         "speed                            String             {fast} {\"\"; max length=256}1  "},
        {Make<StringInfo>(7U, name, Permission_t{}), nullptr, name + " String             \"\"; max length=2561  "},
        {nullptr, number, "NumericU16         01  "},
        {MakeInfo<Aloof>(), number, "speed                            NumericU16         {0} {0 <= 0 <= 65535}1  "},
        {info, number, "Type mismatch!**1"},
        {numbers, Make<NumericItem<S16Traits>>(7U), "Type mismatch!**1"},
        {numbers, Make<NumericItem<S16Traits>>(8U), "InfoItemId mismatch!**1"},
    };
    for (auto const& [schema, item, text] : rows)
        EXPECT_EQ(Dump(schema, item), text);
}

} // namespace
} // namespace Legacy::If::Test
