#include "scene/Preferences.h"

#include <gtest/gtest.h>

#include <limits>

#include "render/GLViewSettings.h"
#include "support/TempFolder.h"
#include "tools/FourCC.h"

namespace {

class CPreferences : public C3DPreferences {
public:
    CPreferences() = default;
};

class Preferences : public testing::Test {
protected:
    static constexpr const char* FILE_NAME = "3dzel/3dprefs.prefs";

    TempFolder m_folder;
    ScopedVariable m_config{"XDG_CONFIG_HOME", m_folder.Name()};
};

GlViewSettings Settings(unsigned int flags, _RVIEW_FLAG number, float matrix)
{
    GlViewSettings settings;
    settings.viewFlags = flags;
    settings.viewNumber = number;
    for (int i = 0; i < 16; i++)
        settings.matrix.m[i / 4][i % 4] = matrix + i;
    return settings;
}

}

TEST_F(Preferences, ComeBackAtTheNextStart)
{
    CXArray<CXTString<wchar_t>> paths;
    {
        CPreferences preferences;
        EXPECT_FLOAT_EQ(preferences.GetViewAngle(), 0.5235988f);
        EXPECT_EQ(preferences.GetLWPaths(paths, false), 0);
        preferences.SetViewAngle(0.25f);
        preferences.SetViewAngle(std::numeric_limits<float>::quiet_NaN());
        preferences.SetSmoothAngle(3.5f);    // too large
        paths.Add(L"/a");
        preferences.SetLWPaths(paths);
        preferences.SetDefaultGLViewSettings(Settings(VIEWFLAG_SMOOTH | VIEWFLAG_CULLING_ON, RVIEW_CUSTOM, 100), 9);
        EXPECT_TRUE(preferences.Save());
    }
    const CPreferences preferences;
    EXPECT_EQ(preferences.GetViewAngle(), 0.25f);
    EXPECT_FLOAT_EQ(preferences.GetSmoothAngle(), 0.54105204f);
    EXPECT_EQ(preferences.GetLWPaths(paths, true), 2);
    EXPECT_EQ(preferences.GetTexturePaths(paths, false), 0);
    GlViewSettings settings;
    EXPECT_TRUE(preferences.GetDefaultGLViewSettings(settings, 9));
    EXPECT_EQ(settings.viewFlags, VIEWFLAG_SMOOTH);
    EXPECT_EQ(settings.matrix.m[3][3], 115);
    EXPECT_TRUE(preferences.GetWarning().IsEmpty());
}

TEST_F(Preferences, ADamagedFileIsKeptBesideBeforeItIsReplaced)
{
    m_folder.Write(FILE_NAME, "damaged");
    CPreferences preferences;
    EXPECT_FALSE(preferences.GetWarning().IsEmpty());
    EXPECT_TRUE(preferences.Save());    // nothing has changed: nothing is written
    EXPECT_EQ(m_folder.Read(FILE_NAME), "damaged");
    preferences.SetViewAngle(1);
    EXPECT_TRUE(preferences.Save());
    EXPECT_EQ(m_folder.Read("3dzel/3dprefs-damaged.prefs"), "damaged");
    EXPECT_EQ(CPreferences().GetViewAngle(), 1);
    preferences.SetViewAngle(2);
    EXPECT_TRUE(preferences.Save());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Name("3dzel")), {}), 2);
}
