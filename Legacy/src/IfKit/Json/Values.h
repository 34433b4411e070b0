#pragma once

#include "Node.h"

#include <Legacy/If/IfType.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/LocalizedString.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <vector>

/// Values in their bare form and by themselves.
namespace Legacy::IfKit::Detail {

using ItemPtr = boost::intrusive_ptr<If::ItemBase>;

/// Of what class a value is, and its members.
struct Shape_t
{
    unsigned int id = 0;
    If::IfType_t type{};
    If::NumericType_t numericType{};
    std::vector<Shape_t> members;

    friend bool operator==(Shape_t const&, Shape_t const&) = default;
};

/// One level deeper; refuses what lies too deep to be followed by calls.
unsigned int Deeper(unsigned int depth);

/// Each counts its calls of itself by `depth` and refuses members that are too deep.
/// @{
Shape_t ShapeOf(If::ItemBase const& item, unsigned int depth = 0);
Shape_t ShapeOf(If::InfoBase const& info, unsigned int depth = 0);
json::value BareForm(If::ItemBase const& item, unsigned int depth = 0);
ItemPtr FromBareForm(Node const& bare, Shape_t const& shape, unsigned int depth = 0);
/// @}

json::value PutMessage(If::LocalizedString const& message, unsigned int depth);
If::LocalizedString TakeMessage(Node const& node, unsigned int depth);

/// The keys of a shape; `members` stands there even if there are none, in families that can have some.
void PutShape(Shape_t const& shape, json::object& object);
json::array MembersOf(Shape_t const& shape);
/// The tags alone, which name a family.
void PutTags(Shape_t const& shape, json::object& object);
Shape_t TakeTags(Node const& node);
Shape_t TakeShape(Node const& node, unsigned int depth = 0);
std::vector<Shape_t> TakeMembers(Node const& members, unsigned int depth = 0);

/// A value by itself, as which it also stands among the arguments of a message.
/// @{
json::object SelfForm(If::ItemBase const& item, unsigned int depth = 0);
ItemPtr FromSelfForm(Node const& node, unsigned int depth = 0);
/// @}

} // namespace Legacy::IfKit::Detail
