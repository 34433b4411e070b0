#pragma once

#include <Legacy/If/Detail/CachedObject.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace Legacy::If::Detail {

/// The blocks that one thread keeps.
struct ObjectCache
{
    // Common allocators hand out multiples of the step less a word of their own: blocks of just that size waste
    // nothing.
    static constexpr std::size_t k_step = 16;
    static constexpr std::size_t k_word = sizeof(std::size_t);
    static constexpr std::size_t k_largest = 128;

    struct Block
    {
        Block* next;
    };

    /// Those of one size.
    struct Bin
    {
        Block* first;
        std::uint32_t room; // for so many more; none until the cache is open
    };

    enum class Phase : unsigned char
    {
        Fresh,
        Open,
        Closed,
    };

    static constexpr std::size_t BinOf(std::size_t size) noexcept { return (size + k_word - 1) / k_step; }
    static constexpr std::size_t BlockSize(std::size_t bin) noexcept { return (bin + 1) * k_step - k_word; }

    /// A block that was kept, or one of the allocator.
    static void* Take(std::size_t size);
    /// Keeps the block if there is room.
    static void Release(void* object, std::size_t size) noexcept;

    /// Puts it before those that are kept.
    static void Keep(std::size_t bin, void* object) noexcept;

    Bin bins[(k_largest + k_word - 1) / k_step + 1]{}; // by BinOf
    Phase phase = Phase::Fresh;

private:
    // The ways to the allocator stand apart, so that those through the cache need no registers kept for them: what they
    // cost is most of what a small object costs.
    static void* Allocate_(std::size_t size);
    static void Free_(void* object, std::size_t size) noexcept;
};

// Plain data without a destructor: it can be used at any point of a thread's life, also after its other objects ended.
extern thread_local constinit ObjectCache t_objectCache;

// All by the name of the variable and never by its address. Where checks of null pointers are compiled in, they would
// test the address, and g++ takes the flags for that from an addition which linkers replace by one that sets none.

inline void ObjectCache::Keep(std::size_t bin, void* object) noexcept
{
    t_objectCache.bins[bin].first = ::new (object) Block{t_objectCache.bins[bin].first};
    --t_objectCache.bins[bin].room;
}

inline void* ObjectCache::Take(std::size_t size)
{
    if (size <= k_largest) {
        std::size_t const bin = BinOf(size);
        if (Block* const block = t_objectCache.bins[bin].first) {
            t_objectCache.bins[bin].first = block->next;
            ++t_objectCache.bins[bin].room;
            return block;
        }
    }
    return Allocate_(size);
}

inline void ObjectCache::Release(void* object, std::size_t size) noexcept
{
    if (size <= k_largest && t_objectCache.bins[BinOf(size)].room != 0)
        Keep(BinOf(size), object);
    else
        Free_(object, size);
}

// What the library's own sources see of the operators that applications call: g++ puts them into the place of the call,
// where the size is known, and never makes functions of them. Other compilers call them.
#if defined(__GNUC__) && !defined(__clang__) && !defined(LEGACY_IF_DEFINES_CACHED_OBJECT)
[[gnu::gnu_inline]] inline void* CachedObject::operator new(std::size_t size) { return ObjectCache::Take(size); }
[[gnu::gnu_inline]] inline void CachedObject::operator delete(void* object, std::size_t size) noexcept
{
    ObjectCache::Release(object, size);
}
#endif

} // namespace Legacy::If::Detail
