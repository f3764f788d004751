#include "render/View.h"

void C3DView::DrawNormals(C3DSceneNode*) {}
void C3DView::RenderGDI(C3DSceneNode*) {}
void C3DView::SwitchTo2DMode(bool, unsigned int, unsigned int) {}
void C3DView::DrawBox(C3DSceneNode*) {}
