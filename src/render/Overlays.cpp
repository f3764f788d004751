// What is drawn directly, over the lists: boxes, normals, numbers. All of it in 2D or in the space of the scene or of a node, without light.

#include <GL/gl.h>

#include <cmath>
#include <string>

#include "channels/DependentChannels.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "render/DrawText.h"
#include "render/GLColor.h"
#include "render/RenderingMode.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"

namespace {

constexpr unsigned int MODE_LINES = GLMODE_SMOOTH_LINES | GLMODE_DEPTH_CUE | GLMODE_NO_LIGHT | GLMODE_NO_TEXTURE;
constexpr unsigned int MODE_2D = GLMODE_NO_LIGHT | GLMODE_NO_TEXTURE | GLMODE_IDENTITY | GLMODE_PIXELS;
/// Faces that are neither drawn nor numbered.
constexpr int FACE_UNSEEN = FACE_DEAD | VIEW_FACE_HIDDEN;

C3DGeomObject* GetDrawnGeometry(const C3DSceneNode* node, unsigned int tick)
{
    return node ? XDynamicCast<C3DGeomObject>(node->GetFinalObject(static_cast<int>(tick))) : nullptr;
}

}

void C3DView::SwitchTo2DMode(bool on, unsigned int mode, unsigned int extra)
{
    const CGLActivate active(this);
    if (on && m_2DModes++ == 0)
        m_2DMode = std::make_unique<CGLRenderingMode>(*this, mode | MODE_2D, extra);
    if (!on && m_2DModes > 0 && --m_2DModes == 0)
        m_2DMode.reset();
}

// Boxes

void C3DView::DrawBox(C3DSceneNode* node)
{
    C3DTPoint<float> min, max;
    if (IsDrawingFlagSet(GLDRAW_MEMORY) && !IsDrawingFlagSet(GLDRAW_MEMORY_BOXES))
        return;
    if (!node || !node->GetBoundingBox(static_cast<int>(GetTick()), min, max, BOX_FACES | BOX_SKIP_HIDDEN, VIEW_FACE_HIDDEN))
        return;
    const CGLRenderingMode lines(*this, MODE_LINES, GL_CURRENT_BIT);
    glPushMatrix();
    glLoadMatrixd(m_sceneMatrix);
    glColor4f(0, 1, 0, 1);
    const auto drawRectangle = [](const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c,
                                  const C3DTPoint<float>& d) {
        glBegin(GL_LINE_STRIP);
        for (const C3DTPoint<float>* corner : {&a, &b, &c, &d, &a})
            glVertex3fv(corner->ValPtr());
        glEnd();
    };
    // Those at the ends of z and x have all twelve edges, four of them twice.
    for (const float z : {min.z, max.z})
        drawRectangle({min.x, min.y, z}, {max.x, min.y, z}, {max.x, max.y, z}, {min.x, max.y, z});
    for (const float x : {min.x, max.x})
        drawRectangle({x, min.y, min.z}, {x, max.y, min.z}, {x, max.y, max.z}, {x, min.y, max.z});
    glPopMatrix();
}

// Normals

/// By where a normal comes from, as CPointNormalChannel tells it: given, worked out for what was given, smoothed.
static GLColor GetNormalColor(unsigned int status)
{
    if (status & 2)
        return {1, 1, 0, 1};
    return status & 4 ? GLColor{1, 0.5f, 0, 1} : GLColor{1, 0.1f, 0, 1};
}

/// Of the lines, in the node's space: a part of its box, whatever its scale.
static float GetNormalLength(const C3DSceneNode& node, int tick)
{
    constexpr double PART = 1.0 / 40;
    C3DTPoint<float> min, max;
    node.GetBoundingBox(tick, min, max, BOX_FACES, VIEW_FACE_HIDDEN);
    C4x4TMatrix<float> matrix;
    C3DTVector<float> scale;
    node.GetNodeTM(tick, matrix, true);
    matrix.GetScale(scale);
    const double size = C3DTVector<float>(max.x - min.x, max.y - min.y, max.z - min.z).Length(), scaled = scale.Length();
    return scaled > 0 ? static_cast<float>(size / scaled * PART) : 0;
}

void C3DView::DrawNormals(C3DSceneNode* node)
{
    C3DGeomObject* const geometry = GetDrawnGeometry(node, GetTick());
    if (!geometry || !geometry->GetFaceList() || !geometry->GetPointList() || !geometry->GetFaceNormalChannel())
        return;
    CPointNormalChannel* const normals = geometry->GetPointNormalChannel();
    if (!normals)
        return;
    const bool given = (m_settings.viewFlags & VIEWFLAG_SPEC_NORMALS) != 0;
    const CGeomInfo info(geometry);
    normals->PrepareSmoothing(&info, given ? geometry->GetChannels()->GetSpecNormalChannel() : nullptr);
    const float length = GetNormalLength(*node, static_cast<int>(GetTick()));
    const C3DPointList& points = *geometry->GetPointList();

    const CGLRenderingMode lines(*this, MODE_LINES, GL_CURRENT_BIT);
    glBegin(GL_LINES);
    C3DFace face;
    for (int i = 0; geometry->GetFaceList()->GetFace(i, face); i++) {
        for (int corner = 0; corner < face.GetSize() && !face.IsOneFlagSet(FACE_UNSEEN); corner++) {
            const int number = face[corner];
            unsigned int status;
            const C3DTVector<float>* const normal =
                given ? normals->GetSmoothNormalByCorner(i, corner, &status) : normals->GetSmoothNormalByIndex(i, number, &status);
            if (!normal || number < 0 || number >= points.GetSize())
                continue;
            const C3DTPoint<float>& from = *points[number];
            glColor4fv(GetNormalColor(status).data());
            glVertex3fv(from.ValPtr());
            glVertex3f(from.x + normal->x * length, from.y + normal->y * length, from.z + normal->z * length);
        }
    }
    glEnd();
}

// Numbers

void C3DView::RenderGDI(C3DSceneNode* node)
{
    const unsigned int flags = m_settings.viewFlags;
    const unsigned int wanted = IsDrawingFlagSet(GLDRAW_MEMORY) ? GLDRAW_MEMORY_LABELS : GLDRAW_DEFERRED_PAINT;
    C3DGeomObject* const geometry = GetDrawnGeometry(node, GetTick());
    if (!IsDrawingFlagSet(wanted) || !(flags & (VIEWFLAG_POINT_LABELS | VIEWFLAG_FACE_LABELS)) || !geometry)
        return;
    const float ink = m_settings.background.GetLuminance() > 0.4 ? 0 : 1;    // what shows on the background
    glPushAttrib(GL_CURRENT_BIT);
    glColor3f(ink, ink, ink);
    {
        CGLDrawText labels(*this, false);
        const C3DPointList* const points = geometry->GetPointList();
        for (int i = 0; points && (flags & VIEWFLAG_POINT_LABELS) && i < points->GetSize(); i++)
            if (!(*points)[i]->IsOneFlagSet(VIEW_POINT_HIDDEN))
                labels.DrawLabel(*(*points)[i], std::to_string(i));
        const CGeomInfo info(geometry);
        C3DFace face;
        for (int i = 0; points && (flags & VIEWFLAG_FACE_LABELS) && geometry->GetFaceList() && geometry->GetFaceList()->GetFace(i, face);
             i++) {
            if (face.IsOneFlagSet(FACE_UNSEEN))
                continue;
            C3DTPoint<float> center;
            face.GetCenter(&info, center);
            labels.DrawLabel(center, std::to_string(i));
        }
    }
    glPopAttrib();
}
