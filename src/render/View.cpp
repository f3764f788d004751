#include "render/View.h"

#include "render/RenderingMode.h"
#include "render/ViewHost.h"
#include "scene/3DScene.h"

ZEL_IMPLEMENT_CREATABLE(C3DView, CCommandView)

IViewHost::~IViewHost() = default;

_RenderElement::~_RenderElement() = default;

void C3DView::SetColor(C3DMaterial& material, const CRGBColor& color)
{
    material.SetAmbientColor(0, color);
    material.SetDiffuseColor(0, color);
}

C3DView::C3DView()
{
    SetColor(m_selectionMaterial, m_settings.selectionColor);
    SetColor(m_cameraMaterial, {0, 0, 255});
    SetColor(m_lightMaterial, {255, 0, 255});
    SetColor(m_wireframeMaterial, m_settings.wireframeColor);
    m_element.view = this;
    m_settings.viewFlags &= ~VIEWFLAG_TRANSIENT;
    LoadDefaultSettings();
}

C3DView::~C3DView()
{
    SetPeer(nullptr);    // OnDestroy runs while this still is a view
    if (IsDrawingFlagSet(GLDRAW_MEMORY))
        DeleteMemoryRendering();
    DeleteMe(m_scene);
}
