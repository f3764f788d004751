#include <benchmark/benchmark.h>

#include <cmath>

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/NormalFaceList.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"

namespace {

struct Mesh {
    C3DPointList* points = C3DPointList::Create(nullptr);
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    CDependentChannels* channels = CDependentChannels::Create();
    CGeomInfo info{faces, points};

    Mesh() { info.SetChannels(channels, nullptr, 0); }
    Mesh(const Mesh&) = delete;
    ~Mesh()
    {
        DeleteMe(channels);
        DeleteMe(faces);
        DeleteMe(points);
    }
};

// A rolling surface of about that many triangles, with a sharp fold every 16 rows.
void MakeSurface(Mesh& mesh, int triangles)
{
    const int side = static_cast<int>(std::sqrt(triangles / 2)), row = side + 1;
    mesh.points->SetSize(row * row);
    for (int i = 0; i < row * row; i++) {
        C3DTPoint<float>& point = *mesh.points->ElementAt(i);
        const int x = i % row, y = i / row;
        point.x = static_cast<float>(x), point.y = static_cast<float>(y);
        point.z = 0.3f * std::sin(x * 0.37f) * std::cos(y * 0.23f) + 2.0f * static_cast<float>(std::abs(y % 32 - 16));
    }
    mesh.faces->AppendFaces(2 * side * side, 3, [=](int* to, unsigned int k) {
        const int cell = static_cast<int>(k / 2), corner = cell % side + cell / side * row;
        to[0] = corner, to[1] = k % 2 ? corner + 1 + row : corner + 1, to[2] = k % 2 ? corner + row : corner + 1 + row;
    });
}

constexpr float ANGLE = 0.5235988f;

}

// All normals of a mesh that has none yet, by smooth mode: faces, graph of points, smoothing at 30 degrees. Watch: 70 ns a face by area.
static void SmoothNormals(benchmark::State& state)
{
    Mesh mesh;
    MakeSurface(mesh, static_cast<int>(state.range(0)));
    mesh.info.SetSmoothMode(static_cast<int>(state.range(1)));
    int corners = 0;
    for (auto _ : state) {
        mesh.channels->RemoveAll();
        CPointNormalChannel* channel = mesh.channels->GetPointNormalChannel();
        channel->InitNormals(&mesh.info, ANGLE);
        channel->GetNormalFaceList()->GetIndexes(0, corners);
    }
    if (corners != 3)
        state.SkipWithError("a triangle has 3 corners");
    state.SetItemsProcessed(state.iterations() * mesh.faces->GetSize());
}
BENCHMARK(SmoothNormals)->ArgsProduct({{10'000, 100'000, 1'000'000}, {NORMAL_AREA}})->Unit(benchmark::kMillisecond);
BENCHMARK(SmoothNormals)->ArgsProduct({{1'000'000}, {NORMAL_UNWEIGHTED, NORMAL_EDGE_LENGTH, NORMAL_ANGLE}})->Unit(benchmark::kMillisecond);

// The parts: normals of the faces alone, and the graph alone.
static void FaceNormals(benchmark::State& state)
{
    Mesh mesh;
    MakeSurface(mesh, static_cast<int>(state.range(0)));
    CFaceNormalChannel* channel = mesh.channels->GetFaceNormalChannel();
    for (auto _ : state) {
        mesh.channels->Invalidate(CHANNEL_FACE_NORMAL);
        channel->InitNormals(&mesh.info);
    }
    if (channel->GetNormalVectorList()->GetSize() != mesh.faces->GetSize())
        state.SkipWithError("one normal a face");
    state.SetItemsProcessed(state.iterations() * mesh.faces->GetSize());
}
BENCHMARK(FaceNormals)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

static void PointGraph(benchmark::State& state)
{
    Mesh mesh;
    MakeSurface(mesh, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        mesh.faces->InitPointToFaceGraph(&mesh.info);
        mesh.faces->DeletePointToFaceGraph();
    }
    state.SetItemsProcessed(state.iterations() * mesh.faces->GetSize());
}
BENCHMARK(PointGraph)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// A hub: one point with all faces, in steep folds so that they fall into many groups. Watch: time a face stays flat.
static void SmoothHub(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    Mesh mesh;
    mesh.points->SetSize(n + 1);
    for (int i = 1; i <= n; i++) {
        C3DTPoint<float>& point = *mesh.points->ElementAt(i);
        const float turn = 2.399963f * static_cast<float>(i);
        point.z = 1 - 2 * static_cast<float>(i) / static_cast<float>(n);
        point.x = std::sqrt(1 - point.z * point.z) * std::cos(turn), point.y = std::sqrt(1 - point.z * point.z) * std::sin(turn);
    }
    mesh.faces->AppendFaces(n, 3, [=](int* to, unsigned int k) {
        to[0] = 0, to[1] = 1 + static_cast<int>(k), to[2] = 1 + static_cast<int>(k + 1) % n;
    });
    for (auto _ : state) {
        mesh.channels->RemoveAll();
        mesh.channels->GetPointNormalChannel()->InitNormals(&mesh.info, static_cast<float>(state.range(1)) * 0.0174533f);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(SmoothHub)->ArgsProduct({{1'000, 10'000, 100'000}, {0, 1, 30}})->Unit(benchmark::kMillisecond);

// The same as given normals to be filled in on every face, by the faces' own normal and by smoothing.
static void GenerateNormals(benchmark::State& state)
{
    Mesh mesh;
    MakeSurface(mesh, static_cast<int>(state.range(0)));
    int vectors = 0;
    for (auto _ : state) {
        mesh.channels->RemoveAll();
        auto* channel = new CSpecNormalChannel;
        mesh.channels->AddChannel(channel);
        channel->GetNormalFaceList()->SetSizeAndFlags(mesh.faces->GetSize(), FACE_EMPTY);
        channel->GenerateNormals(&mesh.info, 1u | static_cast<unsigned int>(state.range(1)), ANGLE, NORMAL_AREA);
        vectors = channel->GetNormalVectorList()->GetSize();
    }
    if (vectors == 0)
        state.SkipWithError("every face gets a normal");
    state.SetItemsProcessed(state.iterations() * mesh.faces->GetSize());
}
BENCHMARK(GenerateNormals)->ArgsProduct({{10'000, 1'000'000}, {4, 8}})->Unit(benchmark::kMillisecond);
