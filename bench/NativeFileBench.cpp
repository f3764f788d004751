// The native file beside raw writes and reads of as many bytes. The target is synced before it takes the old one's place, so the raw write
// is too; RawWriteUnsynced tells what that costs. ZEL_BENCH_FOLDER: where files go, the folder for temporary files unless set.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/VCChannel.h"
#include "geometry/3DPointList.h"
#include "io/3DIo.h"
#include "io/NativeFile.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "tools/IoFile.h"

namespace {

using Text = CXTString<wchar_t>;

struct Release {
    void operator()(C3DScene* scene) const { DeleteMe(scene); }
};
using OwnedScene = std::unique_ptr<C3DScene, Release>;

/// A grid of that many triangles; with `full`, coordinates, colours and normals for each point of it.
OwnedScene CreateGrid(int triangles, bool full)
{
    int side = 1;
    while (2 * side * side < triangles)
        side++;
    const int row = side + 1;
    C3DPointList* const points = C3DPointList::Create(nullptr);
    points->SetSize(row * row, false, 0);
    for (int i = 0; i < row * row; i++)
        (*points)[i]->x = static_cast<float>(i % row), (*points)[i]->y = static_cast<float>(i / row);
    C3DFaceList* const faces = C3DFaceList::Create(nullptr);
    const auto fill = [=](int* to, unsigned int k) {
        const int square = static_cast<int>(k / 2), corner = square % side + square / side * row;
        to[0] = corner, to[1] = k % 2 ? corner + row + 1 : corner + 1, to[2] = k % 2 ? corner + row : corner + row + 1;
    };
    faces->AppendFaces(triangles, 3, fill);
    auto* const object = new C3DObject(points, faces, nullptr);
    if (full)
        for (CChannel* const channel : {static_cast<CChannel*>(new CUVWChannel), static_cast<CChannel*>(new CVCChannel),
                                        static_cast<CChannel*>(new CSpecNormalChannel)}) {
            channel->GetFaceList()->AppendFaces(triangles, 3, fill);
            channel->GetPointList()->SetSize(row * row, false, 0);
            object->AddChannel(channel);
        }
    OwnedScene scene(C3DScene::Create());
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(object, true);
    scene->AddNode(nullptr, node);
    return scene;
}

/// A file that goes with the benchmark.
class CFile {
public:
    CFile()
    {
        const char* const folder = std::getenv("ZEL_BENCH_FOLDER");
        m_path = (folder ? std::filesystem::path(folder) : std::filesystem::temp_directory_path()) / "native-bench.3dif";
    }
    ~CFile() { std::filesystem::remove(m_path); }
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;
    Text GetName() const { return Utf8ToWide(m_path.string()); }
    std::size_t GetSize() const { return static_cast<std::size_t>(std::filesystem::file_size(m_path)); }

private:
    std::filesystem::path m_path;
};

/// The parser as C3DIo has it, without what stands around it.
class CParser {
public:
    explicit CParser(unsigned int flags) : m_io(FourCC("3DIF"), flags | FILEIO_SILENT, nullptr), m_parser(&m_io) {}
    bool Save(const CFile& file, C3DScene& scene)
    {
        CSceneExportOptions options;
        return m_parser.Save(file.GetName(), &scene, options);
    }
    OwnedScene Read(const CFile& file)
    {
        CSceneImportOptions options;
        return OwnedScene(m_parser.Read(file.GetName(), options));
    }

private:
    C3DIo m_io;
    C3DIFIo m_parser;
};

void Report(benchmark::State& state, const CFile& file)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.GetSize()));
    state.counters["bytes/triangle"] = static_cast<double>(file.GetSize()) / static_cast<double>(state.range(0));
    state.counters["per triangle"] = benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Save(benchmark::State& state, bool full)
{
    const CFile file;
    const OwnedScene scene = CreateGrid(static_cast<int>(state.range(0)), full);
    CParser parser(0);
    for (auto _ : state)
        if (!parser.Save(file, *scene))
            state.SkipWithError("not saved");
    Report(state, file);
}

void Load(benchmark::State& state, bool full)
{
    const CFile file;
    CParser(0).Save(file, *CreateGrid(static_cast<int>(state.range(0)), full));
    CParser parser(FILEIO_READ);
    for (auto _ : state) {
        OwnedScene scene = parser.Read(file);
        state.PauseTiming();
        if (scene->GetFaceNbr() != state.range(0))
            state.SkipWithError("not all faces came back");
        scene.reset();
        state.ResumeTiming();
    }
    Report(state, file);
}

void RawWrite(benchmark::State& state, bool full, bool synced)
{
    const CFile file;
    CParser(0).Save(file, *CreateGrid(static_cast<int>(state.range(0)), full));
    const std::vector<char> bytes(file.GetSize(), 1);
    for (auto _ : state) {
        IoFile target;
        FILE* plain = nullptr;
        bool written;
        if (synced)
            written = target.OpenFile(file.GetName(), 0, nullptr) && target.WriteBytes(bytes.data(), bytes.size()) && target.CloseFile();
        else {
            plain = std::fopen(WideToUtf8(file.GetName()).c_str(), "wb");
            written = plain && std::fwrite(bytes.data(), 1, bytes.size(), plain) == bytes.size();
            std::fclose(plain);
        }
        if (!written)
            state.SkipWithError("not written");
    }
    Report(state, file);
}

void RawRead(benchmark::State& state, bool full)
{
    const CFile file;
    CParser(0).Save(file, *CreateGrid(static_cast<int>(state.range(0)), full));
    for (auto _ : state) {
        const auto bytes = std::make_unique_for_overwrite<char[]>(file.GetSize());    // fresh memory, as a scene needs it
        IoFile source;
        if (!source.OpenFile(file.GetName(), 1, nullptr) || source.ReadBytes(bytes.get(), file.GetSize()) != file.GetSize())
            state.SkipWithError("not read");
        benchmark::DoNotOptimize(bytes.get());
    }
    Report(state, file);
}

}

// Watch: bare geometry at most 20 ns a triangle each way; full meshes within twice the raw transfer; both flat over the sizes.
#define ZEL_SIZES ->Arg(100000)->Arg(1000000)->Arg(4000000)->Unit(benchmark::kMillisecond)->UseRealTime()
BENCHMARK_CAPTURE(Save, bare, false) ZEL_SIZES;
BENCHMARK_CAPTURE(RawWrite, bare, false, true) ZEL_SIZES;
BENCHMARK_CAPTURE(RawWrite, bare_unsynced, false, false) ZEL_SIZES;
BENCHMARK_CAPTURE(Load, bare, false) ZEL_SIZES;
BENCHMARK_CAPTURE(RawRead, bare, false) ZEL_SIZES;
BENCHMARK_CAPTURE(Save, full, true) ZEL_SIZES;
BENCHMARK_CAPTURE(RawWrite, full, true, true) ZEL_SIZES;
BENCHMARK_CAPTURE(RawWrite, full_unsynced, true, false) ZEL_SIZES;
BENCHMARK_CAPTURE(Load, full, true) ZEL_SIZES;
BENCHMARK_CAPTURE(RawRead, full, true) ZEL_SIZES;
