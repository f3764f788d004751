#pragma once

#include "images/Bitmap.h"

/// Fills the texture that is bound with an RGB or RGBA picture, scaled to the size, upright: v = 1 is the top. The alpha of RGBA is kept or dropped.
void UploadTexture(const Bitmap& picture, CSize size, bool keepAlpha);
