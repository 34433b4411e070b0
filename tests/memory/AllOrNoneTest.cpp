#include "Failing.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/InfoItemHolderMap.h>
#include <Legacy/If/SectionMap.h>
#include <Legacy/If/String.h>

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

/// What is done wholly or not at all, also where memory ends in between.
namespace Legacy::If {
namespace {

struct PlainSection : Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

std::string const k_long(100, 'x'); // too long to stand in the text object itself

/// Calls `act` with the first allocation failing, then with the second, and so on until it gets through; after each
/// failure, `expectUntouched`. Tells how often it failed.
unsigned int FailEach(auto&& act, auto&& expectUntouched)
{
    for (unsigned int nth = 1;; ++nth) {
        bool thrown = false;
        Failing::Arm(nth, false);
        try {
            act();
        } catch (std::bad_alloc const&) {
            thrown = true;
        }
        Failing::Disarm();
        if (!thrown)
            return nth - 1;
        expectUntouched();
    }
}

template<typename Container, typename Ptr, typename Key>
void ExpectAllOrNone(Container& container, std::vector<Ptr> const& elements, std::vector<Key> const& keys)
{
    auto const expectFirstAlone = [&] {
        EXPECT_EQ(container.Size(), 1U);
        for (std::size_t i = 0; i < keys.size(); ++i)
            EXPECT_EQ(container.IsPresent(keys[i]), i == 0);
        std::vector<Ptr> found;
        container.Get(found);
        EXPECT_TRUE(found.size() == 1 && container.Find(elements[0]->GetName()) == elements[0]);
    };
    EXPECT_EQ(container.Add(elements[0]), 0);
    std::vector<Ptr> const others(elements.begin() + 1, elements.end());
    EXPECT_GT(FailEach([&] { EXPECT_EQ(container.Add(others), 0); }, expectFirstAlone), 2U);
    EXPECT_EQ(FailEach([&] { EXPECT_EQ(container.Remove(keys), 0); }, [] {}), 0U); // which needs no memory at all
    EXPECT_TRUE(container.Empty());
}

TEST(AllOrNone, ListsOfElements)
{
    std::vector<boost::intrusive_ptr<InfoBase>> infos;
    std::vector<boost::intrusive_ptr<Section>> sections;
    std::vector<unsigned int> ids;
    std::vector<SectionId_t> keys;
    for (unsigned int id = 0; id < 60; ++id) { // more than the first buckets are for
        infos.emplace_back(new StringInfo(id, k_long + std::to_string(id), Permission_t{}));
        ids.push_back(id);
        keys.emplace_back(id, k_long);
        sections.emplace_back(new PlainSection(keys.back(), k_long + std::to_string(id), 0));
    }
    infos.push_back(infos.back());
    InfoContainer container;
    ExpectAllOrNone(container, infos, ids);
    GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>, SectionId_t>
        storage;
    ExpectAllOrNone(storage, sections, keys);
    FailEach([&] { EXPECT_TRUE(*sections[0] == sections[0]->GetId()); }, [] { FAIL() << "the comparison failed"; });
}

TEST(AllOrNone, NamesOfSectionsAndParameters)
{
    SectionId const before("a", InfoItemSectionId::CreateLevel1SectionId(1));
    SectionId section(before);
    SectionId const other(k_long + '/' + k_long, section.GetInfoItemSectionId().CreateSectionId(2));
    EXPECT_EQ(FailEach([&] { section = other; },
                       [&] {
                           EXPECT_EQ(section, before);
                           EXPECT_EQ(section.GetSectionDepth(), 1U);
                       }),
              1U);
    EXPECT_EQ(section.GetSubsectionName(2), k_long);

    SectionMap map;
    EXPECT_EQ(map.AddSection(k_long, section), 0);
    InfoItemSectionId id(0);
    EXPECT_EQ(map.AddInfo(k_long, k_long, id), 0);
    std::string path = "path";
    std::string name = "name";
    FailEach([&] { EXPECT_EQ(map.FindInfo(id, path, name), 0); }, [&] { EXPECT_EQ(path + name, "pathname"); });
    EXPECT_TRUE(path == k_long && name == k_long);
}

TEST(AllOrNone, NamesOfHolders)
{
    InfoItemHolderMap map;
    for (unsigned int id = 0; id < 20; ++id) // of which each name has two, in the order of the ids
        map.Insert(
            new InfoItemHolder(new InfoHolder(new StringInfo(id, k_long + std::to_string(id % 10), Permission_t{}))));
    FailEach([&] { map.Find(k_long); }, [] {});
    for (unsigned int id = 0; id < 10; ++id) {
        auto const [first, last] = map.Find(k_long + std::to_string(id));
        ASSERT_EQ(std::distance(first, last), 2);
        EXPECT_EQ(first->second, map.Find(id).second->second);
    }
}

} // namespace
} // namespace Legacy::If
