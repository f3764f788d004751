#include "viewer/PanelCommands.h"

#include "tools/FormatText.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "viewer/Panels.h"
#include "windows/WindowSystem.h"

// Full screen

C3DFullScreenCommand::C3DFullScreenCommand() : C3DCommand(FourCC("FULL")) {}

void C3DFullScreenCommand::UpdateState() { SetState(COMMAND_CHECKED, Get3DFrameWnd() && Get3DFrameWnd()->IsFullScreen()); }

CommandResult C3DFullScreenCommand::OnApplyCommand()
{
    constexpr unsigned int NOTICE = 1, NOTICE_TIME = 3000, TITLE = 5174, HOW_TO_LEAVE = 5210;
    C3DFrameViewer* const frame = Get3DFrameWnd();
    if (!frame)
        return COMMAND_DECLINED;
    frame->ToggleFullScreen();
    if (!frame->IsFullScreen())
        return COMMAND_DONE;
    CNotifyDlg2::ShowDialog(NOTICE, NOTICE_TIME, LoadText(TITLE), FormatText(HOW_TO_LEAVE, GetKeyAccess()), frame);
    frame->AddMessageCallback([frame] { frame->CancelFullScreen(); });
    return COMMAND_DONE;
}

// List of scenes

C3DDisplaySceneCommand::C3DDisplaySceneCommand() : C3DCommand(FourCC("DSSC")) {}

void C3DDisplaySceneCommand::UpdateState()
{
    SetState(COMMAND_CHECKED, Get3DFrameWnd() && Get3DFrameWnd()->IsFrameFlagSet(FRAME_SCENE_LIST_SHOWN));
}

CommandResult C3DDisplaySceneCommand::OnApplyCommand()
{
    C3DFrameViewer* const frame = Get3DFrameWnd();
    if (!frame)
        return COMMAND_DECLINED;
    frame->ShowThumbnails(LEFTBAR_TOGGLE);
    frame->SetFrameFlag(FRAME_SCENE_LIST_WANTED, frame->IsFrameFlagSet(FRAME_SCENE_LIST_SHOWN));
    return COMMAND_DONE;
}

// Lists of objects and materials

C3DShowObjectsCommand::C3DShowObjectsCommand() : C3DCommand(FourCC("SHOB")) {}

void C3DShowObjectsCommand::UpdateState() { SetState(COMMAND_CHECKED, Get3DFrameWnd() && Get3DFrameWnd()->IsPanelShown(PANEL_OBJECTS)); }

CommandResult C3DShowObjectsCommand::OnApplyCommand()
{
    if (!Get3DFrameWnd())
        return COMMAND_DECLINED;
    Get3DFrameWnd()->ShowObjects(LEFTBAR_TOGGLE);
    return COMMAND_DONE;
}

C3DShowMaterialsCommand::C3DShowMaterialsCommand() : C3DCommand(FourCC("SHMA")) {}

void C3DShowMaterialsCommand::UpdateState()
{
    SetState(COMMAND_CHECKED, Get3DFrameWnd() && Get3DFrameWnd()->IsPanelShown(PANEL_MATERIALS));
}

CommandResult C3DShowMaterialsCommand::OnApplyCommand()
{
    if (!Get3DFrameWnd())
        return COMMAND_DECLINED;
    Get3DFrameWnd()->ShowMaterials(LEFTBAR_TOGGLE);
    return COMMAND_DONE;
}
