#pragma once

#include <Legacy/If/IfType.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/IfKit/Export.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>

/// Schemas for values that come without one.
///
/// @code
/// auto const info = FreshSchema(IfType_t::Numeric, NumericType_t::U16, 1, "mtu");
/// boost::intrusive_ptr<ItemBase> const item(info->CreateItem());
/// std::cout << info->GetName() << ' ' << item->GetValAsString() << '\n';
/// @endcode
namespace Legacy::IfKit {

/// A schema of the class that the tags name, as its constructor makes it, without any permission; null if they name
/// none, as those of an orientation.
LEGACY_IFKIT_API boost::intrusive_ptr<If::InfoBase> FreshSchema(If::IfType_t type, If::NumericType_t numericType,
                                                                unsigned int id, std::string const& name);

} // namespace Legacy::IfKit
