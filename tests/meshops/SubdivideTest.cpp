#include <numeric>
#include <random>
#include <set>

#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/ObjectCase.h"
#include "scene/Patch.h"
#include "scene/Preferences.h"
#include "support/Checksum.h"

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

/// Faces of so many corners among few points: edges of many faces, faces back to back, several parts.
Mesh RandomFaces(unsigned int seed, int corners)
{
    std::mt19937 random(seed);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned int>(n)); };
    const int pointCount = corners + below(8), faceCount = 1 + below(12);
    std::vector<XYZ> points;
    for (int i = 0; i < pointCount; i++) {
        const int x = below(1000), y = below(1000), z = below(1000);
        points.push_back({static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
    }
    std::vector<int> numbers(pointCount);
    std::iota(numbers.begin(), numbers.end(), 0);
    std::vector<std::vector<int>> faces;
    for (int i = 0; i < faceCount; i++) {
        std::shuffle(numbers.begin(), numbers.end(), random);
        faces.emplace_back(numbers.begin(), numbers.begin() + corners);
    }
    return MakeMesh(points, faces);
}

}

// The sum is that of both schemes the slow way, which looks for every neighbour among all faces.
TEST(Subdivide, AgreesWithTheToldRulesOnRandomMeshes)
{
    Checksum sum;
    for (unsigned int seed = 0; seed < 400; seed++) {
        Owned<C3DPatch> patch = PatchOf(RandomFaces(seed, 3 + static_cast<int>(seed % 2)));
        for (int level = 1; level <= 2; level++) {
            const C3DObject& surface = SurfaceOf(*patch, level);
            sum.Add(AllCorners(*surface.GetFaceList()), PlacesOf(*surface.GetPointList()));
        }
    }
    EXPECT_EQ(sum.Get(), 0xF8DA86B771D75E45u);
}

// Two closed meshes; the sum was written down while a few points were worked out by hand.
TEST(Subdivide, PlacesPointsByTheSchemes)
{
    Checksum sum;
    for (int i = 0; i < 2; i++) {
        Owned<C3DPatch> patch = PatchOf(i ? Cube() : Tetrahedron());
        for (const int level : {1, 2, 3}) {
            const C3DObject& surface = SurfaceOf(*patch, level);
            sum.Add(AllCorners(*surface.GetFaceList()), PlacesOf(*surface.GetPointList()));
        }
    }
    EXPECT_EQ(sum.Get(), 0xEB1E03B2C48B5C32u);
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
