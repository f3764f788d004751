// Queries on the graphs of a face list. A set is filled item by item in a fixed order, and results come in its slot
// order.

#include <algorithm>

#include "geometry/ConnectionInfo.h"
#include "geometry/Edge.h"
#include "geometry/FaceGraphHelper.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "tools/AssociationMap.h"
#include "tools/BlockVector.h"

namespace {

constexpr int FEW = 16;    // lists up to this length are searched without a table

// Items of a list, for many "is it in there".
class ItemSet {
public:
    ItemSet(CHashTable<int>& scratch, const int* items, int count) : m_table(scratch), m_items(items), m_count(count)
    {
        if (count <= FEW)
            return;
        m_table.RemoveAll();
        for (int i = 0; i < count; i++)
            m_table.Insert(items[i]);
    }
    bool Contains(int item) const
    {
        return m_count <= FEW ? std::find(m_items, m_items + m_count, item) != m_items + m_count : m_table.Find(item);
    }

private:
    CHashTable<int>& m_table;
    const int* m_items;
    int m_count;
};

void InsertWhere(CHashTable<int>& set, CHashTable<int>& scratch, const int* items, int count, const int* others, int otherCount, bool among)
{
    const ItemSet other(scratch, others, otherCount);
    for (int i = 0; i < count; i++)
        if (other.Contains(items[i]) == among)
            set.Insert(items[i]);
}

}

// Items of the first list are entered first, each list in its order.
int CFaceList::GetConnectionSet(CHashTable<int>& set, const int* a, int countA, const int* b, int countB, _ConnectionInfoType type) const
{
    switch (type) {
    case CONNECT_ANY:
        for (int i = 0; i < countA; i++)
            set.Insert(a[i]);
        for (int i = 0; i < countB; i++)
            set.Insert(b[i]);
        break;
    case CONNECT_BOTH: InsertWhere(set, m_scratch, a, countA, b, countB, true); break;
    case CONNECT_FIRST_ONLY: InsertWhere(set, m_scratch, a, countA, b, countB, false); break;
    case CONNECT_SECOND_ONLY: InsertWhere(set, m_scratch, b, countB, a, countA, false); break;
    case CONNECT_ONE_ONLY:
        InsertWhere(set, m_scratch, a, countA, b, countB, false);
        InsertWhere(set, m_scratch, b, countB, a, countA, false);
        break;
    default: return 0;
    }
    return set.GetSize();
}

// --- Faces -----------------------------------------------------------------------------------------------------------

const int* CFaceList::GetFacesConnectedToPoint(int point, int& count) const
{
    count = 0;
    if (m_pointGraphUse == 0)
        return nullptr;
    unsigned int items;
    const int* faces = m_pointGraph.GetItems(static_cast<unsigned int>(point), items);
    count = static_cast<int>(items);
    return items ? faces : nullptr;
}

const int* CFaceList::GetFacesConnectedToEdge(const C3DEdge& edge, int& count)
{
    count = 0;
    return m_edgeGraph ? m_edgeGraph->GetValues(m_edgeGraph->Find(edge), count) : nullptr;
}

int CFaceList::GetFacesConnectedToPoints(CHashTable<int>& set, int p1, int p2, _ConnectionInfoType type, bool clear) const
{
    if (clear)
        set.RemoveAll();
    int count1, count2;
    const int* faces1 = GetFacesConnectedToPoint(p1, count1);
    const int* faces2 = GetFacesConnectedToPoint(p2, count2);
    return GetConnectionSet(set, faces1, count1, faces2, count2, type);
}

const int* CFaceList::GetFacesConnectedToPoints(CFaceGraphHelper& helper, int p1, int p2, _ConnectionInfoType type, int& count) const
{
    GetFacesConnectedToPoints(helper.GetSet(), p1, p2, type, true);
    return helper.CopySet(count);
}

int CFaceList::GetFacesNeighbourg(CHashTable<int>& set, int face, _ConnectionInfoType type, bool clear)
{
    if (clear)
        set.RemoveAll();
    if (m_pointGraphUse == 0 || (type != CONNECT_ANY && type != CONNECT_BOTH))
        return 0;
    int sum = 0, count;
    const int* corners = GetIndexes(static_cast<unsigned int>(face), count);
    for (int k = 0; k < count; k++)
        sum += GetFacesConnectedToPoints(set, corners[k], corners[(k + 1) % count], type, false);
    return sum;
}

const int* CFaceList::GetFacesNeighbourg(CFaceGraphHelper& helper, int face, _ConnectionInfoType type, int& count)
{
    GetFacesNeighbourg(helper.GetSet(), face, type, true);
    return helper.CopySet(count);
}

bool CFaceList::IsIsolatedFace(int face)
{
    if (m_pointGraphUse == 0 || static_cast<unsigned int>(face) >= static_cast<unsigned int>(m_size))
        return false;
    int cornerCount;
    const int* corners = GetIndexes(static_cast<unsigned int>(face), cornerCount);
    return std::all_of(corners, corners + cornerCount, [this](int corner) {
        int count;
        GetFacesConnectedToPoint(corner, count);
        return count <= 1;
    });
}

bool CFaceList::DoesEdgeExists(const C3DEdge& edge, int face) const
{
    int count;
    const int* faces = GetFacesConnectedToPoint(edge.GetFirst(), count);
    return std::any_of(faces, faces + count, [&](int candidate) {
        if (face != -1 && candidate != face)
            return false;
        int cornerCount;
        const int* corners = GetIndexes(static_cast<unsigned int>(candidate), cornerCount);
        for (int k = 0; k < cornerCount; k++)
            if (C3DEdge(corners[k], corners[(k + 1) % cornerCount]) == edge)
                return true;
        return false;
    });
}

bool CFaceList::AreFacesConnected(const CGeomInfo* info, CHashTable<int>& faces)
{
    InitPointToFaceGraph(info);
    CHashTable<int> visited, spreadFrom;    // a point passes its faces on once, however many of them ask
    CBlockVector<int> stack;
    if (!faces.IsEmpty())
        stack.push_back(*faces.begin());
    while (!stack.empty()) {
        const int face = stack.back();
        stack.pop_back();
        int cornerCount;
        const int* corners = GetIndexes(static_cast<unsigned int>(face), cornerCount);
        for (int k = 0; k < cornerCount; k++) {
            if (!spreadFrom.Insert(corners[k]))
                continue;
            int count;
            const int* around = GetFacesConnectedToPoint(corners[k], count);
            for (int i = 0; i < count; i++)
                if (faces.Find(around[i]) && visited.Insert(around[i]))
                    stack.push_back(around[i]);
        }
    }
    return visited.GetCount() == faces.GetCount();
}

// --- Points ----------------------------------------------------------------------------------------------------------

const int* CFaceList::GetPointsNeighbourg(CFaceGraphHelper& helper, int point, int& count, _ConnectionInfoType type)
{
    CHashTable<int>& set = helper.GetSet();
    set.RemoveAll();
    int faceCount;
    const int* faces = GetFacesConnectedToPoint(point, faceCount);
    for (int i = 0; i < faceCount; i++) {
        int n;
        const int* corners = GetIndexes(static_cast<unsigned int>(faces[i]), n);
        if (type == CONNECT_BOTH) {
            for (int k = 0; k < n; k++)
                if (corners[k] == point) {
                    set.Insert(corners[(k - 1 + n) % n]);
                    set.Insert(corners[(k + 1) % n]);
                }
        } else if (type == CONNECT_FIRST_ONLY) {
            for (int k = 0; k < n; k++)
                set.Insert(corners[k]);
        } else {
            const int first = static_cast<int>(std::find(corners, corners + n, point) - corners);
            for (int step = 2; first < n && step <= n - 2; step++)
                set.Insert(corners[(first + step) % n]);
        }
    }
    if (type == CONNECT_FIRST_ONLY)
        set.Remove(point);
    return helper.CopySet(count);
}

int CFaceList::GetPointsConnectedToPoints(CHashTable<int>& set, int p1, int p2, _ConnectionInfoType type)
{
    static thread_local CFaceGraphHelper helper1, helper2;    // kept: a query costs no allocation
    int count1, count2;
    const int* points1 = GetPointsNeighbourg(helper1, p1, count1, CONNECT_BOTH);
    const int* points2 = GetPointsNeighbourg(helper2, p2, count2, CONNECT_BOTH);
    if (count1 == 0 && count2 == 0)
        return 0;
    return GetConnectionSet(set, points1, count1, points2, count2, type);
}

const int* CFaceList::GetPointsConnectedToPoints(CFaceGraphHelper& helper, int p1, int p2, _ConnectionInfoType type, int& count)
{
    helper.GetSet().RemoveAll();
    GetPointsConnectedToPoints(helper.GetSet(), p1, p2, type);
    return helper.CopySet(count);
}

const int* CFaceList::GetPointsConnectedToEdge(CFaceGraphHelper& helper, int p1, int p2, int& count, bool excludeEnds)
{
    count = 0;
    if (p1 == p2)
        return nullptr;
    int faceCount;
    const int* faces = GetFacesConnectedToPoints(helper, p1, p2, CONNECT_BOTH, faceCount);
    CHashTable<int>& set = helper.GetSet();    // the faces stand in the buffer by now
    set.RemoveAll();
    for (int i = 0; i < faceCount; i++) {
        int n;
        const int* corners = GetIndexes(static_cast<unsigned int>(faces[i]), n);
        for (int k = 0; k < n; k++)
            set.Insert(corners[k]);
    }
    if (set.GetCount() == 2)
        return nullptr;
    int* array = helper.GetArray(set.GetCount());
    for (const int point : set)
        if (!excludeEnds || (point != p1 && point != p2))
            array[count++] = point;
    return count ? array : nullptr;
}

bool CFaceList::IsPointNeighbourg(CFaceGraphHelper& helper, int p, int q)
{
    int count;
    GetPointsNeighbourg(helper, p, count, CONNECT_BOTH);
    return helper.GetSet().Find(q);
}

// --- Triangles around an edge ----------------------------------------------------------------------------------------

// The sets are kept from call to call: a query costs no allocation.
int CFaceList::GetFacesByOppositeEdges(CFaceGraphHelper& helper, int p1, int p2, _ConnectionInfoType options, EdgeGraph& out)
{
    constexpr int FROM_FIRST = 1, FROM_SECOND = 2, WITHOUT_START = 4;
    out.RemoveAll();
    int faceCount;
    const int* faces = GetFacesConnectedToPoints(helper, p1, p2, CONNECT_BOTH, faceCount);
    if (!faces)
        return 0;
    out.Reserve(static_cast<unsigned int>(faceCount), 2);

    static thread_local CHashTable<C3DEdge> sides[2];
    static thread_local CHashTable<int> start, across;
    sides[0].RemoveAll();
    sides[1].RemoveAll();
    start.RemoveAll();
    for (int i = 0; i < faceCount; i++) {
        int n;
        const int* corners = GetIndexes(static_cast<unsigned int>(faces[i]), n);
        if (n < 3)
            continue;
        const int* end = corners + 3;
        if (std::find(corners, end, p1) == end || std::find(corners, end, p2) == end)
            continue;
        const int* third = std::find_if(corners, end, [&](int corner) { return corner != p1 && corner != p2; });
        if (third == end)
            continue;
        if (options & FROM_FIRST)
            sides[0].Insert(C3DEdge(p1, *third));
        if (options & FROM_SECOND)
            sides[1].Insert(C3DEdge(p2, *third));
        start.Insert(faces[i]);
    }
    for (const CHashTable<C3DEdge>& edges : sides)
        for (const C3DEdge& edge : edges) {
            GetFacesConnectedToPoints(across, edge.GetFirst(), edge.GetSecond(), CONNECT_BOTH, true);
            for (const int face : across)
                if (!(options & WITHOUT_START) || !start.Find(face))
                    out.Add(edge, face);
        }
    return static_cast<int>(out.GetCount());
}
