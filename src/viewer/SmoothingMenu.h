#pragma once

// Smooth render modes, and the popup beside their buttons: angle up to which edges are smooth, and weights of the normals.

#include "channels/NormalMode.h"
#include "viewer/DisplayCommands.h"
#include "windows/Dialog.h"

/// A smooth mode, with its popup. A script may set the scene's angle ('SMAG', a float, radians) and weights ('SMMD', an unsigned,
/// _NormalSmoothMode) along with the mode.
class ZEL_API C3DSmoothingCommand : public C3DRenderModeCommand {
public:
    CommandResult OnApplyCommand() override;
    int OnToolbarMenu(CPoint& point) override;
    CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int first) override;
    unsigned int GetPopupCmdState(unsigned int id) override;
    int DoPopupCmd(unsigned int id) override;

protected:
    C3DSmoothingCommand(unsigned int id, unsigned int mode) : C3DRenderModeCommand(id, mode) {}
    using C3DRenderModeCommand::OnApplyCommand;

private:
    bool ApplyParameters(C3DScene& scene);
    bool AskForAngle(C3DScene& scene, int& degrees);

    CCommandPopup m_popup{this};
};

class ZEL_API C3DSmoothModeCommand : public C3DSmoothingCommand {
public:
    C3DSmoothModeCommand();
};

class ZEL_API C3DWireSmoothModeCommand : public C3DSmoothingCommand {
public:
    C3DWireSmoothModeCommand();
};

/// Asks for the scene's smooth angle, and shows the scene with each one that the slider is let go at. The scene has its former angle afterwards.
class ZEL_API CSmoothAngleDialog : public CDialogTable {
public:
    static constexpr unsigned int ID_SLIDER = 9097, ID_VALUE = 9098;

    /// `degrees`: the first proposal.
    CSmoothAngleDialog(C3DFrameViewer* frame, C3DScene* scene, int degrees);
    /// True on OK.
    bool DoModal();
    int GetDegrees();

    void OnInit() override;
    void OnControl(unsigned int id) override;
    void OnSliderEnd(unsigned int id) override;

private:
    C3DFrameViewer* m_frame;
    C3DScene* m_scene;
};
