// Point normals: the smoothed normal of every corner.
//
//   lay out   the channel's faces get the corners of the geometry's
//   divide    the faces around each point fall into groups; a face joins the first group whose seed, the group's first face, is within
//             the angle, or opens one. Each group sums what its faces contribute, in their order
//   number    equal sums share a vector, in the order in which they come
//   assign    the corners of a group's faces at the point get its vector
//
// Points go through the last three stages in batches, so that the table of vectors is read ahead.

#include <algorithm>
#include <cmath>

#include "channels/Cosine.h"
#include "channels/FaceCorners.h"
#include "channels/FaceNormalContributionInfo.h"
#include "channels/FaceNormals.h"
#include "channels/NormalFaceList.h"
#include "channels/PointNormalChannel.h"
#include "channels/SeedGrid.h"
#include "channels/VectorIndex.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "tools/BlockVector.h"

namespace {

void LayOutFaces(const CFaceList& geometry, CNormalFaceList& normals)
{
    const CFaceFlags flags(geometry);
    const int size = geometry.GetSize();
    const auto cornersOf = [&](int face) {
        return flags[face] & FACE_INVALID ? 0 : geometry.GetIndexCollection().GetItemCount(static_cast<unsigned int>(face));
    };
    const unsigned int first = cornersOf(0);
    bool uniform = first > 0;
    for (int face = 1; uniform && face < size; face++)
        uniform = cornersOf(face) == first;

    normals.RemoveAll();
    if (uniform) {
        normals.AppendFaces(size, static_cast<int>(first), [first](int* corners, unsigned int) { std::fill_n(corners, first, 0); });
        return;
    }
    CBlockVector<unsigned int> sizes(static_cast<std::size_t>(size));
    std::size_t cornerCount = 0;
    for (int face = 0; face < size; face++)
        cornerCount += sizes[face] = cornersOf(face);
    normals.AppendFaces(size, sizes.data(), CBlockVector<int>(cornerCount).data());
    for (int face = 0; face < size; face++)
        if (flags[face] & FACE_INVALID)
            normals.SetFaceFlags(face, FACE_EMPTY, true);
}

class CSmoothing {
public:
    CSmoothing(const CGeomInfo* info, float angle, CNormalFaceList& normalFaces)
        : m_faces(*info->GetSrc3DFaceList()), m_points(*info->GetSrc3DPointList()), m_normalFaces(normalFaces), m_flags(m_faces),
          m_angle(std::cos(angle)), m_context(info), m_unitNormals(info, m_context.GetUnnormalizedNormals()), m_faceCorners(m_faces),
          m_grid(m_angle), m_vectors(static_cast<unsigned int>(m_points.GetSize()))
    {
    }

    /// Needs the point-to-face graph.
    void Run()
    {
        using Context = CFaceNormalContributionInfo;
        switch (m_context.GetMode()) {
        case NORMAL_UNWEIGHTED: return Run<Context::NormalUnweight, false>();
        case NORMAL_EDGE_LENGTH: return Run<Context::NormalEdgeWeight, true>();
        case NORMAL_ANGLE: return Run<Context::NormalAngleWeight, true>();
        default: return Run<Context::NormalAreaWeight, false>();
        }
    }

    /// Replaces the list by the vectors that corners got.
    void Store(C3DVectorList& list) const
    {
        const CVectorIndex::Vector* from = m_vectors.GetVectors();
        list.RemoveAll();
        list.SetSize(static_cast<int>(m_vectors.GetCount()), false, 0);
        C3DTVector<float>* to = list.GetFirst();
        for (unsigned int i = 0; i < m_vectors.GetCount(); i++, from++, to++)
            to->x = from->x, to->y = from->y, to->z = from->z;
    }

private:
    using Contribution = CFaceNormalContributionInfo::Callback;

    static constexpr std::size_t BATCH = 128;         // groups
    static constexpr std::size_t MANY_GROUPS = 32;    // of one point: from here on seeds are looked up
    static constexpr unsigned int NONE = 0xFFFFFFFF;

    template <Contribution CONTRIBUTE, bool LOOKS_AT_CORNER> void Run()
    {
        const int pointCount = m_points.GetSize();
        int first = 0;
        for (int point = 0; point < pointCount; point++) {
            Divide<CONTRIBUTE, LOOKS_AT_CORNER>(point);
            if (m_sums.size() < BATCH && point + 1 < pointCount)
                continue;
            NumberSums();
            AssignCorners(first, point + 1);
            first = point + 1;
            m_sums.clear();
            m_seeds.clear();
            m_groups.clear();
        }
    }

    template <Contribution CONTRIBUTE, bool LOOKS_AT_CORNER> void Divide(int point)
    {
        int count;
        const int* faces = m_faces.GetFacesConnectedToPoint(point, count);
        const std::size_t first = m_sums.size(), done = m_groups.size();
        m_groups.resize(done + count, NONE);
        m_hasGrid = false;
        m_context.SetPoint(point);
        for (int i = 0; i < count; i++) {
            const int face = faces[i];
            if (m_flags.IsDead(face))
                continue;
            const bool joinsFirst = m_seeds.size() > first && m_angle.IsWithin(*m_seeds[first], m_unitNormals[face]);
            const unsigned int group = joinsFirst ? static_cast<unsigned int>(first) : GetGroup(first, face);
            m_groups[done + i] = group;
            m_context.SetFace(face, &m_unitNormals[face], LOOKS_AT_CORNER ? m_faceCorners.GetFirst(face, point) : 0);
            CONTRIBUTE(m_context, m_sums[group]);
        }
        if (m_sums.size() - first > 1)
            m_points.ElementAt(point)->SetFlag(POINT_SMOOTH_SPLIT, true);
    }

    /// The group of a face among those from `first` on, which are those of the current point, when the first one did not take it.
    unsigned int GetGroup(std::size_t first, int face)
    {
        const C3DTVector<float>& normal = m_unitNormals[face];
        const std::size_t end = m_seeds.size();
        if (end - first >= MANY_GROUPS && CSeedGrid::Serves(m_angle)) {
            const int group = LookUpGroup(first, normal);
            if (group != CSeedGrid::NONE)
                return static_cast<unsigned int>(first) + group;
            m_grid.Add(normal);
        } else
            for (std::size_t group = first + 1; group < end; group++)
                if (m_angle.IsWithin(*m_seeds[group], normal))
                    return static_cast<unsigned int>(group);
        m_seeds.push_back(&normal);
        m_sums.emplace_back();
        return static_cast<unsigned int>(end);
    }

    int LookUpGroup(std::size_t first, const C3DTVector<float>& normal)
    {
        if (!m_hasGrid) {
            m_grid.RemoveAll();
            for (std::size_t group = first; group < m_seeds.size(); group++)
                m_grid.Add(*m_seeds[group]);
            m_hasGrid = true;
        }
        return m_grid.FindFirst(normal);
    }

    void NumberSums()
    {
        m_hashes.clear();
        for (C3DTVector<float>& sum : m_sums) {
            NormalizeSum(sum);
            m_hashes.push_back(m_vectors.GetHash(sum));
            m_vectors.Prefetch(m_hashes.back());
        }
        m_numbers.clear();
        for (std::size_t i = 0; i < m_sums.size(); i++)
            m_numbers.push_back(m_vectors.Add(m_sums[i], m_hashes[i]));
    }

    /// Of the batch's points.
    void AssignCorners(int first, int end)
    {
        const unsigned int* group = m_groups.data();
        for (int point = first; point < end; point++) {
            int count;
            const int* faces = m_faces.GetFacesConnectedToPoint(point, count);
            for (int i = 0; i < count; i++, group++) {
                if (*group == NONE)
                    continue;
                int cornerCount;
                int* corners = m_normalFaces.GetIndexes(faces[i], cornerCount);
                m_faceCorners.Assign(faces[i], point, corners, static_cast<int>(m_numbers[*group]));
            }
        }
    }

    C3DFaceList& m_faces;
    C3DPointList& m_points;
    CNormalFaceList& m_normalFaces;
    const CFaceFlags m_flags;
    const CAngleTest m_angle;
    CFaceNormalContributionInfo m_context;
    const CFaceNormals m_unitNormals;
    CFaceCorners m_faceCorners;
    CSeedGrid m_grid;
    bool m_hasGrid = false;    // of the current point
    CVectorIndex m_vectors;

    // Of the batch.
    CBlockVector<const C3DTVector<float>*> m_seeds;    // by group
    CBlockVector<C3DTVector<float>> m_sums;            // by group
    CBlockVector<CVectorIndex::Hash> m_hashes;         // by group
    CBlockVector<unsigned int> m_numbers;              // by group
    CBlockVector<unsigned int> m_groups;               // point by point, of each of its faces
};

}    // namespace

void CPointNormalChannel::InitNormals(const CGeomInfo* info, float angle)
{
    if (m_smoothAngle == angle && !IsOneFlagSet(CHANNEL_INVALID | CHANNEL_STALE))
        return;
    CFaceList* faces = info ? info->GetSrcFaceList() : nullptr;
    CPointList* points = info ? info->GetSrcPointList() : nullptr;
    if (!faces || faces->GetSize() == 0 || !points || points->GetSize() == 0 || !GetFaceList() || !GetPointList())
        return;
    m_smoothAngle = angle;
    SetFlag(CHANNEL_STALE, false);

    points->SetPointsFlags(POINT_SMOOTH_SPLIT, false);
    faces->InitPointToFaceGraph(info);
    LayOutFaces(*faces, *GetNormalFaceList());
    CSmoothing smoothing(info, angle, *GetNormalFaceList());
    smoothing.Run();
    smoothing.Store(*GetNormalVectorList());
    FreeExtra();
    faces->DeletePointToFaceGraph();
}
