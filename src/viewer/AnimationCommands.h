#pragma once

// The time of the scene.

#include "viewer/3DCommand.h"

/// Plays the animation round and round; applied again, it stops.
class ZEL_API C3DPlayCommand : public C3DCommand {
public:
    C3DPlayCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;
    void OnTimer(unsigned int id) override;

private:
    using C3DCommand::OnApplyCommand;
};

/// Goes some frames on.
class ZEL_API C3DFrameStepCommand : public C3DCommand {
public:
    CommandResult OnApplyCommand(C3DScene* scene) override;

protected:
    C3DFrameStepCommand(unsigned int id, int step) : C3DCommand(id), m_step(step) {}
    using C3DCommand::OnApplyCommand;

private:
    const int m_step;
};

class ZEL_API C3DNextFrameCommand : public C3DFrameStepCommand {
public:
    C3DNextFrameCommand();
};

class ZEL_API C3DPrevFrameCommand : public C3DFrameStepCommand {
public:
    C3DPrevFrameCommand();
};

/// Goes to the next key, of whatever node; `lookup`: _KEY_LOOKUP.
class ZEL_API C3DKeyStepCommand : public C3DCommand {
public:
    CommandResult OnApplyCommand(C3DScene* scene) override;

protected:
    C3DKeyStepCommand(unsigned int id, unsigned int lookup) : C3DCommand(id), m_lookup(lookup) {}
    using C3DCommand::OnApplyCommand;

private:
    const unsigned int m_lookup;
};

class ZEL_API C3DNextKeyframeCommand : public C3DKeyStepCommand {
public:
    C3DNextKeyframeCommand();
};

class ZEL_API C3DPrevKeyframeCommand : public C3DKeyStepCommand {
public:
    C3DPrevKeyframeCommand();
};
