#include <Net/Pb2Sys.h>
#include <Net/Sys2Pb.h>
#include <Pb/Net/Endpoint.pb.h>

#include <gtest/gtest.h>

namespace {

using EndpointStr = Net::Endpoint<Net::AddrStr>;

TEST(Messages, CarryAnyEndpointAcrossTheWire)
{
    using namespace std::string_literals;
    Pb::Net::EndpointStr message;
    EndpointStr back("old", 1);
    for (auto const& sent : {EndpointStr(), EndpointStr("rtsp://cam/a", 0xabcd), EndpointStr("a\0\xff\xfe"s, 1)}) {
        Net::Sys2Pb::Convert(sent, message);
        EXPECT_TRUE(message.has_addr() && message.has_port());
        ASSERT_TRUE(message.ParseFromString(message.SerializeAsString()));
        Net::Pb2Sys::Convert(message, back);
        EXPECT_EQ(back, sent);
    }
    message.Clear();
    message.set_port(65536 + 80);
    Net::Pb2Sys::Convert(message, back);
    EXPECT_EQ(back, EndpointStr());
}

} // namespace
