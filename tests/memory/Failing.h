#pragma once

#include <cstddef>
#include <cstdint>

/// An allocator that counts and that can be told to fail. Which one it is, `operator new` or all of the C library's, is
/// decided by the source that a test program is linked with.
namespace Failing {

/// From here on the `nth` allocation of this thread fails, counted from 1; with `onwards`, all that follow it too.
void Arm(std::uint64_t nth, bool onwards) noexcept;

/// Back to an allocator that does not fail. Tells whether one has failed meanwhile.
bool Disarm() noexcept;

/// What is in use now, of all threads, and the most that was since the last #ResetPeak.
std::int64_t Blocks() noexcept;
std::int64_t Bytes() noexcept;
std::int64_t Peak() noexcept;
void ResetPeak() noexcept;

/// For the two allocators: whether to fail here, and what came and went.
bool Refuses() noexcept;
void* Taken(void* block) noexcept;
void Given(void* block) noexcept;

} // namespace Failing
