#pragma once

#include "tools/Color.h"
#include "tools/Rect.h"

class C3DView;

/// Lines and areas over a finished picture, in pixels of the window with y down: what a command shows in its OnDraw. The view's context must be
/// current; it is in the 2D mode as long as this lives.
class ZEL_API COverlay2D {
public:
    explicit COverlay2D(C3DView& view);
    ~COverlay2D();
    COverlay2D(const COverlay2D&) = delete;
    COverlay2D& operator=(const COverlay2D&) = delete;

    void DrawCircle(const CPoint& center, int radius, int corners, const CRGBColor& color);
    void FillRect(const CRect& rect, const CRGBColor& color);
    void DrawRect(const CRect& rect, const CRGBColor& color);
    /// In dashes of white and black, so that it shows on every picture.
    void DrawBand(const CRect& rect);

private:
    C3DView& m_view;
};
