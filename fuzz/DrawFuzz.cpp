// Pictures of native scene files: whatever a file holds that can be read, there is a picture of it in every mode, and a click finds its nodes.

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "io/NativeFile.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "support/Owned.h"
#include "support/Streams.h"

static constexpr std::size_t HEADER = sizeof(C3DIFIo::MAGIC) + 8;    // as NativeFuzz: both share their kept inputs
static constexpr int SIDE = 32;                                      // pixels

/// Of the whole run: it takes longer to make one than to draw.
static C3DView& GetView()
{
    static C3DView* const view = [] {
        auto* const made = new C3DView;
        if (!made->CreateMemoryRendering(SIDE, SIDE, 32))
            std::abort();
        made->SetDrawingFlag(GLDRAW_MEMORY_BOXES | GLDRAW_MEMORY_LABELS, true);
        return made;
    }();
    return *view;
}

static void Draw(C3DView& view, unsigned int viewFlags)
{
    GlViewSettings settings;
    settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_UPDATE | GLSET_FIT;
    settings.viewFlags = viewFlags;
    settings.viewNumber = RVIEW_RIGHT_TOP_FRONT;
    view.SetViewSettings(&settings);
    const std::unique_ptr<Bitmap> picture(view.CreateBitmapFromScene());
    if (!picture)
        std::abort();
    CXArray<C3DSceneNode*> nodes;
    view.SelectNodesFromRect(nodes, SIDE / 2, SIDE / 2, 0, 0, GLSELECT_DEFAULT, 0);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr unsigned int ICONS = VIEWFLAG_SHOW_CAMERAS | VIEWFLAG_SHOW_LIGHTS;
    constexpr unsigned int OVERLAYS = VIEWFLAG_DRAW_BOXES | VIEWFLAG_DRAW_NORMALS | VIEWFLAG_FACE_LABELS | VIEWFLAG_POINT_LABELS;
    if (size < HEADER)
        return 0;
    const Owned<C3DScene> scene(C3DScene::Create());
    if (!Load(*scene, StreamBytes(data + HEADER, data + size)))
        return 0;
    C3DView& view = GetView();
    view.SetScene(scene.get(), 0);
    Draw(view, VIEWFLAG_DEFAULT);
    Draw(view, VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME | VIEWFLAG_HIDDEN_STIPPLED | ICONS);
    Draw(view, VIEWFLAG_WIREFRAME | ICONS | OVERLAYS);
    view.SetScene(nullptr, 0);
    return 0;
}
