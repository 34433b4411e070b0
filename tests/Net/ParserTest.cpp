#include <Net/StringParser.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringParser, CollectsUpToTheDelimiterAndLeavesIt)
{
    std::string out = "old";
    Net::StringParser parser(out, ':', false);
    std::string const text = "http://cam:80";
    Orlek::StrPtrLen input(text);
    EXPECT_TRUE(parser.Parse(input, nullptr));
    EXPECT_EQ(out, "http");
    EXPECT_EQ(input.ToStdString(), "://cam:80");

    EXPECT_TRUE(parser.Parse(input, nullptr)); // stands on the delimiter: nothing to collect
    EXPECT_EQ(out, "");
    EXPECT_EQ(input.Size(), 9U);
}

TEST(StringParser, TakesTheEndForADelimiterUnlessOneIsRequired)
{
    std::string out = "old";
    std::string error = "none";
    Orlek::StrPtrLen input("cam");
    EXPECT_FALSE(Net::StringParser(out, ':', true).Parse(input, nullptr));
    EXPECT_FALSE(Net::StringParser(out, ':', true).Parse(input, &error));
    EXPECT_EQ(error, "Missing delimiter ':'");
    EXPECT_EQ(out, "old");
    EXPECT_EQ(input.ToStdString(), "cam");

    error = "none";
    EXPECT_TRUE(Net::StringParser(out, ':', false).Parse(input, &error));
    EXPECT_EQ(error, "none");
    EXPECT_EQ(out, "cam");
    EXPECT_TRUE(input.IsEmpty());
}

} // namespace
