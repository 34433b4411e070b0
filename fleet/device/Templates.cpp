#include "device/Templates.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Bool.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/SectionMap.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <sstream>
#include <utility>

namespace Fleet {

using namespace Legacy::If;

namespace {

constexpr Permission_t k_readOnly{0x0001};
constexpr Permission_t k_writable{0x0003};

/// A schema with the unit of its values, which the schema itself has no place for.
class ParameterHolder : public InfoHolder
{
public:
    ParameterHolder(InfoPtr const& info, std::string unit) : InfoHolder(info), m_unit(std::move(unit)) {}

    std::string GetUnit() const override { return m_unit; }
    ParameterHolder* DeepCopy() const override { return new ParameterHolder(GetInfo()->DeepCopy(), m_unit); }

private:
    std::string m_unit;
};

/// Collects sections and schemas. Ids are handed out in the order of the calls, so a newer template only adds at the
/// ends.
class TemplateBuilder
{
public:
    /// The section that the next parameters stand in.
    TemplateBuilder& Section(std::string const& path)
    {
        m_map.AddSection(path, m_section);
        m_delta->AddSection(m_section);
        m_next = 0;
        return *this;
    }

    TemplateBuilder& Text(std::string const& name, Permission_t permission, unsigned int maxLength)
    {
        auto const info = New_<StringInfo>(name, permission);
        info->SetMaxLength(maxLength);
        return Add_(info);
    }

    TemplateBuilder& Texts(std::string const& name, Permission_t permission, unsigned int maxSize)
    {
        auto const info = New_<StringArrayInfo>(name, permission);
        info->SetMaxSize(maxSize);
        return Add_(info);
    }

    TemplateBuilder& Switch(std::string const& name, Permission_t permission, bool defaultValue)
    {
        auto const info = New_<BoolInfo>(name, permission);
        info->SetDefault(defaultValue);
        return Add_(info);
    }

    template<typename Traits>
    TemplateBuilder& Number(std::string const& name, Permission_t permission, typename Traits::T min,
                            typename Traits::T max, typename Traits::T defaultValue, std::string const& unit = {})
    {
        auto const info = New_<NumericInfo<Traits>>(name, permission);
        info->SetMin(min);
        info->SetMax(max);
        info->SetDefault(defaultValue);
        return Add_(info, unit);
    }

    TemplateBuilder& Choice(std::string const& name, Permission_t permission, std::vector<std::string> const& names)
    {
        auto const info = New_<EnumInfo>(name, permission, false);
        for (auto const& element : names)
            info->AddElem(ElemType<int>{element, static_cast<int>(info->GetSize()), false});
        return Add_(info);
    }

    /// An address, an endpoint or a service.
    template<typename Info>
    TemplateBuilder& Place(std::string const& name, Permission_t permission, typename Info::Value const& defaultValue)
    {
        auto const info = New_<Info>(name, permission);
        info->SetDefault(defaultValue);
        return Add_(info);
    }

    std::shared_ptr<InfoItemDirectoryDelta> Take() { return std::move(m_delta); }

private:
    template<typename Info, typename... Rest>
    boost::intrusive_ptr<Info> New_(std::string const& name, Permission_t permission, Rest... rest)
    {
        unsigned int const id = m_section.GetInfoItemSectionId().CreateInfoItemId(m_next++);
        return new Info(id, name, permission, rest...);
    }

    TemplateBuilder& Add_(InfoPtr const& info, std::string const& unit = {})
    {
        m_delta->AddInfo(new ParameterHolder(info, unit));
        return *this;
    }

    SectionMap m_map;
    SectionId m_section;
    unsigned int m_next = 0;
    std::shared_ptr<InfoItemDirectoryDelta> m_delta = std::make_shared<InfoItemDirectoryDelta>();
};

using Endpoint = Net::Endpoint<Net::AddrStr>;
using Service = AppEndpoint<Endpoint>;

Service ServiceAt(AppProtocolType_t protocol, std::string const& host, unsigned short port)
{
    return Service({protocol, 1, 1}, Endpoint(host, port), 0);
}

/// What every device has. Temperatures are whole tenths, since a record keeps no fractions of a floating-point number.
void AddCommon(TemplateBuilder& device)
{
    device.Section("system")
        .Text("hostname", k_writable, 32)
        .Number<U32Traits>("uptime", k_readOnly, 0, 0xffffffff, 0, "s")
        .Number<S16Traits>("temperature", k_readOnly, -400, 1250, 200, "1/10 °C")
        .Switch("status-led", k_writable, true);
    device.Section("network")
        .Place<AddrInfo>("gateway", k_writable, "192.0.2.1")
        .Place<EndpointInfo>("management", k_writable, Endpoint("192.0.2.10", 8443))
        .Texts("name-servers", k_writable, 3);
    device.Section("network/web")
        .Number<U16Traits>("port", k_writable, 1, 49151, 80)
        .Switch("secure", k_writable, false);
}

void AddCamera(TemplateBuilder& device)
{
    device.Section("video")
        .Place<AppEndpointInfo>("stream", k_writable, ServiceAt(AppProtocolType_t::Rtsp, "192.0.2.10", 554))
        .Number<U16Traits>("frame-rate", k_writable, 1, 60, 25, "Hz")
        .Choice("state", k_writable, {"off", "standby", "streaming"});
}

void AddClimate(TemplateBuilder& device)
{
    device.Section("climate")
        .Place<AppEndpointInfo>("meter", k_writable, ServiceAt(AppProtocolType_t::Modbus, "192.0.2.20", 502))
        .Number<S16Traits>("target", k_writable, 50, 300, 210, "1/10 °C")
        .Choice("mode", k_writable, {"off", "heat", "cool"});
}

/// What load is made with: fifty parameters of the families that devices have most, one of which tells when it changed.
void AddLoad(TemplateBuilder& device)
{
    constexpr int k_groups = 7;
    device.Section("load").Number<U64Traits>("stamp", k_readOnly, 0, ~0ULL, 0, "ns");
    for (int group = 0; group < k_groups; ++group) {
        auto const port = static_cast<unsigned short>(8000 + group);
        device.Section("port-" + std::to_string(group))
            .Text("label", k_writable, 32)
            .Number<U16Traits>("mtu", k_writable, 68, 9216, 1500, "bytes")
            .Number<S16Traits>("temperature", k_readOnly, -400, 1250, 200, "1/10 °C")
            .Switch("enabled", k_writable, true)
            .Choice("mode", k_writable, {"auto", "fixed", "off"})
            .Place<AddrInfo>("address", k_writable, "192.0.2.1")
            .Place<EndpointInfo>("management", k_writable, Endpoint("192.0.2.10", port));
    }
}

struct Template_t
{
    char const* name;
    void (*add)(TemplateBuilder& device);
    bool hasCommon;
};

constexpr Template_t k_templates[] = {
    {"camera", AddCamera, true}, {"climate", AddClimate, true}, {"load", AddLoad, false}};

} // namespace

std::vector<std::string> TemplateNames()
{
    std::vector<std::string> names;
    for (auto const& known : k_templates)
        names.emplace_back(known.name);
    return names;
}

SchemasPtr BuildTemplate(std::string const& name)
{
    for (auto const& known : k_templates) {
        if (known.name != name)
            continue;
        TemplateBuilder device;
        if (known.hasCommon)
            AddCommon(device);
        known.add(device);
        auto const schemas = std::make_shared<Schemas_t>();
        schemas->delta = device.Take();
        for (auto const& [id, info] : schemas->delta->GetInfoHolderPtrMap_addMod())
            schemas->ids.push_back(id);
        return schemas;
    }
    return {};
}

} // namespace Fleet
