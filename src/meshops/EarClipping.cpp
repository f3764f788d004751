// Cutting ears off a polygon.
//
//   TakeEars         the order in which corners are tried and cut off; knows no representation
//   TakeRest         cuts off what is left where no corner makes an ear
//   CSmallPolygon    the common case: on the stack, corners found by looking at all of them, angles hardly ever worked out
//   CLargePolygon    corners in a list, the sharpest one from a tournament, corners in the way from a tree over the plane
//
// Both give the same triangles. Which corner is sharper decides what the triangles are, so angles are compared as the numbers that atan2
// gives in single precision, ties included; where vectors alone tell for sure what that comparison would give, they are asked.

#include "meshops/EarClipping.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <set>

#include "geometry/3DFace.h"
#include "geometry/3DPointList.h"
#include "tools/BlockVector.h"

namespace {

constexpr int SMALL = 48;    // up to here looking at all corners is cheaper than keeping order
constexpr float WIDE = 1.58f;

struct Vector2 {
    float x, y;
};
Vector2 operator-(const Vector2& a, const Vector2& b) { return {a.x - b.x, a.y - b.y}; }

// Positive on the left of the line from `a` to `b`. In single precision, each step of which is monotonic: over a box the largest value is
// that of one of its corners, to the last bit.
float Side(const Vector2& a, const Vector2& b, const Vector2& p) { return (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y); }

// An ear, and what is strictly inside of its box and of its edges.
class CEarTriangle {
public:
    CEarTriangle(const Vector2& c, const Vector2& q, const Vector2& p)
        : m_from{c, q, p}, m_to{q, p, c}, m_min{std::min({c.x, q.x, p.x}), std::min({c.y, q.y, p.y})}, m_max{std::max({c.x, q.x, p.x}),
                                                                                                             std::max({c.y, q.y, p.y})}
    {
    }

    bool Contains(const Vector2& point) const
    {
        if (!(point.x > m_min.x && point.x < m_max.x && point.y > m_min.y && point.y < m_max.y))
            return false;
        for (int edge = 0; edge < 3; edge++)
            if (!(Side(m_from[edge], m_to[edge], point) > 0))
                return false;
        return true;
    }
    // False when it contains no point of the box.
    bool MayMeet(const Vector2& min, const Vector2& max) const
    {
        if (!(max.x > m_min.x && min.x < m_max.x && max.y > m_min.y && min.y < m_max.y))
            return false;
        for (int edge = 0; edge < 3; edge++) {
            const Vector2 direction = m_to[edge] - m_from[edge];
            const Vector2 leftmost{direction.y >= 0 ? min.x : max.x, direction.x >= 0 ? max.y : min.y};
            if (Side(m_from[edge], m_to[edge], leftmost) <= 0)
                return false;
        }
        return true;
    }

private:
    Vector2 m_from[3], m_to[3], m_min, m_max;
};

// Sine and cosine of the angle at a corner, both times the lengths of its edges.
struct CornerTurn {
    float y, x;

    CornerTurn() = default;
    CornerTurn(const Vector2& toNext, const Vector2& toPrev)
        : y(toNext.x * toPrev.y - toNext.y * toPrev.x), x(toNext.x * toPrev.x + toNext.y * toPrev.y)
    {
    }
    float Angle() const { return std::atan2(y, x); }
};

// Comparisons of the angles of turns, most of them without the angles.
namespace Turn {

constexpr double UNSURE = 4e-12;    // squared sine up to which two angles may round to the same number, or to the other order
constexpr float TINY = 1e-30f;      // an angle of a smaller tangent may round to 0

bool IsSurelyAbove0(const CornerTurn& t) { return t.y > TINY * std::abs(t.x); }
bool IsSurelyBelow0(const CornerTurn& t) { return t.y < -TINY * std::abs(t.x); }
bool IsAbove0(const CornerTurn& t) { return IsSurelyAbove0(t) || (!IsSurelyBelow0(t) && t.Angle() > 0); }
bool IsBelow0(const CornerTurn& t) { return IsSurelyBelow0(t) || (!IsSurelyAbove0(t) && t.Angle() < 0); }
bool IsConvex(const CornerTurn& t) { return IsSurelyAbove0(t) || (!IsSurelyBelow0(t) && t.Angle() >= 0); }

// Below 0: a is sharper; above 0: b is; 0: the angles tell. Both angles are surely above 0.
int Compare(double ay, double ax, double by, double bx)
{
    const double sine = ax * by - ay * bx;    // the products are exact
    if (!(sine * sine > UNSURE * ((ax * ax + ay * ay) * (bx * bx + by * by))))
        return 0;
    return sine > 0 ? -1 : 1;
}

bool IsSharper(const CornerTurn& a, const CornerTurn& b)
{
    if (IsSurelyAbove0(a) && IsSurelyAbove0(b)) {
        if ((a.x == b.x && a.y == b.y) || (a.x == 0 && b.x == 0))
            return false;    // the same turn, or right angles
        if (const int order = Compare(a.y, a.x, b.y, b.x))
            return order < 0;
    }
    return a.Angle() < b.Angle();
}

bool IsWide(const CornerTurn& t)
{
    constexpr double SINE_OF_WIDE = 0.9999576461037659, COSINE_OF_WIDE = -0.00920358618233488;
    if (IsSurelyAbove0(t))
        if (const int order = Compare(t.y, t.x, SINE_OF_WIDE, COSINE_OF_WIDE))
            return order > 0;
    return t.Angle() > WIDE;
}

}

// What TakeEars finds no ear in: the rest of a polygon that crosses or folds itself where it is bent, and corners in a line. The corner of
// the smallest inner angle goes first, whatever lies in the way, so that every edge of the polygon gets its triangle.
template <class POLYGON, class TAKE> void TakeRest(POLYGON& polygon, int first, int left, TAKE take)
{
    constexpr float TURN = 2 * std::numbers::pi_v<float>;
    const auto innerAngle = [&](int i) {
        const auto angle = static_cast<float>(polygon.GetAngle(i));
        return angle >= 0 ? angle : angle < 0 ? angle + TURN : TURN;    // a corner without a place comes last
    };
    std::set<std::pair<float, int>> byAngle;
    for (int i = first, k = 0; k < left; k++, i = polygon.GetNext(i))
        byAngle.insert({innerAngle(i), i});
    while (left >= 3) {
        const int c = byAngle.begin()->second, q = polygon.GetNext(c), p = polygon.GetPrev(c);
        take(c, q, p);
        if (--left < 3)
            return;
        for (const int i : {c, q, p})
            byAngle.erase({innerAngle(i), i});
        polygon.CutOff(c, q, p);
        for (const int i : {q, p})
            byAngle.insert({innerAngle(i), i});
    }
}

// The ears of a polygon of `count` corners. `take(c, q, p)` is told of each.
//
// A round either cuts a corner off or takes its convexity from it, which only a cut beside it gives back: there are at most 4 * count.
template <class POLYGON, class TAKE> void TakeEars(POLYGON& polygon, int count, TAKE take)
{
    int c = polygon.FindStart();
    if (c < 0)
        return TakeRest(polygon, 0, count, take);
    for (int left = count; left >= 3;) {
        if (!polygon.IsConvex(c) || polygon.IsWide(c)) {
            const int sharpest = polygon.FindSharpest(c);
            if (sharpest < 0 || !polygon.IsAbove0(sharpest))
                return TakeRest(polygon, c, left, take);
            c = sharpest;
        }
        const int q = polygon.GetNext(c), p = polygon.GetPrev(c);
        if (polygon.IsInTheWay(c, q, p))
            polygon.GiveUp(c);
        else {
            take(c, q, p);
            if (--left >= 3)
                polygon.CutOff(c, q, p);
        }
        c = polygon.IsConvex(q) && polygon.IsSharper(q, p) ? q : p;
    }
}

// --- Few corners -------------------------------------------------------------------------------------------------------------------

class CSmallPolygon {
public:
    CSmallPolygon(const float (*xy)[2], int count) : m_count(count)
    {
        for (int i = 0; i < count; i++) {
            m_place[i] = {xy[i][0], xy[i][1]};
            m_next[i] = static_cast<unsigned char>(i + 1 < count ? i + 1 : 0);
            m_prev[i] = static_cast<unsigned char>(i > 0 ? i - 1 : count - 1);
        }
        for (int i = 0; i < count; i++)
            Measure(i);
    }

    int GetNext(int i) const { return m_next[i]; }
    int GetPrev(int i) const { return m_prev[i]; }
    bool IsConvex(int i) const { return m_convex[i]; }
    bool IsWide(int i) const { return Turn::IsWide(m_turn[i]); }
    bool IsAbove0(int i) const { return Turn::IsAbove0(m_turn[i]); }
    float GetAngle(int i) const { return m_turn[i].Angle(); }
    bool IsSharper(int a, int b) const { return Turn::IsSharper(m_turn[a], m_turn[b]); }
    int FindStart() const
    {
        int best = -1;
        for (int i = 1; i < m_count; i++)
            best = Sharper(best, i);
        return best;
    }
    int FindSharpest(int c) const
    {
        int best = -1;
        for (int i = m_next[c]; i != c; i = m_next[i])
            best = Sharper(best, i);
        return best;
    }
    bool IsInTheWay(int c, int q, int p) const
    {
        int i = m_next[q];
        while (i != p && !Turn::IsBelow0(m_turn[i]))
            i = m_next[i];
        if (i == p)
            return false;
        const CEarTriangle ear(m_place[c], m_place[q], m_place[p]);
        for (; i != p; i = m_next[i])
            if (Turn::IsBelow0(m_turn[i]) && ear.Contains(m_place[i]))
                return true;
        return false;
    }
    void GiveUp(int c) { m_convex[c] = false; }
    void CutOff(int, int q, int p)
    {
        m_next[p] = static_cast<unsigned char>(q);
        m_prev[q] = static_cast<unsigned char>(p);
        Measure(p);
        Measure(q);
    }

private:
    int Sharper(int best, int i) const { return m_convex[i] && (best < 0 || IsSharper(i, best)) ? i : best; }
    void Measure(int i)
    {
        m_turn[i] = CornerTurn(m_place[m_next[i]] - m_place[i], m_place[m_prev[i]] - m_place[i]);
        m_convex[i] = Turn::IsConvex(m_turn[i]);
    }

    int m_count;
    Vector2 m_place[SMALL];
    CornerTurn m_turn[SMALL];
    bool m_convex[SMALL];
    unsigned char m_next[SMALL], m_prev[SMALL];
};

}

// --- Many corners ------------------------------------------------------------------------------------------------------------------

/// Tournament over the angles of the convex corners: of equal ones the first in the order of the polygon wins.
class CEarClipping::CSharpest {
public:
    void Start(int count)
    {
        m_leaves = 1;
        while (m_leaves < count)
            m_leaves *= 2;
        m_key.assign(m_leaves, NONE);
        m_winner.resize(2 * static_cast<std::size_t>(m_leaves));
        for (int i = 0; i < m_leaves; i++)
            m_winner[m_leaves + i] = i;
    }
    /// Before the first Find, after all corners have got their keys.
    void Build()
    {
        for (int node = m_leaves - 1; node >= 1; node--)
            Play(node);
    }
    void SetKey(int corner, bool convex, double angle) { m_key[corner] = convex ? static_cast<float>(angle) : NONE; }
    void Change(int corner, bool convex, double angle)
    {
        SetKey(corner, convex, angle);
        for (int node = (m_leaves + corner) / 2; node >= 1; node /= 2)
            Play(node);
    }
    /// The sharpest of the corners behind `corner` and then of those before it; -1 for none.
    int Find(int corner) const
    {
        const int behind = FindBehind(corner), before = FindBefore(corner);
        const int best = before >= 0 && (behind < 0 || m_key[before] < m_key[behind]) ? before : behind;
        return best >= 0 && m_key[best] != NONE ? best : -1;
    }
    int FindBehind(int corner) const
    {
        int best = -1;
        for (int node = m_leaves + corner; node > 1; node /= 2)
            if (node % 2 == 0 && (best < 0 || m_key[m_winner[node + 1]] < m_key[best]))
                best = m_winner[node + 1];
        return best >= 0 && m_key[best] != NONE ? best : -1;
    }

private:
    static constexpr float NONE = std::numeric_limits<float>::infinity();

    int FindBefore(int corner) const
    {
        int best = -1;
        for (int node = m_leaves + corner; node > 1; node /= 2)
            if (node % 2 == 1 && (best < 0 || !(m_key[best] < m_key[m_winner[node - 1]])))
                best = m_winner[node - 1];
        return best;
    }
    void Play(int node)
    {
        const int left = m_winner[2 * node], right = m_winner[2 * node + 1];
        m_winner[node] = m_key[right] < m_key[left] ? right : left;
    }

    int m_leaves = 1;
    CBlockVector<float> m_key;
    CBlockVector<int> m_winner;    // by node; the leaves are the corners
};

/// The corners of negative angle, in a tree of boxes: each box is split in the middle of its longer side's order, down to a few corners.
class CEarClipping::CReflexTree {
public:
    /// All corners that can ever be in the tree: those with a place.
    void Start(const C2DPointExtList& corners)
    {
        const int count = corners.GetSize();
        m_place.resize(count);
        m_leafOf.assign(count, -1);
        m_isIn.assign(count, false);
        m_order.clear();
        const C2DPointExt* corner = corners.GetFirst();
        for (int i = 0; i < count; i++, corner++) {
            m_place[i] = {corner->x, corner->y};
            if (std::isfinite(corner->x) && std::isfinite(corner->y))
                m_order.push_back(i);
        }
        m_firstLeaf = 1;
        while (static_cast<std::size_t>(m_firstLeaf) * LEAF < m_order.size())
            m_firstLeaf *= 2;
        m_nodes.assign(2 * static_cast<std::size_t>(m_firstLeaf), Node());
        Split(1, 0, static_cast<int>(m_order.size()));
    }
    /// Before the first Set; afterwards the tree is built at once.
    void SetAtStart(int corner, bool reflex) { m_isIn[corner] = reflex && m_leafOf[corner] >= 0; }
    void Build()
    {
        for (int node = m_firstLeaf; node < 2 * m_firstLeaf; node++)
            MeasureLeaf(m_nodes[node]);
        for (int node = m_firstLeaf - 1; node >= 1; node--)
            Join(node);
    }
    void Set(int corner, bool reflex)
    {
        if (m_isIn[corner] == reflex || m_leafOf[corner] < 0)
            return;
        m_isIn[corner] = reflex;
        int node = m_leafOf[corner];
        MeasureLeaf(m_nodes[node]);
        while (node /= 2)
            Join(node);
    }
    bool IsAnyIn(const CEarTriangle& ear) const { return IsAnyIn(ear, 1); }

private:
    static constexpr int LEAF = 6;

    struct Node {
        Vector2 min, max;    // around the corners that are in
        bool empty = true;
        int first = 0, end = 0;    // of a leaf: in m_order
    };

    void Split(int node, int first, int end)
    {
        if (node >= m_firstLeaf) {
            m_nodes[node].first = first;
            m_nodes[node].end = end;
            for (int i = first; i < end; i++)
                m_leafOf[m_order[i]] = node;
            return;
        }
        Vector2 min{0, 0}, max{0, 0};
        for (int i = first; i < end; i++) {
            const Vector2& place = m_place[m_order[i]];
            if (i == first)
                min = max = place;
            min = {std::min(min.x, place.x), std::min(min.y, place.y)};
            max = {std::max(max.x, place.x), std::max(max.y, place.y)};
        }
        const bool byX = max.x - min.x >= max.y - min.y;
        const int middle = first + (end - first) / 2;
        std::nth_element(m_order.begin() + first, m_order.begin() + middle, m_order.begin() + end,
                         [&](int a, int b) { return byX ? m_place[a].x < m_place[b].x : m_place[a].y < m_place[b].y; });
        Split(2 * node, first, middle);
        Split(2 * node + 1, middle, end);
    }
    void MeasureLeaf(Node& leaf)
    {
        leaf.empty = true;
        for (int i = leaf.first; i < leaf.end; i++)
            if (m_isIn[m_order[i]])
                Extend(leaf, m_place[m_order[i]], m_place[m_order[i]]);
    }
    void Join(int node)
    {
        m_nodes[node].empty = true;
        for (const Node* child : {&m_nodes[2 * node], &m_nodes[2 * node + 1]})
            if (!child->empty)
                Extend(m_nodes[node], child->min, child->max);
    }
    static void Extend(Node& node, const Vector2& min, const Vector2& max)
    {
        if (node.empty) {
            node.min = min, node.max = max, node.empty = false;
            return;
        }
        node.min = {std::min(node.min.x, min.x), std::min(node.min.y, min.y)};
        node.max = {std::max(node.max.x, max.x), std::max(node.max.y, max.y)};
    }
    bool IsAnyIn(const CEarTriangle& ear, int index) const
    {
        const Node& node = m_nodes[index];
        if (node.empty || !ear.MayMeet(node.min, node.max))
            return false;
        if (index < m_firstLeaf)
            return IsAnyIn(ear, 2 * index) || IsAnyIn(ear, 2 * index + 1);
        for (int i = node.first; i < node.end; i++)
            if (m_isIn[m_order[i]] && ear.Contains(m_place[m_order[i]]))
                return true;
        return false;
    }

    CBlockVector<Vector2> m_place;
    CBlockVector<int> m_leafOf;
    CBlockVector<unsigned char> m_isIn;
    CBlockVector<int> m_order;
    CBlockVector<Node> m_nodes;    // the children of node n are 2n and 2n + 1
    int m_firstLeaf = 1;
};

class CEarClipping::CLargePolygon {
public:
    CLargePolygon(C2DPointExtList& corners, CSharpest& sharpest, CReflexTree& reflex)
        : m_corners(corners.GetFirst()), m_sharpest(sharpest), m_reflex(reflex)
    {
        const int count = corners.GetSize();
        sharpest.Start(count);
        reflex.Start(corners);
        for (int i = 0; i < count; i++) {
            Measure(i);
            sharpest.SetKey(i, m_corners[i].convex, m_corners[i].angle);
            reflex.SetAtStart(i, m_corners[i].angle < 0);
        }
        sharpest.Build();
        reflex.Build();
    }

    int GetNext(int i) const { return m_corners[i].next->cornerIndex; }
    int GetPrev(int i) const { return m_corners[i].prev->cornerIndex; }
    bool IsConvex(int i) const { return m_corners[i].convex; }
    bool IsWide(int i) const { return m_corners[i].angle > WIDE; }
    bool IsAbove0(int i) const { return m_corners[i].angle > 0; }
    double GetAngle(int i) const { return m_corners[i].angle; }
    bool IsSharper(int a, int b) const { return m_corners[a].angle < m_corners[b].angle; }
    int FindStart() const { return m_sharpest.FindBehind(0); }
    int FindSharpest(int c) const { return m_sharpest.Find(c); }
    // The three corners of the ear lie on its edges: the tree may hold them.
    bool IsInTheWay(int c, int q, int p) const { return m_reflex.IsAnyIn(CEarTriangle(Place(c), Place(q), Place(p))); }
    void GiveUp(int c)
    {
        m_corners[c].convex = false;
        m_sharpest.Change(c, false, 0);
    }
    void CutOff(int c, int q, int p)
    {
        m_corners[p].next = &m_corners[q];
        m_corners[q].prev = &m_corners[p];
        m_sharpest.Change(c, false, 0);
        m_reflex.Set(c, false);
        for (const int i : {p, q}) {
            Measure(i);
            m_sharpest.Change(i, m_corners[i].convex, m_corners[i].angle);
            m_reflex.Set(i, m_corners[i].angle < 0);
        }
    }

private:
    static Vector2 PlaceOf(const C2DPointExt& corner) { return {corner.x, corner.y}; }
    Vector2 Place(int i) const { return PlaceOf(m_corners[i]); }
    void Measure(int i)
    {
        C2DPointExt& corner = m_corners[i];
        corner.angle = CornerTurn(PlaceOf(*corner.next) - PlaceOf(corner), PlaceOf(*corner.prev) - PlaceOf(corner)).Angle();
        corner.convex = corner.angle >= 0;
    }

    C2DPointExt* m_corners;
    CSharpest& m_sharpest;
    CReflexTree& m_reflex;
};

// -----------------------------------------------------------------------------------------------------------------------------------

CEarClipping::CEarClipping() = default;
CEarClipping::~CEarClipping() = default;

int CEarClipping::Cut(const C3DPointList& points, const int* corners, int count, EarArray& ears)
{
    const std::size_t before = ears.size();
    const auto take = [&](int c, int q, int p) {
        if (corners[c] != corners[q] && corners[q] != corners[p] && corners[p] != corners[c])
            ears.push_back({static_cast<unsigned short>(c), static_cast<unsigned short>(q), static_cast<unsigned short>(p)});
    };
    if (count <= SMALL) {
        float xy[SMALL][2];
        if (!C3DFace::Get2DCoordinates(points, corners, count, xy))
            return 0;
        CSmallPolygon polygon(xy, count);
        TakeEars(polygon, count, take);
        return static_cast<int>(ears.size() - before);
    }

    m_coordinates.resize(2 * static_cast<std::size_t>(count));
    auto* const xy = reinterpret_cast<float(*)[2]>(m_coordinates.data());
    if (!C3DFace::Get2DCoordinates(points, corners, count, xy))
        return 0;
    m_corners.SetSize(count, false, 0);
    C2DPointExt* const first = m_corners.GetFirst();
    for (int i = 0; i < count; i++) {
        C2DPointExt& corner = first[i];
        corner.x = xy[i][0], corner.y = xy[i][1];
        corner.pointIndex = corners[i];
        corner.cornerIndex = i;
        corner.prev = first + (i > 0 ? i : count) - 1;
        corner.next = first + (i + 1 < count ? i + 1 : 0);
    }
    if (!m_sharpest) {
        m_sharpest = std::make_unique<CSharpest>();
        m_reflex = std::make_unique<CReflexTree>();
    }
    CLargePolygon polygon(m_corners, *m_sharpest, *m_reflex);
    TakeEars(polygon, count, take);
    return static_cast<int>(ears.size() - before);
}
