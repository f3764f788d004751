#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "render/GLViewSettings.h"
#include "render/ViewHost.h"
#include "render/ViewProfile.h"
#include "scene/Forward.h"
#include "viewer/CallbackWnd.h"
#include "viewer/DocumentFrame.h"

class C3DView;
class CRenderStatusBar;

/// Bits of a frame; see CCustomFrameWnd::SetFrameFlag.
enum FrameFlag : unsigned int {
    FRAME_SILENT_READ = 16,    ///< files are read without questions
    FRAME_NO_SCENE_LIST = 256,
    FRAME_STATUS_FIXED = 1024,    ///< the status bar doesn't follow the scene
    FRAME_SCENE_LIST_SHOWN = 4096,
    FRAME_SCENE_LIST_WANTED = 0x10000,
    FRAME_NO_RECENT_FILES = 0x20000,    ///< opening a file isn't remembered
};

/// The main window of the viewer: the scene, its view, every command, the windows that follow the scene.
///
/// A host makes one, calls Create, ShowFrame, and SetCurrentScene or OpenFile; then IWindowSystem::Run. It can derive from it to add commands.
class ZEL_API C3DFrameViewer : public CDocumentFrameWnd, public IViewHost {
public:
    C3DFrameViewer();
    ~C3DFrameViewer() override;
    const CXRuntimeClass* GetRuntimeClassDescriptor() const override;
    static const CXRuntimeClass* GetThisRuntimeClassDescriptor();
    static CXObject* CreateObject();

    void InitToolbars() override;
    void CreateMainMenu() override;
    void InitMenu() override;
    CCustomFramePanels* CreateFramePanels() override;
    CCustomDockablePane* CreatePanel(unsigned int id) override;
    bool LoadWindowPos(CWindowPlacement& placement) override;
    void SaveWindowPos() override;
    void OnDropFiles(const std::vector<CXTString<wchar_t>>& files) override;
    virtual CXTString<wchar_t> GetClassNameW();
    void AddCommands() override;
    bool RestoreLastCommand() override;
    virtual CXTString<wchar_t> GetIdleMessage();
    CommandResult AskForSave(bool reserved, bool noCancel) override;
    CCustomToolbar* GetCommandToolbar(unsigned int group) override;
    CCustomMenu* GetCommandMenu(unsigned int group) override;
    void OnFilesRemoved() override;
    void OnSetCurrentFilePath(const CXTString<wchar_t>& path) override;
    void OnSetEmptyFile() override;
    CDocumentFileList* CreateDocumentList() override;
    bool LoadCurrentFile(const CXTString<wchar_t>& path, bool flag) override;
    virtual void ShowProperties(unsigned int material);
    virtual void ShowProperties(C3DSceneNode* node);
    virtual void NodeSelectionChanged();
    virtual void NodeDisplayChanged();
    /// Tells callbacks, status bar and view. `what`: SceneChange; `update`: the view is brought up to date.
    virtual void SceneChanged(unsigned int what, const CSceneChangeData& data, bool update);
    virtual void ToolbarsSizeChanged();
    virtual void OnDraw(CDC* dc);
    virtual CRenderStatusBar* CreateStatusBar();
    virtual void OnSceneChanged();

    int OnCreate() override;
    void OnDestroy() override;
    void OnPaneShown(unsigned int id, bool shown) override;
    /// Keys that users bring along besides those of the commands: Home fits the scene.
    bool OnKey(unsigned int key, unsigned int state) override;
    CXTString<wchar_t> GetKeysOf(CZelCommand& command) const override;
    /// With Ctrl they join the current scene.
    void OnDropFiles(const std::vector<CXTString<wchar_t>>& files, unsigned int state, const CPoint& point) override;
    void UpdateStatusBar() override;

    /// Adds it, at the place of the last one whose priority isn't lower and else at the head, or with `add` false takes it out; null only counts.
    /// The number of callbacks.
    int AddCallbackWnd(C3DCallbackWnd* window, bool add);
    const std::vector<C3DCallbackWnd*>& GetCallbacks() const { return m_callbacks; }

    C3DScene* GetCurrentScene() const { return m_scene; }
    /// Takes a reference. Nothing for null and for the scene that is current. `fit`: the view shows all of it.
    void SetCurrentScene(C3DScene* scene, bool fit);
    /// The file's scene joins the current one; false, with the reason told, when it can't be read.
    bool MergeFile(const CXTString<wchar_t>& path);
    C3DView* Get3DView() const { return m_view; }
    /// Before Create.
    void SetViewClass(const CXRuntimeClass* view) { m_viewClass = view; }

    void ChangeViewMode(unsigned int mode);
    void SetViewFlags(unsigned int flags, bool on);
    bool IsSettingsFlagSet(Settings3DFrame flag) const;
    void SetSettingsFlag(Settings3DFrame flag, bool on);
    static void ModifyDefaultSettings(Settings3DFrame flag, bool on);
    void LockWindow();
    void UnlockWindow();
    void UpdateView(int flags);
    void ShowObjects(_LeftBarShowMode mode);
    void ShowMaterials(_LeftBarShowMode mode);
    void ShowThumbnails(_LeftBarShowMode mode);
    CRenderStatusBar* GetRenderStatusBar() const { return m_statusBar.get(); }

    // IViewHost

    void ViewChangedScene(unsigned int what, C3DSceneNode* node, unsigned int material, bool redraw) override;
    void ViewDrawn(CDC* dc) override;

private:
    struct Commands;

    /// Calls what is still in the list, as one that is called may take others out.
    template <class CALL> void TellCallbacks(CALL call)
    {
        for (C3DCallbackWnd* const window : std::vector<C3DCallbackWnd*>(m_callbacks))
            if (std::find(m_callbacks.begin(), m_callbacks.end(), window) != m_callbacks.end())
                call(*window);
    }
    bool CreateView();
    void DropView();
    void ShowPanel(unsigned int id, _LeftBarShowMode mode);

    C3DScene* m_scene = nullptr;
    C3DView* m_view = nullptr;    ///< the frame's viewer
    const CXRuntimeClass* m_viewClass = nullptr;
    std::unique_ptr<CRenderStatusBar> m_statusBar;
    std::vector<C3DCallbackWnd*> m_callbacks;
    CCustomToolbar m_fileBar, m_toolsBar, m_viewBar;
    std::unique_ptr<Commands> m_commands;
};
