#pragma once

#include <Legacy/If/IfType.h>

#include <iosfwd>
#include <string>
#include <string_view>

namespace Legacy::If {

class InfoBase;
class ItemBase;

/// The texts of the tags; "Invalid" for a tag the printer does not know.
std::ostream& operator<<(std::ostream& os, IfType_t const& type);
std::ostream& operator<<(std::ostream& os, NumericType_t const& type);

namespace Detail {

std::string_view TypeText(IfType_t type) noexcept;
std::string_view TypeText(NumericType_t type) noexcept;

/// The form that findings use: the type's text and, in parentheses, that of the element type.
std::string CombinedTypeText(InfoBase const& info);
std::string CombinedTypeText(ItemBase const& item);

} // namespace Detail

} // namespace Legacy::If
