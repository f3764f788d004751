#pragma once

#include <vector>

#include "tools/ElementArray.h"

/// What AddDataChunk is told about a chunk.
enum _CHUNK_FLAGS : unsigned int {
    CHUNK_INHERITED = 0x1,    ///< lists made after this one's model have the chunk too
    CHUNK_MAIN = 0x2,         ///< found through GetMainData
    CHUNK_REPLACE = 0x100,    ///< an instruction: a chunk that is there starts anew. Not kept
};

/// Typed side arrays of a list: every element of the list has one element in each chunk.
///
/// Chunks are found by id. Walks go by the slots of a hash table that the ids entered in the order in which the chunks were
/// added; with the usual handful of chunks that table is worked out when a chunk comes or goes, not kept.
class ZEL_API CDataChunk {
public:
    CDataChunk() = default;
    CDataChunk(const CDataChunk&) = delete;
    CDataChunk& operator=(const CDataChunk&) = delete;
    ~CDataChunk() { DeleteAll(); }

    /// Adds a chunk of default elements. One that is there is replaced, unless `flags` lacks CHUNK_REPLACE and its elements are of
    /// the same type and size: then it keeps them and takes the new methods and flags. The array takes a reference of its own on
    /// `methods`. Returns the number of chunks.
    unsigned int AddDataChunk(unsigned int id, CElementMethods* methods, unsigned int flags);
    bool RemoveDataChunk(unsigned int id);
    bool HasDataChunk(unsigned int id) const { return Find(id) != nullptr; }
    unsigned int GetChunksNbr() const { return static_cast<unsigned int>(m_chunks.size()); }
    /// Number of elements of every chunk.
    unsigned int GetDataSize() const { return m_size; }
    /// Bytes of an element of the chunk; 0 when it is absent.
    unsigned int GetSizeOfDataChunk(unsigned int id) const;
    CElementArray* GetData(unsigned int id) const;
    /// Null when the chunk is absent or the index outside of it.
    void* GetData(unsigned int id, unsigned int index) const;
    void* GetMainData(unsigned int index) const { return m_main ? m_main->GetAt(static_cast<int>(index)) : nullptr; }
    CElementArray* GetMainArray() const { return m_main; }

    /// Walk: start with GetFirstChunk, end at 0xFFFFFFFF.
    unsigned int GetFirstChunk() const { return m_chunks.empty() ? 0xFFFFFFFF : 0; }
    /// The array at `pos`, its id, and `pos` moved on.
    CElementArray* GetNextChunk(unsigned int& pos, unsigned int& id) const;
    /// False for a chunk that is there without being HoldsPlain.
    bool IsPlainOrAbsent(unsigned int id, unsigned int baseType, unsigned int size) const;
    /// Whether any chunk's elements are objects.
    bool HasObjects() const;
    /// Flags of a chunk; 0 when it is absent.
    unsigned int GetChunkFlags(unsigned int id) const;

    /// Sizes every chunk. With `keep` the first elements stay. `grow`: see CElementArray::SetSize.
    void SetDataSize(int n, bool keep, int grow);
    void ExpandDataSize(int n) { SetDataSize(static_cast<int>(m_size) + n, true, m_grow); }
    /// Empties the chunks and notes the room that the next SetDataSize makes; `construct` fills the room at once.
    void PreAllocate(int n, bool construct);
    /// Empties the chunks, which stay.
    void RemoveAll();
    void DeleteAll();
    void FreeExtra();
    /// `grow` for every chunk; 0 when there is none.
    int SetGrowFactor(int grow);
    /// What the last SetDataSize was told.
    int GetGrowFactor() const { return m_grow; }

    /// Takes the model's inherited chunks, with `n` default elements (0xFFFFFFFF: as many as the model has).
    void InitDataChunks(const CDataChunk& model, unsigned int n);
    /// Adds the inherited chunks of `other` that are not here, with its data, or with default elements for `empty`.
    void AppendDataChunks(const CDataChunk& other, bool empty);
    /// Becomes a copy of `source`; only its inherited chunks are added. Returns the number of chunks handled.
    unsigned int CopyData(const CDataChunk& source);
    /// Copies one element in every chunk that both have; the number of chunks copied.
    unsigned int CopyData(unsigned int to, unsigned int from, const CDataChunk& source);
    /// CElementArray::Gather in every chunk that both have; the number of chunks that took it.
    unsigned int GatherData(int to, const CDataChunk& source, const int* from, int count);
    /// See CElementArray::Reorder. True when every chunk took the order.
    bool Reorder(const unsigned int* order, unsigned int n, bool inverse);

    /// Loading replaces everything; throws for arrays that do not fit.
    void Serialize(CXArchive& ar);

protected:
    void UpdateMainChunk();

private:
    struct Chunk {
        unsigned int id;
        unsigned int flags;
        unsigned int sequence;    ///< order of addition
        CElementArray* array;
    };

    const Chunk* Find(unsigned int id) const;
    Chunk* Find(unsigned int id) { return const_cast<Chunk*>(static_cast<const CDataChunk*>(this)->Find(id)); }
    void Insert(unsigned int id, unsigned int flags, CElementArray* array);
    void SortBySlot();
    void ApplyPreAllocation(CElementArray& array) const;
    void Load(CXArchive& ar);

    bool m_preAllocateConstruct = false;
    unsigned int m_preAllocate = 0;
    unsigned int m_size = 0;
    int m_grow = -1;
    unsigned int m_mainId = 0xFFFFFFFF;
    unsigned int m_sequence = 0;
    std::vector<Chunk> m_chunks;    ///< by slot
    CElementArray* m_main = nullptr;
};
