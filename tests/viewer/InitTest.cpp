#include <gtest/gtest.h>

#include <vector>

#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "scene/3DZel.h"
#include "scene/Preferences.h"
#include "support/TempFolder.h"
#include "tools/StringTable.h"
#include "windows/CommandMgr.h"

namespace {

class InitTest : public testing::Test {
protected:
    InitTest() : m_config("XDG_CONFIG_HOME", m_folder.Name("config")), m_plugins("ZEL_PLUGIN_PATH", m_folder.Name("plugins"))
    {
        m_folder.Write("plugins/zel-io-test.so", "");
        m_folder.Write("plugins/zel-io-test.formats", "zel-io-formats\t1\nTEST\t0x4010\tr\t.tst\tTest files\n");
    }
    bool HasTestFormat() const { return fileGetFileExt(L".tst"); }
    bool HasPreferencesFile() const { return std::filesystem::exists(m_folder.Name("config/3dzel/3dprefs.prefs")); }

    TempFolder m_folder;
    ScopedVariable m_config, m_plugins;
};

}

TEST_F(InitTest, CountsItsCalls)
{
    Close3DZel(0);    // too many: nothing happens, and nothing is owed
    EXPECT_FALSE(HasPreferencesFile());
    Init3DZel(0);
    Init3DZel(0);
    EXPECT_TRUE(HasTestFormat());
    CFileExt xsi;
    ASSERT_TRUE(fileGetFileExt(L".xsi", &xsi));
    EXPECT_EQ(xsi.fileClass, 0x58534920u);
    EXPECT_EQ(xsi.kind, 0x4013u);
    EXPECT_TRUE(fileGetFileExt(L".3dif"));
    Close3DZel(0);
    EXPECT_TRUE(HasTestFormat());
    EXPECT_FALSE(HasPreferencesFile());
    Close3DZel(0);
    EXPECT_FALSE(HasTestFormat());
    EXPECT_TRUE(HasPreferencesFile());
}

TEST_F(InitTest, LeavesOutWhatItIsTold)
{
    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS | INIT_LINK_RESOURCES);
    EXPECT_FALSE(HasTestFormat());
    RegisterIOPlugins(FILE_FAMILY_3D, m_folder.Wide("plugins"));
    Close3DZel(INIT_NO_PLUGINS);
    EXPECT_TRUE(HasTestFormat());    // the host's own
    FreeIOPlugins(FILE_FAMILY_3D);
    EXPECT_NE(Zel3DResourceHandle(), nullptr);
}

TEST_F(InitTest, NamesCommandGroupsInOrder)
{
    SetLanguage(LANGUAGE_ENGLISH);
    Init3DZel(INIT_NO_PLUGINS);
    std::vector<unsigned int> ids;
    for (const auto& category : CCommandMgr::GetCategoryNames()) {
        ids.push_back(category.id);
        EXPECT_FALSE(category.name.IsEmpty());
    }
    EXPECT_EQ(ids, (std::vector<unsigned int>{FourCC("TOOL"), FourCC("VIEW"), FourCC("LIGH"), FourCC("POVW"), FourCC("POV2"),
                                              FourCC("VCAM"), FourCC("REND"), FourCC("FILE"), FourCC("HELP")}));
    ASSERT_EQ(CCommandMgr::GetGroupNames().size(), 1u);
    EXPECT_EQ(CCommandMgr::GetGroupNames()[0].name, CXTString<wchar_t>(L"3D commands"));
    Close3DZel(INIT_NO_PLUGINS);
}
