#include "render/SceneBitmap.h"

#include <memory>

#include "images/LayerBitmap.h"
#include "render/View.h"

namespace {

class CThumbnailView : public C3DView {
public:
    // All but what is of the other view's window, or of the moment.
    void TakeSettings(const GlViewSettings& settings)
    {
        const float aspect = m_settings.aspect;
        m_settings = settings;
        m_settings.aspect = aspect;
        m_settings.viewFlags &= ~VIEWFLAG_TRANSIENT;
    }
};

}

CLayerBitmap* GetBitmapFromScene(C3DScene* scene, const GlViewSettings& settings, CSize size)
{
    constexpr int REDUCTION = 2;
    CThumbnailView view;
    if (!scene || size.cx > BITMAP_MAX_SIDE || size.cy > BITMAP_MAX_SIDE ||
        !view.CreateMemoryRendering(size.cx * REDUCTION, size.cy * REDUCTION, 24))
        return nullptr;
    view.TakeSettings(settings);
    view.SetBackgroundColor(255, 255, 255);
    view.SetScene(scene, GLSET_FIT);
    view.UpdateView(0);
    std::unique_ptr<Bitmap> picture(view.CreateBitmapFromScene());
    view.DeleteMemoryRendering();
    if (!picture || !picture->Resize(size.cx, size.cy, 1))
        return nullptr;
    return new CLayerBitmap(picture.release());
}
