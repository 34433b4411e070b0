#pragma once

#include "Device.h"
#include "HostReader.h"
#include "RecordFile.h"

#include <string>
#include <vector>

namespace HostNetwork {

/// What is worth telling about the making of a model, one line each.
using Notes_t = std::vector<std::string>;

/// Fills an empty device with the sections, schemas and values of the host. What the host lacks is left out with a
/// note: a section without any value altogether, of a parameter only the value.
void DescribeHost(HostReader const& host, Device& device, Notes_t& notes);

/// Fills an empty device, in one update from a delta, with the sections and values of a record file and the schemas
/// that the profile has for them.
/// @throws RecordFileError if the records are of no such device.
void Rebuild(Records_t const& records, Device& device);

/// How two devices differ, one line each: sections, schemas and values.
std::vector<std::string> Differences(Device const& left, Device const& right);

} // namespace HostNetwork
