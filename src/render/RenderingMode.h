#pragma once

#include "tools/Api.h"

class C3DView;

/// Mode bits of CGLRenderingMode: what is switched while one lives.
enum _GL_RENDERING_MODE : unsigned int {
    GLMODE_SMOOTH_LINES = 0x1,
    GLMODE_DEPTH_CUE = 0x2,    ///< depth test, and fog from the near to the far plane
    GLMODE_BLEND = 0x4,        ///< drops what has alpha 0
    GLMODE_NO_LIGHT = 0x8,
    GLMODE_NO_DEPTH_TEST = 0x10,
    GLMODE_NO_DEPTH_WRITE = 0x20,
    GLMODE_NO_ALPHA_WRITE = 0x40,
    GLMODE_NO_TEXTURE = 0x80,
    GLMODE_TINT = 0x100,    ///< of what is selected, over what is drawn already
    GLMODE_NO_MULTISAMPLE = 0x200,
    GLMODE_IDENTITY = 0x100000,    ///< of the modelview
    GLMODE_PIXELS = 0x200000,      ///< projection in pixels of the window, y up
    GLMODE_PIXELS_DOWN = 0x400000,
};

/// GL state that lasts as long as the object: what it changes it pushes, and its destructor restores.
class ZEL_API CGLRenderingMode {
public:
    /// @param mode        _GL_RENDERING_MODE
    /// @param attributes  further attribute bits to push
    CGLRenderingMode(C3DView& view, unsigned int mode, unsigned int attributes = 0);
    ~CGLRenderingMode();
    CGLRenderingMode(const CGLRenderingMode&) = delete;
    CGLRenderingMode& operator=(const CGLRenderingMode&) = delete;

private:
    /// Depth range of the scene for pixels that have a depth.
    static void GetSceneDepth(const C3DView& view, double& nearPlane, double& farPlane);

    bool m_attributes = false, m_modelview = false, m_projection = false;
};
