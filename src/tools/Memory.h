#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "tools/Api.h"

// Memory of the big lists. Small blocks come from malloc. Blocks of XBLOCK_LARGE bytes and more start on a 2 MB border and ask for
// huge pages, because first-touched small pages are the largest cost of most operations on big meshes; a few freed large
// blocks are kept for reuse. Content is undefined.

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
