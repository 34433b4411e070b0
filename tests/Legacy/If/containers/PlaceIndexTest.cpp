#include "containers/PlaceIndex.h"

#include <gtest/gtest.h>

#include <set>

namespace Legacy::If::Detail {
namespace {

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
