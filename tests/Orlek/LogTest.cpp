#include <Orlek/CodeLocation.h>
#include <Orlek/Exception.h>
#include <Orlek/IntrusiveBaseMT.h>
#include <Orlek/LogExec.h>
#include <Orlek/LogLevel.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>
#include <Orlek/StrPtrLen.h>

#include <boost/log/keywords/severity.hpp>
#include <boost/log/sources/logger.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <sstream>
#include <thread>
#include <vector>

#if defined(__SANITIZE_THREAD__)
/// The log library as it comes drops its references to sinks unseen by the thread checks.
extern "C" char const* __tsan_default_suppressions()
{
    return "race:boost::log::v2_mt_posix::record_view::public_data::destroy\n"
           "race:boost::detail::sp_ms_deleter<boost::log::v2_mt_posix::sinks::synchronous_sink\n";
}
#endif

namespace Orlek {
namespace {

LogManager& Manager() { return LogManager::Instance(); }

/// Asked for before `main`, and once more when most of the process is gone.
struct Channel
{
    ~Channel()
    {
        if (Manager().GetLogger("Test.Early") != logger)
            std::abort();
    }
    std::shared_ptr<LoggerFacade> const logger = Manager().GetLogger("Test.Early", nullptr, "");
} const k_early;

/// A console for the time of a test.
struct Console
{
    Console() { Manager().AddConsoleSink(out); }
    ~Console() { Manager().RemoveConsoleSink(out); }
    std::ostringstream out;
};

TEST(LogManager, KeepsOneFacadeForAChannelWithItsParentsFirstLevel)
{
    auto const parent = std::make_shared<LoggerFacade>("Test.Parent", LogLevel_t::Error);
    auto const child = Manager().GetLogger("Test.One", parent, "a");
    EXPECT_EQ(child->get()->channel(), "Test.One[a]");
    parent->SetLevel(LogLevel_t::Debug);
    EXPECT_EQ(Manager().GetLogger("Test.One", parent, "a"), child);
    EXPECT_TRUE(child->IsEnabled(LogLevel_t::Error) && !child->IsEnabled(LogLevel_t::Warning));
    EXPECT_EQ(Manager().GetLogger("Test.One")->GetLevel(), LogLevel_t::Trace);
    EXPECT_FALSE(LoggerFacade().IsEnabled(LogLevel_t::Fatal)); // there is no logger behind it
}

TEST(LogManager, ThreadsShareChannelsLevelsAndConsoles)
{
    Console console;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&console] {
            for (int i = 0; i < 60; ++i) {
                Console const passing; // removed while the others write
                auto const logger = Manager().GetLogger("Test.Shared", nullptr, std::to_string(i % 6));
                logger->SetLevel(static_cast<LogLevel_t>(i % 4));
                if (logger->IsEnabled(LogLevel_t::Fatal))
                    BOOST_LOG_SEV(*logger->get(), LogLevel_t::Fatal) << "turn " << i;
                Manager().AddConsoleSink(console.out); // once more, in vain
            }
        });
    threads.clear();
    EXPECT_EQ(std::ranges::count(console.out.str(), '\n'), 240);
}

TEST(ConsoleSink, PrintsWhatARecordHas)
{
    Console const other;
    Console console;
    auto& channel = *k_early.logger->get();
    auto record = channel.open_record(boost::log::keywords::severity = LogLevel_t::Error);
    LoggerFacade::AttachLocation(record, CodeLocation("src\\File", "Space::F", 161));
    boost::log::record_ostream(record) << (LogExec("%s%s") % "P: " % "100%s %d") << std::flush;
    channel.push_record(std::move(record));
    BOOST_LOG_SEV(channel, LogLevel_t::Trace) << "";
    boost::log::sources::logger_mt foreign;
    BOOST_LOG(foreign) << "plain";
    Manager().RemoveConsoleSink(console.out);
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
    EXPECT_EQ((LogExec("%d %5s %ls %n % s %S %%s %%%s%%%") % "a").ToString(), "%d %5s %ls %n % s %S %s %a%%");
}

struct Counted : IntrusiveBaseMT
{
    std::shared_ptr<int> life = std::make_shared<int>();
};

TEST(IntrusiveBaseMT, LastReferenceDestroysWhicheverThreadDropsIt)
{
    boost::intrusive_ptr<Counted> shared(new Counted);
    EXPECT_EQ(Counted(*shared).GetRefCount(), 0);
    *shared = Counted();
    EXPECT_EQ(shared->GetRefCount(), 1); // the count belongs to the object
    std::weak_ptr<int> const life = shared->life;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([own = shared]() mutable {
            for (int turn = 0; turn < 2000; ++turn)
                EXPECT_GE(boost::intrusive_ptr<Counted const>(own)->GetRefCount(), 2);
            own.reset();
        });
    shared.reset();
    threads.clear();
    EXPECT_TRUE(life.expired());
}

TEST(LogLevel, EverySeverityHasALevel)
{
    using limits = std::numeric_limits<std::int32_t>;
    for (auto const& [level, text] : {std::pair(limits::min(), "Trace"), {3, "Warning"}, {limits::max(), "Fatal"}}) {
        EXPECT_EQ(GetLogLevelText(static_cast<LogLevel_t>(level)), text);
        EXPECT_EQ(GetLogLevelText(GetLogLevelFromSeverity(static_cast<SeverityLevel_t>(level))), text);
    }
}

TEST(Exception, IsCaughtUnderEveryBaseWithItsParts)
{
    try {
        throw LogicError(-32, "Null pointer", {"dir\\File", "Space::Function", 273});
    } catch (Exception const& error) {
        Exception copy = error;
        Exception const moved = std::move(copy); // leaves its source whole
        EXPECT_NE(dynamic_cast<LogicError const*>(&error), nullptr);
        EXPECT_NE(dynamic_cast<boost::exception const*>(&error), nullptr);
        EXPECT_EQ(copy.GetCode(), -32);
        EXPECT_STREQ(static_cast<std::exception const&>(copy).what(), "Null pointer");
        std::ostringstream out;
        out << std::hex << std::showbase << copy.GetLocation(); // numbers in places are always decimal
        EXPECT_EQ(out.str(), "dir\\File:273 Space::Function");
    }
}

TEST(StrPtrLen, ViewsWhatItIsGivenAndNothingBehind)
{
    EXPECT_EQ(StrPtrLen(nullptr, 5), StrPtrLen(static_cast<char const*>(nullptr)));
    StrPtrLen view(std::string_view("a\0b", 3));
    view.Advance(2);
    EXPECT_EQ(view, StrPtrLen("b"));
    view.Advance(std::numeric_limits<std::size_t>::max());
    view.Advance();
    EXPECT_EQ(view.Front(), '\0');
    EXPECT_TRUE(StrPtrLen("AZaz09").EqualIgnoreCase("azAZ09"));
    for (auto const& [a, b] : // only the case of ASCII letters does not matter
         {std::pair("http", "https"), {"https", "http"}, {"@[`{", "`{@["}, {"\xC3\x84", "\xC3\xA4"}})
        EXPECT_FALSE(StrPtrLen(a).EqualIgnoreCase(b)) << a << ' ' << b;
}

} // namespace
} // namespace Orlek
