// This library in the side-by-side runs with other programs. Prints its operations for `list`, and a JSON line a measurement for
// `OPERATION INPUT`; the harness (common.h) comes with the programs that it stands beside. See ZEL_PEERS in CMakeLists.txt.

#include <memory>

#include "3dzel.h"
#include "common.h"

namespace {

struct Release {
    template <class T> void operator()(T* object) const { DeleteMe(object); }
};
template <class T> using Owned = std::unique_ptr<T, Release>;

constexpr const char* NAME = "ours";

// A mesh with its channels, filled as a host would fill it.
struct Mesh {
    Owned<C3DPointList> points{C3DPointList::Create(nullptr)};
    Owned<C3DFaceList> faces{C3DFaceList::Create(nullptr)};
    Owned<CDependentChannels> channels{CDependentChannels::Create()};
    CGeomInfo info{faces.get(), points.get()};

    Mesh() { info.SetChannels(channels.get(), nullptr, 0); }
    void Fill(const RawMesh& raw)
    {
        points->SetSize(static_cast<int>(raw.points()), false, 0);
        const float* xyz = raw.xyz.data();
        C3DTPoint<float>* point = points->GetFirst();
        for (std::size_t i = 0; i < raw.points(); i++, point++, xyz += 3)
            point->x = xyz[0], point->y = xyz[1], point->z = xyz[2];
        const int count = static_cast<int>(raw.faces());
        const int* const corners = reinterpret_cast<const int*>(raw.corner.data());
        if (raw.triangular()) {
            faces->AppendFaces(count, 3, corners);
            return;
        }
        std::vector<unsigned int> sizes(raw.faces());
        for (std::size_t i = 0; i < sizes.size(); i++)
            sizes[i] = static_cast<unsigned int>(raw.size(i));
        faces->AppendFaces(count, sizes.data(), corners);
    }
    Result Counts() const { return {static_cast<std::size_t>(faces->GetSize()), static_cast<std::size_t>(points->GetSize())}; }
};
using MeshPtr = std::unique_ptr<Mesh>;

MeshPtr Filled(const RawMesh& raw)
{
    auto mesh = std::make_unique<Mesh>();
    mesh->Fill(raw);
    return mesh;
}

void Expect(bool right, const char* what)
{
    if (!right)
        throw std::runtime_error(what);
}

// `work` on a mesh that stands before the clock starts; `result` checks it and counts.
template <class WORK, class RESULT> void MeasureOnMesh(const std::string& op, const std::string& input, WORK work, RESULT result)
{
    const RawMesh raw = loadRaw(input);
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(), [&] { return Filled(raw); }, work, result);
}

// --- Files -------------------------------------------------------------------------------------------------------------------

Owned<C3DScene> Read(const std::string& file)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_READ | FILEIO_SILENT, nullptr);
    CSceneImportOptions options;
    Owned<C3DScene> scene(io.Read(false, &options));
    if (!scene)
        throw std::runtime_error(file + ": " + WideToUtf8(io.GetResultText()));
    return scene;
}

Result Counts(const Owned<C3DScene>& scene)
{
    return {static_cast<std::size_t>(scene->GetFaceNbr()), static_cast<std::size_t>(scene->GetPointNbr())};
}

void LoadFile(const std::string& op, const std::string& input)
{
    bench::measure(
        op, NAME, baseName(input), 0, bench::note(fileSize(input)), [] { return Owned<C3DScene>(); },
        [&](Owned<C3DScene>& scene) { scene = Read(input); }, Counts);
}

// Every file of a list, one after the other, each scene dropped at once.
void LoadMany(const std::string& op, const std::string& input)
{
    bench::measure(
        op, NAME, stem(input), 0, 0, [] { return Result(); },
        [files = lines(input)](Result& sum) {
            for (const std::string& file : files) {
                const Result counts = Counts(Read(file));
                sum.faces += counts.faces;
                sum.points += counts.points;
            }
        },
        [](const Result& sum) { return sum; });
}

// --- Meshes ------------------------------------------------------------------------------------------------------------------

// From flat arrays to a mesh with both graphs: what the building of a half-edge structure gives.
void Connectivity(const std::string& op, const std::string& input)
{
    const RawMesh raw = loadRaw(input);
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(), [] { return std::make_unique<Mesh>(); },
        [&](MeshPtr& mesh) {
            mesh->Fill(raw);
            mesh->faces->InitPointToFaceGraph(&mesh->info);
            mesh->faces->InitEdgeToFaceGraph(&mesh->info);
        },
        [&](MeshPtr& mesh) {
            std::size_t links = 0, sides = 0;
            int count = 0;
            for (int i = 0; i < mesh->points->GetSize(); i++, links += static_cast<std::size_t>(count))
                mesh->faces->GetFacesConnectedToPoint(i, count);
            CFaceList::EdgeGraph& edges = mesh->faces->GetEdgeGraph();
            for (unsigned int i = 0; i < edges.GetCount(); i++)
                sides += edges.GetValueCount(i);
            Expect(links == raw.corner.size() && sides == raw.corner.size(), "each corner makes one link and one side of an edge");
            return mesh->Counts();
        });
}

void SmoothNormals(const std::string& op, const std::string& input)
{
    MeasureOnMesh(
        op, input, [](MeshPtr& mesh) { mesh->channels->GetPointNormalChannel()->InitNormals(&mesh->info, 0.5235988f); },
        [](MeshPtr& mesh) {
            const CPointNormalChannel& channel = *mesh->channels->GetPointNormalChannel();
            Expect(channel.GetNormalFaceList()->GetSize() == mesh->faces->GetSize(), "a face of normals for each face");
            return Result{mesh->Counts().faces, static_cast<std::size_t>(channel.GetNormalVectorList()->GetSize())};
        });
}

void BoundingBox(const std::string& op, const std::string& input)
{
    C3DTPoint<float> min, max;
    MeasureOnMesh(
        op, input, [&](MeshPtr& mesh) { mesh->points->GetBoundingBox(min, max); },
        [&](MeshPtr& mesh) {
            Expect(max.x > min.x, "the box is not empty");
            return mesh->Counts();
        });
}

void Transform(const std::string& op, const std::string& input)
{
    C4x4TMatrix<float> matrix;
    matrix.m[0][0] = matrix.m[1][1] = 0.9f;
    matrix.m[0][1] = 0.1f, matrix.m[1][0] = -0.1f;
    matrix.m[0][3] = 1, matrix.m[1][3] = 2, matrix.m[2][3] = 3;
    MeasureOnMesh(
        op, input, [&](MeshPtr& mesh) { Expect(mesh->points->MatrixTransform(matrix), "the points move"); },
        [](MeshPtr& mesh) { return mesh->Counts(); });
}

// Every third face goes, with the points that no other one uses.
void Clean(const std::string& op, const std::string& input)
{
    const RawMesh raw = loadRaw(input);
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(),
        [&] {
            MeshPtr mesh = Filled(raw);
            for (unsigned int i = 0; i < raw.faces(); i += 3)
                mesh->faces->SetFaceFlag(i, FACE_INVALID, true);
            return mesh;
        },
        [](MeshPtr& mesh) { mesh->faces->Clean(&mesh->info); },
        [&](MeshPtr& mesh) {
            Expect(mesh->Counts().faces == raw.faces() - (raw.faces() + 2) / 3, "two of three faces stay");
            return mesh->Counts();
        });
}

// --- Mesh operations ---------------------------------------------------------------------------------------------------------

using Parts = CXArray<C3DGeomObject*, C3DGeomObject*>;

// An object of the class given, with texture coordinates for each corner where the mesh has them.
template <class OBJECT> Owned<OBJECT> ObjectOf(const RawMesh& raw)
{
    Mesh mesh;
    mesh.Fill(raw);
    Owned<OBJECT> object(new OBJECT(mesh.points.release(), mesh.faces.release(), nullptr));
    if (!raw.uv.empty()) {
        auto* channel = new CUVWChannel;
        int next = 0;
        channel->GetFaceList()->AppendCopies(*object->GetFaceList(), nullptr, object->GetFaceNbr(), [&](int) { return next++; });
        channel->GetPointList()->SetSize(next, false, 0);
        for (int i = 0; i < next; i++) {
            CUVWPoint& point = *(*channel->GetUVWPointList())[i];
            point.u = raw.uv[2 * static_cast<std::size_t>(i)], point.v = raw.uv[2 * static_cast<std::size_t>(i) + 1];
        }
        object->AddChannel(channel);
    }
    return object;
}

Result Counts(const C3DGeomObject& object)
{
    return {static_cast<std::size_t>(object.GetFaceNbr()), static_cast<std::size_t>(object.GetPointNbr())};
}

template <class WORK> void MeasureOnObject(const std::string& op, const std::string& input, WORK work)
{
    const RawMesh raw = loadRaw(input);
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(), [&] { return ObjectOf<C3DObject>(raw); },
        [&](Owned<C3DObject>& object) { Expect(work(*object), "the operation does something"); },
        [](Owned<C3DObject>& object) { return Counts(*object); });
}

void Weld(const std::string& op, const std::string& input)
{
    MeasureOnObject(op, input, [](C3DObject& object) { return object.Weld3DPoints(1e-5, true, CHANNEL_ALL, 0); });
}

void Triangulate(const std::string& op, const std::string& input)
{
    MeasureOnObject(op, input, [](C3DObject& object) { return object.Triangulate(CHANNEL_ALL, {}, true); });
}

void MergeCoplanar(const std::string& op, const std::string& input)
{
    MeasureOnObject(op, input, [](C3DObject& object) { return object.MergeCoplanarFaces(0.0017453, CHANNEL_ALL); });
}

void Orient(const std::string& op, const std::string& input)
{
    MeasureOnObject(op, input, [](C3DObject& object) { return object.UnifyNormals(); });
}

// Each part as an object of its own.
void Components(const std::string& op, const std::string& input)
{
    const RawMesh raw = loadRaw(input);
    std::size_t count = 0;
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(), [&] { return ObjectOf<C3DObject>(raw); },
        [&](Owned<C3DObject>& object) {
            Parts parts;
            count = static_cast<std::size_t>(object->ExplodeIntoIsolatedParts(parts));
            for (C3DGeomObject* part : parts)
                DeleteMe(part);
        },
        [&](Owned<C3DObject>&) {
            return Result{count, 0};
        });
}

void Concatenate(const std::string& op, const std::string& input)
{
    constexpr int COUNT = 1000;
    RawMesh raw = loadRaw(input);
    raw.uv.clear();    // as the others take it
    std::vector<Owned<C3DObject>> owners;
    Parts parts;
    for (int i = 0; i < COUNT; i++) {
        owners.push_back(ObjectOf<C3DObject>(raw));
        parts.Add(owners.back().get());
    }
    bench::measure(
        op, NAME, stem(input) + "x1000", raw.faces() * COUNT, raw.points() * COUNT, [] { return ObjectOf<C3DObject>(RawMesh()); },
        [&](Owned<C3DObject>& all) { Expect(all->Concatenate(nullptr, parts, nullptr), "the parts are joined"); },
        [](Owned<C3DObject>& all) { return Counts(*all); });
}

// BENCH_LEVEL levels.
void Subdivide(const std::string& op, const std::string& input)
{
    const RawMesh raw = loadRaw(input);
    const char* text = std::getenv("BENCH_LEVEL");
    const int level = text ? std::atoi(text) : 3;
    bench::measure(
        op, NAME, stem(input) + "@" + std::to_string(level), raw.faces(), raw.points(), [&] { return ObjectOf<C3DPatch>(raw); },
        [&](Owned<C3DPatch>& patch) { patch->SetLevel(level); },
        [](Owned<C3DPatch>& patch) { return Counts(static_cast<const C3DObject&>(*patch->GetFinalObject(false))); });
}

// --- Native files ------------------------------------------------------------------------------------------------------------

// The bare mesh, as the other programs write it.
Owned<C3DScene> SceneOf(RawMesh raw)
{
    raw.uv.clear();
    Owned<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(ObjectOf<C3DObject>(raw).release(), true);
    scene->AddNode(nullptr, node);
    return scene;
}

void Write(C3DScene& scene, const std::string& file)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_SILENT, nullptr);
    CSceneExportOptions options(EXPORT_IN_PLACE);
    Expect(io.Save(false, &scene, &options), "the scene is written");
}

// Synced to the disk before the name is given, as every save is.
void SaveNative(const std::string& op, const std::string& input)
{
    const RawMesh raw = loadRaw(input);
    const Owned<C3DScene> scene = SceneOf(raw);
    const std::string file = scratch("ours.3dif");
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(), [] { return 0; }, [&](int&) { Write(*scene, file); },
        [&](int&) {
            return Result{raw.faces(), raw.points(), fileSize(file)};
        });
    unlink(file.c_str());
}

void LoadNative(const std::string& op, const std::string& input)
{
    const RawMesh raw = loadRaw(input);
    const std::string file = scratch("ours.3dif");
    Write(*SceneOf(raw), file);
    bench::measure(
        op, NAME, stem(input), raw.faces(), raw.points(), [] { return Owned<C3DScene>(); },
        [&](Owned<C3DScene>& scene) { scene = Read(file); }, [](const Owned<C3DScene>& scene) { return Counts(scene); });
    unlink(file.c_str());
}

// --- Scenes ------------------------------------------------------------------------------------------------------------------

// Groups with a matrix key each, eight children a node.
Owned<C3DScene> CreateTree(std::size_t count)
{
    Owned<C3DScene> scene(C3DScene::Create());
    std::vector<C3DSceneNode*> nodes(count);
    for (std::size_t i = 0; i < count; i++) {
        C4x4TMatrix<float> matrix;
        for (std::size_t k = 0; k < 12; k++)
            if (k % 5)
                matrix.m[k / 4][k % 4] = 0.001f * static_cast<float>((i + k) % 7);
        nodes[i] = C3DSceneNode::Create();
        nodes[i]->SetObject(C3DBaseObject::Create(OBJECT_GROUP), true);
        nodes[i]->AddKey(0, C3DMatrixKey(matrix));
        scene->AddNode(i ? nodes[(i - 1) / 8] : nullptr, nodes[i]);
    }
    return scene;
}

void WalkScene(const std::string& op, const std::string& input)
{
    const std::size_t count = std::stoul(input);
    struct State {
        Owned<C3DScene> scene;
        std::size_t nodes = 0;
        double sum = 0;
    };
    bench::measure(
        op, NAME, "tree_" + input, 0, count, [&] { return State{CreateTree(count)}; },
        [](State& state) {
            CNodeWalkTM walk(0, true);
            C4x4TMatrix<float> matrix;
            for (C3DNodePos pos = state.scene->GetFirstNode(OBJECT_GROUP); pos; state.nodes++) {
                walk.Get(state.scene->GetNextNode(pos), matrix);
                state.sum += static_cast<double>(matrix.m[0][3]);
            }
        },
        [](State& state) {
            bench::keep(state.sum);
            return Result{0, state.nodes};
        });
}

}

int main(int argc, char** argv)
{
    RegisterIOPlugins(FILE_FAMILY_3D, L"");
    const int result = runProgram(argc, argv,
                                  {{"load_obj", LoadFile},
                                   {"load_ply", LoadFile},
                                   {"load_stl", LoadFile},
                                   {"load_off", LoadFile},
                                   {"load_glb", LoadFile},
                                   {"load_scene", LoadFile},
                                   {"load_many", LoadMany},
                                   {"save_native", SaveNative},
                                   {"load_native", LoadNative},
                                   {"connectivity", Connectivity},
                                   {"smooth_normals", SmoothNormals},
                                   {"bounding_box", BoundingBox},
                                   {"transform", Transform},
                                   {"clean", Clean},
                                   {"weld", Weld},
                                   {"triangulate", Triangulate},
                                   {"coplanar", MergeCoplanar},
                                   {"orient", Orient},
                                   {"components", Components},
                                   {"concat", Concatenate},
                                   {"subdiv_loop", Subdivide},
                                   {"subdiv_catmark", Subdivide},
                                   {"scene", WalkScene}});
    FreeIOPlugins(FILE_FAMILY_3D);
    return result;
}
