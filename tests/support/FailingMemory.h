#pragma once

#include <cstdlib>
#include <new>

// Memory that runs out when a test wants it to. Replaces malloc and what builds on it, operator new and small blocks of tools/Memory.h
// included, for the whole program: one file of a test program includes this. Not under the address sanitizer, which has a malloc of its own.

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HAS_FAILING_MEMORY 0
#else
#define HAS_FAILING_MEMORY 1

namespace FailingMemory {

inline thread_local long t_left = -1;          // allocations until one fails; below 0: none does
inline thread_local bool t_lasting = false;    // all behind it fail too

inline bool Fails()
{
    if (t_left < 0 || t_left-- > 0)
        return false;
    if (t_lasting)
        t_left = 0;
    return true;
}

/// Runs `work` with the n-th allocation of this thread failing; whether it got through.
template <class WORK> bool Run(long n, bool lasting, WORK work)
{
    t_lasting = lasting;
    t_left = n;
    try {
        work();
    } catch (const std::bad_alloc&) {
        t_left = -1;
        return false;
    }
    t_left = -1;
    return true;
}

}

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) { return FailingMemory::Fails() ? nullptr : __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) { return FailingMemory::Fails() ? nullptr : __libc_calloc(count, size); }
void* realloc(void* block, std::size_t size) { return FailingMemory::Fails() ? nullptr : __libc_realloc(block, size); }
}
#endif
