// What the commands that take the mouse have in common.
//
//   handlers   presses, releases, moves; each drag starts from the view and the point of its press
//   zone       what a drag does, by the buttons and by the place on the ring
//   drags      turn, move, zoom: each ends in one call of C3DView::SetViewSettings
//   pick       what a click selects
//   gizmo      the ring and its handles

#include "viewer/ViewerControl.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <unordered_set>

#include "render/Overlay2D.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "windows/CommandMgr.h"

namespace {

// The ring, pixels
constexpr int RING = 125, HANDLE = 8;    // radius, and half a handle's side
constexpr int RING_INSIDE = RING - HANDLE, RING_OUTSIDE = RING + HANDLE;
constexpr int LEAST_ROOM = 17;    // beyond the ring

constexpr double PIXELS_OF_HALF_TURN = 250;
constexpr int FAST = 4;

int GetSpeed(unsigned int state) { return state & INPUT_SHIFT ? FAST : 1; }

/// What lies outside the ring, to the nearer border.
int GetRoom(const CRect& client) { return std::min(client.Width(), client.Height()) / 2 - RING; }

CPoint GetMiddle(const CRect& client) { return {client.Width() / 2, client.Height() / 2}; }

unsigned int GetButtons(const CCommandMgr& manager)
{
    unsigned int buttons = 0;
    for (const unsigned int button : {CLICK_LEFT, CLICK_RIGHT, CLICK_MIDDLE})
        if (manager.IsFlagSet(button))
            buttons |= button;
    return buttons;
}

}

C3DViewerControl::C3DViewerControl(unsigned int id, bool gizmo, unsigned int zone, unsigned int mouseHelp, unsigned int keyHelp)
    : C3DCommand(id), m_zone(zone), m_gizmoOn(gizmo), m_mouseHelp(mouseHelp), m_keyHelp(keyHelp)
{
}

C3DViewerControl::~C3DViewerControl() = default;

C3DScene* C3DViewerControl::GetViewScene() const { return GetViewer() ? GetViewer()->GetScene() : nullptr; }

int C3DViewerControl::OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const
{
    const unsigned int help = kind == HELP_MOUSE ? m_mouseHelp : kind == HELP_KEYS ? m_keyHelp : 0;
    if (!help)
        return C3DCommand::OnGetHelp(kind, text);
    text = GetCommandHelp(help);
    return 1;
}

// --- Handlers --------------------------------------------------------------------------------------------------------------------

void C3DViewerControl::OnGetFocus(int reason, CZelCommand* former, CommandResult result)
{
    if (!m_gizmoOn)
        return;
    if (GetViewer())
        GetViewer()->Invalidate();
    C3DCommand::OnGetFocus(reason, former, result);
}

void C3DViewerControl::OnLooseFocus(int reason, CZelCommand* next)
{
    if (!m_gizmoOn)
        return;
    if (GetViewer())
        GetViewer()->Invalidate();
    C3DCommand::OnLooseFocus(reason, next);
}

void C3DViewerControl::OnMouseMove(unsigned int state, const CPoint& point)
{
    if (!GetManager() || !GetViewer() || point == GetManager()->GetLastPoint())
        return;
    if (GetManager()->IsSingleClick() == CLICK_MIDDLE)
        PanDrag(state, point);
    else
        OnDrag(state, point);
    SetCursor(point);
}

int C3DViewerControl::OnLButtonDown(unsigned int state, const CPoint& point) { return BeginDrag(state, point), 1; }
int C3DViewerControl::OnRButtonDown(unsigned int state, const CPoint& point) { return BeginDrag(state, point), m_gizmoOn; }
int C3DViewerControl::OnMButtonDown(unsigned int state, const CPoint& point) { return BeginDrag(state, point), 1; }

int C3DViewerControl::OnLButtonUp(unsigned int state, const CPoint& point)
{
    if (GetManager() && GetManager()->IsSingleClick() == CLICK_LEFT && GetManager()->IsStaticClick())
        Pick(state, point);
    GoOn(state, point, CLICK_LEFT);
    return 1;
}

/// A right click that stays in its place is left to others.
int C3DViewerControl::OnRButtonUp(unsigned int state, const CPoint& point)
{
    GoOn(state, point, CLICK_RIGHT);
    return GetManager() && !GetManager()->IsStaticClick();
}

int C3DViewerControl::OnMButtonUp(unsigned int state, const CPoint& point) { return GoOn(state, point, CLICK_MIDDLE), 1; }

int C3DViewerControl::OnLButtonDblClk(unsigned int state, const CPoint& point)
{
    if (!GetManager())
        return 0;
    BeginDrag(state, point);
    CXArray<C3DSceneNode*> selected;
    if (const C3DScene* const scene = GetViewScene())
        scene->GetSelectedNodes(selected);
    Pick(state, point);
    if (Get3DFrameWnd())
        Get3DFrameWnd()->ShowProperties(selected.GetSize() == 1 ? selected[0] : nullptr);
    return 1;
}

void C3DViewerControl::BeginDrag(unsigned int state, const CPoint& point)
{
    if (GetViewer())
        m_savedMatrix = GetViewer()->GetViewSettings()->matrix;
    m_dragStart = point;
    m_lastCtrl = (state & INPUT_CTRL) != 0;
    UpdateZone(point);
    SetCursor(point);
}

/// With the buttons that stay down, from here: the view would jump to where they were pressed.
void C3DViewerControl::GoOn(unsigned int state, const CPoint& point, unsigned int released)
{
    BeginDrag(state, point);
    UpdateZone(point, released);
}

int C3DViewerControl::SetCursor(const CPoint&)
{
    const CCommandMgr* const manager = GetManager();
    if (!manager || !GetViewer())
        return 0;
    const bool ctrl = (manager->GetInputState() & INPUT_CTRL) != 0;
    const unsigned int zone = manager->IsSingleClick() == CLICK_MIDDLE ? +ZONE_PAN : m_zone;
    MouseCursor cursor = CURSOR_ARROW;
    if ((m_gizmoOn && !manager->IsClick()) || (manager->IsClick() && manager->IsStaticClick()))
        cursor = CURSOR_ARROW;
    else if ((zone & ZONE_FREE) == ZONE_FREE)
        cursor = CURSOR_ORBIT;
    else if (zone & ZONE_HORIZONTAL)
        cursor = ctrl ? CURSOR_TURN_OBJECT : CURSOR_TURN;
    else if (zone & ZONE_VERTICAL)
        cursor = ctrl ? CURSOR_TILT_OBJECT : CURSOR_TILT;
    else if (zone & ZONE_ROLL)
        cursor = ctrl ? CURSOR_ROLL_OBJECT : CURSOR_ROLL;
    else if (zone & ZONE_PAN)
        cursor = CURSOR_PAN;
    else if (zone & ZONE_ZOOM)
        cursor = CURSOR_ZOOM;
    GetViewer()->SetCursor(cursor);
    return 1;
}

// --- Zone ------------------------------------------------------------------------------------------------------------------------

unsigned int C3DViewerControl::GetPointZone(const CPoint& point) const
{
    const CRect client = GetViewer()->GetClientRect();
    const int room = GetRoom(client);
    const CPoint middle = GetMiddle(client);
    const int dx = point.x - middle.x, dy = point.y - middle.y, distance = static_cast<int>(std::hypot(dx, dy));
    const auto isOnRing = [](int along) { return std::abs(along) >= RING_INSIDE && std::abs(along) <= RING_OUTSIDE; };
    if (room < LEAST_ROOM)
        return ZONE_ROLL;
    if (distance < RING_INSIDE)
        return ZONE_FREE;
    if (distance > RING_OUTSIDE)
        return ZONE_ROLL;
    if (isOnRing(dx) && std::abs(dy) <= HANDLE)
        return ZONE_HORIZONTAL;
    if (isOnRing(dy) && std::abs(dx) <= HANDLE)
        return ZONE_VERTICAL;
    return distance < room ? +ZONE_FREE : +ZONE_ROLL;
}

void C3DViewerControl::UpdateZone(const CPoint& point, unsigned int released)
{
    if (!m_gizmoOn || !GetManager() || !GetViewer())
        return;
    switch (GetButtons(*GetManager()) & ~released) {
    case 0: m_zone = ZONE_NONE; break;
    case CLICK_LEFT: m_zone = GetPointZone(point); break;
    case CLICK_RIGHT: m_zone = ZONE_ZOOM; break;
    case CLICK_MIDDLE:
    case CLICK_LEFT | CLICK_RIGHT: m_zone = ZONE_PAN; break;
    default: break;
    }
}

// --- Drags -----------------------------------------------------------------------------------------------------------------------

void C3DViewerControl::RotateDrag(unsigned int state, const CPoint& point)
{
    if (!(m_zone & (ZONE_FREE | ZONE_ROLL)))
        return;
    const C4x4TMatrix<float>& now = GetViewer()->GetViewSettings()->matrix;
    const bool free = (m_zone & ZONE_FREE) == ZONE_FREE, ctrl = (state & INPUT_CTRL) != 0, ownAxis = ctrl && !free;
    if (ctrl != m_lastCtrl && !free) {    // another axis: goes on from here
        m_savedMatrix = now;
        m_dragStart = point;
    }
    m_lastCtrl = ctrl;

    const auto angle = [&](int pixels) { return pixels / PIXELS_OF_HALF_TURN * std::numbers::pi * GetSpeed(state); };
    const double across = angle(point.x - m_dragStart.x), down = angle(point.y - m_dragStart.y);
    const int middle = GetMiddle(GetViewer()->GetClientRect()).x;
    C4x4TMatrix<float> turn, scene = m_savedMatrix;
    if (m_zone & ZONE_HORIZONTAL)
        ownAxis ? TurnMatrix(scene, {0, 0, 1}, -across) : TurnMatrix(turn, {0, 1, 0}, -across);
    if (m_zone & ZONE_VERTICAL)
        TurnMatrix(ownAxis ? scene : turn, {1, 0, 0}, -down);
    if (m_zone & ZONE_ROLL) {
        if (ctrl)
            TurnMatrix(scene, {0, 1, 0}, m_dragStart.x > middle ? -down : down);
        else
            TurnMatrix(turn, {0, 0, 1}, m_dragStart.x <= middle ? -down : down);
    }

    // About the point that the view turns about, wherever that is now: the wheel may have zoomed since the press.
    scene.SetTranslation(0, 0, 0);
    GlViewSettings turned;
    turned.changeMask = GLSET_UPDATE | GLSET_MATRIX;
    turned.matrix = turn * scene;
    turned.matrix.SetTranslation(now.m[0][3], now.m[1][3], now.m[2][3]);
    turned.viewNumber = RVIEW_CUSTOM;
    GetViewer()->SetViewSettings(&turned);
}

void C3DViewerControl::PanDrag(unsigned int state, const CPoint& point)
{
    const CRect client = GetViewer()->GetClientRect();
    if (client.Width() <= 0 || client.Height() <= 0)
        return;
    const CPoint last = GetManager()->GetLastPoint();
    const GlViewSettings& now = *GetViewer()->GetViewSettings();
    const float size = now.sceneSize * GetSpeed(state);
    GlViewSettings moved;
    moved.changeMask = GLSET_UPDATE | GLSET_TRANSLATION;
    moved.matrix = now.matrix;
    moved.matrix.m[0][3] += (point.x - last.x) * size / client.Width();
    moved.matrix.m[1][3] += (last.y - point.y) * size / client.Height();
    GetViewer()->SetViewSettings(&moved);
}

void C3DViewerControl::ZoomDrag(unsigned int state, const CPoint& point)
{
    const GlViewSettings& now = *GetViewer()->GetViewSettings();
    const bool out = point.y > GetManager()->GetLastPoint().y;    // down
    const int speed = GetSpeed(state);
    GlViewSettings zoomed;
    zoomed.changeMask = GLSET_UPDATE | GLSET_CAMERA | GLSET_TRANSLATION;
    zoomed.matrix = now.matrix;
    float& z = zoomed.matrix.m[2][3];
    z += (out ? 0.05f : -0.05f) * speed * z;
    zoomed.SetCurrentCamera(now.GetCurrentCamera());
    C3DCamera& camera = *zoomed.GetCurrentCamera();
    camera.SetZoom(camera.GetZoom() * speed * (out ? 0.95 : 1.05));
    GetViewer()->SetViewSettings(&zoomed);
}

// --- Pick ------------------------------------------------------------------------------------------------------------------------

/// Whether the hits are what is selected, all of it and nothing else.
static bool AreSelection(const C3DScene& scene, const CXArray<C3DSceneNode*>& hits)
{
    CXArray<C3DSceneNode*> selected;
    scene.GetSelectedNodes(selected);
    std::unordered_set<const C3DSceneNode*> rest(selected.begin(), selected.end());
    for (const C3DSceneNode* const hit : hits) {
        if (!hit->IsFlagSet(NODE_SELECTED))
            return false;
        rest.erase(hit);
    }
    return !hits.IsEmpty() && rest.empty();
}

void C3DViewerControl::Pick(unsigned int state, const CPoint& point)
{
    C3DScene* const scene = GetViewScene();
    if (!scene || point.x < 0 || point.y < 0)
        return;
    CXArray<C3DSceneNode*> hits;
    GetViewer()->SelectNodesFromRect(hits, static_cast<unsigned int>(point.x), static_cast<unsigned int>(point.y), 0, 0, GLSELECT_DEFAULT,
                                     NODE_SELECTED);
    const bool add = (state & INPUT_CTRL) != 0;
    if (add ? AreSelection(*scene, hits) : hits.IsEmpty())    // keeps what was selected for C3DReselect
        GetManager()->StackCommand(FourCC("SLNN"), STACK_APPLY, nullptr);
    else if (add)
        for (C3DSceneNode* const hit : hits)
            hit->SetFlag(NODE_SELECTED, !hit->IsFlagSet(NODE_SELECTED));
    else {
        scene->SelectNone();
        for (C3DSceneNode* const hit : hits)
            hit->SetFlag(NODE_SELECTED, true);
    }
    if (Get3DFrameWnd())
        Get3DFrameWnd()->NodeSelectionChanged();
}

// --- Gizmo -----------------------------------------------------------------------------------------------------------------------

void C3DViewerControl::OnDraw(CDC*)
{
    constexpr int CORNERS = 30;
    static constexpr CRGBColor GREEN(0, 220, 0), BLACK(0, 0, 0);
    if (!m_gizmoOn || !GetViewer() || !GetViewer()->IsOneDrawingFlagSet(GLDRAW_MEMORY | GLDRAW_DEFERRED_PAINT))
        return;
    const CRect client = GetViewer()->GetClientRect();
    if (GetRoom(client) < LEAST_ROOM)
        return;
    const CPoint middle = GetMiddle(client);
    COverlay2D overlay(*GetViewer());
    overlay.DrawCircle(middle, RING, CORNERS, GREEN);
    CRect handles[4];
    for (int i = 0; i < 4; i++) {
        const int along = i % 2 ? RING : -RING, x = middle.x + (i < 2 ? along : 0), y = middle.y + (i < 2 ? 0 : along);
        handles[i] = {x - HANDLE, y - HANDLE, x + HANDLE, y + HANDLE};
    }
    for (const CRect& handle : handles)
        overlay.FillRect(handle, BLACK);
    for (const CRect& handle : handles)
        overlay.DrawRect(handle, GREEN);
}
