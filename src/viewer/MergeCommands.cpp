#include "viewer/MergeCommands.h"

#include "files/FileDialog.h"
#include "files/FileExt.h"
#include "scene/3DScene.h"
#include "tools/FilePath.h"
#include "tools/FourCC.h"
#include "viewer/3DFileList.h"
#include "viewer/FileCommands.h"
#include "viewer/FrameViewer.h"
#include "viewer/Texts.h"
#include "windows/ProgressDlg.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

// The scenes in a folder, without those below it.
void AddFilesOf(const Text& folder, CXArray<Text>& files)
{
    for (const Text& name : fileList(folder))
        if (const Text path = fileAddSlash(folder) + name; fileGetKindOf(path) == FILE_FAMILY_3D)
            files.Add(path);
}

// As the name of a file, which has no separator at its end.
Text GetFolderName(const Text& folder)
{
    const Text name = fileNormalize(folder), path = fileGetPath(name);
    return fileStripPath(name).IsEmpty() && path.GetLength() > 1 ? path.Left(path.GetLength() - 1) : name;
}

}

C3DMerge::C3DMerge() : C3DMerge(FourCC("MERG"), false) {}
C3DMerge::C3DMerge(unsigned int id, bool byFolder) : C3DCommand(id), m_byFolder(byFolder) {}
C3DMergeFolder::C3DMergeFolder() : C3DMerge(FourCC("MERF"), true) {}

void C3DMerge::UpdateState() { SetState(COMMAND_ENABLED, GetFrameScene() != nullptr); }

CommandResult C3DMerge::OnApplyCommand()
{
    if (!GetFrameScene())
        return COMMAND_DECLINED;
    CXArray<Text> files;
    Text folder;
    if (!ChooseFiles(files, folder) || files.GetSize() == 0)
        return COMMAND_CANCELLED;
    if (m_byFolder && !PrepareTarget(folder))
        return COMMAND_CANCELLED;
    MergeFiles(files);
    return COMMAND_DONE;
}

bool C3DMerge::ChooseFiles(CXArray<Text>& files, Text& folder)
{
    Text path;
    GetCustomData().GetString(PARAM_PATH, path);
    if (path.IsEmpty())
        return m_byFolder ? ChooseFolders(files, folder) : fileOpenFiles(Get3DFrameWnd(), files, FILE_FAMILY_3D, FILTER_ALL);
    if (m_byFolder)
        AddFilesOf(path, files);
    else
        files.Add(path);
    return true;
}

bool C3DMerge::ChooseFolders(CXArray<Text>& files, Text& folder)
{
    constexpr unsigned int FLAGS = 120;
    CSelectFolderDlg dialog(Get3DFrameWnd(), FLAGS);
    dialog.SetFolder(GetFrameScene()->GetFilename().GetPath());
    if (!dialog.DoModal())
        return false;
    folder = dialog.GetFolder();
    for (const Text& chosen : dialog.GetFolders())
        AddFilesOf(chosen, files);
    return true;
}

bool C3DMerge::PrepareTarget(const Text& folder)
{
    C3DFrameViewer& frame = *Get3DFrameWnd();
    if (folder.IsEmpty() ||    // of a script
        GetWindowSystem().ShowMessage(&frame, LoadText(TEXT_PROGRAM), LoadText(TEXT_ASK_TO_REPLACE), MESSAGE_YES_NO) != ANSWER_YES)
        return true;
    if (frame.AskForSave(false, false) != COMMAND_DONE)
        return false;
    C3DScene* const scene = C3DScene::Create();
    scene->SetFilename(CFileNameSpec(GetFolderName(folder)));
    frame.SetCurrentScene(scene, true);
    DeleteMe(scene);
    return true;
}

void C3DMerge::MergeFiles(const CXArray<Text>& files)
{
    constexpr int STATUS_LENGTH = 30;
    C3DFrameViewer& frame = *Get3DFrameWnd();
    const CWaitCursor wait;
    CProgressDlg progress(LoadText(TEXT_MERGING_FILES), &frame);
    progress.SetRange(0, files.GetSize());
    for (int i = 0; i < files.GetSize(); i++) {
        progress.SetStatus(FormatText(TEXT_MERGING_FILE, fileCompactPath(files[i], STATUS_LENGTH)));
        frame.MergeFile(files[i]);
        if (progress.CheckCancelButton())    // what was merged stays
            break;
        progress.SetPos(i + 1, true);
    }
}
