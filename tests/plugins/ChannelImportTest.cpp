// Normals, texture coordinates, colours and weights of real files: the sums were written down while each value of each corner was that of the
// import library's own data, with as many channel points as there are different values.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "ModelFile.h"
#include "PluginTest.h"
#include "support/Checksum.h"
#include "support/Meshes.h"

namespace {

/// Adds the corners of the faces, and of each channel its corners and values.
void AddObject(Checksum& sum, const C3DGeomObject& object)
{
    sum.Add(AllCorners(*object.GetFaceList()));
    for (CChannel* const channel : *object.GetChannels()) {
        sum.Add(static_cast<int>(channel->GetType()));
        if (const CFaceList* const faces = channel->GetFaceList())
            sum.Add(AllCorners(*faces));
        C4DPoint value;
        for (int i = 0; i < channel->GetPointList()->GetSize(); i++) {
            channel->GetPointList()->ElementAt(i)->To4DPoint(value);
            for (int k = 0; k < value.dimension; k++)
                sum.Add(static_cast<float>(value[k]));
        }
    }
}

}

TEST_F(PluginTest, CornersKeepTheValuesOfTheFile)
{
    if (!std::filesystem::exists(ModelFile::Folder()))
        GTEST_SKIP() << "no test models";
    const struct {
        const char* name;
        int uvSets, colorSets, bones;    // largest number of any object
        bool normals;
        std::uint64_t sum;
    } rows[] = {
        {"Collada/cube_with_2UVs.DAE", 2, 0, 0, true, 0x3024CCF18EC37573u},
        {"Collada/kwxport_test_vcolors.dae", 1, 1, 0, true, 0xC233EA0CBAD6CF87u},
        {"Collada/duck.dae", 1, 0, 0, true, 0x80B130CC1755C54Eu},
        {"OBJ/spider.obj", 1, 0, 0, true, 0x79AD29BE2F37EB60u},
        {"X/kwxport_test_cubewithvcolors.x", 1, 1, 0, true, 0xE974F80575A85B2Bu},
        {"OBJ/cube_with_vertexcolors.obj", 0, 1, 0, true, 0x10B076D85F520Cu},
        {"PLY/cube_uv.ply", 1, 0, 0, true, 0xF5EB3F692CD56C9Bu},
        {"PLY/float-color.ply", 0, 1, 0, false, 0x6F8E311F914335A7u},
        {"glTF2/BoxTexcoords-glTF/boxTexcoords.gltf", 2, 0, 0, true, 0xB41522F0CC64E2B7u},
        {"glTF2/simple_skin/simple_skin.gltf", 0, 0, 2, false, 0x2DD21FED9FB2502Fu},
        {"FBX/huesitos.fbx", 1, 0, 8, true, 0x625E68F4785FB6B4u},
        {"SMD/holy_grailref.smd", 1, 0, 1, true, 0x3E6F3D6D1B643176u},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Scene scene = Read(ModelFile::Folder() + row.name, IMPORT_NO_CHECKOUT);    // faces and nodes in the order of the file
        ASSERT_TRUE(scene);
        Checksum sum;
        int uvSets = 0, colorSets = 0, bones = 0;
        bool normals = false;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL); pos;) {
            C3DGeomObject* object;
            scene->GetNextNode(object, pos);
            CDependentChannels* channels = object->GetChannels();
            AddObject(sum, *object);
            uvSets = std::max(uvSets, channels->GetChannelsNumber(CHANNEL_UVW, true));
            colorSets = std::max(colorSets, channels->GetChannelsNumber(CHANNEL_VC, true));
            bones = std::max(bones, channels->GetChannelsNumber(CHANNEL_WEIGHT, true));
            normals |= channels->GetSpecNormalChannel() != nullptr;
        }
        EXPECT_EQ(sum.Get(), row.sum);
        EXPECT_EQ(uvSets, row.uvSets);
        EXPECT_EQ(colorSets, row.colorSets);
        EXPECT_EQ(bones, row.bones);
        EXPECT_EQ(normals, row.normals);
    }
}

TEST_F(PluginTest, ValuesThatAreOfNoUseAreNotGiven)
{
    // A quad in two triangles of one object, whose materials differ. The first has normals of length zero, one that is no number, and
    // texture coordinates; the second has one usable normal and no coordinates.
    const std::string obj = "o q\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvn 0 0 0\nvn nan 0 1\nvn 0 0 2\n"
                            "usemtl a\nf 1/1/1 2/2/2 3/3/1\nusemtl b\nf 1//3 3//3 4//3\n";
    const Scene scene = ReadText("quad.obj", obj);
    ASSERT_TRUE(scene);
    C3DGeomObject* object = scene->GetChildNode(nullptr)->GetGeomObject();
    ASSERT_TRUE(object);
    CNormalFaceList* faces;
    C3DVectorList* vectors;
    ASSERT_TRUE(object->GetChannels()->GetSpecNormalChannel(faces, vectors));
    int count;
    faces->GetIndexes(0, count);
    EXPECT_EQ(count, 0);
    const int* corners = faces->GetIndexes(1, count);
    ASSERT_EQ(count, 3);
    EXPECT_EQ((*vectors)[corners[2]]->z, 1);
    CUVWFaceList* uvFaces;
    CUVWPointList* uvPoints;
    ASSERT_TRUE(object->GetChannels()->GetUVWChannelByID(1, uvFaces, uvPoints));
    uvFaces->GetIndexes(1, count);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(uvPoints->GetSize(), 3);
}
