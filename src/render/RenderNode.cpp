// A node in one of the passes.

#include <GL/gl.h>

#include <optional>
#include <utility>

#include "render/DrawnNode.h"
#include "render/RenderingMode.h"
#include "scene/SceneNode.h"

static constexpr int PASS_OPAQUE = 1, PASS_TRANSPARENT = 2, PASS_OVER_SURFACES = 3, PASS_WIRES = 4, PASS_OVER_WIRES = 5;

void C3DView::RenderPass(int pass, const std::vector<DrawnNode>& nodes)
{
    const unsigned int solid = m_settings.viewFlags & VIEWFLAG_SOLID;
    const bool onWires = pass >= PASS_WIRES, overlay = pass == PASS_OVER_SURFACES || pass == PASS_OVER_WIRES;
    const unsigned int mode = onWires ? static_cast<unsigned int>(VIEWFLAG_WIREFRAME) : solid;
    if ((!onWires && !solid) || (overlay && !m_displayCallback) || (pass == PASS_TRANSPARENT && m_transparentObjects.IsEmpty()))
        return;
    const bool announced = m_displayCallback && pass != PASS_TRANSPARENT;
    if (announced && !m_displayCallback(nullptr, overlay ? DISPLAY_OVERLAY_BEGIN : DISPLAY_PASS_BEGIN, mode, m_callbackData))
        return;
    for (const DrawnNode& drawn : nodes)
        if (IsNodeDrawn(pass, drawn, mode))
            RenderNode(pass, drawn, mode);
    if (announced)
        m_displayCallback(nullptr, overlay ? DISPLAY_OVERLAY_END : DISPLAY_PASS_END, mode, m_callbackData);
}

bool C3DView::IsNodeDrawn(int pass, const DrawnNode& drawn, unsigned int mode)
{
    const unsigned int flags = m_settings.viewFlags;
    if (pass == PASS_TRANSPARENT && !m_pick && !drawn.hasTransparent)
        return false;
    if (pass == PASS_OVER_SURFACES || pass == PASS_OVER_WIRES)
        return pass == PASS_OVER_WIRES || !drawn.wiresOnly;
    if (drawn.kind == OBJECT_GROUP) {
        if (pass == PASS_WIRES && drawn.isSelected && !drawn.isHidden && !m_pick)
            DrawBox(drawn.node);
        return false;
    }
    if ((drawn.kind == OBJECT_CURVE && pass != PASS_WIRES) || (drawn.kind == OBJECT_CAMERA && !(flags & VIEWFLAG_SHOW_CAMERAS)) ||
        (drawn.kind == OBJECT_LIGHT && !(flags & VIEWFLAG_SHOW_LIGHTS)))
        return false;
    if (m_displayCallback && !m_displayCallback(drawn.node, DISPLAY_NODE, mode, m_callbackData))
        return false;
    if (drawn.isHidden && !((flags & VIEWFLAG_HIDDEN_STIPPLED) && IsSolid()))
        return false;
    return pass == PASS_WIRES || !drawn.wiresOnly;
}

void C3DView::LoadNodeMatrix(const DrawnNode& drawn)
{
    const auto enable = [](GLenum what, bool on) { on ? glEnable(what) : glDisable(what); };
    enable(GL_NORMALIZE, drawn.normals == NORMALS_NORMALIZED);
    enable(GL_RESCALE_NORMAL, drawn.normals == NORMALS_RESCALED);
    glFrontFace(drawn.isMirrored ? GL_CW : GL_CCW);
    glLoadMatrixf(drawn.matrix);
}

void C3DView::RenderNode(int pass, const DrawnNode& drawn, unsigned int mode)
{
    LoadNodeMatrix(drawn);
    if (pass == PASS_OVER_SURFACES || pass == PASS_OVER_WIRES) {
        m_displayCallback(drawn.node, DISPLAY_OVERLAY_NODE, mode, m_callbackData);
        return;
    }
    struct Stipple {
        const GLenum kind;
        explicit Stipple(GLenum stippled) : kind(stippled) { glEnable(kind); }
        ~Stipple() { glDisable(kind); }
    };
    std::optional<Stipple> stipple;
    if (drawn.isHidden)
        stipple.emplace(drawn.kind == OBJECT_CURVE ? GL_LINE_STIPPLE : GL_POLYGON_STIPPLE);
    if (pass == PASS_WIRES)
        RenderWires(drawn);
    else
        RenderSurface(pass, drawn);
}

void C3DView::RenderSurface(int pass, const DrawnNode& drawn)
{
    std::optional<CGLRenderingMode> blending;
    if (pass == PASS_TRANSPARENT && (m_settings.viewFlags & VIEWFLAG_TRANSPARENCY))
        blending.emplace(*this, GLMODE_BLEND);
    // Wires lie over the surface. Who picks looks for the surface where it is: no wire is drawn then.
    const int offset = m_settings.viewFlags & VIEWFLAG_WIREFRAME && !m_pick ? SetObjectOffset(10) : m_objectOffset;
    const _CallListType type = pass == PASS_TRANSPARENT ? CALLLIST_TRANSPARENT : CALLLIST_SOLID;
    DrawCallList(drawn.node, type);
    DrawTint(drawn, type);
    SetObjectOffset(offset);
}

void C3DView::RenderWires(const DrawnNode& drawn)
{
    const unsigned int flags = m_settings.viewFlags;
    if (drawn.kind == OBJECT_CURVE) {
        const CGLRenderingMode smooth(*this, GLMODE_SMOOTH_LINES);
        DrawCallList(drawn.node, CALLLIST_CURVE);
        DrawTint(drawn, CALLLIST_CURVE);
    } else if ((drawn.wiresOnly || (flags & VIEWFLAG_WIREFRAME)) && !drawn.isHidden) {
        const CGLRenderingMode smooth(*this, GLMODE_SMOOTH_LINES | (IsSolid() ? GLMODE_NO_ALPHA_WRITE : GLMODE_DEPTH_CUE));
        DrawCallList(drawn.node, CALLLIST_WIREFRAME);
        if (!IsSolid() || drawn.wiresOnly)
            DrawTint(drawn, CALLLIST_WIREFRAME);
    }
    if (m_pick)
        return;
    if ((flags & VIEWFLAG_DRAW_BOXES) || drawn.isSelected)
        DrawBox(drawn.node);
    if (flags & VIEWFLAG_DRAW_NORMALS)
        DrawNormals(drawn.node);
    RenderGDI(drawn.node);
}

void C3DView::DrawTint(const DrawnNode& drawn, _CallListType type)
{
    if (!drawn.isSelected || m_pick || IsDrawingFlagSet(GLDRAW_MEMORY))
        return;
    const CGLRenderingMode tint(*this, GLMODE_TINT);
    DrawCallList(drawn.node, type);
}

int C3DView::SetObjectOffset(int offset)
{
    glPolygonOffset(static_cast<float>(offset) * 0.1f, 1.0f);
    offset ? glEnable(GL_POLYGON_OFFSET_FILL) : glDisable(GL_POLYGON_OFFSET_FILL);
    return std::exchange(m_objectOffset, offset);
}
