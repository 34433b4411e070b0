#include <Net/Pb2Sys.h>
#include <Net/Sys2Pb.h>
#include <Pb/Net/Endpoint.pb.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using EndpointStr = Net::Endpoint<Net::AddrStr>;

TEST(Messages, CarryAnyEndpointAcrossTheWire)
{
    using namespace std::string_literals;
    for (auto const& address : {""s, "rtsp://cam/a"s, "a\0b"s, "\xff\xfe"s}) {
        EndpointStr const sent(address, address.empty() ? 0 : 0xabcd);
        Pb::Net::EndpointStr message;
        Net::Sys2Pb::Convert(sent, message);
        EXPECT_TRUE(message.has_addr() && message.has_port());
        Pb::Net::EndpointStr received;
        ASSERT_TRUE(received.ParseFromString(message.SerializeAsString()));
        EndpointStr back("old", 1);
        Net::Pb2Sys::Convert(received, back);
        EXPECT_EQ(back, sent);
    }
    EndpointStr endpoint("old", 1);
    Net::Pb2Sys::Convert(Pb::Net::EndpointStr::default_instance(), endpoint);
    EXPECT_EQ(endpoint, EndpointStr());
    Pb::Net::EndpointStr message;
    message.set_port(65536 + 80);
    Net::Pb2Sys::Convert(message, endpoint);
    EXPECT_EQ(endpoint.GetPort(), 0);
}

} // namespace
