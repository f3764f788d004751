#include "viewer/AnimationCommands.h"

#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"

static void ShowTime(C3DFrameViewer* frame, C3DScene& scene, int time)
{
    if (scene.SetCurrentTime(time) && frame)
        frame->SceneChanged(CHANGED_TIME, CSceneChangeData(), true);
}

// Play

static constexpr unsigned int PLAY_TIMER = 1, PLAY_PERIOD = 40;    // milliseconds

C3DPlayCommand::C3DPlayCommand() : C3DCommand(FourCC("PLAY")) {}

void C3DPlayCommand::UpdateState()
{
    const bool plays = IsTimerEnabled(PLAY_TIMER);
    const bool wireframe = !GetViewer() || (GetViewer()->GetViewFlag() & VIEWFLAG_RENDER_MODE) == VIEWFLAG_WIREFRAME;
    SetState(COMMAND_ENABLED, !wireframe || plays);    // what plays can be stopped
    SetState(COMMAND_CHECKED, plays);
}

CommandResult C3DPlayCommand::OnApplyCommand()
{
    if (!IsTimerEnabled(PLAY_TIMER))
        return SetTimer(PLAY_TIMER, PLAY_PERIOD) ? COMMAND_DONE : COMMAND_DECLINED;
    CloseTimer(PLAY_TIMER);
    return COMMAND_DONE;
}

void C3DPlayCommand::OnTimer(unsigned int id)
{
    C3DScene* const scene = GetFrameScene();
    if (id != PLAY_TIMER || !scene)
        return;
    const CTimeRange range = scene->GetTimeRange(KEY_ANY);
    const int time = scene->GetTickCount() + 1;
    ShowTime(Get3DFrameWnd(), *scene, time > range.end ? range.start : time);
}

// Steps

CommandResult C3DFrameStepCommand::OnApplyCommand(C3DScene* scene)
{
    ShowTime(Get3DFrameWnd(), *scene, scene->GetTickCount() + m_step);
    return COMMAND_DONE;
}

C3DNextFrameCommand::C3DNextFrameCommand() : C3DFrameStepCommand(FourCC("NXFR"), 1) {}
C3DPrevFrameCommand::C3DPrevFrameCommand() : C3DFrameStepCommand(FourCC("PRFR"), -1) {}

CommandResult C3DKeyStepCommand::OnApplyCommand(C3DScene* scene)
{
    ShowTime(Get3DFrameWnd(), *scene, scene->GetKeyTime(scene->GetTickCount(), m_lookup, KEY_ANY));
    return COMMAND_DONE;
}

C3DNextKeyframeCommand::C3DNextKeyframeCommand() : C3DKeyStepCommand(FourCC("NXKF"), KEY_AFTER) {}
C3DPrevKeyframeCommand::C3DPrevKeyframeCommand() : C3DKeyStepCommand(FourCC("PRKF"), KEY_BEFORE) {}
