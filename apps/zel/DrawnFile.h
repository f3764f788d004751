#pragma once

#include <optional>
#include <string>

#include "ExitCode.h"
#include "SceneCanvas.h"
#include "SceneReading.h"

/// A file on a canvas. It is read on a thread of its own while the driver starts on this one.
class DrawnFile {
public:
    DrawnFile(const Console& console, const std::string& name, const PictureSettings& settings);

    /// Waits until the scene is there and placed. Anything but EXIT_DONE comes after one line of the console.
    ExitCode Open();
    /// A picture of it, of a turntable the one of that number; null, after one line of the console, when it cannot be had. A first one that
    /// shows nothing is told.
    Picture Draw(int number = 0);

private:
    Picture DrawOpaque();

    const Console& m_console;
    const std::string m_name;
    const PictureSettings m_settings;
    SceneCanvas m_canvas;      // its scene of its own is made
    SceneReading m_reading;    // before another one is
    std::optional<SceneFile> m_file;
};
