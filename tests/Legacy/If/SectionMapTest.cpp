#include "TestSupport.h"

#include <Legacy/If/SectionMap.h>
#include <Legacy/If/SectionMapElement.h>

#include <list>

namespace Legacy::If::Test {
namespace {

using Id = InfoItemSectionId;
constexpr unsigned int k_none = 0xFFFFFFFF;

template<typename List>
Texts PathsOf(List const& sections)
{
    Texts paths;
    for (SectionId const& section : sections)
        paths.push_back(section.GetSectionName());
    return paths;
}

Texts Leaves(SectionMap const& map)
{
    std::list<SectionId> leaves;
    map.GetLeafSections(leaves);
    return PathsOf(leaves);
}

/// The section with that path, added if need be.
SectionId Added(SectionMap& map, std::string const& path)
{
    SectionId section;
    int const code = map.AddSection(path, section);
    EXPECT_TRUE(code == 0 || code == IfErrAlreadyExists) << path;
    return section;
}

SectionId const k_untouched("untouched", Id::CreateLevel1SectionId(62));

TEST(SectionMap, AllocatesSectionsByPath)
{
    SectionMap map;
    SectionId section;
    EXPECT_EQ(map.AddSection("a/b", section), 0);
    EXPECT_EQ(section, SectionId("a/b", 0x4003FFFF));
    SectionId again;
    for (auto const* const path : {"a/b", "/a/b", "a//b", "a/b/"}) {
        again.Clear();
        EXPECT_EQ(map.AddSection(path, again), IfErrAlreadyExists) << path;
        EXPECT_EQ(again, section);
    }
    EXPECT_EQ(map.AddSection("//a/b", again), IfErrInvalidArgument); // one leading delimiter is skipped, not two
    EXPECT_EQ(Added(map, "/b//c"), SectionId("b/c", 0x4103FFFF));    // a new path has no leading delimiter

    section = k_untouched;
    for (auto const* const path : {"", "/", "x//", "x///y", "a/b/c/d/e", "a/b/c/d/e/f"})
        EXPECT_EQ(map.AddSection(path, section), IfErrInvalidArgument) << path;
    EXPECT_EQ(section, k_untouched);
    EXPECT_EQ(Leaves(map), (Texts{"a/b/c/d", "b/c", "x"})); // what was made on the way down stays
}

TEST(SectionMap, FillsTheFirstGapOnceTheLastIdIsInUse)
{
    SectionMap map;
    for (unsigned char sub = 0; sub < 63; ++sub)
        if (sub != 5 && sub != 7) {
            EXPECT_EQ(map.AddSection(SectionId("s" + std::to_string(sub), Id::CreateLevel1SectionId(sub))), 0);
        }
    EXPECT_EQ(Added(map, "fifth").GetSubsectionId(1), 5);
    EXPECT_EQ(Added(map, "seventh").GetSubsectionId(1), 7);
    SectionId section = k_untouched;
    EXPECT_EQ(map.AddSection("more", section), IfErrNoFreeId);
    EXPECT_EQ(section, k_untouched);
    for (int i = 0; i < 63; ++i)
        Added(map, "fifth/" + std::to_string(i));
    EXPECT_EQ(map.AddSection("fifth/more", section), IfErrNoFreeId);
    std::vector<SectionId> sections;
    map.GetTopLevelSections(sections);
    EXPECT_EQ(map.GetSubsections(Id::CreateLevel1SectionId(5), sections), 0);
    EXPECT_EQ(sections.size(), 126U);
    EXPECT_EQ(sections[125], SectionId("fifth/62", 0x45FBFFFF));
}

TEST(SectionMap, AddsSectionsUnderTheirOwnIds)
{
    SectionMap map;
    SectionId const deep("/a/b/c", 0x850C2FFF);
    EXPECT_EQ(map.AddSection(deep), 0);
    EXPECT_EQ(map.AddSection(deep), 0);
    struct
    {
        SectionId id;
        int code;
    } const rows[] = {
        {SectionId(), IfErrInvalidArgument},
        {SectionId("a", 0x05FFFFFF), IfErrInvalidArgument},     // the same section by another spelling
        {SectionId("a/b", 0x450FFFFF), IfErrInvalidArgument},   // the same above the last level
        {SectionId("/a/x", 0x450FFFFF), IfErrAlreadyExists},    // the id is taken
        {SectionId("/a/b", 0x4513FFFF), IfErrAlreadyExists},    // the name is taken
        {SectionId("/a/b/d", 0x86103FFF), IfErrAlreadyExists},  // the first level's name is taken
        {SectionId("/x/y", 0x450FFFFF), IfErrAlreadyExists},    // the first level's id is taken
        {SectionId("/a//d", 0x85103FFF), IfErrInvalidArgument}, // an empty level
        {SectionId("q/", 0x4603FFFF), IfErrInvalidArgument},    // the same, and q stays
        {SectionId("/a/b/c/d/e", 0xC50C203F), 0},               // the fourth level takes the rest
    };
    for (auto const& row : rows)
        EXPECT_EQ(map.AddSection(row.id), row.code) << row.id.GetSectionName();
    EXPECT_EQ(Leaves(map), (Texts{"/a/b/c/d/e", "q"}));
    // The two forms leave each other's numbering in order.
    EXPECT_EQ(Added(map, "a/n"), SectionId("/a/n", 0x4513FFFF));
}

TEST(SectionMap, FindsSectionsByPathAndById)
{
    SectionMap map;
    SectionId const abc = Added(map, "a/b/c");
    SectionId const xyz = Added(map, "x/y/z/w");
    struct
    {
        Id id;
        int code;
    } const byId[] = {
        {abc.GetInfoItemSectionId(), 0},
        {abc.GetInfoItemSectionId().CreateInfoItemId(9), 0}, // a parameter stands for its section
        {k_none, IfErrInvalidArgument},
        {0x3F000000, IfErrInvalidArgument}, // no class at all
        {0x3FFFFFFF, IfErrNotFound},        // a wildcard
        {abc.GetInfoItemSectionId().CreateSectionId(0), IfErrNotFound},
    };
    std::vector<SectionId> children;
    for (auto const& row : byId) {
        SectionId section = k_untouched;
        EXPECT_EQ(map.FindSection(row.id, section), row.code);
        EXPECT_EQ(section, row.code == 0 ? abc : k_untouched);
        EXPECT_EQ(map.GetSubsections(row.id, children), row.code);
    }
    EXPECT_EQ(map.GetSubsections(abc.GetInfoItemSectionId(1).CreateInfoItemId(3), children), 0);
    EXPECT_EQ(PathsOf(children), Texts{"a/b"});

    struct
    {
        std::string path;
        int code;
    } const byPath[] = {
        {"/x/y//z/w/", 0},          {"", IfErrNotFound}, {"/", IfErrInvalidArgument}, {"x/y/z/w/v", IfErrNotFound},
        {"X/y/z/w", IfErrNotFound},
    };
    for (auto const& row : byPath) {
        SectionId section = k_untouched;
        EXPECT_EQ(map.FindSection(row.path, section), row.code) << row.path;
        EXPECT_EQ(section, row.code == 0 ? xyz : k_untouched);
    }
}

TEST(SectionMap, IsUnimpressedByHugePaths)
{
    SectionMap map;
    Added(map, "a/b/c/d");
    std::size_t const size = std::size_t{1} << 20;
    std::string many("a/b/c/d");
    while (many.size() < size)
        many += "/a";
    std::string const name(size, 'n');
    SectionId section;
    Id id(k_none);
    for (auto const& [path, code] : {std::pair{std::string(size, '/'), IfErrInvalidArgument}, {many, IfErrNotFound}}) {
        EXPECT_EQ(map.FindSection(path, section), code);
        EXPECT_EQ(map.FindInfo(path, name, id), code);
        EXPECT_EQ(map.AddSection(path, section), IfErrInvalidArgument);
    }
    EXPECT_EQ(map.AddSection(name + '/' + name, section), 0);
    EXPECT_EQ(section.GetSectionName().size(), 2 * size + 1);
    EXPECT_EQ(map.AddInfo(name, name, id), 0);
    EXPECT_EQ(map.FindInfo(name + '/', name, id), 0);
}

TEST(SectionMap, NumbersParametersByEightBits)
{
    SectionMap map;
    for (auto const* const path : {"a", "a/b/c", "a/b/c/d"}) {
        SCOPED_TRACE(path);
        Id const section = Added(map, path).GetInfoItemSectionId();
        bool const isLast = section.Depth() == 4;
        unsigned int const last = isLast ? 63 : 256;
        Id id(0);
        for (unsigned int i = 0; i <= last; ++i) {
            ASSERT_EQ(map.AddInfo(path, "p" + std::to_string(i), id), 0) << i;
            ASSERT_EQ(id, section.CreateInfoItemId(i));
        }
        EXPECT_EQ(id == section, isLast); // number 63 is the section itself
        EXPECT_EQ(map.AddInfo(path, "more", id), IfErrAlreadyExists);
        EXPECT_EQ(map.FindInfo(path, "more", id), IfErrNotFound);
    }
    // With the last number in use the first gap is filled, here the only one.
    Id const section = Added(map, "g/h/i/j").GetInfoItemSectionId();
    for (unsigned int i = 0; i < 63; ++i)
        if (i != 40) {
            EXPECT_EQ(map.AddInfo(section.CreateInfoItemId(i), std::to_string(i)), 0);
        }
    EXPECT_EQ(map.AddInfo(section, "itself"), 0); // the form by id takes any id of the section
    Id id(0);
    EXPECT_EQ(map.AddInfo("g/h/i/j", "gap", id), 0);
    EXPECT_EQ(id, section.CreateInfoItemId(40));
}

TEST(SectionMap, AddsParametersOfExistingSections)
{
    SectionMap map;
    Id const b = Added(map, "a/b").GetInfoItemSectionId();
    EXPECT_EQ(map.AddInfo(b.CreateInfoItemId(7), "speed"), 0);
    Id id(k_none);
    EXPECT_EQ(map.AddInfo("a/b", "speed", id), IfErrAlreadyExists);
    EXPECT_EQ(id, b.CreateInfoItemId(7));
    EXPECT_EQ(map.AddInfo("a/b", "next", id), 0);
    EXPECT_EQ(id, b.CreateInfoItemId(8));
    struct
    {
        Id id;
        std::string name;
        int code;
    } const rows[] = {
        {b.CreateInfoItemId(7), "speed", IfErrAlreadyExists},
        {b.CreateInfoItemId(9), "speed", IfErrAlreadyExists},
        {b.CreateInfoItemId(7), "other", IfErrAlreadyExists},
        {k_none, "x", IfErrInvalidArgument},
        {Id(0x05000000), "x", IfErrNotFound},
        {b.CreateSectionId(1).CreateInfoItemId(0), "x", IfErrNotFound},
        {b.CreateInfoItemId(9), "", 0},
    };
    for (auto const& row : rows)
        EXPECT_EQ(map.AddInfo(row.id, row.name), row.code) << row.name;
    for (auto const& [path, code] : {std::pair{"", IfErrNotFound}, {"/", IfErrInvalidArgument}, {"a/x", IfErrNotFound}})
    {
        id = Id(3);
        EXPECT_EQ(map.AddInfo(path, "x", id), code);
        EXPECT_EQ(map.FindInfo(path, "speed", id), code);
        EXPECT_EQ(id, 3U);
    }
    EXPECT_EQ(map.FindInfo("/a//b", "speed", id), 0);
    EXPECT_EQ(id, b.CreateInfoItemId(7));
    EXPECT_EQ(map.FindInfo("a/b", "Speed", id), IfErrNotFound);
}

TEST(SectionMap, FindsParametersById)
{
    SectionMap map;
    Id const b = Added(map, "a/b").GetInfoItemSectionId();
    map.AddInfo(b.CreateInfoItemId(7), "speed");
    for (auto const& [id, code] : {std::pair{b.CreateInfoItemId(7), 0},
                                   {b.CreateInfoItemId(8), IfErrNotFound},
                                   {b, IfErrInvalidArgument},
                                   {Id(0x3F000000), IfErrInvalidArgument},
                                   {b.CreateSectionId(0).CreateInfoItemId(7), IfErrNotFound}})
    {
        std::string path = "-";
        std::string name = "-";
        EXPECT_EQ(map.FindInfo(id, path, name), code);
        EXPECT_EQ(path + ' ' + name, code == 0 ? "a/b speed" : "- -");
    }
}

TEST(SectionMap, CollectsParametersDepthFirst)
{
    SectionMap map;
    auto const add = [&](std::string const& path, std::string const& name) {
        Added(map, path);
        Id id(0);
        EXPECT_EQ(map.AddInfo(path, name, id), 0);
        return static_cast<unsigned int>(id);
    };
    unsigned int const top = add("s", "x");
    unsigned int const z = add("s/z", "a");
    unsigned int const a2 = add("s/a", "2");
    unsigned int const a1 = add("s/a", "1");
    unsigned int const deep = add("s/a/q/r", "0");
    add("t", "x");
    Id const s = Added(map, "s").GetInfoItemSectionId();

    std::vector<unsigned int> ids{99};
    EXPECT_EQ(map.GetInfos(s, ids), 0);
    EXPECT_EQ(ids, (std::vector<unsigned int>{99, top, a1, a2, deep, z}));
    for (auto const& [id, code] : {std::pair{top, IfErrNotFound},
                                   {k_none, IfErrInvalidArgument},
                                   {0x3FFFFFFFU, IfErrNotFound},
                                   {0x09FFFFFFU, IfErrNotFound}})
        EXPECT_EQ(map.GetInfos(Id(id), ids), code) << id;
    EXPECT_EQ(ids.size(), 6U);

    SectionMap const shared(map);
    Added(map, "u");
    EXPECT_EQ(Leaves(shared), (Texts{"s/a/q/r", "s/z", "t", "u"}));
}

/// Opens the operations of a node.
struct Node : SectionMapElement
{
    Node() = default;
    using SectionMapElement::AddInfo_;
    using SectionMapElement::AddSection_;
    using SectionMapElement::FindSection_;
    using SectionMapElement::GetInfos_;
    using SectionMapElement::SectionMapElement;
};

TEST(SectionMapElement, CopiesEachChildTwice)
{
    Node original;
    SectionId section;
    EXPECT_EQ(original.AddSection_("a/b", section), 0);
    Node copy(original);
    EXPECT_EQ(copy.AddSection_(section), IfErrAlreadyExists); // the two copies of `a` differ
    EXPECT_EQ(copy.AddSection_("a/new", section), 0);         // goes to the one that is found by name
    SectionId found;
    EXPECT_EQ(copy.FindSection_(section.GetInfoItemSectionId(), found), IfErrNotFound);
    EXPECT_EQ(copy.FindSection_("a/new", found), 0);
    EXPECT_EQ(original.FindSection_("a/new", found), IfErrNotFound);
}

TEST(SectionMapElement, RefusesWhatLiesElsewhere)
{
    SectionId const b("a/b", 0x4507FFFF);
    Node node(b);
    EXPECT_EQ(node.AddInfo_(Id(0x4507FFF0), "here"), 0);
    EXPECT_EQ(node.AddInfo_(Id(0x4607FFF0), "elsewhere"), IfErrInvalidArgument);
    EXPECT_EQ(node.AddInfo_(Id(0x05000000), "above"), IfErrInvalidArgument);
    EXPECT_EQ(node.AddSection_(b), 0);
    EXPECT_EQ(node.AddSection_(SectionId("a", 0x05FFFFFF)), IfErrInvalidArgument);
    EXPECT_EQ(node.AddSection_(SectionId("x/b/c", 0x85041FFF)), IfErrInvalidArgument);
    EXPECT_EQ(node.AddSection_(SectionId("a/b/c", 0x86041FFF)), IfErrInvalidArgument);
    SectionId found = k_untouched;
    EXPECT_EQ(node.FindSection_(Id(0x4607FFFF), found), IfErrNotFound);
    EXPECT_EQ(node.FindSection_(Id(0x05FFFFFF), found), IfErrInvalidArgument);
    EXPECT_EQ(found, k_untouched);
    // Seen from below, a wildcard means what lies below its section, and a section all that it holds.
    std::vector<unsigned int> infos;
    Node deeper(SectionId("a/b", 0x4507FFFF));
    deeper.AddInfo_(Id(0x45040000), "own");
    EXPECT_EQ(deeper.GetInfos_(Id(0x3FFFFFFF), infos), 0);
    EXPECT_EQ(deeper.GetInfos_(Id(0x05FFFFFF), infos), 0);
    EXPECT_EQ(infos, (std::vector<unsigned int>{0x45040000, 0x45040000}));
    EXPECT_EQ(deeper.GetInfos_(Id(0x7FFFFFFF), infos), 0); // its own depth: not its own parameters
    EXPECT_EQ(infos.size(), 2U);
}

} // namespace
} // namespace Legacy::If::Test
