#include "channels/DependentChannels.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"

// The object's own smooth settings, the scene's where it has none. An object without scene asks a null one, which answers
// from the preferences.

float C3DGeomObject::GetSmoothAngle(bool* inherited) const
{
    const bool fromScene = m_smoothAngle == SMOOTH_ANGLE_INHERITED;
    if (inherited)
        *inherited = fromScene;
    return fromScene ? GetScene()->GetSmoothAngle() : m_smoothAngle;
}

void C3DGeomObject::SetSmoothAngle(float angle)
{
    if (angle != SMOOTH_ANGLE_INHERITED) {
        const double degrees = angle * (180 / 3.14159265358979323846);
        if (!(degrees >= 0))    // NaN too
            angle = 0;
        else if (degrees > 180)
            angle = 3.1415927f;
    }
    if (angle == m_smoothAngle)
        return;
    m_smoothAngle = angle;
    m_channels->RemoveChannels(CHANNEL_POINT_NORMAL, 0, true);
}

_NormalSmoothMode C3DGeomObject::GetSmoothMode(bool* inherited) const
{
    if (inherited)
        *inherited = m_smoothMode == 0;
    return m_smoothMode == 0 ? GetScene()->GetSmoothMode() : m_smoothMode;
}

void C3DGeomObject::SetSmoothMode(_NormalSmoothMode mode)
{
    if (mode == m_smoothMode)
        return;
    m_smoothMode = mode;
    m_channels->RemoveChannels(CHANNEL_POINT_NORMAL, 0, true);
}
