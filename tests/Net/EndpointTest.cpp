#include <Net/Endpoint.h>

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Net::AddrIp;
using Net::AddrStr;
using EndpointStr = Net::Endpoint<AddrStr>;
using EndpointIp = Net::Endpoint<AddrIp>;

TEST(AddrStr, KeepsItsTextByteForByte)
{
    EXPECT_EQ(AddrStr().ToString(), "");
    EXPECT_EQ(AddrStr(static_cast<char const*>(nullptr)), AddrStr());
    for (auto const& text : {"cam"s, " Cam "s, "rtsp://u:p@cam:554/a?b=c:1"s, "a\0b"s, "\xff"s})
        EXPECT_EQ(AddrStr(text).ToString(), text);
    EXPECT_NE(AddrStr("cam"), AddrStr("CAM"));
    EXPECT_NE(AddrStr("a"), AddrStr("a\0"s));
}

TEST(AddrIp, ConvertsFromAndToTextAndAsio)
{
    struct Case
    {
        std::string text;
        std::string printed;
    };
    for (auto const& [text, printed] : std::vector<Case>{{"", "0.0.0.0"},
                                                         {"10.1.2.3", "10.1.2.3"},
                                                         {"::1", "::1"},
                                                         {"2001:DB8:0:0::1", "2001:db8::1"},
                                                         {"fe80::1%7777", "fe80::1%7777"},
                                                         {"localhost", "0.0.0.0"},
                                                         {"[::1]", "0.0.0.0"},
                                                         {"127.1", "0.0.0.0"},
                                                         {"127.0.0.1 ", "0.0.0.0"},
                                                         {"127.0.0.1\0x"s, "0.0.0.0"}})
    {
        AddrIp const address(text);
        EXPECT_EQ(address.ToString(), printed) << text;
        EXPECT_EQ(AddrIp(address.GetAddress()), address) << text;
    }
    EXPECT_NE(AddrIp("fe80::1%7777"), AddrIp("fe80::1"));
    EXPECT_NE(AddrIp("::ffff:1.2.3.4"), AddrIp("1.2.3.4"));
}

TEST(Endpoint, ReadsAnyText)
{
    struct Case
    {
        std::string text;
        std::string address;
        std::uint16_t port;
    };
    std::string const url = "rtsp://u:p@cam:554/a/b?c=d:e";
    for (auto const& [text, address, port] :
         std::vector<Case>{{"cam:80", "cam", 80},
                           {"10.0.0.1:65535", "10.0.0.1", 65535},
                           {"cam:0080", "cam", 80},
                           {"cam", "cam", 0},
                           {"cam:", "cam", 0},
                           {"", "", 0},
                           {":", "", 0},
                           {":80", "", 80},
                           // no port: it stays with the address
                           {"cam:65536", "cam:65536", 0},
                           {"cam:18446744073709551696", "cam:18446744073709551696", 0},
                           {"cam:-1", "cam:-1", 0},
                           {"cam:+80", "cam:+80", 0},
                           {"cam: 80", "cam: 80", 0},
                           {"cam:00080", "cam", 80},
                           {"cam:000080", "cam:000080", 0},
                           {"cam:80\0"s, "cam:80\0"s, 0},
                           {"cam\0x:80"s, "cam\0x"s, 80},
                           // IPv6
                           {"[::1]:80", "::1", 80},
                           {"[::1]", "::1", 0},
                           {"[::1]:", "::1", 0},
                           {"::1", "::1", 0},
                           {"fe80::1:80", "fe80::1:80", 0},
                           {"[fe80::1%eth0]:80", "fe80::1%eth0", 80},
                           {"fe80::1%eth0:80", "fe80::1%eth0", 80},
                           {"[::1]:70000", "[::1]:70000", 0},
                           {"[::1]x", "[::1]x", 0},
                           {"::09999", ":", 9999},
                           {"1:2:3:4:5:6:a", "1:2:3:4:5:6:a", 0},
                           {"[cam]:80", "[cam]", 80},
                           {"[:80", "[", 80},
                           // a URL keeps its path; only a number at its end is a port
                           {url, url, 0},
                           {url + ":0", url, 0},
                           {"cam:554/a", "cam:554/a", 0},
                           {"rtsp://cam:554", "rtsp://cam", 554}})
    {
        auto const endpoint = EndpointStr::FromString(text);
        EXPECT_EQ(endpoint.GetAddr().ToString(), address) << text;
        EXPECT_EQ(endpoint.GetPort(), port) << text;
        EXPECT_EQ(EndpointStr::FromString(endpoint.ToString()), endpoint) << text;

        auto const numeric = EndpointIp::FromString(text);
        EXPECT_EQ(numeric, endpoint.ToIp()) << text;
        EXPECT_EQ(EndpointIp::FromString(numeric.ToString()), numeric) << text;
    }
}

TEST(Endpoint, PrintsThePortBehindTheLastColon)
{
    EXPECT_EQ(EndpointStr().ToString(), ":0");
    EXPECT_EQ(EndpointIp().ToString(), "0.0.0.0:0");
    EXPECT_EQ(EndpointStr("cam", 80).ToString(), "cam:80");
    EXPECT_EQ(EndpointStr("::1", 80).ToString(), "[::1]:80");
    EXPECT_EQ(EndpointStr("fe80::1%eth0").ToString(), "[fe80::1%eth0]:0");
    EXPECT_EQ(EndpointStr("rtsp://cam:554").ToString(), "rtsp://cam:554:0");
    EXPECT_EQ(EndpointStr::FromString("rtsp://cam:554:0"), EndpointStr("rtsp://cam:554"));
    // A broken address that the port would complete to IPv6, and the one text that does not come back as it went.
    EXPECT_EQ(EndpointStr("1:", 2).ToString(), "[1:]:2");
    EXPECT_EQ(EndpointStr::FromString("[1:]:2"), EndpointStr("1:", 2));
    EXPECT_EQ(EndpointStr::FromString(EndpointStr("[::1]", 80).ToString()), EndpointStr("::1", 80));
}

TEST(Endpoint, NeedsAnAddressAndAPortToBeFullySpecified)
{
    EXPECT_FALSE(EndpointStr().IsFullySpecified());
    EXPECT_FALSE(EndpointIp().IsFullySpecified());
    for (auto const* text : {"10.0.0.1:80", "[::1]:80", "[fe80::1%7777]:1"}) {
        EXPECT_TRUE(EndpointStr::FromString(text).IsFullySpecified()) << text;
        EXPECT_TRUE(EndpointIp::FromString(text).IsFullySpecified()) << text;
    }
    for (auto const* text : {"10.0.0.1", "10.0.0.1:0", ":80", "0.0.0.0:80", "[::]:80", "[::ffff:0.0.0.0]:80"}) {
        EXPECT_FALSE(EndpointStr::FromString(text).IsFullySpecified()) << text;
        EXPECT_FALSE(EndpointIp::FromString(text).IsFullySpecified()) << text;
    }
    EXPECT_TRUE(EndpointStr("cam", 80).IsFullySpecified());
    EXPECT_FALSE(EndpointStr("cam", 80).ToIp().IsFullySpecified());
}

TEST(Endpoint, KnowsTheLocalHost)
{
    for (auto const* text : {"127.0.0.1", "127.255.255.254", "::1", "0:0::1", "::ffff:127.3.2.1"}) {
        EXPECT_TRUE(EndpointStr(text).IsLocalhostAddr()) << text;
        EXPECT_TRUE(EndpointIp(text, 80).IsLocalhostAddr()) << text;
    }
    for (auto const& text : {""s, "128.0.0.1"s, "::2"s, "::ffff:10.0.0.1"s, "0.0.0.0"s, "127.0.0.1.example"s,
                             "localhost.example"s, "rtsp://localhost/a"s, "127.0.0.1\0"s, "localhost\0"s})
    {
        EXPECT_FALSE(EndpointStr(text).IsLocalhostAddr()) << text;
        EXPECT_FALSE(EndpointIp(text).IsLocalhostAddr()) << text;
    }
    EXPECT_TRUE(EndpointStr("LocalHost", 80).IsLocalhostAddr());
}

} // namespace
