#include "text/Text.h"

#include <Legacy/If/Detail/Array.h>
#include <Legacy/If/Detail/Family.h>

#include <ostream>

namespace Legacy::If::Detail {

void DumpValue(std::ostream& os, ItemBase const& item)
{
    DumpHead(os, item);
    os << "value: ";
    item.operator<<(os) << std::endl;
}

void DumpSizes(std::ostream& os, InfoBase const& info, SizeBounds const& bounds, std::size_t defaultSize)
{
    if (info.GetNumericType() == NumericType_t::Undefined)
        DumpHead(os, info);
    else
        DumpNumericHead(os, info);
    DumpLine(os, "minSize: ", bounds.Min());
    DumpLine(os, "maxSize: ", bounds.Max());
    DumpLine(os, "defaultSize: ", static_cast<unsigned int>(defaultSize));
}

std::ostream& PrintSizes(std::ostream& os, SizeBounds const& bounds, std::size_t defaultSize)
{
    return os << "array size: " << bounds.Min() << " <= " << static_cast<unsigned int>(defaultSize)
              << " <= " << bounds.Max();
}

} // namespace Legacy::If::Detail
