#include "viewer/SmoothingMenu.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "render/View.h"
#include "render/ViewProfile.h"
#include "scene/3DScene.h"
#include "tools/FormatText.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "windows/Menu.h"
#include "windows/WindowSystem.h"

// An entry of the popup fills the command's parameters and applies it: whatever changes the scene is a command being applied.

namespace {

constexpr unsigned int PARAM_ANGLE = FourCC("SMAG"), PARAM_MODE = FourCC("SMMD");
constexpr int MOST_DEGREES = 180;

// Values of the popup's entries: degrees as they are, this for those that are asked for, and weights from the next on.
constexpr int CUSTOM_ANGLE = 1000, FIRST_MODE = 1001;

constexpr struct {
    unsigned int text;
    int degrees;
} ANGLES[] = {{9650, 11}, {9651, 21}, {9652, 31}};

constexpr struct {
    unsigned int text;
    _NormalSmoothMode mode;
} MODES[] = {{9398, NORMAL_AREA}, {9399, NORMAL_EDGE_LENGTH}, {9397, NORMAL_ANGLE}, {9400, NORMAL_UNWEIGHTED}};

float ToRadians(int degrees) { return static_cast<float>(degrees * (std::numbers::pi / MOST_DEGREES)); }
int GetDegrees(const C3DScene& scene) { return static_cast<int>(std::lround(scene.GetSmoothAngle() * (MOST_DEGREES / std::numbers::pi))); }

bool IsListed(int degrees)
{
    return std::any_of(std::begin(ANGLES), std::end(ANGLES), [&](const auto& angle) { return angle.degrees == degrees; });
}

/// The scene's angle, or the one last chosen when the scene's stands in the popup.
int GetCustomDegrees(const C3DScene& scene)
{
    const int degrees = GetDegrees(scene);
    return IsListed(degrees) ? static_cast<int>(std::min<unsigned int>(GetViewProfile(PROFILE_SMOOTH_ANGLE), MOST_DEGREES)) : degrees;
}

}

C3DSmoothModeCommand::C3DSmoothModeCommand() : C3DSmoothingCommand(FourCC("SMOO"), VIEWFLAG_SMOOTH) {}
C3DWireSmoothModeCommand::C3DWireSmoothModeCommand() : C3DSmoothingCommand(FourCC("SMWI"), VIEWFLAG_SMOOTH | VIEWFLAG_WIREFRAME) {}

CommandResult C3DSmoothingCommand::OnApplyCommand()
{
    C3DFrameViewer* const frame = Get3DFrameWnd();
    if (!frame)
        return COMMAND_DECLINED;
    C3DScene* const scene = GetScene();
    frame->LockWindow();
    frame->ChangeViewMode(GetMode());
    const bool changed = scene && ApplyParameters(*scene);
    SetState(COMMAND_CHANGES_DOCUMENT, changed);
    if (changed)
        frame->UpdateView(GLSET_FLUSH_ALL);
    frame->UnlockWindow();
    return COMMAND_DONE;
}

/// Whether the scene is another one now.
bool C3DSmoothingCommand::ApplyParameters(C3DScene& scene)
{
    const float formerAngle = scene.GetSmoothAngle();
    const _NormalSmoothMode formerMode = scene.GetSmoothMode();
    float angle;
    unsigned int mode;
    if (GetCustomData().GetFloat(PARAM_ANGLE, angle))
        scene.SetSmoothAngle(angle, true);
    if (GetCustomData().GetUnsigned(PARAM_MODE, mode))
        scene.SetSmoothMode(static_cast<_NormalSmoothMode>(mode), true);
    return scene.GetSmoothAngle() != formerAngle || scene.GetSmoothMode() != formerMode;
}

// The popup

int C3DSmoothingCommand::OnToolbarMenu(CPoint& point) { return m_popup.Open(Get3DFrameWnd(), point); }

CCustomMenu* C3DSmoothingCommand::OnPopupMenu(CCustomMenu* menu, unsigned int)
{
    constexpr unsigned int CUSTOM = 9653;
    m_popup.Clear();
    const C3DScene* const scene = GetFrameScene();
    if (!scene)
        return nullptr;
    for (const auto& angle : ANGLES)
        m_popup.Add(*menu, LoadText(angle.text), angle.degrees, true);
    m_popup.Add(*menu, FormatText(CUSTOM, GetCustomDegrees(*scene)), CUSTOM_ANGLE, true);
    menu->AddMenuSeparator();
    for (const auto& mode : MODES)
        m_popup.Add(*menu, LoadText(mode.text), FIRST_MODE + mode.mode, true);
    return menu;
}

unsigned int C3DSmoothingCommand::GetPopupCmdState(unsigned int id)
{
    const std::optional<int> value = m_popup.GetValue(id);
    const C3DScene* const scene = GetFrameScene();
    if (!value || !scene)
        return 0;
    const int degrees = GetDegrees(*scene);
    const bool checked = *value > CUSTOM_ANGLE    ? *value - FIRST_MODE == scene->GetSmoothMode()
                         : *value == CUSTOM_ANGLE ? !IsListed(degrees)
                                                  : *value == degrees;
    return checked ? COMMAND_ENABLED | COMMAND_CHECKED : +COMMAND_ENABLED;
}

int C3DSmoothingCommand::DoPopupCmd(unsigned int id)
{
    const std::optional<int> value = m_popup.GetValue(id);
    C3DScene* const scene = GetFrameScene();
    if (!value || !scene || !GetViewer())
        return 0;
    int degrees = *value;
    if (*value == CUSTOM_ANGLE && !AskForAngle(*scene, degrees))
        return 1;
    if (*value > CUSTOM_ANGLE)
        GetCustomData().SetUnsigned(PARAM_MODE, static_cast<unsigned int>(*value - FIRST_MODE));
    else if (degrees != GetDegrees(*scene))    // as a user sees it: the standard angle is no whole number
        GetCustomData().SetFloat(PARAM_ANGLE, ToRadians(degrees));
    GetManager()->StackCommand(this, STACK_APPLY, nullptr);
    GetCustomData().Remove(PARAM_ANGLE);    // the button alone changes the mode only
    GetCustomData().Remove(PARAM_MODE);
    return 1;
}

/// In the mode for which it is asked, so that the user sees what the angle does.
bool C3DSmoothingCommand::AskForAngle(C3DScene& scene, int& degrees)
{
    C3DFrameViewer& frame = *Get3DFrameWnd();
    const unsigned int formerMode = GetViewer()->GetViewFlag() & VIEWFLAG_RENDER_MODE;
    frame.ChangeViewMode(GetMode());
    CSmoothAngleDialog dialog(&frame, &scene, GetCustomDegrees(scene));
    if (!dialog.DoModal()) {
        frame.ChangeViewMode(formerMode);
        return false;
    }
    degrees = dialog.GetDegrees();
    SetViewProfile(PROFILE_SMOOTH_ANGLE, static_cast<unsigned int>(degrees));
    return true;
}

// The dialog

CSmoothAngleDialog::CSmoothAngleDialog(C3DFrameViewer* frame, C3DScene* scene, int degrees) : m_frame(frame), m_scene(scene)
{
    constexpr unsigned int TITLE = 9654, QUESTION = 9655;
    title = LoadText(TITLE);
    Add(CONTROL_LABEL, 0, LoadText(QUESTION));
    CControl& slider = Add(CONTROL_SLIDER, ID_SLIDER, CXTString<wchar_t>());
    slider.minimum = 0;
    slider.maximum = MOST_DEGREES;
    slider.number = degrees;
    Add(CONTROL_LABEL, ID_VALUE, CXTString<wchar_t>(), true);
}

bool CSmoothAngleDialog::DoModal()
{
    const float former = m_scene->GetSmoothAngle();
    const bool ok = RunDialog(m_frame, title, {this});
    if (former != m_scene->GetSmoothAngle()) {
        m_scene->SetSmoothAngle(former, false);
        m_frame->UpdateView(GLSET_FLUSH_ALL);
    }
    return ok;
}

int CSmoothAngleDialog::GetDegrees() { return Find(ID_SLIDER)->number; }

void CSmoothAngleDialog::OnInit() { OnControl(ID_SLIDER); }

void CSmoothAngleDialog::OnControl(unsigned int id)
{
    if (id == ID_SLIDER)
        Find(ID_VALUE)->text.FormatString(L"%i\u00B0", GetDegrees());
}

void CSmoothAngleDialog::OnSliderEnd(unsigned int id)
{
    if (id != ID_SLIDER)
        return;
    const CWaitCursor wait;
    m_scene->SetSmoothAngle(ToRadians(GetDegrees()), false);
    m_frame->UpdateView(GLSET_FLUSH_ALL);
}
