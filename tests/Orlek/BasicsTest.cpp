#include <Orlek/Exception.h>
#include <Orlek/IntrusiveBaseMT.h>
#include <Orlek/LogLevel.h>
#include <Orlek/StrPtrLen.h>

#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include <array>
#include <iomanip>
#include <limits>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

namespace Orlek {
namespace {

CodeLocation const k_here("dir\\File", "Space::Function", 273);

class Counted : public IntrusiveBaseMT
{
public:
    explicit Counted(int& deaths) : m_deaths(&deaths) {}
    Counted(Counted const&) = default;
    Counted& operator=(Counted const&) = default;
    ~Counted() override { ++*m_deaths; }

private:
    int* m_deaths;
};

TEST(IntrusiveBaseMT, LastReferenceDestroysWhicheverThreadDropsIt)
{
    int deaths = 0;
    {
        boost::intrusive_ptr<Counted const> shared(new Counted(deaths));
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([own = shared] {
                for (int turn = 0; turn < 2000; ++turn) {
                    boost::intrusive_ptr<Counted const> const another(own);
                    EXPECT_GE(another->GetRefCount(), 2);
                }
            });
        shared.reset();
        for (auto& thread : threads)
            thread.join();
    }
    EXPECT_EQ(deaths, 1);
}

TEST(IntrusiveBaseMT, CountBelongsToTheObject)
{
    int deaths = 0;
    boost::intrusive_ptr<Counted> const held(new Counted(deaths));
    Counted copy(*held);
    EXPECT_EQ(copy.GetRefCount(), 0);
    copy = *held;
    EXPECT_EQ(copy.GetRefCount(), 0);
    *held = copy;
    EXPECT_EQ(held->GetRefCount(), 1);
}

TEST(LogLevel, EverySeverityHasALevel)
{
    struct
    {
        std::int32_t severity;
        LogLevel_t level;
        char const* text;
    } const cases[] = {{std::numeric_limits<std::int32_t>::min(), LogLevel_t::Trace, "Trace"},
                       {0, LogLevel_t::Trace, "Trace"},
                       {1, LogLevel_t::Debug, "Debug"},
                       {2, LogLevel_t::Info, "Info"},
                       {3, LogLevel_t::Warning, "Warning"},
                       {4, LogLevel_t::Error, "Error"},
                       {5, LogLevel_t::Fatal, "Fatal"},
                       {std::numeric_limits<std::int32_t>::max(), LogLevel_t::Fatal, "Fatal"}};
    for (auto const& c : cases) {
        EXPECT_EQ(GetLogLevelFromSeverity(static_cast<SeverityLevel_t>(c.severity)), c.level) << c.severity;
        EXPECT_EQ(GetLogLevelText(static_cast<LogLevel_t>(c.severity)), c.text) << c.severity;
    }
}

using Extra = boost::error_info<struct ExtraTag, int>;

TEST(Exception, IsCaughtUnderEveryBaseWithItsParts)
{
    try {
        throw LogicError(-32, "Null pointer", k_here) << Extra(7);
    } catch (Exception const& error) {
        Exception copy = error;
        Exception const moved = std::move(copy); // leaves its source whole
        EXPECT_NE(dynamic_cast<LogicError const*>(&error), nullptr);
        EXPECT_EQ(copy.GetCode(), -32);
        EXPECT_EQ(copy.GetMessage(), "Null pointer");
        EXPECT_EQ(copy.GetLocation(), k_here);
        ASSERT_NE(boost::get_error_info<Extra>(copy), nullptr);
        EXPECT_EQ(*boost::get_error_info<Extra>(copy), 7);
    }
    EXPECT_THROW(throw LogicError(1, "m", {}), boost::exception);
    try {
        throw LogicError(1, "text", {});
    } catch (std::exception const& error) {
        EXPECT_STREQ(error.what(), "text");
    }
    static_assert(std::is_nothrow_copy_constructible_v<LogicError> && std::is_nothrow_copy_assignable_v<LogicError>);
}

TEST(CodeLocation, PrintsWithoutRegardToTheStreamsNumberFormat)
{
    std::ostringstream out;
    out << std::hex << std::showbase << k_here << '|' << CodeLocation();
    EXPECT_EQ(out.str(), "dir\\File:273 Space::Function|:0 ");
}

TEST(StrPtrLen, ViewsWhatItIsGiven)
{
    std::string const text("a\0b", 3);
    EXPECT_EQ(StrPtrLen(text).ToStdString(), text);
    EXPECT_EQ(StrPtrLen(text).Data(), text.data());
    EXPECT_EQ(StrPtrLen(text.data(), 2).Size(), 2U);
    for (auto const& empty : {StrPtrLen(), StrPtrLen(nullptr, 5), StrPtrLen(static_cast<char const*>(nullptr)),
                              StrPtrLen(""), StrPtrLen(text.data(), 0)})
    {
        EXPECT_TRUE(empty.IsEmpty());
        EXPECT_EQ(empty.ToStdString(), "");
        EXPECT_EQ(empty.Front(), '\0');
        EXPECT_EQ(empty, StrPtrLen());
    }
}

TEST(StrPtrLen, AdvancesNoFurtherThanItsEnd)
{
    StrPtrLen view("abc");
    view.Advance();
    EXPECT_EQ(view.Front(), 'b');
    view.Advance(0);
    EXPECT_EQ(view, StrPtrLen("bc"));
    view.Advance(std::numeric_limits<std::size_t>::max());
    EXPECT_TRUE(view.IsEmpty());
    view.Advance();
    EXPECT_TRUE(view.IsEmpty());
}

TEST(StrPtrLen, IgnoresTheCaseOfAsciiLettersOnly)
{
    struct
    {
        char const* a;
        char const* b;
        bool equal;
    } const cases[] = {{"", "", true},
                       {"http", "HTTP", true},
                       {"AZaz09", "azAZ09", true},
                       {"http", "https", false},
                       {"https", "http", false},
                       {"@[`{", "`{@[", false},
                       {"k", "\xE2\x84\xAA", false},
                       {"\xC3\x84", "\xC3\xA4", false},
                       {"\xC3\x84", "\xC3\x84", true}};
    for (auto const& c : cases)
        EXPECT_EQ(StrPtrLen(c.a).EqualIgnoreCase(c.b), c.equal) << c.a << ' ' << c.b;
}

} // namespace
} // namespace Orlek
