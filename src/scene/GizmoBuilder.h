#pragma once

#include <cmath>
#include <vector>

#include "scene/3DObject.h"

/// Collects the parts of a display object. All faces are turned outward: counter-clockwise seen from outside.
class CGizmoBuilder {
public:
    /// The object, which the caller owns.
    C3DObject* Create() const
    {
        const auto bytes = [](const auto& values) { return static_cast<unsigned int>(values.size() * sizeof values[0]); };
        return CreateObjectFromArrays(m_points.data(), bytes(m_points), m_triangles.data(), bytes(m_triangles), m_quads.data(),
                                      bytes(m_quads));
    }

    /// Index of the new point.
    int AddPoint(float x, float y, float z)
    {
        m_points.insert(m_points.end(), {x, y, z});
        return static_cast<int>(m_points.size() / 3) - 1;
    }
    void AddTriangle(int a, int b, int c) { m_triangles.insert(m_triangles.end(), {a, b, c}); }
    void AddQuad(int a, int b, int c, int d) { m_quads.insert(m_quads.end(), {a, b, c, d}); }

    /// Four points around the y axis, counter-clockwise seen from +y; index of the first.
    int AddSquare(float y, float half)
    {
        const int first = AddPoint(-half, y, -half);
        AddPoint(-half, y, half);
        AddPoint(half, y, half);
        AddPoint(half, y, -half);
        return first;
    }
    /// Four quads from one square to another around it or above it.
    void JoinSquares(int below, int above)
    {
        for (int i = 0; i < 4; i++)
            AddQuad(below + i, below + (i + 1) % 4, above + (i + 1) % 4, above + i);
    }

private:
    std::vector<float> m_points;
    std::vector<int> m_triangles, m_quads;
};
