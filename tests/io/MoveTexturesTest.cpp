#include <algorithm>
#include <filesystem>

#include <sys/stat.h>

#include "io/SceneCase.h"
#include "support/TempFolder.h"

// Image files that follow an exported scene.

namespace {

using Text = CXTString<wchar_t>;

class MoveTextures : public testing::Test, InEnglish {
protected:
    MoveTextures()
    {
        AddMesh(*scene, L"m", Cube());
        scene->SetFilename(CFileNameSpec(folder.Wide("from/scene.x")));
        folder.Write("from/scene.x", "");
        options.filePath = folder.Wide("to/out.x");
        options.textureFolder = L".\\Textures\\";
    }
    CMaterialMap* AddTexture(unsigned int id, const Text& name)
    {
        scene->GetMaterialList().CreateNewMaterial(id);
        return scene->GetMaterialByID(id)->AddMaterialMap(name, NO_CHANNEL_ID, MAP_DIFFUSE, PROJECTION_UVW);
    }
    bool Run(unsigned int flags = EXPORT_MOVE_TEXTURES)
    {
        options.RemoveLog();
        options.flags = flags;
        return scene->MoveTextures(options.filePath, options.textureFolder, &options);
    }
    /// The log with the test's folder left out.
    TextLines Log() const
    {
        TextLines lines;
        for (const std::wstring& line : Lines(options)) {
            Text text(line);
            text.Replace(folder.Wide(), L"@");
            lines.push_back(text.Str());
        }
        return lines;
    }

    TempFolder folder;
    CRef<C3DScene> scene{C3DScene::Create()};
    CSceneExportOptions options;
};

}

TEST_F(MoveTextures, CopiesToTheFolderAndNamesTheCopy)
{
    folder.Write("from/a.png", "A");
    folder.Write("from/sub/b.png", "B");
    CMaterialMap* const a = AddTexture(1, L"a.png");
    a->SetAlphaFileName(L"sub\\b.png", L"");
    CMaterialMap* const same = AddTexture(2, L"a.png");
    CMaterialMap* const missing = AddTexture(3, L"none.png");
    EXPECT_TRUE(Run());
    EXPECT_EQ(a->GetFileName(), L"Textures/a.png");
    EXPECT_EQ(a->GetAlphaFileName(), L"Textures/b.png");
    EXPECT_EQ(same->GetFileName(), L"Textures/a.png");
    EXPECT_EQ(missing->GetFileName(), L"none.png");
    EXPECT_EQ(folder.Read("to/Textures/a.png"), "A");
    EXPECT_EQ(folder.Read("to/Textures/b.png"), "B");
    EXPECT_EQ(folder.Read("from/a.png"), "A");
    TextLines lines = Log();
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, (TextLines{L"1 Copying texture a.png to @to/Textures/a.png", L"1 Copying texture sub/b.png to @to/Textures/b.png"}));
}

TEST_F(MoveTextures, ATextureInPlaceIsNeitherCopiedNorRenamed)
{
    folder.Write("from/Textures/a.png", "A");
    options.filePath = folder.Wide("from/out.x");
    CMaterialMap* const map = AddTexture(1, L"Textures/a.png");
    for (const unsigned int flags : {EXPORT_MOVE_TEXTURES | 0u, EXPORT_MOVE_TEXTURES | EXPORT_RENAME_TEXTURES}) {
        EXPECT_TRUE(Run(flags));
        EXPECT_EQ(Log(), TextLines());
        EXPECT_EQ(map->GetFileName(), L"Textures/a.png");
    }
    options.textureFolderFixed = true;    // into the folder of the scene
    EXPECT_TRUE(Run());
    EXPECT_EQ(map->GetFileName(), L"a.png");
    EXPECT_EQ(folder.Read("from/a.png"), "A");
}

TEST_F(MoveTextures, FilesOfOneNameDoNotReplaceOneAnother)
{
    folder.Write("from/x/a.png", "X");
    folder.Write("from/y/a.png", "Y");
    folder.Write("to/Textures/a.png", "former");
    CMaterialMap *const x = AddTexture(1, L"x/a.png"), *const y = AddTexture(2, L"y/a.png");
    EXPECT_TRUE(Run(EXPORT_MOVE_TEXTURES | EXPORT_RENAME_TEXTURES));
    EXPECT_EQ(folder.Read("to/Textures/a.png"), "former");
    EXPECT_NE(x->GetFileName(), y->GetFileName());
    EXPECT_EQ(folder.Read("to/" + WideToUtf8(x->GetFileName())), "X");
    EXPECT_EQ(folder.Read("to/" + WideToUtf8(y->GetFileName())), "Y");

    // Without renaming a former export's file is replaced, but not the texture of another material: that one stays where it is.
    x->SetFileName(L"x/a.png", L"");
    y->SetFileName(L"y/a.png", L"");
    EXPECT_TRUE(Run());
    EXPECT_EQ((x->GetFileName() == L"Textures/a.png") + (y->GetFileName() == L"Textures/a.png"), 1);
    ASSERT_EQ(Log().size(), 2u);
    EXPECT_EQ(Log()[1].substr(0, 22), L"1! Can't move texture ");
    EXPECT_EQ(folder.Read("to/Textures/a.png"), x->GetFileName() == L"Textures/a.png" ? "X" : "Y");
}

TEST_F(MoveTextures, NoNameLeadsOutsideTheScene)
{
    folder.Write("secret.png", "S");
    folder.Write("library/deep/c.png", "C");
    const struct {
        const char* name;
        Text file;
        bool moved;
    } rows[] = {
        {"upward", L"../secret.png", false},
        {"upward, backward", L"..\\secret.png", false},
        {"down and up", L"sub/../../secret.png", false},
        {"absolute", folder.Wide("secret.png"), false},
        {"begins alike", L"../from-elsewhere/d.png", false},
        {"a link", L"link.png", false},
        {"a link on the way", L"up/secret.png", false},
        {"texture path", L"../library/deep/c.png", true},
    };
    folder.Write("from-elsewhere/d.png", "D");
    std::filesystem::create_directories(folder.Name("from/sub"));
    std::filesystem::create_symlink("../secret.png", folder.Name("from/link.png"));
    std::filesystem::create_symlink("..", folder.Name("from/up"));
    CXArray<Text> namedByTheFile;
    namedByTheFile.Add(folder.Wide("from-elsewhere/"));
    scene->GetCustomData().SetStringArray(FourCC("SCTP"), namedByTheFile);
    ASSERT_TRUE(scene->AddTexturePath(folder.Wide("library")));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        scene->GetMaterialList().RemoveAll();
        CMaterialMap* const map = AddTexture(1, row.file);
        EXPECT_TRUE(Run());
        EXPECT_EQ(map->GetFileName() == row.file, !row.moved);
        ASSERT_EQ(Log().size(), 1u);
        EXPECT_EQ(options.GetLog()[0].IsLoss(), !row.moved);
    }
    ASSERT_EQ(mkfifo(folder.Name("from/pipe.png").c_str(), 0600), 0);    // whose opening waits for a writer
    AddTexture(2, L"pipe.png");
    EXPECT_TRUE(Run());
    scene->GetMaterialList().RemoveAll();
    CMaterialMap* const map = AddTexture(1, L"../secret.png");
    options.texturesFromAnywhere = true;
    EXPECT_TRUE(Run());
    EXPECT_EQ(Log(), (TextLines{L"1 Copying texture ../secret.png to @to/Textures/secret.png"}));
    EXPECT_EQ(map->GetFileName(), L"Textures/secret.png");
}

TEST_F(MoveTextures, NamesFitTheTarget)
{
    folder.Write("from/Été.png", "E");
    folder.Write("from/木.png", "K");
    folder.Write("from/日本.tga", "N");
    folder.Write("from/long-name.png", "L");
    const struct {
        const char* name;
        unsigned int codePage, limit;
        std::vector<const wchar_t*> files;
        std::vector<const wchar_t*> stored;
    } rows[] = {
        {"any", 0xFFFFFFFF, 0, {L"Été.png", L"木.png"}, {L"Été.png", L"木.png"}},
        {"utf-8", 65001, 0, {L"木.png"}, {L"木.png"}},
        {"western", 1252, 0, {L"Été.png", L"木.png"}, {L"Été.png", L"Texture.png"}},
        {"japanese", 932, 0, {L"木.png"}, {L"木.png"}},
        {"ascii", 20127, 0, {L"Été.png"}, {L"Texture.png"}},
        {"unknown page", 4711, 0, {L"Été.png"}, {L"Texture.png"}},
        {"limit", 0xFFFFFFFF, 8, {L"long-name.png"}, {L"long.png"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove_all(folder.Name("to"));
        scene->GetMaterialList().RemoveAll();
        options.textureNames.RemoveAll();
        options.textureCodePage = row.codePage;
        options.textureNameLimit = row.limit;
        for (unsigned int i = 0; i < row.files.size(); i++)
            AddTexture(i + 1, row.files[i]);
        EXPECT_TRUE(Run());
        for (unsigned int i = 0; i < row.files.size(); i++)
            EXPECT_EQ(scene->GetMaterialByID(i + 1)->GetDiffuseMaps()->GetFileName(), Text(L"Textures/") + row.stored[i]);
    }
    // The next one gets the next name.
    scene->GetMaterialList().RemoveAll();
    options.textureNames.RemoveAll();
    options.textureCodePage = 1252;
    options.textureNameLimit = 0;
    CMaterialMap *const first = AddTexture(1, L"木.png"), *const second = AddTexture(2, L"日本.tga");
    EXPECT_TRUE(Run());
    EXPECT_TRUE(first->GetFileName() == L"Textures/Texture.png" || second->GetFileName() == L"Textures/Texture.tga");
    EXPECT_TRUE(first->GetFileName() == L"Textures/Texture1.png" || second->GetFileName() == L"Textures/Texture1.tga");
}

TEST_F(MoveTextures, AFolderThatCannotBeMadeMovesNothing)
{
    folder.Write("from/a.png", "A");
    folder.Write("to/Textures", "a file");
    CMaterialMap* const map = AddTexture(1, L"a.png");
    EXPECT_FALSE(Run());
    EXPECT_EQ(Log(), (TextLines{L"2 Can't make the folder @to/Textures/ for textures"}));
    EXPECT_EQ(map->GetFileName(), L"a.png");
    std::filesystem::remove(folder.Name("to/Textures"));
    EXPECT_TRUE(scene->MoveTextures(options.filePath, options.textureFolder, nullptr));
    EXPECT_EQ(map->GetFileName(), L"Textures/a.png");
}
