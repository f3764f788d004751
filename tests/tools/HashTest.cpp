#include "tools/Hash.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/Checksum.h"

namespace {

std::vector<int> Order(const CHashTable<int>& table)
{
    std::vector<int> order;
    for (unsigned int pos = table.GetFirst(); pos != HASH_END;)
        order.push_back(table.GetNext(pos));
    return order;
}

}

TEST(Hash, GivesTheOrderOfTheModelOverRandomEdits)
{
    // The sum is that of a table in which place k of a key is start + k * k, searched slot by slot.
    std::mt19937 random(7);
    Checksum sum;
    for (const int range : {60, 400, 5000}) {
        CHashTable<int> table;
        for (int i = 0; i < 6000; i++) {
            const int key = static_cast<int>(random() % range) * 37 - range * 18;
            const unsigned int what = random() % 100;
            sum.Add(what < 50 ? table.Insert(key) : what < 90 ? table.Remove(key) : table.Find(key));
            if (random() % 2000 == 0)
                table.RemoveAll();
            if (random() % 500 == 0)
                table = CHashTable<int>(CHashTable<int>(table));
            sum.Add(table.GetTableSize());
            if (i % 20 == 0)
                sum.Add(Order(table));
        }
    }
    EXPECT_EQ(sum.Get(), 0x94A70D820D74B284u);
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
