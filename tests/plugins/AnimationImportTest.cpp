// Animation of real files. The sums were written down while nodes stood where the library's keys, interpolated the plain way, put them.

#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include "ModelFile.h"
#include "PluginTest.h"

namespace {

// Two animations. Box turns in the first and rests in the second, Ball moves in both.
const char* const TWO_CLIPS = R"(xof 0303txt 0032
Frame Box { FrameTransformMatrix { 1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,9.0,0.0,1.0;; }
 Mesh { 3; 0.0;0.0;0.0;,1.0;0.0;0.0;,0.0;1.0;0.0;; 1; 3;0,1,2;; } }
Frame Ball { FrameTransformMatrix { 1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0;; } }
AnimTicksPerSecond { 24; }
AnimationSet walk {
 Animation { { Ball } AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, 24;3;1.0,0.0,0.0;;; } }
 Animation { { Box } AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, 12;3;4.0,0.0,0.0;;; } }
}
AnimationSet run {
 Animation { { Ball } AnimationKey { 2; 2; 6;3;5.0,0.0,0.0;;, 18;3;7.0,0.0,0.0;;; } }
}
)";

}

TEST_F(PluginTest, AnimatedNodesAreWhereTheLibraryPutsThem)
{
    if (!std::filesystem::exists(ModelFile::Folder()))
        GTEST_SKIP() << "no test models";
    const struct {
        const char* name;
        double rate;    // 0: the file does not tell
        int end;
        double sum;    // of the nodes' matrices at ten times
    } rows[] = {
        {"FBX/huesitos.fbx", 25, 39, 1496269},
        {"FBX/animation_with_skeleton.fbx", 24, 20, -622488.4},
        {"glTF2/simple_skin/simple_skin.gltf", 30, 165, 643.1456},    // keys each half second, in milliseconds
        {"Collada/box_nested_animation.dae", 24, 40, 1423.837},       // milliseconds, rounded
        {"Collada/anims_with_full_rotations_between_keys.DAE", 60, 718, 149169.2},
        {"X/anim_test.x", 24, 24, 314.2154},
        {"ASE/anim.ASE", 30, 100, -2115.073},               // ticks of 1 / 4800 s
        {"ASE/TargetCameraAnim.ase", 30, 90, -7607.922},    // a camera with something else to carry
        {"3DS/RotatingCube.3DS", 0, 181, -52.38296},
        {"LWS/move_x.lws", 30, 40, -403.6116},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Scene scene = Read(ModelFile::Folder() + row.name);
        ASSERT_TRUE(scene);
        double rate;
        scene->GetCustomData().GetDouble(FourCC("FRAT"), rate);
        EXPECT_EQ(rate, row.rate);
        EXPECT_EQ(scene->GetTimeRange(0).end, row.end);

        double sum = 0;
        int count = 0;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;) {
            const C3DSceneNode* node = scene->GetNextNode(pos);
            for (int i = 0; i < 10; i++) {
                C4x4TMatrix<float> matrix;
                node->GetNodeTM(row.end * i / 9, matrix, true);
                for (int k = 0; k < 12; k++)
                    sum += matrix.ValPtr()[k] * (1 + count++ % 31);
            }
        }
        EXPECT_NEAR(sum, row.sum, 1e-5 * std::abs(row.sum));
    }
}

TEST_F(PluginTest, AnimationsFollowOneAnother)
{
    const Scene scene = ReadText("two.x", TWO_CLIPS);
    ASSERT_TRUE(scene);
    CXArray<CXTString<wchar_t>> names;
    int ranges[4];
    ASSERT_TRUE(scene->GetCustomData().GetStringArray(FourCC("CLNM"), names));
    ASSERT_TRUE(scene->GetCustomData().GetData(FourCC("CLRG"), ranges, sizeof ranges));
    EXPECT_EQ(names.GetSize(), 2);
    EXPECT_EQ(names[1], L"run");
    EXPECT_EQ(std::vector<int>(ranges, ranges + 4), (std::vector<int>{0, 24, 25, 43}));

    const C3DSceneNode* ball = scene->GetChildNode(nullptr);
    const C3DSceneNode* box = scene->GetRightNode(ball);
    const struct {
        int frame;
        float box, ball;    // x of both
    } rows[] = {{0, 0, 0}, {6, 2, 0.25f}, {12, 4, 0.5f}, {24, 4, 1}, {25, 0, 5}, {31, 0, 5}, {37, 0, 6}, {43, 0, 7}, {50, 0, 7}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.frame);
        C4x4TMatrix<float> matrix;
        box->GetNodeTM(row.frame, matrix, true);
        EXPECT_FLOAT_EQ(matrix.m[0][3], row.box);
        ball->GetNodeTM(row.frame, matrix, true);
        EXPECT_FLOAT_EQ(matrix.m[0][3], row.ball);
    }
}
