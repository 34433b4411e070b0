// Takes messages, endpoints and localized texts apart: conversions both ways, and texts with any key and arguments.

#include "Parts.h"

#include <Legacy/If/MessageConversions.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

using namespace Parts;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    std::string const language = input.Text();
    If::LocalizedString message(input.Text());
    for (unsigned int i = input.Byte() % k_fewElements; i != 0; --i)
        message.AddArgument(MakeItem(input, 1));
    message.GetString(language);

    ::Pb::Legacy::If::AppEndpointStr wire;
    if (!wire.ParseFromString(input.Rest()))
        return 0;
    If::AppEndpoint<Net::Endpoint<Net::AddrStr>> endpoint;
    If::LegacyPb2Sys::Convert(wire, endpoint);
    // What was read is written, and read again it is the same.
    ::Pb::Legacy::If::AppEndpointStr written;
    If::Sys2LegacyPb::Convert(endpoint, written);
    If::AppEndpoint<Net::Endpoint<Net::AddrStr>> again;
    If::LegacyPb2Sys::Convert(written, again);
    Require(again.ToString() == endpoint.ToString());
    std::string uri;
    If::Sys2LegacyPb::Convert(endpoint, uri);
    If::LegacyPb2Sys::Convert(uri, again);
    return 0;
}
