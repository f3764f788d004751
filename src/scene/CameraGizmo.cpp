// The display object of a camera: neck and body, the pyramid of its view, and two film reels.

#include <cmath>

#include "scene/Camera.h"
#include "scene/GizmoBuilder.h"

static void AddHousing(CGizmoBuilder& gizmo)
{
    const int neckBelow = gizmo.AddSquare(0, 30), neckAbove = gizmo.AddSquare(20, 30);
    gizmo.AddQuad(neckBelow + 3, neckBelow + 2, neckBelow + 1, neckBelow);
    gizmo.JoinSquares(neckBelow, neckAbove);
    gizmo.AddQuad(neckAbove, neckAbove + 1, neckAbove + 2, neckAbove + 3);

    // The front of the body is a frame, with a lid of its own where the neck stands.
    const int back = gizmo.AddSquare(-200, 50), front = gizmo.AddSquare(0, 50), hole = gizmo.AddSquare(0, 30);
    gizmo.AddQuad(back + 3, back + 2, back + 1, back);
    gizmo.JoinSquares(back, front);
    gizmo.JoinSquares(front, hole);
    gizmo.AddQuad(hole, hole + 1, hole + 2, hole + 3);
}

static void AddView(CGizmoBuilder& gizmo, float halfWidth, float halfHeight)
{
    const int base = gizmo.AddPoint(-halfWidth, 100, -halfHeight);
    gizmo.AddPoint(halfWidth, 100, -halfHeight);
    gizmo.AddPoint(halfWidth, 100, halfHeight);
    gizmo.AddPoint(-halfWidth, 100, halfHeight);
    const int apex = gizmo.AddPoint(0, 0, 0);
    gizmo.AddQuad(base + 3, base + 2, base + 1, base);
    for (int i = 0; i < 4; i++)
        gizmo.AddTriangle(base + i, base + (i + 1) % 4, apex);
}

/// A band along the outline of both reels, over the body from its back to its front.
static void AddReels(CGizmoBuilder& gizmo)
{
    struct YZ {
        float y, z;
    };
    static constexpr YZ OUTLINE[] = {
        {-178.404f, 50},       {-185.355f, 54.6447f},
        {-196.194f, 70.8658f}, {-200, 90},
        {-196.194f, 109.134f}, {-185.355f, 125.355f},
        {-169.134f, 136.194f}, {-150, 140},
        {-130.866f, 136.194f}, {-114.645f, 125.355f},
        {-114.239f, 124.748f}, {-102.426f, 142.426f},
        {-82.961f, 155.433f},  {-60, 160},
        {-37.039f, 155.433f},  {-17.5736f, 142.426f},
        {-4.5672f, 122.961f},  {0, 100},
        {-4.5672f, 77.039f},   {-17.5736f, 57.5736f},
        {-28.9083f, 50},
    };
    int before = -1;
    for (const auto& [y, z] : OUTLINE) {
        const int here = gizmo.AddPoint(-10, y, z);
        gizmo.AddPoint(10, y, z);
        if (before != -1)
            gizmo.AddQuad(before, before + 1, here + 1, here);
        before = here;
    }
}

C3DObject* C3DCamera::GenerateDisplayable() const
{
    const float width = static_cast<float>(std::tan(GetFov() * 0.5) * 100 / 50);
    const double ratio = GetAspectRatio();
    const float height = ratio != 0 ? static_cast<float>(width / ratio) : width;    // no ratio: a square, not an infinite box

    CGizmoBuilder gizmo;
    AddHousing(gizmo);
    AddView(gizmo, 50 * width, 50 * height);
    AddReels(gizmo);
    return gizmo.Create();
}
