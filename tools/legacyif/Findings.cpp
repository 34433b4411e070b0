#include "Findings.h"

#include <Legacy/If/Composite.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Explain.h>
#include <Legacy/IfKit/ValueText.h>

namespace Command {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

constexpr char k_notValidated[] = "TypesSystemIllegalValidatationError";
constexpr char k_outside[] = "OutsideBounds";

using InfoPtr = boost::intrusive_ptr<InfoBase const>;

/// What a member is called, as far as there is a schema for it.
std::string NameOfMember(InfoPtr info, MemberPlace place)
{
    for (unsigned int const index : place) {
        auto const* const infos = dynamic_cast<CompositeInfo const*>(info.get());
        info = infos ? infos->GetInfo(index) : nullptr;
    }
    return info ? info->GetName() : "?";
}

std::string OutsideText(std::string const& name, std::string const& language)
{
    return name + (language == "de" ? ": Der Wert liegt außerhalb dessen, was sein Schema zulässt."
                                    : ": the value is outside of what its schema allows.");
}

} // namespace

std::vector<Finding_t> FindingsOf(InfoItemDirectory const& directory, InfoItemHolder const& parameter,
                                  std::string const& language)
{
    std::vector<Finding_t> findings;
    if (!parameter.GetItem())
        return findings;
    InfoPtr const info = parameter.GetInfo()->GetInfo();
    auto& item = *parameter.GetItem()->GetItem();
    ExplainEach(item, info, [&](MemberPlace place, LocalizedString const& message) {
        Finding_t finding{PathOf(directory, *info), info->GetId(), message.GetKey(), message.GetString(language)};
        for (unsigned int const index : place)
            finding.path += '[' + std::to_string(index) + ']';
        if (finding.key == k_notValidated) {
            if (IsWithinBounds(item, *info, place))
                return true;
            finding.key = k_outside;
            finding.message = OutsideText(NameOfMember(info, place), language);
        }
        finding.path = Printable(finding.path);
        finding.message = Printable(finding.message);
        findings.push_back(std::move(finding));
        return true;
    });
    return findings;
}

} // namespace Command
