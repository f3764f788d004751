#include <GL/gl.h>

#include "render/ViewCase.h"
#include "render/ViewProfile.h"

namespace {

// Keeps what it drew itself.
class CPaintedView : public C3DView {
public:
    CPaintedView() { m_settings.viewFlags |= VIEWFLAG_NO_CLEAR; }

    // The upper half red and clear, the lower one blue, with an alpha of 64.
    void PaintHalves()
    {
        const CGLActivate activate(this);
        const CSize size = GetClientDC()->GetSize();
        glClearColor(0, 0, 1, 64 / 255.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, size.cy / 2, size.cx, size.cy);
        glClearColor(1, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
    }
};

}

TEST(MemoryRendering, GivesWhatWasDrawnWithItsRowsFromTheTop)
{
    CPaintedView view;
    ASSERT_TRUE(view.CreateMemoryRendering(64, 32, 24));
    EXPECT_TRUE(view.IsDrawingFlagSet(GLDRAW_MEMORY | GLDRAW_PBUFFER));
    view.PaintHalves();
    const Picture picture(view.CreateBitmapFromScene());
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->GetType(), BITMAP_RGB);
    EXPECT_EQ(CountPixels(*picture, [](const unsigned char* p) { return p[0] == 255 && p[2] == 0; }), 64 * 16);
    EXPECT_EQ(picture->GetLine(0)[0], 255);
    EXPECT_EQ(picture->GetLine(31)[2], 255);
}
