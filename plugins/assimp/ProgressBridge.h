#pragma once

#include <assimp/ProgressHandler.hpp>

#include <3dzel.h>

/// Passes the library's progress on, and the user's wish to stop back.
class ProgressBridge : public Assimp::ProgressHandler {
public:
    explicit ProgressBridge(CProgress& progress) : m_progress(progress) {}
    bool Update(float fraction) override
    {
        return fraction < 0 ? m_progress.Update() : m_progress.SetPos(static_cast<std::uint64_t>(fraction * 1000));
    }

private:
    CProgress& m_progress;
};
