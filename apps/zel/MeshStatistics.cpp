#include "MeshStatistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace {

struct Vector {
    double x, y, z;
    Vector operator-(const Vector& v) const { return {x - v.x, y - v.y, z - v.z}; }
    Vector operator+(const Vector& v) const { return {x + v.x, y + v.y, z + v.z}; }
};

Vector Cross(const Vector& a, const Vector& b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double Dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
double Length(const Vector& v) { return std::sqrt(Dot(v, v)); }

/// The points of an object, transformed.
class Places {
public:
    Places(const C3DPointList& points, const C4x4TMatrix<float>& matrix) : m_points(points.GetFirst()), m_matrix(matrix) {}
    Vector operator[](int point) const
    {
        const C3DTPoint<float>& p = m_points[point];
        const auto row = [&](int i) {
            return double{m_matrix.m[i][0]} * p.x + double{m_matrix.m[i][1]} * p.y + double{m_matrix.m[i][2]} * p.z + m_matrix.m[i][3];
        };
        return {row(0), row(1), row(2)};
    }

private:
    const C3DTPoint<float>* m_points;
    const C4x4TMatrix<float>& m_matrix;
};

// Twice the area of a polygon, along its normal.
Vector AreaVector(const Places& places, const int* corners, int count)
{
    const Vector origin = places[corners[0]];
    Vector sum{};
    for (int k = 1; k + 1 < count; k++)
        sum = sum + Cross(places[corners[k]] - origin, places[corners[k + 1]] - origin);
    return sum;
}

// Calls action(corners, count) for each live face whose corners are sound.
template <class ACTION> void ForFaces(C3DGeomObject& object, ACTION action)
{
    const C3DFaceList& faces = *object.GetFaceList();
    const CFaceFlags flags(faces);
    const int points = object.GetPointNbr();
    for (int face = 0; face < faces.GetSize(); face++) {
        int count;
        const int* corners = faces.GetIndexes(face, count);
        if (!flags.IsDead(face) && std::all_of(corners, corners + count, [&](int corner) { return corner >= 0 && corner < points; }))
            action(corners, count);
    }
}

/// Joins points into parts.
class Parts {
public:
    explicit Parts(int points) : m_parents(points) { std::iota(m_parents.begin(), m_parents.end(), 0); }
    int Find(int point)
    {
        while (m_parents[point] != point)
            point = m_parents[point] = m_parents[m_parents[point]];
        return point;
    }
    void Join(int a, int b) { m_parents[Find(a)] = Find(b); }

private:
    std::vector<int> m_parents;
};

std::uint64_t CountParts(C3DGeomObject& object)
{
    Parts parts(object.GetPointNbr());
    std::vector<bool> used(object.GetPointNbr());
    ForFaces(object, [&](const int* corners, int count) {
        for (int k = 0; k < count; k++) {
            parts.Join(corners[0], corners[k]);
            used[corners[k]] = true;
        }
    });
    std::uint64_t number = 0;
    for (int point = 0; point < object.GetPointNbr(); point++)
        number += used[point] && parts.Find(point) == point;
    return number;
}

bool IsDegenerate(const Places& places, const int* corners, int count)
{
    std::vector<int> sorted(corners, corners + count);
    std::sort(sorted.begin(), sorted.end());
    return count < 3 || std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end() ||
           !(Length(AreaVector(places, corners, count)) > 0);
}

// Every edge of every face as one number that sorts by its two points: the smaller point, the larger one, the sense.
std::vector<std::uint64_t> ListEdges(C3DGeomObject& object)
{
    std::vector<std::uint64_t> edges;
    ForFaces(object, [&](const int* corners, int count) {
        for (int k = 0; k < count; k++) {
            const auto [low, high] = std::minmax(corners[k], corners[(k + 1) % count]);
            if (low != high)
                edges.push_back(std::uint64_t(low) << 32 | std::uint64_t(high) << 1 | (corners[k] == low));
        }
    });
    std::sort(edges.begin(), edges.end());
    return edges;
}

}

MeshStatistics::MeshStatistics(C3DScene& scene)
{
    CHashTable<unsigned int> seen;
    CNodeWalkTM walk(scene.GetTickCount(), true);
    C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC);
    C3DGeomObject* object;
    while (C3DSceneNode* node = scene.GetNextNode(object, pos)) {
        if (!object || !object->GetPointList())
            continue;
        if (seen.Insert(object->GetObjectID()))
            CountObject(*object);
        if (!object->GetFaceList())
            continue;
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        const Measures measures = Measure(*object, matrix);
        area += measures.area;
        volume += measures.volume;
    }
    closed = faces > 0 && borderEdges == 0 && nonManifoldEdges == 0;
    if (!closed)
        volume = 0;
}

void MeshStatistics::CountObject(C3DGeomObject& object)
{
    objects++;
    points += static_cast<std::uint64_t>(object.GetPointNbr());
    if (!object.GetFaceList())
        return;
    const C4x4TMatrix<float> identity;
    const Places places(*object.GetPointList(), identity);
    ForFaces(object, [&](const int* list, int count) {
        faces++;
        corners += static_cast<std::uint64_t>(count);
        degenerateFaces += IsDegenerate(places, list, count);
    });
    components += CountParts(object);
    const std::vector<std::uint64_t> edges = ListEdges(object);
    for (std::size_t first = 0, end; first < edges.size(); first = end) {
        for (end = first + 1; end < edges.size() && edges[end] >> 1 == edges[first] >> 1;)
            end++;
        borderEdges += end - first == 1;
        nonManifoldEdges += end - first > 2 || (end - first == 2 && edges[first] == edges[first + 1]);
    }
}

MeshStatistics::Measures MeshStatistics::Measure(C3DGeomObject& object, const C4x4TMatrix<float>& matrix)
{
    const Places places(*object.GetPointList(), matrix);
    Measures sum{};
    ForFaces(object, [&](const int* list, int count) {
        if (count < 3)
            return;
        const Vector twice = AreaVector(places, list, count);
        sum.area += Length(twice) / 2;
        const Vector origin = places[list[0]];
        for (int k = 1; k + 1 < count; k++)
            sum.volume += Dot(origin, Cross(places[list[k]], places[list[k + 1]])) / 6;
    });
    return sum;
}
