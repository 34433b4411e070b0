// Ways that are taken for speed lead where the plain ones do.
#include "../TestSupport.h"
#include "convert/FloatLoops.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>

namespace Legacy::If::Test {
namespace {

/// Values at which conversions and loops over several elements at a time could go wrong, and any others; so many that
/// some are left for the end of every loop.
template<typename Element>
std::vector<Element> HardValues()
{
    using Limits = std::numeric_limits<Element>;
    std::vector<Element> values{Limits::lowest(), Limits::min(), Limits::max(), Element{0}, Element{1}};
    if constexpr (!Limits::is_integer) {
        for (Element const value : {Limits::quiet_NaN(), Limits::infinity(), Element(0), Element(0.1), Element(1e-7)})
            values.insert(values.end(), {value, -value});
        for (int const exponent : {7, 8, 15, 16, 31, 32, 63, 64}) {
            auto const power = std::ldexp(Element{1}, exponent);
            for (Element const value : {power, std::nextafter(power, Element{0}), power + Element{1.5}})
                values.insert(values.end(), {value, -value});
        }
    }
    std::mt19937_64 random(1); // NOLINT: the same in every run
    while (values.size() < 131) {
        auto const bits = random();
        std::memcpy(&values.emplace_back(), &bits, sizeof(Element));
    }
    return values;
}

TEST(FastPath, ConvertsAndWritesListsLikeNumbers)
{
    ForAllTraits([]<typename From>(From) {
        auto const values = HardValues<typename From::T>();
        auto const source = Make<NumericArrayItem<From>>(7U);
        source->SetVal(values);
        std::vector<ItemPtr> numbers;
        Bytes bytes;
        for (auto const value : values) {
            numbers.emplace_back(NumericItem<From>::Create(7, value));
            for (auto const byte : RecordOf(*numbers.back()).payload)
                bytes.push_back(byte);
        }
        EXPECT_EQ(RecordOf(*source).payload, bytes);
        ForAllTraits([&]<typename To>(To) {
            auto const list = Make<NumericArrayItem<To>>(7U);
            ASSERT_EQ(list->AssignValue(source, nullptr), 0);
            for (std::size_t i = 0; i < std::min(values.size(), list->Val().size()); ++i) {
                auto const number = Make<NumericItem<To>>(7U);
                ASSERT_EQ(number->AssignValue(numbers[i], nullptr), 0);
                // What is within the tolerance of the 0 that the new element held stays 0 in a list.
                auto const expected = To::Equal(0, number->Val()) ? typename To::T{0} : number->Val();
                auto const got = list->Val()[i];
                EXPECT_TRUE(got == expected || (got != got && expected != expected)) << +values[i] << " gave " << +got;
            }
        });
    });
}

/// Holds the numbers against each loop that this processor can run, at places that are not aligned and in place.
template<typename Number>
void ExpectSwapped(std::vector<Number> const& numbers,
                   void (*Detail::FloatLoops::*loop)(unsigned char*, unsigned char const*, std::size_t) noexcept)
{
    std::vector<Number> expected;
    for (Number const number : numbers)
        expected.push_back(Detail::Swapped(number));
    std::size_t const size = numbers.size() * sizeof(Number);
    for (auto const& loops : Detail::AllFloatLoops()) {
        Bytes bytes(size + 2);
        std::memcpy(bytes.data() + 1, numbers.data(), size);
        (loops.*loop)(bytes.data(), bytes.data() + 1, numbers.size());
        ASSERT_EQ(std::memcmp(bytes.data(), expected.data(), size), 0);
        std::vector<Number> inPlace = numbers;
        auto* const place = reinterpret_cast<unsigned char*>(inPlace.data());
        (loops.*loop)(place, place, numbers.size());
        ASSERT_EQ(std::memcmp(place, expected.data(), size), 0);
    }
}

// All floats, where LEGACYIF_ALL_FLOATS stands in the environment, or one out of thousands.
TEST(FastPath, TakesFloatsAlikeInEachLoop)
{
    std::vector<float> floats = HardValues<float>();
    std::uint64_t const step = std::getenv("LEGACYIF_ALL_FLOATS") ? 1 : 4099;
    for (std::uint64_t bits = 0; bits < std::uint64_t{1} << 32 || !floats.empty(); floats.clear()) {
        for (; floats.size() < 1021 && bits < std::uint64_t{1} << 32; bits += step)
            floats.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
        ExpectSwapped(floats, &Detail::FloatLoops::copyFloats);
        std::vector<std::uint32_t> expected;
        for (float const number : floats)
            expected.push_back(static_cast<std::uint32_t>(Detail::Truncate<std::int64_t>(number)));
        for (auto const& loops : Detail::AllFloatLoops()) {
            std::vector<std::uint32_t> cut = expected;
            for (std::size_t const other : {std::size_t{0}, cut.size() / 2, cut.size() - 1}) {
                ++cut[other];
                ASSERT_TRUE(loops.cut(cut.data(), floats.data(), cut.size()));
                ASSERT_EQ(cut, expected);
            }
            ASSERT_FALSE(loops.cut(cut.data(), floats.data(), cut.size()));
        }
    }
}

TEST(FastPath, TakesDoublesAlikeInEachLoop)
{
    ExpectSwapped(HardValues<double>(), &Detail::FloatLoops::copyDoubles);
    std::mt19937_64 random(1); // NOLINT: the same in every run
    std::vector<double> doubles(1021);
    for (int round = 0; round < 200; ++round) {
        // About the sizes of integers, with few digits as well as many.
        for (double& number : doubles)
            number = std::ldexp(std::bit_cast<double>((random() << random() % 64 & ~(std::uint64_t{0x7FF} << 52)) |
                                                      std::uint64_t{1023} << 52),
                                static_cast<int>(random() % 80) - 10);
        ExpectSwapped(doubles, &Detail::FloatLoops::copyDoubles);
    }
}

struct Grouping : std::numpunct<char>
{
    std::string do_grouping() const override { return "\3"; }
    char do_decimal_point() const override { return ','; }
};

template<typename Item>
struct Shouting : Item
{
    using Item::Item;
    std::ostream& operator<<(std::ostream& os) const override
    {
        return os << "SEVEN" << dynamic_cast<std::ostringstream&>(os).tellp();
    }
};

TEST(FastPath, PrintsAsAStreamDoes)
{
    std::locale const before;
    for (std::locale const& locale : {before, std::locale(before, new Grouping)}) {
        std::locale::global(locale);
        ForAllTraits([]<typename Traits>(Traits) {
            for (auto const value : HardValues<typename Traits::T>()) {
                auto const item = Hold(NumericItem<Traits>::Create(7, value));
                EXPECT_EQ(item->GetValAsString(), Printed(*item));
            }
        });
    }
    std::locale::global(before);
    EXPECT_EQ(Make<Shouting<NumericItem<U32Traits>>>(7U)->GetValAsString(), "SEVEN5");
    EXPECT_EQ(RecordOf(Shouting<AddrItem>(7)).payload, (Bytes{'S', 'E', 'V', 'E', 'N', '5', 0})); // what is printed
}

TEST(FastPath, GivesOverAlignedClassesTheirAlignment)
{
    struct alignas(256) Wide : NumericItem<U8Traits>
    {
        using NumericItem::NumericItem;
    };
    std::vector<ItemPtr> held;
    for (unsigned int id = 0; id < 8; ++id)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(held.emplace_back(Make<Wide>(id)).get()) % alignof(Wide), 0U);
    EXPECT_TRUE(ItemPtr(new (std::nothrow) NumericItem<U8Traits>(8)));
}

} // namespace
} // namespace Legacy::If::Test
