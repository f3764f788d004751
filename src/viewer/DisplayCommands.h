#pragma once

// How the scene is shown: render mode, what is drawn of the surfaces, light, point of view.

#include "viewer/3DCommand.h"
#include "viewer/CommandPopup.h"

/// Shows the scene in a render mode (the three low bits of _VIEW_FLAGS).
class ZEL_API C3DRenderModeCommand : public C3DCommand {
public:
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

protected:
    C3DRenderModeCommand(unsigned int id, unsigned int mode) : C3DCommand(id), m_mode(mode) {}
    using C3DCommand::OnApplyCommand;
    unsigned int GetMode() const { return m_mode; }

private:
    const unsigned int m_mode;
};

class ZEL_API C3DWireframeModeCommand : public C3DRenderModeCommand {
public:
    C3DWireframeModeCommand();
};

class ZEL_API C3DFlatModeCommand : public C3DRenderModeCommand {
public:
    C3DFlatModeCommand();
};

class ZEL_API C3DWireFlatModeCommand : public C3DRenderModeCommand {
public:
    C3DWireFlatModeCommand();
};

// The smooth modes have a menu: viewer/SmoothingMenu.h.

/// Switches one bit of the view flags; not in wireframe mode, which shows nothing of it.
class ZEL_API C3DViewFlagCommand : public C3DCommand {
public:
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

protected:
    C3DViewFlagCommand(unsigned int id, unsigned int flag) : C3DCommand(id), m_flag(flag) {}
    using C3DCommand::OnApplyCommand;

private:
    const unsigned int m_flag;
};

class ZEL_API C3DTextureCommand : public C3DViewFlagCommand {
public:
    C3DTextureCommand();
};

class ZEL_API C3DVCCommand : public C3DViewFlagCommand {
public:
    C3DVCCommand();
};

class ZEL_API C3DSpecNormalCommand : public C3DViewFlagCommand {
public:
    C3DSpecNormalCommand();
};

/// Switches textures, vertex colours and given normals off together, and those that were on, or all, on again.
class ZEL_API C3DTexVCCommand : public C3DCommand {
public:
    C3DTexVCCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;
    int OnToolbarMenu(CPoint& point) override;
    CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int first) override;

private:
    using C3DCommand::OnApplyCommand;

    CCommandPopup m_popup{this};
    unsigned int m_remembered = 0;    ///< what was on when the command switched it off
};

/// Makes the light stronger or weaker by a step; by 0 as it was at first.
class ZEL_API C3DBrightnessCommand : public C3DCommand {
public:
    CommandResult OnApplyCommand() override;

protected:
    C3DBrightnessCommand(unsigned int id, int step) : C3DCommand(id), m_step(step) {}
    using C3DCommand::OnApplyCommand;

private:
    const int m_step;
};

class ZEL_API C3DDefaultBrightnessCommand : public C3DBrightnessCommand {
public:
    C3DDefaultBrightnessCommand();
};

class ZEL_API C3DLessBrightnessCommand : public C3DBrightnessCommand {
public:
    C3DLessBrightnessCommand();
};

class ZEL_API C3DMoreBrightnessCommand : public C3DBrightnessCommand {
public:
    C3DMoreBrightnessCommand();
};

/// Shows the scene from a fixed side; `view`: _RVIEW_FLAG.
class ZEL_API C3DViewCommand : public C3DCommand {
public:
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

protected:
    C3DViewCommand(unsigned int id, unsigned int view) : C3DCommand(id), m_view(view) {}
    using C3DCommand::OnApplyCommand;

private:
    const unsigned int m_view;
};

class ZEL_API C3DViewTopCommand : public C3DViewCommand {
public:
    C3DViewTopCommand();
};

class ZEL_API C3DViewBottomCommand : public C3DViewCommand {
public:
    C3DViewBottomCommand();
};

class ZEL_API C3DViewLeftCommand : public C3DViewCommand {
public:
    C3DViewLeftCommand();
};

class ZEL_API C3DViewRightCommand : public C3DViewCommand {
public:
    C3DViewRightCommand();
};

class ZEL_API C3DViewFrontCommand : public C3DViewCommand {
public:
    C3DViewFrontCommand();
};

class ZEL_API C3DViewBackCommand : public C3DViewCommand {
public:
    C3DViewBackCommand();
};

// Slanted: left or right, top or bottom, front or back (K).

class ZEL_API C3DViewLTFCommand : public C3DViewCommand {
public:
    C3DViewLTFCommand();
};

class ZEL_API C3DViewRTFCommand : public C3DViewCommand {
public:
    C3DViewRTFCommand();
};

class ZEL_API C3DViewLBFCommand : public C3DViewCommand {
public:
    C3DViewLBFCommand();
};

class ZEL_API C3DViewRBFCommand : public C3DViewCommand {
public:
    C3DViewRBFCommand();
};

class ZEL_API C3DViewLTKCommand : public C3DViewCommand {
public:
    C3DViewLTKCommand();
};

class ZEL_API C3DViewRTKCommand : public C3DViewCommand {
public:
    C3DViewRTKCommand();
};

class ZEL_API C3DViewLBKCommand : public C3DViewCommand {
public:
    C3DViewLBKCommand();
};

class ZEL_API C3DViewRBKCommand : public C3DViewCommand {
public:
    C3DViewRBKCommand();
};

/// What happens to the view when a scene opens: a popup of settings. Applied itself, it switches the fit.
class ZEL_API C3DOpeningViewPrefsCommand : public C3DCommand {
public:
    C3DOpeningViewPrefsCommand();
    CommandResult OnApplyCommand() override;
    CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int first) override;
    unsigned int GetPopupCmdState(unsigned int id) override;
    int DoPopupCmd(unsigned int id) override;

private:
    using C3DCommand::OnApplyCommand;

    CCommandPopup m_popup{this};
};
