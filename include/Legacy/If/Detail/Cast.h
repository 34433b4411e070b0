#pragma once

#include <Legacy/If/Export.h>

#include <typeinfo>

namespace Legacy::If::Detail {

/// Whether an object is of that very class and not of one derived from it. The library's classes have one type
/// information each, so its address decides; comparing names would cost more for each object that is of another class.
template<typename Class, typename Root>
bool IsExactly(Root const& object) noexcept
{
    return &typeid(object) == &typeid(Class);
}

/// The object as a `Target`, or null if it is null or of another class. `Target` is the family's own class: the exact
/// type, which is nearly always the answer, is tested first, by the address of its identity alone; a class derived from
/// it, or an identity that stands twice, takes the run-time cast.
template<typename Target, typename Root>
Target const* ExactCast(Root const* object)
{
    if (!object)
        return nullptr;
    if (&typeid(*object) == &typeid(Target))
        return static_cast<Target const*>(object);
    return dynamic_cast<Target const*>(object);
}

/// The same through any pointer to a root.
template<typename Target, typename Pointer>
Target const* CastTo(Pointer const& object)
{
    return ExactCast<Target>(object.get());
}

/// The object as what a receiver may take it for, or null: of that class, and with the type tag that the class gives
/// its own objects. A class that an application derived and gave a tag of its own is another family's.
template<typename Class, typename Root>
Class const* SourceAs(Root const& object)
{
    if (IsExactly<Class>(object))
        return static_cast<Class const*>(&object);
    return object.GetType() == Class::k_type ? dynamic_cast<Class const*>(&object) : nullptr;
}

} // namespace Legacy::If::Detail
