#include "core/FirstReference.h"

#include <Legacy/If/ResultElem.h>

namespace Legacy::If {

ResultElem::ResultElem(Orlek::SeverityLevel_t const& severity, boost::intrusive_ptr<ItemBase const> const& item,
                       boost::intrusive_ptr<InfoBase const> const& info)
    : m_severity(severity)
{
    if (item)
        m_item = Detail::FirstReference::Of<ItemBase const>(item->DeepCopy());
    if (info)
        m_info = Detail::FirstReference::Of<InfoBase const>(info->DeepCopy());
}

ResultElem::~ResultElem() = default;

} // namespace Legacy::If
