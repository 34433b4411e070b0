#include "Device.h"

#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>

#include <sstream>

namespace HostNetwork {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

std::string Shown(InfoHolder const& holder, InfoHolder const&)
{
    std::ostringstream text;
    text << *holder.GetInfo();
    return Printable(text.str());
}

std::string Shown(ItemHolder const& holder, InfoHolder const& info) { return ValueText(info, *holder.GetItem()); }

template<typename Holder>
std::string Step(boost::intrusive_ptr<Holder const> const& former, boost::intrusive_ptr<Holder const> const& latter,
                 InfoHolder const& info)
{
    return (former ? Shown(*former, info) + "  ->  " : std::string()) + Shown(*latter, info);
}

} // namespace

std::map<InfoItemSectionId, std::vector<ParameterPtr>> ParametersBySection(Device const& device)
{
    std::map<InfoItemSectionId, std::vector<ParameterPtr>> parameters;
    std::vector<ParameterPtr> all;
    device.GetAllInfoItems(all);
    for (auto const& parameter : all) {
        InfoItemSectionId const id(parameter->GetInfo()->GetInfo()->GetId());
        parameters[id.GetSectionId(id.Depth())].push_back(parameter);
    }
    return parameters;
}

std::string ShownPath(Device const& device, InfoBase const& info) { return Printable(PathOf(device, info)); }

std::string ShownChange(Device const& device, Change_t const& change)
{
    InfoHolder const& info = *change.parameter->GetInfo();
    return (change.IsSchema() ? "schema  " : "value   ") + ShownPath(device, *info.GetInfo()) + ": " +
           (change.IsSchema() ? Step(change.formerInfo, change.info, info)
                              : Step(change.formerItem, change.item, info));
}

} // namespace HostNetwork
