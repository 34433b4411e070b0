#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <string>
#include <string_view>

namespace Examples {

/// The text without characters that could confuse a terminal, whoever wrote it: control characters become '?'.
std::string Printable(std::string_view text);

/// A value for people: like the library's own text, but with the name of an enumeration's element, and printable.
std::string ShowValue(Legacy::If::InfoBase const& info, Legacy::If::ItemBase const& item);

} // namespace Examples
