#include "Findings.h"

#include <Legacy/If/Composite.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Explain.h>
#include <Orlek/SeverityLevel.h>

namespace HostNetwork {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

/// The value or the member of a value that a message is about.
Finding_t MakeFinding(ParameterPtr const& parameter, std::string path, MemberPlace place,
                      LocalizedString const& message)
{
    auto item = parameter->GetItem()->GetItem();
    boost::intrusive_ptr<InfoBase const> info = parameter->GetInfo()->GetInfo();
    for (unsigned int const index : place) {
        item = dynamic_cast<CompositeItem&>(*item).GetItem(index);
        info = dynamic_cast<CompositeInfo const&>(*info).GetInfo(index);
        path += '/' + info->GetName();
    }
    Result one(parameter->GetInfo()->GetInfo()->GetId());
    auto const elem = item->Validate(info);
    one.AddResultElem(elem);
    return {one, message, elem->GetItem(), info, path, place.empty() ? parameter->GetInfo()->GetUnit() : ""};
}

} // namespace

std::vector<Finding_t> Examine(Device const& device, Result& all)
{
    std::vector<Finding_t> findings;
    auto parameters = ParametersBySection(device);
    for (auto const& section : AllSections(device)) {
        for (auto const& parameter : parameters[section.GetInfoItemSectionId()]) {
            if (!parameter->GetItem())
                continue;
            auto const& info = parameter->GetInfo()->GetInfo();
            ExplainEach(*parameter->GetItem()->GetItem(), info, [&](MemberPlace place, LocalizedString const& message) {
                findings.push_back(MakeFinding(parameter, ShownPath(device, *info), place, message));
                all.AddResults(findings.back().result.GetResultArray(), Orlek::SeverityLevel_t::Warning);
                return true;
            });
        }
    }
    return findings;
}

} // namespace HostNetwork
