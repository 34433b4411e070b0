// Takes localized texts with any key and arguments, and what is left for an endpoint, a URI, a URL and a message.

#include "Parts.h"

#include <Legacy/If/MessageConversions.h>
#include <Net/AppEndpoint.h>
#include <Orlek/Localization.h>
#include <Orlek/LogExec.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

using namespace Parts;
using Endpoint = If::AppEndpoint<Net::Endpoint<Net::AddrStr>>;

namespace {

void Take(std::string const& text)
{
    auto const endpoint = Net::Endpoint<Net::AddrStr>::FromString(text);
    Require(endpoint.ToString().find(':') != std::string::npos);
    Require(Net::Endpoint<Net::AddrStr>::FromString(endpoint.ToString()).GetPort() == endpoint.GetPort());
    Net::Endpoint<Net::AddrIp>::FromString(text).ToString();

    auto const app = Endpoint::FromUri(text);
    app.ToString();
    auto const again = Endpoint::FromUri(app.ToUri());
    Require(again.GetAddrGroupPrefix() == 0);

    Net::AppEndpoint const url(text);
    If::ToLegacyAppEndpointIp(url).ToUri();
    If::ToLegacyAppEndpointStr(url).ToUri();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    std::string const language = input.Text();
    If::LocalizedString message(input.Text());
    for (unsigned int i = input.Byte() % k_fewElements; i != 0; --i)
        message.AddArgument(MakeItem(input, 1));
    message.GetString(language);
    Orlek::Localization::SetDefaultLanguage(language);
    Require(message.GetString("") == message.GetString(Orlek::Localization::GetDefaultLanguage()));
    std::ostringstream os;
    os << (Orlek::LogExec(message.GetKey()) % language);
    Require((Orlek::PrintfState(message.GetKey()) % language).ToString() == os.str());

    Take(input.Rest());
    ::Pb::Legacy::If::AppEndpointStr wire;
    if (!wire.ParseFromString(input.Rest()))
        return 0;
    Endpoint endpoint;
    If::LegacyPb2Sys::Convert(wire, endpoint);
    // What was read is written, and read again it is the same.
    ::Pb::Legacy::If::AppEndpointStr written;
    If::Sys2LegacyPb::Convert(endpoint, written);
    Endpoint again;
    If::LegacyPb2Sys::Convert(written, again);
    Require(again.ToString() == endpoint.ToString());
    std::string uri;
    If::Sys2LegacyPb::Convert(endpoint, uri);
    If::LegacyPb2Sys::Convert(uri, again);
    return 0;
}
