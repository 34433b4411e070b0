#pragma once

#include <Legacy/IfKit/ObservableDirectory.h>

#include <map>
#include <string>
#include <vector>

/// A networked device is a directory that tells of its changes; here is what the program asks of one beside that.
namespace HostNetwork {

using Device = Legacy::IfKit::ObservableDirectory;
using ParameterPtr = boost::intrusive_ptr<Legacy::If::InfoItemHolder const>;

/// The parameters of each section, without those of the sections below it, in the order of their numbers.
std::map<Legacy::If::InfoItemSectionId, std::vector<ParameterPtr>> ParametersBySection(Device const& device);

/// The path of a parameter, fit for a terminal.
std::string ShownPath(Device const& device, Legacy::If::InfoBase const& info);

/// What happened to a parameter, in one line.
std::string ShownChange(Device const& device, Legacy::IfKit::Change_t const& change);

} // namespace HostNetwork
