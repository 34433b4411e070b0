// Memory ends at each allocation in turn: nothing is lost or left half done, and the same call then succeeds.
#include "../Legacy/If/Families.h"
#include "Failing.h"

#include <Legacy/If/MessageConversions.h>
#include <Net/AppEndpoint.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <cstdlib>
#include <optional>

namespace Legacy::If::Test {
namespace {

// What a thread keeps would look like a leak, and would not fail.
int const s_withoutCache = setenv("LEGACYIF_NO_OBJECT_CACHE", "1", 1);

template<typename State>
using Call = std::function<std::string(State&)>;

/// The call, its answer put into text.
template<typename State>
Call<State> Told(auto const& call)
{
    using Answer = std::invoke_result_t<decltype(call), State&>;
    if constexpr (std::is_void_v<Answer>)
        return [&call](State& state) { return call(state), std::string(); };
    else if constexpr (std::is_arithmetic_v<Answer>)
        return [&call](State& state) { return std::to_string(call(state)); };
    else
        return std::cref(call);
}

template<typename State>
std::uint64_t SurviveTold(std::function<State()> const& prepare, Call<State> const& look, Call<State> const& act)
{
    auto whole = prepare();
    std::string const before = look(whole);
    std::string const expected = act(whole); // and whatever is made once, is made now
    std::string const after = look(whole);
    std::uint64_t nth = 1;
    for (bool const onwards : {false, true}) {
        bool failed = true;
        for (nth = 0; failed && !testing::Test::HasFailure();) {
            std::int64_t const blocks = Failing::s_blocks;
            {
                auto state = prepare();
                std::optional<std::string> answer;
                Failing::Arm(++nth, onwards);
                try {
                    answer = act(state);
                } catch (std::bad_alloc const&) {
                }
                failed = Failing::Disarm();
                SCOPED_TRACE(testing::Message() << "allocation " << nth << (onwards ? " and all that follow" : ""));
                if (!answer) {
                    EXPECT_EQ(look(state), before);
                    answer = act(state);
                }
                EXPECT_EQ(*answer, expected);
                EXPECT_EQ(look(state), after);
            }
            bool const reported = testing::Test::HasFailure(); // a report takes memory itself
            EXPECT_TRUE(reported || Failing::s_blocks == blocks) << Failing::s_blocks - blocks << " blocks lost";
        }
    }
    return nth - 1;
}

/// Runs `act` on what `prepare` makes, each allocation failing in turn: alone, and with all that follow. A call that
/// throws leaves what `look` shows as it was, and succeeds when it is repeated. Tells how many allocations can fail.
std::uint64_t Survive(std::string const& what, auto const& prepare, auto const& look, auto const& act)
{
    SCOPED_TRACE(what);
    using State = decltype(prepare());
    return SurviveTold<State>(prepare, Told<State>(look), Told<State>(act));
}

/// The same for what works on nothing but its own.
std::uint64_t Survive(std::string const& what, std::function<std::string()> const& act)
{
    return Survive(
        what, [] { return 0; }, [](int) {}, [&](int) { return act(); });
}

/// What `print` puts on a stream that lets through what its buffer throws.
std::string Streamed(auto const& print)
{
    std::ostringstream os;
    os.exceptions(std::ios::badbit);
    print(os);
    return std::move(os).str();
}

std::string Text(ItemBase const& item)
{
    if (auto const* const pair = dynamic_cast<ExtendedItem const*>(&item)) // which prints neither
        return pair->Val().first + ' ' + pair->Val().second;
    return Streamed([&](auto& os) { item.DumpVal(item.operator<<(os) << ' ' << item.GetValAsString() << ' '); });
}

std::string Text(InfoBase const& info)
{
    boost::intrusive_ptr<ItemBase> const item(info.CreateItem());
    return Streamed([&](auto& os) { info.DumpVal(info.operator<<(os) << ' '); }) + (item ? Text(*item) : "");
}

std::string Text(std::shared_ptr<ResultElem const> const& finding)
{
    return finding ? "refused: " + Text(*finding->GetItem()) : "passed";
}

/// A value that can be used in every way.
void ExpectSound(ItemBase const& item)
{
    EXPECT_EQ(Text(*Hold(item.DeepCopy(item.GetId()))), Text(item));
    ItemBase::SerialStruct_t record;
    bool const written = item.Serialize(&record) == 0;
    bool const other = item.GetType() == IfType_t::StringSparse; // announces another size than it writes
    std::uint32_t const size = boost::endian::big_to_native(std::uint32_t{record.size});
    EXPECT_TRUE(other || size == (written ? item.GetSerialDataSize() : 0));
}

void ExpectSound(InfoBase const& info)
{
    EXPECT_EQ(Text(*Hold(info.DeepCopy())), Text(info));
    boost::intrusive_ptr<ItemBase> const item(info.CreateItem());
    if (item)
        ExpectSound(*item);
}

auto const k_sound = [](auto const& object) { ExpectSound(*object); };

template<typename Object>
using BaseOf = std::conditional_t<std::is_base_of_v<ItemBase, Object>, ItemBase, InfoBase>;

/// `operator=` of a class, for those who know only its base.
template<typename Object, typename Base = BaseOf<Object>>
void Copy(Base& target, Base const& source)
{
    static_cast<Object&>(target) = static_cast<Object const&>(source);
}

template<typename Base>
void SurviveCopies(Base const& source, auto const& fresh, void (*copy)(Base&, Base const&))
{
    Survive("copy", [&] { return Text(*Hold(source.DeepCopy())); });
    Survive("operator=", fresh, k_sound, [&](auto const& target) { return copy(*target, source), Text(*target); });
    boost::intrusive_ptr<Base const> const shared(&source);
    Survive("assign", fresh, k_sound, [&](auto const& target) { return target->AssignValue(shared, nullptr); });
}

void SurviveUse(ItemBase& item, ItemBase const& empty, void (*copy)(ItemBase&, ItemBase const&))
{
    SCOPED_TRACE(Dumped(item));
    auto const fresh = [&] { return Hold(empty.DeepCopy()); };
    SurviveCopies(item, fresh, copy);
    Survive("validate", [&, info = InfoPtr(MakeInfo<ExtendedInfo>())] {
        return Text(item.Validate(info)) + Text(item.ValidateMin(info)) + Text(item.ValidateMax(info));
    });
    Survive("read text", fresh, k_sound, [](auto const& target) {
        std::istringstream in("1 1 1 1 1");
        in.exceptions(std::ios::badbit);
        std::ostringstream out;
        return target->SetValFromStream(in, out, nullptr);
    });

    ItemBase::SerialStruct_t written;
    if (item.Serialize(&written) != 0)
        return;
    ItemBase::ConstSerialStruct_t const record{written.id, written.size, written.type, written.numericType,
                                               written.data};
    Survive("read record", fresh, k_sound, [&](auto const& target) { return target->Deserialize(&record); });
    Survive("write and rebuild", [&] {
        ItemBase::SerialStruct_t again;
        boost::intrusive_ptr<ItemBase> rebuilt;
        int const code = item.Serialize(&again) + ItemBase::Deserialize(&record, rebuilt);
        return std::to_string(code) + Text(*rebuilt);
    });
}

void SurviveUse(InfoBase const& info, InfoBase const& empty, void (*copy)(InfoBase&, InfoBase const&))
{
    SCOPED_TRACE(Dumped(info));
    auto const fresh = [&] { return Hold(empty.DeepCopy()); };
    SurviveCopies(info, fresh, copy);
    Survive("rename", [&] { return Text(*Hold(info.DeepCopy(9, "another name of some length"))); });
    Survive("merge", fresh, k_sound, [&](auto const& target) { return target->MergeBounds(InfoPtr(&info)); });
}

TEST(AllocationFailure, LeavesValuesAndSchemasWhole)
{
    ForAllFamilies([]<typename Info, typename Item>(Family<Info, Item>) {
        boost::intrusive_ptr<ItemBase> const item = Filled<Item>(7);
        SurviveUse(*item, *Make<Item>(7U), Copy<Item>);
        if constexpr (!std::is_void_v<Info>) {
            InfoPtr const info = FilledInfo<Info, Item>();
            SurviveUse(*info, *FreshInfo<Info>(7, "speed", {}), Copy<Info>);
            Survive("validate", [&] { return Text(item->Validate(info)); });
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
    SurviveUse(*outer, *Make<CompositeItem>(7U), Copy<CompositeItem>);
    auto const copy = [&] { return Hold(outer->DeepCopy()); };
    Survive("add", copy, k_sound, [&](auto const& list) {
        unsigned int index = 0;
        list->AddItem(inner, index);
        return list->GetSize() == index + 1;
    });

    auto const schema = MakeInfo<CompositeInfo>();
    schema->SetInfos({MakeInfo<StringInfo>(), FilledInfo<CompositeInfo, CompositeItem>(), MakeInfo<EnumInfo>(false)});
    SurviveUse(*schema, *MakeInfo<CompositeInfo>(), Copy<CompositeInfo>);
}

std::string const k_long(100, 'x'); // no text object has room for it in itself
std::string const k_longer = k_long + 'y';

template<typename Base>
void SurviveSet(Base const& object, std::function<void(Base&)> const& set)
{
    auto const copy = [&] { return Hold(object.DeepCopy()); };
    auto const look = [](auto const& target) { return Text(*target); };
    EXPECT_LT(0U, Survive(Text(object), copy, look, [&](auto const& target) { set(*target); }));
}

/// A setter that finds no memory leaves all as it was.
template<typename Object>
void SurviveSetter(boost::intrusive_ptr<Object> const& object, auto const& set)
{
    SurviveSet<BaseOf<Object>>(*object, [&](auto& base) { set(static_cast<Object&>(base)); });
}

/// The sizes and the default grow together.
template<typename Info>
void SurviveListSetters(typename Info::List const& first, typename Info::List const& second)
{
    auto const info = MakeInfo<Info>();
    info->SetMaxSize(2);
    info->SetDefault(first);
    SurviveSetter(info, [&](Info& list) { list.SetDefault(second); });
    SurviveSetter(info, [](Info& list) { list.SetMinSize(1000); });
}

TEST(AllocationFailure, LeavesWhatIsSetAsItWas)
{
    SurviveListSetters<NumericArrayInfo<U8Traits>>({1}, {2, 3});
    SurviveListSetters<BoolArrayInfo>({true}, {false, false});
    SurviveListSetters<StringArrayInfo>({"a", "b"}, {k_long, k_longer});
    auto const rects = MakeInfo<RectArrayInfo<U16Traits>>();
    SurviveSetter(MakeInfo<NumericArrayInfo<U8Traits>>(), [&](auto& list) { list.AssignValue(rects, nullptr); });

    auto const texts = MakeInfo<StringSparseInfo>();
    texts->SetTable({"a", "b"});
    SurviveSetter(texts, [](auto& info) { info.SetTable({k_long, k_longer}); });
    auto const elements = MakeInfo<EnumInfo>(false);
    elements->SetTable({{"a", 1}, {"b", 2}});
    SurviveSetter(elements, [](auto& info) { info.SetTable({{k_long, 3}, {k_longer, 4}}); });

    std::pair const pair(k_long, k_longer);
    SurviveSetter(MakeInfo<ExtendedInfo>(), [&](auto& info) { info.SetDefault(pair); });
    auto const extended = Make<ExtendedItem>(7U);
    SurviveSetter(extended, [&](auto& item) { item.SetVal(pair); });

    AppEndpoint<Net::Endpoint<Net::AddrStr>> const place({AppProtocolType_t::Https, 1, 1}, {Net::AddrStr(k_long), 443},
                                                         1);
    SurviveSetter(MakeInfo<AppEndpointInfo>(), [&](auto& info) { info.SetDefault(place); });
    SurviveSetter(Make<AppEndpointItem>(7U), [&](auto& item) { item.SetVal(place); });
    auto const list = MakeInfo<AppEndpointArrayInfo>();
    list->SetDefault(AppEndpointList(2));
    SurviveSetter(list, [places = AppEndpointList{place, place}](auto& info) { info.SetDefault(places); });

    LocalizedString message(k_long);
    message.AddArgument(extended);
    SurviveSetter(Make<LocalizedStringItem>(7U), [&](auto& item) { item.SetVal(message); });
}

std::string Name(unsigned int number) { return "the element with the number " + std::to_string(number); }

template<typename Container>
void SurviveContainer(auto const& make)
{
    using Elements = std::vector<decltype(Container().Find(""))>;
    Elements first, second;
    std::vector<std::decay_t<decltype(make(0)->GetId())>> keys;
    for (unsigned int number = 0; number < 60; ++number) { // more than the first buckets are for
        auto const& element = (number < 4 ? first : second).emplace_back(make(number));
        keys.push_back(element->GetId());
    }
    second.push_back(second.back());
    auto const filled = [&] {
        Container container;
        container.Add(first);
        return container;
    };
    auto const look = [&](Container const& container) {
        std::string present;
        std::size_t count = 0;
        for (unsigned int number = 0; number < keys.size(); ++number) {
            auto const element = container.Get(keys[number]);
            EXPECT_EQ(container.Find(Name(number)), element);
            present += element ? '1' : '0';
            count += element ? 1 : 0;
        }
        Elements all;
        container.Get(all);
        EXPECT_TRUE(all.size() == count && container.Size() == count);
        return present;
    };
    Survive("add", filled, look, [&](Container& container) { return container.Add(second); });
    Survive("set", filled, look, [&](Container& container) { container.Set(second[0]); });
    auto const remove = [some = std::vector(keys.begin(), keys.begin() + 3)](Container& container) {
        return container.Remove(some);
    };
    EXPECT_EQ(Survive("remove", filled, look, remove), 0U); // which needs no memory at all
    Survive("copy", filled, look, [&](Container& container) {
        Container const twin(container);
        container = twin;
        auto found = second;
        twin.Get(found);
        return found.size();
    });
}

TEST(AllocationFailure, LeavesContainersWhole)
{
    SurviveContainer<InfoContainer>(
        [](unsigned int number) { return Make<StringInfo>(number, Name(number), Permission_t{}); });
    SurviveContainer<Sections>(
        [](unsigned int number) { return Make<PlainSection>(SectionId_t(1, Name(number)), Name(number), 0U); });
    PlainSection const section({1, k_long}, k_long, 0);
    EXPECT_EQ(Survive("compare", [&] { return std::string(section == section.GetId() ? "equal" : "not"); }), 0U);
}

constexpr char k_path[] = "network/eth0, an interface of some length";
constexpr char k_newPath[] = "network/eth1, an interface of some length/queues of some length";
unsigned int const k_section = 0x40000000;

auto Parameter(unsigned int number)
{
    return Make<InfoHolder>(Make<StringInfo>(k_section + number, Name(number), Permission_t{}));
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
        EXPECT_EQ(directory.FindInfoItem(k_path, Name(number)), found);
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
    auto const act = [](char const* what, auto const& change) { Survive(what, Parameters, ExpectAgreement, change); };
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
               d.FindInfoItem(k_path, Name(3))->GetRefCount();
    });
}

TEST(AllocationFailure, LeavesHoldersWithTheirNames)
{
    auto const filled = [] { // of each name two, in the order of the ids
        auto map = std::make_unique<InfoItemHolderMap>();
        for (unsigned int id = 0; id < 20; ++id)
            map->Insert(Make<InfoItemHolder>(Make<InfoHolder>(Make<StringInfo>(id, Name(id % 10), Permission_t{}))));
        return map;
    };
    auto const look = [](auto const& map) {
        for (unsigned int id = 0; id < 10; ++id) {
            auto const [first, last] = map->Find(Name(id));
            EXPECT_TRUE(std::distance(first, last) == 2 && first->second == map->Find(id).second->second);
        }
    };
    auto const find = [absent = Name(20)](auto const& map) { map->Find(absent); };
    EXPECT_LT(0U, Survive("find", filled, look, find));
}

TEST(AllocationFailure, LeavesSectionsAndDeltasWhole)
{
    struct Found : SectionMap
    {
        std::string path, name;
    };
    auto const filled = [] {
        Found found;
        found.AddSection(SectionId(k_path, 0x4003FFFF));
        InfoItemSectionId id(0);
        found.AddInfo(k_path, Name(1), id);
        return found;
    };
    auto const both = [](Found const& found) { return found.path + found.name; };
    Survive("find", filled, both, [](Found& f) { return f.FindInfo(k_section, f.path, f.name); });

    auto const section = [] { return SectionId(k_path, 0x4003FFFF); };
    auto const consistent = [](SectionId const& id) {
        SectionId const again(id.GetSectionName(), id.GetInfoItemSectionId());
        EXPECT_TRUE(again == id && again.GetSectionDepth() == id.GetSectionDepth() && id.IsValid());
        return id.GetSectionName() + ' ' + id.GetSubsectionName(id.GetSectionDepth());
    };
    SectionId const other(k_newPath, 0x80040FFF);
    Survive("section", section, consistent, [&](SectionId& id) { id = other; });
    Survive("delta",
            [] { return std::to_string(InfoItemDirectoryDelta(*Changes()).GetItemHolderPtrMap_addMod().size()); });
}

TEST(AllocationFailure, LeavesFindingsTextsAndEndpointsWhole)
{
    auto const item = Filled<StringItem>(1);
    auto const finding = item->Validate(nullptr);
    Survive("gather", [&] {
        Result result(1);
        result.AddResultElem(finding);
        result.AddResults({finding, finding}, Orlek::SeverityLevel_t::Error);
        return std::to_string(result.Clone()->GetNumResults());
    });
    Survive("print", [&, info = MakeInfo<StringInfo>()] {
        LocalizedString message("TypesSystemStringValidationLength");
        message.AddArgument(item);
        message.AddArgument(item);
        return message.GetString("de") + Streamed([&](auto& os) { FormattedInfoItemDump(os, info, item); });
    });
    using Endpoint = AppEndpoint<Net::Endpoint<Net::AddrStr>>;
    for (char const* const uri :
         {"rtsp://camera-of-some-length.example/stream?channel=1", "http://[::1]:80", "x-qrv-modbus://10.0.0.1:502"})
    {
        Survive(uri, [uri] {
            auto const endpoint = Endpoint::FromUri(uri);
            Net::AppEndpoint const other(uri);
            Pb::Legacy::If::AppEndpointStr message;
            Sys2LegacyPb::Convert(endpoint, message);
            Endpoint back;
            LegacyPb2Sys::Convert(message, back);
            return back.ToUri() + endpoint.ToString() + endpoint.GetEndpoint().ToString() +
                   ToLegacyAppEndpointIp(other).ToUri() + ToLegacyAppEndpointStr(other).ToUri();
        });
    }
}

} // namespace
} // namespace Legacy::If::Test
