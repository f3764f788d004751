#pragma once

#include "geometry/DataChunk.h"
#include "geometry/Point.h"
#include "tools/ElementArray.h"
#include "tools/FourCC.h"

class C3DEdge;
class CFaceList;
class CGeomInfo;
template <class KEY, class VALUE, class S> class CAssociationMap;
template <class T, class ARG> class CXArray;

/// Bits of a point list's flags.
enum _POINTLIST_PROPERTIES : unsigned int {
    POINTLIST_CHANGED = 0x1,    ///< maps and caches are out of date; UpdateList drops them
};

constexpr unsigned int CHUNK_POINT_ORIGINAL_INDEX = FourCC("POOI");    ///< see SavePointsIndex

/// Points of one element class in one block, with data chunks beside it.
///
/// Edits of coordinates through pointers set nothing: whoever makes them calls SetFlag(POINTLIST_CHANGED, true) at the end. A list has
/// no lock; readers may share it while nobody resizes it.
///
/// Operations that renumber points: Clean, Reorder, and what builds on them.
class ZEL_API CPointList : protected CElementArray, public CInstanciatedObject {
    ZEL_DECLARE_DYNAMIC(CPointList)
public:
    /// Chunks, then the points. Loading replaces everything and throws unless they agree; the list is then empty.
    void Serialize(CXArchive& ar) override;
    /// Sizes points and chunks; marks the list changed when the size differs. See CElementArray::SetSize.
    bool SetSize(int size, bool keep = true, int grow = -1) override;
    /// No points; the chunks stay, empty. The stamp moves on and all flags are clear, the changed one too.
    void RemoveAll() override;
    /// The points alone, in a plain array that the caller owns.
    CElementArray* Duplicate(bool data) const override;
    /// Mask 1: coordinates; 2: flags. Points with POINT_INVALID do not count.
    virtual unsigned int GetChecksum(unsigned int mask) const;
    /// Takes the list flags and the inherited chunks of the model. Their elements are default ones, one a point of this list.
    virtual void Inherit(const CPointList& model);
    /// Becomes a copy: flags, chunks, points (converted when of another class); marks the list changed.
    virtual CPointList& operator=(const CPointList& other);

protected:
    /// False when the list is not marked changed. Otherwise clears the mark and answers true; derived lists drop their caches then.
    virtual bool UpdateList(const CGeomInfo* info);

public:
    using CElementArray::GetBase, CElementArray::GetCapacity, CElementArray::GetMethods, CElementArray::GetSize, CElementArray::GetSizeof,
        CElementArray::GetStride;

    unsigned int GetChangedStamp() const { return m_changedStamp; }
    bool IsFlagSet(_POINTLIST_PROPERTIES mask) const { return (m_listFlags & mask) == mask; }
    /// On POINTLIST_CHANGED also advances the stamp.
    void SetFlag(_POINTLIST_PROPERTIES mask, bool set);

    // --- Points ----------------------------------------------------------------------------------------------------------

    /// Null at or beyond the size.
    CPt* ElementAt(int index) { return static_cast<CPt*>(GetAt(index)); }
    const CPt* ElementAt(int index) const { return static_cast<const CPt*>(GetAt(index)); }
    CPt* operator[](int index) { return ElementAt(index); }
    const CPt* operator[](int index) const { return ElementAt(index); }
    /// Raw walk: the caller counts. GetNext adds the stride and tests nothing.
    CPt* GetFirst() { return static_cast<CPt*>(GetBase()); }
    const CPt* GetFirst() const { return static_cast<const CPt*>(GetBase()); }
    CPt* GetNext(CPt* point) { return reinterpret_cast<CPt*>(reinterpret_cast<unsigned char*>(point) + GetStride()); }
    const CPt* GetNext(const CPt* point) const
    {
        return reinterpret_cast<const CPt*>(reinterpret_cast<const unsigned char*>(point) + GetStride());
    }
    /// Element and chunk data. True at once when the indices are equal.
    bool CopyPoint(int to, int from);
    bool CopyPoint(int to, int from, const CPointList& source);

    /// Copies the points from[0], from[1] ... of another list (null: all, from the first on), chunk data included, to `to` and the places
    /// behind, which are there already. False, with nothing copied, when a place is not there.
    bool GatherPoints(int to, const CPointList& source, const int* from, int count);

    // --- Size and order ---------------------------------------------------------------------------------------------------

    /// Empties the list and makes room for `n` points; `construct` fills the room with default points at once.
    void PreAllocate(int n, bool construct);
    void FreeExtra();
    void SetGrowFactor(int grow);
    /// `order[d] = s` puts the point of s at d; with `inverse` the point of d goes to order[d]. Chunk data moves along. Marks nothing.
    /// False, with nothing changed, unless `order` is a permutation of `n` = size numbers.
    bool Reorder(const unsigned int* order, unsigned int n, bool inverse);

    // --- Chunks -----------------------------------------------------------------------------------------------------------

    /// Adds an inherited chunk or resets it to default elements. Number of chunks.
    unsigned int AddDataChunk(unsigned int id, CElementMethods* methods);
    bool RemoveDataChunk(unsigned int id) { return m_chunks.RemoveDataChunk(id); }
    void* GetData(unsigned int id, unsigned int index) { return m_chunks.GetData(id, index); }
    const void* GetData(unsigned int id, unsigned int index) const { return m_chunks.GetData(id, index); }
    unsigned int GetSizeOfData(unsigned int id) const { return m_chunks.GetSizeOfDataChunk(id); }
    unsigned int GetDataChunkNbr() const { return m_chunks.GetChunksNbr(); }
    CDataChunk& GetDataChunks() { return m_chunks; }
    const CDataChunk& GetDataChunks() const { return m_chunks; }
    /// Adds what `other` has and this list lacks; with `empty` without its data. Null is ignored.
    void AppendDataChunks(CPointList* other, bool empty);
    /// Each point notes its number, which then travels with it; a point made later reads 0xFFFFFFFF.
    void SavePointsIndex();
    unsigned int GetOriginalIndex(unsigned int index) const;

    // --- Flags ------------------------------------------------------------------------------------------------------------

    /// Points whose (flags & mask) != 0 equals `wanted`.
    int GetNumberOfPoints(unsigned int mask, bool wanted) const;
    /// Points whose (flags & mask) == mask equals `wanted`.
    int GetNumberOfPoints(_POINT_PROPERTIES mask, bool wanted) const;
    void SetPointsFlags(unsigned int mask, bool set);
    /// Sets POINT_INVALID on each point that no live face uses; without `keep` the others lose it first. Null: all are unused.
    void SetInvalidPoints(CFaceList& faces, bool keep);
    void SetInvalidPoints(CFaceList* faces, bool keep);
    /// POINT_BORDER, POINT_INNER_EDGE and, with `links`, POINT_BORDER_LINK by the edges of a mesh (FaceBorders.cpp).
    void SetBorderPointsStatus(CAssociationMap<C3DEdge, int, unsigned short>& edges, bool links);

    // --- Cleaning (channels/Clean.cpp) ------------------------------------------------------------------------------------

    /// Drops the points with POINT_INVALID, after marking, with `faces`, those that no live face uses. False, with an empty map, when
    /// there are none.
    ///
    /// @param pointMap  null, or out: new number by old number, 0xFFFFFFFF for a point that went
    bool Clean(CFaceList* faces, CXArray<unsigned int, unsigned int>* pointMap);

protected:
    CPointList() = default;
    CPointList(const CPointList&) = delete;
    ~CPointList() override;

    /// For constructors: installs the methods and takes the inherited chunks of the model, when given.
    void Init(CElementMethods* methods, const CPointList* model);
    /// Where a sum h = (h + ...) * 16 + ... over the live points may start with 0: at the eighth last of them. Eight times
    /// four bits, and what came before has left the 32 bits of h.
    int GetChecksumStart() const;
    /// Flags of the element at `bytes`.
    static unsigned int& FlagsAt(unsigned char* bytes) { return reinterpret_cast<CPt*>(bytes)->flags; }

private:
    CDataChunk m_chunks;
    unsigned int m_changedStamp = 0;
    unsigned int m_listFlags = 0;
};

/// Typed access to the elements of a point list, for the concrete classes.
template <class POINT> class CTypedPointList : public CPointList {
public:
    POINT* ElementAt(int index) { return static_cast<POINT*>(CPointList::ElementAt(index)); }
    const POINT* ElementAt(int index) const { return static_cast<const POINT*>(CPointList::ElementAt(index)); }
    POINT* operator[](int index) { return ElementAt(index); }
    const POINT* operator[](int index) const { return ElementAt(index); }
    POINT* GetFirst() { return static_cast<POINT*>(CPointList::GetFirst()); }
    const POINT* GetFirst() const { return static_cast<const POINT*>(CPointList::GetFirst()); }
    POINT* GetNext(POINT* point) { return point + 1; }
    const POINT* GetNext(const POINT* point) const { return point + 1; }

    using CPointList::operator=;
};
