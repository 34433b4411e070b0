#include "core/Finding.h"

#include "core/Borrowed.h"
#include "core/FirstReference.h"
#include "text/TypeText.h"

#include <Legacy/If/FindingScope.h>
#include <Legacy/If/ResultElem.h>
#include <Legacy/If/String.h>

#include <string>

namespace Legacy::If::Detail {

thread_local constinit FindingScope* t_findingScope = nullptr;

namespace {

void AddText(LocalizedString& message, std::string_view text)
{
    auto* const argument = new StringItem(0);
    boost::intrusive_ptr<ItemBase const> const owner = FirstReference::Of<ItemBase const>(argument);
    argument->Val() = text;
    message.AddArgument(owner);
}

} // namespace

bool FindingAccess::WantsNumbers(FindingScope const& scope) noexcept
{
    return scope.m_bytes == FindingScope::Bytes_t::AsNumbers;
}

void FindingAccess::Tell(FindingScope& scope, char const* key, InfoPtr const& info,
                         std::initializer_list<std::string_view> texts)
{
    LocalizedString message{std::string(key)};
    AddText(message, info ? std::string_view(info->GetName()) : "Unknown");
    for (std::string_view const text : texts)
        AddText(message, text);
    scope.m_message = message;
}

std::string ArgumentText(InfoPtr const& info, FindingScope const&)
{
    return info ? CombinedTypeText(*info) : "NULL-Info";
}

std::string ArgumentText(ItemBase const& item, FindingScope const&) { return CombinedTypeText(item); }

Finding MakeFinding(ItemBase const& item)
{
    // The finding copies the value itself.
    return std::make_shared<ResultElem const>(Orlek::SeverityLevel_t::Error, Borrowed(item).Pointer(), nullptr);
}

Finding TypeMismatch(InfoPtr const& info, ItemBase const& item)
{
    return MakeFinding("TypesSystemValidateTypeMismatch", info, item, info, item);
}

Finding IllegalValidation(InfoPtr const& info, ItemBase const& item)
{
    // The key's third word is spelled so in every message catalogue.
    return MakeFinding("TypesSystemIllegalValidatationError", info, item, item);
}

Finding SizeFinding(SizeBounds const& bounds, std::size_t size, char const* below, char const* above,
                    InfoPtr const& info, ItemBase const& item)
{
    if (size < bounds.Min())
        return MakeFinding(below, info, item, bounds.Min());
    return MakeFinding(above, info, item, bounds.Max());
}

} // namespace Legacy::If::Detail
