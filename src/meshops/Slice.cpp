// Slicing: objects with too many points are cut into parts.
//
//   cut      the points: a slice with too many is halved along the longest side of its box, and so on
//   faces    go to the slice of most of their corners; one whose faces reach too many points is cut again
//   parts    an object for each slice with faces. Stopping here costs nothing
//   nodes    a new one for each part; sharers of the object get instances; the old nodes go

#include "meshops/Slice.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <unordered_map>
#include <utility>
#include <vector>

#include "channels/Block.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "meshops/Extent.h"
#include "meshops/IntCoordMap.h"
#include "meshops/SliceScene.h"
#include "meshops/SubObjectCutter.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "tools/BlockVector.h"
#include "tools/Hash.h"
#include "tools/Progress.h"

bool SliceScene(const CCustomData& parameters, C3DScene* scene)
{
    unsigned int mode, mostPoints, nx, ny, nz;
    parameters.GetUnsigned(SLICE_MODE, mode, SLICE_SPLIT);
    parameters.GetUnsigned(SLICE_POINTS, mostPoints, 65535);
    parameters.GetUnsigned(SLICE_X, nx, 10);
    parameters.GetUnsigned(SLICE_Y, ny, 10);
    parameters.GetUnsigned(SLICE_Z, nz, 10);
    if (!scene)
        return false;
    if (mode == SLICE_SPLIT)
        return SplitObjects(*scene, mostPoints);
    return mode == SLICE_COLOUR && ColourObjects(*scene, std::max(nx, 1u), std::max(ny, 1u), std::max(nz, 1u));
}

// Grid

/// Twice the cell: what makes `count` cells of a side, with room for the points at its end.
static double CellDistance(float low, float high, unsigned int count) { return Extent(low, high) * 2.01 / std::max(count, 1u); }

CIntCoordMap* C3DPointList::InitSlicerMap(bool fill, unsigned int nx, unsigned int ny, unsigned int nz, unsigned int flag, bool flagValue)
{
    if (GetSize() == 0)
        return nullptr;
    C3DTPoint<float> low, high;
    GetBoundingBox(low, high, flag, flagValue);
    // A flat side gets cells of some other length: all of its points lie at the origin, in one of them.
    auto* map = new CIntCoordMap(low, CellDistance(low.x, high.x, nx), CellDistance(low.y, high.y, ny), CellDistance(low.z, high.z, nz));
    if (fill)
        map->Fill(*this, flag, flagValue);
    return map;
}

namespace {

/// Faces of one part, as a run in a list of faces.
struct FaceRun {
    int begin, end;
};

/// Slices of the points of one object, and the faces by slice.
class CSlicer {
public:
    CSlicer(const C3DPointList& points, const C3DFaceList& faces, unsigned int mostPoints)
        : m_points(points.GetFirst()), m_faces(faces), m_mostPoints(mostPoints), m_slice(points.GetSize(), 0), m_order(points.GetSize()),
          m_usedBy(points.GetSize()), m_mostSlices(2 * static_cast<std::size_t>(faces.GetNumberOfFaces(FACE_DEAD, false)) + FEW),
          m_progress(L"Slicing", static_cast<std::uint64_t>(points.GetSize()) * std::bit_width(points.GetSize() / (mostPoints + 1u)) + 1)
    {
        std::iota(m_order.GetData(), m_order.GetData() + m_order.GetSize(), 0);
        m_slices.push_back({0, points.GetSize()});
    }

    /// False when the user stopped it.
    bool Run()
    {
        CBlockVector<int> toCut{0};
        while (!toCut.empty()) {
            while (!toCut.empty()) {
                if (m_progress.IsCancelled())
                    return false;
                const int slice = toCut.back();
                toCut.pop_back();
                Cut(slice, toCut);
            }
            GroupFaces();
            for (std::size_t group = 0; group < m_groups.size(); group++)
                if (m_slices[m_sliceOfGroup[group]].mayBeCut && CountPoints(static_cast<int>(group)) > m_mostPoints)
                    toCut.push_back(m_sliceOfGroup[group]);
        }
        return true;
    }

    /// All faces are still together, above the limit.
    bool IsWhole() { return m_groups.size() == 1 && CountPoints(0) > m_mostPoints; }
    const CBlockVector<FaceRun>& GetParts() const { return m_groups; }
    const int* GetFaces() const { return m_faceOrder.data(); }

private:
    static constexpr int NO_GROUP = -1;
    static constexpr std::size_t FEW = 256;

    struct Slice {
        int begin, end;    ///< in m_order
        bool mayBeCut = true;
    };

    // Points

    /// Halves a slice; a half with too many points is to be cut again. Points at one place cannot be cut: their slice stays. So does one of
    /// more slices than faces can part.
    void Cut(int slice, CBlockVector<int>& toCut)
    {
        const Slice whole = m_slices[slice];
        m_progress.Step(static_cast<std::uint64_t>(whole.end - whole.begin));
        int axis;
        float low;
        double cell;
        if (m_slices.size() > m_mostSlices || !GetCut(whole, axis, low, cell)) {
            m_slices[slice].mayBeCut = false;
            return;
        }
        const auto isNear = [&](int point) {
            const double quotient = (double{m_points[point][axis]} - low) / cell;
            return !(quotient >= 1);    // what is not a number has to lie somewhere
        };
        int* const order = m_order.GetData();
        const int middle = static_cast<int>(std::partition(order + whole.begin, order + whole.end, isNear) - order);
        m_slices[slice] = {0, 0, false};
        AddHalf(whole.begin, middle, toCut);
        AddHalf(middle, whole.end, toCut);
    }
    /// The longest side of the box and the length of a half of it; false for a box without length.
    bool GetCut(const Slice& slice, int& axis, float& low, double& cell) const
    {
        float min[3], max[3];
        double side[3];
        for (int k = 0; k < 3; k++) {
            min[k] = INFINITY, max[k] = -INFINITY;
            for (int i = slice.begin; i < slice.end; i++) {
                const float value = m_points[m_order[i]][k];
                if (!std::isfinite(value))
                    continue;
                min[k] = std::min(min[k], value);
                max[k] = std::max(max[k], value);
            }
            side[k] = min[k] < max[k] ? Extent(min[k], max[k]) : 0;
        }
        axis = side[0] > side[1] && side[0] > side[2] ? 0 : side[0] <= side[1] && side[1] > side[2] ? 1 : 2;
        if (side[axis] == 0)
            return false;
        low = min[axis];
        cell = CellDistance(min[axis], max[axis], 2) / 2;
        return true;
    }
    void AddHalf(int begin, int end, CBlockVector<int>& toCut)
    {
        const int slice = static_cast<int>(m_slices.size());
        m_slices.push_back({begin, end});
        for (int i = begin; i < end; i++)
            m_slice[m_order[i]] = slice;
        if (static_cast<unsigned int>(end - begin) > m_mostPoints)
            toCut.push_back(slice);
    }

    // Faces

    /// Sorts the live faces by slice: groups in the order in which their slices are first met, faces in order within.
    void GroupFaces()
    {
        const int size = m_faces.GetSize();
        const CFaceFlags flags(m_faces);
        CBlockVector<int> groupOfSlice(m_slices.size(), NO_GROUP), groupOf(static_cast<std::size_t>(size), NO_GROUP);
        m_groups.clear();
        m_sliceOfGroup.clear();
        for (int face = 0; face < size; face++) {
            int count;
            const int* corners = m_faces.GetIndexes(face, count);
            if (flags.IsDead(face) || count == 0)
                continue;
            const int slice = GetFaceSlice(corners, count);
            if (groupOfSlice[slice] == NO_GROUP) {
                groupOfSlice[slice] = static_cast<int>(m_groups.size());
                m_groups.push_back({0, 0});
                m_sliceOfGroup.push_back(slice);
            }
            m_groups[groupOf[face] = groupOfSlice[slice]].end++;
        }
        int begin = 0;
        for (FaceRun& group : m_groups) {
            const int count = group.end;
            group = {begin, begin};
            begin += count;
        }
        m_faceOrder.resize(static_cast<std::size_t>(begin));
        for (int face = 0; face < size; face++)
            if (groupOf[face] != NO_GROUP)
                m_faceOrder[m_groups[groupOf[face]].end++] = face;
    }

    int GetFaceSlice(const int* corners, int count)
    {
        const int first = m_slice[corners[0]];
        if (count == 3) {
            const int second = m_slice[corners[1]], third = m_slice[corners[2]];
            return first != second && first != third && second == third ? second : first;
        }
        if (std::all_of(corners + 1, corners + count, [&](int point) { return m_slice[point] == first; }))
            return first;
        // Of equal counts the first in the table's order.
        m_counts.RemoveAll();
        for (int k = 0; k < count; k++)
            m_counts[m_slice[corners[k]]]++;
        int best = first, most = 0;
        for (const auto& [slice, corner] : m_counts)
            if (corner > most) {
                best = slice;
                most = corner;
            }
        return best;
    }

    unsigned int CountPoints(int group)
    {
        m_stamp++;
        unsigned int count = 0;
        for (int i = m_groups[group].begin; i < m_groups[group].end; i++) {
            int size;
            const int* corners = m_faces.GetIndexes(m_faceOrder[i], size);
            for (int k = 0; k < size; k++) {
                count += m_usedBy[corners[k]] != m_stamp;
                m_usedBy[corners[k]] = m_stamp;
            }
        }
        return count;
    }

    const C3DTPoint<float>* m_points;
    const C3DFaceList& m_faces;
    unsigned int m_mostPoints;
    CBlockVector<int> m_slice;       ///< by point
    CBlock<int> m_order;             ///< points, slice by slice
    CBlockVector<Slice> m_slices;    ///< by number; one that was cut is empty
    CBlockVector<FaceRun> m_groups;
    CBlockVector<int> m_sliceOfGroup, m_faceOrder;
    CBlockVector<std::uint64_t> m_usedBy;    ///< by point
    std::uint64_t m_stamp = 0;
    CHashMap<int, int> m_counts;
    const std::size_t m_mostSlices;
    CProgress m_progress;    // points by cuts
};

bool HasFacesToCut(const C3DGeomObject& object)
{
    const C3DFaceList* faces = object.GetFaceList();
    return faces && faces->GetNumberOfFaces(static_cast<unsigned int>(FACE_DEAD), false) > 0 &&
           faces->AreIndexesBelow(object.GetPointNbr());
}

/// Nodes with objects to cut, one for each object.
std::vector<C3DSceneNode*> GetNodesToSplit(const C3DScene& scene, unsigned int mostPoints)
{
    std::vector<C3DSceneNode*> nodes;
    C3DGeomObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        C3DSceneNode* node = scene.GetNextNode(object, pos);
        if (object && static_cast<unsigned int>(object->GetPointNbr()) > mostPoints && HasFacesToCut(*object))
            nodes.push_back(node);
    }
    return nodes;
}

/// A node beside `sibling` that is like it in all but name and object, which it takes over.
void AddPart(C3DScene& scene, const C3DSceneNode* sibling, C3DBaseObject* object, int number)
{
    C3DSceneNode* node = C3DSceneNode::Create();
    node->Inherit(sibling, 0);
    node->SetName(sibling->GetName() + (L"-" + std::to_wstring(number)).c_str());
    node->SetObject(object, true);
    scene.AddNode(sibling->GetParent(), node);
}

using Parts = std::vector<C3DObject*>;

/// The parts of each object that is cut. What is not taken goes.
class PartsOfObjects {
public:
    PartsOfObjects() = default;
    PartsOfObjects(const PartsOfObjects&) = delete;
    ~PartsOfObjects()
    {
        for (auto& [object, parts] : m_parts)
            for (C3DObject* part : parts)
                DeleteMe(part);
    }

    /// False when the user stopped it.
    bool Cut(C3DGeomObject& object, unsigned int mostPoints)
    {
        CSlicer slicer(*object.GetPointList(), *object.GetFaceList(), mostPoints);
        if (!slicer.Run())
            return false;
        if (slicer.IsWhole())
            return true;
        Parts& parts = m_parts[&object];
        CSubObjectCutter cutter(object);
        CProgress progress(L"Slicing", slicer.GetParts().size());
        for (const FaceRun& run : slicer.GetParts()) {
            if (C3DObject* part = cutter.Cut(slicer.GetFaces() + run.begin, static_cast<unsigned int>(run.end - run.begin)))
                parts.push_back(part);
            if (!progress.Step())
                return false;
        }
        return true;
    }
    Parts Take(C3DGeomObject* object)
    {
        const auto found = m_parts.find(object);
        return found != m_parts.end() ? std::exchange(found->second, {}) : Parts();
    }

private:
    std::unordered_map<C3DGeomObject*, Parts> m_parts;
};

/// Nodes for the parts beside the node and beside each that shares its object. These nodes are listed: they go at the end.
void AddParts(C3DScene& scene, C3DSceneNode* node, const Parts& parts, std::vector<C3DSceneNode*>& replaced)
{
    CXArray<C3DSceneNode*> sharers;
    if (node->GetGeomObject()->IsInstanciated())
        scene.GetInstancesByID(nullptr, node, sharers, true);
    int number = 0;
    for (C3DObject* part : parts) {
        AddPart(scene, node, part, number);
        for (C3DSceneNode* sharer : sharers)
            if (sharer != node)
                AddPart(scene, sharer, scene.CreateObjectInstance(part), number);
        number++;
    }
    replaced.push_back(node);
    for (C3DSceneNode* sharer : sharers)
        if (sharer != node)
            replaced.push_back(sharer);
}

}    // namespace

bool SplitObjects(C3DScene& scene, unsigned int mostPoints)
{
    const std::vector<C3DSceneNode*> nodes = GetNodesToSplit(scene, mostPoints);
    PartsOfObjects made;
    CProgress progress(L"Slicing", nodes.size());
    for (C3DSceneNode* node : nodes)
        if (!made.Cut(*node->GetGeomObject(), mostPoints) || !progress.Step())
            return false;
    if (nodes.empty())
        return false;

    scene.MakeGroupForChilds(nullptr);
    std::vector<C3DSceneNode*> replaced;
    for (C3DSceneNode* node : GetNodesToSplit(scene, mostPoints))
        if (const Parts parts = made.Take(node->GetGeomObject()); !parts.empty())
            AddParts(scene, node, parts, replaced);
    for (C3DSceneNode* node : replaced)
        scene.RemoveNode(node, true);
    return true;
}
