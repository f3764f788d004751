#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "PictureSettings.h"

/// What can be said about a picture on the command line.
class PictureOptions {
public:
    explicit PictureOptions(CLI::App& verb);
    PictureOptions(const PictureOptions&) = delete;
    PictureOptions& operator=(const PictureOptions&) = delete;

    PictureSettings GetPicture() const;
    /// Why the options cannot all be meant; empty when they can.
    std::string GetContradiction() const;

private:
    void AddWhatIsShown(CLI::App& verb);
    void AddPointOfView(CLI::App& verb);
    void AddTurntable(CLI::App& verb);
    unsigned int GetViewFlags() const;

    PictureSettings m_picture;
    std::string m_size, m_mode, m_view, m_background, m_labels, m_movement;
    bool m_noTextures = false, m_noColors = false, m_normals = false, m_boxes = false;
    CLI::Option *m_time, *m_angle;
};
