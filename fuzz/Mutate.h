#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

/// Bytes put in, taken away or changed at up to four places, or cut off; every second new one stands there already.
inline std::vector<std::uint8_t> Mutate(std::vector<std::uint8_t> input, std::mt19937& random)
{
    for (auto steps = 1 + random() % 4; steps > 0; --steps) {
        auto const known = input.empty() || random() % 2 == 0 ? random() : input[random() % input.size()];
        auto const byte = static_cast<std::uint8_t>(known);
        auto const place = input.begin() + static_cast<std::ptrdiff_t>(random() % (input.size() + 1));
        auto const kind = place == input.end() ? 0 : random() % 8;
        if (kind < 2)
            input.insert(place, byte);
        else if (kind < 4)
            input.erase(place);
        else if (kind < 5)
            input.erase(place, input.end());
        else
            *place = byte;
    }
    return input;
}
