#include <cstdint>

#include "EglSurface.h"
#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

namespace {

class CEglPlatform : public IGLPlatform {
public:
    bool InitExtensions() override;
    bool HasPBuffers() override { return !FindConfigs(GetOffscreenDisplay(), EGL_PBUFFER_BIT, 8, 0).empty(); }
    std::unique_ptr<CDC> CreateWindowDC(void* window, int samples) override { return CreateEglWindow(window, samples); }
    std::unique_ptr<CDC> CreatePBuffer(int width, int height, int) override { return CreateEglPBuffer(width, height); }
    std::unique_ptr<CDC> CreateMemoryDC(int width, int height, int) override { return CreateEglMemory(width, height); }
    HGLRC CreateContext(CDC& dc) override;
    void DeleteContext(HGLRC context) override;
    bool MakeCurrent(CDC& dc, HGLRC context, GLCurrentState& former) override;
    void Restore(CDC& dc, const GLCurrentState& former) override;
};

// Slots of GLCurrentState.
enum { FORMER_DISPLAY, FORMER_CONTEXT, FORMER_DRAW, FORMER_READ, FORMER_API };

bool CEglPlatform::InitExtensions()
{
    return GetOffscreenDisplay() != EGL_NO_DISPLAY && !FindConfigs(GetOffscreenDisplay(), 0, 8, 0).empty();
}

// A driver may give the newer kind of context alone, in which nothing here draws.
bool HasFixedFunctions()
{
    GLint profile = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    while (glGetError() != GL_NO_ERROR) {
    }    // before 3.2 the question itself is an error
    return glGetString(GL_VERSION) && !(profile & GL_CONTEXT_CORE_PROFILE_BIT);
}

HGLRC CEglPlatform::CreateContext(CDC& dc)
{
    const CEglSurface& surface = static_cast<CEglSurface&>(dc);
    const CBindOpenGL bind;
    const EGLContext created = bind ? eglCreateContext(surface.GetDisplay(), surface.GetConfig(), EGL_NO_CONTEXT, nullptr) : EGL_NO_CONTEXT;
    if (created == EGL_NO_CONTEXT)
        return nullptr;
    const HGLRC context = new GLContextHandle{surface.GetDisplay(), created};
    GLCurrentState former;
    bool good = MakeCurrent(dc, context, former);
    if (good) {
        good = HasFixedFunctions() && surface.InitContext();
        Restore(dc, former);
    }
    if (good)
        return context;
    DeleteContext(context);
    return nullptr;
}

void CEglPlatform::DeleteContext(HGLRC context)
{
    if (context)
        eglDestroyContext(context->display, context->context);
    delete context;
}

void BindAPI(const GLCurrentState& state)
{
    if (state[FORMER_API])
        eglBindAPI(static_cast<EGLenum>(reinterpret_cast<std::uintptr_t>(state[FORMER_API])));
}

bool CEglPlatform::MakeCurrent(CDC& dc, HGLRC context, GLCurrentState& former)
{
    former[FORMER_DISPLAY] = eglGetCurrentDisplay();
    former[FORMER_CONTEXT] = eglGetCurrentContext();
    former[FORMER_DRAW] = eglGetCurrentSurface(EGL_DRAW);
    former[FORMER_READ] = eglGetCurrentSurface(EGL_READ);
    former[FORMER_API] = reinterpret_cast<void*>(std::uintptr_t{eglQueryAPI()});
    const EGLSurface surface = static_cast<CEglSurface&>(dc).GetSurface();
    eglBindAPI(EGL_OPENGL_API);
    if (eglMakeCurrent(context->display, surface, surface, context->context))
        return true;
    BindAPI(former);
    return false;
}

void CEglPlatform::Restore(CDC& dc, const GLCurrentState& former)
{
    if (!former[FORMER_CONTEXT] ||
        !eglMakeCurrent(former[FORMER_DISPLAY], former[FORMER_DRAW], former[FORMER_READ], former[FORMER_CONTEXT]))
        eglMakeCurrent(static_cast<CEglSurface&>(dc).GetDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    BindAPI(former);
}

}

IGLPlatform& GetEglPlatform()
{
    static CEglPlatform platform;
    return platform;
}
