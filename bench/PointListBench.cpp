#include <benchmark/benchmark.h>

#include <random>

#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/4x4Matrix.h"

namespace {

// A cloud of points in the unit cube, whose corners are points of it.
template <class LIST> LIST* Cloud(int count)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate(0, 1);
    LIST* list = LIST::Create();
    list->SetSize(count);
    auto* point = list->GetFirst();
    for (int i = 0; i < count; i++, point++)
        point->x = coordinate(random), point->y = coordinate(random), point->z = coordinate(random);
    list->ElementAt(0)->x = list->ElementAt(0)->y = list->ElementAt(0)->z = 0;
    list->ElementAt(count - 1)->x = list->ElementAt(count - 1)->y = list->ElementAt(count - 1)->z = 1;
    return list;
}

C4x4TMatrix<float> QuarterTurn()
{
    C4x4TMatrix<float> turn;
    turn.m[0][0] = turn.m[1][1] = 0;
    turn.m[0][1] = -1;
    turn.m[1][0] = 1;
    return turn;
}

}

// Watch: 500,000 points in half a millisecond.
static void BoundingBox(benchmark::State& state)
{
    C3DPointList* list = Cloud<C3DPointList>(static_cast<int>(state.range(0)));
    C3DTPoint<float> min, max;
    for (auto _ : state)
        list->GetBoundingBox(min, max);
    if (!(min == C3DTPoint<float>(0, 0, 0) && max == C3DTPoint<float>(1, 1, 1)))
        state.SkipWithError("the box is the unit cube");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    DeleteMe(list);
}
BENCHMARK(BoundingBox)->Arg(10'000)->Arg(500'000)->Arg(4'000'000)->Unit(benchmark::kMicrosecond);

// Selected points, transformed: what a scene's box asks of each object.
static void BoundingBoxOfTransformedLivePoints(benchmark::State& state)
{
    C3DPointList* list = Cloud<C3DPointList>(static_cast<int>(state.range(0)));
    const C4x4TMatrix<float> turn = QuarterTurn();
    C3DTPoint<float> min, max;
    for (auto _ : state)
        list->GetBoundingBox(min, max, POINT_INVALID, false, &turn);
    if (!(min == C3DTPoint<float>(-1, 0, 0) && max == C3DTPoint<float>(0, 1, 1)))
        state.SkipWithError("the box is the turned unit cube");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    DeleteMe(list);
}
BENCHMARK(BoundingBoxOfTransformedLivePoints)->Arg(500'000)->Unit(benchmark::kMicrosecond);

// Watch: 1.5 ns a point.
template <class LIST> static void MatrixTransform(benchmark::State& state)
{
    LIST* list = Cloud<LIST>(static_cast<int>(state.range(0)));
    const C4x4TMatrix<float> turn = QuarterTurn();
    bool done = true;
    for (auto _ : state)
        done = done && list->MatrixTransform(turn);
    if (!done)
        state.SkipWithError("a quarter turn is no identity");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    DeleteMe(list);
}
BENCHMARK(MatrixTransform<C3DPointList>)->Arg(10'000)->Arg(500'000)->Arg(4'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(MatrixTransform<C3DVectorList>)->Arg(500'000)->Unit(benchmark::kMicrosecond);

static void SwapCoordinates(benchmark::State& state)
{
    C3DPointList* list = Cloud<C3DPointList>(static_cast<int>(state.range(0)));
    for (auto _ : state)
        if (!list->SwapCoordinates(0x14))
            state.SkipWithError("a code with a meaning");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    DeleteMe(list);
}
BENCHMARK(SwapCoordinates)->Arg(500'000)->Unit(benchmark::kMicrosecond);

// Watch: no dependence on the size, since the sum forgets all but the last live points.
static void Checksum(benchmark::State& state)
{
    C3DPointList* list = Cloud<C3DPointList>(static_cast<int>(state.range(0)));
    const auto mask = static_cast<unsigned int>(state.range(1));
    const unsigned int first = list->GetChecksum(mask);
    for (auto _ : state)
        if (list->GetChecksum(mask) != first)
            state.SkipWithError("the sum of the same list differs");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    DeleteMe(list);
}
BENCHMARK(Checksum)->Args({10'000, 1})->Args({500'000, 1})->Args({500'000, 2})->Args({4'000'000, 3})->Unit(benchmark::kMicrosecond);

// Points and a chunk beside them, copied into a list that has the room.
static void Copy(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    C3DPointList *list = Cloud<C3DPointList>(count), *copy = C3DPointList::Create();
    list->SavePointsIndex();
    for (auto _ : state)
        *copy = *list;
    if (copy->GetOriginalIndex(static_cast<unsigned int>(count - 1)) != static_cast<unsigned int>(count - 1))
        state.SkipWithError("chunk data is copied");
    state.SetBytesProcessed(state.iterations() * count * 28);
    DeleteMe(list);
    DeleteMe(copy);
}
BENCHMARK(Copy)->Arg(10'000)->Arg(500'000)->Arg(4'000'000)->Unit(benchmark::kMicrosecond);
