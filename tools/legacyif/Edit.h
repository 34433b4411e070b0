#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>

namespace Command {

/// A value of the schema's type from what a user writes: texts and addresses as they stand, an enumeration by number or
/// by name, an endpoint as host and port, truths as words, everything else as JSON.
/// @throws Failure if the text is none.
boost::intrusive_ptr<Legacy::If::ItemBase> ParseValue(Legacy::If::InfoBase const& info, std::string const& text);

} // namespace Command
