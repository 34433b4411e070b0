#include "common/Wire.h"

#include "common/Topics.h"
#include "controller/Mirror.h"
#include "device/Answers.h"
#include "device/Model.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>
#include <Legacy/IfKit/ValueText.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>

namespace Fleet {
namespace {

using namespace Legacy::If;

/// Calls with the bytes in storage of exactly their size, so that a read beyond them is seen.
template<typename Decode>
bool Accepted(Decode decode, Bytes const& bytes)
{
    std::unique_ptr<unsigned char[]> const storage(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), storage.get());
    return decode(std::span<unsigned char const>(storage.get(), bytes.size())).has_value();
}

ItemPtr Number(unsigned int id, unsigned short value) { return NumericItem<U16Traits>::Create(id, value); }

TEST(FleetWire, MessagesTravel)
{
    Bytes const value = Encode(ValueMessage{0x0102030405060708, Number(0x45000001, 513)});
    EXPECT_EQ(value, (Bytes{'F', 'L', 1, 'V', 1, 2, 3, 4, 5, 6, 7, 8, 0x45, 0, 0, 1, 0, 0, 0, 2, 2, 3, 2, 1}));
    auto const read = DecodeValue(value);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->sequence, 0x0102030405060708U);
    EXPECT_TRUE(read->item->IsEqualValue(Number(0, 513)));

    auto const set = DecodeSet(Encode(SetMessage{7, "de_AT", AddrItem::Create(3, "::1")}));
    ASSERT_TRUE(set);
    EXPECT_EQ(set->request, 7U);
    EXPECT_EQ(set->language, "de_AT");
    EXPECT_EQ(set->item->GetValAsString(), "::1");
    EXPECT_EQ(set->item->GetId(), 3U);
    EXPECT_THROW(Encode(SetMessage{7, std::string(256, 'x'), Number(1, 1)}), std::invalid_argument);

    auto const answer = DecodeAnswer(Encode(AnswerMessage{8, -41, "größer"}));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->request, 8U);
    EXPECT_EQ(answer->code, -41);
    EXPECT_EQ(answer->text, "größer");

    auto const about = DecodeAbout(Encode(AboutMessage{true, "camera"}));
    ASSERT_TRUE(about);
    EXPECT_TRUE(about->online);
    EXPECT_EQ(about->kind, "camera");
}

TEST(FleetWire, DamagedMessagesAreRefused)
{
    struct Case_t
    {
        Bytes whole;
        std::function<bool(Bytes const&)> accepts;
        std::size_t shortest; ///< texts at the end may be cut
    };
    Case_t const cases[] = {
        {Encode(AboutMessage{true, "camera"}), [](auto const& b) { return Accepted(DecodeAbout, b); }, 5},
        {Encode(ValueMessage{1, Number(1, 1)}), [](auto const& b) { return Accepted(DecodeValue, b); }, 24},
        {Encode(SetMessage{1, "en", Number(1, 1)}), [](auto const& b) { return Accepted(DecodeSet, b); }, 27},
        {Encode(AnswerMessage{1, 0, "text"}), [](auto const& b) { return Accepted(DecodeAnswer, b); }, 16},
    };
    std::minstd_rand random(1);
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
        // Whatever else comes may be taken or not, but does no harm.
        for (int round = 0; round < 2000; ++round) {
            Bytes noise = whole;
            for (int i = 0; i < 3; ++i)
                noise[4 + random() % (noise.size() - 4)] = static_cast<unsigned char>(random());
            accepts(noise);
        }
    }
    Bytes value = cases[1].whole;
    value.push_back(0);
    EXPECT_FALSE(Accepted(DecodeValue, value)) << "a byte behind the record";
    value = cases[1].whole;
    value[19] = 3;
    EXPECT_FALSE(Accepted(DecodeValue, value)) << "a record that claims more than there is";
    value = cases[1].whole;
    value[20] = 0x8a;
    EXPECT_FALSE(Accepted(DecodeValue, value)) << "a type without a class";
    Bytes about = cases[0].whole;
    about[4] = 2;
    EXPECT_FALSE(Accepted(DecodeAbout, about)) << "neither online nor offline";
    Bytes const positive = Encode(AnswerMessage{1, 5, ""});
    EXPECT_FALSE(Accepted(DecodeAnswer, positive)) << "there are no positive codes";
}

TEST(FleetTopics, AreReadAsTheyAreWritten)
{
    std::pair<Topic_t, std::string> const topics[] = {
        {{TopicKind_t::About, "cam.1", {}, {}}, "fleet/cam.1/about"},
        {{TopicKind_t::Value, "a", {}, "network/web/port"}, "fleet/a/value/network/web/port"},
        {{TopicKind_t::Set, "a", "desk-2", "system/hostname"}, "fleet/a/set/desk-2/system/hostname"},
        {{TopicKind_t::Answer, "a", "desk_2", {}}, "fleet/a/answer/desk_2"},
    };
    for (auto const& [topic, text] : topics) {
        EXPECT_EQ(ToText(topic), text);
        EXPECT_EQ(ParseTopic(text), topic) << text;
    }
    for (auto const* text : {"",
                             "fleet",
                             "fleet/",
                             "fleet/a",
                             "fleet//about",
                             "Fleet/a/about",
                             "fleet/a/about/",
                             "fleet/a/about/b",
                             "fleet/a b/about",
                             "fleet/+/about",
                             "fleet/a/other",
                             "fleet/a/value",
                             "fleet/a/value/",
                             "fleet/a/value/x",
                             "fleet/a/value//x",
                             "fleet/a/value/x/",
                             "fleet/a/value/x//y",
                             "fleet/a/value/x/#",
                             "fleet/a/value/x/\x1b",
                             "fleet/a/set/x/y",
                             "fleet/a/set/c d/x/y",
                             "fleet/a/answer",
                             "fleet/a/answer/",
                             "fleet/a/answer/c/x"})
        EXPECT_FALSE(ParseTopic(text)) << text;
    EXPECT_FALSE(ParseTopic("fleet/" + std::string(65, 'a') + "/about"));
    EXPECT_EQ(Filter(TopicKind_t::Set, "a", k_anyName), "fleet/a/set/+/#");
    EXPECT_EQ(Filter(TopicKind_t::Value, "a"), "fleet/a/value/#");
    EXPECT_EQ(Filter(TopicKind_t::About, k_anyName), "fleet/+/about");
}

TEST(FleetAnswers, ExecuteARequestOnce)
{
    Answers answers;
    int executed = 0;
    auto const execute = [&] { return AnswerMessage{0, -(++executed), {}}; };
    EXPECT_EQ(answers.Find("a", 5, execute)->code, -1);
    EXPECT_EQ(answers.Find("a", 5, execute)->code, -1) << "the same answer again";
    EXPECT_EQ(answers.Find("b", 5, execute)->code, -2) << "each controller has numbers of its own";
    EXPECT_EQ(answers.Find("a", 9, execute)->request, 9U);
    EXPECT_EQ(answers.Find("a", 5, execute), nullptr);
    EXPECT_EQ(executed, 3);

    for (std::size_t i = 0; i < Answers::k_maxControllers - 1; ++i) {
        answers.Find(std::to_string(i), 1, execute);
        answers.Find("a", 9, execute);
    }
    int const before = executed;
    answers.Find("a", 9, execute);
    EXPECT_EQ(executed, before) << "who was heard lately is remembered";
    answers.Find("b", 5, execute);
    EXPECT_EQ(executed, before + 1) << "who was silent is not";
}

TEST(FleetMirror, TakesWhatIsNewAndFits)
{
    Mirror mirror("cam", "camera");
    auto const port = mirror.Find("network/web/port");
    ASSERT_TRUE(port);
    EXPECT_FALSE(mirror.Find("network/web/none"));
    unsigned int const id = port->GetInfo()->GetId();

    using enum Mirror::Outcome_t;
    std::string const path = "network/web/port";
    EXPECT_EQ(mirror.Apply(path, {7, Number(id, 80)}), Applied);
    EXPECT_EQ(mirror.Apply(path, {7, Number(id, 81)}), Known);
    EXPECT_EQ(mirror.Apply(path, {6, Number(id, 82)}), Known);
    EXPECT_EQ(mirror.Apply(path, {8, Number(id, 0)}), Foreign) << "below the minimum";
    EXPECT_EQ(mirror.Apply(path, {8, StringItem::Create(id, "80")}), Foreign);
    EXPECT_EQ(mirror.Apply(path, {8, Number(id + 1, 80)}), Foreign);
    EXPECT_EQ(mirror.Apply("network/gateway", {8, Number(id, 80)}), Foreign);
    EXPECT_EQ(mirror.Apply(path, {8, AddrItem::Create(id, "80")}), Foreign) << "though addresses pass every validation";
    EXPECT_EQ(mirror.Apply("network/none", {8, Number(id, 80)}), Foreign);
    EXPECT_EQ(mirror.Apply(path, {8, Number(id, 81)}), Applied);
    EXPECT_FALSE(mirror.IsComplete());
}

TEST(FleetModel, ValuesAreReadFromText)
{
    Mirror const mirror("hall", "climate");
    auto const read = [&](std::string const& path, std::string const& text) {
        std::string error;
        auto const info = mirror.Find(path);
        auto const item = ReadValue(info->GetInfo(), text, error);
        return item ? Legacy::IfKit::ValueText(*info, *item) : "error: " + error;
    };
    EXPECT_EQ(read("climate/mode", "heat"), "heat");
    EXPECT_EQ(read("climate/mode", "2"), "cool");
    EXPECT_EQ(read("climate/target", "-5"), "-5 1/10 °C");
    EXPECT_EQ(read("network/name-servers", "2 ::1 ::2"), "(::1, ::2)");
    EXPECT_EQ(read("climate/meter", "host:502"), "host:502 (Modbus)");
    EXPECT_EQ(read("system/hostname", "a\x1b[2Jb"), "a?[2Jb");
    EXPECT_EQ(read("system/hostname", ""), "error: the value is missing");
    EXPECT_EQ(read("system/hostname", "two words"), "error: there is more than one value");
    EXPECT_EQ(read("climate/mode", "fast"), "error: Error parsing enumItem");
    EXPECT_EQ(BuildModel("toaster"), nullptr);
}

} // namespace
} // namespace Fleet
