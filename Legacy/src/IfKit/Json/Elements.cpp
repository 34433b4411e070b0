#include "Elements.h"

#include "../NameTable.h"

#include <algorithm>

namespace Legacy::IfKit::Detail {

using If::AppProtocolType_t;

namespace {

constexpr Named<AppProtocolType_t> k_protocols[] = {
    {AppProtocolType_t::Unknown, "Unknown"}, {AppProtocolType_t::Soap, "Soap"},
    {AppProtocolType_t::SoapSsl, "SoapSsl"}, {AppProtocolType_t::Http, "Http"},
    {AppProtocolType_t::Https, "Https"},     {AppProtocolType_t::TcpRaw, "TcpRaw"},
    {AppProtocolType_t::HttpXml, "HttpXml"}, {AppProtocolType_t::Modbus, "Modbus"},
    {AppProtocolType_t::Ntp, "Ntp"},         {AppProtocolType_t::Rtsp, "Rtsp"},
};

template<typename Number>
Number Taken(Node const& node)
{
    Number number{};
    Take(node, number);
    return number;
}

AppProtocolType_t TakenProtocol(Node const& node)
{
    if (!node.Value().is_string())
        return static_cast<AppProtocolType_t>(Taken<int>(node));
    auto const type = ValueIn(k_protocols, node.Text());
    if (!type)
        node.Refuse("there is no protocol of this name");
    return *type;
}

void PutEndpoint(NetEndpoint const& endpoint, json::object& object)
{
    object["address"] = Put(endpoint.GetAddr());
    object["port"] = endpoint.GetPort();
}

NetEndpoint TakenEndpoint(Node const& node)
{
    return NetEndpoint(Taken<Net::AddrStr>(node["address"]), Taken<std::uint16_t>(node["port"]));
}

} // namespace

void ExpectKeys(Node const& node, std::initializer_list<std::string_view> keys)
{
    for (auto const& member : node.Object()) {
        if (std::find(keys.begin(), keys.end(), View(member.key())) == keys.end())
            node.Refuse("'" + std::string(View(member.key())) + "' is not known here");
    }
}

json::value Put(std::pair<std::string, std::string> const& texts)
{
    return json::object{{"first", Put(texts.first)}, {"second", Put(texts.second)}};
}

void Take(Node const& node, std::pair<std::string, std::string>& texts)
{
    ExpectKeys(node, {"first", "second"});
    Take(node["first"], texts.first);
    Take(node["second"], texts.second);
}

json::value Put(Orlek::Colour_t const& colour)
{
    return json::object{{"a", Put(colour.a)}, {"r", Put(colour.r)}, {"g", Put(colour.g)}, {"b", Put(colour.b)}};
}

void Take(Node const& node, Orlek::Colour_t& colour)
{
    ExpectKeys(node, {"a", "r", "g", "b"});
    Take(node["a"], colour.a);
    Take(node["r"], colour.r);
    Take(node["g"], colour.g);
    Take(node["b"], colour.b);
}

json::value Put(If::Orientation_t const& orientation)
{
    return json::object{{"bearing", Put(orientation.bearing)},
                        {"inclination", Put(orientation.inclination)},
                        {"roll", Put(orientation.roll)}};
}

void Take(Node const& node, If::Orientation_t& orientation)
{
    ExpectKeys(node, {"bearing", "inclination", "roll"});
    Take(node["bearing"], orientation.bearing);
    Take(node["inclination"], orientation.inclination);
    Take(node["roll"], orientation.roll);
}

json::value Put(Net::AddrStr const& addr) { return Put(addr.ToString()); }

void Take(Node const& node, Net::AddrStr& addr) { addr = Net::AddrStr(Taken<std::string>(node)); }

json::value Put(NetEndpoint const& endpoint)
{
    json::object object;
    PutEndpoint(endpoint, object);
    return object;
}

void Take(Node const& node, NetEndpoint& endpoint)
{
    ExpectKeys(node, {"address", "port"});
    endpoint = TakenEndpoint(node);
}

json::value Put(If::AppEndpoint<NetEndpoint> const& endpoint)
{
    auto const& protocol = endpoint.GetAppProtocolInfo();
    auto const name = NameIn(k_protocols, protocol.type);
    json::object object{{"protocol", name.empty() ? json::value(static_cast<int>(protocol.type)) : View(name)},
                        {"version", protocol.version},
                        {"compatVersion", protocol.compatVersion}};
    PutEndpoint(endpoint.GetEndpoint(), object);
    object["group"] = endpoint.GetAddrGroupPrefix();
    return object;
}

void Take(Node const& node, If::AppEndpoint<NetEndpoint>& endpoint)
{
    ExpectKeys(node, {"protocol", "version", "compatVersion", "address", "port", "group"});
    If::AppProtocolInfo_t const protocol(TakenProtocol(node["protocol"]), Taken<std::uint16_t>(node["version"]),
                                         Taken<std::uint16_t>(node["compatVersion"]));
    endpoint = {protocol, TakenEndpoint(node), Taken<unsigned char>(node["group"])};
}

} // namespace Legacy::IfKit::Detail
