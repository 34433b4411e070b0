#include <Net/StringParser.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringParser, CollectsUpToTheDelimiterAndLeavesIt)
{
    std::string out = "old";
    std::string error = "none";
    std::string const text = "http://cam";
    Orlek::StrPtrLen input(text);
    for (auto const* collected : {"http", ""}) { // the second time it stands on the delimiter
        EXPECT_TRUE(Net::StringParser(out, ':', true).Parse(input, &error));
        EXPECT_EQ(out, collected);
        EXPECT_EQ(input.ToStdString(), "://cam");
    }
    EXPECT_FALSE(Net::StringParser(out, '?', true).Parse(input, nullptr));
    EXPECT_EQ(error, "none");
    EXPECT_FALSE(Net::StringParser(out, '?', true).Parse(input, &error));
    EXPECT_EQ(error, "Missing delimiter '?'");
    EXPECT_EQ(out, "");
    EXPECT_EQ(input.ToStdString(), "://cam");
    EXPECT_TRUE(Net::StringParser(out, '?', false).Parse(input, nullptr)); // the end will do
    EXPECT_EQ(out, "://cam");
    EXPECT_TRUE(input.IsEmpty());
}

} // namespace
