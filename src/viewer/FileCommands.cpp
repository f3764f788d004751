#include "viewer/FileCommands.h"

#include "files/FileDialog.h"
#include "files/FileExt.h"
#include "io/3DIo.h"
#include "scene/3DScene.h"
#include "tools/CaughtException.h"
#include "tools/FilePath.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "viewer/LateProgress.h"
#include "viewer/Texts.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int NATIVE_CLASS = FourCC("3DIF");

/// The file that a script or a host names; empty for a user, who is asked.
Text GetGivenPath(C3DCommand& command)
{
    Text path;
    command.GetCustomData().GetString(PARAM_PATH, path);
    return path;
}

void GiveScene(C3DCommand& command, C3DFrameViewer& frame) { command.GetOutputData().SetPointer(DATA_SCENE, frame.GetCurrentScene()); }

/// What a file dialog proposes for what is shown: its own name, as a native file when its format can't be written.
CFileNameSpec GetProposedName(const Text& path)
{
    CFileExt format, native;
    const bool writable = fileGetExtensionInfo(CFileNameSpec(path).GetClass(), &format) && format.CanWrite();
    if (path.IsEmpty() || writable || !fileGetExtensionInfo(NATIVE_CLASS, &native))
        return path;
    return CFileNameSpec(fileStripExtension(path) + native.GetMainExtension());
}

}

C3DOpen::C3DOpen() : C3DCommand(FourCC("OPEN")) {}

CommandResult C3DOpen::OnApplyCommand()
{
    C3DFrameViewer* const frame = Get3DFrameWnd();
    if (!frame)
        return COMMAND_DECLINED;
    if (const Text path = GetGivenPath(*this); !path.IsEmpty())
        return OpenUnasked(path);
    if (const CommandResult refused = frame->AskForSave(false, false); refused != COMMAND_DONE)
        return refused;
    CXArray<Text> names;
    if (!fileOpenFiles(frame, names, FILE_FAMILY_3D, FILTER_ALL)) {
        frame->KeepChanges();
        return COMMAND_CANCELLED;
    }
    // The first one that can be read is shown; those behind it join the list.
    unsigned int mode = OPEN_REPLACE;
    for (int i = 0; i < names.GetSize(); ++i)
        if (frame->OpenFile(names[i], mode))
            mode = OPEN_ADD;
    return mode == OPEN_ADD ? COMMAND_DONE : COMMAND_DECLINED;
}

CommandResult C3DOpen::OpenUnasked(const Text& path)
{
    if (!Get3DFrameWnd()->OpenFile(path, OPEN_REPLACE))
        return COMMAND_DECLINED;
    GiveScene(*this, *Get3DFrameWnd());
    return COMMAND_DONE;
}

C3DSaveAs::C3DSaveAs() : C3DCommand(FourCC("SAVS")) {}

void C3DSaveAs::UpdateState() { SetState(COMMAND_ENABLED, GetFrameScene() && Get3DFrameWnd()->SaveEnabled()); }

CommandResult C3DSaveAs::OnApplyCommand()
{
    C3DFrameViewer* const frame = Get3DFrameWnd();
    C3DScene* const scene = GetFrameScene();
    if (!scene)
        return COMMAND_NO_SCENE;
    if (!frame->SaveEnabled())
        return COMMAND_DONE;

    const Text path = GetGivenPath(*this);
    const bool asks = path.IsEmpty();
    C3DIo io(asks ? GetProposedName(frame->GetCurrentFilePath()) : CFileNameSpec(path), 0, frame);
    if (asks && !io.FileDialogBox(FILE_FAMILY_3D, 0))
        return COMMAND_CANCELLED;
    bool saved = false;
    {
        const CLateProgress progress(frame, FormatText(TEXT_SAVING, io.GetFileName()));
        CatchAll([&] { saved = io.Save(asks, scene, nullptr); });    // told by the saving
    }
    if (!saved && io.GetLastResult() == IORESULT_CANCELLED)
        return COMMAND_CANCELLED;
    if (!saved) {
        if (io.GetLastResult() == IORESULT_NO_PARSER)    // which the saving leaves to be told
            io.ReportIoError(nullptr, IoLogInfo::FAILURE);
        frame->SetHelpText(LoadText(TEXT_NOT_SAVED));
        return COMMAND_DECLINED;
    }
    frame->DocumentSaved();
    const bool opened = frame->OpenFile(io.GetFullName(), OPEN_SAVED);
    frame->SetHelpText(LoadText(opened ? TEXT_SAVED : TEXT_SAVED_UNREADABLE));
    GiveScene(*this, *frame);
    return COMMAND_DONE;
}

C3DCloseViewer::C3DCloseViewer() : C3DCommand(FourCC("CLOS")) {}

CommandResult C3DCloseViewer::OnApplyCommand()
{
    if (!Get3DFrameWnd())
        return COMMAND_DECLINED;
    Get3DFrameWnd()->PostCloseWindow();
    return COMMAND_DONE;
}

C3DFileStepCommand::C3DFileStepCommand(unsigned int id, int step) : C3DCommand(id), m_step(step) {}

void C3DFileStepCommand::UpdateState() { SetState(COMMAND_ENABLED, Get3DFrameWnd() && !Get3DFrameWnd()->GetCurrentFilePath().IsEmpty()); }

CommandResult C3DFileStepCommand::OnApplyCommand()
{
    return Get3DFrameWnd() && Get3DFrameWnd()->OpenNextFile(m_step) ? COMMAND_DONE : COMMAND_DECLINED;
}

C3DNextFile::C3DNextFile() : C3DFileStepCommand(FourCC("NXFI"), 1) {}
C3DPrevFile::C3DPrevFile() : C3DFileStepCommand(FourCC("PVFI"), -1) {}
