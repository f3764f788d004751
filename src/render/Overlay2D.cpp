#include "render/Overlay2D.h"

#include <GL/gl.h>

#include <cmath>
#include <numbers>

#include "render/RenderingMode.h"
#include "render/View.h"

static constexpr unsigned int MODE = GLMODE_PIXELS_DOWN | GLMODE_NO_MULTISAMPLE | GLMODE_NO_DEPTH_TEST;
/// Polygons of a view may be lines, and have a stipple.
static constexpr unsigned int ATTRIBUTES = GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT | GL_LINE_BIT | GL_POLYGON_BIT | GL_ENABLE_BIT;
/// A line between the middles of pixels covers these pixels.
static constexpr float MIDDLE = 0.5f;

COverlay2D::COverlay2D(C3DView& view) : m_view(view)
{
    m_view.SwitchTo2DMode(true, MODE, ATTRIBUTES);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_CULL_FACE);    // y down turns all round
    glDisable(GL_POLYGON_STIPPLE);
    glDisable(GL_SAMPLE_ALPHA_TO_COVERAGE);
    glLineWidth(1);
}

COverlay2D::~COverlay2D() { m_view.SwitchTo2DMode(false, 0, 0); }

static void SetColor(const CRGBColor& color) { glColor3ub(color.red, color.green, color.blue); }

static void SendCorners(const CRect& rect, float offset)
{
    const float left = rect.left + offset, top = rect.top + offset, right = rect.right - offset, bottom = rect.bottom - offset;
    glVertex2f(left, top);
    glVertex2f(right, top);
    glVertex2f(right, bottom);
    glVertex2f(left, bottom);
}

void COverlay2D::DrawCircle(const CPoint& center, int radius, int corners, const CRGBColor& color)
{
    SetColor(color);
    glBegin(GL_LINE_LOOP);
    for (int i = 0; i < corners; i++) {
        const double angle = 2 * std::numbers::pi * i / corners;
        glVertex2f(static_cast<float>(center.x + radius * std::cos(angle)) + MIDDLE,
                   static_cast<float>(center.y + radius * std::sin(angle)) + MIDDLE);
    }
    glEnd();
}

void COverlay2D::FillRect(const CRect& rect, const CRGBColor& color)
{
    SetColor(color);
    glBegin(GL_QUADS);
    SendCorners(rect, 0);
    glEnd();
}

void COverlay2D::DrawRect(const CRect& rect, const CRGBColor& color)
{
    SetColor(color);
    glBegin(GL_LINE_LOOP);
    SendCorners(rect, MIDDLE);
    glEnd();
}

void COverlay2D::DrawBand(const CRect& rect)
{
    constexpr GLushort DASHES = 0x0F0F;
    DrawRect(rect, CRGBColor(255, 255, 255));
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(1, DASHES);    // is put back with the lines' state
    DrawRect(rect, CRGBColor(0, 0, 0));
}
