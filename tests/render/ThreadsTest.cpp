#include <thread>
#include <vector>

#include "render/SceneBitmap.h"
#include "render/ViewCase.h"
#include "render/ViewProfile.h"
#include "scene/Material.h"
#include "scene/Primitives.h"
#include "support/TempFolder.h"
#include "tools/LayerBitmap.h"
#include "tools/ProfileFile.h"

// Several threads draw at once, each with views and scenes of its own.

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

std::vector<unsigned char> Draw(int kind)
{
    C3DScene* const scene = CreateScene(kind);
    GlViewSettings settings;
    settings.viewFlags = kind % 2 ? VIEWFLAG_DEFAULT : VIEWFLAG_DEFAULT | VIEWFLAG_WIREFRAME;
    const std::unique_ptr<CLayerBitmap> layers(GetBitmapFromScene(scene, settings, {64, 48}));
    DeleteMe(scene);
    if (!layers)
        return {};
    const Bitmap& picture = *layers->GetStandardLayer();
    return {picture.GetLine(0), picture.GetLine(0) + picture.GetWidth() * picture.GetHeight() * picture.GetBytesPerPixel()};
}

}

TEST(Threads, DrawAsOneAfterTheOther)
{
    const TempFolder folder;
    CProfileFile profile(folder.Wide("profile.ini"));    // guards of attempts go through it
    SetApplication(&profile);
    std::vector<std::vector<unsigned char>> expected;
    for (int i = 0; i < THREADS; i++)
        expected.push_back(Draw(i));
    for (int i = 1; i < THREADS; i++)
        EXPECT_NE(expected[i], expected[0]);

    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; i++)
        threads.emplace_back([&expected, i] {
            for (int round = 0; round < ROUNDS; round++)
                EXPECT_EQ(Draw(i), expected[i]) << "thread " << i << " round " << round;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(GetViewProfile(PROFILE_PBUFFER), 1u);
    SetApplication(nullptr);
}
