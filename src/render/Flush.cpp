#include "render/View.h"

void C3DView::FlushNode(C3DSceneNode*) {}
int C3DView::RemoveNode(C3DSceneNode*) { return 0; }
void C3DView::BeginScene() {}
void C3DView::EndScene() {}
void C3DView::FlushScene() {}
void C3DView::FlushObject(C3DSceneNode*) {}
void C3DView::Flush3DGeomObject(C3DSceneNode*, C3DGeomObject*) {}
void C3DView::Flush3DObject(C3DSceneNode*, C3DGeomObject*) {}
void C3DView::Flush3DCurve(C3DSceneNode*, C3DCurve*) {}
void C3DView::Flush3DPatch(C3DSceneNode*, C3DPatch*) {}
bool C3DView::BeginNode(C3DSceneNode*, C3DGeomObject*, unsigned int) { return false; }
void C3DView::EndNode() {}
void C3DView::InitCurrentRenderElement() {}
