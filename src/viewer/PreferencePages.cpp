#include "viewer/PreferencePages.h"

#include <algorithm>
#include <utility>

#include "render/View.h"
#include "render/ViewProfile.h"
#include "scene/3DScene.h"
#include "scene/Preferences.h"
#include "tools/FormatText.h"
#include "viewer/FrameViewer.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

enum : unsigned int {
    TEXT_NEXT_VIEW = 9406,
    TEXT_TITLE = 9407,
    TEXT_GENERAL = 9900,
    TEXT_COLORS,
    TEXT_TEXTURES,
};

}

// What pages share

CPreferencePage::CPreferencePage(CRenderSheet& sheet, unsigned int titleId, std::vector<FlagBox> boxes)
    : m_sheet(sheet), m_boxes(std::move(boxes))
{
    title = LoadText(titleId);
    hasApply = true;
}

void CPreferencePage::ShowEconomy(bool) {}

Text CPreferencePage::GetText(unsigned int id) { return LoadText(id); }

void CPreferencePage::ShowFlags()
{
    m_shownFlags = m_sheet.GetView().GetViewFlag();
    for (const FlagBox& box : m_boxes)
        Find(box.id)->checked = ((m_shownFlags & box.flag) != 0) != box.inverse;
}

unsigned int CPreferencePage::GetFlags()
{
    unsigned int flags = m_sheet.GetView().GetViewFlag();
    for (const FlagBox& box : m_boxes) {
        const bool on = IsChecked(box.id) != box.inverse;
        if (on != ((m_shownFlags & box.flag) != 0))
            flags = on ? flags | box.flag : flags & ~box.flag;
    }
    return flags;
}

void CPreferencePage::ApplyFlags(unsigned int flags, unsigned int work)
{
    SetViewProfile(PROFILE_VIEWMODE, flags & ~VIEWFLAG_TRANSIENT);
    GlViewSettings settings;
    settings.changeMask = GLSET_VIEW_FLAGS | work;
    settings.viewFlags = flags;
    if (flags != m_sheet.GetView().GetViewFlag())
        settings.changeMask |= GLSET_UPDATE | GLSET_FLUSH_ALL;
    m_sheet.GetView().SetViewSettings(&settings);
    ShowFlags();
}

// General

CRenderGeneralPrefs::CRenderGeneralPrefs(CRenderSheet& sheet)
    : CPreferencePage(sheet, TEXT_GENERAL,
                      {{ID_DOUBLE_SIDED, VIEWFLAG_CULL_BACK, true},
                       {ID_HIDDEN_STIPPLED, VIEWFLAG_HIDDEN_STIPPLED},
                       {ID_SELECTED_FACES, VIEWFLAG_SHOW_SELECTED_FACES},
                       {ID_VERTEX_COLORS, VIEWFLAG_VERTEX_COLORS},
                       {ID_TRANSPARENCY, VIEWFLAG_TRANSPARENCY}})
{
    constexpr int MOST_LEVEL = 4;
    for (unsigned int id = ID_DOUBLE_SIDED; id < ID_PATCH_LEVEL; id++)
        AddText(CONTROL_CHECK, id);
    AddText(CONTROL_SPIN, ID_PATCH_LEVEL).maximum = MOST_LEVEL;
}

void CRenderGeneralPrefs::OnInit()
{
    ShowFlags();
    Find(ID_ALPHA_CUT)->checked = m_alphaCut = GetViewProfile(PROFILE_ALPHA_CUT) != 0;
    Find(ID_EXTENSIONS)->checked = m_extensions = GetViewProfile(PROFILE_PBUFFER) != 0 && GetViewProfile(PROFILE_MULTISAMPLE) != 0;
    Find(ID_SMALL_ICONS)->checked = m_smallIcons = !m_sheet.GetFrame().IsSettingsFlagSet(SETTINGS3D_LARGE_ICONS);
    CControl& level = *Find(ID_PATCH_LEVEL);
    level.number = m_patchLevel = std::min(static_cast<int>(C3DPreferences::Get3DPreferences().GetPatchLevel()), level.maximum);
}

bool CRenderGeneralPrefs::OnApply()
{
    const unsigned int former = m_sheet.GetView().GetViewFlag();
    unsigned int flags = GetFlags();
    if (flags & ~former & VIEWFLAG_VERTEX_COLORS)    // they show on smooth surfaces
        flags = (flags & ~VIEWFLAG_FLAT) | VIEWFLAG_SMOOTH;
    ApplyFlags(flags);
    if (IsChecked(ID_SMALL_ICONS) != m_smallIcons) {
        m_sheet.GetFrame().SetSettingsFlag(SETTINGS3D_LARGE_ICONS, m_smallIcons);
        m_sheet.GetFrame().ToolbarsSizeChanged();
    }
    ApplyPatchLevel();
    const bool showsLater = ApplyProfile();
    OnInit();
    if (showsLater)
        GetWindowSystem().ShowMessage(&m_sheet.GetFrame(), LoadText(TEXT_TITLE), LoadText(TEXT_NEXT_VIEW), MESSAGE_OK);
    return true;
}

bool CRenderGeneralPrefs::ApplyProfile()
{
    const bool alphaCut = IsChecked(ID_ALPHA_CUT), extensions = IsChecked(ID_EXTENSIONS);
    if (alphaCut != m_alphaCut)
        SetViewProfile(PROFILE_ALPHA_CUT, alphaCut);
    if (extensions != m_extensions) {
        SetViewProfile(PROFILE_PBUFFER, extensions);
        SetViewProfile(PROFILE_MULTISAMPLE, extensions);
    }
    return alphaCut != m_alphaCut || extensions != m_extensions;
}

void CRenderGeneralPrefs::ApplyPatchLevel()
{
    const int level = Find(ID_PATCH_LEVEL)->number;
    if (level == m_patchLevel)
        return;
    C3DPreferences::Get3DPreferences().SetPatchLevel(static_cast<unsigned int>(level));
    if (C3DScene* const scene = m_sheet.GetFrame().GetCurrentScene())
        scene->SetPatchLevel(static_cast<unsigned int>(level));
    m_sheet.GetFrame().SceneChanged(CHANGED_POINTS_OF_SCENE | CHANGED_FACES_OF_SCENE, {}, true);
}

// Colours

namespace {

/// A colour: its button, its place in the profile and in the view's settings.
struct ColorRow {
    unsigned int id;
    _VIEW_PROFILE profile;
    CRGBColor GlViewSettings::*color;
};
constexpr ColorRow COLORS[] = {{CRenderColorPrefs::ID_BACKGROUND, PROFILE_BACKGROUND, &GlViewSettings::background},
                               {CRenderColorPrefs::ID_SELECTION, PROFILE_SELECTION_COLOR, &GlViewSettings::selectionColor},
                               {CRenderColorPrefs::ID_WIREFRAME, PROFILE_WIREFRAME_COLOR, &GlViewSettings::wireframeColor},
                               {CRenderColorPrefs::ID_LIGHT, PROFILE_LIGHT_COLOR, &GlViewSettings::lightColor}};

}

CRenderColorPrefs::CRenderColorPrefs(CRenderSheet& sheet) : CPreferencePage(sheet, TEXT_COLORS, {{ID_ECONOMY, VIEWFLAG_ECONOMY}})
{
    for (const ColorRow& row : COLORS)
        AddText(CONTROL_COLOR, row.id);
    AddText(CONTROL_CHECK, ID_ECONOMY);
}

void CRenderColorPrefs::OnInit()
{
    ShowFlags();
    for (const ColorRow& row : COLORS)
        Find(row.id)->color = m_sheet.GetView().GetViewSettings()->*row.color;
}

void CRenderColorPrefs::OnControl(unsigned int id)
{
    if (id == ID_ECONOMY)
        m_sheet.ShowEconomy(IsChecked(id));
}

void CRenderColorPrefs::ShowEconomy(bool on) { Find(ID_ECONOMY)->checked = on; }

bool CRenderColorPrefs::OnApply()
{
    GlViewSettings settings;
    settings.changeMask = GLSET_BACKGROUND | GLSET_WIREFRAME_COLOR | GLSET_SELECTION_COLOR | GLSET_LIGHT_COLOR | GLSET_UPDATE;
    for (const ColorRow& row : COLORS) {
        const CRGBColor& color = settings.*row.color = Find(row.id)->color;
        SetViewProfile(row.profile, color.red | color.green << 8 | color.blue << 16);
    }
    m_sheet.GetView().SetViewSettings(&settings);
    ApplyFlags(GetFlags());
    return true;
}

// Textures

CRenderTexturePrefs::CRenderTexturePrefs(CRenderSheet& sheet)
    : CPreferencePage(sheet, TEXT_TEXTURES,
                      {{ID_TEXTURES, VIEWFLAG_TEXTURE},
                       {ID_ECONOMY, VIEWFLAG_ECONOMY},
                       {ID_PERSPECTIVE, VIEWFLAG_PERSPECTIVE_HINT},
                       {ID_SMOOTH, VIEWFLAG_SMOOTH_TEXTURES}})
{
    constexpr int LEAST_SIDE = 128, MOST_SIDE = 1024;
    for (unsigned int id = ID_TEXTURES; id <= ID_SMOOTH; id++)
        AddText(id == ID_LARGEST ? CONTROL_SPIN : CONTROL_CHECK, id);
    CControl& largest = *Find(ID_LARGEST);
    largest.minimum = LEAST_SIDE;
    largest.maximum = MOST_SIDE;
}

void CRenderTexturePrefs::OnInit()
{
    ShowFlags();
    CControl& largest = *Find(ID_LARGEST);
    const unsigned int side = std::min(GetViewProfile(PROFILE_LOW_RES), static_cast<unsigned int>(largest.maximum));
    largest.number = std::max(static_cast<int>(side), largest.minimum);
    UpdateEnabled();
}

void CRenderTexturePrefs::UpdateEnabled()
{
    for (const unsigned int id : {ID_ECONOMY, ID_PERSPECTIVE, ID_SMOOTH})
        Find(id)->enabled = IsChecked(ID_TEXTURES);
    Find(ID_LARGEST)->enabled = IsChecked(ID_TEXTURES) && IsChecked(ID_ECONOMY);
}

void CRenderTexturePrefs::OnControl(unsigned int id)
{
    if (id == ID_ECONOMY)
        m_sheet.ShowEconomy(IsChecked(id));
    UpdateEnabled();
}

void CRenderTexturePrefs::ShowEconomy(bool on)
{
    Find(ID_ECONOMY)->checked = on;
    UpdateEnabled();
}

bool CRenderTexturePrefs::OnApply()
{
    const unsigned int flags = GetFlags(), side = static_cast<unsigned int>(Find(ID_LARGEST)->number);
    bool reload = ((flags ^ m_sheet.GetView().GetViewFlag()) & VIEWFLAG_ECONOMY) != 0;
    if (flags & VIEWFLAG_ECONOMY) {
        reload |= side != GetViewProfile(PROFILE_LOW_RES);
        SetViewProfile(PROFILE_LOW_RES, side);
    }
    ApplyFlags(flags, reload ? GLSET_RELOAD_TEXTURES | GLSET_UPDATE : 0U);
    return true;
}

// The sheet

CRenderSheet::CRenderSheet(C3DFrameViewer& frame, C3DView& view) : m_frame(frame), m_view(view)
{
    m_pages.push_back(std::make_unique<CRenderGeneralPrefs>(*this));
    m_pages.push_back(std::make_unique<CRenderColorPrefs>(*this));
    if (view.IsTextureEnabled()) {
        m_pages.push_back(std::make_unique<CRenderTexturePrefs>(*this));
        m_pages.push_back(std::make_unique<CRenderTexturePath>(*this));
    }
    m_pages.push_back(std::make_unique<CRenderLWPath>(*this));
}

CRenderSheet::~CRenderSheet() = default;

bool CRenderSheet::DoModal()
{
    std::vector<CDialogTable*> pages;
    for (const auto& page : m_pages)
        pages.push_back(page.get());
    const bool accepted = RunDialog(&m_frame, LoadText(TEXT_TITLE), pages);
    C3DPreferences::Get3DPreferences().Save();
    return accepted;
}

void CRenderSheet::ShowEconomy(bool on)
{
    for (const auto& page : m_pages)
        page->ShowEconomy(on);
}
