#pragma once

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/NumericTraits.h>
#include <Legacy/If/ReturnCodes.h>

namespace Legacy::If::Detail {

/// Calls `visit` with an object of the traits class that the element tag names and returns its code. A tag that names
/// none is #IfErrTypeNotAssignable.
template<typename Visit>
int VisitElement(NumericType_t type, Visit&& visit)
{
    switch (type) {
    case NumericType_t::U8:
        return visit(U8Traits());
    case NumericType_t::S8:
        return visit(S8Traits());
    case NumericType_t::U16:
        return visit(U16Traits());
    case NumericType_t::S16:
        return visit(S16Traits());
    case NumericType_t::U32:
        return visit(U32Traits());
    case NumericType_t::S32:
        return visit(S32Traits());
    case NumericType_t::U64:
        return visit(U64Traits());
    case NumericType_t::S64:
        return visit(S64Traits());
    case NumericType_t::Float:
        return visit(FloatTraits());
    case NumericType_t::Double:
        return visit(DoubleTraits());
    case NumericType_t::Undefined:
        break;
    }
    return IfErrTypeNotAssignable;
}

/// Finds the member of a numeric family that an object is, whatever its element type, and returns what `use` makes of
/// it. `Family` is the family's template.
template<template<typename> typename Family, typename Root, typename Use>
int VisitFamily(Root const& object, Use&& use)
{
    return VisitElement(object.GetNumericType(), [&object, &use]<typename T>(T) {
        auto const* const member = ExactCast<Family<T>>(&object);
        return member ? use(*member) : IfErrTypeNotAssignable;
    });
}

/// Whether points and rectangles come with that element type.
constexpr bool IsShapeElement(NumericType_t type) noexcept
{
    return type == NumericType_t::U16 || type == NumericType_t::S32 || type == NumericType_t::Float;
}

/// Finds which point or rectangle an object is and returns what `use` makes of it. The element tag plays no
/// part: an application's class may have its own.
template<template<typename> typename Family, typename Root, typename Use>
int VisitShape(Root const& object, Use&& use)
{
    int code = IfErrTypeNotAssignable;
    auto const visit = [&code, &use](auto const* member) {
        if (member)
            code = use(*member);
        return member != nullptr;
    };
    auto const visitExactly = [&object, &visit]<typename T>(T) {
        return IsExactly<Family<T>>(object) && visit(static_cast<Family<T> const*>(&object));
    };
    auto const visitDerived = [&object, &visit]<typename T>(T) {
        return visit(dynamic_cast<Family<T> const*>(&object));
    };
    static_cast<void>(visitExactly(U16Traits()) || visitExactly(S32Traits()) || visitExactly(FloatTraits()) ||
                      visitDerived(U16Traits()) || visitDerived(S32Traits()) || visitDerived(FloatTraits()));
    return code;
}

} // namespace Legacy::If::Detail
