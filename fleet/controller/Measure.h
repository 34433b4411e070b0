#pragma once

#include "controller/Options.h"

namespace Fleet {

/// Tells, as one JSON object to a line, how long it takes until all devices have told everything, then every few
/// seconds how many changes come and how late, and what memory they take; and again when the broker was away. Ends when
/// the time is up or by a signal.
///
/// How late a change is can be told of devices on the same machine that publish the steady clock as "load/stamp".
/// @return an ExitStatus_t
int MeasureFleet(FleetOptions_t const& options);

} // namespace Fleet
