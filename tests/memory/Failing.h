#pragma once

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

/// An allocator that counts and that can be told to fail. Which one it is, `operator new` or all of the C library's, is
/// decided by the source that a test program is linked with.
namespace Failing {

inline constinit thread_local std::uint64_t t_left = 0; // allocations up to the one that fails; 0 is none
inline constinit thread_local bool t_onwards = false;
inline constinit thread_local bool t_failed = false;

/// What is in use now, of all threads, and the most that was since #s_peak was set to it last.
inline constinit std::atomic<std::int64_t> s_blocks{0}, s_bytes{0}, s_peak{0};

/// From here on the `nth` allocation of this thread fails, counted from 1; with `onwards`, all that follow it too.
inline void Arm(std::uint64_t nth, bool onwards) noexcept
{
    t_left = nth;
    t_onwards = onwards;
    t_failed = false;
}

/// Back to an allocator that does not fail. Tells whether one has failed meanwhile.
inline bool Disarm() noexcept
{
    t_left = 0;
    return t_failed;
}

/// For the two allocators: whether to fail here, and what came and went.
/// @{
inline bool Refuses() noexcept
{
    if (t_left == 0 || --t_left != 0)
        return false;
    t_left = t_onwards ? 1 : 0;
    return t_failed = true;
}

inline void* Taken(void* block) noexcept
{
    if (!block)
        return block;
    ++s_blocks;
    std::int64_t const bytes = s_bytes += static_cast<std::int64_t>(malloc_usable_size(block));
    std::int64_t peak = s_peak;
    while (peak < bytes && !s_peak.compare_exchange_weak(peak, bytes)) {
    }
    return block;
}

inline void Given(void* block) noexcept
{
    if (!block)
        return;
    --s_blocks;
    s_bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
}
/// @}

} // namespace Failing
