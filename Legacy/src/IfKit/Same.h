#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

namespace Legacy::IfKit {

/// Whether two values of one parameter are the same: `IsEqualValue`, or alike in all numbers with a NaN like a NaN.
bool IsSameValue(boost::intrusive_ptr<If::ItemBase> const& one, boost::intrusive_ptr<If::ItemBase> const& other);

} // namespace Legacy::IfKit
