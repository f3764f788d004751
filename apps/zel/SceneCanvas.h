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
    /// From now on what is transparent is drawn as if it were not.
    void IgnoreTransparency();
    /// A picture as the settings tell, of a turntable the one of that number; null when it cannot be had.
    Picture Draw(int number = 0);

private:
    bool CreateSurface();
    void WarmUp();
    std::string PlaceEye(C3DScene& scene);
    std::string LookThroughCamera(C3DScene& scene);
    void FillPicture(const C3DScene& scene);
    /// As it is in a picture of the turntable.
    C4x4TMatrix<float> GetTurned(C4x4TMatrix<float> matrix, int number) const;
    void Turn(int number);
    Picture DrawOn(const CRGBColor& background);
    Picture DrawOpaque();
    Picture Reduce(Picture picture) const;

    const PictureSettings m_settings;
    C3DView m_view;
    std::unique_ptr<C3DScene, ReleaseScene> m_sample;    ///< for WarmUp
    int m_antialias;
    bool m_isOpaque = false;
    C4x4TMatrix<float> m_matrix;    ///< of the first picture
};
