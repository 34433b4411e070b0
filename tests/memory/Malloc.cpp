// The C library's allocator, all of it, in the program's own hands: `operator new` comes here as well.
#include "Failing.h"

#include <cerrno>
#include <cstdlib>

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size)
{
    if (!Failing::Refuses())
        return Failing::Taken(__libc_malloc(size));
    errno = ENOMEM;
    return nullptr;
}

void* calloc(std::size_t count, std::size_t size)
{
    if (!Failing::Refuses())
        return Failing::Taken(__libc_calloc(count, size));
    errno = ENOMEM;
    return nullptr;
}

void* realloc(void* block, std::size_t size)
{
    if (Failing::Refuses()) {
        errno = ENOMEM;
        return nullptr;
    }
    Failing::Given(block);
    void* const moved = Failing::Taken(__libc_realloc(block, size));
    return moved || size == 0 ? moved : (Failing::Taken(block), nullptr);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    if (!Failing::Refuses())
        return Failing::Taken(__libc_memalign(alignment, size));
    errno = ENOMEM;
    return nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

void free(void* block)
{
    Failing::Given(block);
    __libc_free(block);
}

} // extern "C"
