#pragma once

#include "controller/Controller.h"

#include <Legacy/If/InfoItemHolderDefs.h>

#include <string>
#include <string_view>

/// What the page is told of devices, as JSON. Whatever devices call things, every text is one that can be shown:
/// without controls, line ends and marks of direction, and in UTF-8.
namespace Fleet {

/// {"name", "title", "online", "complete"}
std::string DeviceJson(Controller::Device const& device);

/// The same with "parameters", a list of them in the order of their sections; null before the schemas have arrived.
/// Each is {"section", "name", "writable", "schema"}, perhaps with "unit", "description" and "choices", and with what
/// ValueJson() tells of its value.
///
/// The schema is the companion's, but its numbers are texts, digit by digit as they are written there: what reads JSON
/// in a browser knows no whole numbers of 64 bits.
std::string TreeJson(Controller::Device const& device, std::string const& language);

/// {"id", "text", "edit", "finding"}: the value for people without its unit, as ParseValueText() reads it, and the
/// message of what is wrong with it, each only if there is any.
std::string ValueJson(Legacy::If::InfoItemHolder const& parameter, std::string const& language);

/// The language of a header `Accept-Language` that the page has texts in: "en" or "de".
std::string PreferredLanguage(std::string_view header);

} // namespace Fleet
