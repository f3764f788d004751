#include "EglSurface.h"

#include <algorithm>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

CEglSurface::~CEglSurface()
{
    if (m_surface != EGL_NO_SURFACE)
        eglDestroySurface(m_display, m_surface);
}

CSize CEglSurface::GetSize() const
{
    CSize size;
    eglQuerySurface(m_display, m_surface, EGL_WIDTH, &size.cx);
    eglQuerySurface(m_display, m_surface, EGL_HEIGHT, &size.cy);
    return size;
}

int CEglSurface::GetSamples() const { return GetConfigAttribute(m_display, m_config, EGL_SAMPLES); }

void CEglSurface::SwapBuffers() { eglSwapBuffers(m_display, m_surface); }

// Windows. The library has a connection of its own to the X server: the number of a window means the same on all of them.

std::unique_ptr<CEglSurface> CreateEglWindow(void* nativeWindow, int samples)
{
    if (!nativeWindow)
        return nullptr;
    const EGLDisplay display = GetX11Display();
    for (const EGLConfig config : FindConfigs(display, EGL_WINDOW_BIT, 0, samples)) {
        const EGLSurface surface = eglCreateWindowSurface(display, config, reinterpret_cast<EGLNativeWindowType>(nativeWindow), nullptr);
        if (surface != EGL_NO_SURFACE)    // else the window has another visual
            return std::make_unique<CEglSurface>(display, config, surface);
    }
    return nullptr;
}

// PBuffers.

static EGLSurface CreateSurface(EGLDisplay display, EGLConfig config, CSize size, bool largest)
{
    const EGLint attributes[] = {EGL_WIDTH, size.cx, EGL_HEIGHT, size.cy, EGL_LARGEST_PBUFFER, largest, EGL_NONE};
    return eglCreatePbufferSurface(display, config, attributes);
}

// Drivers make PBuffers of any size and cut off what is drawn outside the largest viewport.
static CSize GetLargestViewport(EGLDisplay display, EGLConfig config)
{
    static const CSize largest = [=] {
        CEglSurface probe(display, config, CreateSurface(display, config, {1, 1}, false));
        IGLPlatform& platform = GetEglPlatform();
        CSize size;
        GLCurrentState former;
        const HGLRC context = platform.CreateContext(probe);
        if (context && platform.MakeCurrent(probe, context, former)) {
            glGetIntegerv(GL_MAX_VIEWPORT_DIMS, &size.cx);
            platform.Restore(probe, former);
        }
        platform.DeleteContext(context);
        return size;
    }();
    return largest;
}

// EGL may name a smaller limit than that of viewports; what is below both needs no context to ask.
static CSize LimitSize(EGLDisplay display, EGLConfig config, CSize size)
{
    if (size.cx <= GetConfigAttribute(display, config, EGL_MAX_PBUFFER_WIDTH) &&
        size.cy <= GetConfigAttribute(display, config, EGL_MAX_PBUFFER_HEIGHT))
        return size;
    const CSize largest = GetLargestViewport(display, config);
    return {std::min(size.cx, largest.cx), std::min(size.cy, largest.cy)};
}

std::unique_ptr<CEglSurface> CreateEglPBuffer(int width, int height)
{
    const EGLDisplay display = GetOffscreenDisplay();
    const std::vector<EGLConfig> configs = FindConfigs(display, EGL_PBUFFER_BIT, 8, 0);
    if (configs.empty())
        return nullptr;
    EGLSurface surface = CreateSurface(display, configs[0], LimitSize(display, configs[0], {width, height}), false);
    if (surface == EGL_NO_SURFACE)
        surface = CreateSurface(display, configs[0], {width, height}, true);
    return surface != EGL_NO_SURFACE ? std::make_unique<CEglSurface>(display, configs[0], surface) : nullptr;
}

// Memory: a framebuffer of the context's own, which lives and is bound as long as the context.

namespace {

class CEglMemory : public CEglSurface {
public:
    CEglMemory(EGLDisplay display, EGLConfig config, EGLSurface surface, CSize size) : CEglSurface(display, config, surface), m_size(size)
    {
    }

    CSize GetSize() const override { return m_size; }
    int GetSamples() const override { return 0; }
    void SwapBuffers() override {}
    bool InitContext() const override;

private:
    void Attach(GLenum attachment, GLenum format) const;

    CSize m_size;
};

bool CEglMemory::InitContext() const
{
    GLint viewport[2] = {}, side = 0;
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &side);
    if (m_size.cx > std::min(viewport[0], side) || m_size.cy > std::min(viewport[1], side))
        return false;
    GLuint framebuffer;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    Attach(GL_COLOR_ATTACHMENT0, GL_RGBA8);
    Attach(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24);
    return glGetError() == GL_NO_ERROR && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void CEglMemory::Attach(GLenum attachment, GLenum format) const
{
    GLuint buffer;
    glGenRenderbuffers(1, &buffer);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer);
    glRenderbufferStorage(GL_RENDERBUFFER, format, m_size.cx, m_size.cy);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer);
}

}

std::unique_ptr<CEglSurface> CreateEglMemory(int width, int height)
{
    const EGLDisplay display = GetOffscreenDisplay();
    if (display == EGL_NO_DISPLAY)
        return nullptr;
    const bool surfaceless = HasExtension(display, "EGL_KHR_surfaceless_context");
    const std::vector<EGLConfig> configs = FindConfigs(display, surfaceless ? 0 : EGL_PBUFFER_BIT, 8, 0);
    if (configs.empty())
        return nullptr;
    const EGLSurface surface = surfaceless ? EGL_NO_SURFACE : CreateSurface(display, configs[0], {1, 1}, false);
    return surfaceless || surface != EGL_NO_SURFACE ? std::make_unique<CEglMemory>(display, configs[0], surface, CSize{width, height})
                                                    : nullptr;
}
