#include "render/SceneBitmap.h"

#include "render/View.h"
#include "tools/LayerBitmap.h"

CLayerBitmap* GetBitmapFromScene(C3DScene*, const GlViewSettings&, CSize) { return nullptr; }
