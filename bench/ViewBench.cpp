#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/VCChannel.h"
#include "channels/VCFaceList.h"
#include "channels/VCPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "images/LayerBitmap.h"
#include "render/SceneBitmap.h"
#include "render/View.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Primitives.h"

// One object of a million triangles in several dresses, and scenes of many nodes, drawn off screen.

namespace {

struct Release {
    void operator()(const CInstanciatedObject* object) const { DeleteMe(object); }
};
using Scene = std::unique_ptr<C3DScene, Release>;

enum Dress { PLAIN, VERTEX_COLORS, MATERIALS_IN_BLOCKS, MATERIALS_SCATTERED, QUADS };
constexpr int SIDE = 707, MATERIALS = 64;    // 999,698 triangles

C3DPointList* WavyPoints()
{
    C3DPointList* const points = C3DPointList::Create(nullptr);
    points->SetSize((SIDE + 1) * (SIDE + 1));
    for (int i = 0; i < points->GetSize(); i++) {
        C3DTPoint<float>& point = *points->ElementAt(i);
        point.x = static_cast<float>(i % (SIDE + 1)), point.y = static_cast<float>(i / (SIDE + 1));
        point.z = static_cast<float>(20 * std::sin(0.03 * point.x) * std::cos(0.05 * point.y));
    }
    return points;
}

C3DFaceList* GridFaces(bool quads)
{
    std::vector<int> corners;
    for (int i = 0; i < SIDE * SIDE; i++) {
        const int a = i / SIDE * (SIDE + 1) + i % SIDE, b = a + 1, c = b + SIDE + 1, d = c - 1;
        quads ? corners.insert(corners.end(), {a, b, c, d}) : corners.insert(corners.end(), {a, b, c, a, c, d});
    }
    const unsigned int size = quads ? 4 : 3;
    C3DFaceList* const faces = C3DFaceList::Create(nullptr);
    const std::vector<unsigned int> sizes(corners.size() / size, size);
    faces->AppendFaces(static_cast<int>(sizes.size()), sizes.data(), corners.data());
    return faces;
}

void AddVertexColors(C3DObject& object)
{
    auto* const colors = new CVCChannel(1);
    colors->GetFaceList()->AppendCopies(*object.GetFaceList(), nullptr, object.GetFaceNbr(), [](int corner) { return corner; });
    colors->GetPointList()->SetSize(object.GetPointNbr());
    for (int i = 0; i < object.GetPointNbr(); i++)
        (*colors->GetVCPointList())[i]->SetColor(
            CRGBColor(static_cast<unsigned char>(i), static_cast<unsigned char>(i >> 8), static_cast<unsigned char>(i >> 16), 255));
    object.AddChannel(colors);
    object.SetGlobalVCChannel(1, 1);
}

void AddMaterials(C3DScene& scene, C3DFaceList& faces, bool scattered)
{
    std::vector<unsigned int> ids;
    for (int i = 0; i < MATERIALS; i++) {
        C3DMaterial* const material = scene.CreateNewMaterial(0xFFFFFFFF);
        material->SetDiffuseColor(0, CRGBColor(static_cast<unsigned char>(i * 4), 128, static_cast<unsigned char>(255 - i * 4)));
        ids.push_back(material->GetMaterialID());
    }
    for (int i = 0; i < faces.GetSize(); i++)
        faces.SetFaceMaterial(i, ids[scattered ? i * 2654435761U >> 26 : static_cast<unsigned int>(i * 64LL / faces.GetSize())]);
}

Scene MakeMillion(Dress dress)
{
    Scene scene(C3DScene::Create());
    auto* const object = new C3DObject(WavyPoints(), GridFaces(dress == QUADS), nullptr);
    if (dress == VERTEX_COLORS)
        AddVertexColors(*object);
    if (dress == MATERIALS_IN_BLOCKS || dress == MATERIALS_SCATTERED)
        AddMaterials(*scene, *object->GetFaceList(), dress == MATERIALS_SCATTERED);
    auto* const node = new C3DSceneNode;
    node->SetObject(object, true);
    scene->AddNode(nullptr, node);
    return scene;
}

Scene MakeCubes(int side)
{
    Scene scene(C3DScene::Create());
    for (int i = 0; i < side * side; i++)
        scene->AddNode(nullptr, CreateCube({static_cast<float>(i % side) * 2, static_cast<float>(i / side) * 2, 0}, 1, 1, 1, false, 0, 0));
    return scene;
}

/// Off screen, seen from above, everything in it.
class CBenchView : public C3DView {
public:
    static constexpr int WIDTH = 1280, HEIGHT = 720;

    CBenchView(C3DScene* scene, unsigned int renderMode)
    {
        m_ready = CreateMemoryRendering(WIDTH, HEIGHT, 24);
        m_settings.viewFlags = (VIEWFLAG_DEFAULT & ~VIEWFLAG_RENDER_MODE) | renderMode;
        SetView(RVIEW_TOP, 0, 0);
        SetScene(scene, GLSET_FIT);
        UpdateView(0);
    }
    /// The scene stands in the middle of the picture.
    bool Shows()
    {
        Bitmap* const picture = m_ready ? CreateBitmapFromScene() : nullptr;
        const unsigned char* const p = picture ? picture->GetLine(HEIGHT / 2) + WIDTH / 2 * picture->GetBytesPerPixel() : nullptr;
        const bool shows = p && (p[0] != 128 || p[1] != 128 || p[2] != 128);
        Bitmap::DeleteBitmap(picture);
        return shows;
    }

private:
    bool m_ready = false;
};

void Flush(benchmark::State& state, Dress dress, unsigned int renderMode)
{
    const Scene scene = MakeMillion(dress);
    CBenchView view(scene.get(), renderMode);
    for (auto _ : state)
        view.UpdateView(GLSET_FLUSH_ALL);
    if (!view.Shows())
        state.SkipWithError("nothing in the picture");
    state.SetItemsProcessed(state.iterations() * 2 * SIDE * SIDE);
}

void Frame(benchmark::State& state, Dress dress, unsigned int renderMode)
{
    const Scene scene = MakeMillion(dress);
    CBenchView view(scene.get(), renderMode);
    bool shows = true;
    for (auto _ : state)
        shows &= view.Shows();
    if (!shows)
        state.SkipWithError("nothing in the picture");
    state.SetItemsProcessed(state.iterations() * 2 * SIDE * SIDE);
}

void AllDresses(benchmark::internal::Benchmark* benchmark) { benchmark->Unit(benchmark::kMillisecond)->UseRealTime(); }

constexpr unsigned int FLAT_WIRE = VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME;

}

// Watch: triangles a second hold over the dresses. Smooth with blocks costs what smooth costs, scattered no more than twice that; a quad costs its
// two triangles and the cut.
BENCHMARK_CAPTURE(Flush, smooth, PLAIN, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, flat, PLAIN, VIEWFLAG_FLAT)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, flat_wire, PLAIN, FLAT_WIRE)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, wire, PLAIN, VIEWFLAG_WIREFRAME)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, vertex_colors, VERTEX_COLORS, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, materials_in_blocks, MATERIALS_IN_BLOCKS, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, materials_scattered, MATERIALS_SCATTERED, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Flush, quads, QUADS, VIEWFLAG_SMOOTH)->Apply(AllDresses);

// Watch: a frame costs what GL takes for the triangles, whatever they wear. 1280x720, with the pixels read.
BENCHMARK_CAPTURE(Frame, smooth, PLAIN, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Frame, flat, PLAIN, VIEWFLAG_FLAT)->Apply(AllDresses);
BENCHMARK_CAPTURE(Frame, flat_wire, PLAIN, FLAT_WIRE)->Apply(AllDresses);
BENCHMARK_CAPTURE(Frame, vertex_colors, VERTEX_COLORS, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Frame, materials_in_blocks, MATERIALS_IN_BLOCKS, VIEWFLAG_SMOOTH)->Apply(AllDresses);
BENCHMARK_CAPTURE(Frame, materials_scattered, MATERIALS_SCATTERED, VIEWFLAG_SMOOTH)->Apply(AllDresses);

// Watch: the first flush works out the normals, and takes less than thrice what the next one takes.
static void FirstFlush(benchmark::State& state)
{
    const Scene scene = MakeMillion(PLAIN);
    CBenchView view(scene.get(), VIEWFLAG_SMOOTH);
    C3DBaseObject* const object = scene->GetChildNode(nullptr)->GetBaseObject();
    for (auto _ : state) {
        object->Invalidate(CHANGE_POINTS, true);
        view.UpdateView(GLSET_FLUSH_ALL);
    }
    state.SetItemsProcessed(state.iterations() * 2 * SIDE * SIDE);
}
BENCHMARK(FirstFlush)->Unit(benchmark::kMillisecond)->UseRealTime();

// Watch: a node costs the same among 1,000 and among 100,000, in a frame as in a flush.
static void FrameOfNodes(benchmark::State& state)
{
    const Scene scene = MakeCubes(static_cast<int>(state.range(0)));
    CBenchView view(scene.get(), VIEWFLAG_SMOOTH);
    for (auto _ : state)
        view.Shows();
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0));
}
BENCHMARK(FrameOfNodes)->Arg(32)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond)->UseRealTime();

static void FlushOfNodes(benchmark::State& state)
{
    const Scene scene = MakeCubes(static_cast<int>(state.range(0)));
    CBenchView view(scene.get(), VIEWFLAG_SMOOTH);
    for (auto _ : state)
        view.UpdateView(GLSET_FLUSH_ALL);
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0));
}
BENCHMARK(FlushOfNodes)->Arg(32)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond)->UseRealTime();

// Watch: with one changed object an update costs a walk over the nodes, far less than a frame; with none it costs nothing.
static void UpdateOfNodes(benchmark::State& state)
{
    const auto side = static_cast<int>(state.range(0));
    const Scene scene = MakeCubes(side);
    CBenchView view(scene.get(), VIEWFLAG_SMOOTH);
    C3DBaseObject* const object = scene->GetChildNode(nullptr)->GetBaseObject();
    for (auto _ : state) {
        if (state.range(1))
            object->Invalidate(OBJECT_UPDATE_DISPLAY, true);
        view.UpdateView(GLSET_UPDATE);
    }
    state.SetItemsProcessed(state.iterations() * side * side);
}
BENCHMARK(UpdateOfNodes)->Args({100, 1})->Args({316, 1})->Args({316, 0})->Unit(benchmark::kMicrosecond)->UseRealTime();

// Watch: thumbnails a second, from no context to a picture of 128x128.
static void Thumbnail(benchmark::State& state)
{
    const Scene scene(C3DScene::Create());
    scene->AddNode(nullptr, CreateSphere({0, 0, 0}, 1, 24, 48, false, 0, 0));
    GlViewSettings settings;
    settings.viewFlags = VIEWFLAG_DEFAULT;
    bool made = true;
    for (auto _ : state) {
        const std::unique_ptr<CLayerBitmap> picture(GetBitmapFromScene(scene.get(), settings, {128, 128}));
        made &= picture != nullptr;
    }
    if (!made)
        state.SkipWithError("no picture");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Thumbnail)->Unit(benchmark::kMillisecond)->UseRealTime();

// Watch: a click costs no more than a frame.
static void PickInAMillion(benchmark::State& state)
{
    const Scene scene = MakeMillion(PLAIN);
    CBenchView view(scene.get(), VIEWFLAG_SMOOTH);
    CXArray<C3DSceneNode*> nodes;
    unsigned int found = 1;
    for (auto _ : state)
        found &= view.SelectNodesFromRect(nodes, CBenchView::WIDTH / 2, CBenchView::HEIGHT / 2, 0, 0, GLSELECT_DEFAULT, 0);
    if (!found)
        state.SkipWithError("nothing found");
    state.SetItemsProcessed(state.iterations() * 2 * SIDE * SIDE);
}
BENCHMARK(PickInAMillion)->Unit(benchmark::kMillisecond)->UseRealTime();

// Watch: a node costs the same among 1,000 and among 100,000: hits find their nodes without a walk.
static void PickAllNodes(benchmark::State& state)
{
    const auto side = static_cast<int>(state.range(0));
    const Scene scene = MakeCubes(side);
    CBenchView view(scene.get(), VIEWFLAG_SMOOTH);
    CXArray<C3DSceneNode*> nodes;
    for (auto _ : state)
        view.SelectNodesFromRect(nodes, 0, 0, CBenchView::WIDTH, CBenchView::HEIGHT, GLSELECT_DEFAULT, 0);
    if (nodes.GetSize() != side * side)
        state.SkipWithError("not all found");
    state.SetItemsProcessed(state.iterations() * side * side);
}
BENCHMARK(PickAllNodes)->Arg(32)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond)->UseRealTime();
