#include "Allocations.h"

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <new>
#include <thread>

#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 33)
#include <malloc.h>
#define HAS_HEAP_STATISTICS 1
#endif

namespace {

// Of each thread its own: a shared count would put its cost on every row that runs in two threads.
thread_local std::uint64_t t_count = 0;
thread_local std::uint64_t t_bytes = 0;

void* Allocate(std::size_t size, std::size_t alignment = 0)
{
    ++t_count;
    t_bytes += size;
    void* const memory = alignment == 0 ? std::malloc(size != 0 ? size : 1)
                                        : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

// A second thread that only waits, as every program has that talks to a network: without one, counted pointers of the
// standard library count without atomic operations.
std::jthread const s_waiting([](std::stop_token const& stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any().wait(lock, stop, [] { return false; });
});

} // namespace

// The forms that are not here call one of these.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

Allocations::Allocations() noexcept : m_count(t_count), m_bytes(t_bytes) {}

std::uint64_t Allocations::Count() const noexcept { return t_count - m_count; }

std::uint64_t Allocations::Bytes() const noexcept { return t_bytes - m_bytes; }

void Allocations::Report(benchmark::State& state, std::size_t operations) const
{
    double const scale = operations != 0 ? static_cast<double>(operations) : 1.0;
    // Taken before a counter is named, which allocates.
    double const count = static_cast<double>(Count());
    double const bytes = static_cast<double>(Bytes());
    state.counters["allocs/op"] = benchmark::Counter(count / scale, benchmark::Counter::kAvgIterations);
    state.counters["bytes/op"] = benchmark::Counter(bytes / scale, benchmark::Counter::kAvgIterations);
}

std::size_t HeapBytesInUse() noexcept
{
#ifdef HAS_HEAP_STATISTICS
    auto const statistics = mallinfo2();
    return statistics.uordblks + statistics.hblkhd;
#else
    return 0;
#endif
}

void Check(benchmark::State& state, bool right)
{
    if (!right)
        state.SkipWithError("wrong result");
}
