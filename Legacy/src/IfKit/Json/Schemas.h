#pragma once

#include "Node.h"

#include <Legacy/If/InfoBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string_view>

/// Schemas as JSON Schema.
namespace Legacy::IfKit::Detail {

using InfoPtr = boost::intrusive_ptr<If::InfoBase>;

/// The object for what JSON Schema has no word for.
constexpr std::string_view k_extra = "x-legacyif";

json::object SchemaForm(If::InfoBase const& info, unsigned int depth = 0);

/// The schema that says all that the document says; refuses what a schema cannot hold.
InfoPtr FromSchemaForm(Node const& node);

} // namespace Legacy::IfKit::Detail
