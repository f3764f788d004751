// Cameras and lights stand where the file puts them, look along +y, and keep their parameters.

#include <cmath>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>

#include "ModelFile.h"
#include "PluginTest.h"

namespace {

aiVector3D Column(const C4x4TMatrix<float>& matrix, int column) { return {matrix.m[0][column], matrix.m[1][column], matrix.m[2][column]}; }

std::map<std::string, C3DSceneNode*> NodesOfKind(C3DScene& scene, _OBJECT_KINDOF kind)
{
    std::map<std::string, C3DSceneNode*> nodes;
    for (C3DNodePos pos = scene.GetFirstNode(kind); pos;) {
        C3DSceneNode* node = scene.GetNextNode(pos);
        nodes[WideToUtf8(node->GetName())] = node;
    }
    return nodes;
}

double Angle(aiVector3D a, aiVector3D b) { return std::acos(std::min(1.0f, a.Normalize() * b.Normalize())); }

}

TEST_F(PluginTest, CamerasLookWhereTheFileSays)
{
    if (!std::filesystem::exists(ModelFile::Folder()))
        GTEST_SKIP() << "no test models";
    const struct {
        const char* name;
        std::size_t cameras;
        bool placedTwice;    // the library gives the node's place again
    } rows[] = {{"glTF2/cameras/Cameras.gltf", 2, true},
                {"FBX/huesitos.fbx", 1, false},
                {"Collada/duck.dae", 1, false},
                {"ASE/TargetCameraAnim.ase", 1, false},
                {"LWS/move_x.lws", 1, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Scene scene = Read(ModelFile::Folder() + row.name);
        const ModelFile model(ModelFile::Folder() + row.name);
        ASSERT_TRUE(scene && model);
        const auto nodes = NodesOfKind(*scene, OBJECT_CAMERA);
        ASSERT_EQ(nodes.size(), row.cameras);
        for (unsigned int i = 0; i < model->mNumCameras; i++) {
            const aiCamera& from = *model->mCameras[i];
            SCOPED_TRACE(from.mName.C_Str());
            ASSERT_TRUE(nodes.count(from.mName.C_Str()));
            const C3DSceneNode* node = nodes.at(from.mName.C_Str());
            const aiMatrix4x4 matrix = ModelFile::NodeMatrix(*model->mRootNode->FindNode(from.mName));
            C4x4TMatrix<float> placed;
            node->GetNodeTM(0, placed, true);
            const aiVector3D origin = matrix * (row.placedTwice ? aiVector3D() : from.mPosition);
            EXPECT_LT((Column(placed, 3) - origin).Length(), 1e-4 * (1 + origin.Length()));
            EXPECT_LT(Angle(Column(placed, 1), aiMatrix3x3(matrix) * from.mLookAt), 2e-3);
            EXPECT_LT(Angle(Column(placed, 2), aiMatrix3x3(matrix) * from.mUp), 2e-3);
            EXPECT_GT((Column(placed, 0) ^ Column(placed, 1)) * Column(placed, 2), 0);    // not mirrored

            const C3DCamera& camera = *static_cast<C3DCamera*>(node->GetBaseObject());
            EXPECT_EQ(camera.GetProjection() != CAMERA_PERSPECTIVE, from.mOrthographicWidth > 0);
            EXPECT_EQ(camera.GetFarClip(), from.mClipPlaneFar);
            if (from.mAspect > 0) {
                EXPECT_EQ(camera.GetAspectRatio(), from.mAspect);
            }
            if (from.mHorizontalFOV > 0) {
                EXPECT_EQ(camera.GetFov(), from.mHorizontalFOV);
            }
        }
    }
}

TEST_F(PluginTest, LightsKeepKindColourAndCone)
{
    // Halves of cones in radians; a colour that is brighter than white by its intensity.
    const std::string gltf = R"({"asset": {"version": "2.0"}, "extensionsUsed": ["KHR_lights_punctual"], "scene": 0,
        "scenes": [{"nodes": [0, 1, 2, 3]}], "extensions": {"KHR_lights_punctual": {"lights": [
        {"type": "spot", "color": [1, 0.5, 0], "intensity": 4, "spot": {"innerConeAngle": 0.25, "outerConeAngle": 0.5}},
        {"type": "directional"}, {"type": "point", "color": [0, 0, 1]}]}},
        "nodes": [{"name": "spot", "rotation": [0.7071067811865476, 0, 0, 0.7071067811865476], "extensions": {"KHR_lights_punctual": {"light": 0}}},
        {"name": "sun", "extensions": {"KHR_lights_punctual": {"light": 1}}},
        {"name": "bulb", "translation": [1, 2, 3], "extensions": {"KHR_lights_punctual": {"light": 2}}}, {"mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}], "bufferViews": [{"buffer": 0, "byteLength": 36}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]}],
        "buffers": [{"byteLength": 36, "uri": "data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"}]})";
    const Scene scene = ReadText("lights.gltf", gltf);
    ASSERT_TRUE(scene);
    const auto nodes = NodesOfKind(*scene, OBJECT_LIGHT);
    // Lights of this format shine along -z of a y-up node: +y of the scene, for one that is not turned.
    const struct {
        const char* name;
        int kind;
        CRGBColor color;
        double intensity, inner, outer;
        aiVector3D place, direction;
    } rows[] = {
        {"spot", LIGHT_SPOT, {255, 128, 0}, 4, 0.5, 1, {0, 0, 0}, {0, 0, 1}},
        {"sun", LIGHT_DIRECTIONAL, {255, 255, 255}, 1, 0, 0.5235987755982988, {0, 0, 0}, {0, 1, 0}},
        {"bulb", LIGHT_OMNI, {0, 0, 255}, 1, 0, 0.5235987755982988, {1, -3, 2}, {0, 1, 0}},
    };
    ASSERT_EQ(nodes.size(), std::size(rows));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(nodes.count(row.name));
        const C3DLight& light = *static_cast<C3DLight*>(nodes.at(row.name)->GetBaseObject());
        EXPECT_EQ(light.GetLightKind(), row.kind);
        EXPECT_EQ(light.GetColor(), row.color);
        EXPECT_EQ(light.GetIntensity(), row.intensity);
        EXPECT_EQ(light.GetInnerAngle(), row.inner);
        EXPECT_EQ(light.GetOuterAngle(), row.outer);
        C4x4TMatrix<float> matrix;
        nodes.at(row.name)->GetNodeTM(0, matrix, true);
        EXPECT_LT((Column(matrix, 3) - row.place).Length(), 1e-6);
        EXPECT_LT(Angle(Column(matrix, 1), row.direction), 1e-3);
    }
}
