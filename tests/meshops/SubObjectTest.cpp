#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "scene/3DObject.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Owned.h"
#include "support/RandomMesh.h"

namespace {

Owned<C3DObject> ObjectOf(Mesh mesh)
{
    return Owned<C3DObject>(new C3DObject(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr));
}

/// Texture coordinates of its own for each corner: u counts corners, faces in `empty` have none.
CUVWChannel* AddCornerUVW(C3DObject& object, const std::vector<int>& empty)
{
    auto* channel = new CUVWChannel;
    int next = 0;
    channel->GetFaceList()->AppendCopies(*object.GetFaceList(), nullptr, object.GetFaceNbr(), [&](int) { return next++; });
    channel->GetPointList()->SetSize(next);
    for (int i = 0; i < next; i++)
        (*channel->GetUVWPointList())[i]->u = static_cast<float>(i);
    for (const int face : empty)
        channel->GetFaceList()->SetFaceFlag(face, FACE_EMPTY, true);
    object.AddChannel(channel);
    return channel;
}

std::vector<float> UsOf(const CUVWChannel& channel, int face)
{
    std::vector<float> us;
    for (const int corner : Corners(*channel.GetFaceList(), face))
        us.push_back((*channel.GetUVWPointList())[corner]->u);
    return us;
}

}

TEST(SubObject, RenumbersByFirstUseAndTakesTheChannelsAlong)
{
    Owned<C3DObject> cube = ObjectOf(Cube());
    AddCornerUVW(*cube, {5});
    AddCornerUVW(*cube, {1, 5});                    // has nothing on the faces taken
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

// Groups of faces by shared edges, found by relabelling; each part brings its faces' points and corner values, and parts joined again are
// the object without its dead faces.
TEST(Explode, AgreesWithRelabellingOnRandomMeshes)
{
    for (unsigned int seed = 0; seed < 300; seed++) {
        SCOPED_TRACE(seed);
        RandomMesh random(seed);
        for (int i = 0; i < random.pointCount; i++)
            random.mesh.points->ElementAt(i)->x = static_cast<float>(i);
        std::vector<bool> live(random.FaceCount());
        for (int i = 0; i < random.FaceCount(); i++)
            live[i] = random.IsLive(i);
        std::vector<int> label(random.FaceCount());
        std::iota(label.begin(), label.end(), 0);
        for (int a = 0; a < random.FaceCount(); a++)
            for (const C3DEdge& edge : random.Edges(a))
                for (const int b : live[a] ? random.FacesOf(edge) : std::vector<int>())
                    std::replace(label.begin(), label.end(), std::max(label[a], label[b]), std::min(label[a], label[b]));
        using Look = std::multiset<std::pair<std::vector<float>, std::vector<float>>>;    // places and values of each face's corners
        std::map<int, Look> expected;
        Look all;
        Owned<C3DObject> object = ObjectOf(std::move(random.mesh));
        CUVWChannel* values = AddCornerUVW(*object, {});
        const auto look = [](C3DGeomObject& of, int face, const CUVWChannel* channel) {
            std::pair<std::vector<float>, std::vector<float>> shown;
            for (const int corner : Corners(*of.GetFaceList(), face))
                shown.first.push_back(of.GetPointList()->ElementAt(corner)->x);
            if (channel)
                shown.second = UsOf(*channel, face);
            return shown;
        };
        for (int face = 0; face < random.FaceCount(); face++)
            if (live[face]) {
                expected[label[face]].insert(look(*object, face, values));
                all.insert(look(*object, face, values));
            }

        CXArray<C3DGeomObject*, C3DGeomObject*> parts;
        const int count = object->ExplodeIntoIsolatedParts(parts);
        ASSERT_EQ(count, expected.size() > 1 ? static_cast<int>(expected.size()) : 0);
        auto group = expected.begin();
        for (int i = 0; i < count; i++, ++group) {    // in the order of their first faces
            const auto* channel = static_cast<CUVWChannel*>(parts[i]->GetChannelByID(values->GetChannelID(), CHANNEL_UVW));
            Look found;
            for (int face = 0; face < parts[i]->GetFaceNbr(); face++)
                found.insert(look(*parts[i], face, channel));
            EXPECT_EQ(found, group->second);
        }
        Owned<C3DObject> joined(new C3DObject(C3DPointList::Create(nullptr), C3DFaceList::Create(nullptr), nullptr));
        if (joined->Concatenate(nullptr, parts, nullptr)) {
            CheckConsistent(*joined->GetFaceList(), joined->GetPointNbr());
            // the clean behind it takes faces of repeated points away or cuts them
            const auto repeats = [](const auto& shown) {
                return std::set<float>(shown.first.begin(), shown.first.end()).size() < std::max<std::size_t>(3, shown.first.size());
            };
            std::erase_if(all, repeats);
            Look found;
            const auto* channel = static_cast<CUVWChannel*>(joined->GetChannelByIndex(0, CHANNEL_UVW, true));
            for (int face = 0; face < joined->GetFaceNbr(); face++)
                found.insert(look(*joined, face, channel));
            EXPECT_TRUE(std::includes(found.begin(), found.end(), all.begin(), all.end()));
        }
        for (C3DGeomObject* part : parts)
            DeleteMe(part);
    }
}
