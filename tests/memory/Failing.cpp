#include "Failing.h"

#include <malloc.h>

#include <atomic>

namespace Failing {

namespace {

constinit thread_local std::uint64_t t_left = 0; // allocations up to the one that fails; 0 is none
constinit thread_local bool t_onwards = false;
constinit thread_local bool t_failed = false;

constinit std::atomic<std::int64_t> s_blocks{0};
constinit std::atomic<std::int64_t> s_bytes{0};
constinit std::atomic<std::int64_t> s_peak{0};

} // namespace

void Arm(std::uint64_t nth, bool onwards) noexcept
{
    t_left = nth;
    t_onwards = onwards;
    t_failed = false;
}

bool Disarm() noexcept
{
    t_left = 0;
    return t_failed;
}

std::int64_t Blocks() noexcept { return s_blocks; }
std::int64_t Bytes() noexcept { return s_bytes; }
std::int64_t Peak() noexcept { return s_peak; }
void ResetPeak() noexcept { s_peak = s_bytes.load(); }

bool Refuses() noexcept
{
    if (t_left == 0)
        return false;
    if (t_left > 1) {
        --t_left;
        return false;
    }
    t_left = t_onwards ? 1 : 0;
    t_failed = true;
    return true;
}

void* Taken(void* block) noexcept
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

void Given(void* block) noexcept
{
    if (!block)
        return;
    --s_blocks;
    s_bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
}

} // namespace Failing
