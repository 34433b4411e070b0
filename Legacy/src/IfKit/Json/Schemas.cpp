#include "Schemas.h"

#include "Elements.h"
#include "Values.h"
#include "Writer.h"

#include <Legacy/IfKit/TypeNames.h>
#include <Legacy/IfKit/Visit.h>

#include <algorithm>
#include <array>
#include <limits>
#include <sstream>

namespace Legacy::IfKit::Detail {

using namespace If;

namespace {

constexpr unsigned int k_noLimit = std::numeric_limits<unsigned int>::max();

/// A schema as it is being written: the words of JSON Schema, and the others.
struct Draft_t
{
    json::object schema;
    json::object extra;
};

// --- Parts of schemas --------------------------------------------------------------------------------------------

template<typename Element>
bool TakeIf(Node const& node, std::string_view key, Element& element)
{
    if (!node.Has(key))
        return false;
    Take(node[key], element);
    return true;
}

template<typename N>
constexpr N k_lowest = std::floating_point<N> ? -std::numeric_limits<N>::infinity() : std::numeric_limits<N>::lowest();
template<typename N>
constexpr N k_highest = std::floating_point<N> ? std::numeric_limits<N>::infinity() : std::numeric_limits<N>::max();

template<typename N>
struct Range_t
{
    N min = k_lowest<N>;
    N max = k_highest<N>;
};

/// The strings that pass beside numbers. A comparison with a bound lets through every NaN, and an infinity that lies
/// not beyond the bound.
template<std::floating_point N>
std::string PatternOf(Range_t<N> const& range)
{
    std::string pattern = R"(^(NaN(\(0x[0-9a-f]+\))?)";
    if (!(k_highest < N >> range.max))
        pattern += "|Infinity";
    if (!(range.min > k_lowest<N>))
        pattern += "|-Infinity";
    return pattern + ")$";
}

template<typename N>
void PutRange(Draft_t& draft, Range_t<N> const& range)
{
    if constexpr (Integer<N>) {
        draft.schema["type"] = "integer";
        draft.schema["minimum"] = Put(range.min);
        draft.schema["maximum"] = Put(range.max);
    } else {
        bool const hasNumbers = range.min != k_highest<N> && range.max != k_lowest<N>;
        draft.schema["type"] = hasNumbers ? json::value({"number", "string"}) : json::value("string");
        if (range.min != k_lowest<N>)
            (std::isfinite(range.min) ? draft.schema : draft.extra)["minimum"] = Put(range.min);
        if (range.max != k_highest<N>)
            (std::isfinite(range.max) ? draft.schema : draft.extra)["maximum"] = Put(range.max);
        draft.schema["pattern"] = PatternOf(range);
    }
}

template<typename N>
Range_t<N> TakeRange(Node const& node)
{
    Range_t<N> range;
    TakeIf(node, "minimum", range.min);
    TakeIf(node, "maximum", range.max);
    if (std::floating_point<N> && node.Has(k_extra)) {
        Node const extra = node[k_extra];
        TakeIf(extra, "minimum", range.min);
        TakeIf(extra, "maximum", range.max);
    }
    return range;
}

/// A schema within a schema, which has no identity.
json::object Inner(Draft_t&& draft)
{
    if (!draft.extra.empty())
        draft.schema[View(k_extra)] = std::move(draft.extra);
    return std::move(draft.schema);
}

template<typename N>
json::object RangeForm(Range_t<N> const& range = {})
{
    Draft_t draft;
    PutRange(draft, range);
    return Inner(std::move(draft));
}

json::object TypeForm(std::string_view type) { return {{"type", View(type)}}; }

/// An object with these members and no others.
void PutProperties(json::object& schema, json::object properties)
{
    json::array keys;
    for (auto const& property : properties)
        keys.emplace_back(property.key());
    schema["type"] = "object";
    schema["properties"] = std::move(properties);
    schema["required"] = std::move(keys);
    schema["additionalProperties"] = false;
}

/// The allowed values; none at all has a word of its own.
void PutAllowed(json::object& schema, json::array values)
{
    if (values.empty())
        schema["not"] = json::object();
    else
        schema["enum"] = std::move(values);
}

template<typename Info>
void PutSizes(json::object& schema, Info const& info)
{
    schema["type"] = "array";
    schema["minItems"] = info.GetMinSize();
    schema["maxItems"] = info.GetMaxSize();
}

template<typename Info>
void TakeSizes(Node const& node, Info& info)
{
    unsigned int min = 0;
    unsigned int max = k_noLimit;
    TakeIf(node, "minItems", min);
    TakeIf(node, "maxItems", max);
    info.SetMinSize(min);
    info.SetMaxSize(max);
}

/// Takes over the sizes, or the greatest length, of another schema, without the default that a setter would touch.
template<typename Info, typename Narrow>
void NarrowBy(Info& info, Narrow&& narrow)
{
    boost::intrusive_ptr<Info> const bounds(new Info(0, {}, {}));
    narrow(*bounds);
    info.MergeBounds(bounds);
}

/// A list's sizes and default, which need not agree.
template<typename Info>
void RestoreList(Node const& node, Info& info)
{
    info.SetMinSize(0);
    info.SetMaxSize(k_noLimit);
    typename Info::List standard;
    if (TakeIf(node, "default", standard))
        info.SetDefault(standard);
    NarrowBy(info, [&](Info& bounds) { TakeSizes(node, bounds); });
}

// --- Families ----------------------------------------------------------------------------------------------------

void Describe(Draft_t& draft, BoolInfo const& info, unsigned int)
{
    draft.schema["type"] = "boolean";
    if (info.GetFixed())
        draft.schema["const"] = info.GetDefault();
    draft.schema["default"] = info.GetDefault();
}

void Restore(Node const& node, BoolInfo& info, unsigned int)
{
    bool standard = false;
    info.SetFixed(TakeIf(node, "const", standard));
    TakeIf(node, "default", standard);
    info.SetDefault(standard);
}

template<typename T>
void Describe(Draft_t& draft, NumericInfo<T> const& info, unsigned int)
{
    PutRange<typename T::T>(draft, {info.GetMin(), info.GetMax()});
    draft.schema["default"] = Put(info.GetDefault());
}

template<typename T>
void Restore(Node const& node, NumericInfo<T>& info, unsigned int)
{
    using N = typename T::T;
    auto const range = TakeRange<N>(node);
    auto const widen = [](NumericInfo<T>& schema) {
        schema.SetMin(k_lowest<N>);
        schema.SetMax(k_highest<N>);
    };
    widen(info);
    N standard{};
    bool const hasDefault = TakeIf(node, "default", standard);
    info.SetDefault(standard);
    // Merged, the bounds leave a default alone that lies beyond them. What is no number compares with nothing.
    NarrowBy(info, [&](NumericInfo<T>& bounds) {
        widen(bounds);
        if (range.min == range.min)
            bounds.SetMin(range.min);
        if (range.max == range.max)
            bounds.SetMax(range.max);
    });
    if (range.min != range.min)
        info.SetMin(range.min);
    if (range.max != range.max)
        info.SetMax(range.max);
    if (!hasDefault)
        info.SetDefault(standard);
}

template<typename T>
void Describe(Draft_t& draft, NumericArrayInfo<T> const& info, unsigned int)
{
    PutSizes(draft.schema, info);
    draft.schema["items"] = RangeForm<typename T::T>({info.GetMin(), info.GetMax()});
    draft.schema["default"] = Put(info.GetDefault());
}

template<typename T>
void Restore(Node const& node, NumericArrayInfo<T>& info, unsigned int)
{
    using N = typename T::T;
    RestoreList(node, info);
    auto const range = node.Has("items") ? TakeRange<N>(node["items"]) : Range_t<N>();
    info.SetMin(range.min);
    info.SetMax(range.max);
}

template<typename T>
void Describe(Draft_t& draft, NumericSparseInfo<T> const& info, unsigned int)
{
    draft.schema["type"] = Integer<typename T::T> ? json::value("integer") : json::value({"number", "string"});
    PutAllowed(draft.schema, Put(info.GetTable()).as_array());
    draft.schema["default"] = Put(info.GetDefault());
}

void Describe(Draft_t& draft, StringSparseInfo const& info, unsigned int)
{
    draft.schema["type"] = "string";
    PutAllowed(draft.schema, Put(info.GetTable()).as_array());
    draft.schema["default"] = Put(info.GetDefault());
}

/// The default need not be in the table, and a NaN never is: it becomes the default as the only one that there is.
template<typename Info>
    requires requires(Info& info)
    {
        info.IsPresent(info.GetDefault());
        info.SetTable(info.GetTable());
    }
void Restore(Node const& node, Info& info, unsigned int)
{
    auto standard = info.GetDefault();
    if (TakeIf(node, "default", standard)) {
        info.SetTable({standard});
        info.SetDefault(standard);
    }
    auto table = std::exchange(info.GetTable(), {});
    table.clear();
    TakeIf(node, "enum", table);
    info.GetTable() = std::move(table);
}

void Describe(Draft_t& draft, EnumInfo const& info, unsigned int)
{
    json::array values;
    json::array elements;
    for (auto const& element : info.GetTable()) {
        values.push_back(Put(element.value));
        json::object object{{"name", Put(element.name)}};
        if (element.disabled)
            object["disabled"] = true;
        elements.push_back(std::move(object));
    }
    draft.schema["type"] = "integer";
    PutAllowed(draft.schema, std::move(values));
    draft.schema["default"] = info.GetDefault();
    draft.extra["elements"] = std::move(elements);
    if (info.IsLocalized())
        draft.extra["localized"] = true;
}

ElemType<int> TakeElement(Node const& value, Node const* element)
{
    ElemType<int> taken;
    Take(value, taken.value);
    taken.name = std::to_string(taken.value);
    if (element) {
        Take((*element)["name"], taken.name);
        TakeIf(*element, "disabled", taken.disabled);
    }
    return taken;
}

void Restore(Node const& node, EnumInfo& info, unsigned int)
{
    int standard = 0;
    TakeIf(node, "default", standard);
    info.SetDefault(standard); // before there is a table to contradict it
    Node const extra = node[k_extra];
    std::size_t const size = node.Has("enum") ? node["enum"].Size() : 0;
    bool const hasNames = extra.Has("elements");
    if (hasNames && extra["elements"].Size() != size)
        extra["elements"].Refuse("there must be an element for each value in 'enum'");
    for (std::size_t i = 0; i < size; ++i) {
        Node const values = node["enum"];
        if (!hasNames) {
            info.GetTable().push_back(TakeElement(values[i], nullptr));
            continue;
        }
        Node const elements = extra["elements"];
        Node const element = elements[i];
        info.GetTable().push_back(TakeElement(values[i], &element));
    }
}

void Describe(Draft_t& draft, StringInfo const& info, unsigned int)
{
    draft.schema["type"] = "string";
    draft.schema["maxLength"] = info.GetMaxLength();
    draft.schema["default"] = Put(info.GetDefault());
}

void Restore(Node const& node, StringInfo& info, unsigned int)
{
    unsigned int maxLength = k_noLimit;
    TakeIf(node, "maxLength", maxLength);
    std::string standard;
    TakeIf(node, "default", standard);
    info.SetMaxLength(k_noLimit);
    info.SetDefault(standard);
    NarrowBy(info, [maxLength](StringInfo& bounds) { bounds.SetMaxLength(maxLength); });
}

template<typename Info>
void DescribeList(Draft_t& draft, Info const& info, json::object items)
{
    PutSizes(draft.schema, info);
    draft.schema["items"] = std::move(items);
    draft.schema["default"] = Put(info.GetDefault());
}

void Describe(Draft_t& draft, StringArrayInfo const& info, unsigned int)
{
    DescribeList(draft, info, TypeForm("string"));
}
void Restore(Node const& node, StringArrayInfo& info, unsigned int) { RestoreList(node, info); }

void Describe(Draft_t& draft, BoolArrayInfo const& info, unsigned int)
{
    DescribeList(draft, info, TypeForm("boolean"));
}
void Restore(Node const& node, BoolArrayInfo& info, unsigned int) { RestoreList(node, info); }

void Describe(Draft_t& draft, ColourInfo const& info, unsigned int)
{
    json::object const part = RangeForm<float>();
    PutProperties(draft.schema, {{"a", part}, {"r", part}, {"g", part}, {"b", part}});
    draft.schema["default"] = Put(info.GetDefault());
    draft.extra["min"] = Put(info.GetMin());
    draft.extra["max"] = Put(info.GetMax());
}

void Restore(Node const& node, ColourInfo& info, unsigned int)
{
    auto const take = [](Node const& from, std::string_view key) {
        Orlek::Colour_t colour;
        TakeIf(from, key, colour);
        return colour;
    };
    info.SetMin(take(node[k_extra], "min"));
    info.SetMax(take(node[k_extra], "max"));
    info.SetDefault(take(node, "default"));
}

/// Points and rectangles: two parts, each with a form of its own.
template<typename Part>
json::object PartForm(Part const& part)
{
    Draft_t draft;
    Describe(draft, part, 0);
    return Inner(std::move(draft));
}

template<typename T>
void Describe(Draft_t& draft, CoordinateInfo<T> const& info, unsigned int)
{
    PutProperties(draft.schema, {{"x", PartForm(*info.X())}, {"y", PartForm(*info.Y())}});
}

template<typename T>
void Restore(Node const& node, CoordinateInfo<T>& info, unsigned int)
{
    Node const properties = node["properties"];
    Restore(properties["x"], *info.X(), 0);
    Restore(properties["y"], *info.Y(), 0);
}

template<typename Info>
void DescribeCorners(Draft_t& draft, Info const& info)
{
    PutProperties(draft.schema,
                  {{"topLeft", PartForm(*info.TopLeft())}, {"bottomRight", PartForm(*info.BottomRight())}});
}

template<typename Info>
void RestoreCorners(Node const& node, Info& info)
{
    Node const properties = node["properties"];
    Restore(properties["topLeft"], *info.TopLeft(), 0);
    Restore(properties["bottomRight"], *info.BottomRight(), 0);
}

template<typename T>
void Describe(Draft_t& draft, RectInfo<T> const& info, unsigned int)
{
    DescribeCorners(draft, info);
}

template<typename T>
void Restore(Node const& node, RectInfo<T>& info, unsigned int)
{
    RestoreCorners(node, info);
}

template<typename T>
void Describe(Draft_t& draft, RectArrayInfo<T> const& info, unsigned int)
{
    Draft_t rect;
    DescribeCorners(rect, info);
    PutSizes(draft.schema, info);
    draft.schema["items"] = Inner(std::move(rect));
}

template<typename T>
void Restore(Node const& node, RectArrayInfo<T>& info, unsigned int)
{
    TakeSizes(node, info);
    RestoreCorners(node["items"], info);
}

json::object EndpointProperties() { return {{"address", TypeForm("string")}, {"port", RangeForm<std::uint16_t>()}}; }

json::object AppEndpointForm()
{
    json::object properties{{"protocol", {{"type", {"string", "integer"}}}},
                            {"version", RangeForm<std::uint16_t>()},
                            {"compatVersion", RangeForm<std::uint16_t>()}};
    for (auto const& property : EndpointProperties())
        properties.insert(property);
    properties["group"] = RangeForm<unsigned char>();
    json::object form;
    PutProperties(form, std::move(properties));
    return form;
}

void Describe(Draft_t& draft, AddrInfo const& info, unsigned int)
{
    draft.schema["type"] = "string";
    draft.schema["default"] = Put(info.GetDefault());
}

void Describe(Draft_t& draft, EndpointInfo const& info, unsigned int)
{
    PutProperties(draft.schema, EndpointProperties());
    draft.schema["default"] = Put(info.GetDefault());
}

void Describe(Draft_t& draft, AppEndpointInfo const& info, unsigned int)
{
    draft.schema = AppEndpointForm();
    draft.schema["default"] = Put(info.GetDefault());
}

template<typename Info>
void RestoreDefault(Node const& node, Info& info)
{
    auto standard = info.GetDefault();
    if (TakeIf(node, "default", standard))
        info.SetDefault(standard);
}

void Restore(Node const& node, AddrInfo& info, unsigned int) { RestoreDefault(node, info); }
void Restore(Node const& node, EndpointInfo& info, unsigned int) { RestoreDefault(node, info); }
void Restore(Node const& node, AppEndpointInfo& info, unsigned int) { RestoreDefault(node, info); }

void Describe(Draft_t& draft, AppEndpointArrayInfo const& info, unsigned int)
{
    DescribeList(draft, info, AppEndpointForm());
}

void Restore(Node const& node, AppEndpointArrayInfo& info, unsigned int)
{
    TakeSizes(node, info);
    RestoreDefault(node, info);
}

void Describe(Draft_t& draft, ExtendedInfo const& info, unsigned int)
{
    PutProperties(draft.schema, {{"first", TypeForm("string")}, {"second", TypeForm("string")}});
    draft.schema["default"] = Put(info.GetDefault());
}
void Restore(Node const& node, ExtendedInfo& info, unsigned int) { RestoreDefault(node, info); }

void Describe(Draft_t& draft, LocalizedStringInfo const& info, unsigned int depth)
{
    PutProperties(draft.schema, {{"key", TypeForm("string")}, {"arguments", TypeForm("array")}});
    draft.schema["default"] = PutMessage(info.GetDefault(), depth);
}

void Restore(Node const& node, LocalizedStringInfo& info, unsigned int depth)
{
    if (node.Has("default"))
        info.SetDefault(TakeMessage(node["default"], depth));
}

InfoPtr TakeSchema(Node const& node, unsigned int depth);

template<typename Info>
json::array MemberForms(Info const& info, unsigned int depth)
{
    json::array members;
    for (unsigned int i = 0; i < info.GetSize(); ++i)
        members.push_back(SchemaForm(*info.GetInfo(i), Deeper(depth)));
    return members;
}

template<typename Info>
void RestoreMembers(Node const& members, Info& info, unsigned int depth)
{
    for (std::size_t i = 0; i < members.Size(); ++i)
        info.AddInfo(TakeSchema(members[i], Deeper(depth)));
}

void Describe(Draft_t& draft, CompositeInfo const& info, unsigned int depth)
{
    draft.schema["type"] = "array";
    if (info.GetSize() == 0) {
        draft.schema["maxItems"] = 0;
        return;
    }
    draft.schema["prefixItems"] = MemberForms(info, depth);
    draft.schema["items"] = false;
    draft.schema["minItems"] = info.GetSize();
}

void Restore(Node const& node, CompositeInfo& info, unsigned int depth)
{
    if (node.Has("prefixItems"))
        RestoreMembers(node["prefixItems"], info, depth);
}

void Describe(Draft_t& draft, CollectionInfo const& info, unsigned int depth)
{
    draft.schema["type"] = "array";
    draft.extra["members"] = MemberForms(info, depth);
}

void Restore(Node const& node, CollectionInfo& info, unsigned int depth)
{
    Node const extra = node[k_extra];
    if (extra.Has("members"))
        RestoreMembers(extra["members"], info, depth);
}

// --- Whole schemas -----------------------------------------------------------------------------------------------

template<typename Class>
concept OwnInfo = std::derived_from<Class, InfoBase> && !std::same_as<Class, InfoBase>;

template<typename Info>
boost::intrusive_ptr<Info> MakeInfo(Node const& extra, unsigned int id, std::string const& name)
{
    Permission_t permission;
    TakeIf(extra, "permission", permission.bits);
    if constexpr (std::same_as<Info, EnumInfo>) {
        bool localized = false;
        TakeIf(extra, "localized", localized);
        return new Info(id, name, permission, localized);
    } else
        return new Info(id, name, permission);
}

InfoPtr TakeSchema(Node const& node, unsigned int depth)
{
    Node const extra = node[k_extra];
    Shape_t const tags = TakeTags(extra);
    std::string name;
    TakeIf(node, "title", name);
    return VisitFamily(tags.type, tags.numericType, [&]<typename Info, typename Item>(Family<Info, Item>) -> InfoPtr {
        if constexpr (std::is_void_v<Info>)
            extra.Refuse("there are no schemas of this type");
        else {
            auto const info = MakeInfo<Info>(extra, tags.id, name);
            Restore(node, *info, depth);
            return info;
        }
    });
}

/// What a schema may say without a consequence.
constexpr std::array<std::string_view, 10> k_annotations = {"$schema",  "$id",        "$comment", "description",
                                                            "examples", "deprecated", "readOnly", "writeOnly",
                                                            "unit",     "displayName"};

/// Equal, or numbers of which at least one has a fraction and which are the same float.
bool AreEqual(json::value const& left, json::value const& right)
{
    float near = 0;
    float far = 0;
    return left == right || ((left.is_double() || right.is_double()) && left.is_number() && right.is_number() &&
                             ToReal(left, near) && ToReal(right, far) && near == far);
}

std::string TextOf(json::value const& value)
{
    std::ostringstream os;
    Writer writer(os, JsonLayout_t::Compact);
    writer.Put(value);
    writer.Flush();
    return os.str();
}

/// Refuses a document that says something else than the schema that was made of it.
void ExpectKept(Node const& node, json::value const& kept)
{
    if (kept.is_object() && node.Value().is_object()) {
        for (auto const& member : node.Object()) {
            std::string_view const key = View(member.key());
            if (std::find(k_annotations.begin(), k_annotations.end(), key) != k_annotations.end())
                continue;
            auto const* const counterpart = kept.get_object().if_contains(member.key());
            if (!counterpart)
                node[key].Refuse("a schema cannot hold this");
            // Of several types one alone may stand there.
            auto const* const types = key == "type" ? counterpart->if_array() : nullptr;
            if (!types || std::find(types->begin(), types->end(), member.value()) == types->end())
                ExpectKept(node[key], *counterpart);
        }
        return;
    }
    if (kept.is_array() && node.Value().is_array() && node.Size() == kept.get_array().size()) {
        for (std::size_t i = 0; i < node.Size(); ++i)
            ExpectKept(node[i], kept.get_array()[i]);
        return;
    }
    if (!AreEqual(node.Value(), kept))
        node.Refuse("a schema cannot hold this; it would hold " + TextOf(kept));
}

} // namespace

json::object SchemaForm(InfoBase const& info, unsigned int depth)
{
    Draft_t draft;
    Shape_t const tags{info.GetId(), info.GetType(), info.GetNumericType(), {}};
    Visit(
        info, [&]<OwnInfo Info>(Info const& own) { Describe(draft, own, depth); },
        [](Foreign<InfoBase const>) {
            throw Refusal({}, "a schema of a class that is not the library's cannot be written");
        });
    json::object schema{{"title", Put(info.GetName())}};
    for (auto& word : draft.schema)
        schema.emplace(word.key(), std::move(word.value()));
    json::object extra;
    PutTags(tags, extra);
    extra["permission"] = info.GetPermission().bits;
    for (auto& word : draft.extra)
        extra.emplace(word.key(), std::move(word.value()));
    schema[View(k_extra)] = std::move(extra);
    return schema;
}

InfoPtr FromSchemaForm(Node const& node)
{
    InfoPtr info = TakeSchema(node, 0);
    ExpectKept(node, SchemaForm(*info));
    return info;
}

} // namespace Legacy::IfKit::Detail
