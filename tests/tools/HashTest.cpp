#include "tools/Hash.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

bool IsPrimeByDivision(std::uint64_t n)
{
    for (std::uint64_t d = 2; d * d <= n; d++)
        if (n % d == 0)
            return false;
    return n > 1;
}

unsigned int PrimeFrom(std::uint64_t n)
{
    while (!IsPrimeByDivision(n))
        n++;
    return static_cast<unsigned int>(n);
}

std::vector<int> Order(const CHashTable<int>& table)
{
    std::vector<int> order;
    for (unsigned int pos = table.GetFirst(); pos != HASH_END;)
        order.push_back(table.GetNext(pos));
    return order;
}

// The rules in words of one line each: place k of a key is start + k * k.
struct Model {
    struct Slot {
        std::optional<int> key;
        bool deleted = false;
    };
    std::vector<Slot> slots = std::vector<Slot>(101);

    Slot& Place(int key, std::uint64_t k) { return slots[(static_cast<std::uint32_t>(key) * 16u + k * k) % slots.size()]; }
    Slot* Find(int key)
    {
        for (std::uint64_t k = 0; Place(key, k).key || Place(key, k).deleted; k++)
            if (Place(key, k).key == key)
                return &Place(key, k);
        return nullptr;
    }
    bool Insert(int key)
    {
        if (Find(key))
            return false;
        std::uint64_t k = 0;
        while (Place(key, k).key)
            k++;
        Place(key, k) = {key, false};
        std::uint64_t taken = 0, count = 0;
        for (const Slot& slot : slots) {
            taken += slot.key || slot.deleted;
            count += slot.key.has_value();
        }
        if (2 * taken >= slots.size())
            Rehash(PrimeFrom(std::max<std::uint64_t>(101, std::min<std::uint64_t>(6 * count, 2 * slots.size()))));
        return true;
    }
    void Rehash(unsigned int size)
    {
        const std::vector<Slot> old = std::exchange(slots, std::vector<Slot>(size));
        for (const Slot& slot : old)
            if (slot.key) {
                std::uint64_t k = 0;
                while (Place(*slot.key, k).key)
                    k++;
                Place(*slot.key, k).key = slot.key;
            }
    }
    bool Remove(int key)
    {
        Slot* slot = Find(key);
        if (slot)
            *slot = {std::nullopt, true};
        return slot != nullptr;
    }
    std::vector<int> Order() const
    {
        std::vector<int> order;
        for (const Slot& slot : slots)
            if (slot.key)
                order.push_back(*slot.key);
        return order;
    }
};

}

TEST(NextPrime, IsTheSmallestOneNotBelow)
{
    for (unsigned int n = 0; n < 30000; n++)
        ASSERT_EQ(NextPrime(n), PrimeFrom(n)) << n;
    // Composites that pass single rounds of the pseudoprime test, squares of primes, and the end of the range.
    for (const unsigned int n :
         {3215031751u, 1373653u, 25326001u, 464155845u, 65521u * 65521u, 2147483648u, 4294967279u, 4294967280u, 4294967291u})
        EXPECT_EQ(NextPrime(n), PrimeFrom(n)) << n;
    EXPECT_EQ(NextPrime(4294967295u), 4294967291u);    // nothing above it in 32 bits
}

TEST(Hash, SlotsFollowTheProbe)
{
    // 101 slots. Keys that differ by 101 start at the same slot; 1 starts at 16, so the places are 16, 17, 20, 25.
    CHashTable<int> table;
    for (const int key : {203, 1, 102, 2, 6})    // 2 starts at 32, 6 at 96
        EXPECT_TRUE(table.Insert(key));
    EXPECT_EQ(Order(table), (std::vector<int>{203, 1, 102, 2, 6}));
    EXPECT_FALSE(table.Insert(102));
    EXPECT_TRUE(table.Remove(1));
    EXPECT_FALSE(table.Remove(1));
    EXPECT_TRUE(table.Find(102));    // reached over the deleted slot
    table.Insert(304);               // fills slot 17, though its search ended at 25
    table.Insert(405);
    EXPECT_EQ(Order(table), (std::vector<int>{203, 304, 102, 405, 2, 6}));
}

TEST(Hash, GrowsWhenHalfIsTaken)
{
    CHashTable<int> table;
    for (int key = 0; key < 50; key++)
        table.Insert(key);
    EXPECT_EQ(table.GetTableSize(), 101u);
    table.Insert(50);    // 51 of 101: min(6 * 51, 2 * 101) = 202
    EXPECT_EQ(table.GetTableSize(), 211u);

    // Deleted slots count, and many of them make the table no larger: 51 used up, one alive.
    CHashTable<int> churned;
    for (int key = 0; key < 50; key++) {
        churned.Insert(key);
        churned.Remove(key);
    }
    churned.Insert(1000);
    EXPECT_EQ(churned.GetTableSize(), 101u);
    EXPECT_EQ(Order(churned), std::vector<int>{1000});
    for (int key = 0; key < 49; key++)
        churned.Insert(key);
    EXPECT_EQ(churned.GetTableSize(), 101u);    // the rehash forgot what was deleted
}

TEST(Hash, AgreesWithTheModelOverRandomEdits)
{
    std::mt19937 random(7);
    for (const int range : {60, 400, 5000}) {
        CHashTable<int> table;
        Model model;
        for (int i = 0; i < 6000; i++) {
            const int key = static_cast<int>(random() % range) * 37 - range * 18;
            const unsigned int what = random() % 100;
            if (what < 50)
                ASSERT_EQ(table.Insert(key), model.Insert(key));
            else if (what < 90)
                ASSERT_EQ(table.Remove(key), model.Remove(key));
            else
                ASSERT_EQ(table.Find(key), model.Find(key) != nullptr);
            if (random() % 2000 == 0) {
                table.RemoveAll();
                model = Model();
            }
            if (random() % 500 == 0)
                table = CHashTable<int>(CHashTable<int>(table));
            ASSERT_EQ(table.GetTableSize(), model.slots.size());
            if (i % 20 == 0) {
                ASSERT_EQ(Order(table), model.Order());
            }
        }
    }
}

TEST(Hash, MapKeepsEntersAndReplaces)
{
    CHashMap<unsigned int, unsigned int, std::string> map(1000);
    EXPECT_EQ(map.GetTableSize(), 1009u);
    for (unsigned int key = 0; key < 3000; key++)
        EXPECT_TRUE(map.Insert(key * 0x01000001, std::to_string(key)));
    EXPECT_FALSE(map.Insert(0, "other"));
    EXPECT_EQ(*map.Find(0), "0");
    map.SetAt(0, "new");
    EXPECT_EQ(map[0], "new");
    EXPECT_EQ(map[7], "");
    const CHashMap<unsigned int, unsigned int, std::string> copy = map;
    map.RemoveAll();
    EXPECT_EQ(map.GetTableSize(), 1009u);
    EXPECT_EQ(map.Find(0), nullptr);
    int count = 0;
    for (const auto& [key, value] : copy)
        count += key == 0 ? value == "new" : key == 7 ? value.empty() : std::stoul(value) * 0x01000001u % 0x100000000u == key;
    EXPECT_EQ(count, 3001);
}
