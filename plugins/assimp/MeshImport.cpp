#include "MeshImport.h"

#include <algorithm>

#include <assimp/mesh.h>

#include "ChannelImport.h"
#include "MeshPolygons.h"
#include "PointJoin.h"

namespace {

static_assert(sizeof(aiVector3D) == sizeof(Position), "the library is built with floats");

const Position* Positions(const aiMesh& mesh) { return reinterpret_cast<const Position*>(mesh.mVertices); }

bool HasLoosePoints(const std::vector<const aiMesh*>& meshes)
{
    return std::ranges::any_of(meshes, [](const aiMesh* mesh) {
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

C3DPointList* CopyPoints(const MeshPolygons& polygons)
{
    C3DPointList* points = C3DPointList::Create();
    points->SetSize(static_cast<int>(polygons.GetVertexCount()), false, 0);
    for (const MeshPolygons::Part& part : polygons.GetParts())
        FillPoints(*points, static_cast<int>(part.firstVertex), Positions(*part.mesh), part.mesh->mNumVertices);
    return points;
}

// `numbers` gets the point of each vertex of all meshes.
C3DPointList* JoinPoints(const MeshPolygons& polygons, BlockVector<int>& numbers)
{
    PointJoin join(std::min(polygons.GetVertexCount(), polygons.GetFaceCount()));
    for (const MeshPolygons::Part& part : polygons.GetParts())
        join.Add(Positions(*part.mesh), part.mesh->mNumVertices, numbers);
    const BlockVector<Position>& positions = join.GetPositions();
    C3DPointList* points = C3DPointList::Create();
    points->SetSize(static_cast<int>(positions.size()), false, 0);
    FillPoints(*points, 0, positions.data(), positions.size());
    return points;
}

void SetMaterial(C3DFaceList& faces, int from, unsigned int material)
{
    if (material == 0)
        return;
    auto* data = static_cast<C3DFacePropertyData*>(faces.GetDataChunks().GetMainArray()->GetBase());
    for (int i = from; i < faces.GetSize(); i++)
        data[i].material = material;
}

// `numbers`: point of each vertex of all meshes; empty when it is its own number.
C3DFaceList* BuildFaces(const MeshPolygons& polygons, const BlockVector<int>& numbers, const std::vector<ImportedMaterial>& materials)
{
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    for (const MeshPolygons::Part& part : polygons.GetParts()) {
        const int before = faces->GetSize();
        polygons.AppendFaces(part, numbers.empty() ? nullptr : numbers.data() + part.firstVertex, static_cast<int>(part.firstVertex),
                             *faces);
        if (part.mesh->mMaterialIndex < materials.size())
            SetMaterial(*faces, before, materials[part.mesh->mMaterialIndex].id);
    }
    faces->FreeExtra();
    return faces;
}

}

C3DObject* ImportMeshes(const std::vector<const aiMesh*>& meshes, const std::vector<ImportedMaterial>& materials, bool joinPoints,
                        CSceneImportOptions& options)
{
    const MeshPolygons polygons(meshes);
    const bool hasFaces = polygons.GetFaceCount() > 0;
    if (!hasFaces && !HasLoosePoints(meshes))
        return nullptr;
    BlockVector<int> numbers;
    C3DPointList* points = joinPoints && hasFaces ? JoinPoints(polygons, numbers) : CopyPoints(polygons);
    C3DFaceList* faces = hasFaces ? BuildFaces(polygons, numbers, materials) : nullptr;
    if (polygons.GetRefusedCount() > 0) {
        CXTString<wchar_t> text;
        text.FormatString(L"%zu faces left out: their corners are out of range or too many", polygons.GetRefusedCount());
        options.AddLogInfo(IoLogInfo::WARNING, text);
    }
    auto* object = new C3DObject(points, faces, nullptr);
    if (hasFaces)
        ImportChannels(polygons, numbers, materials, *object, options);
    for (const aiMesh* mesh : meshes)
        if (mesh->mMaterialIndex < materials.size() && materials[mesh->mMaterialIndex].twoSided)
            object->SetFaceMode(FACE_MODE_TWO_SIDED);
    return object;
}

void ImportLines(const std::vector<const aiMesh*>& meshes, const std::vector<ImportedMaterial>& materials, std::vector<C3DCurve*>& curves)
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
            if (mesh->mMaterialIndex < materials.size())
                curve->SetMaterialID(materials[mesh->mMaterialIndex].id);
            curves.push_back(curve);
            line.clear();
        };
        const auto equal = [](const Position& a, const Position& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
        for (unsigned int i = 0; i < mesh->mNumFaces; i++) {
            const aiFace& face = mesh->mFaces[i];
            if (face.mNumIndices != 2 || std::max(face.mIndices[0], face.mIndices[1]) >= mesh->mNumVertices)
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
