#include "Findings.h"

#include <Legacy/If/Composite.h>
#include <Orlek/SeverityLevel.h>

#include <utility>

namespace HostNetwork {

namespace {

using namespace Legacy::If;

/// Where the findings of one parameter go.
struct Place_t
{
    Result& all;
    std::vector<Finding_t>& findings;
    unsigned int parameter;
};

void Add(Place_t const& place, std::shared_ptr<ResultElem const> const& elem,
         boost::intrusive_ptr<InfoBase const> const& info, std::string const& path, std::string const& unit)
{
    if (!elem)
        return; // the value is fine
    Result one(place.parameter);
    one.AddResultElem(elem);
    place.all.AddResults(one.GetResultArray(), Orlek::SeverityLevel_t::Warning);
    place.findings.push_back({one, elem->GetItem(), info, path, unit});
}

/// A composite looks at the number and the types of its members, and leaves their values to whoever cares.
void ExamineMembers(Place_t const& place, CompositeItem& item, CompositeInfo const& info, std::string const& path)
{
    if (item.GetSize() != info.GetSize())
        return;
    for (unsigned int i = 0; i < item.GetSize(); ++i) {
        auto const schema = info.GetInfo(i);
        if (schema->IsEqualType(item.GetItem(i)))
            Add(place, item.GetItem(i)->Validate(schema), schema, path + '/' + schema->GetName(), {});
    }
}

} // namespace

std::vector<Finding_t> Examine(Device const& device, Result& all)
{
    std::vector<Finding_t> findings;
    auto parameters = device.GetParameters();
    for (auto const& section : device.GetSections()) {
        for (auto const& parameter : parameters[section.GetInfoItemSectionId()]) {
            if (!parameter->GetItem())
                continue;
            auto const& info = parameter->GetInfo()->GetInfo();
            auto const& item = parameter->GetItem()->GetItem();
            Place_t const place{all, findings, info->GetId()};
            std::string const path = device.PathOf(*info);
            Add(place, item->Validate(info), info, path, parameter->GetInfo()->GetUnit());
            auto* const group = dynamic_cast<CompositeItem*>(item.get());
            auto const* const schema = dynamic_cast<CompositeInfo const*>(info.get());
            if (group && schema)
                ExamineMembers(place, *group, *schema, path);
        }
    }
    return findings;
}

} // namespace HostNetwork
