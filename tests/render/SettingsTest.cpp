#include "render/ViewCase.h"

#include "scene/Camera.h"

TEST(ViewSettings, CopiesShareACameraThatTheyTookACopyOf)
{
    C3DCamera* const camera = new C3DCamera;
    camera->SetZoom(3);
    GlViewSettings settings;
    settings.SetCurrentCamera(camera);
    camera->SetZoom(5);
    DeleteMe(camera);
    const GlViewSettings copy(settings);
    EXPECT_EQ(copy.GetCurrentCamera(), settings.GetCurrentCamera());
    settings.SetCurrentCamera(nullptr);
    EXPECT_EQ(copy.GetCurrentCamera()->GetZoom(), 3);
    EXPECT_EQ(settings.GetCurrentCamera()->GetZoom(), 1);
}
