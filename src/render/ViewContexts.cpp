#include "render/View.h"

void C3DView::Activate() {}
void C3DView::Deactivate() {}
bool C3DView::CreateDefaultGLContext(std::unique_ptr<CDC>) { return false; }
int C3DView::CreateMultiSampleGLContext() { return 0; }
bool C3DView::InitGLExtension() const { return false; }
void C3DView::DeleteGLContext() {}
void C3DView::InitGLContext() const {}
void C3DView::InitViewFlag() {}
