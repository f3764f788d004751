#pragma once

#include <memory>

#include "viewer/DocumentFileList.h"
#include "windows/CommandFrame.h"

/// What OpenFile does with a file.
enum OpenFileMode : unsigned int {
    OPEN_REPLACE = 0,    ///< shows it; the list of files is this file alone
    OPEN_ADD = 2,        ///< puts it at the end of the list, and shows it when nothing is shown
    OPEN_DROPPED = 6,    ///< as OPEN_REPLACE, after asking to save what was changed
    OPEN_SAVED = 15,     ///< what is shown was saved there: it gets that name, and nothing is read
};

/// A frame that shows one of the files that it has open.
class ZEL_API CDocumentFrameWnd : public CCommandFrameWnd {
public:
    explicit CDocumentFrameWnd(unsigned int fullScreenCommand = 0);
    ~CDocumentFrameWnd() override;

    // Files

    /// `mode`: OpenFileMode. False when it can't be read, or reading was cancelled, and while another file is being read: what was shown stays. The
    /// reason is told.
    bool OpenFile(const CXTString<wchar_t>& path, unsigned int mode);
    /// Shows a file that is in the list.
    bool ShowFile(int index);
    /// The next or former (`step` -1) file of the list, or of the folder when the list has only one. False when there is none.
    bool OpenNextFile(int step);
    /// Forgets all files, and shows none.
    void RemoveFiles();
    /// A file is being read: commands, files and the end of the window are declined.
    bool IsLoading() const { return m_loading; }
    int GetFileNbr() const;
    CDocumentFileList* GetFileList();
    const CXTString<wchar_t>& GetCurrentFilePath() const { return m_currentPath; }
    void SetCurrentFilePath(const CXTString<wchar_t>& path);

    // Changes of the document

    /// Another document is shown: nothing of it has changed yet.
    void DocumentChanged();
    void DocumentSaved();
    bool IsDocumentModified() const { return m_modified; }
    void SetModifiedFlag(bool on);
    /// The user wants the changes no more: unmodified until the document goes, or until KeepChanges, when it stays after all.
    void GiveUpChanges();
    void KeepChanges();
    virtual bool SaveEnabled();
    /// Before the document goes: 0 when it may, COMMAND_CANCELLED or COMMAND_DECLINED when not. `noCancel`: the user can only say yes or no.
    virtual CommandResult AskForSave(bool reserved, bool noCancel);

    // Dropped files

    virtual DropEffect GetPreferredDropType(unsigned int state);
    virtual bool CanDrop(const CXTString<wchar_t>& path);
    virtual bool OnDropCFile(const CXTString<wchar_t>& path, unsigned int mode);
    using CWnd::OnDropFiles;
    virtual void OnDropFiles(const std::vector<CXTString<wchar_t>>& files);

    // What derived frames do

    virtual CDocumentFileList* CreateDocumentList() = 0;
    virtual bool LoadCurrentFile(const CXTString<wchar_t>& path, bool flag) = 0;
    virtual void OnBeforeChangingFile();
    virtual void OnFilesRemoved();
    virtual void OnInsertFile(const CXTString<wchar_t>& path);
    virtual void OnRemoveFile(const CXTString<wchar_t>& path);
    virtual void OnRenameFile(const CXTString<wchar_t>& from, const CXTString<wchar_t>& to);
    virtual void OnSetCurrentFilePath(const CXTString<wchar_t>& path);
    virtual void OnSetEmptyFile();

    DropEffect OnDragOver(const std::vector<CXTString<wchar_t>>& files, unsigned int state, const CPoint& point) override;
    void OnDropFiles(const std::vector<CXTString<wchar_t>>& files, unsigned int state, const CPoint& point) override;
    bool OnClose() override;
    using CCommandFrameWnd::RunCommand;
    CommandResult RunCommand(CZelCommand* command) override;
    /// What commands change (COMMAND_CHANGES_DOCUMENT) is noted here.
    void OnApplyCommand(CZelCommand* command, bool begin, CommandResult result) override;
    void OnCommand(unsigned int id) override;

protected:
    /// While it lives the frame is loading.
    class CLoadingScope {
    public:
        explicit CLoadingScope(CDocumentFrameWnd& frame) : m_frame(frame) { frame.m_loading = true; }
        ~CLoadingScope() { m_frame.m_loading = false; }
        CLoadingScope(const CLoadingScope&) = delete;
        CLoadingScope& operator=(const CLoadingScope&) = delete;

    private:
        CDocumentFrameWnd& m_frame;
    };
    /// Of the document that comes next; nobody is told.
    void InitCurrentFilePath(const CXTString<wchar_t>& path) { m_currentPath = path; }
    /// Those that can be opened; tells of the others.
    std::vector<CXTString<wchar_t>> TakeDroppedFiles(const std::vector<CXTString<wchar_t>>& files);
    /// Title of the window: the file's name, a star when changed, the program's name.
    void UpdateTitle();

private:
    bool ReplaceFiles(const CXTString<wchar_t>& path);
    bool Load(const CXTString<wchar_t>& path);
    bool TakeSavedFile(const CXTString<wchar_t>& path);

    std::unique_ptr<CDocumentFileList> m_files;
    CXTString<wchar_t> m_currentPath, m_lastTried;
    bool m_modified = false, m_givenUp = false, m_loading = false;
};
