#pragma once

#include <concepts>
#include <memory>

#include "geometry/ConnectionInfo.h"
#include "geometry/DataChunk.h"
#include "geometry/Face.h"
#include "tools/BlockVector.h"
#include "tools/ElementArray.h"
#include "tools/FourCC.h"
#include "tools/Hash.h"
#include "tools/SimpleCollection.h"

class C3DEdge;
class CFaceGraphHelper;
class CFaceTagger;
class CSingleFace;
template <class KEY, class VALUE, class S> class CAssociationMap;
template <class T, class ARG> class CXArray;

/// Bits of a face list's flags.
enum _FACELIST_PROPERTIES : unsigned int {
    FACELIST_STORED = 0x100000,          ///< the only bit that goes to files
    FACELIST_BACK_CHANGED = 0x200000,    ///< removing the back materials drops the materials map
    FACELIST_CHANGED = 0x400000,         ///< graphs and maps are out of date; UpdateList drops them
};

constexpr unsigned int CHUNK_FACE_PROPERTIES = FourCC("FCPR");        ///< main chunk of every face list
constexpr unsigned int CHUNK_FACE_ORIGINAL_INDEX = FourCC("FAOI");    ///< see SaveFacesIndex

/// Faces of any size over a point list: corners in one pool, flags and other per-face values in data chunks beside it.
///
/// A corner is a signed position in a point list that the list does not know: it comes with each call, in a CGeomInfo.
/// A face has 0 to 65,535 corners. Triangles take 16 bytes of pool each and nothing else but their chunk data.
///
/// Bulk fills: AppendFaces writes everything once, in order. SetSize and CFace::SetTriangle, or PreAllocate, SetSize
/// and CFace edits, end in the same memory. A list has no lock; readers may share it while nobody resizes it.
///
/// Operations that renumber faces: Clean, ReorderFaces, and what builds on them.
class ZEL_API CFaceList : public CXObject, public CInstanciatedObject {
    ZEL_DECLARE_DYNAMIC(CFaceList)
public:
    using IndexCollection = CSimpleCollection<int, unsigned short>;

    /// What SetSize does to the pool. New faces have no corners in each of them.
    enum SetSizeMode {
        SIZE_GROW = 0,     ///< room to grow stays; shrinking drops the faces and compacts the pool
        SIZE_EXACT = 1,    ///< the pool is sized to what is used
        SIZE_KEEP = 2,     ///< shrinking leaves the pool alone and drops only the chunk data
    };

    /// Face count, flag word, corners, chunks. Loading replaces everything and throws unless the pool is sound and the
    /// counts agree; the list is then empty. Corner values are not checked: see AreIndexesBelow.
    void Serialize(CXArchive& ar) override;

    /// A view of the list's own class, on the heap, to be given back with ReleaseFace.
    virtual CFace* CreateFace() = 0;
    /// Mask 4: corners of the live faces; mask 8: chunks. 0 for an empty list.
    virtual unsigned int GetChecksum(unsigned int mask) const;
    /// Takes the model's inherited chunks, with default elements, one a face of this list; clears the list flags.
    virtual void Inherit(const CFaceList& model);
    /// Becomes a copy: chunks, corners; drops the graphs and marks the list changed.
    virtual CFaceList& operator=(const CFaceList& model);

protected:
    /// False when the list is not marked changed. Otherwise drops the graphs and whatever a derived list has worked
    /// out, clears the mark and answers true.
    virtual bool UpdateList(const CGeomInfo* info);

public:
    void ReleaseFace(CFace* face) const;

    int GetSize() const { return m_size; }
    unsigned int GetChangedStamp() const { return m_changedStamp; }
    bool IsFlagSet(_FACELIST_PROPERTIES mask) const { return (m_flags & mask) == mask; }
    /// On FACELIST_CHANGED also advances the stamp.
    void SetFlag(_FACELIST_PROPERTIES mask, bool set);
    /// The corners' pool, to read.
    const IndexCollection& GetIndexCollection() const { return m_indexes; }

    // --- One face ---------------------------------------------------------------------------------------------------

    /// Fills the view; false, with the view as it was, when there is no such face. A view from a const list is to be
    /// read.
    bool GetFace(unsigned int i, CFace& face) const
    {
        CFaceList* self = const_cast<CFaceList*>(this);
        auto* words = static_cast<unsigned int*>(self->m_chunks.GetMainData(i));
        if (!words || !self->m_indexes.GetElement(i, face))
            return false;
        face.m_list = self;
        face.m_words = words;
        return true;
    }
    /// The corners; null and 0 for a face without any and for a missing face.
    int* GetIndexes(unsigned int i, int& count)
    {
        unsigned int items;
        int* indexes = m_indexes.GetItems(i, items);
        count = static_cast<int>(items);
        return indexes;
    }
    const int* GetIndexes(unsigned int i, int& count) const { return const_cast<CFaceList*>(this)->GetIndexes(i, count); }
    /// Copies chunk data, and unless `dataOnly` the corners. False when a face does not exist.
    bool CopyFace(unsigned int to, unsigned int from, bool dataOnly);
    bool CopyFace(unsigned int to, const CFace& from, bool dataOnly);
    bool CopyFace(unsigned int to, unsigned int from, const CFaceList& source, bool dataOnly);
    /// To scratch that SetList has shaped after this list; a face beyond the list empties the scratch.
    bool CopyTo(int i, CSingleFace& scratch) const;
    bool CopyFrom(int i, const CSingleFace& scratch);

    // --- Chunks -----------------------------------------------------------------------------------------------------

    void* GetMainData(unsigned int i) { return m_chunks.GetMainData(i); }
    const void* GetMainData(unsigned int i) const { return const_cast<CFaceList*>(this)->m_chunks.GetMainData(i); }
    void* GetData(unsigned int id, unsigned int i) { return m_chunks.GetData(id, i); }
    const void* GetData(unsigned int id, unsigned int i) const { return const_cast<CFaceList*>(this)->m_chunks.GetData(id, i); }
    unsigned int GetSizeOfData(unsigned int id) const { return m_chunks.GetSizeOfDataChunk(id); }
    unsigned int GetDataChunkNbr() const { return m_chunks.GetChunksNbr(); }
    CDataChunk& GetDataChunks() { return m_chunks; }
    const CDataChunk& GetDataChunks() const { return m_chunks; }
    /// Adds a chunk or resets it to default elements; inherited, and the main chunk for CHUNK_FACE_PROPERTIES. Number
    /// of chunks.
    unsigned int AddDataChunk(unsigned int id, CElementMethods* methods);
    bool RemoveDataChunk(unsigned int id) { return m_chunks.RemoveDataChunk(id); }
    /// Adds what `other` has and this list lacks; with `empty` without its data. Null is ignored.
    void AppendDataChunks(CFaceList* other, bool empty);
    /// Each face notes its number, which then travels with it; a face made later reads 0xFFFFFFFF.
    void SaveFacesIndex();
    unsigned int GetOriginalIndex(unsigned int i) const;

    // --- Flags (a face number beyond the list is ignored, tests of it are false) ------------------------------------

    void SetFaceFlag(unsigned int i, _FACE_PROPERTIES mask, bool set) { SetFaceFlags(i, mask, set); }
    void SetFaceFlags(unsigned int i, unsigned int mask, bool set);
    /// Every bit of the mask.
    bool IsFaceFlagSet(unsigned int i, _FACE_PROPERTIES mask) const { return IsFaceFlagsSet(i, mask); }
    bool IsFaceFlagsSet(unsigned int i, unsigned int mask) const;
    /// Any bit of the mask.
    bool IsFaceOneFlagSet(unsigned int i, unsigned int mask) const;
    /// Faces whose (flags & mask) != 0 equals `wanted`.
    int GetNumberOfFaces(unsigned int mask, bool wanted) const;
    /// Faces whose (flags & mask) == mask equals `wanted`.
    int GetNumberOfFaces(_FACE_PROPERTIES mask, bool wanted) const;
    /// Faces from `first` up to and without `end`.
    void SetFacesFlags(unsigned int first, unsigned int end, unsigned int mask, bool set);
    void SetFacesFlags(unsigned int mask, bool set) { SetFacesFlags(0, static_cast<unsigned int>(m_size), mask, set); }

    // --- Size (FaceList.cpp) ----------------------------------------------------------------------------------------
    //
    // Marks the list changed. False, with nothing changed, for a negative size or a capacity above CFace::MAX_CORNERS.

    /// @param capacity  room of a new face; 0 keeps the list's own value, which otherwise becomes `capacity`
    /// @param grow      of the chunks: places to add when they grow, -1 a quarter
    bool SetSize(int count, int capacity, SetSizeMode mode, int grow = -1);
    bool SetSize(int count, SetSizeMode mode = SIZE_GROW, int capacity = 0) { return SetSize(count, capacity, mode, -1); }
    /// Starts anew; face i has room for capacities[i] corners, and the pool has no margin.
    bool SetSize(int count, const unsigned int* capacities, int capacity, int grow);
    /// Starts anew, with the number of faces and the capacities of the model.
    void SetSize(const CFaceList& model, int grow = -1);
    /// Capacity 4; `flags` on the faces added.
    bool SetSizeAndFlags(int count, unsigned int flags);
    void SetSizeAndFlags(const CFaceList& model, unsigned int flags);
    /// Adds as many faces without corners as the model has, with its capacities.
    void ExpandSize(const CFaceList& model);
    void ExpandSizeAndFlags(const CFaceList& model, unsigned int flags);
    /// Every face gets `corners` corners, through CFace::SetSize. False above CFace::MAX_CORNERS.
    bool SetFacesSize(unsigned int corners);
    /// Starts anew with room for that many faces and corners in all; `construct` fills the room of the chunks at once.
    void PreAllocate(int faces, int corners, bool construct);
    /// Starts anew with room for exactly that, for who knows what comes.
    void PreAllocateExact(int faces, std::int64_t corners);
    void FreeExtra();
    /// No faces; the chunks stay. Drops the graphs, clears the flags, then marks the list changed.
    void RemoveAll();
    /// Bytes of the corners' pool and its offsets.
    std::uint64_t GetIndexMemory() const { return m_indexes.GetMemory(); }

    // --- Bulk fills (FaceList.cpp) ----------------------------------------------------------------------------------
    //
    // New faces come behind the others, with flags 0; the list is marked changed. False, with nothing changed, above
    // CFace::MAX_CORNERS or 2^31 - 1 faces.

    /// `count` faces of `corners` corners each. `fill(int* indexes, unsigned int k)` writes the corners of the k-th new
    /// face; it leaves the list alone. Each corner is written once; memory is exact when the list was empty.
    template <class FILL>
    requires std::invocable<FILL&, int*, unsigned int>
    bool AppendFaces(int count, int corners, FILL&& fill)
    {
        if (!PrepareAppend(count) || corners < 0 || !m_indexes.AppendEntries(count, static_cast<unsigned int>(corners), fill))
            return false;
        FinishAppend(count);
        return true;
    }
    /// The same for faces of sizes[k] corners each.
    template <class FILL>
    requires std::invocable<FILL&, int*, unsigned int>
    bool AppendFaces(int count, const unsigned int* sizes, FILL&& fill)
    {
        if (!PrepareAppend(count) || !m_indexes.AppendEntries(count, sizes, fill))
            return false;
        FinishAppend(count);
        return true;
    }
    /// From a flat array of count * corners indices.
    bool AppendFaces(int count, int corners, const int* indexes);
    /// Faces of sizes[k] corners each, from a flat array that holds them one after the other.
    bool AppendFaces(int count, const unsigned int* sizes, const int* indexes);

    /// `visit(int face, int* corners, int count)` for each live face, in order. It leaves the list alone, but for corners and flags.
    template <class VISIT> void ForEachLiveFace(VISIT&& visit) const;

    /// Copies of the faces faces[0], faces[1] ... of another list (null: all, from the first on): chunk data, flags included, and
    /// corners, each through `map`, called in order. A dead face comes without corners.
    template <class MAP> bool AppendCopies(const CFaceList& source, const int* faces, int count, MAP&& map)
    {
        const int first = m_size;
        unsigned int corners;
        const CBlockVector<unsigned int> sizes = GetSizes(source, faces, count, corners);
        const auto fill = [&](int* to, unsigned int k) {
            unsigned int all;
            const int* from = source.m_indexes.GetItems(faces ? static_cast<unsigned int>(faces[k]) : k, all);
            for (unsigned int i = 0, size = sizes.empty() ? corners : sizes[k]; i < size; i++)
                to[i] = map(from[i]);
        };
        const bool done =
            PrepareAppend(count) && (sizes.empty() ? m_indexes.AppendEntries(static_cast<unsigned int>(count), corners, fill)
                                                   : m_indexes.AppendEntries(static_cast<unsigned int>(count), sizes.data(), fill));
        if (done) {
            FinishAppend(count);
            m_chunks.GatherData(first, source.m_chunks, faces, count);
        }
        return done;
    }

    // --- All corners (FaceList.cpp, FaceReorder.cpp) ----------------------------------------------------------------

    /// Position d receives the face of order[d]; with `inverse` face i goes to order[i]. 0xFFFFFFFF leaves a face where
    /// it is. Chunk data moves along; the list is marked changed. False, with nothing changed, for n 0, another n than
    /// the number of faces, and for an order that is no permutation. Cost: one pass over the pool and each chunk.
    bool ReorderFaces(const unsigned int* order, unsigned int n, bool inverse);
    /// A corner value v below n becomes map[v], unless that is 0xFFFFFFFF; with `skipDead` in live faces only. True
    /// when a corner changed; false without a table. Marks nothing.
    bool UpdateIndex(const unsigned int* map, unsigned int n, bool skipDead);
    bool UpdateIndex(const CXArray<unsigned int, unsigned int>* map, bool skipDead);
    /// Reverses every live face. Marks nothing.
    void FlipNormals();
    /// Whether every corner of every live face, or with `deadToo` of every face, is at least 0 and below `pointCount`.
    /// What comes from a file is asked once, before anything follows its corners.
    bool AreIndexesBelow(int pointCount, bool deadToo = false) const;

    // --- Graphs (FaceGraph.cpp) -------------------------------------------------------------------------------------
    //
    // Each Init is paired with a Delete; they nest and share one graph. A query on a graph that is not there answers
    // empty. Results in a helper's buffer live until the helper's next query, in the slot order of a hash table.

    /// Entries are counted in 32 bits: the hub of a fan can have more faces than a face has corners.
    using PointGraph = CSimpleCollection<int, unsigned int>;
    /// Of the faces along one edge, 65,535 are kept.
    using EdgeGraph = CAssociationMap<C3DEdge, int, unsigned short>;

    /// Point to live faces, ascending; a face once a point. The size is that of the source point list of `info`.
    void InitPointToFaceGraph(const CGeomInfo* info);
    void DeletePointToFaceGraph();
    /// Builds afresh when the graph is in use; false in any case.
    bool UpdatePointToFaceGraph(const CGeomInfo* info);
    bool HasPointToFaceGraph() const { return m_pointGraphUse > 0; }
    /// Edge to live faces, ascending; a face as often as it runs along the edge.
    void InitEdgeToFaceGraph(const CGeomInfo* info) { InitEdgeToFaceGraph(info, nullptr); }
    /// When it is built now, `entries` receives the entry of each corner's edge, for the live faces one after the other.
    void InitEdgeToFaceGraph(const CGeomInfo* info, CBlockVector<unsigned int>* entries);
    void DeleteEdgeToFaceGraph();
    /// Builds afresh when the graph is in use; tells whether it did.
    bool UpdateEdgeToFaceGraph(const CGeomInfo* info);
    bool HasEdgeToFaceGraph() const { return m_edgeGraphUse > 0; }
    EdgeGraph& GetEdgeGraph();

    /// The faces of a point or of an edge, in place; null and 0 without any.
    const int* GetFacesConnectedToPoint(int point, int& count) const;
    const int* GetFacesConnectedToEdge(const C3DEdge& edge, int& count);
    /// Joins the faces of two points as `type` says. The first form adds to `set`, emptied first with `clear`, and
    /// gives its size.
    int GetFacesConnectedToPoints(CHashTable<int>& set, int p1, int p2, _ConnectionInfoType type, bool clear) const;
    const int* GetFacesConnectedToPoints(CFaceGraphHelper& helper, int p1, int p2, _ConnectionInfoType type, int& count) const;
    /// Faces that share an edge (CONNECT_BOTH) or a point (CONNECT_ANY) with a face, itself included; other types find
    /// nothing. The first form gives the sum of the set sizes after each edge.
    int GetFacesNeighbourg(CHashTable<int>& set, int face, _ConnectionInfoType type, bool clear);
    const int* GetFacesNeighbourg(CFaceGraphHelper& helper, int face, _ConnectionInfoType type, int& count);
    /// Points around a point: along edges (CONNECT_BOTH), all points of its faces (CONNECT_FIRST_ONLY), or those of its
    /// faces that no edge joins to it (any other).
    const int* GetPointsNeighbourg(CFaceGraphHelper& helper, int point, int& count, _ConnectionInfoType type);
    /// Joins the neighbours along edges of two points as `type` says.
    int GetPointsConnectedToPoints(CHashTable<int>& set, int p1, int p2, _ConnectionInfoType type);
    const int* GetPointsConnectedToPoints(CFaceGraphHelper& helper, int p1, int p2, _ConnectionInfoType type, int& count);
    /// All points of the faces that hold both points, without these two when `excludeEnds`. Null and 0 when there are
    /// no others.
    const int* GetPointsConnectedToEdge(CFaceGraphHelper& helper, int p1, int p2, int& count, bool excludeEnds);
    bool IsPointNeighbourg(CFaceGraphHelper& helper, int p, int q);
    /// No point of the face has another face.
    bool IsIsolatedFace(int face);
    /// Whether that face, or with -1 any face, has the edge.
    bool DoesEdgeExists(const C3DEdge& edge, int face) const;
    /// Whether the faces of the set hang together through shared points. Builds the point graph: the caller balances
    /// that with DeletePointToFaceGraph.
    bool AreFacesConnected(const CGeomInfo* info, CHashTable<int>& faces);
    /// Edges that exactly one face of the set uses, each with that face.
    void GetEdgesOnBorder(EdgeGraph& out, CHashTable<int>& faces);
    /// Triangles across the other two sides of the triangles of an edge. Options: 1 sides from p1, 2 sides from p2, 4
    /// without the triangles of the edge. Number of entries of `out`.
    int GetFacesByOppositeEdges(CFaceGraphHelper& helper, int p1, int p2, _ConnectionInfoType options, EdgeGraph& out);
    /// FACE_BORDER on the single face of each edge with one face; clears nothing. The edge graph is there.
    void SetBorderFacesStatus();
    /// Flood fill: divides the live faces into groups that hang together where the tagger says so. Number of groups.
    /// The graph that it builds stays: the tagger's EndProcess or the caller deletes it.
    unsigned int TagFaces(CGeomInfo* info, CFaceTagger& tagger, bool byEdge);

    // Updates of the point graph while faces are edited; false or 0 without a graph.

    /// False when the face is there already.
    bool GraphConnectFace(int point, int face);
    bool GraphDisconnectFace(int point, int face);
    /// Takes the face from the entries of its corners. Number of points left without a face, marked POINT_INVALID with
    /// `markPoints`.
    int GraphRemoveFaceReference(CGeomInfo* info, int face, bool markPoints);
    /// Gives p2 the faces of both points, p1 none. Number of faces of p2.
    int GraphMergePointConnectivity(int p1, int p2);

    // --- Cleaning (channels/Clean.cpp) ------------------------------------------------------------------------------

    /// The full clean: repairs and drops faces, drops unused points, and keeps the source channels in step. True when
    /// anything changed.
    bool Clean(const CGeomInfo* info);
    /// Drops the faces with FACE_INVALID. False, with an empty map, when there are none.
    ///
    /// @param cleanIndex  first repairs faces with repeated corners (CleanPointsIndex)
    /// @param faceMap     null, or out: new number by old number, 0xFFFFFFFF for a face that went
    bool Clean(const CGeomInfo* info, bool cleanIndex, CXArray<unsigned int, unsigned int>* faceMap);

protected:
    /// Takes repeated corners out of live faces and marks what is left with fewer than 3 corners; the source channels
    /// lose the same corners.
    void CleanPointsIndex(const CGeomInfo* info);
    /// Keeps the chunk data of the faces with a number in `target`, which ascends without gaps; 0xFFFFFFFF drops a face. The corners are those
    /// that stay already. Needs no memory (channels/Clean.cpp).
    void CompressFaces(const unsigned int* target, unsigned int kept);

    CFaceList();
    /// With a model takes its inherited chunks; without one the derived list adds the main chunk.
    explicit CFaceList(const CFaceList* model);
    CFaceList(const CFaceList&) = delete;
    ~CFaceList() override;

    bool HasMainChunk(unsigned int elementSize) const;
    void CreatePointToFaceGraph(const CGeomInfo* info);
    void CreateEdgeToFaceGraph(CBlockVector<unsigned int>* entries);
    /// Joins two sets of `type`, into `set`; its size.
    int GetConnectionSet(CHashTable<int>& set, const int* first, int firstCount, const int* second, int secondCount,
                         _ConnectionInfoType type) const;

    int m_size = 0;
    mutable CHashTable<int> m_scratch;    // of graph queries
    IndexCollection m_indexes;
    CDataChunk m_chunks;

private:
    unsigned int GetCornerChecksum() const;
    /// Number of corners of each face, 0 for a dead one; empty when all have as many, which then is `uniform`.
    static CBlockVector<unsigned int> GetSizes(const CFaceList& source, const int* faces, int count, unsigned int& uniform);
    bool PrepareAppend(int count);
    void FinishAppend(int count);
    void ClearCorners(unsigned int first, unsigned int end);
    void DropSurplus();
    void FreeGraphs();
    void DropGraphs();
    void Load(CXArchive& ar);

    friend class CSingleFace;

    PointGraph m_pointGraph;
    std::unique_ptr<EdgeGraph> m_edgeGraph;    // null without entries
    unsigned int m_pointGraphUse = 0;
    unsigned int m_edgeGraphUse = 0;
    unsigned int m_changedStamp = 0;
    unsigned int m_flags = 0;
};

/// The flags of all faces of a list, for loops: no call a face. Stale as soon as the list is resized.
class ZEL_API CFaceFlags {
public:
    explicit CFaceFlags(const CFaceList& faces);
    unsigned int& operator[](unsigned int face) const { return *reinterpret_cast<unsigned int*>(m_words + face * m_stride); }
    bool IsDead(unsigned int face) const { return ((*this)[face] & FACE_DEAD) != 0; }

private:
    unsigned char* m_words;
    std::size_t m_stride;    // 0 when the list has no main chunk: all faces are dead then
};

template <class VISIT> void CFaceList::ForEachLiveFace(VISIT&& visit) const
{
    const CFaceFlags flags(*this);
    m_indexes.ForEach(static_cast<unsigned int>(m_size), [&](unsigned int face, int* corners, unsigned int count) {
        if (!flags.IsDead(face))
            visit(static_cast<int>(face), corners, static_cast<int>(count));
    });
}
