#include "viewer/BaseTree.h"

#include "viewer/FrameViewer.h"
#include "windows/WindowSystem.h"

C3DBaseTreeWnd::C3DBaseTreeWnd(C3DFrameViewer* frame) : C3DCallbackWnd(0), m_frame(frame) {}

C3DBaseTreeWnd::~C3DBaseTreeWnd()
{
    if (m_frame)
        m_frame->AddCallbackWnd(this, false);
}

void C3DBaseTreeWnd::SceneChanged(C3DScene* scene, unsigned int, const CSceneChangeData&) { m_scene = scene; }

void C3DBaseTreeWnd::Close()
{
    m_scene = nullptr;
    m_frame = nullptr;
    DeleteAllItems();
}

void C3DBaseTreeWnd::BeginCheckStateChange()
{
    if (m_checkDepth++ == 0 && m_frame)
        m_frame->LockWindow();
}

// The others hear of it while the view is still locked, so that all of it ends in one update.
void C3DBaseTreeWnd::EndCheckStateChange()
{
    if (m_checkDepth > 1 || !m_frame) {
        m_checkDepth--;
        return;
    }
    const unsigned int update = DoCheckStateChange();
    m_frame->NodeDisplayChanged();
    m_checkDepth = 0;
    m_frame->UpdateView(static_cast<int>(update));
    m_frame->UnlockWindow();
}

void C3DBaseTreeWnd::ShowRightMenu(HTREEITEM, const CPoint& screen)
{
    CCustomMenu menu;
    FillRightMenu(menu);
    if (const unsigned int id = GetWindowSystem().TrackPopup(this, menu, screen))
        OnCommand(id);
}
