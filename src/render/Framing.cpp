#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "geometry/3DPointList.h"
#include "geometry/Quaternion.h"
#include "render/View.h"
#include "render/ViewProfile.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "scene/GeomObject.h"
#include "scene/NodeWalkTM.h"
#include "scene/Preferences.h"

// Where the eye stands, and how much it takes in.
//
// A point p of the scene is seen at R * (p - centre) + t, R and t being rotation and translation of the view matrix; the eye looks along -z with
// y up. So the scene turns about its centre, which stands at t before the eye: t.z, below 0, is the distance, and t.x, t.y move it sideways.

// The scene's box

static constexpr unsigned int UNFRAMED_KINDS = OBJECT_CAMERA | OBJECT_LIGHT;

/// Beyond this the product of two distances leaves the floats in which GL computes depths; numbers that are none fail the test too.
static bool IsDrawable(const C3DTPoint<float>& p)
{
    constexpr float LARGEST = 1e17f;
    return std::fabs(p.x) <= LARGEST && std::fabs(p.y) <= LARGEST && std::fabs(p.z) <= LARGEST;
}

/// The box of those points alone that can be drawn, for scenes that have others; zeros for none.
static void GetDrawableBox(const C3DScene& scene, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags,
                           unsigned int excluded)
{
    min = max = C3DTPoint<float>();
    bool found = false;
    CNodeWalkTM walk(scene.GetTickCount(), true);
    C4x4TMatrix<float> matrix;
    for (C3DNodePos pos = scene.GetFirstNode(~excluded); pos;) {
        const C3DSceneNode* const node = scene.GetNextNode(pos);
        C3DBaseObject* const final = node->GetFinalObject();
        const C3DGeomObject* const object = final ? static_cast<C3DGeomObject*>(*final) : nullptr;
        const C3DPointList* const points = object ? object->GetPointList() : nullptr;
        if (!points || object->IsFlagSet(OBJECT_EMPTY) || (boxFlags & BOX_SELECTED_ONLY && !node->IsFlagSet(NODE_SELECTED)) ||
            (boxFlags & BOX_SKIP_HIDDEN && node->IsFlagSet(NODE_HIDDEN)))
            continue;
        walk.Get(node, matrix);
        const C3DTPoint<float>* point = points->GetFirst();
        for (int i = 0; i < points->GetSize(); i++) {
            const C3DTPoint<float> p = matrix * point[i];
            if (!IsDrawable(p))
                continue;
            for (int axis = 0; axis < 3; axis++) {
                min[axis] = found ? std::min(min[axis], p[axis]) : p[axis];
                max[axis] = found ? std::max(max[axis], p[axis]) : p[axis];
            }
            found = true;
        }
    }
}

void C3DView::GetFramingBox(unsigned int& boxFlags, unsigned int& pointFilter) const
{
    const bool hiddenShow = m_settings.viewFlags & VIEWFLAG_HIDDEN_STIPPLED && IsSolid();
    boxFlags = hiddenShow ? +BOX_POINTS : BOX_FACES | BOX_SKIP_HIDDEN;
    pointFilter = hiddenShow ? 0U : VIEW_FACE_HIDDEN;
}

void C3DView::GetBBox(bool selectedOnly, C3DTPoint<float>& min, C3DTPoint<float>& max, C3DTPoint<float>& center, unsigned int boxFlags,
                      unsigned int excluded) const
{
    min = max = center = C3DTPoint<float>();
    if (!m_scene)
        return;
    unsigned int flags, filter;
    GetFramingBox(flags, filter);
    flags |= boxFlags | BOX_NOT_KINDS;
    if (selectedOnly)
        flags |= BOX_SELECTED_ONLY;
    excluded |= UNFRAMED_KINDS;
    m_scene->GetRoot()->GetBoundingBox(m_scene->GetTickCount(), min, max, flags, filter, excluded);
    if (!IsDrawable(min) || !IsDrawable(max))
        GetDrawableBox(*m_scene, min, max, flags, excluded);
    for (int axis = 0; axis < 3; axis++)
        center[axis] = (min[axis] + max[axis]) / 2;
}

C3DTPoint<float> C3DView::GetSceneCenter() const
{
    C3DTPoint<float> min, max, center;
    GetBBox(false, min, max, center, 0, 0);
    return center;
}

static double Distance(const C3DTPoint<float>& a, const C3DTPoint<float>& b)
{
    return std::hypot(double{b.x} - a.x, double{b.y} - a.y, double{b.z} - a.z);
}

// Fitting

void C3DView::InitClippingPlane()
{
    if (!m_scene)
        return;
    C3DTPoint<float> min, max, center;
    GetBBox(false, min, max, center, 0, m_settings.hiddenKinds);
    const double size = Distance(min, max);
    m_settings.sceneSize = static_cast<float>(size);

    // A ball around the box; the scene may have been turned in any way about a centre that is not the box's.
    const double distance = Distance(m_settings.sceneCenter, center), z = m_settings.matrix.m[2][3];
    float& nearPlane = m_settings.nearPlane;
    float& farPlane = m_settings.farPlane;
    nearPlane = static_cast<float>(-z - distance - 0.5 * size);
    farPlane = static_cast<float>(distance - z + 0.5 * size);
    if (!(farPlane > 0))
        farPlane = 0.002f;
    if (!(nearPlane > 0 && nearPlane < farPlane))
        nearPlane = farPlane / 100;
}

/// Half the width that shows all of a box about the middle of the view, with a margin; 0 for a box without sides across the line of sight.
static double GetHalfWidth(const GlViewSettings& settings, const C3DTPoint<float>& min, const C3DTPoint<float>& max)
{
    constexpr double MARGIN = 1.05;
    const auto reach = [&](int row) {
        double sum = 0;
        for (int axis = 0; axis < 3; axis++)
            sum += std::fabs(double{settings.matrix.m[row][axis]}) * (double{max[axis]} - min[axis]) / 2;
        return sum;
    };
    return std::max(reach(0), reach(1) * settings.aspect) * MARGIN;
}

void C3DView::AdjustView(unsigned int flags)
{
    if (!m_scene || !(flags & (GLSET_FIT | GLSET_FIT_ALT)))
        return;
    C3DTPoint<float> min, max, center;
    bool onSelection = flags & GLSET_FIT_SELECTION;
    GetBBox(onSelection, min, max, center, 0, 0);
    const C3DTPoint<float> nothing;
    if (onSelection && Distance(min, nothing) == 0 && Distance(max, nothing) == 0) {
        onSelection = false;    // nothing of what is selected has a size
        GetBBox(false, min, max, center, 0, 0);
    }
    InitClippingPlane();    // for the size: of the whole scene, whatever is fitted
    m_settings.sceneCenter = center;

    // The distance serves both projections: an orthographic one takes its depths from it.
    const double size = m_settings.sceneSize, diagonal = Distance(min, max);
    const double depth = std::min({double{max.x} - min.x, double{max.y} - min.y, double{max.z} - min.z});
    const double narrow = m_settings.aspect > 0 ? std::max(1.0, 1.0 / m_settings.aspect) : 1;
    m_settings.matrix.SetTranslation(0, 0, static_cast<float>(-(1.21 * size + 0.5 * depth) * narrow));
    m_settings.matrix.m[3][3] = 1;
    if (!m_settings.IsOrthographic())
        return;
    if (m_settings.GetCurrentCamera()->GetRefCount() > 1)    // copies of the settings share it
        m_settings.SetCurrentCamera(m_settings.GetCurrentCamera());
    // A selection fills the view as it is turned now; the scene has room to turn in.
    const double width = onSelection ? 2 * GetHalfWidth(m_settings, min, max) : 0, shown = width > 0 ? width : diagonal;
    m_settings.GetCurrentCamera()->SetZoom(shown > 0 && size > 0 ? size / shown : 1);
}

void C3DView::GetEyeSlope(const CPoint& point, double& x, double& y) const
{
    x = y = 0;
    if (m_viewSize.cx <= 0 || m_viewSize.cy <= 0)
        return;
    const double halfWidth = m_settings.IsOrthographic() ? m_settings.sceneSize / (2 * m_settings.GetCurrentCamera()->GetZoom())
                                                         : std::tan(VIEW_ANGLE / 2) * m_settings.aspect;
    x = (2.0 * point.x / m_viewSize.cx - 1) * halfWidth;
    y = (1 - 2.0 * point.y / m_viewSize.cy) * halfWidth / m_settings.aspect;
}

void C3DView::SizeChanged(int width, int height)
{
    if (!GetGLContext())
        return;
    GrowPixelSurface({width, height});
    m_viewSize = {std::max(width, 0), std::max(height, 0)};
    m_settings.aspect = m_viewSize.cy ? static_cast<float>(static_cast<double>(m_viewSize.cx) / m_viewSize.cy) : 0;
    const CGLActivate active(this);
    glViewport(0, 0, m_viewSize.cx, m_viewSize.cy);
    if (m_host && GetViewProfile(PROFILE_SETTINGS) & SETTINGS3D_AUTO_FIT)
        InitClippingPlane();
    Invalidate();
}

// Points of view

namespace {

enum Axis : char { X, Y, Z };

/// A turn by a fixed angle, or by a number of times the angle of slanted views.
struct Turn {
    Axis axis;
    double fixed;
    int slanted = 0;
};

constexpr double QUARTER = std::numbers::pi / 2, HALF = std::numbers::pi;

/// How the scene is turned before the eye, which looks down on it, by point of view; the last turn comes first.
const std::vector<Turn> g_turns[] = {
    {},                                                  // 0
    {{X, QUARTER}, {Z, -QUARTER}},                       // RVIEW_LEFT
    {{X, QUARTER}, {Z, QUARTER}},                        // RVIEW_RIGHT
    {},                                                  // RVIEW_TOP
    {{Z, HALF}, {Y, HALF}},                              // RVIEW_BOTTOM
    {{X, QUARTER}},                                      // RVIEW_FRONT
    {{X, QUARTER}, {Z, HALF}},                           // RVIEW_BACK
    {},                                                  // 7
    {{X, 0, 1}, {Z, 0, -1}},                             // RVIEW_LEFT_TOP_FRONT
    {{X, 0, 1}, {Z, 0, 1}},                              // RVIEW_RIGHT_TOP_FRONT
    {{X, QUARTER}, {Z, HALF}, {X, 0, 1}, {Z, 0, 1}},     // RVIEW_LEFT_TOP_BACK
    {{X, QUARTER}, {Z, HALF}, {X, 0, 1}, {Z, 0, -1}},    // RVIEW_RIGHT_TOP_BACK
    {{X, QUARTER}, {X, 0, 1}, {Z, 0, -1}},               // RVIEW_LEFT_BOTTOM_FRONT
    {{X, QUARTER}, {X, 0, 1}, {Z, 0, 1}},                // RVIEW_RIGHT_BOTTOM_FRONT
    {{X, HALF}, {Z, HALF}, {X, 0, 1}, {Z, 0, 1}},        // RVIEW_LEFT_BOTTOM_BACK
    {{X, HALF}, {Z, HALF}, {X, 0, 1}, {Z, 0, -1}},       // RVIEW_RIGHT_BOTTOM_BACK
};

}

void TurnMatrix(C4x4TMatrix<float>& matrix, const C3DTVector<float>& axis, double angle)
{
    if (std::fabs(angle) < 1e-15)
        return;
    C4x4TMatrix<float> rotation;
    rotation.FromQuaternion(CQuaternion(axis, angle));
    matrix *= rotation;
}

static void Rotate(C4x4TMatrix<float>& matrix, Axis axis, double angle)
{
    TurnMatrix(matrix, C3DTVector<float>(axis == X, axis == Y, axis == Z), angle);
}

void C3DView::SetView(_RVIEW_FLAG number, int redraw, float angle)
{
    if (number == RVIEW_DEFAULT) {
        const bool useCamera = m_scene && GetViewProfile(PROFILE_SETTINGS) & SETTINGS3D_USE_CAMERA;
        if (!useCamera || !LoadCamera(m_scene->GetFirstNode(OBJECT_CAMERA).GetNode()))
            SetView(RVIEW_FRONT, redraw, angle);
        return;
    }
    if (number == RVIEW_CUSTOM || number > RVIEW_RIGHT_BOTTOM_BACK)
        return;
    if (angle == 0 || !std::isfinite(angle))
        angle = C3DPreferences::Get3DPreferences().GetViewAngle();
    C4x4TMatrix<float>& matrix = m_settings.matrix;
    const C3DTVector<float> translation = matrix.GetTranslation();
    matrix.SetIdentity();
    for (const Turn& turn : g_turns[number])
        Rotate(matrix, turn.axis, turn.fixed + turn.slanted * double{angle});
    matrix.SetTranslation(translation.x, translation.y, translation.z);
    m_settings.viewNumber = number;
    m_settings.viewAngle = angle;
    if (redraw)
        Invalidate();
}

bool C3DView::LoadCamera(C3DSceneNode* node)
{
    C3DBaseObject* const object = node ? node->GetBaseObject() : nullptr;
    C3DCamera* const camera = object ? static_cast<C3DCamera*>(*object) : nullptr;
    if (!camera)
        return false;
    const int time = m_scene ? m_scene->GetTickCount() : 0;
    C4x4TMatrix<float> place, matrix;
    node->GetNodeTM(time, place, true);
    place.RemoveScale();           // a camera has no size: distances before it are those of the scene
    Rotate(place, X, -QUARTER);    // a camera looks along y with z up, the eye along -z with y up
    if (!C4x4TMatrix<float>::GetInverse(place, matrix) || !IsDrawable(matrix * C3DTPoint<float>()))
        return false;

    m_cameraID = static_cast<int>(node->GetNodeID());
    m_settings.SetCurrentCamera(camera);
    const C3DSceneNode* const target = camera->HasTarget() && m_scene ? m_scene->GetNodeByID(camera->GetTarget()) : nullptr;
    C3DTPoint<float> center;
    if (target && target->GetCG(time, center) && IsDrawable(center))
        m_settings.sceneCenter = center;
    const C3DTPoint<float> seen = matrix * m_settings.sceneCenter;    // the eye stands in the camera, whatever the scene turns about
    matrix.SetTranslation(seen.x, seen.y, seen.z);
    m_settings.matrix = matrix;
    return true;
}
