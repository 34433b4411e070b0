#include "../TestSupport.h"

namespace Legacy::If::Test {
namespace {

using Id = InfoItemSectionId;
constexpr unsigned int k_none = 0xFFFFFFFF;

/// The section with that path, added unless the code says otherwise.
SectionId Added(SectionMap& map, std::string const& path, int code = 0)
{
    SectionId section;
    EXPECT_EQ(map.AddSection(path, section), code) << path;
    return section;
}

void ExpectLeaves(SectionMap const& map, std::list<std::string> const& paths)
{
    std::list<SectionId> leaves;
    map.GetLeafSections(leaves);
    EXPECT_TRUE(std::ranges::equal(leaves, paths, {}, [](auto const& leaf) { return leaf.GetSectionName(); }));
}

SectionId const k_untouched("untouched", Id::CreateLevel1SectionId(62));

TEST(SectionMap, AllocatesSectionsByPath)
{
    SectionMap map;
    SectionId section = Added(map, "a/b");
    EXPECT_EQ(section, SectionId("a/b", 0x4003FFFF));
    for (auto const* const path : {"a/b", "/a/b", "a//b", "a/b/"})
        EXPECT_EQ(Added(map, path, IfErrAlreadyExists), section);
    EXPECT_EQ(Added(map, "/b//c"), SectionId("b/c", 0x4103FFFF)); // a new path has no leading delimiter

    section = k_untouched;
    for (auto const* const path : {"", "/", "//a/b", "x//", "x///y", "a/b/c/d/e"})
        EXPECT_EQ(map.AddSection(path, section), IfErrInvalidArgument) << path;
    EXPECT_EQ(section, k_untouched);
    SectionMap const copy(map);
    ExpectLeaves(copy, {"a/b/c/d", "b/c", "x"}); // what was made on the way down stays
    map.Clear();
    map = SectionMap();
    EXPECT_EQ(Added(map, "z"), SectionId("z", 0x00FFFFFF));
}

TEST(SectionMap, FillsTheFirstGapOnceTheLastIdIsInUse)
{
    SectionMap map;
    for (unsigned char sub = 0; sub < 62; ++sub)
        EXPECT_EQ(sub == 5 ? 0 : map.AddSection({"s" + std::to_string(sub), Id::CreateLevel1SectionId(sub)}), 0);
    EXPECT_EQ(Added(map, "last"), SectionId("last", 0x3EFFFFFF));
    EXPECT_EQ(Added(map, "fifth"), SectionId("fifth", 0x05FFFFFF));
    for (int i = 0; i < 63; ++i)
        Added(map, "fifth/" + std::to_string(i));
    SectionId section = k_untouched;
    for (auto const* const path : {"more", "fifth/more"})
        EXPECT_EQ(map.AddSection(path, section), IfErrNoFreeId);
    EXPECT_EQ(section, k_untouched);
    std::vector<SectionId> sections;
    map.GetTopLevelSections(sections);
    EXPECT_EQ(map.GetSubsections(0x05FFFFFF, sections), 0);
    EXPECT_EQ(sections.size(), 126U); // appended, in id order
    EXPECT_EQ(sections[125], SectionId("fifth/62", 0x45FBFFFF));
}

TEST(SectionMap, AddsSectionsUnderTheirOwnIds)
{
    SectionMap map;
    for (auto const& [id, code] :
         {std::pair{SectionId("/a/b/c", 0x850C2FFF), 0},
          {SectionId("/a/b/c", 0x850C2FFF), 0}, // harmless
          {SectionId(), IfErrInvalidArgument},
          {SectionId("a", 0x05FFFFFF), IfErrInvalidArgument},     // the same section by another spelling
          {SectionId("a/n", 0x4513FFFF), IfErrInvalidArgument},   // the same above the last level
          {SectionId("/a/x", 0x450FFFFF), IfErrAlreadyExists},    // the id is taken
          {SectionId("/a/b", 0x4513FFFF), IfErrAlreadyExists},    // the name is taken
          {SectionId("/x/y", 0x450FFFFF), IfErrAlreadyExists},    // the first level's id is taken
          {SectionId("/a//d", 0x85103FFF), IfErrInvalidArgument}, // an empty level
          {SectionId("q/", 0x4603FFFF), IfErrInvalidArgument},    // the same, and q stays
          {SectionId("w/x", 0x7F03FFFF), IfErrInvalidArgument},   // level 63 above the last one
          {SectionId("/a/b/c/d/e", 0xC50C203F), 0}})              // the fourth level takes the rest
        EXPECT_EQ(map.AddSection(id), code) << id.GetSectionName();
    ExpectLeaves(map, {"/a/b/c/d/e", "q"});
    // The two forms leave each other's numbering in order.
    EXPECT_EQ(Added(map, "a/n"), SectionId("/a/n", 0x4513FFFF));
}

TEST(SectionMap, FindsSectionsByPathAndById)
{
    SectionMap map;
    SectionId const abc = Added(map, "a/b/c");
    EXPECT_EQ(map.AddSection({"a/b/c/d/e", 0xC000003F}), 0); // whose last level no path leads to
    Id const own = abc.GetInfoItemSectionId();
    for (auto const& [id, code] : {std::pair{own, 0},
                                   {own.CreateInfoItemId(9), 0}, // a parameter stands for its section
                                   {Id(k_none), IfErrInvalidArgument},
                                   {Id(0x3F000000), IfErrInvalidArgument}, // no class at all
                                   {Id(0x3FFFFFFF), IfErrNotFound},        // a wildcard
                                   {own.CreateSectionId(1), IfErrNotFound}})
    {
        SectionId section = k_untouched;
        EXPECT_EQ(map.FindSection(id, section), code) << id;
        EXPECT_EQ(section, code == 0 ? abc : k_untouched);
        std::vector<SectionId> children;
        EXPECT_EQ(map.GetSubsections(id, children), code);
    }
    for (auto const& [path, code] : {std::pair{std::string("/a/b//c/"), 0},
                                     {"a/b/c", 0},
                                     {"", IfErrNotFound},
                                     {"a/b/c/d", IfErrNotFound},
                                     {"a/b/c/d/e", IfErrNotFound},
                                     {std::string(1 << 20, '/'), IfErrInvalidArgument}})
    {
        SectionId section = k_untouched;
        EXPECT_EQ(map.FindSection(path, section), code) << path;
        EXPECT_EQ(section, code == 0 ? abc : k_untouched);
    }
}

TEST(SectionMap, NumbersParametersByEightBits)
{
    SectionMap map;
    for (auto const* const path : {"a", "a/b/c", "a/b/c/d"}) {
        Id const section = Added(map, path).GetInfoItemSectionId();
        bool const isLast = section.Depth() == 4;
        unsigned int const last = isLast ? 63 : 256;
        Id id(0);
        for (unsigned int i = 0; i <= last; ++i) {
            ASSERT_EQ(map.AddInfo(path, "p" + std::to_string(i), id), 0) << path << i;
            ASSERT_EQ(id, section.CreateInfoItemId(i));
        }
        EXPECT_EQ(id == section, isLast); // number 63 is the section itself
        EXPECT_EQ(map.AddInfo(path, "more", id), IfErrAlreadyExists);
        EXPECT_EQ(map.FindInfo(path, "more", id), IfErrNotFound);
        EXPECT_EQ(map.FindInfo(path, "p17", id), 0);
        EXPECT_EQ(id, section.CreateInfoItemId(17));
    }
    Id const section = Added(map, "g/h/i/j").GetInfoItemSectionId();
    for (unsigned int i = 0; i < 63; ++i)
        EXPECT_EQ(i == 40 ? 0 : map.AddInfo(section.CreateInfoItemId(i), std::to_string(i)), 0);
    for (unsigned int const free : {63U, 40U}) { // 63 is the section itself, which is not refused
        Id id(0);
        EXPECT_EQ(map.AddInfo("g/h/i/j", std::to_string(free), id), 0);
        EXPECT_EQ(id, section.CreateInfoItemId(free));
    }
}

TEST(SectionMap, AddsAndFindsParametersOfExistingSections)
{
    SectionMap map;
    Id const b = Added(map, "a/b").GetInfoItemSectionId();
    Id const speed = b.CreateInfoItemId(7);
    for (auto const& [id, name, addCode, findCode] :
         {std::tuple{speed, "speed", 0, 0},
          {speed, "other", IfErrAlreadyExists, 0},
          {b.CreateInfoItemId(9), "speed", IfErrAlreadyExists, IfErrNotFound}, // leaves no trace
          {b, "itself", 0, IfErrInvalidArgument},
          {Id(k_none), "x", IfErrInvalidArgument, IfErrInvalidArgument},
          {Id(0x05000000), "x", IfErrNotFound, IfErrNotFound},
          {b.CreateSectionId(1).CreateInfoItemId(0), "x", IfErrNotFound, IfErrNotFound}})
    {
        EXPECT_EQ(map.AddInfo(id, name), addCode) << id << name;
        std::string foundPath = "-";
        std::string foundName = "-";
        EXPECT_EQ(map.FindInfo(id, foundPath, foundName), findCode) << id << name;
        EXPECT_EQ(foundPath + ' ' + foundName, findCode == 0 ? "a/b speed" : "- -");
    }
    Id id(3);
    for (auto const& [path, code] : {std::pair{"", IfErrNotFound}, {"/", IfErrInvalidArgument}, {"a/x", IfErrNotFound}})
    {
        EXPECT_EQ(map.AddInfo(path, "speed", id), code);
        EXPECT_EQ(map.FindInfo(path, "speed", id), code);
        EXPECT_EQ(id, 3U);
    }
    EXPECT_EQ(map.AddInfo(b.CreateInfoItemId(9), "other"), 0); // refusals have left neither id nor name behind
    EXPECT_EQ(map.AddInfo("/a//b", "speed", id), IfErrAlreadyExists);
    EXPECT_EQ(id, speed); // the one that bears the name
}

TEST(SectionMap, CollectsParametersDepthFirst)
{
    SectionMap map;
    for (auto const* const path : {"s", "s/z", "s/a", "s/a/q/r", "t"})
        Added(map, path);
    Id added(0);
    for (auto const& [path, name] :
         {std::pair{"s", "x"}, {"s/z", "a"}, {"s/a", "2"}, {"s/a", "1"}, {"s/a/q/r", "0"}, {"t", "x"}})
        EXPECT_EQ(map.AddInfo(path, name, added), 0);
    std::vector<unsigned int> ids{99};
    EXPECT_EQ(map.GetInfos(0x00FFFFFF, ids), 0);
    EXPECT_EQ(ids, (std::vector<unsigned int>{99, 0, 0x40040001, 0x40040000, 0xC0040000, 0x40000000}));
    for (unsigned int const id : {0U, 0x3FFFFFFFU, 0x09FFFFFFU}) // a parameter, a wildcard, no section
        EXPECT_EQ(map.GetInfos(Id(id), ids), IfErrNotFound) << id;
    EXPECT_EQ(map.GetInfos(k_none, ids), IfErrInvalidArgument);
    EXPECT_EQ(ids.size(), 6U);
}

/// Opens the operations of a node.
struct Node : SectionMapElement
{
    Node() = default;
    using SectionMapElement::AddInfo_;
    using SectionMapElement::AddSection_;
    using SectionMapElement::FindInfo_;
    using SectionMapElement::FindSection_;
    using SectionMapElement::GetInfos_;
    using SectionMapElement::SectionMapElement;
};

TEST(SectionMapElement, CopiesEachChildTwice)
{
    auto original = std::make_unique<Node>();
    SectionId section;
    EXPECT_EQ(original->AddSection_("a/b", section), 0);
    EXPECT_EQ(original->AddInfo_(Id(0x40000005), "speed"), 0);
    Node copy(*original);
    EXPECT_EQ(copy.AddSection_(section), IfErrAlreadyExists); // the two copies of `a` differ
    EXPECT_EQ(copy.AddSection_("a/new", section), 0);         // goes to the one that is found by name
    SectionId found;
    EXPECT_EQ(copy.FindSection_(section.GetInfoItemSectionId(), found), IfErrNotFound);
    EXPECT_EQ(copy.FindSection_("a/new", found), 0);
    EXPECT_EQ(original->FindSection_("a/new", found), IfErrNotFound);
    original.reset();
    std::string path;
    std::string name;
    EXPECT_EQ(copy.FindInfo_(Id(0x40000005), path, name), 0);
    EXPECT_EQ(path + ' ' + name, "a/b speed");
}

TEST(SectionMapElement, RefusesWhatLiesElsewhere)
{
    Node node(SectionId("a/b", 0x4507FFFF));
    EXPECT_EQ(node.AddInfo_(Id(0x45040000), "own"), 0);
    EXPECT_EQ(node.AddInfo_(Id(0x46040000), "elsewhere"), IfErrInvalidArgument);
    EXPECT_EQ(node.AddInfo_(Id(0x05000000), "above"), IfErrInvalidArgument);
    SectionId found;
    EXPECT_EQ(node.FindSection_(Id(0x4607FFFF), found), IfErrNotFound);
    EXPECT_EQ(node.FindSection_(Id(0x05FFFFFF), found), IfErrInvalidArgument);
    // Seen from below, a section means all that it holds, and a wildcard what lies below its level.
    for (auto const& [id, count] : {std::pair{0x05FFFFFFU, 1U}, {0x3FFFFFFFU, 1U}, {0x7FFFFFFFU, 0U}}) {
        std::vector<unsigned int> infos;
        EXPECT_EQ(node.GetInfos_(Id(id), infos), 0);
        EXPECT_EQ(infos.size(), count) << id;
    }
}

} // namespace
} // namespace Legacy::If::Test
