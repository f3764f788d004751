// Drawing: the lists of all nodes, in five passes. Geometry is not looked at.
//
//   1 opaque surfaces   2 transparent ones   3 what a host draws over them
//   4 wires, curves, boxes, normals, labels  5 what a host draws over these

#include <GL/gl.h>
#include <GL/glu.h>

#include <cmath>

#include "render/DrawnNode.h"
#include "render/Picking.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "scene/NodeWalkTM.h"

unsigned int C3DView::GetTick() const { return m_scene ? static_cast<unsigned int>(m_scene->GetTickCount()) : 0; }

void C3DView::RenderScene(CHashTable<C3DSceneNode*>* nodes)
{
    if (!m_scene || !GetGLContext())
        return;
    if (!(m_settings.viewFlags & VIEWFLAG_NO_CLEAR))
        ClearBackground();
    if (m_flushPending || !(m_settings.aspect > 0)) {
        if (!m_pick)
            Present();
        return;
    }
    struct Colors {    // also when a host's callback throws
        const bool off;
        explicit Colors(bool isOff) : off(isOff) { Write(GL_FALSE); }
        ~Colors() { Write(GL_TRUE); }
        void Write(GLboolean on) const
        {
            if (off)
                glColorMask(on, on, on, on);
        }
    } const colors((m_settings.viewFlags & VIEWFLAG_NO_COLOR_WRITE) != 0);

    InitProjection();
    InitModelview();
    const std::vector<DrawnNode> drawn = CollectNodes(nodes);
    if (m_pick) {
        glRenderMode(GL_SELECT);
        glInitNames();
        glPushName(0xFFFFFFFF);
    }
    for (int pass = 1; pass <= 5; pass++)
        RenderPass(pass, drawn);
    glLoadMatrixd(m_sceneMatrix);
    if ((m_settings.viewFlags & VIEWFLAG_DRAW_BOXES) && !m_pick)
        DrawBox(m_scene->GetRoot());
    glFlush();
    if (m_pick)
        m_pick->hits = glRenderMode(GL_RENDER);
    else {
        OnDraw(GetClientDC());
        Present();
    }
}

void C3DView::ClearBackground()
{
    const CRGBColor& background = m_settings.background;
    glClearColor(background.red / 255.0f, background.green / 255.0f, background.blue / 255.0f, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void C3DView::Present()
{
    if (IsDrawingFlagSet(GLDRAW_MEMORY))
        return;
    if (m_pixelWindow != PIXELS_NONE)
        PresentPicture();
    else
        GetClientDC()->SwapBuffers();
}

// --- The eye ---------------------------------------------------------------------------------------------------------------------

void C3DView::InitProjection()
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    if (m_pick) {
        glSelectBuffer(m_pick->GetBufferSize(), m_pick->GetBuffer());
        GLint viewport[4];
        glGetIntegerv(GL_VIEWPORT, viewport);
        m_pick->ApplyMatrix(viewport);
    }
    InitClippingPlane();
    const double nearPlane = m_settings.nearPlane, farPlane = m_settings.farPlane;
    if (m_settings.IsOrthographic()) {
        const double r = m_settings.sceneSize / (2 * m_settings.GetCurrentCamera()->GetZoom());
        glOrtho(-r, r, -r / m_settings.aspect, r / m_settings.aspect, nearPlane, farPlane);
    } else
        gluPerspective(VIEW_ANGLE * 180 / std::numbers::pi, m_settings.aspect, nearPlane, farPlane);
}

void C3DView::InitModelview()
{
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    InitLighting();    // before the view's matrix: lights stay where the eye is

    // In double: scenes far from the origin would shiver in float.
    const C4x4TMatrix<float>& eye = m_settings.matrix;
    const C3DTPoint<float>& center = m_settings.sceneCenter;
    for (int row = 0; row < 4; row++) {
        for (int column = 0; column < 3; column++)
            m_sceneMatrix[column * 4 + row] = eye.m[row][column];
        m_sceneMatrix[12 + row] =
            row == 3 ? eye.m[3][3]
                     : eye.m[row][3] - (static_cast<double>(eye.m[row][0]) * center.x + static_cast<double>(eye.m[row][1]) * center.y +
                                        static_cast<double>(eye.m[row][2]) * center.z);
    }
    glLoadMatrixd(m_sceneMatrix);

    // Cameras and lights grow with their distance, so that they look the same at every zoom.
    C3DTPoint<float> min, max, boxCenter;
    GetBBox(false, min, max, boxCenter, 0, m_settings.hiddenKinds);
    double distance = 0;
    for (int row = 0; row < 3; row++) {
        const double value = m_sceneMatrix[row] * boxCenter.x + m_sceneMatrix[4 + row] * boxCenter.y +
                             m_sceneMatrix[8 + row] * boxCenter.z + m_sceneMatrix[12 + row];
        distance += value * value;
    }
    m_iconScale = static_cast<float>(m_settings.sceneSize > 0 ? std::sqrt(distance) / m_settings.sceneSize * 0.5 : 0.5);
}

// --- Nodes -----------------------------------------------------------------------------------------------------------------------

/// Cameras and lights are drawn at a size of their own, whatever their node's scale.
static void ScaleIcon(C4x4TMatrix<float>& matrix, const C3DTVector<float>& scale, double size)
{
    if (std::abs(scale.LengthSquared() - 1) >= 0.005 && scale.x != 0 && scale.y != 0 && scale.z != 0)
        matrix.Scale(1.0 / scale.x, 1.0 / scale.y, 1.0 / scale.z);
    matrix.Scale(size, size, size);
}

static double Determinant(const C4x4TMatrix<float>& matrix)
{
    const auto& m = matrix.m;
    return static_cast<double>(m[0][0]) * (static_cast<double>(m[1][1]) * m[2][2] - static_cast<double>(m[1][2]) * m[2][1]) -
           static_cast<double>(m[0][1]) * (static_cast<double>(m[1][0]) * m[2][2] - static_cast<double>(m[1][2]) * m[2][0]) +
           static_cast<double>(m[0][2]) * (static_cast<double>(m[1][0]) * m[2][1] - static_cast<double>(m[1][1]) * m[2][0]);
}

/// Which of GL's ways keeps the normals' length: GL_NORMALIZE costs most, GL_RESCALE_NORMAL serves a uniform scale.
static NormalScaling GetNormalScaling(const C3DTVector<float>& scale)
{
    if ((scale - C3DTVector<float>(1, 1, 1)).Length() < 1e-6)
        return NORMALS_AS_THEY_ARE;
    return (scale - C3DTVector<float>(scale.x, scale.x, scale.x)).LengthSquared() < 1e-6 ? NORMALS_RESCALED : NORMALS_NORMALIZED;
}

std::vector<C3DView::DrawnNode> C3DView::CollectNodes(const CHashTable<C3DSceneNode*>* nodes) const
{
    std::vector<DrawnNode> drawn;
    CNodeWalkTM walk(static_cast<int>(GetTick()), true);
    for (C3DNodePos pos = m_scene->GetFirstNode(OBJECT_ANY); pos;) {
        C3DSceneNode* const node = m_scene->GetNextNode(pos);
        C3DBaseObject* const base = node->GetBaseObject();
        if (!base || base->IsFlagSet(OBJECT_EMPTY) || (nodes && !nodes->Find(node)))
            continue;
        DrawnNode& entry = drawn.emplace_back();
        entry.node = node;
        entry.base = base;
        entry.final = node->GetFinalObject();
        entry.kind = base->GetKindOf();
        entry.isHidden = node->IsFlagSet(NODE_HIDDEN);
        entry.isSelected = node->IsFlagSet(NODE_SELECTED);
        entry.wiresOnly = base->IsFlagSet(OBJECT_WIREFRAME_ONLY) || (entry.final && entry.final->IsFlagSet(OBJECT_WIREFRAME_ONLY));
        entry.hasTransparent = m_transparentObjects.Find(static_cast<int>(GetCallListID(entry.final)));
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        C3DTVector<float> scale;
        matrix.GetScale(scale);
        if (entry.kind & (OBJECT_CAMERA | OBJECT_LIGHT)) {
            ScaleIcon(matrix, scale, m_iconScale);
            matrix.GetScale(scale);
        }
        entry.SetMatrix(m_sceneMatrix, matrix);
        entry.normals = GetNormalScaling(scale);
        entry.isMirrored = Determinant(matrix) < 0;
    }
    return drawn;
}
