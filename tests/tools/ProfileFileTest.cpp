#include "tools/ProfileFile.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/TempFolder.h"

TEST(ProfileFile, KeepsNumbersFromOneStartToTheNext)
{
    const TempFolder folder;
    {
        CProfileFile profile(folder.Wide("new/profile.ini"));
        EXPECT_EQ(profile.GetProfileInt(L"Render", L"lowres", 512), 512u);
        EXPECT_TRUE(profile.WriteProfileInt(L"Render", L"lowres", 256));
        EXPECT_TRUE(profile.WriteProfileInt(L"Bücher", L"größe", 0xFFFFFFFF));
        EXPECT_TRUE(profile.WriteProfileInt(L"Render", L"alphacut", 0));
        EXPECT_EQ(profile.GetProfileInt(L"Render", L"lowres", 512), 256u);
        EXPECT_TRUE(profile.GetWarnings().empty());
    }
    CProfileFile profile(folder.Wide("new/profile.ini"));
    EXPECT_EQ(profile.GetProfileInt(L"Render", L"lowres", 512), 256u);
    EXPECT_EQ(profile.GetProfileInt(L"Bücher", L"größe", 1), 0xFFFFFFFFu);
    EXPECT_EQ(profile.GetProfileInt(L"Bücher", L"lowres", 7), 7u);
    EXPECT_EQ(folder.Read("new/profile.ini"), "[Render]\nlowres=256\nalphacut=0\n[Bücher]\ngröße=4294967295\n");
}

TEST(ProfileFile, LeavesAllElseAsItStands)
{
    const TempFolder folder;
    folder.Write("profile.ini", "; mine\n\n[Window]\nwidth = 800 \nname=some text\n[Render]\r\n viewmode = 7\r\n# later\n[Other]\nx=1");
    CProfileFile profile(folder.Wide("profile.ini"));
    EXPECT_EQ(profile.GetProfileInt(L"Render", L"viewmode", 0), 7u);
    EXPECT_EQ(profile.GetProfileInt(L"Window", L"width", 0), 800u);
    EXPECT_EQ(profile.GetProfileInt(L"Window", L"name", 3), 3u);
    EXPECT_TRUE(profile.WriteProfileInt(L"Render", L"lowres", 128));
    EXPECT_TRUE(profile.WriteProfileInt(L"Render", L"viewmode", 8));
    EXPECT_EQ(folder.Read("profile.ini"),
              "; mine\n\n[Window]\nwidth = 800 \nname=some text\n[Render]\r\nviewmode=8\nlowres=128\n# later\n[Other]\nx=1\n");
    EXPECT_TRUE(profile.GetWarnings().empty());
    EXPECT_EQ(folder.CountFiles(), 1u);
}

TEST(ProfileFile, PassesOverDamagedLines)
{
    const TempFolder folder;
    const std::string damaged =
        std::string("no sense\n[Render]\n=5\nlowres=12\nlow\0res=3\nalphacut=99999999999\n", 62) + "[Rend\nviewmode=1\n";
    folder.Write("profile.ini", damaged);
    CProfileFile profile(folder.Wide("profile.ini"));
    EXPECT_EQ(profile.GetProfileInt(L"Render", L"lowres", 512), 12u);
    EXPECT_EQ(profile.GetProfileInt(L"Render", L"alphacut", 1), 1u);
    EXPECT_EQ(profile.GetProfileInt(L"Render", L"viewmode", 2), 2u);    // whose it was nobody knows
    EXPECT_EQ(profile.GetWarnings().size(), 1u);
    EXPECT_TRUE(profile.WriteProfileInt(L"Render", L"lowres", 13));
    EXPECT_EQ(profile.GetWarnings().size(), 1u);
    EXPECT_NE(folder.Read("profile.ini").find("no sense"), std::string::npos);    // nothing is lost
    EXPECT_NE(folder.Read("profile.ini").find("lowres=13\n"), std::string::npos);
}

TEST(ProfileFile, HoldsInMemoryWhatCannotBeWritten)
{
    const TempFolder folder;
    folder.Write("file", "");    // in the place of a folder: not even root writes there
    for (const CXTString<wchar_t>& path : {folder.Wide("file/profile.ini"), CXTString<wchar_t>()}) {
        CProfileFile profile(path);
        for (unsigned int value = 0; value < 3; value++) {
            EXPECT_FALSE(profile.WriteProfileInt(L"Render", L"GLExtPBuf", value));
            EXPECT_EQ(profile.GetProfileInt(L"Render", L"GLExtPBuf", 9), value);
        }
        EXPECT_EQ(profile.GetWarnings().size(), 1u);
    }
}

TEST(ProfileFile, WritesLaterWhatCouldNotBeWrittenAtOnce)
{
    const TempFolder folder;
    folder.Write("place", "");
    CProfileFile profile(folder.Wide("place/profile.ini"));
    EXPECT_FALSE(profile.WriteProfileInt(L"Render", L"lowres", 5));
    std::filesystem::remove(folder.Name("place"));
    folder.Write("place/profile.ini", "[Render]\nlowres=1\nalphacut=2\n");
    EXPECT_TRUE(profile.WriteProfileInt(L"Render", L"version", 3));
    EXPECT_EQ(folder.Read("place/profile.ini"), "[Render]\nlowres=5\nalphacut=2\nversion=3\n");
}

TEST(ProfileFile, NeverWritesOverWhatItCannotRead)
{
    const TempFolder folder;
    const std::string huge(std::size_t{2} << 20, 'x');
    folder.Write("profile.ini", huge);
    CProfileFile profile(folder.Wide("profile.ini"));
    EXPECT_FALSE(profile.WriteProfileInt(L"Render", L"lowres", 5));
    EXPECT_EQ(profile.GetProfileInt(L"Render", L"lowres", 512), 5u);
    EXPECT_EQ(folder.Read("profile.ini"), huge);
}

TEST(ProfileFile, WritesOnTopOfWhatOthersWrote)
{
    const TempFolder folder;
    CProfileFile first(folder.Wide("profile.ini")), second(folder.Wide("profile.ini"));
    EXPECT_TRUE(first.WriteProfileInt(L"Render", L"a", 1));
    EXPECT_TRUE(second.WriteProfileInt(L"Render", L"b", 2));
    EXPECT_EQ(folder.Read("profile.ini"), "[Render]\na=1\nb=2\n");
}

TEST(ProfileFile, ServesSeveralThreads)
{
    const TempFolder folder;
    CProfileFile profile(folder.Wide("profile.ini"));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; t++)
        threads.emplace_back([&profile, t] {
            const CXTString<wchar_t> key(std::to_wstring(t));
            for (unsigned int i = 1; i <= 20; i++) {
                EXPECT_TRUE(profile.WriteProfileInt(L"Render", key, i));
                EXPECT_EQ(profile.GetProfileInt(L"Render", key, 0), i);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    CProfileFile again(folder.Wide("profile.ini"));
    for (int t = 0; t < 4; t++)
        EXPECT_EQ(again.GetProfileInt(L"Render", std::to_wstring(t), 0), 20u);
}
