#include <Legacy/If/MessageConversions.h>
#include <Net/AppEndpoint.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace Legacy::If::Test {
namespace {

using Place = Net::Endpoint<Net::AddrStr>;
using App = AppEndpoint<Place>;
using PbType = ::Pb::Legacy::If::AppProtocolType;

TEST(MessageConversions, MapTheProtocolsByTheirTable)
{
    std::map<int, int> const toMessage{{0, 0}, {1, 1},  {2, 2},  {5, 4},  {7, 5},
                                       {8, 6}, {32, 7}, {66, 9}, {9, 11}, {10, 12}};
    std::map<int, int> fromMessage;
    for (auto const& [type, number] : toMessage)
        fromMessage[number] = type;

    ::Pb::Legacy::If::AppProtocolInfo message;
    for (int type = -1; type < 300; ++type) {
        Sys2LegacyPb::Convert({static_cast<AppProtocolType_t>(type), 0, 0}, message);
        auto const row = toMessage.find(type);
        EXPECT_EQ(message.app_protocol_type(), row == toMessage.end() ? 0 : row->second) << type;
    }
    for (int number = -1; number < 300; ++number) {
        message.set_app_protocol_type(static_cast<PbType>(number));
        AppProtocolInfo_t info(AppProtocolType_t::Soap, 1, 1);
        LegacyPb2Sys::Convert(message, info);
        auto const row = fromMessage.find(number);
        EXPECT_EQ(static_cast<int>(info.type), row == fromMessage.end() ? 0 : row->second) << number;
    }
}

TEST(MessageConversions, SetEveryFieldOfAMessageAndOverwriteTheRest)
{
    ::Pb::Legacy::If::AppEndpointStr message;
    message.mutable_protocol_info()->set_version(77);
    message.mutable_endpoint()->set_addr("old");
    Sys2LegacyPb::Convert(App(), message);
    EXPECT_TRUE(message.has_protocol_info());
    EXPECT_TRUE(message.protocol_info().has_app_protocol_type());
    EXPECT_TRUE(message.protocol_info().has_version());
    EXPECT_TRUE(message.protocol_info().has_compat_version());
    EXPECT_TRUE(message.has_endpoint());
    EXPECT_TRUE(message.has_addr_group_prefix());
    EXPECT_EQ(message.protocol_info().version(), 0U);
    EXPECT_EQ(message.endpoint().addr(), "");

    App const sent({AppProtocolType_t::Modbus, 0xfffe, 0xfffd}, Place("cam", 502), 255);
    Sys2LegacyPb::Convert(sent, message);
    ::Pb::Legacy::If::AppEndpointStr received;
    ASSERT_TRUE(received.ParseFromString(message.SerializeAsString()));
    App back;
    LegacyPb2Sys::Convert(received, back);
    EXPECT_EQ(back, sent);
}

TEST(MessageConversions, CutNumbersAndReadMissingFieldsAsDefaults)
{
    ::Pb::Legacy::If::AppEndpointStr message;
    App app({AppProtocolType_t::Modbus, 1, 1}, Place("old", 1), 1);
    LegacyPb2Sys::Convert(message, app);
    EXPECT_EQ(app, App());

    message.mutable_protocol_info()->set_version(0x12345);
    message.mutable_protocol_info()->set_compat_version(0xffff0001);
    message.set_addr_group_prefix(300);
    LegacyPb2Sys::Convert(message, app);
    EXPECT_EQ(app, App({AppProtocolType_t::Unknown, 0x2345, 1}, {}, 44));
}

TEST(MessageConversions, GoThroughUris)
{
    App const app({AppProtocolType_t::Ntp, 3, 3}, Place("cam", 123), 9);
    std::string uri = "old";
    Sys2LegacyPb::Convert(app, uri);
    EXPECT_EQ(uri, "x-qrv-ntp://cam:123");
    App back = app;
    LegacyPb2Sys::Convert(uri, back);
    EXPECT_EQ(back, App({AppProtocolType_t::Ntp, 0, 0}, {"cam", 123}, 0));
}

TEST(MessageConversions, TakeProtocolAndPlaceFromAnAppEndpoint)
{
    EXPECT_EQ(ToLegacyAppProtocolInfo(Net::UriScheme("X-QRV-DevSoap")),
              AppProtocolInfo_t(AppProtocolType_t::Soap, 0, 0));
    EXPECT_EQ(ToLegacyAppProtocolInfo(Net::UriScheme("Rtsp")), AppProtocolInfo_t(AppProtocolType_t::Rtsp, 1, 1));
    EXPECT_EQ(ToLegacyAppProtocolInfo(Net::UriScheme()), AppProtocolInfo_t());

    Net::AppEndpoint const web("https://u:p@10.0.0.1:8443/a?b");
    EXPECT_EQ(ToLegacyAppEndpointStr(web), App({AppProtocolType_t::Https, 0, 0}, {"10.0.0.1", 8443}, 0));
    EXPECT_EQ(ToLegacyAppEndpointIp(web).ToUri(), "https://10.0.0.1:8443");
    Net::AppEndpoint const stream("rtsp://10.0.0.1:554/a");
    EXPECT_EQ(ToLegacyAppEndpointIp(stream).ToUri(), "rtsp://10.0.0.1:554"); // the path is lost
    EXPECT_TRUE(ToLegacyAppEndpointIp(Net::AppEndpoint("http://cam:80")).IsUnspecified());
}

TEST(MessageConversions, KeepTheWholeUrlOfAStreamInTheAddress)
{
    for (std::string const rest : {"://cam/a", "://u:p@cam:554/a?b=c:1#d", "://[::1]:554", "://u:p@ss@cam/a b", "://"})
    {
        for (auto const* scheme : {"rtsp", "RTSP"}) {
            auto const app = ToLegacyAppEndpointStr(Net::AppEndpoint(scheme + rest));
            EXPECT_EQ(app.GetAppProtocolInfo(), AppProtocolInfo_t(AppProtocolType_t::Rtsp, 1, 1));
            EXPECT_EQ(app.GetAddr(), "rtsp" + rest);
            EXPECT_EQ(app.GetPort(), 0);
            EXPECT_EQ(app.ToUri(), "rtsp" + rest);
        }
    }
}

} // namespace
} // namespace Legacy::If::Test
