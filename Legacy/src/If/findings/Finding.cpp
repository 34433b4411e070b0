#include "core/Finding.h"

#include "core/Borrowed.h"
#include "core/FirstReference.h"
#include "text/TypeText.h"

#include <Legacy/If/LocalizedString.h>
#include <Legacy/If/ResultElem.h>
#include <Legacy/If/String.h>

namespace Legacy::If::Detail {

thread_local constinit MessageObserver t_messageObserver = nullptr;

namespace {

void AddText(LocalizedString& message, std::string_view text)
{
    auto* const argument = new StringItem(0);
    boost::intrusive_ptr<ItemBase const> const owner = FirstReference::Of<ItemBase const>(argument);
    argument->Val() = text;
    message.AddArgument(owner);
}

} // namespace

Finding MakeFinding(char const* key, InfoPtr const& info, ItemBase const& item,
                    std::initializer_list<std::string_view> texts)
{
    LocalizedString message{std::string(key)};
    AddText(message, info ? std::string_view(info->GetName()) : "Unknown");
    for (std::string_view const text : texts)
        AddText(message, text);
    if (t_messageObserver)
        t_messageObserver(message);

    // The finding copies the value itself.
    return std::make_shared<ResultElem const>(Orlek::SeverityLevel_t::Error, Borrowed(item).Pointer(), nullptr);
}

Finding TypeMismatch(InfoPtr const& info, ItemBase const& item)
{
    return MakeFinding("TypesSystemValidateTypeMismatch", info, item,
                       {info ? CombinedTypeText(*info) : "NULL-Info", CombinedTypeText(item)});
}

Finding IllegalValidation(InfoPtr const& info, ItemBase const& item)
{
    // The key's third word is spelled so in every message catalogue.
    return MakeFinding("TypesSystemIllegalValidatationError", info, item, {CombinedTypeText(item)});
}

Finding SizeFinding(SizeBounds const& bounds, std::size_t size, char const* below, char const* above,
                    InfoPtr const& info, ItemBase const& item)
{
    if (size < bounds.Min())
        return MakeFinding(below, info, item, {DefaultText(bounds.Min())});
    return MakeFinding(above, info, item, {DefaultText(bounds.Max())});
}

} // namespace Legacy::If::Detail
