#pragma once

// What the frame shows around the view.

#include "viewer/3DCommand.h"

/// The view over the whole screen, and back; Esc ends it too.
class ZEL_API C3DFullScreenCommand : public C3DCommand {
public:
    C3DFullScreenCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

class ZEL_API C3DDisplaySceneCommand : public C3DCommand {
public:
    C3DDisplaySceneCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

class ZEL_API C3DShowObjectsCommand : public C3DCommand {
public:
    C3DShowObjectsCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

class ZEL_API C3DShowMaterialsCommand : public C3DCommand {
public:
    C3DShowMaterialsCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};
