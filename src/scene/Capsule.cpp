// A tube with half balls at its ends: the two poles, rings of points between them, bands of faces between the rings.

#include <algorithm>
#include <cmath>

#include "scene/PrimitiveBuilder.h"
#include "scene/Primitives.h"

namespace {

constexpr float QUARTER_TURN = 1.5707958f;    // a little less than the angle, so that no ring gets to the other side of its pole
constexpr double FULL_TURN = 6.2831830978393555;

/// Coordinates and rings of a capsule, in doubles.
class CCapsulePoints {
public:
    CCapsulePoints(CPrimitiveBuilder& solid, const C3DTPoint<float>& centre, _AXIS_INFO axis, unsigned int segments)
        : m_solid(solid), m_centre{centre.x, centre.y, centre.z}, m_axis(axis), m_segments(segments)
    {
    }
    void AddPole(double coordinate) { Add(coordinate, 0, 0); }
    /// A ring of that radius, `flat` times smaller, at a coordinate of the axis.
    void AddRing(double coordinate, double radius, double flat)
    {
        const double step = FULL_TURN / m_segments;
        double angle = 0;
        for (unsigned int j = 0; j < m_segments; j++, angle += step)
            Add(coordinate, std::cos(angle) * radius * flat, std::sin(angle) * radius * flat);
    }

private:
    void Add(double coordinate, double u, double v)
    {
        double p[3];
        p[m_axis] = coordinate;
        p[(m_axis + 1) % 3] = u + m_centre[(m_axis + 1) % 3];
        p[(m_axis + 2) % 3] = v + m_centre[(m_axis + 2) % 3];
        m_solid.AddPoint(p[0], p[1], p[2]);
    }

    CPrimitiveBuilder& m_solid;
    const double m_centre[3];
    const unsigned int m_axis, m_segments;
};

/// Faces in their order, of three and four corners.
class CCapsuleFaces {
public:
    CCapsuleFaces(std::size_t faces, int segments) : m_segments(segments)
    {
        m_sizes.reserve(faces);
        m_corners.reserve(4 * faces);
    }
    void AddTo(C3DFaceList& faces) const { faces.AppendFaces(static_cast<int>(m_sizes.size()), m_sizes.data(), m_corners.data()); }

    /// Around point 0, which lies on the side from which the ring behind it runs counter-clockwise.
    void AddUpperFan()
    {
        for (int k = 1; k < m_segments; k++)
            Add({k + 1, k, 0});
        Add({1, m_segments, 0});
    }
    void AddLowerFan(int pole)
    {
        for (int k = 1; k < m_segments; k++)
            Add({pole + k, pole + k + 1, pole});
        Add({pole + m_segments, pole + 1, pole});
    }
    /// Between the rings that begin at `from` and `to`.
    void AddBand(int from, int to)
    {
        for (int j = 0; j < m_segments - 1; j++)
            Add({to + j + 1, to + j, from + j, from + j + 1});
        Add({to, to + m_segments - 1, from + m_segments - 1, from});
    }
    /// From a ring of the lower cap to the next one, which lies nearer to the middle.
    void AddLowerBand(int from)
    {
        const int next = from + m_segments;
        for (int j = 0; j < m_segments - 1; j++)
            Add({next + j, next + j + 1, from + j + 1, from + j});
        Add({next + m_segments - 1, next, from, from + m_segments - 1});
    }

private:
    void Add(std::initializer_list<int> corners)
    {
        m_sizes.push_back(static_cast<unsigned int>(corners.size()));
        m_corners.insert(m_corners.end(), corners);
    }

    int m_segments;
    std::vector<unsigned int> m_sizes;
    std::vector<int> m_corners;
};

}

C3DSceneNode* CreateCapsule(const C3DTPoint<float>& centre, float radius, float length, unsigned int segments, unsigned int capRings,
                            unsigned int bodyRings, _AXIS_INFO axis, int, unsigned int materialID, unsigned int)
{
    const std::uint64_t bands = std::uint64_t{2} * capRings + std::max(bodyRings, 1u);
    if (length == 0 || axis > AXIS_Z || capRings == 0 || !CPrimitiveBuilder::IsSize(segments) || !CPrimitiveBuilder::IsSize(bands) ||
        !CPrimitiveBuilder::IsSize(bands * segments + 1))
        return nullptr;

    CPrimitiveBuilder capsule((bands - 1) * segments + 2, 4, 0, 0);
    CCapsulePoints points(capsule, centre, axis, segments);
    const double middle = centre[static_cast<int>(axis)], half = length / 2.0, r = radius, end = half - r,
                 step = QUARTER_TURN / static_cast<float>(capRings);
    points.AddPole(middle + half);
    for (unsigned int k = 1; k <= capRings; k++) {
        const double t = QUARTER_TURN - k * step;
        points.AddRing(middle + std::sin(t) * r + end, r, std::cos(t));
    }
    points.AddPole(middle - half);
    for (unsigned int k = 1; k <= capRings; k++) {
        const double t = QUARTER_TURN - k * step;
        points.AddRing(middle - end - std::sin(t) * r, r, std::cos(t));
    }
    for (unsigned int m = 1; m < bodyRings; m++)
        points.AddRing(middle + end - m * (2 * end) / bodyRings, r, 1);

    const int S = static_cast<int>(segments), C = static_cast<int>(capRings), lowerPole = 1 + C * S, body = lowerPole + 1 + C * S;
    CCapsuleFaces faces(bands * segments, S);
    faces.AddUpperFan();
    for (int k = 0; k < C - 1; k++)
        faces.AddBand(1 + k * S, 1 + (k + 1) * S);
    faces.AddLowerFan(lowerPole);
    for (int k = 0; k < C - 1; k++)
        faces.AddLowerBand(lowerPole + 1 + k * S);
    int last = 1 + (C - 1) * S;    // ring of the upper cap, then of the body
    for (unsigned int m = 1; m < bodyRings; m++) {
        const int next = body + static_cast<int>(m - 1) * S;
        faces.AddBand(last, next);
        last = next;
    }
    faces.AddBand(last, lowerPole + 1 + (C - 1) * S);
    faces.AddTo(capsule.GetFaces());
    capsule.GetFaces().FlipNormals();

    C3DSceneNode* node = capsule.Finish(L"Capsule", materialID);
    node->CenterPivotOnCG(C3DTVector<float>(0.5f, 0.5f, 0.5f), C3DTVector<float>(0, 0, 0));
    return node;
}
