// Ways that are taken for speed lead where the plain ones do.
#include "TestSupport.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

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
        values.insert(values.end(), {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                     Element(-0.0), Element(0.1), Element(1234567.5), Element(1e-7)});
        for (int const exponent : {7, 8, 15, 16, 31, 32, 63, 64}) {
            auto const power = std::ldexp(Element{1}, exponent);
            for (Element const value : {power, std::nextafter(power, Element{0}), power + Element{1.5}})
                values.insert(values.end(), {value, -value});
        }
    }
    std::mt19937_64 random(1); // NOLINT: the same in every run
    while (values.size() < 131) {
        auto const bits = random();
        Element value;
        std::memcpy(&value, &bits, sizeof(value));
        values.push_back(value);
    }
    return values;
}

template<typename Element>
bool SameBits(Element a, Element b)
{
    return (a != a && b != b) || std::memcmp(&a, &b, sizeof(a)) == 0;
}

template<typename Traits>
boost::intrusive_ptr<NumericArrayItem<Traits>> MakeList(std::vector<typename Traits::T> const& values)
{
    auto const list = Make<NumericArrayItem<Traits>>(7U);
    list->SetVal(values);
    return list;
}

template<typename From, typename To>
void ConvertsListsLikeNumbers()
{
    auto const values = HardValues<typename From::T>();
    auto const list = MakeList<To>({});
    ASSERT_EQ(list->AssignValue(MakeList<From>(values), nullptr), 0);
    for (std::size_t i = 0; i < std::min(values.size(), list->Val().size()); ++i) {
        ItemPtr const source(NumericItem<From>::Create(7, values[i]));
        auto const number = Make<NumericItem<To>>(7U);
        ASSERT_EQ(number->AssignValue(source, nullptr), 0);
        // What is within the tolerance of the 0 that the new element held stays 0 in a list.
        auto const expected = To::Equal(0, number->Val()) ? typename To::T{0} : number->Val();
        EXPECT_TRUE(SameBits(list->Val()[i], expected)) << +values[i] << " gave " << +list->Val()[i];
    }
}

TEST(FastPath, ConvertsListsLikeNumbers)
{
    TenTraits::ForEach(
        []<typename From>(From) { TenTraits::ForEach([]<typename To>(To) { ConvertsListsLikeNumbers<From, To>(); }); });
}

TEST(FastPath, WritesListsLikeNumbers)
{
    TenTraits::ForEach([]<typename Traits>(Traits) {
        auto const values = HardValues<typename Traits::T>();
        ItemBase::SerialStruct_t list;
        ASSERT_EQ(MakeList<Traits>(values)->Serialize(&list), 0);
        for (std::size_t i = 0; i < values.size(); ++i) {
            ItemBase::SerialStruct_t number;
            ASSERT_EQ(ItemPtr(NumericItem<Traits>::Create(7, values[i]))->Serialize(&number), 0);
            EXPECT_EQ(std::memcmp(list.data + i * sizeof(values[i]), number.data, sizeof(values[i])), 0) << +values[i];
        }
    });
}

TEST(FastPath, FindsTheOneElementOutside)
{
    TenTraits::ForEach([]<typename Traits>(Traits) {
        auto const info = MakeInfo<NumericArrayInfo<Traits>>();
        info->SetMin(10);
        info->SetMax(100);
        auto const list = MakeList<Traits>(std::vector<typename Traits::T>(67, 100));
        EXPECT_FALSE(list->Validate(info));
        for (auto& element : list->Val()) {
            for (int const outside : {9, 101}) {
                element = static_cast<typename Traits::T>(outside);
                EXPECT_TRUE(list->Validate(info)) << outside << " at " << &element - list->Val().data();
            }
            element = 10;
        }
        EXPECT_FALSE(list->Validate(info));
    });
}

struct Grouping : std::numpunct<char>
{
    std::string do_grouping() const override { return "\3"; }
    char do_thousands_sep() const override { return '.'; }
    char do_decimal_point() const override { return ','; }
};

template<typename Item>
struct Shouting : Item
{
    using Item::Item;
    std::ostream& operator<<(std::ostream& os) const override { return os << "SEVEN"; }
};

TEST(FastPath, PrintsAsAStreamDoes)
{
    std::locale const before;
    for (std::locale const& locale : {before, std::locale(before, new Grouping)}) {
        std::locale::global(locale);
        TenTraits::ForEach([]<typename Traits>(Traits) {
            for (auto const value : HardValues<typename Traits::T>()) {
                ItemPtr const item(NumericItem<Traits>::Create(7, value));
                std::ostringstream os;
                os << *item;
                EXPECT_EQ(item->GetValAsString(), os.str());
            }
        });
    }
    std::locale::global(before);
    EXPECT_EQ(Make<Shouting<NumericItem<U32Traits>>>(7U)->GetValAsString(), "SEVEN");
    EXPECT_EQ(RecordOf(Shouting<AddrItem>(7)).payload, (Bytes{'S', 'E', 'V', 'E', 'N', 0})); // what is printed
}

} // namespace
} // namespace Legacy::If::Test
