// What endpoints cost: to read from text, to print, and as messages.
#include "Rows.h"

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/MessageConversions.h>
#include <Net/Uri.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <boost/url/parse.hpp>
#include <boost/url/url.hpp>
#include <boost/url/url_view.hpp>

namespace {

using namespace Legacy::If;
using namespace Bench;

using Endpoint = Net::Endpoint<Net::AddrStr>;
using AppEndpointStr = AppEndpoint<Endpoint>;

constexpr char k_named[] = "camera-7.example.net:554";
constexpr char k_ipv6[] = "[2001:db8::1:0:7]:8554";
constexpr char k_uri[] = "https://camera-7.example.net:8443";
constexpr char k_stream[] = "rtsp://viewer@camera-7.example.net:554/stream/1?codec=h264";

/// Reads `text` with `read` and lets `test` look at the last result.
template<typename Read, typename Test>
void AddRead(std::string const& subject, std::string const& library, std::string const& text, Read read, Test test)
{
    AddRow("parse", subject, library, [=](benchmark::State& state) {
        auto result = read(text);
        Measure(state, [&] {
            result = read(text);
            benchmark::DoNotOptimize(result);
        });
        Check(state, test(result));
    });
}

template<typename Print>
void AddPrint(std::string const& subject, std::string const& library, std::string const& expected, Print print)
{
    AddRow("print", subject, library, [=](benchmark::State& state) {
        auto own = print; // some print out of an object that they change
        bool right = true;
        Measure(state, [&] {
            std::string const text = own();
            right &= text == expected;
        });
        Check(state, right);
    });
}

/// What Boost.URL alone does to the same text, without a copy of any part.
auto const k_parseAuthority = [](std::string const& text) { return boost::urls::parse_authority(text); };
auto const k_parseUri = [](std::string const& text) { return boost::urls::parse_uri(text); };
auto const k_worked = [](auto const& result) { return result.has_value(); };

void AddParse()
{
    auto const endpoint = [](std::string const& text) { return Endpoint::FromString(text); };
    for (auto const& [subject, text] : {std::pair("endpoint-name", k_named), std::pair("endpoint-ipv6", k_ipv6)}) {
        AddRead(subject, k_ours, text, endpoint, [](Endpoint const& e) { return e.IsFullySpecified(); });
        AddRead(subject, "boost-url", text, k_parseAuthority, k_worked);
    }
    AddRead(
        "app-endpoint", k_ours, k_uri, [](std::string const& text) { return AppEndpointStr::FromUri(text); },
        [](AppEndpointStr const& e) { return e.GetPort() == 8443; });
    AddRead("app-endpoint", "boost-url", k_uri, k_parseUri, k_worked);
    AddRead(
        "uri", k_ours, k_stream, [](std::string const& text) { return Net::Uri(text); },
        [](Net::Uri const& uri) { return uri.IsWellFormed() && uri.GetEndpoint().GetPort() == 554; });
    AddRead("uri", "boost-url", k_stream, k_parseUri, k_worked);
}

/// A URL of one's own, changed and printed: what is left to do for a user of Boost.URL.
boost::urls::url MakeUrl(char const* text) { return boost::urls::url(boost::urls::parse_uri(text).value()); }

void AddPrints()
{
    AddPrint("endpoint-name", k_ours, k_named,
             [endpoint = Endpoint::FromString(k_named)] { return endpoint.ToString(); });
    AddPrint("endpoint-ipv6", k_ours, k_ipv6,
             [endpoint = Endpoint::FromString(k_ipv6)] { return endpoint.ToString(); });
    AddPrint("endpoint-name", "boost-url", k_named,
             [url = MakeUrl("rtsp://camera-7.example.net:554")] { return std::string(url.encoded_authority()); });
    AddPrint("app-endpoint", k_ours, k_uri, [endpoint = AppEndpointStr::FromUri(k_uri)] { return endpoint.ToUri(); });
    AddPrint("app-endpoint", "boost-url", k_uri, [url = MakeUrl("http://camera-7.example.net:8443")]() mutable {
        url.set_scheme("https");
        url.set_port_number(8443);
        return std::string(url.buffer());
    });
}

void AddMessages()
{
    AppEndpointStr const endpoint(AppProtocolInfo_t(AppProtocolType_t::Rtsp, 1, 1), Endpoint::FromString(k_named), 3);
    Pb::Legacy::If::AppEndpointStr message;
    Sys2LegacyPb::Convert(endpoint, message);
    std::string const bytes = message.SerializeAsString();

    AddRow("message", "write", k_ours, [=](benchmark::State& state) {
        Pb::Legacy::If::AppEndpointStr sent;
        std::string written;
        Measure(state, [&] {
            Sys2LegacyPb::Convert(endpoint, sent);
            sent.SerializeToString(&written);
        });
        Check(state, written == bytes);
    });
    // The message is ready made: the limit.
    AddRow("message", "write", "protobuf", [=](benchmark::State& state) {
        std::string written;
        Measure(state, [&] { message.SerializeToString(&written); });
        Check(state, written == bytes);
    });
    AddRow("message", "read", k_ours, [=](benchmark::State& state) {
        Pb::Legacy::If::AppEndpointStr received;
        AppEndpointStr result;
        Measure(state, [&] {
            received.ParseFromString(bytes);
            LegacyPb2Sys::Convert(received, result);
        });
        Check(state, result == endpoint);
    });
    AddRow("message", "read", "protobuf", [=](benchmark::State& state) {
        Pb::Legacy::If::AppEndpointStr received;
        bool right = true;
        Measure(state, [&] { right &= received.ParseFromString(bytes); });
        Check(state, right && received.SerializeAsString() == bytes);
    });
}

struct Rows
{
    Rows()
    {
        AddParse();
        AddPrints();
        AddMessages();
    }
} const k_rows;

} // namespace
