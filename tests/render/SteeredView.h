#pragma once

// A view whose clock stands still until it is set, and whose innards show.

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

/// Stands for the toolkit's side of a window.
class CTestPeer : public IWindowPeer {
public:
    int invalidated = 0;
    unsigned int timer = 0, period = 0;

    void Invalidate(const CRect*) override { invalidated++; }
    CRect GetClientRect() const override { return {0, 0, 64, 64}; }
    void SetTimer(unsigned int id, unsigned int milliseconds) override
    {
        timer = id;
        period = milliseconds;
    }
    void KillTimer(unsigned int) override { timer = 0; }
    void SetCapture(bool) override {}
    void SetCursor(CursorShape) override {}
    void SetFocus() override {}
    void SetTitle(const CXTString<wchar_t>&) override {}
    void Close() override {}
    void* GetNativeHandle() const override { return nullptr; }
};

inline C3DSceneNode* AddCube(C3DScene& scene, const C3DTPoint<float>& center, double side, unsigned int materialID = 0)
{
    C3DSceneNode* const node = CreateCube(center, side, side, side, false, materialID, 0);
    scene.AddNode(nullptr, node);
    return node;
}
