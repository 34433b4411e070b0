#pragma once

#include "core/DefaultText.h"

#include <Legacy/If/Detail/SizeBounds.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace Legacy::If {

class FindingScope;
class ResultElem;

namespace Detail {

using Finding = std::shared_ptr<ResultElem const>;
using InfoPtr = boost::intrusive_ptr<InfoBase const>;

/// The scope that hears the findings of this thread, or null, as it nearly always is.
extern constinit thread_local FindingScope* t_findingScope;

/// The way into a scope for those who build messages.
struct FindingAccess
{
    static bool WantsNumbers(FindingScope const& scope) noexcept;
    static void Tell(FindingScope& scope, char const* key, InfoPtr const& info,
                     std::initializer_list<std::string_view> texts);
};

/// Builds a finding without a word about its message.
Finding MakeFinding(ItemBase const& item);

/// The schema is null or of another class than the value needs.
Finding TypeMismatch(InfoPtr const& info, ItemBase const& item);

/// The value's family has no such validation at all.
Finding IllegalValidation(InfoPtr const& info, ItemBase const& item);

/// The number of elements of a list is outside its bounds: `below` and `above` are the keys of the two ends, and the
/// end is the argument.
Finding SizeFinding(SizeBounds const& bounds, std::size_t size, char const* below, char const* above,
                    InfoPtr const& info, ItemBase const& item);

/// Tests the number of elements of a list; empty for a pass.
inline Finding CheckSize(SizeBounds const& bounds, std::size_t size, char const* below, char const* above,
                         InfoPtr const& info, ItemBase const& item)
{
    return bounds.Contains(size) ? Finding() : SizeFinding(bounds, size, below, above, info, item);
}

/// The text of an argument: the type of a schema or of a value, or a number.
/// @{
std::string ArgumentText(InfoPtr const& info, FindingScope const& scope);
std::string ArgumentText(ItemBase const& item, FindingScope const& scope);

template<std::integral Number>
std::string ArgumentText(Number const& number, FindingScope const& scope)
{
    if constexpr (sizeof(Number) == 1 && !std::same_as<Number, bool>)
        if (FindingAccess::WantsNumbers(scope))
            return DefaultText<int>(number);
    return DefaultText(number);
}

template<std::floating_point Number>
std::string ArgumentText(Number const& number, FindingScope const&)
{
    return DefaultText(number);
}
/// @}

/// Builds a finding. The first argument of its message is always the schema's name, or "Unknown" without a schema; the
/// others follow. To be called in the failing branch alone: it allocates, a passing validation does not.
template<typename... Arguments>
Finding MakeFinding(char const* key, InfoPtr const& info, ItemBase const& item, Arguments const&... arguments)
{
    if (t_findingScope)
        FindingAccess::Tell(*t_findingScope, key, info, {ArgumentText(arguments, *t_findingScope)...});
    return MakeFinding(item);
}

} // namespace Detail

} // namespace Legacy::If
