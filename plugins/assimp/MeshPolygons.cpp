#include "MeshPolygons.h"

#include <algorithm>
#include <iterator>

#include <assimp/mesh.h>

namespace {

bool IsPolygon(const aiFace& face) { return face.mNumIndices > 2; }

bool IsSound(const aiFace& face, const aiMesh& mesh)
{
    for (unsigned int k = 0; k < face.mNumIndices; k++)
        if (face.mIndices[k] >= mesh.mNumVertices)
            return false;
    return face.mNumIndices <= CFace::MAX_CORNERS;
}

}

MeshPolygons::MeshPolygons(const std::vector<const aiMesh*>& meshes)
{
    Count(meshes);
    Read();
}

void MeshPolygons::Count(const std::vector<const aiMesh*>& meshes)
{
    for (const aiMesh* mesh : meshes) {
        Part part{mesh, m_vertexCount, m_faceCount, m_cornerCount, 0};
        for (unsigned int i = 0; i < mesh->mNumFaces; i++) {
            const aiFace& face = mesh->mFaces[i];
            if (!IsPolygon(face))
                continue;
            if (!IsSound(face, *mesh)) {
                m_refused++;
                continue;
            }
            part.faceCount++;
            m_cornerCount += face.mNumIndices;
            m_smallest = std::min(m_smallest, face.mNumIndices);
            m_largest = std::max(m_largest, face.mNumIndices);
        }
        m_parts.push_back(part);
        m_vertexCount += mesh->mNumVertices;
        m_faceCount += static_cast<std::size_t>(part.faceCount);
    }
}

void MeshPolygons::Read()
{
    m_vertices.reserve(m_cornerCount);
    if (m_smallest != m_largest)
        m_sizes.reserve(m_faceCount);
    for (const Part& part : m_parts)
        for (unsigned int i = 0; i < part.mesh->mNumFaces; i++) {
            const aiFace& face = part.mesh->mFaces[i];
            if (!IsPolygon(face) || (m_refused > 0 && !IsSound(face, *part.mesh)))
                continue;
            m_vertices.insert(m_vertices.end(), face.mIndices, face.mIndices + face.mNumIndices);
            if (m_smallest != m_largest)
                m_sizes.push_back(face.mNumIndices);
        }
}

void MeshPolygons::AppendFaces(const Part& part, const int* numbers, int first, CFaceList& faces) const
{
    const unsigned int* vertices = m_vertices.data() + part.firstCorner;
    const auto corner = [numbers, first](unsigned int vertex) { return numbers ? numbers[vertex] : first + static_cast<int>(vertex); };
    if (m_sizes.empty()) {
        const auto fill = [&](int* corners, std::size_t i) {
            for (unsigned int k = 0; k < m_largest; k++)
                corners[k] = corner(vertices[i * m_largest + k]);
        };
        faces.AppendFaces(part.faceCount, part.faceCount > 0 ? static_cast<int>(m_largest) : 0, fill);
        return;
    }
    const unsigned int* sizes = m_sizes.data() + part.firstFace;
    std::size_t count = 0;
    for (int i = 0; i < part.faceCount; i++)
        count += sizes[i];
    BlockVector<int> corners;
    corners.reserve(count);
    std::transform(vertices, vertices + count, std::back_inserter(corners), corner);
    faces.AppendFaces(part.faceCount, sizes, corners.data());
}

void MeshPolygons::AppendEmptyFaces(const Part& part, CFaceList& faces)
{
    const int before = faces.GetSize();
    faces.AppendFaces(part.faceCount, 0, [](int*, unsigned int) {});
    const CFaceFlags flags(faces);
    for (int i = before; i < faces.GetSize(); i++)
        flags[static_cast<unsigned int>(i)] |= FACE_EMPTY;
}
