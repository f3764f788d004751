#include "MeshExport.h"

#include <algorithm>

#include <assimp/mesh.h>

#include "BoneExport.h"
#include "Convert.h"
#include "VertexSplit.h"

// Layers

namespace {

bool HasGivenNormals(const C3DGeomObject& object) { return object.GetChannels()->GetSpecNormalChannel() != nullptr; }

}

ObjectLayers ReadLayers(C3DGeomObject& object, ObjectCorners& corners, const ExportFormat& format, LossLog& losses)
{
    ObjectLayers layers;
    const bool isGiven = HasGivenNormals(object);
    if (format.Can(CAN_NORMALS) && (isGiven || !format.Can(GIVEN_NORMALS_ONLY)))
        layers.normals.push_back(corners.ReadNormals());
    else if (isGiven)
        losses.Add(LOSS_NORMALS);

    if (format.uvSets > 0)
        layers.coordinates = corners.ReadCoordinates();    // which of them stay is the materials' choice
    const auto sets = static_cast<std::size_t>(object.GetChannels()->GetChannelsNumber(CHANNEL_UVW, true));
    if (sets > format.uvSets)
        losses.Add(LOSS_UV_SETS, sets - format.uvSets);

    if (format.colorSets > 0)
        layers.colors = corners.ReadColors();
    float strength;
    const unsigned int own = object.GetGlobalVCChannel(strength);
    std::stable_partition(layers.colors.begin(), layers.colors.end(), [own](const CornerLayer& layer) { return layer.channelId == own; });
    if (const auto colorSets = static_cast<std::size_t>(object.GetChannels()->GetChannelsNumber(CHANNEL_VC, true));
        colorSets > format.colorSets) {
        losses.Add(LOSS_COLOR_SETS, colorSets - format.colorSets);
        layers.colors.resize(std::min<std::size_t>(layers.colors.size(), format.colorSets), CornerLayer(NO_CHANNEL_ID, 0));
    }
    if (!format.Can(CAN_BONES))
        losses.Add(LOSS_BONES, static_cast<std::size_t>(object.GetChannels()->GetChannelsNumber(CHANNEL_WEIGHT, true)));
    return layers;
}

std::vector<const CornerLayer*> ChooseCoordinates(const ObjectLayers& layers, const C3DGeomObject& object,
                                                  const std::vector<unsigned int>& mapChannels, const ExportFormat& format)
{
    const auto find = [&](unsigned int id) -> const CornerLayer* {
        const auto found = std::ranges::find(layers.coordinates, id, &CornerLayer::channelId);
        return found == layers.coordinates.end() ? nullptr : &*found;
    };
    const CornerLayer* own = find(object.GetGlobalUVWChannel());
    if (!own && !layers.coordinates.empty())
        own = &layers.coordinates.front();
    std::vector<const CornerLayer*> chosen;
    for (const unsigned int id : mapChannels) {
        const CornerLayer* named = find(id);
        chosen.push_back(named ? named : own);
    }
    for (const CornerLayer& layer : layers.coordinates)
        if (std::ranges::find(chosen, &layer) == chosen.end())
            chosen.push_back(&layer);
    chosen.resize(std::min<std::size_t>(chosen.size(), format.uvSets));
    return chosen;
}

// Meshes

namespace {

aiVector3D ToVector(const Position& value) { return {value.x, value.y, value.z}; }

aiColor4D ToColor(const Position& packed)
{
    const CRGBColor color = UnpackColor(packed);
    return {color.red / 255.0f, color.green / 255.0f, color.blue / 255.0f, color.alpha / 255.0f};
}

// The values of a layer at the vertices; `none` where there is no value, null where there is none at all.
template <class T, class CONVERT>
T* Spread(const CornerLayer* layer, const BlockVector<unsigned int>& cornerOfVertex, const T& none, CONVERT convert)
{
    const auto hasValue = [layer](unsigned int corner) { return layer->HasValue(corner); };
    if (!layer || std::ranges::none_of(cornerOfVertex, hasValue))
        return nullptr;
    T* values = new T[cornerOfVertex.size()];
    std::ranges::transform(cornerOfVertex, values,
                           [&](unsigned int corner) { return layer->HasValue(corner) ? convert(layer->At(corner)) : none; });
    return values;
}

void SetFace(aiFace& face, const unsigned int* indexes, unsigned int count)
{
    face.mNumIndices = count;
    face.mIndices = new unsigned int[count];
    std::copy(indexes, indexes + count, face.mIndices);
}

unsigned int PrimitiveOf(unsigned int corners)
{
    return corners == 1   ? aiPrimitiveType_POINT
           : corners == 2 ? aiPrimitiveType_LINE
           : corners == 3 ? aiPrimitiveType_TRIANGLE
                          : aiPrimitiveType_POLYGON;
}

// Sets of coordinates have no gaps: a set that is missing in front of others is all 0.
void SetCoordinates(aiMesh& mesh, const std::vector<const CornerLayer*>& sets, const BlockVector<unsigned int>& cornerOfVertex)
{
    std::size_t used = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(sets.size(), AI_MAX_NUMBER_OF_TEXTURECOORDS); i++) {
        mesh.mTextureCoords[i] = Spread(sets[i], cornerOfVertex, aiVector3D(), ToVector);
        if (mesh.mTextureCoords[i])
            used = i + 1;
    }
    for (std::size_t i = 0; i < used; i++) {
        if (!mesh.mTextureCoords[i])
            mesh.mTextureCoords[i] = new aiVector3D[mesh.mNumVertices];
        const bool isFlat = std::all_of(mesh.mTextureCoords[i], mesh.mTextureCoords[i] + mesh.mNumVertices,
                                        [](const aiVector3D& value) { return value.z == 0; });
        mesh.mNumUVComponents[i] = isFlat ? 2 : 3;
    }
}

void SetColors(aiMesh& mesh, const std::vector<CornerLayer>& sets, const BlockVector<unsigned int>& cornerOfVertex)
{
    std::size_t used = 0;
    for (const CornerLayer& set : sets)
        if (used < AI_MAX_NUMBER_OF_COLOR_SETS)
            if (aiColor4D* colors = Spread(&set, cornerOfVertex, aiColor4D(1, 1, 1, 1), ToColor))
                mesh.mColors[used++] = colors;
}

std::unique_ptr<aiMesh> NewMesh(std::size_t vertexCount, std::size_t faceCount)
{
    auto mesh = std::make_unique<aiMesh>();
    mesh->mNumVertices = static_cast<unsigned int>(vertexCount);
    mesh->mVertices = new aiVector3D[vertexCount];
    mesh->mNumFaces = static_cast<unsigned int>(faceCount);
    mesh->mFaces = new aiFace[faceCount];
    return mesh;
}

void SetPoints(aiMesh& mesh, const C3DPointList& points)
{
    const C3DTPoint<float>* point = points.GetFirst();
    for (unsigned int i = 0; i < mesh.mNumVertices; i++)
        mesh.mVertices[i] = {point[i].x, point[i].y, point[i].z};
}

}

std::vector<std::unique_ptr<aiMesh>> MeshExport::Export(C3DGeomObject& object, const C3DSceneNode& node)
{
    std::vector<std::unique_ptr<aiMesh>> meshes;
    if (const auto* curve = dynamic_cast<const C3DCurve*>(&object)) {
        if (auto mesh = ExportCurve(*curve))
            meshes.push_back(std::move(mesh));
        return meshes;
    }
    ObjectCorners corners(object);
    m_losses.Add(LOSS_FACES, corners.GetRefusedCount());
    if (corners.GetFaceCount() == 0) {
        if (auto mesh = ExportPoints(object))
            meshes.push_back(std::move(mesh));
        return meshes;
    }
    const ObjectLayers layers = ReadLayers(object, corners, m_format, m_losses);
    const BoneExport bones(m_scene, object, node, m_format, m_losses);
    for (const ObjectCorners::Part& part : corners.GetParts())
        meshes.push_back(ExportPart(corners, part, layers, object, bones));
    return meshes;
}

std::unique_ptr<aiMesh> MeshExport::ExportPart(const ObjectCorners& corners, const ObjectCorners::Part& part, const ObjectLayers& layers,
                                               const C3DGeomObject& object, const BoneExport& bones)
{
    const std::vector<const CornerLayer*> sets = ChooseCoordinates(layers, object, m_materials.GetMapChannels(part.material), m_format);
    std::vector<const CornerLayer*> splitting;
    for (const CornerLayer& layer : layers.normals)
        splitting.push_back(&layer);
    for (const CornerLayer* layer : sets)
        if (layer)
            splitting.push_back(layer);
    for (const CornerLayer& layer : layers.colors)
        splitting.push_back(&layer);
    VertexSplit split(corners, splitting);
    split.Run(part.firstCorner, part.cornerCount);
    const BlockVector<unsigned int>& cornerOfVertex = split.GetCorners();

    auto mesh = NewMesh(cornerOfVertex.size(), part.faceCount);
    mesh->mMaterialIndex = m_materials.GetIndex(part.material);
    std::ranges::transform(cornerOfVertex, mesh->mVertices, [&corners](unsigned int corner) {
        const C3DTPoint<float>& point = corners.GetPoint(corners.GetCornerPoints()[corner]);
        return aiVector3D(point.x, point.y, point.z);
    });
    const unsigned int* vertex = split.GetVertices().data();
    for (unsigned int i = 0; i < mesh->mNumFaces; i++) {
        const unsigned int size = corners.GetSizes()[part.firstFace + i];
        SetFace(mesh->mFaces[i], vertex, size);
        mesh->mPrimitiveTypes |= PrimitiveOf(size);
        vertex += size;
    }
    if (!layers.normals.empty())
        mesh->mNormals = Spread(&layers.normals.front(), cornerOfVertex, aiVector3D(0, 0, 1), ToVector);
    if (mesh->mNormals && m_format.Can(NORMALS_TURNED))
        for (unsigned int i = 0; i < mesh->mNumVertices; i++)
            mesh->mNormals[i] *= -1;
    SetCoordinates(*mesh, sets, cornerOfVertex);
    SetColors(*mesh, layers.colors, cornerOfVertex);
    bones.AddTo(*mesh, corners, split);
    return mesh;
}

std::unique_ptr<aiMesh> MeshExport::ExportCurve(const C3DCurve& curve)
{
    const int count = curve.GetPointNbr();
    if (!m_format.Can(CAN_CURVES) || count < 2) {
        m_losses.Add(LOSS_CURVES);
        return nullptr;
    }
    auto mesh = NewMesh(static_cast<std::size_t>(count), static_cast<std::size_t>(count - 1));
    SetPoints(*mesh, *curve.GetPointList());
    for (unsigned int i = 0; i < mesh->mNumFaces; i++) {
        const unsigned int ends[2] = {i, i + 1};
        SetFace(mesh->mFaces[i], ends, 2);
    }
    mesh->mPrimitiveTypes = aiPrimitiveType_LINE;
    mesh->mMaterialIndex = m_materials.GetIndex(curve.GetMaterialID());
    return mesh;
}

std::unique_ptr<aiMesh> MeshExport::ExportPoints(const C3DGeomObject& object)
{
    const int count = object.GetPointNbr();
    if (count == 0)
        return nullptr;
    if (!m_format.Can(CAN_POINTS)) {
        m_losses.Add(LOSS_POINTS);
        return nullptr;
    }
    auto mesh = NewMesh(static_cast<std::size_t>(count), static_cast<std::size_t>(count));
    SetPoints(*mesh, *object.GetPointList());
    for (unsigned int i = 0; i < mesh->mNumFaces; i++)
        SetFace(mesh->mFaces[i], &i, 1);
    mesh->mPrimitiveTypes = aiPrimitiveType_POINT;
    mesh->mMaterialIndex = m_materials.GetIndex(0);
    return mesh;
}
