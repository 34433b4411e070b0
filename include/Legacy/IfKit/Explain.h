#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/LocalizedString.h>
#include <Legacy/IfKit/Export.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <functional>
#include <span>

/// What is wrong with a value, in words.
///
/// @code
/// boost::intrusive_ptr<StringInfo> const info(new StringInfo(1, "host", Permission_t{}));
/// boost::intrusive_ptr<ItemBase> const item(StringItem::Create(1, std::string(300, 'x')));
/// std::cout << Explain(*item, info).GetString("de") << '\n';
/// @endcode
///
/// The words are those that the value's own `Validate` has for its failure; nothing is tested here a second time. A
/// thread may explain a value that others read, as long as nobody changes it and its class does not do so in `Validate`
/// either, which no class of the library does.
namespace Legacy::IfKit {

/// The message of the finding that the value gives under its schema, ready for any language: its key, and as arguments
/// texts, the schema's name first. The bounds of 8-bit numbers stand in it as numbers. Empty, with `IsValid` false, if
/// the value passes.
///
/// A composite that passes goes on with its members, which its own validation does not look into: the message is then
/// that of the first member, in order and at any depth, that fails under its member schema. The failure of a class that
/// an application derived and that makes its findings itself reads as that of a value that cannot be validated.
/// @param info may be null, which most families refuse.
/// @{
LEGACY_IFKIT_API If::LocalizedString Explain(If::ItemBase& item, boost::intrusive_ptr<If::InfoBase const> const& info);
/// Asks a copy, since validation is not const.
LEGACY_IFKIT_API If::LocalizedString Explain(If::ItemBase const& item,
                                             boost::intrusive_ptr<If::InfoBase const> const& info);
/// @}

/// Where a member stands: its index in the outermost composite, that in the composite there, and so on; empty for the
/// value itself.
using MemberPlace = std::span<unsigned int const>;

/// Is handed one failure; false ends the search. It must leave the value and the schema alone.
using ExplainUse = std::function<bool(MemberPlace place, If::LocalizedString const& message)>;

/// The same for each failing member and not for the first alone, in order. A composite that fails is told and not gone
/// into. Takes time linear in the members at all depths, and a bounded stack.
LEGACY_IFKIT_API void ExplainEach(If::ItemBase& item, boost::intrusive_ptr<If::InfoBase const> const& info,
                                  ExplainUse const& use);

/// Whether a value of a family whose `Validate` judges nothing is what its schema asks for: a number that is in the
/// table, a point or a rectangle within the bounds, as many rectangles as may be. False for every other family and for
/// a schema of another type.
/// @param place of the member that is meant; empty for the value itself.
LEGACY_IFKIT_API bool IsWithinBounds(If::ItemBase const& item, If::InfoBase const& info, MemberPlace place = {});

} // namespace Legacy::IfKit
