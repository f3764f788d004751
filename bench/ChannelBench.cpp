#include <benchmark/benchmark.h>

#include <vector>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"

namespace {

/// A grid of side * side quads, with a texture coordinate of its own at every corner.
class CGrid {
public:
    explicit CGrid(int side) : points(C3DPointList::Create()), faces(C3DFaceList::Create(nullptr)), channels(CDependentChannels::Create())
    {
        const int row = side + 1, count = side * side;
        points->SetSize(row * row);
        faces->AppendFaces(count, 4, [=](int* corners, unsigned int face) {
            const int first = static_cast<int>(face) / side * row + static_cast<int>(face) % side;
            corners[0] = first, corners[1] = first + 1, corners[2] = first + row + 1, corners[3] = first + row;
        });
        channel = new CUVWChannel;
        channels->AddChannel(channel);
        channel->GetPointList()->SetSize(4 * count);
        channel->GetFaceList()->AppendFaces(count, 4, [](int* corners, unsigned int face) {
            for (int k = 0; k < 4; k++)
                corners[k] = 4 * static_cast<int>(face) + k;
        });
        CUVWPoint* uvw = channel->GetUVWPointList()->GetFirst();
        for (int face = 0; face < count; face++)
            for (int k = 0; k < 4; k++, uvw++)
                uvw->u = static_cast<float>(face % side + (k == 1 || k == 2)), uvw->v = static_cast<float>(face / side + (k > 1));
    }
    ~CGrid()
    {
        DeleteMe(channels);
        DeleteMe(faces);
        DeleteMe(points);
    }
    CGeomInfo Info() const
    {
        CGeomInfo info(faces, points);
        info.SetChannels(channels, nullptr, 0);
        return info;
    }

    C3DPointList* points;
    C3DFaceList* faces;
    CDependentChannels* channels;
    CUVWChannel* channel;
};

}

// Watch: ns per corner stays flat from 40,000 to 4,000,000 corners.
static void ChannelGraph(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    const CGrid grid(side);
    const CGeomInfo info = grid.Info();
    int count = 0;
    for (auto _ : state) {
        grid.channel->InitGraph(&info);
        grid.channel->GetChannelPointsConnectedToPoint(side + 2, count);
        grid.channel->DeleteGraph();
    }
    if (count != 4)
        state.SkipWithError("an inner point of a quad grid has 4 corners");
    state.SetItemsProcessed(state.iterations() * 4 * side * side);
}
BENCHMARK(ChannelGraph)->Arg(100)->Arg(316)->Arg(1000)->Unit(benchmark::kMillisecond);

// Four corners each become one. Watch: flat as above, for the exact compare (0) and with a tolerance.
static void ChannelWeld(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        {
            CGrid grid(side);
            const CGeomInfo info = grid.Info();
            state.ResumeTiming();
            grid.channel->Weld(&info, state.range(1) / 1000.0);
            state.PauseTiming();
            if (grid.channel->GetPointList()->GetSize() != grid.points->GetSize())
                state.SkipWithError("one coordinate is left at each point");
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * 4 * side * side);
}
BENCHMARK(ChannelWeld)->Args({100, 0})->Args({1000, 0})->Args({1000, 1})->Unit(benchmark::kMillisecond);

// Every other row of faces goes, with its points and coordinates. Watch: flat as above.
static void FullClean(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        {
            CGrid grid(side);
            const CGeomInfo info = grid.Info();
            for (int row = 0; row < side; row += 2)
                grid.faces->SetFacesFlags(row * side, (row + 1) * side, FACE_INVALID, true);
            state.ResumeTiming();
            grid.faces->Clean(&info);
            state.PauseTiming();
            if (grid.channel->GetPointList()->GetSize() != 4 * grid.faces->GetSize())
                state.SkipWithError("the channel follows");
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * 4 * side * side);
}
BENCHMARK(FullClean)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
