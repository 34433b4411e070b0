#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

/// What the calling thread took from the heap, through operator new, since this object was made.
///
/// Make it right before the loop and report right after it:
///
///     Allocations const allocations;
///     for (auto _ : state)
///         …
///     allocations.Report(state);
class Allocations
{
public:
    Allocations() noexcept;

    /// Number of allocations.
    std::uint64_t Count() const noexcept;

    /// Bytes asked for, freed ones included.
    std::uint64_t Bytes() const noexcept;

    /// Adds the counters `allocs/op` and `bytes/op`: one operation is one iteration of the loop, or one of `operations`
    /// that each iteration does. Peers that call malloc themselves are not seen.
    void Report(benchmark::State& state, std::size_t operations = 1) const;

private:
    std::uint64_t m_count;
    std::uint64_t m_bytes;
};

/// Bytes in use on the whole heap with what the allocator itself spends on them, whoever took them and how;
/// 0 where the C library does not tell.
std::size_t HeapBytesInUse() noexcept;

/// Fails the row, and with it the short run that is a test, if a result is wrong. Call it after the loop.
void Check(benchmark::State& state, bool right);
