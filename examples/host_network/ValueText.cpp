#include "ValueText.h"

#include "HostReader.h"

#include <Legacy/If/Enum.h>
#include <Legacy/If/String.h>

#include <algorithm>
#include <sstream>
#include <vector>

namespace HostNetwork {

namespace {

using namespace Legacy::If;

std::string Joined(std::vector<std::string> const& words, std::string const& separator)
{
    std::string text;
    for (auto const& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

/// The number of an element that the host names, or the number that it gives. A name that the schema does not have
/// becomes -1: the value is there, and it is for the schema to complain about it.
std::string ElementNumber(EnumInfo const& info, std::string const& text)
{
    if (!text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return text;
    int value = -1;
    info.GetElemVal(text, value);
    return std::to_string(value);
}

/// What the library is to read, and what the value prints if all of it was taken.
struct Exchange_t
{
    std::string input;
    std::string expected;
};

Exchange_t MakeExchange(InfoBase const& info, std::string const& text)
{
    std::vector<std::string> const words = Words(text);
    std::string const list = '(' + Joined(words, ", ") + ')';
    switch (info.GetType()) {
    case IfType_t::Bool:
        return {text, text == "1" ? "True" : "False"};
    case IfType_t::Enum: {
        std::string const number = ElementNumber(dynamic_cast<EnumInfo const&>(info), text);
        return {number, number};
    }
    case IfType_t::NumericArray:
    case IfType_t::StringArray: // read with their length first
        return {std::to_string(words.size()) + ' ' + Joined(words, " "), list};
    case IfType_t::Composite:
        return {Joined(words, " "), list};
    default:
        return {text, text};
    }
}

} // namespace

boost::intrusive_ptr<ItemBase> ReadValue(boost::intrusive_ptr<InfoBase const> const& info, std::string const& text)
{
    boost::intrusive_ptr<ItemBase> item(info->CreateItem());
    if (auto* const whole = dynamic_cast<StringItem*>(item.get())) {
        whole->SetVal(text); // read from a stream it would end at the first blank
        return item;
    }
    Exchange_t const exchange = MakeExchange(*info, text);
    std::istringstream in(exchange.input);
    std::ostringstream complaints;
    if (!item->SetValFromStream(in, complaints, info) || item->GetValAsString() != exchange.expected)
        return nullptr;
    return item;
}

std::string Count(std::size_t number, std::string const& thing)
{
    return std::to_string(number) + ' ' + thing + (number == 1 ? "" : "s");
}

} // namespace HostNetwork
