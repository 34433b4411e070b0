/// Keys and names that all meet in one place under a hash that anybody can compute.
#include "containers/PlaceIndex.h"

#include <Legacy/If/Detail/ContainerStore.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Legacy::If::Detail {
namespace {

constexpr unsigned int k_count = 600;
constexpr unsigned int k_buckets = 769; // what so many elements stand in

/// The first numbers that the hash puts into the first of the buckets.
std::vector<unsigned int> Crowd(auto&& hash)
{
    std::vector<unsigned int> numbers;
    for (unsigned int number = 0; numbers.size() < k_count; ++number)
        if (hash(number) % k_buckets == 0)
            numbers.push_back(number);
    return numbers;
}

std::uint64_t Spread(unsigned int number) { return number * 0x9E3779B97F4A7C15U; }

/// Counts how often a search looks at an element.
struct Element
{
    SectionId_t id;
    std::string name;
    static inline unsigned int s_steps = 0;

    SectionId_t const& GetId() const { return ++s_steps, id; }
    std::string const& GetName() const { return ++s_steps, name; }
};

TEST(HostileKeys, CrowdNoContainer)
{
    auto const text = [](unsigned int number) { return "name " + std::to_string(number); };
    auto const names = Crowd(
        [&](unsigned int number) { return static_cast<std::uint32_t>(std::hash<std::string_view>()(text(number))); });
    std::deque<Element> elements;
    using Store = ContainerStore<Element*, SectionId_t>;
    NodePool pool;
    Store store(Store::ctor_args_list(), pool);
    for (unsigned int const name : names) {
        SectionId_t const key(0U - SectionId_t(0, text(name)).hash_value(), text(name)); // whose hash is 0
        store.emplace(&elements.emplace_back(Element{key, text(name)}));
    }
    for (auto const& element : elements) {
        EXPECT_EQ(store.get<1>().find(Hashed<SectionId_t>::Of(element.id))->element, &element);
        EXPECT_EQ(store.get<2>().find(Hashed<std::string>::Of(element.name))->element, &element);
    }
    EXPECT_LT(Element::s_steps, k_count * 60);

    std::vector<unsigned int> inBucket(k_buckets);
    for (unsigned int const id : Crowd([](unsigned int id) { return Spread(id) >> 32 ^ Spread(id); }))
        ++inBucket[hash_value(Hashed<unsigned int>::Of(id)) % k_buckets];
    EXPECT_LT(*std::ranges::max_element(inBucket), 20U);
}

TEST(HostileKeys, LeaveAPlaceIndexComplete)
{
    PlaceIndex<unsigned int> index;
    for (unsigned int const id : Crowd([](unsigned int id) { return Spread(id) >> (64 - 11); })) {
        index.MakeRoom();
        index.Insert(id, id);
    }
    EXPECT_TRUE(index.IsComplete());
}

// With one tag, so many places share it that some are out of reach: they are left out, and the index says so.
TEST(PlaceIndex, FindsWhatIsThereOrOwnsUpToWhatItLeavesOut)
{
    for (int const tags : {500, 1}) {
        PlaceIndex<int> index;
        auto const tagOf = [=](int place) { return static_cast<std::uint32_t>(place % tags); };
        std::set<int> places;
        std::uint32_t state = 1;
        for (int step = 0; step < 20000; ++step) {
            state = state * 1664525 + 1013904223;
            int const place = static_cast<int>(state >> 8) % 4000;
            if (places.insert(place).second) {
                index.MakeRoom();
                index.Insert(tagOf(place), place);
            } else {
                index.Erase(tagOf(place), place);
                places.erase(place);
            }
            for (int const other : {place, (place + 500) % 4000, step % 4000}) {
                bool const found = index.Find(tagOf(other), [=](int p) { return p == other; }) != nullptr;
                ASSERT_TRUE(found == places.contains(other) || (!found && !index.IsComplete()));
            }
        }
        EXPECT_EQ(index.IsComplete(), tags == 500);
        index.Clear();
        EXPECT_TRUE(index.IsComplete());
    }
}

} // namespace
} // namespace Legacy::If::Detail
