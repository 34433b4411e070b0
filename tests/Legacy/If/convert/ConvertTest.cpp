#include "convert/Convert.h"

#include "../TestSupport.h"

#include <cmath>
#include <tuple>

namespace Legacy::If::Test {
namespace {

using Detail::ConvertTo;
using Detail::Differs;

constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_inf = std::numeric_limits<double>::infinity();
constexpr double k_2to63 = 9223372036854775808.0;
constexpr std::uint64_t k_highBit = std::uint64_t{1} << 63;
constexpr std::int64_t k_s64Min = std::numeric_limits<std::int64_t>::min();
constexpr int k_s32Min = std::numeric_limits<int>::min();

// A value and what each integer type takes of it. Narrow targets go through a signed 32-bit number, the others
// straight; what does not fit is the lowest number of the type gone through.
using Cut = std::tuple<double, unsigned char, signed char, unsigned short, short, unsigned int, int, std::uint64_t,
                       std::int64_t>;
constexpr Cut k_cuts[] = {
    {2.9, 2, 2, 2, 2, 2, 2, 2, 2},
    {-2.9, 254, -2, 65534, -2, 4294967294, -2, ~std::uint64_t{1}, -2},
    {70000.5, 112, 112, 4464, 4464, 70000, 70000, 70000, 70000},
    {-70000.5, 144, -112, 61072, -4464, 4294897296, -70000, std::uint64_t(-70000), -70000},
    {2147483647.9, 255, -1, 65535, -1, 2147483647, 2147483647, 2147483647, 2147483647},
    {2147483648.0, 0, 0, 0, 0, 2147483648, k_s32Min, 2147483648, 2147483648},
    {-2147483649.0, 0, 0, 0, 0, 2147483647, k_s32Min, std::uint64_t(-2147483649), -2147483649},
    {4294967301.0, 0, 0, 0, 0, 5, k_s32Min, 4294967301, 4294967301},
    {k_2to63, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
    {-k_2to63 - 2048, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
    {k_2to63 * 2 - 2048, 0, 0, 0, 0, 0, k_s32Min, ~std::uint64_t{2047}, k_s64Min},
    {k_inf, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
    {k_nan, 0, 0, 0, 0, 0, k_s32Min, k_highBit, k_s64Min},
};

template<typename Source>
void ExpectCut(Source value, Cut const& cut)
{
    auto const expect = [value](auto cutTo) { EXPECT_EQ(ConvertTo<decltype(cutTo)>(value), cutTo) << value; };
    std::apply([&](double, auto... cutTo) { (expect(cutTo), ...); }, cut);
}

TEST(Convert, CutsFractionsTowardsZero)
{
    for (Cut const& cut : k_cuts) {
        double const value = std::get<0>(cut);
        ExpectCut(value, cut);
        // Where the value is a float as well, it converts alike.
        if (auto const narrow = static_cast<float>(value); narrow == value || std::isnan(narrow))
            ExpectCut(narrow, cut);
    }
}

TEST(Convert, KeepsLowBitsAndTakesTheNearestFloat)
{
    EXPECT_EQ((ConvertTo<unsigned char>(300)), 44);
    EXPECT_EQ((ConvertTo<std::uint64_t>(static_cast<signed char>(-1))), ~std::uint64_t{0});
    EXPECT_EQ((ConvertTo<int>(static_cast<unsigned char>(255))), 255);
    EXPECT_EQ((ConvertTo<float>(16777217)), 16777216.0F);
    EXPECT_EQ((ConvertTo<float>(~std::uint64_t{0})), 18446744073709551616.0F); // not -1
}

TEST(Convert, TestsForTruth)
{
    double const tolerance = k_floatTolerance;
    for (auto const& [value, truth] :
         {std::pair(-0.0, false), std::pair(-1e-9, true), std::pair(-k_inf, true), std::pair(k_nan, false),
          std::pair(tolerance, true), std::pair(std::nextafter(tolerance, 0.0), false)})
        EXPECT_EQ(ConvertTo<bool>(value), truth) << value;
    EXPECT_TRUE(ConvertTo<bool>(256)); // no low byte is taken
}

TEST(Convert, ComparesWithinTheTolerance)
{
    double const tolerance = k_floatTolerance;
    for (auto const& [a, b, equal, differs] :
         {std::tuple(0.0, tolerance, true, false), std::tuple(0.0, std::nextafter(tolerance, 1.0), false, true),
          std::tuple(k_inf, k_inf, false, false), std::tuple(k_inf, -k_inf, false, true),
          std::tuple(k_nan, k_nan, false, false), std::tuple(k_nan, 0.0, false, false)})
    {
        EXPECT_EQ(std::pair(DoubleTraits::Equal(a, b), DoubleTraits::Equal(b, a)), std::pair(equal, equal)) << a;
        EXPECT_EQ(std::pair(Differs(a, b), Differs(b, a)), std::pair(differs, differs)) << a;
    }
    EXPECT_FALSE(U64Traits::Equal(k_highBit, k_highBit + 1));
}

} // namespace
} // namespace Legacy::If::Test
