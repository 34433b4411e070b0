#include <Legacy/If/Detail/NodePool.h>

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <algorithm>
#include <cstdint>

namespace Legacy::If::Detail {

namespace {

constexpr std::size_t k_pageSize = std::size_t{2} << 20; // of a large page, on most machines
constexpr std::size_t k_leastShare = 8;                  // a piece holds at least that part of what there is
constexpr std::size_t k_leastNodes = 2;

/// Only whole large pages, so that nothing beside the memory is touched. Where that is refused, pages are small.
void AskForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept
{
#ifdef MADV_HUGEPAGE
    if (bytes < 2 * k_pageSize)
        return;
    std::size_t const before = (0 - reinterpret_cast<std::uintptr_t>(memory)) % k_pageSize;
    madvise(static_cast<std::byte*>(memory) + before, (bytes - before) / k_pageSize * k_pageSize, MADV_HUGEPAGE);
#endif
}

} // namespace

void* AllocateLarge(std::size_t bytes)
{
    void* const memory = ::operator new(bytes);
    AskForLargePages(memory, bytes);
    return memory;
}

void* AllocateLarge(std::size_t bytes, std::align_val_t alignment)
{
    void* const memory = ::operator new(bytes, alignment);
    AskForLargePages(memory, bytes);
    return memory;
}

void NodePool::Grow_(std::size_t size)
{
    std::size_t const count = std::max(k_leastNodes, m_used / k_leastShare);
    std::size_t const bytes = sizeof(Link) + count * size;
    auto* const piece = static_cast<std::byte*>(AllocateLarge(bytes));
    m_pieces = ::new (piece) Link{m_pieces};
    m_next = piece + sizeof(Link);
    m_end = piece + bytes;
}

void NodePool::FreePieces_() noexcept
{
    while (Link* const piece = m_pieces) {
        m_pieces = piece->next;
        ::operator delete(piece);
    }
    m_free = nullptr;
    m_next = m_end = nullptr;
}

} // namespace Legacy::If::Detail
