#include "render/View.h"

bool C3DView::BeginFace(int, bool) { return false; }
void C3DView::SetCullMode(int, unsigned int&, bool) {}
