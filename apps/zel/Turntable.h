#pragma once

#include "DrawnFile.h"
#include "PictureFile.h"

/// Draws all around a file: an animation, or numbered pictures where the format holds one. Anything but EXIT_DONE comes after one line of the
/// console.
ExitCode WriteTurntable(const Console& console, DrawnFile& file, const CTurntable& turntable, const PictureFile& target);
