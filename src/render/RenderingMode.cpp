#include "render/RenderingMode.h"

#include "render/View.h"

CGLRenderingMode::CGLRenderingMode(C3DView&, unsigned int, unsigned int) {}
CGLRenderingMode::~CGLRenderingMode() {}
