// Solids of revolution about the y axis. Each row of points has a last one on its first, so that a texture can go round.

#include <cmath>
#include <numbers>

#include "scene/PrimitiveBuilder.h"
#include "scene/Primitives.h"

namespace {

/// Sine and cosine of an angle that is rounded to float.
struct Direction {
    explicit Direction(double angle) : sin(std::sin(static_cast<float>(angle))), cos(std::cos(static_cast<float>(angle))) {}
    float sin, cos;
};

bool AreSteps(unsigned int segments, unsigned int rows) { return CPrimitiveBuilder::IsSize(segments) && CPrimitiveBuilder::IsSize(rows); }

/// The way round in `segments` steps, the last direction on the first.
std::vector<Direction> RingOf(unsigned int segments)
{
    std::vector<Direction> ring;
    ring.reserve(std::size_t{segments} + 1);
    for (unsigned int j = 0; j <= segments; j++)
        ring.emplace_back(j * (2 * std::numbers::pi) / segments);
    return ring;
}

void SetTriangle(int* to, unsigned int a, unsigned int b, unsigned int c)
{
    to[0] = static_cast<int>(a), to[1] = static_cast<int>(b), to[2] = static_cast<int>(c);
}

/// A centre and a ring around it, at a height.
void AddCapPoints(CPrimitiveBuilder& solid, const std::vector<Direction>& ring, const C3DTPoint<float>& centre, double radius, double y)
{
    solid.AddPoint(centre.x, y, centre.z);
    for (const Direction& f : ring)
        solid.AddPoint(f.cos * radius + centre.x, y, f.sin * radius + centre.z);
}

}

C3DSceneNode* CreateSphere(const C3DTPoint<float>& centre, double radius, int rings, int segments, bool hasUVW, unsigned int materialID,
                           unsigned int channelID)
{
    if (rings < 1 || segments < 1)
        return nullptr;
    const std::uint64_t row = static_cast<std::uint64_t>(segments) + 1, pointNbr = (static_cast<std::uint64_t>(rings) + 1) * row;
    const std::uint64_t faceNbr = 2 * static_cast<std::uint64_t>(rings) * row;
    if (!CPrimitiveBuilder::IsSize(pointNbr) || !CPrimitiveBuilder::IsSize(faceNbr))
        return nullptr;

    CPrimitiveBuilder sphere(pointNbr, 3, hasUVW ? pointNbr : 0, channelID);
    const std::vector<Direction> ring = RingOf(static_cast<unsigned int>(segments));
    for (int i = 0; i <= rings; i++) {
        const Direction t(i * std::numbers::pi / rings);
        for (int j = 0; j <= segments; j++) {
            const Direction& f = ring[j];
            sphere.AddPoint(f.sin * double{t.sin} * radius + centre.x, t.cos * radius + centre.y,
                            f.cos * double{t.sin} * radius + centre.z);
            sphere.AddUVW(PartOf(j, segments), PartOf(i, rings));
        }
    }
    // Two triangles at every point but those of the last row. At the two ends of a row they have no area.
    sphere.AddFaces(faceNbr, 3, [S = static_cast<unsigned int>(segments)](int* to, unsigned int k) {
        const unsigned int p = k / 2;
        if (k % 2)
            SetTriangle(to, p, p + S + 1, p + 1);
        else
            SetTriangle(to, p + S, p + S + 1, p);
    });
    return sphere.Finish(L"Sphere", materialID);
}

C3DSceneNode* CreateCylinder(const C3DTPoint<float>& centre, double radius, double height, unsigned int segments, unsigned int stacks,
                             bool caps, bool hasUVW, unsigned int materialID, unsigned int channelID)
{
    const std::uint64_t row = std::uint64_t{segments} + 1, side = (std::uint64_t{stacks} + 1) * row;
    const std::uint64_t pointNbr = side + (caps ? 2 * (row + 1) : 0), sideFaces = 2 * std::uint64_t{stacks} * row;
    if (!AreSteps(segments, stacks) || !CPrimitiveBuilder::IsSize(pointNbr) || !CPrimitiveBuilder::IsSize(sideFaces + 2 * row))
        return nullptr;

    CPrimitiveBuilder cylinder(pointNbr, 3, hasUVW ? pointNbr : 0, channelID);
    const std::vector<Direction> ring = RingOf(segments);
    for (unsigned int i = 0; i <= stacks; i++)
        for (unsigned int j = 0; j <= segments; j++) {
            const Direction& f = ring[j];
            cylinder.AddPoint(f.cos * radius + centre.x, centre.y + i * height / stacks - height / 2, f.sin * radius + centre.z);
            cylinder.AddUVW(PartOf(j, segments), PartOf(i, stacks));
        }
    cylinder.AddFaces(sideFaces, 3, [S = segments](int* to, unsigned int k) {
        const unsigned int p = k / 2;
        if (k % 2)
            SetTriangle(to, p + S + 1, p + 1, p);
        else
            SetTriangle(to, p + S + 1, p, p + S);
    });
    if (caps) {
        for (const bool top : {false, true}) {
            AddCapPoints(cylinder, ring, centre, radius, top ? centre.y + height / 2 : centre.y - height / 2);
            cylinder.AddUVW(0, 0);
            for (const Direction& f : ring)
                cylinder.AddUVW(f.cos, f.sin);
            const unsigned int c = static_cast<unsigned int>(top ? side + row + 1 : side);
            cylinder.AddFaces(segments, 3, [=](int* to, unsigned int j) {
                if (top)
                    SetTriangle(to, c + 2 + j, c + 1 + j, c);
                else
                    SetTriangle(to, c, c + 1 + j, c + 2 + j);
            });
        }
    }
    return cylinder.Finish(L"Cylinder", materialID);
}

C3DSceneNode* CreateCone(const C3DTPoint<float>& centre, double radius, double height, unsigned int segments, unsigned int stacks,
                         bool hasUVW, unsigned int materialID, unsigned int channelID)
{
    const std::uint64_t row = std::uint64_t{segments} + 1, side = (std::uint64_t{stacks} + 1) * row, pointNbr = side + row + 1;
    const std::uint64_t sideFaces = 2 * std::uint64_t{stacks} * segments;
    if (!AreSteps(segments, stacks) || !CPrimitiveBuilder::IsSize(pointNbr) || !CPrimitiveBuilder::IsSize(sideFaces + segments))
        return nullptr;

    CPrimitiveBuilder cone(pointNbr, 3, hasUVW ? pointNbr : 0, channelID);
    const std::vector<Direction> ring = RingOf(segments);
    for (unsigned int i = 0; i <= stacks; i++) {
        const double w = static_cast<double>(i) / stacks, rowRadius = (1 - w) * radius, y = centre.y + i * height / stacks;
        for (unsigned int j = 0; j <= segments; j++) {
            cone.AddPoint(ring[j].cos * rowRadius + centre.x, y, ring[j].sin * rowRadius + centre.z);
            cone.AddUVW(PartOf(j, segments), PartOf(i, stacks));
        }
    }
    cone.AddFaces(sideFaces, 3, [S = segments](int* to, unsigned int k) {
        const unsigned int p = k / 2 / S * (S + 1) + k / 2 % S;
        if (k % 2)
            SetTriangle(to, p + S + 2, p + 1, p);
        else
            SetTriangle(to, p + S + 2, p, p + S + 1);
    });
    AddCapPoints(cone, ring, centre, radius, centre.y);
    cone.AddUVW(0, 1);
    for (unsigned int j = 0; j <= segments; j++)
        cone.AddUVW(PartOf(j, segments), 0);
    cone.AddFaces(segments, 3,
                  [c = static_cast<unsigned int>(side)](int* to, unsigned int j) { SetTriangle(to, c, c + 1 + j, c + 2 + j); });
    return cone.Finish(L"Cone", materialID);
}
