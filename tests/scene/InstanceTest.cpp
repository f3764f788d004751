#include <gtest/gtest.h>

#include "scene/Curve.h"
#include "scene/ObjectCreator.h"
#include "scene/Patch.h"
#include "scene/SceneBuilders.h"

TEST(Instance, CountsFollowTheNodes)
{
    // Faults in mind: the instance count falls below 1; the object dies with the first of two nodes, or with none.
    ASSERT_EQ(CCountedGroup::alive, 0);
    {
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* a = AddNode(*scene, nullptr, L"a", 0);
        C3DBaseObject* object = new CCountedGroup;
        a->SetObject(object, true);
        EXPECT_EQ(object->GetScene(), static_cast<C3DScene*>(scene));
        C3DSceneNode* b = AddSharer(*scene, nullptr, L"b", a);
        C3DSceneNode* c = AddSharer(*scene, nullptr, L"c", a);
        EXPECT_EQ(object->GetRefCount(), 3);
        EXPECT_EQ(object->GetInstanceCount(), 3);

        scene->RemoveNode(b, true);
        EXPECT_EQ(object->GetInstanceCount(), 2);
        EXPECT_TRUE(object->IsInstanciated());
        EXPECT_TRUE(c->IsObjectIntanciated(false));
        c->SetObject(nullptr, true);
        EXPECT_FALSE(a->IsObjectIntanciated(false));
        EXPECT_EQ(object->GetRefCount(), 1);

        a->SetObject(object, true);    // its own object, no further reference: it stays
        EXPECT_EQ(CCountedGroup::alive, 1);
        a->SetObject(scene->CreateObjectInstance(object), true);
        EXPECT_EQ(object->GetRefCount(), 1);
        EXPECT_EQ(object->GetInstanceCount(), 1);

        C3DSceneNode* taken = a;
        scene->RemoveNode(taken, false);
        EXPECT_EQ(taken->GetScene(), nullptr);
        EXPECT_EQ(object->GetScene(), nullptr);
        EXPECT_EQ(Outline(*scene), L"c");
        scene->AddNode(c, taken);
        EXPECT_EQ(object->GetScene(), static_cast<C3DScene*>(scene));
    }
    EXPECT_EQ(CCountedGroup::alive, 0);
}

TEST(Instance, AnObjectNamesASceneOnlyWhileANodeOfThatSceneHoldsIt)
{
    // Faults in mind: the scene stays named when both sharers have left, for an instance outside of any tree, in a copy, and in a scene
    // that lives when one sharer went to a scene that ends; the surface of a patch keeps what the patch forgets.
    C3DScene* const scene = C3DScene::Create();
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_PATCH);
    C3DSceneNode* b = AddSharer(*scene, nullptr, L"b", a);
    C3DSceneNode* const loose = scene->CreateInstance(a);
    C3DBaseObject* const patch = a->GetBaseObject();
    C3DBaseObject* const surface = patch->GetFinalObject(false);
    const CRef<C3DBaseObject> copy(patch->Copy(0, nullptr));
    EXPECT_EQ(copy->GetScene(), nullptr);

    scene->RemoveNode(b, false);
    EXPECT_EQ(patch->GetScene(), scene);
    C3DScene* const other = C3DScene::Create();
    other->AddNode(nullptr, b);
    EXPECT_EQ(patch->GetScene(), other);
    patch->SetScene(nullptr);    // nodes know better
    EXPECT_EQ(surface->GetScene(), other);
    DeleteMe(other);
    EXPECT_EQ(patch->GetScene(), scene);

    b = AddSharer(*scene, nullptr, L"b", a);
    scene->RemoveNode(a, false);
    scene->RemoveNode(b, false);
    EXPECT_EQ(patch->GetScene(), nullptr);
    scene->AddNode(nullptr, a);
    scene->AddNode(a, b);
    EXPECT_EQ(surface->GetScene(), scene);
    DeleteMe(scene);
    EXPECT_EQ(patch->GetScene(), nullptr);
    EXPECT_EQ(surface->GetScene(), nullptr);
    loose->Delete();
}

TEST(Instance, MadeUniqueAgain)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", 0);
    a->SetObject(CreateSquare(), true);
    C3DSceneNode* b = AddSharer(*scene, a, L"b", a);
    AddSharer(*scene, a, L"c", a);
    EXPECT_TRUE(scene->GetRoot()->IsObjectIntanciated(true));
    EXPECT_TRUE(b->DeleteObjectInstanciation());
    EXPECT_FALSE(b->DeleteObjectInstanciation());
    EXPECT_FALSE(scene->GetRoot()->IsObjectIntanciated(true));
    EXPECT_NE(b->GetObjectID(), a->GetObjectID());
    EXPECT_EQ(b->GetGeomObject()->GetPointNbr(), 5);
    EXPECT_EQ(b->GetBaseObject()->GetScene(), static_cast<C3DScene*>(scene));
    EXPECT_EQ(a->GetBaseObject()->GetInstanceCount(), 2);
    EXPECT_EQ(scene->DeleteInstanciation(nullptr), 1);    // of two sharers one copy makes both unique
    EXPECT_EQ(scene->GetPointNbr(), 15);
    EXPECT_EQ(scene->GetFaceNbr(), 6);
}

TEST(Copy, OfANodeTakesWhatTheFlagsSay)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* source = AddNode(*scene, nullptr, L"source", 0);
    source->SetObject(CreateSquare(), true);
    source->SetFlag(NODE_SELECTED, true);
    source->GetCustomData().SetInt(7, 42);
    source->GetBaseObject()->GetCustomData().SetInt(8, 43);
    source->AddKey(5, C3DMatrixKey(Translation(1, 2, 3)));
    const unsigned int objectID = source->GetObjectID();

    struct {
        const char* name;
        int flags;
        bool object, shared, sameID;
    } const rows[] = {
        {"plain", 0, true, false, false},
        {"instance", COPY_INSTANCE, true, true, true},
        {"without object", COPY_NO_OBJECT, false, false, false},
        {"for another scene", COPY_FOREIGN_SCENE, true, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        C3DSceneNode* copy = source->Copy(row.flags, nullptr);
        ASSERT_NE(copy, nullptr);
        EXPECT_TRUE(copy->GetName() == L"source");
        EXPECT_NE(copy->GetNodeID(), source->GetNodeID());
        EXPECT_TRUE(copy->IsFlagSet(NODE_SELECTED));
        EXPECT_EQ(copy->GetKeyNbr(KEY_ANY), 1);
        int value = 0;
        EXPECT_TRUE(copy->GetCustomData().GetInt(7, value) && value == 42);
        EXPECT_EQ(copy->GetParent(), nullptr);
        ASSERT_EQ(copy->GetBaseObject() != nullptr, row.object);
        if (C3DGeomObject* object = copy->GetGeomObject()) {
            EXPECT_EQ(object == source->GetBaseObject(), row.shared);
            EXPECT_EQ(object->GetObjectID() == objectID, row.sameID);
            EXPECT_EQ(object->GetScene() != nullptr, row.shared);
            EXPECT_EQ(object->GetChecksum(0xFFFF), source->GetBaseObject()->GetChecksum(0xFFFF));
            EXPECT_EQ(object->GetFaceNbr(), 2);
            EXPECT_TRUE(object->GetCustomData().GetInt(8, value) && value == 43);
        }
        copy->Delete();
        EXPECT_FALSE(source->GetBaseObject()->IsInstanciated());
    }
}

TEST(Copy, OfABranchKeepsSharingAndShape)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_POLYGONAL);
    AddNode(*scene, b, L"c", 0);
    AddSharer(*scene, a, L"d", b);
    AddSharer(*scene, nullptr, L"e", b);

    C3DSceneNode* copy = a->CopyBranch(b, 0, nullptr);    // under a node of the branch itself
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(Outline(*scene), L"a(b(ca(b(c)d))d)e");
    const C3DBaseObject* first = scene->GetChildNode(copy)->GetBaseObject();
    EXPECT_NE(first, b->GetBaseObject());
    EXPECT_EQ(scene->GetRightNode(scene->GetChildNode(copy))->GetBaseObject(), first);
    EXPECT_EQ(first->GetInstanceCount(), 2);
    EXPECT_EQ(first->GetRefCount(), 2);
    EXPECT_EQ(b->GetBaseObject()->GetInstanceCount(), 3);
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;)
        EXPECT_EQ(scene->GetNextNode(pos)->GetScene(), static_cast<C3DScene*>(scene));
    EXPECT_EQ(Null<C3DSceneNode>()->CopyBranch(nullptr, 0, nullptr), nullptr);
}

namespace {

/// Makes polygon objects of everything.
class CMeshCreator : public C3DObjectCreator {
    C3DBaseObject* GetNewObjectFrom(const C3DBaseObject*, bool& local) override
    {
        local = true;
        return GetNewPolygonalObject();
    }
};

/// Fills in its own geometry: a single point far out.
class CFillingCreator : public C3DObjectCreator {
    C3DBaseObject* GetNewObjectFrom(const C3DBaseObject*, bool& local) override
    {
        local = false;
        const float point[] = {100, 100, 100};
        return CreateObjectFromArrays(point, sizeof point, nullptr, 0, nullptr, 0);
    }
};

}

TEST(Copy, OfAnObjectDependsOnTheCreator)
{
    const CRef<C3DObject> square(CreateSquare());
    const CRef<C3DPatch> patch(new C3DPatch);
    C3DBaseObject* target = static_cast<C3DPatch*>(patch);
    EXPECT_TRUE(square->InternalCopy(target, 0, nullptr));    // mesh into mesh
    EXPECT_EQ(patch->GetPointNbr(), 5);
    CMeshCreator mesh;
    const CRef<C3DBaseObject> copy(patch->Copy(0, &mesh));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->GetKindOf(), OBJECT_POLYGONAL);
    EXPECT_EQ(copy->GetChecksum(0xFFFF), square->GetChecksum(0xFFFF));

    const CRef<C3DCurve> curve(new C3DCurve(C3DPointList::Create(nullptr), nullptr, nullptr));
    curve->SetMaterialID(5);
    EXPECT_EQ(curve->Copy(0, &mesh), nullptr);    // a line is no mesh
    const CRef<C3DBaseObject> line(curve->Copy(0, nullptr));
    ASSERT_TRUE(line);
    EXPECT_EQ(static_cast<C3DCurve*>(*line)->GetMaterialID(), 5u);
    EXPECT_EQ(static_cast<C3DCurve*>(*line)->GetFaceList(), nullptr);

    // The box cache comes along with a copy, but not over geometry that is another.
    C3DTPoint<float> min, max;
    square->GetBoundingBox(min, max, BOX_POINTS);
    CFillingCreator filling;
    const CRef<C3DBaseObject> filled(square->Copy(0, &filling));
    ASSERT_TRUE(filled);
    static_cast<C3DGeomObject*>(*filled)->GetBoundingBox(min, max, BOX_POINTS);
    EXPECT_EQ(Values(max), (std::vector<float>{100, 100, 100}));
}
