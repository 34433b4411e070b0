#pragma once

#include "core/ObjectCache.h"

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

namespace Legacy::If::Detail {

/// Wraps what a factory has just made. As long as its count is 0 nobody else has it, so the count is set, which costs a
/// fraction of an addition that other threads must see; and that is half of what a small object costs otherwise.
struct FirstReference
{
    template<typename Root>
    static boost::intrusive_ptr<Root> Of(Root* made) noexcept
    {
        if (!made || made->m_refCount.Get() != 0)
            return boost::intrusive_ptr<Root>(made);
        made->m_refCount.Set(1);
        return OfNew(made);
    }

    /// The same for what the caller has made with `new` itself, which has the count 0 for certain.
    template<typename Root>
    static boost::intrusive_ptr<Root> OfNew(Root* made) noexcept
    {
        made->m_refCount.Set(1);
        return boost::intrusive_ptr<Root>(made, false);
    }
};

} // namespace Legacy::If::Detail
