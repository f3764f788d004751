#pragma once

#include <memory>
#include <string>

#include <3dzel.h>

#include "PictureFile.h"
#include "PictureSettings.h"
#include "SceneFile.h"

/// Draws pictures of a scene, off screen. Belongs to the thread that made it.
class SceneCanvas {
public:
    explicit SceneCanvas(const PictureSettings& settings);

    /// Gets the driver ready: what takes time before the first picture, whatever it shows. False when there is no driver.
    bool Start();
    /// Samples a pixel, each way: as asked for, or what the driver has room for.
    int GetAntialias() const { return m_antialias; }

    /// Takes the scene, which must live until the next one or the end, and places the eye. The scene's time and selection change.
    ///
    /// @return  what the scene lacks of what the settings name; empty for nothing
    std::string SetScene(C3DScene& scene);
    /// Turns what is seen by an angle in radians about an axis of the scene.
    void Turn(const C3DTVector<float>& axis, double angle);
    /// A picture as the settings tell; null when it cannot be had.
    Picture Draw();

private:
    bool CreateSurface();
    void WarmUp();
    std::string PlaceEye(C3DScene& scene);
    std::string LookThroughCamera(C3DScene& scene);
    void FitSelection();
    Picture DrawOn(const CRGBColor& background);

    const PictureSettings m_settings;
    C3DView m_view;
    std::unique_ptr<C3DScene, ReleaseScene> m_sample;    ///< for WarmUp
    int m_antialias;
};
