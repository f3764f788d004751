#pragma once

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"

/// Points and faces of a test, which go with it.
struct Mesh {
    C3DPointList* points = C3DPointList::Create(nullptr);
    C3DFaceList* faces = C3DFaceList::Create(nullptr);

    Mesh() = default;
    Mesh(Mesh&& other) noexcept : points(std::exchange(other.points, nullptr)), faces(std::exchange(other.faces, nullptr)) {}
    Mesh& operator=(Mesh&& other) noexcept
    {
        std::swap(points, other.points);
        std::swap(faces, other.faces);
        return *this;
    }
    ~Mesh()
    {
        DeleteMe(points);
        DeleteMe(faces);
    }
    CGeomInfo Info() const { return CGeomInfo(faces, points); }
};

struct XYZ {
    float x, y, z;
};

inline void SetPoints(C3DPointList& points, const std::vector<XYZ>& values)
{
    points.SetSize(static_cast<int>(values.size()), true, -1);
    for (std::size_t i = 0; i < values.size(); i++) {
        C3DTPoint<float>& point = *points.ElementAt(static_cast<int>(i));
        point.x = values[i].x, point.y = values[i].y, point.z = values[i].z;
    }
}

/// Adds faces with those corners.
inline void AddFaces(CFaceList& faces, const std::vector<std::vector<int>>& corners)
{
    std::vector<unsigned int> sizes;
    std::vector<int> indexes;
    for (const auto& face : corners) {
        sizes.push_back(static_cast<unsigned int>(face.size()));
        indexes.insert(indexes.end(), face.begin(), face.end());
    }
    faces.AppendFaces(static_cast<int>(sizes.size()), sizes.data(), indexes.data());
}

inline Mesh MakeMesh(const std::vector<XYZ>& points, const std::vector<std::vector<int>>& corners)
{
    Mesh mesh;
    SetPoints(*mesh.points, points);
    AddFaces(*mesh.faces, corners);
    return mesh;
}

/// Side 2 around the origin, 6 quads that look outwards: -z, +z, -y, +x, +y, -x. Point number: bit 0 x, bit 1 y, bit 2
/// z.
inline Mesh Cube()
{
    return MakeMesh({{-1, -1, -1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, -1}, {-1, -1, 1}, {1, -1, 1}, {-1, 1, 1}, {1, 1, 1}},
                    {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {1, 3, 7, 5}, {3, 2, 6, 7}, {2, 0, 4, 6}});
}

/// n triangles around point 0, all the way round, looking towards +z.
inline Mesh Fan(int n)
{
    std::vector<XYZ> points = {{0, 0, 0}};
    std::vector<std::vector<int>> corners;
    for (int i = 0; i < n; i++) {
        const double angle = 2 * std::numbers::pi * i / n;
        points.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0});
        corners.push_back({0, 1 + i, 1 + (i + 1) % n});
    }
    return MakeMesh(points, corners);
}

/// Two triangles that share point 2 alone.
inline Mesh BowTie() { return MakeMesh({{-1, -1, 0}, {-1, 1, 0}, {0, 0, 0}, {1, -1, 0}, {1, 1, 0}}, {{0, 2, 1}, {2, 3, 4}}); }

/// side * side unit quads in the plane z = 0, looking towards +z; point x + y * (side + 1).
inline Mesh QuadGrid(int side)
{
    Mesh mesh;
    const int row = side + 1;
    mesh.points->SetSize(row * row, true, -1);
    for (int i = 0; i < row * row; i++) {
        C3DTPoint<float>& point = *mesh.points->ElementAt(i);
        point.x = static_cast<float>(i % row);
        point.y = static_cast<float>(i / row);
    }
    mesh.faces->AppendFaces(side * side, 4, [=](int* to, unsigned int k) {
        const int corner = static_cast<int>(k) % side + static_cast<int>(k) / side * row;
        to[0] = corner, to[1] = corner + 1, to[2] = corner + 1 + row, to[3] = corner + row;
    });
    return mesh;
}

/// The corners of one face, and of all.
inline std::vector<int> Corners(const CFaceList& faces, int face)
{
    int count;
    const int* indexes = faces.GetIndexes(face, count);
    return {indexes, indexes + count};
}
inline std::vector<std::vector<int>> AllCorners(const CFaceList& faces)
{
    std::vector<std::vector<int>> all;
    for (int i = 0; i < faces.GetSize(); i++)
        all.push_back(Corners(faces, i));
    return all;
}
