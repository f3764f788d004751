// Real files: what a plug-in read comes back from a native file as it was, with all that a checkout would repair or clean away; what saving
// leaves out is told. The example models always; with ZEL_MODELS, a list of folders separated by colons, every file in them too.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "PluginTest.h"
#include "support/SceneEqual.h"
#include "support/Streams.h"

namespace {

std::vector<std::string> GetModels()
{
    std::vector<std::string> folders = {MODELS};
    if (const char* const more = std::getenv("ZEL_MODELS")) {
        std::istringstream list(more);
        for (std::string folder; std::getline(list, folder, ':');)
            folders.push_back(folder);
    }
    std::vector<std::string> files;
    for (const std::string& folder : folders)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (entry.is_regular_file())
                files.push_back(entry.path().string());
    return files;
}

class NativeTrip : public PluginTest {
protected:
    /// As its reader leaves it. Null for a file that no reader takes.
    Scene TryToRead(const std::string& path)
    {
        try {
            return Read(path, IMPORT_NO_CHECKOUT);
        } catch (const CXException*) {
            XDeleteThreadException();
        } catch (const std::exception&) {    // of the import library
        }
        return nullptr;
    }
    /// Nothing prepares or repairs the scene on this road: it carries the broken and the whole alike.
    static Scene ThroughStream(C3DScene& scene)
    {
        const StreamBytes bytes = Stored(scene);
        Scene back(C3DScene::Create());
        return Load(*back, bytes) ? std::move(back) : nullptr;
    }
    /// The road of a user. The scene is left as it was prepared.
    Scene ThroughFile(C3DScene& scene, CSceneExportOptions& saving)
    {
        const std::string native = folder.Name("trip.3dif");
        C3DIo io(CFileNameSpec(Utf8ToWide(native)), FILEIO_SILENT, nullptr);
        if (!io.Save(false, &scene, &saving))
            return nullptr;
        Scene back = Read(native, IMPORT_NO_CHECKOUT);
        scene.SetFilename({});
        back->SetFilename({});
        return back;
    }
};

}

TEST_F(NativeTrip, FilesComeBackAsTheyWere)
{
    int equal = 0, lessened = 0, refused = 0;
    for (const std::string& file : GetModels()) {
        SCOPED_TRACE(file);
        const Scene scene = TryToRead(file);
        if (!scene) {
            refused++;
            continue;
        }
        const Scene streamed = ThroughStream(*scene);
        ASSERT_TRUE(streamed);
        EXPECT_EQ(FirstDifference(*scene, *streamed), "");

        const int faces = scene->GetFaceNbr();
        CSceneExportOptions saving(EXPORT_IN_PLACE | EXPORT_HIDDEN_OBJECTS | EXPORT_KEEP_UNUSED_MATERIALS | EXPORT_KEEP_BACKFACE_MATERIALS);
        const Scene back = ThroughFile(*scene, saving);
        ASSERT_TRUE(back);
        EXPECT_EQ(FirstDifference(*scene, *back), "");
        C3DConversionReport report;
        report.Add(saving);
        (faces == back->GetFaceNbr() ? equal : lessened)++;
        EXPECT_TRUE(faces == back->GetFaceNbr() || report.HasLosses()) << faces << " faces, " << back->GetFaceNbr() << " came back, untold";
    }
    EXPECT_GT(equal, 0);
    std::printf("native files: %d came back as they were, %d without faces that saving told of, %d refused by their readers\n", equal,
                lessened, refused);
}
