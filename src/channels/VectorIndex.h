#pragma once

#include <cstdint>
#include <cstring>

#include "geometry/Point.h"
#include "tools/HashMix.h"
#include "tools/Memory.h"

/// Numbers distinct vectors in the order in which they come. Equal are vectors with equal coordinates; one that is not a number equals
/// none, not even itself.
class CVectorIndex {
public:
    struct Vector {
        float x, y, z;
        bool operator==(const Vector& other) const { return x == other.x && y == other.y && z == other.z; }
    };
    struct Hash {
        std::uint64_t value;
    };

    /// @param expected  number of vectors for which nothing has to grow
    explicit CVectorIndex(unsigned int expected);
    CVectorIndex(const CVectorIndex&) = delete;
    CVectorIndex& operator=(const CVectorIndex&) = delete;
    ~CVectorIndex();

    static Hash GetHash(const C3DTVector<float>& v);
    /// The number of a vector, new or known, by its hash.
    unsigned int Add(const C3DTVector<float>& v, Hash hash);
    /// Ahead of an Add with this hash: has its place brought near.
    void Prefetch(Hash hash) const { __builtin_prefetch(&m_slots[SlotOf(hash)], 1); }

    unsigned int GetCount() const { return m_count; }
    const Vector* GetVectors() const { return m_vectors; }

private:
    struct Slot {
        std::uint32_t tag;
        std::uint32_t number;    // counted from 1; 0 in a free slot
    };

    std::size_t SlotOf(Hash hash) const { return hash.value & (m_slotCount - 1); }
    unsigned int Append(const Vector& vector);
    void MakeSlots(std::size_t count);
    void GrowSlots();

    Vector* m_vectors = nullptr;
    unsigned int m_count = 0;
    unsigned int m_capacity = 0;
    Slot* m_slots = nullptr;
    std::size_t m_slotCount = 0;    // a power of two, three quarters of which are filled at most
};
