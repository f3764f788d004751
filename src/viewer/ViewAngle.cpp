#include "viewer/ViewAngle.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "render/View.h"
#include "scene/Preferences.h"
#include "tools/FormatText.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"

static constexpr double RADIANS = std::numbers::pi / 180;

C3DViewAngleCommand::C3DViewAngleCommand() : C3DCommand(FourCC("VAGL")) {}

static bool IsSlanted(const C3DView* view) { return view && view->GetViewSettings()->viewNumber >= RVIEW_LEFT_TOP_FRONT; }

void C3DViewAngleCommand::UpdateState() { SetState(COMMAND_ENABLED, IsSlanted(GetViewer())); }

CommandResult C3DViewAngleCommand::OnApplyCommand()
{
    C3DPreferences& preferences = C3DPreferences::Get3DPreferences();
    float angle;
    GetCustomData().GetFloat(PARAM_ANGLE, angle, preferences.GetViewAngle());
    if (angle == preferences.GetViewAngle() || !std::isfinite(angle))
        return COMMAND_DONE;
    preferences.SetViewAngle(angle);
    if (IsSlanted(GetViewer()))
        GetViewer()->SetView(GetViewer()->GetViewSettings()->viewNumber, 0, angle);
    if (Get3DFrameWnd())
        Get3DFrameWnd()->UpdateView(GLSET_UPDATE);
    return COMMAND_DONE;
}

int C3DViewAngleCommand::HasDialog() { return 1; }
int C3DViewAngleCommand::OnOpenDialog(C3DScene*) { return C3DViewAngleDlg(this).OpenDialog(Get3DFrameWnd()); }

// The dialog

C3DViewAngleDlg::C3DViewAngleDlg(CZelCommand* command) : CCommandDlg(command)
{
    constexpr unsigned int TITLE = 9656, QUESTION = 9657;
    constexpr int LEAST = 5, MOST = 85;
    title = LoadText(TITLE);
    Add(CONTROL_LABEL, 0, LoadText(QUESTION));
    CControl& slider = Add(CONTROL_SLIDER, ID_SLIDER, CXTString<wchar_t>());
    slider.minimum = LEAST;
    slider.maximum = MOST;
    Add(CONTROL_LABEL, ID_VALUE, CXTString<wchar_t>(), true);
}

void C3DViewAngleDlg::OnInit()
{
    // The parameters of a user's command are those of its last run: others may have changed the preferences since.
    m_angle = C3DPreferences::Get3DPreferences().GetViewAngle();
    if (GetCommand()->IsScripting())
        GetCommand()->GetCustomData().GetFloat(C3DViewAngleCommand::PARAM_ANGLE, m_angle, m_angle);
    CControl& slider = *Find(ID_SLIDER);
    m_degrees = static_cast<int>(std::lround(std::clamp(m_angle / RADIANS, double(slider.minimum), double(slider.maximum))));
    slider.number = m_degrees;
    OnControl(ID_SLIDER);
}

void C3DViewAngleDlg::OnControl(unsigned int id)
{
    if (id == ID_SLIDER)
        Find(ID_VALUE)->text.FormatString(L"%i\u00B0", Find(ID_SLIDER)->number);
}

bool C3DViewAngleDlg::OnOk()
{
    const int degrees = Find(ID_SLIDER)->number;
    const float angle = degrees == m_degrees ? m_angle : static_cast<float>(degrees * RADIANS);
    GetCommand()->GetCustomData().SetFloat(C3DViewAngleCommand::PARAM_ANGLE, angle);
    return CCommandDlg::OnOk();
}
