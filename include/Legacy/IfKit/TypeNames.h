#pragma once

#include <Legacy/If/IfType.h>
#include <Legacy/IfKit/Export.h>

#include <optional>
#include <string_view>

/// Type tags as words, for people and for files.
///
/// @code
/// boost::intrusive_ptr<ItemBase> const item(BoolItem::Create(1, true));
/// std::cout << NameOf(item->GetType()) << '\n';
/// bool const isTruth = IfTypeOf("Bool") == item->GetType();
/// @endcode
namespace Legacy::IfKit {

/// The enumerator's name, such as "NumericArray", and "U8" for an element; empty for a number that is no enumerator.
/// Every tag has its name here, also those for which the texts of the core say that they are invalid.
/// @{
LEGACY_IFKIT_API std::string_view NameOf(If::IfType_t type) noexcept;
LEGACY_IFKIT_API std::string_view NameOf(If::NumericType_t type) noexcept;
/// @}

/// The tag with that name, letter for letter; nothing for any other text.
/// @{
LEGACY_IFKIT_API std::optional<If::IfType_t> IfTypeOf(std::string_view name) noexcept;
LEGACY_IFKIT_API std::optional<If::NumericType_t> NumericTypeOf(std::string_view name) noexcept;
/// @}

} // namespace Legacy::IfKit
