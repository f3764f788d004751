// Picking of faces. What shows is found by a picture in which the colour of each face is its number; what a wireframe leaves open, by cutting each
// face with the eye's pyramid through the rectangle.
//
//   nodes     whose faces are looked at, or lie before others
//   seen      numbers drawn, and read again
//   touched   faces cut
//   marks     set by what was found

#include <GL/gl.h>

#include <algorithm>
#include <array>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "render/DrawnNode.h"
#include "render/FaceCutter.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"

namespace {

using FaceNumbers = std::vector<unsigned int>;

/// Numbers that a colour of 24 bits can tell; 0 is what has none.
constexpr unsigned int MOST_NUMBERS = 0xFFFFFF;

C3DGeomObject& GetGeometry(C3DBaseObject* final) { return *static_cast<C3DGeomObject*>(final); }

bool HasCornersIn(const CFace& face, int points)
{
    for (int k = 0; k < face.GetSize(); k++)
        if (static_cast<unsigned int>(face[k]) >= static_cast<unsigned int>(points))
            return false;
    return face.GetSize() >= 3;
}

}

// --- Nodes -----------------------------------------------------------------------------------------------------------------------

std::vector<C3DView::DrawnNode> C3DView::CollectSurfaces() const
{
    std::vector<DrawnNode> surfaces = CollectNodes(nullptr);
    std::erase_if(surfaces, [&](const DrawnNode& drawn) {
        const C3DGeomObject* const geometry = drawn.final ? XDynamicCast<C3DGeomObject>(drawn.final) : nullptr;
        return !(drawn.kind & (OBJECT_POLYGONAL | OBJECT_PATCH)) || drawn.kind & m_settings.hiddenKinds || drawn.isHidden || !geometry ||
               !geometry->GetFaceList() || !geometry->GetPointList() || (drawn.wiresOnly && IsSolid());
    });
    return surfaces;
}

bool C3DView::IsFaceShown(unsigned int flags) const
{
    const bool leftOut = (m_settings.viewFlags & VIEWFLAG_MARKED_ONLY) && (flags & VIEW_FACE_ALL) && !(flags & VIEW_FACE_MARKED);
    return !(flags & (FACE_DEAD | VIEW_FACE_HIDDEN)) && !leftOut;
}

bool C3DView::IsFaceCulled(const C3DGeomObject& geometry, unsigned int flags) const
{
    if (geometry.GetFaceList()->HasBackFaceMaterials() || flags & VIEW_FACE_TWO_SIDED || !IsSolid())
        return false;
    if (flags & VIEW_FACE_ONE_SIDED || geometry.GetFaceMode() == FACE_MODE_ONE_SIDED)
        return true;
    return geometry.GetFaceMode() == FACE_MODE_VIEW && m_settings.viewFlags & VIEWFLAG_CULL_BACK;
}

// --- What is seen ----------------------------------------------------------------------------------------------------------------

namespace {

/// State in which a colour arrives in the picture as it was given.
class CExactColors {
public:
    CExactColors(const CRect& area, int viewHeight)
    {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        for (const GLenum changing : {GL_LIGHTING, GL_TEXTURE_2D, GL_BLEND, GL_DITHER, GL_FOG, GL_POLYGON_STIPPLE, GL_ALPHA_TEST,
                                      GL_MULTISAMPLE, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_COLOR_LOGIC_OP, GL_COLOR_MATERIAL})
            glDisable(changing);
        glShadeModel(GL_FLAT);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LESS);
        glDepthMask(GL_TRUE);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glEnable(GL_SCISSOR_TEST);
        glScissor(area.left, viewHeight - area.bottom, area.Width(), area.Height());
    }
    ~CExactColors() { glPopAttrib(); }
    CExactColors(const CExactColors&) = delete;
    CExactColors& operator=(const CExactColors&) = delete;
};

}

/// Faces are numbered through all polygon objects; those from `first` on have their colours, all others are black.
void C3DView::DrawFaceNumbers(const std::vector<DrawnNode>& surfaces, unsigned int first, bool front)
{
    unsigned int past = 0;
    CFaceCutter cutter;
    for (const DrawnNode& drawn : surfaces) {
        C3DGeomObject& geometry = GetGeometry(drawn.final);
        const CGeomInfo info(&geometry);
        C3DPointList& points = *geometry.GetPointList();
        const C3DFaceList& faces = *geometry.GetFaceList();
        const unsigned int begin = past;
        if (drawn.kind == OBJECT_POLYGONAL)
            past += static_cast<unsigned int>(faces.GetSize());
        glLoadMatrixf(drawn.matrix);
        glFrontFace(drawn.isMirrored ? GL_CW : GL_CCW);
        glBegin(GL_TRIANGLES);
        C3DFace face;
        for (int i = 0; faces.GetFace(i, face); i++) {
            const unsigned int flags = face.GetFlags();
            if (!IsFaceShown(flags) || !HasCornersIn(face, points.GetSize()) || (!front && IsFaceCulled(geometry, flags)))
                continue;
            const unsigned int number = begin + static_cast<unsigned int>(i);
            const bool counted = drawn.kind == OBJECT_POLYGONAL && number >= first && number - first < MOST_NUMBERS;
            const unsigned int color = counted ? number - first + 1 : 0;
            glColor3ub(static_cast<GLubyte>(color), static_cast<GLubyte>(color >> 8), static_cast<GLubyte>(color >> 16));
            const auto send = [&](int corner) { glVertex3fv(points.ElementAt(face[corner])->ValPtr()); };
            if (face.GetSize() == 3)
                for (int corner = 0; corner < 3; corner++)
                    send(corner);
            else
                for (const int corner : cutter.Cut(info, face))
                    send(corner);
        }
        glEnd();
    }
}

/// Sides that look away come last, a little behind: along an outline they would show through the sides that look here.
void C3DView::DrawFaceNumbers(const std::vector<DrawnNode>& surfaces, unsigned int first)
{
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    glDisable(GL_POLYGON_OFFSET_FILL);
    DrawFaceNumbers(surfaces, first, true);
    glCullFace(GL_FRONT);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1, 1);
    DrawFaceNumbers(surfaces, first, false);
}

/// The numbers found in a picture of three bytes a pixel, ascending.
static FaceNumbers ReadNumbers(const std::vector<unsigned char>& pixels, unsigned int first)
{
    FaceNumbers found;
    unsigned int last = 0;
    for (std::size_t i = 0; i + 2 < pixels.size(); i += 3) {
        const unsigned int color = pixels[i] | pixels[i + 1] << 8 | pixels[i + 2] << 16;
        if (color != 0 && color != last)
            found.push_back(first + color - 1);
        last = color;
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<FaceNumbers> C3DView::FindSeenFaces(const std::vector<DrawnNode>& surfaces, const CRect& area)
{
    unsigned int total = 0;
    for (const DrawnNode& drawn : surfaces)
        total += drawn.kind == OBJECT_POLYGONAL ? static_cast<unsigned int>(GetGeometry(drawn.final).GetFaceNbr()) : 0;

    std::vector<FaceNumbers> found(surfaces.size());
    std::vector<unsigned char> pixels(std::size_t{3} * area.Width() * area.Height());
    const CExactColors exact(area, m_viewSize.cy);
    for (unsigned int first = 0; first < total; first += MOST_NUMBERS) {
        DrawFaceNumbers(surfaces, first);
        glReadPixels(area.left, m_viewSize.cy - area.bottom, area.Width(), area.Height(), GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
        unsigned int begin = 0;
        std::size_t node = 0;
        for (const unsigned int number : ReadNumbers(pixels, first)) {
            for (;; node++) {    // the node whose faces hold the number
                const bool counts = surfaces[node].kind == OBJECT_POLYGONAL;
                const unsigned int count = counts ? static_cast<unsigned int>(GetGeometry(surfaces[node].final).GetFaceNbr()) : 0;
                if (number - begin < count)
                    break;
                begin += count;
            }
            found[node].push_back(number - begin);
        }
    }
    return found;
}

// --- What is touched -------------------------------------------------------------------------------------------------------------

namespace {

using ClipPoint = std::array<double, 4>;

/// Whether part of a polygon in GL's clip coordinates has -w <= x, y, z <= w. Both lists are scratch.
bool ReachesIn(std::vector<ClipPoint>& polygon, std::vector<ClipPoint>& cut)
{
    for (int axis = 0; axis < 3; axis++)
        for (const double side : {1.0, -1.0}) {
            cut.clear();
            const auto inside = [&](const ClipPoint& p) { return p[3] + side * p[axis]; };
            for (std::size_t i = 0; i < polygon.size(); i++) {
                const ClipPoint &from = polygon[i], &to = polygon[(i + 1) % polygon.size()];
                const double a = inside(from), b = inside(to);
                if (a >= 0)
                    cut.push_back(from);
                if ((a >= 0) != (b >= 0)) {
                    ClipPoint& between = cut.emplace_back();
                    for (int k = 0; k < 4; k++)
                        between[k] = from[k] + (to[k] - from[k]) * a / (a - b);
                }
            }
            polygon.swap(cut);
            if (polygon.empty())
                return false;
        }
    return true;
}

/// product = a * b, in GL's order.
void Multiply(const double* a, const float* b, double* product)
{
    for (int column = 0; column < 4; column++)
        for (int row = 0; row < 4; row++) {
            product[column * 4 + row] = 0;
            for (int k = 0; k < 4; k++)
                product[column * 4 + row] += a[k * 4 + row] * double{b[column * 4 + k]};
        }
}

/// Makes a projection on the whole view one on the area alone.
void Narrow(double* projection, const CRect& area, const CSize& view)
{
    const auto narrow = [&](int row, double low, double high, double size) {
        const double scale = size / (high - low), shift = (size - low - high) / (high - low);
        for (int column = 0; column < 4; column++)
            projection[column * 4 + row] = scale * projection[column * 4 + row] + shift * projection[column * 4 + 3];
    };
    narrow(0, area.left, area.right, view.cx);
    narrow(1, view.cy - area.bottom, view.cy - area.top, view.cy);
}

}

std::vector<FaceNumbers> C3DView::FindTouchedFaces(const std::vector<DrawnNode>& surfaces, const double* projection) const
{
    std::vector<FaceNumbers> found(surfaces.size());
    std::vector<ClipPoint> polygon, scratch;
    for (std::size_t node = 0; node < surfaces.size(); node++) {
        if (surfaces[node].kind != OBJECT_POLYGONAL)
            continue;
        C3DGeomObject& geometry = GetGeometry(surfaces[node].final);
        C3DPointList& points = *geometry.GetPointList();
        double matrix[16];
        Multiply(projection, surfaces[node].matrix, matrix);
        C3DFace face;
        for (int i = 0; geometry.GetFaceList()->GetFace(i, face); i++) {
            if (!IsFaceShown(face.GetFlags()) || !HasCornersIn(face, points.GetSize()))
                continue;
            polygon.clear();
            for (int corner = 0; corner < face.GetSize(); corner++) {
                const C3DTPoint<float>& p = *points.ElementAt(face[corner]);
                ClipPoint& seen = polygon.emplace_back();
                for (int row = 0; row < 4; row++)
                    seen[row] = matrix[row] * p.x + matrix[4 + row] * p.y + matrix[8 + row] * p.z + matrix[12 + row];
            }
            if (ReachesIn(polygon, scratch))
                found[node].push_back(static_cast<unsigned int>(i));
        }
    }
    return found;
}

// --- Marks -----------------------------------------------------------------------------------------------------------------------

namespace {

/// Sets or clears bits of a face; whether that changed it.
bool SetMark(unsigned int& flags, unsigned int mark, bool on)
{
    const unsigned int former = flags;
    flags = on ? flags | mark : flags & ~mark;
    return flags != former;
}

void UnmarkAll(const C3DScene& scene, unsigned int mark)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL); pos;) {
        C3DGeomObject* object;
        scene.GetNextNode(object, pos);
        if (!object || !object->GetFaceList())
            continue;
        const CFaceFlags flags(*object->GetFaceList());
        bool changed = false;
        for (int i = 0; i < object->GetFaceNbr(); i++)
            changed |= SetMark(flags[i], mark, false);
        if (changed)
            object->Invalidate(CHANGE_OTHER, true);
    }
}

}

unsigned int C3DView::SelectFacesFromRect(CXArray<C3DSceneNode*>& nodes, unsigned int x, unsigned int y, unsigned int width,
                                          unsigned int height, GLSelectMode mode, unsigned int mark)
{
    nodes.RemoveAll();
    const CGLActivate active(this);
    if (!m_scene || !IsActive() || !(m_settings.aspect > 0))
        return 0;
    const bool click = width == 0 || height == 0;
    const auto clip = [](unsigned int at, unsigned int size, int limit) {
        return static_cast<int>(std::min<unsigned long long>(1ULL * at + size, limit));
    };
    const CRect area{clip(x, 0, m_viewSize.cx), clip(y, 0, m_viewSize.cy), clip(x, click ? 1 : width, m_viewSize.cx),
                     clip(y, click ? 1 : height, m_viewSize.cy)};

    std::vector<DrawnNode> surfaces;
    std::vector<FaceNumbers> found;
    if (area.Width() > 0 && area.Height() > 0) {
        InitProjection();
        InitModelview();
        surfaces = CollectSurfaces();
        if (IsSolid() || click)
            found = FindSeenFaces(surfaces, area);
        else {
            double projection[16];
            glGetDoublev(GL_PROJECTION_MATRIX, projection);
            Narrow(projection, area, m_viewSize);
            found = FindTouchedFaces(surfaces, projection);
        }
    }

    unsigned int count = 0;
    bool allMarked = true;
    const auto forFound = [&](auto visit) {
        for (std::size_t node = 0; node < found.size(); node++) {
            const CFaceFlags flags(*GetGeometry(surfaces[node].final).GetFaceList());
            for (const unsigned int face : found[node])
                visit(surfaces[node], flags[face]);
        }
    };
    forFound([&](const DrawnNode& drawn, unsigned int& flags) {
        count++;
        allMarked &= (flags & mark) == mark;
        if (nodes.IsEmpty() || nodes[nodes.GetSize() - 1] != drawn.node)
            nodes.Add(drawn.node);
    });
    if (mode != GLSELECT_TOGGLE)
        UnmarkAll(*m_scene, mark);
    const bool on = mode != GLSELECT_TOGGLE || !allMarked;
    forFound([&](const DrawnNode& drawn, unsigned int& flags) {
        if (SetMark(flags, mark, on))
            drawn.final->Invalidate(CHANGE_OTHER, true);
    });
    return count;
}
