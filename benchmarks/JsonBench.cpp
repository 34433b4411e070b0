// Values and a whole directory as JSON and back, beside what only makes a document of any kind out of the same text.
#include "Records.h"

#include <Legacy/If/Composite.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/IfKit/Json.h>

#include <Peers.pb.h>
#include <boost/json.hpp>
#include <google/protobuf/util/json_util.h>
#ifdef BENCH_HAS_NLOHMANN
#include <nlohmann/json.hpp>
#endif

#include <memory>
#include <sstream>

namespace {

using namespace Legacy::If;
using namespace Legacy::IfKit;
using namespace Bench;

ItemPtr MakeWide()
{
    boost::intrusive_ptr<CompositeItem> const composite(new CompositeItem(k_id));
    for (unsigned int i = 0; i < 100; ++i)
        composite->AddItem(NumericItem<U32Traits>::Create(k_id + i, i));
    return composite;
}

Bench::Members MakeMembers()
{
    Bench::Members message;
    for (unsigned int i = 0; i < 100; ++i) {
        auto& member = *message.add_member();
        member.set_id(k_id + i);
        member.set_value(i);
    }
    return message;
}

ItemPtr MakeNumbers() { return NumericArrayItem<U16Traits>::Create(k_id, MakeList<unsigned short>()); }

Bench::Numbers MakeNumbersMessage()
{
    Bench::Numbers message;
    for (auto const number : MakeList<std::uint32_t>())
        message.add_u32(number);
    return message;
}

/// Sections of a hundred numbers each, all with a schema and a value.
void Fill(InfoItemDirectory& directory, unsigned int parameters)
{
    for (unsigned int i = 0; i < parameters;) {
        SectionId section;
        directory.AddSection("section" + std::to_string(i), section);
        for (unsigned int place = 0; place < 100 && i < parameters; ++place, ++i) {
            unsigned int const id = section.GetInfoItemSectionId().CreateInfoItemId(place);
            auto* const info = new NumericInfo<U32Traits>(id, "parameter" + std::to_string(i), Permission_t{});
            info->SetMax(1'000'000);
            directory.AddInfo(new InfoHolder(info));
            directory.SetItem(new ItemHolder(NumericItem<U32Traits>::Create(id, i)));
        }
    }
}

template<typename Object>
std::string TextOf(Object const& object)
{
    std::ostringstream os;
    static_cast<void>(WriteJson(os, object));
    return std::move(os).str();
}

template<typename Object>
void Write(benchmark::State& state, Object const& object)
{
    std::string const expected = TextOf(object);
    std::string text;
    Measure(state, [&] { text = TextOf(object); });
    Check(state, text == expected && !text.empty());
}

void ReadValue(benchmark::State& state, ItemBase const& item)
{
    std::string const text = TextOf(item);
    ItemPtr read;
    bool right = true;
    Measure(state, [&] {
        std::istringstream is(text);
        right &= !ReadJson(is, read);
    });
    Check(state, right && TextOf(*read) == text);
}

/// The documents of other libraries, of the same text as ours: nothing is checked or built but the document.
void AddDocuments(std::string const& subject, std::string const& text)
{
    AddRow("to-json", subject, "boost-json", [text](benchmark::State& state) {
        auto const document = boost::json::parse(text);
        std::string written;
        Measure(state, [&] { written = boost::json::serialize(document); });
        Check(state, boost::json::parse(written) == document);
    });
    AddRow("from-json", subject, "boost-json", [text](benchmark::State& state) {
        boost::json::value document;
        Measure(state, [&] { document = boost::json::parse(text); });
        Check(state, !document.is_null());
    });
#ifdef BENCH_HAS_NLOHMANN
    AddRow("to-json", subject, "nlohmann", [text](benchmark::State& state) {
        auto const document = nlohmann::json::parse(text);
        std::string written;
        Measure(state, [&] { written = document.dump(); });
        Check(state, nlohmann::json::parse(written) == document);
    });
    AddRow("from-json", subject, "nlohmann", [text](benchmark::State& state) {
        nlohmann::json document;
        Measure(state, [&] { document = nlohmann::json::parse(text); });
        Check(state, !document.is_null());
    });
#endif
}

template<typename Message>
void AddMessage(std::string const& subject, Message const& message)
{
    using namespace google::protobuf::util;
    AddRow("to-json", subject, "protobuf", [message](benchmark::State& state) {
        std::string text;
        bool right = true;
        Measure(state, [&] {
            text.clear();
            right &= MessageToJsonString(message, &text).ok();
        });
        Check(state, right && !text.empty());
    });
    AddRow("from-json", subject, "protobuf", [message](benchmark::State& state) {
        std::string text;
        bool right = MessageToJsonString(message, &text).ok();
        Message read;
        Measure(state, [&] {
            read.Clear();
            right &= JsonStringToMessage(text, &read).ok();
        });
        Check(state, right && read.SerializeAsString() == message.SerializeAsString());
    });
}

template<typename Message>
void AddValue(std::string const& subject, ItemPtr const& item, Message const& message)
{
    AddRow("to-json", subject, k_ours, [item](benchmark::State& state) { Write(state, *item); });
    AddRow("from-json", subject, k_ours, [item](benchmark::State& state) { ReadValue(state, *item); });
    AddDocuments(subject, TextOf(*item));
    AddMessage(subject, message);
}

void AddDirectory(unsigned int parameters)
{
    std::string const subject = "directory-" + std::to_string(parameters);
    auto const filled = std::make_shared<InfoItemDirectory>();
    Fill(*filled, parameters);
    AddRow("to-json", subject, k_ours, [filled](benchmark::State& state) { Write(state, *filled); });
    std::string const text = TextOf(*filled);
    AddRow("from-json", subject, k_ours, [text](benchmark::State& state) {
        bool right = true;
        std::unique_ptr<InfoItemDirectory> directory;
        Measure(state, [&] {
            std::istringstream is(text);
            directory = std::make_unique<InfoItemDirectory>();
            right &= !ReadJson(is, *directory);
        });
        Check(state, right && TextOf(*directory) == text);
    });
    AddDocuments(subject, text);
}

struct Rows
{
    Rows()
    {
        AddValue("hundred", MakeWide(), MakeMembers());
        AddValue("u16x1000", MakeNumbers(), MakeNumbersMessage());
        AddDirectory(10'000);
    }
} const k_rows;

} // namespace
