#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>

#include "scene/Filter.h"
#include "scene/NodeWalkTM.h"
#include "scene/SceneBuilders.h"
#include "support/Checksum.h"

namespace {

using Matrix = C4x4TMatrix<float>;
using Coordinates = std::vector<float>;

Coordinates Image(const Matrix& matrix, float x, float y, float z) { return Values(matrix * C3DTPoint<float>(x, y, z)); }

void ExpectNear(const Coordinates& a, const Coordinates& b)
{
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); i++)
        EXPECT_NEAR(a[i], b[i], 1e-5) << i;
}

void ExpectNear(const Matrix& a, const Matrix& b)
{
    ExpectNear(Coordinates(a.ValPtr(), a.ValPtr() + 16), Coordinates(b.ValPtr(), b.ValPtr() + 16));
}

void SetVectorKey(C3DSceneNode* node, std::uint64_t id, float x, float y, float z)
{
    static_cast<C3DVectorKey*>(node->CreateKey(0, id, 0))->SetVector({x, y, z});
}

/// Quarter of a turn that takes x to y.
Matrix QuarterZ()
{
    Matrix matrix;
    matrix.m[0][0] = matrix.m[1][1] = 0;
    matrix.m[0][1] = -1;
    matrix.m[1][0] = 1;
    return matrix;
}

}

TEST(NodeTransforms, ParentsAndPivot)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_GROUP);
    scene->GetRoot()->AddKey(0, C3DMatrixKey(Translation(0, 0, 100)));
    a->AddKey(0, C3DMatrixKey(QuarterZ()));
    SetVectorKey(a, KEY_PIVOT, 5, 0, 0);
    b->AddKey(0, C3DMatrixKey(Translation(1, 0, 0)));
    Matrix m;
    b->GetNodeTM(0, m, true);    // a's pivot does not reach b
    EXPECT_EQ(Image(m, 0, 0, 0), Coordinates({0, 1, 100}));
    b->GetNodeTM(0, m, false);
    EXPECT_EQ(Image(m, 0, 0, 0), Coordinates({0, 1, 0}));
    SetVectorKey(b, KEY_PIVOT, 2, 0, 0);
    b->GetNodeTM(0, m, false);    // the origin lies where the pivot point went
    EXPECT_EQ(Image(m, 0, 0, 0), Coordinates({0, 3, 0}));
    EXPECT_EQ(Image(m, 1, 0, 0), Coordinates({0, 4, 0}));
    scene->GetRoot()->GetNodeTM(0, m, false);
    EXPECT_EQ(Image(m, 0, 0, 0), Coordinates({0, 0, 100}));

    Matrix parent, local;
    a->GetNodeTM(0, parent, true);
    b->GetNodeTM(0, m, true);
    b->GetNodeLocalTM(0, local);
    ExpectNear(parent * local, m);
    a->GetNodeLocalTM(0, local);
    ExpectNear(local, parent);
}

TEST(NodeTransforms, KeysAmongManyOthersMakeTheSameMatrix)
{
    C3DSceneNode few, many;
    for (int i = 0; i < 40; i++)
        many.CreateKey(i - 10, KEY_MAP_TILE, 0);
    for (C3DSceneNode* const node : {&few, &many}) {
        node->AddKey(12, C3DMatrixKey(QuarterZ()));
        node->AddKey(3, C3DRotateKey(0.5f, C3DTVector<float>(1, 2, 3)));
        for (const int time : {0, 20}) {
            static_cast<C3DVectorKey*>(node->CreateKey(time, KEY_TRANSLATE, 0))->SetVector({1.0f + time, 2, 3});
            static_cast<C3DVectorKey*>(node->CreateKey(time, KEY_SCALE, 0))->SetVector({1, 2, 0.5f + time});
        }
    }
    for (int time = -12; time < 40; time++) {
        Matrix expected, got;
        few.GetObjectLocalTM(time, expected);
        many.GetObjectLocalTM(time, got);
        EXPECT_TRUE(got == expected) << time;
    }
}

TEST(NodeTransforms, AWalkThatLeavesNodesOutCostsTheSameAtAnyDepth)
{
    // A ladder: each node has a leaf and the next node. Every second node is left out, so that no parent is the one before.
    constexpr int DEPTH = 60000;
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* parent = nullptr;
    for (int i = 0; i < DEPTH; i++) {
        C3DSceneNode* const node = AddNode(*scene, parent, L"n", i % 2 ? OBJECT_DUMMY : OBJECT_GROUP);
        node->AddKey(0, C3DMatrixKey(Translation(1, 0, 0)));
        if (parent)
            AddNode(*scene, parent, L"leaf", OBJECT_DUMMY);
        parent = node;
    }
    const std::clock_t start = std::clock();
    CNodeWalkTM walk(0, true);
    Matrix matrix;
    double sum = 0;
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_DUMMY); pos;) {
        walk.Get(scene->GetNextNode(pos), matrix);
        sum += matrix.m[0][3];
    }
    EXPECT_EQ(sum, 0.5 * DEPTH * (DEPTH / 2.0 + 1) + 0.5 * DEPTH * (DEPTH - 1.0));    // nodes at 2, 4, 6...; leaves at 1, 2, 3...
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 2);
}

TEST(NodeTransforms, EveryBitIsThatOfThePlainProducts)
{
    // Faults in mind: a shortcut for one key, for no key or for affine matrices that rounds otherwise or turns a zero's sign; a key of the
    // wrong class or time; a pivot that reaches children; a level kept that is none of the node's parents. The sum is that of products
    // summed from the left, in double, and rounded once, with each class of key asked for at every node up to the root.
    Checksum sum;
    std::mt19937 random(11);
    const auto number = [&](int n) { return static_cast<int>(random() % n); };
    const auto value = [&] { return number(4) ? (number(2001) - 1000) / 700.f : number(2) ? 0.0f : -0.0f; };
    const auto vector = [&] { return C3DTVector<float>(value(), value(), value()); };
    const auto addKey = [&](C3DSceneNode* node) {
        const int time = 10 * number(4);
        switch (number(8)) {
        case 0: static_cast<C3DTranslateKey*>(node->CreateKey(time, KEY_TRANSLATE, 0))->SetVector(vector()); break;
        case 1: static_cast<C3DScaleKey*>(node->CreateKey(time, KEY_SCALE, 0))->SetVector(vector()); break;
        case 2: node->AddKey(time, C3DRotateKey(value(), vector())); break;
        case 3: static_cast<C3DVectorKey*>(node->CreateKey(time, KEY_PIVOT, 0))->SetVector(vector()); break;
        case 4: node->CreateKey(time, KEY_MAP_TILE, 0); break;    // no transform
        default: {
            Matrix matrix;
            const int values = number(10) ? 12 : 16;    // now and then no affine one
            for (int i = 0; i < values; i++)
                matrix.ValPtr()[i] = value();
            node->AddKey(time, C3DMatrixKey(matrix));
        }
        }
    };
    const CRef<C3DScene> scene(C3DScene::Create());
    std::vector<C3DSceneNode*> nodes{scene->GetRoot()};
    for (int i = 0; i < 400; i++) {
        nodes.push_back(AddNode(*scene, nodes[nodes.size() - 1 - number(std::min<int>(nodes.size(), 5))], L"n", OBJECT_GROUP));
        for (int keys = number(2) ? 1 : number(6); keys > 0; keys--)
            addKey(nodes.back());
    }
    addKey(scene->GetRoot());
    for (const int time : {-5, 0, 7, 10, 25, 90}) {
        CNodeWalkTM walk(time, true), without(time, false);
        std::vector<C3DSceneNode*> order = nodes;    // in the order of the tree, then mixed
        for (int pass = 0; pass < 2; pass++, std::shuffle(order.begin(), order.end(), random)) {
            for (const C3DSceneNode* node : order) {
                Matrix matrix;
                const auto add = [&] { sum.Add(std::vector<float>(matrix.ValPtr(), matrix.ValPtr() + 16)); };
                node->GetObjectLocalTM(time, matrix), add();
                node->GetNodeTM(time, matrix, true), add();
                walk.Get(node, matrix), add();
                without.Get(node, matrix), add();
            }
        }
    }
    EXPECT_EQ(sum.Get(), 0x6B95B7A6DC8E221Bu);
}

TEST(NodeTransforms, CentringThePivotKeepsThePointsInPlace)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = AddNode(*scene, nullptr, L"a", 0);
    node->SetObject(CreateSquare(), true);
    node->AddKey(0, C3DMatrixKey(QuarterZ()));
    node->CenterPivotOnCG({0.5, 0.5, 0.5}, {0, 0, 0});
    const C3DTPoint<float>& far = PointOf(node->GetGeomObject(), 4);
    EXPECT_EQ(Values(far), Coordinates({4.5, 4.5, 4.5}));
    Matrix m;
    node->GetNodeTM(0, m, true);
    ExpectNear(Values(m * far), {-9, 9, 9});
    C3DTPoint<float> center;
    EXPECT_TRUE(scene->GetRoot()->GetCG(0, center));
    ExpectNear(Values(center), {-4.5, 4.5, 4.5});
    const unsigned int before = node->GetBaseObject()->GetChecksum(1);
    node->CenterPivotOnCG({0.5, 0.5, 0.5}, {0, 0, 0});    // already there
    EXPECT_EQ(node->GetBaseObject()->GetChecksum(1), before);

    // With a pivot that moves, and a sharer that is not to move.
    const C3DSceneNode* const sharer = AddSharer(*scene, nullptr, L"s", node);
    static_cast<C3DVectorKey*>(node->CreateKey(10, KEY_PIVOT, 0))->SetVector({0, 0, 8});
    std::vector<Coordinates> places;
    const auto place = [&](int time) {
        node->GetNodeTM(time, m, true);
        return Values(m * PointOf(node->GetGeomObject(), 4));
    };
    for (const int time : {0, 5, 10})
        places.push_back(place(time));
    node->CenterPivotOnCG({0.5, 0.5, 0.5}, {1, 2, 3});
    for (int i = 0; i < 3; i++)
        ExpectNear(place(5 * i), places[i]);
    EXPECT_EQ(Values(PointOf(sharer->GetGeomObject(), 4)), Coordinates({4.5, 4.5, 4.5}));
    EXPECT_FALSE(AddNode(*scene, nullptr, L"b", OBJECT_GROUP)->GetCG(0, center));
}

TEST(NodeTransforms, BakingLeavesSharersAndSmallMatricesAlone)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", 0);
    a->SetObject(CreateSquare(), true);
    C3DSceneNode* b = AddSharer(*scene, nullptr, L"b", a);
    b->AddKey(0, C3DMatrixKey(Translation(0.004f, 0, 0)));
    EXPECT_FALSE(b->ConvertToGlobalCoordinates(0));
    EXPECT_EQ(b->GetKeyNbr(KEY_ANY), 1);
    b->AddKey(0, C3DMatrixKey(Translation(5, 0, 0)));
    EXPECT_TRUE(b->ConvertToGlobalCoordinates(0));
    EXPECT_EQ(b->GetKeyNbr(KEY_ANY), 0);
    EXPECT_EQ(PointOf(b->GetGeomObject(), 0).x, 5);
    EXPECT_EQ(PointOf(a->GetGeomObject(), 0).x, 0);
    C3DTPoint<float> min, max;
    b->GetGeomObject()->GetBoundingBox(min, max, BOX_FACES);
    EXPECT_EQ(max.x, 6);

    SetVectorKey(b, KEY_PIVOT, 0, 3, 0);
    EXPECT_TRUE(b->ConvertToGlobalCoordinates(0));    // the pivot alone moves what it carries
    EXPECT_EQ(b->GetKeyNbr(KEY_ANY), 0);
    EXPECT_EQ(Values(PointOf(b->GetGeomObject(), 0)), Coordinates({5, 3, 0}));
    EXPECT_TRUE(b->ConvertToGlobalCoordinates(Translation(0, 0.004f, 0)));    // a model may be as small
    EXPECT_FLOAT_EQ(PointOf(b->GetGeomObject(), 0).y, 3.004f);
    a->AddKey(0, C3DMatrixKey(Translation(0, 0, 0.004f)));
    scene->ConvertToGlobalCoordinates(nullptr);
    EXPECT_EQ(PointOf(a->GetGeomObject(), 0).z, 0.004f);
}

TEST(NodeTransforms, AMirrorTurnsTheFacesRound)
{
    const CRef<C3DObject> object(CreateSquare());
    Matrix mirror;
    mirror.m[0][0] = -1;
    EXPECT_FALSE(object->MatrixTransform(Matrix()));
    EXPECT_TRUE(object->MatrixTransform(mirror));
    int count;
    const int* corners = object->GetFaceList()->GetIndexes(0, count);
    EXPECT_EQ(std::vector<int>(corners, corners + count), (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(PointOf(object, 1).x, -1);
}

TEST(SceneTransforms, BakingTheSceneMovesEverySharerToItsOwnPlace)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* group = AddNode(*scene, nullptr, L"g", 0);    // a carrier without object
    C3DSceneNode* a = AddNode(*scene, group, L"a", 0);
    a->SetObject(CreateSquare(), true);
    C3DSceneNode* b = AddSharer(*scene, group, L"b", a);
    group->AddKey(0, C3DMatrixKey(Translation(0, 0, 3)));
    a->AddKey(0, C3DMatrixKey(Translation(10, 0, 0)));
    b->AddKey(0, C3DMatrixKey(Translation(20, 0, 0)));
    EXPECT_EQ(scene->ConvertToGlobalCoordinates(nullptr), 0);
    EXPECT_EQ(Values(PointOf(a->GetGeomObject(), 0)), Coordinates({10, 0, 3}));
    EXPECT_EQ(Values(PointOf(b->GetGeomObject(), 0)), Coordinates({20, 0, 3}));
    for (const C3DSceneNode* node : {group, a, b})
        EXPECT_EQ(node->GetKeyNbr(KEY_ANY), 0);
}

TEST(SceneTransforms, OrientationStandsASceneUp)
{
    struct {
        const char* name;
        _UP_AXIS_MODE mode;
        Coordinates up, x;
    } const rows[] = {
        {"y up", UP_AXIS_Y, {0, 1, 0}, {1, 0, 0}},
        {"x up", UP_AXIS_X, {1, 0, 0}, {0, 0, 1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* node = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
        Matrix m;
        EXPECT_TRUE(scene->OrientScene(row.mode, true));
        node->GetNodeTM(0, m, true);
        EXPECT_EQ(Image(m, row.up[0], row.up[1], row.up[2]), Coordinates({0, 0, 1}));
        EXPECT_EQ(Image(m, 1, 0, 0), row.x);
        // The same turn as the rotation keys describe.
        Matrix keys;
        if (row.mode == UP_AXIS_Y)
            keys = C3DRotateKey(-1.5707963f, {1, 0, 0}).ToMatrix();
        else
            keys = C3DRotateKey(1.5707963f, {0, 1, 0}).ToMatrix() * C3DRotateKey(-1.5707963f, {1, 0, 0}).ToMatrix();
        ExpectNear(m, keys);
        EXPECT_TRUE(scene->OrientScene(row.mode, false));
        node->GetNodeTM(0, m, true);
        EXPECT_TRUE(m == Matrix());
    }
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    EXPECT_FALSE(scene->OrientScene(UP_AXIS_Z, true));
    EXPECT_EQ(node->GetKeyNbr(KEY_ANY), 0);
    scene->Scale({2, 3, 4});
    Matrix m;
    node->GetNodeTM(0, m, true);
    EXPECT_EQ(Image(m, 1, 1, 1), Coordinates({2, 3, 4}));
}

TEST(SceneTransforms, MergedMatrixKeysStandAtTheTimesOfBothNodes)
{
    struct {
        std::vector<int> parent, child, both;
    } const rows[] = {{{0, 10}, {5}, {0, 5, 10}}, {{}, {5, 7}, {5, 7}}, {{3}, {}, {3}}, {{}, {}, {}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.both.size());
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* const parent = AddNode(*scene, nullptr, L"p", OBJECT_GROUP);
        C3DSceneNode* const child = AddNode(*scene, parent, L"c", OBJECT_GROUP);
        for (const int time : row.parent)
            parent->AddKey(time, C3DMatrixKey(Translation(2, 0, 0)));
        for (const int time : row.child)
            static_cast<C3DVectorKey*>(child->CreateKey(time, KEY_TRANSLATE, 0))->SetVector({0, 1, 0});
        EXPECT_TRUE(scene->MergeMatrixKeyframes(parent, child));
        for (C3DSceneNode* const node : {parent, child}) {
            std::vector<int> times;
            int time;
            for (int i = 0; node->GetKeyByIndex(i, &time, KEY_MATRIX); i++)
                times.push_back(time);
            EXPECT_EQ(times, row.both);
        }
        Matrix m;
        child->GetObjectLocalTM(5, m);
        ExpectNear(Values(m.GetTranslation()), {row.parent.empty() ? 0.f : 2.f, row.child.empty() ? 0.f : 1.f, 0});
    }
}

TEST(SceneTransforms, ChildrenOfDeletedNodesStayInPlaceAtEveryKey)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_GROUP);
    C3DSceneNode* c = AddNode(*scene, b, L"c", OBJECT_DUMMY);
    AddNode(*scene, b, L"d", OBJECT_DUMMY);
    AddNode(*scene, nullptr, L"e", OBJECT_DUMMY);
    SetVectorKey(a, KEY_PIVOT, 9, 9, 9);    // no business of the children
    a->AddKey(0, C3DMatrixKey(Translation(1, 0, 0)));
    a->AddKey(10, C3DMatrixKey(QuarterZ()));
    b->AddKey(5, C3DRotateKey(1.0f, {0, 0, 1}));
    c->AddKey(0, C3DMatrixKey(Translation(0, 2, 0)));
    c->AddKey(20, C3DMatrixKey(Translation(0, 4, 0)));
    std::vector<Matrix> before(21);
    for (int time = 0; time <= 20; time++)
        c->GetNodeTM(time, before[time], true);
    a->SetFlag(NODE_SELECTED, true);
    b->SetFlag(NODE_SELECTED, true);
    const C3DFilter selected(FILTER_UNSELECTED);
    EXPECT_TRUE(scene->DeleteNodes(nullptr, &selected));
    EXPECT_EQ(Outline(*scene), L"cde");
    for (const int time : {0, 5, 10, 20}) {
        SCOPED_TRACE(time);
        Matrix after;
        c->GetNodeTM(time, after, true);
        ExpectNear(after, before[time]);
    }
}
