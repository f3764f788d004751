#pragma once

// Hash containers with open addressing. Their slot order is observable in results, so hashing, probing and growth are
// fixed for good:
//
//   start    HashKey(key) % size; integers hash to key << 4
//   probe    steps 1, 3, 5 ... from there, so that place k is start + k * k
//   insert   into the first deleted slot met on the way, else into the empty one that ends the search
//   growth   as soon as used plus deleted slots reach half the table: rehash, slot by slot, to
//            NextPrime(min(6 * count, 2 * size)), never below NextPrime(101)
//   order    every walk goes by slot
//
// RemoveAll also goes back to the start size, so that the order never depends on what a table held before.

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "tools/Api.h"
#include "tools/Memory.h"

/// The smallest prime at or above `n` (2 for less); the largest prime of 32 bits when there is none.
ZEL_API unsigned int NextPrime(unsigned int n);

constexpr unsigned int HASH_END = 0xFFFFFFFF;    ///< position behind the last slot of a walk

/// Start of the probe before the division by the table size. A key class brings its own rule as `GetHash() const`.
template <class KEY> std::uint64_t HashKey(const KEY& key)
{
    if constexpr (requires {
                      {
                          key.GetHash()
                          } -> std::convertible_to<std::uint64_t>;
                  })
        return key.GetHash();
    else if constexpr (std::is_pointer_v<KEY>)
        return reinterpret_cast<std::uintptr_t>(key) << 4;
    else if constexpr (sizeof(KEY) > 4)
        return static_cast<std::uint64_t>(key) << 4;
    else
        return static_cast<std::uint32_t>(static_cast<std::uint32_t>(key) << 4);
}

/// The table under CHashTable and CHashMap: entries with a key, in slots. Memory comes with the first insertion.
template <class ENTRY, class KEY> class CHashSlots {
public:
    explicit CHashSlots(unsigned int size = 101) : m_startSize(NextPrime(size > 101 ? size : 101)), m_size(m_startSize) {}
    CHashSlots(const CHashSlots& other) : CHashSlots() { *this = other; }
    CHashSlots(CHashSlots&& other) noexcept : CHashSlots() { Swap(other); }
    ~CHashSlots() { Free(); }
    CHashSlots& operator=(const CHashSlots& other)    // slot for slot
    {
        if (this == &other)
            return *this;
        Free();
        m_startSize = other.m_startSize;
        m_size = other.m_size;
        if (other.m_count + other.m_deleted) {
            Allocate();
            for (unsigned int i = 0; i < m_size; i++) {
                if ((m_states[i] = other.m_states[i]) == USED)
                    new (m_entries + i) ENTRY(other.m_entries[i]);
            }
            m_count = other.m_count;
            m_deleted = other.m_deleted;
        }
        return *this;
    }
    CHashSlots& operator=(CHashSlots&& other) noexcept
    {
        Swap(other);
        return *this;
    }

    unsigned int GetCount() const { return m_count; }
    bool IsEmpty() const { return m_count == 0; }
    unsigned int GetTableSize() const { return m_size; }

    /// Empties the table and gives it NextPrime(size) slots, now and after each RemoveAll; not below NextPrime(101).
    void InitTable(unsigned int size)
    {
        Free();
        m_size = m_startSize = NextPrime(size > 101 ? size : 101);
    }
    void RemoveAll()
    {
        if (m_size != m_startSize)
            Free();
        else if (m_count + m_deleted) {
            DestroyEntries();
            std::memset(m_states, EMPTY, m_size);
        }
        m_count = m_deleted = 0;
    }

    ENTRY* FindEntry(const KEY& key) const
    {
        if (m_count == 0)
            return nullptr;
        unsigned int slot = Start(key);
        for (unsigned int step = 1; m_states[slot] != EMPTY; step += 2) {
            if (m_states[slot] == USED && KeyOf(m_entries[slot]) == key)
                return m_entries + slot;
            slot = Advance(slot, step);
        }
        return nullptr;
    }

    /// Position of the key's slot, or HASH_END.
    unsigned int GetPosition(const KEY& key) const
    {
        const ENTRY* entry = FindEntry(key);
        return entry ? static_cast<unsigned int>(entry - m_entries) : HASH_END;
    }

    /// The entry of `key`, made from `arguments` when it was not there; `added` tells which. The pointer lives until
    /// the next insertion.
    template <class... ARGS> ENTRY* InsertEntry(const KEY& key, bool& added, ARGS&&... arguments)
    {
        if (!m_states)
            Allocate();
        unsigned int slot = Start(key), free = HASH_END;
        for (unsigned int step = 1; m_states[slot] != EMPTY; step += 2) {
            if (m_states[slot] == DELETED) {
                if (free == HASH_END)
                    free = slot;
            } else if (KeyOf(m_entries[slot]) == key) {
                added = false;
                return m_entries + slot;
            }
            slot = Advance(slot, step);
        }
        added = true;
        if (free == HASH_END)
            free = slot;
        new (m_entries + free) ENTRY(std::forward<ARGS>(arguments)...);
        m_deleted -= m_states[free] == DELETED;
        m_states[free] = USED;
        m_count++;
        if ((static_cast<std::uint64_t>(m_count) + m_deleted) * 2 < m_size)
            return m_entries + free;
        const KEY kept = KeyOf(m_entries[free]);
        Rehash();
        return FindEntry(kept);
    }

    bool Remove(const KEY& key)
    {
        ENTRY* entry = FindEntry(key);
        if (!entry)
            return false;
        entry->~ENTRY();
        m_states[entry - m_entries] = DELETED;
        m_count--;
        m_deleted++;
        return true;
    }

    /// Position of the first used slot, or HASH_END.
    unsigned int GetFirst() const { return m_count ? NextUsed(0) : HASH_END; }
    /// The entry at `pos`, which moves on to the next used slot or HASH_END.
    ENTRY* NextEntry(unsigned int& pos) const
    {
        ENTRY* entry = m_entries + pos;
        pos = NextUsed(pos + 1);
        return entry;
    }

    class Iterator {
    public:
        Iterator(const CHashSlots* table, unsigned int pos) : m_table(table), m_pos(pos) {}
        ENTRY& operator*() const { return m_table->m_entries[m_pos]; }
        Iterator& operator++()
        {
            m_pos = m_table->NextUsed(m_pos + 1);
            return *this;
        }
        bool operator!=(const Iterator& other) const { return m_pos != other.m_pos; }

    private:
        const CHashSlots* m_table;
        unsigned int m_pos;
    };
    Iterator begin() const { return {this, GetFirst()}; }
    Iterator end() const { return {this, HASH_END}; }

private:
    enum State : unsigned char { EMPTY, USED, DELETED };

    template <class E> static const KEY& KeyOf(const E& entry)
    {
        if constexpr (std::is_same_v<E, KEY>)
            return entry;
        else
            return entry.first;
    }
    unsigned int Start(const KEY& key) const { return static_cast<unsigned int>(HashKey(key) % m_size); }
    unsigned int Advance(unsigned int slot, unsigned int step) const
    {
        const std::uint64_t next = static_cast<std::uint64_t>(slot) + step;
        return static_cast<unsigned int>(next < m_size ? next : next % m_size);
    }
    unsigned int NextUsed(unsigned int slot) const
    {
        while (slot < m_size && m_states[slot] != USED)
            slot++;
        return slot < m_size ? slot : HASH_END;
    }
    /// Entries and states share one block.
    std::size_t BlockSize() const { return static_cast<std::size_t>(m_size) * (sizeof(ENTRY) + 1); }
    void Allocate()
    {
        static_assert(alignof(ENTRY) <= alignof(std::max_align_t));
        m_entries = static_cast<ENTRY*>(XAllocBlock(BlockSize()));
        m_states = reinterpret_cast<unsigned char*>(m_entries + m_size);
        std::memset(m_states, EMPTY, m_size);
    }
    void DestroyEntries()
    {
        if constexpr (!std::is_trivially_destructible_v<ENTRY>)
            for (unsigned int i = 0; i < m_size; i++)
                if (m_states[i] == USED)
                    m_entries[i].~ENTRY();
    }
    /// Back to the start size, without memory.
    void Free()
    {
        if (m_states) {
            DestroyEntries();
            XFreeBlock(m_entries, BlockSize());
        }
        m_entries = nullptr;
        m_states = nullptr;
        m_size = m_startSize;
        m_count = m_deleted = 0;
    }
    void Rehash()
    {
        const std::uint64_t six = std::uint64_t{6} * m_count, two = std::uint64_t{2} * m_size;
        std::uint64_t wanted = six < two ? six : two;
        if (wanted < 101)
            wanted = 101;
        if (wanted > 0xFFFFFFFF)
            wanted = 0xFFFFFFFF;
        CHashSlots grown;
        grown.m_size = NextPrime(static_cast<unsigned int>(wanted));
        grown.Allocate();
        for (unsigned int i = 0; i < m_size; i++) {
            if (m_states[i] != USED)
                continue;
            unsigned int slot = grown.Start(KeyOf(m_entries[i]));
            for (unsigned int step = 1; grown.m_states[slot] != EMPTY; step += 2)
                slot = grown.Advance(slot, step);
            new (grown.m_entries + slot) ENTRY(std::move(m_entries[i]));
            grown.m_states[slot] = USED;
        }
        grown.m_count = m_count;
        grown.m_startSize = m_startSize;
        Swap(grown);
    }
    void Swap(CHashSlots& other) noexcept
    {
        std::swap(m_startSize, other.m_startSize);
        std::swap(m_size, other.m_size);
        std::swap(m_count, other.m_count);
        std::swap(m_deleted, other.m_deleted);
        std::swap(m_entries, other.m_entries);
        std::swap(m_states, other.m_states);
    }

    unsigned int m_startSize;
    unsigned int m_size;
    unsigned int m_count = 0;
    unsigned int m_deleted = 0;
    ENTRY* m_entries = nullptr;
    unsigned char* m_states = nullptr;
};

/// Set of values.
template <class T> class CHashTable : private CHashSlots<T, T> {
    using Base = CHashSlots<T, T>;

public:
    using Base::Base;
    using Base::GetCount, Base::IsEmpty, Base::GetTableSize, Base::InitTable, Base::RemoveAll, Base::Remove, Base::GetFirst, Base::end,
        Base::GetPosition;
    int GetSize() const { return static_cast<int>(GetCount()); }

    bool Find(const T& value) const { return this->FindEntry(value) != nullptr; }
    /// True when the value is new.
    bool Insert(const T& value)
    {
        bool added;
        this->InsertEntry(value, added, value);
        return added;
    }
    /// The value at `pos`, which moves on (start with GetFirst, end at HASH_END).
    const T& GetNext(unsigned int& pos) const { return *this->NextEntry(pos); }

    class Iterator : public Base::Iterator {
    public:
        Iterator(const typename Base::Iterator& base) : Base::Iterator(base) {}
        const T& operator*() const { return Base::Iterator::operator*(); }
    };
    Iterator begin() const { return Base::begin(); }
};

/// Map from key to value. `CHashMap<KEY, VALUE>` and `CHashMap<KEY, ARG_KEY, VALUE>` name the same thing.
template <class KEY, class ARG_OR_VALUE, class VALUE_OR_NONE = void>
class CHashMap
    : private CHashSlots<std::pair<const KEY, std::conditional_t<std::is_void_v<VALUE_OR_NONE>, ARG_OR_VALUE, VALUE_OR_NONE>>, KEY> {
public:
    using VALUE = std::conditional_t<std::is_void_v<VALUE_OR_NONE>, ARG_OR_VALUE, VALUE_OR_NONE>;
    using Entry = std::pair<const KEY, VALUE>;

private:
    using Base = CHashSlots<Entry, KEY>;

public:
    using Base::Base;
    using Base::GetCount, Base::IsEmpty, Base::GetTableSize, Base::InitTable, Base::RemoveAll, Base::Remove, Base::GetFirst, Base::begin,
        Base::end;
    int GetSize() const { return static_cast<int>(GetCount()); }

    /// The value of the key in place, or null; lives until the next insertion.
    VALUE* Find(const KEY& key) const
    {
        Entry* entry = this->FindEntry(key);
        return entry ? &entry->second : nullptr;
    }
    bool Find(const KEY& key, VALUE& value) const
    {
        const VALUE* found = Find(key);
        if (found)
            value = *found;
        return found != nullptr;
    }
    /// Enters the pair; a key that is there keeps its value. True when the key is new.
    bool Insert(const KEY& key, const VALUE& value)
    {
        bool added;
        this->InsertEntry(key, added, key, value);
        return added;
    }
    /// Enters the pair or replaces the value.
    void SetAt(const KEY& key, const VALUE& value)
    {
        bool added;
        Entry* entry = this->InsertEntry(key, added, key, value);
        if (!added)
            entry->second = value;
    }
    /// The value of the key, a default one entered when it was absent.
    VALUE& operator[](const KEY& key)
    {
        bool added;
        return this->InsertEntry(key, added, key, VALUE())->second;
    }
    /// The pair at `pos`, which moves on (start with GetFirst, end at HASH_END).
    Entry& GetNext(unsigned int& pos) const { return *this->NextEntry(pos); }
};

/// Map from int to int.
class CIntMap : public CHashMap<int, int> {
public:
    using CHashMap<int, int>::CHashMap;
};
