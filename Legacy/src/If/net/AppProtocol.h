#pragma once

#include <Legacy/If/AppEndpoint.h>

#include <string>

namespace Legacy::If::Detail {

/// The protocol that a scheme stands for, in any case; `Unknown` and versions 0 for a scheme of no protocol.
AppProtocolInfo_t AppProtocolInfoFromScheme(std::string const& scheme);

} // namespace Legacy::If::Detail
