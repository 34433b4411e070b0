#include "../Legacy/If/Families.h"

#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <barrier>

#if defined(__SANITIZE_THREAD__)
/// The log library as it comes drops its references to sinks unseen by the thread checks.
extern "C" char const* __tsan_default_suppressions()
{
    return "race:boost::log::v2_mt_posix::record_view::public_data::destroy\n";
}
#endif

/// Whatever is const may run on many threads while nobody changes the object. Fit to be run under a thread checker.
namespace Legacy::If::Test {
namespace {

/// Calls `look` on eight threads that start together.
void OnEightThreads(auto const& look)
{
    constexpr int count = 8;
    std::barrier start(count);
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&] {
            start.arrive_and_wait();
            look();
        });
}

TEST(Readers, LookAtADirectory)
{
    InfoItemDirectory directory;
    SectionId section;
    unsigned int id = 0;
    for (auto const* const path : {"a", "a/b", "c/d/e/f"}) {
        directory.AddSection(path, section);
        for (unsigned int number = 0; number < 40; ++number) {
            id = section.GetInfoItemSectionId().CreateInfoItemId(number);
            auto const info = Make<StringInfo>(id, "p" + std::to_string(number), Permission_t{});
            EXPECT_EQ(directory.AddInfo(Make<InfoHolder>(info)), 0);
            EXPECT_EQ(directory.SetItem(Make<ItemHolder>(Hold(info->CreateItem()))), 0);
        }
    }
    OnEightThreads([&] {
        InfoItemDirectory const copy(directory);
        EXPECT_FALSE(copy.Empty());
        for (auto const* const path : {"c/d/e/f", "/c/d/e/f", "c//d/e/f/"}) { // found in each of the ways
            EXPECT_EQ(directory.FindSection(path), section);
            EXPECT_NE(directory.FindInfo(path, "p7"), nullptr);
            EXPECT_NE(directory.FindItem(path, "p8"), nullptr);
            EXPECT_NE(directory.FindInfoItem(std::string(path) + "/p9"), nullptr);
        }
        EXPECT_EQ(directory.FindSection(InfoItemSectionId(id)), section);
        EXPECT_FALSE(directory.FindSection("none").IsValid());
        EXPECT_EQ(directory.FindItem("a/p1"), nullptr);
        EXPECT_EQ(directory.FindInfo(id), directory.FindInfoItem(id)->GetInfo());
        EXPECT_EQ(directory.FindItem(id), directory.FindInfoItem(id)->GetItem());
        EXPECT_EQ(section.GetSectionName(2) + section.GetSubsectionName(4), "c/df");

        std::vector<SectionId> sections;
        directory.GetTopLevelSections(sections);
        InfoItemSectionId const first = sections.front().GetInfoItemSectionId();
        EXPECT_EQ(directory.GetSubsections(first, sections), 0);
        std::list<SectionId> leaves;
        directory.GetLeafSections(leaves);
        std::vector<boost::intrusive_ptr<InfoHolder const>> infos;
        std::vector<boost::intrusive_ptr<ItemHolder const>> items;
        std::vector<boost::intrusive_ptr<InfoItemHolder const>> all;
        EXPECT_EQ(directory.FindInfos(first, infos) + directory.FindItems(first, items), 0);
        EXPECT_EQ(directory.FindInfoItems(first, all), 0);
        EXPECT_TRUE(infos.size() == 80 && items.size() == 80 && all.size() == 80);
        directory.GetAllInfoItems(all);
        EXPECT_EQ(all.size(), 120U);
        std::ostringstream os;
        FormattedInfoItemDump(os, infos.front()->GetInfo(), items.front()->GetItem());
    });
}

template<typename Container, typename Key>
void LookAt(Container const& container, Key const& key, std::string const& name)
{
    using Ptr = decltype(container.Find(name));
    OnEightThreads([&] {
        Container const copy(container);
        Ptr found;
        Key foundKey(key);
        std::vector<Ptr> all;
        std::vector<boost::intrusive_ptr<typename Ptr::element_type const>> constants;
        EXPECT_EQ(container.Get(key, found), 0);
        EXPECT_EQ(container.Get(key), found);
        EXPECT_TRUE(container.IsPresent(key) && container.FindId(name, foundKey) && container.Find(name));
        EXPECT_EQ(container.Get({key, foundKey}, all), 0);
        container.Get(all);
        container.Get(constants);
        EXPECT_EQ(all.size(), 2 + container.Size());
        EXPECT_FALSE(container.Empty());
        if constexpr (requires { container.DeepCopy(); }) {
            EXPECT_EQ(std::unique_ptr<Container>(container.DeepCopy())->Size(), container.Size());
        }
    });
}

TEST(Readers, LookAtContainers)
{
    InfoContainer infos;
    InfoItemHolderContainer holders;
    Sections sections;
    for (unsigned int id = 0; id < 50; ++id) {
        auto const info = Make<StringInfo>(id, "n", Permission_t{});
        infos.Add(info);
        holders.Infos().Add(Make<InfoHolder>(info));
        holders.Items().Add(Make<ItemHolder>(Hold(info->CreateItem())));
        sections.Add(Make<PlainSection>(SectionId_t(id, "s"), "n", 0U));
    }
    LookAt(infos, 7U, "n");
    LookAt(holders.Infos(), 7U, "n");
    LookAt(holders.Items(), 7U, "");
    LookAt(sections, SectionId_t(7, "s"), "n");

    auto const section = sections.Find("n");
    SectionId_t const key(3, "hashed by nobody yet");
    InfoItemHolderMap map;
    map.Insert(Make<InfoItemHolder>(holders.Infos().Get(7)));
    OnEightThreads([&] {
        SectionId_t const copy(key);
        EXPECT_EQ(key.hash_value(), copy.hash_value());
        EXPECT_TRUE(key == copy && !(key < copy));
        unsigned int id = 99;
        EXPECT_TRUE(holders.FindInfoItemId("n", id) && id < 50);
        EXPECT_TRUE(*section == section->GetId() && *section == section->GetName() && !section->CheckFlags(1));
        std::ostringstream os;
        os << *section;
        InfoItemHolderMap const& constant = map;
        EXPECT_TRUE(constant.Find(7).first && constant.Size() == 1 && !constant.Empty());
        EXPECT_EQ(constant.IterBegin()->first, 7U);
    });
}

template<typename Info, typename Item>
void LookAtFamily(Family<Info, Item>)
{
    auto const item = Filled<Item>(7);
    boost::intrusive_ptr<InfoBase> info;
    if constexpr (!std::is_void_v<Info>)
        info = FilledInfo<Info, Item>();
    OnEightThreads([&] {
        auto const copy = Hold(item->DeepCopy(8));
        static_cast<void>(copy->AssignValue(item, nullptr));
        static_cast<void>(copy->Validate(info)); // only of the copy: this one is not const
        EXPECT_TRUE(item->IsEqualValue(copy) && item->IsEqualType(copy) && !item->IsEmpty());
        ItemBase::SerialStruct_t record;
        static_cast<void>(item->Serialize(&record) + static_cast<int>(item->GetSerialDataSize()));
        EXPECT_EQ(item->GetValAsString() + item->GetName(), Printed(*item));
        EXPECT_FALSE(Dumped(*item).empty());
        if (!info)
            return;
        auto const schema = Hold(info->DeepCopy());
        static_cast<void>(schema->AssignValue(info, nullptr));
        static_cast<void>(schema->MergeBounds(info));
        static_cast<void>(info->IsEqualBounds(schema));
        EXPECT_TRUE(info->IsEqualType(schema) && Hold(info->CreateItem())->GetId() == 7);
        EXPECT_EQ(Printed(*info), Printed(*schema));
        EXPECT_EQ(Dumped(*info), Dumped(*schema));
    });
}

TEST(Readers, LookAtValuesAndSchemas)
{
    ForAllFamilies([](auto family) { LookAtFamily(family); });
    static ItemCreator<StringItem> const items;
    static InfoCreator<NumericArrayInfo<U64Traits>> const infos;
    OnEightThreads([] {
        EXPECT_TRUE(Hold(items.CreateItem(3))->IsEqualValue(Hold(items.CreateDerivedItem(3))));
        auto const info = Hold(infos.CreateInfo(3, "n", {5}));
        EXPECT_TRUE(info->GetId() == 3 && info->GetName() == "n" && info->GetPermission() == Permission_t{5});
    });
}

TEST(Readers, TranslateAndLog)
{
    LocalizedString message("key");
    message.AddArgument(Filled<StringItem>(1));
    Result result(5);
    result.AddResultElem(Make<BoolItem>(1U)->Validate(nullptr));
    std::ostringstream console;
    auto& manager = Orlek::LogManager::Instance();
    manager.AddConsoleSink(console);
    OnEightThreads([&] {
        EXPECT_EQ(message.GetString(""), LocalizedString(message).GetString(""));
        EXPECT_TRUE(message == message && message.IsValid() && !message.GetKey().empty());
        EXPECT_TRUE(result.ContainsResultOfSeverity(Orlek::SeverityLevel_t::Error));
        EXPECT_EQ(result.Clone()->GetNumResults(), 1U);
        EXPECT_EQ(result.GetResultArray()[0]->GetAsString(), "");
        result.LogResults(Orlek::LogManager::Instance().GetLogger("Test.Readers"), "prefix");
    });
    manager.RemoveConsoleSink(console);
    std::string const text = console.str();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 8);
}

} // namespace
} // namespace Legacy::If::Test
