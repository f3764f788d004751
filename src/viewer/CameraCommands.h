#pragma once

// Cameras of the scene, and the one that the view has for itself.

#include "viewer/3DCommand.h"
#include "viewer/CommandPopup.h"

/// Looks through the camera whose node DATA_CAMERA_ID of the parameters names; through the scene's first one as long as none was named. Its popup
/// lists the cameras.
class ZEL_API C3DViewCameraCommand : public C3DCommand {
public:
    C3DViewCameraCommand();
    CommandResult OnApplyCommand(C3DScene* scene) override;
    CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int first) override;
    unsigned int GetPopupCmdState(unsigned int id) override;
    int DoPopupCmd(unsigned int id) override;

private:
    using C3DCommand::OnApplyCommand;

    CCommandPopup m_popup{this};
};

/// Looks through the camera that comes after the current one, the first after the last.
class ZEL_API C3DNextCameraCommand : public C3DCommand {
public:
    C3DNextCameraCommand();
    CommandResult OnApplyCommand(C3DScene* scene) override;

protected:
    C3DNextCameraCommand(unsigned int id, int step) : C3DCommand(id), m_step(step) {}
    using C3DCommand::OnApplyCommand;

private:
    const int m_step;
};

class ZEL_API C3DPrevCameraCommand : public C3DNextCameraCommand {
public:
    C3DPrevCameraCommand();
};

/// Puts a camera where the eye stands, and looks through it: what is seen stays the same.
class ZEL_API C3DCreateCameraCommand : public C3DCommand {
public:
    C3DCreateCameraCommand();
    CommandResult OnApplyCommand(C3DScene* scene) override;

private:
    using C3DCommand::OnApplyCommand;
};

/// Perspective or none, of the view's own camera: those of the scene stay as they are.
class ZEL_API C3DChangeProjectionModeCommand : public C3DCommand {
public:
    C3DChangeProjectionModeCommand();
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};
