#include "KitSupport.h"

#include <limits>
#include <sstream>

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
        EXPECT_TRUE(IsSameSchema(*one, *other)) << changes;
        change(*other);
        EXPECT_FALSE(IsSameSchema(*one, *other)) << changes;
        EXPECT_FALSE(IsSameSchema(*other, *one)) << changes;
        ++changes;
    };
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item>) {
        if constexpr (!std::is_void_v<Info>) {
            auto const make = [] { return Named<Info>("name"); };
            auto const renamed = Named<Info>("other");
            EXPECT_FALSE(IsSameSchema(*make(), *renamed));
            if constexpr (requires(Info & info) { info.SetMaxSize(1); })
                differ(make, [](Info& info) { info.SetMaxSize(77); });
            if constexpr (requires(Info & info) { info.SetMinSize(1); })
                differ(make, [](Info& info) { info.SetMinSize(77); });
            if constexpr (requires(Info & info) { info.SetMax(info.GetMin()); })
                differ(make, [](Info& info) { info.SetMax(decltype(info.GetMax()){9}); });
            if constexpr (requires(Info & info) { info.SetMin(info.GetMax()); })
                differ(make, [](Info& info) { info.SetMin(decltype(info.GetMin()){9}); });
            if constexpr (requires(Info & info) { info.SetFixed(true); })
                differ(make, [](Info& info) { info.SetFixed(true); });
            if constexpr (requires(Info & info) { info.SetMaxLength(1); })
                differ(make, [](Info& info) { info.SetMaxLength(9); });
            if constexpr (requires(Info & info) { info.GetTable().resize(1); })
                differ(make, [](Info& info) { info.GetTable().resize(1); });
            if constexpr (requires(Info & info) { info.X(); })
                differ(make, [](Info& info) { info.Y()->SetMax(9); });
            if constexpr (requires(Info & info) { info.TopLeft(); })
                differ(make, [](Info& info) { info.BottomRight()->X()->SetMax(9); });
            if constexpr (requires(Info & info) { info.AddInfo(nullptr); })
                differ(make, [](Info& info) { info.AddInfo(Named<BoolInfo>("flag")); });
            if constexpr (!std::is_same_v<Info, EnumInfo>) {
                EXPECT_FALSE(IsSameSchema(*make(), *Make<Info>(1U, "name", Permission_t{1})));
            }
        }
    });
    EXPECT_GT(changes, 40U);
    differ([] { return Named<EnumInfo>("name"); }, [](EnumInfo& info) { info.SetDefault(1); });
    differ([] { return Named<StringInfo>("name"); }, [](StringInfo& info) { info.SetDefault("x"); });
    differ([] { return Named<LocalizedStringInfo>("name"); },
           [](LocalizedStringInfo& info) { info.SetDefault(LocalizedString("x")); });
    EXPECT_FALSE(IsSameSchema(*Named<EnumInfo>("name"), *Make<EnumInfo>(1U, "name", Permission_t{}, true)));

    InfoPtr deep = Named<BoolInfo>("deep");
    InfoPtr other = Named<BoolInfo>("other");
    for (int depth = 0; depth < 100'000; ++depth)
        for (InfoPtr* const info : {&deep, &other}) {
            auto const around = Named<CompositeInfo>("around");
            around->AddInfo(*info);
            *info = around;
        }
    EXPECT_TRUE(IsSameSchema(*deep, *deep));
    EXPECT_FALSE(IsSameSchema(*deep, *other));
}

} // namespace
} // namespace Legacy::IfKit::Test
