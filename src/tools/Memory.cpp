#include "tools/Memory.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include <sys/mman.h>

#if defined(__SANITIZE_ADDRESS__)
#define ZEL_CHECKED_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZEL_CHECKED_BLOCKS 1
#endif
#endif

namespace {

constexpr std::size_t HUGE_PAGE = std::size_t{2} << 20;

void* Checked(void* block)
{
    if (!block)
        throw std::bad_alloc();
    return block;
}

#if defined(ZEL_CHECKED_BLOCKS)

// The sanitizer knows blocks from malloc to the byte, mapped ones not at all.

void* AllocLarge(std::size_t bytes)
{
    void* block = nullptr;
    return posix_memalign(&block, HUGE_PAGE, bytes) == 0 ? block : nullptr;
}

void FreeLarge(void* block, std::size_t) { free(block); }

void* ResizeLarge(void* block, std::size_t oldBytes, std::size_t bytes)
{
    void* resized = Checked(AllocLarge(bytes));
    std::memcpy(resized, block, std::min(oldBytes, bytes));
    free(block);
    return resized;
}

void* AllocMiddle(std::size_t bytes) { return malloc(bytes); }

void FreeMiddle(void* block, std::size_t) { free(block); }

bool ResizeMiddle(void*, std::size_t, std::size_t) { return false; }

void Trim() {}

#else

std::size_t MappedSize(std::size_t bytes)
{
    if (bytes > SIZE_MAX - 2 * HUGE_PAGE)
        throw std::bad_alloc();
    return (bytes + HUGE_PAGE - 1) & ~(HUGE_PAGE - 1);
}

// Address space of `size` bytes that starts on a huge page border; null when there is none.
unsigned char* MapAligned(std::size_t size)
{
    void* const mapped = mmap(nullptr, size + HUGE_PAGE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return nullptr;
    unsigned char* const first = static_cast<unsigned char*>(mapped);
    const std::size_t skipped = -reinterpret_cast<std::uintptr_t>(first) & (HUGE_PAGE - 1);
    if (skipped)
        munmap(first, skipped);
    munmap(first + skipped + size, HUGE_PAGE - skipped);
    madvise(first + skipped, size, MADV_HUGEPAGE);
    return first + skipped;
}

// The last few large blocks freed: their pages are there already. The oldest goes first.
class BlockCache {
public:
    // A block of exactly `size` bytes, cut from the smallest one that fits without wasting more than it gives.
    unsigned char* Take(std::size_t size)
    {
        const std::lock_guard guard(m_lock);
        int best = -1;
        for (int i = 0; i < m_count; i++)
            if (m_blocks[i].size >= size && m_blocks[i].size <= 2 * size && (best < 0 || m_blocks[i].size < m_blocks[best].size))
                best = i;
        if (best < 0)
            return nullptr;
        const Block taken = Remove(best);
        if (taken.size > size)
            munmap(taken.bytes + size, taken.size - size);
        return taken.bytes;
    }
    bool Keep(unsigned char* bytes, std::size_t size)
    {
        if (size > MOST_BYTES)
            return false;
        const std::lock_guard guard(m_lock);
        while (m_count == MOST_BLOCKS || m_total + size > MOST_BYTES)
            DropOldest();
        m_blocks[m_count++] = {bytes, size};
        m_total += size;
        return true;
    }
    void Trim()
    {
        const std::lock_guard guard(m_lock);
        while (m_count)
            DropOldest();
    }

private:
    struct Block {
        unsigned char* bytes;
        std::size_t size;
    };
    static constexpr int MOST_BLOCKS = 32;
    static constexpr std::size_t MOST_BYTES = std::size_t{256} << 20;

    Block Remove(int index)
    {
        const Block removed = m_blocks[index];
        std::copy(m_blocks + index + 1, m_blocks + m_count, m_blocks + index);
        m_count--;
        m_total -= removed.size;
        return removed;
    }
    void DropOldest()
    {
        const Block oldest = Remove(0);
        munmap(oldest.bytes, oldest.size);
    }

    std::mutex m_lock;
    Block m_blocks[MOST_BLOCKS] = {};
    int m_count = 0;
    std::size_t m_total = 0;
};

constinit BlockCache s_cache;

// Blocks of the middle are runs of slots in chunks, a bit a slot; first fit keeps them together, and what is free again joins by
// itself. Huge pages without a block stay up to a limit, then their memory goes back; a chunk without memory goes.
class MiddleBlocks {
public:
    void* Take(std::size_t bytes)
    {
        const std::size_t count = SlotsOf(bytes);
        const std::lock_guard guard(m_lock);
        for (std::size_t i = 0; i < m_count; i++) {
            Chunk& chunk = m_chunks[i];
            if (chunk.mostRun < count)
                continue;
            if (const std::size_t first = FindRun(chunk, count); first < CHUNK_SLOTS)
                return Occupy(chunk, first, count);
            chunk.mostRun = count - 1;
        }
        Chunk* const added = AddChunk();
        return added ? Occupy(*added, 0, count) : nullptr;
    }
    void Give(void* block, std::size_t bytes)
    {
        const std::lock_guard guard(m_lock);
        Chunk& chunk = ChunkOf(block);
        Vacate(chunk, FirstOf(chunk, block), SlotsOf(bytes));
    }
    // False when what follows the block is taken.
    bool Resize(void* block, std::size_t oldBytes, std::size_t bytes)
    {
        const std::size_t oldCount = SlotsOf(oldBytes), count = SlotsOf(bytes);
        if (count == oldCount)
            return true;
        const std::lock_guard guard(m_lock);
        Chunk& chunk = ChunkOf(block);
        const std::size_t first = FirstOf(chunk, block), end = first + oldCount;
        if (count < oldCount)
            Vacate(chunk, first + count, oldCount - count);
        else if (first + count > CHUNK_SLOTS || NextSlot(chunk, end, true) < first + count)
            return false;
        else
            Occupy(chunk, end, count - oldCount);
        return true;
    }
    void Trim()
    {
        const std::lock_guard guard(m_lock);
        for (std::size_t i = m_count; i-- > 0;) {
            for (std::size_t page = 0; page < HUGE_PAGES; page++)
                if (m_chunks[i].resident >> page & 1 && IsIdle(m_chunks[i], page)) {
                    m_idle--;
                    Discard(m_chunks[i], page);
                }
            RemoveIfBare(m_chunks[i]);
        }
    }

private:
    static constexpr std::size_t SLOT = 1024, CHUNK = 8 * HUGE_PAGE;
    static constexpr std::size_t CHUNK_SLOTS = CHUNK / SLOT, HUGE_PAGES = CHUNK / HUGE_PAGE, WORDS = CHUNK_SLOTS / 64,
                                 WORDS_A_HUGE_PAGE = WORDS / HUGE_PAGES;
    static constexpr std::size_t MOST_IDLE = (std::size_t{64} << 20) / HUGE_PAGE;

    struct Chunk {
        unsigned char* bytes;
        std::uint64_t* used;    // a bit a slot, WORDS of them
        std::size_t free;
        std::size_t firstFree;    // no slot before it is free
        std::size_t mostRun;      // no run of free slots is longer
        unsigned int resident;    // a bit a huge page that has been used
    };

    static std::size_t SlotsOf(std::size_t bytes) { return (bytes + SLOT - 1) / SLOT; }
    static std::size_t FirstOf(const Chunk& chunk, const void* block)
    {
        return static_cast<std::size_t>(static_cast<const unsigned char*>(block) - chunk.bytes) / SLOT;
    }
    Chunk& ChunkOf(const void* block) const
    {
        const auto address = reinterpret_cast<std::uintptr_t>(block);
        std::size_t i = 0;
        while (address - reinterpret_cast<std::uintptr_t>(m_chunks[i].bytes) >= CHUNK)
            i++;
        return m_chunks[i];
    }
    // The next slot from `slot` on that is used, or free; CHUNK_SLOTS for none.
    static std::size_t NextSlot(const Chunk& chunk, std::size_t slot, bool used)
    {
        const std::uint64_t flip = used ? 0 : ~std::uint64_t{0};
        for (std::size_t word = slot / 64; word < WORDS; word++) {
            std::uint64_t bits = chunk.used[word] ^ flip;
            if (word == slot / 64)
                bits &= ~std::uint64_t{0} << slot % 64;
            if (bits)
                return word * 64 + static_cast<std::size_t>(std::countr_zero(bits));
        }
        return CHUNK_SLOTS;
    }
    static std::size_t FindRun(const Chunk& chunk, std::size_t count)
    {
        for (std::size_t first = chunk.firstFree;;) {
            first = NextSlot(chunk, first, false);
            if (first + count > CHUNK_SLOTS)
                return CHUNK_SLOTS;
            const std::size_t end = NextSlot(chunk, first, true);
            if (end - first >= count)
                return first;
            first = end;
        }
    }
    static bool IsIdle(const Chunk& chunk, std::size_t hugePage)
    {
        const std::uint64_t* const words = chunk.used + hugePage * WORDS_A_HUGE_PAGE;
        return std::all_of(words, words + WORDS_A_HUGE_PAGE, [](std::uint64_t word) { return word == 0; });
    }
    template <class EDIT> static void ForEachHugePage(std::size_t first, std::size_t count, EDIT edit)
    {
        constexpr std::size_t EACH = HUGE_PAGE / SLOT;
        for (std::size_t page = first / EACH; page <= (first + count - 1) / EACH; page++)
            edit(page);
    }
    static void Flip(Chunk& chunk, std::size_t first, std::size_t count)
    {
        for (const std::size_t end = first + count; first < end;) {
            const std::size_t bit = first % 64, size = std::min(64 - bit, end - first);
            chunk.used[first / 64] ^= (size == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << size) - 1) << bit;
            first += size;
        }
    }
    void* Occupy(Chunk& chunk, std::size_t first, std::size_t count)
    {
        ForEachHugePage(first, count, [&](std::size_t page) {
            if (chunk.resident >> page & 1 && IsIdle(chunk, page))
                m_idle--;
            chunk.resident |= 1u << page;
        });
        Flip(chunk, first, count);
        chunk.free -= count;
        if (first == chunk.firstFree)
            chunk.firstFree += count;
        return chunk.bytes + first * SLOT;
    }
    void Vacate(Chunk& chunk, std::size_t first, std::size_t count)
    {
        Flip(chunk, first, count);
        chunk.free += count;
        chunk.firstFree = std::min(chunk.firstFree, first);
        chunk.mostRun = CHUNK_SLOTS;
        ForEachHugePage(first, count, [&](std::size_t page) {
            if (!IsIdle(chunk, page))
                return;
            if (m_idle < MOST_IDLE)
                m_idle++;
            else
                Discard(chunk, page);
        });
        RemoveIfBare(chunk);
    }
    static void Discard(Chunk& chunk, std::size_t hugePage)
    {
        madvise(chunk.bytes + hugePage * HUGE_PAGE, HUGE_PAGE, MADV_DONTNEED);
        chunk.resident &= ~(1u << hugePage);
    }
    Chunk* AddChunk()
    {
        if (m_count == m_capacity) {
            const std::size_t capacity = 2 * m_capacity + 16;
            void* const grown = realloc(m_chunks, capacity * sizeof(Chunk));
            if (!grown)
                return nullptr;
            m_chunks = static_cast<Chunk*>(grown);
            m_capacity = capacity;
        }
        auto* const used = static_cast<std::uint64_t*>(calloc(WORDS, sizeof(std::uint64_t)));
        unsigned char* const bytes = used ? MapAligned(CHUNK) : nullptr;
        if (!bytes) {
            free(used);
            return nullptr;
        }
        m_chunks[m_count] = {bytes, used, CHUNK_SLOTS, 0, CHUNK_SLOTS, 0};
        return &m_chunks[m_count++];
    }
    void RemoveIfBare(Chunk& chunk)
    {
        if (chunk.free < CHUNK_SLOTS || chunk.resident)
            return;
        munmap(chunk.bytes, CHUNK);
        free(chunk.used);
        chunk = m_chunks[--m_count];
    }

    std::mutex m_lock;
    Chunk* m_chunks = nullptr;    // never freed: blocks may outlive static objects
    std::size_t m_count = 0, m_capacity = 0;
    std::size_t m_idle = 0;    // huge pages that are resident without a block
};

constinit MiddleBlocks s_middle;

void* AllocMiddle(std::size_t bytes)
{
    if (void* const block = s_middle.Take(bytes))
        return block;
    s_cache.Trim();
    return s_middle.Take(bytes);
}

void FreeMiddle(void* block, std::size_t bytes) { s_middle.Give(block, bytes); }

bool ResizeMiddle(void* block, std::size_t oldBytes, std::size_t bytes) { return s_middle.Resize(block, oldBytes, bytes); }

void Trim()
{
    s_cache.Trim();
    s_middle.Trim();
}

void* AllocLarge(std::size_t bytes)
{
    const std::size_t size = MappedSize(bytes);
    if (unsigned char* const kept = s_cache.Take(size))
        return kept;
    if (unsigned char* const mapped = MapAligned(size))
        return mapped;
    Trim();
    return MapAligned(size);
}

void FreeLarge(void* block, std::size_t bytes)
{
    const std::size_t size = MappedSize(bytes);
    if (!s_cache.Keep(static_cast<unsigned char*>(block), size))
        munmap(block, size);
}

// Pages change their address; no byte is copied.
void* ResizeLarge(void* block, std::size_t oldBytes, std::size_t bytes)
{
    const std::size_t oldSize = MappedSize(oldBytes), size = MappedSize(bytes);
    if (size <= oldSize) {
        if (size < oldSize)
            munmap(static_cast<unsigned char*>(block) + size, oldSize - size);
        return block;
    }
    if (mremap(block, oldSize, size, 0) != MAP_FAILED)
        return block;
    unsigned char* const target = static_cast<unsigned char*>(Checked(MapAligned(size)));
    if (mremap(block, oldSize, size, MREMAP_MAYMOVE | MREMAP_FIXED, target) != MAP_FAILED)
        return target;
    munmap(target, size);
    throw std::bad_alloc();
}

#endif

enum class Kind { SMALL, MIDDLE, LARGE };

Kind KindOf(std::size_t bytes) { return bytes < XBLOCK_MIDDLE ? Kind::SMALL : bytes < XBLOCK_LARGE ? Kind::MIDDLE : Kind::LARGE; }

}

void* XAllocBlock(std::size_t bytes)
{
    if (bytes == 0)
        return nullptr;
    switch (KindOf(bytes)) {
    case Kind::SMALL: return Checked(malloc(bytes));
    case Kind::MIDDLE: return Checked(AllocMiddle(bytes));
    default: return Checked(AllocLarge(bytes));
    }
}

void XFreeBlock(void* block, std::size_t bytes)
{
    if (!block)
        return;
    switch (KindOf(bytes)) {
    case Kind::SMALL: free(block); break;
    case Kind::MIDDLE: FreeMiddle(block, bytes); break;
    default: FreeLarge(block, bytes);
    }
}

void* XReallocBlock(void* block, std::size_t oldBytes, std::size_t bytes)
{
    if (!block || oldBytes == 0)
        return XAllocBlock(bytes);
    if (bytes == 0) {
        XFreeBlock(block, oldBytes);
        return nullptr;
    }
    const Kind kind = KindOf(bytes);
    if (kind == KindOf(oldBytes)) {
        if (kind == Kind::SMALL)
            return Checked(realloc(block, bytes));
        if (kind == Kind::LARGE)
            return ResizeLarge(block, oldBytes, bytes);
        if (ResizeMiddle(block, oldBytes, bytes))
            return block;
    }
    void* const moved = XAllocBlock(bytes);
    std::memcpy(moved, block, std::min(oldBytes, bytes));
    XFreeBlock(block, oldBytes);
    return moved;
}

void XTrimBlocks() { Trim(); }
