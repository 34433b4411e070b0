#pragma once

#include "convert/Convert.h"
#include "convert/Visit.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>

namespace Legacy::If::Detail {

/// What a single value takes out of a source of another family or element type. Each returns 0 with the converted value
/// stored, or a code with nothing stored: #IfErrTypeNotAssignable for a source that is not accepted or whose class is
/// not what its tags say, #IfErrInvalidArgument for an index past the end of a list.

/// Takes over the value of a source of the one class `Item`.
template<typename Item, typename Target>
int ReadValueOf(ItemBase const& source, Target& value)
{
    auto const* const item = ExactCast<Item>(&source);
    if (!item)
        return IfErrTypeNotAssignable;
    value = ConvertTo<Target>(item->Val());
    return 0;
}

/// Out of a number of any element type.
template<typename Target>
int ReadNumeric(ItemBase const& source, Target& value)
{
    return VisitFamily<NumericItem>(source, [&value](auto const& number) {
        value = ConvertTo<Target>(number.Val());
        return 0;
    });
}

/// Out of the element at `index` of a list of numbers of any element type.
template<typename Target>
int ReadElement(ItemBase const& source, unsigned int index, Target& value)
{
    return VisitFamily<NumericArrayItem>(source, [index, &value](auto const& list) {
        if (index >= list.Val().size())
            return IfErrInvalidArgument;
        value = ConvertTo<Target>(list.Val()[index]);
        return 0;
    });
}

/// What goes into a single element of a list of numbers.
template<typename Target>
int ReadScalar(ItemBase const& source, Target& value)
{
    switch (source.GetType()) {
    case IfType_t::Bool:
        return ReadValueOf<BoolItem>(source, value);
    case IfType_t::Numeric:
        return ReadNumeric(source, value);
    case IfType_t::Enum:
        return ReadValueOf<EnumItem>(source, value);
    default:
        return IfErrTypeNotAssignable;
    }
}

/// What a number and an enumeration value take.
template<typename Target>
int ReadNumber(ItemBase const& source, unsigned int index, Target& value)
{
    if (source.GetType() == IfType_t::NumericArray)
        return ReadElement(source, index, value);
    return ReadScalar(source, value);
}

/// What a boolean takes: no enumeration value.
inline int ReadTruth(ItemBase const& source, unsigned int index, bool& value)
{
    switch (source.GetType()) {
    case IfType_t::Bool:
        return ReadValueOf<BoolItem>(source, value);
    case IfType_t::Numeric:
        return ReadNumeric(source, value);
    case IfType_t::NumericArray:
        return ReadElement(source, index, value);
    case IfType_t::BoolArray:
        if (auto const* const list = ExactCast<BoolArrayItem>(&source)) {
            if (index >= list->Val().size())
                return IfErrInvalidArgument;
            value = list->Val()[index];
            return 0;
        }
        return IfErrTypeNotAssignable;
    default:
        return IfErrTypeNotAssignable;
    }
}

} // namespace Legacy::If::Detail
