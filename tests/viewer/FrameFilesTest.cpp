// Files of a frame: opened, refused, saved, dropped, remembered.

#include "FrameCase.h"
#include "tools/Progress.h"
#include "viewer/FileCommands.h"
#include "viewer/RecentFiles.h"
#include "windows/Keys.h"

namespace {

class FrameFiles : public FrameCase {
protected:
    void SetUp() override
    {
        Open();
        one = WriteCubes("1.3dif", 1);
        two = WriteCubes("2.3dif", 2);
        three = WriteCubes("10.3dif", 3);
    }

    Text one, two, three;
};

}

TEST_F(FrameFiles, AFileIsShownUnderItsName)
{
    EXPECT_EQ(Title(), L"3DZel Viewer");
    ASSERT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    EXPECT_EQ(Title(), L"2.3dif - 3DZel Viewer");
    EXPECT_EQ(Nodes(), 2);
    EXPECT_EQ(frame->GetCurrentScene()->GetFilename().GetFullName(), two);
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_FACES), L"Faces: 12");
    ASSERT_TRUE(frame->OpenFile(one, OPEN_ADD));
    EXPECT_EQ(Nodes(), 2);
    EXPECT_EQ(frame->GetFileNbr(), 2);
    ASSERT_TRUE(frame->ShowFile(1));
    EXPECT_EQ(Title(), L"1.3dif - 3DZel Viewer");
    ASSERT_TRUE(frame->OpenFile(three, OPEN_REPLACE));
    EXPECT_EQ(frame->GetFileNbr(), 1);
}

TEST_F(FrameFiles, WhatCannotBeReadLeavesAllAsItWas)
{
    folder.Write("damaged.3dif", "this is no scene");
    folder.Write("unknown.xyz", "");
    ASSERT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    const Owned<C3DScene> shown(frame->GetCurrentScene());
    shown->AddRef();
    for (const char* const name : {"missing.3dif", "damaged.3dif", "unknown.xyz"})
        for (const unsigned int mode : {OPEN_REPLACE, OPEN_DROPPED}) {
            SCOPED_TRACE(name);
            system.shown.clear();
            EXPECT_FALSE(frame->OpenFile(folder.Wide(name), mode));
            EXPECT_EQ(CountShown(L"message: "), 1);
            EXPECT_GE(system.shown.back().Find(Utf8ToWide(name)), 0);
        }
    system.shown.clear();
    system.cancelProgressAfter = 0;
    EXPECT_FALSE(frame->OpenFile(one, OPEN_REPLACE));
    system.cancelProgressAfter = -1;
    EXPECT_EQ(CountShown(L"message: "), 0);
    frame->SetFrameFlag(FRAME_SILENT_READ, true);
    EXPECT_FALSE(frame->OpenFile(folder.Wide("damaged.3dif"), OPEN_REPLACE));
    EXPECT_EQ(CountShown(L"message: "), 0);

    EXPECT_EQ(frame->GetCurrentScene(), shown.get());
    EXPECT_EQ(shown->GetFilename().GetFullName(), two);
    EXPECT_EQ(frame->GetFileList()->GetFiles(), std::vector<Text>{two});
    EXPECT_EQ(Title(), L"2.3dif - 3DZel Viewer");
}

TEST_F(FrameFiles, NothingElseBeginsWhileAFileIsRead)
{
    // A progress window lets events in: a key, a drop, the close button.
    struct CMeddler : IProgressSink {
        explicit CMeddler(std::function<void()> work) : meddle(std::move(work)) {}
        bool OnProgress(const Text&, double) override
        {
            calls++;
            meddle();
            return true;
        }
        std::function<void()> meddle;
        int calls = 0;
    };
    ASSERT_TRUE(frame->OpenFile(one, OPEN_REPLACE));
    frame->GetCurrentScene()->SelectAll();
    CMeddler meddler([this] {
        EXPECT_FALSE(frame->OpenFile(three, OPEN_REPLACE));
        EXPECT_EQ(Run(FourCC("DELN")), COMMAND_DECLINED);
        EXPECT_EQ(system.DropFiles(frame.get(), {three}, {}), DROP_NONE);
        EXPECT_FALSE(system.CloseWindow(frame.get()));
    });
    {
        const CProgressScope scope(&meddler);
        EXPECT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    }
    EXPECT_GT(meddler.calls, 0);
    EXPECT_EQ(Nodes(), 2);
    EXPECT_FALSE(frame->IsDocumentModified());
    EXPECT_TRUE(frame->OpenFile(three, OPEN_REPLACE));
}

TEST_F(FrameFiles, WhatChangesTheDocumentIsAskedAboutBeforeItGoes)
{
    const Text saved = folder.Wide("saved.3dif");
    const struct {
        const char* name;
        MessageAnswer answer;
        std::vector<CFileNameSpec> file;
        CommandResult result;
        bool modified;
    } rows[] = {
        {"cancel", ANSWER_CANCEL, {}, COMMAND_CANCELLED, true},
        {"no", ANSWER_NO, {}, COMMAND_DONE, false},
        {"yes, but no name", ANSWER_YES, {}, COMMAND_DECLINED, true},
        {"yes, but nowhere to write", ANSWER_YES, {folder.Wide("no/where.3dif")}, COMMAND_DECLINED, true},
        {"yes", ANSWER_YES, {saved}, COMMAND_DONE, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
        frame->GetCurrentScene()->SelectAll();
        frame->NodeSelectionChanged();
        Run(FourCC("ZOOI"));
        EXPECT_EQ(frame->AskForSave(false, false), COMMAND_DONE);    // looking changes nothing
        EXPECT_EQ(CountShown(L"message: "), 0);
        DeleteFirstNode();
        EXPECT_EQ(Title(), L"2.3dif* - 3DZel Viewer");
        system.messageAnswers = {row.answer};
        system.fileAnswers = {row.file};
        system.dialogUsers = {[](const auto&) { return true; }};
        EXPECT_EQ(frame->AskForSave(false, false), row.result);
        EXPECT_EQ(frame->IsDocumentModified(), row.modified);
        EXPECT_EQ(CountShown(L"message: Scene was modified.\nDo you want to save it?"), 1);
        system.shown.clear();
    }
    EXPECT_EQ(Title(), L"saved.3dif - 3DZel Viewer");
    EXPECT_EQ(frame->GetHelpText(), L"<i>The scene has been saved</i>");
    EXPECT_EQ(frame->GetFileList()->GetFiles(), std::vector<Text>{saved});
    EXPECT_EQ(frame->GetCurrentScene()->GetFilename().GetFullName(), saved);

    frame->SetModifiedFlag(true);
    frame->GetCommandMgr().RemoveCommand(&Command(FourCC("SAVS")));
    system.messageAnswers = {ANSWER_YES};
    EXPECT_EQ(frame->AskForSave(false, false), COMMAND_DECLINED);
    system.messageAnswers = {ANSWER_CANCEL, ANSWER_NO};
    EXPECT_FALSE(system.CloseWindow(frame.get()));
    EXPECT_TRUE(system.CloseWindow(frame.get()));
}

TEST_F(FrameFiles, ChangesThatWereGivenUpComeBackWithTheDocumentThatStays)
{
    ASSERT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    DeleteFirstNode();
    system.messageAnswers = {ANSWER_NO, ANSWER_NO, ANSWER_OK, ANSWER_NO};
    EXPECT_EQ(Run(FourCC("OPEN")), COMMAND_CANCELLED);    // no name is given
    EXPECT_TRUE(frame->IsDocumentModified());
    EXPECT_FALSE(frame->OpenFile(folder.Wide("missing.3dif"), OPEN_DROPPED));
    EXPECT_TRUE(frame->IsDocumentModified());
    // What is opened again comes from disk, not from memory.
    EXPECT_TRUE(frame->OpenFile(one, OPEN_DROPPED));
    EXPECT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    EXPECT_EQ(Nodes(), 2);
    DeleteFirstNode();
    EXPECT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    EXPECT_EQ(Nodes(), 2);
    EXPECT_FALSE(frame->IsDocumentModified());
}

TEST_F(FrameFiles, DroppedFilesOpenOrJoin)
{
    folder.Write("notes.txt", "");
    folder.Write("damaged.3dif", "no scene");
    EXPECT_EQ(system.DropFiles(frame->Get3DView(), {folder.Wide("notes.txt")}, {}), DROP_NONE);
    EXPECT_EQ(system.DropFiles(frame->Get3DView(), {folder.Wide("notes.txt"), folder.Wide("damaged.3dif"), two, one}, {}), DROP_OPEN);
    EXPECT_EQ(CountShown(L"message: "), 2);
    EXPECT_EQ(frame->GetFileList()->GetFiles(), (std::vector<Text>{two, one}));
    EXPECT_EQ(Nodes(), 2);

    system.HoldKeys(INPUT_CTRL);
    EXPECT_EQ(system.DropFiles(frame->Get3DView(), {one, three}, {}), DROP_ADD);
    system.HoldKeys(0);
    EXPECT_EQ(Nodes(), 6);
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_FACES), L"Faces: 36");
    EXPECT_EQ(Title(), L"2.3dif* - 3DZel Viewer");

    EXPECT_EQ(system.DropFiles(frame->Get3DView(), {three}, {}), DROP_OPEN);    // asks: cancel
    EXPECT_EQ(Nodes(), 6);
    EXPECT_TRUE(frame->IsDocumentModified());
}

TEST_F(FrameFiles, NextAndPreviousFileOfTheListOrTheFolder)
{
    folder.Write("3.3dif", "no scene");
    folder.Write("4.txt", "");
    system.HoldKeys(INPUT_CTRL);
    const auto step = [this](unsigned int key) {
        system.PressKey(frame->Get3DView(), key);
        return fileStripPath(frame->GetCurrentFilePath());
    };
    ASSERT_TRUE(frame->OpenFile(one, OPEN_REPLACE));
    EXPECT_EQ(step(VK_NEXT), L"2.3dif");
    EXPECT_EQ(step(VK_NEXT), L"2.3dif");     // the damaged one is told, and does not bar the way
    EXPECT_EQ(step(VK_NEXT), L"10.3dif");    // as a reader counts
    EXPECT_EQ(step(VK_NEXT), L"10.3dif");
    EXPECT_EQ(CountShown(L"message: "), 1);
    EXPECT_EQ(step(VK_PRIOR), L"10.3dif");
    EXPECT_EQ(step(VK_PRIOR), L"2.3dif");

    frame->OpenFile(one, OPEN_REPLACE);
    frame->OpenFile(three, OPEN_ADD);
    EXPECT_EQ(step(VK_NEXT), L"10.3dif");
    EXPECT_EQ(step(VK_NEXT), L"10.3dif");
    EXPECT_EQ(step(VK_PRIOR), L"1.3dif");
}

TEST_F(FrameFiles, OpenTakesSeveralAndScriptsNameTheirs)
{
    system.fileAnswers = {{folder.Wide("missing.3dif"), three, one}};
    EXPECT_EQ(Run(FourCC("OPEN")), COMMAND_DONE);
    EXPECT_EQ(frame->GetFileList()->GetFiles(), (std::vector<Text>{three, one}));

    CCustomData parameters;
    DeleteFirstNode();
    system.shown.clear();
    parameters.SetString(PARAM_PATH, folder.Wide("out.3dif"));
    EXPECT_EQ(Apply3DCommand(&frame->GetCommandMgr(), FourCC("SAVS"), nullptr, parameters), frame->GetCurrentScene());
    EXPECT_FALSE(frame->IsDocumentModified());
    parameters.SetString(PARAM_PATH, one);
    const C3DScene* const opened = Apply3DCommand(&frame->GetCommandMgr(), FourCC("OPEN"), nullptr, parameters);
    EXPECT_EQ(opened, frame->GetCurrentScene());
    EXPECT_EQ(Nodes(), 1);
    EXPECT_TRUE(frame->OpenFile(folder.Wide("out.3dif"), OPEN_REPLACE));
    EXPECT_EQ(Nodes(), 2);
    EXPECT_EQ(system.shown.size(), static_cast<std::size_t>(CountShown(L"progress: ")));
}

TEST_F(FrameFiles, RecentFilesAreTheLastTenThatAreStillThere)
{
    std::vector<Text> files;
    for (int i = 0; i < 12; i++)
        files.push_back(WriteCubes("r&" + std::to_string(i) + ".3dif", 1));
    for (const Text& file : files)
        ASSERT_TRUE(frame->OpenFile(file, OPEN_REPLACE));
    frame->OpenFile(files[8], OPEN_REPLACE);
    std::filesystem::remove(fileToDisk(files[10]));
    const std::vector<Text> recent = CRecentFiles::Get();
    ASSERT_EQ(recent.size(), CRecentFiles::MOST_FILES - 1);
    EXPECT_EQ(recent[0], files[8]);
    EXPECT_EQ(recent[1], files[11]);
    EXPECT_EQ(recent[2], files[9]);
    EXPECT_EQ(recent[3], files[7]);

    CCustomMenu menu;
    ASSERT_EQ(Command(FourCC("RCNT")).OnPopupMenu(&menu, CCommandMgr::FIRST_POPUP), &menu);
    ASSERT_EQ(menu.items.size(), recent.size());
    EXPECT_EQ(menu.items[1].text.Find(L"&2  "), 0);
    EXPECT_GT(menu.items[1].text.Find(L"r&&11.3dif"), 0);
    frame->OnCommand(menu.items[1].id);
    EXPECT_EQ(frame->GetCurrentFilePath(), files[11]);
    EXPECT_EQ(Run(FourCC("RCNT")), COMMAND_DONE);
    EXPECT_EQ(frame->GetCurrentFilePath(), files[8]);
}

TEST_F(FrameFiles, FilesOneAfterTheOtherLeaveNothingBehind)
{
    // What a scene's own file list keeps is what is shown: a scene lives as long as it is shown.
    ASSERT_TRUE(frame->OpenFile(one, OPEN_REPLACE));
    C3DScene* const former = frame->GetCurrentScene();
    former->AddRef();
    ASSERT_TRUE(frame->OpenFile(two, OPEN_REPLACE));
    EXPECT_EQ(former->GetRefCount(), 1);
    DeleteMe(former);
    C3DScene* const last = frame->GetCurrentScene();
    last->AddRef();
    frame.reset();
    EXPECT_EQ(last->GetRefCount(), 1);
    DeleteMe(last);
}
