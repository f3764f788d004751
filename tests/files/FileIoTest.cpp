#include <gtest/gtest.h>

#include "files/FileIo.h"

TEST(IoOptions, KeepFailuresWhenTheLogIsFull)
{
    CIoOptions options(true);
    for (int i = 0; i < 20000; i++)
        options.AddLogInfo(IoLogInfo::WARNING, L"face");
    options.AddLogInfo(IoLogInfo::FAILURE, L"failed");
    EXPECT_EQ(options.GetLog().size(), 10001u);
    EXPECT_EQ(options.GetDroppedLogCount(), 10000u);
    EXPECT_TRUE(options.HasLog(4));
    EXPECT_FALSE(options.HasLog(1));
    EXPECT_EQ(options.GetLogText(IoLogInfo::FAILURE), CXTString<wchar_t>(L"failed\n... and 10000 more\n"));
    options.RemoveLog();
    EXPECT_TRUE(options.GetLogText(255).IsEmpty());
}
