// The pages of folders.

#include <algorithm>

#include "render/View.h"
#include "scene/Preferences.h"
#include "tools/Array.h"
#include "viewer/FrameViewer.h"
#include "viewer/PreferencePages.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;
using Paths = std::vector<Text>;

enum : unsigned int {
    TEXT_TEXTURE_PATHS = 9903,
    TEXT_LW_PATHS,
    TEXT_ADD = 9924,
    TEXT_REMOVE,
};

Text Lower(Text text)
{
    text.MakeLower();
    return text;
}

bool IsListed(const Paths& paths, const Text& folder)
{
    return std::any_of(paths.begin(), paths.end(), [&](const Text& path) { return Lower(path) == Lower(folder); });
}

Paths ToVector(const CXArray<Text>& paths)
{
    Paths vector;
    for (int i = 0; i < paths.GetSize(); i++)
        vector.push_back(paths[i]);
    return vector;
}

CXArray<Text> ToArray(const Paths& paths)
{
    CXArray<Text> array;
    for (const Text& path : paths)
        array.Add(path);
    return array;
}

}

CPathPage::CPathPage(CRenderSheet& sheet, unsigned int titleId, unsigned int firstId) : CPreferencePage(sheet, titleId, {}), m_list(firstId)
{
    constexpr int LINES = 10;
    Add(CONTROL_LIST, m_list, Text()).height = LINES;
    Add(CONTROL_BUTTON, m_list + 1, GetText(TEXT_ADD));
    Add(CONTROL_BUTTON, m_list + 2, GetText(TEXT_REMOVE), true);
}

void CPathPage::OnInit()
{
    Find(m_list)->items = m_shown = GetPaths();
    OnControl(m_list);
}

void CPathPage::OnControl(unsigned int id)
{
    if (id == m_list + 1)
        AddFolders();
    else if (id == m_list + 2)
        RemoveFolder();
    Find(m_list + 2)->enabled = Find(m_list)->selected >= 0;
}

void CPathPage::AddFolders()
{
    CControl& list = *Find(m_list);
    CSelectFolderDlg chooser(&m_sheet.GetFrame(), 0);
    if (list.selected >= 0)
        chooser.SetFolder(list.items[static_cast<std::size_t>(list.selected)]);
    if (!chooser.DoModal())
        return;
    for (const Text& folder : chooser.GetFolders()) {
        if (IsListed(list.items, folder))
            continue;
        list.items.insert(list.selected >= 0 ? list.items.begin() + list.selected : list.items.end(), folder);
        if (list.selected >= 0)
            list.selected++;    // the next one goes behind this one, still before the one that is selected
    }
}

void CPathPage::RemoveFolder()
{
    CControl& list = *Find(m_list);
    if (list.selected < 0)
        return;
    list.items.erase(list.items.begin() + list.selected);
    list.selected = std::min(list.selected, static_cast<int>(list.items.size()) - 1);
}

bool CPathPage::OnApply()
{
    const Paths& paths = Find(m_list)->items;
    if (paths == m_shown)
        return true;
    SetPaths(paths);
    m_shown = paths;
    return true;
}

CRenderTexturePath::CRenderTexturePath(CRenderSheet& sheet) : CPathPage(sheet, TEXT_TEXTURE_PATHS, ID_LIST) {}

Paths CRenderTexturePath::GetPaths()
{
    CXArray<Text> paths;
    C3DPreferences::Get3DPreferences().GetTexturePaths(paths, false);
    return ToVector(paths);
}

// Textures that were missing may be found now.
void CRenderTexturePath::SetPaths(const Paths& paths)
{
    C3DPreferences::Get3DPreferences().SetTexturePaths(ToArray(paths));
    m_sheet.GetView().UpdateView(GLSET_UPDATE | GLSET_RELOAD_TEXTURES);
}

CRenderLWPath::CRenderLWPath(CRenderSheet& sheet) : CPathPage(sheet, TEXT_LW_PATHS, ID_LIST) {}

Paths CRenderLWPath::GetPaths()
{
    CXArray<Text> paths;
    C3DPreferences::Get3DPreferences().GetLWPaths(paths, false);
    return ToVector(paths);
}

void CRenderLWPath::SetPaths(const Paths& paths) { C3DPreferences::Get3DPreferences().SetLWPaths(ToArray(paths)); }
