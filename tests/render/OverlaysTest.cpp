#include <vector>

#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "render/RenderingMode.h"
#include "render/ViewProbe.h"
#include "scene/3DObject.h"
#include "scene/Keyframe.h"
#include "scene/Primitives.h"

namespace {

/// All of GL's state that a mode may change, and matrices.
std::vector<double> ReadState()
{
    std::vector<double> state;
    for (const GLenum capability : {GL_BLEND, GL_POINT_SMOOTH, GL_LINE_SMOOTH, GL_DEPTH_TEST, GL_FOG, GL_ALPHA_TEST, GL_LIGHTING,
                                    GL_TEXTURE_2D, GL_MULTISAMPLE, GL_LIGHT0, GL_LIGHT1, GL_CULL_FACE})
        state.push_back(glIsEnabled(capability));
    for (const GLenum name : {GL_LINE_WIDTH,
                              GL_BLEND_SRC,
                              GL_BLEND_DST,
                              GL_DEPTH_FUNC,
                              GL_DEPTH_WRITEMASK,
                              GL_FOG_MODE,
                              GL_FOG_START,
                              GL_FOG_END,
                              GL_FOG_COLOR,
                              GL_ALPHA_TEST_FUNC,
                              GL_ALPHA_TEST_REF,
                              GL_COLOR_WRITEMASK,
                              GL_CURRENT_COLOR,
                              GL_MATRIX_MODE,
                              GL_MODELVIEW_MATRIX,
                              GL_PROJECTION_MATRIX,
                              GL_MODELVIEW_STACK_DEPTH,
                              GL_PROJECTION_STACK_DEPTH,
                              GL_ATTRIB_STACK_DEPTH,
                              GL_VIEWPORT}) {
        double values[16] = {};
        glGetDoublev(name, values);
        state.insert(state.end(), values, values + 16);
    }
    return state;
}

constexpr unsigned int ALL_MODES[] = {
    GLMODE_SMOOTH_LINES,   GLMODE_DEPTH_CUE,      GLMODE_BLEND,       GLMODE_NO_LIGHT, GLMODE_NO_DEPTH_TEST,
    GLMODE_NO_DEPTH_WRITE, GLMODE_NO_ALPHA_WRITE, GLMODE_NO_TEXTURE,  GLMODE_TINT,     GLMODE_NO_MULTISAMPLE,
    GLMODE_IDENTITY,       GLMODE_PIXELS,         GLMODE_PIXELS_DOWN,
};

int Count(const CViewProbe& view, const Pixel& color)
{
    int count = 0;
    for (int y = 0; y < CViewProbe::SIDE; y++)
        for (int x = 0; x < CViewProbe::SIDE; x++)
            count += IsPixel(view.At(x, y), color, 3) ? 1 : 0;
    return count;
}

}

TEST(RenderingMode, LeavesTheStateAsItWas)
{
    CViewProbe view;
    glTranslatef(1, 2, 3);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glEnable(GL_TEXTURE_2D);
    for (const GLenum matrix : {GL_MODELVIEW, GL_PROJECTION}) {
        glMatrixMode(matrix);
        const std::vector<double> before = ReadState();
        unsigned int all = 0;
        for (const unsigned int mode : ALL_MODES) {
            {
                const CGLRenderingMode one(view, mode);
            }
            EXPECT_EQ(ReadState(), before) << std::hex << mode;
            all |= mode;
        }
        {
            const CGLRenderingMode outer(view, all);
            EXPECT_EQ(ReadState()[12 + 13 * 16], matrix);    // kept inside too
            const std::vector<double> within = ReadState();
            {
                const CGLRenderingMode inner(view, GLMODE_BLEND | GLMODE_PIXELS);
            }
            EXPECT_EQ(ReadState(), within);
        }
        EXPECT_EQ(ReadState(), before);
    }
    {
        const CGLRenderingMode none(view, 0);
    }
    int depth;
    {
        const CGLRenderingMode extra(view, 0, GL_CURRENT_BIT);
        glColor3f(1, 1, 1);
        glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
    }
    EXPECT_EQ(depth, 1);
    float color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    EXPECT_EQ(color[0], 0.1f);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(RenderingMode, TintsWhatIsDrawnAlreadyAndNothingElse)
{
    CViewProbe view;
    glDisable(GL_LIGHTING);
    glColor3f(1, 0.5f, 0);
    glPushMatrix();
    glScalef(0.5f, 0.5f, 1);
    view.DrawSquare();
    glPopMatrix();
    {
        const CGLRenderingMode tint(view, GLMODE_TINT);
        view.DrawSquare();
    }
    EXPECT_TRUE(IsPixel(view.AtMiddle(), {102, 51 + 61, 122, 255}, 2));    // 0.4 of it and 0.6 of 0 0.4 0.8
    EXPECT_EQ(Count(view, {0, 0, 0, 0}), 64 * 64 * 3 / 4);
}

TEST(RenderingMode, CuesDepthFromTheNearPlaneToTheFarOne)
{
    CViewProbe view(VIEWFLAG_WIREFRAME);
    view.m_settings.nearPlane = 2;
    view.m_settings.farPlane = 10;
    view.m_settings.background = {0, 0, 255};    // into which what is far goes
    glMatrixMode(GL_PROJECTION);
    glOrtho(-1, 1, -1, 1, 0, 20);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glColor3f(1, 1, 1);
    const CGLRenderingMode cue(view, GLMODE_DEPTH_CUE);
    view.DrawSquare(-2);
    const Pixel nearest = view.AtMiddle();
    view.Clear();
    view.DrawSquare(-6);
    const Pixel middle = view.AtMiddle();
    EXPECT_EQ(nearest[0], 255);
    EXPECT_TRUE(IsPixel(middle, {128, 128, 255, 255}, 2));
    view.DrawSquare(-8);    // behind
    EXPECT_EQ(view.AtMiddle(), middle);
}

TEST(Overlays, TwoDModeIsCounted)
{
    CViewProbe view;
    const std::vector<double> before = ReadState();
    view.SwitchTo2DMode(true, GLMODE_NO_DEPTH_TEST, GL_POINT_BIT);
    const std::vector<double> within = ReadState();
    EXPECT_NE(within, before);
    view.SwitchTo2DMode(true, GLMODE_BLEND, 0);
    EXPECT_EQ(ReadState(), within);
    view.SwitchTo2DMode(false, 0, 0);
    EXPECT_EQ(ReadState(), within);
    view.SwitchTo2DMode(false, 0, 0);
    EXPECT_EQ(ReadState(), before);
    view.SwitchTo2DMode(false, 0, 0);    // one too many
    EXPECT_EQ(ReadState(), before);
}

namespace {

/// Edges of what passes the test, y from the top.
template <class TEST> CRect FindPixels(const Bitmap& picture, TEST&& test)
{
    CRect found{picture.GetWidth(), picture.GetHeight(), 0, 0};
    for (int y = 0; y < picture.GetHeight(); y++)
        for (int x = 0; x < picture.GetWidth(); x++)
            if (test(picture.GetLine(y) + x * picture.GetBytesPerPixel()))
                found = {std::min(found.left, x), std::min(found.top, y), std::max(found.right, x + 1), std::max(found.bottom, y + 1)};
    return found;
}

}

TEST(Overlays, BoxesLieAlongTheAxesOfTheSceneAndAreLeftOutOfPicturesUnlessAskedFor)
{
    Owned<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* const cube = CreateCube({0, 0, 0}, 1, 1, 1, false, 0, 0xFFFFFFFF);
    C4x4TMatrix<float> turned;
    turned.m[0][0] = turned.m[2][2] = turned.m[0][2] = 0.70710678f;
    turned.m[2][0] = -turned.m[0][2];
    cube->AddKey(0, C3DMatrixKey(turned));
    scene->AddNode(nullptr, cube);
    C3DView view;
    ASSERT_TRUE(view.CreateMemoryRendering(128, 128, 24));
    view.SetScene(scene.get(), 0);
    GlViewSettings settings;
    settings.viewFlags = VIEWFLAG_SMOOTH | VIEWFLAG_DRAW_BOXES;
    settings.viewNumber = RVIEW_FRONT;
    settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_UPDATE | GLSET_FIT;
    view.SetViewSettings(&settings);
    const Picture without(view.CreateBitmapFromScene());
    EXPECT_EQ(CountPixels(*without, IsGreen), 0);
    view.SetDrawingFlag(GLDRAW_MEMORY_BOXES, true);
    const Picture with(view.CreateBitmapFromScene());
    // A cube on its edge ends in a point above, its box in a line.
    const CRect box = FindPixels(*with, IsGreen), surface = FindPixels(*without, [](const unsigned char*p) { return p[0] != 128; });
    EXPECT_LE(box.left, surface.left);
    EXPECT_GE(box.right, surface.right);
    int top = 0;
    for (int x = 0; x < with->GetWidth(); x++)
        top += IsGreen(with->GetLine(box.top) + x * 3) || IsGreen(with->GetLine(box.top + 1) + x * 3);
    EXPECT_GT(top, box.Width() * 9 / 10);
}
