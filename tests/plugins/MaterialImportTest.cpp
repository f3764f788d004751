// Materials, their maps, and the images that are inside files.

#include <filesystem>

#include <gtest/gtest.h>

#include "ModelFile.h"
#include "PluginTest.h"

namespace {

const char* const QUAD = "mtllib m.mtl\no q\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nusemtl shiny\n"
                         "f 1/1 2/2 3/3 4/4\n";

C3DGeomObject* ObjectOf(C3DScene& scene, const wchar_t* name)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL); pos;)
        if (C3DSceneNode* node = scene.GetNextNode(pos); node->GetName() == name)
            return node->GetGeomObject();
    return nullptr;
}

}

TEST_F(PluginTest, MaterialsKeepColoursFactorsAndMaps)
{
    folder.Write("m.mtl", "newmtl shiny\nKa 0.2 0 0\nKd 1 0.5 0.25\nKs 0 1 2\nKe 3 0 0\nNs 20\nd 0.25\nmap_Kd textures\\wood.png\n"
                          "map_Ks ./gloss.png\nmap_d mask.png\nmap_bump relief.png\nmap_Ka dust.png\n");
    const Scene scene = ReadText("quad.obj", QUAD);
    ASSERT_TRUE(scene);
    C3DMaterial* material = scene->GetMaterialByName(L"shiny");
    ASSERT_TRUE(material);
    EXPECT_EQ(material->GetDiffuseColor(0, false), CRGBColor(255, 128, 64));
    EXPECT_EQ(material->GetAmbientColor(0, false), CRGBColor(51, 0, 0));
    EXPECT_EQ(material->GetSpecularColor(0, false), CRGBColor(0, 255, 255));    // not brighter than white
    EXPECT_FLOAT_EQ(material->GetTransparencyFactor(0), 0.75f);
    float number;
    EXPECT_TRUE(material->GetCustomData().GetFloat(FourCC("SHIN"), number));
    EXPECT_EQ(number, 20);
    EXPECT_TRUE(material->GetCustomData().GetFloat(FourCC("EMST"), number));
    EXPECT_EQ(number, 3);
    const struct {
        MapType type;
        const wchar_t* file;
    } rows[] = {{MAP_DIFFUSE, L"textures/wood.png"},
                {MAP_AMBIENT, L"dust.png"},
                {MAP_SPECULAR, L"gloss.png"},
                {MAP_TRANSPARENCY, L"mask.png"},
                {MAP_BUMP, L"relief.png"}};
    for (const auto& row : rows) {
        const CMaterialMap* map = material->GetMaterialMap(row.type);
        ASSERT_TRUE(map);
        EXPECT_EQ(map->GetFileName(), row.file);
        EXPECT_EQ(map->GetProjection(), PROJECTION_UVW);
        EXPECT_TRUE(ObjectOf(*scene, L"q")->GetChannelByID(map->GetChannelID(), CHANNEL_UVW));
    }
}

TEST_F(PluginTest, MovedCoordinatesAreAChannelOfTheirOwn)
{
    if (!std::filesystem::exists(ModelFile::Folder()))
        GTEST_SKIP() << "no test models";
    const struct {
        const char *file, *name;
        float u, v, toU, toV;
    } rows[] = {
        // By the format's own rule, turned over: (u, w) -> T + R S (u, w), w = 1 - v. The first by 22.5 degrees.
        {"glTF2/textureTransform/TextureTransformTest.gltf", "Rotation", 0, 0, 0.382683f, 0.076120f},
        {"glTF2/textureTransform/TextureTransformTest.gltf", "Scale", 1, 0, 1.5f, -0.5f},
        {"glTF2/textureTransform/TextureTransformTest.gltf", "All", 1, 1, 1.233005f, 1.543280f},
        // Twice as large and turned by 45 degrees about the middle.
        {"ASE/TestUVTransform/UVTransform_ScaleUV2x_Rotate45.ASE", "", 0, 0, 0.5f, -0.914214f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.file << " " << row.name << " " << row.u << " " << row.v);
        const Scene scene = Read(ModelFile::Folder() + row.file);
        ASSERT_TRUE(scene);
        C3DGeomObject* object = nullptr;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL); pos && !object;)
            if (const C3DSceneNode* node = scene->GetNextNode(pos); !*row.name || WideToUtf8(node->GetName()) == row.name)
                object = node->GetGeomObject();
        ASSERT_TRUE(object);
        C3DMaterial* material = scene->GetMaterialByID(object->GetFaceList()->GetFaceMaterial(0));
        ASSERT_TRUE(material && material->GetDiffuseMaps());
        CUVWFaceList *rawFaces, *faces;
        CUVWPointList *raw, *points;
        ASSERT_TRUE(object->GetChannels()->GetUVWChannelByID(1, rawFaces, raw));
        ASSERT_TRUE(object->GetChannels()->GetUVWChannelByID(material->GetDiffuseMaps()->GetChannelID(), faces, points));
        bool found = false;
        for (int i = 0; i < faces->GetSize(); i++) {
            int count;
            const int* rawCorners = rawFaces->GetIndexes(static_cast<unsigned int>(i), count);
            const int* corners = faces->GetIndexes(static_cast<unsigned int>(i), count);
            for (int k = 0; k < count; k++)
                if ((*raw)[rawCorners[k]]->u == row.u && (*raw)[rawCorners[k]]->v == row.v) {
                    found = true;
                    EXPECT_NEAR((*points)[corners[k]]->u, row.toU, 1e-5);
                    EXPECT_NEAR((*points)[corners[k]]->v, row.toV, 1e-5);
                }
        }
        EXPECT_TRUE(found);
    }
}

TEST_F(PluginTest, ImagesInsideFilesAreUnpackedOnce)
{
    if (!std::filesystem::exists(ModelFile::Folder()))
        GTEST_SKIP() << "no test models";
    const ScopedVariable cache("XDG_CACHE_HOME", folder.Name("cache"));
    const struct {
        const char* file;
        const char* name;    // of the image
        std::uintmax_t size;
    } rows[] = {
        {"glTF2/BoxTextured-glTF-Binary/BoxTextured.glb", "/texture.png", 2433},
        {"FBX/embedded_ascii/box.FBX", "/uv_test.png", 439176},
        {"glTF2/BoxTextured-glTF-Embedded/BoxTextured.gltf", "/texture.png", 2433},    // the same image again
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        const Scene scene = Read(ModelFile::Folder() + row.file);
        ASSERT_TRUE(scene);
        CMaterialMap* map = nullptr;
        for (unsigned int pos = scene->GetFirstMaterial(); pos != 0xFFFFFFFF && !map;)
            map = scene->GetNextMaterial(pos)->GetDiffuseMaps();
        ASSERT_TRUE(map);
        const std::string file = WideToUtf8(map->GetFileName());
        EXPECT_TRUE(file.starts_with(folder.Name("cache/3dzel/textures/"))) << file;
        EXPECT_TRUE(file.ends_with(row.name)) << file;
        EXPECT_EQ(std::filesystem::file_size(file), row.size);
        CXTString<wchar_t> path;
        EXPECT_TRUE(scene->GetTexturePath(0, path));
        EXPECT_TRUE(file.starts_with(WideToUtf8(path)));
    }
    const std::filesystem::directory_iterator folders(folder.Name("cache/3dzel/textures"));
    EXPECT_EQ(std::distance(begin(folders), end(folders)), 2);
}
