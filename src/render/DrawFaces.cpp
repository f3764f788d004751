#include "render/View.h"

void C3DView::ViewFlatNode(C3DSceneNode*, C3DGeomObject*) {}
void C3DView::ViewSmoothNode(C3DSceneNode*, C3DGeomObject*) {}
void C3DView::ViewWireframeNode(C3DSceneNode*, C3DGeomObject*) {}
