#include "tools/Memory.h"

#include <algorithm>
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

bool IsLarge(std::size_t bytes) { return bytes >= XBLOCK_LARGE; }

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
    static constexpr int MOST_BLOCKS = 8;
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

void* AllocLarge(std::size_t bytes)
{
    const std::size_t size = MappedSize(bytes);
    if (unsigned char* const kept = s_cache.Take(size))
        return kept;
    if (unsigned char* const mapped = MapAligned(size))
        return mapped;
    s_cache.Trim();
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

}

void* XAllocBlock(std::size_t bytes)
{
    if (bytes == 0)
        return nullptr;
    return Checked(IsLarge(bytes) ? AllocLarge(bytes) : malloc(bytes));
}

void XFreeBlock(void* block, std::size_t bytes)
{
    if (!block)
        return;
    if (IsLarge(bytes))
        FreeLarge(block, bytes);
    else
        free(block);
}

void* XReallocBlock(void* block, std::size_t oldBytes, std::size_t bytes)
{
    if (!block || oldBytes == 0)
        return XAllocBlock(bytes);
    if (bytes == 0) {
        XFreeBlock(block, oldBytes);
        return nullptr;
    }
    if (IsLarge(oldBytes) && IsLarge(bytes))
        return ResizeLarge(block, oldBytes, bytes);
    if (!IsLarge(oldBytes) && !IsLarge(bytes))
        return Checked(realloc(block, bytes));
    void* const moved = XAllocBlock(bytes);
    std::memcpy(moved, block, std::min(oldBytes, bytes));
    XFreeBlock(block, oldBytes);
    return moved;
}

void XTrimBlocks()
{
#if !defined(ZEL_CHECKED_BLOCKS)
    s_cache.Trim();
#endif
}
