#include "Model.h"

#include "Profile.h"
#include "ValueText.h"

#include <Legacy/If/ReturnCodes.h>
#include <Legacy/IfKit/ValueText.h>

#include <algorithm>

namespace HostNetwork {

namespace {

using namespace Legacy::If;
using Legacy::IfKit::Printable;

using ItemHolderPtr = boost::intrusive_ptr<ItemHolder const>;

/// A declared parameter with what the host has to say about it.
struct Answer_t
{
    Parameter_t const* parameter;
    std::vector<std::string> texts;
};

std::vector<Answer_t> Ask(HostReader const& host, SectionKind_t const& kind, Place_t const& place)
{
    std::vector<Answer_t> answers;
    for (auto const& parameter : kind.parameters)
        answers.push_back({&parameter, parameter.source(host, place)});
    return answers;
}

/// Gives a parameter the value that the text stands for, if it stands for one.
void SetText(Device& device, InfoBase const& info, boost::intrusive_ptr<ItemBase> const& item, std::string const& text,
             Notes_t& notes)
{
    int const code = item ? device.SetItem(ItemHolderPtr(new ItemHolder(item))) : IfErrInvalidArgument;
    if (code != 0)
        notes.push_back(ShownPath(device, info) + ": skipped, '" + Printable(text) + "' is no value of it");
}

void AddParameters(Device& device, SectionId const& section, std::vector<Answer_t> const& answers, Notes_t& notes)
{
    std::string const path = Printable(section.GetSectionName());
    std::string missing;
    for (auto const& [parameter, texts] : answers) {
        bool const isPlain = parameter->repetitions == 1;
        std::size_t const count = std::min<std::size_t>(texts.size(), parameter->repetitions);
        for (unsigned int i = 0; i < std::max<std::size_t>(count, isPlain ? 1 : 0); ++i) {
            auto const info = MakeInfo(section.GetInfoItemSectionId(), *parameter, i);
            if (int const code = device.AddInfo(info))
                notes.push_back(path + '/' + parameter->name + ": cannot be entered, code " + std::to_string(code));
            else if (i < count)
                SetText(device, *info->GetInfo(), ReadValue(info->GetInfo(), texts[i]), texts[i], notes);
            else
                missing += (missing.empty() ? "" : ", ") + parameter->name;
        }
        if (count < texts.size())
            notes.push_back(path + '/' + parameter->name + ": " + std::to_string(texts.size() - count) + " of " +
                            std::to_string(texts.size()) + " are left out, there is room for " + std::to_string(count));
    }
    if (!missing.empty())
        notes.push_back(path + ": the host has no " + missing);
}

void DescribeSection(HostReader const& host, SectionKind_t const& kind, std::string const& interface, Device& device,
                     Notes_t& notes)
{
    std::string const path = WithInterface(kind.path, interface);
    auto const answers = Ask(host, kind, {WithInterface(kind.folder, interface), interface});
    if (std::all_of(answers.begin(), answers.end(), [](auto const& answer) { return answer.texts.empty(); })) {
        notes.push_back(Printable(path) + ": left out, the host has nothing of it");
        return;
    }
    SectionId section;
    if (int const code = device.AddSection(path, section)) {
        notes.push_back(Printable(path) + ": left out, there can be no such section, code " + std::to_string(code));
        return;
    }
    AddParameters(device, section, answers, notes);
}

/// The interfaces as far as there is room for them: a section holds a limited number of sections below it.
std::vector<std::string> InterfacesWithRoom(HostReader const& host, Notes_t& notes)
{
    std::vector<std::string> names = host.Interfaces();
    std::size_t const room = InfoItemSectionId::MaxSubsectionPerSubsection() + 1;
    if (names.empty())
        notes.push_back("interface: the host has no interfaces");
    if (names.size() > room) {
        notes.push_back("interface: " + std::to_string(names.size() - room) + " of " + std::to_string(names.size()) +
                        " interfaces are left out, from " + Printable(names[room]) + " on: a section has room for " +
                        std::to_string(room));
        names.resize(room);
    }
    return names;
}

} // namespace

void DescribeHost(HostReader const& host, Device& device, Notes_t& notes)
{
    auto const interfaces = InterfacesWithRoom(host, notes);
    for (auto const& kind : SectionKinds()) {
        if (kind.parameters.empty())
            continue; // comes into being with the first section below it
        if (WithInterface(kind.path, "") == kind.path) {
            DescribeSection(host, kind, "", device, notes);
            continue;
        }
        for (auto const& interface : interfaces)
            DescribeSection(host, kind, interface, device, notes);
    }
}

} // namespace HostNetwork
