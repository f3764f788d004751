#include "support/FailingMemory.h"

#if HAS_FAILING_MEMORY

#include <functional>

#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/ObjectCase.h"
#include "support/Streams.h"

namespace {

/// The value that the texture coordinates and weights of a point at that place have.
float ValueAt(const C3DTPoint<float>& p) { return std::round(p.x) + 100 * std::round(p.y); }

/// Triangles in a plane. Each has points of its own, close to those of its neighbours; some are degenerate. A point nobody uses comes first.
Owned<C3DObject> Confetti()
{
    std::vector<XYZ> points = {{50, 50, 0}};
    std::vector<std::vector<int>> corners;
    for (int i = 0; i < 18; i++) {
        const float x = static_cast<float>(i % 6 / 2), y = static_cast<float>(i / 6), off = 0.001f * static_cast<float>(i);
        const int first = static_cast<int>(points.size());
        points.insert(points.end(), {{x + off, y, 0}, {x + 1 + off, y + (i % 2 ? 1.0f : 0.0f), 0}, {x + off, y + 1, 0}});
        if (i % 2)
            points[first + 0] = {x + 1 + off, y, 0};
        corners.push_back({first, first + 1, first + 2});
        if (i % 4 == 0)
            corners.push_back({first, first, first + 1, first});
    }
    Owned<C3DObject> object = ObjectOf(MakeMesh(points, corners));
    auto* uvw = AddCornerUVW(*object, 1);
    auto* weights = new CWeightChannel(2, true);
    weights->GetPointList()->SetSize(object->GetPointNbr());
    for (int i = 0; i < object->GetPointNbr(); i++)
        (*weights->GetWeightPointList())[i]->SetWeight(ValueAt(*object->GetPointList()->ElementAt(i)));
    for (int face = 0; face < object->GetFaceNbr(); face++) {
        const std::vector<int> geometry = Corners(*object->GetFaceList(), face), values = Corners(*uvw->GetFaceList(), face);
        for (std::size_t k = 0; k < geometry.size(); k++)
            (*uvw->GetUVWPointList())[values[k]]->u = ValueAt(*object->GetPointList()->ElementAt(geometry[k])) + (face % 3 ? 0.0f : 0.25f);
    }
    object->AddChannel(weights);
    return object;
}

/// Geometry and channels belong together, and a saved file can be read.
void CheckWhole(C3DObject& object)
{
    object.GetChannels()->RemoveChannels(CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL, 0, true);    // worked out again when asked for
    ASSERT_NO_FATAL_FAILURE(CheckInStep(object));
    ASSERT_EQ(object.GetChannels()->GetSize(), 2);
    auto& uvw = static_cast<CUVWChannel&>(*object.GetChannelByID(1, CHANNEL_UVW));
    auto& weights = static_cast<CWeightChannel&>(*object.GetChannelByID(2, CHANNEL_WEIGHT));
    const auto valueOf = [&](int point) { return ValueAt(*object.GetPointList()->ElementAt(point)); };
    for (int point = 0; point < object.GetPointNbr(); point++)
        ASSERT_EQ((*weights.GetWeightPointList())[point]->GetWeight(), valueOf(point));
    for (int face = 0; face < object.GetFaceNbr(); face++) {
        if (object.GetFaceList()->IsFaceOneFlagSet(face, FACE_DEAD))
            continue;
        const std::vector<int> geometry = Corners(*object.GetFaceList(), face);
        const std::vector<float> us = UsOf(uvw, face);
        for (std::size_t k = 0; k < geometry.size(); k++)
            ASSERT_EQ(std::floor(us[k]), valueOf(geometry[k])) << face;
    }
    const Owned<C3DObject> read(new C3DObject);
    EXPECT_TRUE(Load(*read, Stored(object)));
}

}

// Each allocation of each operation fails once, alone and with all behind it. Faults in mind: a list closes up and the next one does not; points
// go before corners follow; a reserve that is given back.
TEST(Memory, WhatRunsOutLeavesTheObjectWhole)
{
    const struct {
        const char* name;
        std::function<void(C3DObject&)> run;
    } rows[] = {
        {"clean", [](C3DObject& o) { o.Clean(); }},
        {"weld", [](C3DObject& o) { o.Weld3DPoints(0.1, true, CHANNEL_ALL, 0); }},
        {"merge coplanar", [](C3DObject& o) { o.MergeCoplanarFaces(0.1, CHANNEL_ALL); }},
        {"disconnect", [](C3DObject& o) { o.DisconnectBorderFaces(CHANNEL_ALL, 0, 0, nullptr, false, nullptr); }},
    };
    for (const auto& row : rows)
        for (const bool lasting : {false, true}) {
            SCOPED_TRACE(row.name + std::string(lasting ? ", all" : ", one"));
            bool done = false;
            long n = 0;
            for (; !done && !HasFailure() && n < 5000; n++) {
                SCOPED_TRACE(n);
                const Owned<C3DObject> object = Confetti();
                if (std::string(row.name) != "weld" && std::string(row.name) != "clean")
                    object->Weld3DPoints(0.1, true, 0, 0);
                done = FailingMemory::Run(n, lasting, [&] { row.run(*object); });
                CheckWhole(*object);
            }
            EXPECT_TRUE(done);
            EXPECT_GT(n, 5);
        }
}

#endif
