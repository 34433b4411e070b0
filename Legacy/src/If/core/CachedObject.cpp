#include <Legacy/If/Detail/CachedObject.h>

#include <pthread.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

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

// Common allocators hand out multiples of the step less a word of their own: blocks of just that size waste nothing.
constexpr std::size_t k_step = 16;
constexpr std::size_t k_word = sizeof(std::size_t);
constexpr std::size_t k_largest = 128;
constexpr std::size_t k_bytesKept = 65536; // for each size of block

constexpr std::size_t BinOf(std::size_t size) noexcept { return (size + k_word - 1) / k_step; }
constexpr std::size_t BlockSize(std::size_t bin) noexcept { return (bin + 1) * k_step - k_word; }

struct Block
{
    Block* next;
};

struct Bin
{
    Block* first = nullptr;
    std::uint32_t room = 0;
};

enum class Phase : unsigned char
{
    Fresh,
    Open,
    Closed,
};

struct Cache
{
    std::array<Bin, BinOf(k_largest) + 1> bins;
    Phase phase = Phase::Fresh;
};

// Plain data without a destructor: it can be used at any point of a thread's life, also after its other objects ended.
thread_local constinit Cache t_cache;

void Close() noexcept
{
    t_cache.phase = Phase::Closed;
    for (Bin& bin : t_cache.bins) {
        bin.room = 0;
        while (Block* const block = bin.first) {
            bin.first = block->next;
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
        return s_state.load(std::memory_order_acquire) == State::Ready && ::pthread_setspecific(m_key, &t_cache) == 0;
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
    if (t_cache.phase != Phase::Fresh || !ThreadEnd::IsKnown())
        return false;
    if (BypassCache() || !s_threadEnd.Register()) {
        t_cache.phase = Phase::Closed;
        return false;
    }
    t_cache.phase = Phase::Open;
    for (std::size_t i = 0; i < t_cache.bins.size(); ++i)
        t_cache.bins[i].room = static_cast<std::uint32_t>(k_bytesKept / BlockSize(i));
    return true;
}

// The ways to the allocator stand apart, so that those through the cache need no registers kept for them: what they
// cost is most of what a small object costs.
[[gnu::noinline]] void* Allocate(std::size_t size)
{
    // A checker is told the true size.
    return ::operator new(size > k_largest || BypassCache() ? size : BlockSize(BinOf(size)));
}

void Keep(Bin& bin, void* object) noexcept
{
    bin.first = ::new (object) Block{bin.first};
    --bin.room;
}

[[gnu::noinline]] void Free(void* object, std::size_t size) noexcept
{
    if (size <= k_largest && Open())
        Keep(t_cache.bins[BinOf(size)], object);
    else
        ::operator delete(object);
}

} // namespace

void* CachedObject::operator new(std::size_t size)
{
    if (size <= k_largest) {
        Bin& bin = t_cache.bins[BinOf(size)];
        if (Block* const block = bin.first) {
            bin.first = block->next;
            ++bin.room;
            return block;
        }
    }
    return Allocate(size);
}

void CachedObject::operator delete(void* object, std::size_t size) noexcept
{
    if (size <= k_largest) {
        Bin& bin = t_cache.bins[BinOf(size)];
        if (bin.room != 0) {
            Keep(bin, object);
            return;
        }
    }
    Free(object, size);
}

void* CachedObject::operator new(std::size_t size, std::nothrow_t const&) noexcept
{
    try {
        return CachedObject::operator new(size);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

} // namespace Legacy::If::Detail
