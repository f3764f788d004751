#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "images/LayerBitmap.h"
#include "io/3DIo.h"
#include "render/GLViewSettings.h"
#include "render/SceneBitmap.h"
#include "render/ViewProfile.h"
#include "scene/3DScene.h"
#include "scene/3DZel.h"
#include "scene/Material.h"
#include "scene/Primitives.h"
#include "support/Owned.h"
#include "support/TempFolder.h"
#include "tools/ProfileFile.h"

// Several threads at once save, read and draw, each with files, scenes and views of its own.

namespace {

constexpr int THREADS = 4, ROUNDS = 3;

C3DScene* CreateScene(int kind)
{
    C3DScene* const scene = new C3DScene;
    C3DMaterial* const material = scene->CreateNewMaterial(0xFFFFFFFF);
    material->SetDiffuseColor(0, {static_cast<unsigned char>(60 * kind), 200, 40});
    const unsigned int id = material->GetMaterialID();
    switch (kind) {
    case 0: scene->AddNode(nullptr, CreateSphere({0, 0, 0}, 1, 12, 16, false, id, 0)); break;
    case 1: scene->AddNode(nullptr, CreateCube({0, 0, 0}, 1, 2, 3, true, id, 0)); break;
    case 2: scene->AddNode(nullptr, CreateCone({0, 0, 0}, 1, 2, 20, 4, false, id, 0)); break;
    default: scene->AddNode(nullptr, CreateCylinder({0, 0, 0}, 1, 2, 20, 4, true, false, id, 0)); break;
    }
    return scene;
}

std::vector<unsigned char> Draw(C3DScene& scene, int kind)
{
    GlViewSettings settings;
    settings.viewFlags = kind % 2 ? VIEWFLAG_DEFAULT : VIEWFLAG_DEFAULT | VIEWFLAG_WIREFRAME;
    const std::unique_ptr<CLayerBitmap> layers(GetBitmapFromScene(&scene, settings, {64, 48}));
    if (!layers)
        return {};
    const Bitmap& picture = *layers->GetStandardLayer();
    return {picture.GetLine(0), picture.GetLine(0) + picture.GetWidth() * picture.GetHeight() * picture.GetBytesPerPixel()};
}

/// The picture of a scene that went through a native file.
std::vector<unsigned char> SaveReadAndDraw(const CXTString<wchar_t>& file, int kind)
{
    const Owned<C3DScene> scene(CreateScene(kind));
    CSceneExportOptions saving(EXPORT_IN_PLACE);
    if (!C3DIo(CFileNameSpec(file), FILEIO_SILENT, nullptr).Save(false, scene.get(), &saving))
        return {};
    const Owned<C3DScene> read(C3DIo(CFileNameSpec(file), FILEIO_READ | FILEIO_SILENT, nullptr).Read(false, nullptr));
    return read ? Draw(*read, kind) : std::vector<unsigned char>();
}

}

TEST(Threads, SaveReadAndDrawAsOneAfterTheOther)
{
    const TempFolder folder;
    CProfileFile profile(folder.Wide("profile.ini"));    // guards of attempts go through it
    SetApplication(&profile);
    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS);
    std::vector<std::vector<unsigned char>> expected;
    for (int i = 0; i < THREADS; i++)
        expected.push_back(Draw(*Owned<C3DScene>(CreateScene(i)), i));
    for (int i = 1; i < THREADS; i++)
        EXPECT_NE(expected[i], expected[0]);

    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; i++)
        threads.emplace_back([&expected, &folder, i] {
            const CXTString<wchar_t> file = folder.Wide(std::to_string(i) + ".3dif");
            for (int round = 0; round < ROUNDS; round++)
                EXPECT_EQ(SaveReadAndDraw(file, i), expected[i]) << "thread " << i << " round " << round;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(GetViewProfile(PROFILE_PBUFFER), 1u);
    Close3DZel(INIT_NO_PLUGINS);
    SetApplication(nullptr);
}

TEST(Threads, ACopyIsDrawnWhileTheSceneChanges)
{
    // As a thumbnail of what a window shows.
    const Owned<C3DScene> live(CreateScene(0)), copy(live->Copy(nullptr, 0, nullptr));
    const std::vector<unsigned char> expected = Draw(*live, 0);
    std::thread thumbnail([&] {
        for (int round = 0; round < ROUNDS; round++)
            EXPECT_EQ(Draw(*copy, 0), expected) << round;
    });
    C3DSceneNode* const node = live->GetChildNode(nullptr);
    unsigned int first = live->GetFirstMaterial();
    C3DMaterial* const material = live->GetNextMaterial(first);
    for (int round = 0; round < ROUNDS; round++) {
        material->SetDiffuseColor(0, {static_cast<unsigned char>(200 - round), 0, 0});
        node->GetBaseObject()->Invalidate(CHANGE_POINTS, true);
        EXPECT_NE(Draw(*live, 0), expected);
    }
    thumbnail.join();
}
