#include <cmath>

#include "render/RenderingMode.h"
#include "render/View.h"
#include "render/ViewHost.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "tools/Time.h"

// What a window tells its view.
//
// Drawing that is too slow for interaction waits for a pause: a paint notes its time, and the timer asks for another, deferred one when no paint
// came for a while. What objects have to do for themselves waits in the same way for a pause between updates.

// Numbers of timers from CCommandMgr::FIRST_POPUP up are the commands'.
static constexpr unsigned int TIMER = 1, TIMER_PERIOD = 200, PAINT_PAUSE = 300, UPDATE_PAUSE = 501;    // milliseconds
static constexpr double NOTCH = 120;    // of the wheel; finer wheels tell parts of it

unsigned int C3DView::GetMilliseconds() const
{
    const unsigned int now = static_cast<unsigned int>(timeGetTick());
    return now == NO_TIME ? 0 : now;
}

int C3DView::OnCreate()
{
    if (!CreateMultiSampleGLContext())
        return -1;
    {
        const CGLActivate active(this);
        InitGLContext();
    }
    SetTimer(TIMER, TIMER_PERIOD);
    const CRect client = GetClientRect();
    SizeChanged(client.Width(), client.Height());
    return 0;
}

void C3DView::OnDestroy()
{
    SaveDefaultSettings();
    KillTimer(TIMER);
    m_2DMode.reset();
    DeleteGLContext();
    m_pixelWindow = PIXELS_NONE;
    m_appliedFlags = 0xFFFFFFFF;    // another window's context begins anew
    m_flushPending = m_scene != nullptr;
    CCommandView::OnDestroy();
}

void C3DView::OnSize(int width, int height)
{
    CCommandView::OnSize(width, height);
    SizeChanged(width, height);
}

void C3DView::OnPaint()
{
    if (!GetGLContext())
        return;
    const CGLActivate active(this);
    try {
        if (m_scene)
            RenderScene(nullptr);
        else {
            ClearBackground();
            Present();
        }
    } catch (...) {    // of a callback or for want of memory: the window stays as it is, and the next paint tries again
        return;
    }
    if (IsDrawingFlagSet(GLDRAW_DEFERRED_PAINT))
        SetDrawingFlag(GLDRAW_DEFERRED_PAINT, false);
    else
        m_lastPaint = GetMilliseconds();
}

void C3DView::OnDraw(CDC* dc)
{
    CCommandView::OnDraw(dc);
    if (m_host)
        m_host->ViewDrawn(dc);
}

/// Each paint fills all of the window: to erase it before would flicker.
bool C3DView::OnEraseBkgnd(CDC* dc)
{
    CCommandView::OnEraseBkgnd(dc);
    return true;
}

void C3DView::OnTimer(unsigned int id)
{
    if (id != TIMER) {
        CCommandView::OnTimer(id);
        return;
    }
    const unsigned int now = GetMilliseconds();
    const bool mayUpdate = m_scene && m_activations == 0 && !(m_settings.viewFlags & VIEWFLAG_UPDATES_HELD);
    if (mayUpdate && (m_lastUpdate == NO_TIME || now - m_lastUpdate >= UPDATE_PAUSE)) {
        if (NeedsUpdate())
            UpdateView(GLSET_UPDATE);
        m_lastUpdate = now;
    } else if (m_lastPaint != NO_TIME && now - m_lastPaint > PAINT_PAUSE) {
        Invalidate();
        SetDrawingFlag(GLDRAW_DEFERRED_PAINT, true);
        m_lastPaint = NO_TIME;
    }
}

void C3DView::OnUnusedWheel(unsigned int state, short delta, const CPoint& point)
{
    if (delta == 0)
        return;
    const unsigned int keys = state & (INPUT_SHIFT | INPUT_CTRL);
    if (!keys)
        ZoomByNotches(delta / NOTCH, point);
    else if (m_scene) {
        const int time = m_scene->GetTickCount();
        const bool byKeys = keys == (INPUT_SHIFT | INPUT_CTRL);
        const int next = byKeys ? m_scene->GetKeyTime(time, delta > 0 ? KEY_AFTER : KEY_BEFORE, KEY_ANY) : time + (delta > 0 ? 1 : -1);
        if (m_scene->SetCurrentTime(next)) {
            Invalidate();
            if (m_host)
                m_host->ViewChangedScene(VIEW_CHANGED_TIME, nullptr, 0xFFFFFFFF, true);
        }
    }
}

/// In both projections, so that a change of projection keeps the picture near to what it was; the point under the pointer stays put in the present
/// one.
void C3DView::ZoomByNotches(double notches, const CPoint& point)
{
    constexpr double STEP = 0.05;
    const double nearer = std::pow(notches > 0 ? 1 - STEP : 1 + STEP, std::fabs(notches));
    const double larger = std::pow(notches > 0 ? 1 + STEP : 1 - STEP, std::fabs(notches));
    GlViewSettings zoomed;
    zoomed.changeMask = GLSET_CAMERA | GLSET_UPDATE | GLSET_TRANSLATION;
    zoomed.matrix = m_settings.matrix;
    zoomed.SetCurrentCamera(m_settings.GetCurrentCamera());
    C3DCamera& camera = *zoomed.GetCurrentCamera();
    double x, y;
    GetEyeSlope(point, x, y);
    float(&m)[4][4] = zoomed.matrix.m;
    const float z = m[2][3];
    m[2][3] = static_cast<float>(z * nearer);
    // In perspective the scene comes along the ray through the pointer, whatever stands on it; otherwise what is shown shrinks about that ray.
    const double way = m_settings.IsOrthographic() ? 1 / larger - 1 : z - m[2][3];
    m[0][3] = static_cast<float>(m[0][3] + x * way);
    m[1][3] = static_cast<float>(m[1][3] + y * way);
    camera.SetZoom(camera.GetZoom() * larger);
    SetViewSettings(&zoomed);
    UpdateView(0);
}
