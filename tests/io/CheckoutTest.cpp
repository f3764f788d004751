#include <limits>

#include "io/SceneCase.h"

// What the import checkout repairs and does, and what it says about it.

namespace {

class Checkout : public testing::Test, InEnglish {
protected:
    /// Runs the checkout with the flags; the lines of its log.
    TextLines Run(unsigned int flags = 0)
    {
        CSceneImportOptions options(flags);
        scene->CheckoutImport(options);
        return Lines(options);
    }

    CRef<C3DScene> scene{C3DScene::Create()};
};

const std::vector<XYZ> SQUARE = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};

}

TEST_F(Checkout, RepairsCoordinatesThatAreNotFinite)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    C3DGeomObject* const object = AddMesh(*scene, L"a", MakeMesh({{nan, 1, 2}, {inf, nan, -inf}, {1, 1, 1}}, {{0, 1, 2}}))->GetGeomObject();
    EXPECT_EQ(Run(), TextLines());
    EXPECT_EQ(Values(PointOf(object, 0)), (std::vector<float>{0, 1, 2}));
    EXPECT_EQ(Values(PointOf(object, 1)), (std::vector<float>{0, 0, 0}));
}

TEST_F(Checkout, AFaceOfPointsThatAreNotThereGoes)
{
    // Faults in mind: a negative index passes; the channels stay behind when the face goes; a face that was dead is told about.
    Mesh mesh = MakeMesh(SQUARE, {{0, 1, 2}, {0, 4, -7}, {0, -1, 2}, {0, 2, 3}, {1, 2, 3}});
    mesh.faces->SetFaceFlags(4, FACE_INVALID, true);
    C3DGeomObject& object = *AddMesh(*scene, L"a", std::move(mesh))->GetGeomObject();
    CUVWChannel& uv = *AddChannel<CUVWChannel>(object, 5, {{0, 1, 2}, {0, 1, 2}, {0, 1, 2}, {2, 3, 4}, {0, 1, 2}});
    EXPECT_EQ(Run(), (TextLines{L"2 Invalid face index (face 1)", L"2 Invalid face index (face 2)"}));
    EXPECT_EQ(AllCorners(*object.GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 2}, {0, 2, 3}}));
    EXPECT_EQ(AllCorners(*uv.GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 2}, {2, 3, 4}}));
    CheckConsistent(*object.GetFaceList(), object.GetPointNbr());
}

TEST_F(Checkout, AChannelLosesWhatIsWrongAndNothingElse)
{
    C3DGeomObject& object = *AddMesh(*scene, L"a", MakeMesh(SQUARE, {{0, 1, 2}, {0, 2, 3}, {0, 1, 3}, {1, 2, 3}}))->GetGeomObject();
    CUVWChannel& uv = *AddChannel<CUVWChannel>(object, 4, {{0, 1, 2}, {0, 4, -1}, {}, {1, 2, 3}});
    uv.GetFaceList()->SetFaceFlags(3, FACE_INVALID, true);
    CVCChannel& shorter = *AddChannel<CVCChannel>(object, 4, {{0, 1, 2}});
    EXPECT_EQ(Run(), (TextLines{L"2 Invalid face index (face 1)"}));
    EXPECT_EQ(AllCorners(*uv.GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 2}, {}, {}, {}}));
    for (const unsigned int face : {1u, 2u, 3u})
        EXPECT_EQ(uv.GetFaceList()->IsFaceOneFlagSet(face, FACE_DEAD), uv.GetFaceList()->IsFaceFlagsSet(face, FACE_EMPTY));
    EXPECT_FALSE(uv.IsFlagSet(CHANNEL_INVALID));
    EXPECT_TRUE(shorter.IsFlagSet(CHANNEL_INVALID));    // out of step: nobody reads it
    EXPECT_EQ(object.GetFaceNbr(), 4);
}

TEST_F(Checkout, GivenNormalsAreRepairedBeforeTheyAreMadeUnitVectors)
{
    const struct {
        const char* name;
        XYZ value;
        std::vector<int> corners;
        bool kept;
        std::size_t lines;
    } rows[] = {
        {"long", {0, 0, 5}, {0, 0, 0}, true, 0},
        {"without length", {0, 0, 0}, {0, 0, 0}, false, 0},
        {"negative index", {0, 0, 0}, {0, -2, 0}, false, 1},
        {"far index", {0, 0, 0}, {0x7FFFFFFF, 0, 0}, false, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        scene->RemoveAllNodes();
        C3DGeomObject& object = *AddMesh(*scene, L"a", MakeMesh(SQUARE, {{0, 1, 2}}))->GetGeomObject();
        auto& normals = *AddChannel<CSpecNormalChannel>(object, 1, {row.corners});
        C3DTVector<float>& vector = *normals.GetNormalVectorList()->ElementAt(0);
        vector.x = row.value.x, vector.y = row.value.y, vector.z = row.value.z;
        EXPECT_EQ(Run().size(), row.lines);
        ASSERT_EQ(object.GetChannels()->GetSpecNormalChannel() != nullptr, row.kept);
        if (row.kept) {
            EXPECT_EQ(Values(vector), (std::vector<float>{0, 0, 1}));
        }
    }
}

TEST_F(Checkout, NamesWhatHasNoNameByKind)
{
    AddMesh(*scene, L"", Cube());
    C3DSceneNode* const shared = AddMesh(*scene, L"named", Cube());
    AddSharer(*scene, nullptr, L"", shared);
    AddNode(*scene, nullptr, L"", OBJECT_LIGHT);
    C3DSceneNode* const group = AddNode(*scene, nullptr, L"", OBJECT_GROUP);
    AddMesh(*scene, L"", Cube(), group);
    scene->CreateNewMaterial(11)->SetName(L"");
    scene->CreateNewMaterial(12)->SetName(L"mine");
    scene->CreateNewMaterial(13)->SetName(L"");
    EXPECT_EQ(Run(IMPORT_NO_CHECKOUT), TextLines());
    EXPECT_EQ(Outline(*scene), L"named()");    // nothing happened: still without names, in the parser's order
    Run();
    EXPECT_EQ(Outline(*scene), L"Light 1namedObjects group 1(Polygonal object 3)Polygonal object 1");
    std::vector<std::wstring> materials;
    for (unsigned int pos = scene->GetFirstMaterial(), number = 1; pos != HASH_END; number++) {
        const std::wstring name = scene->GetNextMaterial(pos)->GetName().Str();
        EXPECT_TRUE(name == L"mine" || name == L"Material " + std::to_wstring(number)) << number;
    }
}

TEST_F(Checkout, SortsSiblingsByName)
{
    const struct {
        std::vector<const wchar_t*> names;
        const wchar_t* order;
    } rows[] = {{{L"b", L"A"}, L"Ab"}, {{L"A", L"b"}, L"Ab"}, {{L"c", L"B", L"b", L"a"}, L"aBbc"}, {{L"É", L"z", L"à"}, L"zàÉ"}};
    for (const auto& row : rows) {
        scene->RemoveAllNodes();
        C3DSceneNode* const first = AddNode(*scene, nullptr, L"x", OBJECT_GROUP);
        C3DSceneNode* const second = AddNode(*scene, nullptr, L"w", OBJECT_GROUP);
        for (const wchar_t* name : row.names) {
            AddNode(*scene, first, name, OBJECT_GROUP);
            AddNode(*scene, second, name, OBJECT_GROUP);
        }
        Run();
        EXPECT_EQ(Outline(*scene), L"w(" + std::wstring(row.order) + L")x(" + row.order + L")");
    }
    // Wide and deep at once: neither square nor on the call stack.
    scene->RemoveAllNodes();
    for (int i = 0; i < 20000; i++)
        AddNode(*scene, nullptr, std::to_wstring(20000 - i).c_str(), OBJECT_GROUP);
    C3DSceneNode* parent = nullptr;
    for (int i = 0; i < 20000; i++)
        parent = AddNode(*scene, parent, L"deep", OBJECT_GROUP);
    Run();
    EXPECT_EQ(scene->GetChildNode(nullptr)->GetName(), L"1");
}

TEST_F(Checkout, JoiningTellsOfFacesThatItDrops)
{
    for (const unsigned int how : {IMPORT_CONCATENATE, IMPORT_CONCATENATE_BY_MATERIALS}) {
        scene->RemoveAllNodes();
        AddMesh(*scene, L"a", MakeMesh(SQUARE, {{0, 1, 2}, {0, 0, 1}, {1, 2}}));
        const TextLines lines = Run(how);
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[1], L"2 Faces with fewer than 3 different corners left out: 2");
    }
}

TEST_F(Checkout, EachFlagDoesItsStepAndSaysSo)
{
    const unsigned int both = IMPORT_CONCATENATE | IMPORT_CONCATENATE_BY_MATERIALS;
    const struct {
        const char* name;
        unsigned int flags;
        TextLines lines;
        std::vector<int> counts;    // afterwards: nodes, geometric ones, points, faces
    } rows[] = {
        {"none", 0, {}, {5, 2, 14, 8}},
        {"triangulate", IMPORT_TRIANGULATE, {}, {5, 2, 14, 14}},
        {"weld", IMPORT_WELD, {}, {5, 2, 12, 8}},
        {"merge coplanar", IMPORT_WELD | IMPORT_MERGE_COPLANAR, {}, {5, 2, 12, 7}},
        {"global", IMPORT_GLOBAL_COORDINATES, {L"1 Converting /from/scene.x from local to global coordinates"}, {5, 2, 14, 8}},
        {"clean groups", IMPORT_CLEAN_GROUPS, {}, {4, 2, 14, 8}},
        {"concatenate", IMPORT_CONCATENATE, {L"1 Concatenating 3D scene"}, {1, 1, 8, 6}},
        {"the first of both", both, {L"1 Concatenating 3D scene"}, {1, 1, 8, 6}},
        {"remove hidden", IMPORT_REMOVE_HIDDEN, {L"1 Removing object hidden"}, {3, 1, 8, 6}},
        {"generate", IMPORT_GENERATE_UV, {L"1 Creating UV for the scene"}, {5, 2, 14, 8}},
        {"disconnect", IMPORT_DISCONNECT_FACES, {}, {5, 2, 30, 8}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        scene->RemoveAll();
        scene->SetFilename(CFileNameSpec(L"/from/scene.x"));
        scene->CreateNewMaterial(7)->AddMaterialMap(L"a.png", NO_CHANNEL_ID, MAP_DIFFUSE, PROJECTION_PLANAR);
        C3DSceneNode* const cube = AddMesh(*scene, L"cube", Cube());
        cube->GetGeomObject()->GetFaceList()->SetFaceMaterial(0, 7);
        // Each face of the cube has coordinates of its own.
        CUVWChannel& uv = *AddChannel<CUVWChannel>(
            *cube->GetGeomObject(), 24, {{0, 1, 2, 3}, {4, 5, 6, 7}, {8, 9, 10, 11}, {12, 13, 14, 15}, {16, 17, 18, 19}, {20, 21, 22, 23}});
        for (int i = 0; i < 24; i++)
            uv.GetUVWPointList()->ElementAt(i)->u = static_cast<float>(i);
        // Two triangles with a point twice, hidden, and a node below that goes along.
        C3DSceneNode* const hidden = AddMesh(
            *scene, L"hidden", MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {3, 4, 5}}));
        hidden->SetFlag(NODE_HIDDEN, true);
        AddNode(*scene, hidden, L"below", OBJECT_LIGHT);
        AddNode(*scene, nullptr, L"light", OBJECT_LIGHT);
        AddNode(*scene, nullptr, L"zgroup", OBJECT_GROUP);
        EXPECT_EQ(Run(row.flags), row.lines);
        int nodes = 0, points = 0, faces = 0;
        C3DGeomObject* object;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_GEOMETRIC); pos; nodes++) {
            scene->GetNextNode(object, pos);
            CheckConsistent(*object->GetFaceList(), object->GetPointNbr());
            points += object->GetPointNbr();
            faces += object->GetFaceNbr();
        }
        EXPECT_EQ(std::vector<int>({scene->GetChildCount(nullptr, OBJECT_ANY), nodes, points, faces}), row.counts);
    }
}

TEST_F(Checkout, SharedObjectsAreTreatedOnceAndFacesGoByMaterial)
{
    Mesh mesh = MakeMesh(SQUARE, {{0, 1, 2}, {0, 2, 3}, {0, 1, 9}});
    mesh.faces->SetFaceMaterial(0, 9);
    mesh.faces->SetFaceMaterial(1, 3);
    C3DSceneNode* const node = AddMesh(*scene, L"a", std::move(mesh));
    AddSharer(*scene, nullptr, L"b", node);
    CSceneImportOptions options;
    options.upAxis = UP_AXIS_Y;
    options.swapCoordinates = 0;
    scene->CheckoutImport(options);
    EXPECT_EQ(Lines(options), (TextLines{L"1 Change scene orientation", L"2 Invalid face index (face 2)"}));
    EXPECT_EQ(AllCorners(*node->GetGeomObject()->GetFaceList()), (std::vector<std::vector<int>>{{0, 2, 3}, {0, 1, 2}}));
}
