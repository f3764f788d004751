// Operations on whole objects, from ten thousand to four million faces. Each row works on a fresh copy; time is per face (or per point
// where told), and should stay about the same from row to row.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "3dzel.h"

namespace {

struct Release {
    template <class T> void operator()(T* object) const { DeleteMe(object); }
};
template <class T> using Owned = std::unique_ptr<T, Release>;
using Parts = CXArray<C3DGeomObject*, C3DGeomObject*>;

// Balls of `rings` by `2 rings` quads or twice as many triangles, one beside the other, points shared inside a ball.
template <class OBJECT> Owned<OBJECT> MakeBalls(int count, int rings, int corners)
{
    const int around = 2 * rings, pointsOfBall = (rings + 1) * around, quadsOfBall = rings * around;
    auto* points = C3DPointList::Create(nullptr);
    points->SetSize(count * pointsOfBall);
    for (int i = 0; i < count * pointsOfBall; i++) {
        const int ball = i / pointsOfBall, ring = i % pointsOfBall / around, step = i % around;
        const double down = 3.14159265 * (ring + 0.5) / (rings + 1), turn = 6.2831853 * step / around;
        C3DTPoint<float>& point = *points->ElementAt(i);
        point.x = static_cast<float>(std::sin(down) * std::cos(turn) + 3 * (ball % 100));
        point.y = static_cast<float>(std::sin(down) * std::sin(turn) + 3 * (ball / 100));
        point.z = static_cast<float>(std::cos(down));
    }
    const auto corner = [=](int quad, int right, int below) {
        const int ball = quad / quadsOfBall, ring = quad % quadsOfBall / around, step = quad % around;
        return ball * pointsOfBall + (ring + below) * around + (step + right) % around;
    };
    auto* faces = C3DFaceList::Create(nullptr);
    if (corners == 4)
        faces->AppendFaces(count * quadsOfBall, 4, [=](int* to, unsigned int k) {
            const int quad = static_cast<int>(k);
            to[0] = corner(quad, 0, 0), to[1] = corner(quad, 0, 1), to[2] = corner(quad, 1, 1), to[3] = corner(quad, 1, 0);
        });
    else
        faces->AppendFaces(2 * count * quadsOfBall, 3, [=](int* to, unsigned int k) {
            const int quad = static_cast<int>(k / 2);
            to[0] = corner(quad, 0, 0), to[1] = k % 2 ? corner(quad, 1, 1) : corner(quad, 0, 1);
            to[2] = k % 2 ? corner(quad, 1, 0) : corner(quad, 1, 1);
        });
    return Owned<OBJECT>(new OBJECT(points, faces, nullptr));
}

void CopyCorners(const C3DFaceList& faces, unsigned int face, int* to)
{
    int count;
    const int* from = faces.GetIndexes(static_cast<int>(face), count);
    std::copy_n(from, count, to);
}

// One ball of about that many triangles.
Owned<C3DObject> MakeBall(int triangles) { return MakeBalls<C3DObject>(1, static_cast<int>(std::sqrt(triangles / 4.0)), 3); }

// Every corner gets a point of its own, in the order of the faces or in a random one.
Owned<C3DObject> MakeSoup(int triangles, bool shuffled)
{
    Owned<C3DObject> ball = MakeBall(triangles);
    const int corners = 3 * ball->GetFaceNbr();
    std::vector<int> order(corners);
    std::iota(order.begin(), order.end(), 0);
    if (shuffled)
        std::shuffle(order.begin(), order.end(), std::mt19937(1));
    auto* points = C3DPointList::Create(nullptr);
    points->SetSize(corners);
    int face[3];
    for (int k = 0; k < corners; k++) {
        CopyCorners(*ball->GetFaceList(), static_cast<unsigned int>(k / 3), face);
        const C3DTPoint<float>& from = *ball->GetPointList()->ElementAt(face[k % 3]);
        C3DTPoint<float>& to = *points->ElementAt(order[k]);
        to.x = from.x, to.y = from.y, to.z = from.z;
    }
    auto* faces = C3DFaceList::Create(nullptr);
    faces->AppendFaces(corners / 3, 3, order.data());
    return Owned<C3DObject>(new C3DObject(points, faces, nullptr));
}

enum PerElement { PER_FACE, PER_POINT };

// Times `work` on copies of the model. `work` tells whether it did what it should.
template <class OBJECT, class WORK> void Run(benchmark::State& state, const OBJECT& model, PerElement element, WORK work)
{
    for (auto _ : state) {
        state.PauseTiming();
        Owned<OBJECT> object(new OBJECT(model));
        state.ResumeTiming();
        const bool done = work(*object);
        state.PauseTiming();
        object.reset();
        state.ResumeTiming();
        if (!done)
            return state.SkipWithError("the operation did nothing");
    }
    const int elements = element == PER_FACE ? model.GetFaceNbr() : model.GetPointNbr();
    state.counters["each"] = benchmark::Counter(elements, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

constexpr int K = 1000, M = 1000 * K;

}

#define ZEL_SIZES ->Arg(10 * K)->Arg(100 * K)->Arg(M)->Arg(4 * M)->Unit(benchmark::kMillisecond)

static void WeldSoup(benchmark::State& state)
{
    Run(state, *MakeSoup(static_cast<int>(state.range(0)), false), PER_POINT,
        [](C3DObject& object) { return object.Weld3DPoints(1e-5, true, CHANNEL_ALL, 0); });
}
BENCHMARK(WeldSoup) ZEL_SIZES;

static void WeldShuffledSoup(benchmark::State& state)
{
    Run(state, *MakeSoup(static_cast<int>(state.range(0)), true), PER_POINT,
        [](C3DObject& object) { return object.Weld3DPoints(1e-5, true, CHANNEL_ALL, 0); });
}
BENCHMARK(WeldShuffledSoup) ZEL_SIZES;

// A thousand balls, every third face turned.
static void UnifyTurnedFaces(benchmark::State& state)
{
    const int rings = std::max(2, static_cast<int>(std::sqrt(state.range(0) / 4000.0)));
    Owned<C3DObject> balls = MakeBalls<C3DObject>(1000, rings, 3);
    for (int i = 0; i < balls->GetFaceNbr(); i += 3)
        balls->GetFaceList()->Flip(nullptr, i);
    Run(state, *balls, PER_FACE, [](C3DObject& object) { return object.UnifyNormals(); });
}
BENCHMARK(UnifyTurnedFaces) ZEL_SIZES;

static void ExplodeIntoThousand(benchmark::State& state)
{
    const int rings = std::max(2, static_cast<int>(std::sqrt(state.range(0) / 4000.0)));
    Run(state, *MakeBalls<C3DObject>(1000, rings, 3), PER_FACE, [](C3DObject& object) {
        Parts parts;
        const int count = object.ExplodeIntoIsolatedParts(parts);
        for (C3DGeomObject* part : parts)
            DeleteMe(part);
        return count == 1000;
    });
}
BENCHMARK(ExplodeIntoThousand) ZEL_SIZES;

static void ConcatenateThousand(benchmark::State& state)
{
    const int rings = std::max(2, static_cast<int>(std::sqrt(state.range(0) / 4000.0)));
    Owned<C3DObject> ball = MakeBalls<C3DObject>(1, rings, 3);
    std::vector<Owned<C3DObject>> owners;
    Parts parts;
    for (int i = 0; i < 1000; i++) {
        owners.emplace_back(new C3DObject(*ball));
        parts.Add(owners.back().get());
    }
    for (auto _ : state) {
        Owned<C3DObject> all(new C3DObject(C3DPointList::Create(nullptr), C3DFaceList::Create(nullptr), nullptr));
        all->Concatenate(nullptr, parts, nullptr);
        state.PauseTiming();
        all.reset();
        state.ResumeTiming();
    }
    state.counters["each"] =
        benchmark::Counter(1000.0 * ball->GetFaceNbr(), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(ConcatenateThousand) ZEL_SIZES;

static void CleanThird(benchmark::State& state)
{
    Owned<C3DObject> ball = MakeBall(static_cast<int>(state.range(0)));
    for (int i = 0; i < ball->GetFaceNbr(); i += 3)
        ball->GetFaceList()->SetFaceFlag(i, FACE_INVALID, true);
    Run(state, *ball, PER_FACE, [](C3DObject& object) {
        const int before = object.GetFaceNbr();
        object.Clean();
        return object.GetFaceNbr() < before;
    });
}
BENCHMARK(CleanThird) ZEL_SIZES;

// By projection of the material's map: planar, cylindrical, spherical.
static void GenerateCoordinates(benchmark::State& state)
{
    constexpr unsigned int MATERIAL = 5;
    Owned<C3DScene> scene(C3DScene::Create());
    scene->CreateNewMaterial(MATERIAL)->AddMaterialMap(L"a.png", NO_CHANNEL_ID, MAP_DIFFUSE, static_cast<MapProjection>(state.range(1)));
    Owned<C3DObject> ball = MakeBall(static_cast<int>(state.range(0)));
    for (int i = 0; i < ball->GetFaceNbr(); i++)
        ball->GetFaceList()->SetFaceMaterial(i, MATERIAL);
    Run(state, *ball, PER_POINT, [&](C3DObject& object) { return object.GenerateUVW(scene.get()); });
}
BENCHMARK(GenerateCoordinates)
    ->ArgsProduct({{10 * K, 100 * K, M, 4 * M}, {PROJECTION_PLANAR, PROJECTION_CYLINDRICAL, PROJECTION_SPHERICAL}})
    ->Unit(benchmark::kMillisecond);

// Coordinates of a grid of charts, 100 faces a chart: a seam round each.
static void DisconnectSeams(benchmark::State& state)
{
    Owned<C3DObject> ball = MakeBall(static_cast<int>(state.range(0)));
    auto* channel = new CUVWChannel;
    const C3DFaceList& faces = *ball->GetFaceList();
    const int points = ball->GetPointNbr(), charts = faces.GetSize() / 100 + 1;
    channel->GetPointList()->SetSize(points + charts);
    for (int i = 0; i < points + charts; i++)
        (*channel->GetUVWPointList())[i]->u = static_cast<float>(i);
    channel->GetFaceList()->AppendFaces(faces.GetSize(), 3, [&](int* to, unsigned int k) {
        CopyCorners(faces, k, to);
        to[0] = k % 100 ? to[0] : points + static_cast<int>(k / 100);
    });
    ball->AddChannel(channel);
    Run(state, *ball, PER_FACE,
        [](C3DObject& object) { return object.DisconnectBorderFaces(CHANNEL_ALL, 0x90, 0x5000, nullptr, false, nullptr); });
}
BENCHMARK(DisconnectSeams) ZEL_SIZES;

// A scene with one object, cut until no part has more than 10,000 points.
static void Slice(benchmark::State& state)
{
    Owned<C3DObject> ball = MakeBall(static_cast<int>(state.range(0)));
    CCustomData parameters;
    parameters.SetUnsigned(SLICE_POINTS, 10 * K);
    for (auto _ : state) {
        state.PauseTiming();
        Owned<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetObject(new C3DObject(*ball), true);
        scene->AddNode(nullptr, node);
        state.ResumeTiming();
        SliceScene(parameters, scene.get());
        state.PauseTiming();
        scene.reset();
        state.ResumeTiming();
    }
    state.counters["each"] =
        benchmark::Counter(ball->GetFaceNbr(), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Slice)->Arg(100 * K)->Arg(M)->Arg(4 * M)->Unit(benchmark::kMillisecond);

static void MirrorMap(benchmark::State& state)
{
    Run(state, *MakeBall(static_cast<int>(state.range(0))), PER_POINT, [](C3DObject& object) {
        const Owned<C3DPointSymetryMap> map(object.GetPointList()->InitSymetryMap(AXIS_X, 1e-4));
        return map != nullptr;
    });
}
BENCHMARK(MirrorMap) ZEL_SIZES;

// Five levels over a ball of triangles (3) or quads (4), texture coordinates with them. Time is per face made.
static void SubdivideFiveLevels(benchmark::State& state)
{
    const int corners = static_cast<int>(state.range(1));
    const int rings = static_cast<int>(std::sqrt(state.range(0) / 1024.0 / (corners == 3 ? 4 : 2)));
    Owned<C3DPatch> patch = MakeBalls<C3DPatch>(1, std::max(2, rings), corners);
    auto* channel = new CUVWChannel;
    const C3DFaceList& faces = *patch->GetFaceList();
    channel->GetPointList()->SetSize(patch->GetPointNbr());
    for (int i = 0; i < patch->GetPointNbr(); i++)
        (*channel->GetUVWPointList())[i]->u = static_cast<float>(i);
    channel->GetFaceList()->AppendFaces(faces.GetSize(), static_cast<unsigned int>(corners),
                                        [&](int* to, unsigned int k) { CopyCorners(faces, k, to); });
    patch->AddChannel(channel);
    for (auto _ : state) {
        patch->SetLevel(5);
        state.PauseTiming();
        patch->SetLevel(-1);
        state.ResumeTiming();
    }
    state.counters["each"] =
        benchmark::Counter(1024.0 * faces.GetSize(), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(SubdivideFiveLevels)->ArgsProduct({{100 * K, M, 4 * M}, {3, 4}})->Unit(benchmark::kMillisecond);
