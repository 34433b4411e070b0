// What the programs of the fleet do without a broker.

#include "common/Schemas.h"
#include "common/Topics.h"
#include "common/Wire.h"
#include "controller/Mirror.h"
#include "device/Answers.h"
#include "device/Templates.h"
#include "device/ValueStore.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>
#include <Legacy/IfKit/Difference.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

namespace Fleet {
namespace {

using namespace Legacy::If;

/// Calls with the bytes in storage of exactly their size, so that a read beyond them is seen.
template<auto decode>
bool Accepted(Bytes const& bytes)
{
    std::unique_ptr<unsigned char[]> const storage(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), storage.get());
    return decode(std::span<unsigned char const>(storage.get(), bytes.size())).has_value();
}

ItemPtr Number(unsigned int id, unsigned short value) { return NumericItem<U16Traits>::Create(id, value); }

TEST(FleetWire, MessagesTravel)
{
    Bytes const value = Encode(ValueMessage{0x1112131415161718, 0x0102030405060708, Number(0x45000001, 513)});
    EXPECT_EQ(value, (Bytes{'F', 'L', 2, 'V', 17,   18, 19, 20, 21, 22, 23, 24, 1, 2, 3, 4,
                            5,   6,   7, 8,   0x45, 0,  0,  1,  0,  0,  0,  2,  2, 3, 2, 1}));
    auto const read = DecodeValue(value);
    ASSERT_TRUE(read);
    EXPECT_EQ(std::pair(read->lineage, read->sequence), std::pair(0x1112131415161718UL, 0x0102030405060708UL));
    EXPECT_TRUE(read->item->IsEqualValue(Number(0, 513)));

    auto const set = DecodeSet(Encode(SetMessage{9, 7, "de_AT", AddrItem::Create(3, "::1")}));
    ASSERT_TRUE(set);
    EXPECT_EQ(std::tuple(set->session, set->request, set->language), std::tuple(9U, 7U, "de_AT"));
    EXPECT_EQ(std::pair(set->item->GetId(), set->item->GetValAsString()), std::pair(3U, std::string("::1")));
    EXPECT_THROW(Encode(SetMessage{9, 7, std::string(256, 'x'), Number(1, 1)}), std::invalid_argument);
}

TEST(FleetWire, DamagedMessagesAreRefused)
{
    // Each with the size to which it may be cut: texts at the end may be shorter.
    std::tuple<Bytes, bool (*)(Bytes const&), std::size_t> const cases[] = {
        {Encode(AboutMessage{true, 1, 2, 3, "camera"}), Accepted<DecodeAbout>, 29},
        {Encode(ValueMessage{1, 1, Number(1, 1)}), Accepted<DecodeValue>, 32},
        {Encode(SetMessage{1, 1, "en", Number(1, 1)}), Accepted<DecodeSet>, 35},
        {Encode(AnswerMessage{1, 1, 0, "text"}), Accepted<DecodeAnswer>, 24},
        {Encode(TotalMessage{1, 1, 1}), Accepted<DecodeTotal>, 28},
        {Encode(ClaimMessage{1}), Accepted<DecodeClaim>, 12},
        {Encode(EchoMessage{1}), Accepted<DecodeEcho>, 12},
    };
    for (auto const& [whole, accepts, shortest] : cases) {
        SCOPED_TRACE(whole[3]);
        EXPECT_TRUE(accepts(whole));
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_EQ(accepts(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))),
                      size >= shortest)
                << size;
        for (std::size_t i = 0; i < 4; ++i) {
            Bytes foreign = whole;
            foreign[i] ^= 1;
            EXPECT_FALSE(accepts(foreign)) << i;
        }
        Bytes longer = whole;
        longer.resize(k_maxMessage + 1);
        EXPECT_FALSE(accepts(longer));
    }
    std::tuple<std::size_t, std::size_t, unsigned char, char const*> const damages[] = {
        {0, 4, 2, "neither online nor offline"},
        {1, 27, 3, "a record that claims more than there is"},
        {1, 27, 1, "a byte behind the record"},
        {1, 28, 0x8a, "a type without a class"},
        {2, 20, 200, "a language longer than the message"},
        {3, 20, 0x7f, "a positive code"},
    };
    for (auto const& [message, offset, byte, what] : damages) {
        auto [bytes, accepts, shortest] = cases[message];
        bytes[offset] = byte;
        EXPECT_FALSE(accepts(bytes)) << what;
    }
}

TEST(FleetTopics, AreReadAsTheyAreWritten)
{
    std::pair<Topic_t, std::string> const topics[] = {
        {{TopicKind_t::About, "cam.1", {}, {}}, "fleet/cam.1/about"},
        {{TopicKind_t::Value, "a", {}, "network/web/port"}, "fleet/a/value/network/web/port"},
        {{TopicKind_t::Set, "a", "desk-2", "system/hostname"}, "fleet/a/set/desk-2/system/hostname"},
        {{TopicKind_t::Answer, "a", "desk_2", {}}, "fleet/a/answer/desk_2"},
        {{TopicKind_t::Schema, "a", {}, {}}, "fleet/a/schema"},
        {{TopicKind_t::Total, "a", {}, {}}, "fleet/a/total"},
        {{TopicKind_t::Claim, "a", {}, {}}, "fleet/a/claim"},
        {{TopicKind_t::Echo, "desk", {}, {}}, "fleet/desk/echo"},
    };
    for (auto const& [topic, text] : topics) {
        EXPECT_EQ(ToText(topic), text);
        EXPECT_EQ(ParseTopic(text), topic) << text;
    }
    for (auto const* text : {"", "fleet", "fleet/", "fleet/a", "fleet//about", "Fleet/a/about", "fleet/a/about/",
                             "fleet/a/about/b", "fleet/a b/about", "fleet/+/about", "fleet/a/other", "fleet/a/set/x/y",
                             "fleet/a/set/c d/x/y", "fleet/a/answer", "fleet/a/answer/", "fleet/a/answer/c/x"})
        EXPECT_FALSE(ParseTopic(text)) << text;
    for (auto const* path : {"", "/", "/x", "//x", "/x/", "/x//y", "/x/#", "/x/\x1b"})
        EXPECT_FALSE(ParseTopic(std::string("fleet/a/value") + path)) << path;
    EXPECT_FALSE(ParseTopic("fleet/" + std::string(65, 'a') + "/about"));
    EXPECT_EQ(Filter(TopicKind_t::Set, "a", k_anyName), "fleet/a/set/+/#");
    EXPECT_EQ(Filter(TopicKind_t::Value, "a"), "fleet/a/value/#");
    EXPECT_EQ(Filter(TopicKind_t::About, k_anyName), "fleet/+/about");
}

TEST(FleetAnswers, ExecuteARequestOnce)
{
    using enum Answers::State_t;
    Answers answers;
    EXPECT_EQ(answers.Look("a", 1, 5), New);
    EXPECT_EQ(answers.Look("a", 1, 5), UnderWay);
    AnswerMessage const five{1, 5, -41, "no"};
    answers.Finish("a", five);
    EXPECT_EQ(answers.Look("a", 1, 5), Answered);
    EXPECT_EQ(answers.Last("a"), five) << "the same answer again";
    EXPECT_EQ(answers.Look("b", 1, 5), New) << "each controller has numbers of its own";
    EXPECT_EQ(answers.Look("a", 1, 9), New);
    answers.Finish("a", five);
    EXPECT_EQ(answers.Look("a", 1, 9), UnderWay) << "an answer to an older one changes nothing";
    EXPECT_EQ(answers.Look("a", 1, 5), Outdated);
    EXPECT_EQ(answers.Look("a", 2, 3), New)
        << "a controller that was started again counts anew, whatever its clock says";

    answers.Finish("a", {2, 3, 0, {}});
    for (std::size_t i = 0; i < Answers::k_maxControllers - 1; ++i) {
        EXPECT_EQ(answers.Look(std::to_string(i), 1, 1), New);
        EXPECT_EQ(answers.Look("a", 2, 3), Answered) << "who was heard lately is remembered";
    }
    EXPECT_EQ(answers.Look("b", 1, 5), New) << "who was silent is not";
}

/// A mirror of a template, and what it was told of.
struct Mirrored
{
    explicit Mirrored(std::string const& name = "camera")
        : mirror(BuildTemplate(name), [this](auto const& parameter, ItemPtr const& former) {
              changes += (former ? former->GetValAsString() : "") + '>' +
                         parameter->GetItem()->GetItem()->GetValAsString() + ' ';
          })
    {}

    std::string changes;
    Mirror mirror;
};

TEST(FleetMirror, TakesWhatIsNewAndFits)
{
    using enum Mirror::Outcome_t;
    Mirrored mirrored;
    auto& mirror = mirrored.mirror;
    std::string const path = "network/web/port";
    unsigned int const id = mirror.Directory().FindInfoItem(path)->GetInfo()->GetInfo()->GetId();
    EXPECT_TRUE(mirror.Begin(1, 10));
    std::tuple<std::string, ValueMessage, Mirror::Outcome_t> const arrivals[] = {
        {path, {1, 12, Number(id, 80)}, Applied},
        {path, {1, 12, Number(id, 81)}, Known},
        {path, {1, 11, Number(id, 82)}, Known},
        {path, {1, 10, Number(id, 82)}, Stale}, // of an earlier session
        {path, {2, 99, Number(id, 82)}, Stale}, // of another lineage
        {path, {1, 13, StringItem::Create(id, "80")}, Foreign},
        {path, {1, 13, AddrItem::Create(id, "80")}, Foreign}, // though addresses pass every validation
        {path, {1, 13, Number(id + 1, 80)}, Foreign},
        {"network/gateway", {1, 13, Number(id, 80)}, Foreign},
        {"network/none", {1, 13, Number(id, 80)}, Foreign},
        {path, {1, 13, Number(id, 80)}, Applied}, // the same again is no change
        {path, {1, 14, Number(id, 0)}, Applied},  // what the device has, be it out of bounds
    };
    for (auto const& [place, message, outcome] : arrivals)
        EXPECT_EQ(mirror.Apply(place, message), outcome) << place << message.sequence;
    EXPECT_EQ(mirrored.changes, ">80 80>0 ");
    EXPECT_TRUE(mirror.Agrees({1, 14, 14}));
    EXPECT_FALSE(mirror.Agrees({1, 15, 29}));
    EXPECT_FALSE(mirror.IsAhead({1, 15, 29})) << "a value is missing";
    EXPECT_TRUE(mirror.IsAhead({1, 13, 13})) << "the sum is older than what is here";

    EXPECT_FALSE(mirror.Begin(1, 9)) << "a broker that remembers an earlier session";
    EXPECT_TRUE(mirror.Begin(1, 20));
    EXPECT_EQ(mirror.Apply(path, {1, 15, Number(id, 5)}), Stale);
    EXPECT_TRUE(mirror.Begin(7, 0)) << "the device has lost its file";
    EXPECT_EQ(mirror.Apply(path, {7, 1, Number(id, 5)}), Applied);
    EXPECT_TRUE(mirror.Agrees({7, 1, 1}));
    EXPECT_FALSE(mirror.IsComplete());
}

TEST(FleetSchemas, TravelAsTheyAre)
{
    for (auto const& name : TemplateNames()) {
        Mirrored const device(name);
        auto const text = WriteSchemas(device.mirror.Directory());
        SchemaCache cache;
        std::string fault;
        auto const read = cache.Read(text, fault);
        ASSERT_TRUE(read) << fault;
        EXPECT_EQ(cache.Read(text, fault), read) << "equal documents are read once";
        EXPECT_EQ(read->ids, BuildTemplate(name)->ids);
        Mirror const copy(read, {});
        EXPECT_TRUE(Legacy::IfKit::DifferenceLines(device.mirror.Directory(), copy.Directory()).empty()) << name;
        for (std::size_t size = 0; size < text.size(); size += 31)
            EXPECT_FALSE(ReadSchemas(text.substr(0, size), fault)) << size;
    }
    for (auto const& text : {std::string("[]"), std::string(k_maxSchema + 1, ' '),
                             std::string(R"({"schemas": [{"title": "a", "x-legacyif": {"id": 0, "type": "Bool"}}]})"),
                             std::string(R"({"sections": [{"path": "a", "id": 16777215}, {"path": "a", "id": 9}]})")})
    {
        std::string fault;
        EXPECT_TRUE(!ReadSchemas(text, fault) && !fault.empty()) << text;
    }

    InfoItemDirectory directory;
    SectionId section;
    directory.AddSection("a", section);
    unsigned int const id = section.GetInfoItemSectionId().CreateInfoItemId(0);
    directory.AddInfo(new InfoHolder(new StringInfo(id, "#", Permission_t{})));
    EXPECT_THROW(WriteSchemas(directory), std::runtime_error) << "no topic can be called so";
}

TEST(FleetSchemas, JudgeAlsoWhereTheLibraryDoesNot)
{
    boost::intrusive_ptr<CoordinateInfo<U16Traits>> const info(new CoordinateInfo<U16Traits>(1, "place", {}));
    ItemPtr const inside(info->CreateItem());
    EXPECT_FALSE(Judge(*inside, info).IsValid());
    EXPECT_TRUE(Judge(*Number(1, 5), info).IsValid());
    auto const port = Mirrored().mirror.Directory().FindInfoItem("network/web/port")->GetInfo()->GetInfo();
    EXPECT_FALSE(Judge(*Number(port->GetId(), 80), port).IsValid());
    EXPECT_NE(Judge(*Number(port->GetId(), 0), port).GetString("de").find("port"), std::string::npos);
}

class FleetStore : public testing::Test
{
protected:
    FleetStore() { std::filesystem::create_directories(m_folder); }
    ~FleetStore() override { std::filesystem::remove_all(m_folder); }

    static void Fill(InfoItemDirectory& directory)
    {
        auto const schemas = BuildTemplate("camera");
        directory.UpdateFromDelta(schemas->delta, true, false);
        for (unsigned int const id : schemas->ids)
            directory.SetItem(new ItemHolder(directory.FindInfo(id)->GetInfo()->CreateItem()));
    }

    static std::string Get(InfoItemDirectory const& directory, std::string const& path)
    {
        return directory.FindInfoItem(path)->GetItem()->GetItem()->GetValAsString();
    }

    static void SetPort(InfoItemDirectory& directory, unsigned short port)
    {
        unsigned int const id = directory.FindInfoItem("network/web/port")->GetInfo()->GetInfo()->GetId();
        directory.SetItem(new ItemHolder(Number(id, port)));
    }

    std::string const m_folder = testing::TempDir() + "fleet-store-" + std::to_string(getpid());
    std::string const m_path = m_folder + "/values.rec";
    std::string const m_killed = m_folder + "/killed.rec"; ///< what there is as soon as a process says that it is kept
};

TEST_F(FleetStore, KeepsValuesAndAnswersAndCountsSessions)
{
    std::uint64_t lineage = 0;
    AnswerMessage const answer{~0ULL, 12, -41, "frame-rate: zu groß\nzwei Zeilen"};
    {
        InfoItemDirectory directory;
        Fill(directory);
        ValueStore store(m_path);
        EXPECT_THROW(ValueStore{m_path}, std::runtime_error) << "one process at a time";
        auto memory = store.Open(directory);
        lineage = memory.lineage;
        EXPECT_EQ(memory.epoch, 1U);
        SetPort(directory, 8080);
        memory.answers.Restore("desk", answer);
        EXPECT_FALSE(store.Save(directory, memory));
        std::filesystem::copy_file(m_path, m_killed);
        SetPort(directory, 8081);
    }
    InfoItemDirectory directory;
    Fill(directory);
    {
        ValueStore store(m_killed);
        auto memory = store.Open(directory);
        EXPECT_EQ(std::pair(memory.lineage, memory.epoch), std::pair(lineage, std::uint64_t{2}));
        EXPECT_EQ(Get(directory, "network/web/port"), "8080");
        EXPECT_EQ(memory.answers.Last("desk"), answer);
        EXPECT_EQ(memory.answers.Look("desk", ~0ULL, 12), Answers::State_t::Answered);
    }
    // Damage is told, and the file stays as it is.
    std::filesystem::resize_file(m_path, std::filesystem::file_size(m_path) - 1);
    auto const size = std::filesystem::file_size(m_path);
    EXPECT_THROW(ValueStore(m_path).Open(directory), std::runtime_error);
    EXPECT_EQ(std::filesystem::file_size(m_path), size);
    EXPECT_THROW(ValueStore(m_folder + "/none/values.rec"), std::runtime_error);
    EXPECT_FALSE(ValueStore({}).IsDurable());
}

} // namespace
} // namespace Fleet
