#include <Orlek/CodeLocation.h>
#include <Orlek/LogExec.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/keywords/severity.hpp>
#include <boost/log/sources/logger.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

/// Asked for before `main`, kept until after it: the way a library keeps its channel.
std::shared_ptr<LoggerFacade> const k_earlyLogger = LogManager::Instance().GetLogger("Test.Early", nullptr, "");

/// Asks once more when most of the process is gone.
struct LateUser
{
    ~LateUser()
    {
        if (LogManager::Instance().GetLogger("Test.Early") != k_earlyLogger)
            std::abort();
    }
} const k_lateUser;

/// A console for the time of a test.
struct Console
{
    Console() { LogManager::Instance().AddConsoleSink(out); }
    ~Console() { LogManager::Instance().RemoveConsoleSink(out); }
    std::ostringstream out;
};

TEST(LogManager, KeepsOneFacadeForAChannelWithItsParentsFirstLevel)
{
    auto& manager = LogManager::Instance();
    EXPECT_EQ(manager.GetLogger("Test.Early"), k_earlyLogger);
    EXPECT_EQ(k_earlyLogger->get()->channel(), "Test.Early");

    auto const parent = std::make_shared<LoggerFacade>("Test.Parent", LogLevel_t::Error);
    auto const child = manager.GetLogger("Test.One", parent, "a");
    EXPECT_EQ(child->GetChannel(), "Test.One[a]");
    parent->SetLevel(LogLevel_t::Debug);
    EXPECT_EQ(manager.GetLogger("Test.One", parent, "a"), child);
    EXPECT_EQ(child->GetLevel(), LogLevel_t::Error);
    EXPECT_EQ(manager.GetLogger("Test.One", parent, "b")->GetLevel(), LogLevel_t::Debug);
    EXPECT_EQ(manager.GetLogger("Test.One")->GetLevel(), LogLevel_t::Trace);
}

TEST(LogManager, ThreadsShareChannelsLevelsAndConsoles)
{
    Console console;
    std::array<std::set<LoggerFacade*>, 4> seen;
    std::vector<std::thread> threads;
    for (auto& own : seen)
        threads.emplace_back([&own, &console] {
            for (int i = 0; i < 60; ++i) {
                Console const passing; // removed while the others write
                auto const logger = LogManager::Instance().GetLogger("Test.Shared", nullptr, std::to_string(i % 6));
                own.insert(logger.get());
                logger->SetLevel(static_cast<LogLevel_t>(i % 4));
                if (logger->IsEnabled(LogLevel_t::Fatal))
                    BOOST_LOG_SEV(*logger->get(), LogLevel_t::Fatal) << "turn " << i;
                LogManager::Instance().AddConsoleSink(console.out);
            }
        });
    for (auto& thread : threads)
        thread.join();
    for (auto const& own : seen)
        EXPECT_EQ(own, seen[0]);
    EXPECT_EQ(seen[0].size(), 6U);
    EXPECT_EQ(std::ranges::count(console.out.str(), '\n'), 240);
}

TEST(LoggerFacade, EnablesItsLevelAndAllAbove)
{
    LoggerFacade const logger("Test.Levels", LogLevel_t::Warning);
    EXPECT_FALSE(logger.IsEnabled(LogLevel_t::Info));
    EXPECT_TRUE(logger.IsEnabled(LogLevel_t::Warning));
    EXPECT_TRUE(logger.IsEnabled(LogLevel_t::Fatal));
    EXPECT_FALSE(LoggerFacade().IsEnabled(LogLevel_t::Fatal));
}

TEST(ConsoleSink, PrintsWhatARecordHas)
{
    CodeLocation const location("src\\File", "Space::F", 161);
    Console const other;
    Console console;
    LogManager::Instance().AddConsoleSink(console.out); // once more, in vain
    auto record = k_earlyLogger->get()->open_record(boost::log::keywords::severity = LogLevel_t::Error);
    LoggerFacade::AttachLocation(record, location);
    // A sink of an application's own reads the attribute by its name and type.
    EXPECT_EQ(*boost::log::extract<CodeLocation>("Location", record), location);
    boost::log::record_ostream stream(record);
    stream << (LogExec("%s%s") % "P: " % "100%s %d");
    stream.flush();
    k_earlyLogger->get()->push_record(std::move(record));
    BOOST_LOG_SEV(*k_earlyLogger->get(), LogLevel_t::Trace) << "";
    boost::log::sources::logger_mt foreign;
    BOOST_LOG(foreign) << "plain";
    LogManager::Instance().RemoveConsoleSink(console.out);
    BOOST_LOG(foreign) << "never seen";
    std::string const time = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z";
    EXPECT_THAT(console.out.str(),
                testing::MatchesRegex(time + " Error Test\\.Early: P: 100%s %d \\(src\\\\File:161 Space::F\\)\n" +
                                      time + " Trace Test\\.Early: \n" + time + ": plain\n"));
}

TEST(LogExec, FeedsTextsWithoutLosingAny)
{
    LogExec const exec("<%s|%s>");
    auto state = exec.Begin() % "a";
    EXPECT_EQ(state.ToString(), "<a|%s>"); // looking at it between two texts changes nothing
    EXPECT_EQ((state % "").ToString(), "<a|>");
    EXPECT_EQ((exec % "%s%n%%" % "100%" % "%").ToString(), "<%s%n%%|100%> %"); // texts are never looked at
    EXPECT_EQ((LogExec("%s") % std::string_view("a\0b", 3)).ToString(), std::string("a\0b", 3));
    EXPECT_EQ((LogExec("") % "a").ToString(), " a");
    EXPECT_EQ((LogExec("%d %5s %ls %n % s %S") % "a").ToString(), "%d %5s %ls %n % s %S a");
    EXPECT_EQ((LogExec("%%s %%%s%%%") % "a").ToString(), "%s %a%%");
}

} // namespace
} // namespace Orlek
