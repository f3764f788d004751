#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "tools/CustomData.h"
#include "tools/FileIo.h"
#include "tools/ScriptWindowSystem.h"
#include "tools/StringTable.h"

namespace {

using Text = CXTString<wchar_t>;

class FileIoTest : public testing::Test {
protected:
    FileIoTest()
    {
        SetLanguage(LANGUAGE_ENGLISH);
        SetWindowSystem(&m_windows);
    }
    ~FileIoTest() override { SetWindowSystem(nullptr); }

    CScriptWindowSystem m_windows;
};

}

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
    EXPECT_EQ(options.GetLogText(IoLogInfo::FAILURE), Text(L"failed\n... and 10000 more\n"));
    options.RemoveLog();
    EXPECT_TRUE(options.GetLogText(255).IsEmpty());
}

TEST_F(FileIoTest, TellsTheUserWhatWentWrongOnce)
{
    struct {
        const char* name;
        unsigned int flags;
        int result;
        bool log, wantReport;
        unsigned int mask;
        const char* shown;
    } const rows[] = {
        {"failure", FILEIO_READ, IORESULT_NO_FILE, true, false, 6, "message: The file a.x doesn't exist or can't be opened."},
        {"failure when saving", 0, IORESULT_NO_FILE, true, false, 6, "message: The file a.x can't be written."},
        {"silent", FILEIO_READ | FILEIO_SILENT, IORESULT_NO_FILE, true, false, 6, ""},
        {"cancelled", FILEIO_READ, IORESULT_CANCELLED, true, false, 6, ""},
        {"success", 0, IORESULT_OK, true, false, 255, ""},
        {"success with report", 0, IORESULT_OK, true, true, 255, "report: changed\n"},
        {"success with empty report", 0, IORESULT_OK, false, true, 255, ""},
        {"failure with report", 0, IORESULT_NOTHING_TO_SAVE, true, true, 6, "report: There is nothing to save in a.x.\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_windows.shown.clear();
        CFileIo io(L"/f/a.x", row.flags, nullptr);
        EXPECT_EQ(io.GetLastResult(), IORESULT_OK);
        CIoOptions options(io.IsReading());
        options.SetOption(IOOPT_SHOW_REPORT, row.wantReport);
        if (row.log)
            options.AddLogInfo(IoLogInfo::INFORMATION, L"changed");
        io.SetIoError(row.result, &options, row.result == IORESULT_OK ? IoLogInfo::INFORMATION : IoLogInfo::FAILURE);
        io.ReportIoError(&options, row.mask);
        EXPECT_EQ(io.GetLastResult(), row.result);
        if (*row.shown)
            EXPECT_EQ(m_windows.shown, std::vector<Text>{Utf8ToWide(row.shown)});
        else
            EXPECT_TRUE(m_windows.shown.empty());
    }
}
