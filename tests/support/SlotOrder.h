#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

/// The order of the hash containers, step by step as tools/Hash.h tells it: what a table of keys looks like, slot by slot.
template <class KEY> class SlotOrder {
public:
    explicit SlotOrder(unsigned int size = 101) : m_slots(PrimeFrom(std::max(size, 101u))) {}

    /// True when the key is new.
    bool Insert(const KEY& key)
    {
        if (!Place(m_slots, key))
            return false;
        if (++m_count * 2 < m_slots.size())
            return true;
        std::vector<std::optional<KEY>> grown(PrimeFrom(static_cast<unsigned int>(std::min(6 * m_count, 2 * m_slots.size()))));
        for (const auto& slot : m_slots)
            if (slot)
                Place(grown, *slot);
        m_slots = std::move(grown);
        return true;
    }
    std::vector<KEY> Keys() const
    {
        std::vector<KEY> keys;
        for (const auto& slot : m_slots)
            if (slot)
                keys.push_back(*slot);
        return keys;
    }
    std::size_t GetTableSize() const { return m_slots.size(); }

    static unsigned int PrimeFrom(unsigned int n)
    {
        const auto isPrime = [](unsigned int candidate) {
            for (unsigned int d = 2; d * d <= candidate; d++)
                if (candidate % d == 0)
                    return false;
            return true;
        };
        while (!isPrime(n))
            n++;
        return n;
    }

private:
    static std::uint32_t Hash(int key) { return static_cast<std::uint32_t>(key) * 16; }
    template <class K> static std::uint32_t Hash(const K& key) { return key.GetHash(); }
    // Place k of the probe is k * k slots from the start.
    static bool Place(std::vector<std::optional<KEY>>& slots, const KEY& key)
    {
        for (std::uint64_t k = 0;; k++) {
            std::optional<KEY>& slot = slots[(Hash(key) % slots.size() + k * k) % slots.size()];
            if (slot && *slot == key)
                return false;
            if (!slot) {
                slot = key;
                return true;
            }
        }
    }

    std::vector<std::optional<KEY>> m_slots;
    std::size_t m_count = 0;
};
