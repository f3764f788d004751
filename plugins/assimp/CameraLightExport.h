#pragma once

#include <memory>
#include <vector>

#include <assimp/camera.h>
#include <assimp/light.h>

#include <3dzel.h>

#include "ExportFormats.h"
#include "LossLog.h"

/// Cameras and lights of a scene, by the names of their nodes, which are turned for them (NodePlace): they look along -z with +y up.
class CameraLightExport {
public:
    CameraLightExport(const ExportFormat& format, LossLog& losses) : m_format(format), m_losses(losses) {}

    /// What the node holds, if it is one of them.
    void Take(const C3DSceneNode& node);

    std::vector<std::unique_ptr<aiCamera>> TakeCameras() { return std::move(m_cameras); }
    std::vector<std::unique_ptr<aiLight>> TakeLights() { return std::move(m_lights); }

private:
    const ExportFormat& m_format;
    LossLog& m_losses;
    std::vector<std::unique_ptr<aiCamera>> m_cameras;
    std::vector<std::unique_ptr<aiLight>> m_lights;
};
