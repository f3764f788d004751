#include "scene/Light.h"

#include "scene/3DObject.h"
#include "tools/FourCC.h"

ZEL_IMPLEMENT_CREATABLE(C3DLight, C3DBaseObject)

static constexpr unsigned int LIGHT_KIND_KEY = FourCC("lknd");
static constexpr unsigned int LIGHT_COLOR = FourCC("lclr");
static constexpr unsigned int LIGHT_INTENSITY = FourCC("lint");
static constexpr unsigned int LIGHT_INNER_ANGLE = FourCC("lina");
static constexpr unsigned int LIGHT_OUTER_ANGLE = FourCC("loua");
static constexpr unsigned int LIGHT_INNER_RADIUS = FourCC("linr");
static constexpr unsigned int LIGHT_OUTER_RADIUS = FourCC("lour");

C3DLight::C3DLight() : C3DBaseObject(OBJECT_LIGHT) { SetFlag(OBJECT_WIREFRAME_ONLY, true); }

C3DLight::C3DLight(const C3DLight& other) : C3DBaseObject(other) {}

C3DLight::~C3DLight() { DeleteMe(m_display); }

C3DBaseObject* C3DLight::GetFinalObject(bool)
{
    if (m_display)
        return m_display;
    switch (GetLightKind()) {
    case LIGHT_DIRECTIONAL: m_display = GenerateDirectionalLight(); break;
    case LIGHT_OMNI: m_display = GenerateOmniLight(); break;
    case LIGHT_SPOT: m_display = GenerateSpotLight(); break;
    }
    return m_display;
}

int C3DLight::GetLightKind() const
{
    int kind;
    GetCustomData().GetInt(LIGHT_KIND_KEY, kind, LIGHT_DIRECTIONAL);
    return kind;
}
void C3DLight::SetLightKind(int kind) { GetCustomData().SetInt(LIGHT_KIND_KEY, kind); }

CRGBColor C3DLight::GetColor() const
{
    CRGBColor color;
    GetCustomData().GetColor(LIGHT_COLOR, color);
    return color;
}
void C3DLight::SetColor(const CRGBColor& color) { GetCustomData().SetColor(LIGHT_COLOR, color); }

static double GetParameter(const C3DBaseObject& light, unsigned int key, double fallback)
{
    double value;
    light.GetCustomData().GetDouble(key, value, fallback);
    return value;
}

double C3DLight::GetIntensity() const { return GetParameter(*this, LIGHT_INTENSITY, 1.0); }
void C3DLight::SetIntensity(double intensity) { GetCustomData().SetDouble(LIGHT_INTENSITY, intensity); }

double C3DLight::GetInnerAngle() const { return GetParameter(*this, LIGHT_INNER_ANGLE, 0); }
void C3DLight::SetInnerAngle(double angle) { GetCustomData().SetDouble(LIGHT_INNER_ANGLE, angle); }

double C3DLight::GetOuterAngle() const { return GetParameter(*this, LIGHT_OUTER_ANGLE, 0.5235987755982988); }
void C3DLight::SetOuterAngle(double angle) { GetCustomData().SetDouble(LIGHT_OUTER_ANGLE, angle); }

double C3DLight::GetInnerRadius() const { return GetParameter(*this, LIGHT_INNER_RADIUS, 0); }
void C3DLight::SetInnerRadius(double radius) { GetCustomData().SetDouble(LIGHT_INNER_RADIUS, radius); }

double C3DLight::GetOuterRadius() const { return GetParameter(*this, LIGHT_OUTER_RADIUS, 0); }
void C3DLight::SetOuterRadius(double radius) { GetCustomData().SetDouble(LIGHT_OUTER_RADIUS, radius); }

void C3DLight::ClearAttenuation()
{
    GetCustomData().Remove(LIGHT_INNER_RADIUS);
    GetCustomData().Remove(LIGHT_OUTER_RADIUS);
}
