#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "geometry/3DFaceList.h"

// Lists of triangles from 10,000 to 4 million. Watch: ns a face stays flat; AppendFaces near 10 and below, SetTriangle
// within twice that; reordering a shuffled list within a few times the flip.

namespace {

C3DFaceList* Triangles(int count)
{
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    faces->AppendFaces(count, 3, [](int* to, int k) { to[0] = k, to[1] = k + 1, to[2] = k + 2; });
    return faces;
}

// A list that a face was moved in: same faces, the general layout.
C3DFaceList* Uneven(int count)
{
    C3DFaceList* faces = Triangles(count);
    C3DFace face;
    faces->GetFace(0, face);
    face.SetQuadrangle(0, 1, 2, 3);
    return faces;
}

void Done(benchmark::State& state, C3DFaceList* faces)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    DeleteMe(faces);
}

void FillByAppend(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    std::vector<int> indexes(3 * static_cast<std::size_t>(count));
    std::iota(indexes.begin(), indexes.end(), 0);
    for (auto _ : state) {
        C3DFaceList* faces = C3DFaceList::Create(nullptr);
        faces->AppendFaces(count, 3, indexes.data());
        benchmark::DoNotOptimize(faces->GetMainData(count - 1));
        DeleteMe(faces);
    }
    Done(state, nullptr);
}

void FillBySetTriangle(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        C3DFaceList* faces = C3DFaceList::Create(nullptr);
        faces->SetSize(count, 3, CFaceList::SIZE_EXACT, -1);
        C3DFace face;
        for (int i = 0; i < count; i++) {
            faces->GetFace(i, face);
            face.SetTriangle(i, i + 1, i + 2);
        }
        DeleteMe(faces);
    }
    Done(state, nullptr);
}

template <C3DFaceList* MAKE(int)> void Reorder(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    C3DFaceList* faces = MAKE(count);
    std::vector<unsigned int> order(count);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    for (auto _ : state)
        if (!faces->ReorderFaces(order.data(), count, false))
            state.SkipWithError("refused");
    Done(state, faces);
}

void Checksum(benchmark::State& state)
{
    C3DFaceList* faces = Triangles(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(faces->GetChecksum(4));
    Done(state, faces);
}

void Flip(benchmark::State& state)
{
    C3DFaceList* faces = Triangles(static_cast<int>(state.range(0)));
    for (auto _ : state)
        faces->FlipNormals();
    Done(state, faces);
}

void MapIndexes(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    C3DFaceList* faces = Triangles(count);
    std::vector<unsigned int> map(count + 2);
    for (int i = 0; i < count + 2; i++)
        map[i] = i ^ 1;
    map[count + 1] = count + 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(faces->UpdateIndex(map.data(), count + 1, true));
    Done(state, faces);
}

void Sort(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    C3DFaceList* faces = Triangles(count);
    for (int i = 0; i < count; i++)
        faces->SetFaceMaterial(i, i * 7919u % 20);
    for (auto _ : state) {
        bool changed;
        delete[] faces->Sort(FACE_SORT_MATERIAL, changed);
    }
    Done(state, faces);
}

}

#define FACE_COUNTS RangeMultiplier(20)->Range(10000, 4000000)->Unit(benchmark::kMillisecond)
BENCHMARK(FillByAppend)->FACE_COUNTS;
BENCHMARK(FillBySetTriangle)->FACE_COUNTS;
BENCHMARK(Reorder<Triangles>)->FACE_COUNTS;
BENCHMARK(Reorder<Uneven>)->FACE_COUNTS;
BENCHMARK(Checksum)->FACE_COUNTS;
BENCHMARK(Flip)->FACE_COUNTS;
BENCHMARK(MapIndexes)->FACE_COUNTS;
BENCHMARK(Sort)->FACE_COUNTS;
