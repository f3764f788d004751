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
    CCustomData& GetBag() { return m_bag; }
};

class Preferences : public testing::Test {
protected:
    static constexpr const char* FILE_NAME = "3dzel/3dprefs.prefs";

    // A saved point of view as other programs may have left it.
    static std::string Record(unsigned int valid, unsigned int number, std::size_t size = 264)
    {
        const unsigned int head[] = {valid, VIEWFLAG_FLAT, number};
        std::string record(reinterpret_cast<const char*>(head), sizeof head);
        record.resize(size);
        return record;
    }

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

TEST_F(Preferences, SavedPointsOfViewFallBackToTheDefaultOne)
{
    CPreferences preferences;
    GlViewSettings settings;
    settings.matrix.m[0][0] = 7;
    EXPECT_FALSE(preferences.GetDefaultGLViewSettings(settings, 5));
    EXPECT_EQ(settings.changeMask, unsigned{GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER});
    EXPECT_EQ(settings.viewFlags, VIEWFLAG_DEFAULT);
    EXPECT_EQ(settings.viewNumber, RVIEW_FRONT);

    preferences.SetDefaultGLViewSettings(Settings(VIEWFLAG_FLAT, RVIEW_TOP, 100), 0);
    EXPECT_TRUE(preferences.GetDefaultGLViewSettings(settings, 5));
    EXPECT_EQ(settings.viewNumber, RVIEW_TOP);
    EXPECT_EQ(settings.viewFlags, VIEWFLAG_FLAT);
    EXPECT_EQ(settings.matrix.m[0][0], 7);    // of custom points of view alone
    EXPECT_TRUE(preferences.HasDefaultGLViewSettings(0));
    EXPECT_FALSE(preferences.HasDefaultGLViewSettings(5));

    preferences.SetDefaultGLViewSettings(Settings(VIEWFLAG_SMOOTH, RVIEW_CUSTOM, 200), 5);
    EXPECT_TRUE(preferences.GetDefaultGLViewSettings(settings, 5));
    EXPECT_EQ(settings.changeMask, unsigned{GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_MATRIX});
    EXPECT_EQ(settings.matrix.m[0][0], 200);

    preferences.RemoveDefaultGLViewSettings(5);
    EXPECT_FALSE(preferences.HasDefaultGLViewSettings(5));
    preferences.RemoveDefaultGLViewSettings(0);
    preferences.RemoveDefaultGLViewSettings(0);
    EXPECT_FALSE(preferences.GetDefaultGLViewSettings(settings, 0));
    EXPECT_TRUE(preferences.GetBag().IsEmpty());
}

TEST_F(Preferences, SavedPointsOfViewThatMakeNoSenseAreNotThere)
{
    std::string notANumber = Record(1, RVIEW_CUSTOM);
    notANumber.replace(12, 4, "\xFF\xFF\xFF\xFF");
    for (const std::string& record :
         {Record(0, RVIEW_TOP), Record(1, 16), Record(1, RVIEW_TOP, 263), Record(1, RVIEW_TOP, 265), notANumber}) {
        CPreferences preferences;
        preferences.GetBag()
            .MakeCustomData(FourCC("GLSG"))
            .SetData(FourCC("GLSG"), record.data(), static_cast<unsigned int>(record.size()));
        GlViewSettings settings;
        EXPECT_FALSE(preferences.HasDefaultGLViewSettings(0));
        EXPECT_FALSE(preferences.GetDefaultGLViewSettings(settings, 3));
        EXPECT_EQ(settings.viewNumber, RVIEW_FRONT);
    }
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

TEST_F(Preferences, HoldWhereNothingCanBeWritten)
{
    m_folder.Write("3dzel", "");    // no folder: not even root writes there
    CPreferences preferences;
    preferences.SetPatchLevel(3);
    EXPECT_FALSE(preferences.Save());
    EXPECT_EQ(preferences.GetPatchLevel(), 3u);
    std::filesystem::remove(m_folder.Name("3dzel"));
    EXPECT_TRUE(preferences.Save());
    EXPECT_EQ(CPreferences().GetPatchLevel(), 3u);
}

TEST_F(Preferences, UnchangedOnesDoNotReplaceWhatOthersWrote)
{
    CPreferences idle;
    CPreferences other;
    other.SetPatchLevel(2);
    EXPECT_TRUE(other.Save());
    EXPECT_TRUE(idle.Save());
    EXPECT_EQ(CPreferences().GetPatchLevel(), 2u);
}
