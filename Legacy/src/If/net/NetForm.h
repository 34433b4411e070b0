#pragma once

#include "record/SerialRecord.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Endpoint.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace Legacy::If::Detail {

/// What sets the families of addresses and endpoints apart: their name, their texts, and what a record holds besides
/// the text.
template<typename Held>
struct NetForm;

/// The families whose record is a text and nothing else: the one that the value prints.
template<class Value>
struct PlainNetForm
{
    static constexpr std::size_t k_prefixSize = 0;

    static std::string DisplayText(Value const& value) { return value.ToString(); }
    static std::string RecordText(ItemBase const& item) { return item.GetValAsString(); }
    static void PutPrefix(PayloadWriter&, Value const&) noexcept {}
    static constexpr bool CanRead(InfoBase const*) noexcept { return true; }
};

template<>
struct NetForm<Net::AddrStr> : PlainNetForm<Net::AddrStr>
{
    static constexpr char const* k_infoName = "AddrInfo";

    static Net::AddrStr Get(PayloadReader& payload) { return std::string(payload.GetText()); }
    static Net::AddrStr FromWord(std::string const& word, InfoBase const*) { return word; }
};

template<>
struct NetForm<Net::Endpoint<Net::AddrStr>> : PlainNetForm<Net::Endpoint<Net::AddrStr>>
{
    using Value = Net::Endpoint<Net::AddrStr>;
    static constexpr char const* k_infoName = "EndpointInfo";

    static Value Get(PayloadReader& payload) { return Value::FromString(std::string(payload.GetText())); }
    static Value FromWord(std::string const& word, InfoBase const*) { return Value::FromString(word); }
};

/// Lists of application endpoints are records of this form, too, one behind the other.
template<>
struct NetForm<AppEndpoint<Net::Endpoint<Net::AddrStr>>>
{
    using Endpoint = Net::Endpoint<Net::AddrStr>;
    using Value = AppEndpoint<Endpoint>;
    static constexpr char const* k_infoName = "AppEndpointInfo";
    static constexpr std::size_t k_prefixSize = 6;

    static std::string DisplayText(Value const& value) { return value.ToString(); }
    static std::string RecordText(Value const& value) { return value.GetEndpoint().ToString(); }
    static std::string RecordText(AppEndpointItem const& item) { return RecordText(item.Val()); }

    static void PutPrefix(PayloadWriter& payload, Value const& value) noexcept
    {
        payload.Put(static_cast<unsigned char>(value.GetAppProtocolType()));
        payload.Put(value.GetAddrGroupPrefix());
        payload.Put(std::uint16_t{value.GetAppProtocolVersion()});
        payload.Put(std::uint16_t{value.GetAppProtocolCompatVersion()});
    }

    static Value Get(PayloadReader& payload)
    {
        AppProtocolInfo_t info;
        info.type = static_cast<AppProtocolType_t>(payload.Get<unsigned char>());
        auto const addrGroupPrefix = payload.Get<unsigned char>();
        info.version = payload.Get<std::uint16_t>();
        info.compatVersion = payload.Get<std::uint16_t>();
        return Value(info, Endpoint::FromString(std::string(payload.GetText())), addrGroupPrefix);
    }

    /// A text names no protocol: that is the schema's matter.
    static bool CanRead(InfoBase const* info) { return ExactCast<AppEndpointInfo>(info) != nullptr; }

    static Value FromWord(std::string const& word, InfoBase const* info)
    {
        auto const& protocolInfo = ExactCast<AppEndpointInfo>(info)->GetDefault().GetAppProtocolInfo();
        return Value(protocolInfo, Endpoint::FromString(word), 0);
    }
};

/// Payload bytes of a value whose record text has this length: prefix, text and zero byte.
template<typename Held>
constexpr std::uint64_t NetRecordSize(std::size_t textLength) noexcept
{
    return std::uint64_t{NetForm<Held>::k_prefixSize} + textLength + 1;
}

} // namespace Legacy::If::Detail
