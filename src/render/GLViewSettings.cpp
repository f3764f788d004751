#include "render/GLViewSettings.h"

#include "scene/Camera.h"

GlViewSettings::GlViewSettings() = default;

GlViewSettings::GlViewSettings(const GlViewSettings& other) : GlViewSettings() { *this = other; }

GlViewSettings& GlViewSettings::operator=(const GlViewSettings& other)
{
    if (other.m_camera)
        other.m_camera->AddRef();
    DeleteMe(m_camera);
    m_camera = other.m_camera;
    changeMask = other.changeMask;
    aspect = other.aspect;
    sceneSize = other.sceneSize;
    nearPlane = other.nearPlane;
    farPlane = other.farPlane;
    matrix = other.matrix;
    sceneCenter = other.sceneCenter;
    hiddenKinds = other.hiddenKinds;
    viewFlags = other.viewFlags;
    viewNumber = other.viewNumber;
    viewAngle = other.viewAngle;
    brightness = other.brightness;
    background = other.background;
    wireframeColor = other.wireframeColor;
    selectionColor = other.selectionColor;
    lightColor = other.lightColor;
    return *this;
}

GlViewSettings::~GlViewSettings() { DeleteMe(m_camera); }

void GlViewSettings::SetCurrentCamera(const C3DCamera* camera)
{
    C3DCamera* const taken = camera ? static_cast<C3DCamera*>(camera->Copy(0, nullptr)) : new C3DCamera;
    DeleteMe(m_camera);
    m_camera = taken;
}

bool GlViewSettings::IsOrthographic() const { return m_camera && m_camera->GetProjection() != CAMERA_PERSPECTIVE; }
