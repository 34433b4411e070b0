#pragma once

#include <atomic>
#include <cstdint>

namespace Orlek {

/// A signed 32-bit counter that any number of threads may change at once.
///
/// It is made for reference counts: taking a reference needs no ordering, dropping one orders everything that was
/// done to the object before it is destroyed.
class Atomic32
{
public:
    constexpr Atomic32() noexcept = default;
    constexpr explicit Atomic32(std::int32_t value) noexcept : m_value(value) {}

    Atomic32(Atomic32 const&) = delete;
    Atomic32& operator=(Atomic32 const&) = delete;

    /// The value now.
    std::int32_t Get() const noexcept { return m_value.load(std::memory_order_acquire); }

    /// Stores `value`.
    void Set(std::int32_t value) noexcept { m_value.store(value, std::memory_order_release); }

    /// Adds one and returns the value before.
    std::int32_t Increment() noexcept { return m_value.fetch_add(1, std::memory_order_relaxed); }

    /// Subtracts one and returns the value before.
    std::int32_t Decrement() noexcept { return m_value.fetch_sub(1, std::memory_order_acq_rel); }

    /// Drops a reference: subtracts one and tells whether that was the last. Whoever holds the only reference need not
    /// write the count any more, since nobody else can take one.
    bool Release() noexcept
    {
        return m_value.load(std::memory_order_acquire) <= 1 || m_value.fetch_sub(1, std::memory_order_acq_rel) <= 1;
    }

private:
    std::atomic<std::int32_t> m_value{0};
};

} // namespace Orlek
