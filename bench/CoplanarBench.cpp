#include <benchmark/benchmark.h>

#include <cmath>

#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "scene/3DObject.h"

namespace {

// A square of triangles; `isRaised(x, y)` lifts a point out of the plane.
template <class RAISED> C3DObject* MakeTriangles(int triangles, RAISED isRaised)
{
    const int side = static_cast<int>(std::sqrt(triangles / 2)), row = side + 1;
    auto* object = new C3DObject;
    object->SetPointList(C3DPointList::Create(nullptr), true);
    object->SetFaceList(C3DFaceList::Create(nullptr), true);
    object->GetPointList()->SetSize(row * row);
    for (int i = 0; i < row * row; i++) {
        C3DTPoint<float>& point = *object->GetPointList()->ElementAt(i);
        point.x = static_cast<float>(i % row), point.y = static_cast<float>(i / row);
        point.z = isRaised(i % row, i / row);
    }
    object->GetFaceList()->AppendFaces(2 * side * side, 3, [=](int* to, unsigned int k) {
        const int cell = static_cast<int>(k / 2), corner = cell % side + cell / side * row;
        to[0] = corner, to[1] = k % 2 ? corner + 1 + row : corner + 1, to[2] = k % 2 ? corner + row : corner + 1 + row;
    });
    return object;
}

// Pairs of triangles: columns fold up and down, rows rise, so that each square is a plane of its own.
float Folded(int x, int) { return static_cast<float>(x % 2); }

void Run(benchmark::State& state, C3DObject* model, int expected)
{
    const int faces = model->GetFaceNbr();
    int count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto* object = new C3DObject(*model);
        state.ResumeTiming();
        object->MergeCoplanarFaces(0, CHANNEL_ALL);
        state.PauseTiming();
        count = object->GetFaceNbr();
        DeleteMe(object);
        state.ResumeTiming();
    }
    DeleteMe(model);
    if (expected >= 0 && count != expected)
        state.SkipWithError("another number of polygons");
    state.SetItemsProcessed(state.iterations() * faces);
}

}

// Every square is a region by its material. Watch: 300 ns a face at a million.
static void MergeSquares(benchmark::State& state)
{
    C3DObject* object = MakeTriangles(static_cast<int>(state.range(0)), [](int, int) { return 0.0f; });
    for (int i = 0; i < object->GetFaceNbr(); i++)
        object->GetFaceList()->SetFaceMaterial(i, i / 2);
    const int faces = object->GetFaceNbr();
    Run(state, object, faces / 2);
}
BENCHMARK(MergeSquares)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Arg(4'000'000)->Unit(benchmark::kMillisecond);

// Strips that fold up and down: regions of some hundred faces.
static void MergeStrips(benchmark::State& state)
{
    C3DObject* object = MakeTriangles(static_cast<int>(state.range(0)), Folded);
    Run(state, object, static_cast<int>(std::sqrt(state.range(0) / 2)));
}
BENCHMARK(MergeStrips)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// One region of all faces. Watch: time a face stays flat.
static void MergePlane(benchmark::State& state)
{
    Run(state, MakeTriangles(static_cast<int>(state.range(0)), [](int, int) { return 0.0f; }), 1);
}
BENCHMARK(MergePlane)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Arg(4'000'000)->Unit(benchmark::kMillisecond);

// Nothing to merge.
static void MergeNothing(benchmark::State& state)
{
    C3DObject* object =
        MakeTriangles(static_cast<int>(state.range(0)), [](int x, int y) { return std::sin(0.7f * x) * std::cos(0.9f * y); });
    Run(state, object, -1);
}
BENCHMARK(MergeNothing)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// Squares with a texture channel that has a seam around each.
static void MergeTexturedSquares(benchmark::State& state)
{
    C3DObject* object = MakeTriangles(static_cast<int>(state.range(0)), [](int, int) { return 0.0f; });
    const int faces = object->GetFaceNbr();
    auto* channel = new CUVWChannel;
    channel->GetPointList()->SetSize(2 * faces);
    for (int i = 0; i < 2 * faces; i++)
        (*channel->GetUVWPointList())[i]->u = static_cast<float>(i % 977);
    channel->GetFaceList()->AppendFaces(faces, 3, [](int* to, unsigned int k) {
        const int first = static_cast<int>(k / 2 * 4);
        to[0] = first, to[1] = k % 2 ? first + 2 : first + 1, to[2] = k % 2 ? first + 3 : first + 2;
    });
    object->AddChannel(channel);
    Run(state, object, faces / 2);
}
BENCHMARK(MergeTexturedSquares)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
