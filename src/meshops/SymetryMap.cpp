// Mirror images: which point lies where another one is seen in the mirror.
//
//   grid      40 cells along the axis; the image of a point is looked for in the one cell that its place lies in
//   exact     a table of places answers for points that lie on their images, which is nearly all of a symmetric mesh
//   nearest   else a tree over the points of that cell, made when it is first asked: a cell of a big mesh holds many points

#include "meshops/SymetryMap.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>
#include <unordered_map>

#include "channels/Block.h"
#include "geometry/3DPointList.h"
#include "geometry/Edge.h"
#include "geometry/FaceList.h"
#include "meshops/Extent.h"
#include "meshops/IntCoordMap.h"
#include "tools/BlockVector.h"
#include "tools/HashMix.h"
#include "tools/Progress.h"

C3DPointSymetryMap::~C3DPointSymetryMap() = default;

C3DPointSymetryMap::SymetricEdgeInfo C3DPointSymetryMap::GetSymetricEdge(const CFaceList* faces, const C3DEdge& edge, C3DEdge& mirrored,
                                                                         bool keepOrder) const
{
    const int* first = Find(edge.GetFirst());
    const int* second = Find(edge.GetSecond());
    if (!first || !second)
        return SYMETRIC_EDGE_NONE;
    mirrored = C3DEdge(*first, *second);
    if (!faces || !faces->DoesEdgeExists(mirrored, -1))
        return SYMETRIC_EDGE_NONE;
    if (mirrored == edge)
        return SYMETRIC_EDGE_SELF;
    if (keepOrder)
        mirrored = C3DEdge::Directed(*first, *second);
    return SYMETRIC_EDGE_FOUND;
}

namespace {

/// The mirror: a plane across an axis.
struct CMirror {
    int axis;
    float centre;

    C3DTPoint<float> Image(const C3DTPoint<float>& p) const
    {
        C3DTPoint<float> image = p;
        image[axis] = (centre - p[axis]) + centre;
        return image;
    }
    /// Both coordinates lie on one side of the plane, and off it.
    bool IsOneSide(float a, float b) const { return (centre - a) * (centre - b) > 1e-6; }
};

/// A point whose image is wanted: where that should be, and whether points on the own side are no partners.
struct CImage {
    C3DTPoint<float> place;
    float own;    ///< the point's coordinate along the axis
    bool onMiddle;
};

/// The best candidate so far. Of equal distances the lowest point wins, in whatever order they come.
struct CBest {
    double limit;    ///< distances up to this one are looked at
    int point = -1;

    void Offer(int candidate, float distance)
    {
        if (distance < limit || (distance == limit && (point < 0 || candidate < point))) {
            point = candidate;
            limit = distance;
        }
    }
};

float Distance(const C3DTPoint<float>& a, const C3DTPoint<float>& b)
{
    const float dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

/// The points of one cell, halved along the longer side of their box again and again. Of points at one place only the lowest is kept.
class CPointTree {
public:
    CPointTree(const C3DTPoint<float>* points, const int* first, int count) : m_points(points), m_items(first, first + count)
    {
        std::sort(m_items.begin(), m_items.end(), [&](int a, int b) {
            const C3DTPoint<float>&p = points[a], &q = points[b];
            return p.x != q.x ? p.x < q.x : p.y != q.y ? p.y < q.y : p.z != q.z ? p.z < q.z : a < b;
        });
        m_items.erase(std::unique(m_items.begin(), m_items.end(), [&](int a, int b) { return points[a] == points[b]; }), m_items.end());
        Split(0, static_cast<int>(m_items.size()));
    }

    void Search(const CMirror& mirror, const CImage& image, CBest& best) const { Search(0, mirror, image, best); }

private:
    static constexpr int LEAF = 8;

    struct Node {
        float low[3], high[3];
        int begin, end;
        int second;    ///< the first half follows at once; 0 for a leaf
    };

    void Split(int begin, int end)
    {
        const std::size_t at = m_nodes.size();
        m_nodes.push_back(Measure(begin, end));
        if (end - begin <= LEAF)
            return;
        int axis = 0;
        for (int k = 1; k < 3; k++)
            if (Side(m_nodes[at], k) > Side(m_nodes[at], axis))
                axis = k;
        const int middle = begin + (end - begin) / 2;
        std::nth_element(m_items.begin() + begin, m_items.begin() + middle, m_items.begin() + end,
                         [&](int a, int b) { return m_points[a][axis] < m_points[b][axis]; });
        Split(begin, middle);
        m_nodes[at].second = static_cast<int>(m_nodes.size());
        Split(middle, end);
    }
    Node Measure(int begin, int end) const
    {
        Node node{{INFINITY, INFINITY, INFINITY}, {-INFINITY, -INFINITY, -INFINITY}, begin, end, 0};
        for (int i = begin; i < end; i++)
            for (int k = 0; k < 3; k++) {
                node.low[k] = std::min(node.low[k], m_points[m_items[i]][k]);
                node.high[k] = std::max(node.high[k], m_points[m_items[i]][k]);
            }
        return node;
    }
    static float Side(const Node& node, int axis) { return node.high[axis] - node.low[axis]; }

    void Search(int at, const CMirror& mirror, const CImage& image, CBest& best) const
    {
        const Node& node = m_nodes[at];
        if (IsBeyond(node, image.place, best.limit) || IsForbidden(node, mirror, image))
            return;
        if (node.second) {
            // The half that the place lies in comes first: it sets a limit for the other one.
            const int halves[2] = {at + 1, node.second};
            const bool secondFirst = DistanceTo(m_nodes[halves[1]], image.place) < DistanceTo(m_nodes[halves[0]], image.place);
            Search(halves[secondFirst], mirror, image, best);
            Search(halves[!secondFirst], mirror, image, best);
            return;
        }
        for (int i = node.begin; i < node.end; i++) {
            const C3DTPoint<float>& q = m_points[m_items[i]];
            if (!image.onMiddle || !mirror.IsOneSide(q[mirror.axis], image.own))
                best.Offer(m_items[i], Distance(image.place, q));
        }
    }
    static double DistanceTo(const Node& node, const C3DTPoint<float>& place)
    {
        double sum = 0;
        for (int k = 0; k < 3; k++) {
            const double p = place[k], d = p < node.low[k] ? node.low[k] - p : p > node.high[k] ? p - node.high[k] : 0;
            sum += d * d;
        }
        return std::sqrt(sum);
    }
    /// Distances are compared in float, so a box has to lie clearly beyond the limit; far below 1e-20 they round to 0.
    static bool IsBeyond(const Node& node, const C3DTPoint<float>& place, double limit)
    {
        return DistanceTo(node, place) * (1 - 1e-5) - 1e-20 > limit;
    }
    static bool IsForbidden(const Node& node, const CMirror& mirror, const CImage& image)
    {
        return image.onMiddle && mirror.IsOneSide(node.low[mirror.axis], image.own) && mirror.IsOneSide(node.high[mirror.axis], image.own);
    }

    const C3DTPoint<float>* m_points;
    CBlockVector<int> m_items;
    CBlockVector<Node> m_nodes;
};

/// The lowest point at each place.
class CPlaceTable {
public:
    CPlaceTable(const C3DTPoint<float>* points, int count)
        : m_points(points), m_slots(std::bit_ceil(static_cast<std::size_t>(count) * 2 + 2), -1)
    {
        constexpr int AHEAD = 16;
        for (int i = 0; i < count; i++) {
            if (i + AHEAD < count)
                __builtin_prefetch(&m_slots[Start(points[i + AHEAD])]);
            int& slot = m_slots[Find(points[i])];
            if (slot < 0)
                slot = i;
            m_crowded |= IsCrowded(points[i].x) || IsCrowded(points[i].y) || IsCrowded(points[i].z);
        }
    }
    /// -1 for none.
    int GetPointAt(const C3DTPoint<float>& place) const { return m_slots[Find(place)]; }
    /// Places may lie so close that their distance in float is 0: the lowest point at a place need not be the lowest at that distance.
    bool IsCrowded() const { return m_crowded; }

private:
    static bool IsCrowded(float value) { return value != 0 && std::fabs(value) < 1e-15f; }
    std::size_t Start(const C3DTPoint<float>& p) const
    {
        const auto bits = [](float value) { return std::uint64_t{std::bit_cast<std::uint32_t>(value + 0.0f)}; };    // -0 is 0
        return HashMix64((bits(p.x) << 32 | bits(p.y)) ^ bits(p.z) * 0x9E3779B97F4A7C15u) & (m_slots.GetSize() - 1);
    }
    std::size_t Find(const C3DTPoint<float>& p) const
    {
        std::size_t slot = Start(p);
        // What is not a number equals nothing; all of it would chain up behind one slot.
        if (p.x != p.x || p.y != p.y || p.z != p.z)
            return 0;
        while (m_slots[slot] >= 0 && !(m_points[m_slots[slot]] == p))
            slot = (slot + 1) & (m_slots.GetSize() - 1);
        return slot;
    }

    const C3DTPoint<float>* m_points;
    CBlock<int> m_slots;
    bool m_crowded = false;
};

class CImageSearch {
public:
    CImageSearch(const C3DPointList& list, const CIntCoordMap& grid, const CMirror& mirror, double maxDistance)
        : m_points(list.GetFirst()), m_grid(grid), m_mirror(mirror), m_maxDistance(maxDistance), m_places(m_points, list.GetSize())
    {
        C3DTPoint<float> middle = grid.GetOrigin();
        middle[mirror.axis] = mirror.centre;
        Cell cell;
        m_middle = grid.GetCell(middle, cell) ? OnAxis(cell) : 0;
    }

    /// The point that lies nearest to the image of another one, or -1.
    int FindPartner(const C3DTPoint<float>& p)
    {
        CImage image{m_mirror.Image(p), p[m_mirror.axis], false};
        Cell cell;
        if (!m_grid.GetCell(image.place, cell))
            return -1;
        image.onMiddle = OnAxis(cell) == m_middle;
        if (const int exact = FindExact(image); exact >= 0)
            return exact;
        CBest best{m_maxDistance};
        int count;
        if (const int* points = m_grid.GetPoints(cell, count))
            GetTree(points, count).Search(m_mirror, image, best);
        return best.point;
    }

private:
    using Cell = CIntCoordMap::Cell;

    std::int64_t OnAxis(const Cell& cell) const { return m_mirror.axis == AXIS_X ? cell.x : m_mirror.axis == AXIS_Y ? cell.y : cell.z; }
    int FindExact(const CImage& image) const
    {
        const int point = m_places.IsCrowded() || !(m_maxDistance >= 0) ? -1 : m_places.GetPointAt(image.place);
        const bool taken = point >= 0 && !(image.onMiddle && m_mirror.IsOneSide(image.place[m_mirror.axis], image.own));
        return taken ? point : -1;
    }
    const CPointTree& GetTree(const int* points, int count)
    {
        std::unique_ptr<CPointTree>& tree = m_trees[points];
        if (!tree)
            tree = std::make_unique<CPointTree>(m_points, points, count);
        return *tree;
    }

    const C3DTPoint<float>* m_points;
    const CIntCoordMap& m_grid;
    CMirror m_mirror;
    double m_maxDistance;
    std::int64_t m_middle;
    CPlaceTable m_places;
    std::unordered_map<const int*, std::unique_ptr<CPointTree>> m_trees;    ///< by the points of a cell
};

}    // namespace

C3DPointSymetryMap* C3DPointList::InitSymetryMap(_AXIS_INFO axisInfo, double tolerance)
{
    constexpr double FLAT = 1e-15;
    if (GetSize() == 0)
        return nullptr;
    auto* map = new C3DPointSymetryMap;
    const int axis = axisInfo <= AXIS_Z ? static_cast<int>(axisInfo) : 0;
    C3DTPoint<float> low, high;
    GetBoundingBox(low, high);
    const double extent = Extent(low[axis], high[axis]);
    if (extent < FLAT)
        return map;

    const double size = extent / 20.0;
    const std::unique_ptr<CIntCoordMap> grid(GetIntCoordMap(size, true, false));
    CImageSearch search(*this, *grid, {axis, Middle(low[axis], high[axis])}, size * tolerance);
    map->InitTable(static_cast<unsigned int>(GetSize()) / 6);
    const C3DTPoint<float>* points = GetFirst();
    CProgress progress(L"Looking for symmetry", static_cast<std::uint64_t>(GetSize()));
    for (int p = 0; p < GetSize(); p++) {
        if (!progress.Step()) {
            DeleteMe(map);
            return nullptr;
        }
        if (map->Find(p))
            continue;
        const int q = search.FindPartner(points[p]);
        if (q < 0 || map->Find(q))
            continue;
        map->Insert(p, q);
        map->Insert(q, p);
    }
    return map;
}
