// Reading in a process of its own: what becomes of a worker costs the file, never the host.

#include <cstdlib>
#include <filesystem>

#include "PluginTest.h"

namespace {

const char* const TRIANGLE = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// A variable of the environment, for as long as this lives.
class Variable {
public:
    Variable(const char* name, const std::string& value) : m_name(name) { setenv(name, value.c_str(), 1); }
    ~Variable() { unsetenv(m_name); }

private:
    const char* m_name;
};

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
    const struct {
        const char* what;
        const char* script;
        const char* reason;
    } rows[] = {
        {"crash", "kill -SEGV $$", "crashed"},
        {"end", "exit 7", "exit code 7"},
        {"hang", "exec sleep 60", "longer than 1 s"},
        {"flood of talk", "head -c 10000000 /dev/zero; head -c 10000000 /dev/zero >&2; exit 1", "exit code 1"},
        {"done without a result", "printf '\\0\\0\\0\\0\\1\\0\\0\\0' >&3", "damaged"},
        {"a result of noise", "printf '\\0\\0\\0\\0\\1\\0\\0\\0' >&3; head -c 9000 /dev/zero | tr '\\0' '\\377' >&3", "damaged"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const Variable worker("ZEL_IMPORT_WORKER", Program(row.script));
        EXPECT_FALSE(ReadLimited(file, IMPORT_SECONDS, 1));
        EXPECT_NE(FirstFailure().find(row.reason), std::string::npos) << FirstFailure();
    }
    {
        const Variable worker("ZEL_IMPORT_WORKER", "/nowhere/worker");
        EXPECT_FALSE(Read(file));
        EXPECT_NE(FirstFailure().find("/nowhere/worker"), std::string::npos);
    }
    EXPECT_TRUE(Read(file));
}

TEST_F(ImportWorkerTest, MemoryIsLimited)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer takes all the address space there is";
#endif
    std::string text;
    for (int i = 0; i < 400000; i++)
        text += "v " + std::to_string(i) + " 0 1\n";
    for (int i = 3; i < 400000; i++)
        text += "f " + std::to_string(i - 2) + " " + std::to_string(i - 1) + " " + std::to_string(i) + "\n";
    const std::string file = folder.Write("large.obj", text);
    EXPECT_TRUE(ReadLimited(file, IMPORT_MEGABYTES, 0));
    EXPECT_FALSE(ReadLimited(file, IMPORT_MEGABYTES, 150));
    EXPECT_NE(FirstFailure(), "");
    EXPECT_FALSE(ReadLimited(file, IMPORT_MEGABYTES, 1));    // too little to start
    EXPECT_NE(FirstFailure(), "");
}

// But for the ids, which each process counts on its own.
TEST_F(ImportWorkerTest, TheSameSceneInBothProcesses)
{
    const auto look = [](C3DScene& scene) {
        std::string all;
        for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
            const C3DSceneNode* node = scene.GetNextNode(pos);
            C4x4TMatrix<float> matrix;
            node->GetNodeTM(0, matrix, true);
            all += WideToUtf8(node->GetName()) + " " + std::to_string(node->GetObjectKindOf());
            for (int i = 0; i < 12; i++)
                all += " " + std::to_string(matrix.m[i / 4][i % 4]);
            if (C3DGeomObject* object = node->GetGeomObject()) {
                all += " " + std::to_string(object->GetPointList()->GetChecksum(0xFFFFFFFF));
                for (const CChannel* channel : *object->GetChannels())
                    all +=
                        " " + std::to_string(channel->GetType()) + " " + std::to_string(channel->GetPointList()->GetChecksum(0xFFFFFFFF));
            }
            all += "\n";
        }
        return all;
    };
    const std::string file = MODELS "/pavilion.dae";
    const Scene there = Read(file);
    const std::size_t lines = options.GetLog().size();
    const Variable here("ZEL_IMPORT_IN_PROCESS", "1");
    const Scene expected = Read(file);
    ASSERT_TRUE(there && expected);
    EXPECT_EQ(look(*there), look(*expected));
    EXPECT_EQ(lines, options.GetLog().size());
}

TEST_F(ImportWorkerTest, TheClassChoosesTheReader)
{
    const std::string file = folder.Write("model.data", TRIANGLE);
    EXPECT_FALSE(Read(file));
    for (const char* const inProcess : {"0", "1"}) {
        const Variable process("ZEL_IMPORT_IN_PROCESS", inProcess);
        const Scene scene = ReadLimited(file, IMPORT_SECONDS, 60, FourCC("OBJ "));
        ASSERT_TRUE(scene) << FirstFailure();
        EXPECT_EQ(scene->GetFaceNbr(), 1);
        EXPECT_FALSE(ReadLimited(file, IMPORT_SECONDS, 60, FourCC("STL ")));
    }
}
