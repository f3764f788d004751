// glTF 2, text and binary: the import library's writer joins all vertices anew, and knows no cameras, lights and files beside it.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <numbers>
#include <set>
#include <string>
#include <vector>

#include <assimp/GltfMaterial.h>
#include <assimp/scene.h>

#include "GltfBuffer.h"
#include "SceneExport.h"
#include "TextureExport.h"
#include "Writers.h"

namespace {

/// An array of the file, and how long it is.
class Section {
public:
    Section() { json.Open('['); }
    int Finish() { return m_count++; }
    /// Adds it to the file unless it is empty.
    void AddTo(JsonText& file, std::string_view key)
    {
        if (m_count > 0)
            file.Key(key).Raw(json.Close(']').GetText());
    }

    JsonText json;

private:
    int m_count = 0;
};

float Sound(float value) { return std::isfinite(value) ? value : 0; }

/// One run of WriteGltf.
class GltfWriter {
public:
    explicit GltfWriter(const WriterTask& task)
        : m_task(task), m_isBinary(std::string_view(task.format.extension) == "glb"), m_scene(ExportScene(task))
    {
    }

    void Run();

private:
    // Nodes
    void NumberNodes();
    void WriteNode(const aiNode& node);
    void WritePlace(const aiNode& node);
    int MeshOf(const aiNode& node);

    // Meshes
    void WritePrimitive(const aiMesh& mesh);
    int WriteVectors(const aiVector3D* values, std::size_t count, bool unit);
    int WriteCoordinates(const aiVector3D* values, std::size_t count);
    int WriteColors(const aiColor4D* values, std::size_t count);
    int WriteIndices(const aiMesh& mesh);
    void WriteWeights(const aiMesh& mesh);
    int SkinOf(const aiMesh& mesh);

    // Materials
    void WriteMaterial(const aiMaterial& material);
    void WriteMap(const char* key, const aiMaterial& material, aiTextureType type, const char* factorKey = nullptr, float factor = 1);
    int TextureOf(const aiMaterial& material, aiTextureType type);
    int ImageOf(const std::string& name);
    int SamplerOf(int wrapU, int wrapV);

    // What moves, looks and shines
    void WriteAnimation(const aiAnimation& animation);
    void WriteCamera(const aiCamera& camera);
    void WriteLight(const aiLight& light);

    // The file
    std::string BuildText();
    void WriteBinary(const std::string& text);
    void WriteText(const std::string& text);

    const WriterTask& m_task;
    const bool m_isBinary;
    const ExportedScene m_scene;
    GltfBuffer m_buffer;
    Section m_nodes, m_meshes, m_skins, m_materials, m_textures, m_images, m_samplers, m_animations, m_cameras, m_lights;
    std::vector<int> m_materialNumbers;    // by the library's index; -1 for none
    std::vector<const aiNode*> m_order;    // nodes by their number
    std::map<const aiNode*, int> m_numbers;
    std::map<std::string, int> m_numberOfName;                 // of the first node of a name
    std::map<std::string, int> m_cameraOf, m_lightOf;          // by the name of the node
    std::map<std::vector<unsigned int>, int> m_meshOf;         // by the library's meshes
    std::map<std::pair<std::string, int>, int> m_textureOf;    // by image and sampler
    std::map<std::string, int> m_imageOf;
    std::map<std::pair<int, int>, int> m_samplerOf;
    std::set<std::string> m_animated;    // names of nodes
    bool m_usesStrength = false, m_usesRefraction = false;
};

void GltfWriter::Run()
{
    OutputFile* file = m_task.files.OpenMain();
    if (!file)
        return;
    for (unsigned int i = 0; i < m_scene->mNumMaterials; i++)
        WriteMaterial(*m_scene->mMaterials[i]);
    for (unsigned int i = 0; i < m_scene->mNumCameras; i++)
        WriteCamera(*m_scene->mCameras[i]);
    for (unsigned int i = 0; i < m_scene->mNumLights; i++)
        WriteLight(*m_scene->mLights[i]);
    for (unsigned int i = 0; i < m_scene->mNumAnimations; i++)
        for (unsigned int k = 0; k < m_scene->mAnimations[i]->mNumChannels; k++)
            m_animated.insert(m_scene->mAnimations[i]->mChannels[k]->mNodeName.C_Str());
    NumberNodes();
    for (const aiNode* node : m_order)
        WriteNode(*node);
    for (unsigned int i = 0; i < m_scene->mNumAnimations; i++)
        WriteAnimation(*m_scene->mAnimations[i]);
    const std::string text = BuildText();
    m_isBinary ? WriteBinary(text) : WriteText(text);
}

// ---- Nodes

void GltfWriter::NumberNodes()
{
    std::vector<const aiNode*> open;
    const auto push = [&open](const aiNode& node) {
        for (unsigned int i = node.mNumChildren; i-- > 0;)
            open.push_back(node.mChildren[i]);
    };
    push(*m_scene->mRootNode);    // which is no node of the scene itself
    while (!open.empty()) {
        const aiNode* node = open.back();
        open.pop_back();
        const int number = static_cast<int>(m_order.size());
        m_numbers.emplace(node, number);
        m_numberOfName.emplace(node->mName.C_Str(), number);
        m_order.push_back(node);
        push(*node);
    }
}

bool IsIdentity(const aiMatrix4x4& matrix) { return matrix == aiMatrix4x4(); }

void GltfWriter::WriteNode(const aiNode& node)
{
    const int mesh = node.mNumMeshes > 0 ? MeshOf(node) : -1;
    const int skin = mesh >= 0 ? SkinOf(*m_scene->mMeshes[node.mMeshes[0]]) : -1;
    JsonText& json = m_nodes.json;
    json.Open('{').Member("name", node.mName.C_Str());
    if (!IsIdentity(node.mTransformation))
        WritePlace(node);
    if (mesh >= 0)
        json.Member("mesh", mesh);
    if (skin >= 0)
        json.Member("skin", skin);
    if (const auto camera = m_cameraOf.find(node.mName.C_Str()); camera != m_cameraOf.end())
        json.Member("camera", camera->second);
    if (const auto light = m_lightOf.find(node.mName.C_Str()); light != m_lightOf.end())
        json.Key("extensions").Open('{').Key("KHR_lights_punctual").Open('{').Member("light", light->second).Close('}').Close('}');
    if (node.mNumChildren > 0) {
        json.Key("children").Open('[');
        for (unsigned int i = 0; i < node.mNumChildren; i++)
            json.Value(m_numbers.at(node.mChildren[i]));
        json.Close(']');
    }
    json.Close('}');
    m_nodes.Finish();
}

// What is animated must stand in parts; all else keeps its numbers.
void GltfWriter::WritePlace(const aiNode& node)
{
    JsonText& json = m_nodes.json;
    if (!m_animated.contains(node.mName.C_Str())) {
        aiMatrix4x4 columns = node.mTransformation;
        json.Key("matrix").Numbers(columns.Transpose()[0], 16);
        return;
    }
    aiVector3D scale, position;
    aiQuaternion rotation;
    node.mTransformation.Decompose(scale, rotation, position);
    rotation.Normalize();
    const float quaternion[] = {rotation.x, rotation.y, rotation.z, rotation.w};
    json.Key("translation").Numbers(&position.x, 3).Key("rotation").Numbers(quaternion, 4).Key("scale").Numbers(&scale.x, 3);
}

// Nodes of the same meshes share one.
int GltfWriter::MeshOf(const aiNode& node)
{
    const auto [place, isNew] = m_meshOf.try_emplace({node.mMeshes, node.mMeshes + node.mNumMeshes});
    if (!isNew)
        return place->second;
    JsonText& json = m_meshes.json;
    json.Open('{').Member("name", node.mName.C_Str()).Key("primitives").Open('[');
    for (const unsigned int mesh : place->first)
        WritePrimitive(*m_scene->mMeshes[mesh]);
    json.Close(']').Close('}');
    return place->second = m_meshes.Finish();
}

// ---- Meshes

void GltfWriter::WritePrimitive(const aiMesh& mesh)
{
    enum Mode { POINTS = 0, LINES = 1, TRIANGLES = 4 };
    JsonText& json = m_meshes.json;
    json.Open('{').Key("attributes").Open('{');
    json.Member("POSITION", WriteVectors(mesh.mVertices, mesh.mNumVertices, false));
    if (mesh.HasNormals())
        json.Member("NORMAL", WriteVectors(mesh.mNormals, mesh.mNumVertices, true));
    for (unsigned int set = 0; mesh.HasTextureCoords(set); set++)
        json.Member("TEXCOORD_" + std::to_string(set), WriteCoordinates(mesh.mTextureCoords[set], mesh.mNumVertices));
    if (mesh.HasVertexColors(0))
        json.Member("COLOR_0", WriteColors(mesh.mColors[0], mesh.mNumVertices));
    if (mesh.HasBones())
        WriteWeights(mesh);
    json.Close('}');
    const bool isCloud = mesh.mPrimitiveTypes == aiPrimitiveType_POINT, isLine = mesh.mPrimitiveTypes == aiPrimitiveType_LINE;
    if (!isCloud)
        json.Member("indices", WriteIndices(mesh));
    json.Member("mode", static_cast<int>(isCloud ? POINTS : isLine ? LINES : TRIANGLES));
    if (const int material = m_materialNumbers[mesh.mMaterialIndex]; material >= 0)
        json.Member("material", material);
    json.Close('}');
}

int GltfWriter::WriteVectors(const aiVector3D* values, std::size_t count, bool unit)
{
    int index;
    auto* to = m_buffer.AddArray<float>(GltfBuffer::FLOATS, 3, count, GltfBuffer::VERTICES, index);
    float* at = to;
    for (std::size_t i = 0; i < count; i++, at += 3) {
        aiVector3D value(Sound(values[i].x), Sound(values[i].y), Sound(values[i].z));
        if (unit)
            value.Normalize();
        at[0] = value.x, at[1] = value.y, at[2] = value.z;
    }
    if (!unit)
        m_buffer.SetLimits(to, 3, count);
    return index;
}

// v runs downwards here.
int GltfWriter::WriteCoordinates(const aiVector3D* values, std::size_t count)
{
    int index;
    auto* to = m_buffer.AddArray<float>(GltfBuffer::FLOATS, 2, count, GltfBuffer::VERTICES, index);
    for (std::size_t i = 0; i < count; i++, to += 2)
        to[0] = Sound(values[i].x), to[1] = Sound(1 - values[i].y);
    return index;
}

int GltfWriter::WriteColors(const aiColor4D* values, std::size_t count)
{
    int index;
    auto* to = m_buffer.AddArray<unsigned char>(GltfBuffer::BYTES, 4, count, GltfBuffer::VERTICES, index);
    for (std::size_t i = 0; i < count; i++)
        for (unsigned int c = 0; c < 4; c++)
            *to++ = static_cast<unsigned char>(values[i][c] * 255 + 0.5f);
    return index;
}

template <class T> void SpreadIndices(const aiMesh& mesh, T* to)
{
    for (unsigned int i = 0; i < mesh.mNumFaces; i++) {
        const aiFace& face = mesh.mFaces[i];
        if (face.mNumIndices == 2)
            *to++ = static_cast<T>(face.mIndices[0]), *to++ = static_cast<T>(face.mIndices[1]);
        for (unsigned int k = 2; k < face.mNumIndices; k++) {    // the export preparation has left triangles
            *to++ = static_cast<T>(face.mIndices[0]);
            *to++ = static_cast<T>(face.mIndices[k - 1]);
            *to++ = static_cast<T>(face.mIndices[k]);
        }
    }
}

int GltfWriter::WriteIndices(const aiMesh& mesh)
{
    std::size_t count = 0;
    for (unsigned int i = 0; i < mesh.mNumFaces; i++)
        count += mesh.mFaces[i].mNumIndices == 2 ? 2 : 3 * (mesh.mFaces[i].mNumIndices - 2);
    int index;
    if (mesh.mNumVertices < 65535)    // which is a sign of its own in some programs
        SpreadIndices(mesh, m_buffer.AddArray<std::uint16_t>(GltfBuffer::SHORTS, 1, count, GltfBuffer::INDICES, index));
    else
        SpreadIndices(mesh, m_buffer.AddArray<std::uint32_t>(GltfBuffer::INTS, 1, count, GltfBuffer::INDICES, index));
    return index;
}

// Sets of four joints and weights a vertex, as many sets as the busiest vertex needs. A vertex without weight goes with the first joint.
void GltfWriter::WriteWeights(const aiMesh& mesh)
{
    struct Weight {
        std::uint16_t joint;
        float weight;
    };
    std::vector<std::vector<Weight>> weights(mesh.mNumVertices);
    for (unsigned int bone = 0; bone < mesh.mNumBones; bone++)
        for (unsigned int i = 0; i < mesh.mBones[bone]->mNumWeights; i++) {
            const aiVertexWeight& from = mesh.mBones[bone]->mWeights[i];
            weights[from.mVertexId].push_back({static_cast<std::uint16_t>(bone), from.mWeight});
        }
    std::size_t most = 1;
    for (std::vector<Weight>& of : weights) {
        float sum = 0;
        for (const Weight& weight : of)
            sum += weight.weight;
        for (Weight& weight : of)
            weight.weight /= sum;
        if (of.empty())
            of.push_back({0, 1});
        most = std::max(most, of.size());
    }
    for (std::size_t set = 0; 4 * set < most; set++) {
        int joints, values;
        auto* joint = m_buffer.AddArray<std::uint16_t>(GltfBuffer::SHORTS, 4, mesh.mNumVertices, GltfBuffer::VERTICES, joints);
        for (const std::vector<Weight>& of : weights)
            for (std::size_t i = 4 * set; i < 4 * set + 4; i++)
                *joint++ = i < of.size() ? of[i].joint : std::uint16_t{0};
        auto* value = m_buffer.AddArray<float>(GltfBuffer::FLOATS, 4, mesh.mNumVertices, GltfBuffer::VERTICES, values);
        for (const std::vector<Weight>& of : weights)
            for (std::size_t i = 4 * set; i < 4 * set + 4; i++)
                *value++ = i < of.size() ? of[i].weight : 0.0f;
        m_meshes.json.Member("JOINTS_" + std::to_string(set), joints).Member("WEIGHTS_" + std::to_string(set), values);
    }
}

int GltfWriter::SkinOf(const aiMesh& mesh)
{
    if (!mesh.HasBones())
        return -1;
    int index;
    auto* to = m_buffer.AddArray<float>(GltfBuffer::FLOATS, 16, mesh.mNumBones, GltfBuffer::NO_TARGET, index);
    for (unsigned int bone = 0; bone < mesh.mNumBones; bone++, to += 16) {
        aiMatrix4x4 columns = mesh.mBones[bone]->mOffsetMatrix;
        std::memcpy(to, columns.Transpose()[0], 16 * sizeof(float));
    }
    JsonText& json = m_skins.json;
    json.Open('{').Member("inverseBindMatrices", index).Key("joints").Open('[');
    for (unsigned int bone = 0; bone < mesh.mNumBones; bone++)
        json.Value(m_numberOfName.at(mesh.mBones[bone]->mName.C_Str()));
    json.Close(']').Close('}');
    return m_skins.Finish();
}

// ---- Materials

template <class T> T Get(const aiMaterial& material, const T& otherwise, const char* key, unsigned int type, unsigned int index)
{
    T value;
    return material.Get(key, type, index, value) == AI_SUCCESS ? value : otherwise;
}

// A highlight that is told by an exponent, or by its strength alone.
float RoughnessOf(const aiMaterial& material)
{
    const float told = Get(material, -1.0f, AI_MATKEY_ROUGHNESS_FACTOR), exponent = Get(material, -1.0f, AI_MATKEY_SHININESS);
    if (told >= 0)
        return std::min(told, 1.0f);
    if (exponent >= 0)
        return std::sqrt(2 / (exponent + 2));
    const aiColor3D specular = Get(material, aiColor3D(), AI_MATKEY_COLOR_SPECULAR);
    return 1 - 0.5f * std::clamp(std::max({specular.r, specular.g, specular.b}), 0.0f, 1.0f);
}

void GltfWriter::WriteMaterial(const aiMaterial& material)
{
    JsonText& json = m_materials.json;
    const aiString name = material.GetName();
    if (name == aiString(AI_DEFAULT_MATERIAL_NAME)) {    // stands for none
        m_materialNumbers.push_back(-1);
        return;
    }
    const aiColor3D color = Get(material, aiColor3D(0.8f, 0.8f, 0.8f), AI_MATKEY_COLOR_DIFFUSE);
    const float opacity = Get(material, 1.0f, AI_MATKEY_OPACITY), base[] = {color.r, color.g, color.b, opacity};
    json.Open('{').Member("name", name.C_Str()).Key("pbrMetallicRoughness").Open('{');
    json.Key("baseColorFactor").Numbers(base, 4);
    json.Member("metallicFactor", std::clamp(Get(material, 0.0f, AI_MATKEY_METALLIC_FACTOR), 0.0f, 1.0f));
    json.Member("roughnessFactor", RoughnessOf(material));
    WriteMap("baseColorTexture", material, aiTextureType_DIFFUSE);
    WriteMap("metallicRoughnessTexture", material, aiTextureType_METALNESS);
    json.Close('}');
    WriteMap("normalTexture", material, aiTextureType_NORMALS, "scale", Get(material, 1.0f, AI_MATKEY_BUMPSCALING));
    WriteMap("occlusionTexture", material, aiTextureType_AMBIENT);
    WriteMap("emissiveTexture", material, aiTextureType_EMISSIVE);
    const aiColor3D emissive = Get(material, aiColor3D(), AI_MATKEY_COLOR_EMISSIVE);
    const float strength = std::max({emissive.r, emissive.g, emissive.b, 1.0f});
    if (!emissive.IsBlack()) {
        const float factor[] = {emissive.r / strength, emissive.g / strength, emissive.b / strength};
        json.Key("emissiveFactor").Numbers(factor, 3);
    }
    const aiString alphaMode = Get(material, aiString(opacity < 1 ? "BLEND" : "OPAQUE"), AI_MATKEY_GLTF_ALPHAMODE);
    if (!(alphaMode == aiString("OPAQUE")))
        json.Member("alphaMode", alphaMode.C_Str());
    if (Get(material, 0, AI_MATKEY_TWOSIDED) != 0)
        json.Member("doubleSided", true);
    const float refraction = Get(material, 0.0f, AI_MATKEY_REFRACTI);
    const bool refracts = refraction >= 1;
    m_usesStrength |= strength > 1;
    m_usesRefraction |= refracts;
    if (strength > 1 || refracts) {
        json.Key("extensions").Open('{');
        if (strength > 1)
            json.Key("KHR_materials_emissive_strength").Open('{').Member("emissiveStrength", strength).Close('}');
        if (refracts)
            json.Key("KHR_materials_ior").Open('{').Member("ior", refraction).Close('}');
        json.Close('}');
    }
    json.Close('}');
    m_materialNumbers.push_back(m_materials.Finish());
}

void GltfWriter::WriteMap(const char* key, const aiMaterial& material, aiTextureType type, const char* factorKey, float factor)
{
    const int texture = TextureOf(material, type);
    if (texture < 0)
        return;
    JsonText& json = m_materials.json;
    json.Key(key).Open('{').Member("index", texture);
    if (const int set = Get(material, 0, AI_MATKEY_UVWSRC(type, 0)); set > 0)
        json.Member("texCoord", set);
    if (factorKey && factor != 1)
        json.Member(factorKey, factor);
    json.Close('}');
}

int GltfWriter::TextureOf(const aiMaterial& material, aiTextureType type)
{
    const aiString image = Get(material, aiString(), AI_MATKEY_TEXTURE(type, 0));
    if (image.length == 0)
        return -1;
    const int sampler = SamplerOf(Get(material, 0, AI_MATKEY_MAPPINGMODE_U(type, 0)), Get(material, 0, AI_MATKEY_MAPPINGMODE_V(type, 0)));
    const auto [place, isNew] = m_textureOf.try_emplace({image.C_Str(), sampler});
    if (isNew) {
        m_textures.json.Open('{').Member("sampler", sampler).Member("source", ImageOf(image.C_Str())).Close('}');
        place->second = m_textures.Finish();
    }
    return place->second;
}

int GltfWriter::SamplerOf(int wrapU, int wrapV)
{
    const auto [place, isNew] = m_samplerOf.try_emplace({wrapU, wrapV});
    if (isNew) {
        constexpr int REPEAT = 10497, CLAMP = 33071, MIRROR = 33648;
        const auto wrap = [](int mode) {
            return mode == aiTextureMapMode_Wrap ? REPEAT : mode == aiTextureMapMode_Mirror ? MIRROR : CLAMP;
        };
        m_samplers.json.Open('{').Member("wrapS", wrap(wrapU)).Member("wrapT", wrap(wrapV)).Close('}');
        place->second = m_samplers.Finish();
    }
    return place->second;
}

int GltfWriter::ImageOf(const std::string& name)
{
    const auto [place, isNew] = m_imageOf.try_emplace(name);
    if (!isNew)
        return place->second;
    JsonText& json = m_images.json;
    json.Open('{');
    if (const aiTexture* inside = m_scene->GetEmbeddedTexture(name.c_str())) {
        const bool isPng = std::strcmp(inside->achFormatHint, "png") == 0;
        json.Member("name", inside->mFilename.C_Str()).Member("mimeType", isPng ? "image/png" : "image/jpeg");
        json.Member("bufferView", m_buffer.AddBytes({reinterpret_cast<const unsigned char*>(inside->pcData), inside->mWidth}));
    } else {
        json.Member("uri", name);
    }
    json.Close('}');
    return place->second = m_images.Finish();
}

// ---- What moves, looks and shines

void GltfWriter::WriteAnimation(const aiAnimation& animation)
{
    Section channels, samplers;
    std::vector<float> lastTimes;
    int timesIndex = -1;
    // `to` fills the numbers of a key.
    const auto write = [&](int node, const char* path, const auto* keys, unsigned int count, std::size_t width, auto to) {
        if (count == 0)
            return;
        std::vector<float> times(count);
        std::transform(keys, keys + count, times.begin(),
                       [&](const auto& key) { return static_cast<float>(key.mTime / animation.mTicksPerSecond); });
        if (times != lastTimes) {    // the kinds of keys of a node often share theirs
            auto* place = m_buffer.AddArray<float>(GltfBuffer::FLOATS, 1, count, GltfBuffer::NO_TARGET, timesIndex);
            std::ranges::copy(times, place);
            m_buffer.SetLimits(times.data(), 1, count);
            lastTimes = std::move(times);
        }
        int values;
        auto* value = m_buffer.AddArray<float>(GltfBuffer::FLOATS, static_cast<int>(width), count, GltfBuffer::NO_TARGET, values);
        for (unsigned int i = 0; i < count; i++, value += width)
            to(keys[i].mValue, value);
        samplers.json.Open('{').Member("input", timesIndex).Member("output", values).Close('}');
        channels.json.Open('{').Member("sampler", samplers.Finish()).Key("target").Open('{').Member("node", node).Member("path", path);
        channels.json.Close('}').Close('}');
        channels.Finish();
    };
    const auto vector = [](const aiVector3D& from, float* to) { to[0] = Sound(from.x), to[1] = Sound(from.y), to[2] = Sound(from.z); };
    const auto quaternion = [](aiQuaternion from, float* to) {
        from.Normalize();
        const bool isSound = std::isfinite(from.x + from.y + from.z + from.w);
        to[0] = isSound ? from.x : 0, to[1] = isSound ? from.y : 0, to[2] = isSound ? from.z : 0, to[3] = isSound ? from.w : 1;
    };
    for (unsigned int i = 0; i < animation.mNumChannels; i++) {
        const aiNodeAnim& track = *animation.mChannels[i];
        const int node = m_numberOfName.at(track.mNodeName.C_Str());
        write(node, "translation", track.mPositionKeys, track.mNumPositionKeys, 3, vector);
        write(node, "rotation", track.mRotationKeys, track.mNumRotationKeys, 4, quaternion);
        write(node, "scale", track.mScalingKeys, track.mNumScalingKeys, 3, vector);
    }
    JsonText& json = m_animations.json;
    json.Open('{');
    if (animation.mName.length > 0)
        json.Member("name", animation.mName.C_Str());
    channels.AddTo(json, "channels");
    samplers.AddTo(json, "samplers");
    json.Close('}');
    m_animations.Finish();
}

void GltfWriter::WriteCamera(const aiCamera& camera)
{
    JsonText& json = m_cameras.json;
    const float aspect = camera.mAspect > 0 ? camera.mAspect : 1;
    const float nearest = camera.mClipPlaneNear > 0 ? camera.mClipPlaneNear : 1e-3f;
    const float farthest = camera.mClipPlaneFar > nearest ? camera.mClipPlaneFar : nearest * 1000;
    json.Open('{').Member("name", camera.mName.C_Str());
    if (camera.mOrthographicWidth > 0) {
        json.Member("type", "orthographic").Key("orthographic").Open('{').Member("xmag", camera.mOrthographicWidth);
        json.Member("ymag", camera.mOrthographicWidth / aspect);
    } else {
        const float height = 2 * std::atan(std::tan(camera.mHorizontalFOV / 2) / aspect);
        json.Member("type", "perspective").Key("perspective").Open('{').Member("yfov", height).Member("aspectRatio", aspect);
    }
    json.Member("znear", nearest).Member("zfar", farthest).Close('}').Close('}');
    m_cameraOf.emplace(camera.mName.C_Str(), m_cameras.Finish());
}

void GltfWriter::WriteLight(const aiLight& light)
{
    JsonText& json = m_lights.json;
    const aiColor3D& color = light.mColorDiffuse;
    const float intensity = std::max({color.r, color.g, color.b, 1.0f});
    const float white[] = {color.r / intensity, color.g / intensity, color.b / intensity};
    json.Open('{').Member("name", light.mName.C_Str()).Key("color").Numbers(white, 3).Member("intensity", intensity);
    const bool isSpot = light.mType == aiLightSource_SPOT;
    json.Member("type", isSpot ? "spot" : light.mType == aiLightSource_DIRECTIONAL ? "directional" : "point");
    if (isSpot) {    // half angles
        const float outer = std::clamp(light.mAngleOuterCone / 2, 1e-3f, static_cast<float>(std::numbers::pi / 2));
        json.Key("spot").Open('{').Member("innerConeAngle", std::clamp(light.mAngleInnerCone / 2, 0.0f, outer * 0.999f));
        json.Member("outerConeAngle", outer).Close('}');
    }
    json.Close('}');
    m_lightOf.emplace(light.mName.C_Str(), m_lights.Finish());
}

// ---- The file

std::string BufferName(const WriterTask& task) { return WideToUtf8(fileStripPath(fileStripExtension(task.target))) + ".bin"; }

std::string GltfWriter::BuildText()
{
    JsonText json;
    json.Open('{').Key("asset").Open('{').Member("version", "2.0").Member("generator", "3dzel").Close('}');
    Section used;
    const auto use = [&used](const char* extension) {
        used.json.Value(extension);
        used.Finish();
    };
    if (!m_lightOf.empty())
        use("KHR_lights_punctual");
    if (m_usesStrength)
        use("KHR_materials_emissive_strength");
    if (m_usesRefraction)
        use("KHR_materials_ior");
    used.AddTo(json, "extensionsUsed");
    if (!m_lightOf.empty()) {
        json.Key("extensions").Open('{').Key("KHR_lights_punctual").Open('{');
        m_lights.AddTo(json, "lights");
        json.Close('}').Close('}');
    }
    json.Member("scene", 0).Key("scenes").Open('[').Open('{').Key("nodes").Open('[');
    for (const aiNode* node : m_order)
        if (!node->mParent || !m_numbers.contains(node->mParent))
            json.Value(m_numbers.at(node));
    json.Close(']').Close('}').Close(']');
    m_nodes.AddTo(json, "nodes");
    m_meshes.AddTo(json, "meshes");
    m_skins.AddTo(json, "skins");
    m_materials.AddTo(json, "materials");
    m_textures.AddTo(json, "textures");
    m_images.AddTo(json, "images");
    m_samplers.AddTo(json, "samplers");
    m_cameras.AddTo(json, "cameras");
    m_animations.AddTo(json, "animations");
    if (const std::string accessors = m_buffer.TakeAccessors(); !accessors.empty())
        json.Key("accessors").Raw(accessors);
    if (const std::string views = m_buffer.TakeViews(); !views.empty()) {
        json.Key("bufferViews").Raw(views).Key("buffers").Open('[').Open('{').Member("byteLength", m_buffer.GetBytes().size());
        if (!m_isBinary)
            json.Member("uri", ToAddress(BufferName(m_task)));
        json.Close('}').Close(']');
    }
    return json.Close('}').GetText();
}

void GltfWriter::WriteText(const std::string& text)
{
    m_task.files.OpenMain()->Write(text);
    if (m_buffer.GetBytes().empty())
        return;
    if (OutputFile* file = m_task.files.Open(fileGetPath(m_task.target) + Utf8ToWide(BufferName(m_task))))
        file->Write(m_buffer.GetBytes().data(), m_buffer.GetBytes().size());
}

void GltfWriter::WriteBinary(const std::string& text)
{
    constexpr std::uint32_t MAGIC = 0x46546C67, VERSION = 2, JSON = 0x4E4F534A, BINARY = 0x004E4942;
    const auto padded = [](std::size_t size) { return static_cast<std::uint32_t>((size + 3) & ~std::size_t{3}); };
    OutputFile& file = *m_task.files.OpenMain();
    const BlockVector<unsigned char>& bytes = m_buffer.GetBytes();
    const std::uint32_t textSize = padded(text.size()), byteSize = padded(bytes.size());
    for (const std::uint32_t word : {MAGIC, VERSION, 12 + 8 + textSize + (bytes.empty() ? 0 : 8 + byteSize), textSize, JSON})
        file.WriteValue(word);
    file.Write(text);
    file.Write(std::string(textSize - text.size(), ' '));
    if (bytes.empty())
        return;
    file.WriteValue(byteSize);
    file.WriteValue(BINARY);
    file.Write(bytes.data(), bytes.size());
    file.Write(std::string(byteSize - bytes.size(), '\0'));
}

}

void WriteGltf(const WriterTask& task) { GltfWriter(task).Run(); }
