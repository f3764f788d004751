#include "tools/Memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <new>
#include <random>
#include <thread>
#include <vector>

namespace {

struct Block {
    void* bytes = nullptr;
    std::size_t size = 0;
    unsigned char mark = 0;
};

// Marks on both ends and in each page between, so that moved or shared pages show.
void Mark(const Block& block)
{
    auto* const bytes = static_cast<unsigned char*>(block.bytes);
    for (std::size_t at = 0; at < block.size; at += 4096)
        bytes[at] = block.mark;
    if (block.size)
        bytes[block.size - 1] = block.mark;
}

bool IsMarked(const Block& block, std::size_t size)
{
    const auto* const bytes = static_cast<const unsigned char*>(block.bytes);
    for (std::size_t at = 0; at < size; at += 4096)
        if (bytes[at] != block.mark)
            return false;
    return true;
}

void RandomWork(unsigned int seed)
{
    std::mt19937 random(seed);
    const std::size_t sizes[] = {
        0, 1, 100, 4096, XBLOCK_LARGE - 1, XBLOCK_LARGE, XBLOCK_LARGE + 1, 3 * XBLOCK_LARGE, 5 * XBLOCK_LARGE + 12345};
    std::vector<Block> blocks(6);
    for (int i = 0; i < 150; i++) {
        Block& block = blocks[random() % blocks.size()];
        const std::size_t size = sizes[random() % std::size(sizes)];
        if (random() % 2) {
            XFreeBlock(block.bytes, block.size);
            block.bytes = XAllocBlock(size);
        } else {
            const std::size_t kept = std::min(size, block.size);
            block.bytes = XReallocBlock(block.bytes, block.size, size);
            ASSERT_TRUE(IsMarked(block, kept));
        }
        block.size = size;
        block.mark = static_cast<unsigned char>(random());
        ASSERT_EQ(block.bytes == nullptr, size == 0);
        ASSERT_TRUE(size < XBLOCK_LARGE || reinterpret_cast<std::uintptr_t>(block.bytes) % (2 << 20) == 0);
        Mark(block);
        if (random() % 50 == 0)
            XTrimBlocks();
    }
    for (const Block& block : blocks) {
        EXPECT_TRUE(IsMarked(block, block.size));
        XFreeBlock(block.bytes, block.size);
    }
}

}

TEST(Memory, BlocksKeepTheirContentThroughEveryChangeOfSize)
{
    for (unsigned int seed = 0; seed < 3; seed++)
        RandomWork(seed);
    XTrimBlocks();
}

TEST(Memory, ThreadsShareTheKeptBlocks)
{
    std::vector<std::thread> threads;
    for (unsigned int seed = 10; seed < 14; seed++)
        threads.emplace_back(RandomWork, seed);
    for (std::thread& thread : threads)
        thread.join();
    XTrimBlocks();
}

#if !defined(__SANITIZE_ADDRESS__)    // the sanitizer ends the program instead
TEST(Memory, TooMuchThrows)
{
    EXPECT_THROW(XAllocBlock(SIZE_MAX), std::bad_alloc);
    EXPECT_THROW(XAllocBlock(SIZE_MAX / 2), std::bad_alloc);
    void* block = XAllocBlock(XBLOCK_LARGE);
    std::memset(block, 5, XBLOCK_LARGE);
    EXPECT_THROW(XReallocBlock(block, XBLOCK_LARGE, SIZE_MAX / 2), std::bad_alloc);
    EXPECT_EQ(static_cast<unsigned char*>(block)[XBLOCK_LARGE - 1], 5);
    XFreeBlock(block, XBLOCK_LARGE);
}
#endif
