#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "tools/FilePath.h"

namespace {

using Text = CXTString<wchar_t>;

}

TEST(FilePath, SplitsNamesOfEverySystem)
{
    // Faults in mind: a point in a folder's name, a point that begins a name, a drive without separator, a share taken for a
    // root with two separators.
    struct {
        const wchar_t *path, *root, *folder, *name, *extension;
    } const rows[] = {
        {L"", L"", L"", L"", L""},
        {L"/x/a.tar.gz", L"/", L"/x/", L"a.tar.gz", L".gz"},
        {L"/x.y/a", L"/", L"/x.y/", L"a", L""},
        {L"/.config", L"/", L"/", L".config", L""},
        {L"..", L"", L"", L"..", L""},
        {L"C:\\maps\\wood.JPG", L"C:\\", L"C:\\maps\\", L"wood.JPG", L".JPG"},
        {L"C:wood.jpg", L"C:", L"C:", L"wood.jpg", L".jpg"},
        {L"\\\\server\\share\\a.x", L"\\\\server\\share\\", L"\\\\server\\share\\", L"a.x", L".x"},
        {L"//server", L"//server", L"//server", L"", L""},
        {L".\\Textures\\", L"", L".\\Textures\\", L"", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(WideToUtf8(Text(row.path)));
        EXPECT_EQ(fileGetRoot(row.path), Text(row.root));
        EXPECT_EQ(fileGetPath(row.path), Text(row.folder));
        EXPECT_EQ(fileStripPath(row.path), Text(row.name));
        EXPECT_EQ(fileGetExtension(row.path), Text(row.extension));
        EXPECT_EQ(fileStripExtension(row.path) + fileGetExtension(row.path), Text(row.path));
    }
}

TEST(FilePath, Normalises)
{
    struct {
        const wchar_t *path, *normal;
    } const rows[] = {
        {L"", L"."},      {L"a/./b//c", L"a/b/c"},          {L"a/../..", L".."},   {L"../../a/", L"../../a/"},
        {L"/..", L"/"},   {L"/a/../../b", L"/b"},           {L"./", L"."},         {L"C:\\a\\..\\b\\", L"C:/b/"},
        {L"C:a", L"C:a"}, {L"\\\\s\\d\\..\\x", L"//s/d/x"}, {L"//s/d", L"//s/d/"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(fileNormalize(row.path), Text(row.normal)) << WideToUtf8(Text(row.path));
}

TEST(FilePath, MakesNamesAbsoluteAndRelative)
{
    struct {
        const wchar_t *base, *absolute, *relative;
    } const rows[] = {
        {L"/a/b/", L"/a/b/c.x", L"c.x"},
        {L"/a/b", L"/a/b/c.x", L"c.x"},            // a folder without separator is the same folder
        {L"/a/b/", L"/a/bc/c.x", L"../bc/c.x"},    // no half names in common
        {L"/a/b/", L"/c.x", L"../../c.x"},
        {L"/", L"/a/", L"a/"},
        {L"/a/b/", L"/a/b/", L"./"},
        {L"/a/b/c/", L"/a/", L"../../"},
        {L"C:/a/", L"C:/b/c.x", L"../b/c.x"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(WideToUtf8(Text(row.relative)));
        EXPECT_EQ(fileMakeRelativePath(row.base, row.absolute), Text(row.relative));
        EXPECT_EQ(fileMakeAbsolutePath(row.base, row.relative), Text(row.absolute));
    }
    EXPECT_EQ(fileMakeRelativePath(L"C:/a/", L"D:/a/b"), Text(L"D:/a/b"));
    EXPECT_EQ(fileMakeRelativePath(L"/a/", L"b"), Text(L"b"));
    EXPECT_EQ(fileMakeAbsolutePath(L"/a", L"D:\\b\\c"), Text(L"D:/b/c"));
    EXPECT_EQ(fileMakeAbsolutePath(L"", L"b\\c"), Text(L"b/c"));
}

TEST(FilePath, CopiesWholeFilesOnly)
{
    const TempFolder folder;
    folder.Write("a", std::string(700000, 'x') + "end");
    folder.Write("b", "old");
    EXPECT_FALSE(fileCopy(folder.Wide("a"), folder.Wide("b"), true));
    EXPECT_EQ(folder.Read("b"), "old");
    EXPECT_TRUE(fileCopy(folder.Wide("a"), folder.Wide("b"), false));
    EXPECT_EQ(folder.Read("b"), folder.Read("a"));
    EXPECT_TRUE(fileCopy(folder.Wide("a"), folder.Wide("new"), true));
    EXPECT_EQ(folder.Read("new"), folder.Read("a"));

    EXPECT_FALSE(fileCopy(folder.Wide("a"), folder.Wide("./a"), false));    // onto itself would lose it
    EXPECT_EQ(folder.Read("a").size(), 700003u);
    EXPECT_FALSE(fileCopy(folder.Wide("missing"), folder.Wide("c"), false));
    EXPECT_FALSE(fileCopy(folder.Wide("a"), folder.Wide("no/folder"), false));
    EXPECT_FALSE(fileCopy(folder.Wide("a"), folder.Wide(), false));
    EXPECT_EQ(fileList(folder.Wide()).size(), 3u);    // nothing half made stays
}

TEST(FilePath, ComparesByIdentityOnDisk)
{
    const TempFolder folder;
    folder.Write("maps/a", "x");
    std::filesystem::create_symlink("maps", folder.Name("link"));
    EXPECT_TRUE(fileIsSameFile(folder.Wide("maps/a"), folder.Wide("link/a")));
    EXPECT_TRUE(fileIsSameFile(folder.Wide("maps/a"), folder.Wide() + L"maps\\a"));
    EXPECT_FALSE(fileIsSameFile(folder.Wide("maps/a"), folder.Wide("maps/b")));
    EXPECT_TRUE(fileIsSameFile(folder.Wide("none"), folder.Wide("maps/../none")));
    EXPECT_TRUE(fileCompareDirectory(folder.Wide("maps"), folder.Wide("link/")));
    EXPECT_TRUE(fileCompareDirectory(folder.Wide("x"), folder.Wide("x/")));
    EXPECT_FALSE(fileCompareDirectory(folder.Wide("x"), folder.Wide("y")));
    EXPECT_TRUE(fileExists(folder.Wide("maps/a")));
    EXPECT_FALSE(fileExists(folder.Wide("maps")));
    EXPECT_TRUE(fileIsDirectory(folder.Wide("maps")));
}

TEST(FilePath, FindsFreeNames)
{
    const TempFolder folder;
    folder.Write("map.png", "");
    folder.Write("map1.png", "");
    EXPECT_EQ(fileCreateUniqueName(folder.Wide("other.png"), false), folder.Wide("other.png"));
    EXPECT_EQ(fileCreateUniqueName(folder.Wide("map.png"), false), folder.Wide("map2.png"));
    EXPECT_EQ(fileCreateUniqueName(folder.Wide("map.png"), false, 7), folder.Wide("ma1.png"));    // the title gives way
    EXPECT_TRUE(fileCreateUniqueName(folder.Wide("a.longest"), false, 4) == folder.Wide(".lon"));
    EXPECT_EQ(fileCreateUniqueName(folder.Wide("map.png"), true), folder.Wide("map2.png"));
    EXPECT_EQ(fileCreateUniqueName(folder.Wide("map.png"), true), folder.Wide("map3.png"));    // the first is taken now
    EXPECT_TRUE(fileCreateUniqueName(folder.Wide("none/map.png"), true).IsEmpty());
    EXPECT_TRUE(fileCreateUniqueName(L"", false).IsEmpty());
}
