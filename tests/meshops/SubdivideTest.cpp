#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "scene/3DObject.h"
#include "scene/Patch.h"
#include "scene/Preferences.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Owned.h"

namespace {

Owned<C3DPatch> PatchOf(Mesh mesh)
{
    return Owned<C3DPatch>(new C3DPatch(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr));
}

const C3DObject& SurfaceOf(C3DPatch& patch, int level)
{
    patch.SetLevel(level);
    return static_cast<const C3DObject&>(*patch.GetFinalObject(false));
}

Mesh Tetrahedron() { return MakeMesh({{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}}, {{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}}); }

std::vector<double> At(const C3DGeomObject& object, int point)
{
    const C3DTPoint<float>& p = *object.GetPointList()->ElementAt(point);
    return {p.x, p.y, p.z};
}

void ExpectNear(const std::vector<double>& actual, const std::vector<double>& expected)
{
    for (std::size_t i = 0; i < expected.size(); i++)
        EXPECT_NEAR(actual[i], expected[i], 1e-6) << i;
}

/// Points + faces - edges.
int EulerNumber(const C3DGeomObject& object)
{
    std::set<std::pair<int, int>> edges;
    for (const std::vector<int>& face : AllCorners(*object.GetFaceList()))
        for (std::size_t k = 0; k < face.size(); k++)
            edges.insert(std::minmax(face[k], face[(k + 1) % face.size()]));
    return object.GetPointNbr() + object.GetFaceNbr() - static_cast<int>(edges.size());
}

/// A mesh, and one level of both schemes the slow way: every neighbour is looked for among all faces.
struct PlainMesh {
    std::vector<XYZ> points;
    std::vector<std::vector<int>> faces;    ///< all of 3, or all of 4 corners

    using Edge = std::pair<int, int>;
    static Edge EdgeOf(const std::vector<int>& face, std::size_t k) { return std::minmax(face[k], face[(k + 1) % face.size()]); }
    static bool Has(const std::vector<int>& face, int point) { return std::find(face.begin(), face.end(), point) != face.end(); }

    XYZ Mean(const std::vector<std::pair<int, double>>& weighted, const std::vector<XYZ>& more = {}, double weight = 0) const
    {
        double x = 0, y = 0, z = 0;
        const auto add = [&](const XYZ& p, double w) { x += w * p.x, y += w * p.y, z += w * p.z; };
        for (const auto& [point, w] : weighted)
            add(points[point], w);
        for (const XYZ& p : more)
            add(p, weight);
        return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    }
    bool IsBorder(int point) const
    {
        std::map<Edge, int> sides;
        for (const auto& face : faces)
            for (std::size_t k = 0; k < face.size(); k++)
                if (const Edge edge = EdgeOf(face, k); edge.first == point || edge.second == point)
                    sides[edge]++;
        return std::any_of(sides.begin(), sides.end(), [](const auto& side) { return side.second == 1; });
    }
    /// Along edges, and across faces of four.
    std::set<int> Around(int point, bool across) const
    {
        std::set<int> around;
        for (const auto& face : faces)
            for (std::size_t k = 0; k < face.size(); k++)
                if (face[k] == point && across)
                    around.insert(face[(k + 2) % face.size()]);
                else if (face[k] == point)
                    around.insert({face[(k + 1) % face.size()], face[(k + face.size() - 1) % face.size()]});
        return around;
    }
    XYZ Center(const std::vector<int>& face) const { return Mean({{face[0], 0.25}, {face[1], 0.25}, {face[2], 0.25}, {face[3], 0.25}}); }
    std::vector<int> FacesAt(const Edge& edge) const
    {
        std::vector<int> found;
        for (std::size_t i = 0; i < faces.size(); i++)
            if (Has(faces[i], edge.first) && Has(faces[i], edge.second))
                found.push_back(static_cast<int>(i));
        return found;
    }
    XYZ MovedCorner(int point, bool quads) const
    {
        const std::set<int> along = Around(point, false), across = Around(point, true);
        if (IsBorder(point) || (quads && along.size() != across.size()))
            return points[point];
        const double n = static_cast<double>(along.size()), b = n == 3 ? 0.1875 : 0.375 / n;
        std::vector<std::pair<int, double>> weighted{{point, quads ? 1 - 1.5 / n - 0.25 / n : 1 - n * b}};
        for (const int other : along)
            weighted.push_back({other, quads ? 1.5 / (n * n) : b});
        if (quads)
            for (const int other : across)
                weighted.push_back({other, 0.25 / (n * n)});
        return Mean(weighted);
    }
    XYZ EdgePoint(const Edge& edge, bool quads) const
    {
        const std::vector<int> sharing = FacesAt(edge);
        if (quads && sharing.size() == 2)
            return Mean({{edge.first, 0.25}, {edge.second, 0.25}}, {Center(faces[sharing[0]]), Center(faces[sharing[1]])}, 0.25);
        std::set<int> opposite;
        for (const int face : sharing)
            opposite.insert(faces[face].begin(), faces[face].end());
        opposite.erase(edge.first);
        opposite.erase(edge.second);
        if (!quads && opposite.size() == 2)
            return Mean({{edge.first, 0.375}, {edge.second, 0.375}, {*opposite.begin(), 0.125}, {*opposite.rbegin(), 0.125}});
        return Mean({{edge.first, 0.5}, {edge.second, 0.5}});
    }
    PlainMesh Divided() const
    {
        PlainMesh next;
        std::map<std::pair<char, Edge>, int> numbers;
        const auto number = [&](char kind, const Edge& what, const XYZ& place) {
            const auto [it, fresh] = numbers.try_emplace({kind, what}, static_cast<int>(next.points.size()));
            if (fresh)
                next.points.push_back(place);
            return it->second;
        };
        for (std::size_t i = 0; i < faces.size(); i++) {
            const std::vector<int>& face = faces[i];
            const std::size_t n = face.size();
            const auto facePoint = [&](int of) { return number('f', {of, 0}, Center(faces[of])); };
            const int center = n == 4 ? facePoint(static_cast<int>(i)) : -1;
            std::vector<int> v, e;
            for (const int corner : face)
                v.push_back(number('v', {corner, 0}, MovedCorner(corner, n == 4)));
            for (std::size_t k = 0; k < n; k++) {
                const Edge edge = EdgeOf(face, k);
                if (const std::vector<int> sharing = FacesAt(edge); n == 4 && sharing.size() == 2)
                    for (const int of : sharing)
                        facePoint(of);
                e.push_back(number('e', edge, EdgePoint(edge, n == 4)));
            }
            if (n == 3)
                next.faces.insert(next.faces.end(), {{v[0], e[0], e[2]}, {v[1], e[1], e[0]}, {v[2], e[2], e[1]}, {e[0], e[1], e[2]}});
            else
                for (std::size_t k = 0; k < 4; k++)
                    next.faces.push_back({v[k], e[k], center, e[(k + 3) % 4]});
        }
        return next;
    }
};

/// Faces of different corners among few points: edges of many faces, faces back to back, several parts.
PlainMesh RandomPlainMesh(unsigned int seed, int corners)
{
    std::mt19937 random(seed);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned int>(n)); };
    PlainMesh mesh;
    const int points = corners + below(8), faces = 1 + below(12);
    for (int i = 0; i < points; i++)
        mesh.points.push_back({static_cast<float>(below(1000)), static_cast<float>(below(1000)), static_cast<float>(below(1000))});
    std::vector<int> numbers(points);
    std::iota(numbers.begin(), numbers.end(), 0);
    for (int i = 0; i < faces; i++) {
        std::shuffle(numbers.begin(), numbers.end(), random);
        mesh.faces.emplace_back(numbers.begin(), numbers.begin() + corners);
    }
    return mesh;
}

}

TEST(Subdivide, AgreesWithTheToldRulesOnRandomMeshes)
{
    for (unsigned int seed = 0; seed < 400; seed++) {
        SCOPED_TRACE(seed);
        PlainMesh expected = RandomPlainMesh(seed, 3 + static_cast<int>(seed % 2));
        Owned<C3DPatch> patch = PatchOf(MakeMesh(expected.points, expected.faces));
        for (int level = 1; level <= 2; level++) {
            expected = expected.Divided();
            const C3DObject& surface = SurfaceOf(*patch, level);
            ASSERT_EQ(AllCorners(*surface.GetFaceList()), expected.faces);
            ASSERT_EQ(surface.GetPointNbr(), static_cast<int>(expected.points.size()));
            for (int i = 0; i < surface.GetPointNbr(); i++)
                for (std::size_t axis = 0; axis < 3; axis++)
                    ASSERT_NEAR(At(surface, i)[axis], (&expected.points[i].x)[axis], 1e-3) << i;
        }
    }
}

TEST(Subdivide, PlacesPointsByTheSchemes)
{
    // Loop, worked out by hand: a corner of the tetrahedron has 3 neighbours, whose sum is minus the corner.
    Owned<C3DPatch> tetrahedron = PatchOf(Tetrahedron());
    const C3DObject& loop = SurfaceOf(*tetrahedron, 1);
    EXPECT_EQ(loop.GetFaceNbr(), 16);
    EXPECT_EQ(loop.GetPointNbr(), 10);
    EXPECT_EQ(EulerNumber(loop), 2);
    ExpectNear(At(loop, 0), {0.25, 0.25, 0.25});    // (1 - 3 b) p - b p, b = 3/16
    ExpectNear(At(loop, 3), {0.5, 0, 0});           // 3/8 (2, 0, 0) + 1/8 (-2, 0, 0)
    EXPECT_EQ(Corners(*loop.GetFaceList(), 0), (std::vector<int>{0, 3, 5}));
    EXPECT_EQ(Corners(*loop.GetFaceList(), 3), (std::vector<int>{3, 4, 5}));

    // A cube: n = m = 3 at each corner; the face point of x = -1 and so on stand before what needs them.
    Owned<C3DPatch> cube = PatchOf(Cube());
    const C3DObject& quads = SurfaceOf(*cube, 1);
    EXPECT_EQ(quads.GetFaceNbr(), 24);
    EXPECT_EQ(quads.GetPointNbr(), 26);
    EXPECT_EQ(EulerNumber(quads), 2);
    ExpectNear(At(quads, 0), {0, 0, -1});                        // first face
    const double moved = (1 - 1.75 / 3) + 1.5 / 9 - 0.25 / 9;    // E sums to p, F to -p
    ExpectNear(At(quads, 1), {-moved, -moved, -moved});
    EXPECT_EQ(Corners(*quads.GetFaceList(), 0)[0], 1);
    EXPECT_EQ(Corners(*quads.GetFaceList(), 0)[2], 0);
    for (const int level : {2, 3})
        EXPECT_EQ(EulerNumber(SurfaceOf(*cube, level)), 2);
}

TEST(Subdivide, ABorderStaysAndPartsStandApart)
{
    Owned<C3DPatch> grid = PatchOf(QuadGrid(2));
    const C3DObject& flat = SurfaceOf(*grid, 2);
    C3DTPoint<float> min, max;
    flat.GetPointList()->GetBoundingBox(min, max);
    EXPECT_EQ(min, C3DTPoint<float>(0, 0, 0));
    EXPECT_EQ(max, C3DTPoint<float>(2, 2, 0));
    EXPECT_EQ(flat.GetFaceNbr(), 64);

    // A triangle, a quad and a pentagon, all along shared edges.
    Owned<C3DPatch> mixed = PatchOf(MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {-1, 0, 0}, {-1, 1, 0}},
                                             {{1, 4, 2}, {0, 1, 2, 3}, {5, 0, 3, 6, 5}}));
    mixed->GetFaceList()->SetFaceMaterial(1, 9);
    const struct {
        int level, faces, points;
    } rows[] = {{0, 3, 7}, {1, 4 + 4 + 1, 6 + 9 + 4}, {2, 16 + 16 + 1, 15 + 25 + 4}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.level);
        const C3DObject& surface = SurfaceOf(*mixed, row.level);
        EXPECT_EQ(surface.GetFaceNbr(), row.faces);
        EXPECT_EQ(surface.GetPointNbr(), row.points);
        CheckConsistent(*surface.GetFaceList(), row.points);
        int nines = 0;
        for (int face = 0; face < surface.GetFaceNbr(); face++)
            nines += surface.GetFaceList()->GetFaceMaterial(face) == 9;
        EXPECT_EQ(nines, 1 << 2 * row.level);
    }
}

TEST(Subdivide, ChannelsFollow)
{
    Owned<C3DPatch> patch = PatchOf(QuadGrid(2));
    auto* uvw = new CUVWChannel(3);
    uvw->GetFaceList()->AppendCopies(*patch->GetFaceList(), nullptr, 4, [](int corner) { return corner; });
    uvw->GetPointList()->SetSize(9);
    auto* weights = new CWeightChannel(4, true);
    weights->GetPointList()->SetSize(9);
    for (int i = 0; i < 9; i++) {
        (*uvw->GetUVWPointList())[i]->u = patch->GetPointList()->ElementAt(i)->x;
        (*weights->GetWeightPointList())[i]->SetWeight(patch->GetPointList()->ElementAt(i)->y);
    }
    uvw->GetFaceList()->SetFaceFlag(3, FACE_EMPTY, true);
    patch->AddChannel(uvw);
    patch->AddChannel(weights);

    C3DObject& surface = const_cast<C3DObject&>(SurfaceOf(*patch, 2));
    auto* newUVW = static_cast<CUVWChannel*>(surface.GetChannelByID(3, CHANNEL_UVW));
    auto* newWeights = static_cast<CWeightChannel*>(surface.GetChannelByID(4, CHANNEL_WEIGHT));
    ASSERT_TRUE(newUVW && newWeights);
    ASSERT_EQ(newUVW->GetFaceList()->GetSize(), 64);
    ASSERT_EQ(newWeights->GetPointList()->GetSize(), surface.GetPointNbr());
    int empty = 0;
    for (int face = 0; face < 64; face++) {
        const bool dead = newUVW->GetFaceList()->IsFaceFlagSet(face, FACE_EMPTY);
        empty += dead;
        const std::vector<int> corners = Corners(*surface.GetFaceList(), face), values = Corners(*newUVW->GetFaceList(), face);
        for (std::size_t k = 0; !dead && k < corners.size(); k++)    // a flat grid: positions are means, too
            EXPECT_NEAR((*newUVW->GetUVWPointList())[values[k]]->u, surface.GetPointList()->ElementAt(corners[k])->x, 1e-6);
    }
    EXPECT_EQ(empty, 16);
    for (int i = 0; i < surface.GetPointNbr(); i++)
        EXPECT_NEAR((*newWeights->GetWeightPointList())[i]->GetWeight(), surface.GetPointList()->ElementAt(i)->y, 1e-6);
}

TEST(Subdivide, TheSurfaceComesAndGoesWithTheMesh)
{
    Owned<C3DPatch> patch = PatchOf(Cube());
    EXPECT_EQ(patch->GetLevel(), -1);
    Owned<C3DBaseObject> detached(patch->GetFinalObject(true));
    const int level = static_cast<int>(C3DPreferences::Get3DPreferences().GetPatchLevel());
    EXPECT_EQ(patch->GetLevel(), level);
    C3DBaseObject* again = patch->GetFinalObject(false);    // a new one
    EXPECT_TRUE(again && again != detached.get());
    EXPECT_EQ(patch->GetFinalObject(false), again);
    patch->SetLevel(9);
    EXPECT_EQ(patch->GetLevel(), C3DPatch::MOST_LEVEL);
    patch->SetLevel(2);

    Owned<C3DBaseObject> copy(patch->Copy(0, nullptr));
    EXPECT_EQ(static_cast<C3DPatch*>(*copy)->GetLevel(), 2);
    EXPECT_EQ(static_cast<C3DObject*>(*copy->GetFinalObject(false))->GetFaceNbr(), 96);
    patch->Invalidate(CHANGE_POINTS, true);
    EXPECT_EQ(patch->GetLevel(), -1);

    Owned<C3DObject> source(patch->GetSourceObject());
    EXPECT_EQ(source->GetFaceNbr(), 6);
    EXPECT_EQ(C3DPatch::EstimateLevel(source.get(), 3), 6 * 64);
    EXPECT_EQ(C3DPatch::EstimateLevel(nullptr, 3), 0);
    Owned<C3DPatch> empty(new C3DPatch);
    EXPECT_TRUE(empty->GetFinalObject(false));
}
