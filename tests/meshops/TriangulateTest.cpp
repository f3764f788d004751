#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <random>

#include "channels/WeightChannel.h"
#include "meshops/ObjectCase.h"
#include "scene/Curve.h"
#include "support/Checksum.h"

namespace {

using Triangles = std::vector<std::vector<int>>;
constexpr _FACE_PROPERTIES ALL_FACES{};

// --- Polygons ------------------------------------------------------------------------------------------------------------------------

using Polygon = std::vector<XYZ>;

Mesh MeshOf(const Polygon& polygon, const std::vector<int>& corners) { return MakeMesh(polygon, {corners}); }
std::vector<int> UpTo(int n)
{
    std::vector<int> numbers(n);
    for (int i = 0; i < n; i++)
        numbers[i] = i;
    return numbers;
}

/// Radii that jump up and down: simple, with many reflex corners.
Polygon Star(std::mt19937& random, int n)
{
    Polygon polygon;
    for (int i = 0; i < n; i++) {
        const double turn = 2 * std::numbers::pi * i / n, radius = 0.2 + random() % 1000 / 1000.0;
        polygon.push_back({static_cast<float>(radius * std::cos(turn)), static_cast<float>(radius * std::sin(turn)), 0});
    }
    return polygon;
}
/// Anything: crosses itself, touches itself, corners in a line.
Polygon Scribble(std::mt19937& random, int n, int grid)
{
    Polygon polygon;
    for (int i = 0; i < n; i++)
        polygon.push_back({static_cast<float>(random() % grid), static_cast<float>(random() % grid), 0});
    return polygon;
}
/// Teeth on a spine; the spine's side has as many corners in a line.
Polygon Comb(int teeth)
{
    Polygon polygon;
    for (int i = 0; i < teeth; i++) {
        const float x = static_cast<float>(2 * i);
        polygon.push_back({x, 0, 0});
        polygon.push_back({x + 1, 0, 0});
    }
    for (int i = teeth - 1; i >= 0; i--) {
        const float x = static_cast<float>(2 * i);
        polygon.push_back({x + 1, 1, 0});
        polygon.push_back({x + 0.5f, 20, 0});
        polygon.push_back({x, 1, 0});
    }
    return polygon;
}
/// A band that winds around the middle.
Polygon Spiral(int n)
{
    Polygon polygon;
    const auto at = [](double turn, double radius) {
        return XYZ{static_cast<float>(radius * std::cos(turn)), static_cast<float>(radius * std::sin(turn)), 0};
    };
    for (int i = 0; i < n; i++)
        polygon.push_back(at(0.1 * i, 1 + 0.02 * i));
    for (int i = n - 1; i >= 0; i--)
        polygon.push_back(at(0.1 * i, 1.5 + 0.02 * i));
    return polygon;
}
/// A tip over a chain that bulges towards it: all of the chain is reflex.
Polygon Bay(int n)
{
    Polygon polygon = {{0, 2, 0}};
    for (int i = 0; i <= n; i++) {
        const double t = -1 + 2.0 * i / n;
        polygon.push_back({static_cast<float>(t), static_cast<float>(1 - t * t), 0});
    }
    return polygon;
}
void Tilt(Polygon& polygon)
{
    for (XYZ& p : polygon)
        p = {0.6f * p.x - 0.3f * p.y + 5, 0.2f * p.x + 0.9f * p.y - 7, 0.7f * p.x + 0.1f * p.y};
}
double Area(const Polygon& p, const std::vector<int>& corners)
{
    double x = 0, y = 0, z = 0;
    for (std::size_t i = 0; i < corners.size(); i++) {
        const XYZ &a = p[corners[i]], &b = p[corners[(i + 1) % corners.size()]];
        x += double{a.y} * b.z - double{a.z} * b.y;
        y += double{a.z} * b.x - double{a.x} * b.z;
        z += double{a.x} * b.y - double{a.y} * b.x;
    }
    return 0.5 * std::sqrt(x * x + y * y + z * z);
}

/// Triangulates all faces of a mesh.
Owned<C3DFaceList> Split(const Mesh& mesh, _FACE_PROPERTIES properties = ALL_FACES, bool wanted = true)
{
    CGeomInfo info = mesh.Info();
    const int count = mesh.faces->Triangulate(&info, CHANNEL_ALL, properties, wanted);
    Owned<C3DFaceList> target(info.GetDst3DFaceList(true));
    EXPECT_EQ(target->GetSize(), count);
    CheckConsistent(*target, mesh.points->GetSize());
    return target;
}

/// Edges that have a face on one side alone: how often each runs from its lower point to the higher one, less how often it runs back.
std::map<std::pair<int, int>, int> Outline(const std::vector<std::vector<int>>& faces)
{
    std::map<std::pair<int, int>, int> edges;
    for (const auto& face : faces)
        for (std::size_t k = 0; k < face.size(); k++) {
            const int a = face[k], b = face[(k + 1) % face.size()];
            if (a != b)
                edges[{std::min(a, b), std::max(a, b)}] += a < b ? 1 : -1;
        }
    std::erase_if(edges, [](const auto& edge) { return edge.second == 0; });
    return edges;
}

// No polygon leaves a hole, whatever it looks like.
void AddSplit(Checksum& sum, const Polygon& polygon, const std::vector<int>& corners)
{
    const Triangles triangles = AllCorners(*Split(MeshOf(polygon, corners)));
    ASSERT_EQ(Outline(triangles), Outline({corners}));
    sum.Add(triangles);
}

}

// Faults in mind: ties between equal angles fall another way, a corner on an edge of the ear blocks it, the quick comparison of angles and
// the numbers disagree, the tree or the tournament misses an update; the limit between few and many corners. The sums are those of cutting
// with a look at all corners each time, and then of the rest by its smallest inner angle.
TEST(Triangulate, SameEarsAsThePlainWay)
{
    std::mt19937 random(7);
    Checksum stars, scribbles;
    for (int round = 0; round < 1500; round++) {
        const int n = round % 3 == 0 ? 4 + random() % 4 : round % 3 == 1 ? 4 + random() % 60 : 40 + random() % 160;
        Polygon polygon = round % 2 ? Star(random, n) : Scribble(random, n, 3 + random() % (2 * n));
        if (round % 5 == 0)
            Tilt(polygon);
        if (round % 11 == 0)
            polygon[random() % n].x = round % 22 ? std::numeric_limits<float>::quiet_NaN() : std::numeric_limits<float>::infinity();
        std::vector<int> corners = UpTo(n);
        for (int i = 0; i < n; i++)
            if (round % 7 == 0 && random() % 8 == 0)
                corners[i] = random() % n;
        AddSplit(round % 2 ? stars : scribbles, polygon, corners);
    }
    EXPECT_EQ(stars.Get(), 0x923B7174AA405A39u);
    EXPECT_EQ(scribbles.Get(), 0x71EE64C3B66B4FCFu);
}

TEST(Triangulate, RegularShapesAreFullOfTies)
{
    std::mt19937 random(9);
    Checksum shapes, squares;
    for (int n = 4; n < 130; n += n < 20 ? 1 : 11) {
        Polygon round;
        for (int i = 0; i < n; i++) {
            const double turn = 2 * std::numbers::pi * i / n;
            round.push_back({static_cast<float>(std::cos(turn)), static_cast<float>(std::sin(turn)), 0});
        }
        for (Polygon polygon : {round, Comb(n / 2), Spiral(n / 2 + 2), Bay(n)}) {
            const std::vector<int> corners = UpTo(static_cast<int>(polygon.size()));
            AddSplit(shapes, polygon, corners);
            Tilt(polygon);
            AddSplit(shapes, polygon, corners);
        }
    }
    for (int round = 0; round < 3000; round++) {    // parallelograms, nearly: two and two angles next to equal
        const auto value = [&] { return static_cast<float>(random() % 100) / 7; };
        const XYZ a{value(), value(), 0}, b{value(), value(), 0}, c{value(), value(), 0};
        AddSplit(squares, {a, b, c, {a.x + c.x - b.x, a.y + c.y - b.y, static_cast<float>(round % 2) * 1e-6f}}, UpTo(4));
    }
    EXPECT_EQ(shapes.Get(), 0xB4F26610D0C14B51u);
    EXPECT_EQ(squares.Get(), 0xE8F32EC583E1DD13u);
}

TEST(Triangulate, CoversSimplePolygons)
{
    std::mt19937 random(3);
    const std::vector<Polygon> polygons = {Star(random, 9), Star(random, 300), Comb(60), Spiral(200), Bay(300)};
    for (std::size_t i = 0; i < polygons.size(); i++) {
        SCOPED_TRACE(i);
        Polygon polygon = polygons[i];
        Tilt(polygon);
        const std::vector<int> corners = UpTo(static_cast<int>(polygon.size()));
        const auto faces = Split(MeshOf(polygon, corners));
        EXPECT_EQ(faces->GetSize(), static_cast<int>(polygon.size()) - 2);
        double area = 0;
        for (const auto& triangle : AllCorners(*faces))
            area += Area(polygon, triangle);
        EXPECT_NEAR(area, Area(polygon, corners), 1e-4 * area);
    }
}

// The work must not grow with the square: looking at all corners for each ear takes minutes here.
TEST(Triangulate, ManyCorners)
{
    for (const Polygon& polygon : {Comb(12000), Spiral(30000), Bay(60000)}) {
        const int corners = static_cast<int>(polygon.size());
        EXPECT_EQ(Split(MeshOf(polygon, UpTo(corners)))->GetSize(), corners - 2);
    }
}

TEST(Triangulate, WhatIsSplit)
{
    const Polygon square = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {1, 3, 0}, {1, 0, 0}, {0, 1, 0}};
    struct {
        const char* name;
        std::vector<int> corners;
        int triangles;
    } const rows[] = {
        {"triangle", {0, 1, 2}, 1},
        {"two corners", {0, 1}, 1},
        {"none", {}, 1},
        {"convex quad", {0, 1, 2, 3}, 2},
        {"convex pentagon", {0, 1, 2, 4, 3}, 3},
        {"two lobes at a point", {0, 1, 2, 0, 4, 3}, 2},
        {"lobe with a spike", {0, 1, 2, 0, 3}, 1},
        {"all in a line", {0, 5, 1, 5}, 0},
        {"corner beyond the points", {0, 1, 2, 99}, 0},
        {"negative corner", {0, 1, -2, 3, 4}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Mesh mesh = MakeMesh(square, {row.corners});
        _TriangularInfo what;
        mesh.faces->GetTriangularCount(nullptr, &what, ALL_FACES, true);
        EXPECT_EQ(what, row.corners.size() > 3 ? TRIANGULAR_ALL : TRIANGULAR_NOTHING);
        CGeomInfo info = mesh.Info();
        EXPECT_EQ(mesh.faces->Triangulate(&info, CHANNEL_ALL, ALL_FACES, true), row.triangles);
        EXPECT_EQ(info.GetDstFaceList() == mesh.faces, row.corners.size() <= 3);

        // the face alone, to lists of its own size
        Owned<C3DFaceList> one(C3DFaceList::Create(nullptr));
        CGeomInfo single = mesh.Info();
        single.SetFaceList(mesh.faces, one.get(), 0);
        C3DFace face;
        mesh.faces->GetFace(0, face);
        EXPECT_EQ(face.Triangulate(&single, 0, -1), row.triangles);
        EXPECT_EQ(AllCorners(*one), AllCorners(*info.GetDstFaceList()));
    }
}

TEST(Triangulate, ChannelsAndSideDataFollow)
{
    // Faces: pentagon, quad, triangle, dead quad, quad. What can go wrong in a channel: a face without data, one of another size.
    Owned<C3DObject> object(new C3DObject);
    Mesh mesh = MakeMesh({{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {2, 2, 0}, {0, 2, 0}, {5, 0, 0}},
                         {{0, 1, 2, 3, 4}, {0, 1, 3, 4}, {1, 5, 2}, {0, 1, 3, 4}, {1, 5, 2, 3}});
    object->SetPointList(std::exchange(mesh.points, nullptr), true);
    object->SetFaceList(std::exchange(mesh.faces, nullptr), true);
    C3DFaceList& faces = *object->GetFaceList();
    faces.SetFaceFlag(3, FACE_INVALID, true);
    for (int i = 0; i < 5; i++) {
        faces.SetFaceMaterial(i, 100 + i);
        faces.SetBackFaceMaterial(i, 200 + i);
    }
    auto* uvw = new CUVWChannel;
    auto* weights = new CWeightChannel;
    object->AddChannel(uvw);
    object->AddChannel(weights);
    weights->GetPointList()->SetSize(6);
    AddFaces(*uvw->GetFaceList(), {{14, 13, 12, 11, 10}, {}, {20, 21, 22}, {30, 31, 32, 33}, {40, 41, 42}});
    uvw->GetFaceList()->SetFaceFlag(1, FACE_EMPTY, true);
    uvw->GetPointList()->SetSize(50);
    CPointList* const values = uvw->GetPointList();
    const unsigned int id = uvw->GetChannelID();
    const auto cornersBefore = AllCorners(faces);

    ASSERT_TRUE(object->Triangulate(CHANNEL_ALL, ALL_FACES, true));
    C3DFaceList& split = *object->GetFaceList();
    CheckConsistent(split, 6);
    ASSERT_EQ(split.GetSize(), 3 + 2 + 1 + 2 + 2);
    auto* followed = static_cast<CUVWChannel*>(object->GetChannelByID(id, CHANNEL_UVW));
    ASSERT_TRUE(followed);
    EXPECT_EQ(followed->GetPointList(), values);
    CheckConsistent(*followed->GetFaceList(), 50);
    ASSERT_EQ(followed->GetFaceList()->GetSize(), split.GetSize());
    EXPECT_EQ(object->GetChannels()->GetChannelByIndex(0, CHANNEL_WEIGHT, true)->GetPointList()->GetSize(), 6);
    const int from[] = {0, 0, 0, 1, 1, 2, 3, 3, 4, 4};
    for (int i = 0; i < split.GetSize(); i++) {
        SCOPED_TRACE(i);
        EXPECT_EQ(split.IsFaceFlagSet(i, FACE_INVALID), from[i] == 3);
        C3DFace face;
        split.GetFace(i, face);
        EXPECT_EQ(face.GetMaterialID(), 100u + from[i]);
        EXPECT_EQ(split.GetBackFaceMaterial(i), 200u + from[i]);
        const bool hasData = from[i] != 1 && from[i] != 4;
        EXPECT_EQ(followed->GetFaceList()->IsFaceFlagSet(i, FACE_EMPTY), !hasData);
        std::vector<int> expected;    // the value at each corner's place in the face that it comes from
        const std::vector<int> places = cornersBefore[from[i]];
        for (const int corner : Corners(split, i)) {
            const int place = static_cast<int>(std::find(places.begin(), places.end(), corner) - places.begin());
            expected.push_back(from[i] == 0 ? 14 - place : 10 * from[i] + place);
        }
        EXPECT_EQ(Corners(*followed->GetFaceList(), i), hasData ? expected : std::vector<int>());
    }
    EXPECT_FALSE(object->Triangulate(CHANNEL_ALL, ALL_FACES, true));
    EXPECT_TRUE(object->IsTriangular(ALL_FACES, true));
}

TEST(Triangulate, ObjectsThatAreLeftAlone)
{
    const auto give = [](C3DGeomObject& object) {
        Mesh mesh = QuadGrid(2);
        object.SetPointList(std::exchange(mesh.points, nullptr), true);
        object.SetFaceList(std::exchange(mesh.faces, nullptr), true);
    };
    Owned<C3DObject> object(new C3DObject), empty(new C3DObject), bare(new C3DObject);
    Owned<C3DCurve> curve(new C3DCurve);
    for (C3DGeomObject* o :
         {static_cast<C3DGeomObject*>(object.get()), static_cast<C3DGeomObject*>(empty.get()), static_cast<C3DGeomObject*>(curve.get())})
        give(*o);
    empty->SetFlag(OBJECT_EMPTY, true);
    C3DFaceList* const faces = object->GetFaceList();
    EXPECT_FALSE(curve->Triangulate(CHANNEL_ALL, ALL_FACES, true));
    EXPECT_FALSE(empty->Triangulate(CHANNEL_ALL, ALL_FACES, true));
    EXPECT_FALSE(bare->Triangulate(CHANNEL_ALL, ALL_FACES, true));
    EXPECT_FALSE(object->Triangulate(CHANNEL_ALL, FACE_BORDER, true));    // none has that flag
    EXPECT_FALSE(object->Quadrangulate(CHANNEL_ALL));
    EXPECT_EQ(object->GetFaceList(), faces);
    EXPECT_EQ(faces->GetNumberOfFaces(0xFFFFFFFFu, true), 0);

    faces->SetFaceFlag(1, FACE_BORDER, true);
    EXPECT_TRUE(object->Triangulate(CHANNEL_ALL, FACE_BORDER, false));    // all but face 1
    EXPECT_EQ(object->GetFaceNbr(), 7);
    EXPECT_EQ(Corners(*object->GetFaceList(), 2), (std::vector<int>{1, 2, 5, 4}));
}

TEST(Triangulate, QuadrangulateSplitsWhatHasMoreThanFourCorners)
{
    Owned<C3DObject> object(new C3DObject);
    Mesh mesh = MakeMesh({{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {2, 2, 0}, {0, 2, 0}}, {{0, 1, 2, 3, 4}, {0, 1, 3, 4}, {0, 1, 2}});
    object->SetPointList(std::exchange(mesh.points, nullptr), true);
    object->SetFaceList(std::exchange(mesh.faces, nullptr), true);
    ASSERT_TRUE(object->Quadrangulate(CHANNEL_ALL));
    ASSERT_EQ(object->GetFaceNbr(), 5);
    EXPECT_EQ(Corners(*object->GetFaceList(), 3), (std::vector<int>{0, 1, 3, 4}));
    EXPECT_EQ(object->GetFaceList()->GetNumberOfFaces(0xFFFFFFFFu, true), 0);    // no mark is left
}
