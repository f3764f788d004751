// The faces of an object into the list that is open: triangles for surfaces, lines for wires.

#include <GL/gl.h>

#include <memory>
#include <vector>

#include "channels/PointNormalChannel.h"
#include "channels/UVWPointList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"
#include "render/FaceCutter.h"
#include "render/MeshBuffer.h"
#include "render/View.h"
#include "scene/GeomObject.h"

// --- Surfaces --------------------------------------------------------------------------------------------------------------------

void C3DView::ViewFlatNode(C3DSceneNode* node, C3DGeomObject* geometry) { DrawSolid(node, geometry, VIEWFLAG_FLAT); }

void C3DView::ViewSmoothNode(C3DSceneNode* node, C3DGeomObject* geometry) { DrawSolid(node, geometry, VIEWFLAG_SMOOTH); }

/// Face numbers by material, so that the list changes material as seldom as can be; null when there is one material alone.
static std::unique_ptr<unsigned int[]> OrderByMaterial(C3DGeomObject& geometry)
{
    const C3DGeomObject::MaterialMap* const materials = geometry.GetMaterialsHashMap(false);
    if (!materials || materials->GetCount() < 2)
        return nullptr;
    bool changed;
    std::unique_ptr<unsigned int[]> order(geometry.GetFaceList()->Sort(FACE_SORT_MATERIAL, changed));
    return changed ? std::move(order) : nullptr;
}

void C3DView::DrawSolid(C3DSceneNode* node, C3DGeomObject* geometry, unsigned int mode)
{
    if (!geometry->GetFaceList() || !geometry->GetPointList())
        return;
    const bool split = !m_element.inFlushCallback && !m_transparentMaterials.IsEmpty();
    bool hasTransparent = false;
    for (const Round round : {split ? ROUND_OPAQUE : ROUND_ALL, ROUND_TRANSPARENT}) {
        if (round == ROUND_TRANSPARENT && !hasTransparent)
            break;
        if (!BeginNode(node, geometry, round == ROUND_TRANSPARENT ? mode | DRAW_TRANSPARENT : mode))
            return;
        // Blending depends on the order: transparent faces keep theirs.
        const auto order = round == ROUND_TRANSPARENT ? nullptr : OrderByMaterial(*geometry);
        for (const bool front : {true, false}) {
            if (!front && !m_element.hasBackMaterials)
                break;
            if (m_element.hasBackMaterials) {
                EndPrimitive();
                SetCullMode(1, m_element.viewFlags, front);
                BeginPrimitive(m_primitive);
            }
            DrawSide(*geometry, order.get(), front, round, hasTransparent);
        }
        EndNode();
    }
    if (hasTransparent)
        m_transparentObjects.Insert(static_cast<int>(GetCallListID(geometry)));
}

/// Sends the corners of faces to the list of a view: colour, normal, texture coordinate, point.
class CCornerSender {
public:
    CCornerSender(C3DView& view, const CGeomInfo& info)
        : m_view(view), m_element(view.m_element), m_info(info), m_mesh(view.m_list.mesh.get()),
          m_smooth(m_element.nodeMode == VIEWFLAG_SMOOTH), m_lastCornerCounts(!m_smooth && !(m_element.viewFlags & VIEWFLAG_SMOOTH))
    {
        if (m_smooth && m_element.pointNormals)
            m_element.pointNormals->PrepareSmoothing(&info, m_element.specNormals);
    }

    void SendFace()
    {
        if (!m_smooth)
            m_faceNormal = m_element.faceNormalList->ElementAt(m_element.faceNumber);
        else
            m_reversed = m_element.specNormals && LooksBack();
        if (m_element.face.GetSize() == 3) {
            for (int corner = 0; corner < 3; corner++)
                SendCorner(corner, corner == 2);
            return;
        }
        int sent = 0;
        for (const int corner : m_cutter.Cut(m_info, m_element.face))
            SendCorner(corner, ++sent % 3 == 0);
    }

private:
    /// Whether the face's normals look to the side from which it goes round clockwise. GL lights the side that it takes for the back by the
    /// normals turned round, and goes by the corners' order: with such normals it would light both sides from behind.
    bool LooksBack() const
    {
        const C3DFace& face = m_element.face;
        const C3DTPoint<float>& origin = *m_element.pointList->ElementAt(face[0]);
        const auto from = [&](int corner) { return *m_element.pointList->ElementAt(face[corner]) - origin; };
        C3DTVector<double> across(0, 0, 0), looks(0, 0, 0);
        for (int k = 1; k + 1 < face.GetSize(); k++) {
            const auto a = from(k), b = from(k + 1);
            across += C3DTVector<double>(double{a.y} * b.z - double{a.z} * b.y, double{a.z} * b.x - double{a.x} * b.z,
                                         double{a.x} * b.y - double{a.y} * b.x);
        }
        for (int k = 0; k < face.GetSize(); k++)
            if (const auto* const normal = m_element.pointNormals->GetSmoothNormalByCorner(m_element.faceNumber, k, nullptr))
                looks += C3DTVector<double>(normal->x, normal->y, normal->z);
        return across.x * looks.x + across.y * looks.y + across.z * looks.z < 0;
    }

    void SendCorner(int corner, bool last)
    {
        const int number = m_element.face[corner];
        C3DTPoint<float>* const point = m_element.pointList->ElementAt(number);
        const bool ownMaterial = m_smooth && (m_element.faceState & FACE_RESULT_POINT_MATERIALS);
        if (ownMaterial && !m_mesh) {
            m_element.cornerNumber = corner;
            m_element.pointNumber = number;
            m_element.point = point;
            m_view.InitPointMaterial();
        }
        unsigned int status;
        const C3DTVector<float>* const normal =
            m_smooth ? m_element.pointNormals->GetSmoothNormalByCorner(m_element.faceNumber, corner, &status) : m_faceNormal;
        const CUVWPoint* const uvw = m_element.uvwInUse ? m_element.uvwPointList->ElementAt(m_element.uvwFace[corner]) : nullptr;
        if (m_mesh && m_lastCornerCounts && !last) {
            m_mesh->AddCornerOfAnyNormal(number, *point, normal, uvw);
            return;
        }
        if (m_mesh) {
            const CRGBColor color = ownMaterial ? m_view.GetMixedColor(m_view.GetCornerColor(corner)) : CRGBColor();
            m_mesh->AddCorner(number, *point, normal, m_reversed, uvw, color);
            return;
        }
        if (normal)
            glNormal3fv(m_reversed ? (-*normal).ValPtr() : normal->ValPtr());
        if (uvw)
            glTexCoord3fv(uvw->ValPtr());
        glVertex3fv(point->ValPtr());
    }

    C3DView& m_view;
    _RenderElement& m_element;
    const CGeomInfo& m_info;
    CMeshBuffer* const m_mesh;
    const bool m_smooth;
    const bool m_lastCornerCounts;    ///< GL shades flat: a triangle has the colour of its last corner
    const C3DTVector<float>* m_faceNormal = nullptr;
    bool m_reversed = false;    ///< the face's normals count the other way round
    CFaceCutter m_cutter;
};

/// Corners that are in no list have nothing to be drawn.
static bool HasSoundCorners(const CFace& face, int points)
{
    for (int k = 0; k < face.GetSize(); k++)
        if (static_cast<unsigned int>(face[k]) >= static_cast<unsigned int>(points))
            return false;
    return true;
}

void C3DView::DrawSide(C3DGeomObject& geometry, const unsigned int* order, bool front, Round round, bool& hasTransparent)
{
    const CGeomInfo info(&geometry);
    CCornerSender sender(*this, info);
    const C3DFaceList& faces = *geometry.GetFaceList();
    const int count = faces.GetSize(), points = m_element.pointList->GetSize();
    unsigned int lastMaterial = NO_MATERIAL;
    bool lastTransparent = false;
    for (int i = 0; i < count; i++) {
        const int face = order ? static_cast<int>(order[i]) : i;
        if (round != ROUND_ALL) {
            if (const unsigned int material = faces.GetFaceMaterial(face); material != lastMaterial) {
                lastMaterial = material;
                lastTransparent = m_transparentMaterials.Find(static_cast<int>(material));
            }
            hasTransparent |= lastTransparent;
            if (lastTransparent != (round == ROUND_TRANSPARENT))
                continue;
        }
        if (BeginFace(face, front) && m_element.face.GetSize() >= 3 && HasSoundCorners(m_element.face, points))
            sender.SendFace();
    }
}

// --- Wires -----------------------------------------------------------------------------------------------------------------------

namespace {

/// Edges that were drawn, by their smaller end: an edge between two faces is one line.
class CDrawnEdges {
public:
    explicit CDrawnEdges(int points) : m_first(points, NONE) {}

    /// True for the first time.
    bool Add(int a, int b)
    {
        if (a > b)
            std::swap(a, b);
        for (unsigned int edge = m_first[a]; edge != NONE; edge = m_edges[edge].next)
            if (m_edges[edge].end == b)
                return false;
        m_edges.push_back({b, m_first[a]});
        m_first[a] = static_cast<unsigned int>(m_edges.size() - 1);
        return true;
    }

private:
    static constexpr unsigned int NONE = 0xFFFFFFFF;
    struct Edge {
        int end;
        unsigned int next;
    };
    CBlockVector<unsigned int> m_first;
    CBlockVector<Edge> m_edges;
};

}

void C3DView::ViewWireframeNode(C3DSceneNode* node, C3DGeomObject* geometry)
{
    if (!geometry->GetFaceList() || !geometry->GetPointList() || !BeginNode(node, geometry, VIEWFLAG_WIREFRAME))
        return;
    C3DPointList& points = *m_element.pointList;
    const auto order = OrderByMaterial(*geometry);
    CDrawnEdges drawn(points.GetSize());
    const auto send = [&](int number) {
        if (m_list.mesh)
            m_list.mesh->AddCorner(number, *points.ElementAt(number), nullptr, false, nullptr, {});
        else
            glVertex3fv(points.ElementAt(number)->ValPtr());
    };
    for (int i = 0; i < m_element.faceList->GetSize(); i++) {
        if (!BeginFace(order ? static_cast<int>(order[i]) : i, true) || m_element.face.GetSize() < 3 ||
            !HasSoundCorners(m_element.face, points.GetSize()))
            continue;
        for (int corner = 0; corner < m_element.face.GetSize(); corner++) {
            const int from = m_element.face[corner], to = m_element.face.GetNextIndex(corner);
            if (drawn.Add(from, to)) {
                send(from);
                send(to);
            }
        }
    }
    EndNode();
}
