// The scene that a frame shows: where it comes from, and who hears of its changes.

#include <algorithm>

#include "files/FileExt.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/FilePath.h"
#include "viewer/3DFileList.h"
#include "viewer/FrameViewer.h"
#include "viewer/MaterialInfo.h"
#include "viewer/NodeInfo.h"
#include "viewer/RecentFiles.h"
#include "viewer/RenderStatusBar.h"
#include "viewer/Texts.h"
#include "windows/WindowSystem.h"

// The current scene

void C3DFrameViewer::SetCurrentScene(C3DScene* scene, bool fit)
{
    if (!scene || scene == m_scene)
        return;
    DocumentChanged();
    scene->AddRef();
    C3DScene* const former = m_scene;
    m_scene = scene;
    if (m_view)
        m_view->SetScene(scene, fit ? +GLSET_FIT : 0);
    SceneChanged(CHANGED_SCENE, {}, true);
    OnSceneChanged();
    // A scene that a host brings keeps the name that it has; one that was read has that of its file.
    const CXTString<wchar_t> name = scene->GetFilename().GetFullName();
    SetCurrentFilePath(IsLoading() || name.IsEmpty() ? CXTString<wchar_t>(GetCurrentFilePath()) : name);
    DeleteMe(former);    // now that nobody looks at it any more
}

bool C3DFrameViewer::LoadCurrentFile(const CXTString<wchar_t>& path, bool flag)
{
    const bool silent = IsFrameFlagSet(FRAME_SILENT_READ);
    const unsigned int mode = silent ? +READMODE_SILENT : flag ? +READMODE_ASK : 0;
    C3DScene* const scene = static_cast<C3DScene*>(GetFileList()->ReadFile(path, mode, this));
    if (!scene)
        return false;
    if (scene == m_scene) {
        SetCurrentFilePath(path);
        return true;
    }
    const bool fit = GetFileNbr() == 1 || IsSettingsFlagSet(SETTINGS3D_AUTO_FIT);
    InitCurrentFilePath(path);
    SetCurrentScene(scene, fit);
    return true;
}

void C3DFrameViewer::OnSetEmptyFile()
{
    C3DScene* const scene = C3DScene::Create();
    InitCurrentFilePath({});
    SetCurrentScene(scene, true);
    DeleteMe(scene);
}

void C3DFrameViewer::OnFilesRemoved()
{
    C3DScene* const former = m_scene;
    m_scene = nullptr;
    if (m_view) {
        m_view->SetScene(nullptr, 0);
        m_view->Invalidate();
    }
    if (former)
        SceneChanged(CHANGED_SCENE, {}, false);
    DeleteMe(former);
}

void C3DFrameViewer::OnSetCurrentFilePath(const CXTString<wchar_t>& path)
{
    if (m_scene && m_scene->GetFilename().GetFullName() != path)
        m_scene->SetFilename(CFileNameSpec(path));
    if (!IsFrameFlagSet(FRAME_NO_RECENT_FILES) && fileExists(path))
        CRecentFiles::Add(path);
}

// Dropped files

void C3DFrameViewer::OnDropFiles(const std::vector<CXTString<wchar_t>>& files) { CDocumentFrameWnd::OnDropFiles(files); }

void C3DFrameViewer::OnDropFiles(const std::vector<CXTString<wchar_t>>& files, unsigned int state, const CPoint& point)
{
    if (m_scene && !IsLoading() && GetPreferredDropType(state) == DROP_ADD)
        for (const CXTString<wchar_t>& file : TakeDroppedFiles(files))
            MergeFile(file);
    else
        CDocumentFrameWnd::OnDropFiles(files, state, point);
}

bool C3DFrameViewer::MergeFile(const CXTString<wchar_t>& path)
{
    if (!m_scene || IsLoading())
        return false;
    const CLoadingScope loading(*this);
    C3DScene* const other = C3DFileList::ReadScene(path, IsFrameFlagSet(FRAME_SILENT_READ) ? +READMODE_SILENT : 0, this);
    if (!other || !m_scene->Merge(other, nullptr))
        return false;
    SetModifiedFlag(true);
    SceneChanged(CHANGED_NODES, {}, true);
    UpdateView(GLSET_FIT);
    return true;
}

// News

int C3DFrameViewer::AddCallbackWnd(C3DCallbackWnd* window, bool add)
{
    const auto known = std::find(m_callbacks.begin(), m_callbacks.end(), window);
    if (window && known != m_callbacks.end()) {
        if (!add)
            m_callbacks.erase(known);
    } else if (window && add) {
        const auto above = std::find_if(m_callbacks.rbegin(), m_callbacks.rend(),
                                        [&](const C3DCallbackWnd* other) { return other->GetPriority() >= window->GetPriority(); });
        m_callbacks.insert(above == m_callbacks.rend() ? m_callbacks.begin() : above.base() - 1, window);
    }
    return static_cast<int>(m_callbacks.size());
}

void C3DFrameViewer::SceneChanged(unsigned int what, const CSceneChangeData& data, bool update)
{
    TellCallbacks([&](C3DCallbackWnd& window) { window.SceneChanged(m_scene, what, data); });
    if (m_statusBar && !IsFrameFlagSet(FRAME_STATUS_FIXED))
        m_statusBar->SceneChanged(m_scene, what, data);
    if (what == CHANGED_MATERIAL && !data.IsNull()) {
        if (m_view)
            m_view->MaterialChanged(data.material);
        return;
    }
    if (update)
        UpdateView(what == CHANGED_SCENE ? GLSET_FLUSH_ALL : GLSET_UPDATE);
}

void C3DFrameViewer::NodeSelectionChanged()
{
    TellCallbacks([](C3DCallbackWnd& window) { window.NodeSelectionChanged(); });
    UpdateView(GLSET_UPDATE);
}

void C3DFrameViewer::NodeDisplayChanged()
{
    TellCallbacks([](C3DCallbackWnd& window) { window.NodeDisplayChanged(); });
    UpdateView(GLSET_UPDATE);
}

void C3DFrameViewer::OnSceneChanged() {}
void C3DFrameViewer::OnDraw(CDC*) {}

void C3DFrameViewer::ViewChangedScene(unsigned int what, C3DSceneNode* node, unsigned int material, bool redraw)
{
    SceneChanged(what, {node, material}, redraw);
}

void C3DFrameViewer::ViewDrawn(CDC* dc) { OnDraw(dc); }

// Properties

void C3DFrameViewer::ShowProperties(unsigned int material)
{
    if (m_scene)
        CMaterialInfoSheet(m_scene, material, this).DoModal();
}

void C3DFrameViewer::ShowProperties(C3DSceneNode* node)
{
    if (m_scene)
        CNodeInfoSheet(m_scene, node, this).DoModal();
}

// Settings

void C3DFrameViewer::ChangeViewMode(unsigned int mode)
{
    if (!m_view)
        return;
    GlViewSettings settings;
    settings.changeMask = GLSET_UPDATE | GLSET_VIEW_FLAGS;
    settings.viewFlags = (m_view->GetViewFlag() & ~VIEWFLAG_RENDER_MODE) | mode;
    if (settings.viewFlags != m_view->GetViewFlag())
        m_view->SetViewSettings(&settings);
}

void C3DFrameViewer::SetViewFlags(unsigned int flags, bool on)
{
    if (!m_view)
        return;
    GlViewSettings settings;
    settings.changeMask = GLSET_VIEW_FLAGS;
    settings.viewFlags = on ? m_view->GetViewFlag() | flags : m_view->GetViewFlag() & ~flags;
    if (settings.viewFlags != m_view->GetViewFlag())
        m_view->SetViewSettings(&settings);
}

bool C3DFrameViewer::IsSettingsFlagSet(Settings3DFrame flag) const { return (GetViewProfile(PROFILE_SETTINGS) & flag) != 0; }

void C3DFrameViewer::SetSettingsFlag(Settings3DFrame flag, bool on) { ModifyDefaultSettings(flag, on); }

void C3DFrameViewer::ModifyDefaultSettings(Settings3DFrame flag, bool on)
{
    const unsigned int settings = GetViewProfile(PROFILE_SETTINGS);
    SetViewProfile(PROFILE_SETTINGS, on ? settings | flag : settings & ~flag);
}

void C3DFrameViewer::LockWindow()
{
    if (m_view)
        m_view->LockWindow();
}

void C3DFrameViewer::UnlockWindow()
{
    if (m_view)
        m_view->UnlockWindow();
}

void C3DFrameViewer::UpdateView(int flags)
{
    if (m_view)
        m_view->UpdateView(flags);
}
