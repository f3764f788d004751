// Files that join the current scene.

#include <fstream>

#include "viewer/CommandCase.h"
#include "viewer/FileCommands.h"

namespace {

constexpr unsigned int MERGE = FourCC("MERG"), MERGE_FOLDER = FourCC("MERF");

/// A frame that shows two cubes, and a folder of three files with one cube each and what is no scene.
class Merge : public FrameCase {
protected:
    void SetUp() override
    {
        Open();
        scene.reset(CreateCubes(2));
        frame->SetCurrentScene(scene.get(), true);
        ASSERT_TRUE(fileCreateDirectory(models, true));
        for (const char* const name : {"a.3dif", "b.3dif", "c.3dif"})
            files.push_back(WriteCubes(std::string("models/") + name, 1));
        std::ofstream(folder.Name("models/notes.txt")) << "no scene";
    }

    Owned<C3DScene> scene;
    const Text models = folder.Wide("models");
    std::vector<CFileNameSpec> files;
};

}

TEST_F(Merge, FilesJoinTheScene)
{
    EXPECT_EQ(Run(MERGE), COMMAND_CANCELLED);
    EXPECT_FALSE(frame->IsDocumentModified());

    std::ofstream(folder.Name("models/broken.3dif")) << "broken";
    const std::size_t asked = system.shown.size();
    system.fileAnswers.push_back({files[0], folder.Wide("models/broken.3dif"), files[1]});
    EXPECT_EQ(Run(MERGE), COMMAND_DONE);
    EXPECT_EQ(Nodes(), 4);
    EXPECT_EQ(frame->GetCurrentScene(), scene.get());
    EXPECT_EQ(scene->GetMaterialNumber(), 2u);    // an equal one is there already
    EXPECT_TRUE(frame->IsDocumentModified());
    EXPECT_GT(system.shown.size(), asked);
    EXPECT_EQ(CountShown(L"progress: Merging files"), 1);

    Command(MERGE).GetCustomData().SetString(PARAM_PATH, files[2].GetFullName());
    EXPECT_EQ(Run(MERGE), COMMAND_DONE);
    EXPECT_EQ(Nodes(), 5);
}

TEST_F(Merge, CancelKeepsWhatWasMerged)
{
    system.cancelProgressAfter = 6;
    system.fileAnswers.push_back(files);
    EXPECT_EQ(Run(MERGE), COMMAND_DONE);
    EXPECT_GT(Nodes(), 2);
    EXPECT_LT(Nodes(), 5);
    EXPECT_TRUE(frame->IsDocumentModified());
}

TEST_F(Merge, FoldersJoinTheSceneOrANewOne)
{
    const auto merge = [&](const Text& chosen, std::deque<MessageAnswer> answers) {
        system.folderAnswers.push_back({chosen});
        system.messageAnswers = std::move(answers);
        return Run(MERGE_FOLDER);
    };
    // Nothing there: no question, and all stays.
    ASSERT_TRUE(fileCreateDirectory(folder.Wide("empty"), true));
    EXPECT_EQ(merge(folder.Wide("empty"), {}), COMMAND_CANCELLED);
    EXPECT_EQ(CountShown(L"message"), 0);
    EXPECT_FALSE(frame->IsDocumentModified());

    EXPECT_EQ(merge(models, {ANSWER_NO}), COMMAND_DONE);
    EXPECT_EQ(frame->GetCurrentScene(), scene.get());
    EXPECT_EQ(Nodes(), 5);

    // Changes are not lost unasked.
    EXPECT_EQ(merge(models, {ANSWER_YES, ANSWER_CANCEL}), COMMAND_CANCELLED);
    EXPECT_EQ(Nodes(), 5);
    EXPECT_TRUE(frame->IsDocumentModified());
    EXPECT_EQ(merge(models + L"/", {ANSWER_YES, ANSWER_NO}), COMMAND_DONE);
    EXPECT_NE(frame->GetCurrentScene(), scene.get());
    EXPECT_EQ(Nodes(), 3);
    EXPECT_EQ(frame->GetCurrentScene()->GetMaterialNumber(), 1u);
    EXPECT_EQ(frame->GetCurrentFilePath(), models);
    EXPECT_TRUE(frame->IsDocumentModified());
}
