#pragma once

#include "common/Broker.h"
#include "controller/Controller.h"

#include <chrono>
#include <string>
#include <vector>

namespace Fleet {

/// What the command line of `legacyif-fleet` says, for whichever command it names.
struct FleetOptions_t
{
    BrokerOptions broker;
    std::string name;
    std::string language = "en";
    std::string format = "text";
    std::vector<std::string> devices;
    std::string share;         ///< I/N, or empty
    double timeout = 0;        ///< in seconds; 0 for the command's own
    unsigned int expected = 0; ///< devices to wait for
    std::string device;
    std::string path;
    std::string value;
    unsigned short port = 8080; ///< of the page; 0 for any that is free

    bool IsJson() const { return format == "json"; }
    std::chrono::milliseconds Timeout(double usual) const
    {
        return std::chrono::milliseconds(static_cast<long>((timeout > 0 ? timeout : usual) * 1000));
    }
};

/// The controller that the options ask for.
/// @throws UsageError
Controller::Settings_t SettingsOf(FleetOptions_t const& options);

} // namespace Fleet
