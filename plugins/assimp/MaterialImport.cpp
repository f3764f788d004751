#include "MaterialImport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>
#include <assimp/mesh.h>
#include <assimp/scene.h>

#include "ChannelImport.h"
#include "TextureImport.h"
#include "TextureSets.h"

namespace {

constexpr unsigned int FIRST_PLACED_CHANNEL = 201;    // behind the sets of coordinates and colours

unsigned char ToByte(float value) { return static_cast<unsigned char>(value > 0 ? std::min(value, 1.0f) * 255 + 0.5f : 0); }
CRGBColor ToColor(const aiColor4D& c) { return {ToByte(c.r), ToByte(c.g), ToByte(c.b)}; }

template <class T> std::optional<T> Get(const aiMaterial& from, const char* key, unsigned int type, unsigned int index)
{
    T value;
    return from.Get(key, type, index, value) == AI_SUCCESS ? std::optional<T>(value) : std::nullopt;
}

// What the coordinates of a set become, by rows.
using Placement = std::array<float, 6>;
constexpr Placement UNMOVED = {1, 0, 0, 0, 1, 0};

// The library scales and turns about the middle of the image, after it has moved: p' = S R (p + T - m) + m.
Placement PlacementOf(const aiUVTransform& from)
{
    const float c = std::cos(from.mRotation), s = std::sin(from.mRotation);
    const float du = from.mTranslation.x - 0.5f, dv = from.mTranslation.y - 0.5f, su = from.mScaling.x, sv = from.mScaling.y;
    return {su * c, -su * s, su * (c * du - s * dv) + 0.5f, sv * s, sv * c, sv * (s * du + c * dv) + 0.5f};
}

// This format scales, turns and moves about the image's upper left corner, with v downwards. Its importer has put that into the terms of the
// library with a translation that would have to come last; so it is taken back first. Turned over: v = 1 - w.
Placement GltfPlacementOf(const aiUVTransform& from)
{
    const float c = std::cos(from.mRotation), s = -std::sin(from.mRotation), su = from.mScaling.x, sv = from.mScaling.y;
    const float u0 = from.mTranslation.x - 0.5f * su * (1 - c + s), w0 = 0.5f * sv * (s + c - 1) + 1 - sv - from.mTranslation.y;
    return {c * su, -s * sv, s * sv + u0, s * su, c * sv, 1 - c * sv - w0};    // u' = c su u + s sv w + u0,  w' = -s su u + c sv w + w0
}

/// One run of ImportMaterials.
class MaterialBuilder {
public:
    MaterialBuilder(const aiScene& source, const FormatTraits& traits, C3DScene& scene, UnpackedImages& images,
                    CSceneImportOptions& options)
        : m_traits(traits), m_scene(scene), m_textures(source, traits.gltf, images, options)
    {
    }

    /// @param sets  of coordinates that meshes of this material have
    ImportedMaterial Build(const aiMaterial& from, const TextureSets& sets);

private:
    void TakeColors(const aiMaterial& from, C3DMaterial& to);
    void TakeTransparency(const aiMaterial& from, C3DMaterial& to);
    void TakeHighlight(const aiMaterial& from, C3DMaterial& to);
    void TakeExtras(const aiMaterial& from, C3DMaterial& to);
    void TakeMap(const aiMaterial& from, aiTextureType type, MapType mapType, C3DMaterial& to, ImportedMaterial& result);
    void TakeCoordinates(const aiMaterial& from, aiTextureType type, CMaterialMap& map, ImportedMaterial& result);
    void TakeProjection(const aiMaterial& from, aiTextureType type, CMaterialMap& map);
    std::string FileIn(const aiMaterial& from, aiTextureType type) const;
    bool IsOpaque(const aiMaterial& from) const;

    const FormatTraits& m_traits;
    C3DScene& m_scene;
    TextureImport m_textures;
    TextureSets m_sets;
    std::map<std::pair<unsigned int, Placement>, unsigned int> m_placedChannels;
};

ImportedMaterial MaterialBuilder::Build(const aiMaterial& from, const TextureSets& sets)
{
    m_sets = sets;
    ImportedMaterial result;
    const aiString name = from.GetName();
    if (name == aiString(AI_DEFAULT_MATERIAL_NAME))
        return result;    // no material in the file
    C3DMaterial& material = *m_scene.CreateNewMaterial(0xFFFFFFFF);
    if (name.length > 0)
        material.SetName(Utf8ToWide(name.C_Str()));
    result.id = material.GetMaterialID();
    TakeColors(from, material);
    TakeTransparency(from, material);
    TakeHighlight(from, material);
    TakeExtras(from, material);
    result.twoSided = Get<int>(from, AI_MATKEY_TWOSIDED).value_or(0) != 0;
    if (result.twoSided)
        material.GetCustomData().SetBool(MATERIAL_TWO_SIDED, true);

    const struct {
        aiTextureType type;
        MapType mapType;
    } maps[] = {
        // Of two with the same map the first that the file has counts.
        {aiTextureType_BASE_COLOR, MAP_DIFFUSE},        {aiTextureType_DIFFUSE, MAP_DIFFUSE},  {aiTextureType_AMBIENT, MAP_AMBIENT},
        {aiTextureType_AMBIENT_OCCLUSION, MAP_AMBIENT}, {aiTextureType_LIGHTMAP, MAP_AMBIENT}, {aiTextureType_SPECULAR, MAP_SPECULAR},
        {aiTextureType_OPACITY, MAP_TRANSPARENCY},      {aiTextureType_HEIGHT, MAP_BUMP},      {aiTextureType_NORMALS, MAP_BUMP},
        {aiTextureType_NORMAL_CAMERA, MAP_BUMP},
    };
    for (const auto& row : maps)
        if (!material.GetMaterialMap(row.mapType))
            TakeMap(from, row.type, row.mapType, material, result);
    return result;
}

void MaterialBuilder::TakeColors(const aiMaterial& from, C3DMaterial& to)
{
    auto diffuse = Get<aiColor4D>(from, AI_MATKEY_BASE_COLOR);
    if (!diffuse)
        diffuse = Get<aiColor4D>(from, AI_MATKEY_COLOR_DIFFUSE);
    if (diffuse)
        to.SetDiffuseColor(0, ToColor(*diffuse));
    if (const auto ambient = Get<aiColor4D>(from, AI_MATKEY_COLOR_AMBIENT))
        to.SetAmbientColor(0, ToColor(*ambient));
    if (const auto specular = Get<aiColor4D>(from, AI_MATKEY_COLOR_SPECULAR))
        to.SetSpecularColor(0, ToColor(*specular));
}

bool MaterialBuilder::IsOpaque(const aiMaterial& from) const
{
    const auto mode = Get<aiString>(from, AI_MATKEY_GLTF_ALPHAMODE);
    return mode && *mode == aiString("OPAQUE");
}

void MaterialBuilder::TakeTransparency(const aiMaterial& from, C3DMaterial& to)
{
    auto opacity = Get<float>(from, AI_MATKEY_OPACITY);
    if (!opacity)
        if (const auto color = Get<aiColor4D>(from, AI_MATKEY_COLOR_DIFFUSE))    // of three parts: its alpha is 1
            opacity = color->a;
    if (opacity && *opacity < 1 && !IsOpaque(from))
        to.SetTransparencyFactor(0, 1 - *opacity);
}

// Without a specular colour, a metal-and-roughness material would shine like every other.
void MaterialBuilder::TakeHighlight(const aiMaterial& from, C3DMaterial& to)
{
    const auto roughness = Get<float>(from, AI_MATKEY_ROUGHNESS_FACTOR);
    if (const auto strength = Get<float>(from, AI_MATKEY_SHININESS_STRENGTH))
        to.SetSpecularFactor(0, *strength);
    else if (roughness && !Get<aiColor4D>(from, AI_MATKEY_COLOR_SPECULAR))
        to.SetSpecularFactor(0, 1 - *roughness);
    if (const auto bump = Get<float>(from, AI_MATKEY_BUMPSCALING))
        to.SetBumpFactor(0, *bump);
    else if (const auto scale = Get<float>(from, AI_MATKEY_GLTF_TEXTURE_SCALE(aiTextureType_NORMALS, 0)))
        to.SetBumpFactor(0, *scale);
}

void MaterialBuilder::TakeExtras(const aiMaterial& from, C3DMaterial& to)
{
    CCustomData& data = to.GetCustomData();
    const auto number = [&](unsigned int id, const std::optional<float>& value) {
        if (value && std::isfinite(*value))
            data.SetFloat(id, *value);
    };
    number(MATERIAL_SHININESS, Get<float>(from, AI_MATKEY_SHININESS));
    number(MATERIAL_METALLIC, Get<float>(from, AI_MATKEY_METALLIC_FACTOR));
    number(MATERIAL_ROUGHNESS, Get<float>(from, AI_MATKEY_ROUGHNESS_FACTOR));
    number(MATERIAL_REFRACTION, Get<float>(from, AI_MATKEY_REFRACTI));
    if (const auto emissive = Get<aiColor4D>(from, AI_MATKEY_COLOR_EMISSIVE)) {
        const float brightest = std::max({emissive->r, emissive->g, emissive->b});
        if (brightest > 0 && std::isfinite(brightest)) {
            const float strength = std::max(brightest, 1.0f);
            data.SetColor(MATERIAL_EMISSIVE, ToColor({emissive->r / strength, emissive->g / strength, emissive->b / strength, 1}));
            if (strength > 1)
                data.SetFloat(MATERIAL_EMISSIVE_STRENGTH, strength);
        }
    }
    const struct {
        unsigned int id;
        aiTextureType type;
    } files[] = {
        {MATERIAL_EMISSIVE_FILE, aiTextureType_EMISSION_COLOR},
        {MATERIAL_EMISSIVE_FILE, aiTextureType_EMISSIVE},
        {MATERIAL_METALLIC_FILE, aiTextureType_METALNESS},
        {MATERIAL_ROUGHNESS_FILE, aiTextureType_DIFFUSE_ROUGHNESS},
    };
    for (const auto& row : files)
        if (const CXTString<wchar_t> file = m_textures.FileOf(FileIn(from, row.type)); !file.IsEmpty())
            data.SetString(row.id, file);
}

std::string MaterialBuilder::FileIn(const aiMaterial& from, aiTextureType type) const
{
    const auto name = Get<aiString>(from, AI_MATKEY_TEXTURE(type, 0));
    return name ? name->C_Str() : "";
}

void MaterialBuilder::TakeMap(const aiMaterial& from, aiTextureType type, MapType mapType, C3DMaterial& to, ImportedMaterial& result)
{
    const CXTString<wchar_t> file = m_textures.FileOf(FileIn(from, type));
    if (file.IsEmpty())
        return;
    CMaterialMap& map = *to.AddMaterialMap(file, NO_CHANNEL_ID, mapType, PROJECTION_UVW);
    TakeProjection(from, type, map);
    if (map.GetProjection() == PROJECTION_UVW)
        TakeCoordinates(from, type, map, result);
    if (mapType == MAP_BUMP && type != aiTextureType_HEIGHT)
        map.GetCustomData().SetBool(MAP_NORMAL_MAP, true);
    const int flags = Get<int>(from, AI_MATKEY_TEXFLAGS(type, 0)).value_or(0);
    if (IsOpaque(from) || flags & aiTextureFlags_IgnoreAlpha)
        map.SetFlag(MAP_NO_ALPHA_TEST, true);
    if (const int wrap = Get<int>(from, AI_MATKEY_MAPPINGMODE_U(type, 0)).value_or(aiTextureMapMode_Wrap); wrap != aiTextureMapMode_Wrap)
        map.GetCustomData().SetInt(MAP_WRAP_U, wrap);
    if (const int wrap = Get<int>(from, AI_MATKEY_MAPPINGMODE_V(type, 0)).value_or(aiTextureMapMode_Wrap); wrap != aiTextureMapMode_Wrap)
        map.GetCustomData().SetInt(MAP_WRAP_V, wrap);
}

void MaterialBuilder::TakeCoordinates(const aiMaterial& from, aiTextureType type, CMaterialMap& map, ImportedMaterial& result)
{
    const auto wanted = static_cast<unsigned int>(Get<int>(from, AI_MATKEY_UVWSRC(type, 0)).value_or(0));
    const unsigned int found = NearestSet(m_sets, wanted), set = found != NO_TEXTURE_SET ? found : 0;
    const auto takeAsItStands = [&] {
        map.SetChannelID(TextureChannelId(set));
        result.sets.push_back(set);
    };
    const auto transform = Get<aiUVTransform>(from, AI_MATKEY_UVTRANSFORM(type, 0));
    if (!transform)
        return takeAsItStands();
    const Placement placement = m_traits.gltf ? GltfPlacementOf(*transform) : PlacementOf(*transform);
    if (placement == UNMOVED || !std::ranges::all_of(placement, [](float value) { return std::isfinite(value); }))
        return takeAsItStands();
    const auto next = static_cast<unsigned int>(FIRST_PLACED_CHANNEL + m_placedChannels.size());
    const unsigned int id = m_placedChannels.try_emplace({set, placement}, next).first->second;
    map.SetChannelID(id);
    map.GetCustomData().SetData(MAP_PLACEMENT, placement.data(), sizeof placement);
    if (std::ranges::find(result.placed, id, &PlacedCoordinates::channelId) == result.placed.end())
        result.placed.push_back({id, set, {{placement[0], placement[1], placement[2]}, {placement[3], placement[4], placement[5]}}});
}

void MaterialBuilder::TakeProjection(const aiMaterial& from, aiTextureType type, CMaterialMap& map)
{
    switch (Get<int>(from, AI_MATKEY_MAPPING(type, 0)).value_or(aiTextureMapping_UV)) {
    case aiTextureMapping_PLANE: map.SetProjection(PROJECTION_PLANAR); break;
    case aiTextureMapping_CYLINDER: map.SetProjection(PROJECTION_CYLINDRICAL); break;
    case aiTextureMapping_SPHERE: map.SetProjection(PROJECTION_SPHERICAL); break;
    case aiTextureMapping_BOX: map.SetProjection(PROJECTION_BOX); break;
    default: return;
    }
    const aiVector3D axis = Get<aiVector3D>(from, AI_MATKEY_TEXMAP_AXIS(type, 0)).value_or(aiVector3D(0, 1, 0));
    const float x = std::abs(axis.x), y = std::abs(axis.y), z = std::abs(axis.z);
    map.SetAxis(x > y && x > z ? MAP_AXIS_X : y >= z ? MAP_AXIS_Y : MAP_AXIS_Z);
}

}

std::vector<ImportedMaterial> ImportMaterials(const aiScene& source, const FormatTraits& traits, C3DScene& scene, UnpackedImages& images,
                                              CSceneImportOptions& options)
{
    MaterialBuilder builder(source, traits, scene, images, options);
    std::vector<TextureSets> sets(source.mNumMaterials);
    for (unsigned int i = 0; i < source.mNumMeshes; i++)
        if (const aiMesh& mesh = *source.mMeshes[i]; mesh.mMaterialIndex < sets.size())
            sets[mesh.mMaterialIndex] |= TextureSetsOf(mesh);
    std::vector<ImportedMaterial> materials;
    for (unsigned int i = 0; i < source.mNumMaterials; i++)
        materials.push_back(builder.Build(*source.mMaterials[i], sets[i]));
    return materials;
}
