#include "render/View.h"

void C3DView::InitMaterial(C3DMaterial*, int) {}
void C3DView::InitMaterial() { InitMaterial(m_element.material, 0); }
void C3DView::ReinitCurrentMaterial() { m_currentMaterial = 0xFFFFFFFF; }
void C3DView::InitDiffuseColor(C3DMaterial&) {}
void C3DView::InitDiffuseColor(unsigned int) {}
void C3DView::InitPointMaterial() {}
void C3DView::MaterialChanged(unsigned int) {}
