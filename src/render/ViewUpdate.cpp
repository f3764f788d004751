#include "render/View.h"

void C3DView::SetScene(C3DScene*, unsigned int) {}
void C3DView::SetViewSettings(const GlViewSettings*) {}
void C3DView::UpdateView(int) {}
void C3DView::LockWindow() {}
void C3DView::UnlockWindow() {}
void C3DView::SetBackgroundColor(unsigned char, unsigned char, unsigned char) {}
