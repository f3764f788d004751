#pragma once

#include <bit>
#include <cstdint>

#include "tools/BlockVector.h"
#include "tools/Hash.h"

/// Set of keys that is filled, walked by slot and emptied again and again.
///
/// Keys are numbered in the order of their insertion, and stand in the slots in which the containers of tools/Hash.h would hold them after
/// the same insertions: the walk has the order of theirs. Memory is kept, and a walk over few keys looks at few bytes, so that thousands
/// of small sets cost little more than their keys.
template <class KEY> class CSlotTable {
public:
    /// Empties the table and gives it NextPrime(size) slots; not below 101.
    void Reset(unsigned int size = START_SIZE)
    {
        m_keys.clear();
        SetTableSize(size <= START_SIZE ? START_SIZE : NextPrime(size));
    }

    unsigned int GetCount() const { return static_cast<unsigned int>(m_keys.size()); }
    const KEY& GetKey(unsigned int entry) const { return m_keys[entry]; }

    /// Number of a key, which is GetCount() as it was when the key is new.
    unsigned int Insert(const KEY& key)
    {
        unsigned int slot = Start(key);
        for (unsigned int step = 1; IsUsed(slot); step += 2) {
            if (m_keys[m_slots[slot]] == key)
                return m_slots[slot];
            slot = Advance(slot, step);
        }
        const unsigned int entry = GetCount();
        m_keys.push_back(key);
        Put(slot, entry);
        if (std::uint64_t{2} * m_keys.size() >= m_size)
            Rehash();
        return entry;
    }

    /// `body(entry)` for each key, by slot.
    template <class BODY> void ForEach(BODY body) const
    {
        for (unsigned int word = 0, words = WordsOf(m_size); word < words; word++)
            for (std::uint64_t bits = m_used[word]; bits; bits &= bits - 1)
                body(m_slots[64 * word + static_cast<unsigned int>(std::countr_zero(bits))]);
    }
    /// The key in the first used slot. There is one.
    unsigned int GetFirst() const
    {
        unsigned int word = 0;
        while (m_used[word] == 0)
            word++;
        return m_slots[64 * word + static_cast<unsigned int>(std::countr_zero(m_used[word]))];
    }

    static constexpr unsigned int START_SIZE = 101;    ///< a prime

private:
    static unsigned int WordsOf(unsigned int size) { return static_cast<unsigned int>((std::uint64_t{size} + 63) / 64); }
    static constexpr std::uint64_t InverseOf(unsigned int size) { return ~std::uint64_t{0} / size + 1; }

    bool IsUsed(unsigned int slot) const { return m_used[slot >> 6] >> (slot & 63) & 1; }
    void Put(unsigned int slot, unsigned int entry)
    {
        m_used[slot >> 6] |= std::uint64_t{1} << (slot & 63);
        m_slots[slot] = entry;
    }
    // hash % size by multiplication with the size's inverse: exact for hashes of 32 bits.
    unsigned int Start(const KEY& key) const
    {
        const std::uint64_t fraction = m_inverse * static_cast<std::uint32_t>(HashKey(key));
        return static_cast<unsigned int>((static_cast<unsigned __int128>(fraction) * m_size) >> 64);
    }
    unsigned int Advance(unsigned int slot, unsigned int step) const
    {
        const std::uint64_t next = std::uint64_t{slot} + step;
        return static_cast<unsigned int>(next < m_size ? next : next % m_size);
    }
    void SetTableSize(unsigned int size)
    {
        if (m_size != size) {
            m_size = size;
            m_inverse = size == START_SIZE ? InverseOf(START_SIZE) : InverseOf(size);
        }
        if (m_slots.size() < size)
            m_slots.resize(size);
        m_used.assign(WordsOf(size), 0);
    }
    void Rehash()
    {
        m_order.clear();
        ForEach([&](unsigned int entry) { m_order.push_back(entry); });
        const std::uint64_t six = std::uint64_t{6} * m_keys.size(), two = std::uint64_t{2} * m_size;
        const std::uint64_t wanted = six < two ? six : two;
        SetTableSize(NextPrime(static_cast<unsigned int>(wanted < 0xFFFFFFFF ? wanted : 0xFFFFFFFF)));
        for (const unsigned int entry : m_order) {
            unsigned int slot = Start(m_keys[entry]);
            for (unsigned int step = 1; IsUsed(slot); step += 2)
                slot = Advance(slot, step);
            Put(slot, entry);
        }
    }

    template <class T> using Block = CBlockVector<T>;

    unsigned int m_size = 0;
    std::uint64_t m_inverse = 0;
    Block<std::uint64_t> m_used;    // one bit a slot
    Block<unsigned int> m_slots;    // the entry in a used slot
    Block<KEY> m_keys;              // by entry
    Block<unsigned int> m_order;
};
