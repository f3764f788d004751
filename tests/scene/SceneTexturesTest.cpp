#include <gtest/gtest.h>

#include "scene/SceneBuilders.h"
#include "support/TempFolder.h"

TEST(SceneTextures, AFolderIsAddedOnceUnderWhateverSpelling)
{
    const TempFolder folder;
    folder.Write("a/file", "");
    folder.Write("b/file", "");
    std::filesystem::create_symlink(folder.Name("a"), folder.Name("link"));
    const CRef<C3DScene> scene(C3DScene::Create());
    const struct {
        const char* path;
        bool added;
    } rows[] = {{"a", true},     {"a", false},  {"a/", false},      {"./b/../a", false},
                {"link", false}, {"b//", true}, {"missing", false}, {"a/file", false}};
    for (const auto& row : rows)
        EXPECT_EQ(scene->AddTexturePath(folder.Wide(row.path)), row.added) << row.path;
    EXPECT_FALSE(scene->AddTexturePath(L""));

    CXArray<CXTString<wchar_t>> paths;
    paths.Add(L"first");
    EXPECT_EQ(scene->GetTexturePaths(paths, true), 3);
    EXPECT_EQ(paths[0], L"first");
    EXPECT_EQ(paths[1], folder.Wide("a/"));
    EXPECT_EQ(paths[2], folder.Wide("b//"));
    CXTString<wchar_t> path;
    EXPECT_TRUE(scene->GetTexturePath(0, path));
    EXPECT_EQ(path, folder.Wide("a/"));
    for (const int index : {2, -1}) {
        EXPECT_FALSE(scene->GetTexturePath(index, path));
        EXPECT_TRUE(path.IsEmpty());
    }
}
