#include "SceneExtent.h"

#include <algorithm>
#include <cmath>

namespace {

/// A length along a direction, of points as they stand in a node.
struct Gauge {
    double x, y, z, offset;

    double operator()(const C3DTPoint<float>& point) const { return x * point.x + y * point.y + z * point.z + offset; }
};

// Of points of the eye's space, where `along` is; `node` leads to the scene, and `view` on to the eye.
Gauge MakeGauge(const double (&along)[3], const C4x4TMatrix<float>& view, const C4x4TMatrix<float>& node, const C3DTPoint<float>& center)
{
    double inScene[3] = {}, inNode[3] = {};
    for (int i = 0; i < 3; i++)
        for (int row = 0; row < 3; row++)
            inScene[i] += along[row] * view.m[row][i];
    Gauge gauge{};
    for (int i = 0; i < 3; i++) {
        for (int row = 0; row < 3; row++)
            inNode[i] += inScene[row] * node.m[row][i];
        gauge.offset += inScene[i] * (double{node.m[i][3]} - center[i]);
    }
    gauge.x = inNode[0];
    gauge.y = inNode[1];
    gauge.z = inNode[2];
    return gauge;
}

/// Calls `use` for each point that a face may have: where there are faces, for those inside their box.
template <class USE> void ForEachPoint(C3DGeomObject& object, const C3DPointList& points, USE&& use)
{
    C3DTPoint<float> min(-HUGE_VALF, -HUGE_VALF, -HUGE_VALF), max(HUGE_VALF, HUGE_VALF, HUGE_VALF);
    if (object.GetFaceNbr() > 0 && !object.GetBoundingBox(min, max, BOX_FACES))
        return;
    for (int i = 0; i < points.GetSize(); i++) {
        const C3DTPoint<float>& point = *points.ElementAt(i);
        if (point.x >= min.x && point.y >= min.y && point.z >= min.z && point.x <= max.x && point.y <= max.y && point.z <= max.z)
            use(point);
    }
}

}

/// Those of all measures, for the points of one node.
class SceneExtent::Gauges {
public:
    Gauges(SceneExtent& extent, const C4x4TMatrix<float>& view, const C4x4TMatrix<float>& node, const C3DTPoint<float>& center)
        : m_most(extent.m_most)
    {
        const double across = extent.m_slopes[0], along = extent.m_slopes[1];
        const double directions[MEASURES][3] = {{1, 0, across}, {-1, 0, across}, {0, 1, along}, {0, -1, along}, {0, 0, 1}};
        for (int i = 0; i < MEASURES; i++)
            m_gauges[i] = MakeGauge(directions[i], view, node, center);
    }
    void Add(const C3DTPoint<float>& point)
    {
        for (int i = 0; i < MEASURES; i++)
            m_most[i] = std::max(m_most[i], m_gauges[i](point));
    }

private:
    double (&m_most)[MEASURES];
    Gauge m_gauges[MEASURES];
};

void SceneExtent::Add(const C3DScene& scene, bool selectedOnly, const C4x4TMatrix<float>& view, const C3DTPoint<float>& center)
{
    const int time = scene.GetTickCount();
    CNodeWalkTM walk(time, true);
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL | OBJECT_CURVE | OBJECT_PATCH); pos;) {
        const C3DSceneNode* const node = scene.GetNextNode(pos);
        C3DBaseObject* const shown = node->GetFinalObject(time);
        C3DGeomObject* const object = shown ? static_cast<C3DGeomObject*>(*shown) : nullptr;
        const C3DPointList* const points = object ? object->GetPointList() : nullptr;
        if (!points || node->IsFlagSet(NODE_HIDDEN) || (selectedOnly && !node->IsFlagSet(NODE_SELECTED)))
            continue;
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        Gauges gauges(*this, view, matrix, center);
        ForEachPoint(*object, *points, [&](const C3DTPoint<float>& point) { gauges.Add(point); });
    }
}

void SceneExtent::AddBox(const C3DTPoint<float>& min, const C3DTPoint<float>& max, const C4x4TMatrix<float>& view,
                         const C3DTPoint<float>& center)
{
    Gauges gauges(*this, view, C4x4TMatrix<float>(), center);
    for (int i = 0; i < 8; i++)
        gauges.Add({i & 1 ? max.x : min.x, i & 2 ? max.y : min.y, i & 4 ? max.z : min.z});
}

// A point at x, z is in the picture when |x + tx| is at most slope * -(z + tz). The point that reaches furthest to the right and the one that
// reaches furthest to the left touch the sides when
//
//     tx + slope * tz = -most[RIGHT]    and    -tx + slope * tz = -most[LEFT]
//
// and likewise above and below; the larger distance serves both.
C3DTVector<float> SceneExtent::GetTranslation(double clearance, double reach) const
{
    const double nearest = (m_most[TOWARDS] + clearance * reach) / (1 - clearance);
    const double distance =
        std::max({(m_most[RIGHT] + m_most[LEFT]) / (2 * m_slopes[0]), (m_most[TOP] + m_most[BOTTOM]) / (2 * m_slopes[1]), nearest});
    return {static_cast<float>((m_most[LEFT] - m_most[RIGHT]) / 2), static_cast<float>((m_most[BOTTOM] - m_most[TOP]) / 2),
            static_cast<float>(-distance)};
}
