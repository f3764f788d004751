#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "render/View.h"
#include "render/ViewProfile.h"
#include "scene/3DScene.h"

// Pictures off screen: from a PBuffer where there are such, else from memory that any driver draws to. Both give the picture in the size asked
// for, even where the PBuffer is smaller.

int C3DView::CreateMemoryRendering(int width, int height, int depth)
{
    if (IsDrawingFlagSet(GLDRAW_MEMORY))
        DeleteMemoryRendering();
    if (width < 1 || height < 1 || width > BITMAP_MAX_SIDE || height > BITMAP_MAX_SIDE || 1LL * width * height > BITMAP_MAX_PIXELS)
        return 0;
    if (!TryPBuffer(width, height, depth) && !CreateDefaultGLContext(m_platform.CreateMemoryDC(width, height, depth)))
        return 0;
    SetDrawingFlag(GLDRAW_MEMORY, true);
    m_requestedSize = {width, height};
    m_requestedDepth = depth;

    const CGLActivate activate(this);
    if (!IsActive()) {
        DeleteMemoryRendering();
        return 0;
    }
    InitGLContext();
    SizeChanged(width, height);    // the aspect is that of the picture
    m_viewSize = GetClientDC()->GetSize();
    glViewport(0, 0, m_viewSize.cx, m_viewSize.cy);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);    // what a picture without scene shows
    return 1;
}

bool C3DView::TryPBuffer(int width, int height, int depth)
{
    CCrashGuard guard(PROFILE_PBUFFER);
    if (!guard.MayTry() || !InitPBuffer(width, height, depth))
        return false;
    guard.Succeeded();
    return true;
}

int C3DView::InitPBuffer(unsigned int width, unsigned int height, unsigned int depth)
{
    if (!InitGLExtension() || !m_platform.HasPBuffers() || !CreateDefaultGLContext(m_platform.CreatePBuffer(width, height, depth)))
        return 0;
    SetDrawingFlag(GLDRAW_PBUFFER, true);
    return 1;
}

int C3DView::DeleteMemoryRendering()
{
    SetScene(nullptr, 0);
    if (IsDrawingFlagSet(GLDRAW_MEMORY))
        DeleteGLContext();
    SetDrawingFlag(GLDRAW_MEMORY | GLDRAW_PBUFFER, false);
    return 1;
}

Bitmap* C3DView::CreateBitmapFromScene()
{
    if (!IsDrawingFlagSet(GLDRAW_MEMORY))
        return nullptr;
    const CGLActivate activate(this);
    if (!IsActive())
        return nullptr;
    try {
        return IsDrawingFlagSet(GLDRAW_PBUFFER) ? CreateBitmapFromPBuffer() : CreateBitmapFromMemory();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// GL's rows go from the bottom up; a driver that can write them the other way round saves a walk over the picture.
static void FlipRows(Bitmap& picture)
{
    const int size = picture.GetWidth() * picture.GetBytesPerPixel();
    for (int top = 0, bottom = picture.GetHeight() - 1; top < bottom; top++, bottom--)
        std::swap_ranges(picture.GetLine(top), picture.GetLine(top) + size, picture.GetLine(bottom));
}

// What is drawn, in a new picture of that size; null without memory.
static std::unique_ptr<Bitmap> ReadPicture(CSize size, bool alpha)
{
    std::unique_ptr<Bitmap> picture(alpha ? static_cast<Bitmap*>(rgbaBitmap::Create(size.cx, size.cy))
                                          : rgbBitmap::Create(size.cx, size.cy));
    if (!picture)
        return nullptr;
    const bool invert = HasExtension(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)), "GL_MESA_pack_invert");
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (invert)
        glPixelStorei(GL_PACK_INVERT_MESA, 1);
    glReadPixels(0, 0, size.cx, size.cy, alpha ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE, picture->GetLine(0));
    if (invert)
        glPixelStorei(GL_PACK_INVERT_MESA, 0);
    else
        FlipRows(*picture);
    return picture;
}

void C3DView::PresentPicture()
{
    const std::unique_ptr<Bitmap> picture = ReadPicture(m_viewSize, true);
    if (picture && GetPeer())
        GetPeer()->PresentPixels(picture->GetLine(0), picture->GetWidth(), picture->GetHeight());
}

Bitmap* C3DView::CreateBitmapFromPBuffer()
{
    RenderScene(nullptr);
    std::unique_ptr<Bitmap> picture = ReadPicture(m_viewSize, m_requestedDepth == 32);
    if (!picture)
        return nullptr;
    if (picture->GetType() == BITMAP_RGBA)
        picture->InvertAlpha();
    if (m_viewSize != m_requestedSize)
        picture->Resize(m_requestedSize.cx, m_requestedSize.cy, 1);
    return picture.release();
}

// Memory has no alpha of its own: what nothing was drawn on has the depth that it was cleared to.
static void SetAlphaFromDepth(Bitmap& picture)
{
    constexpr int ROWS = 64;    // at once
    const int width = picture.GetWidth(), height = picture.GetHeight();
    std::vector<float> depths(static_cast<std::size_t>(ROWS) * width);
    for (int first = 0; first < height; first += ROWS) {
        const int rows = std::min(ROWS, height - first);
        glReadPixels(0, first, width, rows, GL_DEPTH_COMPONENT, GL_FLOAT, depths.data());
        const float* depth = depths.data();
        for (int row = first; row < first + rows; row++) {
            unsigned char* const line = picture.GetLine(height - 1 - row);
            for (int x = 0; x < width; x++)
                line[x * 4 + 3] = *depth++ == 1 ? 255 : 0;
        }
    }
}

Bitmap* C3DView::CreateBitmapFromMemory()
{
    RenderScene(nullptr);
    std::unique_ptr<Bitmap> picture = ReadPicture(m_viewSize, m_requestedDepth == 32);
    if (picture && picture->GetType() == BITMAP_RGBA) {
        RenderDepthOfAlpha();
        SetAlphaFromDepth(*picture);
    }
    return picture.release();
}

// Draws what is opaque once more, into the depths alone.
void C3DView::RenderDepthOfAlpha()
{
    if (!m_scene || m_transparentObjects.IsEmpty() || !(m_settings.viewFlags & VIEWFLAG_TRANSPARENCY) || !IsSolid())
        return;
    struct Opaque {    // also when a host's callback throws
        explicit Opaque(C3DView& v) : view(v), flags(v.m_settings.viewFlags), objects(std::move(v.m_transparentObjects))
        {
            view.m_settings.viewFlags = (flags & ~VIEWFLAG_TRANSPARENCY) | VIEWFLAG_NO_CLEAR | VIEWFLAG_NO_COLOR_WRITE;
        }
        ~Opaque()
        {
            view.m_settings.viewFlags = flags;
            view.m_transparentObjects = std::move(objects);
        }
        C3DView& view;
        const unsigned int flags;
        CHashTable<int> objects;
    } const opaque(*this);
    RenderScene(nullptr);
}
