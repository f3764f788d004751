#include "scene/Materials.h"
#include "scene/Preferences.h"

// Colours, factors and the other keyed values of a material.

namespace {

constexpr float SMOOTH_ANGLE_OF_PREFERENCES = -1;
constexpr float PI = 3.14159265f;

template <class T> T GetValue(const C3DKeyframable& material, unsigned int time, std::uint64_t classId, const T& withoutKey)
{
    C3DTypeKey<T> key(classId, withoutKey);
    material.Evaluate(static_cast<int>(time), key);
    return key.value;
}

/// 0 for what is no number.
float Clamp(float factor) { return factor >= 1 ? 1 : factor > 0 ? factor : 0; }

/// Fractions are cut off. Keys that were not set here may hold any factor.
unsigned char Scale(unsigned char channel, float factor) { return static_cast<unsigned char>(static_cast<float>(channel) * Clamp(factor)); }

CRGBColor Scale(const CRGBColor& color, float factor)
{
    return {Scale(color.red, factor), Scale(color.green, factor), Scale(color.blue, factor), color.alpha};
}

void ToFloats(const CRGBColor& color, double factor, double alphaFactor, float* rgba)
{
    rgba[0] = static_cast<float>(color.red / 255.0 * factor);
    rgba[1] = static_cast<float>(color.green / 255.0 * factor);
    rgba[2] = static_cast<float>(color.blue / 255.0 * factor);
    rgba[3] = static_cast<float>(color.alpha / 255.0 * alphaFactor);
}

}

template <class T> void C3DMaterial::SetValue(unsigned int time, std::uint64_t classId, const T& value)
{
    const int former = GetKeyNbr(KEY_ANY);
    auto* const key = dynamic_cast<C3DTypeKey<T>*>(CreateKey(static_cast<int>(time), classId, 0));
    if (!key || (key->value == value && GetKeyNbr(KEY_ANY) == former))
        return;
    key->value = value;
    NoteNews(MATERIAL_PARAMETER_CHANGED);
}

// ---- Colours

CRGBColor C3DMaterial::GetAmbientColor(unsigned int time, bool applyFactor) const
{
    const CRGBColor color = GetValue(*this, time, KEY_AMBIENT_COLOR, CRGBColor(30, 30, 30));
    return applyFactor ? Scale(color, GetAmbientFactor(time)) : color;
}

CRGBColor C3DMaterial::GetDiffuseColor(unsigned int time, bool applyFactor) const
{
    CRGBColor color = GetValue(*this, time, KEY_DIFFUSE_COLOR, CRGBColor(192, 192, 192));
    if (applyFactor) {
        color = Scale(color, GetDiffuseFactor(time));
        color.alpha = Scale(color.alpha, 1 - GetTransparencyFactor(time));
    }
    return color;
}

CRGBColor C3DMaterial::GetSpecularColor(unsigned int time, bool applyFactor) const
{
    const CRGBColor color = GetValue(*this, time, KEY_SPECULAR_COLOR, CRGBColor(192, 192, 192));
    return applyFactor ? Scale(color, GetSpecularFactor(time)) : color;
}

void C3DMaterial::SetAmbientColor(unsigned int time, const CRGBColor& color) { SetValue(time, KEY_AMBIENT_COLOR, color); }

void C3DMaterial::SetDiffuseColor(unsigned int time, const CRGBColor& color)
{
    if (m_owner && GetDiffuseColor(time, false) == color)
        return;
    if (m_owner)
        m_owner->HashRemove(this);
    SetValue(time, KEY_DIFFUSE_COLOR, color);
    if (m_owner)
        m_owner->HashInsert(this);
}

void C3DMaterial::SetSpecularColor(unsigned int time, const CRGBColor& color) { SetValue(time, KEY_SPECULAR_COLOR, color); }

void C3DMaterial::FloatGetAmbientColor(unsigned int time, float* rgba) const
{
    ToFloats(GetAmbientColor(time, false), GetAmbientFactor(time), 1, rgba);
}

void C3DMaterial::FloatGetDiffuseColor(unsigned int time, float* rgba) const
{
    ToFloats(GetDiffuseColor(time, false), GetDiffuseFactor(time), 1.0 - GetTransparencyFactor(time), rgba);
}

void C3DMaterial::FloatGetSpecularColor(unsigned int time, float* rgba) const
{
    ToFloats(GetSpecularColor(time, false), GetSpecularFactor(time), 1, rgba);
}

bool C3DMaterial::IsTransparent(unsigned int time) const
{
    return GetTransparencyFactor(time) > 0 || GetDiffuseColor(time, false).alpha < 255;
}

// ---- Factors

float C3DMaterial::GetAmbientFactor(unsigned int time) const { return GetValue(*this, time, KEY_AMBIENT_FACTOR, 1.0f); }

float C3DMaterial::GetDiffuseFactor(unsigned int time) const { return GetValue(*this, time, KEY_DIFFUSE_FACTOR, 1.0f); }

float C3DMaterial::GetSpecularFactor(unsigned int time) const { return GetValue(*this, time, KEY_SPECULAR_FACTOR, 1.0f); }

float C3DMaterial::GetBumpFactor(unsigned int time) const { return GetValue(*this, time, KEY_BUMP_FACTOR, 1.0f); }

float C3DMaterial::GetTransparencyFactor(unsigned int time) const { return GetValue(*this, time, KEY_TRANSPARENCY_FACTOR, 0.0f); }

void C3DMaterial::SetAmbientFactor(unsigned int time, float factor) { SetValue(time, KEY_AMBIENT_FACTOR, Clamp(factor)); }

void C3DMaterial::SetDiffuseFactor(unsigned int time, float factor) { SetValue(time, KEY_DIFFUSE_FACTOR, Clamp(factor)); }

void C3DMaterial::SetSpecularFactor(unsigned int time, float factor) { SetValue(time, KEY_SPECULAR_FACTOR, Clamp(factor)); }

void C3DMaterial::SetBumpFactor(unsigned int time, float factor) { SetValue(time, KEY_BUMP_FACTOR, Clamp(factor)); }

void C3DMaterial::SetTransparencyFactor(unsigned int time, float factor) { SetValue(time, KEY_TRANSPARENCY_FACTOR, Clamp(factor)); }

// ---- Smooth angle, vertex colours

float C3DMaterial::GetSmoothAngle(unsigned int time) const
{
    const float angle = GetValue(*this, time, KEY_SMOOTH_ANGLE, SMOOTH_ANGLE_OF_PREFERENCES);
    return angle == SMOOTH_ANGLE_OF_PREFERENCES ? C3DPreferences::Get3DPreferences().GetSmoothAngle() : angle;
}

void C3DMaterial::SetSmoothAngle(unsigned int time, float angle)
{
    const double degrees = angle * (180 / 3.14159265358979323846);
    if (angle == SMOOTH_ANGLE_OF_PREFERENCES)
        SetValue(time, KEY_SMOOTH_ANGLE, angle);
    else
        SetValue(time, KEY_SMOOTH_ANGLE, degrees > 180 ? PI : degrees >= 0 ? angle : 0.0f);
}

unsigned int C3DMaterial::GetVertexColor(unsigned int time, float& strength) const
{
    strength = GetValue(*this, time, KEY_VERTEX_COLOR_STRENGTH, 1.0f);
    return m_vertexColorChannel;
}

void C3DMaterial::SetVertexColor(unsigned int time, unsigned int channelID, float strength)
{
    SetValue(time, KEY_VERTEX_COLOR_STRENGTH, Clamp(strength));
    if (m_vertexColorChannel == channelID)
        return;
    m_vertexColorChannel = channelID;
    NoteNews(MATERIAL_PARAMETER_CHANGED);
}
