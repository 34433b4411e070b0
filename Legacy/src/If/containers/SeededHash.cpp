#include <Legacy/If/Detail/SeededHash.h>

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <random>

namespace Legacy::If::Detail {

namespace {

/// Sums and products are of residues of this prime, 2^61 - 1.
constexpr std::uint64_t k_prime = (std::uint64_t{1} << 61) - 1;

/// A residue of the product, of up to 64 bits if the product has no more than 124.
#ifdef __SIZEOF_INT128__
std::uint64_t Multiply(std::uint64_t a, std::uint64_t b) noexcept
{
    __extension__ using Wide = unsigned __int128;
    Wide const product = Wide{a} * b;
    return (static_cast<std::uint64_t>(product) & k_prime) + static_cast<std::uint64_t>(product >> 61);
}
#else
std::uint64_t Multiply(std::uint64_t a, std::uint64_t b) noexcept
{
    std::uint64_t const middle1 = (a >> 32) * static_cast<std::uint32_t>(b);
    std::uint64_t const middle2 = (b >> 32) * static_cast<std::uint32_t>(a);
    std::uint64_t const bottom = (a & 0xFFFFFFFF) * static_cast<std::uint32_t>(b);
    std::uint64_t const carry = (bottom >> 32) + (middle1 & 0xFFFFFFFF) + (middle2 & 0xFFFFFFFF);
    std::uint64_t const high = (a >> 32) * (b >> 32) + (middle1 >> 32) + (middle2 >> 32) + (carry >> 32);
    std::uint64_t const low = carry << 32 | (bottom & 0xFFFFFFFF);
    return (low & k_prime) + (high << 3 | low >> 61);
}
#endif

std::uint64_t Load(char const* bytes) noexcept
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

constexpr std::size_t k_half = 7;
constexpr std::size_t k_whole = 2 * k_half;

/// Two words of seven bytes, so that each is less than the prime.
struct Block
{
    std::uint64_t a, b;

    /// Out of 14 bytes, whatever the order of bytes in words is.
    static Block Of(char const* bytes) noexcept
    {
        constexpr std::uint64_t mask = ~std::uint64_t{0} >> 8;
        std::uint64_t const front = Load(bytes);
        std::uint64_t const back = Load(bytes + k_whole - sizeof(back));
        if constexpr (std::endian::native == std::endian::little)
            return {front & mask, back >> 8};
        else
            return {front >> 8, back & mask};
    }

    /// Out of fewer bytes.
    static Block Of(std::string_view text) noexcept
    {
        Block block{};
        for (std::size_t i = 0; i < text.size(); ++i) {
            std::uint64_t& word = i < k_half ? block.a : block.b;
            word = word << 8 | static_cast<unsigned char>(text[i]);
        }
        return block;
    }
};

} // namespace

HashSeed HashSeed::Draw() noexcept
{
    HashSeed seed{};
    std::uint64_t* const words[] = {&seed.text[0], &seed.text[1], &seed.text[2], &seed.factor, &seed.summand};
    try {
        std::random_device random;
        for (std::uint64_t* const word : words)
            *word = std::uint64_t{random()} << 32 | random();
    } catch (std::exception const&) { // no source of chance: the clock and where the loader put us must do
        std::mt19937_64 random(static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
                               reinterpret_cast<std::uintptr_t>(&Draw));
        for (std::uint64_t* const word : words)
            *word = random();
    }
    for (std::uint64_t& word : seed.text)
        word &= k_prime >> 1;
    seed.factor |= 1;
    return seed;
}

std::uint32_t SeededHash(std::string_view text) noexcept
{
    HashSeed const& seed = HashSeed::OfProcess();
    std::uint64_t hash = text.size();
    auto const add = [&](Block const& block) {
        hash = Multiply(hash + Multiply(block.a + seed.text[0], block.b + seed.text[1]), seed.text[2]);
        hash = (hash & k_prime) + (hash >> 61);
    };
    if (text.size() < k_whole) {
        add(Block::Of(text));
    } else {
        char const* const last = text.data() + text.size() - k_whole; // it may begin with bytes of the block before
        for (char const* bytes = text.data(); bytes < last; bytes += k_whole)
            add(Block::Of(bytes));
        add(Block::Of(last));
    }
    return static_cast<std::uint32_t>(hash * seed.factor >> 32);
}

} // namespace Legacy::If::Detail
