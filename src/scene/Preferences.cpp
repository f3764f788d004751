#include "scene/Preferences.h"

#include "channels/NormalMode.h"
#include "tools/FilePath.h"
#include "tools/FourCC.h"

static constexpr unsigned int FILE_ID = FourCC("3DVW"), FILE_KIND = FourCC("PREF");
static constexpr unsigned int SMOOTH_ANGLE = FourCC("SMAG"), SMOOTH_MODE = FourCC("SMMD"), PATCH_LEVEL = FourCC("PHLV"),
                              TEXTURE_PATHS = FourCC("TXTP");

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
    if (GetPreferencesFile(path, false))
        m_bag.LoadFromPrefs(path, FILE_ID, FILE_KIND);
    m_initialised = 1;
}

C3DPreferences::~C3DPreferences() = default;

bool C3DPreferences::Save() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    CXTString<wchar_t> path;
    return GetPreferencesFile(path, true) && m_bag.SaveToPrefs(path, FILE_ID, FILE_KIND);
}

float C3DPreferences::GetSmoothAngle() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    float angle;
    m_bag.GetFloat(SMOOTH_ANGLE, angle, 0.54105204f);
    return angle;
}

void C3DPreferences::SetSmoothAngle(float angle)
{
    const double degrees = angle * (180 / 3.14159265358979323846);
    if (!(degrees >= 0 && degrees <= 180.005))    // refuses NaN too
        return;
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bag.SetFloat(SMOOTH_ANGLE, angle);
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
    if (mode == 0)
        return;
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bag.SetUnsigned(SMOOTH_MODE, mode);
}

unsigned int C3DPreferences::GetPatchLevel() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    unsigned int level;
    m_bag.GetUnsigned(PATCH_LEVEL, level, 1);
    return level;
}

void C3DPreferences::SetPatchLevel(unsigned int level)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bag.SetUnsigned(PATCH_LEVEL, level);
}

int C3DPreferences::GetTexturePaths(CXArray<CXTString<wchar_t>>& paths, bool append) const
{
    CXArray<CXTString<wchar_t>> kept;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_bag.GetStringArray(TEXTURE_PATHS, kept);
    }
    if (!append)
        paths.RemoveAll();
    paths.Append(kept);
    return paths.GetSize();
}

void C3DPreferences::SetTexturePaths(const CXArray<CXTString<wchar_t>>& paths)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bag.SetStringArray(TEXTURE_PATHS, paths);
}

bool C3DPreferences::GetBinaryData(unsigned int id, void* data, unsigned int size) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_bag.GetData(id, data, size);
}

void C3DPreferences::SetBinaryData(unsigned int id, const void* data, unsigned int size)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bag.SetData(id, data, size);
}
