#include "TestSupport.h"

#include <Legacy/If/Result.h>
#include <Legacy/If/String.h>
#include <Orlek/CodeLocation.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/expressions/message.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

namespace Legacy::If::Test {
namespace {

constexpr auto k_error = static_cast<Orlek::SeverityLevel_t>(4);
constexpr auto k_beyond = static_cast<Orlek::SeverityLevel_t>(5);
constexpr auto k_lowest = static_cast<Orlek::SeverityLevel_t>(-100);

std::shared_ptr<ResultElem const> FindingOf(Orlek::SeverityLevel_t severity)
{
    return std::make_shared<ResultElem const>(severity, nullptr, nullptr);
}

TEST(ResultElem, CopiesWhatItConcernsAndSharesItOnward)
{
    auto const item = Hold(StringItem::Create(3, "was"));
    ResultElem const finding(k_error, item, MakeInfo<StringInfo>());
    item->SetVal("is");
    EXPECT_EQ(finding.GetItem()->GetValAsString(), "was");
    EXPECT_EQ(finding.GetInfo()->GetName(), "speed");
    EXPECT_EQ(item->GetRefCount(), 1);
    EXPECT_EQ(ResultElem(finding).GetItem(), finding.GetItem());
}

TEST(Result, GathersAndFiltersBySeverity)
{
    Result result(11);
    EXPECT_FALSE(result.ContainsResultOfSeverity(k_lowest));
    result.AddResultElem(nullptr);
    result.AddResults({FindingOf(k_lowest), nullptr, FindingOf(k_error), FindingOf(k_beyond)}, k_error);
    EXPECT_EQ(result.GetNumResults(), 2U);
    EXPECT_TRUE(result.ContainsResultOfSeverity(k_beyond));
    EXPECT_FALSE(result.ContainsResultOfSeverity(static_cast<Orlek::SeverityLevel_t>(6)));
    result.AddResults(result.GetResultArray(), k_lowest); // its own findings, while it grows

    auto const shared = result.Clone();
    EXPECT_EQ(shared->GetId(), 11U);
    shared->AddResults(shared, k_lowest); // nothing
    shared->AddResults(std::shared_ptr<Result const>(), k_lowest);
    EXPECT_EQ(shared->GetResultArray(), result.GetResultArray());
    shared->AddResultElem(FindingOf(k_error));
    EXPECT_EQ(result.GetNumResults(), 4U);
    result.AddResults(shared, k_error);
    EXPECT_FALSE(result.ContainsPromptableResultElem());
    result.RemovePromptableResultElems();
    EXPECT_EQ(result.GetNumResults(), 9U);
}

struct Seen
{
    std::string message;
    std::string channel;
    Orlek::LogLevel_t level{};
    Orlek::CodeLocation location;
};

class Collector : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding>
{
public:
    void consume(boost::log::record_view const& record)
    {
        Seen seen;
        seen.message = record[boost::log::expressions::smessage].get();
        seen.channel = boost::log::extract<std::string>("Channel", record).get();
        seen.level = boost::log::extract<Orlek::LogLevel_t>("Severity", record).get();
        seen.location = boost::log::extract<Orlek::CodeLocation>("Location", record).get();
        records.push_back(seen);
    }

    std::vector<Seen> records;
};

TEST(Result, LogsItsPrefixOnceForEachFinding)
{
    using Sink = boost::log::sinks::synchronous_sink<Collector>;
    auto const collector = boost::make_shared<Collector>();
    auto const sink = boost::make_shared<Sink>(collector);
    boost::log::core::get()->add_sink(sink);

    auto const logger = Orlek::LogManager::Instance().GetLogger("Test.Result");
    Result result(1);
    for (auto const severity : {k_error, Orlek::SeverityLevel_t::Info, k_beyond})
        result.AddResultElem(FindingOf(severity));
    result.LogResults(nullptr, "P: ");
    logger->SetLevel(Orlek::LogLevel_t::Error);
    result.LogResults(logger, "100%s: ");
    result.LogResults(std::make_shared<Orlek::LoggerFacade>(), "silent");
    boost::log::core::get()->remove_sink(sink);

    ASSERT_EQ(collector->records.size(), 2U); // the level holds one back
    for (Seen const& seen : collector->records) {
        EXPECT_EQ(seen.message, "100%s: ");
        EXPECT_EQ(seen.channel, "Test.Result");
        EXPECT_EQ(seen.location, Orlek::CodeLocation("Legacy\\src\\If\\Result", "Legacy::If::Result::LogResults", 161));
    }
    EXPECT_EQ(collector->records[0].level, Orlek::LogLevel_t::Error);
    EXPECT_EQ(collector->records[1].level, Orlek::LogLevel_t::Fatal);
}

TEST(LocalizedString, ComparesItsArgumentsByIdentity)
{
    LocalizedString a("K");
    a.AddArgument(Hold(StringItem::Create(0, "x")));
    LocalizedString b("K");
    EXPECT_NE(a, b);
    b.AddArgument(Hold(StringItem::Create(0, "x"))); // equal, but another object
    EXPECT_NE(a, b);
    LocalizedString copy(a);
    EXPECT_EQ(copy, a);
    copy.SetKey("L");
    EXPECT_NE(copy, a);
    EXPECT_EQ(copy.GetString(""), "L x"); // the key itself where there is no text for it
    copy.SetKey("");
    EXPECT_EQ(copy.GetString(""), "");
}

} // namespace
} // namespace Legacy::If::Test
