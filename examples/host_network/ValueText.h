#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <string>

namespace HostNetwork {

/// Makes a value out of the text that the host gives for a parameter.
///
/// The library does the reading. It takes what it is given at the front of a text, and of a number the bytes that fit,
/// so a value counts only if it prints as the text it was read from.
/// @return null if the text is no value of the schema's type; whether the value lies within the schema is not asked.
boost::intrusive_ptr<Legacy::If::ItemBase> ReadValue(boost::intrusive_ptr<Legacy::If::InfoBase const> const& info,
                                                     std::string const& text);

/// A number of things, such as "1 record" and "2 records".
std::string Count(std::size_t number, std::string const& thing);

} // namespace HostNetwork
