#include "KitSupport.h"
#include "Samples.h"

namespace Legacy::IfKit::Test {
namespace {

std::string Text(auto const& object, auto... how)
{
    std::ostringstream os;
    auto const fault = WriteJson(os, object, how...);
    EXPECT_FALSE(fault) << fault->ToString();
    return os.str();
}

/// What reading says is wrong with a text; nothing if it was taken.
std::string FaultOf(std::string const& text, auto&& target)
{
    std::istringstream is(text);
    auto const fault = ReadJson(is, target);
    return fault ? fault->ToString() : "";
}

template<typename Root>
boost::intrusive_ptr<Root> FromText(std::string const& text)
{
    boost::intrusive_ptr<Root> object;
    EXPECT_EQ(FaultOf(text, object), "") << text;
    return object;
}

bool AreAlike(InfoBase const& one, InfoBase const& other) { return IsSameSchema(one, other); }

/// A NaN and a message equal no copy of theirs; texts tell what they hold.
bool AreAlike(ItemBase const& one, ItemBase const& other)
{
    return one.GetId() == other.GetId() && one.IsEqualType(&other) &&
           (one.IsEqualValue(&other) || ValueText(one) == ValueText(other));
}

template<typename Root>
void ExpectCarried(std::vector<boost::intrusive_ptr<Root>> const& samples)
{
    for (auto const& sample : samples) {
        for (auto const layout : {JsonLayout_t::Compact, JsonLayout_t::Indented}) {
            std::string const text = Text(*sample, layout);
            auto const copy = FromText<Root>(text);
            ASSERT_TRUE(copy && AreAlike(*copy, *sample)) << text;
            EXPECT_EQ(Text(*copy, layout), text);
        }
    }
}

TEST(Json, CarriesEveryValueAndSchemaExactly)
{
    ExpectCarried(SampleItems());
    ExpectCarried(SampleInfos());
    auto const numbers = []<typename T>(T) {
        std::ostringstream os;
        EXPECT_FALSE(WriteBareJson(os, *SamplesOf(Family<NumericArrayInfo<T>, NumericArrayItem<T>>()).back()));
        return os.str();
    };
    EXPECT_EQ(numbers(FloatTraits()),
              R"_([0,1,100,-3.4028235e+38,3.4028235e+38,-0,0.1,1.1754944e-38,1e-45,"Infinity","-Infinity","NaN",)_"
              R"_("NaN(0xffc00000)","NaN(0x7fc00005)",1e+22,0.6666667])_");
    EXPECT_EQ(numbers(DoubleTraits()),
              R"_([0,1,100,-1.7976931348623157e+308,1.7976931348623157e+308,-0,0.1,2.2250738585072014e-308,5e-324,)_"
              R"_("Infinity","-Infinity","NaN","NaN(0xfff8000000000000)","NaN(0x7ff8000000000005)",1e+22,)_"
              R"_(0.6666666666666666])_");
}

/// Two levels, a value with other members than its schema, and an envelope that says more.
constexpr auto k_sample =
    R"({"format":1,"sections":[{"path":"port","id":16777215,"parameters":[{"schema":{"title":"mtu",)"
    R"("type":"integer","minimum":68,"maximum":9216,"default":1500,"x-legacyif":{"id":0,"type":"Numeric",)"
    R"("elementType":"U16","permission":6,"displayName":"Frame size","unit":"bytes"},)"
    R"("description":"Largest frame"},"value":65535}],"sections":[{"path":"port/stp","id":1074003967,)"
    R"("parameters":[{"schema":{"title":"timer","type":"array","prefixItems":[{"title":"on","type":"boolean",)"
    R"("default":false,"x-legacyif":{"id":1,"type":"Bool","permission":4660}}],"items":false,"minItems":1,)"
    R"("x-legacyif":{"id":1073741824,"type":"Composite","permission":0}},"members":[{"id":9,"type":"Numeric",)"
    R"("elementType":"Float"}],"value":[0.1]}]}]}]})";

TEST(Json, ShowsDirectoriesAsTreesAndElementsAsNumbers)
{
    auto const mode = Named<EnumInfo>("mode");
    mode->SetTable({{"off", 0, false}, {"auto", 2, true}});
    EXPECT_EQ(Text(*mode),
              R"({"$schema":"https://json-schema.org/draft/2020-12/schema","title":"mode","type":"integer",)"
              R"("enum":[0,2],"default":0,"x-legacyif":{"id":1,"type":"Enum","permission":0,)"
              R"("elements":[{"name":"off"},{"name":"auto","disabled":true}]}})");
    auto const timer = Named<CompositeInfo>("timer");
    timer->SetInfos({Named<BoolInfo>("on")});
    EXPECT_EQ(Text(*timer, JsonLayout_t::Indented), R"({
  "$schema": "https://json-schema.org/draft/2020-12/schema",
  "title": "timer",
  "type": "array",
  "prefixItems": [
    {
      "title": "on",
      "type": "boolean",
      "default": false,
      "x-legacyif": {"id": 1, "type": "Bool", "permission": 0}
    }
  ],
  "items": false,
  "minItems": 1,
  "x-legacyif": {"id": 1, "type": "Composite", "permission": 0}
}
)");
    InfoItemDirectory directory;
    ASSERT_EQ(FaultOf(k_sample, directory), "");
    EXPECT_EQ(Text(directory, JsonContent_t::Everything), k_sample);
    EXPECT_EQ(Text(directory, JsonContent_t::Values),
              R"({"format":1,"sections":[{"path":"port","id":16777215,"parameters":[{"name":"mtu","id":0,)"
              R"("type":"Numeric","elementType":"U16","value":65535}],"sections":[{"path":"port/stp","id":1074003967,)"
              R"("parameters":[{"name":"timer","id":1073741824,"type":"Composite","members":)"
              R"([{"id":9,"type":"Numeric","elementType":"Float"}],"value":[0.1]}]}]}]})");
    InfoItemDirectory bare;
    EXPECT_EQ(FaultOf(Text(directory, JsonContent_t::Schemas), bare), "");
    EXPECT_EQ(
        Text(bare, JsonContent_t::Values),
        R"({"format":1,"sections":[{"path":"port","id":16777215,"sections":[{"path":"port/stp","id":1074003967}]}]})");
}

TEST(Json, RebuildsDirectoriesAndDeltas)
{
    InfoItemDirectory copy;
    ASSERT_EQ(FaultOf(k_sample, copy), "");
    auto const mtu = copy.FindInfo("port", "mtu");
    EXPECT_EQ(mtu->GetInfo()->GetPermission(), Permission_t{6});
    EXPECT_EQ(If::Test::Printed(*mtu->GetInfo()), "68 <= 1500 <= 9216");
    EXPECT_EQ(If::Test::Printed(*copy.FindInfo("port/stp", "timer")->GetInfo()), "(default=False)");
    EXPECT_EQ(copy.FindItem(mtu->GetInfo()->GetId())->GetItem()->GetValAsString(), "65535");
    EXPECT_EQ(copy.FindItem("port/stp", "timer")->GetItem()->GetValAsString(), "(0.1)");
    boost::intrusive_ptr<InfoHolder const> const twin(mtu->DeepCopy());
    EXPECT_EQ(twin->GetDisplayName() + '|' + twin->GetDescription() + '|' + twin->GetUnit(),
              "Frame size|Largest frame|bytes");

    // A document of a directory is one of a delta too, which has the same content in another order.
    InfoItemDirectoryDelta delta;
    ASSERT_EQ(FaultOf(k_sample, delta), "");
    auto const second = std::make_shared<InfoItemDirectoryDelta>();
    ASSERT_EQ(FaultOf(Text(delta, JsonLayout_t::Indented), *second), "");
    EXPECT_EQ(Text(*second), Text(delta));
    InfoItemDirectory other;
    EXPECT_EQ(other.UpdateFromDelta(second, true, true), 0);
    EXPECT_EQ(Text(other, JsonContent_t::Everything), k_sample);

    // Values alone get schemas that are as new.
    std::string const values = Text(copy, JsonContent_t::Values);
    InfoItemDirectory bare;
    ASSERT_EQ(FaultOf(values, bare), "");
    EXPECT_EQ(Text(bare, JsonContent_t::Values), values);

    EXPECT_TRUE(FaultOf(k_sample, other).ends_with("the directory is not empty")); // it is filled once
}

TEST(Json, HandsOutWhatStandsBeforeAFault)
{
    std::string seen;
    JsonParts_t const parts{[&](SectionId const& section) {
                                seen += section.GetSectionName() + ' ';
                                return std::string(section.GetSectionDepth() == 2 ? "enough" : "");
                            },
                            [&](JsonParts_t::InfoPtr const& info) {
                                seen += info->GetInfo()->GetName() + ' ';
                                return std::string();
                            },
                            [&](JsonParts_t::ItemPtr const& item, std::string const&) {
                                seen += item->GetItem()->GetValAsString() + ' ';
                                return std::string();
                            }};
    EXPECT_EQ(FaultOf(k_sample, parts), "byte 361, line 1, column 362, at /sections/0/sections/0: enough");
    EXPECT_EQ(seen, "port mtu 65535 port/stp ");
}

TEST(Json, CarriesBareValuesUnderTheirSchema)
{
    auto const timer = FreshInfo<CompositeInfo>();
    timer->AddInfo(FreshInfo<NumericInfo<S64Traits>>(1, "a"));
    timer->AddInfo(FreshInfo<BoolArrayInfo>(2, "b"));
    std::istringstream is("[-9223372036854775808, [true]]");
    ItemPtr item;
    EXPECT_FALSE(ReadBareJson(is, *timer, item));
    EXPECT_EQ(item->GetValAsString(), "(-9223372036854775808, (True))");
    std::ostringstream os;
    EXPECT_FALSE(WriteBareJson(os, *item));
    EXPECT_EQ(os.str(), "[-9223372036854775808,[true]]");
}

/// A text that `target` cannot be read from, and the end of what is said of it; the target stays as it was.
void ExpectRefused(std::string const& text, std::string const& fault, auto& target)
{
    auto const shown = [&] {
        if constexpr (requires { target.get(); })
            return target.get();
        else
            return Text(target);
    };
    auto const before = shown();
    std::string const found = FaultOf(text, target);
    EXPECT_TRUE(found.ends_with(fault)) << text << "\n" << found;
    EXPECT_EQ(shown(), before);
}

using Refused = std::pair<std::string, char const*>;

TEST(Json, RefusesValuesThatAreNone)
{
    ItemPtr item(BoolItem::Create(1, true));
    Refused const texts[] = {
        {"", "line 1, column 1: incomplete JSON"},
        {"{\n\"id\": 1,,", "line 2, column 9: syntax error"},
        {R"({"id":1,"type":"Bool","value":true} x)", "column 37: extra data"},
        {"{\"id\":1,\"type\":\"Bool\",\"value\":true // no\n}", "syntax error"},
        {R"({"id":1,"id":1})", "'id' stands there twice"},
        {R"([])", "an object is expected"},
        {R"({"type":"Bool","value":true})", "there is no 'id'"},
        {R"({"id":4294967296,"type":"Bool","value":true})", "at /id: a whole number from 0 to 4294967295 is expected"},
        {R"({"id":-1,"type":"Bool","value":true})", "at /id: a whole number from 0 to 4294967295 is expected"},
    };
    for (auto const& [text, fault] : texts)
        ExpectRefused(text, fault, item);
    Refused const rests[] = {
        {R"("bool","value":true})", "at /type: there is no type of this name"},
        {R"("Connection","value":true})", "there are no values of this type and element type"},
        {R"("Bool","elementType":"U8","value":true})", "there are no values of this type and element type"},
        {R"("Bool","value":1})", "at /value: true or false is expected"},
        {R"("Bool","members":[],"value":true})", "at /members: this type has no members"},
        {R"("Bool","value":true,"more":1})", "'more' is not known here"},
        {R"("Numeric","elementType":"U8","value":256})", "at /value: a whole number from 0 to 255 is expected"},
        {R"("Numeric","elementType":"U8","value":0.5})", "at /value: a whole number from 0 to 255 is expected"},
        {R"("Numeric","elementType":"S64","value":9223372036854775808})", "9223372036854775807 is expected"},
        {R"("Numeric","elementType":"S64","value":9223372036854775807.0})", "9223372036854775807 is expected"},
        {R"("Numeric","elementType":"Float","value":3.4028236e38})", "\"NaN\" is expected"},
        {R"_("Numeric","elementType":"Float","value":"NaN(0x7f800000)"})_", "\"NaN\" is expected"},
        {R"("Numeric","elementType":"Double","value":1e999})",
         "at /value: no number of 64 bits comes near to this one"},
        {R"("StringArray","value":["a",null]})", "at /value/1: a string is expected"},
        {"\"String\",\"value\":\"\xFF\"}", "syntax error"},
        {R"("String","value":"\ud800"})", "syntax error"},
        {R"("Colour","value":{"a":1,"r":1,"g":1}})", "at /value: there is no 'b'"},
        {R"("AppEndpoint","value":{"protocol":"Gopher","version":1,"compatVersion":1,"address":"","port":1,"group":1}})",
         "at /value/protocol: there is no protocol of this name"},
        {R"("Composite","members":[{"id":1,"type":"Bool"}],"value":[]})", "at /value: 1 members are expected"},
        {R"("LocalizedString","value":{"key":"","arguments":[{"id":1,"type":"Bool","value":7}]}})",
         "at /value/arguments/0/value: true or false is expected"},
    };
    for (auto const& [rest, fault] : rests)
        ExpectRefused(R"({"id":1,"type":)" + rest, fault, item);
}

TEST(Json, RefusesSchemasThatCannotBeHeld)
{
    InfoPtr info = FreshInfo<BoolInfo>();
    std::string const number = R"("x-legacyif":{"id":1,"type":"Numeric","elementType":"U8"}})";
    Refused const cases[] = {
        {R"({"type":"integer"})", "there is no 'x-legacyif'"},
        {R"({"multipleOf":2,)", "at /multipleOf: a schema cannot hold this"},
        {R"({"type":"string",)", "at /type: a schema cannot hold this; it would hold \"integer\""},
        {R"({"minimum":5,"maximum":4,)", "at /minimum: a schema cannot hold this; it would hold 4"},
        {R"({"maximum":256,)", "at /maximum: a whole number from 0 to 255 is expected"},
        {R"({"minimum":-1e400,)", "at /minimum: no number of 64 bits comes near to this one"},
        {R"({"x-legacyif":{"id":1,"type":"Orientation"}})", "at /x-legacyif: there are no schemas of this type"},
        {R"({"x-legacyif":{"id":1,"type":"Bool","colour":1}})", "at /x-legacyif/colour: a schema cannot hold this"},
        {R"({"x-legacyif":{"id":1,"type":"Bool","permission":65536}})", "a whole number from 0 to 65535 is expected"},
        {R"({"enum":[1],"x-legacyif":{"id":1,"type":"Enum","elements":[]}})",
         "at /x-legacyif/elements: there must be an element for each value in 'enum'"},
        {R"({"minItems":2,"maxItems":1,"x-legacyif":{"id":1,"type":"BoolArray"}})", "it would hold 1"},
        {R"({"prefixItems":[{"x-legacyif":{"id":1,"type":"Bool"}},{"const":1,"x-legacyif":{"id":1,"type":"Bool"}}],
                 "x-legacyif":{"id":1,"type":"Composite"}})",
         "at /prefixItems/1/const: true or false is expected"},
    };
    for (auto const& [text, fault] : cases)
        ExpectRefused(text.back() == ',' ? text + number : text, fault, info);
    // What is not said binds nothing, and annotations do no harm.
    auto const loose = FromText<InfoBase>(R"({"$comment":"x","examples":[1],"type":"number",
        "x-legacyif":{"id":1,"type":"Numeric","elementType":"Float"}})");
    auto const& real = dynamic_cast<NumericInfo<FloatTraits> const&>(*loose);
    EXPECT_EQ(real.GetMin(), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(real.GetMax(), std::numeric_limits<float>::infinity());
}

TEST(Json, RefusesDirectoriesThatAreNone)
{
    std::string const mtu = R"({"title":"mtu","x-legacyif":{"id":0,"type":"Bool"}})";
    std::string const port = R"({"sections":[{"path":"port","id":16777215)";
    Refused const cases[] = {
        {"[]", "an object is expected"},
        {"7", "an object is expected"},
        {R"({"format":2})", "at /format: this format is not known, only 1"},
        {R"({"more":[]})", "at /more: 'more' is not known here"},
        {R"({"parameters":[]})", "'parameters' is not known here"},
        {R"({"sections":[],"sections":[]})", "'sections' stands there twice"},
        {R"({"sections":{}})", "at /sections: an array is expected"},
        {R"({"sections":1})", "at /sections: an array is expected"},
        {R"({"sections":[1]})", "at /sections/0: an object is expected"},
        {R"({"sections":[[]]})", "at /sections/0: an object is expected"},
        {R"({"sections":[{"id":1}]})", "at /sections/0: there is no 'path'"},
        {R"({"sections":[{"path":"a","id":1}]})", "the path and the id are not those of one section"},
        {port + R"(},{"path":"x","id":16777215}]})", "at /sections/1: there is a section with this id already"},
        {port + R"(},{"path":"port","id":33554431}]})", "section 'port' has no place in the directory, code -47"},
        {port + R"(,"parameters":[{"schema":)" + mtu + R"(},{"schema":)" + mtu + "}]}]}",
         "at /sections/0/parameters/1: there is a schema with this id already"},
        {port + R"(,"parameters":[{"schema":)" + mtu + R"(,"value":7}]}]})",
         "at /sections/0/parameters/0/value: true or false is expected"},
        {R"({"schemas":[)" + mtu + "]}",
         "parameter 'mtu' with the id 0x00000000 has no place in the directory, code -25"},
        {port + R"(}],"values":[{"id":0,"type":"Orientation","value":{"bearing":0,"inclination":0,"roll":0}}]})",
         "the value with the id 0x00000000 has no place in the directory, code -25"},
        {R"({"values":[{"id":0,"name":"a","type":"Bool","value":true}]})",
         "parameter 'a' with the id 0x00000000 has no place in the directory, code -25"},
    };
    for (auto const& [text, fault] : cases) {
        InfoItemDirectory directory;
        ExpectRefused(text, fault, directory);
    }
}

TEST(Json, FollowsNoDepthThatInputChooses)
{
    ItemPtr const inner = Make<CompositeItem>(1U);
    std::string const text = Text(*Deep(inner, k_maxJsonMembers));
    EXPECT_EQ(Text(*FromText<ItemBase>(text)), text);
    std::ostringstream os;
    EXPECT_EQ(WriteJson(os, *Deep(inner, k_maxJsonMembers + 1))->ToString(), "members lie more than 32 deep");
    for (auto const* const part : {"[", "{\"a\":", "{\"id\":1,\"type\":\"Composite\",\"members\":["}) {
        std::string deep;
        for (int i = 0; i < 100000; ++i)
            deep += part;
        ItemPtr item;
        EXPECT_NE(FaultOf(deep, item), "");
        InfoItemDirectory directory;
        EXPECT_NE(FaultOf(deep, directory), "");
        EXPECT_NE(FaultOf("{\"sections\":[{\"sections\":" + deep, directory), "");
    }
}

TEST(Json, ReadsStreamsInAnyPieces)
{
    struct Broken : std::stringbuf
    {
        using std::stringbuf::stringbuf;
        int_type underflow() override
        {
            int_type const next = std::stringbuf::underflow();
            return next != traits_type::eof() ? next : throw std::runtime_error("broken");
        }
    };
    Broken broken(R"({"id":1,)");
    std::istream is(&broken);
    ItemPtr item;
    EXPECT_EQ(ReadJson(is, item)->reason, "the text cannot be read");

    // Parts of strings and numbers at every place of the reader's own pieces.
    std::string text =
        Text(*SamplesOf(Family<NumericArrayInfo<DoubleTraits>, NumericArrayItem<DoubleTraits>>()).back());
    for (std::size_t const padding : {65236U, 65336U, 65436U, 65459U}) {
        auto const copy = FromText<ItemBase>(std::string(padding, ' ') + text);
        EXPECT_EQ(Text(*copy), text);
    }
}

} // namespace
} // namespace Legacy::IfKit::Test
