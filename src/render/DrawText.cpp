#include "render/DrawText.h"

#include "render/View.h"

CGLDrawText::CGLDrawText(C3DView& view, bool) : m_view(view) {}
CGLDrawText::~CGLDrawText() {}
void CGLDrawText::DrawLabel(const C3DTPoint<float>&, const CXTString<char>&, const CSize&) {}
