#pragma once

#include <Orlek/Export.h>

namespace Orlek {

/// A colour as four floats, each meant to lie between 0 and 1; nothing enforces that. All 0 by default.
struct ORLEK_API Colour_t
{
    float a = 0.0F; ///< alpha
    float r = 0.0F; ///< red
    float g = 0.0F; ///< green
    float b = 0.0F; ///< blue

    /// Exact, component by component: no tolerance, and a NaN equals nothing.
    friend constexpr bool operator==(Colour_t const&, Colour_t const&) = default;
};

} // namespace Orlek
