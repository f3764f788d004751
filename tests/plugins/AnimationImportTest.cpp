// Animation of real files, against the library's keys interpolated the plain way.

#include <algorithm>
#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include "ModelFile.h"
#include "PluginTest.h"

namespace {

aiVector3D Between(const aiVector3D& a, const aiVector3D& b, float f) { return a + (b - a) * f; }
aiQuaternion Between(const aiQuaternion& a, const aiQuaternion& b, float f)
{
    aiQuaternion result;
    aiQuaternion::Interpolate(result, a, b, f);
    return result.Normalize();
}

template <class KEY> auto ValueAt(const KEY* keys, unsigned int count, double ticks)
{
    if (ticks <= keys[0].mTime)
        return Between(keys[0].mValue, keys[0].mValue, 0);
    for (unsigned int i = 1; i < count; i++)
        if (ticks < keys[i].mTime)
            return Between(keys[i - 1].mValue, keys[i].mValue,
                           static_cast<float>((ticks - keys[i - 1].mTime) / (keys[i].mTime - keys[i - 1].mTime)));
    return Between(keys[count - 1].mValue, keys[count - 1].mValue, 0);
}

aiMatrix4x4 LocalAt(const aiScene& scene, const aiNode& node, double ticks)
{
    const aiAnimation& animation = *scene.mAnimations[0];
    for (unsigned int i = 0; i < animation.mNumChannels; i++)
        if (const aiNodeAnim& keys = *animation.mChannels[i]; keys.mNodeName == node.mName) {
            aiMatrix4x4 translation, scale;
            aiMatrix4x4::Translation(ValueAt(keys.mPositionKeys, keys.mNumPositionKeys, ticks), translation);
            aiMatrix4x4::Scaling(ValueAt(keys.mScalingKeys, keys.mNumScalingKeys, ticks), scale);
            return translation * aiMatrix4x4(ValueAt(keys.mRotationKeys, keys.mNumRotationKeys, ticks).GetMatrix()) * scale;
        }
    return node.mTransformation;
}

double LargestDifference(const C4x4TMatrix<float>& a, const aiMatrix4x4& b)
{
    double difference = 0, size = 1;
    for (unsigned int row = 0; row < 3; row++)
        for (unsigned int column = 0; column < 4; column++) {
            difference = std::max(difference, std::abs(static_cast<double>(a.m[row][column]) - b[row][column]));
            size = std::max(size, std::abs(static_cast<double>(b[row][column])));
        }
    return difference / size;
}

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
        bool yUp;
    } rows[] = {
        {"FBX/huesitos.fbx", 25, 39, true},
        {"FBX/animation_with_skeleton.fbx", 24, 20, true},
        {"glTF2/simple_skin/simple_skin.gltf", 30, 165, true},    // keys each half second, in milliseconds
        {"Collada/box_nested_animation.dae", 24, 40, true},       // milliseconds, rounded
        {"Collada/anims_with_full_rotations_between_keys.DAE", 60, 718, true},
        {"X/anim_test.x", 24, 24, true},
        {"ASE/anim.ASE", 30, 100, true},               // ticks of 1 / 4800 s
        {"ASE/TargetCameraAnim.ase", 30, 90, true},    // a camera with something else to carry
        {"3DS/RotatingCube.3DS", 0, 181, true},
        {"LWS/move_x.lws", 30, 40, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Scene scene = Read(ModelFile::Folder() + row.name);
        const ModelFile model(ModelFile::Folder() + row.name);
        ASSERT_TRUE(scene && model);
        double rate;
        scene->GetCustomData().GetDouble(FourCC("FRAT"), rate);
        EXPECT_EQ(rate, row.rate);
        EXPECT_EQ(scene->GetTimeRange(0).end, row.end);

        const double told = model->mAnimations[0]->mTicksPerSecond, ticksPerFrame = rate > 0 ? told / rate : 1;
        std::size_t compared = 0;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;) {
            const C3DSceneNode* node = scene->GetNextNode(pos);
            const aiNode* from = model->mRootNode->FindNode(WideToUtf8(node->GetName()).c_str());
            const bool ownChild = from && node->GetParent()->GetName() == node->GetName();    // a camera below its node
            if (!from || ownChild || node->IsFlagSet(NODE_HIDDEN) || node->GetObjectKindOf() == OBJECT_CAMERA ||
                node->GetObjectKindOf() == OBJECT_LIGHT)
                continue;
            compared++;
            for (int i = 0; i < 10; i++) {
                const int frame = row.end * i / 9;
                const aiMatrix4x4 expected = ModelFile::NodeMatrix(*from, row.yUp, [&](const aiNode& at) {
                    return LocalAt(*model.operator->(), at, frame * ticksPerFrame);
                });
                C4x4TMatrix<float> matrix;
                node->GetNodeTM(frame, matrix, true);
                EXPECT_LT(LargestDifference(matrix, expected), 5e-4) << from->mName.C_Str() << " at frame " << frame;
            }
        }
        EXPECT_GE(compared, model->mAnimations[0]->mNumChannels);
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
