#include "KitSupport.h"

#include <stdexcept>

namespace Legacy::IfKit::Test {
namespace {

/// All parameters of a directory, by path, type and value.
Texts Show(InfoItemDirectory const& directory)
{
    Texts texts;
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    directory.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        auto const& info = *parameter->GetInfo()->GetInfo();
        texts.push_back(PathOf(directory, info) + '=' +
                        (parameter->GetItem() ? ValueText(*parameter->GetItem()->GetItem()) : "none"));
    }
    return texts;
}

TEST(DirectoryFile, BuildsADirectoryWithAndWithoutSchemas)
{
    Folder const folder;
    std::string const path = folder / "device";
    auto const directory = MakeDirectory();
    auto const messageId = IdOf(3);
    ASSERT_EQ(directory->AddInfo(new InfoHolder(Named<LocalizedStringInfo>("message", messageId))), 0);
    ASSERT_EQ(directory->SetItem(new ItemHolder(Make<LocalizedStringItem>(messageId))), 0);
    auto const saved = SaveDirectory(*directory, path);
    EXPECT_EQ(saved.error, std::nullopt);
    EXPECT_EQ(saved.values, 2U);
    ASSERT_EQ(saved.skipped.size(), 1U);
    EXPECT_EQ(saved.skipped[0].id, messageId);
    EXPECT_EQ(saved.skipped[0].code, IfErrTypeNotAssignable);

    InfoItemDirectory empty;
    EXPECT_EQ(LoadDirectory(path, empty).values, 2U);
    EXPECT_EQ(Show(empty), (Texts{"network/eth0/mode=1", "network/eth0/mtu=1500"}));

    auto const known = MakeDirectory();
    known->SetItem(new ItemHolder(EnumItem::Create(IdOf(0), 0)));
    EXPECT_EQ(LoadDirectory(path, *known).values, 2U);
    EXPECT_EQ(Show(*known), (Texts{"network/eth0/mode=1", "network/eth0/mtu=1500", "network/eth0/alias=none"}));
}

TEST(DirectoryFile, SkipsAndTellsWhatDoesNotFit)
{
    Folder const folder;
    std::string const path = folder / "device";
    RecordFileWriter writer(path);
    writer.AppendName(IdOf(0).GetSectionId(2), "other/name"); // another path than the directory has
    writer.AppendName(IdOf(4), "view");
    writer.Append(*ItemPtr(BoolItem::Create(IdOf(0), true)));            // not the parameter's type
    writer.Append(*ItemPtr(NumericItem<U16Traits>::Create(IdOf(1), 9))); // fits
    writer.Append(*Make<OrientationItem>(IdOf(4)));                      // has no schema
    writer.Append(*ItemPtr(BoolItem::Create(77, true)));                 // has no name
    ASSERT_EQ(writer.Commit(), std::nullopt);
    auto const directory = MakeDirectory();
    auto const loaded = LoadDirectory(path, *directory);
    EXPECT_EQ(loaded.error, std::nullopt);
    EXPECT_EQ(loaded.values, 1U);
    std::vector<std::pair<unsigned int, int>> skipped;
    for (auto const& value : loaded.skipped)
        skipped.emplace_back(value.id, value.code);
    EXPECT_EQ(skipped, (decltype(skipped){
                           {IdOf(0), IfErrInvalidArgument}, {IdOf(4), IfErrTypeNotAssignable}, {77, IfErrNotFound}}));
    EXPECT_EQ(Show(*directory)[1], "network/eth0/mtu=9");

    std::string const whole = Content(path);
    std::istringstream in(whole.substr(0, whole.size() - 1));
    RecordFileReader reader(in, "f");
    InfoItemDirectory partly;
    EXPECT_TRUE(LoadDirectory(reader, partly).error);
    EXPECT_TRUE(partly.FindSection("other/name").IsValid()); // stands before the damage
}

TEST(Difference, MakesOneDirectoryLikeTheOther)
{
    auto const former = MakeDirectory();
    auto const latter = MakeDirectory();
    EXPECT_TRUE(DifferenceLines(*former, *latter).empty());
    EXPECT_TRUE(MakeDelta(*former, *latter)->Empty());

    SectionId section;
    latter->AddSection("network/eth1", section);
    auto const lost = section.GetInfoItemSectionId().CreateInfoItemId(0);
    latter->AddInfo(new InfoHolder(Named<BoolInfo>("lost\n", lost)));
    latter->SetItem(new ItemHolder(BoolItem::Create(lost, true)));
    auto const mtu = Named<NumericInfo<U16Traits>>("mtu", IdOf(1));
    mtu->SetMax(9000);
    latter->SetInfo(new InfoHolder(mtu));
    latter->SetItem(new ItemHolder(EnumItem::Create(IdOf(0), 0)));
    latter->SetItem(new ItemHolder(StringItem::Create(IdOf(2), "up")));
    Texts const lines = DifferenceLines(*former, *latter);
    EXPECT_EQ(lines, (Texts{"+ section network/eth1", "network/eth0/mtu: schema 0 <= 0 <= 65535 -> 0 <= 0 <= 9000",
                            "+ network/eth1/lost?", "network/eth0/mode: auto -> off",
                            "network/eth0/alias: (no value) -> up", "network/eth1/lost?: (no value) -> True"}));
    EXPECT_EQ(DifferenceLines(*latter, *former)[0], "- section network/eth1");
    EXPECT_EQ(DifferenceLines(*latter, *former).back(), "network/eth1/lost?: True -> (no value)");

    EXPECT_EQ(former->UpdateFromDelta(MakeDelta(*former, *latter), true, true), 0);
    EXPECT_EQ(DifferenceLines(*former, *latter), Texts());
    EXPECT_EQ(former->FindItem(IdOf(0)), latter->FindItem(IdOf(0))); // shared
}

TEST(Difference, TakesANumberThatIsNoneForItself)
{
    InfoItemDirectory directories[2];
    for (auto& directory : directories) {
        SectionId section;
        directory.AddSection("a", section);
        auto const id = section.GetInfoItemSectionId().CreateInfoItemId(0);
        directory.AddInfo(new InfoHolder(Named<NumericArrayInfo<DoubleTraits>>("b", id)));
        double const none = std::numeric_limits<double>::quiet_NaN();
        directory.SetItem(new ItemHolder(NumericArrayItem<DoubleTraits>::Create(id, {1, none})));
    }
    EXPECT_TRUE(DifferenceLines(directories[0], directories[1]).empty());
}

/// Each change that a schema can take makes it another schema.
TEST(SameSchema, SeesEachField)
{
    std::size_t changes = 0;
    auto const differ = [&changes](auto const& make, auto const& change) {
        auto const one = make();
        auto const other = make();
        if constexpr (std::is_invocable_v<decltype(change), decltype(*other)>) {
            EXPECT_TRUE(IsSameSchema(*one, *other)) << changes;
            change(*other);
            EXPECT_FALSE(IsSameSchema(*one, *other) || IsSameSchema(*other, *one)) << changes;
            ++changes;
        }
    };
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item>) {
        if constexpr (!std::is_void_v<Info>) {
            auto const make = [] { return Named<Info>("name"); };
            EXPECT_FALSE(IsSameSchema(*make(), *Named<Info>("other")));
            EXPECT_FALSE(IsSameSchema(*make(), *If::Test::FreshInfo<Info>(1, "name", {1})));
            differ(make, [](auto& i) -> decltype(void(i.SetMaxSize(77))) { i.SetMaxSize(77); });
            differ(make, [](auto& i) -> decltype(void(i.SetMinSize(77))) { i.SetMinSize(77); });
            differ(make, [](auto& i) -> decltype(void(i.SetMax({9}))) { i.SetMax({9}); });
            differ(make, [](auto& i) -> decltype(void(i.SetMin({9}))) { i.SetMin({9}); });
            differ(make, [](auto& i) -> decltype(void(i.SetFixed(true))) { i.SetFixed(true); });
            differ(make, [](auto& i) -> decltype(void(i.SetMaxLength(9))) { i.SetMaxLength(9); });
            differ(make, [](auto& i) -> decltype(i.GetTable().resize(1)) { i.GetTable().resize(1); });
            differ(make, [](auto& i) -> decltype(void(i.X())) { i.Y()->SetMax(9); });
            differ(make, [](auto& i) -> decltype(void(i.TopLeft())) { i.BottomRight()->X()->SetMax(9); });
            differ(make, [](auto& i) -> decltype(void(i.AddInfo(nullptr))) { i.AddInfo(Named<BoolInfo>("flag")); });
        }
    });
    EXPECT_EQ(changes, 93U);
    differ([] { return Named<EnumInfo>("name"); }, [](EnumInfo& info) { info.SetDefault(1); });
    differ([] { return Named<StringInfo>("name"); }, [](StringInfo& info) { info.SetDefault("x"); });
    differ([] { return Named<LocalizedStringInfo>("name"); },
           [](LocalizedStringInfo& info) { info.SetDefault(LocalizedString("x")); });
    EXPECT_FALSE(IsSameSchema(*Named<EnumInfo>("name"), *Make<EnumInfo>(1U, "name", Permission_t{}, true)));

    InfoPtr const deep = Deep(InfoPtr(Named<BoolInfo>("deep")));
    EXPECT_TRUE(IsSameSchema(*deep, *deep));
    EXPECT_FALSE(IsSameSchema(*deep, *Deep(InfoPtr(Named<BoolInfo>("other")))));
}

class Observable : public testing::Test
{
protected:
    /// A listener that notes what it hears behind its name.
    ObservableDirectory::Listener Note(std::string const& name)
    {
        return [this, name](Change_t const& change) {
            auto const text = [](auto const& holder) { return holder ? ValueText(*holder->GetItem()) : "none"; };
            heard.push_back(name + ": " + change.parameter->GetInfo()->GetInfo()->GetName() +
                            (change.IsSchema() ? (change.formerInfo ? " schema" : " new")
                                               : ' ' + text(change.formerItem) + ">" + text(change.item)));
        };
    }

    int SetMtu(unsigned short value)
    {
        return directory->SetItem(new ItemHolder(NumericItem<U16Traits>::Create(IdOf(1), value)));
    }

    Texts Heard() { return std::exchange(heard, {}); }

    std::unique_ptr<ObservableDirectory> const directory = MakeDirectory<ObservableDirectory>();
    Texts heard;
};

TEST_F(Observable, TellsThoseWhoAskedFromTheInsideOut)
{
    directory->Connect(Note("all"));
    directory->Connect(IdOf(1).GetSectionId(1), Note("network"));
    directory->Connect(IdOf(1).GetSectionId(2), Note("eth0"));
    directory->Connect(IdOf(1), Note("mtu"));
    directory->Connect(IdOf(1), Note("mtu too"));
    directory->Connect(IdOf(0), Note("mode"));
    directory->Connect(InfoItemSectionId::CreateLevel1SectionId(1), Note("elsewhere"));
    EXPECT_EQ(SetMtu(9000), 0);
    EXPECT_EQ(Heard(), (Texts{"mtu: mtu 1500>9000", "mtu too: mtu 1500>9000", "eth0: mtu 1500>9000",
                              "network: mtu 1500>9000", "all: mtu 1500>9000"}));
    directory->SetItem(new ItemHolder(StringItem::Create(IdOf(2), "up")));
    EXPECT_EQ(Heard().front(), "eth0: alias none>up");
    directory->SetInfo(new InfoHolder(Named<NumericInfo<U16Traits>>("mtu", IdOf(1))));
    EXPECT_EQ(Heard().front(), "mtu: mtu schema");

    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    delta->AddInfo(new InfoHolder(Named<BoolInfo>("flag", IdOf(3))));
    delta->AddItem(new ItemHolder(BoolItem::Create(IdOf(3), true)));
    EXPECT_EQ(directory->UpdateFromDelta(delta, true, true), 0);
    EXPECT_EQ(Heard(), (Texts{"eth0: flag new", "network: flag new", "all: flag new", "eth0: flag none>True",
                              "network: flag none>True", "all: flag none>True"}));
    directory->SetItem(new ItemHolder(BoolItem::Create(IdOf(1), true))); // refused
    directory->Clear();
    EXPECT_EQ(Heard(), Texts());
}

TEST_F(Observable, LetsListenersComeAndGo)
{
    ObservableDirectory::Connection last;
    {
        boost::signals2::scoped_connection const first = directory->Connect(IdOf(1), Note("first"));
        last = directory->Connect(IdOf(1), Note("last"));
        auto const once = std::make_shared<ObservableDirectory::Connection>();
        *once = directory->Connect([&, once](Change_t const&) {
            heard.emplace_back("once");
            once->disconnect();
            last.disconnect();
            directory->Connect(IdOf(1), Note("late"));
        });
        SetMtu(1);
        EXPECT_EQ(Heard(), (Texts{"first: mtu 1500>1", "last: mtu 1500>1", "once"}));
        SetMtu(2);
        EXPECT_EQ(Heard(), (Texts{"first: mtu 1>2", "late: mtu 1>2"}));
    }
    SetMtu(3);
    EXPECT_EQ(Heard(), Texts{"late: mtu 2>3"});
    auto other = std::make_unique<ObservableDirectory>();
    boost::signals2::scoped_connection const outlives = other->Connect(Note("other"));
    other.reset();
}

TEST_F(Observable, TellsChangesOfListenersInTheirOrder)
{
    directory->Connect(IdOf(1), [&](Change_t const& change) {
        if (change.item && ValueText(*change.item->GetItem()) == "1") {
            EXPECT_EQ(SetMtu(2), 0);
            EXPECT_EQ(ValueText(*change.parameter->GetItem()->GetItem()), "2"); // made at once
            EXPECT_EQ(SetMtu(3), 0);
        }
    });
    directory->Connect(IdOf(1), Note("a"));
    directory->Connect(Note("b"));
    SetMtu(1);
    EXPECT_EQ(Heard(),
              (Texts{"a: mtu 1500>1", "b: mtu 1500>1", "a: mtu 1>2", "b: mtu 1>2", "a: mtu 2>3", "b: mtu 2>3"}));
}

TEST_F(Observable, TellsAllWhateverOneThrows)
{
    auto const fail = [&](Change_t const& change) {
        if (ValueText(*change.item->GetItem()) == "1")
            SetMtu(2);
        throw std::runtime_error(ValueText(*change.item->GetItem()));
    };
    boost::signals2::scoped_connection failing = directory->Connect(IdOf(1), fail);
    directory->Connect(IdOf(1), Note("a"));
    directory->Connect(Note("b"));
    try {
        SetMtu(1);
        ADD_FAILURE();
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "1"); // the first one
    }
    EXPECT_EQ(Heard(), (Texts{"a: mtu 1500>1", "b: mtu 1500>1", "a: mtu 1>2", "b: mtu 1>2"}));
    failing.disconnect();
    EXPECT_EQ(SetMtu(4), 0);
    EXPECT_EQ(Heard(), (Texts{"a: mtu 2>4", "b: mtu 2>4"}));
}

} // namespace
} // namespace Legacy::IfKit::Test
