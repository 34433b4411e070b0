#pragma once

#include <Legacy/If/Detail/NetValue.h>
#include <Net/AddrStr.h>

namespace Legacy::If {

class LEGACY_IF_API AddrItem;

/// Schema of an address as text.
class LEGACY_IF_API AddrInfo : public Detail::NetInfo<AddrInfo, AddrItem, IfType_t::Addr, Net::AddrStr>
{
public:
    using NetInfo::NetInfo;

    using NetInfo::DeepCopy;
    [[nodiscard]] AddrInfo* DeepCopy(unsigned int id, std::string const& name,
                                     Permission_t const& permission) const override;
};

/// An address as text. It prints as that text, an unspecified one as nothing.
class LEGACY_IF_API AddrItem : public Detail::NetItem<AddrItem, AddrInfo, IfType_t::Addr, Net::AddrStr>
{
public:
    using NetItem::NetItem;

    using NetItem::DeepCopy;
    [[nodiscard]] AddrItem* DeepCopy(unsigned int id) const override;
};

extern template class LEGACY_IF_BASE_API Detail::NetInfo<AddrInfo, AddrItem, IfType_t::Addr, Net::AddrStr>;
extern template class LEGACY_IF_BASE_API Detail::NetItem<AddrItem, AddrInfo, IfType_t::Addr, Net::AddrStr>;

} // namespace Legacy::If
