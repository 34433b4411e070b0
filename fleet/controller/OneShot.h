#pragma once

#include "controller/Options.h"

namespace Fleet {

/// The commands that do one thing and end, for scripts. What is asked for goes to the standard output and everything
/// else to the standard error.
/// @return an ExitStatus_t
/// @{
int ListDevices(FleetOptions_t const& options);
int GetValue(FleetOptions_t const& options);
int SetValue(FleetOptions_t const& options);
int ExportDevice(FleetOptions_t const& options);
int WatchDevices(FleetOptions_t const& options);
/// @}

} // namespace Fleet
