#include <gtest/gtest.h>

#include "geometry/3DFaceList.h"
#include "scene/Curve.h"
#include "scene/Preferences.h"
#include "scene/SceneBuilders.h"
#include "support/Streams.h"
#include "support/TempFolder.h"
#include "tools/FourCC.h"

namespace {

std::vector<std::wstring> Texts(const CXArray<CXTString<wchar_t>>& array)
{
    std::vector<std::wstring> texts;
    for (const auto& text : array)
        texts.push_back(text.Str());
    return texts;
}

std::vector<std::wstring> Paths(const C3DScene& scene)
{
    CXArray<CXTString<wchar_t>> paths;
    const int count = scene.GetTexturePaths(paths, false);
    EXPECT_EQ(count, paths.GetSize());
    return Texts(paths);
}

}

TEST(SceneTextures, AFolderIsAddedOnceUnderWhateverSpelling)
{
    const TempFolder folder;
    folder.Write("a/file", "");
    folder.Write("b/file", "");
    std::filesystem::create_symlink(folder.Name("a"), folder.Name("link"));
    const CRef<C3DScene> scene(C3DScene::Create());
    const struct {
        const char* path;
        bool added;
    } rows[] = {{"a", true},     {"a", false},  {"a/", false},      {"./b/../a", false},
                {"link", false}, {"b//", true}, {"missing", false}, {"a/file", false}};
    for (const auto& row : rows)
        EXPECT_EQ(scene->AddTexturePath(folder.Wide(row.path)), row.added) << row.path;
    EXPECT_FALSE(scene->AddTexturePath(L""));
    EXPECT_EQ(Paths(*scene), (std::vector<std::wstring>{folder.Wide("a/").Str(), folder.Wide("b//").Str()}));

    CXArray<CXTString<wchar_t>> paths;
    paths.Add(L"first");
    EXPECT_EQ(scene->GetTexturePaths(paths, true), 3);
    EXPECT_EQ(paths[0], L"first");
    CXTString<wchar_t> path;
    EXPECT_TRUE(scene->GetTexturePath(0, path));
    EXPECT_EQ(path, folder.Wide("a/"));
    for (const int index : {2, -1}) {
        EXPECT_FALSE(scene->GetTexturePath(index, path));
        EXPECT_TRUE(path.IsEmpty());
    }
}

TEST(SceneTextures, MaterialsAreKnownByTheirNodesAndFiles)
{
    // p(q) and r: p and r share a square of materials 1 and 2, q has one of material 3 alone; g is a group.
    const CRef<C3DScene> scene(C3DScene::Create());
    for (unsigned int id = 1; id <= 3; id++) {
        C3DMaterial* const material = scene->CreateNewMaterial(id);
        if (id != 2)
            material->AddMaterialMap(std::to_wstring(id) + L".png", 1, MAP_DIFFUSE, PROJECTION_UVW);
        material->AddMaterialMap(L"bump.png", 1, MAP_BUMP, PROJECTION_UVW);
    }
    C3DSceneNode* const p = AddNode(*scene, nullptr, L"p", 0);
    C3DObject* const two = CreateSquare();
    two->GetFaceList()->SetFaceMaterial(0, 1);
    two->GetFaceList()->SetFaceMaterial(1, 2);
    p->SetObject(two, true);
    C3DSceneNode* const q = AddNode(*scene, p, L"q", 0);
    C3DObject* const one = CreateSquare();
    one->GetFaceList()->SetFaceMaterial(0, 3);
    one->GetFaceList()->SetFaceMaterial(1, 3);
    q->SetObject(one, true);
    C3DSceneNode* const r = AddSharer(*scene, nullptr, L"r", p);
    AddNode(*scene, nullptr, L"g", OBJECT_GROUP);

    CXArray<CXTString<wchar_t>> files;
    files.Add(L"former");
    scene->GetLinkedFiles(files, false);
    auto texts = Texts(files);
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"1.png", L"3.png"}));

    C3DFaceList::MaterialsMap uses;
    EXPECT_EQ(scene->GetMaterials(nullptr, uses, true), 3u);
    EXPECT_EQ(*uses.Find(1), 2u);
    EXPECT_EQ(*uses.Find(3), 1u);
    EXPECT_EQ(scene->GetMaterials(p, uses, false), 3u);    // adds q alone
    EXPECT_EQ(*uses.Find(1), 2u);
    EXPECT_EQ(*uses.Find(3), 2u);

    CXArray<C3DSceneNode*> nodes;
    EXPECT_EQ(scene->GetNodesByMaterial(nullptr, 2, nodes, true), 2u);
    EXPECT_EQ(nodes[0], p);
    EXPECT_EQ(nodes[1], r);
    EXPECT_EQ(scene->GetNodesByMaterial(p, 3, nodes, false), 3u);
    EXPECT_EQ(nodes[2], q);
    EXPECT_EQ(scene->GetNodesByMaterial(nullptr, 0xFFFFFFFF, nodes, true), 0u);

    // A curve's one material counts and is replaced like that of a face.
    C3DSceneNode* const k = AddNode(*scene, nullptr, L"k", OBJECT_CURVE);
    auto& curve = static_cast<C3DCurve&>(*k->GetGeomObject());
    curve.SetMaterialID(2);
    EXPECT_EQ(scene->GetNodesByMaterial(nullptr, 2, nodes, true), 3u);
    EXPECT_EQ(nodes[2], k);
    C3DFaceList::MaterialsMap exchange;
    exchange.SetAt(2, 3);
    exchange.SetAt(3, 2);
    EXPECT_TRUE(k->GetGeomObject()->ReplaceMaterials(exchange));
    EXPECT_EQ(curve.GetMaterialID(), 3u);
    EXPECT_TRUE(k->GetGeomObject()->ReplaceMaterial(3, 1));
    EXPECT_FALSE(k->GetGeomObject()->ReplaceMaterial(3, 2));
    EXPECT_EQ(scene->GetNodesByMaterial(nullptr, 1, nodes, true), 3u);

    C3DMaterial like;
    like = *scene->GetMaterialByID(3);
    like.SetName(L"3");
    EXPECT_EQ(scene->FindMaterialID(like, false), 3u);
    EXPECT_EQ(scene->FindMaterialID(like, true), 0xFFFFFFFF);
    EXPECT_EQ(scene->GetMaterialID(L"3"), 0xFFFFFFFF);
    scene->GetMaterialByID(3)->SetName(L"3");
    EXPECT_EQ(scene->FindMaterialID(like, true), 3u);
    EXPECT_EQ(scene->GetMaterialID(L"3"), 3u);
}
