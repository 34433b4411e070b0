#pragma once

#include "Convert.h"
#include "Visit.h"

#include <Legacy/If/ItemBase.h>
#include <Legacy/If/Numeric.h>

namespace Legacy::If::Detail {

/// What one value takes out of a source of another family or element type. All return 0 with the converted value
/// stored; on failure nothing is stored.

/// The value of a number: #IfErrTypeNotAssignable for an unknown element type.
template<typename Target>
int ReadNumeric(ItemBase const& source, Target& value)
{
    return VisitFamily<NumericItem>(source, [&value](auto const& number) {
        value = ConvertTo<Target>(number.Val());
        return 0;
    });
}

/// The value of a source that holds one number.
template<typename Target>
int ReadScalar(ItemBase const& source, Target& value)
{
    switch (source.GetType()) {
    case IfType_t::Numeric:
        return ReadNumeric(source, value);
    default:
        return IfErrTypeNotAssignable;
    }
}

} // namespace Legacy::If::Detail
