#include <benchmark/benchmark.h>
#include <malloc.h>

#include <utility>
#include <vector>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/NodeWalkTM.h"
#include "scene/ObjectCreator.h"

namespace {

/// Grid of side * side squares, two triangles each.
struct Grid {
    std::vector<float> points;
    std::vector<int> triangles;

    explicit Grid(int triangleNbr)
    {
        int side = 1;
        while (2 * side * side < triangleNbr)
            side++;
        for (int y = 0; y <= side; y++)
            for (int x = 0; x <= side; x++)
                points.insert(points.end(), {float(x), float(y), 0});
        for (int y = 0; y < side; y++)
            for (int x = 0; x < side; x++) {
                const int p = y * (side + 1) + x, q = p + side + 1;
                triangles.insert(triangles.end(), {p, p + 1, q + 1, p, q + 1, q});
            }
        triangles.resize(3 * static_cast<std::size_t>(triangleNbr));
    }
    C3DObject* Create() const
    {
        return CreateObjectFromArrays(points.data(), points.size() * sizeof(float), triangles.data(), triangles.size() * sizeof(int),
                                      nullptr, 0);
    }
};

/// Of the heap.
double BytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// `count` nodes with groups, four children each, every second one with a matrix key.
C3DScene* CreateTree(int count)
{
    C3DScene* scene = C3DScene::Create();
    std::vector<C3DSceneNode*> nodes;
    for (int i = 0; i < count; i++) {
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetObject(C3DBaseObject::Create(OBJECT_GROUP), true);
        scene->AddNode(i ? nodes[(i - 1) / 4] : nullptr, node);
        if (i % 2)
            node->CreateKey(0, KEY_MATRIX, 0);
        nodes.push_back(node);
    }
    return scene;
}

/// About `count` nodes in trees of that depth, entered as they are walked, each with a matrix key that moves it by (1, 0, 0). Every node but
/// the last ones of a tree has `branches` children, of which `deep` go on.
struct KeyedTree {
    C3DScene* scene = C3DScene::Create();
    int nodes = 0;
    double depths = 0;    ///< sum of the levels of all nodes, 1 for the topmost: their places along x

    KeyedTree(int count, int depth, int branches, int deep)
    {
        while (nodes < count)
            Grow(depth, branches, deep);
    }
    ~KeyedTree() { DeleteMe(scene); }

private:
    void Grow(int depth, int branches, int deep)
    {
        std::vector<std::pair<C3DSceneNode*, int>> path{{nullptr, branches - 1}};    // with the child to add next; the trees have one top
        while (!path.empty()) {
            auto& [parent, child] = path.back();
            if (child == branches) {
                path.pop_back();
                continue;
            }
            const bool goesOn = (parent == nullptr || child < deep) && static_cast<int>(path.size()) < depth;
            C3DSceneNode* node = C3DSceneNode::Create();
            node->SetObject(C3DBaseObject::Create(OBJECT_GROUP), true);
            scene->AddNode(parent, node);
            static_cast<C3DMatrixKey*>(node->CreateKey(0, KEY_MATRIX, 0))->SetMatrix(Step());
            nodes++;
            depths += static_cast<double>(path.size());
            child++;
            if (goesOn)
                path.emplace_back(node, 0);
        }
    }
    static C4x4TMatrix<float> Step()
    {
        C4x4TMatrix<float> matrix;
        matrix.SetTranslation(1, 0, 0);
        return matrix;
    }
};

}

// An object from arrays. Watch: bytes a second near those of a copy, at most 40 bytes a triangle, flat over the sizes.
static void ObjectFromArrays(benchmark::State& state)
{
    const Grid grid(static_cast<int>(state.range(0)));
    int faces = 0;
    for (auto _ : state) {
        C3DObject* object = grid.Create();
        faces = object->GetFaceNbr();
        DeleteMe(object);
    }
    if (faces != state.range(0))
        state.SkipWithError("a face for each triangle");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * (grid.points.size() * 8 + grid.triangles.size() * 4 + faces * 12));
}
BENCHMARK(ObjectFromArrays)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(4000000)->Unit(benchmark::kMillisecond);

// The same arrays into two plain vectors: what the memory alone costs.
static void PlainCopy(benchmark::State& state)
{
    const Grid grid(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::vector<float> points(grid.points);
        std::vector<int> triangles(grid.triangles);
        benchmark::DoNotOptimize(points.data());
        benchmark::DoNotOptimize(triangles.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(PlainCopy)->Arg(10000)->Arg(1000000)->Arg(4000000)->Unit(benchmark::kMillisecond);

// Both boxes of an object after a change. Watch: ns per triangle flat.
static void Boxes(benchmark::State& state)
{
    C3DObject* object = Grid(static_cast<int>(state.range(0))).Create();
    C3DTPoint<float> min, max;
    for (auto _ : state) {
        object->Invalidate(CHANGE_POINTS, true);
        object->GetBoundingBox(min, max, BOX_POINTS);
        object->GetBoundingBox(min, max, BOX_FACES);
    }
    if (max.x < 1)
        state.SkipWithError("the grid has a box");
    DeleteMe(object);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Boxes)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A scene of nodes with an object each, every second one with a key, built and released. Watch: bytes a node flat; ns a node
// too, apart from page faults: a small scene finds its memory warm from the iteration before, a large one does not.
static void BuildTree(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state) {
        const double before = BytesInUse();
        C3DScene* scene = CreateTree(static_cast<int>(state.range(0)));
        bytes = BytesInUse() - before;
        DeleteMe(scene);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["B/node"] = bytes / static_cast<double>(state.range(0));
}
BENCHMARK(BuildTree)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The same scene copied, and the copy released. Watch: as for BuildTree.
static void CopyTree(benchmark::State& state)
{
    C3DScene* scene = CreateTree(static_cast<int>(state.range(0)));
    double bytes = 0;
    for (auto _ : state) {
        const double before = BytesInUse();
        C3DScene* copy = scene->Copy(nullptr, 0, nullptr);
        bytes = BytesInUse() - before;
        DeleteMe(copy);
    }
    DeleteMe(scene);
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["B/node"] = bytes / static_cast<double>(state.range(0));
}
BENCHMARK(CopyTree)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Sharers of one object, copied. Watch: ns a node flat: no search for what they share.
static void CopySharers(benchmark::State& state)
{
    C3DScene* scene = C3DScene::Create();
    C3DBaseObject* object = C3DBaseObject::Create(OBJECT_GROUP);
    for (int i = 0; i < state.range(0); i++) {
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetObject(i ? scene->CreateObjectInstance(object) : object, true);
        scene->AddNode(nullptr, node);
    }
    C3DObjectCreator creator;
    for (auto _ : state) {
        creator.GetObjectMap().RemoveAll();
        C3DScene* copy = scene->Copy(nullptr, 0, &creator);
        if (copy->GetChildNode(nullptr)->GetBaseObject()->GetInstanceCount() != state.range(0))
            state.SkipWithError("sharers stay sharers");
        DeleteMe(copy);
    }
    DeleteMe(scene);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CopySharers)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A scene of triangles, in one object or in many, copied, and the copy released. Watch: ns a triangle near those of PlainCopy for
// one object, and not far from them for objects of 1,000 triangles.
static void CopyMeshes(benchmark::State& state)
{
    const int objects = static_cast<int>(state.range(1));
    const Grid grid(static_cast<int>(state.range(0)) / objects);
    C3DScene* scene = C3DScene::Create();
    for (int i = 0; i < objects; i++) {
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetObject(grid.Create(), true);
        scene->AddNode(nullptr, node);
    }
    for (auto _ : state) {
        C3DScene* copy = scene->Copy(nullptr, 0, nullptr);
        if (copy->GetFaceNbr() != state.range(0))
            state.SkipWithError("every triangle is copied");
        DeleteMe(copy);
    }
    DeleteMe(scene);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CopyMeshes)->Args({100000, 1})->Args({1000000, 1})->Args({100000, 100})->Args({1000000, 1000})->Unit(benchmark::kMillisecond);

// A walk over all nodes. Watch: ns per node.
static void Walk(benchmark::State& state)
{
    C3DScene* scene = CreateTree(static_cast<int>(state.range(0)));
    int count = 0;
    for (auto _ : state) {
        count = 0;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_GROUP); pos; count++)
            scene->GetNextNode(pos);
    }
    if (count != state.range(0))
        state.SkipWithError("every node is visited");
    DeleteMe(scene);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Walk)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// World matrices of all nodes: each on its own, and along the walk.
template <bool ALONG> static void Matrices(benchmark::State& state)
{
    C3DScene* scene = CreateTree(static_cast<int>(state.range(0)));
    C4x4TMatrix<float> matrix;
    for (auto _ : state) {
        CNodeWalkTM walk(0, true);
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_GROUP); pos;) {
            const C3DSceneNode* node = scene->GetNextNode(pos);
            if (ALONG)
                walk.Get(node, matrix);
            else
                node->GetNodeTM(0, matrix, true);
        }
        benchmark::DoNotOptimize(matrix.m[0][0]);
    }
    DeleteMe(scene);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Matrices<false>)->Name("MatricesEach")->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(Matrices<true>)->Name("MatricesAlongTheWalk")->Arg(100000)->Unit(benchmark::kMillisecond);

// The same with a key on every node. Arguments: depth, children of a node, how many of them have children. Watch: ns per node, the same for
// any depth.
static void MatricesOfKeyedNodes(benchmark::State& state)
{
    const KeyedTree tree(100000, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    C4x4TMatrix<float> matrix;
    double sum = 0;
    for (auto _ : state) {
        sum = 0;
        CNodeWalkTM walk(0, true);
        for (C3DNodePos pos = tree.scene->GetFirstNode(OBJECT_GROUP); pos;) {
            walk.Get(tree.scene->GetNextNode(pos), matrix);
            sum += matrix.m[0][3];
        }
    }
    if (sum != tree.depths)
        state.SkipWithError("every node lies one step from its parent");
    state.SetItemsProcessed(state.iterations() * tree.nodes);
}
BENCHMARK(MatricesOfKeyedNodes)->Args({10, 3, 3})->Args({10000, 10, 1})->Unit(benchmark::kMillisecond);
