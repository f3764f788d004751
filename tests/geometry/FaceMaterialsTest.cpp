#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

#include "support/Consistent.h"
#include "support/Meshes.h"

namespace {

Mesh WithMaterials(const std::vector<unsigned int>& materials)
{
    Mesh mesh;
    mesh.faces->AppendFaces(static_cast<int>(materials.size()), 3, [](int* to, int k) { to[0] = to[1] = to[2] = k; });
    for (std::size_t i = 0; i < materials.size(); i++)
        mesh.faces->SetFaceMaterial(static_cast<unsigned int>(i), materials[i]);
    return mesh;
}

std::map<unsigned int, unsigned int> Counts(const C3DFaceList::MaterialsMap* map)
{
    std::map<unsigned int, unsigned int> counts;
    for (const auto& [id, count] : *map)
        counts[id] = count;
    return counts;
}

using Map = std::map<unsigned int, unsigned int>;

}

TEST(FaceMaterials, BackMaterialsComeWithTheFirstOneAndGo)
{
    Mesh mesh = WithMaterials({1, 1, 1, 1, 1, 1, 1, 1});
    C3DFaceList& faces = *mesh.faces;
    EXPECT_FALSE(faces.RemoveBackFaceMaterials());
    EXPECT_EQ(faces.GetBackFaceMaterial(7), NO_MATERIAL);
    faces.SetBackFaceMaterial(8, 4);
    EXPECT_FALSE(faces.HasBackFaceMaterials()) << "no such face";
    faces.SetBackFaceMaterial(7, 4);
    for (int i = 0; i < 7; i++)
        EXPECT_EQ(faces.GetBackFaceMaterial(i), NO_MATERIAL);
    EXPECT_EQ(faces.GetBackFaceMaterial(7), 4u);
    faces.SetBackFaceMaterial(0, 5);
    EXPECT_EQ(faces.GetBackFaceMaterial(7), 4u) << "a second one resets nothing";
    CheckConsistent(faces);
    EXPECT_TRUE(faces.RemoveBackFaceMaterials());
    EXPECT_FALSE(faces.HasBackFaceMaterials());
}

TEST(FaceMaterials, TheMapCountsLiveFaces)
{
    Mesh mesh = WithMaterials({7, 2, 2, 7, 3, 2});
    C3DFaceList& faces = *mesh.faces;
    faces.SetFaceFlag(0, FACE_INVALID, true);
    faces.SetFaceFlag(4, FACE_EMPTY, true);
    faces.SetBackFaceMaterial(1, 7);
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, false)), (Map{{7, 1}, {2, 3}}));
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, true)), (Map{{7, 2}, {2, 3}, {NO_MATERIAL, 3}}));
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, false)), (Map{{7, 1}, {2, 3}}));

    // Stale by intent until the list is marked.
    faces.SetFaceMaterial(5, 9);
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, false)), (Map{{7, 1}, {2, 3}}));
    faces.SetFlag(FACELIST_CHANGED, true);
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, false)), (Map{{7, 1}, {2, 2}, {9, 1}}));
    EXPECT_FALSE(faces.IsFlagSet(FACELIST_CHANGED));

    // The material of face 0 has an entry, alive or not; without back materials that is all that is asked for.
    faces.RemoveBackFaceMaterials();
    faces.SetFaceMaterial(0, 40);
    faces.DeleteMaterialsHashMap();
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, true)), (Map{{40, 0}, {7, 1}, {2, 2}, {9, 1}}));
    faces.RemoveAll();
    EXPECT_TRUE(faces.GetMaterialsHashMap(nullptr, true)->IsEmpty());
}

TEST(FaceMaterials, RemovingBackMaterialsDropsTheMapWhereTheFlagSaysSo)
{
    for (const bool flagged : {false, true}) {
        Mesh mesh = WithMaterials({1, 1});
        mesh.faces->SetBackFaceMaterial(0, 3);
        mesh.faces->GetMaterialsHashMap(nullptr, false);
        mesh.faces->SetFaceMaterial(0, 5);
        mesh.faces->SetFlag(FACELIST_BACK_CHANGED, flagged);
        mesh.faces->RemoveBackFaceMaterials();
        EXPECT_EQ(Counts(mesh.faces->GetMaterialsHashMap(nullptr, false)), (flagged ? Map{{5, 1}, {1, 1}} : Map{{1, 2}}));
    }
}

TEST(FaceMaterials, ReplacesEverywhereAndKeepsABuiltMap)
{
    Mesh mesh = WithMaterials({1, 2, 1, 3});
    C3DFaceList& faces = *mesh.faces;
    faces.SetFaceFlag(2, FACE_INVALID, true);
    faces.SetBackFaceMaterial(3, 1);
    EXPECT_FALSE(faces.ReplaceMaterial(3, 3));
    EXPECT_FALSE(faces.ReplaceMaterial(8, 9));
    faces.GetMaterialsHashMap(nullptr, false);
    EXPECT_TRUE(faces.ReplaceMaterial(1, 2));
    C3DFace face;
    faces.GetFace(2, face);
    EXPECT_EQ(face.GetMaterialID(), 2u) << "dead faces too";
    EXPECT_EQ(faces.GetBackFaceMaterial(3), 2u);
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, false)), (Map{{2, 1}, {3, 1}})) << "2 has what 1 had";

    faces.SetFaceMaterial(0, 11);    // unknown to the map: it is built anew
    EXPECT_TRUE(faces.ReplaceMaterial(11, 12));
    EXPECT_EQ(Counts(faces.GetMaterialsHashMap(nullptr, false)), (Map{{2, 1}, {3, 1}, {12, 1}}));
}

TEST(FaceMaterials, SortsStably)
{
    std::mt19937 random(5);
    std::vector<unsigned int> materials(500);
    for (unsigned int& id : materials)
        id = 0xFFFFFFFF - random() % 7 * 1000000000u;
    Mesh mesh = WithMaterials(materials);
    C3DFaceList& faces = *mesh.faces;
    std::vector<std::pair<unsigned int, unsigned int>> expected;
    for (unsigned int i = 0; i < materials.size(); i++)
        expected.emplace_back(materials[i], i);
    std::sort(expected.begin(), expected.end());

    bool changed;
    const std::unique_ptr<unsigned int[]> order(faces.Sort(FACE_SORT_MATERIAL, changed));
    EXPECT_TRUE(changed);
    for (unsigned int i = 0; i < materials.size(); i++)
        ASSERT_EQ(order[i], expected[i].second);

    EXPECT_TRUE(faces.ReorderFaces(order.get(), 500, false));
    for (unsigned int i = 0; i < materials.size(); i++)
        ASSERT_EQ(faces.GetFaceMaterial(i), expected[i].first);
    const std::unique_ptr<unsigned int[]> same(faces.Sort(FACE_SORT_MATERIAL, changed));
    EXPECT_FALSE(changed);
    EXPECT_EQ(same[499], 499u);
    const Mesh none;
    EXPECT_EQ(none.faces->Sort(FACE_SORT_MATERIAL, changed), nullptr);
    EXPECT_FALSE(changed);
}
