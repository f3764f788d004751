#include "MaterialExport.h"

#include <algorithm>

#include <assimp/GltfMaterial.h>

namespace {

aiColor3D ToColor(const CRGBColor& color, float factor)
{
    return {color.red / 255.0f * factor, color.green / 255.0f * factor, color.blue / 255.0f * factor};
}

template <class T> void Set(aiMaterial& to, const T& value, const char* key, unsigned int type, unsigned int index)
{
    to.AddProperty(&value, 1, key, type, index);
}

void SetText(aiMaterial& to, const std::string& text, const char* key, unsigned int type, unsigned int index)
{
    const aiString value(text);
    to.AddProperty(&value, key, type, index);
}

bool IsAnimated(C3DMaterial& material)
{
    const CTimeRange range = material.GetTimeRange(KEY_ANY);
    return range.start != range.end;
}

}

C3DMaterial* FindOwnMaterial(const C3DScene& scene, unsigned int id)
{
    C3DMaterial* material = scene.GetMaterialByID(id);
    return material && !(id == 0 && material->HasSameParameters(C3DMaterial())) ? material : nullptr;
}

unsigned int MaterialExport::GetIndex(unsigned int id)
{
    C3DMaterial* material = FindOwnMaterial(m_scene, id);
    if (material && !m_format.Can(CAN_MATERIALS)) {
        if (m_indexes.try_emplace(id, 0).second)
            m_losses.Add(LOSS_MATERIALS);
        material = nullptr;
    }
    const auto [place, isNew] = m_indexes.try_emplace(material ? id : NO_MATERIAL, static_cast<unsigned int>(m_materials.size()));
    if (isNew)
        m_materials.push_back(Build(id, material));
    return place->second;
}

std::vector<std::unique_ptr<aiMaterial>> MaterialExport::TakeMaterials()
{
    if (m_materials.empty())
        GetIndex(NO_MATERIAL);
    return std::move(m_materials);
}

const std::vector<unsigned int>& MaterialExport::GetMapChannels(unsigned int id)
{
    const auto [place, isNew] = m_mapChannels.try_emplace(id);
    std::vector<unsigned int>& channels = place->second;
    const C3DMaterial* material = isNew ? FindOwnMaterial(m_scene, id) : nullptr;
    if (!material)
        return channels;
    for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP && (channels.empty() || m_format.uvSets > 1); type++)
        if (const CMaterialMap* map = material->GetMaterialMap(static_cast<MapType>(type)))
            if (std::ranges::find(channels, map->GetChannelID()) == channels.end())
                channels.push_back(map->GetChannelID());
    std::ranges::sort(channels);
    return channels;
}

std::unique_ptr<aiMaterial> MaterialExport::Build(unsigned int id, C3DMaterial* from)
{
    auto to = std::make_unique<aiMaterial>();
    if (!from) {
        SetText(*to, AI_DEFAULT_MATERIAL_NAME, AI_MATKEY_NAME);
        return to;
    }
    SetText(*to, WideToUtf8(from->GetName()), AI_MATKEY_NAME);
    SetColors(*from, *to);
    SetExtras(*from, *to);
    bool twoSided = m_twoSided.contains(id);
    from->GetCustomData().GetBool(MATERIAL_TWO_SIDED, twoSided, twoSided);
    if (twoSided)
        Set(*to, 1, AI_MATKEY_TWOSIDED);
    for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP; type++)
        if (const CMaterialMap* map = from->GetMaterialMap(static_cast<MapType>(type)))
            SetMap(id, *map, *to);
    if (IsAnimated(*from))
        m_losses.Add(LOSS_MATERIAL_KEYS);
    return to;
}

void MaterialExport::SetColors(const C3DMaterial& from, aiMaterial& to) const
{
    const CRGBColor diffuse = from.GetDiffuseColor(0, false);
    const float opacity = diffuse.alpha / 255.0f * (1 - from.GetTransparencyFactor(0)), strength = from.GetSpecularFactor(0);
    const bool hasStrength = m_format.Can(CAN_SHINE_STRENGTH);
    const aiColor3D color = ToColor(diffuse, from.GetDiffuseFactor(0));
    Set(to, color, AI_MATKEY_COLOR_DIFFUSE);
    Set(to, ToColor(from.GetAmbientColor(0, false), from.GetAmbientFactor(0)), AI_MATKEY_COLOR_AMBIENT);
    Set(to, ToColor(from.GetSpecularColor(0, false), hasStrength ? 1 : strength), AI_MATKEY_COLOR_SPECULAR);
    if (hasStrength)
        Set(to, strength, AI_MATKEY_SHININESS_STRENGTH);
    Set(to, opacity, AI_MATKEY_OPACITY);
    Set(to, static_cast<int>(aiShadingMode_Phong), AI_MATKEY_SHADING_MODEL);
}

void MaterialExport::SetExtras(const C3DMaterial& from, aiMaterial& to)
{
    const CCustomData& data = from.GetCustomData();
    const auto number = [&](unsigned int id, const char* key, unsigned int type, unsigned int index) {
        if (float value; data.GetFloat(id, value))
            Set(to, value, key, type, index);
    };
    number(MATERIAL_SHININESS, AI_MATKEY_SHININESS);
    number(MATERIAL_METALLIC, AI_MATKEY_METALLIC_FACTOR);
    number(MATERIAL_ROUGHNESS, AI_MATKEY_ROUGHNESS_FACTOR);
    number(MATERIAL_REFRACTION, AI_MATKEY_REFRACTI);
    if (from.GetBumpMaps())
        Set(to, from.GetBumpFactor(0), AI_MATKEY_BUMPSCALING);
    if (CRGBColor emissive; data.GetColor(MATERIAL_EMISSIVE, emissive)) {
        float strength;
        data.GetFloat(MATERIAL_EMISSIVE_STRENGTH, strength, 1);
        Set(to, ToColor(emissive, strength), AI_MATKEY_COLOR_EMISSIVE);
    }
    const struct {
        unsigned int id;
        aiTextureType type;
    } files[] = {
        {MATERIAL_EMISSIVE_FILE, aiTextureType_EMISSIVE},
        {MATERIAL_METALLIC_FILE, aiTextureType_METALNESS},
        {MATERIAL_ROUGHNESS_FILE, aiTextureType_DIFFUSE_ROUGHNESS},
    };
    for (const auto& row : files)
        if (CXTString<wchar_t> file; data.GetString(row.id, file)) {
            if (m_format.maps == 0)
                m_losses.Add(LOSS_MAPS);
            else
                SetText(to, m_textures.ToName(file), AI_MATKEY_TEXTURE(row.type, 0));
        }
}

void MaterialExport::SetMap(unsigned int id, const CMaterialMap& map, aiMaterial& to)
{
    bool isNormalMap = false;
    map.GetCustomData().GetBool(MAP_NORMAL_MAP, isNormalMap);
    if (!m_format.HasMap(map.GetType()) || (map.GetType() == MAP_BUMP && !isNormalMap && m_format.Can(NORMAL_MAPS_ONLY))) {
        m_losses.Add(LOSS_MAPS);
        return;
    }
    const aiTextureType types[] = {aiTextureType_NONE,    aiTextureType_DIFFUSE,
                                   aiTextureType_AMBIENT, aiTextureType_SPECULAR,
                                   aiTextureType_OPACITY, isNormalMap ? aiTextureType_NORMALS : aiTextureType_HEIGHT};
    const aiTextureType type = types[map.GetType()];
    SetText(to, m_textures.NameOf(map), AI_MATKEY_TEXTURE(type, 0));
    const std::vector<unsigned int>& channels = GetMapChannels(id);
    const auto set = std::ranges::find(channels, map.GetChannelID()) - channels.begin();
    Set(to, static_cast<int>(set) % static_cast<int>(std::max(channels.size(), std::size_t{1})), AI_MATKEY_UVWSRC(type, 0));
    if (int wrap; map.GetCustomData().GetInt(MAP_WRAP_U, wrap))
        Set(to, wrap, AI_MATKEY_MAPPINGMODE_U(type, 0));
    if (int wrap; map.GetCustomData().GetInt(MAP_WRAP_V, wrap))
        Set(to, wrap, AI_MATKEY_MAPPINGMODE_V(type, 0));
    if (float opacity; map.GetType() == MAP_DIFFUSE && to.Get(AI_MATKEY_OPACITY, opacity) == AI_SUCCESS && opacity >= 1)
        SetText(to, !map.IsFlagSet(MAP_NO_ALPHA_TEST) && m_textures.HasAlpha(map) ? "MASK" : "OPAQUE", AI_MATKEY_GLTF_ALPHAMODE);
    if (aiColor3D color; map.GetType() == MAP_DIFFUSE && m_format.Can(IMAGE_HIDES_COLOR) &&
                         to.Get(AI_MATKEY_COLOR_DIFFUSE, color) == AI_SUCCESS && !(color == aiColor3D(1, 1, 1)))
        m_losses.Add(LOSS_COLORS);
    if (map.GetProjection() > PROJECTION_UVW)
        m_losses.Add(LOSS_PROJECTIONS);
    if (!map.GetAlphaFileName().IsEmpty())
        m_losses.Add(LOSS_ALPHA_FILES);
}
