#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/Edge.h"
#include "geometry/FaceGraphHelper.h"
#include "geometry/FaceTagger.h"
#include "geometry/GeomInfo.h"
#include "tools/AssociationMap.h"

// Both graphs of closed meshes from 10,000 to 4 million faces, allocation and release included; items are faces. The
// argument after the size is 1 for faces in random order. Watch, at a million triangles: points 20 ns a face in order
// and 50 shuffled, edges 70 and 300; and that a face costs about the same at every size, as far as the caches reach.

namespace {

// Faces of a torus of about `faceCount` triangles or quads.
struct Torus {
    C3DPointList* points = C3DPointList::Create(nullptr);
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    CGeomInfo info{faces, points};

    Torus(int faceCount, int corners, bool shuffled)
    {
        const int perQuad = corners == 3 ? 2 : 1;
        const int rows = static_cast<int>(std::sqrt(faceCount / perQuad)), columns = rows;
        points->SetSize(rows * columns);
        std::vector<int> indexes;
        for (int y = 0; y < rows; y++)
            for (int x = 0; x < columns; x++) {
                const int right = (x + 1) % columns, up = (y + 1) % rows * columns;
                const int a = y * columns + x, b = y * columns + right, c = up + right, d = up + x;
                if (corners == 4)
                    indexes.insert(indexes.end(), {a, b, c, d});
                else
                    indexes.insert(indexes.end(), {a, b, c, a, c, d});
            }
        const int count = static_cast<int>(indexes.size()) / corners;
        faces->AppendFaces(count, corners, indexes.data());
        if (shuffled) {
            std::vector<unsigned int> order(static_cast<std::size_t>(count));
            for (unsigned int i = 0; i < order.size(); i++)
                order[i] = i;
            std::shuffle(order.begin(), order.end(), std::mt19937(1));
            faces->ReorderFaces(order.data(), static_cast<unsigned int>(count), false);
        }
    }
    ~Torus()
    {
        DeleteMe(faces);
        DeleteMe(points);
    }
};

Torus& GetTorus(int faceCount, int corners, bool shuffled)
{
    struct Kept {
        int faceCount, corners;
        bool shuffled;
        std::unique_ptr<Torus> torus;
    };
    static Kept kept;
    if (!kept.torus || kept.faceCount != faceCount || kept.corners != corners || kept.shuffled != shuffled)
        kept = {faceCount, corners, shuffled, std::make_unique<Torus>(faceCount, corners, shuffled)};
    return *kept.torus;
}

template <int CORNERS> void PointGraph(benchmark::State& state)
{
    Torus& torus = GetTorus(static_cast<int>(state.range(0)), CORNERS, state.range(1));
    int count = 0;
    for (auto _ : state) {
        torus.faces->InitPointToFaceGraph(&torus.info);
        torus.faces->GetFacesConnectedToPoint(1, count);
        torus.faces->DeletePointToFaceGraph();
    }
    if (count != (CORNERS == 3 ? 6 : 4))
        state.SkipWithError("wrong number of faces at a point");
    state.SetItemsProcessed(state.iterations() * torus.faces->GetSize());
}

template <int CORNERS> void EdgeGraph(benchmark::State& state)
{
    Torus& torus = GetTorus(static_cast<int>(state.range(0)), CORNERS, state.range(1));
    int count = 0;
    for (auto _ : state) {
        torus.faces->InitEdgeToFaceGraph(&torus.info);
        torus.faces->GetFacesConnectedToEdge(C3DEdge(0, 1), count);
        torus.faces->DeleteEdgeToFaceGraph();
    }
    if (count != 2)
        state.SkipWithError("an edge of a torus has 2 faces");
    state.SetItemsProcessed(state.iterations() * torus.faces->GetSize());
}

// Queries of every face or point with one helper; items are queries.
void FaceNeighbours(benchmark::State& state)
{
    Torus& torus = GetTorus(100000, 3, false);
    torus.faces->InitPointToFaceGraph(&torus.info);
    CFaceGraphHelper helper;
    const auto type = static_cast<_ConnectionInfoType>(state.range(0));
    int count = 0;
    for (auto _ : state)
        for (int i = 0; i < torus.faces->GetSize(); i++)
            torus.faces->GetFacesNeighbourg(helper, i, type, count);
    torus.faces->DeletePointToFaceGraph();
    if (count != (type == CONNECT_BOTH ? 4 : 13))
        state.SkipWithError("wrong number of neighbours");
    state.SetItemsProcessed(state.iterations() * torus.faces->GetSize());
}

void PointNeighbours(benchmark::State& state)
{
    Torus& torus = GetTorus(100000, 3, false);
    torus.faces->InitPointToFaceGraph(&torus.info);
    CFaceGraphHelper helper;
    int count = 0;
    for (auto _ : state)
        for (int i = 0; i < torus.points->GetSize(); i++)
            torus.faces->GetPointsNeighbourg(helper, i, count, CONNECT_BOTH);
    torus.faces->DeletePointToFaceGraph();
    if (count != 6)
        state.SkipWithError("a point of the torus has 6 neighbours");
    state.SetItemsProcessed(state.iterations() * torus.points->GetSize());
}

void PointsOfEdge(benchmark::State& state)
{
    Torus& torus = GetTorus(100000, 3, false);
    torus.faces->InitPointToFaceGraph(&torus.info);
    CFaceGraphHelper helper;
    int count = 0;
    for (auto _ : state)
        for (int i = 0; i + 2 < torus.points->GetSize(); i++)
            torus.faces->GetPointsConnectedToEdge(helper, i, i + 1, count, true);
    torus.faces->DeletePointToFaceGraph();
    if (count != 2)
        state.SkipWithError("two triangles at an edge have two more points");
    state.SetItemsProcessed(state.iterations() * (torus.points->GetSize() - 2));
}

// The flood over one connected mesh, graph included; items are faces.
void Flood(benchmark::State& state)
{
    struct CCount : CFaceTagger {
        void ProcessGroup(unsigned int*, unsigned int count) override { faces = count; }
        unsigned int faces = 0;
    };
    Torus& torus = GetTorus(static_cast<int>(state.range(0)), 3, false);
    const bool byEdge = state.range(1);
    CCount tagger;
    for (auto _ : state) {
        torus.faces->TagFaces(&torus.info, tagger, byEdge);
        if (byEdge)
            torus.faces->DeleteEdgeToFaceGraph();
        else
            torus.faces->DeletePointToFaceGraph();
    }
    if (tagger.faces != static_cast<unsigned int>(torus.faces->GetSize()))
        state.SkipWithError("a torus hangs together");
    state.SetItemsProcessed(state.iterations() * torus.faces->GetSize());
}

void Sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgsProduct({{10000, 100000, 1000000, 4000000}, {0, 1}})->Unit(benchmark::kMillisecond);
}

BENCHMARK(PointGraph<3>)->Apply(Sizes);
BENCHMARK(PointGraph<4>)->Apply(Sizes);
BENCHMARK(EdgeGraph<3>)->Apply(Sizes);
BENCHMARK(EdgeGraph<4>)->Apply(Sizes);
BENCHMARK(FaceNeighbours)->Arg(CONNECT_ANY)->Arg(CONNECT_BOTH)->Unit(benchmark::kMillisecond);
BENCHMARK(PointNeighbours)->Unit(benchmark::kMillisecond);
BENCHMARK(PointsOfEdge)->Unit(benchmark::kMillisecond);
BENCHMARK(Flood)->ArgsProduct({{1000000}, {0, 1}})->Unit(benchmark::kMillisecond);

}
