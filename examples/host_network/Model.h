#pragma once

#include "Device.h"
#include "HostReader.h"

#include <string>
#include <vector>

namespace HostNetwork {

/// What is worth telling about the making of a model, one line each.
using Notes_t = std::vector<std::string>;

/// Fills an empty device with the sections, schemas and values of the host. What the host lacks is left out with a
/// note: a section without any value altogether, of a parameter only the value.
void DescribeHost(HostReader const& host, Device& device, Notes_t& notes);

} // namespace HostNetwork
