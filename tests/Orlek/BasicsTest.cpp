#include <Orlek/Exception.h>
#include <Orlek/IntrusiveBaseMT.h>
#include <Orlek/LogLevel.h>
#include <Orlek/StrPtrLen.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>
#include <thread>
#include <vector>

namespace Orlek {
namespace {

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
