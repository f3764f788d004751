#include "viewer/HelpCommands.h"

#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "viewer/PreferencePages.h"

// The window's own entries of help are sent to it, as if the user had chosen them: they come once this command is over.

static CommandResult Post(C3DFrameViewer* frame, unsigned int id)
{
    if (!frame)
        return COMMAND_DECLINED;
    frame->PostCommand(id);
    return COMMAND_DONE;
}

C3DHelp::C3DHelp() : C3DCommand(FourCC("3HLP")) {}
CommandResult C3DHelp::OnApplyCommand() { return Post(Get3DFrameWnd(), C3DFrameViewer::ID_HELP); }

C3DHelpOn::C3DHelpOn() : C3DCommand(FourCC("3HPO")) {}
CommandResult C3DHelpOn::OnApplyCommand() { return Post(Get3DFrameWnd(), C3DFrameViewer::ID_CONTEXT_HELP); }

C3DPrefsCommand::C3DPrefsCommand() : C3DCommand(FourCC("PREF")) {}
void C3DPrefsCommand::UpdateState() { SetState(COMMAND_ENABLED, Get3DFrameWnd() && GetViewer()); }

CommandResult C3DPrefsCommand::OnApplyCommand()
{
    if (!Get3DFrameWnd() || !GetViewer())
        return COMMAND_DECLINED;
    CRenderSheet(*Get3DFrameWnd(), *GetViewer()).DoModal();
    return COMMAND_DONE;
}
