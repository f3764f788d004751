#pragma once

#include "scene/Forward.h"
#include "viewer/CallbackWnd.h"
#include "windows/CustomTree.h"

class C3DFrameViewer;

/// A list of a frame's scene in a docked pane: what changes in the scene reaches it, and what the user changes in it goes back to the scene, the
/// frame and the view.
class ZEL_API C3DBaseTreeWnd : public CCustomTree, public C3DCallbackWnd {
public:
    explicit C3DBaseTreeWnd(C3DFrameViewer* frame);
    ~C3DBaseTreeWnd() override;    ///< leaves the frame's callbacks

    /// Null once the frame is gone.
    C3DFrameViewer* GetFrame() const { return m_frame; }
    C3DScene* GetScene() const { return m_scene; }

    /// Many checks in one redraw: the view waits from the first of these to the last of those, which brings it up to date.
    void BeginCheckStateChange() override;
    void EndCheckStateChange() override;
    void ShowRightMenu(HTREEITEM item, const CPoint& screen) override;
    /// Keeps the scene.
    void SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data) override;
    void Close() override;

protected:
    /// Carries the new checks to the scene; what the view has to do then (_GLSET_FLAGS).
    virtual unsigned int DoCheckStateChange() = 0;
    /// Entries of the menu of a right click; the chosen one goes to OnCommand.
    virtual void FillRightMenu(CCustomMenu& menu) = 0;
    bool IsChangingChecks() const { return m_checkDepth > 0; }

private:
    C3DFrameViewer* m_frame;
    C3DScene* m_scene = nullptr;
    int m_checkDepth = 0;
};
