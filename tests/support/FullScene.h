#pragma once

#include <limits>

#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/UVWPointList.h"
#include "channels/VCChannel.h"
#include "channels/VCPointList.h"
#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "scene/Curve.h"
#include "scene/Light.h"
#include "scene/Patch.h"
#include "support/RandomMesh.h"

/// A small scene that holds something of everything that a scene can hold. The same seed gives the same scene, ids apart.
class CFullScene {
public:
    explicit CFullScene(unsigned int seed) : m_random(seed), m_scene(C3DScene::Create()) {}
    C3DScene* Create()
    {
        AddParameters();
        AddMaterials();
        C3DSceneNode* const group = AddNode(nullptr, L"group", C3DBaseObject::Create(OBJECT_GROUP));
        C3DSceneNode* const mesh = AddNode(group, L"mesh", CreateMesh());
        AddNode(mesh, L"with channels alone", new C3DObject);
        C3DSceneNode* const animated = AddNode(group, L"animated \u00e9\u4e16\U0001F600", C3DBaseObject::Create(OBJECT_DUMMY));
        AddKeys(*animated);
        AddNode(nullptr, L"without object", nullptr);
        AddNode(nullptr, L"patch", CreatePatch());
        AddNode(nullptr, L"curve", CreateCurve());
        AddNode(AddNode(nullptr, L"camera", CreateCamera()), L"light", CreateLight());
        for (C3DSceneNode* const parent : {animated, group, static_cast<C3DSceneNode*>(nullptr)})
            AddNode(parent, L"instance", m_scene->CreateObjectInstance(mesh->GetBaseObject()))->SetFlag(NODE_HIDDEN, parent != nullptr);
        m_scene->GetRoot()->AddKey(0, C3DTranslateKey());
        AddValues(m_scene->GetRoot()->GetCustomData());
        return m_scene;
    }

    /// A value of every type that is stored, and bags in bags.
    static void AddValues(CCustomData& bag)
    {
        AddPlainValues(bag);
        CCustomData nested;
        AddPlainValues(nested);
        nested.MakeCustomData(1).MakeCustomData(2).SetInt(3, 4);
        bag.SetCustomData(FourCC("BAGS"), nested);
        bag.SetPointer(FourCC("PNTR"), &bag);    // is left out
    }

private:
    static void AddPlainValues(CCustomData& bag)
    {
        bag.SetBool(1, true);
        bag.SetInt(1, -5);
        bag.SetUnsigned(1, 0xFFFFFFFF);
        bag.SetInt64(2, std::numeric_limits<std::int64_t>::min());
        bag.SetUnsigned64(2, std::numeric_limits<std::uint64_t>::max());
        bag.SetFloat(3, std::numeric_limits<float>::quiet_NaN());
        bag.SetDouble(3, -0.0);
        bag.SetString(4, L"text \u20ac");
        bag.SetString(5, L"");
        CXArray<CXTString<wchar_t>> texts;
        texts.Add(L"one");
        texts.Add(L"");
        bag.SetStringArray(6, texts);
        bag.SetData(7, "\0\1\2", 3);
        bag.SetData(8, nullptr, 0);
        bag.SetColor(9, CRGBColor(1, 2, 3, 4));
    }
    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_random); }
    float Fraction() { return static_cast<float>(Below(1000)) / 999; }

    void AddParameters()
    {
        AddValues(m_scene->GetCustomData());
        m_scene->SetUnit(UNIT_METER);
        m_scene->SetScaleFactor(2.5);
        m_scene->SetSmoothAngle(0.7f, false);
    }
    void AddMaterials()
    {
        m_scene->GetMaterialByID(0);
        m_scene->CreateNewMaterial(7)->SetFlags(MATERIAL_HIDDEN | MATERIAL_NAME_CHANGED, true);
        C3DMaterial& material = *m_scene->CreateNewMaterial(NO_MATERIAL);
        material.SetName(L"all of it");
        for (const unsigned int time : {0u, 5u, 10u}) {
            material.SetDiffuseColor(time, CRGBColor(static_cast<unsigned char>(Below(256)), 2, 3, 255));
            material.SetTransparencyFactor(time, Fraction());
        }
        material.SetVertexColor(0, 77, 0.5f);
        AddValues(material.GetCustomData());
        for (const MapType type : {MAP_DIFFUSE, MAP_AMBIENT, MAP_SPECULAR, MAP_TRANSPARENCY, MAP_BUMP}) {
            CMaterialMap& map = *material.AddMaterialMap(L"image.png", 70 + type, type, static_cast<MapProjection>(1 + type % 5));
            map.SetAxis(static_cast<MapAxis>(type % 3));
            map.SetAlphaFileName(L"alpha.png", L"");
            map.SetFlag(MAP_NO_ALPHA_TEST, type % 2);
            map.SetTranslation(3, C3DTVector<float>(Fraction(), 1, 2));
            map.SetTile(0, C3DTVector<float>(2, 3, 1));
            AddValues(map.GetCustomData());
        }
        m_material = material.GetMaterialID();
    }

    C3DSceneNode* AddNode(C3DSceneNode* parent, const wchar_t* name, C3DBaseObject* object)
    {
        C3DSceneNode* const node = C3DSceneNode::Create();
        node->SetName(name);
        node->SetObject(object, true);
        node->SetFlag(NODE_SELECTED, Below(2));
        if (object && object->GetInstanceCount() == 1)
            AddValues(object->GetCustomData());
        m_scene->AddNode(parent, node);
        return node;
    }
    void AddKeys(C3DSceneNode& node)
    {
        C4x4TMatrix<float> matrix;
        matrix.m[0][1] = Fraction();
        matrix.m[3][3] = 2;
        C3DTranslateKey translation;
        C3DTVector<float> vector(1, Fraction(), std::numeric_limits<float>::infinity());
        vector.flags = POINT_3D_CORNER;
        translation.SetVector(vector);
        C3DTCBCurve curve;
        for (float& value : curve.values)
            value = Fraction();
        for (const int time : {10, -10, 0}) {
            node.AddKey(time, translation);
            node.AddKey(time, C3DMatrixKey(matrix));
            node.AddKey(time, C3DRotateKey(Fraction(), C3DTVector<float>(0, Fraction(), 1)));
            node.AddKey(time, C3DScaleKey());
            node.AddKey(time, C3DVectorKey(KEY_PIVOT));
            node.AddKey(time, C3DTypeKey<int>(KeyClassID(KEY_TYPE_INT, 1), -Below(100)));
            node.AddKey(time, C3DTypeKey<unsigned int>(KeyClassID(KEY_TYPE_UNSIGNED, 1), 0x80000000u));
            node.AddKey(time, C3DTypeKey<float>(KeyClassID(KEY_TYPE_FLOAT, 1), std::numeric_limits<float>::quiet_NaN()));
            node.AddKey(time, C3DTypeKey<double>(KeyClassID(KEY_TYPE_DOUBLE, 1), 1e300));
            node.AddKey(time, C3DTypeKey<CRGBColor>(KeyClassID(KEY_TYPE_COLOR, 1), CRGBColor(4, 3, 2, 1)));
        }
        for (int i = 0; i < node.GetKeyNbr(KEY_ANY); i += 2) {
            C3DKeyframe& key = *node.GetKeyByIndex(static_cast<unsigned int>(i), nullptr, KEY_ANY);
            key.SetKeyCurve(curve);
            AddValues(key.GetCustomData());
        }
    }

    /// Polygons of all sizes, dead and empty ones, with gaps in the pool of corners, all kinds of side data and of channels.
    C3DObject* CreateMesh()
    {
        RandomMesh random(m_random());
        while (random.FaceCount() < 5)
            random = RandomMesh(m_random());
        C3DFaceList& faces = *random.mesh.faces;
        CFace face;
        faces.GetFace(1, face);
        face.SetSize(40);    // moves to the end of the pool
        for (int i = 0; i < 40; i++)
            face.SetAt(i, i % random.pointCount);
        face.SetSize(5);
        faces.SaveFacesIndex();
        faces.SetFaceMaterial(0, m_material);
        faces.SetBackFaceMaterial(2, 7);
        faces.SetFlag(FACELIST_STORED, true);
        C3DPointList& points = *random.mesh.points;
        points.SavePointsIndex();
        for (int i = 0; i < points.GetSize(); i++)
            points[i]->x = Fraction(), points[i]->z = Fraction(), points[i]->flags = i % 3 ? 0u : POINT_2D_CORNER;

        auto* const object = new C3DObject(std::exchange(random.mesh.points, nullptr), std::exchange(random.mesh.faces, nullptr), nullptr);
        object->SetSmoothAngle(0.4f);
        object->SetFaceMode(FACE_MODE_TWO_SIDED);
        object->SetFlag(OBJECT_WIREFRAME_ONLY, true);
        AddChannels(*object);
        object->SetGlobalUVWChannel(71);
        object->SetGlobalVCChannel(77, 0.25f);
        return object;
    }
    /// Each corner a number of its own, except in the faces that stay without data.
    int NumberCorners(CChannel& channel, const C3DFaceList& faces)
    {
        int next = 0;
        channel.GetFaceList()->AppendCopies(faces, nullptr, faces.GetSize(), [&](int) { return next++; });
        channel.GetPointList()->SetSize(next, false, 0);
        AddValues(channel.GetCustomData());
        return next;
    }
    void AddChannels(C3DObject& object)
    {
        const C3DFaceList& faces = *object.GetFaceList();
        auto* const uvw = new CUVWChannel(71);
        for (int i = NumberCorners(*uvw, faces); i-- > 0;)
            (*uvw->GetUVWPointList())[i]->u = Fraction();
        auto* const colours = new CVCChannel(77);
        for (int i = NumberCorners(*colours, faces); i-- > 0;)
            (*colours->GetVCPointList())[i]->SetColor(CRGBColor(static_cast<unsigned char>(Below(256)), 1, 2, 3));
        auto* const perCorner = new CWeightChannel(78, false);
        for (int i = NumberCorners(*perCorner, faces); i-- > 0;)
            (*perCorner->GetWeightPointList())[i]->SetWeight(Fraction());
        auto* const perPoint = new CWeightChannel(79, true);
        perPoint->GetPointList()->SetSize(object.GetPointNbr(), false, 0);
        (*perPoint->GetWeightPointList())[0]->SetWeight(0.125f);
        auto* const normals = new CSpecNormalChannel(80);
        NumberCorners(*normals, faces);
        normals->SetFlag(CHANNEL_STALE, false);
        auto* const unfilled = new CUVWChannel(72);
        for (CChannel* const channel :
             {static_cast<CChannel*>(uvw), static_cast<CChannel*>(colours), static_cast<CChannel*>(perCorner),
              static_cast<CChannel*>(perPoint), static_cast<CChannel*>(normals), static_cast<CChannel*>(unfilled)})
            object.AddChannel(channel);
        object.GetPointNormalChannel();    // are left out
        object.GetFaceNormalChannel();
    }
    static C3DPatch* CreatePatch()
    {
        Mesh cage = Cube();
        auto* const patch = new C3DPatch(std::exchange(cage.points, nullptr), std::exchange(cage.faces, nullptr), nullptr);
        patch->SetLevel(1);
        return patch;
    }
    C3DCurve* CreateCurve()
    {
        C3DPointList* const points = C3DPointList::Create(nullptr);
        points->SetSize(5);
        for (int i = 0; i < 5; i++)
            (*points)[i]->y = Fraction();
        auto* const curve = new C3DCurve(points, nullptr, nullptr);
        curve->SetMaterialID(m_material);
        return curve;
    }
    static C3DBaseObject* CreateCamera()
    {
        auto* const camera = new C3DCamera;
        camera->GetFinalObject(false);    // is left out
        return camera;
    }
    static C3DBaseObject* CreateLight()
    {
        auto* const light = new C3DLight;
        light->SetLightKind(LIGHT_SPOT);
        light->SetOuterAngle(0.3);
        light->SetColor(CRGBColor(255, 0, 10, 255));
        return light;
    }

    std::mt19937 m_random;
    C3DScene* m_scene;
    unsigned int m_material = 0;
};

/// The caller's.
inline C3DScene* CreateFullScene(unsigned int seed = 1) { return CFullScene(seed).Create(); }
