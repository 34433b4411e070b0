#include <Net/StringParser.h>

#include <gtest/gtest.h>

namespace {

TEST(StringParser, CollectsUpToTheDelimiterAndLeavesIt)
{
    std::string out = "old";
    std::string error = "none";
    Orlek::StrPtrLen input("http://cam");
    for (auto const* collected : {"http", ""}) { // the second time it stands on the delimiter
        EXPECT_TRUE(Net::StringParser(out, ':', true).Parse(input, &error));
        EXPECT_EQ(out + error, std::string(collected) + "none");
        EXPECT_EQ(input.ToStdString(), "://cam");
    }
    EXPECT_FALSE(Net::StringParser(out, '?', true).Parse(input, nullptr));
    EXPECT_FALSE(Net::StringParser(out, '?', true).Parse(input, &error));
    EXPECT_EQ(out + error, "Missing delimiter '?'");
    EXPECT_TRUE(Net::StringParser(out, '?', false).Parse(input, nullptr)); // the end will do
    EXPECT_EQ(out, "://cam");
    EXPECT_TRUE(input.IsEmpty());
}

} // namespace
