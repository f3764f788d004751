#include <map>
#include <set>

#include "scene/Curve.h"

#include "io/SceneCase.h"

// Scenes that move into another, or are copied there.

namespace {

C3DSceneNode* AddSquare(C3DScene& scene, const wchar_t* name, unsigned int first, unsigned int second)
{
    C3DSceneNode* const node = AddObject(scene, name, CreateSquare());
    node->GetGeomObject()->GetFaceList()->SetFaceMaterial(0, first);
    node->GetGeomObject()->GetFaceList()->SetFaceMaterial(1, second);
    return node;
}

CRGBColor Color(unsigned char red) { return CRGBColor(red, 0, 0); }

}

TEST(Merge, JoinsEqualMaterialsAndMovesTheNodes)
{
    // Faults in mind: ids run into one another when the new id of one material is the old id of another; a shared object is changed once
    // for each node; nodes keep their old scene.
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DScene* const other = C3DScene::Create();
    scene->CreateNewMaterial(1)->SetDiffuseColor(0, Color(10));
    scene->CreateNewMaterial(2)->SetDiffuseColor(0, Color(20));
    other->CreateNewMaterial(1)->SetDiffuseColor(0, Color(20));    // crosswise
    other->CreateNewMaterial(2)->SetDiffuseColor(0, Color(10));
    other->CreateNewMaterial(3)->SetDiffuseColor(0, Color(30));
    AddSquare(*scene, L"a", 1, 2);
    C3DSceneNode* const moved = AddSquare(*other, L"a", 1, 2);
    AddSharer(*other, moved, L"b", moved);
    C3DSceneNode* const third = AddSquare(*other, L"c", 3, 3);
    C3DSceneNode* const line = AddNode(*other, nullptr, L"k", OBJECT_CURVE);
    static_cast<C3DCurve&>(*line->GetGeomObject()).SetMaterialID(1);

    EXPECT_FALSE(scene->Merge(nullptr, nullptr));
    EXPECT_FALSE(scene->Merge(scene, nullptr));
    EXPECT_FALSE(scene->Merge(other, moved));    // not in this scene
    ASSERT_TRUE(scene->Merge(other, nullptr));
    EXPECT_EQ(Outline(*scene), L"aa(b)ck");
    EXPECT_EQ(scene->GetMaterialNumber(), 3u);
    const C3DFaceList& faces = *moved->GetGeomObject()->GetFaceList();
    EXPECT_EQ(faces.GetFaceMaterial(0), 2u);
    EXPECT_EQ(faces.GetFaceMaterial(1), 1u);
    EXPECT_EQ(static_cast<C3DCurve&>(*line->GetGeomObject()).GetMaterialID(), 2u);
    const C3DMaterial* const material = scene->GetMaterialByID(third->GetGeomObject()->GetFaceList()->GetFaceMaterial(0));
    ASSERT_TRUE(material);
    EXPECT_EQ(material->GetDiffuseColor(0, false), Color(30));
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;)
        EXPECT_EQ(scene->GetNextNode(pos)->GetScene(), scene);
}

TEST(Merge, ObjectsWhoseIdsAreTakenGetNewOnes)
{
    // Faults in mind: two objects of one id, so that one is taken for an instance of the other; sharers that come in part; a third file
    // meets the new ids of the second.
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* const a = AddSquare(*scene, L"a", 1, 1);
    AddSharer(*scene, a, L"b", a);
    AddNode(*scene, nullptr, L"c", OBJECT_LIGHT);
    const CRef<C3DScene> file(scene->Copy(nullptr, 0, nullptr));
    for (int i = 0; i < 2; i++)
        ASSERT_TRUE(scene->Merge(file->Copy(nullptr, 0, nullptr), nullptr));
    ASSERT_EQ(Outline(*scene), L"a(b)ca(b)ca(b)c");
    std::map<unsigned int, std::set<const C3DBaseObject*>> objects;
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;) {
        const C3DSceneNode* const node = scene->GetNextNode(pos);
        objects[node->GetObjectID()].insert(node->GetBaseObject());
        EXPECT_EQ(node->GetBaseObject()->GetInstanceCount(), node->GetObjectKindOf() == OBJECT_LIGHT ? 1 : 2);
    }
    EXPECT_EQ(objects.size(), 6u);
    for (const auto& [id, sharing] : objects)
        EXPECT_EQ(sharing.size(), 1u) << id;
    EXPECT_EQ(scene->GetObjectByID(a->GetObjectID()), a->GetBaseObject());
}

TEST(Merge, TakesEmptyScenesAndParents)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DScene* const empty = C3DScene::Create();
    empty->AddRef();
    EXPECT_TRUE(scene->Merge(empty, nullptr));
    EXPECT_EQ(empty->GetRefCount(), 1);    // one reference was given up
    DeleteMe(empty);
    C3DSceneNode* const group = AddNode(*scene, nullptr, L"g", OBJECT_GROUP);
    C3DScene* const other = C3DScene::Create();
    AddNode(*other, nullptr, L"x", OBJECT_LIGHT);
    AddNode(*other, nullptr, L"y", OBJECT_LIGHT);
    EXPECT_TRUE(scene->Merge(other, group));
    EXPECT_EQ(Outline(*scene), L"g(xy)");
}

TEST(Merge, APatchShowsItsNewMaterials)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DScene* const other = C3DScene::Create();
    scene->CreateNewMaterial(1)->SetDiffuseColor(0, Color(10));
    other->CreateNewMaterial(9)->SetDiffuseColor(0, Color(10));
    C3DSceneNode* const node = AddMesh<C3DPatch>(*other, L"p", Cube());
    for (unsigned int face = 0; face < 6; face++)
        node->GetGeomObject()->GetFaceList()->SetFaceMaterial(face, 9);
    const auto shown = [&] {
        C3DGeomObject* const surface = *node->GetFinalObject();
        return surface->GetFaceList()->GetFaceMaterial(0);
    };
    ASSERT_EQ(shown(), 9u);
    ASSERT_TRUE(scene->Merge(other, nullptr));
    EXPECT_EQ(shown(), 1u);
}

TEST(AddScene, CopiesWithParametersUnlessToldOtherwise)
{
    const CRef<C3DScene> scene(C3DScene::Create()), other(C3DScene::Create());
    AddNode(*scene, nullptr, L"a", OBJECT_LIGHT);
    AddNode(*other, AddNode(*other, nullptr, L"b", OBJECT_GROUP), L"c", OBJECT_LIGHT);
    other->SetUnit(UNIT_METER);
    EXPECT_FALSE(scene->AddScene(nullptr, 0, nullptr));
    EXPECT_TRUE(scene->AddScene(other, SCENE_COPY_NO_SCENE_DATA, nullptr));
    EXPECT_EQ(scene->GetUnit(), UNIT_UNDEFINED);
    EXPECT_TRUE(scene->AddScene(other, 0, nullptr));
    EXPECT_EQ(scene->GetUnit(), UNIT_METER);
    EXPECT_EQ(Outline(*scene), L"ab(c)b(c)");
    EXPECT_EQ(Outline(*other), L"b(c)");
}
