#include "NumericText.h"

#include <Net/AddrIp.h>

#include <algorithm>
#include <string_view>

namespace Net {

namespace ip = boost::asio::ip;

AddrIp::AddrIp(ip::address const& address) : m_isV6(address.is_v6())
{
    if (m_isV6) {
        m_bytes = address.to_v6().to_bytes();
        m_zone = static_cast<std::uint32_t>(address.to_v6().scope_id());
    } else {
        std::ranges::copy(address.to_v4().to_bytes(), m_bytes.begin());
    }
}

AddrIp::AddrIp(std::string const& text)
{
    if (auto const address = Detail::ParseIp(text))
        *this = AddrIp(*address);
}

AddrIp::AddrIp(char const* text) : AddrIp(std::string(text ? text : "")) {}

ip::address AddrIp::GetAddress() const
{
    if (m_isV6)
        return ip::address_v6(m_bytes, m_zone);
    ip::address_v4::bytes_type bytes;
    std::copy_n(m_bytes.begin(), bytes.size(), bytes.begin());
    return ip::address_v4(bytes);
}

std::string AddrIp::ToString() const { return GetAddress().to_string(); }

bool AddrIp::IsSpecified() const { return Detail::IsSpecified(GetAddress()); }

bool AddrIp::IsLocalhost() const { return Detail::IsLoopback(GetAddress()); }

} // namespace Net
