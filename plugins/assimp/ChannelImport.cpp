#include "ChannelImport.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <assimp/mesh.h>

#include "Convert.h"
#include "TextureSets.h"

namespace {

using Part = MeshPolygons::Part;

// Weights of one object: 512 MB of points. Bones come by the hundred, and only a damaged file has a thousand times as many.
constexpr std::size_t MOST_WEIGHTS = std::size_t{1} << 25;

// From this many vertices on, layers are filled on threads of their own.
constexpr std::size_t WORTH_A_THREAD = 50000;

const Position* Triples(const aiVector3D* values) { return reinterpret_cast<const Position*>(values); }

unsigned char ToByte(float value) { return static_cast<unsigned char>(std::isnan(value) ? 0 : std::clamp(value, 0.0f, 1.0f) * 255 + 0.5f); }

BlockVector<Position> ColorTriples(const aiColor4D* colors, std::size_t count)
{
    BlockVector<Position> triples(count);
    for (std::size_t i = 0; i < count; i++) {
        const aiColor4D& color = colors[i];
        triples[i] = PackColor({ToByte(color.r), ToByte(color.g), ToByte(color.b), ToByte(color.a)});
    }
    return triples;
}

void Assign(C3DTVector<float>& normal, const Position& value) { normal.x = value.x, normal.y = value.y, normal.z = value.z; }
void Assign(CUVWPoint& point, const Position& value) { point.u = value.x, point.v = value.y, point.w = value.z; }
void Assign(CVCPoint& point, const Position& value) { point.SetColor(UnpackColor(value)); }

/// Fills one per-corner channel, part by part.
class LayerBuilder {
public:
    LayerBuilder(const MeshPolygons& polygons, CFaceList& faces) : m_polygons(polygons), m_faces(faces), m_join(polygons.GetFaceCount() / 2)
    {
    }

    void AddPart(const Part& part, const Position* values)
    {
        m_numbers.clear();
        m_join.Add(values, part.mesh->mNumVertices, m_numbers);
        m_polygons.AppendFaces(part, m_numbers.data(), 0, m_faces);
    }
    void AddEmptyPart(const Part& part) { MeshPolygons::AppendEmptyFaces(part, m_faces); }

    template <class POINTS> void Finish(POINTS& points)
    {
        const BlockVector<Position>& values = m_join.GetPositions();
        points.SetSize(static_cast<int>(values.size()), false, 0);
        auto* point = points.GetFirst();
        for (const Position& value : values)
            Assign(*point++, value);
        m_faces.FreeExtra();
    }

private:
    const MeshPolygons& m_polygons;
    CFaceList& m_faces;
    PointJoin m_join;
    BlockVector<int> m_numbers;
};

template <class HAS> bool Any(const MeshPolygons& polygons, HAS has)
{
    return std::ranges::any_of(polygons.GetParts(), [&](const Part& part) { return part.faceCount > 0 && has(*part.mesh); });
}

struct ReleaseChannel {
    void operator()(CChannel* channel) const { DeleteMe(channel); }
};

/// A channel that waits for its content. Channels are made on one thread; their lists are filled on as many as there are layers.
struct Layer {
    std::unique_ptr<CChannel, ReleaseChannel> channel;
    std::function<bool()> fill;    // false: nothing in it is of use
};

void PlanNormals(const MeshPolygons& polygons, std::vector<Layer>& layers)
{
    if (!Any(polygons, [](const aiMesh& mesh) { return mesh.HasNormals(); }))
        return;
    auto* channel = new CSpecNormalChannel;
    layers.emplace_back().channel.reset(channel);
    layers.back().fill = [&polygons, channel] {
        LayerBuilder layer(polygons, *channel->GetNormalFaceList());
        for (const Part& part : polygons.GetParts())
            part.mesh->HasNormals() ? layer.AddPart(part, Triples(part.mesh->mNormals)) : layer.AddEmptyPart(part);
        layer.Finish(*channel->GetNormalVectorList());
        return channel->Normalize();
    };
}

// The set that the channel of `set` is filled from. A mesh of a material that names it gives another when it has not this one.
unsigned int SourceOf(const Part& part, const std::vector<ImportedMaterial>& materials, unsigned int set)
{
    const bool wanted =
        part.mesh->mMaterialIndex < materials.size() && std::ranges::count(materials[part.mesh->mMaterialIndex].sets, set) > 0;
    return wanted || part.mesh->HasTextureCoords(set) ? NearestSet(TextureSetsOf(*part.mesh), set) : NO_TEXTURE_SET;
}

void PlanTextureCoordinates(const MeshPolygons& polygons, const std::vector<ImportedMaterial>& materials, unsigned int set,
                            std::vector<Layer>& layers)
{
    const auto has = [&, set](const Part& part) { return part.faceCount > 0 && SourceOf(part, materials, set) != NO_TEXTURE_SET; };
    if (std::ranges::none_of(polygons.GetParts(), has))
        return;
    auto* channel = new CUVWChannel(TextureChannelId(set));
    layers.emplace_back().channel.reset(channel);
    layers.back().fill = [&polygons, &materials, channel, set] {
        LayerBuilder layer(polygons, *channel->GetUVWFaceList());
        for (const Part& part : polygons.GetParts())
            if (const unsigned int source = SourceOf(part, materials, set); source != NO_TEXTURE_SET)
                layer.AddPart(part, Triples(part.mesh->mTextureCoords[source]));
            else
                layer.AddEmptyPart(part);
        layer.Finish(*channel->GetUVWPointList());
        return true;
    };
}

// The coordinates that the part's material wants under this channel id, if its mesh has them.
const PlacedCoordinates* FindPlaced(const Part& part, const std::vector<ImportedMaterial>& materials, unsigned int channelId)
{
    if (part.mesh->mMaterialIndex >= materials.size())
        return nullptr;
    const std::vector<PlacedCoordinates>& placed = materials[part.mesh->mMaterialIndex].placed;
    const auto found = std::ranges::find(placed, channelId, &PlacedCoordinates::channelId);
    return found != placed.end() && NearestSet(TextureSetsOf(*part.mesh), found->set) != NO_TEXTURE_SET ? &*found : nullptr;
}

BlockVector<Position> Place(const aiMesh& mesh, const PlacedCoordinates& placed)
{
    const auto& m = placed.matrix;
    const aiVector3D* const coordinates = mesh.mTextureCoords[NearestSet(TextureSetsOf(mesh), placed.set)];
    BlockVector<Position> triples(mesh.mNumVertices);
    for (unsigned int i = 0; i < mesh.mNumVertices; i++) {
        const aiVector3D& from = coordinates[i];
        triples[i] = {m[0][0] * from.x + m[0][1] * from.y + m[0][2], m[1][0] * from.x + m[1][1] * from.y + m[1][2], from.z};
    }
    return triples;
}

void PlanPlacedCoordinates(const MeshPolygons& polygons, const std::vector<ImportedMaterial>& materials, std::vector<Layer>& layers)
{
    std::set<unsigned int> ids;
    for (const Part& part : polygons.GetParts())
        if (part.faceCount > 0 && part.mesh->mMaterialIndex < materials.size())
            for (const PlacedCoordinates& placed : materials[part.mesh->mMaterialIndex].placed)
                if (NearestSet(TextureSetsOf(*part.mesh), placed.set) != NO_TEXTURE_SET)
                    ids.insert(placed.channelId);
    for (const unsigned int id : ids) {
        auto* channel = new CUVWChannel(id);
        layers.emplace_back().channel.reset(channel);
        layers.back().fill = [&polygons, &materials, channel, id] {
            LayerBuilder layer(polygons, *channel->GetUVWFaceList());
            for (const Part& part : polygons.GetParts())
                if (const PlacedCoordinates* placed = FindPlaced(part, materials, id))
                    layer.AddPart(part, Place(*part.mesh, *placed).data());
                else
                    layer.AddEmptyPart(part);
            layer.Finish(*channel->GetUVWPointList());
            return true;
        };
    }
}

void PlanColors(const MeshPolygons& polygons, unsigned int set, std::vector<Layer>& layers)
{
    if (!Any(polygons, [set](const aiMesh& mesh) { return mesh.HasVertexColors(set); }))
        return;
    auto* channel = new CVCChannel(ColorChannelId(set));
    layers.emplace_back().channel.reset(channel);
    layers.back().fill = [&polygons, channel, set] {
        LayerBuilder layer(polygons, *channel->GetVCFaceList());
        for (const Part& part : polygons.GetParts())
            if (part.mesh->HasVertexColors(set))
                layer.AddPart(part, ColorTriples(part.mesh->mColors[set], part.mesh->mNumVertices).data());
            else
                layer.AddEmptyPart(part);
        layer.Finish(*channel->GetVCPointList());
        return true;
    };
}

void FillLayers(std::vector<Layer>& layers, std::size_t vertexCount)
{
    const auto policy = vertexCount < WORTH_A_THREAD ? std::launch::deferred : std::launch::async;
    std::vector<std::future<bool>> results;
    for (std::size_t i = 0; i < layers.size(); i++)    // the last one here
        results.push_back(std::async(i + 1 < layers.size() ? policy : std::launch::deferred, layers[i].fill));
    for (std::size_t i = layers.size(); i-- > 0;)
        if (!results[i].get())
            layers[i].channel.reset();
}

/// What the bones of one name do to the points of an object.
struct BoneWeights {
    std::string name;
    const aiBone* first;
    std::vector<std::pair<std::size_t, float>> weights;    // vertex of all meshes, weight
};

std::vector<BoneWeights> CollectBones(const MeshPolygons& polygons)
{
    std::vector<BoneWeights> bones;
    std::map<std::string, std::size_t> places;
    for (const Part& part : polygons.GetParts())
        for (unsigned int i = 0; i < part.mesh->mNumBones; i++) {
            const aiBone& bone = *part.mesh->mBones[i];
            if (bone.mNumWeights == 0 || !bone.mWeights)
                continue;
            const auto [place, isNew] = places.try_emplace(bone.mName.C_Str(), bones.size());
            if (isNew)
                bones.push_back({bone.mName.C_Str(), &bone, {}});
            for (unsigned int k = 0; k < bone.mNumWeights; k++)
                if (const aiVertexWeight& weight = bone.mWeights[k];
                    weight.mVertexId < part.mesh->mNumVertices && std::isfinite(weight.mWeight))
                    bones[place->second].weights.emplace_back(part.firstVertex + weight.mVertexId, weight.mWeight);
        }
    return bones;
}

CWeightChannel* WeightChannelOf(const BoneWeights& bone, const BlockVector<int>& numbers, int pointCount)
{
    auto* channel = new CWeightChannel;
    CWeightPointList& points = *channel->GetWeightPointList();
    points.SetSize(pointCount, false, 0);
    CWeightPoint* point = points.GetFirst();
    for (const auto& [vertex, weight] : bone.weights) {
        CWeightPoint& of = point[numbers.empty() ? vertex : static_cast<std::size_t>(numbers[vertex])];
        of.SetWeight(std::max(of.GetWeight(), weight));    // the same for all vertices of a point, as a rule
    }
    channel->GetCustomData().SetString(WEIGHT_BONE_NAME, Utf8ToWide(bone.name));
    float bind[12];
    for (unsigned int i = 0; i < 12; i++)
        bind[i] = static_cast<float>(bone.first->mOffsetMatrix[i / 4][i % 4]);
    channel->GetCustomData().SetData(WEIGHT_BONE_BIND, bind, sizeof bind);
    return channel;
}

void ImportWeights(const MeshPolygons& polygons, const BlockVector<int>& numbers, C3DObject& object, CSceneImportOptions& options)
{
    const std::vector<BoneWeights> bones = CollectBones(polygons);
    const int pointCount = object.GetPointNbr();
    if (bones.empty() || pointCount == 0)
        return;
    const std::size_t most = MOST_WEIGHTS / static_cast<std::size_t>(pointCount);
    if (bones.size() > most) {
        CXTString<wchar_t> text;
        text.FormatString(L"the weights of %zu bones left out: %zu bones are too many for %d points", bones.size() - most, bones.size(),
                          pointCount);
        options.AddLogInfo(IoLogInfo::WARNING, text);
    }
    for (std::size_t i = 0; i < std::min(most, bones.size()); i++)
        object.AddChannel(WeightChannelOf(bones[i], numbers, pointCount));
}

}

void ImportChannels(const MeshPolygons& polygons, const BlockVector<int>& numbers, const std::vector<ImportedMaterial>& materials,
                    C3DObject& object, CSceneImportOptions& options)
{
    std::vector<Layer> layers;
    PlanNormals(polygons, layers);
    for (unsigned int set = 0; set < AI_MAX_NUMBER_OF_TEXTURECOORDS; set++)
        PlanTextureCoordinates(polygons, materials, set, layers);
    PlanPlacedCoordinates(polygons, materials, layers);
    for (unsigned int set = 0; set < AI_MAX_NUMBER_OF_COLOR_SETS; set++)
        PlanColors(polygons, set, layers);
    FillLayers(layers, polygons.GetVertexCount());
    for (Layer& layer : layers)
        if (layer.channel)
            object.AddChannel(layer.channel.release());
    if (const CChannel* colors = object.GetChannelByIndex(0, CHANNEL_VC, true))
        object.SetGlobalVCChannel(colors->GetChannelID(), 1);
    ImportWeights(polygons, numbers, object, options);
}
