#include "render/View.h"

int C3DView::CreateMemoryRendering(int, int, int) { return 0; }
int C3DView::DeleteMemoryRendering() { return 1; }
Bitmap* C3DView::CreateBitmapFromScene() { return nullptr; }
int C3DView::InitPBuffer(unsigned int, unsigned int, unsigned int) { return 0; }
void C3DView::ReleasePBuffer() {}
Bitmap* C3DView::CreateBitmapFromPBuffer() { return nullptr; }
