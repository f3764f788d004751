#include "render/View.h"

int C3DView::OnCreate() { return -1; }
void C3DView::OnPaint() {}
void C3DView::OnSize(int, int) {}
void C3DView::OnTimer(unsigned int) {}
void C3DView::OnMouseWheel(unsigned int, short, const CPoint&) {}
void C3DView::OnDestroy() {}
void C3DView::OnDraw(CDC*) {}
unsigned int C3DView::GetMilliseconds() const { return 0; }
