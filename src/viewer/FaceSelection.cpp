#include "viewer/FaceSelection.h"

#include <algorithm>

#include "render/Overlay2D.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "viewer/MarkedFaces.h"
#include "windows/CommandMgr.h"

C3DSelectFacesCommand::C3DSelectFacesCommand() : C3DViewerControl(FourCC("SLFC"), false, ZONE_NONE, 9625, 9626) {}

void C3DSelectFacesCommand::OnGetFocus(int reason, CZelCommand* former, CommandResult result)
{
    if (C3DView* const view = GetViewer()) {
        GlViewSettings showing;
        showing.changeMask = GLSET_UPDATE | GLSET_VIEW_FLAGS;
        showing.viewFlags = view->GetViewFlag() | VIEWFLAG_SHOW_SELECTED_FACES;
        view->SetViewSettings(&showing);
        view->Invalidate();
    }
    m_mayHaveMarks = true;    // the scene's file may have brought some
    C3DCommand::OnGetFocus(reason, former, result);
}

void C3DSelectFacesCommand::OnLooseFocus(int reason, CZelCommand* next)
{
    m_dragging = false;
    if (GetViewer())
        GetViewer()->Invalidate();
    C3DCommand::OnLooseFocus(reason, next);
}

int C3DSelectFacesCommand::SetCursor(const CPoint& point)
{
    if (!GetManager() || !GetViewer() || GetManager()->IsSingleClick() == CLICK_MIDDLE)
        return C3DViewerControl::SetCursor(point);
    GetViewer()->SetCursor(CURSOR_CROSS);
    return 1;
}

int C3DSelectFacesCommand::OnLButtonDown(unsigned int, const CPoint& point)
{
    if (GetViewer())
        GetViewer()->SetCapture();
    m_dragging = false;
    m_first = m_second = point;
    return 1;
}

void C3DSelectFacesCommand::OnDrag(unsigned int, const CPoint& point)
{
    const bool held = GetManager()->IsSingleClick() == CLICK_LEFT && !GetManager()->IsStaticClick();
    if (!held && !m_dragging)
        return;
    m_dragging = held;    // not after a drag that another window has ended
    m_second = point;
    GetViewer()->Invalidate();
}

int C3DSelectFacesCommand::OnLButtonUp(unsigned int state, const CPoint& point)
{
    if (!GetManager() || !GetViewer() || GetManager()->IsSingleClick() != CLICK_LEFT)
        return 1;
    m_second = point;
    m_dragging = false;
    MarkFaces(state, GetManager()->IsStaticClick());
    GetViewer()->Invalidate();
    return 1;
}

int C3DSelectFacesCommand::OnLButtonDblClk(unsigned int, const CPoint&) { return 1; }

/// With the pixels of both corners, as far as they are in the window.
CRect C3DSelectFacesCommand::GetBand() const
{
    const CRect client = GetViewer()->GetClientRect();
    return {std::clamp(std::min(m_first.x, m_second.x), 0, client.right), std::clamp(std::min(m_first.y, m_second.y), 0, client.bottom),
            std::clamp(std::max(m_first.x, m_second.x) + 1, 0, client.right),
            std::clamp(std::max(m_first.y, m_second.y) + 1, 0, client.bottom)};
}

void C3DSelectFacesCommand::MarkFaces(unsigned int state, bool click)
{
    CRect band = GetBand();
    if (click)
        band.right = band.left;
    else if (band.Width() <= 0 || band.Height() <= 0)
        return;    // beside the window
    CXArray<C3DSceneNode*> nodes;
    GetViewer()->SelectFacesFromRect(nodes, static_cast<unsigned int>(band.left), static_cast<unsigned int>(band.top),
                                     static_cast<unsigned int>(band.Width()), static_cast<unsigned int>(band.Height()),
                                     state & INPUT_CTRL ? GLSELECT_TOGGLE : GLSELECT_DEFAULT, VIEW_FACE_MARKED);
    m_mayHaveMarks = true;
    if (Get3DFrameWnd())
        Get3DFrameWnd()->NodeSelectionChanged();
}

void C3DSelectFacesCommand::OnDraw(CDC*)
{
    if (m_dragging && GetViewer() && GetManager() && GetManager()->IsClick())
        COverlay2D(*GetViewer()).DrawBand(GetBand());
}

bool C3DSelectFacesCommand::AreFacesMeant(const C3DScene* scene)
{
    if (!scene || !m_mayHaveMarks || (GetManager()->GetCurrentCommand() != this && scene->IsNodeSelected()))
        return false;
    m_mayHaveMarks = HasMarkedFaces(*scene);    // none: menus need not look again and again
    return m_mayHaveMarks;
}
