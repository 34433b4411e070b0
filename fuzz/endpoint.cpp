// Takes a text for an endpoint, an application endpoint's URI and a URL, none of which may throw or fail to print.

#include "Input.h"

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/MessageConversions.h>
#include <Net/AddrIp.h>
#include <Net/AppEndpoint.h>

using namespace Legacy::If;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const text = Input(data, size).Rest();

    auto const endpoint = Net::Endpoint<Net::AddrStr>::FromString(text);
    Require(endpoint.ToString().find(':') != std::string::npos);
    Require(Net::Endpoint<Net::AddrStr>::FromString(endpoint.ToString()).GetPort() == endpoint.GetPort());
    Net::Endpoint<Net::AddrIp>::FromString(text).ToString();

    auto const app = AppEndpoint<Net::Endpoint<Net::AddrStr>>::FromUri(text);
    app.ToString();
    auto const again = AppEndpoint<Net::Endpoint<Net::AddrStr>>::FromUri(app.ToUri());
    Require(again.GetAddrGroupPrefix() == 0);

    Net::AppEndpoint const url(text);
    ToLegacyAppEndpointIp(url).ToUri();
    ToLegacyAppEndpointStr(url).ToUri();
    return 0;
}
