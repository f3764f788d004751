#pragma once

#include <algorithm>
#include <random>

#include "geometry/Edge.h"
#include "support/Meshes.h"

/// A small mesh full of what real files bring: n-gons, repeated points, doubled edges, edges of many faces, dead and empty faces,
/// faces without corners. The same seed gives the same mesh.
struct RandomMesh {
    enum Kind { MIXED, TRIANGLES, BROKEN };    ///< BROKEN also has corners outside the point list

    explicit RandomMesh(unsigned int seed, Kind kind = MIXED) : random(seed)
    {
        pointCount = 4 + Below(9);
        const int faceCount = Below(16);
        std::vector<std::vector<int>> all;
        for (int i = 0; i < faceCount; i++) {
            std::vector<int> face(kind == TRIANGLES ? 3 : Below(20) == 0 ? 13 + Below(6) : Below(7));
            for (int& corner : face)
                corner = kind == BROKEN && Below(6) == 0 ? Below(2) ? -1 - Below(3) : pointCount + Below(1000) : Below(pointCount);
            if (kind == TRIANGLES)
                while (face[0] == face[1] || face[1] == face[2] || face[2] == face[0])
                    for (int& corner : face)
                        corner = Below(pointCount);
            all.push_back(face);
        }
        mesh = MakeMesh(std::vector<XYZ>(static_cast<std::size_t>(pointCount)), all);
        for (int i = 0; i < faceCount; i++)
            if (Below(8) == 0)
                mesh.faces->SetFaceFlag(static_cast<unsigned int>(i), Below(2) ? FACE_INVALID : FACE_EMPTY, true);
        corners = all;
    }
    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); }
    int FaceCount() const { return static_cast<int>(corners.size()); }

    std::mt19937 random;
    int pointCount;
    Mesh mesh;
    std::vector<std::vector<int>> corners;
};

inline std::vector<int> List(const int* items, int count) { return {items, items + count}; }
