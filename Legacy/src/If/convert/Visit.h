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

/// The same for points and rectangles, which have three element types only.
template<template<typename> typename Family, typename Root, typename Use>
int VisitShape(Root const& object, Use&& use)
{
    auto const visit = [&object, &use]<typename T>(T) {
        auto const* const member = ExactCast<Family<T>>(&object);
        return member ? use(*member) : IfErrTypeNotAssignable;
    };
    switch (object.GetNumericType()) {
    case NumericType_t::U16:
        return visit(U16Traits());
    case NumericType_t::S32:
        return visit(S32Traits());
    case NumericType_t::Float:
        return visit(FloatTraits());
    default:
        return IfErrTypeNotAssignable;
    }
}

} // namespace Legacy::If::Detail
