#include <gtest/gtest.h>

#include "scene/Curve.h"
#include "scene/SceneBuilders.h"

namespace {

using Coordinates = std::vector<float>;

Coordinates BoxOf(C3DGeomObject& object, unsigned int flags, unsigned int filter = 0, bool wanted = false)
{
    C3DTPoint<float> min, max;
    EXPECT_TRUE(object.GetBoundingBox(min, max, flags, filter, wanted));
    return {min.x, min.y, min.z, max.x, max.y, max.z};
}

Coordinates BoxOf(const C3DSceneNode* node, unsigned int flags, unsigned int value1 = 0, unsigned int value2 = 0)
{
    C3DTPoint<float> min(7, 7, 7), max(7, 7, 7);
    if (!node->GetBoundingBox(0, min, max, flags, value1, value2)) {
        EXPECT_EQ(Values(min), Coordinates({0, 0, 0}));
        EXPECT_EQ(Values(max), Coordinates({0, 0, 0}));
        return {};
    }
    return {min.x, min.y, min.z, max.x, max.y, max.z};
}

}

TEST(BoundingBox, FacesAndPointsHaveTheirOwn)
{
    const CRef<C3DObject> object(CreateSquare());
    EXPECT_EQ(BoxOf(*object, BOX_FACES), Coordinates({0, 0, 0, 1, 1, 0}));
    EXPECT_EQ(BoxOf(*object, BOX_POINTS), Coordinates({0, 0, 0, 9, 9, 9}));
    EXPECT_EQ(BoxOf(*object, BOX_FACES | BOX_POINTS), Coordinates({0, 0, 0, 1, 1, 0}));

    C3DTPoint<float> min(7, 7, 7), max(8, 8, 8);
    EXPECT_FALSE(object->GetBoundingBox(min, max, 0));
    EXPECT_EQ(Values(min), Coordinates({7, 7, 7}));
    EXPECT_FALSE(object->GetBoundingBox(min, max, BOX_POINTS | BOX_IN_NODE_SPACE));    // without a node
    object->SetFlag(OBJECT_EMPTY, true);
    EXPECT_FALSE(object->GetBoundingBox(min, max, BOX_POINTS));

    const CRef<C3DObject> bare(new C3DObject);
    EXPECT_EQ(BoxOf(*bare, BOX_POINTS), Coordinates(6, 0));      // measured: zeros, and true
    EXPECT_FALSE(bare->GetBoundingBox(min, max, BOX_POINTS));    // from the cache: there is no point list
    EXPECT_FALSE(bare->GetBoundingBox(min, max, BOX_FACES));     // without faces the points answer
    EXPECT_FALSE(bare->GetCG(min));
    EXPECT_TRUE(CRef<C3DObject>(CreateSquare())->GetCG(min));
    EXPECT_EQ(Values(min), Coordinates({4.5, 4.5, 4.5}));
}

TEST(BoundingBox, TheFirstAnswerStandsUntilAReport)
{
    // Both boxes move by one each time; which queries see it depends on the report alone.
    struct {
        const char* name;
        unsigned int report;
        bool points, faces;
    } const rows[] = {
        {"none", 0, false, false},
        {"other", CHANGE_OTHER, false, true},
        {"points", CHANGE_POINTS, true, true},
        {"faces", CHANGE_FACES, false, false},
        {"texture coordinates", CHANGE_UVW, false, true},
        {"normals", CHANGE_NORMALS, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DObject> object(CreateSquare());
        BoxOf(*object, BOX_POINTS);
        BoxOf(*object, BOX_FACES);
        EXPECT_NE(object->GetUpdateStamp(OBJECT_UPDATE_POINT_BOX), 0);
        EXPECT_NE(object->GetUpdateStamp(OBJECT_UPDATE_FACE_BOX), 0);
        for (int i = 0; i < object->GetPointNbr(); i++)
            PointOf(object, i).x += 1;
        object->Invalidate(row.report, true);
        EXPECT_EQ(BoxOf(*object, BOX_POINTS)[0], row.points ? 1 : 0);
        EXPECT_EQ(BoxOf(*object, BOX_FACES)[0], row.faces ? 1 : 0);
    }
}

TEST(BoundingBox, TheCacheDoesNotLookAtTheFilter)
{
    const CRef<C3DObject> object(CreateSquare());
    PointOf(object, 4).SetFlag(POINT_INVALID, true);
    EXPECT_EQ(BoxOf(*object, BOX_POINTS, POINT_INVALID, false)[3], 1);
    EXPECT_EQ(BoxOf(*object, BOX_POINTS)[3], 1);
    object->Invalidate(CHANGE_POINTS, true);
    EXPECT_EQ(BoxOf(*object, BOX_POINTS)[3], 9);
    EXPECT_EQ(BoxOf(*object, BOX_POINTS, POINT_INVALID, false)[3], 9);
}

TEST(BoundingBox, InNodeSpaceGoesRoundTheCache)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = AddNode(*scene, nullptr, L"a", 0);
    node->SetObject(CreateSquare(), true);
    node->AddKey(0, C3DMatrixKey(Translation(10, 0, 0)));
    C3DTPoint<float> min, max;
    ASSERT_TRUE(node->GetGeomObject()->GetBoundingBox(min, max, BOX_FACES | BOX_IN_NODE_SPACE, 0, false, node));
    EXPECT_EQ(Values(min), Coordinates({10, 0, 0}));
    EXPECT_EQ(BoxOf(*node->GetGeomObject(), BOX_FACES), Coordinates({0, 0, 0, 1, 1, 0}));
    ASSERT_TRUE(node->GetGeomObject()->GetBoundingBox(min, max, BOX_FACES | BOX_IN_NODE_SPACE, 0, false, node));
    EXPECT_EQ(Values(max), Coordinates({11, 1, 0}));
}

TEST(NodeBox, FlagsChooseTheNodesBelow)
{
    // a at x 0, b(hidden, +10) and c(selected, +20) below it, d(curve with one point, +40) below c
    const CRef<C3DScene> scene(C3DScene::Create());
    const auto add = [&](C3DSceneNode* parent, const wchar_t* name, float x) {
        C3DSceneNode* node = AddNode(*scene, parent, name, 0);
        node->SetObject(CreateSquare(), true);
        node->AddKey(0, C3DMatrixKey(Translation(x, 0, 0)));
        return node;
    };
    C3DSceneNode* a = add(nullptr, L"a", 0);
    C3DSceneNode* b = add(a, L"b", 10);
    C3DSceneNode* c = add(a, L"c", 20);
    C3DPointList* point = C3DPointList::Create(nullptr);
    point->SetSize(1);
    C3DSceneNode* d = AddNode(*scene, c, L"d", 0);
    d->SetObject(new C3DCurve(point, nullptr, nullptr), true);
    d->AddKey(0, C3DMatrixKey(Translation(40, 0, 0)));
    b->SetFlag(NODE_HIDDEN, true);
    c->SetFlag(NODE_SELECTED, true);

    struct {
        const char* name;
        const C3DSceneNode* node;
        unsigned int flags, value1, value2;
        Coordinates x;
    } const rows[] = {
        {"all", a, BOX_FACES, 0, 0, {0, 60}},
        {"this node alone", a, BOX_FACES | BOX_NODE_ONLY, 0, 0, {0, 1}},
        {"a node without geometry alone", scene->GetRoot(), BOX_FACES | BOX_NODE_ONLY, 0, 0, {}},
        {"no hidden ones, none else of that kind", scene->GetRoot(), BOX_FACES | BOX_SKIP_HIDDEN | BOX_KINDS, 0, OBJECT_POLYGONAL, {0, 21}},
        {"own flags do not count", b, BOX_FACES | BOX_SKIP_HIDDEN, 0, 0, {10, 11}},
        {"selected", scene->GetRoot(), BOX_FACES | BOX_SELECTED_ONLY, 0, 0, {20, 21}},
        {"with a node flag, not alone", scene->GetRoot(), BOX_FACES | BOX_NODE_FLAGS | BOX_NODE_ONLY, NODE_SELECTED, 0, {20, 21}},
        {"kinds", scene->GetRoot(), BOX_FACES | BOX_KINDS, 0, OBJECT_CURVE, {60, 60}},
        {"other kinds", scene->GetRoot(), BOX_FACES | BOX_NOT_KINDS, 0, OBJECT_POLYGONAL, {60, 60}},
        {"nothing", scene->GetRoot(), BOX_FACES | BOX_KINDS, 0, OBJECT_LIGHT, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Coordinates box = BoxOf(row.node, row.flags, row.value1, row.value2);
        EXPECT_EQ(box.empty() ? box : Coordinates({box[0], box[3]}), row.x);
    }
    C3DTPoint<float> min(7, 7, 7), max;
    EXPECT_FALSE(Null<C3DSceneNode>()->GetBoundingBox(0, min, max, BOX_FACES));
    EXPECT_FALSE(a->GetBoundingBox(0, min, max, BOX_SKIP_HIDDEN));
    EXPECT_EQ(Values(min), Coordinates({7, 7, 7}));
}

TEST(NodeBox, IsTheBoxOfATransformedBox)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = AddNode(*scene, nullptr, L"a", 0);
    const float triangle[] = {0, 0, 0, 1, 1, 0, 1, 0, 0};
    const int corners[] = {0, 1, 2};
    node->SetObject(CreateObjectFromArrays(triangle, sizeof triangle, corners, sizeof corners, nullptr, 0), true);
    C4x4TMatrix<float> turn;    // an eighth of a turn about z, exact to the digits compared
    const float s = 0.70710678f;
    turn.m[0][0] = turn.m[1][1] = s;
    turn.m[0][1] = -s;
    turn.m[1][0] = s;
    node->AddKey(0, C3DMatrixKey(turn));
    const Coordinates box = BoxOf(node, BOX_FACES);
    EXPECT_FLOAT_EQ(box[0], -s);    // the corner (0,1) of the box, which no point has
    EXPECT_FLOAT_EQ(box[3], s);
    EXPECT_FLOAT_EQ(box[4], 2 * s);
}
