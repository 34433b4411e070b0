#include <Legacy/If/Detail/SeededHash.h>

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <random>

namespace Legacy::If::Detail {

namespace {

class SipHash
{
public:
    explicit SipHash(HashSeed const& seed) noexcept
        : m_a(seed.text[0] ^ 0x736F6D6570736575U), m_b(seed.text[1] ^ 0x646F72616E646F6DU),
          m_c(seed.text[0] ^ 0x6C7967656E657261U), m_d(seed.text[1] ^ 0x7465646279746573U)
    {}

    void Add(std::uint64_t block) noexcept
    {
        m_d ^= block;
        Round_();
        m_a ^= block;
    }

    std::uint64_t End() noexcept
    {
        m_c ^= 0xFF;
        for (int i = 0; i < 3; ++i)
            Round_();
        return m_a ^ m_b ^ m_c ^ m_d;
    }

private:
    void Round_() noexcept
    {
        m_a += m_b;
        m_c += m_d;
        m_b = std::rotl(m_b, 13) ^ m_a;
        m_d = std::rotl(m_d, 16) ^ m_c;
        m_a = std::rotl(m_a, 32);
        m_c += m_b;
        m_a += m_d;
        m_b = std::rotl(m_b, 17) ^ m_c;
        m_d = std::rotl(m_d, 21) ^ m_a;
        m_c = std::rotl(m_c, 32);
    }

    std::uint64_t m_a, m_b, m_c, m_d;
};

} // namespace

HashSeed HashSeed::Draw() noexcept
{
    HashSeed seed{};
    try {
        std::random_device random;
        for (std::uint64_t* const word : {&seed.text[0], &seed.text[1], &seed.factor, &seed.summand})
            *word = std::uint64_t{random()} << 32 | random();
    } catch (std::exception const&) { // no source of chance: the clock and where the loader put us must do
        seed.text[0] = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
        seed.text[1] = reinterpret_cast<std::uintptr_t>(&Draw);
        seed.summand = seed.text[0] * 0x9E3779B97F4A7C15U;
        seed.factor = seed.summand ^ seed.text[1];
    }
    seed.factor |= 1;
    return seed;
}

std::uint32_t SeededHash(std::string_view text) noexcept
{
    SipHash hash(HashSeed::OfProcess());
    std::uint64_t block = 0;
    std::size_t const whole = text.size() / sizeof(block) * sizeof(block);
    for (std::size_t i = 0; i < whole; i += sizeof(block)) {
        std::memcpy(&block, text.data() + i, sizeof(block));
        hash.Add(block);
    }
    block = 0;
    if (whole != text.size())
        std::memcpy(&block, text.data() + whole, text.size() - whole);
    hash.Add(block ^ std::uint64_t{text.size()} << 56);
    return static_cast<std::uint32_t>(hash.End());
}

} // namespace Legacy::If::Detail
