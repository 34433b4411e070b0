// `operator new` in the program's own hands. The forms that are not here call one of these.
#include "Failing.h"

#include <cstdlib>
#include <new>

void* operator new(std::size_t size)
{
    void* const block = Failing::Refuses() ? nullptr : Failing::Taken(std::malloc(size != 0 ? size : 1));
    return block ? block : throw std::bad_alloc();
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    auto const step = static_cast<std::size_t>(alignment);
    void* const block =
        Failing::Refuses() ? nullptr : Failing::Taken(std::aligned_alloc(step, (size + step - 1) / step * step));
    return block ? block : throw std::bad_alloc();
}

// A checker has this form of its own, which would not call the one above.
void* operator new(std::size_t size, std::nothrow_t const&) noexcept
{
    return Failing::Refuses() ? nullptr : Failing::Taken(std::malloc(size != 0 ? size : 1));
}

void operator delete(void* block) noexcept
{
    Failing::Given(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { operator delete(block); }
void operator delete(void* block, std::align_val_t) noexcept { operator delete(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { operator delete(block); }
