#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "geometry/FaceList.h"
#include "tools/BlockVector.h"
#include "tools/Hash.h"

/// Where faces hold a point. Faces with many corners are searched in a sorted copy that is made when first asked for, so that a walk
/// over all corners of a face stays near linear. The faces' corners stay as they are while this lives.
class CFaceCorners {
public:
    explicit CFaceCorners(const CFaceList& faces) : m_faces(faces) {}

    /// The first corner with that point, or -1.
    int GetFirst(int face, int point)
    {
        int first = -1;
        Walk(face, point, [&](int corner) {
            first = corner;
            return false;
        });
        return first;
    }
    /// Sets to[k] to the value for each corner k with that point. `to` has a place for each corner of the face.
    void Assign(int face, int point, int* to, int value)
    {
        int count;
        const int* corners = m_faces.GetIndexes(face, count);
        if (count > MANY) {
            Walk(face, point, [&](int corner) {
                to[corner] = value;
                return true;
            });
            return;
        }
        for (int k = 0; k < count; k++)    // which corner it is nobody can predict: no branch on it
            to[k] = corners[k] == point ? value : to[k];
    }

private:
    static constexpr int MANY = 64;

    struct PointCorner {
        int point, corner;
        bool operator<(const PointCorner& other) const { return point != other.point ? point < other.point : corner < other.corner; }
    };
    using Sorted = CBlockVector<PointCorner>;

    template <class BODY> void Walk(int face, int point, BODY body)
    {
        int count;
        const int* corners = m_faces.GetIndexes(face, count);
        if (count > MANY) {
            const Sorted& sorted = GetSorted(face, corners, count);
            for (auto at = std::lower_bound(sorted.begin(), sorted.end(), PointCorner{point, 0}); at != sorted.end() && at->point == point;
                 ++at)
                if (!body(at->corner))
                    return;
            return;
        }
        for (int k = 0; k < count; k++)
            if (corners[k] == point && !body(k))
                return;
    }
    const Sorted& GetSorted(int face, const int* corners, int count)
    {
        std::unique_ptr<Sorted>& sorted = m_sorted[face];
        if (!sorted) {
            sorted = std::make_unique<Sorted>(count);
            for (int k = 0; k < count; k++)
                (*sorted)[k] = {corners[k], k};
            std::sort(sorted->begin(), sorted->end());
        }
        return *sorted;
    }

    const CFaceList& m_faces;
    CHashMap<int, std::unique_ptr<Sorted>> m_sorted;
};
