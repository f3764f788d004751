#include "CameraLightImport.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <assimp/camera.h>
#include <assimp/light.h>
#include <assimp/scene.h>

namespace {

using Vector = C3DTVector<double>;

Vector ToVector(const aiVector3D& from) { return {from.x, from.y, from.z}; }

// Turns +y to `forward` and +z as near to `up` as can be, and moves to `position`. A vector of no use gives way to the one that most files
// mean, -z forward and +y up.
C4x4TMatrix<float> Placement(const aiVector3D& position, const aiVector3D& forward, const aiVector3D& up)
{
    Vector y = ToVector(forward);
    if (!(y.Normalize() > 1e-12))
        y = Vector(0, 0, -1);
    Vector x = Cross(y, ToVector(up));
    if (!(x.Normalize() > 1e-6))
        x = Cross(y, std::abs(y.y) < 0.9 ? Vector(0, 1, 0) : Vector(0, 0, -1));
    x.Normalize();
    const Vector z = Cross(x, y), columns[4] = {x, y, z, ToVector(position)};
    C4x4TMatrix<float> matrix;
    for (int column = 0; column < 4; column++)
        for (int row = 0; row < 3; row++)
            matrix.m[row][column] = static_cast<float>(columns[column][row]);
    return matrix;
}

C3DCamera* CameraOf(const aiCamera& from)
{
    auto* camera = new C3DCamera;
    if (from.mHorizontalFOV > 0 && from.mOrthographicWidth <= 0)
        camera->SetFov(from.mHorizontalFOV);
    if (from.mAspect > 0)
        camera->SetAspectRatio(from.mAspect);
    if (from.mClipPlaneFar > from.mClipPlaneNear && from.mClipPlaneNear >= 0)
        camera->SetNearFarClip(from.mClipPlaneNear, from.mClipPlaneFar);
    if (from.mOrthographicWidth > 0) {
        camera->SetProjection(CAMERA_ORTHOGRAPHIC);
        camera->GetCustomData().SetDouble(CAMERA_HALF_WIDTH, from.mOrthographicWidth);
    }
    return camera;
}

int KindOf(const aiLight& light)
{
    switch (light.mType) {
    case aiLightSource_DIRECTIONAL: return LIGHT_DIRECTIONAL;
    case aiLightSource_SPOT: return LIGHT_SPOT;
    default: return LIGHT_OMNI;
    }
}

// Files give colours brighter than white; what is above goes into the intensity.
void SetColor(C3DLight& light, const aiColor3D& color)
{
    const float brightest = std::max({color.r, color.g, color.b});
    if (!(brightest > 0) || !std::isfinite(brightest)) {
        light.SetColor({0, 0, 0});
        return;
    }
    const float scale = std::max(brightest, 1.0f);
    const auto byte = [scale](float part) { return static_cast<unsigned char>(std::max(part, 0.0f) / scale * 255 + 0.5f); };
    light.SetColor({byte(color.r), byte(color.g), byte(color.b)});
    light.SetIntensity(scale);
}

C3DLight* LightOf(const aiLight& from, double angleFactor)
{
    auto* light = new C3DLight;
    light->SetLightKind(KindOf(from));
    SetColor(*light, from.mColorDiffuse);
    if (from.mType == aiLightSource_SPOT) {
        light->SetInnerAngle(from.mAngleInnerCone * angleFactor);
        light->SetOuterAngle(from.mAngleOuterCone * angleFactor);
    }
    const double attenuation[3] = {from.mAttenuationConstant, from.mAttenuationLinear, from.mAttenuationQuadratic};
    if (from.mType != aiLightSource_DIRECTIONAL)
        light->GetCustomData().SetData(LIGHT_ATTENUATION, attenuation, sizeof attenuation);
    return light;
}

}

CameraLightImport::CameraLightImport(const aiScene& source, const FormatTraits& traits, CSceneImportOptions& options)
    : m_placedTwice(traits.placedTwice)
{
    for (unsigned int i = 0; i < source.mNumCameras; i++) {
        const aiCamera& from = *source.mCameras[i];
        m_items.emplace(from.mName.C_Str(),
                        Item{CameraOf(from), Placement(from.mPosition, from.mLookAt, from.mUp), Utf8ToWide(from.mName.C_Str())});
    }
    for (unsigned int i = 0; i < source.mNumLights; i++) {
        const aiLight& from = *source.mLights[i];
        if (from.mType == aiLightSource_AMBIENT || from.mType == aiLightSource_UNDEFINED) {
            options.AddLogInfo(IoLogInfo::INFORMATION, L"ambient light left out: " + Utf8ToWide(from.mName.C_Str()));
            continue;
        }
        const aiVector3D up = from.mUp.SquareLength() > 0 ? from.mUp : aiVector3D(0, 1, 0);
        m_items.emplace(from.mName.C_Str(), Item{LightOf(from, traits.gltf ? 2 : 1), Placement(from.mPosition, from.mDirection, up),
                                                 Utf8ToWide(from.mName.C_Str())});
    }
}

CameraLightImport::~CameraLightImport()
{
    for (const auto& [name, item] : m_items)
        DeleteMe(item.object);
}

bool CameraLightImport::Has(const aiNode& node) const { return m_items.count(node.mName.C_Str()) != 0; }

std::vector<CameraLightImport::Item> CameraLightImport::Take(const aiNode& node)
{
    std::vector<Item> taken;
    const auto [first, last] = m_items.equal_range(node.mName.C_Str());
    std::transform(first, last, std::back_inserter(taken), [](const auto& entry) { return entry.second; });
    m_items.erase(first, last);
    const aiMatrix4x4& matrix = node.mTransformation;
    if (m_placedTwice && (matrix.a4 != 0 || matrix.b4 != 0 || matrix.c4 != 0))
        for (Item& item : taken)
            for (int row = 0; row < 3; row++)
                item.place.m[row][3] = 0;
    return taken;
}

std::vector<CameraLightImport::Item> CameraLightImport::TakeRest()
{
    std::vector<Item> taken;
    for (const auto& [name, item] : m_items)
        taken.push_back(item);
    m_items.clear();
    return taken;
}
