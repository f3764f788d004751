#include "render/View.h"

void C3DView::InitLighting() {}
void C3DView::Brightness(int) {}
