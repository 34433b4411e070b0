#include "controller/Options.h"

#include "common/Program.h"

#include <cstdio>

namespace Fleet {

Controller::Settings_t SettingsOf(FleetOptions_t const& options)
{
    Controller::Settings_t settings;
    settings.broker = options.broker.Read();
    // The broker may let a user do as a controller of its own name alone.
    settings.name = options.name;
    if (settings.name.empty())
        settings.name = settings.broker.user.empty() ? "controller-" + std::to_string(RandomNumber() % 1000000000)
                                                     : settings.broker.user;
    RequireName("--name", settings.name);
    settings.devices = options.devices;
    if (!options.device.empty())
        settings.devices = {options.device};
    for (auto const& device : settings.devices)
        RequireName("a device", device);
    char rest = 0;
    if (!options.share.empty() &&
        (std::sscanf(options.share.c_str(), "%u/%u%c", &settings.share, &settings.shares, &rest) != 2 || // NOLINT
         settings.share >= settings.shares))
        throw UsageError("--share: not I/N with I from 0 to N - 1: " + Printable(options.share));
    if (options.language.size() > 32)
        throw UsageError("--language: not a language: " + Printable(options.language));
    return settings;
}

} // namespace Fleet
