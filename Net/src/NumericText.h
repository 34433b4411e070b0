#pragma once

#include <boost/asio/ip/address.hpp>

#include <cstdint>
#include <optional>
#include <string_view>

namespace Net::Detail {

/// The address that the whole text spells, IPv6 with or without a zone. Nothing for anything else: a text with a zero
/// byte is refused too, which Asio would read only up to there.
std::optional<boost::asio::ip::address> ParseIp(std::string_view text);

/// Whether a text that holds a colon spells an address, which is one of IPv6 then, perhaps with a zone. The zone is not
/// looked up; it may hold any byte but a colon.
bool IsIpv6Text(std::string_view text);

/// The port that the whole text spells: one to five decimal digits up to 65535, 0 for no text at all. Nothing for
/// anything else.
std::optional<std::uint16_t> ParsePort(std::string_view text);

/// Neither `0.0.0.0` nor `::`, nor the former mapped into IPv6.
bool IsSpecified(boost::asio::ip::address const& address);

/// 127.0.0.0/8, `::1`, or the former mapped into IPv6.
bool IsLoopback(boost::asio::ip::address const& address);

} // namespace Net::Detail
