#include "render/View.h"

void C3DView::RenderScene(CHashTable<C3DSceneNode*>*) {}
int C3DView::SetObjectOffset(int offset) { return offset; }
unsigned int C3DView::GetTick() const { return 0; }
