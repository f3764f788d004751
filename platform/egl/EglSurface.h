#pragma once

#include <memory>

#include "EglDisplay.h"
#include <render/GLPlatform.h>

/// A context with the display that it belongs to.
struct GLContextHandle {
    EGLDisplay display;
    EGLContext context;
};

/// Anything of EGL's that can be drawn on.
class CEglSurface : public CDC {
public:
    /// `surface` is destroyed with the object; EGL_NO_SURFACE for none.
    CEglSurface(EGLDisplay display, EGLConfig config, EGLSurface surface) : m_display(display), m_config(config), m_surface(surface) {}
    ~CEglSurface() override;

    EGLDisplay GetDisplay() const { return m_display; }
    EGLConfig GetConfig() const { return m_config; }
    EGLSurface GetSurface() const { return m_surface; }
    CSize GetSize() const override;
    int GetSamples() const override;
    void SwapBuffers() override;

    /// Readies a new context, which is current, for drawing on this; false when it can't.
    virtual bool InitContext() const { return true; }

private:
    EGLDisplay m_display;
    EGLConfig m_config;
    EGLSurface m_surface;
};

// Null when it cannot be had.
std::unique_ptr<CEglSurface> CreateEglWindow(void* nativeWindow, int samples);
std::unique_ptr<CEglSurface> CreateEglPBuffer(int width, int height);
std::unique_ptr<CEglSurface> CreateEglMemory(int width, int height);
