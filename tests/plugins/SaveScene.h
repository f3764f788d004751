#pragma once

#include <cmath>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <3dzel.h>

#include "support/Owned.h"

/// A scene with something of everything that formats hold: two boxes of one object below a turned group, with given normals, seams of texture
/// coordinates, colours, two materials and an image; keys; bones; a camera and a light.
class SaveScene {
public:
    explicit SaveScene(const CXTString<wchar_t>& image) : m_scene(C3DScene::Create()), m_image(image) {}

    Owned<C3DScene> Build()
    {
        m_scene->SetUnit(UNIT_METER);
        m_scene->SetScaleFactor(100);
        m_scene->GetCustomData().SetDouble(SCENE_FRAME_RATE, 24);
        C3DSceneNode& group = Add(nullptr, L"group", C3DBaseObject::Create(OBJECT_GROUP));
        C4x4TMatrix<float> turn;
        turn.m[0][0] = 0, turn.m[0][1] = -1, turn.m[1][0] = 1, turn.m[1][1] = 0;
        Place(group, turn, 3, 0, 1);
        C3DSceneNode& hip = Add(&group, L"hip", C3DBaseObject::Create(OBJECT_DUMMY));
        C3DSceneNode& knee = Add(&hip, L"knee", C3DBaseObject::Create(OBJECT_DUMMY));
        AddKeys(knee);
        C3DSceneNode& box = Add(&group, L"box", Box());
        Place(Add(&group, L"twin", m_scene->CreateObjectInstance(box.GetBaseObject())), {}, 0, 5, 0);
        auto* const camera = new C3DCamera;
        Place(Add(nullptr, L"eye", camera), turn, 0, -9, 2);
        auto* const light = new C3DLight;
        light->SetLightKind(LIGHT_SPOT);
        Place(Add(nullptr, L"lamp", light), {}, 1, 2, 8);
        return Owned<C3DScene>(m_scene);
    }

private:
    C3DSceneNode& Add(C3DSceneNode* parent, const wchar_t* name, C3DBaseObject* object)
    {
        C3DSceneNode* const node = C3DSceneNode::Create();
        node->SetName(name);
        node->SetObject(object, true);
        m_scene->AddNode(parent, node);
        return *node;
    }
    static void Place(C3DSceneNode& node, C4x4TMatrix<float> matrix, float x, float y, float z)
    {
        matrix.m[0][3] = x, matrix.m[1][3] = y, matrix.m[2][3] = z;
        static_cast<C3DMatrixKey*>(node.CreateKey(0, KEY_MATRIX, KEY_KEEP_DEFAULT))->SetMatrix(matrix);
    }
    static void AddKeys(C3DSceneNode& node)
    {
        for (const int time : {0, 12, 24}) {
            C3DTranslateKey translation;
            translation.SetVector({static_cast<float>(time) / 8, 1, 0});
            node.AddKey(time, translation);
            node.AddKey(time, C3DRotateKey(static_cast<float>(time) / 30, C3DTVector<float>(0, 0, 1)));
        }
    }

    C3DObject* Box()
    {
        static const int CORNERS[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
        static const float NORMALS[6][3] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
        C3DPointList* const points = C3DPointList::Create();
        points->SetSize(8, false, 0);
        for (int i = 0; i < 8; i++)
            (*points)[i]->x = i % 4 == 1 || i % 4 == 2, (*points)[i]->y = i % 4 > 1, (*points)[i]->z = static_cast<float>(i / 4 * 2);
        C3DFaceList* const faces = C3DFaceList::Create(nullptr);
        faces->AppendFaces(6, 4, CORNERS[0]);
        auto* const object = new C3DObject(points, faces, nullptr);

        const auto quads = [](CFaceList& of, auto number) {
            of.AppendFaces(6, 4, [number](int* corners, unsigned int face) {
                for (int k = 0; k < 4; k++)
                    corners[k] = number(static_cast<int>(face), k);
            });
        };
        auto* const normals = new CSpecNormalChannel;
        quads(*normals->GetFaceList(), [](int face, int) { return face; });
        normals->GetPointList()->SetSize(6, false, 0);
        for (int i = 0; i < 6; i++)
            for (int c = 0; c < 3; c++)
                (*normals->GetNormalVectorList())[i]->ValPtr()[c] = NORMALS[i][c];
        object->AddChannel(normals);

        auto* const coordinates = new CUVWChannel(1);
        quads(*coordinates->GetFaceList(), [](int, int k) { return k; });
        coordinates->GetPointList()->SetSize(4, false, 0);
        for (int i = 0; i < 4; i++)
            (*coordinates->GetUVWPointList())[i]->u = i == 1 || i == 2 ? 0.75f : 0.25f, (*coordinates->GetUVWPointList())[i]->v = i > 1;
        object->AddChannel(coordinates);

        auto* const colors = new CVCChannel(101);
        quads(*colors->GetFaceList(), [](int face, int) { return face / 3; });
        colors->GetPointList()->SetSize(2, false, 0);
        (*colors->GetVCPointList())[0]->SetColor(CRGBColor(255, 0, 0));
        (*colors->GetVCPointList())[1]->SetColor(CRGBColor(0, 128, 255));
        object->AddChannel(colors);
        object->SetGlobalVCChannel(101, 1);

        for (const wchar_t* bone : {L"hip", L"knee"}) {
            auto* const weights = new CWeightChannel;
            weights->GetPointList()->SetSize(8, false, 0);
            for (int i = 0; i < 8; i++)
                (*weights->GetWeightPointList())[i]->SetWeight((i < 4) == (*bone == L'h') ? 1.0f : 0.0f);
            weights->GetCustomData().SetString(WEIGHT_BONE_NAME, bone);
            object->AddChannel(weights);
        }
        AddMaterials(*faces);
        return object;
    }
    void AddMaterials(C3DFaceList& faces)
    {
        C3DMaterial& brick = *m_scene->CreateNewMaterial(NO_MATERIAL);
        brick.SetName(L"brick");
        brick.SetDiffuseColor(0, CRGBColor(204, 102, 51));
        brick.AddMaterialMap(m_image, 1, MAP_DIFFUSE, PROJECTION_UVW);
        C3DMaterial& glass = *m_scene->CreateNewMaterial(NO_MATERIAL);
        glass.SetName(L"glass");
        glass.SetDiffuseColor(0, CRGBColor(51, 102, 204));
        glass.SetTransparencyFactor(0, 0.6f);
        for (unsigned int i = 0; i < 6; i++)
            faces.SetFaceMaterial(i, (i < 2 ? glass : brick).GetMaterialID());
    }

    C3DScene* m_scene;
    CXTString<wchar_t> m_image;
};

/// What the corners of a scene show, in scene space: one text for each different corner of its polygon objects. Faces may be split and points
/// be numbered anew.
class SceneCorners {
public:
    enum Layer : unsigned int { PLACES = 0, NORMALS = 1, COORDINATES = 2, COLORS = 4, MATERIALS = 8, SHADES = 16, MAPS = 32 };

    static std::set<std::string> Of(C3DScene& scene, unsigned int layers)
    {
        std::set<std::string> corners;
        for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL); pos;) {
            C3DGeomObject* object;
            C3DSceneNode* const node = scene.GetNextNode(object, pos);
            C4x4TMatrix<float> matrix;
            node->GetNodeTM(0, matrix, true);
            for (int face = 0; face < object->GetFaceNbr(); face++)
                AddFace(scene, *object, matrix, face, layers, corners);
        }
        return corners;
    }

private:
    static void AddFace(C3DScene& scene, C3DGeomObject& object, const C4x4TMatrix<float>& matrix, int face, unsigned int layers,
                        std::set<std::string>& corners)
    {
        int count;
        const int* const points = object.GetFaceList()->GetIndexes(static_cast<unsigned int>(face), count);
        for (int k = 0; k < count; k++) {
            std::string text;
            const C3DTPoint<float> place = matrix * *object.GetPointList()->ElementAt(points[k]);
            Append(text, {place.x, place.y, place.z}, 61.8034f);    // round numbers lie between two
            if (layers & NORMALS)
                AppendNormal(text, object, matrix, face, k);
            if (layers & COORDINATES)
                if (const auto* at = Value<CUVWPoint>(object, CHANNEL_UVW, face, k))
                    Append(text, {at->u, at->v}, 1000);
            if (layers & COLORS)
                if (const auto* at = Value<CVCPoint>(object, CHANNEL_VC, face, k))
                    Append(text, {at->GetColor().red / 255.0f, at->GetColor().green / 255.0f, at->GetColor().blue / 255.0f}, 100);
            if (layers & (MATERIALS | SHADES | MAPS))
                AppendMaterial(text, scene, object.GetFaceList()->GetFaceMaterial(static_cast<unsigned int>(face)), layers);
            corners.insert(text);
        }
    }
    static void Append(std::string& text, std::initializer_list<float> values, float scale)
    {
        for (const float value : values)
            text += std::to_string(std::lround(value * scale)) + " ";
        text += "| ";
    }
    static void AppendNormal(std::string& text, C3DGeomObject& object, const C4x4TMatrix<float>& matrix, int face, int corner)
    {
        const CGeomInfo info(&object);
        CPointNormalChannel* const smooth = object.GetPointNormalChannel();
        smooth->PrepareSmoothing(&info, object.GetChannels()->GetSpecNormalChannel());
        const C3DTVector<float>& normal = *smooth->GetSmoothNormalByCorner(face, corner, nullptr);
        float turned[3];
        for (int row = 0; row < 3; row++)
            turned[row] = matrix.m[row][0] * normal.x + matrix.m[row][1] * normal.y + matrix.m[row][2] * normal.z;
        Append(text, {turned[0], turned[1], turned[2]}, 20);
    }
    template <class POINT> static const POINT* Value(const C3DGeomObject& object, _Channel3DType type, int face, int corner)
    {
        CChannel* const channel = object.GetChannelByIndex(0, type, true);
        int count = 0;
        const int* const values = channel ? channel->GetFaceList()->GetIndexes(static_cast<unsigned int>(face), count) : nullptr;
        return corner < count ? static_cast<const POINT*>(channel->GetPointList()->ElementAt(values[corner])) : nullptr;
    }
    static void AppendMaterial(std::string& text, C3DScene& scene, unsigned int id, unsigned int layers)
    {
        const C3DMaterial* const material = static_cast<const C3DScene&>(scene).GetMaterialByID(id);
        if (!material)
            return;
        const CRGBColor color = material->GetDiffuseColor(0, false);
        if (layers & MATERIALS)
            text += WideToUtf8(material->GetName()) + " ";
        if (layers & SHADES)
            Append(text, {color.red / 255.0f, color.green / 255.0f, color.blue / 255.0f, material->GetTransparencyFactor(0)}, 50);
        if (const CMaterialMap* const map = material->GetDiffuseMaps(); map && layers & MAPS)
            text += WideToUtf8(fileStripPath(map->GetFileName()));
    }
};
