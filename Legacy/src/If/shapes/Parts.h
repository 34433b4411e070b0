#pragma once

#include "convert/Change.h"
#include "text/Text.h"

#include <Legacy/If/Rect.h>
#include <Legacy/If/ReturnCodes.h>

namespace Legacy::If::Detail {

/// What points and rectangles, which are made of two parts each, share.

/// The numbers of a rectangle, wherever rectangles meet lists of numbers.
inline constexpr unsigned int k_rectNumbers = 4;

/// Assigns both parts of a schema or a value, the second also after a failure of the first. Returns the first failure.
template<typename Part, typename Source>
int AssignBoth(Change& change, Part& first, Source const& firstSource, Part& second, Source const& secondSource)
{
    bool firstChanged = false;
    bool secondChanged = false;
    int const firstCode = first.AssignValue(firstSource, &firstChanged);
    int const secondCode = second.AssignValue(secondSource, &secondChanged);
    change.Note(firstChanged || secondChanged);
    return firstCode != 0 ? firstCode : secondCode;
}

/// The corners of a rectangle of any element type, held so that they outlive it, into those of another.
template<typename T, typename Corner>
int AssignCorners(Change& change, RectItem<T>& target, Corner const& topLeft, Corner const& bottomRight)
{
    if (AssignBoth(change, *target.TopLeft(), topLeft, *target.BottomRight(), bottomRight) != 0)
        return IfErrTypeNotAssignable;
    return 0;
}

/// The lines of a schema's two corners. Contract: that of the bottom right one is labelled so, as readers of dumps know
/// it.
template<typename Corner>
void DumpCorners(std::ostream& os, Corner const& topLeft, Corner const& bottomRight)
{
    DumpLine(os, "topLeft: ", topLeft);
    DumpLine(os, "topRight: ", bottomRight);
}

} // namespace Legacy::If::Detail
