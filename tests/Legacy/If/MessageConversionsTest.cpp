#include <Legacy/If/MessageConversions.h>
#include <Net/AppEndpoint.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace Legacy::If::Test {
namespace {

using namespace std::string_literals;
using Place = Net::Endpoint<Net::AddrStr>;
using App = AppEndpoint<Place>;

TEST(MessageConversions, MapTheProtocolsByTheirTable)
{
    std::map<int, int> toMessage{{0, 0}, {1, 1}, {2, 2}, {5, 4}, {7, 5}, {8, 6}, {32, 7}, {66, 9}, {9, 11}, {10, 12}};
    std::map<int, int> fromMessage;
    for (auto const& [type, number] : toMessage)
        fromMessage[number] = type;
    for (int value = -1; value < 300; ++value) { // what is not in the tables is unknown, 0
        ::Pb::Legacy::If::AppProtocolInfo message;
        Sys2LegacyPb::Convert({static_cast<AppProtocolType_t>(value), 0, 0}, message);
        EXPECT_EQ(message.app_protocol_type(), toMessage[value]) << value;
        message.set_app_protocol_type(static_cast<::Pb::Legacy::If::AppProtocolType>(value));
        AppProtocolInfo_t info(AppProtocolType_t::Soap, 1, 1);
        LegacyPb2Sys::Convert(message, info);
        EXPECT_EQ(static_cast<int>(info.type), fromMessage[value]) << value;
    }
}

TEST(MessageConversions, SetEveryFieldAndReadMissingOnesAsDefaults)
{
    ::Pb::Legacy::If::AppEndpointStr message;
    message.mutable_protocol_info()->set_version(77);
    message.mutable_endpoint()->set_addr("old");
    Sys2LegacyPb::Convert(App(), message);
    EXPECT_EQ(message.SerializeAsString(), "\x0a\6\x08\0\x10\0\x18\0\x12\4\x0a\0\x10\0\x18\0"s);
    App const sent({AppProtocolType_t::Modbus, 0xfffe, 0xfffd}, Place("cam", 502), 255);
    Sys2LegacyPb::Convert(sent, message);
    App back;
    LegacyPb2Sys::Convert(message, back);
    EXPECT_EQ(back, sent);
    std::string uri;
    Sys2LegacyPb::Convert(sent, uri);
    LegacyPb2Sys::Convert(uri, back);
    EXPECT_EQ(back, App({AppProtocolType_t::Modbus, 0, 0}, sent.GetEndpoint(), 0));
    message.Clear();
    LegacyPb2Sys::Convert(message, back);
    EXPECT_EQ(back, App());
    message.mutable_protocol_info()->set_version(0x12345); // numbers are cut
    message.mutable_protocol_info()->set_compat_version(0xffff0001);
    message.set_addr_group_prefix(300);
    LegacyPb2Sys::Convert(message, back);
    EXPECT_EQ(back, App({AppProtocolType_t::Unknown, 0x2345, 1}, {}, 44));
}

TEST(MessageConversions, TakeProtocolAndPlaceFromAnAppEndpoint)
{
    EXPECT_EQ(ToLegacyAppProtocolInfo(Net::UriScheme("X-QRV-DevSoap")).type, AppProtocolType_t::Soap);
    Net::AppEndpoint const web("https://u:p@10.0.0.1:8443/a?b");
    EXPECT_EQ(ToLegacyAppEndpointStr(web), App({AppProtocolType_t::Https, 0, 0}, {"10.0.0.1", 8443}, 0));
    EXPECT_EQ(ToLegacyAppEndpointIp(web).ToUri(), "https://10.0.0.1:8443");
    // A path is lost in a numeric endpoint, while in a text the address holds the whole URL of a stream.
    EXPECT_EQ(ToLegacyAppEndpointIp(Net::AppEndpoint("rtsp://10.0.0.1:554/a")).ToUri(), "rtsp://10.0.0.1:554");
    for (std::string const rest : {"://cam/a", "://u:p@cam:554/a?b=c:1#d", "://[::1]:554", "://u:p@ss@cam/a b"})
        EXPECT_EQ(ToLegacyAppEndpointStr(Net::AppEndpoint("RTSP" + rest)),
                  App({AppProtocolType_t::Rtsp, 1, 1}, {"rtsp" + rest, 0}, 0));
}

} // namespace
} // namespace Legacy::If::Test
