// Ways that are taken for speed lead where the plain ones do.
#include "../TestSupport.h"
#include "convert/FloatLoops.h"

#include <bit>
#include <cstdlib>
#include <locale>
#include <streambuf>

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

/// A stream into a buffer that takes a number of characters and no more, in one of many formats.
struct FormattedStream : std::ostream
{
    explicit FormattedStream(unsigned int format) : std::ostream(&m_buffer)
    {
        auto const pick = [&format](auto const&... choices) {
            std::array const all{choices...};
            auto const& choice = all.at(format % all.size());
            format /= static_cast<unsigned int>(all.size());
            return choice;
        };
        m_buffer.room = pick(std::size_t{1} << 30, std::size_t{700}, std::size_t{3});
        width(pick(0, 9));
        precision(pick(6, 0, 12));
        fill(pick(' ', '*'));
        imbue(pick(std::locale::classic(), std::locale(std::locale::classic(), new Grouping)));
        for (auto const flag : {hex, showpos, fixed, boolalpha, unitbuf, left, showbase, uppercase})
            setf(pick(fmtflags(), fmtflags(), flag));
    }

    struct Buffer : std::streambuf
    {
        int_type overflow(int_type c) override
        {
            if (text.size() >= room)
                return traits_type::eof();
            text.push_back(traits_type::to_char_type(c));
            return c;
        }
        std::size_t room = 0;
        std::string text;
    } m_buffer;
};

/// A member that leaves the stream in another format.
struct Meddling : StringItem
{
    using StringItem::StringItem;
    std::ostream& operator<<(std::ostream& os) const override { return os << std::hex << 255; }
};

/// A list member by member, each as it prints itself.
void PrintPlainly(std::ostream& os, ItemBase const& item)
{
    auto const* const composite = dynamic_cast<CompositeItem const*>(&item);
    if (!composite) {
        item.operator<<(os);
        return;
    }
    os << "(";
    for (unsigned int i = 0; i < composite->GetSize(); ++i) {
        os << (i == 0 ? "" : ", ");
        PrintPlainly(os, *composite->GetItem(i));
    }
    os << ")";
}

TEST(FastPath, PrintsListsInEachFormatAsTheirElements)
{
    std::vector<std::pair<Item, Item>> lists; // and composites of the same numbers, which print alike
    std::vector<Item> leaves{Hold(BoolItem::Create(1, true)), Hold(StringItem::Create(1, std::string(3000, 'x')))};
    ForAllTraits([&]<typename Traits>(Traits) {
        auto const list = Make<NumericArrayItem<Traits>>(7U);
        auto const composite = Make<CompositeItem>(7U);
        for (auto const value : HardValues<typename Traits::T>()) {
            list->Val().push_back(value);
            leaves.push_back(Hold(NumericItem<Traits>::Create(7, value)));
            composite->AddItem(leaves.back());
        }
        lists.emplace_back(list, composite);
    });
    leaves.insert(leaves.end(), {lists.front().first, lists.front().second, new Meddling(1)});
    std::mt19937 random(1); // NOLINT: the same in every run
    for (unsigned int format = 0; format < 3000; ++format) {
        auto const mixed = Make<CompositeItem>(7U);
        for (auto i = random() % 9; i > 0; --i)
            mixed->AddItem(leaves[random() % leaves.size()]);
        auto const& [list, composite] = lists[random() % lists.size()];
        unsigned int const chosen = format % 2 == 0 ? format / 2 % 6 : static_cast<unsigned int>(random());
        for (auto const& [fast, plain] : {std::pair(list, composite), std::pair(Item(mixed), Item(mixed))}) {
            FormattedStream actual(chosen);
            FormattedStream expected(chosen);
            fast->operator<<(actual);
            PrintPlainly(expected, *plain);
            ASSERT_EQ(actual.m_buffer.text, expected.m_buffer.text) << chosen;
            ASSERT_EQ(std::tuple(actual.rdstate(), actual.flags(), actual.width()),
                      std::tuple(expected.rdstate(), expected.flags(), expected.width()));
        }
    }
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
