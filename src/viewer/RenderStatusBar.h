#pragma once

#include "viewer/CallbackWnd.h"
#include "windows/StatusBar.h"

class C3DFrameViewer;

/// Counts of the scene, its frame and unit, and the help text.
class ZEL_API CRenderStatusBar : public CCommandStatusBar {
public:
    enum Pane { PANE_POINTS, PANE_FACES, PANE_FRAME, PANE_UNIT, PANE_HELP };

    void OnInit() override;
    /// Lays the panes out and fills them.
    void SetHelpBar(C3DScene* scene);
    void SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data);
    /// Numbers of points and faces alone.
    void SetSceneInfo(unsigned int points, unsigned int faces);
};
