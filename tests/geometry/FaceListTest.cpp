#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "geometry/ElementMethods.h"
#include "geometry/PointMethods.h"
#include "geometry/SingleFace.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Streams.h"
#include "tools/Array.h"

namespace {

using Lists = std::vector<std::vector<int>>;

const Lists MIXED = {{0, 1, 2}, {}, {3, 4, 5, 6}, {7, 8, 9}, {1, 2}};

Mesh Faces(const Lists& corners) { return MakeMesh({}, corners); }

// Faces that say by their material where they came from.
void NumberMaterials(C3DFaceList& faces)
{
    for (int i = 0; i < faces.GetSize(); i++)
        faces.SetFaceMaterial(i, 100 + i);
}
std::vector<unsigned int> Materials(const C3DFaceList& faces)
{
    std::vector<unsigned int> materials;
    C3DFace face;
    for (int i = 0; i < faces.GetSize(); i++) {
        faces.GetFace(i, face);
        materials.push_back(face.GetMaterialID());
    }
    return materials;
}

void EmptyFaces(C3DFaceList& faces, int first, int end)
{
    for (int i = first; i < end; i++) {
        EXPECT_TRUE(Corners(faces, i).empty()) << i;
        EXPECT_FALSE(faces.IsFaceOneFlagSet(i, 0xFFFFFFFF)) << i;
    }
}

}

TEST(FaceList, ResizesInEachMode)
{
    // Faults in mind: faces that stay lose corners or flags, new ones inherit what SIZE_KEEP left in the pool.
    for (const auto mode : {CFaceList::SIZE_GROW, CFaceList::SIZE_EXACT, CFaceList::SIZE_KEEP})
        for (const auto second : {CFaceList::SIZE_GROW, CFaceList::SIZE_EXACT, CFaceList::SIZE_KEEP}) {
            SCOPED_TRACE(mode * 10 + second);
            Mesh mesh = Faces(MIXED);
            C3DFaceList& faces = *mesh.faces;
            faces.SetFacesFlags(0x100, true);
            faces.SetFlag(FACELIST_CHANGED, false);
            const unsigned int stamp = faces.GetChangedStamp();
            ASSERT_TRUE(faces.SetSize(5, 3, mode, -1));
            EXPECT_EQ(faces.GetChangedStamp(), stamp) << "nothing changed";
            ASSERT_TRUE(faces.SetSize(3, 3, mode, -1));
            EXPECT_GT(faces.GetChangedStamp(), stamp);
            EXPECT_TRUE(faces.IsFlagSet(FACELIST_CHANGED));
            CheckConsistent(faces);
            ASSERT_TRUE(faces.SetSize(8, second, 4));
            CheckConsistent(faces);
            EXPECT_EQ(AllCorners(faces), (Lists{{0, 1, 2}, {}, {3, 4, 5, 6}, {}, {}, {}, {}, {}}));
            EXPECT_EQ(faces.GetNumberOfFaces(0x100u, true), 3);
            EmptyFaces(faces, 3, 8);
            ASSERT_TRUE(faces.SetSize(0, mode, 0));
            CheckConsistent(faces);
            AddFaces(faces, {{1, 2, 3}});
            EXPECT_EQ(AllCorners(faces), (Lists{{1, 2, 3}}));
            CheckConsistent(faces);
        }
    Mesh mesh;
    EXPECT_TRUE(mesh.faces->SetSize(10, 3, CFaceList::SIZE_GROW, -1));
    EmptyFaces(*mesh.faces, 0, 10);
    EXPECT_FALSE(mesh.faces->SetSize(-1, CFaceList::SIZE_GROW, 3));
    EXPECT_FALSE(mesh.faces->SetSize(20, 65536, CFaceList::SIZE_GROW, -1));
    EXPECT_FALSE(mesh.faces->AppendFaces(1, 65536, [](int*, unsigned int) {}));
    EXPECT_FALSE(mesh.faces->SetFacesSize(65536));
    EXPECT_EQ(mesh.faces->GetSize(), 10);
    CheckConsistent(*mesh.faces);
}

TEST(FaceList, AppendsBehindWhatIsThere)
{
    Mesh mesh = Faces(MIXED);
    mesh.faces->SetSize(3, CFaceList::SIZE_KEEP, 0);
    std::vector<int> flat = {1, 2, 3, 4, 5, 6};
    EXPECT_TRUE(mesh.faces->AppendFaces(2, 3, flat.data()));
    EXPECT_TRUE(mesh.faces->AppendFaces(3, 2, flat.data()));
    const unsigned int sizes[] = {1, 0, 5};
    EXPECT_TRUE(mesh.faces->AppendFaces(3, sizes, flat.data()));
    EXPECT_TRUE(mesh.faces->AppendFaces(0, 3, flat.data()));
    EXPECT_FALSE(mesh.faces->AppendFaces(-1, 3, flat.data()));
    EXPECT_EQ(AllCorners(*mesh.faces),
              (Lists{{0, 1, 2}, {}, {3, 4, 5, 6}, {1, 2, 3}, {4, 5, 6}, {1, 2}, {3, 4}, {5, 6}, {1}, {}, {2, 3, 4, 5, 6}}));
    EXPECT_TRUE(mesh.faces->IsFlagSet(FACELIST_CHANGED));
    CheckConsistent(*mesh.faces);
}

TEST(FaceList, RemoveAllAndInheritSetTheFlagsApart)
{
    Mesh mesh = Faces(MIXED), other;
    C3DFaceList& faces = *mesh.faces;
    faces.SetBackFaceMaterial(0, 3);
    faces.SetFlag(FACELIST_CHANGED, false);
    const unsigned int stamp = faces.GetChangedStamp();
    faces.SetFlag(FACELIST_STORED, true);
    EXPECT_EQ(faces.GetChangedStamp(), stamp);
    other.faces->SetFlag(FACELIST_STORED, true);
    other.faces->Inherit(faces);
    EXPECT_FALSE(other.faces->IsFlagSet(FACELIST_STORED));
    EXPECT_TRUE(other.faces->HasBackFaceMaterials());
    EXPECT_EQ(other.faces->GetDataChunks().GetDataSize(), 0u);    // as many as it has faces

    faces.RemoveAll();
    EXPECT_TRUE(faces.IsFlagSet(FACELIST_CHANGED));
    EXPECT_FALSE(faces.IsFlagSet(FACELIST_STORED));
    EXPECT_GT(faces.GetChangedStamp(), stamp);
    EXPECT_EQ(faces.GetIndexMemory(), 0u);
    EXPECT_TRUE(faces.HasBackFaceMaterials()) << "the chunks stay";
    CheckConsistent(faces);
}

TEST(FaceList, CopiesWholeListsAndSingleFaces)
{
    Mesh mesh = Faces(MIXED), other = Faces({{9}});
    NumberMaterials(*mesh.faces);
    mesh.faces->SaveFacesIndex();
    other.faces->SetBackFaceMaterial(0, 1);
    *other.faces = *mesh.faces;
    EXPECT_EQ(AllCorners(*other.faces), MIXED);
    EXPECT_EQ(Materials(*other.faces), Materials(*mesh.faces));
    EXPECT_EQ(other.faces->GetOriginalIndex(4), 4u);
    EXPECT_FALSE(other.faces->HasBackFaceMaterials());
    EXPECT_TRUE(other.faces->IsFlagSet(FACELIST_CHANGED));
    CheckConsistent(*other.faces);
    *other.faces = *static_cast<const C3DFaceList*>(other.faces);
    EXPECT_EQ(AllCorners(*other.faces), MIXED);

    EXPECT_TRUE(other.faces->CopyFace(0, 2, false));
    EXPECT_TRUE(other.faces->CopyFace(1, 3, true));
    EXPECT_TRUE(other.faces->CopyFace(99, 99, false)) << "equal numbers are not looked at";
    EXPECT_FALSE(other.faces->CopyFace(99, 1, false));
    EXPECT_FALSE(other.faces->CopyFace(1, 99, false));
    EXPECT_EQ(AllCorners(*other.faces), (Lists{{3, 4, 5, 6}, {}, {3, 4, 5, 6}, {7, 8, 9}, {1, 2}}));
    EXPECT_EQ(Materials(*other.faces), (std::vector<unsigned int>{102, 103, 102, 103, 104}));
    EXPECT_EQ(other.faces->GetOriginalIndex(1), 3u);

    CSingleFace scratch(*mesh.faces);
    EXPECT_TRUE(mesh.faces->CopyTo(2, scratch));
    EXPECT_TRUE(mesh.faces->CopyFrom(4, scratch));
    EXPECT_EQ(Corners(*mesh.faces, 4), (std::vector<int>{3, 4, 5, 6}));
    EXPECT_EQ(mesh.faces->GetFaceMaterial(4), 102u);
    EXPECT_FALSE(mesh.faces->CopyTo(5, scratch));
    EXPECT_EQ(scratch.GetItemCount(0), 0u);
    EXPECT_TRUE(mesh.faces->CopyTo(0, scratch));
    EXPECT_TRUE(mesh.faces->CopyFrom(1, scratch));
    EXPECT_EQ(Corners(*mesh.faces, 1), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(mesh.faces->GetFaceMaterial(1), 100u);
    CheckConsistent(*mesh.faces);
}

TEST(FaceList, ReordersEveryPermutation)
{
    // Against the definition: position d receives the face of order[d]; inverse, face i goes to order[i].
    for (const Lists& corners : {MIXED, Lists{{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}, {12, 13, 14}}}) {
        std::vector<unsigned int> order(5);
        std::iota(order.begin(), order.end(), 0u);
        do
            for (const bool inverse : {false, true}) {
                Mesh mesh = Faces(corners);
                NumberMaterials(*mesh.faces);
                mesh.faces->SaveFacesIndex();
                mesh.faces->SetFlag(FACELIST_CHANGED, false);
                ASSERT_TRUE(mesh.faces->ReorderFaces(order.data(), 5, inverse));
                EXPECT_TRUE(mesh.faces->IsFlagSet(FACELIST_CHANGED));
                for (int i = 0; i < 5; i++) {
                    const int from = inverse ? i : static_cast<int>(order[i]), to = inverse ? static_cast<int>(order[i]) : i;
                    ASSERT_EQ(Corners(*mesh.faces, to), corners[from]);
                    ASSERT_EQ(mesh.faces->GetFaceMaterial(to), 100u + from);
                    ASSERT_EQ(mesh.faces->GetOriginalIndex(to), static_cast<unsigned int>(from));
                }
                CheckConsistent(*mesh.faces);
            }
        while (std::next_permutation(order.begin(), order.end()));
    }
}

TEST(FaceList, RefusesOrdersThatAreNone)
{
    constexpr unsigned int STAYS = 0xFFFFFFFF;
    const struct {
        const char* name;
        std::vector<unsigned int> order;
        bool accepted;
    } rows[] = {
        {"too short", {0, 1, 2, 3}, false},
        {"too long", {0, 1, 2, 3, 4, 5}, false},
        {"none", {}, false},
        {"twice", {0, 1, 2, 3, 3}, false},
        {"beyond", {0, 1, 2, 3, 5}, false},
        {"one stays", {STAYS, 2, 1, 4, 3}, true},
        {"stays where another goes", {STAYS, 0, 1, 4, 3}, false},
    };
    for (const auto& row : rows)
        for (const bool inverse : {false, true}) {
            SCOPED_TRACE(row.name);
            Mesh mesh = Faces(MIXED);
            mesh.faces->SetFlag(FACELIST_CHANGED, false);
            EXPECT_EQ(mesh.faces->ReorderFaces(row.order.data(), row.order.size(), inverse), row.accepted);
            EXPECT_EQ(mesh.faces->IsFlagSet(FACELIST_CHANGED), row.accepted);
            EXPECT_EQ(AllCorners(*mesh.faces) == MIXED, !row.accepted);
        }
}

TEST(FaceList, MapsAndFlipsLiveFaces)
{
    Mesh mesh = Faces({{0, 1, 2}, {1, 1, 7}, {2, 1, 0, 3}, {-1, 4, 0}});
    C3DFaceList& faces = *mesh.faces;
    faces.SetFaceFlag(1, FACE_EMPTY, true);
    faces.SetFlag(FACELIST_CHANGED, false);
    CXArray<unsigned int, unsigned int> map;
    for (const unsigned int value : {0u, 5u, 0xFFFFFFFFu, 1u})    // 0 stays, 1 -> 5, 2 has no new number, 3 -> 1
        map.Add(value);
    EXPECT_FALSE(faces.UpdateIndex(nullptr, 4, true));
    EXPECT_FALSE(faces.UpdateIndex(map.GetData(), 0, true));
    EXPECT_TRUE(faces.UpdateIndex(&map, true));
    EXPECT_EQ(AllCorners(faces), (Lists{{0, 5, 2}, {1, 1, 7}, {2, 5, 0, 1}, {-1, 4, 0}}));
    EXPECT_TRUE(faces.UpdateIndex(&map, false));
    EXPECT_EQ(AllCorners(faces), (Lists{{0, 5, 2}, {5, 5, 7}, {2, 5, 0, 5}, {-1, 4, 0}}));
    EXPECT_FALSE(faces.UpdateIndex(&map, false));
    faces.FlipNormals();
    EXPECT_EQ(AllCorners(faces), (Lists{{2, 5, 0}, {5, 5, 7}, {5, 0, 5, 2}, {0, 4, -1}}));
    EXPECT_FALSE(faces.IsFlagSet(FACELIST_CHANGED));

    EXPECT_FALSE(faces.AreIndexesBelow(6)) << "-1";
    faces.SetFaceFlag(3, FACE_INVALID, true);
    EXPECT_TRUE(faces.AreIndexesBelow(6));
    EXPECT_FALSE(faces.AreIndexesBelow(5));
    EXPECT_FALSE(faces.AreIndexesBelow(8, true));
}

TEST(FaceList, ChecksumFollowsContentAlone)
{
    Mesh mesh = Faces({{1, 2, 3}, {7, 7, 7}, {4}});
    mesh.faces->SetFaceFlag(1, FACE_INVALID, true);
    // ((((1 * 16 + 2) * 16 + 3) * 16) + 4) * 16
    EXPECT_EQ(mesh.faces->GetChecksum(4), 0x12340u);
    EXPECT_EQ(mesh.faces->GetChecksum(3), 0u);
    Mesh copy;
    copy.faces->SetSize(3, 5, CFaceList::SIZE_GROW, -1);    // other capacities
    *copy.faces = *mesh.faces;
    EXPECT_EQ(copy.faces->GetChecksum(12), mesh.faces->GetChecksum(12));
    const unsigned int before = mesh.faces->GetChecksum(8);
    EXPECT_EQ(mesh.faces->GetChecksum(12), before + 0x12340u);
    mesh.faces->SetFaceMaterial(0, 1);
    EXPECT_NE(mesh.faces->GetChecksum(8), before);
}

TEST(FaceList, StreamsAndRefusesDamage)
{
    Mesh mesh = Faces(MIXED);
    NumberMaterials(*mesh.faces);
    mesh.faces->SetBackFaceMaterial(3, 9);
    mesh.faces->SetFlag(FACELIST_STORED, true);
    C3DFace face;
    mesh.faces->GetFace(0, face);
    face.AddIndex(17);    // leaves a hole, which the stream doesn't have
    mesh.faces->SetSize(4, CFaceList::SIZE_KEEP, 0);
    const std::vector<unsigned char> whole = Stored(*mesh.faces);
    Mesh loaded = Faces({{5}});
    loaded.faces->GetMaterialsHashMap(nullptr, false);
    ASSERT_TRUE(Load(*loaded.faces, whole));
    EXPECT_EQ(AllCorners(*loaded.faces), (Lists{{0, 1, 2, 17}, {}, {3, 4, 5, 6}, {7, 8, 9}}));
    EXPECT_EQ(Materials(*loaded.faces), Materials(*mesh.faces));
    EXPECT_EQ(loaded.faces->GetBackFaceMaterial(3), 9u);
    EXPECT_TRUE(loaded.faces->IsFlagSet(FACELIST_STORED));
    EXPECT_FALSE(loaded.faces->IsFlagSet(FACELIST_CHANGED));
    EXPECT_EQ(loaded.faces->GetMaterialsHashMap(nullptr, false)->GetSize(), 4) << "the former map is gone";
    CheckConsistent(*loaded.faces);
    Mesh none, again = Faces(MIXED);
    ASSERT_TRUE(Load(*again.faces, Stored(*none.faces)));
    EXPECT_EQ(again.faces->GetSize(), 0);

    for (std::size_t length = 0; length < whole.size(); length++) {
        Mesh damaged;
        EXPECT_FALSE(Load(*damaged.faces, {whole.begin(), whole.begin() + length})) << length;
        EXPECT_EQ(damaged.faces->GetSize(), 0);
    }
    std::mt19937 random(11);
    for (int i = 0; i < 3000; i++) {
        std::vector<unsigned char> bytes = whole;
        bytes[random() % bytes.size()] = static_cast<unsigned char>(random());
        Mesh damaged;
        if (!Load(*damaged.faces, bytes))
            continue;
        CheckConsistent(*damaged.faces);
        damaged.faces->GetChecksum(12);
        damaged.faces->GetMaterialsHashMap(nullptr, true);
        damaged.faces->FlipNormals();
    }
}

TEST(FaceList, AStreamDoesNotChooseTheElementsOfAChunk)
{
    // Fault in mind: points have the size of face data, and flags are then written over their table pointers.
    struct {
        const char* name;
        unsigned int id;
        CElementMethods* methods;
        bool reads;
    } const rows[] = {
        {"face data", CHUNK_FACE_PROPERTIES, new C3DFacePropertyMethods, true},
        {"points for face data", CHUNK_FACE_PROPERTIES, new C3DPointMethods, false},
        {"other numbers for face data", CHUNK_FACE_PROPERTIES, new CMaxFaceMethods2, false},
        {"points for a partner's numbers", 77, new C3DPointMethods, false},
        {"a partner's numbers", 77, new CMaxFaceMethods2, true},
        {"points for back materials", CHUNK_BACK_MATERIAL, new C3DVectorMethods, false},
        {"materials for old numbers", CHUNK_FACE_ORIGINAL_INDEX, new CBackFaceMaterialMethods, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Mesh mesh = Faces(MIXED), read;
        mesh.faces->AddDataChunk(row.id, row.methods);
        DeleteMe(row.methods);
        EXPECT_EQ(Load(*read.faces, Stored(*mesh.faces)), row.reads);
    }
    Mesh mesh = Cube(), read;
    auto* const methods = new CBackFaceMaterialMethods;
    mesh.points->AddDataChunk(CHUNK_POINT_ORIGINAL_INDEX, methods);
    DeleteMe(methods);
    EXPECT_FALSE(Load(*read.points, Stored(*mesh.points)));
}
