#include "EglDisplay.h"

#include <render/GLPlatform.h>

static EGLDisplay Started(EGLDisplay display)
{
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) ? display : EGL_NO_DISPLAY;
}

static EGLDisplay StartPlatform(EGLenum platform, void* native) { return Started(eglGetPlatformDisplay(platform, native, nullptr)); }

static EGLDisplay StartDevice()
{
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    EGLDeviceEXT devices[16];
    EGLint count = 0;
    if (!HasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device") || !queryDevices || !queryDevices(16, devices, &count))
        return EGL_NO_DISPLAY;
    for (EGLint i = 0; i < count; i++)
        if (const EGLDisplay display = StartPlatform(EGL_PLATFORM_DEVICE_EXT, devices[i]))
            return display;
    return EGL_NO_DISPLAY;
}

EGLDisplay GetOffscreenDisplay()
{
    static const EGLDisplay shared = [] {
        EGLDisplay display = EGL_NO_DISPLAY;
        if (HasExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless"))
            display = StartPlatform(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY);
        if (!display)
            display = StartDevice();
        return display ? display : Started(eglGetDisplay(EGL_DEFAULT_DISPLAY));
    }();
    return shared;
}

EGLDisplay GetX11Display()
{
    static const EGLDisplay shared = StartPlatform(EGL_PLATFORM_X11_KHR, EGL_DEFAULT_DISPLAY);
    return shared;
}

bool HasExtension(EGLDisplay display, const char* name) { return HasExtension(eglQueryString(display, EGL_EXTENSIONS), name); }

EGLint GetConfigAttribute(EGLDisplay display, EGLConfig config, EGLint attribute)
{
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

std::vector<EGLConfig> FindConfigs(EGLDisplay display, EGLint surfaces, EGLint alphaBits, EGLint samples)
{
    // EGL takes each number as the least and puts the deepest colours and most samples first, hence the second look.
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             surfaces,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_ALPHA_SIZE,
                             alphaBits,
                             EGL_DEPTH_SIZE,
                             24,
                             EGL_SAMPLE_BUFFERS,
                             samples > 0,
                             EGL_SAMPLES,
                             samples,
                             EGL_NONE};
    EGLint count = 0;
    if (display == EGL_NO_DISPLAY || !eglChooseConfig(display, wanted, nullptr, 0, &count))
        return {};
    std::vector<EGLConfig> configs(count);
    if (count == 0 || !eglChooseConfig(display, wanted, configs.data(), count, &count))
        return {};
    configs.resize(count);
    std::erase_if(configs, [=](EGLConfig config) {
        return GetConfigAttribute(display, config, EGL_RED_SIZE) != 8 || GetConfigAttribute(display, config, EGL_SAMPLES) != samples;
    });
    return configs;
}
