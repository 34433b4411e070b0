#pragma once

namespace Legacy::If::Detail {

/// Runs a loop over plain arrays. Where processors differ in the width of their registers, the loop is compiled twice
/// and runs as wide as this one can; what it computes is the same. `loop` takes nothing and holds no branch but its
/// own.
#if defined(__x86_64__) && defined(__GNUC__)

// Everything that the loop calls becomes part of it, and so is compiled for the wide registers too. The loop is taken
// by value: what it has captured then cannot be among the bytes that it writes.
template<typename Loop>
[[gnu::target("avx2"), gnu::flatten]] auto RunWide(Loop loop) noexcept
{
    return loop();
}

template<typename Loop>
auto RunLoop(Loop loop) noexcept
{
    return __builtin_cpu_supports("avx2") ? RunWide(loop) : loop();
}

#else

template<typename Loop>
auto RunLoop(Loop loop) noexcept
{
    return loop();
}

#endif

} // namespace Legacy::If::Detail
