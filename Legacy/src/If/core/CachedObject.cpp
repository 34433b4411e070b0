#define LEGACY_IF_DEFINES_CACHED_OBJECT
#include "core/ObjectCache.h"

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <iterator>

#if __has_include(<valgrind/memcheck.h>)
#include <valgrind/memcheck.h>
#endif

// Entry points of the checkers of memory and threads, there when the program was built with one.
// NOLINTBEGIN(bugprone-reserved-identifier)
#if defined(__ELF__)
extern "C" {
[[gnu::weak]] void __asan_init();
[[gnu::weak]] void __hwasan_init();
[[gnu::weak]] void __msan_init();
[[gnu::weak]] void __tsan_init();
}
#endif
// NOLINTEND(bugprone-reserved-identifier)

namespace Legacy::If::Detail {

namespace {

bool CheckerPresent() noexcept
{
#if defined(__ELF__)
    if (__asan_init || __hwasan_init || __msan_init || __tsan_init)
        return true;
#endif
#if defined(VALGRIND_MAKE_MEM_DEFINED)
    char probe = 0;
    if (VALGRIND_MAKE_MEM_DEFINED(&probe, sizeof(probe)) != 0) // only memcheck answers this; a profiler does not
        return true;
#endif
    return std::getenv("LEGACYIF_NO_OBJECT_CACHE") != nullptr;
}

// Asked once, before the first block is handed out: from then on all blocks are kept or none.
bool BypassCache() noexcept
{
    static bool const bypass = CheckerPresent();
    return bypass;
}

constexpr std::size_t k_bytesKept = 65536; // for each size of block

void Close() noexcept
{
    t_objectCache.phase = ObjectCache::Phase::Closed;
    for (std::size_t bin = 0; bin < std::size(t_objectCache.bins); ++bin) {
        t_objectCache.bins[bin].room = 0;
        while (ObjectCache::Block* const block = t_objectCache.bins[bin].first) {
            t_objectCache.bins[bin].first = block->next;
            ::operator delete(block);
        }
    }
}

// Has the cache of each thread that asks for it closed when the thread ends. Asking may fail for want of memory, and
// then says so: for a thread-local object with a destructor the C library would end the process, in the midst of a
// release.
class ThreadEnd
{
public:
    ThreadEnd() noexcept
    {
        bool const made = ::pthread_key_create(&m_key, [](void*) { Close(); }) == 0;
        s_state.store(made ? State::Ready : State::Gone, std::memory_order_release);
    }

    ThreadEnd(ThreadEnd const&) = delete;
    ThreadEnd& operator=(ThreadEnd const&) = delete;

    // The thread that ends the process is told by nobody else. And when this code is linked into a plugin and goes with
    // it, no thread may come back to it.
    ~ThreadEnd()
    {
        if (s_state.exchange(State::Gone) == State::Ready)
            ::pthread_key_delete(m_key);
        Close();
    }

    /// False until the library is loaded: objects of a program that it is linked into may come before.
    static bool IsKnown() noexcept { return s_state.load(std::memory_order_acquire) != State::Early; }

    bool Register() const noexcept
    {
        return s_state.load(std::memory_order_acquire) == State::Ready &&
               ::pthread_setspecific(m_key, &t_objectCache) == 0;
    }

private:
    enum class State
    {
        Early,
        Ready,
        Gone,
    };

    static constinit std::atomic<State> s_state;
    pthread_key_t m_key{};
};

constinit std::atomic<ThreadEnd::State> ThreadEnd::s_state{ThreadEnd::State::Early};

ThreadEnd const s_threadEnd;

// Opens the cache on the first block that could be kept, so that a thread that frees nothing pays nothing.
bool Open() noexcept
{
    if (t_objectCache.phase != ObjectCache::Phase::Fresh || !ThreadEnd::IsKnown())
        return false;
    if (BypassCache() || !s_threadEnd.Register()) {
        t_objectCache.phase = ObjectCache::Phase::Closed;
        return false;
    }
    t_objectCache.phase = ObjectCache::Phase::Open;
    for (std::size_t bin = 0; bin < std::size(t_objectCache.bins); ++bin)
        t_objectCache.bins[bin].room = static_cast<std::uint32_t>(k_bytesKept / ObjectCache::BlockSize(bin));
    return true;
}

} // namespace

thread_local constinit ObjectCache t_objectCache;

void* ObjectCache::Allocate_(std::size_t size)
{
    // A checker is told the true size.
    return ::operator new(size > k_largest || BypassCache() ? size : BlockSize(BinOf(size)));
}

void ObjectCache::Free_(void* object, std::size_t size) noexcept
{
    if (size <= k_largest && Open())
        Keep(BinOf(size), object);
    else
        ::operator delete(object);
}

void* CachedObject::operator new(std::size_t size) { return ObjectCache::Take(size); }

void CachedObject::operator delete(void* object, std::size_t size) noexcept { ObjectCache::Release(object, size); }

void* CachedObject::operator new(std::size_t size, std::nothrow_t const&) noexcept
{
    try {
        return CachedObject::operator new(size);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

} // namespace Legacy::If::Detail
