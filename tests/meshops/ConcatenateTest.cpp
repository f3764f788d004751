#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/ObjectCase.h"
#include "scene/3DScene.h"
#include "scene/Curve.h"
#include "scene/Filter.h"

namespace {

using Objects = CXArray<C3DGeomObject*, C3DGeomObject*>;

Owned<C3DObject> Empty() { return ObjectOf(Mesh()); }
/// Passes the faces of one number.
class OneFace : public C3DFilter {
public:
    explicit OneFace(unsigned int face) : m_face(face) {}
    using C3DFilter::ProcessNode;
    bool ProcessFace(const C3DBaseObject*, const C3DFace* face) const override { return face->GetFaceIndex() == m_face; }

private:
    unsigned int m_face;
};

}

TEST(Concatenate, ChannelsJoinByPlaceAndStayInStep)
{
    Owned<C3DScene> scene(C3DScene::Create());
    C3DMaterial* material = scene->CreateNewMaterial(NO_MATERIAL);
    material->AddMaterialMap(L"a.png", 22, MAP_DIFFUSE, PROJECTION_UVW);

    Owned<C3DObject> plain = ObjectOf(Cube()), first = ObjectOf(Cube()), second = ObjectOf(BowTie());
    AddCornerUVW(*first, 11, 100);
    AddCornerUVW(*second, 22, 200);
    AddCornerUVW(*second, 33, 300);
    auto* weights = new CWeightChannel(5, true);
    weights->GetPointList()->SetSize(5);
    (*weights->GetWeightPointList())[4]->SetWeight(7);
    second->AddChannel(weights);
    second->SetGlobalUVWChannel(22);
    for (unsigned int face = 0; face < 2; face++)
        second->GetFaceList()->SetFaceMaterial(face, material->GetMaterialID());

    Objects sources;
    for (C3DGeomObject* object : {static_cast<C3DGeomObject*>(plain.get()), static_cast<C3DGeomObject*>(nullptr),
                                  static_cast<C3DGeomObject*>(first.get()), static_cast<C3DGeomObject*>(second.get())})
        sources.Add(object);
    Owned<C3DObject> all = Empty();
    ASSERT_TRUE(all->Concatenate(scene.get(), sources, nullptr));
    CheckInStep(*all);
    EXPECT_EQ(all->GetPointNbr(), 21);
    EXPECT_EQ(all->GetFaceNbr(), 14);
    EXPECT_EQ(Corners(*all->GetFaceList(), 13), (std::vector<int>{18, 19, 20}));

    // One channel for 11 and 22. It has the id of the last source, whose channel came first into an empty destination.
    ASSERT_EQ(all->GetChannels()->GetSize(), 3);
    auto* uvw = static_cast<CUVWChannel*>(all->GetChannelByID(22, CHANNEL_UVW));
    ASSERT_TRUE(uvw);
    EXPECT_TRUE(uvw->GetFaceList()->IsFaceFlagSet(5, FACE_EMPTY));
    EXPECT_EQ(UsOf(*uvw, 6), (std::vector<float>{100, 101, 102, 103}));
    EXPECT_EQ(UsOf(*uvw, 13), (std::vector<float>{203, 204, 205}));
    auto* other = static_cast<CUVWChannel*>(all->GetChannelByID(33, CHANNEL_UVW));
    EXPECT_EQ(UsOf(*other, 12), (std::vector<float>{300, 301, 302}));
    EXPECT_TRUE(other->GetFaceList()->IsFaceFlagSet(6, FACE_EMPTY));
    auto* joined = static_cast<CWeightChannel*>(all->GetChannelByID(5, CHANNEL_WEIGHT));
    EXPECT_EQ((*joined->GetWeightPointList())[20]->GetWeight(), 7);
    EXPECT_EQ(all->GetGlobalUVWChannel(), 22u);
    EXPECT_EQ(material->GetDiffuseMaps()->GetChannelID(), 22u);

    // Once more behind what is there: channel 11 becomes 22 wherever it is named.
    material->GetDiffuseMaps()->SetChannelID(11);
    first->GetFaceList()->SetFaceMaterial(0, material->GetMaterialID());
    Objects again;
    again.Add(first.get());
    ASSERT_TRUE(all->Concatenate(scene.get(), again, nullptr));
    CheckInStep(*all);
    EXPECT_EQ(all->GetFaceNbr(), 20);
    EXPECT_EQ(UsOf(*uvw, 14), (std::vector<float>{100, 101, 102, 103}));
    EXPECT_EQ(material->GetDiffuseMaps()->GetChannelID(), 22u);
}

TEST(Concatenate, TakesWhatTheFilterPassesAndNothingElse)
{
    Owned<C3DObject> cube = ObjectOf(Cube());
    AddCornerUVW(*cube, 11);
    Objects sources;
    sources.Add(cube.get());
    sources.Add(cube.get());
    const struct {
        unsigned int face;
        int faces, points;
    } rows[] = {{3, 2, 8}, {99, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.face);
        Owned<C3DObject> all = Empty();
        const OneFace filter(row.face);
        EXPECT_EQ(all->Concatenate(nullptr, sources, &filter), row.faces > 0);
        EXPECT_EQ(all->GetFaceNbr(), row.faces);
        EXPECT_EQ(all->GetPointNbr(), row.points);
        CheckInStep(*all);
        if (row.faces) {
            EXPECT_EQ(AllCorners(*all->GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 3, 2}, {4, 5, 7, 6}}));
            EXPECT_EQ(UsOf(static_cast<CUVWChannel&>(*all->GetChannels()->GetAt(0)), 1), (std::vector<float>{12, 13, 14, 15}));
        } else {
            EXPECT_EQ(all->GetChannels()->GetSize(), 0);
        }
    }
    Owned<C3DCurve> curve(new C3DCurve(C3DPointList::Create(), nullptr, nullptr));
    curve->GetPointList()->SetSize(3);
    Objects curves;
    curves.Add(curve.get());
    Owned<C3DObject> none = Empty();
    EXPECT_FALSE(none->Concatenate(nullptr, curves, nullptr));
}

namespace {

/// The u of a face's first corner in the channel that the diffuse map of its material names; -1 for none.
float ShownU(const C3DScene& scene, C3DGeomObject& object, unsigned int face)
{
    const C3DMaterial* material = scene.GetMaterialByID(object.GetFaceList()->GetFaceMaterial(face));
    const auto* channel = static_cast<CUVWChannel*>(object.GetChannelByID(material->GetDiffuseMaps()->GetChannelID(), CHANNEL_UVW));
    const std::vector<float> us = channel ? UsOf(*channel, static_cast<int>(face)) : std::vector<float>();
    return us.empty() ? -1 : us[0];
}

}

// Faults in mind: a channel that comes in has an id that another one has already; a material is renamed for one object and shared with
// another; objects that stay in the scene no longer find their coordinates.
TEST(Concatenate, FacesKeepTheCoordinatesThatTheirMaterialsName)
{
    enum Way { BARE, STAYS, REPLACED };
    const struct {
        const char* name;
        std::vector<unsigned int> ids[2];    // of the channels of two objects
        unsigned int named[2];               // by their materials
        bool share;                          // one material
    } rows[] = {
        {"taken at another place", {{0, 1, 5}, {0, 5}}, {5, 5}, false},
        {"the other way round", {{0, 5}, {5, 0}}, {5, 0}, false},
        {"one place, two ids", {{5}, {7}}, {5, 7}, false},
        {"one material, other places", {{0, 1, 5}, {0, 5}}, {5, 5}, true},
        {"one material, other way round", {{0, 5}, {5, 0}}, {5, 5}, true},
    };
    for (const auto& row : rows)
        for (const Way way : {BARE, STAYS, REPLACED}) {
            SCOPED_TRACE(row.name + std::to_string(way));
            Owned<C3DScene> scene(C3DScene::Create());
            Objects sources;
            C3DMaterial* materials[2] = {scene->CreateNewMaterial(NO_MATERIAL), scene->CreateNewMaterial(NO_MATERIAL)};
            float shown[2];
            for (int i = 0; i < 2; i++) {
                C3DObject* object = ObjectOf(Cube()).release();
                for (std::size_t k = 0; k < row.ids[i].size(); k++) {
                    AddCornerUVW(*object, row.ids[i][k], 1000.0f * i + 100.0f * k);
                    if (row.ids[i][k] == row.named[i])
                        shown[i] = 1000.0f * i + 100.0f * k;
                }
                materials[i]->AddMaterialMap(L"a.png", row.named[i], MAP_DIFFUSE, PROJECTION_UVW);
                for (unsigned int face = 0; face < 6; face++)
                    object->GetFaceList()->SetFaceMaterial(face, materials[row.share ? 0 : i]->GetMaterialID());
                sources.Add(object);
                C3DSceneNode* node = C3DSceneNode::Create();
                node->SetObject(object, true);
                scene->AddNode(nullptr, node);
            }
            Owned<C3DObject> bare = Empty();
            C3DGeomObject* all = bare.get();
            C3DSceneNode* node = nullptr;
            if (way == BARE)
                ASSERT_TRUE(all->Concatenate(scene.get(), sources, nullptr));
            else {
                node = scene->Concatenate(nullptr, L"all", nullptr, way == REPLACED, nullptr, false);
                all = node->GetGeomObject();
            }
            CheckInStep(*all);
            for (CChannel* channel : *all->GetChannels())
                EXPECT_EQ(all->GetChannelByID(channel->GetChannelID(), CHANNEL_UVW), channel);
            for (unsigned int i = 0; i < 2; i++) {
                EXPECT_EQ(ShownU(*scene, *all, 6 * i), shown[i]);
                if (way == STAYS) {
                    EXPECT_EQ(ShownU(*scene, *sources[i], 0), shown[i]);
                    EXPECT_EQ(materials[i]->GetDiffuseMaps()->GetChannelID(), row.named[i]);
                }
            }
            if (way == STAYS)
                node->Delete();
        }
}

namespace {

/// A scene of three cubes: one under the root, moved by 10; below it one moved by 5 more, which shares the object; beside them a hidden
/// one. The second face of the shared object has material 7.
struct ThreeCubes {
    Owned<C3DScene> scene{C3DScene::Create()};
    C3DSceneNode *top, *below, *hidden;

    ThreeCubes()
    {
        scene->CreateNewMaterial(7)->SetName(L"seven");
        top = Add(nullptr, ObjectOf(Cube()).release(), 10);
        top->GetGeomObject()->GetFaceList()->SetFaceMaterial(1, 7);
        below = Add(top, scene->CreateObjectInstance(top->GetBaseObject()), 5);
        hidden = Add(nullptr, ObjectOf(Cube()).release(), 100);
        hidden->SetFlag(NODE_HIDDEN, true);
    }
    C3DSceneNode* Add(C3DSceneNode* parent, C3DBaseObject* object, float x)
    {
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetObject(object, true);
        C4x4TMatrix<float> matrix;
        matrix.SetTranslation(x, 0, 0);
        static_cast<C3DMatrixKey*>(node->CreateKey(0, KEY_MATRIX, 0))->SetMatrix(matrix);
        scene->AddNode(parent, node);
        return node;
    }
};

std::pair<float, float> ExtentX(C3DSceneNode& node)
{
    C3DTPoint<float> min, max;
    node.GetBoundingBox(0, min, max, BOX_FACES);
    return {min.x, max.x};
}

}

TEST(ConcatenateScene, BakesTransformsOfParentsAndChildren)
{
    for (const bool replace : {false, true}) {
        SCOPED_TRACE(replace);
        ThreeCubes cubes;
        C3DSceneNode* node = cubes.scene->Concatenate(cubes.top, L"all", nullptr, replace, nullptr, true);
        ASSERT_TRUE(node);
        EXPECT_EQ(node->GetGeomObject()->GetPointNbr(), 16);
        EXPECT_EQ(ExtentX(*node), std::make_pair(9.0f, 16.0f));
        CheckInStep(*node->GetGeomObject());
        if (replace) {
            EXPECT_EQ(node->GetParent(), cubes.scene->GetRoot());
            EXPECT_EQ(cubes.scene->GetChildCount(nullptr, OBJECT_ANY), 2);
        } else {
            EXPECT_EQ(node->GetParent(), nullptr);
            EXPECT_EQ(ExtentX(*cubes.top), std::make_pair(9.0f, 16.0f));    // as it was
            EXPECT_TRUE(cubes.top->GetBaseObject()->IsInstanciated());
            node->Delete();
        }
    }
    ThreeCubes cubes;
    C3DSceneNode* node = cubes.scene->Concatenate(nullptr, L"all", nullptr, true, nullptr, false);
    ASSERT_TRUE(node);
    EXPECT_EQ(ExtentX(*node), std::make_pair(9.0f, 16.0f));    // the hidden one is left out, and goes
    EXPECT_EQ(cubes.scene->GetChildCount(nullptr, OBJECT_ANY), 1);
    EXPECT_EQ(cubes.scene->Concatenate(node, L"none", nullptr, false, nullptr, false), nullptr);
}

TEST(ConcatenateScene, OneObjectAMaterial)
{
    ThreeCubes cubes;
    EXPECT_EQ(cubes.scene->ConcatenateByMaterials(nullptr, true, nullptr), 2);
    ASSERT_EQ(cubes.scene->GetChildCount(nullptr, OBJECT_ANY), 2);
    int faces = 0;
    for (C3DNodePos pos = cubes.scene->GetFirstNode(OBJECT_ANY); pos;) {
        C3DSceneNode* node = cubes.scene->GetNextNode(pos);
        const C3DFaceList& list = *node->GetGeomObject()->GetFaceList();
        const bool seven = node->GetName() == CXTString<wchar_t>(L"seven");
        EXPECT_EQ(list.GetSize(), seven ? 2 : 10);
        for (unsigned int face = 0; face < static_cast<unsigned int>(list.GetSize()); face++)
            EXPECT_EQ(list.GetFaceMaterial(face), seven ? 7u : 0u);
        CheckInStep(*node->GetGeomObject());
        faces += list.GetSize();
    }
    EXPECT_EQ(faces, 12);
}
