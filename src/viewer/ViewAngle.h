#pragma once

#include "viewer/3DCommand.h"
#include "windows/CommandDlg.h"

/// Sets the angle of the slanted points of view ('VWGL', a float, radians), in the preferences and in the view that shows one.
class ZEL_API C3DViewAngleCommand : public C3DCommand {
public:
    static constexpr unsigned int PARAM_ANGLE = 0x5657474C;    // 'VWGL'

    C3DViewAngleCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;
    int HasDialog() override;
    int OnOpenDialog(C3DScene* scene) override;

private:
    using C3DCommand::OnApplyCommand;
    using C3DCommand::OnOpenDialog;
};

/// Asks for that angle.
class ZEL_API C3DViewAngleDlg : public CCommandDlg {
public:
    static constexpr unsigned int ID_SLIDER = 9660, ID_VALUE = 9661;

    explicit C3DViewAngleDlg(CZelCommand* command);
    void OnInit() override;
    void OnControl(unsigned int id) override;
    bool OnOk() override;

private:
    float m_angle = 0;    ///< at first, radians
    int m_degrees = 0;    ///< the same as the slider shows it
};
