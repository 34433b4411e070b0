#include "../../../Legacy/src/If/PlaceIndex.h"

#include <gtest/gtest.h>

#include <set>

namespace Legacy::If::Detail {
namespace {

/// Places are numbers here, and the tag of a place is its remainder, so that many places share a tag.
struct Model
{
    void Insert(int place)
    {
        index.MakeRoom();
        index.Insert(static_cast<std::uint32_t>(place) % tags, place);
    }
    void Erase(int place) { index.Erase(static_cast<std::uint32_t>(place) % tags, place); }
    bool Finds(int place) const
    {
        return index.Find(static_cast<std::uint32_t>(place) % tags, [&](int p) { return p == place; }) != nullptr;
    }

    std::uint32_t tags;
    PlaceIndex<int> index = {};
};

TEST(PlaceIndex, FindsWhatIsThereAndNothingElse)
{
    Model model{500};
    std::set<int> places;
    std::uint32_t state = 1;
    for (int step = 0; step < 50000; ++step) {
        state = state * 1664525 + 1013904223;
        int const place = static_cast<int>(state >> 8) % 1000;
        if (places.insert(place).second)
            model.Insert(place);
        else if (places.erase(place) != 0)
            model.Erase(place);
        for (int const other : {place, (place + 500) % 1000, step % 1000})
            ASSERT_EQ(model.Finds(other), places.contains(other));
    }
    EXPECT_TRUE(model.index.IsComplete());
}

TEST(PlaceIndex, OwnsUpToWhatItLeavesOut)
{
    Model model{1};
    int found = 0;
    for (int place = 0; place < 1000; ++place)
        model.Insert(place);
    for (int place = 0; place < 1000; ++place)
        found += model.Finds(place);
    EXPECT_TRUE(found > 0 && found < 1000); // searches end within their reach
    EXPECT_FALSE(model.index.IsComplete()); // what was left out may still be in the map
    model.index.Clear();
    EXPECT_TRUE(model.index.IsComplete());
}

} // namespace
} // namespace Legacy::If::Detail
