#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <random>
#include <vector>

#include "support/Checksum.h"
#include "support/Streams.h"
#include "tools/SimpleCollection.h"

namespace {

using Collection = CSimpleCollection<int, unsigned short>;
using Lists = std::vector<std::vector<int>>;

constexpr unsigned int GROW = Collection::ENTRIES_EMPTY | Collection::ESTIMATE_ADDED;
constexpr unsigned int EXACT = GROW | Collection::NO_MARGIN;

Lists Contents(const Collection& collection)
{
    Lists lists;
    for (unsigned int i = 0; i < collection.GetEntryCount(); i++) {
        unsigned int count;
        const int* items = collection.GetItems(i, count);
        lists.emplace_back(items, items + count);
    }
    return lists;
}

void Fill(Collection& collection, const Lists& lists)
{
    for (const auto& list : lists)
        collection.AppendEntries(1, static_cast<unsigned int>(list.size()),
                                 [&](int* items, unsigned int) { std::copy(list.begin(), list.end(), items); });
}

// No two entries share a byte, and all lie in the used part of the pool.
void CheckLayout(const Collection& collection)
{
    std::vector<std::pair<std::uint64_t, std::uint64_t>> blocks;
    for (unsigned int i = 0; i < collection.GetEntryCount(); i++) {
        EXPECT_LE(collection.GetItemCount(i), collection.GetEntryCapacity(i));
        const std::uint64_t offset = collection.GetOffsets().GetAt(i);
        blocks.emplace_back(offset, offset + 4 + 4 * collection.GetEntryCapacity(i));
    }
    std::sort(blocks.begin(), blocks.end());
    for (std::size_t i = 1; i < blocks.size(); i++)
        EXPECT_LE(blocks[i - 1].second, blocks[i].first);
    EXPECT_LE(blocks.empty() ? 0 : blocks.back().second, collection.GetPoolUsed());
    EXPECT_LE(collection.GetPoolUsed(), collection.GetPoolCapacity());
    EXPECT_EQ(collection.GetOffsets().GetSize(), collection.GetEntryCount());
}

}

TEST(SimpleCollection, RefusesMoreItemsThanTheCountHolds)
{
    Collection collection;
    collection.SetCollectionSize(1, 3, GROW);
    const std::uint64_t used = collection.GetPoolUsed();
    EXPECT_EQ(collection.SetEntrySize(0, 65536, true), nullptr);
    EXPECT_EQ(collection.SetEntrySize(1, 1, true), nullptr);
    EXPECT_FALSE(collection.SetCollectionSize(5, 65536, GROW));
    EXPECT_FALSE(collection.AppendEntries(1, 65536, [](int*, unsigned int) {}));
    const unsigned int tooLarge = 70000;
    EXPECT_FALSE(collection.AppendEntries(1, &tooLarge, [](int*, unsigned int) {}));
    EXPECT_EQ(collection.AddEntry(70000), 0xFFFFFFFF);
    EXPECT_EQ(collection.GetEntryCount(), 1u);
    EXPECT_EQ(collection.GetPoolUsed(), used);

    for (int i = 0; i < 65535; i++)
        ASSERT_TRUE(collection.AddItem(0, i));
    EXPECT_FALSE(collection.AddItem(0, 1));
    EXPECT_EQ(collection.GetItemCount(0), 65535u);
    EXPECT_LT(collection.GetPoolCapacity(), 10u << 20) << "items one by one must not cost the square of their number";
}

TEST(SimpleCollection, FillsPlacesInAnyOrder)
{
    // Faults in mind: a place on a header; an empty entry shifts those behind it; counts of 64 bits cut to 32; capacities that the
    // next item by item does not find.
    const auto check = [](auto sizes) {
        Collection collection;
        Fill(collection, {{7, 7, 7}});
        int* const pool = collection.InitPlaces(4, sizes);
        ASSERT_TRUE(pool);
        const int entries[] = {3, 0, 3, 2, 0};
        for (int i = 0; i < 5; i++)
            pool[sizes[entries[i]]++] = 10 + i;
        EXPECT_EQ(Contents(collection), (Lists{{11, 14}, {}, {13}, {10, 12}}));
        EXPECT_EQ(collection.GetPoolUsed(), 36u);
        EXPECT_EQ(collection.GetPoolCapacity(), 36u);
        CheckLayout(collection);
        EXPECT_TRUE(collection.AddItem(1, 5));
        EXPECT_EQ(Contents(collection), (Lists{{11, 14}, {5}, {13}, {10, 12}}));
    };
    unsigned int narrow[] = {2, 0, 1, 2};
    std::uint64_t wide[] = {2, 0, 1, 2};
    check(narrow);
    check(wide);

    Collection refused;
    Fill(refused, {{1}});
    unsigned int tooLarge[] = {1, 65536};
    EXPECT_EQ(refused.InitPlaces(2, tooLarge), nullptr);
    EXPECT_EQ(Contents(refused), (Lists{{1}}));
    EXPECT_EQ(tooLarge[0], 1u);
}

// The sum is that of lists of lists under the same edits.
TEST(SimpleCollection, AgreesWithListsUnderRandomEdits)
{
    Checksum sum;
    std::mt19937 random(7);
    const auto below = [&](unsigned int n) { return static_cast<unsigned int>(random() % n); };
    for (int round = 0; round < 40; round++) {
        Collection collection;
        collection.SetCompactOnGrow(round % 2);
        for (int step = 0; step < 300; step++) {
            const unsigned int entries = collection.GetEntryCount(), entry = entries ? below(entries) : 0;
            switch (below(9)) {
            case 0: {
                const unsigned int count = below(40);
                collection.SetCollectionSize(count, below(6), below(2) ? GROW : EXACT);
                break;
            }
            case 1:
            case 2: collection.SetEntrySize(entry, below(8), true); break;
            case 3:
            case 4: collection.AddItem(entry, step); break;
            case 5:
                if (entries)
                    collection.RemoveItem(entry, 0);
                break;
            case 6: {
                const unsigned int size = below(5);
                collection.AppendEntries(2, size, [&](int* items, unsigned int) { std::iota(items, items + size, step); });
                break;
            }
            case 7: collection.FreeExtra(); break;
            case 8: {
                std::vector<unsigned int> source(entries);
                std::iota(source.begin(), source.end(), 0u);
                std::shuffle(source.begin(), source.end(), random);
                if (entries)
                    collection.Reorder(source.data(), entries);
            }
            }
            sum.Add(Contents(collection));
        }
        CheckLayout(collection);
        Collection copied(collection), loaded;
        ASSERT_EQ(Contents(copied), Contents(collection));
        ASSERT_TRUE(Load(loaded, Stored(collection)));
        ASSERT_EQ(Contents(loaded), Contents(collection));
        EXPECT_EQ(collection.GetPoolCapacity(), collection.GetLiveSize()) << "storing compacts";
    }
    EXPECT_EQ(sum.Get(), 0x2527A3E31110A57Bu);
}

TEST(SimpleCollection, RefusesDamagedStreams)
{
    Collection source;
    Fill(source, {{1, 2, 3}, {4, 5, 6}, {7}});
    const std::vector<unsigned char> whole = Stored(source);
    // entry count 4, used 8, capacity 8, then the pool: headers at 20, 36 and 52
    ASSERT_EQ(whole[20], 3);
    ASSERT_EQ(whole[52], 1);
    const struct {
        const char* name;
        std::size_t at;
        unsigned char value;
    } rows[] = {
        {"more entries than offsets", 0, 4},        {"fewer entries than offsets", 0, 2}, {"more entries than the pool holds", 1, 255},
        {"less used than the entries take", 4, 20}, {"more used than there is", 4, 60},   {"capacity beyond the stream", 17, 255},
        {"more items than capacity", 20, 4},        {"entry over its neighbour", 22, 4},  {"entry over the end", 54, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<unsigned char> bytes = whole;
        bytes[row.at] = row.value;
        Collection loaded;
        Fill(loaded, {{1}});
        EXPECT_FALSE(Load(loaded, bytes));
        EXPECT_EQ(loaded.GetEntryCount(), 0u);
        EXPECT_EQ(loaded.GetMemory(), 0u);
    }
    for (std::size_t length = 0; length < whole.size(); length++) {
        Collection loaded;
        EXPECT_FALSE(Load(loaded, {whole.begin(), whole.begin() + length})) << length;
    }
    std::mt19937 random(3);
    for (int i = 0; i < 3000; i++) {    // whatever loads is sound
        std::vector<unsigned char> bytes = whole;
        bytes[random() % bytes.size()] = static_cast<unsigned char>(random());
        bytes[random() % bytes.size()] ^= 1 << random() % 8;
        Collection loaded;
        if (Load(loaded, bytes))
            CheckLayout(loaded);
    }
}
