#include "viewer/DisplayCommands.h"

#include "render/View.h"
#include "render/ViewProfile.h"
#include "tools/FormatText.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "windows/Menu.h"

// Render modes

void C3DRenderModeCommand::UpdateState()
{
    SetState(COMMAND_CHECKED, GetViewer() && (GetViewer()->GetViewFlag() & VIEWFLAG_RENDER_MODE) == m_mode);
}

CommandResult C3DRenderModeCommand::OnApplyCommand()
{
    if (!Get3DFrameWnd())
        return COMMAND_DECLINED;
    Get3DFrameWnd()->ChangeViewMode(m_mode);
    return COMMAND_DONE;
}

C3DWireframeModeCommand::C3DWireframeModeCommand() : C3DRenderModeCommand(FourCC("WIRE"), VIEWFLAG_WIREFRAME) {}
C3DFlatModeCommand::C3DFlatModeCommand() : C3DRenderModeCommand(FourCC("FLAT"), VIEWFLAG_FLAT) {}
C3DWireFlatModeCommand::C3DWireFlatModeCommand() : C3DRenderModeCommand(FourCC("FLWI"), VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME) {}

// What is drawn of the surfaces

static constexpr unsigned int SURFACE_FLAGS = VIEWFLAG_TEXTURE | VIEWFLAG_VERTEX_COLORS | VIEWFLAG_SPEC_NORMALS;

static bool ShowsSurfaces(const C3DView* view) { return view && (view->GetViewFlag() & VIEWFLAG_RENDER_MODE) != VIEWFLAG_WIREFRAME; }

/// Call lists hold colours, texture coordinates and normals: all are built again.
static void ChangeSurfaceFlags(C3DView& view, unsigned int flags)
{
    GlViewSettings settings;
    settings.changeMask = GLSET_VIEW_FLAGS | GLSET_UPDATE | GLSET_FLUSH_ALL;
    settings.viewFlags = flags;
    view.SetViewSettings(&settings);
}

void C3DViewFlagCommand::UpdateState()
{
    SetState(COMMAND_ENABLED, ShowsSurfaces(GetViewer()));
    SetState(COMMAND_CHECKED, GetViewer() && GetViewer()->GetViewFlag() & m_flag);
}

CommandResult C3DViewFlagCommand::OnApplyCommand()
{
    if (!GetViewer())
        return COMMAND_DECLINED;
    ChangeSurfaceFlags(*GetViewer(), GetViewer()->GetViewFlag() ^ m_flag);
    return COMMAND_DONE;
}

C3DTextureCommand::C3DTextureCommand() : C3DViewFlagCommand(FourCC("ENTX"), VIEWFLAG_TEXTURE) {}
C3DVCCommand::C3DVCCommand() : C3DViewFlagCommand(FourCC("ENVC"), VIEWFLAG_VERTEX_COLORS) {}
C3DSpecNormalCommand::C3DSpecNormalCommand() : C3DViewFlagCommand(FourCC("ENSN"), VIEWFLAG_SPEC_NORMALS) {}

C3DTexVCCommand::C3DTexVCCommand() : C3DCommand(FourCC("ENTV")) {}

void C3DTexVCCommand::UpdateState()
{
    SetState(COMMAND_ENABLED, ShowsSurfaces(GetViewer()));
    SetState(COMMAND_CHECKED, GetViewer() && GetViewer()->GetViewFlag() & (VIEWFLAG_TEXTURE | VIEWFLAG_VERTEX_COLORS));
}

CommandResult C3DTexVCCommand::OnApplyCommand()
{
    if (!GetViewer())
        return COMMAND_DECLINED;
    const unsigned int flags = GetViewer()->GetViewFlag(), on = flags & SURFACE_FLAGS;
    if (on) {
        m_remembered = on;
        ChangeSurfaceFlags(*GetViewer(), flags & ~SURFACE_FLAGS);
    } else
        ChangeSurfaceFlags(*GetViewer(), flags | (m_remembered ? m_remembered : SURFACE_FLAGS));
    return COMMAND_DONE;
}

int C3DTexVCCommand::OnToolbarMenu(CPoint& point) { return m_popup.Open(Get3DFrameWnd(), point); }

CCustomMenu* C3DTexVCCommand::OnPopupMenu(CCustomMenu* menu, unsigned int)
{
    for (const unsigned int command : {FourCC("ENTX"), FourCC("ENVC"), FourCC("ENSN")})
        m_popup.AddCommand(*menu, command);
    return menu;
}

// Light

CommandResult C3DBrightnessCommand::OnApplyCommand()
{
    if (!GetViewer())
        return COMMAND_DECLINED;
    GetViewer()->Brightness(m_step);
    return COMMAND_DONE;
}

C3DDefaultBrightnessCommand::C3DDefaultBrightnessCommand() : C3DBrightnessCommand(FourCC("BRGD"), 0) {}
C3DLessBrightnessCommand::C3DLessBrightnessCommand() : C3DBrightnessCommand(FourCC("BRGL"), -1) {}
C3DMoreBrightnessCommand::C3DMoreBrightnessCommand() : C3DBrightnessCommand(FourCC("BRGM"), 1) {}

// Points of view

void C3DViewCommand::UpdateState() { SetState(COMMAND_CHECKED, GetViewer() && GetViewer()->GetViewSettings()->viewNumber == m_view); }

CommandResult C3DViewCommand::OnApplyCommand()
{
    if (!GetViewer())
        return COMMAND_DECLINED;
    GetViewer()->SetView(static_cast<_RVIEW_FLAG>(m_view), 1, 0);
    return COMMAND_DONE;
}

C3DViewTopCommand::C3DViewTopCommand() : C3DViewCommand(FourCC("VTOP"), RVIEW_TOP) {}
C3DViewBottomCommand::C3DViewBottomCommand() : C3DViewCommand(FourCC("VBOT"), RVIEW_BOTTOM) {}
C3DViewLeftCommand::C3DViewLeftCommand() : C3DViewCommand(FourCC("VLEF"), RVIEW_LEFT) {}
C3DViewRightCommand::C3DViewRightCommand() : C3DViewCommand(FourCC("VRIG"), RVIEW_RIGHT) {}
C3DViewFrontCommand::C3DViewFrontCommand() : C3DViewCommand(FourCC("VFRO"), RVIEW_FRONT) {}
C3DViewBackCommand::C3DViewBackCommand() : C3DViewCommand(FourCC("VBAC"), RVIEW_BACK) {}
C3DViewLTFCommand::C3DViewLTFCommand() : C3DViewCommand(FourCC("VLTF"), RVIEW_LEFT_TOP_FRONT) {}
C3DViewRTFCommand::C3DViewRTFCommand() : C3DViewCommand(FourCC("VRTF"), RVIEW_RIGHT_TOP_FRONT) {}
C3DViewLBFCommand::C3DViewLBFCommand() : C3DViewCommand(FourCC("VLBF"), RVIEW_LEFT_BOTTOM_FRONT) {}
C3DViewRBFCommand::C3DViewRBFCommand() : C3DViewCommand(FourCC("VRBF"), RVIEW_RIGHT_BOTTOM_FRONT) {}
C3DViewLTKCommand::C3DViewLTKCommand() : C3DViewCommand(FourCC("VLTK"), RVIEW_LEFT_TOP_BACK) {}
C3DViewRTKCommand::C3DViewRTKCommand() : C3DViewCommand(FourCC("VRTK"), RVIEW_RIGHT_TOP_BACK) {}
C3DViewLBKCommand::C3DViewLBKCommand() : C3DViewCommand(FourCC("VLBK"), RVIEW_LEFT_BOTTOM_BACK) {}
C3DViewRBKCommand::C3DViewRBKCommand() : C3DViewCommand(FourCC("VRBK"), RVIEW_RIGHT_BOTTOM_BACK) {}

// What happens when a scene opens

C3DOpeningViewPrefsCommand::C3DOpeningViewPrefsCommand() : C3DCommand(FourCC("OPNV")) {}

static bool ToggleSetting(C3DFrameViewer* frame, int flag)
{
    if (!frame)
        return false;
    const auto setting = static_cast<Settings3DFrame>(flag);
    frame->SetSettingsFlag(setting, !frame->IsSettingsFlagSet(setting));
    return true;
}

CommandResult C3DOpeningViewPrefsCommand::OnApplyCommand()
{
    return ToggleSetting(Get3DFrameWnd(), SETTINGS3D_AUTO_FIT) ? COMMAND_DONE : COMMAND_DECLINED;
}

CCustomMenu* C3DOpeningViewPrefsCommand::OnPopupMenu(CCustomMenu* menu, unsigned int)
{
    constexpr unsigned int AUTO_FIT = 9177, USE_CAMERA = 9175;
    m_popup.Clear();
    m_popup.Add(*menu, LoadText(AUTO_FIT), SETTINGS3D_AUTO_FIT);
    m_popup.Add(*menu, LoadText(USE_CAMERA), SETTINGS3D_USE_CAMERA);
    return menu;
}

unsigned int C3DOpeningViewPrefsCommand::GetPopupCmdState(unsigned int id)
{
    const std::optional<int> flag = m_popup.GetValue(id);
    if (!flag || !Get3DFrameWnd())
        return 0;
    return Get3DFrameWnd()->IsSettingsFlagSet(static_cast<Settings3DFrame>(*flag)) ? COMMAND_ENABLED | COMMAND_CHECKED : +COMMAND_ENABLED;
}

int C3DOpeningViewPrefsCommand::DoPopupCmd(unsigned int id)
{
    const std::optional<int> flag = m_popup.GetValue(id);
    return flag && ToggleSetting(Get3DFrameWnd(), *flag) ? 1 : 0;
}
