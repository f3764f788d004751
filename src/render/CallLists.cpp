#include "render/CallLists.h"

#include "render/View.h"

void C3DView::BeginCallList(C3DBaseObject*, _CallListType) {}
void C3DView::EndCallList() {}
void C3DView::DrawCallList(C3DSceneNode*, _CallListType) {}
bool C3DView::HasCallList(C3DBaseObject*) const { return false; }
unsigned int C3DView::GetCallListID(const C3DBaseObject*) { return 0xFFFFFFFF; }
int C3DView::DeleteGLLists(_CallListType, C3DBaseObject*) { return 0; }
