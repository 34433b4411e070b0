#include <Orlek/CodeLocation.h>
#include <Orlek/LogExec.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/keywords/severity.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sources/logger.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

#if defined(__SANITIZE_THREAD__)
/// The log library as it comes drops its references to sinks unseen by the thread checks.
extern "C" char const* __tsan_default_suppressions()
{
    return "race:boost::log::v2_mt_posix::record_view::public_data::destroy\n";
}
#endif

namespace Orlek {
namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

/// Asked for before `main`, kept until after it: the way a library keeps its channel.
std::shared_ptr<LoggerFacade> const k_earlyLogger = LogManager::Instance().GetLogger("Test.Early", nullptr, "");

/// Asks once more when most of the process is gone.
struct LateUser
{
    ~LateUser()
    {
        auto const again = LogManager::Instance().GetLogger("Test.Early");
        if (again != k_earlyLogger)
            std::abort();
    }
} const k_lateUser;

void Write(LoggerFacade& logger, LogLevel_t level, std::string const& prefix, std::string const& text,
           CodeLocation const* location = nullptr)
{
    auto record = logger.get()->open_record(boost::log::keywords::severity = level);
    if (!record)
        return;
    if (location)
        LoggerFacade::AttachLocation(record, *location);
    boost::log::record_ostream stream(record);
    stream << (LogExec("%s%s") % prefix % text);
    stream.flush();
    logger.get()->push_record(std::move(record));
}

std::vector<std::string> Lines(std::ostringstream const& out)
{
    std::vector<std::string> lines;
    std::istringstream in(out.str());
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST(LogManager, OneFacadeForAChannel)
{
    auto& manager = LogManager::Instance();
    EXPECT_EQ(&manager, &LogManager::Instance());
    EXPECT_EQ(manager.GetLogger("Test.Early"), k_earlyLogger);
    EXPECT_EQ(k_earlyLogger->GetChannel(), "Test.Early");
    EXPECT_EQ(k_earlyLogger->get()->channel(), "Test.Early");

    auto const first = manager.GetLogger("Test.One", nullptr, "a");
    EXPECT_EQ(first->GetChannel(), "Test.One[a]");
    EXPECT_EQ(manager.GetLogger("Test.One", nullptr, "a"), first);
    EXPECT_NE(manager.GetLogger("Test.One", nullptr, "b"), first);
    EXPECT_NE(manager.GetLogger("Test.One"), first);
}

TEST(LogManager, ParentLendsItsLevelOnceToANewChannel)
{
    auto& manager = LogManager::Instance();
    auto const parent = std::make_shared<LoggerFacade>("Test.Parent", LogLevel_t::Error);
    auto const child = manager.GetLogger("Test.Child", parent, "");
    EXPECT_EQ(child->GetLevel(), LogLevel_t::Error);
    parent->SetLevel(LogLevel_t::Debug);
    EXPECT_EQ(manager.GetLogger("Test.Child", parent)->GetLevel(), LogLevel_t::Error);
    EXPECT_EQ(manager.GetLogger("Test.Orphan")->GetLevel(), LogLevel_t::Trace);
}

TEST(LogManager, ThreadsShareChannelsAndLevels)
{
    std::ostringstream out;
    LogManager::Instance().AddConsoleSink(out);
    std::array<std::set<LoggerFacade*>, 4> seen;
    std::vector<std::thread> threads;
    for (auto& own : seen)
        threads.emplace_back([&own, &out] {
            for (int i = 0; i < 60; ++i) {
                auto const logger = LogManager::Instance().GetLogger("Test.Shared", nullptr, std::to_string(i % 6));
                own.insert(logger.get());
                logger->SetLevel(static_cast<LogLevel_t>(i % 4));
                if (logger->IsEnabled(LogLevel_t::Fatal))
                    Write(*logger, LogLevel_t::Fatal, "turn ", std::to_string(i));
                LogManager::Instance().AddConsoleSink(out);
            }
        });
    for (auto& thread : threads)
        thread.join();
    LogManager::Instance().RemoveConsoleSink(out);
    for (auto const& own : seen)
        EXPECT_EQ(own, seen[0]);
    EXPECT_EQ(seen[0].size(), 6U);
    EXPECT_EQ(Lines(out).size(), 240U);
}

TEST(LogManager, RemovedStreamIsLeftAloneByRecordsUnderWay)
{
    std::ostream nowhere(nullptr);
    LogManager::Instance().AddConsoleSink(nowhere); // else the core would print by itself
    std::atomic<bool> stop = false;
    std::thread writer([&stop] {
        while (!stop)
            Write(*k_earlyLogger, LogLevel_t::Info, "", "text");
    });
    for (int i = 0; i < 300; ++i) {
        auto const gone = std::make_unique<std::ostringstream>();
        LogManager::Instance().AddConsoleSink(*gone);
        std::this_thread::yield();
        LogManager::Instance().RemoveConsoleSink(*gone);
    }
    stop = true;
    writer.join();
    LogManager::Instance().RemoveConsoleSink(nowhere);
}

TEST(LoggerFacade, EnablesItsLevelAndAllAbove)
{
    LoggerFacade logger("Test.Levels");
    auto const count = [&logger] {
        int enabled = 0;
        for (int level = 0; level <= 5; ++level)
            enabled += logger.IsEnabled(static_cast<LogLevel_t>(level)) ? 1 : 0;
        return enabled;
    };
    EXPECT_EQ(count(), 6);
    for (int level = 0; level <= 5; ++level) {
        logger.SetLevel(static_cast<LogLevel_t>(level));
        EXPECT_EQ(count(), 6 - level);
        EXPECT_TRUE(logger.IsEnabled(static_cast<LogLevel_t>(level)));
    }
    LoggerFacade const silent;
    EXPECT_EQ(silent.get(), nullptr);
    EXPECT_FALSE(silent.IsEnabled(LogLevel_t::Fatal));
}

TEST(ConsoleSink, PrintsWhatARecordHas)
{
    std::ostringstream out;
    LogManager::Instance().AddConsoleSink(out);
    LogManager::Instance().AddConsoleSink(out);
    CodeLocation const location("src\\File", "Space::F", 161);
    Write(*k_earlyLogger, LogLevel_t::Error, "P: ", "100%s %d", &location);
    Write(*k_earlyLogger, LogLevel_t::Trace, "", "");
    boost::log::sources::logger_mt foreign;
    BOOST_LOG(foreign) << "plain";
    LogManager::Instance().RemoveConsoleSink(out);
    LogManager::Instance().RemoveConsoleSink(out);
    std::ostream nowhere(nullptr);
    LogManager::Instance().AddConsoleSink(nowhere); // else the core would print by itself
    Write(*k_earlyLogger, LogLevel_t::Trace, "", "never seen");
    LogManager::Instance().RemoveConsoleSink(nowhere);

    std::string const time = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z";
    EXPECT_THAT(Lines(out),
                ElementsAre(MatchesRegex(time + " Error Test\\.Early: P: 100%s %d \\(src\\\\File:161 Space::F\\)"),
                            MatchesRegex(time + " Trace Test\\.Early: "), MatchesRegex(time + ": plain")));
}

/// A sink as an application may have its own: it reads the attributes by name and type.
class LocationBackend : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding>
{
public:
    void consume(boost::log::record_view const& record)
    {
        if (auto const location = boost::log::extract<CodeLocation>("Location", record))
            m_locations.push_back(*location);
    }

    std::vector<CodeLocation> m_locations;
};

TEST(LoggerFacade, LocationTravelsAsAnAttribute)
{
    using Sink = boost::log::sinks::synchronous_sink<LocationBackend>;
    auto const backend = boost::make_shared<LocationBackend>();
    auto const sink = boost::make_shared<Sink>(backend);
    boost::log::core::get()->add_sink(sink);
    CodeLocation const location("f", "g", 1);
    Write(*k_earlyLogger, LogLevel_t::Error, "", "", &location);
    Write(*k_earlyLogger, LogLevel_t::Error, "", "");
    boost::log::core::get()->remove_sink(sink);
    EXPECT_THAT(backend->m_locations, ElementsAre(location));
}

TEST(LogExec, FeedsTextsWithoutLosingAny)
{
    struct
    {
        char const* format;
        std::vector<std::string> texts;
        char const* result;
    } const cases[] = {
        {"%s%s", {"prefix ", "text"}, "prefix text"},
        {"%s%s", {"", ""}, ""},
        {"<%s|%s>", {"a", "b"}, "<a|b>"},
        {"", {}, ""},
        {"", {"a"}, " a"},
        // Too few, too many.
        {"%s%s", {}, "%s%s"},
        {"%s-%s!", {"a"}, "a-%s!"},
        {"%s.", {"a", "b", "c"}, "a. b c"},
        // Percent signs that are text.
        {"100%", {}, "100%"},
        {"%%s %s%%", {"a"}, "%s a%"},
        {"%d %5s %ls %n % s %S", {"a"}, "%d %5s %ls %n % s %S a"},
        {"%%%s%%%", {"a"}, "%a%%"},
        // Texts are never looked at.
        {"%s%s", {"%s%n%%", "100%"}, "%s%n%%100%"},
        {"%s", {"%", "s"}, "% s"},
    };
    for (auto const& c : cases) {
        LogExec const exec(c.format);
        for (int turn = 0; turn < 2; ++turn) {
            auto state = exec.Begin();
            for (auto const& text : c.texts) {
                (void)state.ToString(); // looking at the state between two texts changes nothing
                state % text;
            }
            std::ostringstream out;
            out << state;
            EXPECT_EQ(out.str(), c.result) << c.format;
            EXPECT_EQ(state.ToString(), c.result) << c.format;
        }
        EXPECT_EQ(exec.GetFormat(), c.format);
    }
    EXPECT_EQ((LogExec("%s") % std::string_view("a\0b", 3)).ToString(), std::string("a\0b", 3));
}

} // namespace
} // namespace Orlek
