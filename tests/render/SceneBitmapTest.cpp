#include "render/SceneBitmap.h"

#include "images/LayerBitmap.h"
#include "render/FaultyPlatform.h"
#include "render/ViewCase.h"
#include "scene/Primitives.h"

namespace {

class SceneBitmap : public testing::Test {
protected:
    SceneBitmap()
    {
        m_scene->AddNode(nullptr, CreateSphere({0, 0, 0}, 1, 12, 16, false, 0, 0));
        m_settings.viewFlags = VIEWFLAG_DEFAULT | VIEWFLAG_NO_COLOR_WRITE | VIEWFLAG_NO_CLEAR;    // of the other view's moment
        m_settings.aspect = 7;                                                                    // and of its window
        m_settings.background = {1, 2, 3};
    }
    ~SceneBitmap() override { DeleteMe(m_scene); }

    C3DScene* m_scene = C3DScene::Create();
    GlViewSettings m_settings;
};

bool IsWhite(const unsigned char* pixel) { return pixel[0] == 255 && pixel[1] == 255 && pixel[2] == 255; }

}

TEST_F(SceneBitmap, ShowsTheWholeSceneOnWhite)
{
    const std::unique_ptr<CLayerBitmap> layers(GetBitmapFromScene(m_scene, m_settings, {48, 32}));
    ASSERT_TRUE(layers);
    const Bitmap& picture = *layers->GetStandardLayer();
    ASSERT_EQ(picture.GetWidth(), 48);
    ASSERT_EQ(picture.GetHeight(), 32);

    CRect box{48, 32, 0, 0};
    for (int y = 0; y < 32; y++)
        for (int x = 0; x < 48; x++) {
            const unsigned char* const pixel = picture.GetLine(y) + x * 3;
            if (IsWhite(pixel))
                continue;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
        }
    EXPECT_NEAR(box.Width(), box.Height(), 1);    // a ball stays round whatever the other window's shape
    EXPECT_GT(box.left, 0);
    EXPECT_LT(box.right, 48);
    EXPECT_GT(box.Height(), 12);
    EXPECT_LT(box.Height(), 32);
}

TEST_F(SceneBitmap, IsNullWhereNothingCanBeDrawn)
{
    EXPECT_FALSE(GetBitmapFromScene(nullptr, m_settings, {16, 16}));
    for (const CSize size : {CSize{0, 16}, {16, -1}, {0x7FFFFFFF, 16}})
        EXPECT_FALSE(GetBitmapFromScene(m_scene, m_settings, size));
    CFaultyPlatform platform;
    platform.faults = {"CreatePBuffer", "CreateMemoryDC"};
    EXPECT_FALSE(GetBitmapFromScene(m_scene, m_settings, {16, 16}));
}
