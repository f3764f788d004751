#include <algorithm>
#include <map>

#include "scene/Curve.h"
#include "scene/ForeignData.h"
#include "scene/Units.h"
#include "support/TempFolder.h"

#include "io/SceneCase.h"

// What the export preparation makes of a scene, what it says about it, and that the scene itself stays.

namespace {

class ExportPreparation : public testing::Test, InEnglish {
protected:
    ~ExportPreparation() override { C3DScene::ReleaseExport(options); }
    /// Prepares a copy; null when nothing is left.
    C3DScene* Run(unsigned int flags)
    {
        options.RemoveLog();
        options.flags = flags;
        return scene->InitExport(options);
    }
    TextLines Log() const { return Lines(options); }

    CRef<C3DScene> scene{C3DScene::Create()};
    CSceneExportOptions options;
};

std::vector<std::wstring> NamesOf(const C3DScene& scene)
{
    std::vector<std::wstring> names;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;)
        names.push_back(scene.GetNextNode(pos)->GetName().Str());
    return names;
}

// A pentagon, a quad and a triangle side by side.
Mesh Polygons()
{
    return MakeMesh({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 2, 0}, {0, 1, 0}, {3, 0, 0}, {3, 1, 0}, {4, 0, 0}},
                    {{0, 1, 2, 3, 4}, {1, 5, 6, 2}, {5, 7, 6}});
}

C3DGeomObject& FirstObject(C3DScene& scene)
{
    C3DGeomObject* object;
    C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC);
    scene.GetNextNode(object, pos);
    return *object;
}

}

TEST_F(ExportPreparation, EachFlagDoesItsStepAndSaysSo)
{
    const struct {
        const char* name;
        unsigned int flags, forced;
        TextLines lines;
        const wchar_t* outline;
    } rows[] = {
        {"none", 0, 0, {L"1 Removing object h"}, L"m(n)"},
        {"clean groups", EXPORT_CLEAN_GROUPS | EXPORT_HIDDEN_OBJECTS, 0, {}, L"g(h)m(n)"},
        {"remove groups", EXPORT_REMOVE_GROUPS | EXPORT_HIDDEN_OBJECTS, 0, {}, L"mhn"},
        {"no polymeshes", EXPORT_REMOVE_POLYMESHES, 0, {L"1 Removing object h", L"1 Removing object m"}, nullptr},
        {"format without polymeshes",
         EXPORT_REMOVE_POLYMESHES,
         EXPORT_REMOVE_POLYMESHES,
         {L"1 Removing object h", L"1! Removing object m", L"4 The scene have no object to save."},
         nullptr},
        {"uv", EXPORT_IGNORE_UV | EXPORT_HIDDEN_OBJECTS, 0, {L"1 Removing UV for m"}, L"g(h)m(n)"},
        {"format without uv", EXPORT_IGNORE_UV | EXPORT_HIDDEN_OBJECTS, EXPORT_IGNORE_UV, {L"1! Removing UV for m"}, L"g(h)m(n)"},
        {"colours", EXPORT_IGNORE_VC | EXPORT_HIDDEN_OBJECTS, 0, {L"1 Removing VC for m"}, L"g(h)m(n)"},
        {"normals", EXPORT_IGNORE_NORMALS | EXPORT_HIDDEN_OBJECTS, 0, {L"1 Removing m specified normals"}, L"g(h)m(n)"},
        {"global",
         EXPORT_GLOBAL_COORDINATES | EXPORT_HIDDEN_OBJECTS,
         0,
         {L"1 Converting Whole scene from local to global coordinates"},
         L"g(h)m(n)"},
        {"triangulate wins",
         EXPORT_TRIANGULATE | EXPORT_QUADRANGULATE | EXPORT_HIDDEN_OBJECTS,
         0,
         {L"1 Triangulating object h", L"1 Triangulating object m"},
         L"g(h)m(n)"},
        {"quadrangulate", EXPORT_QUADRANGULATE | EXPORT_HIDDEN_OBJECTS, 0, {L"1 Triangulating object m"}, L"g(h)m(n)"},
        {"concatenate", EXPORT_CONCATENATE, 0, {L"1 Removing object h", L"1 Concatenating 3D scene"}, L"out.x"},
    };
    AddMesh(*scene, L"h", Cube(), AddNode(*scene, nullptr, L"g", OBJECT_GROUP))->SetFlag(NODE_HIDDEN, true);
    C3DSceneNode* const node = AddMesh(*scene, L"m", Polygons());
    AddNode(*scene, node, L"n", OBJECT_LIGHT);
    AddChannel<CUVWChannel>(*node->GetGeomObject(), 8);
    AddChannel<CVCChannel>(*node->GetGeomObject(), 8);
    AddChannel<CSpecNormalChannel>(*node->GetGeomObject(), 8);
    options.filePath = L"/to/out.x";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        options.forcedFlags = row.forced;
        C3DScene* const working = Run(row.flags);
        TextLines lines = Log();
        if (!row.outline && lines.size() > row.lines.size())
            lines.pop_back();
        EXPECT_EQ(lines, row.lines);
        ASSERT_EQ(working != nullptr, row.outline != nullptr);
        if (working) {
            EXPECT_EQ(Outline(*working), row.outline);
            C3DGeomObject& first = FirstObject(*working);
            CheckConsistent(*first.GetFaceList(), first.GetPointNbr());
        }
        EXPECT_EQ(Outline(*scene), L"g(h)m(n)");
        EXPECT_EQ(AllCorners(*node->GetGeomObject()->GetFaceList()),
                  (std::vector<std::vector<int>>{{0, 1, 2, 3, 4}, {1, 5, 6, 2}, {5, 7, 6}}));
        EXPECT_EQ(node->GetGeomObject()->GetChannels()->GetSize(), 3);
    }
}

TEST_F(ExportPreparation, ScalesToTheUnit)
{
    const struct {
        double scale;
        unsigned int unit;
        float factor;
    } rows[] = {{1.004, UNIT_CENTIMETER, 1}, {1.006, UNIT_CENTIMETER, 1.006f}, {100, UNIT_CENTIMETER, 100},
                {100, UNIT_UNDEFINED, 1},    {2.54, UNIT_MILLIMETER, 25.4f},   {0, UNIT_METER, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.scale);
        scene->RemoveAll();
        AddMesh(*scene, L"m", Cube());
        scene->SetScaleFactor(row.scale);    // 0 sets none
        options.unit = row.unit;
        C3DScene* const working = Run(0);
        C4x4TMatrix<float> matrix;
        working->GetChildNode(nullptr)->GetNodeTM(0, matrix, true);
        EXPECT_FLOAT_EQ(matrix.m[0][0], row.factor);
        EXPECT_FLOAT_EQ(matrix.m[2][2], row.factor);
        EXPECT_DOUBLE_EQ(working->GetScaleFactor() * row.factor,
                         row.factor == 1 ? working->GetScaleFactor()
                                         : C3DScene::GetUnitFactor(static_cast<_UNIT_MODE>(row.unit)) * row.factor);
    }
}

TEST_F(ExportPreparation, APatchOfThreeNodesBecomesOneObject)
{
    for (const unsigned int flag : {EXPORT_PATCHES_SOURCE, EXPORT_PATCHES_SUBDIVIDED}) {
        scene->RemoveAll();
        C3DSceneNode* const patch = AddMesh<C3DPatch>(*scene, L"a", Cube());
        AddSharer(*scene, patch, L"b", patch);
        AddMesh<C3DPatch>(*scene, L"c", Cube());
        AddSharer(*scene, nullptr, L"d", patch);
        options.forcedFlags = flag;
        C3DScene* const working = Run(flag);
        EXPECT_EQ(Log(), (TextLines{L"1! Converting a in polygonal object", L"1! Converting c in polygonal object"}));
        std::map<std::wstring, const C3DBaseObject*> objects;
        for (C3DNodePos pos = working->GetFirstNode(OBJECT_GEOMETRIC); pos;) {
            const C3DSceneNode* const node = working->GetNextNode(pos);
            objects[node->GetName().Str()] = node->GetBaseObject();
            EXPECT_EQ(node->GetObjectKindOf(), OBJECT_POLYGONAL);
        }
        EXPECT_EQ(objects[L"a"], objects[L"b"]);
        EXPECT_EQ(objects[L"a"], objects[L"d"]);
        EXPECT_NE(objects[L"a"], objects[L"c"]);
        EXPECT_EQ(objects[L"a"]->GetInstanceCount(), 3);
        EXPECT_EQ(FirstObject(*working).GetFaceNbr() == 6, flag == EXPORT_PATCHES_SOURCE);
        EXPECT_EQ(patch->GetObjectKindOf(), OBJECT_PATCH);
    }
}

TEST_F(ExportPreparation, FacesPointAtMaterialsThatAreThere)
{
    C3DFaceList& faces = *AddMesh(*scene, L"m", Cube())->GetGeomObject()->GetFaceList();
    for (unsigned int face = 0; face < 6; face++)
        faces.SetFaceMaterial(face, face < 3 ? 21 : 22);
    faces.SetBackFaceMaterial(1, 23);
    scene->CreateNewMaterial(21)->SetName(L"used");
    scene->CreateNewMaterial(23)->SetName(L"back");
    scene->CreateNewMaterial(24)->SetName(L"unused");
    scene->CreateNewMaterial(25)->SetName(L"of a curve");
    static_cast<C3DCurve&>(*AddNode(*scene, nullptr, L"k", OBJECT_CURVE)->GetGeomObject()).SetMaterialID(25);
    const struct {
        const char* name;
        unsigned int flags;
        std::vector<unsigned int> ids;
        std::size_t lines;
    } rows[] = {
        {"plain", 0, {21, 22, 25}, 2},
        {"back materials", EXPORT_KEEP_BACKFACE_MATERIALS, {21, 22, 23, 25}, 1},
        {"unused materials", EXPORT_KEEP_UNUSED_MATERIALS, {21, 22, 23, 24, 25}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        C3DScene* const working = Run(row.flags);
        std::vector<unsigned int> ids;
        for (unsigned int pos = working->GetFirstMaterial(); pos != HASH_END;)
            ids.push_back(working->GetNextMaterial(pos)->GetMaterialID());
        std::sort(ids.begin(), ids.end());
        EXPECT_EQ(ids, row.ids);
        EXPECT_EQ(Log().size(), row.lines);
        EXPECT_EQ(scene->GetMaterialNumber(), 4u);
    }
}

TEST_F(ExportPreparation, TellsWhatGoesUnseen)
{
    C3DSceneNode* const node = AddMesh(*scene, L"m", Polygons());
    AddFaces(*node->GetGeomObject()->GetFaceList(), {{0, 1, 0}, {2, 2, 3}});
    for (const int time : {0, 10})
        node->AddKey(time, C3DTranslateKey());
    scene->CreateNewMaterial(24)->SetName(L"unused");
    options.forcedFlags = EXPORT_GLOBAL_COORDINATES;
    Run(EXPORT_GLOBAL_COORDINATES);
    EXPECT_EQ(Log(), (TextLines{L"1! Removing 2 degenerate faces of m", L"1 Converting Whole scene from local to global coordinates",
                                L"1! Removing the animation of nodes (1)", L"1! Removing the materials that no face uses (1)"}));
}

TEST_F(ExportPreparation, NamesOfImagesLeadThereFromTheNewFile)
{
    const TempFolder folder;
    const ScopedVariable cache("XDG_CACHE_HOME", folder.Name("cache"));
    for (const char* file : {"from/a.png", "from/sub/b.png", "cache/3dzel/textures/1/c.png", "cache/3dzel/textures/2/d.jpg"})
        folder.Write(file, file);
    folder.Write("to/c.png", "another");
    scene->SetFilename(CFileNameSpec(folder.Wide("from/scene.x")));
    scene->AddTexturePath(folder.Wide("cache/3dzel/textures/1"));
    AddMesh(*scene, L"m", Cube())->GetGeomObject()->GetFaceList()->SetFaceMaterial(0, 1);
    C3DMaterial& material = *scene->CreateNewMaterial(1);
    material.AddMaterialMap(L"a.png", 1, MAP_DIFFUSE, PROJECTION_UVW)->SetAlphaFileName(L"sub\\b.png", {});
    material.AddMaterialMap(folder.Wide("cache/3dzel/textures/1/c.png"), 1, MAP_BUMP, PROJECTION_UVW);
    material.AddMaterialMap(L"nowhere.png", 1, MAP_SPECULAR, PROJECTION_UVW);
    material.GetCustomData().SetString(MATERIAL_EMISSIVE_FILE, folder.Wide("cache/3dzel/textures/2/d.jpg"));
    options.filePath = folder.Wide("to/out.x");
    options.texturesInside = {L".jpg"};
    for (const bool again : {false, true}) {    // the second time the copy of the first is there
        SCOPED_TRACE(again);
        const C3DScene* const working = Run(EXPORT_RENAME_TEXTURES);
        const C3DMaterial& written = *working->GetMaterialByID(1);
        EXPECT_EQ(written.GetDiffuseMaps()->GetFileName(), L"../from/a.png");
        EXPECT_EQ(written.GetDiffuseMaps()->GetAlphaFileName(), L"../from/sub/b.png");
        EXPECT_EQ(written.GetMaterialMap(MAP_BUMP)->GetFileName(), L"c1.png");    // never over a file of another content
        EXPECT_EQ(written.GetMaterialMap(MAP_SPECULAR)->GetFileName(), L"nowhere.png");
        CXTString<wchar_t> emissive;
        written.GetCustomData().GetString(MATERIAL_EMISSIVE_FILE, emissive);
        EXPECT_EQ(emissive, L"../cache/3dzel/textures/2/d.jpg");
        EXPECT_EQ(folder.Read("to/c.png") + folder.Read("to/c1.png"), "anothercache/3dzel/textures/1/c.png");
        EXPECT_EQ(Log().size(), 1u);
    }
}

TEST_F(ExportPreparation, NamesFollowTheRules)
{
    const struct {
        const char* name;
        unsigned int rule;
        std::vector<const wchar_t*> names;
        std::vector<std::wstring> results;
    } rows[] = {
        {"unique", 0, {L"a", L"a", L"a"}, {L"a", L"a1", L"a2"}},
        {"blanks", 0x01000000, {L"a b", L"a_b", L"é"}, {L"a_b", L"a_b1", L"é"}},
        {"plain", 0x04000000, {L"a b", L"Zé9", L"_"}, {L"a_b", L"Z_9", L"_"}},
        {"empty", 0x02000000, {L"", L"", L" "}, {L"Polygonal object", L"Polygonal object1", L" "}},
        {"the default obeys", 0x06000000, {L"", L"", L" "}, {L"Polygonal_object", L"Polygonal_object1", L"_"}},
        {"limit", 0x04000002, {L"   ", L"    ", L"abc"}, {L"__", L"_1", L"ab"}},
        {"nothing else is left", 1, {L"ab", L"ac", L"a"}, {L"a", L"1", L"2"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        scene->RemoveAll();
        for (const wchar_t* name : row.names)
            AddMesh(*scene, name, Cube());
        options.objectNameRule = row.rule;
        options.materialNameRule = 0;
        C3DScene* const working = Run(row.rule == 0 ? EXPORT_NORMALISE_NAMES : 0u);
        EXPECT_EQ(NamesOf(*working), row.results);
    }
    EXPECT_EQ(Log(), (TextLines{L"1 Changing object name from ab to a", L"1 Changing object name from ac to 1",
                                L"1 Changing object name from a to 2"}));

    scene->RemoveAll();
    AddMesh(*scene, L"one", Cube());
    scene->CreateNewMaterial(0)->SetName(L"a b");
    options.objectNameRule = 0;
    options.materialNameRule = 0x01000000;
    EXPECT_EQ(Run(0)->GetMaterialByID(0)->GetName(), L"a_b");
    EXPECT_EQ(Log(), (TextLines{L"1 Changing material name from a b to a_b"}));
    // Many of one name: not square.
    scene->RemoveAll();
    for (int i = 0; i < 20000; i++)
        AddNode(*scene, nullptr, L"same", OBJECT_POLYGONAL);
    EXPECT_EQ(NamesOf(*Run(EXPORT_NORMALISE_NAMES)).back(), L"same19999");
}

TEST_F(ExportPreparation, InPlaceTheSceneItselfIsPrepared)
{
    AddMesh(*scene, L"m", Polygons());
    AddNode(*scene, nullptr, L"g", OBJECT_GROUP);
    EXPECT_EQ(Run(EXPORT_IN_PLACE | EXPORT_TRIANGULATE | EXPORT_CLEAN_GROUPS), scene);
    EXPECT_EQ(options.exportScene, nullptr);
    EXPECT_EQ(FirstObject(*scene).GetFaceNbr(), 6);
    EXPECT_EQ(Outline(*scene), L"m");
    EXPECT_EQ(Run(EXPORT_IN_PLACE | EXPORT_REMOVE_POLYMESHES), scene);    // it comes back whatever is left of it
    EXPECT_EQ(Outline(*scene), L"");
    EXPECT_FALSE(Run(0));
    EXPECT_FALSE(C3DScene::InitExport(options, nullptr));
}

TEST_F(ExportPreparation, TurnsAxesAndJoinsChannels)
{
    C3DGeomObject& object = *AddMesh(*scene, L"m", Polygons())->GetGeomObject();
    CUVWChannel& uv = *AddChannel<CUVWChannel>(object, 12, {{0, 1, 2, 3, 4}, {8, 9, 10, 11}, {5, 7, 6}});    // a seam along 1-2
    for (int i = 0; i < 12; i++)
        uv.GetUVWPointList()->ElementAt(i)->u = static_cast<float>(i);
    scene->CreateNewMaterial(0)->AddMaterialMap(L"a.png", uv.GetChannelID(), MAP_DIFFUSE, PROJECTION_UVW);
    options.upAxis = UP_AXIS_Y;
    options.swapCoordinates = 1;
    C3DScene* const working = Run(EXPORT_GLOBALIZE_CHANNELS | EXPORT_DISCONNECT_FACES);
    EXPECT_EQ(Log(), (TextLines{L"1 Change scene orientation", L"1 Swap coordinates", L"1 Unifying UV for m",
                                L"1 Disconnecting faces which have several UV for m"}));
    EXPECT_GT(FirstObject(*working).GetPointNbr(), 8);
}
