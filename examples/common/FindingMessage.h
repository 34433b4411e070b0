#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/LocalizedString.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace Examples {

/// The message of the finding that the value gives under its schema, ready for any language; empty for a pass. A value
/// of another type than the schema's does not fit, also in the families whose validation looks at nothing.
///
/// A finding carries no text of its own, so that programs which show one rebuild it from what they have: the value and
/// the schema. The failure of a family that is not known here reads as that of one that cannot be validated.
Legacy::If::LocalizedString FindingMessage(boost::intrusive_ptr<Legacy::If::InfoBase const> const& info,
                                           Legacy::If::ItemBase const& item);

} // namespace Examples
