// Damaged native files: each is refused or read, quickly and in little memory, and what was read can be worked with.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "support/FullScene.h"
#include "support/Mutate.h"
#include "support/Owned.h"
#include "support/SceneEqual.h"
#include "support/Streams.h"
#include "support/WorkWith.h"

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

int* CornersOf(CFaceList& faces, unsigned int face)
{
    int count;
    return faces.GetIndexes(face, count);
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

TEST(NativeDamage, WhatOperationsLeaveBehindIsReadAgain)
{
    for (unsigned int seed = 1; seed <= 20; seed++) {
        SCOPED_TRACE(seed);
        const Owned<C3DScene> scene(CreateFullScene(seed)), read(C3DScene::Create()), again(C3DScene::Create());
        WorkWith(*scene);
        ASSERT_TRUE(Load(*read, Stored(*scene)));    // where dead faces have no corners beyond the points any more
        ASSERT_TRUE(Load(*again, Stored(*read)));
        EXPECT_EQ(FirstDifference(*read, *again), "");
    }
}

namespace {

/// A cube with a texture point for each of its corners.
Owned<C3DObject> MappedCube()
{
    Mesh cube = Cube();
    Owned<C3DObject> object(new C3DObject(std::exchange(cube.points, nullptr), std::exchange(cube.faces, nullptr), nullptr));
    auto* const channel = new CUVWChannel;
    int next = 0;
    channel->GetFaceList()->AppendCopies(*object->GetFaceList(), nullptr, 6, [&](int) { return next++; });
    channel->GetPointList()->SetSize(24);
    object->AddChannel(channel);
    return object;
}

}

TEST(NativeDamage, CornersAreHeldAgainstPointsAndChannelsAgainstFaces)
{
    // What is stored is read: a corner that is not there costs its face, or that face's data in the channel.
    struct {
        const char* name;
        void (*change)(C3DGeomObject&);
        int dead, deadInChannel;
    } const rows[] = {
        {"a live face beyond the points", [](C3DGeomObject& o) { CornersOf(*o.GetFaceList(), 0)[1] = 8; }, 1, 0},
        {"a live face before the points", [](C3DGeomObject& o) { CornersOf(*o.GetFaceList(), 0)[1] = -1; }, 1, 0},
        {"a dead face beyond the points",
         [](C3DGeomObject& o) {
             CornersOf(*o.GetFaceList(), 0)[1] = 8;
             o.GetFaceList()->SetFaceFlag(0, FACE_INVALID, true);
         },
         1, 0},
        {"faces without points", [](C3DGeomObject& o) { o.SetPointList(nullptr, true); }, 6, 0},
        {"a channel beyond its points", [](C3DGeomObject& o) { CornersOf(*(*o.GetChannels())[0]->GetFaceList(), 2)[0] = 24; }, 0, 1},
        {"fewer faces than the channel has", [](C3DGeomObject& o) { o.GetFaceList()->SetSize(5, 0, CFaceList::SIZE_GROW); }, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Owned<C3DObject> object = MappedCube(), read(new C3DObject);
        row.change(*object);
        ASSERT_TRUE(Load(*read, Stored(*object)));
        EXPECT_TRUE(read->GetFaceList()->AreIndexesBelow(read->GetPointNbr(), true));
        const CChannel& channel = *(*read->GetChannels())[0];
        EXPECT_EQ(channel.IsFlagSet(CHANNEL_INVALID), read->GetFaceNbr() < 6);
        constexpr auto DEAD = static_cast<unsigned int>(FACE_DEAD);
        EXPECT_EQ(read->GetFaceList()->GetNumberOfFaces(DEAD, true), row.dead);
        EXPECT_EQ(channel.GetFaceList()->GetNumberOfFaces(DEAD, true), row.deadInChannel);
    }
}

TEST(NativeDamage, AStreamWithCornersThatAreNotThereIsRefused)
{
    const StreamBytes whole = Stored(*MappedCube());
    for (const std::vector<int>& corners : {std::vector<int>{0, 2, 3, 1}, {4, 5, 6, 7}}) {    // of the geometry, of the channel
        const auto* const bytes = reinterpret_cast<const unsigned char*>(corners.data());
        const auto place = std::search(whole.begin(), whole.end(), bytes, bytes + 16) - whole.begin();
        ASSERT_LT(static_cast<std::size_t>(place), whole.size());
        for (const int corner : {-1, 24}) {
            StreamBytes damaged = whole;
            std::memcpy(&damaged[place], &corner, sizeof corner);
            const Owned<C3DObject> read(new C3DObject);
            EXPECT_FALSE(Load(*read, damaged));
        }
    }
}
