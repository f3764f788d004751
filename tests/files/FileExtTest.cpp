#include <gtest/gtest.h>

#include "files/FileExt.h"
#include "files/FileInfo.h"
#include "support/TempFolder.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int ONE = FourCC("ZT01"), TWO = FourCC("ZT02"), PICTURE = FourCC("ZT03");

class FileExtTest : public testing::Test {
protected:
    ~FileExtTest() override
    {
        for (const unsigned int fileClass : {ONE, TWO, PICTURE})
            fileUnregisterFile(fileClass);
    }
};

}

TEST_F(FileExtTest, AddsUpWhatSeveralOwnersBring)
{
    // Faults in mind: taking one owner away takes the class away from the other.
    int first = 0, second = 0;
    fileRegisterFile(CFileExt(L"Reader", L".zt1", ONE, 0x4011), &first);
    fileRegisterFile(CFileExt(L"Writer", L".zt1;.zt2", ONE, 0x4012), &second);
    CFileExt info;
    ASSERT_TRUE(fileGetExtensionInfo(ONE, &info));
    EXPECT_EQ(info.kind, 0x4013u);
    EXPECT_EQ(info.extensions.size(), 2u);
    EXPECT_EQ(info.description, Text(L"Reader"));
    EXPECT_EQ(fileGetClasses(L".zt1"), std::vector<unsigned int>{ONE});

    fileUnregisterOwner(&first);
    ASSERT_TRUE(fileGetExtensionInfo(ONE, &info));
    EXPECT_EQ(info.kind, 0x4012u);
    fileUnregisterOwner(&second);
    EXPECT_FALSE(fileGetExtensionInfo(ONE));
}

TEST_F(FileExtTest, TellsFamiliesApart)
{
    fileRegisterFile(CFileExt(L"Picture", L".zt1", PICTURE, 0x10001));
    fileRegisterFile(CFileExt(L"One", L".zt1", ONE, 0x4013));
    fileRegisterFile(CFileExt(L"Two", L".zt2", TWO, 0x4001));
    EXPECT_EQ(fileGetKindOf(L"a.zt1"), 0x14000u);
    CFileExt found;
    ASSERT_TRUE(fileGetFileExt(L".zt1", &found, FILE_FAMILY_3D));
    EXPECT_EQ(found.fileClass, ONE);
    EXPECT_EQ(fileGetClasses(L"zt1"), (std::vector<unsigned int>{PICTURE, ONE}));

    const auto classes = [](unsigned int family, unsigned int abilities) {
        std::vector<unsigned int> out;
        for (const CFileExt& extension : fileGetExtensions(family, abilities))
            out.push_back(extension.fileClass);
        return out;
    };
    EXPECT_EQ(classes(FILE_FAMILY_3D, FILE_KIND_READ), (std::vector<unsigned int>{ONE, TWO}));
    EXPECT_EQ(classes(FILE_FAMILY_3D, FILE_KIND_WRITE), std::vector<unsigned int>{ONE});
    EXPECT_EQ(classes(FILE_FAMILY_BITMAP, 0), std::vector<unsigned int>{PICTURE});
}
