// What stands between a parser and the scene that a caller gets, and between a scene and a parser.

#include <benchmark/benchmark.h>

#include "channels/DependentChannels.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "io/SceneOptions.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"

namespace {

template <class CHANNEL> CHANNEL& AddChannel(C3DObject& object)
{
    auto* const channel = new CHANNEL;
    channel->GetFaceList()->AppendCopies(*object.GetFaceList(), nullptr, object.GetFaceNbr(), [](int corner) { return corner; });
    channel->GetPointList()->SetSize(object.GetPointNbr());
    object.AddChannel(channel);
    return *channel;
}

// A grid of side * side quads with texture coordinates and normals.
C3DScene* MakeScene(int side)
{
    const int row = side + 1;
    C3DPointList* const points = C3DPointList::Create();
    points->SetSize(row * row);
    for (int i = 0; i < row * row; i++) {
        points->ElementAt(i)->x = static_cast<float>(i % row);
        points->ElementAt(i)->y = static_cast<float>(i / row);
    }
    C3DFaceList* const faces = C3DFaceList::Create(nullptr);
    faces->AppendFaces(side * side, 4, [=](int* to, unsigned int k) {
        const int corner = static_cast<int>(k) % side + static_cast<int>(k) / side * row;
        to[0] = corner, to[1] = corner + 1, to[2] = corner + 1 + row, to[3] = corner + row;
    });
    auto* const object = new C3DObject(points, faces, nullptr);
    AddChannel<CUVWChannel>(*object);
    C3DVectorList& normals = *AddChannel<CSpecNormalChannel>(*object).GetNormalVectorList();
    for (int i = 0; i < normals.GetSize(); i++)
        normals.ElementAt(i)->z = 1;
    C3DScene* const scene = C3DScene::Create();
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(object, true);
    scene->AddNode(nullptr, node);
    return scene;
}

}

// The checkout without flags. Watch: a few ns a face, which is little beside any reader.
static void CheckoutWithoutFlags(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    C3DScene* const scene = MakeScene(side);
    CSceneImportOptions options;
    for (auto _ : state)
        scene->CheckoutImport(options);
    if (!options.GetLog().empty())
        state.SkipWithError("nothing is wrong with the grid");
    state.SetItemsProcessed(state.iterations() * side * side);
    DeleteMe(scene);
}
BENCHMARK(CheckoutWithoutFlags)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// The export preparation without flags: a copy of the scene, cleaned. Watch: it stays near the cost of the copy.
static void PreparationWithoutFlags(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    C3DScene* const scene = MakeScene(side);
    for (auto _ : state) {
        CSceneExportOptions options;
        if (!scene->InitExport(options))
            state.SkipWithError("the grid is something to save");
        C3DScene::ReleaseExport(options);
    }
    state.SetItemsProcessed(state.iterations() * side * side);
    DeleteMe(scene);
}
BENCHMARK(PreparationWithoutFlags)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

static void CopyOfTheScene(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    C3DScene* const scene = MakeScene(side);
    for (auto _ : state)
        DeleteMe(scene->Copy(nullptr, 0, nullptr));
    state.SetItemsProcessed(state.iterations() * side * side);
    DeleteMe(scene);
}
BENCHMARK(CopyOfTheScene)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
