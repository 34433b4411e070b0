#include "../../../Legacy/src/If/PlaceIndex.h"

#include <gtest/gtest.h>

#include <set>

namespace Legacy::If::Detail {
namespace {

/// Places are numbers here, and the tag of a place is its remainder, so that many places share a tag.
struct Model
{
    explicit Model(std::uint32_t count) : tags(count) {}

    void Insert(int place)
    {
        index.MakeRoom();
        index.Insert(TagOfPlace(place), place);
        places.insert(place);
    }
    void Erase(int place)
    {
        index.Erase(TagOfPlace(place), place);
        places.erase(place);
    }
    bool Finds(int place) const
    {
        return index.Find(TagOfPlace(place), [&](int other) { return other == place; }) != nullptr;
    }
    std::uint32_t TagOfPlace(int place) const { return static_cast<std::uint32_t>(place) % tags; }

    std::uint32_t tags;
    PlaceIndex<int> index;
    std::set<int> places;
};

TEST(PlaceIndex, FindsWhatIsThereAndNothingElse)
{
    Model model(500);
    EXPECT_FALSE(model.Finds(0));
    model.Erase(0);
    std::uint32_t state = 1;
    for (int step = 0; step < 50000; ++step) {
        state = state * 1664525 + 1013904223;
        int const place = static_cast<int>(state >> 8) % 1000;
        if (model.places.contains(place))
            model.Erase(place);
        else
            model.Insert(place);
        for (int const other : {place, (place + 500) % 1000, step % 1000})
            ASSERT_EQ(model.Finds(other), model.places.contains(other));
    }
    EXPECT_TRUE(model.index.IsComplete());
    model.index.Clear();
    EXPECT_FALSE(model.Finds(*model.places.begin()));
}

TEST(PlaceIndex, OwnsUpToWhatItLeavesOut)
{
    Model model(1);
    for (int place = 0; place < 1000; ++place)
        model.Insert(place);
    EXPECT_FALSE(model.index.IsComplete());
    int found = 0;
    for (int place = 0; place < 1000; ++place)
        found += model.Finds(place);
    EXPECT_GT(found, 0);
    EXPECT_LT(found, 1000); // searches end within their reach
    for (int place = 0; place < 1000; ++place) {
        model.Erase(place);
        EXPECT_FALSE(model.Finds(place));
    }
    model.Insert(1);
    EXPECT_TRUE(model.Finds(1));
    EXPECT_FALSE(model.index.IsComplete()); // what was left out may still be in the map
    model.index.Clear();
    EXPECT_TRUE(model.index.IsComplete());
}

} // namespace
} // namespace Legacy::If::Detail
