// How much memory a hostile record makes its reader take, and a hostile value its writer.
#include "../Legacy/If/Families.h"
#include "Failing.h"

namespace Legacy::If::Test {
namespace {

constexpr std::size_t k_size = 1 << 16;

/// `unit` again and again.
Bytes Repeated(Bytes const& unit)
{
    Bytes bytes;
    while (bytes.size() + unit.size() <= k_size)
        bytes.insert(bytes.end(), unit.begin(), unit.end());
    return bytes;
}

/// A composite of many empty lists of texts.
Bytes Flat()
{
    Bytes bytes = Repeated({0, 0, 0, 1, 0, 0, 0, 0, 7, 0});
    std::size_t const count = bytes.size() / 10;
    bytes.insert(bytes.begin(), {static_cast<unsigned char>(count >> 8), static_cast<unsigned char>(count)});
    return bytes;
}

/// Composites within composites, each the only member of the one around it, whatever count they claim.
Bytes Nested(unsigned char claimed)
{
    constexpr std::size_t level = 12; // a count and a header
    Bytes bytes;
    for (std::size_t left = k_size / level; left > 0; --left) {
        std::size_t const size = left * level - 10;
        auto const byte = [size](int shift) { return static_cast<unsigned char>(size >> shift); };
        Bytes const parts{claimed, 1, 0, 0, 0, 1, byte(24), byte(16), byte(8), byte(0), 0xfd, 0};
        bytes.insert(bytes.end(), parts.begin(), parts.end());
    }
    bytes.insert(bytes.end(), {claimed, 0});
    return bytes;
}

/// The most memory that is in use during a call, beyond what was before.
std::int64_t PeakOf(auto&& call)
{
    std::int64_t const before = Failing::s_bytes;
    Failing::s_peak = before;
    call();
    return Failing::s_peak - before;
}

// The figures stand in the page on the record's form.
TEST(HostileRecord, TakesASmallMultipleOfItsBytes)
{
    // The tags, the payload, the bytes of memory for each byte of it at the worst moment, and the code.
    std::tuple<unsigned char, unsigned char, Bytes, int, int> const cases[] = {
        {0x03, 1, Repeated({1}), 2, 0},                       // numbers
        {0x08, 0, Repeated({0}), 2, 0},                       // truths
        {0x07, 0, Repeated({0}), 33, 0},                      // texts
        {0x8d, 3, Repeated({0, 1, 0, 1, 0, 1, 0, 1}), 27, 0}, // rectangles
        {0x8c, 0, Repeated({0, 0, 0, 0, 0, 0, 0}), 22, 0},    // endpoints
        {0xfd, 0, Flat(), 8, 0},                              // composites
        {0xfd, 0, Nested(0), 15, 0},
        {0xfd, 0, Nested(0xff), 15, -1},
    };
    for (auto const& [type, numericType, payload, most, code] : cases) {
        auto const peak = Record{1, type, numericType, payload}.With([expected = code](auto const* whole) {
            Item item;
            return PeakOf([&] { EXPECT_EQ(ItemBase::Deserialize(whole, item), expected); });
        });
        EXPECT_LE(peak, most * std::ssize(payload)) << int{type};
    }
}

// One text in a thousand places is more than a record can tell the size of, and refused before it is written.
TEST(HostileValue, IsRefusedBeyondItsSizeWord)
{
    boost::intrusive_ptr<ItemBase> many = Hold(StringItem::Create(1, std::string(16'000'000, 'x')));
    for (int i = 0; i < 10; ++i) {
        auto const twice = Make<CompositeItem>(1U);
        twice->SetItems({many, many});
        many = twice;
    }
    ItemBase::SerialStruct_t record;
    EXPECT_LT(PeakOf([&] { EXPECT_EQ(many->Serialize(&record), IfErrInvalidArgument); }), 100'000'000);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_EQ(many->GetSerialDataSize(), 0xFFFFFFFFU);
}

} // namespace
} // namespace Legacy::If::Test
