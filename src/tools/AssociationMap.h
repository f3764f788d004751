#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tools/Hash.h"
#include "tools/Memory.h"
#include "tools/SimpleCollection.h"

/// Map from a key to a list of values.
///
/// Each key has an entry, numbered in the order in which the keys were first met; the values of all entries lie in one
/// collection. The hash table over the keys holds entry numbers alone, four bytes a slot. Hashing, probing, growth and
/// walks are those of tools/Hash.h, so that slot order is the same for the same keys in the same order. Keys are never
/// removed one by one.
///
/// `S` counts the values of an entry: with unsigned short an entry holds 65,535 of them, and what comes later is left
/// out.
template <class KEY, class VALUE, class S> class CAssociationMap {
public:
    static constexpr unsigned int NO_ENTRY = 0xFFFFFFFF;

    CAssociationMap() = default;

    /// Empties the map and makes room for `count` keys without growth. A new entry has room for `capacity` values.
    void Reserve(unsigned int count, unsigned int capacity)
    {
        RemoveAll();
        InitSlots(TableSize(std::uint64_t{2} * count + 1));
        m_keys.reserve(count);
        m_values.SetDefaultCapacity(capacity);
        if (count && capacity)
            m_values.ReserveCollection(count, std::uint64_t{count} * capacity - 1);
    }
    void RemoveAll()
    {
        m_slots = {};
        m_size = 0;
        m_keys = {};
        m_values.RemoveAll();
        m_valueCount = 0;
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
            InitSlots(TableSize(0));
        return InsertAt(key, Start(key));
    }
    /// Appends a value to the key's entry; false when the entry is full.
    bool Add(const KEY& key, const VALUE& value) { return AddValue(Insert(key), value); }
    /// Add for each key, values[i] to keys[i], in order. For builds: the table, the keys and the entries are looked at
    /// behind prefetches, a batch at a time, so that a table in memory of its own costs little more than one in the
    /// cache. `entries` receives the entry of each key; may be null.
    void AddAll(const KEY* keys, const VALUE* values, unsigned int count, unsigned int* entries = nullptr)
    {
        if (m_size == 0)
            InitSlots(TableSize(0));
        for (unsigned int done = 0; done < count; done += BATCH)
            AddBatch(keys + done, values + done, count - done < BATCH ? count - done : BATCH, entries ? entries + done : nullptr);
    }

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

    /// Gives spare memory back; the slots stay. Entries close up where that saves memory: as long as all of them are of
    /// one size their offsets take none, which is worth an unused value here and there.
    void FreeExtra()
    {
        m_keys.shrink_to_fit();
        const std::uint64_t live = GetCount() * m_values.HEADER_SIZE + m_valueCount * sizeof(VALUE);
        if (m_values.GetPoolUsed() - live >= std::uint64_t{GetCount()} * sizeof(std::uint32_t))
            m_values.FreeExtra();
        else
            m_values.TrimPool();
    }
    /// Bytes on the heap.
    std::uint64_t GetMemory() const
    {
        return m_slots.capacity() * sizeof(unsigned int) + m_keys.capacity() * sizeof(KEY) + m_values.GetMemory();
    }

private:
    static constexpr unsigned int BATCH = 64;
    static constexpr unsigned int MAX_SLOTS = 0xFFFFFFF0;
    static constexpr bool NARROW_HASH = requires(const KEY& key) { requires sizeof(key.GetHash()) == 4; };

    struct Place {
        unsigned int slot;
        unsigned int entry;    ///< NO_ENTRY: the slot is free
    };

    bool AddValue(unsigned int entry, const VALUE& value)
    {
        const bool added = m_values.AddItem(entry, value);
        m_valueCount += added;
        return added;
    }
    void AddBatch(const KEY* keys, const VALUE* values, unsigned int count, unsigned int* entries)
    {
        unsigned int starts[BATCH];
        for (unsigned int i = 0; i < count; i++) {
            starts[i] = Start(keys[i]);
            __builtin_prefetch(&m_slots[starts[i]], 1);
        }
        for (unsigned int i = 0; i < count; i++)
            if (const unsigned int used = m_slots[starts[i]]) {
                __builtin_prefetch(&m_keys[used - 1]);
                m_values.Prefetch(used - 1);
            }
        const unsigned int size = m_size;
        for (unsigned int i = 0; i < count; i++) {
            const unsigned int entry = InsertAt(keys[i], size == m_size ? starts[i] : Start(keys[i]));
            AddValue(entry, values[i]);
            if (entries)
                entries[i] = entry;
        }
    }
    static unsigned int TableSize(std::uint64_t wanted)
    {
        return NextPrime(static_cast<unsigned int>(std::clamp<std::uint64_t>(wanted, 101, MAX_SLOTS)));
    }
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
        m_values.AddEntry(m_values.GetDefaultCapacity());
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
        const Block<unsigned int> old = std::move(m_slots);
        InitSlots(TableSize(six < two ? six : two));
        for (const unsigned int entry : old) {
            if (entry == 0)
                continue;
            unsigned int slot = Start(m_keys[entry - 1]);
            for (unsigned int step = 1; m_slots[slot] != 0; step += 2)
                slot = Advance(slot, step);
            m_slots[slot] = entry;
        }
    }

    template <class T> using Block = std::vector<T, XBlockAllocator<T>>;

    Block<unsigned int> m_slots;    // entry + 1; 0 is free
    unsigned int m_size = 0;
    std::uint64_t m_inverse = 0;    // 2^64 / size, rounded up
    Block<KEY> m_keys;              // by entry
    CSimpleCollection<VALUE, S> m_values;
    std::uint64_t m_valueCount = 0;
};
