#include "Findings.h"

#include <Legacy/If/Composite.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Explain.h>
#include <Legacy/IfKit/ValueText.h>

#include <utility>

namespace Command {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

constexpr char k_notValidated[] = "TypesSystemIllegalValidatationError";
constexpr char k_outside[] = "OutsideBounds";

using InfoPtr = boost::intrusive_ptr<InfoBase const>;

/// A member, and its schema if it has one.
std::pair<ItemBase const*, InfoPtr> MemberAt(ItemBase const& item, InfoPtr const& info, MemberPlace place)
{
    std::pair<ItemBase const*, InfoPtr> member{&item, info};
    for (unsigned int const index : place) {
        auto const* const items = dynamic_cast<CompositeItem const*>(member.first);
        auto const* const infos = dynamic_cast<CompositeInfo const*>(member.second.get());
        member = {items ? items->GetItem(index).get() : nullptr, infos ? infos->GetInfo(index) : nullptr};
        if (!member.first || !member.second)
            break;
    }
    return member;
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
            auto const [member, schema] = MemberAt(item, info, place);
            if (member && schema && IsWithinBounds(*member, *schema))
                return true;
            finding.key = k_outside;
            finding.message = OutsideText(schema ? schema->GetName() : "?", language);
        }
        finding.path = Printable(finding.path);
        finding.message = Printable(finding.message);
        findings.push_back(std::move(finding));
        return true;
    });
    return findings;
}

} // namespace Command
