#pragma once

#include <Legacy/If/Export.h>

#include <cstddef>
#include <new>

namespace Legacy::If::Detail {

/// Gives schemas and values their storage, since parameters come and go in numbers: small blocks are kept by the thread
/// that freed them, a bounded number of each size, and handed out again without a trip to the allocator. They are given
/// back in full when the thread ends. In a program that a checker watches (the address, memory or thread sanitizer, or
/// valgrind's memcheck), and where LEGACYIF_NO_OBJECT_CACHE stands in the environment when the first object is made,
/// all goes straight to the allocator, so that each use of a freed object is seen.
class LEGACY_IF_API CachedObject
{
public:
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, std::nothrow_t const&) noexcept;
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* object, std::size_t size) noexcept;
    static void operator delete(void* object, std::nothrow_t const&) noexcept { ::operator delete(object); }
    static void operator delete(void*, void*) noexcept {}

    /// The cache knows no alignment: classes that ask for more than the usual one go straight to the allocator.
    static void* operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
    static void operator delete(void* object, std::align_val_t alignment) noexcept
    {
        ::operator delete(object, alignment);
    }
};

} // namespace Legacy::If::Detail
