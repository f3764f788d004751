#pragma once

#include <vector>

#include "ObjectCorners.h"

/// Vertices for formats in which a vertex has one value of everything: corners share one when they are at one point and have equal values.
///
/// Vertices are numbered in the order in which corners need them. Cost: linear in the corners; the first vertex of a point, mostly the only
/// one, is found without a table.
class VertexSplit {
public:
    /// `layers` that differ split; they are referred to.
    VertexSplit(const ObjectCorners& corners, std::vector<const CornerLayer*> layers);

    /// Splits the corners from `first` on; results of the run before go.
    void Run(std::size_t first, std::size_t count);
    /// Vertex of each of these corners.
    const BlockVector<unsigned int>& GetVertices() const { return m_vertices; }
    /// For each vertex a corner that has its values.
    const BlockVector<unsigned int>& GetCorners() const { return m_corners; }

private:
    unsigned int FindVertex(unsigned int corner);
    unsigned int AddVertex(unsigned int corner);
    bool IsSame(unsigned int corner, unsigned int vertex) const;
    std::size_t Hash(unsigned int corner) const;
    void Grow();

    const BlockVector<int>& m_points;
    std::vector<const CornerLayer*> m_layers;
    BlockVector<int> m_firstOfPoint;    // -1: none yet
    BlockVector<unsigned int> m_vertices, m_corners;
    std::vector<int> m_slots;    // vertices behind the first of their points, by hash; -1 is free
    std::size_t m_hashed = 0;
};
