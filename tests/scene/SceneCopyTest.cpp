#include <gtest/gtest.h>

#include <set>

#include "scene/ObjectCreator.h"
#include "scene/ParserSceneInfo.h"
#include "scene/SceneBuilders.h"
#include "tools/FourCC.h"

namespace {

C3DSceneNode* Find(const C3DScene& scene, const wchar_t* name)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        C3DSceneNode* node = scene.GetNextNode(pos);
        if (node->GetName() == name)
            return node;
    }
    return nullptr;
}

/// a(b(c)k(l))d(e(f))g(h): a, k groups; b, d polygonal; c curve; e patch; f dummy; g without object; h, l lights. b is hidden.
C3DScene* CreateMixedScene()
{
    C3DScene* scene = C3DScene::Create();
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_POLYGONAL);
    AddNode(*scene, b, L"c", OBJECT_CURVE);
    AddNode(*scene, AddNode(*scene, a, L"k", OBJECT_GROUP), L"l", OBJECT_LIGHT);
    C3DSceneNode* d = AddNode(*scene, nullptr, L"d", OBJECT_POLYGONAL);
    AddNode(*scene, AddNode(*scene, d, L"e", OBJECT_PATCH), L"f", OBJECT_DUMMY);
    AddNode(*scene, AddNode(*scene, nullptr, L"g", 0), L"h", OBJECT_LIGHT);
    b->SetFlag(NODE_HIDDEN, true);
    return scene;
}

/// Refuses the nodes of one name, and counts what it made.
class CPickyCreator : public C3DObjectCreator {
public:
    explicit CPickyCreator(const wchar_t* refused) : m_refused(refused) {}
    bool CanProcess(const C3DSceneNode* node, const C3DBaseObject*) override { return !(node->GetName() == m_refused); }
    C3DBaseObject* GetNewObjectFrom(const C3DBaseObject* object, bool& local) override
    {
        made++;
        return C3DObjectCreator::GetNewObjectFrom(object, local);
    }
    int made = 0;

private:
    CXTString<wchar_t> m_refused;
};

int CountObjects(const C3DScene& scene)
{
    std::set<const C3DBaseObject*> objects;
    C3DBaseObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
        scene.GetNextNode(object, pos);
        objects.insert(object);
    }
    return static_cast<int>(objects.size());
}

}

TEST(SceneCopy, FlagsSayWhatComesThrough)
{
    struct {
        const char* name;
        int flags;
        const wchar_t* selected;
        const wchar_t* outline;    // below the destination
        const wchar_t* atRoot;     // what lost its parent
    } const rows[] = {
        {"all", 0, L"", L"a(b(c)k(l))d(e(f))g(h)", L""},
        {"no hidden", SCENE_COPY_NO_HIDDEN, L"", L"a(k(l))d(e(f))g(h)", L""},
        {"no polygons", SCENE_COPY_NO_POLYGONS, L"", L"a(k(l))g(h)", L""},
        {"no groups", SCENE_COPY_NO_GROUPS, L"", L"d(e(f))g(h)", L""},
        {"one level", SCENE_COPY_ONE_LEVEL, L"", L"adg", L""},
        {"flat, groups of the first level alone", SCENE_COPY_FLATTEN, L"", L"abcldefgh", L""},
        {"flat, past what is left out", SCENE_COPY_FLATTEN | SCENE_COPY_NO_HIDDEN, L"", L"acldefgh", L""},
        {"selected with and without parents", SCENE_COPY_SELECTED, L"abdf", L"a(b)d", L"f"},
        {"selected flat", SCENE_COPY_SELECTED | SCENE_COPY_FLATTEN, L"abckf", L"abcf", L""},
        {"selected, but hidden", SCENE_COPY_SELECTED | SCENE_COPY_NO_HIDDEN, L"abc", L"a", L"c"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DScene> scene(CreateMixedScene());
        for (const wchar_t* name = row.selected; *name; name++)
            Find(*scene, std::wstring(1, *name).c_str())->SetFlag(NODE_SELECTED, true);

        const CRef<C3DScene> copy(scene->Copy(nullptr, row.flags, nullptr));
        ASSERT_TRUE(copy);
        EXPECT_EQ(Outline(*copy), std::wstring(row.outline) + row.atRoot);
        for (C3DNodePos pos = copy->GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
            const C3DSceneNode* node = copy->GetNextNode(pos);
            EXPECT_EQ(node->GetScene(), static_cast<C3DScene*>(copy));
            if (!node->GetBaseObject())
                continue;
            EXPECT_EQ(node->GetBaseObject()->GetScene(), static_cast<C3DScene*>(copy));
            EXPECT_EQ(node->GetObjectID(), Find(*scene, node->GetName())->GetObjectID());
        }

        // Below a node, in another scene and in the same one.
        for (const bool foreign : {true, false}) {
            const CRef<C3DScene> other(foreign ? C3DScene::Create() : CreateMixedScene());
            for (const wchar_t* name = row.selected; *name && !foreign; name++)
                Find(*other, std::wstring(1, *name).c_str())->SetFlag(NODE_SELECTED, true);
            const std::wstring former = Outline(*other);
            C3DSceneNode* x = AddNode(*other, nullptr, L"x", OBJECT_DUMMY);
            if (!foreign)
                other->RemoveNode(x, false);    // it is no part of what is copied
            C3DSceneNode* top = foreign ? x : Find(*other, L"l");
            (foreign ? scene : other)->CopyChilds(other, top, nullptr, row.flags, nullptr);
            EXPECT_EQ(Outline(*other, top), row.outline);
            if (foreign) {
                EXPECT_EQ(Outline(*other), L"x(" + std::wstring(row.outline) + L")" + row.atRoot);
            } else {
                EXPECT_EQ(other->GetChildCount(nullptr, OBJECT_ANY),
                          scene->GetChildCount(nullptr, OBJECT_ANY) + copy->GetChildCount(nullptr, OBJECT_ANY));
                x->Delete();
            }
        }
    }
}

TEST(SceneCopy, NothingComesOfNothing)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    EXPECT_EQ(scene->Copy(nullptr, 0, nullptr), nullptr);
    AddNode(*scene, nullptr, L"a", OBJECT_GROUP)->SetFlag(NODE_HIDDEN, true);
    EXPECT_EQ(scene->Copy(nullptr, SCENE_COPY_NO_HIDDEN, nullptr), nullptr);
}

TEST(SceneCopy, SharedObjectsStayShared)
{
    // Faults in mind: the map lives for one node of a copy alone; sharers find an object of the destination that has the same id.
    enum Way { WHOLE, CHILDREN, BRANCH };
    for (const Way way : {WHOLE, CHILDREN, BRANCH}) {
        for (const bool given : {false, true}) {
            for (const bool foreign : {true, false}) {
                SCOPED_TRACE(testing::Message() << way << given << foreign);
                const CRef<C3DScene> scene(C3DScene::Create()), other(C3DScene::Create());
                C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
                C3DSceneNode* b = AddNode(*scene, a, L"b", 0);
                b->SetObject(CreateSquare(), true);
                AddSharer(*scene, b, L"c", b);
                AddSharer(*scene, a, L"d", b);
                C3DObjectCreator own;
                C3DObjectCreator* creator = given ? &own : nullptr;
                const CRef<C3DScene> whole(way == WHOLE ? scene->Copy(nullptr, 0, creator) : nullptr);
                C3DScene* dst = whole ? static_cast<C3DScene*>(whole) : foreign ? static_cast<C3DScene*>(other) : scene;
                if (way == CHILDREN)
                    scene->CopyChilds(dst, AddNode(*dst, nullptr, L"x", 0), nullptr, 0, creator);
                else if (way == BRANCH)
                    scene->CopyNode(dst, AddNode(*dst, nullptr, L"x", 0), a, 0, creator);
                const bool apart = dst != scene;
                EXPECT_EQ(CountObjects(*dst), apart ? 2 : 4);
                EXPECT_EQ(b->GetBaseObject()->GetInstanceCount(), 3);
                C3DSceneNode* copied = nullptr;
                for (C3DNodePos pos = dst->GetFirstNode(OBJECT_POLYGONAL); pos;) {
                    C3DSceneNode* node = dst->GetNextNode(pos);
                    if (node->GetBaseObject() != b->GetBaseObject())
                        copied = node;
                }
                ASSERT_NE(copied, nullptr);
                EXPECT_EQ(copied->GetBaseObject()->GetInstanceCount(), 3);
                EXPECT_EQ(copied->GetBaseObject()->GetRefCount(), 3);
                EXPECT_EQ(copied->GetObjectID() == b->GetObjectID(), apart);
                EXPECT_EQ(copied->GetGeomObject()->GetPointNbr(), 5);
                EXPECT_EQ(own.GetObjectMap().GetCount(), given ? 2u : 0u);
            }
        }
    }
}

TEST(SceneCopy, IdsOfTheDestinationAreNotTakenTwice)
{
    // A scene and its copy hold the same ids, like two scenes from one file. The sharers of what comes in stay with each other.
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    AddSharer(*scene, nullptr, L"b", a);
    const CRef<C3DScene> copy(scene->Copy(nullptr, 0, nullptr));
    scene->CopyChilds(copy, nullptr, nullptr, 0, nullptr);
    scene->CopySingleNode(copy, nullptr, a, 0, nullptr);
    EXPECT_EQ(Outline(*copy), L"ababa");
    std::set<unsigned int> ids;
    C3DBaseObject* object;
    for (C3DNodePos pos = copy->GetFirstNode(OBJECT_ANY, ITER_UNIQUE_OBJECTS); pos;) {
        copy->GetNextNode(object, pos);
        EXPECT_TRUE(ids.insert(object->GetObjectID()).second);
    }
    EXPECT_EQ(ids.size(), 3u);
    EXPECT_TRUE(ids.count(a->GetObjectID()));
}

TEST(SceneCopy, ACreatorJoinsCopiesOfSeveralCalls)
{
    const CRef<C3DScene> scene(C3DScene::Create()), other(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddSharer(*scene, nullptr, L"b", a);
    C3DObjectCreator creator;
    C3DSceneNode* first = scene->CopySingleNode(other, nullptr, a, 0, &creator);
    C3DSceneNode* second = scene->CopyNode(other, nullptr, b, 0, &creator);
    EXPECT_EQ(first->GetBaseObject(), second->GetBaseObject());
    other->RemoveAllNodes();
    EXPECT_EQ(scene->CopySingleNode(other, nullptr, b, 0, &creator), nullptr);    // what it would share is gone
    EXPECT_EQ(Outline(*other), L"");
}

TEST(SceneCopy, WhatBelongsToTheScene)
{
    static int released;
    static int record;
    released = 0;
    CParserSceneInfo::SetRelease([](bool, unsigned int, void*) { released++; });
    {
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
        a->CreateKey(30, KEY_MATRIX, 0);
        a->GetCustomData().SetInt(7, 42);
        scene->GetRoot()->AddKey(0, C3DMatrixKey(Translation(5, 0, 0)));
        scene->SetCurrentTime(20);
        scene->SetScaleFactor(2);
        scene->SetParserData(true, 4, &record);
        const unsigned int material = scene->CreateNewMaterial(0xFFFFFFFF)->GetMaterialID();

        const CRef<C3DScene> full(scene->Copy(nullptr, SCENE_COPY_REMEMBER_SOURCE, nullptr));
        EXPECT_EQ(full->GetScaleFactor(), 2);
        EXPECT_EQ(full->GetTickCount(), 20);
        EXPECT_TRUE(full->GetMaterialByID(material));
        C4x4TMatrix<float> matrix;
        full->GetChildNode(nullptr)->GetNodeTM(0, matrix, true);
        EXPECT_EQ(matrix.m[0][3], 5);
        std::uint64_t source = 0;
        EXPECT_TRUE(full->GetChildNode(nullptr)->GetCustomData().GetData(FourCC("RFNO"), &source, sizeof(source)));
        EXPECT_EQ(source, reinterpret_cast<std::uintptr_t>(a));
        EXPECT_FALSE(a->GetCustomData().HasData(FourCC("RFNO")));
        unsigned int size;
        EXPECT_EQ(full->GetParserData(size, false), &record);

        const CRef<C3DScene> bare(scene->Copy(nullptr, SCENE_COPY_NO_SCENE_DATA | SCENE_COPY_NO_MATERIALS, nullptr));
        EXPECT_FALSE(bare->IsUnitDefined());
        EXPECT_FALSE(bare->GetMaterialByID(material));
        EXPECT_EQ(bare->GetParserData(size, false), &record);
        bare->Inherit(scene, 0);    // the same record once more
        EXPECT_TRUE(bare->IsUnitDefined());
        scene->CopySingleNode(bare, nullptr, a, 0, nullptr);
        EXPECT_TRUE(bare->GetMaterialByID(material));
        EXPECT_EQ(released, 0);
    }
    EXPECT_EQ(released, 1);
    CParserSceneInfo::SetRelease(nullptr);
}

TEST(SceneCopy, DepthAndSharersDoNotMatter)
{
    // Faults in mind: recursion; a search through the destination for every sharer; a climb for every node.
    constexpr int COUNT = 100000;
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = nullptr;
    for (int i = 0; i < COUNT; i++)
        node = i ? AddSharer(*scene, node, L"n", node) : AddNode(*scene, nullptr, L"n", OBJECT_GROUP);
    C3DObjectCreator creator;
    const CRef<C3DScene> copy(scene->Copy(nullptr, 0, &creator));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->GetChildCount(nullptr, OBJECT_ANY), COUNT);
    EXPECT_EQ(copy->GetChildNode(nullptr)->GetBaseObject()->GetInstanceCount(), COUNT);
    scene->CopyNode(copy, nullptr, scene->GetChildNode(nullptr), 0, &creator);    // shares with the first copy
    EXPECT_EQ(copy->GetChildNode(nullptr)->GetBaseObject()->GetInstanceCount(), 2 * COUNT);
    scene->CopyNode(scene, node, scene->GetChildNode(nullptr), SCENE_COPY_FLATTEN, nullptr);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), COUNT + 2);    // further down groups are left out
}

TEST(ConvertToType, ReplacesAnObjectForAllItsNodesBelow)
{
    /// Dummies for polygon objects.
    class CDummyCreator : public CPickyCreator {
    public:
        using CPickyCreator::CPickyCreator;
        C3DBaseObject* ConvertToType(const C3DSceneNode*, const C3DBaseObject* object) override
        {
            asked++;
            return object->GetKindOf() == OBJECT_POLYGONAL ? C3DBaseObject::Create(OBJECT_DUMMY) : const_cast<C3DBaseObject*>(object);
        }
        int asked = 0;
    };
    struct {
        const char* name;
        const wchar_t *start, *refused;
        int converted, asked;
        const wchar_t* dummies;
    } const rows[] = {
        {"all", nullptr, L"", 5, 4, L"bcdef"},
        {"below a node", L"a", L"", 3, 2, L"bcd"},
        {"the first sharer refused", nullptr, L"b", 2, 3, L"ce"},
        {"a later sharer refused", nullptr, L"d", 5, 4, L"bcdef"},
        {"below a leaf", L"e", L"", 0, 0, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
        C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_POLYGONAL);
        AddNode(*scene, a, L"c", OBJECT_POLYGONAL);
        AddSharer(*scene, a, L"d", b);
        AddNode(*scene, nullptr, L"e", OBJECT_POLYGONAL);
        AddSharer(*scene, nullptr, L"f", b);
        CDummyCreator creator(row.refused);
        EXPECT_EQ(scene->ConvertToType(row.start ? Find(*scene, row.start) : nullptr, &creator), row.converted);
        EXPECT_EQ(creator.asked, row.asked);
        EXPECT_EQ(Names(*scene, scene->GetFirstNode(OBJECT_DUMMY)), row.dummies);
        int holders = 0;    // of b's object, whatever it is
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;)
            holders += scene->GetNextNode(pos)->GetBaseObject() == b->GetBaseObject();
        EXPECT_EQ(b->GetBaseObject()->GetInstanceCount(), holders);
        EXPECT_EQ(scene->ConvertToType(nullptr, nullptr), 0);
    }
}
