#pragma once

#include "convert/Convert.h"
#include "core/ListLength.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/ReturnCodes.h>

#include <cstdint>
#include <functional>

namespace Legacy::If::Detail {

/// Notes whether an assignment changed anything and tells the caller at its end, on success only.
class Change
{
public:
    void Note(bool changed = true) noexcept { m_changed = m_changed || changed; }

    /// Stores `source` in `target` if they differ, and notes that.
    template<typename Value, typename Source = Value, typename Same = std::equal_to<>>
    void Assign(Value& target, Source const& source, Same const& same = {})
    {
        if (same(target, source))
            return;
        target = source;
        m_changed = true;
    }

    /// Stores a number in any case, and notes a difference beyond the tolerance.
    template<typename Number>
    void Store(Number& target, Number source) noexcept
    {
        Note(Differs(target, source));
        target = source;
    }

    /// Stores a value in any case, and notes an exact difference.
    template<typename Value>
    void Replace(Value& target, Value const& source)
    {
        Note(target != source);
        target = source;
    }

    /// Makes a list equal to another, element by element.
    template<typename List>
    void AssignList(List& target, List const& source)
    {
        Resize(target, source.size());
        for (decltype(target.size()) i = 0; i < target.size(); ++i)
            Assign(target[i], source[i]);
    }

    /// Gives a list the wanted size; new elements hold their type's default.
    template<typename List>
    void Resize(List& list, typename List::size_type size)
    {
        if (list.size() == size)
            return;
        list.resize(size);
        m_changed = true;
    }

    /// Grows a list so that it has `count` elements from `index` on; never shrinks it. An index near 2^32 grows the
    /// list or fails, and never wraps to a place elsewhere.
    template<typename List>
    void GrowTo(List& list, unsigned int index, unsigned int count = 1)
    {
        std::uint64_t const size = std::uint64_t{index} + count;
        if (list.size() >= size)
            return;
        CheckLength(size, list.max_size());
        Resize(list, static_cast<typename List::size_type>(size));
    }

    /// Writes the outcome if the caller asked for it and returns success.
    int Report(bool* changed) const noexcept
    {
        if (changed)
            *changed = m_changed;
        return 0;
    }

private:
    bool m_changed = false;
};

/// The frame of an assignment from an object of one's own family: tests the source, and reports what `assign`, which
/// takes the change and the source, has noted.
template<typename Same, typename Pointer, typename Assign>
int AssignFrom(Pointer const& source, bool* changed, Assign&& assign)
{
    if (!source)
        return IfErrNullSource;
    auto const* const same = SourceAs<Same>(*source);
    if (!same)
        return IfErrTypeNotAssignable;
    Change change;
    assign(change, *same);
    return change.Report(changed);
}

} // namespace Legacy::If::Detail
