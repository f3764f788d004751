#include "MeshImport.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <assimp/mesh.h>

#include "PointJoin.h"

namespace {

static_assert(sizeof(aiVector3D) == sizeof(Position), "the library is built with floats");

const Position* Positions(const aiMesh& mesh) { return reinterpret_cast<const Position*>(mesh.mVertices); }

bool IsPolygon(const aiFace& face) { return face.mNumIndices > 2; }

bool IsSound(const aiFace& face, const aiMesh& mesh)
{
    for (unsigned int k = 0; k < face.mNumIndices; k++)
        if (face.mIndices[k] >= mesh.mNumVertices)
            return false;
    return face.mNumIndices <= CFace::MAX_CORNERS;
}

/// Builds one object out of several meshes.
class MeshBuilder {
public:
    MeshBuilder(const std::vector<const aiMesh*>& meshes, const std::vector<unsigned int>& materialIds, CSceneImportOptions& options)
        : m_meshes(meshes), m_materialIds(materialIds), m_options(options)
    {
    }

    C3DObject* Build(bool joinPoints)
    {
        CountFaces();
        if (m_faceCount == 0 && !HasLoosePoints())
            return nullptr;
        C3DPointList* points = joinPoints && m_faceCount > 0 ? JoinPoints() : CopyPoints();
        C3DFaceList* faces = m_faceCount > 0 ? BuildFaces() : nullptr;
        if (m_refused > 0) {
            CXTString<wchar_t> text;
            text.FormatString(L"%zu faces left out: their corners are out of range or too many", m_refused);
            m_options.AddLogInfo(IoLogInfo::WARNING, text);
        }
        return new C3DObject(points, faces, nullptr);
    }

private:
    void CountFaces();
    bool HasLoosePoints() const;
    C3DPointList* CopyPoints();
    C3DPointList* JoinPoints();
    C3DFaceList* BuildFaces();
    void AppendFaces(C3DFaceList& faces, const aiMesh& mesh, const int* numbers, int first);
    static void SetMaterial(C3DFaceList& faces, int from, unsigned int material);

    const std::vector<const aiMesh*>& m_meshes;
    const std::vector<unsigned int>& m_materialIds;
    CSceneImportOptions& m_options;
    std::size_t m_faceCount = 0;    // polygons that can be taken over
    std::size_t m_vertexCount = 0;
    std::size_t m_refused = 0;
    unsigned int m_smallest = ~0u;    // corners of the smallest and of the largest face
    unsigned int m_largest = 0;
    std::vector<int> m_numbers;    // point of each vertex of all meshes; empty when it is its own number
};

void MeshBuilder::CountFaces()
{
    for (const aiMesh* mesh : m_meshes) {
        m_vertexCount += mesh->mNumVertices;
        for (unsigned int i = 0; i < mesh->mNumFaces; i++) {
            const aiFace& face = mesh->mFaces[i];
            if (!IsPolygon(face))
                continue;
            if (!IsSound(face, *mesh)) {
                m_refused++;
                continue;
            }
            m_faceCount++;
            m_smallest = std::min(m_smallest, face.mNumIndices);
            m_largest = std::max(m_largest, face.mNumIndices);
        }
    }
}

bool MeshBuilder::HasLoosePoints() const
{
    return std::ranges::any_of(m_meshes, [](const aiMesh* mesh) {
        return mesh->mNumVertices > 0 && (mesh->mNumFaces == 0 || mesh->mPrimitiveTypes & aiPrimitiveType_POINT);
    });
}

void FillPoints(C3DPointList& points, int first, const Position* positions, std::size_t count)
{
    C3DTPoint<float>* point = points.GetFirst() + first;
    for (std::size_t i = 0; i < count; i++, point++) {
        point->x = positions[i].x;
        point->y = positions[i].y;
        point->z = positions[i].z;
    }
}

C3DPointList* MeshBuilder::CopyPoints()
{
    C3DPointList* points = C3DPointList::Create();
    points->SetSize(static_cast<int>(m_vertexCount), false, 0);
    int first = 0;
    for (const aiMesh* mesh : m_meshes) {
        FillPoints(*points, first, Positions(*mesh), mesh->mNumVertices);
        first += static_cast<int>(mesh->mNumVertices);
    }
    return points;
}

C3DPointList* MeshBuilder::JoinPoints()
{
    PointJoin join(std::min(m_vertexCount, m_faceCount));
    for (const aiMesh* mesh : m_meshes)
        join.Add(Positions(*mesh), mesh->mNumVertices, m_numbers);
    const std::vector<Position>& positions = join.GetPositions();
    C3DPointList* points = C3DPointList::Create();
    points->SetSize(static_cast<int>(positions.size()), false, 0);
    FillPoints(*points, 0, positions.data(), positions.size());
    return points;
}

C3DFaceList* MeshBuilder::BuildFaces()
{
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    int first = 0;
    for (const aiMesh* mesh : m_meshes) {
        const int before = faces->GetSize();
        AppendFaces(*faces, *mesh, m_numbers.empty() ? nullptr : m_numbers.data() + first, first);
        if (mesh->mMaterialIndex < m_materialIds.size())
            SetMaterial(*faces, before, m_materialIds[mesh->mMaterialIndex]);
        first += static_cast<int>(mesh->mNumVertices);
    }
    faces->FreeExtra();
    return faces;
}

// `numbers`: point of each vertex of the mesh; null when these are `first` and on.
void MeshBuilder::AppendFaces(C3DFaceList& faces, const aiMesh& mesh, const int* numbers, int first)
{
    const auto corner = [&](unsigned int vertex) { return numbers ? numbers[vertex] : first + static_cast<int>(vertex); };
    if (m_refused == 0 && m_smallest == m_largest && mesh.mPrimitiveTypes != 0 &&
        !(mesh.mPrimitiveTypes & (aiPrimitiveType_POINT | aiPrimitiveType_LINE))) {
        const auto fill = [&](int* corners, unsigned int i) {
            const aiFace& face = mesh.mFaces[i];
            for (unsigned int k = 0; k < face.mNumIndices; k++)
                corners[k] = corner(face.mIndices[k]);
        };
        faces.AppendFaces(static_cast<int>(mesh.mNumFaces), static_cast<int>(m_largest), fill);
        return;
    }
    std::vector<unsigned int> sizes;
    std::vector<int> corners;
    sizes.reserve(mesh.mNumFaces);
    corners.reserve(std::size_t{mesh.mNumFaces} * 4);
    for (unsigned int i = 0; i < mesh.mNumFaces; i++) {
        const aiFace& face = mesh.mFaces[i];
        if (!IsPolygon(face) || !IsSound(face, mesh))
            continue;
        sizes.push_back(face.mNumIndices);
        for (unsigned int k = 0; k < face.mNumIndices; k++)
            corners.push_back(corner(face.mIndices[k]));
    }
    faces.AppendFaces(static_cast<int>(sizes.size()), sizes.data(), corners.data());
}

void MeshBuilder::SetMaterial(C3DFaceList& faces, int from, unsigned int material)
{
    if (material == 0)
        return;
    auto* data = static_cast<C3DFacePropertyData*>(faces.GetDataChunks().GetMainArray()->GetBase());
    for (int i = from; i < faces.GetSize(); i++)
        data[i].material = material;
}

}

C3DObject* ImportMeshes(const std::vector<const aiMesh*>& meshes, const std::vector<unsigned int>& materialIds, bool joinPoints,
                        CSceneImportOptions& options)
{
    return meshes.empty() ? nullptr : MeshBuilder(meshes, materialIds, options).Build(joinPoints);
}

void ImportLines(const std::vector<const aiMesh*>& meshes, const std::vector<unsigned int>& materialIds, std::vector<C3DCurve*>& curves)
{
    for (const aiMesh* mesh : meshes) {
        if (!(mesh->mPrimitiveTypes & aiPrimitiveType_LINE))
            continue;
        std::vector<Position> line;
        unsigned int end = 0;
        const auto finish = [&] {
            if (line.empty())
                return;
            C3DPointList* points = C3DPointList::Create();
            points->SetSize(static_cast<int>(line.size()), false, 0);
            FillPoints(*points, 0, line.data(), line.size());
            auto* curve = new C3DCurve(points, nullptr, nullptr);
            if (mesh->mMaterialIndex < materialIds.size())
                curve->SetMaterialID(materialIds[mesh->mMaterialIndex]);
            curves.push_back(curve);
            line.clear();
        };
        const auto equal = [](const Position& a, const Position& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
        for (unsigned int i = 0; i < mesh->mNumFaces; i++) {
            const aiFace& face = mesh->mFaces[i];
            if (face.mNumIndices != 2 || !IsSound(face, *mesh))
                continue;
            const Position* positions = Positions(*mesh);
            const unsigned int a = face.mIndices[0], b = face.mIndices[1];
            if (line.empty() || !(a == end || equal(positions[a], line.back()))) {
                finish();
                line.push_back(positions[a]);
            }
            line.push_back(positions[b]);
            end = b;
        }
        finish();
    }
}
