#include "Values.h"

#include "Elements.h"

#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/TypeNames.h>
#include <Legacy/IfKit/Visit.h>

#include <concepts>

namespace Legacy::IfKit::Detail {

using namespace If;

namespace {

template<typename Class>
concept ValueList = std::same_as<Class, CompositeItem> || std::same_as<Class, CollectionItem>;

template<typename Class>
concept SchemaList = std::same_as<Class, CompositeInfo> || std::same_as<Class, CollectionInfo>;

template<typename Class>
concept OwnItem = std::derived_from<Class, ItemBase> && !std::same_as<Class, ItemBase>;

bool HasMembers(IfType_t type) { return type == IfType_t::Composite || type == IfType_t::Collection; }

template<typename Root>
Shape_t TagsOf(Root const& object)
{
    return {object.GetId(), object.GetType(), object.GetNumericType(), {}};
}

template<ValueList Item>
json::value PutMembers(Item const& list, unsigned int depth)
{
    json::array members;
    for (unsigned int i = 0; i < list.GetSize(); ++i)
        members.push_back(BareForm(*list.GetItem(i), Deeper(depth)));
    return members;
}

template<ValueList Item>
void TakeMembersInto(Node const& node, Shape_t const& shape, Item& list, unsigned int depth)
{
    if (node.Size() != shape.members.size())
        node.Refuse(std::to_string(shape.members.size()) + " members are expected");
    for (std::size_t i = 0; i < node.Size(); ++i)
        list.AddItem(FromBareForm(node[i], shape.members[i], Deeper(depth)));
}

template<typename Item>
void TakeInto(Node const& node, Shape_t const& shape, Item& item, unsigned int depth)
{
    if constexpr (ValueList<Item>)
        TakeMembersInto(node, shape, item, depth);
    else if constexpr (std::same_as<Item, LocalizedStringItem>)
        item.SetVal(TakeMessage(node, depth));
    else if constexpr (requires { item.Val(); })
        Take(node, item.Val());
    else
        Take(node, item);
}

template<typename Item>
json::value PutItem(Item const& item, unsigned int depth)
{
    if constexpr (ValueList<Item>)
        return PutMembers(item, depth);
    else if constexpr (std::same_as<Item, LocalizedStringItem>)
        return PutMessage(item.GetVal(), depth);
    else if constexpr (requires { item.Val(); })
        return Put(item.Val());
    else
        return Put(item);
}

} // namespace

unsigned int Deeper(unsigned int depth)
{
    if (depth >= k_maxJsonMembers)
        throw Refusal({}, "members lie more than " + std::to_string(k_maxJsonMembers) + " deep");
    return depth + 1;
}

json::value PutMessage(LocalizedString const& message, unsigned int depth)
{
    json::array arguments;
    for (auto const& argument : message.GetArguments())
        arguments.push_back(argument ? json::value(SelfForm(*argument, Deeper(depth))) : json::value(nullptr));
    return json::object{{"key", Put(message.GetKey())}, {"arguments", std::move(arguments)}};
}

LocalizedString TakeMessage(Node const& node, unsigned int depth)
{
    ExpectKeys(node, {"key", "arguments"});
    std::string key;
    Take(node["key"], key);
    LocalizedString message(key);
    Node const arguments = node["arguments"];
    for (std::size_t i = 0; i < arguments.Size(); ++i) {
        Node const argument = arguments[i];
        message.AddArgument(argument.Value().is_null() ? nullptr : FromSelfForm(argument, Deeper(depth)));
    }
    return message;
}

Shape_t ShapeOf(ItemBase const& item, unsigned int depth)
{
    Shape_t shape = TagsOf(item);
    Visit(
        item,
        [&]<ValueList Item>(Item const& list) {
            for (unsigned int i = 0; i < list.GetSize(); ++i)
                shape.members.push_back(ShapeOf(*list.GetItem(i), Deeper(depth)));
        },
        [](ItemBase const&) {});
    return shape;
}

Shape_t ShapeOf(InfoBase const& info, unsigned int depth)
{
    Shape_t shape = TagsOf(info);
    Visit(
        info,
        [&]<SchemaList Info>(Info const& list) {
            for (unsigned int i = 0; i < list.GetSize(); ++i)
                shape.members.push_back(ShapeOf(*list.GetInfo(i), Deeper(depth)));
        },
        [](InfoBase const&) {});
    return shape;
}

json::value BareForm(ItemBase const& item, unsigned int depth)
{
    return Visit(
        item, [&]<OwnItem Item>(Item const& own) -> json::value { return PutItem(own, depth); },
        [](Foreign<ItemBase const>) -> json::value {
            throw Refusal({}, "a value of a class that is not the library's cannot be written");
        });
}

ItemPtr FromBareForm(Node const& bare, Shape_t const& shape, unsigned int depth)
{
    return VisitFamily(shape.type, shape.numericType, [&]<typename Info, typename Item>(Family<Info, Item>) -> ItemPtr {
        if constexpr (std::is_void_v<Item>)
            bare.Refuse("there is no such type");
        else {
            boost::intrusive_ptr<Item> const item(new Item(shape.id));
            TakeInto(bare, shape, *item, depth);
            return item;
        }
    });
}

json::array MembersOf(Shape_t const& shape)
{
    json::array members;
    for (auto const& member : shape.members) {
        json::object object;
        PutShape(member, object);
        members.push_back(std::move(object));
    }
    return members;
}

void PutTags(Shape_t const& shape, json::object& object)
{
    object["id"] = shape.id;
    object["type"] = View(NameOf(shape.type));
    if (shape.numericType != NumericType_t::Undefined)
        object["elementType"] = View(NameOf(shape.numericType));
}

void PutShape(Shape_t const& shape, json::object& object)
{
    PutTags(shape, object);
    if (HasMembers(shape.type))
        object["members"] = MembersOf(shape);
}

Shape_t TakeTags(Node const& node)
{
    Shape_t shape{node["id"].Unsigned(), IfType_t::Undefined, NumericType_t::Undefined, {}};
    auto const type = IfTypeOf(node["type"].Text());
    if (!type)
        node["type"].Refuse("there is no type of this name");
    shape.type = *type;
    if (node.Has("elementType")) {
        auto const numericType = NumericTypeOf(node["elementType"].Text());
        if (!numericType)
            node["elementType"].Refuse("there is no element type of this name");
        shape.numericType = *numericType;
    }
    bool const isKnown =
        VisitFamily(shape.type, shape.numericType,
                    []<typename Info, typename Item>(Family<Info, Item>) { return !std::is_void_v<Item>; });
    if (!isKnown)
        node.Refuse("there are no values of this type and element type");
    return shape;
}

std::vector<Shape_t> TakeMembers(Node const& members, unsigned int depth)
{
    std::vector<Shape_t> shapes;
    for (std::size_t i = 0; i < members.Size(); ++i) {
        Node const member = members[i];
        ExpectKeys(member, {"id", "type", "elementType", "members"});
        shapes.push_back(TakeShape(member, Deeper(depth)));
    }
    return shapes;
}

Shape_t TakeShape(Node const& node, unsigned int depth)
{
    Shape_t shape = TakeTags(node);
    if (HasMembers(shape.type))
        shape.members = TakeMembers(node["members"], depth);
    else if (node.Has("members"))
        node["members"].Refuse("this type has no members");
    return shape;
}

json::object SelfForm(ItemBase const& item, unsigned int depth)
{
    json::object object;
    PutShape(ShapeOf(item, depth), object);
    object["value"] = BareForm(item, depth);
    return object;
}

ItemPtr FromSelfForm(Node const& node, unsigned int depth)
{
    ExpectKeys(node, {"id", "type", "elementType", "members", "name", "value"});
    return FromBareForm(node["value"], TakeShape(node, depth), depth);
}

} // namespace Legacy::IfKit::Detail
