#include "controller/Text.h"

#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/ValueText.h>

#include <boost/json/serialize.hpp>

#include <ostream>
#include <sstream>
#include <vector>

namespace Fleet {

using namespace Legacy::If;
using Legacy::IfKit::Printable;

JsonLine& JsonLine::Add(std::string_view key, std::string_view text)
{
    return AddRaw(key, boost::json::serialize(Printable(text)));
}

JsonLine& JsonLine::AddRaw(std::string_view key, std::string_view json)
{
    m_members.append(m_members.empty() ? "\"" : ",\"").append(key).append("\":").append(json);
    return *this;
}

std::string_view StateOf(Controller::Device const& device) { return device.IsOnline() ? "online" : "offline"; }

std::string JsonOf(ItemBase const& item)
{
    std::ostringstream text;
    return Legacy::IfKit::WriteBareJson(text, item) ? "null" : text.str();
}

std::string TextOf(InfoItemHolder const& parameter, ItemPtr const& item)
{
    return Legacy::IfKit::ValueText(*parameter.GetInfo(), *item);
}

std::string PathOf(Controller::Device const& device, InfoItemHolder const& parameter)
{
    return Printable(Legacy::IfKit::PathOf(*device.Directory(), *parameter.GetInfo()->GetInfo()));
}

std::string ChangeText(Controller::Change_t const& change)
{
    auto text = change.device.Name() + ' ' + PathOf(change.device, change.parameter) + ": ";
    if (change.former)
        text += TextOf(change.parameter, change.former) + " -> ";
    return text + TextOf(change.parameter, change.parameter.GetItem()->GetItem());
}

std::string ChangeJson(Controller::Change_t const& change)
{
    auto const& item = change.parameter.GetItem()->GetItem();
    JsonLine line;
    line.Add("device", change.device.Name()).Add("path", PathOf(change.device, change.parameter));
    line.AddRaw("value", JsonOf(*item)).Add("text", TextOf(change.parameter, item));
    if (change.former)
        line.AddRaw("former", JsonOf(*change.former));
    return line.ToString();
}

void WriteParameters(std::ostream& out, Controller::Device const& device)
{
    if (!device.Directory())
        return;
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    device.Directory()->GetAllInfoItems(parameters);
    for (auto const& parameter : parameters)
        out << "  " << PathOf(device, *parameter) << " = "
            << (parameter->GetItem() ? TextOf(*parameter, parameter->GetItem()->GetItem()) : "(not known yet)")
            << (IsWritable(*parameter->GetInfo()->GetInfo()) ? "" : " (read-only)") << '\n';
}

std::string WriteDocument(std::ostream& out, Controller::Device const& device)
{
    using namespace Legacy::IfKit;
    if (!device.Directory())
        return "the device has not told its schemas yet";
    auto const fault = WriteJson(out, *device.Directory(), JsonContent_t::Everything, JsonLayout_t::Indented);
    return fault ? fault->ToString() : std::string();
}

} // namespace Fleet
