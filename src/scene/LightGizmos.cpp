// The display objects of lights: discs, balls and the way the light goes, along +y.

#include <cmath>
#include <cstdlib>

#include "scene/GizmoBuilder.h"
#include "scene/Light.h"

namespace {

constexpr int SIDES = 16;
constexpr float BEAM_LENGTH = 200, BEAM_RADIUS = 20;

/// Sine and cosine of `step` sixteenths of a turn, times 100.
float Sine(int step)
{
    static constexpr float QUARTER[] = {0, 38.2683f, 70.7107f, 92.388f, 100};
    const int half = step % 8, place = half <= 4 ? half : 8 - half;
    return step % SIDES <= 8 ? QUARTER[place] : -QUARTER[place];
}
float Cosine(int step) { return Sine(step + SIDES / 4); }

/// A fan of `sides` triangles around the origin, or the whole disc for SIDES, from `first` on. It lies in the plane of two axes and looks
/// along the third, which follows them in the order x, y, z, x...
void AddDisc(CGizmoBuilder& gizmo, int axis1, int first = 0, int sides = SIDES)
{
    const int axis2 = (axis1 + 1) % 3, centre = gizmo.AddPoint(0, 0, 0), ring = centre + 1;
    const int points = sides == SIDES ? SIDES : sides + 1;
    for (int i = 0; i < points; i++) {
        float p[3] = {};
        p[axis1] = Cosine(first + i);
        p[axis2] = Sine(first + i);
        gizmo.AddPoint(p[0], p[1], p[2]);
    }
    for (int i = 0; i < sides; i++)
        gizmo.AddTriangle(ring + (i + 1) % points, centre, ring + i);
}

/// Twelve or twenty-four quads, three in each octant around its middle: the axes at `radius`, the middles between two axes at `edge`, those
/// of octants at `face`. `highest` is the last sign of y: 0 makes the lower half alone.
void AddBall(CGizmoBuilder& gizmo, float radius, float edge, float face, int highest)
{
    int number[3][3][3];    // of the point in the direction of three signs, each plus 1
    for (int x = -1; x <= 1; x++)
        for (int y = -1; y <= highest; y++)
            for (int z = -1; z <= 1; z++) {
                const int axes = std::abs(x) + std::abs(y) + std::abs(z);
                const float r = axes == 1 ? radius : axes == 2 ? edge : face;
                if (axes)
                    number[x + 1][y + 1][z + 1] = gizmo.AddPoint(x * r, y * r, z * r);
            }
    const auto at = [&](const int(&sign)[3]) { return number[sign[0] + 1][sign[1] + 1][sign[2] + 1]; };

    for (int octant = 0; octant < 8; octant++) {
        const int sign[3] = {octant & 1 ? 1 : -1, octant & 2 ? 1 : -1, octant & 4 ? 1 : -1};
        if (sign[1] > highest)
            continue;
        for (int axis = 0; axis < 3; axis++) {
            int onAxis[3] = {}, next[3] = {}, before[3] = {};
            onAxis[axis] = next[axis] = before[axis] = sign[axis];
            next[(axis + 1) % 3] = sign[(axis + 1) % 3];
            before[(axis + 2) % 3] = sign[(axis + 2) % 3];
            if (sign[0] * sign[1] * sign[2] > 0)
                gizmo.AddQuad(at(sign), at(before), at(onAxis), at(next));
            else
                gizmo.AddQuad(at(sign), at(next), at(onAxis), at(before));
        }
    }
}

void AddLowerBall(CGizmoBuilder& gizmo) { AddBall(gizmo, 58.3333f, 41.6667f, 33.3333f, 0); }

/// A tube around the y axis, in two halves that share no points.
void AddBeam(CGizmoBuilder& gizmo)
{
    constexpr float SCALE = BEAM_RADIUS / 100;
    for (const int half : {0, SIDES / 2}) {
        int before = -1;
        for (int i = 0; i <= SIDES / 2; i++) {
            const float x = Sine(half + i) * SCALE, z = Cosine(half + i) * SCALE;
            const int below = gizmo.AddPoint(x, 0, z);
            gizmo.AddPoint(x, BEAM_LENGTH, z);
            if (before != -1)
                gizmo.AddQuad(before, below, below + 1, before + 1);
            before = below;
        }
    }
}

/// A cone from the origin along +y. `slope`: half width by half length.
void AddCone(CGizmoBuilder& gizmo, float slope)
{
    const int ring = gizmo.AddPoint(0, BEAM_LENGTH, 100 * slope), tips = ring + SIDES;
    for (int i = 1; i < SIDES; i++)
        gizmo.AddPoint(Sine(i) * slope, BEAM_LENGTH, Cosine(i) * slope);
    for (int i = 0; i < SIDES; i++)
        gizmo.AddPoint(0, 0, 0);
    for (int i = 0; i < SIDES; i++) {
        const int next = (i + 1) % SIDES;
        gizmo.AddQuad(ring + next, ring + i, tips + i, tips + next);
    }
}

}

C3DObject* C3DLight::GenerateDirectionalLight() const
{
    CGizmoBuilder gizmo;
    AddDisc(gizmo, 2);
    AddLowerBall(gizmo);
    AddBeam(gizmo);
    return gizmo.Create();
}

C3DObject* C3DLight::GenerateOmniLight() const
{
    CGizmoBuilder gizmo;
    for (int axis = 0; axis < 3; axis++)
        AddDisc(gizmo, axis);
    AddBall(gizmo, 43.3013f, 32.476f, 24.0563f, 1);
    return gizmo.Create();
}

C3DObject* C3DLight::GenerateSpotLight() const
{
    CGizmoBuilder gizmo;
    AddDisc(gizmo, 0, SIDES / 2, SIDES / 2);    // y follows the sine here, the cosine in the next: both lie below the origin
    AddDisc(gizmo, 1, SIDES / 4, SIDES / 2);
    AddDisc(gizmo, 2);
    AddLowerBall(gizmo);
    AddCone(gizmo, static_cast<float>(std::tan(GetOuterAngle() * 0.5) * BEAM_LENGTH / 100));
    return gizmo.Create();
}
