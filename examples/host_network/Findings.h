#pragma once

#include "Device.h"

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/LocalizedString.h>
#include <Legacy/If/Result.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>
#include <vector>

namespace HostNetwork {

/// A finding with what it is about: the finding itself tells neither the parameter's name nor what is wrong.
struct Finding_t
{
    Legacy::If::Result result; ///< the finding alone, under the id of its parameter, so that it can be logged by itself
    Legacy::If::LocalizedString message;
    boost::intrusive_ptr<Legacy::If::ItemBase const> item; ///< the value as it was
    boost::intrusive_ptr<Legacy::If::InfoBase const> info; ///< the schema of that value
    std::string path;
    std::string unit;
};

/// Holds every value of a device against its schema, also those of the members of composites, which validation leaves
/// to whoever cares.
/// @param all gathers the findings themselves.
std::vector<Finding_t> Examine(Device const& device, Legacy::If::Result& all);

} // namespace HostNetwork
