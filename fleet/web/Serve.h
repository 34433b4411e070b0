#pragma once

#include "controller/Options.h"

namespace Fleet {

/// Shows the fleet on a page, to browsers on this machine, until a signal comes.
/// @return an ExitStatus_t
int Serve(FleetOptions_t const& options);

} // namespace Fleet
