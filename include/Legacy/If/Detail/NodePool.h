#pragma once

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace Legacy::If::Detail {

/// Memory for a table or for many nodes, to be given back with the plain operator delete. Much of it is laid on large
/// pages where the system has such: look-ups at random would otherwise wait for the address as long as for the entry.
void* AllocateLarge(std::size_t bytes);
void* AllocateLarge(std::size_t bytes, std::align_val_t alignment);

/// For a table that is a vector.
template<typename Value>
struct LargeAllocator
{
    using value_type = Value;

    LargeAllocator() noexcept = default;
    template<typename Other>
    LargeAllocator(LargeAllocator<Other> const&) noexcept
    {}

    Value* allocate(std::size_t count)
    {
        return static_cast<Value*>(AllocateLarge(count * sizeof(Value), k_alignment));
    }
    void deallocate(Value* values, std::size_t) noexcept { ::operator delete(values, k_alignment); }

    friend bool operator==(LargeAllocator const&, LargeAllocator const&) noexcept { return true; }

private:
    static constexpr std::align_val_t k_alignment{alignof(Value)};
};

/// The nodes of one tree or container, all of one size, side by side in pieces that grow with their number: less memory
/// than each takes of its own, and neighbours in order lie beside each other if they came so.
///
/// What is freed is kept for the next node, and the pieces go back once all their nodes are free. The first node stands
/// alone, outside of the pieces: it is the end of a container that may be empty. As good as its container beside
/// threads.
class NodePool
{
public:
    NodePool() noexcept = default;
    NodePool(NodePool const&) = delete;
    NodePool& operator=(NodePool const&) = delete;
    ~NodePool() { FreePieces_(); }

    /// The size that is asked for first is that of the nodes; what has another one is no node.
    void* Allocate(std::size_t size)
    {
        if (m_nodeSize == 0)
            m_nodeSize = size;
        if (size != m_nodeSize)
            return ::operator new(size);
        if (!m_single)
            return m_single = ::operator new(size);
        if (!m_free && m_next == m_end)
            Grow_(size);
        ++m_used;
        if (!m_free)
            return std::exchange(m_next, m_next + size);
        return std::exchange(m_free, m_free->next);
    }

    void Free(void* node, std::size_t size) noexcept
    {
        if (size != m_nodeSize) {
            ::operator delete(node);
            return;
        }
        if (node == m_single) {
            ::operator delete(std::exchange(m_single, nullptr));
            return;
        }
        m_free = ::new (node) Link{m_free};
        if (--m_used == 0)
            FreePieces_();
    }

private:
    struct Link
    {
        Link* next;
    };

    void Grow_(std::size_t size);
    void FreePieces_() noexcept;

    std::size_t m_nodeSize = 0;
    void* m_single = nullptr;
    Link* m_free = nullptr;
    std::byte* m_next = nullptr; // the rest of the last piece
    std::byte* m_end = nullptr;
    Link* m_pieces = nullptr;
    std::size_t m_used = 0; // without the single one
};

/// Lets a container take its nodes out of a pool, which must outlive it, and its tables out of large memory.
template<typename Value>
class PoolAllocator
{
public:
    using value_type = Value;
    using propagate_on_container_swap = std::true_type;

    PoolAllocator(NodePool& pool) noexcept : m_pool(&pool) {}
    template<typename Other>
    PoolAllocator(PoolAllocator<Other> const& other) noexcept : m_pool(other.m_pool)
    {}

    Value* allocate(std::size_t count)
    {
        static_assert(alignof(Value) <= alignof(void*));
        return static_cast<Value*>(count == 1 ? m_pool->Allocate(k_size) : AllocateLarge(count * k_size));
    }
    void deallocate(Value* values, std::size_t count) noexcept
    {
        if (count == 1)
            m_pool->Free(values, k_size);
        else
            ::operator delete(values);
    }

    friend bool operator==(PoolAllocator const& a, PoolAllocator const& b) noexcept { return a.m_pool == b.m_pool; }

private:
    template<typename>
    friend class PoolAllocator;

    static constexpr std::size_t k_size = sizeof(Value); // NOLINT(bugprone-sizeof-expression): of a pointer, too

    NodePool* m_pool;
};

} // namespace Legacy::If::Detail
