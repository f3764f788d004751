#include <algorithm>

#include "channels/DependentChannels.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "scene/ParserSceneInfo.h"
#include "scene/Patch.h"
#include "scene/Preferences.h"
#include "tools/FileNameSpec.h"
#include "tools/FourCC.h"

// Ids of the scene's parameters in its custom data.
static constexpr unsigned int UNIT = FourCC("SCUT"), SCALE_FACTOR = FourCC("SCLF"), SMOOTH_ANGLE = FourCC("SMAN"),
                              SMOOTH_MODE = FourCC("SMMO"), PATCH_LEVEL = FourCC("PALV"), FILE_NAME = FourCC("SNFL"),
                              FILE_CLASS = FourCC("SNFC");

// Units

_UNIT_MODE C3DScene::GetUnit() const
{
    unsigned int unit;
    m_customData.GetUnsigned(UNIT, unit, UNIT_UNDEFINED);
    return static_cast<_UNIT_MODE>(unit);
}

void C3DScene::SetUnit(_UNIT_MODE unit) { m_customData.SetUnsigned(UNIT, unit); }

bool C3DScene::IsUnitDefined() const { return m_customData.HasData(SCALE_FACTOR); }

double C3DScene::GetUnitFactor(_UNIT_MODE unit)
{
    switch (unit) {
    case UNIT_NANOMETER: return 1e-7;
    case UNIT_MICROMETER: return 0.0001;
    case UNIT_MILLIMETER: return 0.1;
    case UNIT_METER: return 100;
    case UNIT_KILOMETER: return 100000;
    case UNIT_INCH: return 2.54;
    case UNIT_FOOT: return 30.48;
    case UNIT_YARD: return 91.44;
    case UNIT_MILE: return 160934.4;
    default: return 1;
    }
}

double C3DScene::GetScaleFactor() const
{
    double factor;
    m_customData.GetDouble(SCALE_FACTOR, factor, 1);
    return factor;
}

void C3DScene::SetScaleFactor(double factor)
{
    if (factor != 0)
        m_customData.SetDouble(SCALE_FACTOR, factor);
}

double C3DScene::ConvertToUnit(double value) const { return value * GetScaleFactor() / GetUnitFactor(GetUnit()); }

CXTString<wchar_t> C3DScene::GetUnitText(bool abbreviated) const { return ::GetUnitText(GetUnit(), abbreviated); }

// Smooth settings

/// Calls `action` with the channels of every geometric object that passes the test, each object once.
template <class TEST, class ACTION> static void ForChannelsOf(const C3DScene& scene, TEST test, ACTION action)
{
    C3DGeomObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        scene.GetNextNode(object, pos);
        if (test(*object))
            action(*object->GetChannels());
    }
}

float C3DScene::GetSmoothAngle() const
{
    float angle = SMOOTH_ANGLE_INHERITED;
    if (this)
        m_customData.GetFloat(SMOOTH_ANGLE, angle, SMOOTH_ANGLE_INHERITED);
    return angle == SMOOTH_ANGLE_INHERITED ? C3DPreferences::Get3DPreferences().GetSmoothAngle() : angle;
}

void C3DScene::SetSmoothAngle(float angle, bool alsoPreferences)
{
    if (angle == SMOOTH_ANGLE_INHERITED)
        angle = C3DPreferences::Get3DPreferences().GetSmoothAngle();
    else if (!(angle >= 0 && angle <= 180.01f))    // refuses NaN too
        return;
    if (angle == GetSmoothAngle())
        return;
    ForChannelsOf(
        *this,
        [](const C3DGeomObject& object) {
            bool inherited;
            object.GetSmoothAngle(&inherited);
            return inherited;
        },
        [](CDependentChannels& channels) { channels.Invalidate(CHANNEL_POINT_NORMAL); });
    m_customData.SetFloat(SMOOTH_ANGLE, angle);
    if (alsoPreferences)
        C3DPreferences::Get3DPreferences().SetSmoothAngle(angle);
}

_NormalSmoothMode C3DScene::GetSmoothMode() const
{
    unsigned int mode = 0;
    if (this && m_customData.GetUnsigned(SMOOTH_MODE, mode, 0) && mode != 0)
        return static_cast<_NormalSmoothMode>(mode);
    return C3DPreferences::Get3DPreferences().GetSmoothMode();
}

void C3DScene::SetSmoothMode(_NormalSmoothMode mode, bool alsoPreferences)
{
    if (mode == 0)
        mode = C3DPreferences::Get3DPreferences().GetSmoothMode();
    if (mode == GetSmoothMode())
        return;
    ForChannelsOf(
        *this,
        [](const C3DGeomObject& object) {
            bool inherited;
            object.GetSmoothMode(&inherited);
            return inherited;
        },
        [](CDependentChannels& channels) {
            channels.Invalidate(CHANNEL_POINT_NORMAL);
            channels.SetFlag(CHANNEL_SPEC_NORMAL, CHANNEL_STALE, true);
        });
    m_customData.SetUnsigned(SMOOTH_MODE, mode);
    if (alsoPreferences)
        C3DPreferences::Get3DPreferences().SetSmoothMode(mode);
}

void C3DScene::SetPatchLevel(unsigned int level)
{
    level = std::min<unsigned int>(level, C3DPatch::MOST_LEVEL);
    m_customData.SetUnsigned(PATCH_LEVEL, level);
    C3DBaseObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_PATCH, ITER_UNIQUE_OBJECTS); pos;) {
        GetNextNode(object, pos);
        static_cast<C3DPatch*>(*object)->SetLevel(static_cast<int>(level));
    }
}

// File name

CFileNameSpec C3DScene::GetFilename() const
{
    CXTString<wchar_t> name;
    unsigned int fileClass;
    m_customData.GetString(FILE_NAME, name);
    m_customData.GetUnsigned(FILE_CLASS, fileClass, 0);
    return CFileNameSpec(name, fileClass);
}

CXTString<wchar_t> C3DScene::GetFilepath() const { return GetFilename().GetPath(); }

void C3DScene::SetFilename(const CFileNameSpec& spec)
{
    if (spec.IsEmpty()) {
        m_customData.Remove(FILE_NAME);
        m_customData.Remove(FILE_CLASS);
        return;
    }
    m_customData.SetString(FILE_NAME, spec.GetFullName());
    m_customData.SetUnsigned(FILE_CLASS, spec.GetClass());
}

// Parser data

void C3DScene::SetParserData(bool owner, unsigned int size, void* data)
{
    if (!data)
        return;
    ReleaseParserInfo();
    m_parserInfo = new CParserSceneInfo(data, size, owner);
}

void* C3DScene::GetParserData(unsigned int& size, bool detach)
{
    size = m_parserInfo ? m_parserInfo->GetDataSize() : 0;
    void* data = m_parserInfo ? m_parserInfo->GetData() : nullptr;
    if (m_parserInfo && detach) {
        m_parserInfo->Detach();
        ReleaseParserInfo();
    }
    return data;
}

void C3DScene::ReleaseParserInfo()
{
    CParserSceneInfo::ReleaseInfo(m_parserInfo);
    m_parserInfo = nullptr;
}
