#include "TestSupport.h"

#include <Legacy/If/InfoItemSectionId.h>
#include <Legacy/If/Section.h>
#include <Legacy/If/SectionId.h>
#include <Legacy/If/Set.h>
#include <Legacy/If/String.h>

#include <boost/container_hash/hash.hpp>

#include <algorithm>

namespace Legacy::If::Test {
namespace {

using Id = InfoItemSectionId;
constexpr unsigned int k_none = 0xFFFFFFFF;

TEST(InfoItemSectionId, PacksLevelsAndItems)
{
    static_assert(sizeof(Id) == 4);
    Id const ids[] = {Id::CreateLevel1SectionId(5), Id(0x05FFFFFF).CreateSectionId(2),
                      Id(0x450BFFFF).CreateSectionId(0), Id(0x85080FFF).CreateSectionId(62)};
    unsigned int const sections[] = {0x05FFFFFF, 0x450BFFFF, 0x85080FFF, 0xC5080FBF};
    unsigned int const items[] = {0x05000007, 0x45080007, 0x85080007, 0xC5080F87};
    unsigned int const most[] = {16777215, 262143, 4095, 63};
    unsigned char const levels[] = {5, 2, 0, 62};
    for (unsigned int depth = 1; depth <= 4; ++depth) {
        SCOPED_TRACE(depth);
        Id const id = ids[depth - 1];
        Id const item = id.CreateInfoItemId(7);
        EXPECT_EQ(id, sections[depth - 1]);
        EXPECT_EQ(item, items[depth - 1]);
        EXPECT_EQ(id.CreateInfoItemId(k_none), id); // all ones are the section itself
        EXPECT_EQ(item.CreateInfoItemId(most[depth - 1] + 1), id.CreateInfoItemId(0));
        EXPECT_EQ(id.Depth(), depth);
        EXPECT_EQ(item.MaxNumInfoItemsInSection(), most[depth - 1]);
        EXPECT_EQ(item.GetInfoItemSubsectionId(), 7);
        EXPECT_EQ(id.GetInfoItemSubsectionId(), 0xFF);
        for (unsigned int level = 0; level <= 6; ++level) {
            bool const exists = level >= 1 && level <= depth;
            EXPECT_EQ(item.GetSectionId(level), exists ? sections[level - 1] : k_none) << level;
            EXPECT_EQ(item.GetSubsectionId(level), exists ? levels[level - 1] : 0xFF) << level;
        }
        EXPECT_EQ(item.CreateSectionId(2), id.CreateSectionId(2)); // the item field is overwritten
        EXPECT_TRUE(item < id);
        EXPECT_TRUE(depth == 1 || ids[depth - 2] < item);
    }
    EXPECT_EQ(ids[3].CreateSectionId(1), k_none);
    EXPECT_EQ(Id(0x05000123).GetInfoItemSubsectionId(), 0x23); // cut to eight bits
    EXPECT_EQ(Id::CreateLevel1SectionId(64 + 5), ids[0]);
    EXPECT_EQ(ids[0].CreateSectionId(64 + 2), ids[1]);
    EXPECT_EQ(Id::MaxDepth(), 4U);
    EXPECT_EQ(Id::MaxSubsectionPerSubsection(), 62U);
}

TEST(InfoItemSectionId, TellsItsClassByItsDeepestLevel)
{
    enum
    {
        Wildcard = 1,
        Section = 2,
        Item = 4
    };
    struct
    {
        unsigned int id;
        int kind;
    } const rows[] = {
        {0x3FFFFFFF, Wildcard}, {0x3F000000, 0},       {0x05FFFFFF, Section}, {0x05000007, Item},
        {0x7FFFFFFF, Wildcard}, {0x7F03FFFF, Section}, // level 63 above the deepest one is not looked at
        {0xC5080FFF, Wildcard}, {0xC5080FC0, 0},       {0xC5080FBF, Section}, {0xC5080F80, Item},
        {0x8503FFFF, Wildcard}, {0x8503F000, 0},       {k_none, Wildcard},    {0, Item},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.id);
        Id const id(row.id);
        EXPECT_EQ(id.IsValid(), row.kind != 0);
        EXPECT_EQ(id.IsValidWildcardSectionId(), row.kind == Wildcard);
        EXPECT_EQ(id.IsValidSectionId(), row.kind == Section);
        EXPECT_EQ(id.IsValidInfoItemId(), row.kind == Item);
        EXPECT_EQ(id.Depth(), (row.id >> 30) + 1);
        if (row.kind == 0) {
            EXPECT_EQ(id.MaxNumInfoItemsInSection(), 0U);
            EXPECT_EQ(id.CreateInfoItemId(1), k_none);
            EXPECT_EQ(id.GetSectionId(1), k_none);
            EXPECT_EQ(id.GetSubsectionId(1), 0xFF);
        }
    }
    Id cleared(1);
    cleared.Clear();
    EXPECT_EQ(cleared, k_none);
    EXPECT_TRUE(Id(1) <= Id(1) && Id(1) != Id(2) && Id(1) < 2U && 1 == Id(1));
}

Id IdOfDepth(unsigned int depth)
{
    Id id = Id::CreateLevel1SectionId(1);
    for (; depth > 1; --depth)
        id = id.CreateSectionId(1);
    return id;
}

TEST(SectionId, CutsPathsIntoLevels)
{
    struct
    {
        std::string path;
        Texts levels;   // the name of each
        Texts prefixes; // the path down to each
    } const rows[] = {
        {"a", {"a"}, {"a"}},
        {"/a", {"a"}, {"/a"}},
        {"a/b", {"a", "b"}, {"a", "a/b"}},
        {"/a/b", {"a", "b"}, {"/a", "/a/b"}},
        {"/a/b/c", {"a", "b", "c"}, {"/a", "/a/b", "/a/b/c"}},
        {"a/", {"a", ""}, {"a", "a/"}},
        {"/", {""}, {"/"}},
        {"a//b", {"a", "", "b"}, {"a", "a/", "a//b"}},
        {"//", {"", ""}, {"/", "//"}},
        {"a/b/c/d/e", {"a", "b", "c", "d/e"}, {"a", "a/b", "a/b/c", "a/b/c/d/e"}},
        {"/a/b/c/d/", {"a", "b", "c", "d/"}, {"/a", "/a/b", "/a/b/c", "/a/b/c/d/"}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.path);
        auto const depth = static_cast<unsigned int>(row.levels.size());
        SectionId const id(row.path, IdOfDepth(depth));
        ASSERT_TRUE(id.IsValid());
        EXPECT_EQ(id.GetSectionName(), row.path);
        EXPECT_EQ(id.GetSectionDepth(), depth);
        EXPECT_EQ(id.IsLastSectionLevel(), depth == 4);
        EXPECT_EQ(id.GetInfoItemSectionId(depth), IdOfDepth(depth));
        for (unsigned int level = 1; level <= depth; ++level) {
            EXPECT_EQ(id.GetSubsectionName(level), row.levels[level - 1]);
            EXPECT_EQ(id.GetSectionName(level), row.prefixes[level - 1]);
            EXPECT_EQ(id.GetSubsectionId(level), 1);
        }
        for (unsigned int const level : {0U, depth + 1, k_none})
            EXPECT_EQ(id.GetSubsectionName(level) + id.GetSectionName(level), "");
        EXPECT_FALSE(SectionId(row.path, IdOfDepth(depth % 4 + 1)).IsValid());
    }
}

TEST(SectionId, IsInvalidUnlessPathAndIdAgree)
{
    SectionId const invalid;
    SectionId const tooShallow("a/b", IdOfDepth(1));
    for (SectionId const& id : {tooShallow, SectionId("", IdOfDepth(1)), SectionId("a", 0x01000007),
                                SectionId("a", 0x3FFFFFFF), SectionId("a/b/c/d", k_none), SectionId("a", 0x3F000000)})
    {
        EXPECT_FALSE(id.IsValid());
        EXPECT_EQ(id, invalid);
        EXPECT_EQ(id.GetSectionName(), "");
        EXPECT_EQ(id.GetSectionDepth(), 0U);
        EXPECT_EQ(id.GetInfoItemSectionId(), k_none);
        EXPECT_EQ(id.GetSubsectionName(1), "");
        EXPECT_EQ(id.GetSectionName(1), "");
    }
    SectionId id("a", IdOfDepth(1));
    SectionId const child = id.CreateSectionId("b", 1);
    EXPECT_EQ(child, SectionId("a/b", IdOfDepth(2)));
    EXPECT_FALSE(id.CreateSectionId("b/c", 1).IsValid());
    EXPECT_FALSE(id.CreateSectionId("b", 63).IsValid());
    EXPECT_FALSE(SectionId("a/b/c/d", IdOfDepth(4)).CreateSectionId("e", 0).IsValid());
    id.Clear();
    EXPECT_EQ(id, invalid);
}

TEST(SectionId, OrdersByIdThenByPath)
{
    SectionId const rows[] = {{"b", 0x01FFFFFF}, {"c", 0x01FFFFFF}, {"a", 0x02FFFFFF}, {"a/a", IdOfDepth(2)}, {}};
    for (auto const& a : rows)
        for (auto const& b : rows) {
            EXPECT_EQ(a == b, &a == &b);
            EXPECT_EQ(a != b, &a != &b);
            EXPECT_EQ(a < b, &a < &b);
            EXPECT_EQ(a <= b, &a <= &b);
        }
}

TEST(SectionKey, ComparesItsPartsAndKeepsItsHash)
{
    SectionId_t const key(1, "xyz");
    SectionId_t const early(key);
    std::string const text = "xyz";
    auto const expected = static_cast<unsigned int>(boost::hash_range(text.begin(), text.end())) + 1;
    EXPECT_EQ(key.hash_value(), expected);
    EXPECT_EQ(key.hash_value(), expected);
    SectionId_t const late(key);
    EXPECT_TRUE(key == early && key == late && !(key != early));
    EXPECT_EQ(boost::hash<SectionId_t>()(late), std::size_t{expected});
    EXPECT_EQ(early.hash_value(), expected);
    EXPECT_EQ(SectionId_t(3, "xyz").hash_value(), expected + 2);

    SectionId_t const rows[] = {{0, "b"}, {1, ""}, {1, "a"}, {1, "b"}, {0xFFFFFFFF, ""}};
    for (auto const& a : rows)
        for (auto const& b : rows) {
            EXPECT_EQ(a < b, &a < &b);
            EXPECT_EQ(a == b, &a == &b);
        }
}

struct PlainSection : Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

TEST(Section, HasFlagsAndPrintsItself)
{
    PlainSection section({7, "key"}, "shown", 0);
    EXPECT_EQ(section.SetFlags(5), 5U);
    EXPECT_EQ(section.ClearFlags(4), 1U);
    EXPECT_TRUE(section.CheckFlags(3));
    EXPECT_FALSE(section.CheckFlags(6));
    EXPECT_EQ(section.GetFlags(), 1U);
    EXPECT_TRUE(section == SectionId_t(7, "key") && !(section == SectionId_t(7, "other")));
    EXPECT_TRUE(section == std::string("shown"));

    std::string const head = "Name: shown\nPrimaryId: 7\nSecondaryId: key\nFlags: 1\n";
    std::string const infos = "===Infos For This Section=================\n";
    std::string const items = "===Items For This Section=================\n";
    std::ostringstream bare;
    bare << section;
    EXPECT_EQ(bare.str(), head + infos + items);

    for (unsigned int const id : {9U, 2U}) {
        section.Infos().Add(Make<InfoHolder>(Make<StringInfo>(id, "n", Permission_t{})));
        section.Items().Add(Make<ItemHolder>(Hold(StringItem::Create(id, std::to_string(id)))));
    }
    std::string const info = "\"\"; max length=256\n";
    boost::intrusive_ptr<Section> const copy(section.DeepCopy());
    std::ostringstream full;
    full << *copy;
    EXPECT_EQ(full.str(), head + infos + info + info + items + "2\n9\n");
    EXPECT_NE(copy->Infos().Get(2), section.Infos().Get(2));
}

struct PlainSet : Set
{
    using Set::Set;
    PlainSet* DeepCopy() const override { return new PlainSet(*this); }
    void DumpVal(std::ostream& os) const override { os << GetId() << GetName(); }
};

TEST(Set, HasANumberAndAName)
{
    EXPECT_EQ(Dumped(PlainSet()), "0");
    PlainSet set(4, "four");
    set.SetId(5);
    set.SetName("five");
    PlainSet other;
    other = set;
    EXPECT_EQ(Dumped(*std::unique_ptr<Set>(other.DeepCopy())), "5five");
}

} // namespace
} // namespace Legacy::If::Test
