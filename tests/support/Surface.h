#pragma once

#include <array>
#include <cmath>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"

// Slow and obvious measures of surfaces, for tests of what builds them.

using Vec = std::array<double, 3>;
using FaceCorners = std::vector<std::vector<int>>;

inline Vec operator-(const Vec& a, const Vec& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline double Dot(const Vec& a, const Vec& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Vec Cross(const Vec& a, const Vec& b) { return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]}; }

inline std::vector<Vec> AllPoints(const C3DPointList& points)
{
    std::vector<Vec> all;
    for (int i = 0; i < points.GetSize(); i++)
        all.push_back({points[i]->x, points[i]->y, points[i]->z});
    return all;
}

/// Twice as long as the area of the face.
inline Vec NormalOf(const std::vector<Vec>& points, const std::vector<int>& face)
{
    Vec normal{};
    for (std::size_t k = 1; k + 1 < face.size(); k++) {
        const Vec part = Cross(points[face[k]] - points[face[0]], points[face[k + 1]] - points[face[0]]);
        for (int i = 0; i < 3; i++)
            normal[i] += part[i];
    }
    return normal;
}
inline Vec MiddleOf(const std::vector<Vec>& points, const std::vector<int>& face)
{
    Vec middle{};
    for (const int corner : face)
        for (int i = 0; i < 3; i++)
            middle[i] += points[corner][i] / static_cast<double>(face.size());
    return middle;
}

/// Positive when a closed surface looks outward.
inline double VolumeOf(const std::vector<Vec>& points, const FaceCorners& faces)
{
    double sum = 0;
    for (const auto& face : faces)
        for (std::size_t k = 1; k + 1 < face.size(); k++)
            sum += Dot(points[face[0]], Cross(points[face[k]], points[face[k + 1]])) / 6;
    return sum;
}

/// Every edge is run through once in each direction, by two faces.
inline bool IsClosed(const FaceCorners& faces)
{
    std::set<std::pair<int, int>> edges;
    for (const auto& face : faces)
        for (std::size_t k = 0; k < face.size(); k++)
            if (!edges.emplace(face[k], face[(k + 1) % face.size()]).second)
                return false;
    for (const auto& [a, b] : edges)
        if (!edges.count({b, a}))
            return false;
    return !edges.empty();
}

/// The faces with one point in place of those closer together than `distance`, and without what then has no area.
inline FaceCorners Joined(const std::vector<Vec>& points, const FaceCorners& faces, double distance)
{
    std::vector<int> first(points.size());
    for (std::size_t i = 0; i < points.size(); i++) {
        std::size_t k = 0;
        while (Dot(points[i] - points[k], points[i] - points[k]) > distance * distance)
            k++;
        first[i] = static_cast<int>(k);
    }
    FaceCorners joined;
    for (std::vector<int> face : faces) {
        for (int& corner : face)
            corner = first[corner];
        if (std::set<int>(face.begin(), face.end()).size() == face.size())
            joined.push_back(face);
    }
    return joined;
}
