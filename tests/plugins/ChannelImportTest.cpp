// Normals, texture coordinates, colours and weights of real files, against the import library's own data: each value of each corner, and
// as many channel points as there are different values.

#include <array>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "ModelFile.h"
#include "PluginTest.h"

namespace {

using Value = std::array<float, 4>;

/// The corners of the polygons of a node, in the order in which they come in: mesh and vertex.
struct Corners {
    Corners(const aiScene& scene, const aiNode& node)
    {
        for (unsigned int m = 0; m < node.mNumMeshes; m++) {
            const aiMesh& mesh = *scene.mMeshes[node.mMeshes[m]];
            for (unsigned int i = 0; i < mesh.mNumFaces; i++)
                if (mesh.mFaces[i].mNumIndices > 2)
                    faces.push_back({&mesh, &mesh.mFaces[i]});
        }
    }
    struct Face {
        const aiMesh* mesh;
        const aiFace* face;
    };
    std::vector<Face> faces;
};

/// Holds a channel against `expected(mesh, vertex, value)`, which is false for a vertex without a value. A face without any has no data.
template <class EXPECTED, class ACTUAL>
void CompareLayer(const Corners& corners, CChannel* channel, float tolerance, EXPECTED expected, ACTUAL actual)
{
    std::set<Value> different;
    int wrong = 0;
    for (std::size_t i = 0; i < corners.faces.size(); i++) {
        const auto& [mesh, face] = corners.faces[i];
        std::vector<Value> values(face->mNumIndices);
        int given = 0, count = 0;
        for (unsigned int k = 0; k < face->mNumIndices; k++)
            if (expected(*mesh, face->mIndices[k], values[k])) {
                different.insert(values[k]);
                given++;
            }
        const int* indexes = channel ? channel->GetFaceList()->GetIndexes(static_cast<unsigned int>(i), count) : nullptr;
        ASSERT_EQ(count, given > 0 ? static_cast<int>(values.size()) : 0);
        for (int k = 0; k < count; k++) {
            const Value found = actual(indexes[k]);
            for (std::size_t c = 0; c < 4; c++)
                wrong += !(std::abs(found[c] - values[static_cast<std::size_t>(k)][c]) <= tolerance);
        }
    }
    EXPECT_EQ(wrong, 0);
    int points = 0;
    for (int i = 0; channel && i < channel->GetPointList()->GetSize(); i++)
        points += !(*channel->GetPointList())[i]->IsFlagSet(POINT_UNSET);
    EXPECT_EQ(points, static_cast<int>(different.size()));
}

void CompareChannels(const Corners& corners, const C3DGeomObject& object)
{
    CNormalFaceList* normalFaces;
    C3DVectorList* normals;
    CSpecNormalChannel* given = object.GetChannels()->GetSpecNormalChannel(normalFaces, normals);
    CompareLayer(
        corners, given, 1e-6f,
        [](const aiMesh& mesh, unsigned int vertex, Value& value) {
            if (!mesh.HasNormals())
                return false;
            const aiVector3D n = mesh.mNormals[vertex];
            value = {n.x + 0, n.y + 0, n.z + 0, 0};    // -0 and 0 are one
            const float length = n.Length();
            if (length == 0)
                return false;
            if (std::abs(length - 1) > 1e-6f)
                value = {n.x / length, n.y / length, n.z / length, 0};
            return true;
        },
        [&](int index) {
            return Value{(*normals)[index]->x, (*normals)[index]->y, (*normals)[index]->z, 0};
        });
    for (unsigned int set = 0; set < 8; set++) {
        CUVWFaceList* faces;
        CUVWPointList* points;
        CompareLayer(
            corners, object.GetChannels()->GetUVWChannelByID(1 + set, faces, points), 0,
            [set](const aiMesh& mesh, unsigned int vertex, Value& value) {
                if (!mesh.HasTextureCoords(set))
                    return false;
                const aiVector3D t = mesh.mTextureCoords[set][vertex];
                value = {t.x + 0, t.y + 0, t.z + 0, 0};
                return true;
            },
            [&](int index) {
                return Value{(*points)[index]->u, (*points)[index]->v, (*points)[index]->w, 0};
            });
        CVCFaceList* colorFaces;
        CVCPointList* colors;
        CompareLayer(
            corners, object.GetChannels()->GetVCChannelByID(101 + set, colorFaces, colors), 0,
            [set](const aiMesh& mesh, unsigned int vertex, Value& value) {
                if (!mesh.HasVertexColors(set))
                    return false;
                const aiColor4D c = mesh.mColors[set][vertex];
                const auto byte = [](float part) { return std::floor(std::min(std::max(part, 0.0f), 1.0f) * 255 + 0.5f); };
                value = {byte(c.r), byte(c.g), byte(c.b), byte(c.a)};
                return true;
            },
            [&](int index) {
                const CVCPoint& c = *(*colors)[index];
                return Value{float(c[0]), float(c[1]), float(c[2]), float(c[3])};
            });
    }
}

// Each corner's point carries the weight that its vertex has.
void CompareWeights(const Corners& corners, const C3DGeomObject& object)
{
    std::map<std::string, CWeightChannel*> channels;
    for (int i = 0; i < object.GetChannels()->GetChannelsNumber(CHANNEL_WEIGHT, true); i++) {
        auto* channel = static_cast<CWeightChannel*>(object.GetChannelByIndex(i, CHANNEL_WEIGHT, true));
        CXTString<wchar_t> name;
        ASSERT_TRUE(channel->GetCustomData().GetString(FourCC("NAME"), name));
        ASSERT_EQ(channel->GetWeightPointList()->GetSize(), object.GetPointNbr());
        channels[WideToUtf8(name)] = channel;
    }
    std::map<const aiMesh*, std::map<std::string, std::vector<float>>> weights;
    std::set<std::string> names;
    int wrong = 0;
    for (std::size_t i = 0; i < corners.faces.size(); i++) {
        const auto& [mesh, face] = corners.faces[i];
        auto& ofMesh = weights[mesh];
        if (ofMesh.empty())
            for (unsigned int b = 0; b < mesh->mNumBones; b++) {
                const aiBone& bone = *mesh->mBones[b];
                auto& ofBone = ofMesh[bone.mName.C_Str()];
                ofBone.resize(mesh->mNumVertices);
                for (unsigned int k = 0; k < bone.mNumWeights; k++)
                    ofBone[bone.mWeights[k].mVertexId] = bone.mWeights[k].mWeight;
                if (bone.mNumWeights > 0)
                    names.insert(bone.mName.C_Str());
            }
        int count;
        const int* points = object.GetFaceList()->GetIndexes(static_cast<unsigned int>(i), count);
        for (const auto& [name, ofBone] : ofMesh)
            for (int k = 0; k < count && channels.count(name); k++)
                wrong += (*channels[name]->GetWeightPointList())[points[k]]->GetWeight() != ofBone[face->mIndices[k]];
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(channels.size(), names.size());
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
    } rows[] = {
        {"Collada/cube_with_2UVs.DAE", 2, 0, 0, true},
        {"Collada/kwxport_test_vcolors.dae", 1, 1, 0, true},
        {"Collada/duck.dae", 1, 0, 0, true},
        {"OBJ/spider.obj", 1, 0, 0, true},                      // some normals of length zero
        {"X/kwxport_test_cubewithvcolors.x", 1, 1, 0, true},    // an object of three materials
        {"OBJ/cube_with_vertexcolors.obj", 0, 1, 0, true},
        {"PLY/cube_uv.ply", 1, 0, 0, true},
        {"PLY/float-color.ply", 0, 1, 0, false},
        {"glTF2/BoxTexcoords-glTF/boxTexcoords.gltf", 2, 0, 0, true},
        {"glTF2/simple_skin/simple_skin.gltf", 0, 0, 2, false},
        {"FBX/huesitos.fbx", 1, 0, 8, true},
        {"SMD/holy_grailref.smd", 1, 0, 1, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Scene scene = Read(ModelFile::Folder() + row.name, IMPORT_NO_CHECKOUT);    // faces and nodes in the order of the file
        const ModelFile model(ModelFile::Folder() + row.name);
        ASSERT_TRUE(scene && model);
        const auto pairs = model.NodePairs(*scene);
        ASSERT_FALSE(pairs.empty());
        int uvSets = 0, colorSets = 0, bones = 0;
        bool normals = false;
        for (const auto& [from, node] : pairs) {
            if (!node->GetGeomObject())
                continue;
            const C3DGeomObject& object = *node->GetGeomObject();
            CDependentChannels* channels = object.GetChannels();
            const Corners corners(*model.operator->(), *from);
            ASSERT_EQ(object.GetFaceNbr(), static_cast<int>(corners.faces.size()));
            CompareChannels(corners, object);
            CompareWeights(corners, object);
            uvSets = std::max(uvSets, channels->GetChannelsNumber(CHANNEL_UVW, true));
            colorSets = std::max(colorSets, channels->GetChannelsNumber(CHANNEL_VC, true));
            bones = std::max(bones, channels->GetChannelsNumber(CHANNEL_WEIGHT, true));
            normals |= channels->GetSpecNormalChannel() != nullptr;
        }
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
