#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "channels/DependentChannels.h"
#include "geometry/GeomInfo.h"
#include "scene/Preferences.h"
#include "scene/SceneBuilders.h"
#include "tools/FourCC.h"

namespace {

/// Keeps the preferences of whoever runs the tests out of them, and theirs out of his.
const std::string PREFERENCES_FOLDER = [] {
    std::string folder = (std::filesystem::temp_directory_path() / "3dzel-scene-tests-XXXXXX").string();
    if (mkdtemp(folder.data()))
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    return folder;
}();

class RemoveFolder : public testing::Environment {
    void TearDown() override { std::filesystem::remove_all(PREFERENCES_FOLDER); }
};
[[maybe_unused]] const auto* const s_removeFolder = testing::AddGlobalTestEnvironment(new RemoveFolder);

/// Preferences as a file may give them.
class CFilePreferences : public C3DPreferences {
public:
    CFilePreferences()
    {
        m_bag.SetUnsigned(FourCC("PHLV"), 0xFFFFFFFF);
        for (const unsigned int id : {FourCC("SMAG"), FourCC("VWAG")})
            m_bag.SetFloat(id, std::numeric_limits<float>::quiet_NaN());
    }
};

constexpr float DEFAULT_ANGLE = 0.54105204f;

/// One square in a scene, with a channel of smoothed and one of given normals that are not stale.
struct Fixture {
    CRef<C3DScene> scene{C3DScene::Create()};
    C3DObject* object = CreateSquare();
    CChannel *smoothed = CChannel::Create(CHANNEL_POINT_NORMAL, NO_CHANNEL_ID),
             *given = CChannel::Create(CHANNEL_SPEC_NORMAL, NO_CHANNEL_ID);

    Fixture()
    {
        AddNode(*scene, nullptr, L"a", 0)->SetObject(object, true);
        object->AddChannel(smoothed);
        object->AddChannel(given);
        smoothed->SetFlag(CHANNEL_STALE, false);
        given->SetFlag(CHANNEL_STALE, false);
    }
};

}

TEST(SmoothSettings, ObjectThenSceneThenPreferences)
{
    Fixture f;
    bool inherited = false;
    EXPECT_EQ(f.object->GetSmoothAngle(&inherited), DEFAULT_ANGLE);
    EXPECT_TRUE(inherited);
    EXPECT_EQ(f.object->GetSmoothMode(), NORMAL_AREA);
    f.scene->SetSmoothAngle(1.0f, false);
    f.scene->SetSmoothMode(NORMAL_ANGLE, false);
    EXPECT_EQ(f.object->GetSmoothAngle(), 1.0f);
    EXPECT_EQ(f.object->GetSmoothMode(&inherited), NORMAL_ANGLE);
    EXPECT_TRUE(inherited);
    f.object->SetSmoothAngle(0.25f);
    f.object->SetSmoothMode(NORMAL_UNWEIGHTED);
    EXPECT_EQ(f.object->GetSmoothAngle(&inherited), 0.25f);
    EXPECT_FALSE(inherited);
    EXPECT_EQ(f.object->GetSmoothMode(&inherited), NORMAL_UNWEIGHTED);
    EXPECT_FALSE(inherited);
    f.object->SetSmoothAngle(SMOOTH_ANGLE_INHERITED);
    f.object->SetSmoothMode(_NormalSmoothMode{});
    EXPECT_EQ(f.object->GetSmoothAngle(), 1.0f);
    EXPECT_EQ(f.object->GetSmoothMode(), NORMAL_ANGLE);

    f.scene->SetSmoothAngle(-1.0f, false);    // the preferences' value, as it is now
    EXPECT_EQ(f.object->GetSmoothAngle(), DEFAULT_ANGLE);
    const CRef<C3DObject> alone(CreateSquare());
    EXPECT_EQ(alone->GetSmoothAngle(), DEFAULT_ANGLE);
    EXPECT_EQ(Null<C3DScene>()->GetSmoothMode(), NORMAL_AREA);
}

TEST(SmoothSettings, AChangeReachesTheNormalsOfWhoeverInherits)
{
    struct {
        const char* name;
        float angle;
        _NormalSmoothMode mode;
        bool own, smoothed, given;
    } const rows[] = {
        {"angle", 1.0f, {}, false, true, false},          {"the same angle", DEFAULT_ANGLE, {}, false, false, false},
        {"mode", 0, NORMAL_ANGLE, false, true, true},     {"the same mode", 0, NORMAL_AREA, false, false, false},
        {"angle, own one", 1.0f, {}, true, false, false}, {"mode, own one", 0, NORMAL_ANGLE, true, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Fixture f;
        if (row.own) {
            f.object->SetSmoothAngle(0.1f);
            f.object->SetSmoothMode(NORMAL_EDGE_LENGTH);
            f.object->AddChannel(f.smoothed = CChannel::Create(CHANNEL_POINT_NORMAL, NO_CHANNEL_ID));
            f.smoothed->SetFlag(CHANNEL_STALE, false);
        }
        if (row.angle != 0)
            f.scene->SetSmoothAngle(row.angle, false);
        else
            f.scene->SetSmoothMode(row.mode, false);
        EXPECT_EQ(f.smoothed->IsFlagSet(CHANNEL_STALE), row.smoothed);
        EXPECT_EQ(f.given->IsFlagSet(CHANNEL_STALE), row.given);
    }
    Fixture f;
    f.object->SetSmoothAngle(0.1f);    // an own change drops the smoothed normals
    EXPECT_EQ(f.object->GetChannels()->GetSize(), 1);
}

TEST(SmoothSettings, PreferencesHoldWhatComesInToItsRange)
{
    // Fault in mind: the surface of a patch of level 0xFFFFFFFF is null, and whoever draws it uses that.
    const CFilePreferences file;
    EXPECT_EQ(file.GetPatchLevel(), 8u);
    EXPECT_EQ(file.GetSmoothAngle(), DEFAULT_ANGLE);
    EXPECT_FLOAT_EQ(file.GetViewAngle(), 0.5235988f);

    C3DPreferences& preferences = C3DPreferences::Get3DPreferences();
    preferences.SetPatchLevel(0xFFFFFFFF);
    const CRef<C3DBaseObject> patch(C3DBaseObject::Create(OBJECT_PATCH));
    EXPECT_NE(patch->GetFinalObject(false), nullptr);
    preferences.SetPatchLevel(1);
}

TEST(SmoothSettings, PreferencesKeepWhatIsSensibleAndSurvive)
{
    C3DPreferences& preferences = C3DPreferences::Get3DPreferences();
    const CRef<C3DScene> scene(C3DScene::Create());
    scene->SetSmoothAngle(0.75f, true);
    scene->SetSmoothMode(NORMAL_ANGLE, true);
    preferences.SetSmoothAngle(-1);
    preferences.SetSmoothAngle(4);
    preferences.SetSmoothMode(_NormalSmoothMode{});
    EXPECT_EQ(preferences.GetSmoothAngle(), 0.75f);
    EXPECT_EQ(preferences.GetSmoothMode(), NORMAL_ANGLE);

    ASSERT_TRUE(preferences.Save());
    const std::string file = PREFERENCES_FOLDER + "/3dzel/3dprefs.prefs";
    CCustomData bag;
    ASSERT_TRUE(bag.LoadFromPrefs(Utf8ToWide(file), FourCC("3DVW"), FourCC("PREF")));
    float angle = 0;
    unsigned int mode = 0;
    EXPECT_TRUE(bag.GetFloat(FourCC("SMAG"), angle) && angle == 0.75f);
    EXPECT_TRUE(bag.GetUnsigned(FourCC("SMMD"), mode) && mode == NORMAL_ANGLE);

    preferences.SetSmoothAngle(DEFAULT_ANGLE);
    preferences.SetSmoothMode(NORMAL_AREA);
}
