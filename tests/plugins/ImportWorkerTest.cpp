// Reading in a process of its own: what becomes of a worker costs the file, never the host.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Confinement.h"
#include "PluginTest.h"
#include "SaveScene.h"
#include "WorkerResult.h"

namespace {

std::string ReadFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

const char* const TRIANGLE = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

}

class ImportWorkerTest : public PluginTest {
protected:
    Scene ReadLimited(const std::string& path, unsigned int id, unsigned int limit, unsigned int fileClass = 0)
    {
        C3DIo io(CFileNameSpec(Utf8ToWide(path), fileClass), FILEIO_READ | FILEIO_SILENT, nullptr);
        options = CSceneImportOptions();
        options.GetCustomData().SetUnsigned(id, limit);
        return Scene(io.Read(false, &options));
    }
    std::string FirstFailure() const
    {
        for (const IoLogInfo& line : options.GetLog())
            if (line.level == IoLogInfo::FAILURE)
                return WideToUtf8(line.text);
        return {};
    }
    std::string Program(const std::string& script)
    {
        const std::string path = folder.Write("worker.sh", "#!/bin/sh\n" + script);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }
};

TEST_F(ImportWorkerTest, AWorkerThatFailsCostsItsFile)
{
    const std::string file = folder.Write("a.obj", TRIANGLE);
    // descriptors of a worker: 3 its state, 4 its result
    const struct {
        const char* what;
        const char* script;
        const char* reason;
    } rows[] = {
        {"crash", "kill -SEGV $$", "crashed"},
        {"hang", "exec sleep 60", "longer than 1 s"},
        {"flood of talk", "head -c 10000000 /dev/zero; head -c 10000000 /dev/zero >&2; exit 1", "exit code 1"},
        {"done without a result", "printf '\\0\\0\\0\\0\\1\\0\\0\\0' >&3", "damaged"},
        {"a result of noise", "head -c 9000 /dev/zero | tr '\\0' '\\377' >&4; printf '\\0\\0\\0\\0\\1\\0\\0\\0' >&3", "damaged"},
        {"memory taken away", "truncate -s 0 /proc/self/fd/3; truncate -s 0 /proc/self/fd/4; exit 9", "exit code 9"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const ScopedVariable worker("ZEL_IMPORT_WORKER", Program(row.script));
        EXPECT_FALSE(ReadLimited(file, IMPORT_SECONDS, 1));
        EXPECT_NE(FirstFailure().find(row.reason), std::string::npos) << FirstFailure();
    }
    {
        const ScopedVariable worker("ZEL_IMPORT_WORKER", "/nowhere/worker");
        EXPECT_FALSE(Read(file));
        EXPECT_NE(FirstFailure().find("/nowhere/worker"), std::string::npos);
    }
    EXPECT_TRUE(Read(file));
}

TEST_F(ImportWorkerTest, ItsProcessesEndWithIt)
{
    const ScopedVariable worker("ZEL_IMPORT_WORKER", Program("sleep 60 & echo $! >" + folder.Name("child") + "; exec sleep 60"));
    EXPECT_FALSE(ReadLimited(folder.Write("a.obj", TRIANGLE), IMPORT_SECONDS, 1));
    const pid_t child = std::stoi(folder.Read("child"));
    const auto isGone = [child] {    // or waits for somebody to take note of its end
        const std::string state = ReadFile("/proc/" + std::to_string(child) + "/stat");
        return state.empty() || state.find(") Z") != std::string::npos;
    };
    for (int wait = 0; wait < 500 && !isGone(); wait++)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(isGone());
}

TEST_F(ImportWorkerTest, SmallFilesTakeLittle)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer takes all the memory there is";
#endif
    const struct {
        const char* name;
        std::string text;
        const char* reason;
    } rows[] = {
        {"count.ply", "ply\nformat ascii 1.0\nelement vertex 4000000000\nend_header\n", "ends before"},
        {"sparse.gltf",
         R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
             "meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
             "buffers":[{"byteLength":16,"uri":"data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAAAAAA=="}],
             "bufferViews":[{"buffer":0,"byteLength":4},{"buffer":0,"byteOffset":4,"byteLength":12}],
             "accessors":[{"componentType":5126,"count":350000000,"type":"VEC3","sparse":{"count":1,
                 "indices":{"bufferView":0,"componentType":5125},"values":{"bufferView":1}}}]})",
         "--read-megabytes"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(ReadText(row.name, row.text));
        EXPECT_NE(FirstFailure().find(row.reason), std::string::npos) << FirstFailure();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
    }
}

TEST_F(ImportWorkerTest, MemoryGrowsWithTheFiles)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer takes all the memory there is";
#endif
    constexpr int POINTS = 1000000;
    folder.Write("large.bin", std::string(POINTS * 12, '\0'));
    const std::string count = std::to_string(POINTS), size = std::to_string(POINTS * 12);
    const std::string file =
        folder.Write("large.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
                                       "meshes":[{"primitives":[{"attributes":{"POSITION":0},"mode":0}]}],
                                       "buffers":[{"uri":"large.bin","byteLength":)" +
                                       size + R"(}],"bufferViews":[{"buffer":0,"byteLength":)" + size +
                                       R"(}],"accessors":[{"bufferView":0,"componentType":5126,"type":"VEC3","count":)" + count + "}]}");
    EXPECT_TRUE(Read(file)) << FirstFailure();
    EXPECT_TRUE(ReadLimited(file, IMPORT_MEGABYTES, 0)) << FirstFailure();
    EXPECT_FALSE(ReadLimited(file, IMPORT_MEGABYTES, 20));    // a limit of the user's is one for all files
    EXPECT_NE(FirstFailure().find("20 MiB"), std::string::npos) << FirstFailure();
}

TEST_F(ImportWorkerTest, ManyJointsComeThrough)
{
    constexpr unsigned int JOINTS = 5000, POINTS = JOINTS / 4;
    std::string content;
    const auto add = [&content](const auto& value) { content.append(reinterpret_cast<const char*>(&value), sizeof value); };
    for (unsigned int i = 0; i < POINTS; i++)
        for (const unsigned int coordinate : {i, i % 7, i % 3})
            add(static_cast<float>(coordinate));
    for (unsigned int i = 0; i < JOINTS; i++)
        add(static_cast<std::uint16_t>(i));
    for (unsigned int i = 0; i < JOINTS; i++)
        add(0.25f);
    for (unsigned int i = 0; i < JOINTS * 16; i++)
        add(i % 16 % 5 == 0 ? 1.f : 0.f);
    folder.Write("joints.bin", content);
    std::string nodes = R"({"mesh":0,"skin":0})", joints;
    for (unsigned int i = 1; i <= JOINTS; i++) {
        nodes += ",{\"name\":\"j" + std::to_string(i) + "\"}";
        joints += (i > 1 ? "," : "") + std::to_string(i);
    }
    const auto number = [](unsigned int value) { return std::to_string(value); };
    const std::string file = folder.Write(
        "joints.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0,)" + joints + R"(]}],"nodes":[)" + nodes +
                           R"(],"skins":[{"inverseBindMatrices":3,"joints":[)" + joints +
                           R"(]}],"meshes":[{"primitives":[{"attributes":{"POSITION":0,"JOINTS_0":1,"WEIGHTS_0":2}}]}],
                           "buffers":[{"uri":"joints.bin","byteLength":)" +
                           number(POINTS * 36 + JOINTS * 64) + R"(}],"bufferViews":[{"buffer":0,"byteLength":)" + number(POINTS * 12) +
                           R"(},{"buffer":0,"byteOffset":)" + number(POINTS * 12) + R"(,"byteLength":)" + number(POINTS * 8) +
                           R"(},{"buffer":0,"byteOffset":)" + number(POINTS * 20) + R"(,"byteLength":)" + number(POINTS * 16) +
                           R"(},{"buffer":0,"byteOffset":)" + number(POINTS * 36) + R"(,"byteLength":)" + number(JOINTS * 64) +
                           R"(}],"accessors":[{"bufferView":0,"componentType":5126,"type":"VEC3","count":)" + number(POINTS) +
                           R"(},{"bufferView":1,"componentType":5123,"type":"VEC4","count":)" + number(POINTS) +
                           R"(},{"bufferView":2,"componentType":5126,"type":"VEC4","count":)" + number(POINTS) +
                           R"(},{"bufferView":3,"componentType":5126,"type":"MAT4","count":)" + number(JOINTS) + "}]}");
    const Scene scene = ReadLimited(file, IMPORT_MEGABYTES, 400);    // a weight for each joint and point
    ASSERT_TRUE(scene) << FirstFailure();
    C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL);
    const C3DGeomObject& object = *scene->GetNextNode(pos)->GetGeomObject();
    EXPECT_EQ(object.GetChannels()->GetChannelsNumber(CHANNEL_WEIGHT, true), JOINTS);
}

// Losses, images and warnings are all that a host learns beside the scene.
TEST_F(ImportWorkerTest, ItsWordsAndImagesCross)
{
    const ScopedVariable cache("XDG_CACHE_HOME", folder.Name("cache"));
    CSceneImportOptions there, here;
    there.AddLossInfo(L"lost");
    there.AddLogInfo(IoLogInfo::INFORMATION, L"told");
    there.AddLogInfo(IoLogInfo::WARNING, L"warned");
    UnpackedImages images;
    const CXTString<wchar_t> file = images.AddFile("../a.png", "bytes", 5);
    const unsigned char pixels[] = {1, 2, 3, 255, 4, 5, 6, 255};
    const CXTString<wchar_t> picture = images.AddPixels("b.png", pixels, 2, 1);
    const int memory = memfd_create("result", MFD_CLOEXEC);
    ASSERT_TRUE(WriteWorkerResult(memory, there, images, Scene(C3DScene::Create()).get()));
    EXPECT_FALSE(std::filesystem::exists(folder.Name("cache")));    // the worker writes nothing
    std::string bytes(static_cast<std::size_t>(lseek(memory, 0, SEEK_END)), '\0');
    ASSERT_EQ(pread(memory, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    close(memory);
    const Scene scene(ReadWorkerResult(bytes.data(), bytes.size(), here));
    ASSERT_TRUE(scene);
    ASSERT_EQ(here.GetLog().size(), 3u);
    EXPECT_TRUE(here.GetLog()[0].loss);
    EXPECT_EQ(here.GetLog()[2].level, IoLogInfo::WARNING);
    EXPECT_EQ(ReadFile(WideToUtf8(file)), "bytes");
    EXPECT_EQ(WideToUtf8(fileStripPath(file)), "a.png");
    EXPECT_TRUE(fileExists(picture));
}

TEST_F(ImportWorkerTest, ItCanDoNothingButRead)
{
    const std::string old = folder.Write("old", "x"), fresh = folder.Name("new");
    constexpr int READS = 1, WRITES = 2, MAKES = 4, CALLS = 8, STARTS = 16, THREADS = 32;
    const pid_t child = fork();
    if (child == 0) {
        ConfineProcess();
        int found = 0;
        found |= open(old.c_str(), O_RDONLY) >= 0 ? READS : 0;
        found |= open(old.c_str(), O_WRONLY) >= 0 || unlink(old.c_str()) == 0 || chmod(old.c_str(), 0600) == 0 ? WRITES : 0;
        found |= open(fresh.c_str(), O_WRONLY | O_CREAT, 0600) >= 0 || mkdir(fresh.c_str(), 0700) == 0 ? MAKES : 0;
        found |= socket(AF_INET, SOCK_STREAM, 0) >= 0 || socket(AF_UNIX, SOCK_STREAM, 0) >= 0 ? CALLS : 0;
        const pid_t grandchild = fork();
        if (grandchild == 0)
            _exit(0);
        char* const none[] = {nullptr};
        found |= grandchild > 0 || execve("/bin/true", none, none) == 0 ? STARTS : 0;
        std::thread([&found] { found |= THREADS; }).join();
        _exit(found);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    if (syscall(SYS_landlock_create_ruleset, nullptr, 0, 1) < 0 || prctl(PR_GET_SECCOMP) < 0)
        GTEST_SKIP() << "the kernel has not the means";
    EXPECT_EQ(WEXITSTATUS(status), READS | THREADS);
}

TEST_F(ImportWorkerTest, TheSameSceneInBothProcesses)
{
    const std::string file = MODELS "/pavilion.dae";
    const Scene there = Read(file);
    const std::size_t lines = options.GetLog().size();
    const ScopedVariable here("ZEL_IMPORT_IN_PROCESS", "1");
    const Scene expected = Read(file);
    ASSERT_TRUE(there && expected);
    EXPECT_EQ(SceneCorners::Of(*there, 0xFF), SceneCorners::Of(*expected, 0xFF));
    EXPECT_EQ(there->GetChildCount(nullptr, OBJECT_ANY), expected->GetChildCount(nullptr, OBJECT_ANY));
    EXPECT_EQ(lines, options.GetLog().size());
}

TEST_F(ImportWorkerTest, TheClassChoosesTheReader)
{
    const std::string file = folder.Write("model.data", TRIANGLE);
    EXPECT_FALSE(Read(file));
    for (const char* const inProcess : {"0", "1"}) {
        const ScopedVariable process("ZEL_IMPORT_IN_PROCESS", inProcess);
        const Scene scene = ReadLimited(file, IMPORT_SECONDS, 60, FourCC("OBJ "));
        ASSERT_TRUE(scene) << FirstFailure();
        EXPECT_EQ(scene->GetFaceNbr(), 1);
        EXPECT_FALSE(ReadLimited(file, IMPORT_SECONDS, 60, FourCC("STL ")));
    }
}
