#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "tools/Hash.h"
#include "tools/SimpleCollection.h"

/// Map from a key to a list of values.
///
/// Each key has an entry, numbered in the order in which the keys were first met; the values of all entries lie in one collection.
/// The hash table over the keys holds entry numbers alone, four bytes a slot. Hashing, probing, growth and walks are those of
/// tools/Hash.h, so that slot order is the same for the same keys in the same order. Keys are never removed one by one.
///
/// `S` counts the values of an entry: with unsigned short an entry holds 65,535 of them, and what comes later is left out.
template <class KEY, class VALUE, class S> class CAssociationMap {
public:
    static constexpr unsigned int NO_ENTRY = 0xFFFFFFFF;

    CAssociationMap() = default;

    /// Empties the map and makes room for `count` keys without growth. Entries will have room for `capacity` values.
    void Reserve(unsigned int count, unsigned int capacity)
    {
        RemoveAll();
        const std::uint64_t slots = std::clamp<std::uint64_t>(std::uint64_t{2} * count + 1, 101, 0xFFFFFFF0);
        InitSlots(NextPrime(static_cast<unsigned int>(slots)));
        m_keys.reserve(count);
        m_values.SetDefaultCapacity(capacity);
    }
    void RemoveAll()
    {
        m_slots = {};
        m_size = 0;
        m_keys.clear();
        m_values.RemoveAll();
    }

    unsigned int GetCount() const { return static_cast<unsigned int>(m_keys.size()); }
    bool IsEmpty() const { return m_keys.empty(); }
    unsigned int GetTableSize() const { return m_size; }

    /// Entry of a key, or NO_ENTRY.
    unsigned int Find(const KEY& key) const { return m_size ? Probe(key, Start(key)).entry : NO_ENTRY; }
    /// Entry of a key; a new key gets the next one, without values.
    unsigned int Insert(const KEY& key)
    {
        if (m_size == 0)
            InitSlots(NextPrime(101));
        const unsigned int entry = InsertAt(key, Start(key));
        if (entry == m_values.GetEntryCount())
            m_values.AddEntry(m_values.GetDefaultCapacity());
        return entry;
    }
    /// Appends a value to the key's entry; false when the entry is full.
    bool Add(const KEY& key, const VALUE& value) { return m_values.AddItem(Insert(key), value); }

    const KEY& GetKey(unsigned int entry) const { return m_keys[entry]; }
    /// The values of an entry in place; null and 0 without any and for NO_ENTRY. They move when values are added.
    VALUE* GetValues(unsigned int entry, int& count)
    {
        unsigned int items;
        VALUE* values = m_values.GetItems(entry, items);
        count = static_cast<int>(items);
        return items ? values : nullptr;
    }
    const VALUE* GetValues(unsigned int entry, int& count) const { return const_cast<CAssociationMap*>(this)->GetValues(entry, count); }
    int GetValueCount(unsigned int entry) const { return static_cast<int>(m_values.GetItemCount(entry)); }

    /// Walk by slot: start with GetFirst, end at HASH_END. GetNext gives the entry at `pos` and moves `pos` on.
    unsigned int GetFirst() const { return NextUsed(0); }
    unsigned int GetNext(unsigned int& pos) const
    {
        const unsigned int entry = m_slots[pos] - 1;
        pos = NextUsed(pos + 1);
        return entry;
    }

    // Bulk builds: insert all keys, lay the values out, push them.

    /// Entries of `count` keys, new ones made in order. A table in memory of its own is probed a batch at a time, behind prefetches.
    void InsertKeys(const KEY* keys, unsigned int count, unsigned int* entries)
    {
        constexpr unsigned int BATCH = 32;
        if (m_size == 0)
            InitSlots(NextPrime(101));
        unsigned int starts[BATCH];
        for (unsigned int done = 0; done < count; done += BATCH) {
            const unsigned int batch = count - done < BATCH ? count - done : BATCH;
            const unsigned int size = m_size;
            for (unsigned int i = 0; i < batch; i++) {
                starts[i] = Start(keys[done + i]);
                __builtin_prefetch(&m_slots[starts[i]]);
            }
            for (unsigned int i = 0; i < batch; i++)
                if (const unsigned int slot = m_slots[starts[i]])
                    __builtin_prefetch(&m_keys[slot - 1]);
            for (unsigned int i = 0; i < batch; i++)
                entries[done + i] = InsertAt(keys[done + i], size == m_size ? starts[i] : Start(keys[done + i]));
        }
    }
    /// Gives every entry room for exactly counts[entry] values; their values go.
    void InitValues(std::vector<unsigned int> counts)
    {
        for (unsigned int& count : counts)
            count = count < MAX_VALUES ? count : MAX_VALUES;
        m_values.InitExact(static_cast<unsigned int>(counts.size()), counts.data());
    }
    /// Appends a value to an entry that has room; left out when it has none.
    void PushValue(unsigned int entry, const VALUE& value)
    {
        if (m_values.GetItemCount(entry) < m_values.GetEntryCapacity(entry))
            m_values.PushItem(entry, value);
    }
    /// Gives spare memory back; the slots stay.
    void FreeExtra()
    {
        m_keys.shrink_to_fit();
        m_values.FreeExtra();
    }

private:
    static constexpr unsigned int MAX_VALUES = static_cast<S>(~S{0});
    static constexpr bool NARROW_HASH = requires(const KEY& key) { requires sizeof(key.GetHash()) == 4; };

    struct Place {
        unsigned int slot;
        unsigned int entry;          ///< NO_ENTRY: the slot is free
    };

    void InitSlots(unsigned int size)
    {
        m_slots.assign(size, 0);
        m_size = size;
        m_inverse = ~std::uint64_t{0} / size + 1;
    }
    // hash % size. For 32-bit hashes by multiplication with the size's inverse, which is exact for them.
    unsigned int Start(const KEY& key) const
    {
        if constexpr (NARROW_HASH) {
            const std::uint64_t fraction = m_inverse * key.GetHash();
            return static_cast<unsigned int>((static_cast<unsigned __int128>(fraction) * m_size) >> 64);
        } else
            return static_cast<unsigned int>(HashKey(key) % m_size);
    }
    Place Probe(const KEY& key, unsigned int slot) const
    {
        for (unsigned int step = 1; m_slots[slot] != 0; step += 2) {
            const unsigned int entry = m_slots[slot] - 1;
            if (m_keys[entry] == key)
                return {slot, entry};
            slot = Advance(slot, step);
        }
        return {slot, NO_ENTRY};
    }
    unsigned int InsertAt(const KEY& key, unsigned int start)
    {
        const Place place = Probe(key, start);
        if (place.entry != NO_ENTRY)
            return place.entry;
        const unsigned int entry = GetCount();
        m_keys.push_back(key);
        m_slots[place.slot] = entry + 1;
        if (std::uint64_t{2} * m_keys.size() >= m_size)
            Rehash();
        return entry;
    }
    unsigned int Advance(unsigned int slot, unsigned int step) const
    {
        const std::uint64_t next = std::uint64_t{slot} + step;
        return static_cast<unsigned int>(next < m_size ? next : next % m_size);
    }
    unsigned int NextUsed(unsigned int slot) const
    {
        while (slot < m_size && m_slots[slot] == 0)
            slot++;
        return slot < m_size ? slot : HASH_END;
    }
    // Slot by slot: the order in which keys stand decides where they go.
    void Rehash()
    {
        const std::uint64_t six = std::uint64_t{6} * m_keys.size(), two = std::uint64_t{2} * m_size;
        const std::vector<unsigned int> old = std::move(m_slots);
        InitSlots(NextPrime(static_cast<unsigned int>(six < two ? six : two)));
        for (const unsigned int entry : old) {
            if (entry == 0)
                continue;
            unsigned int slot = Start(m_keys[entry - 1]);
            for (unsigned int step = 1; m_slots[slot] != 0; step += 2)
                slot = Advance(slot, step);
            m_slots[slot] = entry;
        }
    }

    std::vector<unsigned int> m_slots;                   // entry + 1; 0 is free
    unsigned int m_size = 0;
    std::uint64_t m_inverse = 0;                         // 2^64 / size, rounded up
    std::vector<KEY> m_keys;                             // by entry
    CSimpleCollection<VALUE, S> m_values;
};
