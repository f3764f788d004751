#include "tools/Memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <random>
#include <thread>
#include <vector>

// Sanitizers end the program for want of memory, use memory of their own, and are slow with large blocks.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZED 1
#else
#define SANITIZED 0
#endif

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

// Blocks come, change their size and go; SIZE(random) gives the next size.
template <class SIZE> void RandomWork(unsigned int seed, std::size_t blockCount, int steps, SIZE nextSize)
{
    std::mt19937 random(seed);
    std::vector<Block> blocks(blockCount);
    for (int i = 0; i < steps; i++) {
        Block& block = blocks[random() % blocks.size()];
        const std::size_t size = nextSize(random);
        if (random() % 2) {
            ASSERT_TRUE(IsMarked(block, block.size));
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

// Over the borders where one kind of block becomes another.
void ChangeKinds(unsigned int seed)
{
    const std::size_t sizes[] = {0,
                                 1,
                                 100,
                                 XBLOCK_MIDDLE - 1,
                                 XBLOCK_MIDDLE,
                                 XBLOCK_LARGE - 1,
                                 XBLOCK_LARGE,
                                 XBLOCK_LARGE + 1,
                                 3 * XBLOCK_LARGE,
                                 5 * XBLOCK_LARGE + 12345};
    RandomWork(seed, 6, SANITIZED ? 40 : 150, [&](std::mt19937& random) { return sizes[random() % std::size(sizes)]; });
}

// Blocks of the middle: many small and few big ones, so that holes come up and several chunks fill and empty.
void FillAndEmptyChunks(unsigned int seed)
{
    RandomWork(seed, 60, SANITIZED ? 150 : 1500, [](std::mt19937& random) {
        const std::size_t most = random() % 4 ? XBLOCK_MIDDLE / 4 : XBLOCK_LARGE - XBLOCK_MIDDLE;
        return random() % 8 ? XBLOCK_MIDDLE + random() % most : 0;
    });
}

#if !SANITIZED
std::size_t ResidentBytes()
{
    std::size_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * 4096;
}
#endif

}

TEST(Memory, BlocksKeepTheirContentThroughEveryChangeOfSize)
{
    for (unsigned int seed = 0; seed < 3; seed++)
        ChangeKinds(seed);
    FillAndEmptyChunks(0);
    XTrimBlocks();
}

TEST(Memory, ThreadsShareTheKeptBlocks)
{
    std::vector<std::thread> threads;
    for (unsigned int seed = 10; seed < 14; seed++)
        threads.emplace_back(seed % 2 ? ChangeKinds : FillAndEmptyChunks, seed);
    for (std::thread& thread : threads)
        thread.join();
    XTrimBlocks();
}

#if !SANITIZED
TEST(Memory, GoesBackToTheSystem)
{
    XTrimBlocks();
    const std::size_t before = ResidentBytes(), mega = std::size_t{1} << 20;
    std::vector<void*> blocks;
    for (int i = 0; i < 200; i++) {
        blocks.push_back(XAllocBlock(mega));
        std::memset(blocks.back(), 1, mega);
    }
    for (void* const block : blocks)
        XFreeBlock(block, mega);
    EXPECT_LT(ResidentBytes(), before + 80 * mega) << "what is kept has a limit";
    XTrimBlocks();
    EXPECT_LT(ResidentBytes(), before + 8 * mega);
}

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
