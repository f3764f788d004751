#include "channels/DependentChannels.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"

unsigned int C3DGeomObject::AddChannel(CChannel* channel)
{
    return static_cast<unsigned int>(m_channels->AddChannel(channel));
}

CChannel* C3DGeomObject::GetChannelByID(unsigned int id, _Channel3DType type) const
{
    return m_channels->GetChannelByID(id, type);
}

CChannel* C3DGeomObject::GetChannelByIndex(int index, _Channel3DType type, bool skipInvalid) const
{
    return m_channels->GetChannelByIndex(index, type, skipInvalid);
}

void C3DGeomObject::SetGlobalUVWChannel(unsigned int id)
{
    m_globalUVW = id;
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
}

unsigned int C3DGeomObject::GetGlobalVCChannel(float& strength) const
{
    strength = m_vcStrength;
    return m_globalVC;
}

void C3DGeomObject::SetGlobalVCChannel(unsigned int id, float strength)
{
    m_globalVC = id;
    m_vcStrength = strength;
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
}

void C3DGeomObject::ChangeChannelID(C3DScene* scene, const ChannelMap& map)
{
    if (const CChannelInfo* info = map.Find(CChannelInfo(m_globalUVW, CHANNEL_UVW)))
        SetGlobalUVWChannel(info->GetChannelID());
    if (const CChannelInfo* info = map.Find(CChannelInfo(m_globalVC, CHANNEL_VC)))
        SetGlobalVCChannel(info->GetChannelID(), 1.0f);
    ChangeMaterialsChannelID(scene, map);
}

void C3DGeomObject::ChangeMaterialsChannelID(C3DScene* scene, const ChannelMap& map)
{
    const MaterialMap* materials = scene && !map.IsEmpty() ? GetMaterialsHashMap(true) : nullptr;
    if (!materials)
        return;
    for (const auto& entry : *materials) {
        if (C3DMaterial* material = scene->GetMaterialList().FindByID(entry.first))
            material->ChangeChannelID(map);
    }
}

void C3DGeomObject::SetFaceMode(_faceModeEnum mode)
{
    m_faceMode = mode;
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
}
