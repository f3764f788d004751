#pragma once

// Opening and saving. The commands ask nothing when 'PATH' of their parameters, a string, names the file.

#include "viewer/3DCommand.h"

constexpr unsigned int PARAM_PATH = 0x50415448;    // 'PATH'

class ZEL_API C3DOpen : public C3DCommand {
public:
    C3DOpen();
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
    CommandResult OpenUnasked(const CXTString<wchar_t>& path);
};

class ZEL_API C3DSaveAs : public C3DCommand {
public:
    C3DSaveAs();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

class ZEL_API C3DCloseViewer : public C3DCommand {
public:
    C3DCloseViewer();
    CommandResult OnApplyCommand() override;

private:
    using C3DCommand::OnApplyCommand;
};

/// From file to file: of the frame's list, or of the folder when it holds a single one.
class ZEL_API C3DFileStepCommand : public C3DCommand {
public:
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

protected:
    C3DFileStepCommand(unsigned int id, int step);

private:
    using C3DCommand::OnApplyCommand;
    const int m_step;
};

class ZEL_API C3DNextFile : public C3DFileStepCommand {
public:
    C3DNextFile();
};

class ZEL_API C3DPrevFile : public C3DFileStepCommand {
public:
    C3DPrevFile();
};
