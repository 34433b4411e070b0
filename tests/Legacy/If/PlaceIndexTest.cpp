#include "../../../Legacy/src/If/PlaceIndex.h"

#include <gtest/gtest.h>

#include <set>

namespace Legacy::If::Detail {
namespace {

using Index = PlaceIndex<int>;

bool Finds(Index const& index, std::uint32_t tag, int place)
{
    return index.Find(tag, [place](int other) { return other == place; }) != nullptr;
}

TEST(PlaceIndex, FindsWhatIsThereAndNothingElse)
{
    Index index;
    auto const tagOf = [](int place) { return static_cast<std::uint32_t>(place % 500); }; // two places share each tag
    std::set<int> places;
    std::uint32_t state = 1;
    for (int step = 0; step < 50000; ++step) {
        state = state * 1664525 + 1013904223;
        int const place = static_cast<int>(state >> 8) % 1000;
        if (places.insert(place).second) {
            index.MakeRoom();
            index.Insert(tagOf(place), place);
        } else {
            index.Erase(tagOf(place), place);
            places.erase(place);
        }
        for (int const other : {place, (place + 500) % 1000, step % 1000})
            ASSERT_EQ(Finds(index, tagOf(other), other), places.contains(other));
    }
    EXPECT_TRUE(index.IsComplete());
}

TEST(PlaceIndex, OwnsUpToWhatItLeavesOut)
{
    Index index;
    int found = 0;
    for (int place = 0; place < 1000; ++place) {
        index.MakeRoom();
        index.Insert(1, place);
    }
    for (int place = 0; place < 1000; ++place)
        found += Finds(index, 1, place);
    EXPECT_TRUE(found > 0 && found < 1000); // searches end within their reach
    EXPECT_FALSE(index.IsComplete());       // what was left out may still be in the map
    index.Clear();
    EXPECT_TRUE(index.IsComplete());
}

} // namespace
} // namespace Legacy::If::Detail
