// Damaged native files: each is refused or read, quickly and in little memory, and what was read can be worked with.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "io/3DIo.h"
#include "support/FullScene.h"
#include "support/Mutate.h"
#include "support/Owned.h"
#include "support/SceneEqual.h"
#include "support/Streams.h"
#include "support/TempFolder.h"
#include "tools/Exception.h"

namespace {

/// Number of mutants: a few hundred, or as ZEL_MUTATIONS tells.
unsigned int GetMutationCount()
{
    const char* const count = std::getenv("ZEL_MUTATIONS");
    return count ? static_cast<unsigned int>(std::atoi(count)) : 300;
}

StreamBytes BytesOf(const std::string& text) { return StreamBytes(text.begin(), text.end()); }

std::string FileOf(C3DScene& scene)
{
    const StreamBytes bytes = Stored(scene);
    return std::string(bytes.begin(), bytes.end());
}

/// What a program does with a scene that it got. Nothing here may depend on the scene being a sound one.
void WorkWith(C3DScene& scene)
{
    C4x4TMatrix<float> matrix;
    C3DTPoint<float> min, max;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        C3DSceneNode& node = *scene.GetNextNode(pos);
        node.GetNodeTM(3, matrix, true);
        node.GetDisplayName();
        C3DGeomObject* const object = node.GetGeomObject();
        if (!object)
            continue;
        object->GetBoundingBox(min, max, BOX_FACES);
        object->GetMaterialsHashMap(true);
        object->GetFaceNormalChannel();
        object->GetPointNormalChannel();
        object->GetChecksum(0xFFFFFFFF);
        object->Update(&scene, 0xFFF0000);
        for (CChannel* const channel : *object->GetChannels())
            channel->GetTypeString();
    }
    scene.GetRoot()->GetBoundingBox(0, min, max, BOX_FACES | BOX_POINTS);
    scene.GetTimeRange(KEY_ANY);
    scene.SetCurrentTime(5);
    C3DFaceList::MaterialsMap uses;
    scene.GetMaterials(nullptr, uses, true);
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        C3DMaterial& material = *scene.GetNextMaterial(pos);
        material.GetDiffuseColor(2, true);
        scene.FindMaterial(material, false);
        if (CMaterialMap* const map = material.GetDiffuseMaps())
            map->GetMatrix(1, matrix);
    }
    Owned<C3DScene> copy(scene.Copy(nullptr, 0, nullptr));
    scene.SwapCoordinates(0x1);
    scene.GenerateUVW();
    scene.Clean();
    if (copy) {
        copy->DeleteInstanciation(nullptr);
        for (C3DNodePos pos = copy->GetFirstNode(OBJECT_GEOMETRIC); pos;) {
            C3DGeomObject& object = *copy->GetNextNode(pos)->GetGeomObject();
            object.Weld3DPoints(0.01, false, CHANNEL_ALL, 0);
            object.Triangulate(CHANNEL_ALL, static_cast<_FACE_PROPERTIES>(0), true);
            object.UnifyNormals();
            object.CleanChannels(0xFFFFFFFF, false);
        }
        copy->Clean();
        copy->CleanGroups(false);
    }
}

}

TEST(NativeDamage, IsRefusedOrReadButNeverHarmful)
{
    std::vector<std::string> files;
    for (unsigned int seed = 1; seed <= 8; seed++)
        files.push_back(FileOf(*Owned<C3DScene>(CreateFullScene(seed))));
    unsigned int read = 0;
    std::chrono::duration<double> slowest{};
    for (unsigned int seed = 0, count = GetMutationCount(); seed < count; seed++) {
        SCOPED_TRACE(seed);
        const std::string mutant = CMutator(seed).Mutate(files[seed % files.size()], files[seed / 3 % files.size()]);
        const auto start = std::chrono::steady_clock::now();
        const Owned<C3DScene> scene(C3DScene::Create());
        if (Load(*scene, BytesOf(mutant))) {
            read++;
            WorkWith(*scene);
        }
        slowest = std::max<std::chrono::duration<double>>(slowest, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(slowest.count(), 2);
    EXPECT_GT(read, 0u);
    RecordProperty("read", static_cast<int>(read));
    RecordProperty("slowest_ms", static_cast<int>(slowest.count() * 1000));
}

TEST(NativeDamage, AnythingThatReadsCanBeWrittenAndReadAgain)
{
    const std::string file = FileOf(*Owned<C3DScene>(CreateFullScene()));
    for (unsigned int seed = 0, count = GetMutationCount(); seed < count; seed++) {
        SCOPED_TRACE(seed);
        const Owned<C3DScene> scene(C3DScene::Create()), again(C3DScene::Create());
        if (!Load(*scene, BytesOf(CMutator(seed).Mutate(file, file))))
            continue;
        ASSERT_TRUE(Load(*again, Stored(*scene)));
        EXPECT_EQ(FirstDifference(*scene, *again), "");
    }
}

TEST(NativeDamage, TheComparisonSeesEveryFieldThatIsStored)
{
    // Of two streams that are written differently the scenes differ: whoever trusts FirstDifference may trust it with all of a file.
    const Owned<C3DScene> source(CreateFullScene()), original(C3DScene::Create());
    ASSERT_TRUE(Load(*original, Stored(*source)));
    const auto storedTwice = [](C3DScene& scene) { return Stored(scene), Stored(scene); };    // the first time drops what is not compared
    const StreamBytes whole = storedTwice(*original);
    unsigned int changed = 0;
    for (std::size_t place = 0; place < whole.size(); place += 3) {
        StreamBytes bytes = whole;
        bytes[place] ^= 0x40;
        const Owned<C3DScene> scene(C3DScene::Create()), read(C3DScene::Create());
        if (!Load(*scene, bytes) || storedTwice(*scene) == whole)
            continue;
        ASSERT_TRUE(Load(*read, whole));
        changed++;
        EXPECT_NE(FirstDifference(*read, *scene), "") << place;
    }
    EXPECT_GT(changed, whole.size() / 30);
}
