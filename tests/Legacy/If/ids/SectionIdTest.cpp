#include "../Families.h"

#include <boost/container_hash/hash.hpp>

#include <unordered_set>

namespace Legacy::If::Test {
namespace {

using Id = InfoItemSectionId;
constexpr unsigned int k_none = 0xFFFFFFFF;

TEST(InfoItemSectionId, PacksLevelsAndItems)
{
    static_assert(sizeof(Id) == 4 && Id::MaxDepth() == 4 && Id::MaxSubsectionPerSubsection() == 62);
    struct
    {
        unsigned char sub;
        unsigned int section, item7, greatest;
    } const rows[] = {
        {5, 0x05FFFFFF, 0x05000007, 16777215},
        {2, 0x450BFFFF, 0x45080007, 262143},
        {0, 0x85080FFF, 0x85080007, 4095},
        {62, 0xC5080FBF, 0xC5080F87, 63},
    };
    for (unsigned int depth = 1; depth <= 4; ++depth) {
        SCOPED_TRACE(depth);
        auto const& row = rows[depth - 1];
        Id const id(row.section);
        Id const item = id.CreateInfoItemId(7);
        EXPECT_EQ(item, row.item7);
        EXPECT_EQ(item.Depth(), depth);
        auto const sub = static_cast<unsigned char>(row.sub + 64); // six bits count, and the item field is overwritten
        EXPECT_EQ(depth == 1 ? Id::CreateLevel1SectionId(sub) : Id(rows[depth - 2].item7).CreateSectionId(sub), id);
        EXPECT_EQ(id.CreateInfoItemId(k_none), id); // all ones are the section itself
        EXPECT_EQ(item.CreateInfoItemId(row.greatest + 1), id.CreateInfoItemId(0));
        EXPECT_EQ(item.MaxNumInfoItemsInSection(), row.greatest);
        EXPECT_EQ(item.GetInfoItemSubsectionId(), 7);
        EXPECT_EQ(id.GetInfoItemSubsectionId(), 0xFF);
        for (unsigned int level = 0; level <= 6; ++level) {
            bool const exists = level >= 1 && level <= depth;
            EXPECT_EQ(item.GetSectionId(level), exists ? rows[level - 1].section : k_none) << level;
            EXPECT_EQ(item.GetSubsectionId(level), exists ? rows[level - 1].sub : 0xFF) << level;
        }
    }
    EXPECT_EQ(Id(rows[3].section).CreateSectionId(1), k_none);
    EXPECT_EQ(Id(0x05000123).GetInfoItemSubsectionId(), 0x23); // cut to eight bits
}

TEST(InfoItemSectionId, TellsItsClassByItsDeepestLevel)
{
    auto const classOf = [](Id id) {
        return Texts{id.IsValid() ? "valid" : "", id.IsValidWildcardSectionId() ? "wildcard" : "",
                     id.IsValidSectionId() ? "section" : "", id.IsValidInfoItemId() ? "item" : ""};
    };
    for (unsigned int const id : {0x3FFFFFFFU, 0x7FFFFFFFU, 0x8503FFFFU, 0xC5080FFFU, k_none})
        EXPECT_EQ(classOf(id), (Texts{"valid", "wildcard", "", ""})) << id;
    for (unsigned int const id : {0x05FFFFFFU, 0x7F03FFFFU, 0xC5080FBFU}) // level 63 above the deepest is not looked at
        EXPECT_EQ(classOf(id), (Texts{"valid", "", "section", ""})) << id;
    for (unsigned int const id : {0U, 0x05000007U, 0xC5080F80U})
        EXPECT_EQ(classOf(id), (Texts{"valid", "", "", "item"})) << id;
    for (unsigned int const value : {0x3F000000U, 0x8503F000U, 0xC5080FC0U}) {
        Id const id(value);
        EXPECT_EQ(classOf(id), Texts(4)) << id;
        EXPECT_EQ(id.MaxNumInfoItemsInSection(), 0U);
        EXPECT_EQ(id.CreateInfoItemId(1), k_none);
        EXPECT_EQ(id.GetSectionId(1), k_none);
        EXPECT_EQ(id.GetSubsectionId(1), 0xFF);
    }
}

Id IdOfDepth(unsigned int depth)
{
    return depth == 1 ? Id::CreateLevel1SectionId(1) : IdOfDepth(depth - 1).CreateSectionId(1);
}

TEST(SectionId, CutsPathsIntoLevels)
{
    // The name of each level, and the path down to it.
    std::tuple<std::string, Texts, Texts> const rows[] = {
        {"/a/b/c", {"a", "b", "c"}, {"/a", "/a/b", "/a/b/c"}},
        {"a/", {"a", ""}, {"a", "a/"}},
        {"/", {""}, {"/"}},
        {"a//b", {"a", "", "b"}, {"a", "a/", "a//b"}},
        {"a/b/c/d/e", {"a", "b", "c", "d/e"}, {"a", "a/b", "a/b/c", "a/b/c/d/e"}},
        {"/a/b/c/d/", {"a", "b", "c", "d/"}, {"/a", "/a/b", "/a/b/c", "/a/b/c/d/"}},
    };
    for (auto const& [path, levels, prefixes] : rows) {
        SCOPED_TRACE(path);
        auto const depth = static_cast<unsigned int>(levels.size());
        SectionId const id(path, IdOfDepth(depth));
        ASSERT_TRUE(id.IsValid());
        EXPECT_EQ(id.GetSectionDepth(), depth);
        EXPECT_EQ(id.IsLastSectionLevel(), depth == 4);
        for (unsigned int level = 1; level <= depth; ++level) {
            EXPECT_EQ(id.GetSubsectionName(level), levels[level - 1]);
            EXPECT_EQ(id.GetSectionName(level), prefixes[level - 1]);
        }
        for (unsigned int const level : {0U, depth + 1, k_none})
            EXPECT_EQ(id.GetSubsectionName(level) + id.GetSectionName(level), "");
        EXPECT_FALSE(SectionId(path, IdOfDepth(depth % 4 + 1)).IsValid());
    }
}

TEST(SectionId, IsInvalidUnlessPathAndIdAgree)
{
    SectionId const a("a", IdOfDepth(1));
    for (SectionId const& id : {SectionId("a/b", IdOfDepth(1)), SectionId("", IdOfDepth(1)), SectionId("a", 0x01000007),
                                SectionId("a", 0x3FFFFFFF), SectionId("a/b/c/d", k_none), SectionId("a", 0x3F000000),
                                a.CreateSectionId("b/c", 1), a.CreateSectionId("b", 63),
                                SectionId("a/b/c/d", IdOfDepth(4)).CreateSectionId("e", 0)})
    {
        EXPECT_FALSE(id.IsValid() || id.GetSectionDepth() != 0);
        EXPECT_TRUE(id == SectionId() && id.GetInfoItemSectionId() == k_none);
        EXPECT_EQ(id.GetSectionName() + id.GetSubsectionName(1) + id.GetSectionName(1), "");
    }
    SectionId b = a.CreateSectionId("b", 1);
    EXPECT_EQ(b, SectionId("a/b", IdOfDepth(2)));
    SectionId const taken = std::move(b); // which leaves nothing that does not agree
    EXPECT_TRUE(b == SectionId() && !b.IsValid() && b.GetSectionDepth() == 0);
    EXPECT_EQ(taken.GetSubsectionName(2), "b");
    EXPECT_EQ(SectionId("a/b/c", IdOfDepth(3)).CreateSectionId("d/e", 1).GetSubsectionName(4), "d/e");
}

template<typename Key, std::size_t n>
void ExpectAscending(Key const (&rows)[n])
{
    for (auto const& a : rows)
        for (auto const& b : rows) {
            EXPECT_EQ(a == b, &a == &b);
            EXPECT_EQ(a != b, &a != &b);
            EXPECT_EQ(a < b, &a < &b);
        }
}

TEST(SectionId, OrdersAndHashesByItsPartsAsKeysDo)
{
    ExpectAscending<SectionId>({{"b", 0x01FFFFFF}, {"c", 0x01FFFFFF}, {"a", 0x02FFFFFF}, {"a/a", 0x4103FFFF}, {}});
    EXPECT_TRUE(SectionId() <= SectionId() && SectionId("a", 0x01FFFFFF) <= SectionId());
    ExpectAscending<SectionId_t>({{0, "b"}, {1, ""}, {1, "a"}, {1, "b"}, {0xFFFFFFFF, ""}});
    std::string const text = "xyz";
    auto const expected = static_cast<unsigned int>(boost::hash_range(text.begin(), text.end())) + 3;
    SectionId_t const key(3, text);
    for (int pass = 0; pass < 2; ++pass) // anew, and as it was kept
        EXPECT_EQ(boost::hash<SectionId_t>()(key), std::size_t{expected});
    std::unordered_set<SectionId_t> const keys{key, {3, "x"}, {4, text}, key};
    EXPECT_EQ(keys.size(), 3U);
    std::unordered_set<Id> const ids{Id(7), Id(8), Id(7)};
    EXPECT_EQ(ids.size(), 2U);
}

TEST(Section, HasFlagsAndPrintsItself)
{
    PlainSection section({7, "key"}, "shown", 0);
    EXPECT_EQ(section.SetFlags(5), 5U);
    EXPECT_EQ(section.ClearFlags(4), 1U);
    EXPECT_TRUE(section.CheckFlags(3)); // any bit will do
    EXPECT_FALSE(section.CheckFlags(6));
    EXPECT_TRUE(section == SectionId_t(7, "key") && section == std::string("shown"));
    for (unsigned int const id : {9U, 2U}) {
        section.Infos().Add(Make<InfoHolder>(Make<StringInfo>(id, "n", Permission_t{})));
        section.Items().Add(Make<ItemHolder>(Hold(StringItem::Create(id, std::to_string(id)))));
    }
    boost::intrusive_ptr<Section> const copy(section.DeepCopy());
    EXPECT_NE(copy->Infos().Get(2), section.Infos().Get(2));
    std::ostringstream os;
    os << *copy;
    EXPECT_EQ(os.str(), "Name: shown\nPrimaryId: 7\nSecondaryId: key\nFlags: 1\n"
                        "===Infos For This Section=================\n"
                        "\"\"; max length=256\n\"\"; max length=256\n"
                        "===Items For This Section=================\n2\n9\n");
}

} // namespace
} // namespace Legacy::If::Test
