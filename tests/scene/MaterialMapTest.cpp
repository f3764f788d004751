#include <gtest/gtest.h>

#include <cmath>

#include "geometry/Swap.h"
#include "scene/Preferences.h"
#include "scene/SceneBuilders.h"
#include "support/Streams.h"
#include "support/TempFolder.h"
#include "tools/FileNameSpec.h"

namespace {

/// The preferences' texture paths for a test's length.
class TexturePaths {
public:
    explicit TexturePaths(const std::vector<CXTString<wchar_t>>& paths)
    {
        C3DPreferences::Get3DPreferences().GetTexturePaths(m_former, false);
        CXArray<CXTString<wchar_t>> array;
        for (const auto& path : paths)
            array.Add(path);
        C3DPreferences::Get3DPreferences().SetTexturePaths(array);
    }
    ~TexturePaths() { C3DPreferences::Get3DPreferences().SetTexturePaths(m_former); }

private:
    CXArray<CXTString<wchar_t>> m_former;
};

std::unique_ptr<CMaterialMap> CreateMap(const CXTString<wchar_t>& file, MapProjection projection = PROJECTION_UVW)
{
    return std::unique_ptr<CMaterialMap>(CMaterialMap::Create(file, 1, MAP_DIFFUSE, projection));
}

std::vector<int> Block(const C4x4TMatrix<float>& m)
{
    std::vector<int> block;
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 3; column++)
            block.push_back(static_cast<int>(std::lround(m.m[row][column])));
    return block;
}

}

TEST(MaterialMap, AFileIsLookedForInOrder)
{
    // "@" stands for the test's folder; the scene is @/scene/a.3dif.
    const struct {
        const char* name;
        std::string stored;
        std::vector<std::string> files, paths;    // paths: of the preferences
        std::string found;                        // absolute; empty: nowhere
        std::string relative;
    } rows[] = {
        {"relative name", "tex/a.png", {"scene/tex/a.png", "scene/a.png"}, {}, "@/scene/tex/a.png", "tex/a.png"},
        {"name that leads upward", "../tex/a.png", {"tex/a.png"}, {}, "@/tex/a.png", "../tex/a.png"},
        {"bare name beside the scene", "tex/a.png", {"scene/a.png"}, {}, "@/scene/a.png", "a.png"},
        {"absolute name", "@/other/a.png", {"other/a.png", "scene/a.png"}, {}, "@/other/a.png", "../other/a.png"},
        {"absolute name, moved", "/nowhere/a.png", {"scene/a.png"}, {}, "@/scene/a.png", "a.png"},
        {"same folders on another drive", "C:@/other/a.png", {"other/a.png", "scene/a.png"}, {}, "@/other/a.png", "../other/a.png"},
        {"name of another system", "D:\\textures\\a.png", {"scene/a.png"}, {}, "@/scene/a.png", "a.png"},
        {"its relative name", "tex\\a.png", {"scene/tex/a.png"}, {}, "@/scene/tex/a.png", "tex/a.png"},
        {"url", "file://@/other/a%20b.png", {"other/a b.png"}, {}, "@/other/a b.png", "../other/a b.png"},
        {"path with the folders of the name",
         "tex/a.png",
         {"lib/tex/a.png", "lib/a.png"},
         {"@/lib"},
         "@/lib/tex/a.png",
         "../lib/tex/a.png"},
        {"path with the bare name", "tex/a.png", {"lib/a.png"}, {"@/lib/"}, "@/lib/a.png", "../lib/a.png"},
        {"whole names before bare ones", "tex/a.png", {"scene/a.png", "lib/tex/a.png"}, {"@/lib"}, "@/lib/tex/a.png", "../lib/tex/a.png"},
        {"first path first", "a.png", {"lib/a.png", "more/a.png"}, {"@/more", "@/lib"}, "@/more/a.png", "../more/a.png"},
        {"relative path, from the scene", "tex/a.png", {"scene/sub/a.png"}, {"sub"}, "@/scene/sub/a.png", "sub/a.png"},
        {"relative path, bare names alone", "tex/a.png", {"scene/sub/tex/a.png"}, {"sub"}, "", ""},
        {"another case", "Tex/A.PNG", {"scene/TEX/b.png", "scene/tex/a.png"}, {}, "@/scene/tex/a.png", "tex/a.png"},
        {"its own case first", "A.png", {"scene/a.png", "lib/A.png"}, {"@/lib"}, "@/lib/A.png", "../lib/A.png"},
        {"a folder is no file", "a.png", {"scene/a.png/b"}, {}, "", ""},
        {"nowhere", "tex/a.png", {"other/a.png"}, {"@/lib"}, "", ""},
        {"no name", "", {"scene/a.png"}, {}, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TempFolder folder;
        const std::string top = folder.Name().substr(0, folder.Name().size() - 1);
        const auto place = [&](std::string text) {
            if (const auto at = text.find('@'); at != std::string::npos)
                text.replace(at, 1, top);
            return Utf8ToWide(text);
        };
        for (const auto& file : row.files)
            folder.Write(file, "picture");
        std::vector<CXTString<wchar_t>> paths;
        for (const auto& path : row.paths)
            paths.push_back(place(path));
        const TexturePaths preferences(paths);
        const CRef<C3DScene> scene(C3DScene::Create());
        scene->SetFilename(CFileNameSpec(place("@/scene/a.3dif")));
        CMaterialMap map;
        map.SetFileName(place(row.stored), L"");
        EXPECT_EQ(map.GetBitmapPath(scene, false, true), place(row.found));
        EXPECT_EQ(map.GetBitmapPath(scene, false, false), place(row.relative));
        EXPECT_TRUE(map.GetBitmapPath(scene, true, true).IsEmpty());
    }
}

TEST(MaterialMap, NamesBecomeRelativeToAFolderThatIsThere)
{
    const TempFolder folder;
    folder.Write("scene/a", "");
    CMaterialMap map;
    map.SetFileName(folder.Wide("tex/a.png"), folder.Wide("scene/"));
    EXPECT_EQ(map.GetFileName(), L"../tex/a.png");
    map.SetAlphaFileName(folder.Wide("tex/a.png"), folder.Wide("missing/"));
    EXPECT_EQ(map.GetAlphaFileName(), folder.Wide("tex/a.png"));
    EXPECT_FALSE(CreateMap(L"")->GetFileName().IsEmpty());
}

// ---- Placement

TEST(MaterialMap, PartsOfThePlacementApplyInOrder)
{
    // (1, 0, 0): scaled by 2, moved by (0, 1, 0), by the matrix (0, 0, 5), and turned: (2, 1, 5) becomes (1, -2, 5).
    CMaterialMap map;
    C4x4TMatrix<float> matrix;
    map.SetScale(0, {2, 1, 1});
    map.SetTranslation(0, {0, 1, 0});
    map.SetMatrix(0, Translation(0, 0, 5));
    map.SetRotation(0, CQuaternion(C3DTVector<float>(0, 0, 1), std::acos(0.0)));
    map.GetMatrix(0, matrix);
    const C3DTPoint<float> image = matrix * C3DTPoint<float>(1, 0, 0);
    EXPECT_NEAR(image.x, 1, 1e-6);
    EXPECT_NEAR(image.y, -2, 1e-6);
    EXPECT_NEAR(image.z, 5, 1e-6);
}

TEST(MaterialMap, SwapsAddUpAndSurviveCopyAndSave)
{
    const struct {
        const char* name;
        std::vector<unsigned int> modes;
        std::vector<int> block;
        std::vector<float> translation;    // of a map that is moved by (1, 2, 3)
    } rows[] = {
        {"none", {}, {1, 0, 0, 0, 1, 0, 0, 0, 1}, {1, 2, 3}},
        {"x and y", {SWAP_XY}, {0, 1, 0, 1, 0, 0, 0, 0, 1}, {2, 1, 3}},
        {"y and z, mirrored", {SWAP_YZ | MIRROR_Z}, {1, 0, 0, 0, 0, -1, 0, 1, 0}, {1, -3, 2}},
        {"mirror", {MIRROR_X}, {-1, 0, 0, 0, 1, 0, 0, 0, 1}, {-1, 2, 3}},
        {"there and back", {SWAP_XY, SWAP_XY}, {1, 0, 0, 0, 1, 0, 0, 0, 1}, {1, 2, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto map = CreateMap(L"a", PROJECTION_PLANAR);
        map->SetTranslation(0, {1, 2, 3});
        for (const unsigned int mode : row.modes)
            map->SwapCoordinates(mode);
        CMaterialMap copied, loaded;
        copied = *map;
        ASSERT_TRUE(Load(loaded, Stored(*map)));
        loaded.SwapCoordinates(SWAP_XZ);    // goes on from where it stood
        loaded.SwapCoordinates(SWAP_XZ);
        if (!row.modes.empty()) {
            EXPECT_TRUE(loaded == *map);
        }
        EXPECT_TRUE(copied == *map);
        for (const CMaterialMap* const one : {map.get(), &copied, &loaded}) {
            C4x4TMatrix<float> matrix;
            one->GetMatrix(0, matrix);
            EXPECT_EQ(Block(matrix), row.block);
            EXPECT_EQ(Values(matrix.GetTranslation()), row.translation);
            EXPECT_EQ(matrix.m[3][3], 1);
        }
    }
    const auto own = CreateMap(L"a");
    own->SwapCoordinates(SWAP_XY);
    EXPECT_EQ(own->GetKeyNbr(KEY_ANY), 0);

    // A stored vector that is no swap says nothing.
    for (const C3DTVector<float>& vector : {C3DTVector<float>(0, 0, 0), {1, 1, 2}, {4, 2, 1}, {NAN, 1, 2}}) {
        CMaterialMap map, loaded;
        static_cast<C3DVectorKey*>(map.CreateKey(0, KEY_MAP_SWAP, 0))->SetVector(vector);
        ASSERT_TRUE(Load(loaded, Stored(map)));
        C4x4TMatrix<float> matrix;
        loaded.GetMatrix(0, matrix);
        EXPECT_TRUE(matrix == C4x4TMatrix<float>());
    }
}

// ---- Image

namespace {

const CSize ALL{-1, -1};

/// Two pixels, one above the other.
std::string Picture() { return "P6\n1 2\n255\n" + std::string("\xFF\0\0\0\0\xFF", 6); }

}

TEST(MaterialMap, AnImageIsReadOnceAndAlphaComesFromItsFile)
{
    const TempFolder folder;
    folder.Write("a.ppm", Picture());
    folder.Write("alpha.pgm", "P5\n1 2\n255\n\x10\x20");
    const auto map = CreateMap(folder.Wide("missing.ppm"));
    EXPECT_EQ(map->GetBitmap(nullptr, ALL), nullptr);
    folder.Write("missing.ppm", Picture());
    EXPECT_EQ(map->GetBitmap(nullptr, ALL), nullptr);    // tried once
    map->SetFlag(MAP_RELOAD, true);
    Bitmap* const bitmap = map->GetBitmap(nullptr, ALL);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_FALSE(map->IsFlagSet(MAP_RELOAD));
    EXPECT_EQ(bitmap->GetType(), BITMAP_RGB);
    EXPECT_EQ(bitmap->GetLine(0)[0], 0xFF);
    EXPECT_EQ(bitmap->GetLine(1)[2], 0xFF);
    EXPECT_FALSE(map->HasAlpha(nullptr));
    std::remove(folder.Name("missing.ppm").c_str());
    EXPECT_EQ(map->GetBitmap(nullptr, ALL), bitmap);

    map->SetFileName(folder.Wide("a.ppm"), L"");
    EXPECT_FALSE(map->HasBitmap());
    map->SetAlphaFileName(folder.Wide("alpha.pgm"), L"");
    EXPECT_TRUE(map->HasAlpha(nullptr));
    ASSERT_TRUE(map->HasBitmap());
    const unsigned char* const line = map->GetBitmap(nullptr, ALL)->GetLine(1);
    EXPECT_EQ(std::vector<int>(line, line + 4), (std::vector<int>{0, 0, 0xFF, 0x20}));

    CMaterialMap copy;
    copy = *map;
    EXPECT_FALSE(copy.HasBitmap());
    EXPECT_NE(copy.GetBitmap(nullptr, ALL), nullptr);

    map->SetAlphaFileName(L"missing.pgm", L"");    // the picture comes without
    ASSERT_NE(map->GetBitmap(nullptr, ALL), nullptr);
    EXPECT_FALSE(map->HasAlpha(nullptr));
    map->SetFileName(L"missing.ppm", L"");
    EXPECT_TRUE(map->HasAlpha(nullptr));    // as far as one can tell
    map->SetFileName(folder.Wide("a.txt"), L"");
    folder.Write("a.txt", Picture());
    EXPECT_EQ(map->GetBitmap(nullptr, ALL), nullptr);    // no image by its name
}
