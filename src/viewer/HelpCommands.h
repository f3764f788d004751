#pragma once

#include "viewer/3DCommand.h"

/// Keys and commands of the frame.
class ZEL_API C3DHelp : public C3DCommand {
public:
    C3DHelp();
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

/// The next click shows the help of what it hits.
class ZEL_API C3DHelpOn : public C3DCommand {
public:
    C3DHelpOn();
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

/// Opens the sheet of preferences.
class ZEL_API C3DPrefsCommand : public C3DCommand {
public:
    C3DPrefsCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};
