// Memory ends at each allocation in turn, in all that the library does: nothing is lost, nothing is left half done, and
// the same call then succeeds.
#include "../Legacy/If/Families.h"
#include "Failing.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/MessageConversions.h>
#include <Legacy/If/SectionMap.h>
#include <Net/AppEndpoint.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <cstdlib>
#include <list>
#include <optional>

namespace Legacy::If::Test {
namespace {

// What a thread keeps would look like a leak, and would not fail.
int const s_withoutCache = setenv("LEGACYIF_NO_OBJECT_CACHE", "1", 1);

/// Runs `act` on what `prepare` makes, its first allocation failing, then its second, and so on until none fails: that
/// one alone, and then all from there on. A call that gives an answer gives the right one; after one that threw,
/// `intact` looks at the state.
void Survive(std::string const& what, auto&& prepare, auto&& act, auto&& intact)
{
    SCOPED_TRACE(what);
    std::string const expected = [&] { // and whatever is made once, is made now
        auto state = prepare();
        return act(state);
    }();
    for (bool const onwards : {false, true}) {
        bool failed = true;
        for (std::uint64_t nth = 1; failed && !testing::Test::HasFailure(); ++nth) {
            std::int64_t const before = Failing::Blocks();
            {
                auto state = prepare();
                std::optional<std::string> answer;
                Failing::Arm(nth, onwards);
                try {
                    answer = act(state);
                } catch (std::bad_alloc const&) {
                }
                failed = Failing::Disarm();
                SCOPED_TRACE(testing::Message() << "allocation " << nth << (onwards ? " and all that follow" : ""));
                if (!answer) {
                    intact(state);
                    answer = act(state);
                }
                EXPECT_EQ(*answer, expected);
                intact(state);
            }
            bool const reported = testing::Test::HasFailure(); // a report takes memory itself
            EXPECT_TRUE(reported || Failing::Blocks() == before) << Failing::Blocks() - before << " blocks lost";
        }
    }
}

/// The same for what works on nothing but its own.
void Survive(std::string const& what, auto&& act)
{
    Survive(
        what, [] { return 0; }, [&](int) { return act(); }, [](int) {});
}

std::string Text(auto const& object)
{
    std::ostringstream os;
    os.exceptions(std::ios::badbit);
    object.operator<<(os);
    return std::move(os).str();
}

std::string Text(std::shared_ptr<ResultElem const> const& finding)
{
    return finding ? "refused: " + Text(*finding->GetItem()) : "passed";
}

std::string Dump(auto const& object)
{
    std::ostringstream os;
    os.exceptions(std::ios::badbit);
    object.DumpVal(os);
    return std::move(os).str();
}

/// A value that can be used in every way.
void ExpectSound(ItemBase const& item)
{
    boost::intrusive_ptr<ItemBase> const copy(item.DeepCopy(item.GetId()));
    EXPECT_EQ(Printed(*copy), Printed(item));
    EXPECT_FALSE(Dumped(item).empty());
    ItemBase::SerialStruct_t record;
    bool const written = item.Serialize(&record) == 0;
    bool const other = item.GetType() == IfType_t::StringSparse; // announces another size than it writes
    std::uint32_t const size = boost::endian::big_to_native(std::uint32_t{record.size});
    EXPECT_TRUE(other || size == (written ? item.GetSerialDataSize() : 0));
}

void ExpectSound(InfoBase const& info)
{
    boost::intrusive_ptr<InfoBase> const copy(info.DeepCopy());
    EXPECT_EQ(Printed(*copy), Printed(info));
    boost::intrusive_ptr<ItemBase> const item(info.CreateItem());
    if (item)
        ExpectSound(*item);
}

auto const k_sound = [](auto const& object) { ExpectSound(*object); };

template<typename Item>
void SurviveValue(boost::intrusive_ptr<Item> const& item)
{
    auto const fresh = [] { return Make<Item>(7U); };
    Survive("copy", [&] { return Text(*Hold(item->DeepCopy(9))) + Text(*Make<Item>(*item)); });
    Survive("print", [&] { return Text(*item) + item->GetValAsString() + Dump(*item); });
    auto const assign = [&](auto const& target) {
        *target = *item;
        return Text(*target);
    };
    Survive("operator=", fresh, assign, k_sound);
    auto const take = [&](auto const& target) { return std::to_string(target->AssignValue(item, nullptr)); };
    Survive("assign", fresh, take, k_sound);
    auto const validate = [&](InfoPtr const& info) {
        return Text(item->Validate(info)) + Text(item->ValidateMin(info)) + Text(item->ValidateMax(info));
    };
    Survive(
        "validate", [] { return MakeInfo<ExtendedInfo>(); }, validate, [](auto const&) {});
    auto const read = [](auto const& target) {
        std::istringstream in("1 1 1 1 1");
        in.exceptions(std::ios::badbit);
        std::ostringstream out;
        return std::to_string(target->SetValFromStream(in, out, nullptr));
    };
    Survive("read text", fresh, read, k_sound);

    ItemBase::SerialStruct_t written;
    if (item->Serialize(&written) != 0)
        return;
    auto const write = [&](auto const&) {
        ItemBase::SerialStruct_t record;
        return std::to_string(item->Serialize(&record));
    };
    Survive("serialize", fresh, write, k_sound);
    ItemBase::ConstSerialStruct_t const record{written.id, written.size, written.type, written.numericType,
                                               written.data};
    auto const deserialize = [&](auto const& target) { return std::to_string(target->Deserialize(&record)); };
    Survive("read record", fresh, deserialize, k_sound);
    Survive("rebuild", [&] {
        boost::intrusive_ptr<ItemBase> rebuilt;
        int const code = ItemBase::Deserialize(&record, rebuilt);
        return std::to_string(code) + Text(*rebuilt);
    });
}

template<typename Info>
void SurviveSchema(boost::intrusive_ptr<Info> const& info, InfoPtr const& other)
{
    auto const fresh = [] { return FreshInfo<Info>(7, "speed", {}); };
    Survive("copy", [&] { return Text(*Hold(info->DeepCopy(9, "another name of some length"))); });
    Survive("print", [&] { return Text(*info) + Dump(*info); });
    Survive("create", [&] {
        boost::intrusive_ptr<ItemBase> const item(info->CreateItem());
        return item ? Text(*item) : "";
    });
    auto const assign = [&](auto const& target) {
        *target = *info;
        return Text(*target);
    };
    Survive("operator=", fresh, assign, k_sound);
    auto const take = [&](auto const& target) { return std::to_string(target->AssignValue(other, nullptr)); };
    Survive("assign", fresh, take, k_sound);
    auto const merge = [&](auto const& target) { return std::to_string(target->MergeBounds(other)); };
    Survive("merge", fresh, merge, k_sound);
}

TEST(AllocationFailure, LeavesValuesAndSchemasWhole)
{
    ForAllFamilies([]<typename Info, typename Item>(Family<Info, Item>) {
        auto const item = Filled<Item>(7);
        SCOPED_TRACE(Dumped(*item));
        SurviveValue(item);
        if constexpr (!std::is_void_v<Info>) {
            auto const info = FilledInfo<Info, Item>();
            SurviveSchema(info, info);
            auto const validate = [&](auto const& value) { return Text(value->Validate(info)); };
            Survive(
                "validate", [&] { return item; }, validate, k_sound);
        }
    });
}

TEST(AllocationFailure, LeavesTreesOfMembersWhole)
{
    auto const inner = Make<CompositeItem>(1U);
    auto const text = StringItem::Create(2, "a text that is longer than what a string keeps within");
    inner->SetItems({Hold(text), Filled<NumericArrayItem<U16Traits>>(3), Filled<AppEndpointItem>(4)});
    auto const outer = Make<CompositeItem>(7U);
    outer->SetItems({inner, Filled<BoolItem>(5), Hold(inner->DeepCopy(6))});
    SurviveValue(outer);
    auto const add = [&](auto const& list) {
        unsigned int index = 0;
        list->AddItem(inner, index);
        return std::to_string(list->GetSize() == index + 1);
    };
    Survive(
        "add", [&] { return Hold(outer->DeepCopy()); }, add, k_sound);

    auto const schema = MakeInfo<CompositeInfo>();
    schema->SetInfos({MakeInfo<StringInfo>(), FilledInfo<CompositeInfo, CompositeItem>(), MakeInfo<EnumInfo>(false)});
    SurviveSchema(schema, schema);
}

TEST(AllocationFailure, LeavesDefaultsWithinTheirSchemas)
{
    auto const resize = [](auto const& info) { return std::to_string(info->SetMinSize(9)); };
    auto const sized = [](auto const& info) {
        EXPECT_LE(info->GetMinSize(), info->GetDefault().size());
        EXPECT_LE(info->GetDefault().size(), info->GetMaxSize());
    };
    // A default that is empty stays so; others grow.
    Survive(
        "numbers", [] { return FilledInfo<NumericArrayInfo<U16Traits>, NumericArrayItem<U16Traits>>(); }, resize,
        sized);
    Survive(
        "texts", [] { return FilledInfo<StringArrayInfo, StringArrayItem>(); }, resize, sized);
    Survive(
        "bits", [] { return FilledInfo<BoolArrayInfo, BoolArrayItem>(); }, resize, sized);

    std::string const longText(40, 'x');
    auto const allowed = [&](auto const& info) {
        auto const& table = info->GetTable();
        EXPECT_TRUE(table.empty() || std::find(table.begin(), table.end(), info->GetDefault()) != table.end());
    };
    auto const enter = [&](auto const& info) {
        info->SetTable({longText, longText + "y"});
        return info->GetDefault();
    };
    Survive(
        "table", [] { return MakeInfo<StringSparseInfo>(); }, enter, allowed);
}

struct PlainSection : Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

/// Elements of two kinds of container: their keys are 1 to 9, their names are of some length.
struct Schemas
{
    using Container = InfoContainer;
    static unsigned int Key(unsigned int number) { return number; }
    static std::string Name(unsigned int number) { return "the element with the number " + std::to_string(number); }
    static auto New(unsigned int number) { return Make<StringInfo>(number, Name(number), Permission_t{}); }
};

struct Sections
{
    using Container =
        GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>, SectionId_t>;
    static SectionId_t Key(unsigned int number) { return {1, Schemas::Name(number)}; }
    static auto New(unsigned int number) { return Make<PlainSection>(Key(number), Schemas::Name(number), 0U); }
};

template<typename Kind>
void SurviveContainer()
{
    using Container = typename Kind::Container;
    using Elements = std::vector<decltype(Container().Find(""))>;
    Elements const first{Kind::New(1), Kind::New(2), Kind::New(3), Kind::New(4)};
    Elements const second{Kind::New(5), Kind::New(6), Kind::New(7)};
    auto const filled = [&] {
        Container container;
        container.Add(first);
        return container;
    };
    auto const intact = [](Container const& container) {
        unsigned int count = 0;
        for (unsigned int number = 1; number < 10; ++number) {
            auto const element = container.Get(Kind::Key(number));
            EXPECT_EQ(container.Find(Schemas::Name(number)), element);
            EXPECT_EQ(container.IsPresent(Kind::Key(number)), element != nullptr);
            count += element ? 1 : 0;
        }
        EXPECT_EQ(container.Size(), count);
        EXPECT_TRUE(count == 4 || count == 7 || count == 1) << count; // all or none of what was asked for
    };
    auto const add = [&](Container& container) { return std::to_string(container.Add(second)); };
    Survive("add", filled, add, intact);
    auto const set = [&](Container& container) {
        for (auto const& element : second)
            container.Set(element);
        return std::to_string(container.Size());
    };
    Survive("set", filled, set, [](Container const& container) { EXPECT_LE(4U, container.Size()); });
    auto const remove = [&](Container& container) {
        return std::to_string(container.Remove({Kind::Key(1), Kind::Key(2), Kind::Key(4)}));
    };
    Survive("remove", filled, remove, intact);
    auto const copy = [&](Container& container) {
        Container const twin(container);
        container = twin;
        Elements found{Kind::New(9)};
        twin.Get(found);
        return std::to_string(twin.Size() + found.size());
    };
    Survive("copy", filled, copy, intact);
}

TEST(AllocationFailure, LeavesContainersWhole)
{
    SurviveContainer<Schemas>();
    SurviveContainer<Sections>();
}

constexpr char k_path[] = "network/eth0, an interface of some length";
constexpr char k_newPath[] = "network/eth1, an interface of some length/queues of some length";
unsigned int const k_section = 0x40000000;

auto Parameter(unsigned int number)
{
    return Make<InfoHolder>(Make<StringInfo>(k_section + number, Schemas::Name(number), Permission_t{}));
}

/// A directory with three parameters, two of them with values.
InfoItemDirectory Parameters()
{
    InfoItemDirectory directory;
    directory.AddSection(SectionId(k_path, 0x4003FFFF));
    for (unsigned int number = 1; number <= 3; ++number)
        directory.AddInfo(Parameter(number));
    return directory;
}

/// What is found in one way is found in all.
void ExpectAgreement(InfoItemDirectory const& directory)
{
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> all;
    directory.GetAllInfoItems(all);
    std::size_t count = 0;
    for (unsigned int number = 1; number < 10; ++number) {
        auto const found = directory.FindInfoItem(k_section + number);
        EXPECT_EQ(directory.FindInfoItem(k_path, Schemas::Name(number)), found);
        count += found ? 1 : 0;
    }
    EXPECT_EQ(all.size(), count);
    for (std::string const path : {k_path, k_newPath, "network", "network/eth1, an interface of some length"}) {
        SectionId const section = directory.FindSection(path);
        if (section.IsValid()) {
            EXPECT_EQ(section.GetSectionName(), path);
            EXPECT_EQ(directory.FindSection(section.GetInfoItemSectionId()), section);
        }
    }
}

std::shared_ptr<InfoItemDirectoryDelta> Changes()
{
    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    delta->AddSection(SectionId(k_newPath, 0x80040FFF));
    for (unsigned int const number : {2U, 5U, 6U}) {
        delta->AddInfo(Parameter(number));
        delta->AddItem(Make<ItemHolder>(Hold(StringItem::Create(k_section + number, "a value"))));
    }
    return delta;
}

TEST(AllocationFailure, LeavesDirectoriesWhole)
{
    auto const act = [](char const* what, auto&& change) {
        Survive(
            what, Parameters, [&](auto& d) { return std::to_string(change(d)); }, ExpectAgreement);
    };
    SectionId section;
    act("add path", [&](InfoItemDirectory& d) { return d.AddSection(k_newPath, section); });
    SectionId const named(k_newPath, 0x80040FFF);
    act("add section", [&](InfoItemDirectory& d) { return d.AddSection(named); });
    auto const fourth = Parameter(4);
    act("add schema", [&](InfoItemDirectory& d) { return d.AddInfo(fourth); });
    auto const second = Parameter(2);
    act("set schema", [&](InfoItemDirectory& d) { return d.SetInfo(second); });
    auto const value = Make<ItemHolder>(Hold(StringItem::Create(k_section + 2, "a value")));
    act("set value", [&](InfoItemDirectory& d) { return d.SetItem(value); });
    auto const delta = Changes();
    act("update", [&](InfoItemDirectory& d) { return d.UpdateFromDelta(delta, true, true); });
    act("look up", [](InfoItemDirectory const& d) {
        std::vector<boost::intrusive_ptr<InfoHolder const>> infos;
        std::list<SectionId> leaves;
        d.GetLeafSections(leaves);
        return d.FindInfos(0x4003FFFF, infos) + static_cast<int>(infos.size() + leaves.size()) +
               d.FindInfoItem(k_path, Schemas::Name(3))->GetRefCount();
    });
}

TEST(AllocationFailure, LeavesSectionsAndDeltasWhole)
{
    struct Found
    {
        SectionMap map;
        std::string path;
        std::string name;
    };
    auto const filled = [] {
        Found found;
        found.map.AddSection(SectionId(k_path, 0x4003FFFF));
        InfoItemSectionId id(0);
        found.map.AddInfo(k_path, Schemas::Name(1), id);
        return found;
    };
    auto const find = [](Found& found) {
        int const code = found.map.FindInfo(k_section, found.path, found.name);
        return std::to_string(code) + found.path + found.name;
    };
    Survive("find", filled, find, [](Found const& found) { EXPECT_EQ(found.path.empty(), found.name.empty()); });

    SectionId const other(k_newPath, 0x80040FFF);
    auto const assign = [&](SectionId& section) {
        section = other;
        return section.GetSectionName(1) + section.GetSubsectionName(2);
    };
    auto const consistent = [](SectionId const& section) {
        SectionId const again(section.GetSectionName(), section.GetInfoItemSectionId());
        EXPECT_TRUE(again == section && again.GetSectionDepth() == section.GetSectionDepth());
        EXPECT_TRUE(section.IsValid());
    };
    Survive(
        "section", [] { return SectionId(k_path, 0x4003FFFF); }, assign, consistent);

    auto const fill = [] { return std::to_string(Changes()->GetItemHolderPtrMap_addMod().size()); };
    Survive("delta", fill);
    auto const delta = Changes();
    Survive("copy", [&] { return std::to_string(InfoItemDirectoryDelta(*delta).Empty()); });
}

TEST(AllocationFailure, LeavesFindingsAndTextsWhole)
{
    auto const item = Filled<StringItem>(1);
    auto const finding = item->Validate(nullptr);
    auto const gather = [&](std::shared_ptr<Result> const& result) {
        result->AddResultElem(finding);
        result->AddResults({finding, finding}, Orlek::SeverityLevel_t::Error);
        return std::to_string(result->Clone()->GetNumResults() - result->GetNumResults());
    };
    Survive(
        "gather", [] { return std::make_shared<Result>(1); }, gather, [](auto const&) {});
    Survive("localize", [&] {
        LocalizedString message("TypesSystemStringValidationLength");
        message.AddArgument(item);
        message.AddArgument(item);
        return message.GetString("de") + message.GetString("");
    });
    auto const info = MakeInfo<StringInfo>();
    Survive("formatted dump", [&] {
        std::ostringstream os;
        os.exceptions(std::ios::badbit);
        FormattedInfoItemDump(os, info, item);
        return std::move(os).str();
    });
}

TEST(AllocationFailure, LeavesEndpointsWhole)
{
    using Endpoint = AppEndpoint<Net::Endpoint<Net::AddrStr>>;
    for (char const* const uri :
         {"rtsp://camera-of-some-length.example/stream?channel=1", "http://[::1]:80", "x-qrv-modbus://10.0.0.1:502"})
    {
        SCOPED_TRACE(uri);
        Survive("uri", [uri] {
            Endpoint const endpoint = Endpoint::FromUri(uri);
            return endpoint.ToUri() + endpoint.ToString() + endpoint.GetEndpoint().ToString();
        });
        Survive("convert", [uri] {
            Net::AppEndpoint const endpoint(uri);
            return ToLegacyAppEndpointIp(endpoint).ToUri() + ToLegacyAppEndpointStr(endpoint).ToUri();
        });
        Endpoint const endpoint = Endpoint::FromUri(uri);
        Survive("message", [&] {
            Pb::Legacy::If::AppEndpointStr message;
            Sys2LegacyPb::Convert(endpoint, message);
            Endpoint back;
            LegacyPb2Sys::Convert(message, back);
            return back.ToUri();
        });
    }
}

} // namespace
} // namespace Legacy::If::Test
