#pragma once

#include <Orlek/Atomic32.h>
#include <Orlek/Export.h>

#include <cstdint>

namespace Orlek {

/// Base of objects that carry their own reference count and are shared through `boost::intrusive_ptr`.
///
/// A new object has the count 0: wrap it at once. The count is atomic, so any thread may take and drop references; the
/// last one to drop destroys the object on its thread. Nothing else about the object is protected.
class ORLEK_API IntrusiveBaseMT
{
public:
    virtual ~IntrusiveBaseMT();

    /// Number of references held now; a value to look at, since other threads may change it at any time.
    std::int32_t GetRefCount() const noexcept { return m_refCount.Get(); }

    friend void intrusive_ptr_add_ref(IntrusiveBaseMT const* object) noexcept { object->m_refCount.Increment(); }

    friend void intrusive_ptr_release(IntrusiveBaseMT const* object) noexcept
    {
        if (object->m_refCount.Release())
            delete object;
    }

protected:
    IntrusiveBaseMT() noexcept = default;

    /// A copy is an object of its own: it starts with no references.
    IntrusiveBaseMT(IntrusiveBaseMT const&) noexcept {}

    /// The count belongs to the object, not to its value, and is never assigned.
    IntrusiveBaseMT& operator=(IntrusiveBaseMT const&) noexcept { return *this; }

private:
    mutable Atomic32 m_refCount;
};

} // namespace Orlek
