#include "io/NativeFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

#include "channels/DependentChannels.h"
#include "channels/WeightChannel.h"
#include "io/3DIo.h"
#include "scene/3DObject.h"
#include "support/FullScene.h"
#include "support/Meshes.h"
#include "support/Owned.h"
#include "support/SceneEqual.h"
#include "support/TempFolder.h"
#include "tools/Exception.h"
#include "tools/Progress.h"

namespace {

using Text = CXTString<wchar_t>;
using OwnedScene = Owned<C3DScene>;

class NativeFile : public testing::Test {
protected:
    /// The scene as it stands: without the export preparation, which changes what the file then holds.
    bool Save(C3DScene& scene, const char* name)
    {
        C3DIo io(m_folder.Wide(name), FILEIO_SILENT, nullptr);
        CSceneExportOptions options;
        const bool saved = io.PrepareSaving() && io.GetParser()->Save(m_folder.Wide(name), &scene, options);
        if (saved)
            scene.SetFilename(m_folder.Wide(name));
        m_log = WideToUtf8(options.GetLogText(IoLogInfo::ALL));
        return saved;
    }
    /// Null for a file that is refused; m_log tells why.
    OwnedScene Read(const char* name)
    {
        C3DIo io(m_folder.Wide(name), FILEIO_READ | FILEIO_SILENT, nullptr);
        CSceneImportOptions options(IMPORT_NO_CHECKOUT);
        OwnedScene scene;
        try {
            scene.reset(io.Read(false, &options));
        } catch (const CXArchiveException*) {
            XDeleteThreadException();
            m_threw = true;
        }
        m_log = WideToUtf8(options.GetLogText(IoLogInfo::ALL));
        m_result = io.GetLastResult();
        return scene;
    }
    /// Through a file and back, file names apart.
    OwnedScene RoundTrip(C3DScene& scene)
    {
        EXPECT_TRUE(Save(scene, "trip.3dif")) << m_log;
        OwnedScene read = Read("trip.3dif");
        scene.SetFilename({});
        if (read)
            read->SetFilename({});
        return read;
    }

    TempFolder m_folder;
    std::string m_log;
    int m_result = IORESULT_OK;
    bool m_threw = false;
};

}

TEST_F(NativeFile, EverythingComesBack)
{
    for (unsigned int seed = 1; seed <= 40; seed++) {
        SCOPED_TRACE(seed);
        const OwnedScene scene(CreateFullScene(seed));
        const OwnedScene read = RoundTrip(*scene);
        ASSERT_TRUE(read) << m_log;
        EXPECT_EQ(FirstDifference(*scene, *read), "");
    }
}

TEST_F(NativeFile, SavingThroughTheFrontEndLeavesTheSceneAsItIs)
{
    for (unsigned int seed = 1; seed <= 8; seed++) {
        SCOPED_TRACE(seed);
        const OwnedScene scene(CreateFullScene(seed));
        ASSERT_TRUE(Save(*scene, "first.3dif") && Save(*scene, "before.3dif"));
        for (const unsigned int flags :
             {0u, EXPORT_TRIANGULATE | EXPORT_GLOBAL_COORDINATES | EXPORT_PATCHES_SOURCE | EXPORT_NORMALISE_NAMES}) {
            CSceneExportOptions options(flags);
            C3DIo io(m_folder.Wide("out.3dif"), FILEIO_SILENT, nullptr);
            ASSERT_TRUE(io.Save(false, scene.get(), &options));
            EXPECT_TRUE(Read("out.3dif")) << m_log;    // whatever the preparation leaves of a mesh
        }
        ASSERT_TRUE(Save(*scene, "after.3dif"));
        EXPECT_TRUE(m_folder.Read("before.3dif") == m_folder.Read("after.3dif"));
    }
}

TEST_F(NativeFile, TheSameSceneGivesTheSameBytes)
{
    const OwnedScene scene(CreateFullScene());
    for (const char* const name : {"first.3dif", "a.3dif", "b.3dif"})    // the first save clears the marks of changed materials
        ASSERT_TRUE(Save(*scene, name));
    EXPECT_TRUE(m_folder.Read("a.3dif") == m_folder.Read("b.3dif"));
    const OwnedScene read = Read("a.3dif");    // where derived channels are stale
    ASSERT_TRUE(read && Save(*read, "c.3dif"));
    const OwnedScene again = Read("c.3dif");
    ASSERT_TRUE(again && Save(*again, "d.3dif"));
    EXPECT_TRUE(m_folder.Read("c.3dif") == m_folder.Read("d.3dif"));
}

TEST_F(NativeFile, IsRefusedByItsHeader)
{
    const OwnedScene scene(CreateFullScene());
    ASSERT_TRUE(Save(*scene, "good.3dif"));
    const std::string good = m_folder.Read("good.3dif");
    ASSERT_EQ(good.substr(1, 4), "3DIF");
    const auto with = [&](std::size_t place, const std::string& bytes) { return std::string(good).replace(place, bytes.size(), bytes); };
    const struct {
        const char* name;
        std::string file;
        bool reads, throws;
        int result;
        const char* log;
    } rows[] = {
        {"written by a later release that keeps to this form", with(8, "\2"), true, false, IORESULT_OK, ""},
        {"written for later readers", with(8, std::string("\3\0\0\0\2", 5)), false, false, IORESULT_FAILED,
         "x.3dif was written by a newer release: file version 3 asks for readers of version 2, this one is 1"},
        {"another magic", with(0, "x"), false, false, IORESULT_FAILED, "x.3dif is not a native scene file"},
        {"line ends changed on the way", with(5, "\n"), false, false, IORESULT_FAILED, "x.3dif is not a native scene file"},
        {"cut behind the header", good.substr(0, 16), false, true, IORESULT_FAILED, "x.3dif is damaged: it ends too early"},
        {"cut in the scene", good.substr(0, good.size() - 1), false, true, IORESULT_FAILED, "x.3dif is damaged"},
        {"a stream of another version", with(16, "\2"), false, false, IORESULT_EMPTY, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_folder.Write("x.3dif", row.file);
        m_threw = false;
        EXPECT_EQ(Read("x.3dif") != nullptr, row.reads);
        EXPECT_EQ(m_threw, row.throws);
        EXPECT_EQ(m_result, row.result);
        EXPECT_NE(m_log.find(row.log), std::string::npos) << m_log;
    }
}

// The sink hears of reading and saving, and wants to stop at each of the first times.
TEST_F(NativeFile, AReadingOrSavingStopsWhenTheUserWants)
{
    class Sink : public IProgressSink {
    public:
        explicit Sink(int at) : m_at(at) {}
        bool OnProgress(const CXTString<wchar_t>&, double) override { return ++told != m_at; }
        int told = 0;

    private:
        int m_at;
    };
    const auto front = [&](C3DScene* scene, const char* name, int& result) {
        C3DIo io(m_folder.Wide(name), FILEIO_SILENT | (scene ? 0u : static_cast<unsigned int>(FILEIO_READ)), nullptr);
        const OwnedScene read(scene ? nullptr : io.Read(false, nullptr));
        const bool done = scene ? io.Save(false, scene, nullptr) : read != nullptr;
        result = io.GetLastResult();
        return done;
    };
    const OwnedScene scene(CreateFullScene());
    int result;
    ASSERT_TRUE(front(scene.get(), "kept.3dif", result));
    for (C3DScene* what : {scene.get(), static_cast<C3DScene*>(nullptr)}) {
        Sink all(0);
        {
            const CProgressScope scope(&all);
            ASSERT_TRUE(front(what, "kept.3dif", result));
        }
        EXPECT_GT(all.told, 3);
        for (int at = 1; at <= 3; at++) {
            Sink sink(at);
            const CProgressScope scope(&sink);
            EXPECT_FALSE(front(what, "kept.3dif", result)) << at;
            EXPECT_EQ(result, IORESULT_CANCELLED);
        }
    }
    EXPECT_TRUE(front(nullptr, "kept.3dif", result));    // the file is whole
}

TEST_F(NativeFile, AFailedSaveLosesNothing)
{
    const OwnedScene scene(CreateFullScene());
    scene->SetFilename(m_folder.Wide("former.3dif"));
    ASSERT_TRUE(Save(*scene, "target.3dif"));
    const std::string before = m_folder.Read("target.3dif");
    const CFileNameSpec name = scene->GetFilename();
    EXPECT_EQ(WideToUtf8(name.GetFullName()), m_folder.Name("target.3dif"));    // the caller of the parser set it
    const std::size_t files = m_folder.CountFiles();

    // No room: the writer may write less than the scene needs.
    rlimit former, tight;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    tight = former;
    tight.rlim_cur = before.size() / 2;
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &tight);
    bool threw = false;
    try {
        EXPECT_FALSE(Save(*scene, "target.3dif"));
    } catch (const CXArchiveException*) {
        XDeleteThreadException();
        threw = true;
    }
    setrlimit(RLIMIT_FSIZE, &former);
    EXPECT_TRUE(threw);
    EXPECT_EQ(m_folder.Read("target.3dif"), before);
    EXPECT_EQ(m_folder.CountFiles(), files);
    EXPECT_EQ(scene->GetFilename(), name);

    EXPECT_FALSE(Save(*scene, "no such folder/target.3dif"));
    EXPECT_EQ(scene->GetFilename(), name);
}

TEST_F(NativeFile, SavesNothingThatItWouldNotRead)
{
    const OwnedScene scene(C3DScene::Create());
    auto* const object = new C3DObject;
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(object, true);
    scene->AddNode(nullptr, node);
    Mesh cube = Cube();
    object->SetFaceList(std::exchange(cube.faces, nullptr), true);
    object->SetPointList(std::exchange(cube.points, nullptr), true);
    int count;
    object->GetFaceList()->GetIndexes(2, count)[1] = 8;
    for (int i = 0; i < 5000; i++)    // joints of a figure
        object->AddChannel(new CWeightChannel(NO_CHANNEL_ID, true));
    ASSERT_TRUE(Save(*scene, "trip.3dif"));
    EXPECT_NE(m_log.find("(face 2)"), std::string::npos);
    const OwnedScene read = Read("trip.3dif");
    ASSERT_TRUE(read) << m_log;
    const C3DGeomObject& found = *read->GetChildNode(nullptr)->GetGeomObject();
    EXPECT_EQ(found.GetChannels()->GetSize(), 5000);
    EXPECT_TRUE(found.GetFaceList()->IsFaceFlagSet(2, FACE_INVALID));
    ASSERT_TRUE(Save(*scene, "again.3dif"));
    EXPECT_EQ(m_log, "") << "told once: the face is dead by now";

    while (object->GetChannels()->GetSize() <= 16384)
        object->AddChannel(new CWeightChannel(NO_CHANNEL_ID, true));
    C3DIo io(m_folder.Wide("many.3dif"), FILEIO_SILENT, nullptr);
    CSceneExportOptions options;
    EXPECT_THROW(io.Save(false, scene.get(), &options), CXArchiveException*);
    XDeleteThreadException();
    EXPECT_TRUE(m_folder.Read("many.3dif").empty());
}
