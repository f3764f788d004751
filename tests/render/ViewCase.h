#pragma once

// Scenes drawn off screen, and what their pictures show.

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "channels/VCChannel.h"
#include "channels/VCFaceList.h"
#include "channels/VCPointList.h"
#include "images/Bitmap.h"
#include "render/View.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "support/Meshes.h"

struct DeletePicture {
    void operator()(Bitmap* picture) const { Bitmap::DeleteBitmap(picture); }
};
using Picture = std::unique_ptr<Bitmap, DeletePicture>;

/// Number of pixels for which the test holds; it gets red, green, blue (and alpha) of each.
template <class TEST> int CountPixels(const Bitmap& picture, TEST&& test)
{
    int count = 0;
    for (int y = 0; y < picture.GetHeight(); y++)
        for (int x = 0; x < picture.GetWidth(); x++)
            count += test(picture.GetLine(y) + x * picture.GetBytesPerPixel());
    return count;
}

/// Gives every corner of an object a vertex colour of its own.
inline void AddColors(C3DGeomObject& object)
{
    auto* const channel = new CVCChannel(7);
    C3DFaceList& faces = *object.GetFaceList();
    std::vector<std::vector<int>> corners = AllCorners(faces);
    int count = 0;
    for (auto& face : corners)
        for (int& corner : face)
            corner = count++;
    channel->GetVCPointList()->SetSize(count, true, -1);
    for (int i = 0; i < count; i++)
        channel->GetVCPointList()->ElementAt(i)->SetColor(CRGBColor(i * 37 % 256, i * 59 % 256, i * 83 % 256, 128 + i % 128));
    AddFaces(*channel->GetVCFaceList(), corners);
    object.AddChannel(channel);
    object.SetGlobalVCChannel(7, 0.8f);
}

/// A scene and a view of it off screen: from above, without perspective, so that lengths are the same everywhere in the picture.
class CStage {
public:
    explicit CStage(int width = 64, int height = 64, int depth = 24) : m_scene(C3DScene::Create())
    {
        EXPECT_EQ(m_view.CreateMemoryRendering(width, height, depth), 1);
        m_settings.SetCurrentCamera(nullptr);
        m_settings.GetCurrentCamera()->SetProjection(CAMERA_ORTHOGRAPHIC);
        m_settings.viewNumber = RVIEW_TOP;
        m_settings.viewFlags = VIEWFLAG_FLAT;
        m_settings.background = {0, 0, 0};
        m_settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_BACKGROUND | GLSET_CAMERA;
    }
    ~CStage() { DeleteMe(m_scene); }
    CStage(const CStage&) = delete;
    CStage& operator=(const CStage&) = delete;

    C3DView& View() { return m_view; }
    C3DScene& Scene() { return *m_scene; }
    /// What the next picture is drawn with.
    GlViewSettings& Settings() { return m_settings; }

    unsigned int AddMaterial(const CRGBColor& color)
    {
        C3DMaterial* const material = m_scene->CreateNewMaterial(0xFFFFFFFF);
        material->SetDiffuseColor(0, color);
        material->SetAmbientColor(0, color);
        return material->GetMaterialID();
    }
    C3DSceneNode* AddObject(C3DBaseObject* object)
    {
        C3DSceneNode* const node = C3DSceneNode::Create();
        node->SetObject(object, true);
        m_scene->AddNode(nullptr, node);
        return node;
    }
    C3DSceneNode* AddMesh(const std::vector<XYZ>& points, const std::vector<std::vector<int>>& faces, unsigned int material = 0)
    {
        Mesh mesh = MakeMesh(points, faces);
        for (int face = 0; face < mesh.faces->GetSize(); face++)
            mesh.faces->SetFaceMaterial(face, material);
        return AddObject(new C3DObject(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr));
    }
    /// A square that looks up, of side 2 around (x, y).
    C3DSceneNode* AddSquare(float x, float y, float z, unsigned int material = 0)
    {
        return AddMesh({{x - 1, y - 1, z}, {x + 1, y - 1, z}, {x + 1, y + 1, z}, {x - 1, y + 1, z}}, {{0, 1, 2, 3}}, material);
    }

    /// Gives the view the scene and the settings, and fits.
    void Show()
    {
        m_view.SetViewSettings(&m_settings);
        m_view.SetScene(m_scene, GLSET_FIT);
        m_view.UpdateView(GLSET_FIT);
    }
    Picture Draw()
    {
        Show();
        return Picture(m_view.CreateBitmapFromScene());
    }

private:
    C3DView m_view;
    C3DScene* m_scene;
    GlViewSettings m_settings;
};

inline bool IsDrawn(const unsigned char* pixel) { return pixel[0] || pixel[1] || pixel[2]; }
inline bool IsRed(const unsigned char* pixel) { return pixel[0] > pixel[1] + 20 && pixel[0] > pixel[2] + 20; }
inline bool IsGreen(const unsigned char* pixel) { return pixel[1] > pixel[0] + 20 && pixel[1] > pixel[2] + 20; }
inline bool IsBlue(const unsigned char* pixel) { return pixel[2] > pixel[0] + 20 && pixel[2] > pixel[1] + 20; }

/// Part of the picture that was drawn.
inline double Coverage(const Bitmap& picture)
{
    return static_cast<double>(CountPixels(picture, IsDrawn)) / picture.GetWidth() / picture.GetHeight();
}
