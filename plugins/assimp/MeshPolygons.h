#pragma once

#include <cstddef>
#include <vector>

#include <3dzel.h>

#include "PointJoin.h"

struct aiMesh;

/// The polygons of the meshes of one object, read once into flat arrays: lists of faces over points and over channel points are all filled
/// from these.
///
/// Faces of fewer than three corners are no polygons and are passed over; those with a corner out of range, or with more corners than a face
/// can have, are counted and left out.
class MeshPolygons {
public:
    /// A mesh, its place among the vertices of all meshes, and its faces.
    struct Part {
        const aiMesh* mesh;
        std::size_t firstVertex, firstFace, firstCorner;
        int faceCount;
    };

    explicit MeshPolygons(const std::vector<const aiMesh*>& meshes);

    const std::vector<Part>& GetParts() const { return m_parts; }
    std::size_t GetFaceCount() const { return m_faceCount; }
    std::size_t GetVertexCount() const { return m_vertexCount; }
    std::size_t GetRefusedCount() const { return m_refused; }

    /// Appends the faces of a part: the corner at vertex v of the mesh is numbers[v], or `first` + v when `numbers` is null.
    void AppendFaces(const Part& part, const int* numbers, int first, CFaceList& faces) const;
    /// Appends as many faces without data.
    static void AppendEmptyFaces(const Part& part, CFaceList& faces);

private:
    void Count(const std::vector<const aiMesh*>& meshes);
    void Read();

    std::vector<Part> m_parts;
    std::size_t m_faceCount = 0, m_cornerCount = 0, m_vertexCount = 0, m_refused = 0;
    unsigned int m_smallest = ~0u, m_largest = 0;    ///< corners of the smallest and of the largest face
    BlockVector<unsigned int> m_vertices;            ///< of all corners, numbered in their mesh
    BlockVector<unsigned int> m_sizes;               ///< of the faces; empty when all have the same
};
