#pragma once

#include "geometry/Point.h"
#include "tools/Rect.h"
#include "tools/String.h"

class C3DView;

/// Draws labels at points of space while it lives: letters of a fixed size in pixels, in the current colour. Inside, the view is in 2D mode.
/// The modelview at its construction tells where points lie. The view's context is current.
class ZEL_API CGLDrawText {
public:
    /// `ignoreDepth`: labels show through what is before them.
    CGLDrawText(C3DView& view, bool ignoreDepth);
    ~CGLDrawText();
    CGLDrawText(const CGLDrawText&) = delete;
    CGLDrawText& operator=(const CGLDrawText&) = delete;

    /// False without a font. Letters beyond ASCII are left out.
    bool HasFont() const { return m_lists != 0; }
    /// Writes at the picture of a point; `offset` in pixels, y up. Nothing when the point has no picture.
    void DrawLabel(const C3DTPoint<float>& point, const CXTString<char>& text, const CSize& offset = {});

private:
    C3DView& m_view;
    unsigned int m_lists;    ///< first of the font's; 0 without
    double m_modelview[16], m_projection[16], m_pixelProjection[16];
    int m_viewport[4];
};
