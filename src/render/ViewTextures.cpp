#include "render/View.h"

void C3DView::InitTexture() {}
void C3DView::EnableTexture(int) {}
int C3DView::TextureExist() { return 0; }
int C3DView::IsTextureEnabled() const { return 1; }
void C3DView::InitMapping() {}
unsigned int C3DView::InitMaterialMapping(unsigned int, bool) { return 0xFFFFFFFF; }
int C3DView::LoadTexture(C3DMaterial*, MapType, unsigned int) { return 0; }
void C3DView::DestroyMapping(bool) {}
