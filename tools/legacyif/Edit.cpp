#include "Edit.h"

#include "Store.h"

#include <Legacy/IfKit/ValueText.h>
#include <Legacy/IfKit/Visit.h>

#include <sstream>

namespace Command {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

boost::intrusive_ptr<ItemBase> FromJson(InfoBase const& info, std::string const& text)
{
    std::istringstream is(text);
    boost::intrusive_ptr<ItemBase> item;
    if (auto const fault = ReadBareJson(is, info, item))
        throw Failure("'" + Printable(text) + "' is no value of this parameter: " + Printable(fault->ToString()));
    return item;
}

} // namespace

boost::intrusive_ptr<ItemBase> ParseValue(InfoBase const& info, std::string const& text)
{
    unsigned int const id = info.GetId();
    using Result = boost::intrusive_ptr<ItemBase>;
    return Visit(
        info, [&](StringInfo const&) { return Result(StringItem::Create(id, text)); },
        [&](StringSparseInfo const&) { return Result(StringSparseItem::Create(id, text)); },
        [&](AddrInfo const&) { return Result(AddrItem::Create(id, Net::AddrStr(text))); },
        [&](EndpointInfo const& own) {
            return text.starts_with('{')
                       ? FromJson(own, text)
                       : Result(EndpointItem::Create(id, Net::Endpoint<Net::AddrStr>::FromString(text)));
        },
        [&](EnumInfo const& own) {
            int value = 0;
            return own.GetElemVal(text, value) == 0 ? Result(EnumItem::Create(id, value)) : FromJson(own, text);
        },
        [&](InfoBase const& other) { return FromJson(other, text); });
}

} // namespace Command
