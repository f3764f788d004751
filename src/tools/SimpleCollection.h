#pragma once

// Array of variable-length entries in one pool: the corners of faces, the faces of points.
//
//   entry    item count (S), capacity (S), then `capacity` items (T)
//   pool     entries in any order, with holes where entries moved away; new and grown entries open at its top
//   offsets  entry number -> byte offset in the pool
//
// The pool goes to files as it stands, so its layout is fixed.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "tools/Archive.h"
#include "tools/Memory.h"
#include "tools/OffsetArray.h"

template <class T, class S> class CCollectionElement;

/// The pool and its entries. T is an item, S the unsigned type of item counts: an entry holds at most the largest S.
///
/// Pointers to items live until anything in the collection grows, is added or is compacted.
template <class T, class S> class CSimpleCollection {
    static_assert(std::is_trivially_copyable_v<T> && std::is_unsigned_v<S>);
    static_assert(2 * sizeof(S) % alignof(T) == 0 && sizeof(T) % alignof(S) == 0, "entries lie side by side without padding");

public:
    using Item = T;
    static constexpr unsigned int MAX_ITEMS = std::numeric_limits<S>::max();
    static constexpr std::size_t HEADER_SIZE = 2 * sizeof(S);
    static constexpr std::size_t HEADER_ITEMS = HEADER_SIZE / sizeof(T);    ///< see InitPlaces

    /// Options of SetCollectionSize.
    enum : unsigned int {
        ENTRIES_EMPTY = 0x1,     ///< new entries have no items; without it as many as their capacity, undefined
        ESTIMATE_ADDED = 0x4,    ///< room is made for the added entries only; without it for all entries at the default capacity
        KEEP_POOL = 0x10,        ///< entries beyond the new size stay, nothing is compacted
        NO_MARGIN = 0x20,        ///< the pool is sized to what is used
    };

    CSimpleCollection() = default;
    CSimpleCollection(const CSimpleCollection& other) { *this = other; }
    CSimpleCollection(CSimpleCollection&& other) noexcept { Swap(other); }
    ~CSimpleCollection() { FreePool(); }
    /// Copies the pool as it stands, without spare room.
    CSimpleCollection& operator=(const CSimpleCollection& other)
    {
        if (this == &other)
            return *this;
        RemoveAll();
        m_defaultCapacity = other.m_defaultCapacity;
        m_compactOnGrow = other.m_compactOnGrow;
        if (other.m_poolUsed) {
            SetPoolCapacity(other.m_poolUsed);
            std::memcpy(m_pool, other.m_pool, other.m_poolUsed);
        }
        m_poolUsed = other.m_poolUsed;
        m_offsets = other.m_offsets;
        m_entryCount = other.m_entryCount;
        return *this;
    }
    CSimpleCollection& operator=(CSimpleCollection&& other) noexcept
    {
        Swap(other);
        return *this;
    }
    void Swap(CSimpleCollection& other) noexcept
    {
        std::swap(m_pool, other.m_pool);
        std::swap(m_entryCount, other.m_entryCount);
        std::swap(m_defaultCapacity, other.m_defaultCapacity);
        std::swap(m_poolUsed, other.m_poolUsed);
        std::swap(m_poolCapacity, other.m_poolCapacity);
        m_offsets.Swap(other.m_offsets);
        std::swap(m_compactOnGrow, other.m_compactOnGrow);
    }

    // --- Reading ----------------------------------------------------------------------------------------------------

    unsigned int GetEntryCount() const { return m_entryCount; }
    unsigned int GetDefaultCapacity() const { return m_defaultCapacity; }
    std::uint64_t GetPoolUsed() const { return m_poolUsed; }
    std::uint64_t GetPoolCapacity() const { return m_poolCapacity; }
    const COffsetArray& GetOffsets() const { return m_offsets; }
    /// Bytes on the heap.
    std::uint64_t GetMemory() const { return m_poolCapacity + m_offsets.GetMemory(); }

    /// Items of an entry; null and 0 for an empty entry and outside the collection.
    T* GetItems(unsigned int entry, unsigned int& count)
    {
        if (entry >= m_entryCount || (count = HeaderAt(entry)->count) == 0) {
            count = 0;
            return nullptr;
        }
        return ItemsAt(entry);
    }
    const T* GetItems(unsigned int entry, unsigned int& count) const
    {
        return const_cast<CSimpleCollection*>(this)->GetItems(entry, count);
    }
    /// 0 outside the collection.
    unsigned int GetItemCount(unsigned int entry) const { return entry < m_entryCount ? HeaderAt(entry)->count : 0; }
    unsigned int GetEntryCapacity(unsigned int entry) const { return entry < m_entryCount ? HeaderAt(entry)->capacity : 0; }
    /// The view of one entry; false, with the view as it was, outside the collection.
    bool GetElement(unsigned int entry, CCollectionElement<T, S>& element)
    {
        if (entry >= m_entryCount)
            return false;
        element.Set(this, entry, ItemsAt(entry));
        return true;
    }
    /// Bytes that the entries need without holes and spare items.
    std::uint64_t GetLiveSize() const
    {
        std::uint64_t size = 0;
        ForEach(m_entryCount, [&](unsigned int, const T*, unsigned int count) { size += EntryBytes(count); });
        return size;
    }

    /// `visit(unsigned int entry, T* items, unsigned int count)` for the first `entries` ones, in order. It leaves the collection alone, but
    /// for the items.
    template <class VISIT> void ForEach(unsigned int entries, VISIT&& visit) const
    {
        entries = std::min(entries, m_entryCount);
        const auto visitAt = [&](unsigned int entry, unsigned char* bytes) {
            Header* const header = reinterpret_cast<Header*>(bytes);
            visit(entry, ItemsOf(header), static_cast<unsigned int>(header->count));
        };
        unsigned char* const pool = m_pool;
        std::uint64_t base, stride;
        if (m_offsets.IsProgression(base, stride))    // no question an entry which form the offsets have
            for (unsigned int i = 0; i < entries; i++)
                visitAt(i, pool + (base + i * stride));    // steps down wrap around
        else
            for (unsigned int i = 0; i < entries; i++)
                visitAt(i, pool + m_offsets[i]);
    }

    /// Brings an entry that is about to be used into the cache.
    void Prefetch(unsigned int entry) const { __builtin_prefetch(HeaderAt(entry), 1); }

    // --- One entry --------------------------------------------------------------------------------------------------

    /// A new entry at the top of the pool, without items. Gives its number, or 0xFFFFFFFF for a capacity above
    /// MAX_ITEMS.
    unsigned int AddEntry(unsigned int capacity)
    {
        if (capacity > MAX_ITEMS)
            return 0xFFFFFFFF;
        GrowPool(m_poolUsed + EntryBytes(capacity));
        m_offsets.Append(OpenEntry(0, capacity));
        return m_entryCount++;
    }

    /// Resizes an entry to `count` items and gives the items; the first ones stay, new ones are zero. Beyond the
    /// entry's capacity it moves to the top of the pool and leaves a hole. Null, with nothing changed, outside the
    /// collection and above MAX_ITEMS.
    ///
    /// @param construct  false only makes room: the entry keeps its item count
    T* SetEntrySize(unsigned int entry, unsigned int count, bool construct)
    {
        if (entry >= m_entryCount || count > MAX_ITEMS)
            return nullptr;
        Header* header = HeaderAt(entry);
        const unsigned int old = header->count;
        if (count > header->capacity)
            header = MoveEntry(entry, count);
        T* items = ItemsOf(header);
        if (count < old || construct)
            header->count = static_cast<S>(count);
        if (construct && count > old)
            std::memset(static_cast<void*>(items + old), 0, (count - old) * sizeof(T));
        return items;
    }

    /// Appends an item. False outside the collection and for a full entry of MAX_ITEMS. An entry beyond a few items
    /// grows by half, so that filling one item by item stays linear.
    bool AddItem(unsigned int entry, const T& item)
    {
        if (entry >= m_entryCount)
            return false;
        const T copy = item;    // `item` may lie in the pool that moves
        Header* header = HeaderAt(entry);
        const unsigned int count = header->count;
        if (count == header->capacity) {
            if (count == MAX_ITEMS)
                return false;
            const std::uint64_t wanted = count < 16 ? count + 1 : std::uint64_t{count} + count / 2;
            header = MoveEntry(entry, static_cast<unsigned int>(std::min<std::uint64_t>(wanted, MAX_ITEMS)));
        }
        ItemsOf(header)[count] = copy;
        header->count = static_cast<S>(count + 1);
        return true;
    }
    /// Removes one item; the later ones move down. False out of range.
    bool RemoveItem(unsigned int entry, unsigned int index)
    {
        if (entry >= m_entryCount || index >= HeaderAt(entry)->count)
            return false;
        Header* header = HeaderAt(entry);
        T* items = ItemsOf(header);
        std::memmove(static_cast<void*>(items + index), items + index + 1, (header->count - index - 1) * sizeof(T));
        header->count--;
        return true;
    }

    /// An entry that moves first compacts the pool when the pool would have to grow.
    void SetCompactOnGrow(bool compact) { m_compactOnGrow = compact; }

    // --- The collection ---------------------------------------------------------------------------------------------

    void SetDefaultCapacity(unsigned int capacity) { m_defaultCapacity = std::min(capacity, MAX_ITEMS); }

    /// No entries, no memory; the default capacity stays.
    void RemoveAll()
    {
        FreePool();
        m_offsets.RemoveAll();
        m_entryCount = 0;
    }

    /// Resizes to `count` entries. 0 frees everything.
    ///
    /// @param capacity    of new entries; becomes the default capacity unless 0
    /// @param flags       ENTRIES_EMPTY and its neighbours
    /// @param capacities  null, or one for each of the `count` entries, in place of `capacity`
    /// @return            false, with nothing changed, when a capacity is above MAX_ITEMS
    bool SetCollectionSize(unsigned int count, unsigned int capacity, unsigned int flags, const unsigned int* capacities = nullptr)
    {
        if (capacity > MAX_ITEMS)
            return false;
        for (unsigned int i = m_entryCount; capacities && i < count; i++)
            if (capacities[i] > MAX_ITEMS)
                return false;
        if (capacity)
            m_defaultCapacity = capacity;
        if (count == 0) {
            RemoveAll();
            return true;
        }
        if (count > m_entryCount)
            AddEntries(count, flags, capacities);
        else if (count < m_entryCount && !(flags & KEEP_POOL)) {
            DropEntries(count);
            const std::uint64_t live = GetLiveSize(), wanted = live + (flags & NO_MARGIN ? 0 : Margin(live));
            CompactPool(std::max<std::uint64_t>(std::min(wanted, m_poolCapacity), 1));
        }
        return true;
    }

    /// Entries from `count` on leave the collection; the pool stays as it is.
    void DropEntries(unsigned int count)
    {
        if (count >= m_entryCount)
            return;
        m_offsets.SetSize(count);
        m_entryCount = count;
    }

    /// Empties the collection and makes room for `entries` entries that hold `items` items together. No entry is made.
    void ReserveCollection(unsigned int entries, std::uint64_t items)
    {
        RemoveAll();
        const std::uint64_t e = std::max(entries, 1u);
        const std::uint64_t required = (HEADER_SIZE + (items / e + 1) * sizeof(T)) * e;
        SetPoolCapacity(required + Margin(required));
        m_offsets.PreAllocate(static_cast<unsigned int>(e));
    }

    /// The same without a margin: room for as many as that and not for one more.
    void ReserveExact(unsigned int entries, std::uint64_t items)
    {
        RemoveAll();
        SetPoolCapacity(std::uint64_t{entries} * HEADER_SIZE + items * sizeof(T));
        m_offsets.PreAllocate(entries);
    }

    /// Adds an entry for each of `other`'s, with its capacity. `other` may be this collection, unless `reset`.
    ///
    /// @param layoutOnly  the new entries have no items
    /// @param reset       starts from nothing, with `other`'s default capacity
    void AppendCollection(const CSimpleCollection& other, bool layoutOnly, bool reset)
    {
        if (reset) {
            RemoveAll();
            m_defaultCapacity = other.m_defaultCapacity;
        }
        const unsigned int added = other.m_entryCount;
        std::uint64_t required = m_poolUsed;
        for (unsigned int i = 0; i < added; i++)
            required += EntryBytes(other.HeaderAt(i)->capacity);
        if (required > m_poolCapacity)
            SetPoolCapacity(required);
        m_offsets.PreAllocate(m_entryCount + added);
        for (unsigned int i = 0; i < added; i++) {
            const Header* from = other.HeaderAt(i);
            const std::uint64_t offset = OpenEntry(layoutOnly ? 0 : from->count, from->capacity);
            if (!layoutOnly)
                std::memcpy(m_pool + offset + HEADER_SIZE, ItemsOf(from), from->count * sizeof(T));
            m_offsets.Append(offset);
        }
        m_entryCount += added;
    }

    /// Lays all entries side by side in order, each with the capacity of its items, in a pool of `newCapacity` bytes or
    /// what they need, whichever is more. 0 frees the pool and all entries.
    void CompactPool(std::uint64_t newCapacity)
    {
        if (newCapacity == 0) {
            RemoveAll();
            return;
        }
        const std::uint64_t live = GetLiveSize();
        if (IsCompact())
            SetPoolCapacity(std::max(live, newCapacity));
        else
            CopyToPool(std::max(live, newCapacity));
        m_poolUsed = live;
        m_offsets.FreeExtra();
    }
    /// Compacts the pool to its exact size when that differs, and trims the offsets.
    void FreeExtra()
    {
        if (m_entryCount == 0)
            RemoveAll();
        else if (GetLiveSize() != m_poolCapacity)
            CompactPool(GetLiveSize());
        else
            m_offsets.FreeExtra();
    }

    /// Gives back the spare room at the top of the pool; holes stay.
    void TrimPool()
    {
        SetPoolCapacity(m_poolUsed);
        m_offsets.FreeExtra();
    }

    // --- Bulk fills -------------------------------------------------------------------------------------------------

    /// Adds `count` entries of exactly `size` items each, side by side. `fill(T* items, unsigned int k)` writes all
    /// items of the k-th new entry; everything is written once, in order. False, with nothing changed, above MAX_ITEMS.
    ///
    /// Into an empty collection the pool is exact, otherwise it grows with the usual margin. `fill` leaves the
    /// collection alone.
    template <class FILL> bool AppendEntries(unsigned int count, unsigned int size, FILL&& fill)
    {
        if (size > MAX_ITEMS)
            return false;
        if (count == 0)
            return true;
        const std::uint64_t bytes = EntryBytes(size);
        MakeRoomForBulk(count * bytes);
        unsigned char* entry = m_pool + m_poolUsed;
        for (unsigned int k = 0; k < count; k++, entry += bytes) {
            *reinterpret_cast<Header*>(entry) = {static_cast<S>(size), static_cast<S>(size)};
            fill(reinterpret_cast<T*>(entry + HEADER_SIZE), k);
        }
        m_offsets.AppendProgression(count, m_poolUsed, bytes);
        m_poolUsed += count * bytes;
        m_entryCount += count;
        return true;
    }
    /// The same with `sizes[k]` items in the k-th new entry: `fill(T* items, unsigned int k)`.
    template <class FILL> bool AppendEntries(unsigned int count, const unsigned int* sizes, FILL&& fill)
    {
        std::uint64_t bytes = 0;
        for (unsigned int k = 0; k < count; k++) {
            if (sizes[k] > MAX_ITEMS)
                return false;
            bytes += EntryBytes(sizes[k]);
        }
        if (count == 0)
            return true;
        MakeRoomForBulk(bytes);
        m_offsets.PreAllocate(m_entryCount + count);
        for (unsigned int k = 0; k < count; k++) {
            const std::uint64_t offset = OpenEntry(sizes[k], sizes[k]);
            m_offsets.Append(offset);
            m_entryCount++;
            fill(reinterpret_cast<T*>(m_pool + offset + HEADER_SIZE), k);
        }
        return true;
    }

    /// Replaces everything by `count` entries with exactly sizes[k] items each, side by side without margin, and turns
    /// sizes[k] into the place of entry k's first item in the pool that it returns. The items are undefined until the
    /// caller has written each. For two-pass builds in any order: count, InitPlaces, then `pool[place[k]++] = item`, which
    /// never waits for the entry to come from memory. Null, with nothing changed, above MAX_ITEMS.
    ///
    /// PLACE is wide enough for the sum of all sizes and of HEADER_ITEMS an entry.
    template <class PLACE> T* InitPlaces(unsigned int count, PLACE* sizes)
    {
        static_assert(HEADER_SIZE % sizeof(T) == 0);
        std::uint64_t bytes = 0;
        for (unsigned int k = 0; k < count; k++) {
            if (sizes[k] > MAX_ITEMS)
                return nullptr;
            bytes += EntryBytes(sizes[k]);
        }
        RemoveAll();
        SetPoolCapacity(bytes);
        m_offsets.PreAllocate(count);
        for (unsigned int k = 0; k < count; k++) {
            const unsigned int size = static_cast<unsigned int>(sizes[k]);
            const std::uint64_t offset = OpenEntry(size, size);
            m_offsets.Append(offset);
            sizes[k] = static_cast<PLACE>(offset / sizeof(T) + HEADER_ITEMS);
        }
        m_entryCount = count;
        return reinterpret_cast<T*>(m_pool);
    }

    /// Puts the entry of source[i] at i, for a permutation of the first `count` entries; later entries are dropped. The
    /// pool is laid out anew in the new order, capacities stay. Cost: one pass over the pool.
    void Reorder(const unsigned int* source, unsigned int count)
    {
        // Each entry but the last one fits into its stride for sure.
        std::uint64_t base, stride;
        if (count > 1 && IsAscending(base, stride) && EntryBytes(HeaderAt(count - 1)->capacity) <= stride)
            ReorderBlocks(source, count, base, stride);
        else
            ReorderEntries(source, count);
    }

    // --- Streams ----------------------------------------------------------------------------------------------------

    /// Entry count, pool sizes, the pool, the offsets. Storing compacts the pool first, in place, so the written pool
    /// has no gaps. Loading replaces everything and throws when the entries don't lie in the pool side by side; empty
    /// then.
    void Serialize(CXArchive& ar)
    {
        if (ar.IsStoring())
            Store(ar);
        else
            Load(ar);
    }

private:
    friend class CCollectionElement<T, S>;

    struct Header {
        S count, capacity;
    };
    static_assert(sizeof(Header) == HEADER_SIZE);

    static std::uint64_t EntryBytes(std::uint64_t capacity) { return HEADER_SIZE + capacity * sizeof(T); }
    static T* ItemsOf(Header* header) { return reinterpret_cast<T*>(header + 1); }
    static const T* ItemsOf(const Header* header) { return reinterpret_cast<const T*>(header + 1); }
    Header* HeaderAt(unsigned int entry) { return reinterpret_cast<Header*>(m_pool + m_offsets[entry]); }
    const Header* HeaderAt(unsigned int entry) const { return reinterpret_cast<const Header*>(m_pool + m_offsets[entry]); }
    T* ItemsAt(unsigned int entry) { return ItemsOf(HeaderAt(entry)); }

    // Whether the entries have one stride and lie in the order of their numbers. Steps down are a progression too: entries that grew from
    // the last to the first have it, and streams may.
    bool IsAscending(std::uint64_t& base, std::uint64_t& stride) const
    {
        return m_offsets.IsProgression(base, stride) && (m_entryCount < 2 || m_offsets[1] > base);
    }

    std::uint64_t Margin(std::uint64_t required) const { return std::max<std::uint64_t>(required / 4, EntryBytes(m_defaultCapacity)); }

    // The header of a new entry, at the top of the pool, which has room for it.
    std::uint64_t OpenEntry(unsigned int count, unsigned int capacity)
    {
        const std::uint64_t offset = m_poolUsed;
        *reinterpret_cast<Header*>(m_pool + offset) = {static_cast<S>(count), static_cast<S>(capacity)};
        m_poolUsed += EntryBytes(capacity);
        return offset;
    }

    Header* MoveEntry(unsigned int entry, unsigned int capacity)
    {
        const std::uint64_t required = m_poolUsed + EntryBytes(capacity);
        if (m_compactOnGrow && required > m_poolCapacity)
            CompactPool(m_poolCapacity);
        GrowPool(m_poolUsed + EntryBytes(capacity));
        const Header* from = HeaderAt(entry);
        const std::uint64_t offset = OpenEntry(from->count, capacity);
        std::memcpy(m_pool + offset + HEADER_SIZE, ItemsOf(from), from->count * sizeof(T));
        m_offsets.SetAt(entry, offset);
        return reinterpret_cast<Header*>(m_pool + offset);
    }

    // Entries up to `count`, appended at the top; then the pool is trimmed to what is used and the margin.
    void AddEntries(unsigned int count, unsigned int flags, const unsigned int* capacities)
    {
        const unsigned int first = m_entryCount;
        std::uint64_t added = 0;
        if (capacities)
            for (unsigned int i = first; i < count; i++)
                added += EntryBytes(capacities[i]);
        else
            added = EntryBytes(m_defaultCapacity) * (count - first);
        std::uint64_t required = m_poolUsed + added;
        if (!(flags & ESTIMATE_ADDED))
            required = std::max(required, EntryBytes(m_defaultCapacity) * count);
        const std::uint64_t wanted = required + (flags & NO_MARGIN ? 0 : Margin(required));
        if (required > m_poolCapacity)
            SetPoolCapacity(wanted);

        if (capacities) {
            m_offsets.PreAllocate(count);
            for (unsigned int i = first; i < count; i++)
                m_offsets.Append(OpenEntry(flags & ENTRIES_EMPTY ? 0 : capacities[i], capacities[i]));
        } else {
            const std::uint64_t bytes = EntryBytes(m_defaultCapacity), base = m_poolUsed;
            for (unsigned int i = first; i < count; i++)
                OpenEntry(flags & ENTRIES_EMPTY ? 0 : m_defaultCapacity, m_defaultCapacity);
            m_offsets.AppendProgression(count - first, base, bytes);
        }
        m_entryCount = count;
        if (!(flags & KEEP_POOL) && m_poolCapacity > wanted)
            SetPoolCapacity(wanted);
    }

    void GrowPool(std::uint64_t required)
    {
        if (required > m_poolCapacity)
            SetPoolCapacity(required + Margin(required));
    }
    void MakeRoomForBulk(std::uint64_t bytes)
    {
        if (m_poolUsed + bytes > m_poolCapacity)
            SetPoolCapacity(m_poolUsed + bytes + (m_poolUsed ? Margin(m_poolUsed + bytes) : 0));
    }
    void SetPoolCapacity(std::uint64_t capacity)
    {
        if (capacity == m_poolCapacity)
            return;
        m_pool = static_cast<unsigned char*>(XReallocBlock(m_pool, m_poolCapacity, capacity));
        m_poolCapacity = capacity;
    }
    void FreePool()
    {
        XFreeBlock(m_pool, m_poolCapacity);
        m_pool = nullptr;
        m_poolUsed = m_poolCapacity = 0;
    }
    void ReplacePool(unsigned char* pool, std::uint64_t capacity)
    {
        XFreeBlock(m_pool, m_poolCapacity);
        m_pool = pool;
        m_poolCapacity = capacity;
    }

    bool IsCompact() const
    {
        std::uint64_t end = 0;
        for (unsigned int i = 0; i < m_entryCount; i++) {
            const Header* header = HeaderAt(i);
            if (m_offsets[i] != end || header->count != header->capacity)
                return false;
            end += EntryBytes(header->count);
        }
        return true;
    }

    // Compaction into a new block. Neighbours move together.
    void CopyToPool(std::uint64_t capacity)
    {
        unsigned char* pool = static_cast<unsigned char*>(XAllocBlock(capacity));
        COffsetArray offsets;
        offsets.PreAllocate(m_entryCount);
        std::uint64_t used = 0, runStart = 0, runEnd = 0;
        for (unsigned int i = 0; i < m_entryCount; i++) {
            Header* header = HeaderAt(i);
            header->capacity = header->count;
            const std::uint64_t offset = m_offsets[i];
            if (offset != runEnd) {
                std::memcpy(pool + used, m_pool + runStart, runEnd - runStart);
                used += runEnd - runStart;
                runStart = runEnd = offset;
            }
            offsets.Append(used + (runEnd - runStart));
            runEnd += EntryBytes(header->count);
        }
        std::memcpy(pool + used, m_pool + runStart, runEnd - runStart);
        ReplacePool(pool, capacity);
        m_offsets.Swap(offsets);
    }

    // Entries of one stride: each place of the pool moves as a block, and no offset changes.
    void ReorderBlocks(const unsigned int* source, unsigned int count, std::uint64_t base, std::uint64_t stride)
    {
        const std::uint64_t size = base + count * stride;
        unsigned char* pool = static_cast<unsigned char*>(XAllocBlock(size));
        std::memcpy(pool, m_pool, base);
        const auto gather = [&](auto width) {
            const std::uint64_t bytes = width;
            for (unsigned int i = 0; i < count; i++)
                std::memcpy(pool + base + i * bytes, m_pool + base + source[i] * bytes, bytes);
        };
        // The last place may end before its stride does: its entry has spare room then, or there is none to read.
        if (m_poolCapacity < size)
            SetPoolCapacity(size);
        if (stride == EntryBytes(3))
            gather(std::integral_constant<std::uint64_t, EntryBytes_<3>>());
        else if (stride == EntryBytes(4))
            gather(std::integral_constant<std::uint64_t, EntryBytes_<4>>());
        else
            gather(stride);
        ReplacePool(pool, size);
        m_poolUsed = size;
        m_offsets.SetSize(count);
        m_entryCount = count;
    }
    template <unsigned int N> static constexpr std::uint64_t EntryBytes_ = HEADER_SIZE + N * sizeof(T);

    void ReorderEntries(const unsigned int* source, unsigned int count)
    {
        constexpr unsigned int ahead = 16;    // entries on their way from memory
        std::uint64_t size = 0;
        for (unsigned int i = 0; i < count; i++)
            size += EntryBytes(HeaderAt(i)->capacity);
        unsigned char* pool = static_cast<unsigned char*>(XAllocBlock(size));
        COffsetArray offsets;
        offsets.PreAllocate(count);
        std::uint64_t used = 0;
        for (unsigned int i = 0; i < count; i++) {
            if (i + ahead < count)
                __builtin_prefetch(HeaderAt(source[i + ahead]));
            const Header* header = HeaderAt(source[i]);
            std::memcpy(pool + used, header, EntryBytes(header->count));
            offsets.Append(used);
            used += EntryBytes(header->capacity);
        }
        ReplacePool(pool, size);
        m_poolUsed = size;
        m_offsets.Swap(offsets);
        m_entryCount = count;
    }

    void Store(CXArchive& ar)
    {
        if (m_entryCount && !(GetLiveSize() == m_poolCapacity && IsCompact()))
            CompactPool(GetLiveSize());
        ar << m_entryCount;
        if (m_entryCount == 0)
            return;
        ar.Write(&m_poolUsed, sizeof(m_poolUsed));
        ar.Write(&m_poolCapacity, sizeof(m_poolCapacity));
        ar.Write(m_pool, m_poolCapacity);
        m_offsets.Serialize(ar);
    }

    void Load(CXArchive& ar)
    {
        RemoveAll();
        unsigned int count;
        ar >> count;
        if (count == 0)
            return;
        std::uint64_t used, capacity;
        ar.Read(&used, sizeof(used));
        ar.Read(&capacity, sizeof(capacity));
        ar.CheckCount(capacity, 1);
        if (used > capacity || used / HEADER_SIZE < count)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
        try {
            SetPoolCapacity(capacity);
            ar.Read(m_pool, capacity);
            m_offsets.Serialize(ar);
            m_poolUsed = used;
            if (m_offsets.GetSize() != count || !AreEntriesSound(count))
                XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
            m_entryCount = count;
        } catch (...) {
            RemoveAll();
            throw;
        }
    }

    // Every entry of a loaded pool lies inside the used part, holds no more than its capacity and shares no byte with
    // another.
    bool AreEntriesSound(unsigned int count) const
    {
        std::uint64_t end = 0;
        bool ascending = true;
        for (unsigned int i = 0; i < count; i++) {
            const std::uint64_t offset = m_offsets[i];
            if (offset % alignof(T) || offset > m_poolUsed || m_poolUsed - offset < HEADER_SIZE)
                return false;
            const Header* header = HeaderAt(i);
            if (header->count > header->capacity || m_poolUsed - offset < EntryBytes(header->capacity))
                return false;
            ascending &= offset >= end;
            end = offset + EntryBytes(header->capacity);
        }
        return ascending || AreEntriesApart(count);
    }
    bool AreEntriesApart(unsigned int count) const
    {
        std::vector<std::uint64_t> starts(count);
        for (unsigned int i = 0; i < count; i++)
            starts[i] = m_offsets[i];
        std::sort(starts.begin(), starts.end());
        for (unsigned int i = 1; i < count; i++) {
            const Header* former = reinterpret_cast<const Header*>(m_pool + starts[i - 1]);
            if (starts[i] < starts[i - 1] + EntryBytes(former->capacity))
                return false;
        }
        return true;
    }

    unsigned char* m_pool = nullptr;
    unsigned int m_entryCount = 0;
    unsigned int m_defaultCapacity = 3;
    std::uint64_t m_poolUsed = 0;
    std::uint64_t m_poolCapacity = 0;
    COffsetArray m_offsets;
    bool m_compactOnGrow = false;
};

/// View of one entry of a collection; holds no storage. Valid until the collection's pool moves.
template <class T, class S> class CCollectionElement {
public:
    CCollectionElement() = default;

    CSimpleCollection<T, S>* GetCollection() const { return m_collection; }
    unsigned int GetEntryIndex() const { return m_entry; }
    /// 0 for a view of nothing.
    int GetSize() const { return m_items ? static_cast<int>(reinterpret_cast<const S*>(m_items)[-2]) : 0; }
    T* GetData(int& size) const
    {
        size = GetSize();
        return m_items;
    }
    T* GetData() const { return m_items; }

    /// The first item for an index at or beyond the size; a default item that belongs to nobody when there is none.
    T& operator[](int index) { return ItemAt(index); }
    const T& operator[](int index) const { return ItemAt(index); }
    const T& GetAt(int index) const { return ItemAt(index); }
    /// Ignored at or beyond the size.
    void SetAt(int index, const T& item)
    {
        if (static_cast<unsigned int>(index) < static_cast<unsigned int>(GetSize()))
            m_items[index] = item;
    }

    /// False when the entry is full for good (the largest S), or for a view of nothing.
    bool Add(const T& item)
    {
        const bool added = m_collection && m_collection->AddItem(m_entry, item);
        Refresh();
        return added;
    }
    /// False out of range.
    bool RemoveAt(int index) { return m_collection && m_collection->RemoveItem(m_entry, static_cast<unsigned int>(index)); }
    /// Keeps the first items, new ones are zero. False, with nothing changed, for a size that an entry cannot have.
    bool SetSize(int size)
    {
        const bool sized = m_collection && size >= 0 && m_collection->SetEntrySize(m_entry, static_cast<unsigned int>(size), true);
        Refresh();
        return sized;
    }
    /// Takes the items of another entry, of this or another collection.
    bool Copy(const CCollectionElement& other)
    {
        if (!other.m_collection || !m_collection)
            return false;
        if (other.m_collection == m_collection && other.m_entry == m_entry)
            return true;
        const unsigned int count = other.m_collection->GetItemCount(other.m_entry);
        T* to = m_collection->SetEntrySize(m_entry, count, true);
        if (to && count)
            std::memcpy(static_cast<void*>(to), other.m_collection->ItemsAt(other.m_entry), count * sizeof(T));
        Refresh();
        return to != nullptr;
    }
    /// Takes the items of another entry of the same collection; false out of range.
    bool Copy(unsigned int entry)
    {
        CCollectionElement other;
        return m_collection && m_collection->GetElement(entry, other) && Copy(other);
    }

protected:
    void Set(CSimpleCollection<T, S>* collection, unsigned int entry, T* items)
    {
        m_collection = collection;
        m_entry = entry;
        m_items = items;
    }
    // After anything that may have moved the pool.
    void Refresh() { m_items = m_collection && m_entry < m_collection->m_entryCount ? m_collection->ItemsAt(m_entry) : nullptr; }

    CSimpleCollection<T, S>* m_collection = nullptr;
    unsigned int m_entry = 0;
    T* m_items = nullptr;

private:
    friend class CSimpleCollection<T, S>;

    T& ItemAt(int index) const
    {
        const int size = GetSize();
        if (static_cast<unsigned int>(index) < static_cast<unsigned int>(size))
            return m_items[index];
        return size ? m_items[0] : Nothing();
    }
    static T& Nothing()
    {
        static thread_local T nothing;
        return nothing = T();
    }
};
