#include "render/View.h"

void C3DView::SetView(_RVIEW_FLAG, int, float) {}
bool C3DView::LoadCamera(C3DSceneNode*) { return false; }
C3DTPoint<float> C3DView::GetSceneCenter() const { return {}; }
void C3DView::GetBBox(bool, C3DTPoint<float>&, C3DTPoint<float>&, C3DTPoint<float>&, unsigned int, unsigned int) const {}
void C3DView::AdjustView(unsigned int) {}
void C3DView::InitClippingPlane() {}
void C3DView::GetFramingBox(unsigned int&, unsigned int&) const {}
void C3DView::SizeChanged(int, int) {}
