// Given normals for corners that have none: flat by the face, or smoothed by the faces around each point.

#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>

#include "channels/Cosine.h"
#include "channels/FaceCorners.h"
#include "channels/FaceNormalContributionInfo.h"
#include "channels/FaceNormals.h"
#include "channels/HubSums.h"
#include "channels/NormalFaceList.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"
#include "tools/BlockVector.h"
#include "tools/Hash.h"

namespace {

enum Options : unsigned int {
    FILL_DEAD_FACES = 1,
    FILL_ONLY_IF_UNSET = 2,
    FILL_SMOOTH = 4,
    FILL_FLAT = 8,
};

class CNormalFill {
public:
    /// @param deadFaces  number of normal faces without data
    CNormalFill(const CGeomInfo* info, double angle, CNormalFaceList& normalFaces, C3DVectorList& vectors, int deadFaces)
        : m_faces(*info->GetSrc3DFaceList()), m_normalFaces(normalFaces), m_vectors(vectors), m_flags(m_faces), m_angle(std::cos(angle)),
          m_context(info), m_unitNormals(info, m_context.GetUnnormalizedNormals()), m_faceCorners(m_faces), m_used(vectors.GetSize()),
          m_shared(static_cast<unsigned int>(std::min<long long>(2LL * deadFaces, 0x7FFFFFFF)))
    {
    }

    /// With `smooth` needs the point-to-face graph.
    void Run(bool deadFaces, bool smooth)
    {
        const CFaceFlags normalFlags(m_normalFaces);
        const int size = std::min(m_faces.GetSize(), m_normalFaces.GetSize());
        for (int face = 0; face < size; face++) {
            if (m_flags[face] & FACE_INVALID)
                Empty(face);
            else if (normalFlags.IsDead(face) ? deadFaces && OpenFace(face) : CollectUnset(face))
                smooth ? FillSmooth(face) : FillFlat(face);
        }
        m_vectors.SetSize(m_used);
        m_normalFaces.SetFlag(FACELIST_CHANGED, true);
    }

private:
    void Empty(int face)
    {
        CNormalFace view;
        m_normalFaces.GetFace(face, view);
        view.RemoveAll();
        view.SetFlags(FACE_DEAD, false);
        view.SetFlag(FACE_EMPTY, true);
    }

    /// Gives a face without data its corners, all of which are to be filled.
    bool OpenFace(int face)
    {
        int count;
        m_faces.GetIndexes(face, count);
        CNormalFace view;
        m_normalFaces.GetFace(face, view);
        view.SetSize(count);
        view.SetFlags(FACE_DEAD, false);
        m_corners.clear();
        for (int k = 0; k < count; k++)
            m_corners.push_back(k);
        return true;
    }

    /// The corners without a value; their vectors are given up.
    bool CollectUnset(int face)
    {
        m_corners.clear();
        int count, normalCount;
        m_faces.GetIndexes(face, count);
        const int* normals = m_normalFaces.GetIndexes(face, normalCount);
        for (int k = 0; k < std::min(count, normalCount); k++) {
            C3DTVector<float>* vector = m_vectors.ElementAt(normals[k]);
            if (!vector || !vector->IsFlagSet(POINT_UNSET))
                continue;
            vector->SetFlag(POINT_INVALID, true);
            m_corners.push_back(k);
        }
        return !m_corners.empty();
    }

    void FillFlat(int face)
    {
        const int number = Append(m_unitNormals[face]);
        int count;
        int* normals = m_normalFaces.GetIndexes(face, count);
        for (const int corner : m_corners)
            normals[corner] = number;
    }

    void FillSmooth(int face)
    {
        int count;
        const int* points = m_faces.GetIndexes(face, count);
        int* normals = m_normalFaces.GetIndexes(face, count);
        for (const int corner : m_corners) {
            const int point = points[corner];
            if (const int* known = m_shared.Find(point)) {
                normals[corner] = *known;
                continue;
            }
            C3DTVector<float> sum;
            const bool allAgree = Sum(face, point, sum);
            normals[corner] = Append(sum);
            if (allAgree)
                m_shared.Insert(point, normals[corner]);
        }
    }

    /// The face and those around the point within its angle; true when that is all of them.
    bool Sum(int face, int point, C3DTVector<float>& sum)
    {
        int count;
        const int* around = m_faces.GetFacesConnectedToPoint(point, count);
        m_context.SetPoint(point);
        if (count >= MANY_FACES)
            if (CHubSums& hub = GetHub(point, around, count); hub.Has(face)) {
                const bool allAgree = hub.Get(face, sum);
                NormalizeSum(sum);
                return allAgree;
            }
        const C3DTVector<float>& normal = m_unitNormals[face];
        bool allAgree = true;
        Contribute(face, point, sum);
        for (int i = 0; i < count; i++) {
            if (around[i] == face || m_flags.IsDead(around[i]))
                continue;
            if (m_angle.IsWithin(normal, m_unitNormals[around[i]]))
                Contribute(around[i], point, sum);
            else
                allAgree = false;
        }
        NormalizeSum(sum);
        return allAgree;
    }

    CHubSums& GetHub(int point, const int* around, int count)
    {
        std::unique_ptr<CHubSums>& hub = m_hubs[point];
        if (!hub) {
            hub = std::make_unique<CHubSums>(m_angle);
            for (int i = 0; i < count; i++) {
                if (m_flags.IsDead(around[i]))
                    continue;
                C3DTVector<float> part;
                Contribute(around[i], point, part);
                hub->Add(around[i], m_unitNormals[around[i]], part);
            }
        }
        return *hub;
    }

    void Contribute(int face, int point, C3DTVector<float>& sum)
    {
        m_context.SetFace(face, &m_unitNormals[face], m_faceCorners.GetFirst(face, point));
        m_context.AddContribution(sum);
    }

    int Append(const C3DTVector<float>& vector)
    {
        if (m_used == m_vectors.GetSize())
            m_vectors.SetSize(m_used + 1 + m_used / 2);
        C3DTVector<float>& to = *m_vectors.ElementAt(m_used);
        to = vector;
        to.SetFlags(0);
        return m_used++;
    }

    static constexpr int MANY_FACES = 64;

    C3DFaceList& m_faces;
    CNormalFaceList& m_normalFaces;
    C3DVectorList& m_vectors;
    const CFaceFlags m_flags;
    const CAngleTest m_angle;
    CFaceNormalContributionInfo m_context;
    const CFaceNormals m_unitNormals;
    CFaceCorners m_faceCorners;
    int m_used;                                                   // vectors; those behind are room
    CHashMap<int, int> m_shared;                                  // by point: the vector for all its corners
    CBlockVector<int> m_corners;                                  // of the current face, to be filled
    std::unordered_map<int, std::unique_ptr<CHubSums>> m_hubs;    // by point, of those with many faces
};

}    // namespace

void CSpecNormalChannel::GenerateNormals(const CGeomInfo* info, unsigned int options, double angle, _NormalSmoothMode mode)
{
    ComputeNormals(info, mode);
    C3DFaceList* faces = info ? info->GetSrc3DFaceList() : nullptr;
    if (!(options & (FILL_DEAD_FACES | FILL_ONLY_IF_UNSET)) || !faces || faces->GetSize() == 0 || !GetFaceList() || !GetPointList())
        return;
    C3DVectorList& vectors = *GetNormalVectorList();
    const int unset = vectors.GetNumberOfPoints(static_cast<unsigned int>(POINT_UNSET), true);
    const int dead = GetFaceList()->GetNumberOfFaces(static_cast<unsigned int>(FACE_DEAD), true);
    if ((unset == 0 && dead == 0) || (options & FILL_ONLY_IF_UNSET && unset == 0))
        return;

    const bool smooth = !(options & FILL_FLAT);
    if (smooth)
        faces->InitPointToFaceGraph(info);
    CNormalFill(info, angle, *GetNormalFaceList(), vectors, dead).Run(options & FILL_DEAD_FACES, smooth);
    if (smooth)
        faces->DeletePointToFaceGraph();
    FreeExtra();
    if (unset > 0)
        Clean(info, nullptr, nullptr);
}
