
#include "render/DrawText.h"
#include "render/OutlineFont.h"
#include "render/ViewProbe.h"
#include "scene/Primitives.h"

namespace {

/// What of the picture is not black: its edges, y from the bottom, and the number of pixels.
struct Ink {
    int left = CViewProbe::SIDE, bottom = CViewProbe::SIDE, right = -1, top = -1, count = 0;
};

Ink FindInk(const CViewProbe& view)
{
    Ink ink;
    for (int y = 0; y < CViewProbe::SIDE; y++)
        for (int x = 0; x < CViewProbe::SIDE; x++)
            if (view.At(x, y)[0] > 100) {
                ink.left = std::min(ink.left, x);
                ink.right = std::max(ink.right, x);
                ink.bottom = std::min(ink.bottom, y);
                ink.top = std::max(ink.top, y);
                ink.count++;
            }
    return ink;
}

Ink Label(CViewProbe& view, const C3DTPoint<float>& point, const char* text, bool ignoreDepth = false, const CSize& offset = {})
{
    glDisable(GL_LIGHTING);
    glColor3f(1, 1, 1);
    CGLDrawText labels(view, ignoreDepth);
    labels.DrawLabel(point, text, offset);
    return FindInk(view);
}

}

class Labels : public testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(COutlineFont::GetNormal().IsEmpty()) << "a font is among the packages"; }
};

TEST_F(Labels, StandAtThePictureOfTheirPoint)
{
    CViewProbe view;
    const Ink middle = Label(view, {0, 0, 0}, "H");    // 20 pixels an em
    EXPECT_NEAR(middle.left, 32 + 2, 1);
    EXPECT_NEAR(middle.right, 32 + 12, 2);
    EXPECT_NEAR(middle.bottom, 32, 1);
    EXPECT_NEAR(middle.top, 32 + 14, 2);
    EXPECT_GT(middle.count, 60);
    EXPECT_LT(middle.count, 120);

    view.Clear();
    glPushMatrix();    // the modelview at the construction counts
    glTranslatef(-0.5f, -0.5f, 0);
    const Ink moved = Label(view, {0, 0, 0}, "H", false, {4, 8});
    glPopMatrix();
    EXPECT_NEAR(moved.left, middle.left - 16 + 4, 1);
    EXPECT_NEAR(moved.bottom, middle.bottom - 16 + 8, 1);

    view.Clear();
    const Ink two = Label(view, {-0.9f, 0, 0}, "HH");
    EXPECT_NEAR(two.right - two.left, middle.right - middle.left + 15, 2);
    view.Clear();
    EXPECT_EQ(Label(view, {-0.9f, 0, 0}, "H\xC3\xA9\x7F\nH").right, two.right);    // what is beyond ASCII is left out
    view.Clear();
    EXPECT_EQ(Label(view, {0, 0, 0}, "").count, 0);
}

TEST_F(Labels, AreHiddenByWhatIsBeforeThemUnlessDepthIsIgnored)
{
    CViewProbe view;
    const auto drawBlackAt = [&](float z) {
        view.Clear();
        glDisable(GL_LIGHTING);
        glColor3f(0, 0, 0);
        view.DrawSquare(z);
    };
    drawBlackAt(0);    // -1 is nearest here
    EXPECT_EQ(Label(view, {0, 0, 0.1f}, "8").count, 0);
    EXPECT_GT(Label(view, {0, 0, 0.1f}, "8", true).count, 50);
    drawBlackAt(0);
    EXPECT_GT(Label(view, {0, 0, 0}, "8").count, 50);    // what lies on a surface is before it
    drawBlackAt(0);
    EXPECT_GT(Label(view, {0, 0, -0.1f}, "8").count, 50);
}

TEST_F(Labels, NumbersComeInTheDeferredPaintOrWhenAskedForInPictures)
{
    Owned<C3DScene> scene(C3DScene::Create());
    scene->AddNode(nullptr, CreatePlane({0, 0, 0}, {0, -1, 0}, 2, 2, 1, 1, false, 0, 0xFFFFFFFF));
    const auto countInk = [&](unsigned int labels, unsigned int drawing) {
        C3DView view;
        EXPECT_TRUE(view.CreateMemoryRendering(96, 96, 24));
        view.SetScene(scene.get(), 0);
        GlViewSettings settings;
        settings.viewFlags = VIEWFLAG_SMOOTH | VIEWFLAG_ECONOMY | labels;
        settings.viewNumber = RVIEW_FRONT;
        settings.background = {255, 255, 255};
        settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_BACKGROUND | GLSET_UPDATE | GLSET_FIT;
        view.SetViewSettings(&settings);
        view.SetDrawingFlag(drawing, true);
        const Picture picture(view.CreateBitmapFromScene());
        return CountPixels(*picture, [](const unsigned char* p) { return p[0] < 40; });
    };
    EXPECT_EQ(countInk(0, GLDRAW_MEMORY_LABELS), 0);
    EXPECT_EQ(countInk(VIEWFLAG_FACE_LABELS, 0), 0);
    EXPECT_EQ(countInk(VIEWFLAG_FACE_LABELS, GLDRAW_DEFERRED_PAINT), 0);
    const int face = countInk(VIEWFLAG_FACE_LABELS, GLDRAW_MEMORY_LABELS);
    EXPECT_GT(face, 40);
    EXPECT_GT(countInk(VIEWFLAG_POINT_LABELS, GLDRAW_MEMORY_LABELS), face * 2);    // four points, one face
}
