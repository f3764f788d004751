#include "viewer/DocumentFrame.h"

#include <algorithm>

#include "files/FileExt.h"
#include "tools/FilePath.h"
#include "viewer/FolderFiles.h"
#include "viewer/Texts.h"
#include "windows/WindowSystem.h"

// Opening keeps what is shown until the next document is there: the list of files is changed first, because how a document is shown depends on
// their number, and is put back when reading fails.

namespace {

using Text = CXTString<wchar_t>;

// A name that holds wherever the program goes; names that are no file here (addresses, mistakes) stay as they are.
Text FullPath(const Text& path) { return fileExists(path) ? fileMakeAbsolutePath(fileGetCurrentDirectory(), path) : path; }

}

CDocumentFrameWnd::CDocumentFrameWnd(unsigned int fullScreenCommand) : CCommandFrameWnd(fullScreenCommand) {}

CDocumentFrameWnd::~CDocumentFrameWnd() = default;

CDocumentFileList* CDocumentFrameWnd::GetFileList()
{
    if (!m_files)
        m_files.reset(CreateDocumentList());
    return m_files.get();
}

int CDocumentFrameWnd::GetFileNbr() const { return m_files ? m_files->GetFileNbr() : 0; }

bool CDocumentFrameWnd::OpenFile(const Text& path, unsigned int mode)
{
    if (m_loading)
        return false;
    const Text full = FullPath(path);
    if (mode == OPEN_SAVED)
        return TakeSavedFile(full);
    if (mode == OPEN_ADD && GetFileNbr() > 0) {
        if (GetFileList()->FindFile(full) < 0)
            OnInsertFile(GetFileList()->GetFile(GetFileList()->AddFile(full)));
        return true;
    }
    if (mode == OPEN_DROPPED && AskForSave(false, false) != COMMAND_DONE)
        return false;
    return ReplaceFiles(full);
}

bool CDocumentFrameWnd::ReplaceFiles(const Text& path)
{
    CDocumentFileList& list = *GetFileList();
    const std::vector<Text> former = list.GetFiles();
    list.SetFiles({path});
    if (!Load(path)) {
        list.SetFiles(former);
        return false;
    }
    for (const Text& file : former)
        OnRemoveFile(file);
    OnInsertFile(path);
    return true;
}

bool CDocumentFrameWnd::Load(const Text& path)
{
    OnBeforeChangingFile();
    // What is given up unsaved, and what is opened once more, comes from disk next time.
    if (m_modified || m_givenUp || path == m_currentPath)
        GetFileList()->RemoveFromCache(m_currentPath);
    const CLoadingScope loading(*this);
    if (LoadCurrentFile(path, false)) {
        m_lastTried.Empty();
        return true;
    }
    KeepChanges();
    return false;
}

bool CDocumentFrameWnd::TakeSavedFile(const Text& path)
{
    if (!fileExists(path) || !IsReadableFile(path, FILE_FAMILY_3D))
        return false;
    CDocumentFileList& list = *GetFileList();
    const Text former = m_currentPath;
    list.RemoveFromCache(former);
    list.RemoveFromCache(path);
    std::vector<Text> files = list.GetFiles();
    const auto shown = std::find(files.begin(), files.end(), former);
    if (shown == files.end() || former == path) {
        list.AddFile(path);
        OnInsertFile(path);
    } else {
        std::erase(files, path);
        std::replace(files.begin(), files.end(), former, path);
        list.SetFiles(files);
        OnRenameFile(former, path);
    }
    SetCurrentFilePath(path);
    return true;
}

bool CDocumentFrameWnd::ShowFile(int index)
{
    const Text path = GetFileList()->GetFile(index);
    return !m_loading && AskForSave(false, false) == COMMAND_DONE && Load(path);
}

bool CDocumentFrameWnd::OpenNextFile(int step)
{
    if (m_loading)
        return false;
    // A file that could not be read must not bar the way to those behind it.
    const Text from = m_lastTried.IsEmpty() ? m_currentPath : m_lastTried;
    if (GetFileNbr() > 1) {
        const int next = GetFileList()->FindFile(from) + step;
        if (next < 0 || next >= GetFileNbr())
            return false;
        m_lastTried = GetFileList()->GetFile(next);
        return ShowFile(next);
    }
    const Text next = GetNextReadableFile(from, step, FILE_FAMILY_3D);
    if (next.IsEmpty() || AskForSave(false, false) != COMMAND_DONE)
        return false;
    m_lastTried = next;
    return ReplaceFiles(next);
}

void CDocumentFrameWnd::RemoveFiles()
{
    GetFileList()->RemoveAllFiles();
    m_currentPath.Empty();
    m_lastTried.Empty();
    OnFilesRemoved();
    DocumentChanged();
}

void CDocumentFrameWnd::SetCurrentFilePath(const Text& path)
{
    m_currentPath = path;
    OnSetCurrentFilePath(path);
    UpdateTitle();
}

void CDocumentFrameWnd::DocumentChanged() { SetModifiedFlag(false); }
void CDocumentFrameWnd::DocumentSaved() { SetModifiedFlag(false); }

void CDocumentFrameWnd::SetModifiedFlag(bool on)
{
    m_modified = on;
    m_givenUp = false;
    UpdateTitle();
}

void CDocumentFrameWnd::GiveUpChanges()
{
    const bool changes = m_modified || m_givenUp;
    SetModifiedFlag(false);
    m_givenUp = changes;
}

void CDocumentFrameWnd::KeepChanges()
{
    if (m_givenUp)
        SetModifiedFlag(true);
}

bool CDocumentFrameWnd::SaveEnabled() { return true; }
CommandResult CDocumentFrameWnd::AskForSave(bool, bool) { return COMMAND_DONE; }

void CDocumentFrameWnd::OnApplyCommand(CZelCommand* command, bool begin, CommandResult result)
{
    CCommandFrameWnd::OnApplyCommand(command, begin, result);
    if (!begin && result == COMMAND_DONE && command->IsStateSet(COMMAND_CHANGES_DOCUMENT))
        SetModifiedFlag(true);
}

CommandResult CDocumentFrameWnd::RunCommand(CZelCommand* command)
{
    return m_loading ? COMMAND_DECLINED : CCommandFrameWnd::RunCommand(command);
}

void CDocumentFrameWnd::OnCommand(unsigned int id)
{
    if (!m_loading)
        CCommandFrameWnd::OnCommand(id);
}

bool CDocumentFrameWnd::OnClose()
{
    if (m_loading || AskForSave(false, false) != COMMAND_DONE)
        return false;
    if (CCommandFrameWnd::OnClose())
        return true;
    KeepChanges();
    return false;
}

DropEffect CDocumentFrameWnd::GetPreferredDropType(unsigned int state) { return state & INPUT_CTRL ? DROP_ADD : DROP_OPEN; }
bool CDocumentFrameWnd::CanDrop(const Text& path) { return (fileGetKindOf(path) & FILE_FAMILY_3D) != 0; }
bool CDocumentFrameWnd::OnDropCFile(const Text& path, unsigned int mode) { return OpenFile(path, mode); }

DropEffect CDocumentFrameWnd::OnDragOver(const std::vector<Text>& files, unsigned int state, const CPoint&)
{
    const bool takes = !m_loading && std::any_of(files.begin(), files.end(), [&](const Text& file) { return CanDrop(file); });
    return takes ? GetPreferredDropType(state) : DROP_NONE;
}

void CDocumentFrameWnd::OnDropFiles(const std::vector<Text>& files, unsigned int, const CPoint&)
{
    if (!m_loading)
        OnDropFiles(files);
}

void CDocumentFrameWnd::OnDropFiles(const std::vector<Text>& files)
{
    const std::vector<Text> taken = TakeDroppedFiles(files);
    if (taken.empty() || AskForSave(false, false) != COMMAND_DONE)
        return;
    // The first one that can be read replaces what is shown. It was asked for already whether that may go.
    unsigned int mode = OPEN_REPLACE;
    for (const Text& file : taken)
        if (OnDropCFile(file, mode))
            mode = OPEN_ADD;
}

std::vector<Text> CDocumentFrameWnd::TakeDroppedFiles(const std::vector<Text>& files)
{
    std::vector<Text> taken;
    Text refused;
    for (const Text& file : files)
        if (CanDrop(file))
            taken.push_back(file);
        else
            refused += L"\n" + fileStripPath(file);
    if (!refused.IsEmpty())
        GetWindowSystem().ShowMessage(this, LoadText(TEXT_PROGRAM), LoadText(TEXT_FILES_REFUSED) + refused, MESSAGE_OK);
    return taken;
}

void CDocumentFrameWnd::OnBeforeChangingFile() {}
void CDocumentFrameWnd::OnFilesRemoved() {}
void CDocumentFrameWnd::OnInsertFile(const Text&) {}
void CDocumentFrameWnd::OnRemoveFile(const Text&) {}
void CDocumentFrameWnd::OnRenameFile(const Text&, const Text&) {}
void CDocumentFrameWnd::OnSetCurrentFilePath(const Text&) {}
void CDocumentFrameWnd::OnSetEmptyFile() {}

void CDocumentFrameWnd::UpdateTitle()
{
    Text title = fileStripPath(m_currentPath);
    if (title.IsEmpty() && m_modified)
        title = LoadText(TEXT_UNTITLED);
    if (m_modified)
        title += L'*';
    SetTitle(title.IsEmpty() ? LoadText(TEXT_PROGRAM) : title + L" - " + LoadText(TEXT_PROGRAM));
}
