#include "ValueText.h"

#include <Legacy/If/Enum.h>

#include <algorithm>

namespace Examples {

using namespace Legacy::If;

std::string Printable(std::string_view text)
{
    std::string shown(text);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '?');
    return shown;
}

std::string ShowValue(InfoBase const& info, ItemBase const& item)
{
    auto const* const schema = dynamic_cast<EnumInfo const*>(&info);
    auto const* const value = dynamic_cast<EnumItem const*>(&item);
    std::string name;
    if (schema && value && schema->GetElemName(value->GetVal(), name) == 0)
        return Printable(name);
    return Printable(item.GetValAsString());
}

} // namespace Examples
