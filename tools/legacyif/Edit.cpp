#include "Edit.h"

#include "Store.h"

#include <Legacy/IfKit/ValueText.h>

namespace Command {

boost::intrusive_ptr<Legacy::If::ItemBase> ParseValue(Legacy::If::InfoBase const& info, std::string const& text)
{
    std::string fault;
    auto item = Legacy::IfKit::ParseValueText(info, text, fault);
    if (!item)
        throw Failure(fault);
    return item;
}

} // namespace Command
