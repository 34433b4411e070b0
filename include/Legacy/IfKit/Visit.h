#pragma once

#include <Legacy/IfKit/Families.h>

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

/// A case for each class instead of a chain of casts.
///
/// @code
/// boost::intrusive_ptr<ItemBase> const item(BoolItem::Create(1, true));
/// auto const ofBool = [](BoolItem const& value) { return value.GetVal() ? "on" : "off"; };
/// std::cout << Visit(*item, ofBool, [](ItemBase const&) { return "no switch"; }) << '\n';
/// @endcode
namespace Legacy::IfKit {

/// An object of a class that is none of the library's and derives from none of them, or whose tags are not those of its
/// class. `Root` is `ItemBase` or `InfoBase`, const or not.
template<typename Root>
struct Foreign
{
    Root& object;
};

/// Several functions as one object, overloaded.
template<typename... Cases>
struct Overloaded : Cases...
{
    using Cases::operator()...;
};

namespace Detail {

template<typename Root, typename Class>
using LikeRoot = std::conditional_t<std::is_const_v<Root>, Class const, Class>;

/// Whether there is a case for a class; there is always one for the families that have no schema.
template<typename Visitor, typename Root, typename Class>
concept HasCase = std::is_void_v<Class> || std::invocable<Visitor&, std::add_lvalue_reference_t<LikeRoot<Root, Class>>>;

template<typename Root, typename InfoClass, typename ItemClass>
using ClassOf = std::conditional_t<std::is_same_v<std::remove_const_t<Root>, If::InfoBase>, InfoClass, ItemClass>;

template<typename Visitor, typename Root, typename... Families>
consteval bool HasAllCases(FamilyList<Families...>)
{
    return (HasCase<Visitor, Root, ClassOf<Root, typename Families::Info, typename Families::Item>> && ...);
}

/// The object as its family's class; null if the tags lied.
template<typename Class, typename Root>
Class* As(Root& object)
{
    // Nearly every object is of the family's own class; a derived one takes the longer way.
    if (typeid(object) == typeid(Class))
        return static_cast<Class*>(&object);
    return dynamic_cast<Class*>(&object);
}

template<typename Root, typename Visitor>
decltype(auto) VisitForeign(Root& object, Visitor& visitor)
{
    if constexpr (std::invocable<Visitor&, Root&>)
        return visitor(object);
    else
        return visitor(Foreign<Root>{object});
}

template<typename Root, typename Visitor>
decltype(auto) VisitObject(Root& object, Visitor& visitor)
{
    using Result = decltype(VisitForeign(object, visitor));
    return VisitFamily(object.GetType(), object.GetNumericType(),
                       [&]<typename Info, typename Item>(Family<Info, Item>) -> Result {
                           using Class = ClassOf<Root, Info, Item>;
                           if constexpr (!std::is_void_v<Class>) {
                               static_assert(HasCase<Visitor, Root, Class>,
                                             "This class has no case: add one, or a default for all that have none");
                               if (auto* const found = As<LikeRoot<Root, Class>>(object))
                                   return visitor(*found);
                           }
                           return VisitForeign(object, visitor);
                       });
}

} // namespace Detail

/// Whether functions of these types have a case for every concrete class and for the foreign ones, so that `Visit`
/// takes them. `Root` is `ItemBase`, `InfoBase` or one of these as const.
template<typename Root, typename... Cases>
concept VisitorOf = (std::invocable<Overloaded<Cases...>&, Root&> ||
                     std::invocable<Overloaded<Cases...>&, Foreign<Root>>)&&Detail::HasAllCases<Overloaded<Cases...>,
                                                                                                Root>(AllFamilies{});

/// Calls the case for the class that a value is of, and returns what that returns. The cases are chosen as overloads
/// are; what they return must convert to what the default returns.
///
/// Every concrete class must have its case, or compilation fails with the name of the first class that has none:
/// `[](BoolItem const&)` for one class, `[]<typename T>(NumericItem<T> const&)` for a numeric family. A case for
/// `ItemBase const&`, or for `auto const&`, is a default for all that have none.
///
/// The tags choose the case, in one look-up whatever the number of classes, and the class of the object confirms it: an
/// object of a class that an application derived goes to the case of the library's class. One of any other class, and
/// one whose tags are not those of its class, goes to the default; visitors without a default need a case for
/// `Foreign<ItemBase const>`. No tag can make a case see an object of another class.
///
/// Beside other readers of the same object on other threads as safe as the cases are.
template<typename... Cases>
decltype(auto) Visit(If::ItemBase const& item, Cases&&... cases)
{
    Overloaded<std::decay_t<Cases>...> visitor{std::forward<Cases>(cases)...};
    return Detail::VisitObject(item, visitor);
}

/// The same with a value that the cases may change.
template<typename... Cases>
decltype(auto) Visit(If::ItemBase& item, Cases&&... cases)
{
    Overloaded<std::decay_t<Cases>...> visitor{std::forward<Cases>(cases)...};
    return Detail::VisitObject(item, visitor);
}

/// The same for schemas, with `InfoBase` for `ItemBase`. An orientation has none.
/// @{
template<typename... Cases>
decltype(auto) Visit(If::InfoBase const& info, Cases&&... cases)
{
    Overloaded<std::decay_t<Cases>...> visitor{std::forward<Cases>(cases)...};
    return Detail::VisitObject(info, visitor);
}

template<typename... Cases>
decltype(auto) Visit(If::InfoBase& info, Cases&&... cases)
{
    Overloaded<std::decay_t<Cases>...> visitor{std::forward<Cases>(cases)...};
    return Detail::VisitObject(info, visitor);
}
/// @}

} // namespace Legacy::IfKit
