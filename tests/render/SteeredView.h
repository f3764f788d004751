#pragma once

// A view whose clock stands still until it is set, and whose innards show.

#include "render/TestPeer.h"
#include "render/ViewCase.h"
#include "render/ViewHost.h"
#include "scene/Primitives.h"
#include "support/Owned.h"

class CSteeredView : public C3DView {
public:
    using C3DView::AdjustView, C3DView::InitClippingPlane, C3DView::SizeChanged;
    using C3DView::m_settings;

    unsigned int now = 1000;
    unsigned int GetMilliseconds() const override { return now; }
    /// In a window that has no context: drawing goes to memory, when the test asks for it.
    int OnCreate() override { return 0; }

    /// Where the eye sees a point of the scene: x to the right, y up, z towards the eye.
    C3DTPoint<double> See(const C3DTPoint<double>& p) const
    {
        const C3DTPoint<float>& c = m_settings.sceneCenter;
        return m_settings.matrix * C3DTPoint<double>(p.x - c.x, p.y - c.y, p.z - c.z);
    }
    /// The scene's direction of the eye's axis: 0 to the right, 1 up, 2 towards the eye.
    C3DTVector<float> GetAxis(int axis) const
    {
        const auto& m = m_settings.matrix.m;
        return {m[axis][0], m[axis][1], m[axis][2]};
    }
    void Change(unsigned int mask, auto&& fill)
    {
        GlViewSettings settings;
        settings.changeMask = mask;
        fill(settings);
        SetViewSettings(&settings);
    }
};

inline C3DSceneNode* AddCube(C3DScene& scene, const C3DTPoint<float>& center, double side, unsigned int materialID = 0)
{
    C3DSceneNode* const node = CreateCube(center, side, side, side, false, materialID, 0);
    scene.AddNode(nullptr, node);
    return node;
}
