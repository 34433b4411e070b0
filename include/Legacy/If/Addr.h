#pragma once

#include <Legacy/If/Detail/NetValue.h>
#include <Net/AddrStr.h>

namespace Legacy::If {

/// A network address as text.
struct LEGACY_IF_API AddrFamily
{
    using Value = Net::AddrStr;
    static constexpr IfType_t k_type = IfType_t::Addr;
};

extern template class Detail::NetInfo<AddrFamily>;
extern template class Detail::NetItem<AddrFamily>;

/// Schema of an address.
using AddrInfo = Detail::NetInfo<AddrFamily>;
/// An address. It prints as its text, an unspecified one as nothing.
using AddrItem = Detail::NetItem<AddrFamily>;

} // namespace Legacy::If
