#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <numeric>
#include <random>
#include <set>

#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/CoplanarMerge.h"
#include "meshops/ObjectCase.h"
#include "meshops/SlotTable.h"
#include "support/Checksum.h"
#include "support/RandomMesh.h"
#include "tools/Progress.h"

namespace {

using FaceCorners = std::vector<std::vector<int>>;

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

}

// Faults in mind: the order in which a hash table would be walked, or that of the queue; copies of the seed; the table of faces of a point.
// The sum is that of the plain way, with tables and graphs for every step.
TEST(CoplanarMerge, SameResultAsThePlainWay)
{
    std::mt19937 random(11);
    Checksum sum;
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

        const bool changed = object->MergeCoplanarFaces(0.01, CHANNEL_ALL);
        merged += changed;
        CheckInStep(*object);
        auto* after = static_cast<CUVWChannel*>(object->GetChannelByIndex(0, CHANNEL_UVW, true));
        ASSERT_TRUE(after);
        sum.Add(changed, AllCorners(*object->GetFaceList()), PlacesOf(*object->GetPointList()));
        for (int i = 0; i < object->GetFaceNbr(); i++)
            sum.Add(UsOf(*after, i));
    }
    EXPECT_GT(merged, 300);
    EXPECT_EQ(sum.Get(), 0x916A14BDB91E522Bu);
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

// A box whose sides are cut into strips of two materials: borders run straight on where strips of another side or material end.
TEST(CoplanarMerge, ClosedMeshesStayClosedWhereAsked)
{
    std::mt19937 random(2);
    for (int round = 0; round < 40 && !HasFailure(); round++) {
        SCOPED_TRACE(round);
        const int n = 2 + round % 5;
        std::map<std::array<int, 3>, int> numbers;
        std::vector<XYZ> points;
        FaceCorners corners;
        std::vector<unsigned int> materials;
        for (int axis = 0; axis < 3; axis++)
            for (const int level : {0, n})
                for (int i = 0; i < n * n; i++) {
                    if (i % n == 0)
                        materials.push_back(random() % 2);
                    std::vector<int> quad;
                    for (const auto& [u, v] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
                        std::array<int, 3> p{};
                        p[axis] = level, p[(axis + 1) % 3] = i / n + u, p[(axis + 2) % 3] = i % n + v;
                        const auto [place, added] = numbers.insert({p, static_cast<int>(points.size())});
                        if (added)
                            points.push_back({static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])});
                        quad.push_back(place->second);
                    }
                    corners.push_back(level ? quad : std::vector<int>(quad.rbegin(), quad.rend()));
                }
        int faceCount = 0, pointCount = 0;
        for (const bool closed : {false, true}) {
            SCOPED_TRACE(closed);
            const Owned<C3DObject> object = ObjectOf(MakeMesh(points, corners));
            for (std::size_t i = 0; i < corners.size(); i++)
                object->GetFaceList()->SetFaceMaterial(static_cast<unsigned int>(i), materials[i / n]);
            AddUVW(*object);
            ASSERT_TRUE(closed ? MergeCoplanarFacesClosed(*object, 0, CHANNEL_ALL) : object->MergeCoplanarFaces(0, CHANNEL_ALL));
            CheckInStep(*object);
            auto* uvw = static_cast<CUVWChannel*>(object->GetChannelByIndex(0, CHANNEL_UVW, true));
            std::map<std::pair<int, int>, int> edges;
            for (int i = 0; i < object->GetFaceNbr(); i++) {
                const auto geometry = Corners(*object->GetFaceList(), i), values = Corners(*uvw->GetFaceList(), i);
                for (std::size_t k = 0; k < geometry.size(); k++) {
                    const C3DTPoint<float>& p = *(*object->GetPointList())[geometry[k]];
                    const int old = numbers.at({static_cast<int>(p.x), static_cast<int>(p.y), static_cast<int>(p.z)});
                    EXPECT_EQ((*uvw->GetUVWPointList())[values[k]]->u, static_cast<float>(old));
                    edges[std::minmax({geometry[k], geometry[(k + 1) % geometry.size()]})]++;
                }
            }
            if (closed) {    // a corner that no region turns at goes all the same
                EXPECT_EQ(object->GetFaceNbr(), faceCount);
                EXPECT_EQ(object->GetPointNbr(), pointCount);
                EXPECT_TRUE(std::all_of(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 2; }));
            }
            faceCount = object->GetFaceNbr(), pointCount = object->GetPointNbr();
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
