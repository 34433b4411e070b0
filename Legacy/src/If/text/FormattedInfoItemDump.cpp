#include "text/TypeText.h"

#include <Legacy/If/FormattedInfoItemDump.h>

#include <ios>
#include <ostream>
#include <string>

namespace Legacy::If {

namespace {

constexpr int k_nameWidth = 32;
constexpr int k_typeWidth = 18;

void PrintColumn(std::ostream& os, std::string const& text, int width)
{
    os.fill(' ');
    os.width(width);
    os.setf(std::ios_base::left, std::ios_base::adjustfield);
    os << text << ' ';
}

template<typename Object>
std::string TypeColumn(Object const& object)
{
    std::string text(Detail::TypeText(object.GetType()));
    if (object.GetNumericType() != NumericType_t::Undefined)
        text += Detail::TypeText(object.GetNumericType());
    return text;
}

} // namespace

void FormattedInfoItemDump(std::ostream& os, boost::intrusive_ptr<InfoBase const> const& info,
                           boost::intrusive_ptr<ItemBase const> const& item)
{
    if (!info && !item)
        return;
    bool const both = info && item;
    if (both && info->GetId() != item->GetId()) {
        os << "InfoItemId mismatch!";
        return;
    }
    if (both && (info->GetType() != item->GetType() || info->GetNumericType() != item->GetNumericType())) {
        os << "Type mismatch!";
        return;
    }
    if (info)
        PrintColumn(os, info->GetName(), k_nameWidth);
    PrintColumn(os, info ? TypeColumn(*info) : TypeColumn(*item), k_typeWidth);
    if (both)
        os << '{';
    if (item)
        os << *item;
    if (both)
        os << "} {";
    if (info)
        os << *info;
    if (both)
        os << '}';
}

} // namespace Legacy::If
