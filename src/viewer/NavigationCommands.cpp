#include "viewer/NavigationCommands.h"

#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "tools/FourCC.h"
#include "windows/CommandMgr.h"

// With the mouse

C3DRotateCommand::C3DRotateCommand() : C3DViewerControl(FourCC("ROTA"), true, ZONE_NONE, 0, 9624) {}

void C3DRotateCommand::OnDrag(unsigned int state, const CPoint& point)
{
    if (GetManager()->IsFlagSet(CLICK_LEFT))
        RotateDrag(state, point);
    else
        UpdateZone(point);
}

C3DMoveCommand::C3DMoveCommand() : C3DViewerControl(FourCC("MOVE"), false, ZONE_PAN) {}

void C3DMoveCommand::OnDrag(unsigned int state, const CPoint& point)
{
    if (GetManager()->IsSingleClick() == CLICK_LEFT)
        PanDrag(state, point);
}

C3DZoomCommand::C3DZoomCommand() : C3DViewerControl(FourCC("ZOOM"), false, ZONE_ZOOM) {}

void C3DZoomCommand::OnDrag(unsigned int state, const CPoint& point)
{
    if (GetManager()->IsSingleClick() == CLICK_LEFT)
        ZoomDrag(state, point);
}

// By keys

CommandResult C3DViewStepCommand::OnApplyCommand()
{
    C3DView* const view = GetViewer();
    if (!view)
        return COMMAND_DECLINED;
    GlViewSettings settings;
    settings.changeMask = GLSET_UPDATE;
    settings.matrix = view->GetViewSettings()->matrix;
    settings.SetCurrentCamera(view->GetViewSettings()->GetCurrentCamera());
    Step(settings);
    view->SetViewSettings(&settings);
    return COMMAND_DONE;
}

void C3DRotateStepCommand::Step(GlViewSettings& settings) const
{
    constexpr double STEP = 0.17453292519943295;    // 10 degrees
    settings.changeMask |= GLSET_MATRIX;
    TurnMatrix(settings.matrix, m_axis, m_sense * STEP);
}

C3DRotateLeftCommand::C3DRotateLeftCommand() : C3DRotateStepCommand(FourCC("ROTL"), {0, 0, 1}, 1) {}
C3DRotateRightCommand::C3DRotateRightCommand() : C3DRotateStepCommand(FourCC("ROTR"), {0, 0, 1}, -1) {}
C3DRotateUpCommand::C3DRotateUpCommand() : C3DRotateStepCommand(FourCC("ROTU"), {1, 0, 0}, 1) {}
C3DRotateBottomCommand::C3DRotateBottomCommand() : C3DRotateStepCommand(FourCC("ROTB"), {1, 0, 0}, -1) {}

void C3DMoveStepCommand::Step(GlViewSettings& settings) const
{
    settings.changeMask |= GLSET_TRANSLATION;
    settings.matrix.m[m_row][3] += m_sense * GetViewer()->GetViewSettings()->sceneSize / 20;
}

C3DMoveLeftCommand::C3DMoveLeftCommand() : C3DMoveStepCommand(FourCC("MOVL"), 0, -1) {}
C3DMoveRightCommand::C3DMoveRightCommand() : C3DMoveStepCommand(FourCC("MOVR"), 0, 1) {}
C3DMoveUpCommand::C3DMoveUpCommand() : C3DMoveStepCommand(FourCC("MOVU"), 1, 1) {}
C3DMoveBottomCommand::C3DMoveBottomCommand() : C3DMoveStepCommand(FourCC("MOVB"), 1, -1) {}

void C3DZoomStepCommand::Step(GlViewSettings& settings) const
{
    settings.changeMask |= GLSET_CAMERA | GLSET_TRANSLATION;
    settings.matrix.m[2][3] = static_cast<float>(settings.matrix.m[2][3] * m_distance);
    C3DCamera& camera = *settings.GetCurrentCamera();
    camera.SetZoom(camera.GetZoom() * m_zoom);
}

C3DZoomInCommand::C3DZoomInCommand() : C3DZoomStepCommand(FourCC("ZOOI"), 0.8, 1.2) {}
C3DZoomOutCommand::C3DZoomOutCommand() : C3DZoomStepCommand(FourCC("ZOOO"), 1.2, 0.8) {}

// Fitting

C3DResetZoomCommand::C3DResetZoomCommand() : C3DViewStepCommand(FourCC("RSZO")) {}

void C3DResetZoomCommand::Step(GlViewSettings& settings) const
{
    if (settings.IsOrthographic()) {
        settings.changeMask |= GLSET_CAMERA;
        settings.GetCurrentCamera()->SetZoom(1);
    } else
        settings.changeMask |= GLSET_FIT;
}

C3DZoomSelectionCommand::C3DZoomSelectionCommand() : C3DViewStepCommand(FourCC("ZOSL")) {}

void C3DZoomSelectionCommand::Step(GlViewSettings& settings) const
{
    const C3DScene* const scene = GetViewer()->GetScene();
    settings.changeMask |= GLSET_FIT;
    if (scene && scene->IsNodeSelected())
        settings.changeMask |= GLSET_FIT_SELECTION;
}
