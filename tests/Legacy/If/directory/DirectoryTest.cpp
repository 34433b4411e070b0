#include "../TestSupport.h"

#include <new>

namespace Legacy::If::Test {
namespace {

using Id = InfoItemSectionId;
using Infos = std::vector<boost::intrusive_ptr<InfoHolder const>>;
using Items = std::vector<boost::intrusive_ptr<ItemHolder const>>;
using InfoItems = std::vector<boost::intrusive_ptr<InfoItemHolder const>>;

template<typename Info = StringInfo>
auto Schema(unsigned int id, std::string const& name)
{
    return Make<InfoHolder>(Make<Info>(id, name, Permission_t{}));
}

template<typename Item = StringItem>
auto Value(unsigned int id)
{
    return Make<ItemHolder>(Hold(Item::Create(id, {})));
}

// Lookups stay right while names and ids come and go in every order; those of one name stand as they came.
TEST(InfoItemHolderMap, AgreesWithAModel)
{
    InfoItemHolderMap map;
    std::map<unsigned int, boost::intrusive_ptr<InfoItemHolder>> model;
    std::map<std::string, std::vector<InfoItemHolder const*>> byName;
    EXPECT_EQ(map.Insert(nullptr), IfErrNullArgument);
    std::mt19937 random;
    for (int step = 0; step < 20000; ++step) {
        auto const id = static_cast<unsigned int>(random() % 300) * 0x01000001U;
        std::string const name(random() % 3 + 1, "abcd"[random() % 4]);
        auto const place = model.find(id);
        if (random() % 4 == 0) {
            ASSERT_EQ(map.Erase(id), place == model.end() ? IfErrNotFound : 0);
            if (place != model.end()) {
                ASSERT_EQ(place->second->GetRefCount(), 1); // which is the model's
                std::erase(byName[place->second->GetInfo()->GetInfo()->GetName()], place->second.get());
                model.erase(place);
            }
        } else {
            auto const holder = Make<InfoItemHolder>(Schema(id, name));
            ASSERT_EQ(map.Insert(holder), place == model.end() ? 0 : IfErrAlreadyExists);
            if (model.emplace(id, holder).second)
                byName[name].push_back(holder.get());
        }
        ASSERT_EQ(map.Find(id).first, model.contains(id));
        if (random() % 4 == 0) {
            auto const [first, last] = map.Find(name);
            auto const isIt = [](auto const& entry, auto const* holder) { return entry.second.get() == holder; };
            ASSERT_TRUE(std::equal(first, last, byName[name].begin(), byName[name].end(), isIt));
        }
        ASSERT_EQ(map.Size(), model.size());
        if (step % 5000 == 4999) {
            map.Clear();
            model.clear();
            byName.clear();
        }
    }
}

/// Notes what the hooks are told.
struct Directory : InfoItemDirectory
{
    Texts log;
    void const* former = nullptr;
    bool throws = false;
    std::shared_ptr<InfoItemDirectoryDelta> delta; // dropped by a hook

protected:
    void InfoChanged_(Infos::const_reference before, InfoItems::const_reference infoItem) override
    {
        Note("info", before.get(), *infoItem);
    }
    void ItemChanged_(Items::const_reference before, InfoItems::const_reference infoItem) override
    {
        Note("item", before.get(), *infoItem);
    }

private:
    void Note(std::string const& what, void const* before, InfoItemHolder const& infoItem)
    {
        unsigned int const id = infoItem.GetInfo()->GetInfo()->GetId();
        EXPECT_EQ(FindInfoItem(id).get(), &infoItem); // the directory is in order
        log.push_back((before ? "set " : "add ") + what + std::to_string(id & 0xFF));
        former = before;
        delta.reset();
        if (throws)
            throw std::bad_alloc();
    }
};

/// Enters a parameter, and its section if need be; its id.
unsigned int Enter(InfoItemDirectory& directory, std::string const& path, std::string const& name, unsigned int number)
{
    SectionId section;
    directory.AddSection(path, section);
    unsigned int const id = section.GetInfoItemSectionId().CreateInfoItemId(number);
    EXPECT_EQ(directory.AddInfo(Schema(id, name)), 0);
    return id;
}

TEST(Directory, FollowsAParametersLife)
{
    Directory directory;
    EXPECT_EQ(directory.AddSection(SectionId("a/b", 0x4003FFFF)), 0);
    EXPECT_TRUE(directory.Empty()); // sections do not count
    unsigned int const id = 0x40000003;
    unsigned int const other = 0x40000004;
    auto const schema = Schema(id, "speed");
    auto const value = Value(id);
    EXPECT_EQ(directory.SetInfo(schema), IfErrNotFound);
    EXPECT_EQ(directory.SetItem(value), IfErrNotFound);
    EXPECT_EQ(directory.AddInfo(schema), 0);
    EXPECT_EQ(directory.AddInfo(schema), IfErrAlreadyExists);
    EXPECT_EQ(directory.AddInfo(Schema(other, "speed")), IfErrAlreadyExists);
    EXPECT_EQ(directory.FindInfoItem(other), nullptr); // taken out again
    EXPECT_EQ(directory.AddInfo(Schema(0x80000004, "x")), IfErrNotFound);
    EXPECT_EQ(directory.AddInfo(Schema(0xFFFFFFFF, "x")), IfErrInvalidArgument);
    EXPECT_EQ(directory.SetItem(Value<StringArrayItem>(id)), IfErrInvalidArgument);
    EXPECT_EQ(directory.FindItem(id), nullptr);
    EXPECT_EQ(directory.SetItem(value), 0);
    EXPECT_EQ(directory.SetItem(Value(id)), 0);
    EXPECT_EQ(directory.former, value.get());
    auto const infoItem = directory.FindInfoItem(id);
    EXPECT_EQ(directory.SetItem(infoItem->GetItem()), 0); // its own
    EXPECT_EQ(directory.former, infoItem->GetItem().get());
    EXPECT_EQ(directory.SetInfo(Schema(id, "renamed")), IfErrInvalidArgument);
    EXPECT_EQ(directory.SetInfo(Schema<StringArrayInfo>(id, "speed")), IfErrInvalidArgument);
    EXPECT_EQ(directory.FindInfo(id), schema);
    EXPECT_EQ(directory.SetInfo(Schema(id, "speed")), 0);
    EXPECT_EQ(directory.former, schema.get());
    for (auto const& info : {Make<InfoHolder>(nullptr), {}}) {
        EXPECT_EQ(directory.AddInfo(info), IfErrNullArgument);
        EXPECT_EQ(directory.SetInfo(info), IfErrNullArgument);
    }
    EXPECT_EQ(directory.SetItem(nullptr), IfErrNullArgument);
    EXPECT_EQ(directory.SetItem(Make<ItemHolder>(nullptr)), IfErrNullArgument);
    EXPECT_EQ(directory.log, (Texts{"add info3", "add item3", "set item3", "set item3", "set info3"}));

    // What a hook throws leaves the change made, and copies share the content.
    directory.throws = true;
    EXPECT_THROW(directory.AddInfo(Schema(other, "x")), std::bad_alloc);
    EXPECT_THROW(directory.SetItem(Value(other)), std::bad_alloc);
    InfoItemDirectory copy(directory);
    EXPECT_NE(copy.FindItem("a/b", "x"), nullptr);
    EXPECT_EQ(copy.SetItem(value), 0); // its own hook runs, and no other
    InfoItemDirectory assigned;
    assigned = copy;
    copy.Clear();
    EXPECT_TRUE(directory.Empty() && !directory.FindSection("a").IsValid() && assigned.Empty());
}

TEST(Directory, FindsByPath)
{
    InfoItemDirectory directory;
    unsigned int const id = Enter(directory, "a/b", "speed", 0);
    EXPECT_EQ(directory.SetItem(Value(id)), 0);
    Enter(directory, "a/b", "", 1); // found by its id alone
    EXPECT_EQ(directory.FindInfo("a/b", "speed"), directory.FindInfo(id));
    EXPECT_EQ(directory.FindItem("/a/b", "speed"), directory.FindItem(id));
    EXPECT_EQ(directory.FindInfoItem("a/b/speed"), directory.FindInfoItem(id));
    for (auto const& [path, name] : {std::pair{"", "speed"}, {"a/b", ""}, {"a", "speed"}, {"x", "y"}})
        EXPECT_EQ(directory.FindInfoItem(path, name), nullptr);
    for (auto const* const path : {"", "speed", "/speed", "a/b/", "/"}) {
        EXPECT_EQ(directory.FindInfoItem(path), nullptr) << path;
        EXPECT_EQ(directory.FindItem(path), nullptr) << path;
    }
    // The search for a value takes the halves the other way round.
    EXPECT_EQ(directory.FindItem("a/b/speed"), nullptr);
    unsigned int const reversed = Enter(directory, "speed", "a/b", 0);
    auto const value = Value(reversed);
    EXPECT_EQ(directory.SetItem(value), 0);
    EXPECT_EQ(directory.FindItem("a/b/speed"), value);
}

TEST(Directory, AnswersForSections)
{
    InfoItemDirectory directory;
    SectionId section;
    EXPECT_EQ(directory.AddSection("b/c", section), 0);
    EXPECT_EQ(directory.AddSection("b/c", section), IfErrAlreadyExists);
    EXPECT_EQ(directory.AddSection(section), 0);
    EXPECT_EQ(directory.FindSection(section.GetInfoItemSectionId().CreateInfoItemId(3)), section);
    EXPECT_FALSE(directory.FindSection("b/x").IsValid());
    std::vector<SectionId> sections(3);
    directory.GetTopLevelSections(sections);
    ASSERT_EQ(sections.size(), 1U);
    EXPECT_EQ(directory.GetSubsections(Id(0x09FFFFFF), sections), IfErrNotFound);
    EXPECT_TRUE(sections.empty());
    std::list<SectionId> leaves(1);
    directory.GetLeafSections(leaves);
    EXPECT_EQ(leaves, (std::list<SectionId>{SectionId(), section})); // appended
    directory.GetTopLevelSections(sections);
    EXPECT_EQ(directory.GetSubsections(sections[0].GetInfoItemSectionId(), sections), 0); // which empties the vector
    EXPECT_EQ(sections, std::vector{section});
}

TEST(Directory, CollectsWhatLiesInASection)
{
    InfoItemDirectory directory;
    unsigned int const ids[] = {Enter(directory, "a", "x", 1), Enter(directory, "a", "y", 0),
                                Enter(directory, "a/b", "z", 0)};
    EXPECT_EQ(directory.SetItem(Value(ids[1])), 0);

    Infos infos(1);
    Items items(1);
    InfoItems infoItems(1);
    for (auto const& [id, code] :
         {std::pair{0x00FFFFFFU, 0}, {ids[0], IfErrNotFound}, {0xFFFFFFFF, IfErrInvalidArgument}}) {
        EXPECT_EQ(directory.FindInfos(Id(id), infos), code);
        EXPECT_EQ(directory.FindItems(Id(id), items), code);
        EXPECT_EQ(directory.FindInfoItems(Id(id), infoItems), code);
    }
    auto const at = [&](int i) { return directory.FindInfoItem(ids[i]); };
    EXPECT_EQ(infos, (Infos{nullptr, at(0)->GetInfo(), at(1)->GetInfo(), at(2)->GetInfo()}));
    EXPECT_EQ(items, (Items{nullptr, at(1)->GetItem()})); // without those that have no value
    EXPECT_EQ(infoItems, (InfoItems{nullptr, at(0), at(1), at(2)}));
    directory.GetAllInfoItems(infoItems);
    EXPECT_EQ(infoItems, (InfoItems{at(1), at(0), at(2)})); // by id
}

TEST(Delta, KeepsFirstEntriesAndSharesHolders)
{
    InfoItemDirectoryDelta delta;
    EXPECT_EQ(delta.AddInfo(nullptr), IfErrNullArgument);
    EXPECT_EQ(delta.AddInfo(Make<InfoHolder>(nullptr)), IfErrNullArgument);
    EXPECT_EQ(delta.AddItem(nullptr), IfErrNullArgument);
    EXPECT_EQ(delta.AddItem(Make<ItemHolder>(nullptr)), IfErrNullArgument);
    EXPECT_TRUE(delta.Empty());
    auto const info = Schema(7, "a");
    auto const item = Value(7);
    SectionId const section("a", 0x01FFFFFF);
    for (int const code : {0, IfErrAlreadyExists}) {
        bool const isFirst = code == 0;
        EXPECT_EQ(delta.AddSection(isFirst ? section : SectionId("b", 0x01FFFFFF)), code);
        EXPECT_EQ(delta.AddInfo(isFirst ? info : Schema(7, "b")), code);
        EXPECT_EQ(delta.AddItem(isFirst ? item : Value(7)), code);
    }
    EXPECT_EQ(delta.GetSectionIdMap_addMod().at(0x01FFFFFF), section);
    EXPECT_EQ(delta.GetInfoHolderPtrMap_addMod().at(7), info);
    EXPECT_EQ(delta.GetItemHolderPtrMap_addMod().at(7), item);
}

/// Two sections, and three parameters in the first of them.
std::shared_ptr<InfoItemDirectoryDelta> MakeDelta(boost::intrusive_ptr<InfoHolder> const& second)
{
    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    delta->AddSection(SectionId("a/b", 0x4003FFFF));
    delta->AddSection(SectionId("a", 0x00FFFFFF));
    for (auto const& info : {Schema(3, "3"), second, Schema(1, "1")}) {
        delta->AddInfo(info);
        delta->AddItem(Value(info->GetInfo()->GetId()));
    }
    return delta;
}

TEST(Delta, AppliesWhatIsAskedForInOrder)
{
    Directory directory;
    auto const delta = MakeDelta(Schema(2, "2"));
    EXPECT_EQ(directory.UpdateFromDelta(nullptr, true, true), IfErrNullArgument);
    EXPECT_EQ(directory.UpdateFromDelta(delta, false, false), 0);
    EXPECT_TRUE(directory.FindSection("a/b").IsValid());
    EXPECT_EQ(directory.UpdateFromDelta(delta, false, true), IfErrNotFound);
    EXPECT_TRUE(directory.Empty());
    EXPECT_EQ(directory.UpdateFromDelta(delta, true, false), 0);
    EXPECT_EQ(directory.UpdateFromDelta(delta, true, true), 0);
    EXPECT_EQ(directory.log, (Texts{"add info1", "add info2", "add info3", "set info1", "set info2", "set info3",
                                    "add item1", "add item2", "add item3"}));
    EXPECT_EQ(directory.FindInfo(2U), delta->GetInfoHolderPtrMap_addMod().at(2));

    directory.delta = MakeDelta(Schema(2, "2")); // which nobody else holds
    EXPECT_EQ(directory.UpdateFromDelta(directory.delta, true, true), 0);
}

TEST(Delta, StopsAtWhatIsRefusedWithAllBeforeItApplied)
{
    auto const delta = MakeDelta(Schema<StringArrayInfo>(2, "2")); // whose value is none of that schema
    Directory directory;
    EXPECT_EQ(directory.UpdateFromDelta(delta, true, true), IfErrInvalidArgument);
    EXPECT_EQ(directory.log, (Texts{"add info1", "add info2", "add info3", "add item1"}));

    Directory named;
    Enter(named, "a", "named", 2);
    EXPECT_EQ(named.UpdateFromDelta(delta, true, true), IfErrInvalidArgument);
    EXPECT_EQ(named.log, (Texts{"add info2", "add info1"}));

    EXPECT_EQ(delta->AddSection(SectionId()), 0); // which the directory refuses, after all others
    InfoItemDirectory fresh;
    EXPECT_EQ(fresh.UpdateFromDelta(delta, true, true), IfErrInvalidArgument);
    EXPECT_TRUE(fresh.FindSection("a/b").IsValid());
    EXPECT_TRUE(fresh.Empty());
}

} // namespace
} // namespace Legacy::If::Test
