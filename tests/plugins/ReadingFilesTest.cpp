// The files of a model: those that name each other, those that would mislead the import library, and which way is up in them.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "ModelFile.h"
#include "PluginTest.h"

namespace {

template <class T> std::string Bytes(std::initializer_list<T> values)
{
    std::string bytes(values.size() * sizeof(T), '\0');
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

/// From least to greatest along z, of all that is drawn.
std::pair<float, float> Height(C3DScene& scene)
{
    std::pair<float, float> height{INFINITY, -INFINITY};
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL); pos;) {
        const C3DSceneNode* node = scene.GetNextNode(pos);
        C4x4TMatrix<float> matrix;
        node->GetNodeTM(0, matrix, true);
        const C3DPointList& points = *node->GetGeomObject()->GetPointList();
        const C3DTPoint<float>* point = points.GetFirst();
        for (int i = 0; i < points.GetSize(); i++, point = points.GetNext(point)) {
            const float z = matrix.m[2][0] * point->x + matrix.m[2][1] * point->y + matrix.m[2][2] * point->z + matrix.m[2][3];
            height = {std::min(height.first, z), std::max(height.second, z)};
        }
    }
    return height;
}

/// A textured triangle. The material names the second set of coordinates, and the mesh has but one.
std::string TriangleGltf(const std::string& buffer, const std::string& image)
{
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":1},"material":0}]}],
        "materials":[{"name":"m","pbrMetallicRoughness":{"baseColorTexture":{"index":0,"texCoord":1}}}],
        "textures":[{"source":0}],"images":[{"uri":")" +
           image + R"("}],"buffers":[{"byteLength":60,"uri":")" + buffer + R"("}],
        "bufferViews":[{"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":24}],
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},
                     {"bufferView":1,"componentType":5126,"count":3,"type":"VEC2"}]})";
}

}

TEST_F(PluginTest, PlyIsReadWhateverIsInItOrNotAtAll)
{
    // Faults in mind: a line feed at the start of the content is taken for the end of the head, and all values come one byte off; elements of
    // other programs are taken for points.
    const float lineFeed = std::bit_cast<float>(0x3F80000Au);
    using Lines = std::vector<std::string>;
    const Lines camera{"element camera 2", "property float a"}, light{"element light 1", "property list uchar int b"};
    const Lines edge{"element edge 1", "property uchar c"};
    const std::string cameras = Bytes({5.f, 6.f}), lights = "\x01" + Bytes({7});
    const struct {
        const char *name, *lineEnd;
        float first;
        Lines before, between;
        std::string beforeBytes, betweenBytes;
        bool read;
    } rows[] = {
        {"line feed", "\n", lineFeed, {}, {}, "", "", true},
        {"line feed behind both", "\r\n", lineFeed, {}, {}, "", "", true},
        {"cameras first", "\n", 2, camera, {}, cameras, "", true},
        {"lights between", "\n", 2, {}, light, "", lights, true},
        {"edges first", "\n", 2, edge, {}, "-", "", true},
        {"too much for the importer", "\n", 2, camera, light, cameras, lights, false},
        {"line feed and edges", "\n", 2, edge, {}, "\n", "", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Lines lines{"ply", "format binary_little_endian 1.0", "comment none"};
        const auto add = [&lines](const Lines& more) { lines.insert(lines.end(), more.begin(), more.end()); };
        add(row.before);
        add({"element vertex 3", "property float x", "property float y", "property float z"});
        add(row.between);
        add({"element face 1", "property list uchar int vertex_indices", "end_header"});
        std::string text;
        for (const std::string& line : lines)
            text += line + row.lineEnd;
        text += row.beforeBytes + Bytes({row.first, 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f}) + row.betweenBytes + "\x03" + Bytes({2, 1, 0});
        const Scene scene = ReadText("a.ply", text);
        ASSERT_EQ(scene.get() != nullptr, row.read);
        if (!scene)
            continue;
        C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL);
        const C3DGeomObject& object = *scene->GetNextNode(pos)->GetGeomObject();
        ASSERT_EQ(object.GetPointNbr(), 3);
        EXPECT_EQ(object.GetPointList()->GetFirst()->x, row.first);
        int count = 0;
        const int* const corners = object.GetFaceList()->GetIndexes(0, count);
        EXPECT_EQ(std::vector<int>(corners, corners + count), (std::vector<int>{2, 1, 0}));
    }
}

TEST_F(PluginTest, FilesAreFoundAsOtherSystemsNameThem)
{
    const std::string content = Bytes({0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 0.75f, 0.f, 0.f, 1.f});
    const struct {
        const char *bufferUri, *bufferFile, *imageUri, *imageFile;
    } rows[] = {{"a.bin", "a.bin", "b.png", "b.png"},
                {"my%20data.bin", "my data.bin", "caf%C3%A9.png", "caf\u00e9.png"},
                {"Data/A.BIN", "data/a.bin", "Maps/B.PNG", "maps/b.png"},
                {"50%25%20off.bin", "50% OFF.bin", "100%.png", "100%.png"}};
    int number = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bufferUri);
        const std::string place = std::to_string(number++) + "/";
        folder.Write(place + row.bufferFile, content);
        folder.Write(place + row.imageFile, "");
        const Scene scene = ReadText(place + "a.gltf", TriangleGltf(row.bufferUri, row.imageUri));
        ASSERT_TRUE(scene) << WideToUtf8(options.GetLogText(IoLogInfo::ALL));
        C3DMaterial* const material = scene->GetMaterialByName(L"m");
        ASSERT_TRUE(material && material->GetMaterialMap(MAP_DIFFUSE));
        const CMaterialMap& map = *material->GetMaterialMap(MAP_DIFFUSE);
        EXPECT_EQ(WideToUtf8(map.GetBitmapPath(scene.get(), false, true)), folder.Name(place + row.imageFile));
        // the set that there is stands in for the one that is named
        C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL);
        CUVWFaceList* faces;
        CUVWPointList* points;
        ASSERT_TRUE(scene->GetNextNode(pos)->GetGeomObject()->GetChannels()->GetUVWChannelByID(map.GetChannelID(), faces, points));
        int count = 0;
        const int* const corners = faces->GetIndexes(0, count);
        ASSERT_EQ(count, 3);
        EXPECT_EQ((*points)[corners[1]]->u, 0.75f);
    }
    folder.Write("m.mtl", "newmtl red\nKd 1 0 0\n");
    const Scene scene = ReadText("a.obj", "mtllib M.MTL\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\n");
    ASSERT_TRUE(scene);
    EXPECT_TRUE(scene->GetMaterialByName(L"red"));
}

TEST_F(PluginTest, ModelsStandUpright)
{
    if (!std::filesystem::exists(ModelFile::Folder()))
        GTEST_SKIP() << "no test models";
    constexpr int NONE = -1;
    // Heights of what stands on the ground, or lies there, as one sees them.
    const struct {
        const char* file;
        int readUp;
        float from, to;
    } rows[] = {
        {"SMD/WusonSMD.smd", NONE, 0, 1.515f},
        {"COB/dwarf.cob", NONE, 0.02f, 70.16f},
        {"HMP/terrain.hmp", NONE, -20, 20},
        {"Q3D/E-AT-AT.q3o", NONE, 0, 1920},
        {"OpenGEX/Example.ogex", NONE, 0, 93.11f},
        {"BLEND/HUMAN.blend", NONE, -5.2f, 5.52f},
        {"OBJ/WusonOBJ.obj", NONE, 0, 1.515f},
        {"MDL/MDL (HL1)/man.mdl", NONE, 0.01f, 9.76f},
        {"IQM/mrfixit.iqm", NONE, 0.08f, 7.98f},
        {"B3D/WusonBlitz.b3d", NONE, 0, 1.515f},
        // Written with another axis than their formats have: who reads can say so,
        {"PLY/Wuson.ply", UP_AXIS_Y, 0, 1.515f},
        {"DXF/wuson.dxf", UP_AXIS_Y, 0, 1.515f},
        {"IQM/mrfixit.iqm", UP_AXIS_X, -1.07f, 1.71f},
        // but not against the file.
        {"Collada/duck.dae", UP_AXIS_X, 0.099f, 1.64f},
        {"FBX/spider.fbx", UP_AXIS_X, -4223.4f, 3750.4f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.file << " " << row.readUp);
        C3DIo io(CFileNameSpec(Utf8ToWide(ModelFile::Folder() + row.file)), FILEIO_READ | FILEIO_SILENT, nullptr);
        CSceneImportOptions settings;
        if (row.readUp != NONE)
            settings.GetCustomData().SetUnsigned(IMPORT_UP_AXIS, static_cast<unsigned int>(row.readUp));
        const Scene scene(io.Read(false, &settings));
        ASSERT_TRUE(scene);
        const auto [from, to] = Height(*scene);
        EXPECT_NEAR(from, row.from, (row.to - row.from) * 0.01);
        EXPECT_NEAR(to, row.to, (row.to - row.from) * 0.01);
    }
}

TEST_F(PluginTest, CamerasLightsAndMotionAreScenesForWhomTheyWill)
{
    const struct {
        const char *name, *text;
    } rows[] = {
        {"camera.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"camera":0}],
                           "cameras":[{"type":"perspective","perspective":{"yfov":1,"znear":0.1}}]})"},
        {"walk.bvh", "HIERARCHY\nROOT hip\n{\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\nEnd Site\n{\nOFFSET 0 1 0\n}\n}\n"
                     "MOTION\nFrames: 3\nFrame Time: 0.04\n0 0 0\n1 0 0\n2 0 0\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string file = folder.Write(row.name, row.text);
        EXPECT_FALSE(Read(file));
        EXPECT_EQ(result, IORESULT_EMPTY);
        C3DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_READ | FILEIO_SILENT, nullptr);
        CSceneImportOptions settings;
        settings.GetCustomData().SetBool(IMPORT_SHAPELESS, true);
        const Scene scene(io.Read(false, &settings));
        ASSERT_TRUE(scene);

        C3DIo native(CFileNameSpec(folder.Wide("saved.3dif")), FILEIO_SILENT, nullptr);
        CSceneExportOptions saving;
        EXPECT_FALSE(native.Save(false, scene.get(), &saving));
        saving = CSceneExportOptions();
        saving.GetCustomData().SetBool(EXPORT_SHAPELESS, true);
        EXPECT_TRUE(native.Save(false, scene.get(), &saving));
        EXPECT_FALSE(Read(folder.Name("saved.3dif")));
    }
}
