#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "tools/Api.h"

// Memory of the big lists. First-touched small pages are the largest cost of most operations on big meshes, so blocks from
// XBLOCK_MIDDLE bytes on lie in memory that asks for huge pages and is kept for reuse up to a limit: below XBLOCK_LARGE they share
// chunks of it, on borders of 1 KB; above, each starts on a 2 MB border of its own. Smaller blocks come from malloc. Content is
// undefined. Any thread may call.

constexpr std::size_t XBLOCK_MIDDLE = std::size_t{8} << 10;
constexpr std::size_t XBLOCK_LARGE = std::size_t{4} << 20;

/// Null for 0 bytes; throws std::bad_alloc. The caller keeps the size: freeing and growing need it.
ZEL_API void* XAllocBlock(std::size_t bytes);
/// Grows or shrinks; the first min(oldBytes, bytes) bytes stay. `block` may be null, `bytes` 0.
ZEL_API void* XReallocBlock(void* block, std::size_t oldBytes, std::size_t bytes);
ZEL_API void XFreeBlock(void* block, std::size_t bytes);
/// Gives the blocks that are kept for reuse back to the system.
ZEL_API void XTrimBlocks();

/// Gives containers their memory from these blocks.
template <class T> struct XBlockAllocator {
    using value_type = T;

    XBlockAllocator() = default;
    template <class U> XBlockAllocator(const XBlockAllocator<U>&) {}
    T* allocate(std::size_t count)
    {
        if (count > SIZE_MAX / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(XAllocBlock(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) { XFreeBlock(block, count * sizeof(T)); }
    bool operator==(const XBlockAllocator&) const { return true; }
};
