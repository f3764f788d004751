#pragma once

#include "scene/Forward.h"
#include "tools/Api.h"
#include "tools/Rect.h"

class CLayerBitmap;
class GlViewSettings;

/// Picture of a whole scene on white, drawn at twice the size and reduced: what thumbnails are made of. Views that show the scene are not
/// disturbed; they must be this thread's.
///
/// @param scene     null gives null
/// @param settings  how it is shown, as of the view of a frame
/// @param size      pixels
/// @return          a new picture, the caller's; null when nothing can be drawn
ZEL_API CLayerBitmap* GetBitmapFromScene(C3DScene* scene, const GlViewSettings& settings, CSize size);
