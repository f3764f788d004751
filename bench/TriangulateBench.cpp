#include <benchmark/benchmark.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"

namespace {

struct Mesh {
    C3DPointList* points = C3DPointList::Create(nullptr);
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    CDependentChannels* channels = CDependentChannels::Create();

    Mesh() = default;
    Mesh(const Mesh&) = delete;
    ~Mesh()
    {
        DeleteMe(channels);
        DeleteMe(faces);
        DeleteMe(points);
    }
    void AddPoint(double x, double y)
    {
        const int at = points->GetSize();
        points->SetSize(at + 1);
        C3DTPoint<float>& point = *points->ElementAt(at);
        point.x = static_cast<float>(x), point.y = static_cast<float>(y);
    }
    /// One face with all points.
    void Close()
    {
        std::vector<int> corners(points->GetSize());
        std::iota(corners.begin(), corners.end(), 0);
        faces->AppendFaces(1, points->GetSize(), corners.data());
    }
    int Triangulate(unsigned int channelTypes)
    {
        CGeomInfo info(faces, points);
        info.SetChannels(channels, nullptr, 0);
        return faces->Triangulate(&info, channelTypes, _FACE_PROPERTIES{}, true);
    }
};

void MakeQuads(Mesh& mesh, int quads, double wave)
{
    const int side = static_cast<int>(std::sqrt(quads)), row = side + 1;
    mesh.points->SetSize(row * row);
    for (int i = 0; i < row * row; i++) {
        C3DTPoint<float>& point = *mesh.points->ElementAt(i);
        point.x = static_cast<float>(i % row), point.y = static_cast<float>(i / row);
        point.z = static_cast<float>(wave * std::sin(0.37 * point.x) * std::cos(0.23 * point.y));
    }
    mesh.faces->AppendFaces(side * side, 4, [=](int* to, unsigned int k) {
        const int corner = static_cast<int>(k) % side + static_cast<int>(k) / side * row;
        to[0] = corner, to[1] = corner + 1, to[2] = corner + 1 + row, to[3] = corner + row;
    });
}
void AddUVW(Mesh& mesh)
{
    auto* channel = new CUVWChannel;
    channel->GetPointList()->SetSize(mesh.points->GetSize());
    *static_cast<CFaceList*>(channel->GetFaceList()) = *mesh.faces;
    mesh.channels->AddChannel(channel);
}

void Run(benchmark::State& state, Mesh& mesh, int expected)
{
    int count = 0;
    for (auto _ : state)
        count = mesh.Triangulate(CHANNEL_ALL);
    if (count != expected)
        state.SkipWithError("a polygon of n corners has n - 2 triangles");
    state.SetItemsProcessed(state.iterations() * count);
}

}

// Quads on a rolling surface into triangles; the second number is how many texture channels follow. Watch: 40 ns a triangle without any.
static void TriangulateQuads(benchmark::State& state)
{
    Mesh mesh;
    MakeQuads(mesh, static_cast<int>(state.range(0)) / 2, 0.4);
    for (int i = 0; i < state.range(1); i++)
        AddUVW(mesh);
    Run(state, mesh, 2 * mesh.faces->GetSize());
}
BENCHMARK(TriangulateQuads)
    ->Args({10'000, 0})
    ->Args({100'000, 0})
    ->Args({1'000'000, 0})
    ->Args({4'000'000, 0})
    ->Args({1'000'000, 1})
    ->Unit(benchmark::kMillisecond);

// The same in a plane: all angles are equal.
static void TriangulateFlatQuads(benchmark::State& state)
{
    Mesh mesh;
    MakeQuads(mesh, static_cast<int>(state.range(0)) / 2, 0);
    Run(state, mesh, 2 * mesh.faces->GetSize());
}
BENCHMARK(TriangulateFlatQuads)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// One polygon. Watch: time a triangle stays nearly flat.
static void CutComb(benchmark::State& state)
{
    const int teeth = static_cast<int>(state.range(0)) / 5;
    Mesh mesh;
    for (int i = 0; i < teeth; i++)
        mesh.AddPoint(2 * i, 0), mesh.AddPoint(2 * i + 1, 0);
    for (int i = teeth - 1; i >= 0; i--)
        mesh.AddPoint(2 * i + 1, 1), mesh.AddPoint(2 * i + 0.5, 20), mesh.AddPoint(2 * i, 1);
    mesh.Close();
    Run(state, mesh, mesh.points->GetSize() - 2);
}
BENCHMARK(CutComb)->Arg(50)->Arg(600)->Arg(6'000)->Arg(60'000)->Unit(benchmark::kMillisecond);

static void CutSpiral(benchmark::State& state)
{
    const int half = static_cast<int>(state.range(0)) / 2;
    Mesh mesh;
    for (int i = 0; i < 2 * half; i++) {
        const int at = i < half ? i : 2 * half - 1 - i;
        const double turn = 0.1 * at, radius = (i < half ? 1 : 1.5) + 0.02 * at;
        mesh.AddPoint(radius * std::cos(turn), radius * std::sin(turn));
    }
    mesh.Close();
    Run(state, mesh, mesh.points->GetSize() - 2);
}
BENCHMARK(CutSpiral)->Arg(600)->Arg(6'000)->Arg(60'000)->Unit(benchmark::kMillisecond);

// A tip over a chain of reflex corners.
static void CutBay(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    Mesh mesh;
    mesh.AddPoint(0, 2);
    for (int i = 0; i < n - 1; i++) {
        const double t = -1 + 2.0 * i / (n - 2);
        mesh.AddPoint(t, 1 - t * t);
    }
    mesh.Close();
    Run(state, mesh, n - 2);
}
BENCHMARK(CutBay)->Arg(600)->Arg(6'000)->Arg(60'000)->Unit(benchmark::kMillisecond);
