// Real files: what a plug-in read comes back from a native file as it was. The example models always; with ZEL_MODELS, a list of folders
// separated by colons, every file in them too.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "PluginTest.h"
#include "support/SceneEqual.h"

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
    /// Null for a file that no reader takes.
    Scene TryToRead(const std::string& path)
    {
        try {
            return Read(path);
        } catch (const CXException*) {
            XDeleteThreadException();
        } catch (const std::exception&) {    // of the import library
        }
        return nullptr;
    }
    Scene ReadAsItIs(const std::string& path)
    {
        C3DIo io(CFileNameSpec(Utf8ToWide(path)), FILEIO_READ | FILEIO_SILENT, nullptr);
        options = CSceneImportOptions(IMPORT_NO_CHECKOUT);
        return Scene(io.Read(false, &options));
    }
};

}

TEST_F(NativeTrip, FilesComeBackAsTheyWere)
{
    const std::string native = folder.Name("trip.3dif");
    int equal = 0, refused = 0;
    for (const std::string& file : GetModels()) {
        SCOPED_TRACE(file);
        const Scene scene = TryToRead(file);
        if (!scene) {
            refused++;
            continue;
        }
        C3DIo io(CFileNameSpec(Utf8ToWide(native)), FILEIO_SILENT, nullptr);
        CSceneExportOptions saving(EXPORT_IN_PLACE | EXPORT_HIDDEN_OBJECTS | EXPORT_KEEP_UNUSED_MATERIALS | EXPORT_KEEP_BACKFACE_MATERIALS);
        ASSERT_TRUE(io.Save(false, scene.get(), &saving));
        const Scene back = ReadAsItIs(native);
        ASSERT_TRUE(back);
        scene->SetFilename({});
        back->SetFilename({});
        const std::string difference = FirstDifference(*scene, *back);
        EXPECT_EQ(difference, "");
        equal += difference.empty();
    }
    EXPECT_GT(equal, 0);
    std::printf("native files: %d came back as they were, %d refused by their readers\n", equal, refused);
}
