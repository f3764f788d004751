#pragma once

#include <cstdint>
#include <utility>

#include "tools/BlockVector.h"

class C3DFaceList;
class C3DPointList;

/// For each edge of each live face the face on its other side. The mesh stays as it is while this lives.
///
/// Edges with an end beyond the points have no other side. Cost: a sort of the corners by point.
class CFacesAcross {
public:
    static constexpr int NONE = -1;

    CFacesAcross(const C3DFaceList& faces, const C3DPointList& points);

    /// The face across the edge from corner k to the next one: NONE, a face, or below NONE: see GetCrowd. An edge that the face itself
    /// runs along twice leads to that face.
    int Get(unsigned int face, int k) const
    {
        return m_across.empty() ? NONE : m_across[m_firstCorner[face] + static_cast<unsigned int>(k)];
    }

    /// The faces of an edge of more than two, as often as they run along it: ordered by what is the same for faces that have the same
    /// corners in the same sense, wherever they start.
    struct Crowd {
        const int* faces;
        const std::uint64_t* shapes;
        int count;
    };
    Crowd GetCrowd(int across) const
    {
        const unsigned int first = m_crowds[NONE - 1 - across], end = m_crowds[NONE - across];
        return {m_crowdFaces.data() + first, m_crowdShapes.data() + first, static_cast<int>(end - first)};
    }
    static std::uint64_t GetShape(const int* corners, int count);

    /// Sets POINT_BORDER on the ends of edges of one face, POINT_INNER_EDGE on those of the others; no other point keeps these marks.
    void MarkBorder(C3DPointList& points) const;

private:
    template <class T> using Block = CBlockVector<T>;
    enum PointStatus : unsigned char { ON_BORDER = 1, ON_INNER_EDGE = 2 };

    void SortCorners(const C3DFaceList& faces, unsigned int pointCount);
    void Match(std::uint64_t* first, std::uint64_t* end, int low, const C3DFaceList& faces);
    void AddCrowd(const std::uint64_t* first, const std::uint64_t* end, const C3DFaceList& faces);
    int FaceOf(std::uint64_t entry) const;

    Block<unsigned int> m_firstCorner;    // by face
    bool m_triangles = true;              // every face has 3 corners
    Block<int> m_faceOfCorner;            // empty for triangles
    Block<int> m_across;                  // by corner
    CBlockVector<unsigned int> m_crowds{0};
    CBlockVector<int> m_crowdFaces;
    CBlockVector<std::uint64_t> m_crowdShapes;
    Block<unsigned char> m_status;    // by point
};
