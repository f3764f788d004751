#pragma once

// Displays of EGL, and formats on them. No header of a window system comes with this one.
#define EGL_NO_X11
#define MESA_EGL_NO_X11_HEADERS
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <vector>

/// Where pictures off screen are drawn: needs neither window system nor GPU. EGL_NO_DISPLAY when there is no driver. One a process, made at
/// first use and never closed, for displays are shared with whoever else uses EGL here. Any thread.
EGLDisplay GetOffscreenDisplay();
/// That of the X server that DISPLAY names; the same rules.
EGLDisplay GetX11Display();

/// Whether an extension's name is among those of the display, as a whole word.
bool HasExtension(EGLDisplay display, const char* name);

/// Formats of OpenGL with 8 bits a colour, 24 of depth, and exactly that number of samples (0: none), the plainest first.
///
/// @param surfaces   EGL_PBUFFER_BIT... that they must serve; 0: any
/// @param alphaBits  at least
std::vector<EGLConfig> FindConfigs(EGLDisplay display, EGLint surfaces, EGLint alphaBits, EGLint samples);

EGLint GetConfigAttribute(EGLDisplay display, EGLConfig config, EGLint attribute);

/// Binds OpenGL as the thread's API, which starts as another one, and puts back what was bound.
class CBindOpenGL {
public:
    CBindOpenGL() : m_former(eglQueryAPI()), m_bound(eglBindAPI(EGL_OPENGL_API)) {}
    ~CBindOpenGL() { eglBindAPI(m_former); }
    CBindOpenGL(const CBindOpenGL&) = delete;
    CBindOpenGL& operator=(const CBindOpenGL&) = delete;

    explicit operator bool() const { return m_bound; }

private:
    EGLenum m_former;
    bool m_bound;
};
