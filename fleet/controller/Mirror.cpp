#include "controller/Mirror.h"

#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace Fleet {

using namespace Legacy::If;
using Legacy::IfKit::PathOf;
using Legacy::IfKit::ValueText;

Mirror::Mirror(std::string const& device, std::string const& kind) : m_device(device), m_kind(kind)
{
    if (UpdateFromDelta(BuildModel(kind), true, false) != 0)
        throw std::logic_error("the model of the kind " + kind + " does not fit together");
}

Mirror::Outcome_t Mirror::Apply(std::string const& path, ValueMessage const& message)
{
    auto const parameter = FindInfoItem(path);
    if (!parameter)
        return Outcome_t::Foreign;
    auto const& info = parameter->GetInfo()->GetInfo();
    if (info->GetId() != message.item->GetId() || message.item->Validate(info))
        return Outcome_t::Foreign;
    if (auto const known = m_sequences.find(info->GetId());
        known != m_sequences.end() && message.sequence <= known->second)
        return Outcome_t::Known;

    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    delta->AddItem(new ItemHolder(message.item));
    if (UpdateFromDelta(delta, false, true) != 0)
        return Outcome_t::Foreign;
    m_sequences[info->GetId()] = message.sequence;
    return Outcome_t::Applied;
}

boost::intrusive_ptr<InfoHolder const> Mirror::Find(std::string const& path) const
{
    auto const parameter = FindInfoItem(path);
    return parameter ? parameter->GetInfo() : nullptr;
}

bool Mirror::IsComplete() const
{
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    GetAllInfoItems(parameters);
    return m_sequences.size() == parameters.size();
}

void Mirror::Show(std::ostream& out) const
{
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        auto const& info = *parameter->GetInfo();
        out << "  " << PathOf(*this, *info.GetInfo()) << " = "
            << (parameter->GetItem() ? ValueText(info, *parameter->GetItem()->GetItem()) : "(not known yet)")
            << (IsWritable(*info.GetInfo()) ? "" : " (read-only)") << '\n';
    }
}

void Mirror::ItemChanged_(boost::intrusive_ptr<ItemHolder const> const& former,
                          boost::intrusive_ptr<InfoItemHolder const> const& parameter)
{
    auto const& item = parameter->GetItem()->GetItem();
    // A device that was started again tells everything anew, also what is as it was.
    if (former && former->GetItem()->IsEqualValue(item))
        return;
    auto const& info = *parameter->GetInfo();
    std::cout << m_device << ' ' << PathOf(*this, *info.GetInfo()) << ": ";
    if (former)
        std::cout << ValueText(info, *former->GetItem()) << " -> ";
    std::cout << ValueText(info, *item) << std::endl;
}

} // namespace Fleet
