#include "viewer/RenderStatusBar.h"

#include "scene/3DScene.h"
#include "viewer/FrameViewer.h"
#include "viewer/Texts.h"

namespace {

constexpr unsigned int NO_POPOUT = 0x1000;
constexpr unsigned int COUNTED = CHANGED_POINTS_OF_SCENE | CHANGED_FACES_OF_SCENE | CHANGED_TIME;
constexpr int NUMBER_WIDTH = 100, HELP_WIDTH = 600;

}

void CRenderStatusBar::OnInit()
{
    const C3DFrameViewer* const frame = XDynamicCast<C3DFrameViewer>(GetFrame());
    SetHelpBar(frame ? frame->GetCurrentScene() : nullptr);
}

void CRenderStatusBar::SetHelpBar(C3DScene* scene)
{
    SetPanes({{TEXT_PANE_POINTS, {}, STATUSPANE_FRAMED, NUMBER_WIDTH},
              {TEXT_PANE_FACES, {}, STATUSPANE_FRAMED, NUMBER_WIDTH},
              {TEXT_PANE_FRAME, {}, STATUSPANE_FRAMED, NUMBER_WIDTH},
              {TEXT_PANE_UNIT, {}, STATUSPANE_FRAMED, NUMBER_WIDTH},
              {0, {}, STATUSPANE_STRETCH | NO_POPOUT, HELP_WIDTH}});
    SceneChanged(scene, CHANGED_SCENE, {});
}

void CRenderStatusBar::SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData&)
{
    if (what & (CHANGED_SCENE | CHANGED_NODES | CHANGED_POINTS_OF_SCENE))
        SetPaneText(PANE_POINTS, FormatText(TEXT_PANE_POINTS, scene ? scene->GetPointNbr() : 0));
    if (what & (CHANGED_SCENE | CHANGED_NODES | CHANGED_FACES_OF_SCENE))
        SetPaneText(PANE_FACES, FormatText(TEXT_PANE_FACES, scene ? scene->GetFaceNbr() : 0));
    if (what & (CHANGED_SCENE | CHANGED_TIME))
        SetPaneText(PANE_FRAME, FormatText(TEXT_PANE_FRAME, scene ? scene->GetTickCount() : 0,
                                           scene ? static_cast<int>(scene->GetTimeRange(KEY_ANY).GetLength()) : 1));
    if (what & (CHANGED_SCENE | CHANGED_UNIT))
        SetPaneText(PANE_UNIT, FormatText(TEXT_PANE_UNIT, scene ? scene->GetUnitText(false) : GetUnitText(UNIT_UNDEFINED, false)));
    if (what & COUNTED && GetFrame())
        GetFrame()->UpdateStatus();
}

void CRenderStatusBar::SetSceneInfo(unsigned int points, unsigned int faces)
{
    SetPaneText(PANE_POINTS, FormatText(TEXT_PANE_POINTS, points));
    SetPaneText(PANE_FACES, FormatText(TEXT_PANE_FACES, faces));
}
