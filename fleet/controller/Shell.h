#pragma once

#include "controller/Options.h"

namespace Fleet {

/// Mirrors devices, tells what changes, and takes commands until the end of its input.
/// @return an ExitStatus_t
int RunShell(FleetOptions_t const& options);

} // namespace Fleet
