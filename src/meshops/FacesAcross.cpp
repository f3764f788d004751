#include "meshops/FacesAcross.h"

#include <algorithm>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "tools/BlockVector.h"
#include "tools/HashMix.h"

CFacesAcross::CFacesAcross(const C3DFaceList& faces, const C3DPointList& points)
{
    const int size = faces.GetSize();
    m_firstCorner.resize(static_cast<std::size_t>(size) + 1);
    std::uint64_t corners = 0;
    for (int face = 0; face < size; face++) {
        int count;
        faces.GetIndexes(face, count);
        m_firstCorner[face] = static_cast<unsigned int>(corners);
        m_triangles &= count == 3;
        corners += static_cast<unsigned int>(count);
    }
    m_firstCorner[size] = static_cast<unsigned int>(corners);
    m_status.assign(points.GetSize(), 0);
    if (corners == 0 || corners > 0xFFFFFFFF)
        return;    // corners are numbered in 32 bits: a larger mesh has no neighbours here
    m_across.assign(corners, NONE);
    if (!m_triangles) {
        m_faceOfCorner.resize(corners);
        for (int face = 0; face < size; face++)
            std::fill(m_faceOfCorner.begin() + m_firstCorner[face], m_faceOfCorner.begin() + m_firstCorner[face + 1], face);
    }
    SortCorners(faces, static_cast<unsigned int>(points.GetSize()));
    m_faceOfCorner = {};
}

// An entry is the far end of an edge above the corner that it starts at: those of the near end, in order, are its edges one by one, and the
// corners of each ascend.
void CFacesAcross::SortCorners(const C3DFaceList& faces, unsigned int pointCount)
{
    const CFaceFlags flags(faces);
    const auto forEachEdge = [&](auto body) {
        for (int face = 0, size = faces.GetSize(); face < size; face++) {
            if (flags.IsDead(face))
                continue;
            int count;
            const int* corners = faces.GetIndexes(face, count);
            for (int k = 0; k < count; k++) {
                const auto a = static_cast<unsigned int>(corners[k]), b = static_cast<unsigned int>(corners[k + 1 < count ? k + 1 : 0]);
                if (a < pointCount && b < pointCount)
                    body(std::min(a, b), std::max(a, b), m_firstCorner[face] + static_cast<unsigned int>(k));
            }
        }
    };
    Block<unsigned int> place(std::size_t{pointCount} + 1, 0);
    forEachEdge([&](unsigned int low, unsigned int, unsigned int) { place[low]++; });
    unsigned int sum = 0;
    for (unsigned int& p : place)
        sum += std::exchange(p, sum);
    Block<std::uint64_t> entries(sum);
    forEachEdge(
        [&](unsigned int low, unsigned int high, unsigned int corner) { entries[place[low]++] = std::uint64_t{high} << 32 | corner; });
    unsigned int first = 0;
    for (unsigned int point = 0; point < pointCount; point++) {
        const unsigned int end = place[point];    // where the next point's begin
        Match(entries.data() + first, entries.data() + end, static_cast<int>(point), faces);
        first = end;
    }
}

int CFacesAcross::FaceOf(std::uint64_t entry) const
{
    const auto corner = static_cast<unsigned int>(entry);
    return m_triangles ? static_cast<int>(corner / 3) : m_faceOfCorner[corner];
}

void CFacesAcross::Match(std::uint64_t* first, std::uint64_t* end, int low, const C3DFaceList& faces)
{
    std::sort(first, end);
    while (first < end) {
        const std::uint64_t high = *first >> 32;
        std::uint64_t* next = first + 1;
        while (next < end && *next >> 32 == high)
            next++;
        const PointStatus status = next - first == 1 ? ON_BORDER : ON_INNER_EDGE;
        m_status[low] |= status;
        m_status[high] |= status;
        if (next - first == 2) {
            m_across[static_cast<unsigned int>(first[0])] = FaceOf(first[1]);
            m_across[static_cast<unsigned int>(first[1])] = FaceOf(first[0]);
        } else if (next - first > 2)
            AddCrowd(first, next, faces);
        first = next;
    }
}

void CFacesAcross::AddCrowd(const std::uint64_t* first, const std::uint64_t* end, const C3DFaceList& faces)
{
    const int crowd = NONE - static_cast<int>(m_crowds.size());
    CBlockVector<std::pair<std::uint64_t, int>> members;
    for (; first < end; first++) {
        m_across[static_cast<unsigned int>(*first)] = crowd;
        const int face = FaceOf(*first);
        int count;
        const int* corners = faces.GetIndexes(face, count);
        members.emplace_back(GetShape(corners, count), face);
    }
    std::sort(members.begin(), members.end());
    for (const auto& [shape, face] : members) {
        m_crowdShapes.push_back(shape);
        m_crowdFaces.push_back(face);
    }
    m_crowds.push_back(static_cast<unsigned int>(m_crowdFaces.size()));
}

std::uint64_t CFacesAcross::GetShape(const int* corners, int count)
{
    std::uint64_t shape = 0;
    for (int k = 0; k < count; k++) {
        const auto a = static_cast<unsigned int>(corners[k]), b = static_cast<unsigned int>(corners[k + 1 < count ? k + 1 : 0]);
        shape += HashMix64(std::uint64_t{a} << 32 | b);
    }
    return shape;
}

void CFacesAcross::MarkBorder(C3DPointList& points) const
{
    C3DTPoint<float>* point = points.GetFirst();
    for (const unsigned char status : m_status) {
        point->SetFlags(POINT_BORDER | POINT_INNER_EDGE | POINT_BORDER_LINK, false);
        point->SetFlags((status & ON_BORDER ? POINT_BORDER : 0u) | (status & ON_INNER_EDGE ? POINT_INNER_EDGE : 0u), true);
        point++;
    }
}
