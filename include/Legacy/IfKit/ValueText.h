#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/IfKit/Export.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>
#include <string_view>

/// Values for people.
///
/// @code
/// boost::intrusive_ptr<InfoBase> const info(new NumericInfo<U16Traits>(1, "speed", Permission_t{}));
/// boost::intrusive_ptr<ItemBase> const item(info->CreateItem());
/// std::cout << ValueText(InfoHolder(info), *item) << '\n';
/// @endcode
///
/// All of this only reads, and may be called from any thread while nobody changes the objects.
namespace Legacy::IfKit {

/// A text that any terminal and any log can take, whatever the bytes: in one line, with a '?' for each control
/// character, C1 among them, for each character that separates lines or turns the direction of writing, and for each
/// byte that is not UTF-8.
LEGACY_IFKIT_API std::string Printable(std::string_view bytes);

/// A value in one line of printable text: as the value prints itself, but with the name of an enumeration's element in
/// place of its number, with the numbers of an orientation and the texts of an extended value, which print neither, and
/// so in the members of composites and collections too. Takes time linear in the members and a bounded stack.
/// @param info the schema, where it is known. Members of a composite have theirs from it.
/// @param language of messages and of enumerations whose element names are message keys; empty for the default one.
LEGACY_IFKIT_API std::string ValueText(If::ItemBase const& item, If::InfoBase const* info = nullptr,
                                       std::string const& language = {});

/// The same with the unit that the holder of the schema tells: "50 km/h".
LEGACY_IFKIT_API std::string ValueText(If::InfoHolder const& holder, If::ItemBase const& item,
                                       std::string const& language = {});

/// A value of the schema's type from what a person writes: texts and addresses as they stand, an element of an
/// enumeration by its name or number, an endpoint as host:port, and everything else in the bare form of `Json.h`, such
/// as `true`, `1500` and `[1, 2]`. Bounds are not tested, but that of the type is.
/// @param fault becomes why the text is no such value, in one printable line; untouched otherwise.
/// @return null for a text that is no such value.
LEGACY_IFKIT_API boost::intrusive_ptr<If::ItemBase> ParseValueText(If::InfoBase const& info, std::string const& text,
                                                                   std::string& fault);

} // namespace Legacy::IfKit
