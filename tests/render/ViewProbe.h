#pragma once

// A view whose parts are tried one by one: its context stays current, and tests draw by hand what a list would hold.

#include <GL/gl.h>

#include <array>
#include <cstdlib>

#include "render/ViewCase.h"
#include "scene/Material.h"
#include "support/Owned.h"

/// Red, green, blue and alpha as bytes.
using Pixel = std::array<int, 4>;

class CViewProbe : public C3DView {
public:
    static constexpr int SIDE = 64;

    /// With an empty scene and the flags applied. Where nothing is said of matrices, x and y go from -1 to 1 over the picture, and the eye
    /// looks along -z.
    explicit CViewProbe(unsigned int flags = VIEWFLAG_SMOOTH | VIEWFLAG_TEXTURE) : m_held(C3DScene::Create())
    {
        if (!CreateMemoryRendering(SIDE, SIDE, 32))
            ADD_FAILURE() << "no context";
        Activate();
        SetScene(m_held.get(), 0);
        m_settings.viewFlags = flags;
        InitViewFlag();
        Clear();
    }
    ~CViewProbe() override { Deactivate(); }

    void Clear()
    {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    /// The square from -1 to 1, with its texture upright.
    void DrawSquare(float z = 0)
    {
        glBegin(GL_TRIANGLES);
        SendSquare(z);
        glEnd();
    }
    void SendSquare(float z = 0)
    {
        for (const int corner : {0, 1, 2, 0, 2, 3}) {
            const float x = corner == 1 || corner == 2 ? 1.0f : -1.0f, y = corner < 2 ? -1.0f : 1.0f;
            glTexCoord3f(x / 2 + 0.5f, y / 2 + 0.5f, 0);
            glVertex3f(x, y, z);
        }
    }
    /// y from the bottom.
    Pixel At(int x, int y) const
    {
        unsigned char rgba[4];
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return {rgba[0], rgba[1], rgba[2], rgba[3]};
    }
    Pixel AtMiddle() const { return At(SIDE / 2, SIDE / 2); }

    static std::array<float, 4> MaterialOf(GLenum name, GLenum face = GL_FRONT)
    {
        std::array<float, 4> value{};
        glGetMaterialfv(face, name, value.data());
        return value;
    }

    using C3DView::BeginPrimitive;
    using C3DView::DestroyMapping;
    using C3DView::EndPrimitive;
    using C3DView::InitLighting;
    using C3DView::InitMapping;
    using C3DView::InitMaterialMapping;
    using C3DView::IsMaterialCurrent;
    using C3DView::m_element;
    using C3DView::m_settings;

protected:
    Owned<C3DScene> m_held;
};

inline testing::AssertionResult IsPixel(const Pixel& got, const Pixel& expected, int tolerance)
{
    for (int i = 0; i < 4; i++)
        if (std::abs(got[i] - expected[i]) > tolerance)
            return testing::AssertionFailure() << testing::PrintToString(got) << " in place of " << testing::PrintToString(expected);
    return testing::AssertionSuccess();
}
