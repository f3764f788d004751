#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>
#include <numbers>
#include <numeric>
#include <random>
#include <set>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "channels/VCChannel.h"
#include "channels/VCPointList.h"
#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/Edge.h"
#include "geometry/FaceGraphHelper.h"
#include "meshops/SlotTable.h"
#include "scene/3DObject.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Owned.h"
#include "support/RandomMesh.h"
#include "tools/BitArray.h"
#include "tools/Progress.h"

namespace {

using FaceCorners = std::vector<std::vector<int>>;

// --- Objects ------------------------------------------------------------------------------------------------------------------------

Owned<C3DObject> ObjectOf(Mesh mesh)
{
    Owned<C3DObject> object(new C3DObject);
    object->SetPointList(std::exchange(mesh.points, nullptr), true);
    object->SetFaceList(std::exchange(mesh.faces, nullptr), true);
    return object;
}

/// Triangles over a grid of squares in the plane z = 0; squares in `holes` are left out.
Mesh TriangleGrid(int width, int height, const std::set<int>& holes = {})
{
    std::vector<XYZ> points;
    FaceCorners corners;
    for (int y = 0; y <= height; y++)
        for (int x = 0; x <= width; x++)
            points.push_back({static_cast<float>(x), static_cast<float>(y), 0});
    for (int cell = 0; cell < width * height; cell++) {
        const int at = cell % width + cell / width * (width + 1), up = at + width + 1;
        if (holes.count(cell))
            continue;
        corners.push_back({at, at + 1, up + 1});
        corners.push_back({at, up + 1, up});
    }
    return MakeMesh(points, corners);
}

/// A channel of the geometry's corners: one value a point.
CUVWChannel* AddUVW(C3DGeomObject& object)
{
    auto* channel = new CUVWChannel;
    channel->GetPointList()->SetSize(object.GetPointNbr());
    for (int i = 0; i < object.GetPointNbr(); i++)
        (*channel->GetUVWPointList())[i]->u = static_cast<float>(i);
    AddFaces(*channel->GetFaceList(), AllCorners(*object.GetFaceList()));
    object.AddChannel(channel);
    return channel;
}
/// Gives the face values of its own, another `u` at each corner.
void CutOut(CUVWChannel& channel, int face)
{
    int count;
    int* corners = channel.GetFaceList()->GetIndexes(face, count);
    for (int k = 0; k < count; k++) {
        const float u = (*channel.GetUVWPointList())[corners[k]]->u;
        corners[k] = channel.GetPointList()->GetSize();
        channel.GetPointList()->SetSize(corners[k] + 1);
        (*channel.GetUVWPointList())[corners[k]]->u = u + 0.001f;
    }
}

double Area(const C3DGeomObject& object)
{
    double area = 0;
    const CGeomInfo info(object.GetFaceList(), object.GetPointList());
    for (int i = 0; i < object.GetFaceNbr(); i++) {
        C3DFace face;
        object.GetFaceList()->GetFace(i, face);
        C3DTVector<float> normal;
        face.GetNormal(&info, normal, false);
        area += normal.Length() / 2;
    }
    return area;
}

void CheckInStep(C3DGeomObject& object)
{
    CheckConsistent(*object.GetFaceList(), object.GetPointNbr());
    for (CChannel* channel : *object.GetChannels()) {
        if (!channel->GetFaceList())
            continue;
        CheckConsistent(*channel->GetFaceList(), channel->GetPointList()->GetSize());
        ASSERT_EQ(channel->GetFaceList()->GetSize(), object.GetFaceNbr());
        for (int i = 0; i < object.GetFaceNbr(); i++) {
            const std::size_t size = Corners(*channel->GetFaceList(), i).size();
            EXPECT_TRUE(channel->GetFaceList()->IsFaceFlagSet(i, FACE_EMPTY) ? size == 0
                                                                             : size == Corners(*object.GetFaceList(), i).size());
        }
    }
}

// --- The plain way, with tables and graphs for every step ----------------------------------------------------------------------------

struct PlainMerge {
    C3DFaceList& faces;
    C3DPointList& points;
    CUVWChannel* uvw;
    double threshold;
    Owned<C3DVectorList> normals{C3DVectorList::Create(nullptr)};
    CBitArray processed;
    CHashTable<int> region;
    FaceCorners result, uvwResult;

    PlainMerge(C3DGeomObject& object, CUVWChannel* channel, double angle)
        : faces(*object.GetFaceList()), points(*object.GetPointList()), uvw(channel), threshold(std::cos(angle) - 1e-6),
          processed(faces.GetSize(), false)
    {
        const CGeomInfo info(&faces, &points);
        faces.GetNormals(&info, *normals, true);
        faces.InitPointToFaceGraph(&info);
        faces.InitEdgeToFaceGraph(&info);
        for (int i = 0; i < faces.GetSize(); i++) {
            if (faces.IsFaceFlagSet(i, FACE_INVALID) || processed[i])
                continue;
            Grow(i);
            if (region.GetSize() < 2)
                Copy(i);
            else if (!MergeRegion(i))
                for (const int face : region)
                    Copy(face);
        }
        faces.DeletePointToFaceGraph();
        faces.DeleteEdgeToFaceGraph();
    }
    void Copy(int face)
    {
        result.push_back(Corners(faces, face));
        uvwResult.push_back(Corners(*uvw->GetFaceList(), face));
    }
    bool IsCopy(int i, int face)
    {
        C3DFace a, b;
        faces.GetFace(i, a), faces.GetFace(face, b);
        return i != face && a.CompareIndexes(b, true);
    }
    const CUVWPoint& ValueAt(int face, int point)
    {
        const auto corners = Corners(faces, face);
        const auto place = std::find(corners.begin(), corners.end(), point) - corners.begin();
        return *(*uvw->GetUVWPointList())[Corners(*uvw->GetFaceList(), face)[place]];
    }
    void Grow(int i)
    {
        region.RemoveAll();
        std::deque<int> queue{i};
        region.Insert(i);
        while (!queue.empty()) {
            const int f = queue.front();
            queue.pop_front();
            if (processed[f])
                continue;
            const auto corners = Corners(faces, f);
            for (std::size_t k = 0; k < corners.size() && !faces.IsFaceFlagSet(i, FACE_EMPTY); k++) {
                const C3DEdge edge(corners[k], corners[(k + 1) % corners.size()]);
                int count;
                const int* around = faces.GetFacesConnectedToEdge(edge, count);
                std::vector<int> left;
                for (int n = 0; n < count; n++)
                    if (!IsCopy(i, around[n]))
                        left.push_back(around[n]);
                    else if (count > 2)
                        processed.SetAt(around[n], true);
                if (left.size() != 2)
                    continue;
                const int g = left[0] == f ? left[1] : left[0];
                if (processed[g] || faces.GetFaceMaterial(g) != faces.GetFaceMaterial(f) ||
                    threshold > Dot(*normals->ElementAt(g), *normals->ElementAt(f)))
                    continue;
                if (!(ValueAt(f, edge.GetFirst()) == ValueAt(g, edge.GetFirst())) ||
                    !(ValueAt(f, edge.GetSecond()) == ValueAt(g, edge.GetSecond())))
                    continue;
                queue.push_back(g);
                region.Insert(g);
            }
            processed.SetAt(f, true);
        }
    }
    bool MergeRegion(int i)
    {
        CFaceList::EdgeGraph border;
        faces.GetEdgesOnBorder(border, region);
        CHashMap<int, int, int> faceOf;
        CHashMap<int, CHashTable<int>> graph;
        for (unsigned int pos = border.GetFirst(); pos != HASH_END;) {
            const unsigned int entry = border.GetNext(pos);
            int count;
            const int face = border.GetValues(entry, count)[0];
            const int a = border.GetKey(entry).GetFirst(), b = border.GetKey(entry).GetSecond();
            graph[a].Insert(b);
            graph[b].Insert(a);
            faceOf.SetAt(a, face);
            faceOf.SetAt(b, face);
        }
        for (const auto& [point, around] : graph)
            if (around.GetSize() != 2)
                return false;    // touches itself, or is no border
        std::vector<std::vector<int>> loops;
        while (!graph.IsEmpty()) {
            const int start = (*graph.begin()).first;
            loops.push_back({start});
            for (int a = start;;) {
                const int b = *graph.Find(a)->begin();
                for (const auto& [from, to] : {std::pair(a, b), std::pair(b, a)}) {
                    graph.Find(from)->Remove(to);
                    if (graph.Find(from)->IsEmpty())
                        graph.Remove(from);
                }
                if (b == start)
                    break;
                loops.back().push_back(b);
                a = b;
            }
        }
        if (loops.size() != 1 || loops[0].size() < 3)
            return false;
        CFaceGraphHelper helper;
        std::vector<int> kept;
        const std::vector<int>& loop = loops[0];
        for (std::size_t k = 0; k < loop.size(); k++) {
            const int before = loop[(k + loop.size() - 1) % loop.size()], behind = loop[(k + 1) % loop.size()];
            if (!faces.IsPointNeighbourg(helper, loop[k], behind))
                return false;
            C3DTVector<float> a = *points[behind] - *points[before], b = *points[behind] - *points[loop[k]];
            a.Normalize(), b.Normalize();
            if (static_cast<float>(Dot(a, b)) != 1.0f)
                kept.push_back(loop[k]);
        }
        if (kept.size() < 3)
            return false;
        C3DTVector<float> normal;
        C3DFace::GetNormal(points, kept.data(), static_cast<int>(kept.size()), normal, true);
        if (Dot(normal, *normals->ElementAt(i)) < 0)
            std::reverse(kept.begin(), kept.end());
        result.push_back(kept);
        uvwResult.emplace_back();
        for (const int point : kept) {
            const auto corners = Corners(faces, *faceOf.Find(point));
            const auto place = std::find(corners.begin(), corners.end(), point) - corners.begin();
            uvwResult.back().push_back(Corners(*uvw->GetFaceList(), *faceOf.Find(point))[place]);
        }
        return true;
    }
};

/// The same mesh by coordinates and by values: cleaning numbers both anew.
struct Shape {
    std::vector<std::vector<std::array<float, 3>>> places;
    std::vector<std::vector<float>> us;
    bool operator==(const Shape&) const = default;
};
Shape ShapeOf(const C3DPointList& points, const CUVWPointList& values, const FaceCorners& corners, const FaceCorners& uvwCorners)
{
    Shape shape;
    for (const auto& face : corners) {
        shape.places.emplace_back();
        for (const int p : face)
            shape.places.back().push_back({points[p]->x, points[p]->y, points[p]->z});
    }
    for (const auto& face : uvwCorners) {
        shape.us.emplace_back();
        for (const int p : face)
            shape.us.back().push_back(values[p]->u);
    }
    return shape;
}

}

TEST(SlotTable, WalksAsTheHashTableDoes)
{
    std::mt19937 random(5);
    CSlotTable<int> table;
    CSlotTable<C3DEdge> edges;
    for (int round = 0; round < 60; round++) {
        const unsigned int size = round % 3 ? 101 : random() % 1000;
        CHashTable<int> model(size);
        CHashTable<C3DEdge> edgeModel(size);
        table.Reset(size);
        edges.Reset(size);
        for (int i = 0, n = 1 << (round % 12); i < n; i++) {
            const int key = static_cast<int>(random() % (3 * n));
            const C3DEdge edge(key, static_cast<int>(random() % (n + 1)));
            model.Insert(key);
            table.Insert(key);
            edgeModel.Insert(edge);
            edges.Insert(edge);
        }
        std::vector<int> keys, modelKeys;
        table.ForEach([&](unsigned int entry) { keys.push_back(table.GetKey(entry)); });
        for (const int key : model)
            modelKeys.push_back(key);
        EXPECT_EQ(keys, modelKeys);
        EXPECT_EQ(table.GetKey(table.GetFirst()), keys[0]);
        std::vector<C3DEdge> edgeKeys, modelEdges;
        edges.ForEach([&](unsigned int entry) { edgeKeys.push_back(edges.GetKey(entry)); });
        for (const C3DEdge& edge : edgeModel)
            modelEdges.push_back(edge);
        EXPECT_TRUE(edgeKeys == modelEdges);
    }
}

// Faults in mind: the order in which a hash table would be walked, or that of the queue; copies of the seed; the table of faces of a point.
TEST(CoplanarMerge, SameResultAsThePlainWay)
{
    std::mt19937 random(11);
    int merged = 0;
    for (int round = 0; round < 400 && !HasFailure(); round++) {
        SCOPED_TRACE(round);
        const int width = 1 + random() % (round % 20 ? 8 : 40), height = 1 + random() % (round % 20 ? 8 : 40);
        std::set<int> holes;
        for (int i = 0; i < width * height; i++)
            if (random() % 8 == 0 && round % 2)
                holes.insert(i);
        Mesh mesh = TriangleGrid(width, height, holes);
        FaceCorners corners = AllCorners(*mesh.faces);
        for (auto& face : corners)
            std::rotate(face.begin(), face.begin() + random() % 3, face.end());
        for (std::size_t i = corners.size(); i-- > 0 && round % 4 < 2;)
            if (random() % 20 == 0) {    // a copy
                corners.push_back(corners[i]);
                std::rotate(corners.back().begin(), corners.back().begin() + random() % 3, corners.back().end());
            }
        std::shuffle(corners.begin(), corners.end(), random);
        mesh.faces->RemoveAll();
        AddFaces(*mesh.faces, corners);
        std::vector<int> number(mesh.points->GetSize());    // points anywhere in their list
        std::iota(number.begin(), number.end(), 0);
        std::shuffle(number.begin(), number.end(), random);
        mesh.faces->UpdateIndex(std::vector<unsigned int>(number.begin(), number.end()).data(), number.size(), false);
        mesh.points->Reorder(std::vector<unsigned int>(number.begin(), number.end()).data(), number.size(), true);
        for (int i = 0; i < mesh.points->GetSize(); i++)
            if (round % 3 == 0 && random() % 5 == 0)
                mesh.points->ElementAt(i)->z = 1;
        for (int i = 0; i < mesh.faces->GetSize(); i++) {
            mesh.faces->SetFaceMaterial(i, round % 5 == 0 && random() % 6 == 0);
            if (random() % 50 == 0)
                mesh.faces->SetFaceFlag(i, FACE_INVALID, true);
        }
        const Owned<C3DObject> object = ObjectOf(std::move(mesh));
        CUVWChannel* const uvw = AddUVW(*object);
        for (int i = 0; i < object->GetFaceNbr(); i++)
            if (round % 7 == 0 && random() % 6 == 0)
                CutOut(*uvw, i);

        const int before = object->GetFaceNbr();
        const PlainMerge plain(*object, uvw, 0.01);
        const Shape expected = ShapeOf(*object->GetPointList(), *uvw->GetUVWPointList(), plain.result, plain.uvwResult);
        ASSERT_EQ(object->MergeCoplanarFaces(0.01, CHANNEL_ALL), static_cast<int>(plain.result.size()) < before);
        if (object->GetFaceNbr() == before)
            continue;
        merged++;
        CheckInStep(*object);
        auto* after = static_cast<CUVWChannel*>(object->GetChannelByIndex(0, CHANNEL_UVW, true));
        ASSERT_TRUE(after);
        EXPECT_TRUE(ShapeOf(*object->GetPointList(), *after->GetUVWPointList(), AllCorners(*object->GetFaceList()),
                            AllCorners(*after->GetFaceList())) == expected);
    }
    EXPECT_GT(merged, 300);
}

TEST(CoplanarMerge, Regions)
{
    struct {
        const char* name;
        Mesh mesh;
        FaceCorners expected;    // points are numbered as before
        bool changed;
    } rows[] = {
        {"square", TriangleGrid(1, 1), {{0, 1, 3, 2}}, true},
        {"hole", TriangleGrid(3, 3, {4}), {}, false},
        {"touches itself", TriangleGrid(3, 3, {0, 4}), {}, false},
        {"lone copy", MakeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {1, 2, 0}}), {}, false},
        {"copy of the seed",
         MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {1, 2, 0}, {0, 2, 3}}),
         {{0, 1, 2, 3}},
         true},
        {"three faces at an edge",
         MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 2, 0}}, {{0, 1, 2}, {0, 2, 3}, {0, 2, 4}}),
         {},
         false},
        {"cube", Cube(), {}, false},
        {"straight border", MakeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 1, 0}}, {{0, 1, 3}, {1, 2, 3}}), {{0, 2, 3}}, true},
        {"corner beyond the points", MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {{0, 1, 2}, {0, 2, 9}}), {}, false},
    };
    for (auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Owned<C3DObject> object = ObjectOf(std::move(row.mesh));
        const FaceCorners before = AllCorners(*object->GetFaceList());
        const int points = object->GetPointNbr();
        const double area = Area(*object);
        EXPECT_EQ(object->MergeCoplanarFaces(0, CHANNEL_ALL), row.changed);
        if (!row.changed) {
            EXPECT_EQ(AllCorners(*object->GetFaceList()), before);
            EXPECT_EQ(object->GetPointNbr(), points);
            continue;
        }
        CheckInStep(*object);
        ASSERT_EQ(object->GetFaceNbr(), 1);
        if (row.name != std::string("copy of the seed")) {
            EXPECT_NEAR(Area(*object), area, 1e-6);
        }
        C3DFace face, expected;
        object->GetFaceList()->GetFace(0, face);
        Owned<C3DFaceList> list(C3DFaceList::Create(nullptr));
        if (row.name == std::string("straight border"))
            row.expected = {{0, 1, 2}};    // the middle point went, the others moved up
        AddFaces(*list, row.expected);
        list->GetFace(0, expected);
        EXPECT_TRUE(face.CompareIndexes(expected, true));
    }
}

TEST(CoplanarMerge, WhatPartsFaces)
{
    const auto facesAfter = [](auto prepare, double angle = 0, unsigned int channels = CHANNEL_ALL) {
        const Owned<C3DObject> object = ObjectOf(TriangleGrid(1, 1));
        prepare(*object);
        object->MergeCoplanarFaces(angle, channels);
        CheckInStep(*object);
        return object->GetFaceNbr();
    };
    const auto bend = [](double angle) {
        return [=](C3DGeomObject& o) { o.GetPointList()->ElementAt(2)->z = static_cast<float>(std::tan(angle) / std::numbers::sqrt2); };
    };
    const auto seam = [](C3DGeomObject& o) { CutOut(*AddUVW(o), 1); };
    EXPECT_EQ(facesAfter([](C3DGeomObject&) {}), 1);
    EXPECT_EQ(facesAfter([](C3DGeomObject& o) { o.GetFaceList()->SetFaceMaterial(1, 7); }), 2);
    EXPECT_EQ(facesAfter([](C3DGeomObject& o) { AddUVW(o); }), 1);
    EXPECT_EQ(facesAfter(seam), 2);
    EXPECT_EQ(facesAfter(seam, std::numbers::pi), 2);
    EXPECT_EQ(facesAfter(seam, 0, CHANNEL_VC), 1);    // the channel does not come along
    EXPECT_EQ(facesAfter(bend(0.0005)), 1);           // within what angle 0 stands for
    EXPECT_EQ(facesAfter(bend(0.01)), 2);
    EXPECT_EQ(facesAfter(bend(0.01), 0.02), 1);
    EXPECT_EQ(facesAfter([](C3DGeomObject& o) { o.GetPointList()->ElementAt(2)->x = std::nanf(""); }), 2);
    EXPECT_EQ(facesAfter([](C3DGeomObject& o) {
                  AddUVW(o)->GetFaceList()->SetFaceFlag(0, FACE_EMPTY, true);
                  CFace face;
                  static_cast<CUVWChannel*>(o.GetChannels()->GetAt(0))->GetFaceList()->GetFace(0, face);
                  face.CCollectionElement::SetSize(0);
              }),
              2);    // data on one side alone
}

// An independent count: faces that hang together through edges without a seam, by union-find, become one face each on a box whose sides are
// cut into strips of two materials.
TEST(CoplanarMerge, BoxOfStrips)
{
    std::mt19937 random(2);
    for (int round = 0; round < 40 && !HasFailure(); round++) {
        SCOPED_TRACE(round);
        const int n = 2 + round % 5;
        std::map<std::array<int, 3>, int> numbers;
        std::vector<XYZ> points;
        FaceCorners corners;
        std::vector<unsigned int> materials;
        std::vector<int> side;
        const auto pointAt = [&](std::array<int, 3> at) {
            const auto [place, added] = numbers.insert({at, static_cast<int>(points.size())});
            if (added)
                points.push_back({static_cast<float>(at[0]), static_cast<float>(at[1]), static_cast<float>(at[2])});
            return place->second;
        };
        for (int axis = 0; axis < 3; axis++)
            for (const int level : {0, n})
                for (int i = 0; i < n; i++) {
                    const unsigned int material = random() % 2;
                    for (int j = 0; j < n; j++) {
                        const auto at = [&](int u, int v) {
                            std::array<int, 3> p{};
                            p[axis] = level, p[(axis + 1) % 3] = u, p[(axis + 2) % 3] = v;
                            return pointAt(p);
                        };
                        std::vector<int> quad = {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)};
                        if (level == 0)
                            std::reverse(quad.begin(), quad.end());
                        for (const auto& t : {FaceCorners::value_type{quad[0], quad[1], quad[2]}, {quad[0], quad[2], quad[3]}}) {
                            corners.push_back(t);
                            materials.push_back(material);
                            side.push_back(2 * axis + (level > 0));
                        }
                    }
                }
        // strips of one material side by side are one region
        std::vector<int> root(corners.size());
        std::iota(root.begin(), root.end(), 0);
        const auto find = [&](int i) {
            while (root[i] != i)
                i = root[i] = root[root[i]];
            return i;
        };
        for (std::size_t i = 0; i < corners.size(); i++)
            for (std::size_t j = 0; j < i; j++) {
                int common = 0;
                for (const int c : corners[i])
                    common += std::count(corners[j].begin(), corners[j].end(), c);
                if (common == 2 && side[i] == side[j] && materials[i] == materials[j])
                    root[find(i)] = find(j);
            }
        std::set<int> regions;
        for (std::size_t i = 0; i < corners.size(); i++)
            regions.insert(find(i));

        const Owned<C3DObject> object = ObjectOf(MakeMesh(points, corners));
        for (std::size_t i = 0; i < materials.size(); i++)
            object->GetFaceList()->SetFaceMaterial(i, materials[i]);
        AddUVW(*object);
        const double area = Area(*object);
        ASSERT_TRUE(object->MergeCoplanarFaces(0, CHANNEL_ALL));
        CheckInStep(*object);
        EXPECT_EQ(object->GetFaceNbr(), static_cast<int>(regions.size()));
        EXPECT_NEAR(Area(*object), area, 1e-4);
        auto* uvw = static_cast<CUVWChannel*>(object->GetChannelByIndex(0, CHANNEL_UVW, true));
        for (int i = 0; i < object->GetFaceNbr(); i++) {    // each corner has the value that its point had
            EXPECT_EQ(Corners(*object->GetFaceList(), i).size(), 4u);
            const auto geometry = Corners(*object->GetFaceList(), i), values = Corners(*uvw->GetFaceList(), i);
            for (std::size_t k = 0; k < geometry.size(); k++) {
                const C3DTPoint<float>& p = *(*object->GetPointList())[geometry[k]];
                const int old = numbers.at({static_cast<int>(p.x), static_cast<int>(p.y), static_cast<int>(p.z)});
                EXPECT_EQ((*uvw->GetUVWPointList())[values[k]]->u, static_cast<float>(old));
            }
        }
    }
}

TEST(CoplanarMerge, ChannelsHaveValuesOfTheirOwnAndWeightsFollow)
{
    const Owned<C3DObject> object = ObjectOf(TriangleGrid(2, 2));
    CUVWChannel* const uvw = AddUVW(*object);
    auto* weights = new CWeightChannel;
    object->AddChannel(weights);
    weights->GetPointList()->SetSize(9);
    for (int i = 0; i < 9; i++)
        (*weights->GetWeightPointList())[i]->SetWeight(static_cast<float>(i));
    uvw->AddRef();
    const Owned<CUVWChannel> held(uvw);
    object->GetFaceList()->SetBackFaceMaterial(0, 5);
    ASSERT_TRUE(object->MergeCoplanarFaces(0, CHANNEL_ALL));
    CheckInStep(*object);
    EXPECT_EQ(uvw->GetPointList()->GetSize(), 9);    // somebody else's channel is as it was
    EXPECT_EQ(uvw->GetFaceList()->GetSize(), 8);
    ASSERT_EQ(object->GetPointNbr(), 4);
    EXPECT_EQ(object->GetFaceList()->GetBackFaceMaterial(0), 5u);
    auto* kept = static_cast<CWeightChannel*>(object->GetChannelByIndex(0, CHANNEL_WEIGHT, true));
    ASSERT_EQ(kept->GetPointList()->GetSize(), 4);
    const float expected[] = {0, 2, 6, 8};
    for (int i = 0; i < 4; i++)
        EXPECT_EQ((*kept->GetWeightPointList())[i]->GetWeight(), expected[i]);
    EXPECT_EQ(object->GetChannelByIndex(0, CHANNEL_UVW, true)->GetPointList()->GetSize(), 4);
    EXPECT_EQ(object->GetChannelByIndex(0, CHANNEL_UVW, true)->GetChannelID(), uvw->GetChannelID());
}

TEST(CoplanarMerge, StopsWhenTheUserWants)
{
    class Sink : public IProgressSink {
    public:
        bool OnProgress(const CXTString<wchar_t>& text, double fraction) override
        {
            sawText |= text == L"Merging coplanar  faces";
            calls++;
            return fraction < limit;
        }
        double limit = 0.5;
        int calls = 0;
        bool sawText = false;
    } sink;
    const CProgressScope scope(&sink);
    const Owned<C3DObject> object = ObjectOf(TriangleGrid(40, 40));
    AddUVW(*object);
    object->GetFaceList()->SetFaceMaterial(7, 1);
    const unsigned int sum = object->GetChecksum(0xFF);
    EXPECT_FALSE(object->MergeCoplanarFaces(0, CHANNEL_ALL));
    EXPECT_EQ(object->GetChecksum(0xFF), sum);
    EXPECT_TRUE(sink.sawText);
    EXPECT_LT(sink.calls, 130);
}

TEST(CoplanarMerge, AnythingGoesIn)
{
    for (unsigned int seed = 0; seed < 400; seed++) {
        SCOPED_TRACE(seed);
        RandomMesh random(seed, static_cast<RandomMesh::Kind>(seed % 3));
        for (int i = 0; i < random.mesh.points->GetSize(); i++) {
            random.mesh.points->ElementAt(i)->x = static_cast<float>(random.Below(4));
            random.mesh.points->ElementAt(i)->y = static_cast<float>(random.Below(4));
        }
        const Owned<C3DObject> object = ObjectOf(std::move(random.mesh));
        const int before = object->GetFaceNbr();
        const bool changed = object->MergeCoplanarFaces(seed % 4 ? 0 : std::numbers::pi, CHANNEL_ALL);
        EXPECT_EQ(changed, object->GetFaceNbr() < before);
        CheckConsistent(*object->GetFaceList(), seed % 3 == RandomMesh::BROKEN ? -1 : object->GetPointNbr());
    }
}

TEST(CoplanarMerge, PointsOfOnePlane)
{
    // A cube with one side halved: the halves' points belong to other sides too.
    Mesh mesh = MakeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}, {1, 2, 1}, {9, 9, 9}},
                         {{0, 1, 4, 3}, {1, 2, 5, 4}, {3, 4, 6}});
    mesh.points->SetPointsFlags(POINT_SHARE_COPLANAR, true);
    const CGeomInfo info = mesh.Info();
    mesh.points->InitShareCoplanarFacesFlag(&info, 0);
    const bool expected[] = {false, true, false, false, false, false, false, false};
    for (int i = 0; i < 8; i++)
        EXPECT_EQ(mesh.points->ElementAt(i)->IsFlagSet(POINT_SHARE_COPLANAR), expected[i]) << i;
    mesh.points->InitShareCoplanarFacesFlag(&info, 1);
    EXPECT_TRUE(mesh.points->ElementAt(3)->IsFlagSet(POINT_SHARE_COPLANAR));
    EXPECT_FALSE(mesh.faces->HasPointToFaceGraph());
}
