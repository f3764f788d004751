// The files of one export take their places together or not at all.

#include <filesystem>

#include <gtest/gtest.h>

#include "../../plugins/assimp/OutputFiles.h"
#include "support/TempFolder.h"

TEST(OutputFiles, WhenTheLastCannotTakeItsPlaceTheFormerOnesStandAgain)
{
    // Fault in mind: the new material file beside the old mesh, and files of the export's own left behind.
    for (const bool hasFormer : {true, false}) {
        SCOPED_TRACE(hasFormer);
        const TempFolder folder;
        if (hasFormer)
            folder.Write("model.mtl", "former");
        OutputFiles files(folder.Wide("model.obj"));
        files.OpenMain()->Write("new");
        files.Open(folder.Wide("model.mtl"))->Write("new");
        folder.Write("model.obj/in the way", "");
        EXPECT_FALSE(files.Commit());
        EXPECT_EQ(files.GetFailedPath(), folder.Wide("model.obj"));
        EXPECT_EQ(std::filesystem::exists(folder.Name("model.mtl")), hasFormer);
        EXPECT_EQ(folder.Read("model.mtl"), hasFormer ? "former" : "");
        EXPECT_EQ(folder.CountFiles(), hasFormer ? 2u : 1u);
    }
    const TempFolder folder;
    folder.Write("model.mtl", "former");
    OutputFiles files(folder.Wide("model.obj"));
    files.OpenMain()->Write("mesh");
    files.Open(folder.Wide("model.mtl"))->Write("materials");
    EXPECT_TRUE(files.Commit());
    EXPECT_EQ(folder.Read("model.obj") + folder.Read("model.mtl"), "meshmaterials");
    EXPECT_EQ(folder.CountFiles(), 2u);
}
