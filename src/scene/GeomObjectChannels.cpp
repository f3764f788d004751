#include "channels/DependentChannels.h"
#include "scene/GeomObject.h"

unsigned int C3DGeomObject::AddChannel(CChannel* channel) { return static_cast<unsigned int>(m_channels->AddChannel(channel)); }

CChannel* C3DGeomObject::GetChannelByID(unsigned int id, _Channel3DType type) const { return m_channels->GetChannelByID(id, type); }

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

void C3DGeomObject::SetFaceMode(_faceModeEnum mode)
{
    m_faceMode = mode;
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
}
