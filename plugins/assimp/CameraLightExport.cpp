#include "CameraLightExport.h"

#include <numbers>

namespace {

std::unique_ptr<aiCamera> CameraOf(const C3DCamera& from, const std::string& name)
{
    auto to = std::make_unique<aiCamera>();
    to->mName = aiString(name);
    to->mLookAt = aiVector3D(0, 0, -1);
    to->mUp = aiVector3D(0, 1, 0);
    if (from.GetFov() < std::numbers::pi)    // unless set it is no angle that a camera has
        to->mHorizontalFOV = static_cast<float>(from.GetFov());
    to->mAspect = static_cast<float>(from.GetAspectRatio());
    to->mClipPlaneNear = static_cast<float>(from.GetNearClip());
    to->mClipPlaneFar = static_cast<float>(from.GetFarClip());
    if (from.GetProjection() == CAMERA_ORTHOGRAPHIC) {
        double halfWidth;
        from.GetCustomData().GetDouble(CAMERA_HALF_WIDTH, halfWidth, 1);
        to->mOrthographicWidth = static_cast<float>(halfWidth);
    }
    return to;
}

std::unique_ptr<aiLight> LightOf(const C3DLight& from, const std::string& name)
{
    auto to = std::make_unique<aiLight>();
    to->mName = aiString(name);
    to->mDirection = aiVector3D(0, 0, -1);
    to->mUp = aiVector3D(0, 1, 0);
    const int kind = from.GetLightKind();
    to->mType = kind == LIGHT_DIRECTIONAL ? aiLightSource_DIRECTIONAL : kind == LIGHT_SPOT ? aiLightSource_SPOT : aiLightSource_POINT;
    const CRGBColor color = from.GetColor();
    const auto bright = static_cast<float>(from.GetIntensity()) / 255;
    to->mColorDiffuse = aiColor3D(color.red * bright, color.green * bright, color.blue * bright);
    to->mColorSpecular = to->mColorDiffuse;
    if (kind == LIGHT_SPOT) {
        to->mAngleInnerCone = static_cast<float>(from.GetInnerAngle());
        to->mAngleOuterCone = static_cast<float>(from.GetOuterAngle());
    }
    double attenuation[3] = {1, 0, 0};
    from.GetCustomData().GetData(LIGHT_ATTENUATION, attenuation, sizeof attenuation);
    to->mAttenuationConstant = static_cast<float>(attenuation[0]);
    to->mAttenuationLinear = static_cast<float>(attenuation[1]);
    to->mAttenuationQuadratic = static_cast<float>(attenuation[2]);
    return to;
}

}

void CameraLightExport::Take(const C3DSceneNode& node)
{
    const C3DBaseObject* object = node.GetBaseObject();
    const std::string name = WideToUtf8(node.GetName());
    if (const auto* camera = dynamic_cast<const C3DCamera*>(object)) {
        if (m_format.Can(CAN_CAMERAS))
            m_cameras.push_back(CameraOf(*camera, name));
        else
            m_losses.Add(LOSS_CAMERAS);
    } else if (const auto* light = dynamic_cast<const C3DLight*>(object)) {
        if (m_format.Can(CAN_LIGHTS))
            m_lights.push_back(LightOf(*light, name));
        else
            m_losses.Add(LOSS_LIGHTS);
    }
}
