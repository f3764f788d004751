#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/ObjectCase.h"
#include "support/Checksum.h"
#include "support/RandomMesh.h"

TEST(SubObject, RenumbersByFirstUseAndTakesTheChannelsAlong)
{
    Owned<C3DObject> cube = ObjectOf(Cube());
    AddCornerUVW(*cube, 1, 0, {5});
    AddCornerUVW(*cube, 2, 0, {1, 5});              // has nothing on the faces taken
    auto* weights = new CWeightChannel(7, true);    // one value a point
    weights->GetPointList()->SetSize(8);
    for (int i = 0; i < 8; i++)
        (*weights->GetWeightPointList())[i]->SetWeight(static_cast<float>(i));
    cube->AddChannel(weights);
    cube->GetFaceList()->SetFaceMaterial(1, 42);
    cube->GetFaceList()->SetFaceFlag(2, FACE_INVALID, true);

    const int faces[] = {5, 2, 1, 99};    // 2 is dead, 99 is not there
    Owned<C3DObject> part(cube->SubObject(faces, 4));
    ASSERT_TRUE(part);
    EXPECT_EQ(AllCorners(*part->GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 2, 3}, {2, 4, 5, 3}}));
    EXPECT_EQ(part->GetPointNbr(), 6);
    EXPECT_EQ(part->GetPointList()->ElementAt(4)->x, 1);    // point 5 of the cube
    EXPECT_EQ(part->GetFaceList()->GetFaceMaterial(1), 42u);
    CheckConsistent(*part->GetFaceList(), 6);

    ASSERT_EQ(part->GetChannels()->GetSize(), 2);
    auto* uvw = static_cast<CUVWChannel*>(part->GetChannels()->GetAt(0));
    EXPECT_EQ(uvw->GetChannelID(), cube->GetChannels()->GetAt(0)->GetChannelID());
    EXPECT_TRUE(uvw->GetFaceList()->IsFaceFlagSet(0, FACE_EMPTY));
    EXPECT_EQ(UsOf(*uvw, 1), (std::vector<float>{4, 5, 6, 7}));
    EXPECT_EQ(uvw->GetPointList()->GetSize(), 4);
    auto* partWeights = static_cast<CWeightChannel*>(part->GetChannels()->GetAt(1));
    EXPECT_EQ((*partWeights->GetWeightPointList())[4]->GetWeight(), 5);

    EXPECT_EQ(cube->GetPointNbr(), 8);
    EXPECT_EQ(cube->GetFaceNbr(), 6);
}

TEST(SubObject, TakesFacesByTheirSize)
{
    Owned<C3DObject> object = ObjectOf(MakeMesh(std::vector<XYZ>(8), {{0, 1, 2}, {0, 1, 2, 3}, {0, 1, 2, 3, 4}, {5, 6, 7}}));
    const struct {
        int corners;
        _SUBOBJECT_MODE mode;
        int faces;
    } rows[] = {
        {3, SUBOBJECT_EXACT, 2}, {4, SUBOBJECT_EXACT, 1}, {3, SUBOBJECT_MORE, 2}, {5, SUBOBJECT_MORE, 0}, {3, _SUBOBJECT_MODE(2), 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.corners * 10 + row.mode);
        Owned<C3DObject> part(object->SubObject(row.corners, row.mode));
        EXPECT_EQ(part ? part->GetFaceNbr() : 0, row.faces);
    }
}

TEST(Explode, GivesTheSumOfTheParts)
{
    // Two cubes, a bow-tie that shares a point alone, and a dead face between the cubes.
    Mesh mesh;
    std::vector<std::vector<int>> corners;
    int first = 0;
    for (const Mesh& part : {Cube(), Cube(), BowTie()}) {
        for (std::vector<int> face : AllCorners(*part.faces)) {
            for (int& corner : face)
                corner += first;
            corners.push_back(face);
        }
        first += part.points->GetSize();
    }
    corners.push_back({0, 8, 9});
    Owned<C3DObject> object = ObjectOf(MakeMesh(std::vector<XYZ>(first), corners));
    object->GetFaceList()->SetFaceFlag(14, FACE_INVALID, true);

    CXArray<C3DGeomObject*, C3DGeomObject*> parts;
    ASSERT_EQ(object->ExplodeIntoIsolatedParts(parts), 4);
    const struct {
        int points, faces;
    } rows[] = {{8, 6}, {8, 6}, {3, 1}, {3, 1}};
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(parts[i]->GetPointNbr(), rows[i].points);
        EXPECT_EQ(parts[i]->GetFaceNbr(), rows[i].faces);
        CheckConsistent(*parts[i]->GetFaceList(), rows[i].points);
        CXArray<C3DGeomObject*, C3DGeomObject*> none;
        EXPECT_EQ(parts[i]->ExplodeIntoIsolatedParts(none), 0);    // one part: nothing to do
        DeleteMe(parts[i]);
    }
    EXPECT_FALSE(object->GetFaceList()->HasEdgeToFaceGraph());
}

// The sum was written down while the parts were those of relabelling along shared edges: each brings its faces' points and corner values, and
// parts joined again are the object without its dead faces.
TEST(Explode, AgreesWithRelabellingOnRandomMeshes)
{
    Checksum sum;
    const auto add = [&](C3DGeomObject& object) {
        CheckInStep(object);
        sum.Add(AllCorners(*object.GetFaceList()), PlacesOf(*object.GetPointList()));
        const auto* channel = static_cast<CUVWChannel*>(object.GetChannelByIndex(0, CHANNEL_UVW, true));
        for (int face = 0; channel && face < object.GetFaceNbr(); face++)
            sum.Add(UsOf(*channel, face));
    };
    for (unsigned int seed = 0; seed < 300; seed++) {
        SCOPED_TRACE(seed);
        RandomMesh random(seed);
        for (int i = 0; i < random.pointCount; i++)
            random.mesh.points->ElementAt(i)->x = static_cast<float>(i);
        Owned<C3DObject> object = ObjectOf(std::move(random.mesh));
        AddCornerUVW(*object, 1);
        CXArray<C3DGeomObject*, C3DGeomObject*> parts;
        sum.Add(object->ExplodeIntoIsolatedParts(parts));
        for (C3DGeomObject* part : parts)
            add(*part);
        Owned<C3DObject> joined = ObjectOf(Mesh());
        if (joined->Concatenate(nullptr, parts, nullptr))
            add(*joined);
        for (C3DGeomObject* part : parts)
            DeleteMe(part);
    }
    EXPECT_EQ(sum.Get(), 0xA179EEFCC906F390u);
}
