#include <Legacy/If/CachedObject.h>

#include <array>
#include <cstdint>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define LEGACY_IF_OBJECT_CACHE 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define LEGACY_IF_OBJECT_CACHE 0
#endif
#endif
#ifndef LEGACY_IF_OBJECT_CACHE
#define LEGACY_IF_OBJECT_CACHE 1
#endif

namespace Legacy::If::Detail {

#if LEGACY_IF_OBJECT_CACHE

namespace {

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
// It is small enough for the room that every loader keeps for libraries loaded late, which makes reaching it cheap.
#if defined(__ELF__)
[[gnu::tls_model("initial-exec")]]
#endif
thread_local constinit Cache t_cache;

struct Closer
{
    ~Closer()
    {
        t_cache.phase = Phase::Closed;
        for (std::size_t i = 0; i < t_cache.bins.size(); ++i) {
            Bin& bin = t_cache.bins[i];
            while (Block* const block = bin.first) {
                bin.first = block->next;
                ::operator delete(block);
            }
            bin.room = 0;
        }
    }
};

// Opens the cache on the first block that could be kept, so that a thread that frees nothing pays nothing.
bool Open() noexcept
{
    if (t_cache.phase != Phase::Fresh)
        return false;
    t_cache.phase = Phase::Open;
    for (std::size_t i = 0; i < t_cache.bins.size(); ++i)
        t_cache.bins[i].room = static_cast<std::uint32_t>(k_bytesKept / BlockSize(i));
    static thread_local Closer const closer;
    static_cast<void>(closer);
    return true;
}

} // namespace

void* CachedObject::operator new(std::size_t size)
{
    if (size > k_largest)
        return ::operator new(size);
    std::size_t const i = BinOf(size);
    Bin& bin = t_cache.bins[i];
    if (Block* const block = bin.first) {
        bin.first = block->next;
        ++bin.room;
        return block;
    }
    return ::operator new(BlockSize(i));
}

void CachedObject::operator delete(void* object, std::size_t size) noexcept
{
    if (size > k_largest) {
        ::operator delete(object);
        return;
    }
    std::size_t const i = BinOf(size);
    Bin& bin = t_cache.bins[i];
    if (bin.room == 0 && !Open()) {
        ::operator delete(object);
        return;
    }
    bin.first = ::new (object) Block{bin.first};
    --bin.room;
}

#else

void* CachedObject::operator new(std::size_t size) { return ::operator new(size); }
void CachedObject::operator delete(void* object, std::size_t) noexcept { ::operator delete(object); }

#endif

void* CachedObject::operator new(std::size_t size, std::nothrow_t const&) noexcept
{
    try {
        return CachedObject::operator new(size);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

} // namespace Legacy::If::Detail
