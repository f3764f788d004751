#include "tools/IoFile.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include "support/TempFolder.h"
#include "tools/FilePath.h"

namespace {

bool WriteAll(IoFile& file, const CXTString<wchar_t>& path, const std::string& content)
{
    return file.OpenFile(path, 0, nullptr) && file.WriteBytes(content.data(), content.size());
}

mode_t Permissions(const std::filesystem::path& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

}

TEST(IoFile, ReplacesTheTargetOnlyWhenAllIsWell)
{
    const TempFolder folder;
    folder.Write("target", "old");
    {
        IoFile dropped;
        EXPECT_TRUE(WriteAll(dropped, folder.Wide("target"), "half"));
        EXPECT_EQ(folder.Read("target"), "old");
    }    // gone without CloseFile
    IoFile file;
    EXPECT_TRUE(WriteAll(file, folder.Wide("target"), "refused"));
    EXPECT_TRUE(file.CloseFile(false));
    EXPECT_EQ(folder.Read("target"), "old");
    EXPECT_EQ(folder.CountFiles(), 1u);
    EXPECT_TRUE(WriteAll(file, folder.Wide("target"), "new"));
    EXPECT_TRUE(file.CloseFile());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.CloseFile());
    EXPECT_EQ(folder.Read("target"), "new");
    EXPECT_EQ(folder.CountFiles(), 1u);
    EXPECT_FALSE(file.WriteBytes("x", 1));

    // The folder goes while the file is being written: told, and nothing is left.
    std::filesystem::create_directory(folder.Name("sub"));
    EXPECT_TRUE(WriteAll(file, folder.Wide("sub/lost"), "lost"));
    std::filesystem::remove_all(folder.Name("sub"));
    EXPECT_FALSE(file.CloseFile());
}

TEST(IoFile, KeepsPermissionsAndFollowsLinks)
{
    const TempFolder folder;
    std::filesystem::create_directory(folder.Name("data"));
    folder.Write("data/real", "old");
    chmod(folder.Name("data/real").c_str(), 0640);
    std::filesystem::create_symlink("data/real", folder.Name("link"));
    std::filesystem::create_symlink("link", folder.Name("chain"));
    std::filesystem::create_symlink("data/none", folder.Name("dangling"));
    std::filesystem::create_symlink("circle", folder.Name("circle"));
    IoFile file;
    EXPECT_TRUE(WriteAll(file, folder.Wide("chain"), "new") && file.CloseFile());
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Name("chain")));
    EXPECT_EQ(folder.Read("data/real"), "new");
    EXPECT_EQ(Permissions(folder.Name("data/real")), 0640u);
    EXPECT_TRUE(WriteAll(file, folder.Wide("dangling"), "made") && file.CloseFile());
    EXPECT_EQ(folder.Read("data/none"), "made");
    EXPECT_FALSE(WriteAll(file, folder.Wide("circle"), "x"));

    const mode_t mask = umask(027);
    EXPECT_TRUE(WriteAll(file, folder.Wide("fresh"), "x") && file.CloseFile());
    umask(mask);
    EXPECT_EQ(Permissions(folder.Name("fresh")), 0640u);
}

TEST(IoFile, RefusesWhatIsNoFile)
{
    const TempFolder folder;
    folder.Write("locked", "old");
    chmod(folder.Name("locked").c_str(), 0444);
    IoFile file;
    for (const int mode : {0, 1}) {
        EXPECT_FALSE(file.OpenFile(folder.Wide("."), mode, nullptr));
        EXPECT_FALSE(file.OpenFile(folder.Wide("missing/file"), mode, nullptr));
        EXPECT_FALSE(file.OpenFile(L"", mode, nullptr));
        EXPECT_FALSE(file.OpenFile(CXTString<wchar_t>(L"a\0b", 3), mode, nullptr));
    }
    EXPECT_FALSE(file.OpenFile(folder.Wide("missing"), 1, nullptr));
    EXPECT_TRUE(geteuid() == 0 || !file.OpenFile(folder.Wide("locked"), 0, nullptr));
    EXPECT_FALSE(file.IsOpen());
    char byte;
    EXPECT_EQ(file.ReadBytes(&byte, 1), 0u);
}

TEST(IoFile, ReadsAndTellsWhereItIs)
{
    const TempFolder folder;
    folder.Write("caf\xC3\xA9 \xE9", "0123456789");    // a name that is no UTF-8
    IoFile file;
    ASSERT_TRUE(file.OpenFile(folder.Wide("caf\xC3\xA9 \xE9"), 1, nullptr));
    char bytes[20];
    EXPECT_EQ(file.GetLength(), 10u);
    EXPECT_TRUE(file.SetPosition(6));
    EXPECT_EQ(file.ReadBytes(bytes, 20), 4u);
    EXPECT_EQ(file.GetPosition(), 10u);
    EXPECT_EQ(file.ReadBytes(bytes, 20), 0u);
    EXPECT_FALSE(file.WriteBytes("x", 1));
}

TEST(IoFile, WritesToAPipeAndReadsFromNone)
{
    const TempFolder folder;
    ASSERT_EQ(mkfifo(folder.Name("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", folder.Name("endless"));
    IoFile file;
    for (const char* name : {"pipe", "endless"}) {    // at once: nobody writes to the pipe
        EXPECT_FALSE(file.OpenFile(folder.Wide(name), 1, nullptr));
        EXPECT_EQ(file.GetErrorText(), L"Not a regular file");
        EXPECT_FALSE(fileCopy(folder.Wide(name), folder.Wide("copy"), false));
    }
    std::string got;
    std::thread reader([&] { got = folder.Read("pipe"); });
    const std::string sent(300000, 'x');
    EXPECT_TRUE(WriteAll(file, folder.Wide("pipe"), sent) && file.CloseFile());
    reader.join();
    EXPECT_TRUE(got == sent);

    EXPECT_FALSE(WriteAll(file, L"/dev/full", "lost") && file.CloseFile());
    EXPECT_EQ(file.GetErrorText(), L"No space left on device");
}

TEST(IoFile, TellsWhatItReallyOpened)
{
    const TempFolder folder;
    std::filesystem::create_directory(folder.Name("data"));
    folder.Write("data/real", "");
    std::filesystem::create_directory_symlink("data", folder.Name("link"));
    IoFile file;
    ASSERT_TRUE(file.OpenFile(folder.Wide("link/../link/real"), 1, nullptr));
    EXPECT_EQ(WideToUtf8(file.GetOpenedPath()), std::filesystem::canonical(folder.Name("data/real")));
    ASSERT_TRUE(file.OpenFile(folder.Wide("new"), 0, nullptr));
    EXPECT_EQ(file.GetOpenedPath(), L"");
    EXPECT_EQ(folder.CountFiles(), 2u);    // what is being written has no name yet
}

TEST(MemFile, GrowsAndReadsBack)
{
    CCustomMemFile file(16);
    std::string text;
    for (int i = 0; i < 1000; i++) {
        const std::string part = std::to_string(i);
        EXPECT_TRUE(file.WriteBytes(part.data(), part.size()));
        text += part;
    }
    EXPECT_EQ(file.GetLength(), text.size());
    EXPECT_TRUE(file.SetPosition(1));
    EXPECT_TRUE(file.WriteBytes("xy", 2));    // over what is there
    text.replace(1, 2, "xy");
    EXPECT_TRUE(file.OpenFile({}, 1, nullptr));
    std::string back(text.size() + 5, '\0');
    EXPECT_EQ(file.ReadBytes(back.data(), back.size()), text.size());
    back.resize(text.size());
    EXPECT_EQ(back, text);
    EXPECT_FALSE(file.SetPosition(text.size() + 1));
    CCustomMemFile foreign(text.data(), 3);
    EXPECT_FALSE(foreign.WriteBytes("x", 1));
    EXPECT_EQ(foreign.GetBytes(), text.data());
}
