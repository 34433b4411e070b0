#pragma once

#include <cstdint>
#include <string_view>

namespace Legacy::If::Detail {

/// What this process mixes into the hashes of its tables. It is drawn anew for each process, so that nobody who sends
/// names or ids can know which of them would meet in one place.
struct HashSeed
{
    std::uint64_t text[3];
    std::uint64_t factor;
    std::uint64_t summand;

    static HashSeed const& OfProcess() noexcept
    {
        static HashSeed const seed = Draw();
        return seed;
    }

private:
    static HashSeed Draw() noexcept;
};

/// The upper bits are good ones, and numbers in even steps do not end up in even steps. In this process only, as all
/// hashes here.
inline std::uint64_t SeededMix(std::uint32_t number) noexcept
{
    HashSeed const& seed = HashSeed::OfProcess();
    std::uint64_t const mixed = number * seed.factor + seed.summand;
    return (mixed ^ mixed >> 32) * 0x9E3779B97F4A7C15U;
}

/// For tables that chain what meets in one place, where the distance of two places means nothing.
inline std::uint32_t SeededHash(std::uint32_t number) noexcept
{
    HashSeed const& seed = HashSeed::OfProcess();
    return static_cast<std::uint32_t>((number * seed.factor + seed.summand) >> 32);
}

/// A polynomial over pairs of words, taken where only the seed knows: two texts of whoever does not know it share a
/// hash with a chance of about one in 2^31. It is short on purpose. A processor fetches for the next look-up while one
/// still waits for memory only as far as its window reaches, and a longer hash fills that.
std::uint32_t SeededHash(std::string_view text) noexcept;

} // namespace Legacy::If::Detail
