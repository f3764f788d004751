#include "scene/Preferences.h"

#include <algorithm>
#include <cmath>

#include "channels/NormalMode.h"
#include "scene/Patch.h"
#include "tools/FilePath.h"
#include "tools/FourCC.h"

static constexpr unsigned int FILE_ID = FourCC("3DVW"), FILE_KIND = FourCC("PREF");
static constexpr unsigned int SMOOTH_ANGLE = FourCC("SMAG"), SMOOTH_MODE = FourCC("SMMD"), PATCH_LEVEL = FourCC("PHLV"),
                              VIEW_ANGLE = FourCC("VWAG"), TEXTURE_PATHS = FourCC("TXTP"), LIGHTWAVE_PATHS = FourCC("LWVP");

static bool GetPreferencesFile(CXTString<wchar_t>& path, bool create)
{
    if (!GetUserPreferencesPath(path, create))
        return false;
    path += L"3dprefs.prefs";
    return true;
}

C3DPreferences& C3DPreferences::Get3DPreferences()
{
    static C3DPreferences preferences;
    return preferences;
}

C3DPreferences::C3DPreferences()
{
    CXTString<wchar_t> path;
    if (GetPreferencesFile(path, false) && !m_bag.LoadFromPrefs(path, FILE_ID, FILE_KIND) && fileExists(path)) {
        m_damaged = true;
        m_warning = path + L" is damaged: all settings are the standard ones";
    }
    m_initialised = 1;
}

C3DPreferences::~C3DPreferences() = default;

static bool KeepBeside(const CXTString<wchar_t>& path)
{
    const CXTString<wchar_t> beside = fileCreateUniqueName(fileStripExtension(path) + L"-damaged" + fileGetExtension(path), false);
    return !beside.IsEmpty() && fileCopy(path, beside, true);
}

bool C3DPreferences::Save() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    CXTString<wchar_t> path;
    if (!GetPreferencesFile(path, true))
        return false;
    const bool exists = fileExists(path);
    if (exists && !m_changed)    // others may have written it meanwhile
        return true;
    if (exists && m_damaged && !KeepBeside(path))
        return false;
    m_damaged = false;
    m_changed = !m_bag.SaveToPrefs(path, FILE_ID, FILE_KIND);
    return !m_changed;
}

CXTString<wchar_t> C3DPreferences::GetWarning() const { return m_warning; }

// The file may say anything: a getter holds what it finds there to what its setter takes.

static bool IsSmoothAngle(float angle)
{
    const double degrees = angle * (180 / 3.14159265358979323846);
    return degrees >= 0 && degrees <= 180.005;    // false for NaN
}

float C3DPreferences::GetSmoothAngle() const
{
    constexpr float STANDARD = 0.54105204f;
    const std::lock_guard<std::mutex> guard(m_lock);
    float angle;
    m_bag.GetFloat(SMOOTH_ANGLE, angle, STANDARD);
    return IsSmoothAngle(angle) ? angle : STANDARD;
}

void C3DPreferences::SetSmoothAngle(float angle)
{
    if (IsSmoothAngle(angle))
        Change(&CCustomData::SetFloat, SMOOTH_ANGLE, angle);
}

_NormalSmoothMode C3DPreferences::GetSmoothMode() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    unsigned int mode;
    m_bag.GetUnsigned(SMOOTH_MODE, mode, 2);
    return static_cast<_NormalSmoothMode>(mode);
}

void C3DPreferences::SetSmoothMode(_NormalSmoothMode mode)
{
    if (mode != 0)
        Change(&CCustomData::SetUnsigned, SMOOTH_MODE, mode);
}

static unsigned int HeldLevel(unsigned int level) { return std::min<unsigned int>(level, C3DPatch::MOST_LEVEL); }

unsigned int C3DPreferences::GetPatchLevel() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    unsigned int level;
    m_bag.GetUnsigned(PATCH_LEVEL, level, 1);
    return HeldLevel(level);
}

void C3DPreferences::SetPatchLevel(unsigned int level) { Change(&CCustomData::SetUnsigned, PATCH_LEVEL, HeldLevel(level)); }

float C3DPreferences::GetViewAngle() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    constexpr float STANDARD = 0.5235988f;
    float angle;
    m_bag.GetFloat(VIEW_ANGLE, angle, STANDARD);
    return std::isfinite(angle) ? angle : STANDARD;
}

void C3DPreferences::SetViewAngle(float angle)
{
    if (std::isfinite(angle))
        Change(&CCustomData::SetFloat, VIEW_ANGLE, angle);
}

int C3DPreferences::GetPaths(unsigned int key, CXArray<CXTString<wchar_t>>& paths, bool append) const
{
    CXArray<CXTString<wchar_t>> kept;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_bag.GetStringArray(key, kept);
    }
    if (!append)
        paths.RemoveAll();
    paths.Append(kept);
    return paths.GetSize();
}

int C3DPreferences::GetTexturePaths(CXArray<CXTString<wchar_t>>& paths, bool append) const
{
    return GetPaths(TEXTURE_PATHS, paths, append);
}

void C3DPreferences::SetTexturePaths(const CXArray<CXTString<wchar_t>>& paths)
{
    Change(&CCustomData::SetStringArray, TEXTURE_PATHS, paths);
}

int C3DPreferences::GetLWPaths(CXArray<CXTString<wchar_t>>& paths, bool append) const { return GetPaths(LIGHTWAVE_PATHS, paths, append); }

void C3DPreferences::SetLWPaths(const CXArray<CXTString<wchar_t>>& paths) { Change(&CCustomData::SetStringArray, LIGHTWAVE_PATHS, paths); }

bool C3DPreferences::GetBinaryData(unsigned int id, void* data, unsigned int size) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_bag.GetData(id, data, size);
}

void C3DPreferences::SetBinaryData(unsigned int id, const void* data, unsigned int size) { Change(&CCustomData::SetData, id, data, size); }
