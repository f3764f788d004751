#include "geometry/3DPointList.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "geometry/3DVectorList.h"
#include "geometry/4x4Matrix.h"
#include "support/Checksum.h"
#include "support/Meshes.h"
#include "support/Owned.h"
#include "support/Streams.h"

namespace {

using Point = C3DTPoint<float>;
using Vector = C3DTVector<float>;
using Matrix = C4x4TMatrix<float>;

struct Values {
    float x, y, z;
    unsigned int flags = 0;
};

template <class LIST> Owned<LIST> Make(const std::vector<Values>& values)
{
    Owned<LIST> list(LIST::Create());
    list->SetSize(static_cast<int>(values.size()));
    for (std::size_t i = 0; i < values.size(); i++) {
        auto& element = *list->ElementAt(static_cast<int>(i));
        element.x = values[i].x, element.y = values[i].y, element.z = values[i].z;
        element.SetFlags(values[i].flags);
    }
    list->SetFlag(POINTLIST_CHANGED, false);
    return list;
}

std::vector<Values> Random(int count, unsigned int seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> coordinate(-100, 100);
    std::vector<Values> values(static_cast<std::size_t>(count));
    for (Values& v : values)
        v = {coordinate(random), coordinate(random), coordinate(random), static_cast<unsigned int>(random())};
    return values;
}

Matrix Rows(const std::vector<float>& rows)
{
    Matrix m;
    for (std::size_t i = 0; i < rows.size(); i++)
        m.m[i / 4][i % 4] = rows[i];
    return m;
}

const Matrix MOVED_AND_TURNED = Rows({0.3f, -1.7f, 0.25f, 11, 2.1f, 0.7f, -0.9f, -5, 0.01f, 3.3f, 1.1f, 0.5f});

constexpr float NOT = std::numeric_limits<float>::quiet_NaN();
constexpr float FAR = std::numeric_limits<float>::infinity();
constexpr float MOST = std::numeric_limits<float>::max();

}

TEST(C3DPointList, BoundingBoxOfTheSelectedPoints)
{
    constexpr unsigned int I = POINT_INVALID, B = POINT_BORDER;
    const Matrix mirrored = Rows({-1, 0, 0, 7, 0, 0, 1, 0, 0, 1, 0, 0}), doubled = Rows({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0});
    struct {
        const char* name;
        std::vector<Values> points;
        unsigned int mask;
        bool wanted;
        const Matrix* matrix;
        bool any;
        Values min, max;
    } const rows[] = {
        {"empty", {}, 0, true, nullptr, false, {0, 0, 0}, {0, 0, 0}},
        {"away from the origin", {{5, 6, 7}, {8, 9, 10}}, 0, true, nullptr, true, {5, 6, 7}, {8, 9, 10}},
        {"without the invalid", {{5, 6, 7, I}, {8, 9, 10}}, I, false, nullptr, true, {8, 9, 10}, {8, 9, 10}},
        {"any bit of two", {{1, 1, 1, I}, {2, 2, 2, B}, {3, 3, 3}}, I | B, true, nullptr, true, {1, 1, 1}, {2, 2, 2}},
        {"selected, mirrored and moved", {{1, 2, 3}, {4, 5, 6}, {9, 9, 9, I}}, I, false, &mirrored, true, {3, 3, 2}, {6, 6, 5}},
        {"a coordinate is no number", {{NOT, 1, 2}, {3, NOT, 4}}, 0, true, nullptr, true, {3, 1, 2}, {3, 1, 4}},
        {"no number at all", {{NOT, NOT, NOT}}, 0, true, nullptr, true, {0, 0, 0}, {0, 0, 0}},
        {"the largest", {{MOST, -MOST, 1}, {0, 0, 2}}, 0, true, nullptr, true, {0, -MOST, 1}, {MOST, 0, 2}},
        {"infinite", {{FAR, 1, -FAR}, {3, -FAR, 5}, {9, 9, 9, I}}, I, false, nullptr, true, {3, 1, 5}, {3, 1, 5}},
        {"infinite once it is moved", {{MOST, 1, 2}, {3, 4, 5}}, 0, true, &doubled, true, {6, 2, 4}, {6, 8, 10}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto list = Make<C3DPointList>(row.points);
        Point min(7, 7, 7), max(8, 8, 8);
        EXPECT_EQ(list->GetBoundingBox(min, max, row.mask, row.wanted, row.matrix), row.any);
        EXPECT_EQ(min, (Point(row.min.x, row.min.y, row.min.z)));
        EXPECT_EQ(max, (Point(row.max.x, row.max.y, row.max.z)));
        EXPECT_EQ(min.flags | max.flags, 0u);
    }
}

TEST(C3DPointList, RandomListsGiveTheSumsOfTheSlowWay)
{
    // Faults in mind: an unrolled loop that forgets its rest, or mixes up the lanes; a product and a sum rounded in one step; the short cut
    // over what has left a checksum starts a point too late, or counts invalid points. The sum is that of plain loops.
    Checksum sum;
    for (const int count : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 33, 300, 1001}) {
        SCOPED_TRACE(count);
        const auto values = Random(count, 7);
        const auto list = Make<C3DPointList>(values);
        for (const Matrix* matrix : {static_cast<const Matrix*>(nullptr), &MOVED_AND_TURNED})
            for (const unsigned int mask : {0u, 1u, 2u}) {
                Point min, max;
                sum.Add(list->GetBoundingBox(min, max, mask, true, matrix), min, max);
            }
        sum.Add(list->GetCenterOfBoundingBox());
        for (const int live : {1, 3, 40}) {    // every so manyth point is live
            for (int i = 0; i < count; i++)
                list->ElementAt(i)->SetFlag(POINT_INVALID, i % live != 0);
            sum.Add(list->GetChecksum(1), list->GetChecksum(2), list->GetChecksum(3));
        }
        EXPECT_TRUE(list->MatrixTransform(MOVED_AND_TURNED));
        EXPECT_FALSE(list->IsFlagSet(POINTLIST_CHANGED));
        for (int i = 0; i < count; i++)
            sum.Add(*list->ElementAt(i), list->ElementAt(i)->flags);
    }
    EXPECT_EQ(sum.Get(), 0xB67451DFEC9AE809u);
}

TEST(C3DVectorList, OnlyTheRotationTurnsVectors)
{
    const Matrix turn = Rows({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0});    // a quarter turn about z
    Matrix larger = turn;
    larger.Scale(2, 2, 2);
    larger.SetTranslation(5, 6, 7);
    struct {
        const char* name;
        Matrix matrix;
        bool turned;
        Values result;
    } const rows[] = {
        {"identity", Matrix(), false, {1, 2, 3}},
        {"twice as large", Rows({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0}), false, {1, 2, 3}},
        {"turned, larger and moved", larger, true, {-2, 1, 3}},
        {"mirrored", Rows({-1, 0, 0, 0}), true, {-1, 2, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto list = Make<C3DVectorList>({{1, 2, 3, POINT_COMPUTED}});
        EXPECT_EQ(list->MatrixTransform(row.matrix), row.turned);
        EXPECT_EQ(*list->ElementAt(0), (Vector(row.result.x, row.result.y, row.result.z)));
        EXPECT_EQ(list->ElementAt(0)->flags, POINT_COMPUTED);
    }
}

TEST(C3DPointList, SwapExchangesThenMirrors)
{
    struct {
        unsigned int code;
        bool done;
        Values result;
    } const rows[] = {
        {0, false, {1, 2, 3}},    {0x1, true, {2, 1, 3}},   {0x2, true, {3, 2, 1}},   {0x4, true, {1, 3, 2}},  {0x10, true, {-1, 2, 3}},
        {0x14, true, {-1, 3, 2}}, {0x21, true, {2, -1, 3}}, {0x42, true, {3, 2, -1}}, {0x3, false, {1, 2, 3}}, {0x31, false, {1, 2, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        const auto points = Make<C3DPointList>({{0, 0, 0}, {1, 2, 3, POINT_INVALID}});
        const auto vectors = Make<C3DVectorList>({{1, 2, 3}});
        EXPECT_EQ(points->SwapCoordinates(row.code), row.done);
        EXPECT_EQ(vectors->SwapCoordinates(row.code), row.done);
        EXPECT_EQ(*points->ElementAt(1), (Point(row.result.x, row.result.y, row.result.z)));
        EXPECT_EQ(*vectors->ElementAt(0), (Vector(row.result.x, row.result.y, row.result.z)));
    }
}

// --- Faces and materials around the points -----------------------------------------------------------------------------------

TEST(PointList, PointsWithoutLiveFacesAreMarked)
{
    constexpr unsigned int I = POINT_INVALID;
    struct {
        const char* name;
        unsigned int dead0, dead1;
        bool keep, faces;
        std::vector<unsigned int> flags;
    } const rows[] = {
        {"marks start anew", 0, 0, false, true, {0, 0, 0, 0, I}},
        {"a mark stays", 0, 0, true, true, {I, 0, 0, 0, I}},
        {"an invalid face", FACE_INVALID, 0, false, true, {I, 0, 0, 0, I}},
        {"an empty face", 0, FACE_EMPTY, false, true, {0, 0, 0, I, I}},
        {"no faces", 0, 0, false, false, {I, I, I, I, I}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Mesh mesh = MakeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {5, 5, 5}}, {{0, 1, 2}, {1, 3, 2, 99, -1}});
        mesh.points->ElementAt(0)->SetFlags(POINT_INVALID);
        mesh.faces->SetFaceFlags(0, row.dead0, true);
        mesh.faces->SetFaceFlags(1, row.dead1, true);
        mesh.points->SetInvalidPoints(row.faces ? mesh.faces : nullptr, row.keep);
        std::vector<unsigned int> flags;
        for (int i = 0; i < 5; i++)
            flags.push_back(mesh.points->ElementAt(i)->flags);
        EXPECT_EQ(flags, row.flags);
    }
}

namespace {

std::vector<unsigned int> MaterialsAt(const C3DPointList& points, int point)
{
    int count = -1;
    const unsigned int* materials = points.GetMaterialsConnectedToPoint(point, count);
    EXPECT_EQ(materials == nullptr, count == 0);
    EXPECT_EQ(points.GetNumberOfMaterialsConnectedToPoint(point), materials ? count : 1);
    return {materials, materials + count};
}

using Ids = std::vector<unsigned int>;

}

TEST(C3DPointList, MaterialsOfPoints)
{
    // 2 x 2 quads, points 0..8 by rows, faces 0 1 / 2 3. Material of faces: 7, 3, 7 and a dead one. Start slots 16 * id modulo 101:
    // 7 -> 11, 3 -> 48, 20 -> 17.
    Mesh mesh = QuadGrid(2);
    const unsigned int materials[] = {7, 3, 7, 9};
    for (unsigned int face = 0; face < 4; face++)
        mesh.faces->SetFaceMaterial(face, materials[face]);
    mesh.faces->SetFaceFlags(3, FACE_INVALID, true);
    const CGeomInfo info = mesh.Info();

    mesh.points->InitPointMaterialGraph(&info);
    EXPECT_FALSE(mesh.faces->HasPointToFaceGraph());    // used for the time of building only
    for (int point = 0; point < 9; point++) {
        const bool shared = point == 1 || point == 4;    // between faces 0 and 1; in the middle
        EXPECT_EQ(MaterialsAt(*mesh.points, point), (shared ? Ids{7, 3} : Ids())) << point;
    }
    for (const int outside : {-1, 9})
        EXPECT_EQ(MaterialsAt(*mesh.points, outside), Ids());
    mesh.points->ElementAt(0)->SetFlags(POINT_SHARE_MATERIALS);
    EXPECT_TRUE(mesh.points->InitShareSeveralMaterialsFlag());
    for (int point = 0; point < 9; point++)
        EXPECT_EQ(mesh.points->ElementAt(point)->IsFlagSet(POINT_SHARE_MATERIALS), point == 1 || point == 4) << point;

    // Counted: the second user sees what the first one built, until the points are told to have changed.
    mesh.faces->SetFaceMaterial(0, 20);
    mesh.points->InitPointMaterialGraph(&info);
    EXPECT_EQ(MaterialsAt(*mesh.points, 1), (Ids{7, 3}));
    mesh.points->SetFlag(POINTLIST_CHANGED, true);
    mesh.points->InitPointMaterialGraph(&info);
    EXPECT_EQ(MaterialsAt(*mesh.points, 1), (Ids{20, 3}));
    EXPECT_EQ(MaterialsAt(*mesh.points, 4), (Ids{7, 20, 3}));
    mesh.points->DeletePointMaterialGraph();
    mesh.points->DeletePointMaterialGraph();
    EXPECT_EQ(MaterialsAt(*mesh.points, 1), (Ids{20, 3}));
    mesh.points->DeletePointMaterialGraph();
    EXPECT_EQ(MaterialsAt(*mesh.points, 1), Ids());
}

TEST(C3DPointList, MaterialGraphGoesWithItsPoints)
{
    struct {
        const char* name;
        void (*operation)(C3DPointList&);
    } const rows[] = {
        {"RemoveAll", [](C3DPointList& points) { points.RemoveAll(); }},
        {"assignment", [](C3DPointList& points) { points = *Owned<C3DPointList>(C3DPointList::Create()); }},
        {"stream", [](C3DPointList& points) { Load(points, Stored(points)); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Mesh mesh = Fan(4);
        mesh.faces->SetFaceMaterial(0, 5);
        const CGeomInfo info = mesh.Info();
        mesh.points->InitPointMaterialGraph(&info);
        EXPECT_EQ(MaterialsAt(*mesh.points, 0).size(), 2u);
        row.operation(*mesh.points);
        EXPECT_EQ(MaterialsAt(*mesh.points, 0), Ids());
        mesh.points->DeletePointMaterialGraph();
    }
    Mesh mesh = Fan(4);
    mesh.faces->RemoveAll();
    for (const CGeomInfo& info : {mesh.Info(), CGeomInfo(nullptr, mesh.points)}) {
        mesh.points->InitPointMaterialGraph(&info);
        EXPECT_EQ(MaterialsAt(*mesh.points, 0), Ids());
        mesh.points->DeletePointMaterialGraph();
    }
}
