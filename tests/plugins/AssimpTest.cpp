#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "PluginTest.h"

namespace {

C3DGeomObject* FirstObject(const Scene& scene)
{
    C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL);
    C3DGeomObject* object = nullptr;
    if (pos)
        scene->GetNextNode(object, pos);
    return object;
}

std::vector<int> FaceSizes(const C3DGeomObject& object)
{
    std::vector<int> sizes;
    for (int i = 0; i < object.GetFaceNbr(); i++) {
        int count;
        object.GetFaceList()->GetIndexes(static_cast<unsigned int>(i), count);
        sizes.push_back(count);
    }
    return sizes;
}

}

TEST_F(PluginTest, PolygonsLinesAndNodesComeInAsTheyAre)
{
    const Scene scene = ReadText("mixed.obj", "v 0 0 0\nv 1 0 0\nv 2 1 0\nv 1 2 0\nv 0 2 0\nv 5 5 5\nv 6 5 5\nv 7 5 5\n"
                                              "o first\nf 1 2 3 4 5\nf 1 2 3\no second\nf 1 2 3 4\no path\nl 6 7 8\n");
    ASSERT_TRUE(scene);
    std::vector<std::string> names;
    std::vector<unsigned int> kinds;
    C3DNodePos pos = scene->GetFirstNode(0xFFFFFFFF);
    while (pos) {
        const C3DSceneNode* node = scene->GetNextNode(pos);
        names.push_back(WideToUtf8(node->GetName()));
        kinds.push_back(node->GetObjectKindOf());
        if (node->GetObjectKindOf() == OBJECT_CURVE) {
            EXPECT_EQ(node->GetGeomObject()->GetPointNbr(), 3);
        }
    }
    EXPECT_EQ(names, (std::vector<std::string>{"first", "path", "second"}));
    EXPECT_EQ(kinds, (std::vector<unsigned int>{OBJECT_POLYGONAL, OBJECT_CURVE, OBJECT_POLYGONAL}));
    EXPECT_EQ(FaceSizes(*FirstObject(scene)), (std::vector<int>{5, 3}));
}

TEST_F(PluginTest, FormatsWithIndicesKeepTheirPoints)
{
    // Two triangles that meet along an edge, each with points of its own; one point is used by nobody.
    const std::string ply = "ply\nformat ascii 1.0\nelement vertex 7\nproperty float x\nproperty float y\nproperty float z\n"
                            "element face 2\nproperty list uchar int vertex_indices\nend_header\n"
                            "0 0 0\n1 0 0\n0 1 0\n1 0 0\n1 1 0\n0 1 0\n9 9 9\n3 0 1 2\n3 3 4 5\n";
    const std::string stl = "solid s\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\n"
                            "facet normal 0 0 1\nouter loop\nvertex 1 0 0\nvertex 1 1 0\nvertex -0 1 0\nendloop\nendfacet\nendsolid s\n";
    const Scene kept = ReadText("two.ply", ply), joined = ReadText("two.stl", stl);
    ASSERT_TRUE(kept && joined);
    EXPECT_EQ(FirstObject(kept)->GetPointNbr(), 7);
    EXPECT_EQ(FirstObject(joined)->GetPointNbr(), 4);    // -0 is 0
    EXPECT_EQ(FirstObject(kept)->GetFaceNbr(), 2);
    EXPECT_EQ(FirstObject(joined)->GetFaceNbr(), 2);
}

TEST_F(PluginTest, SharedMeshesAreInstancesInATreeWithItsMatrices)
{
    const Scene scene = Read(MODELS "/pavilion.dae");
    ASSERT_TRUE(scene);
    EXPECT_EQ(scene->GetScaleFactor(), 100);

    C3DSceneNode* columns = scene->GetChildNode(nullptr);
    EXPECT_EQ(columns->GetName(), L"columns");
    C3DSceneNode* first = scene->GetChildNode(columns);
    C3DSceneNode* second = scene->GetRightNode(first);
    EXPECT_EQ(second->GetName(), L"column 2");
    EXPECT_EQ(first->GetBaseObject(), second->GetBaseObject());
    EXPECT_TRUE(first->GetBaseObject()->IsInstanciated());
    EXPECT_EQ(FaceSizes(*first->GetGeomObject()).front(), 12);

    // The file is z up: whatever the importer turns on the way is turned back to the bit.
    C4x4TMatrix<float> matrix;
    static_cast<C3DSceneNode*>(scene->GetRoot()->GetLastChild())->GetNodeTM(0, matrix, true);
    EXPECT_EQ(matrix.m[2][3], 3.5f);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(matrix.m[i][i], 1);
}

TEST_F(PluginTest, BrokenFilesAreRefusedWithAReason)
{
    const struct {
        const char* name;
        const char* text;
    } rows[] = {
        {"random.3ds", "\x12\x34 no such chunk"},
        {"short.glb", "glTF\2\0\0\0"},
        {"text.gltf", "{\"asset\": {\"version\": \"2.0\"}"},
        {"greedy.off", "OFF\n353535235358 6 0\n0 0 0\n"},
        {"cut.ply", "ply\nformat ascii 1.0\nelement vertex 100000\nproperty float x\nend_header\n1\n"},
        {"cut-binary.ply", "ply\nformat binary_little_endian 1.0\nelement vertex 10\nproperty double x\nelement face 1\n"
                           "property list uchar int vertex_indices\nend_header\n1234567890"},
        {"nothing.dae", "<?xml version=\"1.0\"?><COLLADA version=\"1.4.1\"></COLLADA>"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(ReadText(row.name, row.text));
        EXPECT_NE(result, IORESULT_OK);
        EXPECT_TRUE(options.HasLog(IoLogInfo::WARNING | IoLogInfo::FAILURE));
    }
    EXPECT_FALSE(Read(folder.Name("missing.obj")));
    EXPECT_EQ(result, IORESULT_NO_FILE);
}
