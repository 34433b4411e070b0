#include <Net/Pb2Sys.h>
#include <Net/Sys2Pb.h>
#include <Pb/Net/Endpoint.pb.h>

#include <cstdint>
#include <limits>

namespace Net {

void Sys2Pb::Convert(Endpoint<AddrStr> const& endpoint, ::Pb::Net::EndpointStr& message)
{
    message.Clear();
    message.set_addr(endpoint.GetAddr().ToString());
    message.set_port(endpoint.GetPort());
}

void Pb2Sys::Convert(::Pb::Net::EndpointStr const& message, Endpoint<AddrStr>& endpoint)
{
    bool const isPort = message.port() <= std::numeric_limits<std::uint16_t>::max();
    endpoint = Endpoint<AddrStr>(message.addr(), isPort ? static_cast<std::uint16_t>(message.port()) : 0);
}

} // namespace Net
