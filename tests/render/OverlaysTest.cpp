#include <cmath>
#include <vector>

#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
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

TEST(RenderingMode, PixelsAreThoseOfTheWindow)
{
    CViewProbe view;
    glDisable(GL_LIGHTING);
    glColor3f(1, 1, 1);
    for (const unsigned int down : {0u, unsigned{GLMODE_PIXELS_DOWN}}) {
        view.Clear();
        const CGLRenderingMode pixels(view, GLMODE_IDENTITY | GLMODE_PIXELS | GLMODE_NO_DEPTH_TEST | down);
        glRectf(10, 5, 20, 8);
        EXPECT_EQ(Count(view, {255, 255, 255, 255}), 30);
        EXPECT_EQ(view.At(10, down ? 64 - 8 : 5)[0], 255);
        EXPECT_EQ(view.At(19, down ? 64 - 6 : 7)[0], 255);
    }
    // With depth: 0 is the near end, and the end lies as far from the eye as the scene reaches.
    view.m_settings.matrix.m[2][3] = -7;
    view.m_settings.sceneSize = 4;
    const CGLRenderingMode deep(view, GLMODE_IDENTITY | GLMODE_PIXELS);
    float projection[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    EXPECT_FLOAT_EQ(projection[10], -2.0f / 4);
    EXPECT_FLOAT_EQ(projection[14], 14.0f / 4);
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

struct Lines {
    int left = 99, right = -1, bottom = 99, top = -1, count = 0;
    Pixel color{};    ///< the brightest
};

Lines FindLines(const CViewProbe& view)
{
    Lines lines;
    for (int y = 0; y < CViewProbe::SIDE; y++)
        for (int x = 0; x < CViewProbe::SIDE; x++)
            if (const Pixel at = view.At(x, y); at[0] > 60) {
                lines.left = std::min(lines.left, x);
                lines.right = std::max(lines.right, x);
                lines.bottom = std::min(lines.bottom, y);
                lines.top = std::max(lines.top, y);
                lines.count++;
                lines.color = std::max(lines.color, at);
            }
    return lines;
}

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

namespace {

/// A triangle that lies flat before the eye, its normal along y; lengths along y are drawn forty times as long.
class CNormalsProbe : public CViewProbe {
public:
    CNormalsProbe()
    {
        const float points[] = {-0.5f, 0, 0, 0.5f, 0, 0, 0, 0, -0.5f};
        const int triangle[] = {0, 1, 2};
        m_node = C3DSceneNode::Create();
        m_node->SetObject(CreateObjectFromArrays(points, sizeof points, triangle, sizeof triangle, nullptr, 0), true);
        m_held->AddNode(nullptr, m_node);
        m_settings.nearPlane = 100;    // nothing fades
        m_settings.farPlane = 1000;
    }
    Lines Draw()
    {
        Clear();
        glPushMatrix();
        glScalef(1, 40, 1);
        DrawNormals(m_node);
        glPopMatrix();
        return FindLines(*this);
    }
    C3DSceneNode* m_node;
};

}

TEST(Overlays, NormalsHaveAFortiethOfTheBoxAndTheColourOfTheirOrigin)
{
    CNormalsProbe view;
    // A box of 1 by 0 by 0.5, for a scale of (1, 1, 1): 32 pixels a unit.
    const double length = std::sqrt(1.25) / std::sqrt(3.0) * 32;
    const Lines smoothed = view.Draw();
    EXPECT_NEAR(smoothed.top - smoothed.bottom + 1, length, 1.5);
    EXPECT_NEAR(smoothed.bottom, 32, 1);
    EXPECT_NEAR(smoothed.left, 16, 1);
    EXPECT_NEAR(smoothed.right, 48, 1);
    EXPECT_NEAR(smoothed.color[1], smoothed.color[0] / 10, 3);
    EXPECT_GT(smoothed.color[0], 100);

    // A scaled node has a larger box, and draws its space larger.
    C4x4TMatrix<float> twice;
    twice.Scale(2, 2, 2);
    view.m_node->AddKey(0, C3DMatrixKey(twice));
    EXPECT_EQ(view.Draw().top, smoothed.top);

    C3DGeomObject& triangle = *view.m_node->GetGeomObject();
    CSpecNormalChannel* const given = new CSpecNormalChannel;
    given->GetNormalVectorList()->SetSize(1);
    *given->GetNormalVectorList()->ElementAt(0) = C3DTVector<float>(0, -1, 0);
    given->GetNormalFaceList()->SetSize(1);
    CNormalFace face;
    given->GetNormalFaceList()->GetFace(0, face);
    face.SetTriangle(0, 0, 0);
    triangle.AddChannel(given);
    EXPECT_EQ(view.Draw().bottom, smoothed.bottom);    // not asked for
    view.m_settings.viewFlags |= VIEWFLAG_SPEC_NORMALS;
    const Lines yellow = view.Draw();
    EXPECT_NEAR(yellow.top, 32, 1);
    EXPECT_LT(yellow.bottom, 20);
    EXPECT_EQ(yellow.color[0], yellow.color[1]);

    C3DFace hidden;
    triangle.GetFaceList()->GetFace(0, hidden);
    hidden.SetFlags(VIEW_FACE_HIDDEN, true);
    EXPECT_EQ(view.Draw().count, 0);
    view.DrawNormals(nullptr);
}
