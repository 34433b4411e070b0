#include "web/DeviceJson.h"

#include "common/Schemas.h"
#include "controller/Text.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringSparse.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/ValueText.h>
#include <Legacy/IfKit/Visit.h>
#include <Orlek/Localization.h>

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/rfc7230.hpp>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <vector>

namespace Fleet {

using namespace Legacy::If;
using Legacy::IfKit::Printable;
using Legacy::IfKit::ValueText;
using Legacy::IfKit::Visit;

namespace {

char const* Json(bool value) { return value ? "true" : "false"; }

/// Puts numbers in quotes, and a '?' for each character that the document has to escape lest it do harm.
std::string ShownSchema(std::string const& document)
{
    constexpr std::string_view k_number = "+-.0123456789Ee";
    constexpr std::size_t k_unicode = 6; // \u and four digits
    std::string shown;
    shown.reserve(document.size() + document.size() / 8);
    bool isText = false;
    for (std::size_t i = 0; i < document.size(); ++i) {
        char const c = document[i];
        if (isText && c == '\\') {
            char const kind = document[i + 1];
            if (kind == '"' || kind == '\\' || kind == '/')
                shown.append(document, i, 2);
            else
                shown += '?';
            i += kind == 'u' ? k_unicode - 1 : 1;
        } else if (!isText && (c == '-' || (c >= '0' && c <= '9'))) {
            auto const end = std::min(document.find_first_not_of(k_number, i), document.size());
            shown.append(1, '"').append(document, i, end - i).append(1, '"');
            i = end - 1;
        } else {
            shown += c;
            isText = isText != (c == '"');
        }
    }
    return shown;
}

std::string SchemaJson(InfoBase const& info)
{
    std::ostringstream document;
    return Legacy::IfKit::WriteJson(document, info) ? "{}" : ShownSchema(document.str());
}

/// What a person would write for the value; nothing if that cannot be shown.
std::string EditText(ItemBase const& item)
{
    auto text = Visit(
        item, [](StringItem const& value) { return value.GetValAsString(); },
        [](StringSparseItem const& value) { return value.GetValAsString(); },
        [](AddrItem const& value) { return value.GetValAsString(); },
        [](EndpointItem const& value) { return value.GetValAsString(); },
        [](ItemBase const& value) { return JsonOf(value); });
    return text == Printable(text) ? text : std::string();
}

/// The elements of an enumeration that can be chosen, by what one would write for them.
std::string ChoicesJson(EnumInfo const& info, std::string const& language)
{
    std::string choices;
    for (auto const& element : info.GetTable()) {
        if (element.disabled)
            continue;
        auto const number = std::to_string(element.value);
        bool const isPlain = element.name == Printable(element.name);
        auto const text =
            info.IsLocalized() ? std::string(Orlek::Localization::GetString(element.name, language)) : element.name;
        choices += choices.empty() ? "" : ",";
        choices +=
            JsonLine().Add("text", text).Add("edit", isPlain ? element.name : number).Add("number", number).ToString();
    }
    return '[' + choices + ']';
}

void AddValue(JsonLine& line, InfoItemHolder const& parameter, std::string const& language)
{
    auto const& info = parameter.GetInfo()->GetInfo();
    line.AddRaw("id", std::to_string(info->GetId()));
    if (!parameter.GetItem())
        return;
    auto const& item = *parameter.GetItem()->GetItem();
    line.Add("text", ValueText(item, info.get(), language)).Add("edit", EditText(item));
    if (auto const finding = Judge(item, info); finding.IsValid())
        line.Add("finding", finding.GetString(language));
}

std::string ParametersJson(InfoItemDirectory const& directory, std::string const& language)
{
    std::string text;
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    directory.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        auto const& holder = *parameter->GetInfo();
        auto const& info = *holder.GetInfo();
        auto const path = Legacy::IfKit::PathOf(directory, info);
        JsonLine line;
        line.Add("section", std::string_view(path).substr(0, path.size() - info.GetName().size() - 1));
        line.Add("name", info.GetName()).AddRaw("writable", Json(IsWritable(info)));
        if (auto const unit = holder.GetUnit(); !unit.empty())
            line.Add("unit", unit);
        if (auto const description = holder.GetDescription(); !description.empty())
            line.Add("description", description);
        line.AddRaw("schema", SchemaJson(info));
        if (auto const* const choice = dynamic_cast<EnumInfo const*>(&info))
            line.AddRaw("choices", ChoicesJson(*choice, language));
        AddValue(line, *parameter, language);
        text += (text.empty() ? "" : ",") + line.ToString();
    }
    return '[' + text + ']';
}

JsonLine DeviceLine(Controller::Device const& device)
{
    JsonLine line;
    line.Add("name", device.Name()).Add("title", device.Title());
    line.AddRaw("online", Json(device.IsOnline())).AddRaw("complete", Json(device.IsComplete()));
    return line;
}

} // namespace

std::string DeviceJson(Controller::Device const& device) { return DeviceLine(device).ToString(); }

std::string TreeJson(Controller::Device const& device, std::string const& language)
{
    auto const* const directory = device.Directory();
    return DeviceLine(device)
        .AddRaw("parameters", directory ? ParametersJson(*directory, language) : "null")
        .ToString();
}

std::string ValueJson(InfoItemHolder const& parameter, std::string const& language)
{
    JsonLine line;
    AddValue(line, parameter, language);
    return line.ToString();
}

std::string PreferredLanguage(std::string_view header)
{
    std::string best = "en";
    double weight = 0;
    for (auto const& [token, parameters] : boost::beast::http::ext_list({header.data(), header.size()})) {
        double own = 1;
        for (auto const& [name, value] : parameters)
            if (name == "q")
                own = std::strtod(std::string(value).c_str(), nullptr);
        std::string const language(token.substr(0, token.find('-')));
        for (auto const* const known : {"en", "de"})
            if (own > weight && boost::beast::iequals(language, known)) {
                best = known;
                weight = own;
            }
    }
    return best;
}

} // namespace Fleet
