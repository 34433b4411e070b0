#pragma once

#include <Legacy/If/Export.h>

#include <cstdint>

namespace Legacy::If {

/// Sixteen bits that every schema carries for its callers. The library copies and prints them and gives them no
/// meaning.
struct Permission_t
{
    std::uint16_t bits = 0; ///< the callers' own

    friend constexpr bool operator==(Permission_t const&, Permission_t const&) = default;
};

} // namespace Legacy::If
