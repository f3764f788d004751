#include <cmath>
#include <random>

#include "meshops/ObjectCase.h"
#include "support/Checksum.h"

namespace {

constexpr float FAR = 1000;
constexpr double SIZE = 1;    // of the tolerance: cells of one half

/// Points, each with a face of its own between two far corners: the face tells where the point went.
Owned<C3DObject> SpokesOf(const std::vector<XYZ>& points)
{
    std::vector<XYZ> all = points;
    const int count = static_cast<int>(points.size());
    all.push_back({-FAR, -FAR, -FAR});
    all.push_back({FAR, FAR, FAR});
    std::vector<std::vector<int>> faces;
    for (int i = 0; i < count; i++)
        faces.push_back({i, count, count + 1});
    return ObjectOf(MakeMesh(all, faces));
}

}

TEST(Weld, AgreesWithTheToldRulesOnRandomPoints)
{
    // Faults in mind: who claims a point first; the take-over by a nearer source; sources that others take; piles of equal points; the wide
    // cells around the origin; conditions on either side. The sum is that of the rules over all pairs.
    Checksum sum;
    int merged = 0;
    for (unsigned int seed = 0; seed < 800; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
        const int spread = 2 + below(12);
        const unsigned int mode = seed % 4 ? 0 : 1u << below(4);
        std::vector<XYZ> points;
        std::vector<unsigned int> flags;
        const auto coordinate = [&] { return static_cast<float>(below(2 * spread + 1) - spread) / 4; };
        for (int i = 0, count = 2 + below(60); i < count; i++) {
            points.push_back(!points.empty() && below(4) == 0 ? points[below(i)] : XYZ{coordinate(), coordinate(), coordinate()});
            flags.push_back(below(3) == 0 ? static_cast<unsigned int>(POINT_BORDER) : 0);
        }
        Owned<C3DObject> object = SpokesOf(points);
        for (std::size_t i = 0; i < flags.size(); i++)
            object->GetPointList()->ElementAt(static_cast<int>(i))->SetFlags(flags[i]);
        const bool changed = mode ? object->Weld3DPoints(SIZE, true, CHANNEL_ALL, 1u, static_cast<unsigned int>(POINT_BORDER), mode)
                                  : object->Weld3DPoints(SIZE, true, CHANNEL_ALL, 0u);
        int moved = 0;
        ASSERT_EQ(object->GetFaceNbr(), static_cast<int>(points.size()));
        for (int i = 0; i < object->GetFaceNbr(); i++) {
            const C3DTPoint<float>& to = *object->GetPointList()->ElementAt(Corners(*object->GetFaceList(), i)[0]);
            sum.Add(to);
            moved += to.x != points[i].x || to.y != points[i].y || to.z != points[i].z;
        }
        EXPECT_TRUE(changed || moved == 0);
        sum.Add(changed);
        CheckConsistent(*object->GetFaceList(), object->GetPointNbr());
        merged += moved;
    }
    EXPECT_GT(merged, 5000);
    EXPECT_EQ(sum.Get(), 0x86DF4DD0F4354503u);
}

TEST(Weld, JoinsSoupsCloudsAndChannels)
{
    // Two squares side by side, each with points of its own; the channel has a value for each corner, equal where the points are.
    Owned<C3DObject> squares = ObjectOf(MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}},
                                                 {{0, 1, 2, 3}, {4, 5, 6, 7}, {1, 4, 2}}));
    auto* uvw = new CUVWChannel(7);
    int next = 0;
    uvw->GetFaceList()->AppendCopies(*squares->GetFaceList(), nullptr, 3, [&](int) { return next++; });
    uvw->GetPointList()->SetSize(next);
    for (int i = 0; i < next; i++)
        (*uvw->GetUVWPointList())[i]->u = i < 8 ? squares->GetPointList()->ElementAt(i)->x : 1.0f;
    squares->AddChannel(uvw);
    EXPECT_TRUE(squares->Weld3DPoints(1e-4, true, CHANNEL_ALL, 0u));
    EXPECT_EQ(squares->GetPointNbr(), 6);
    EXPECT_EQ(AllCorners(*squares->GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 2, 3}, {1, 4, 5, 2}}));    // the sliver is gone
    EXPECT_EQ(uvw->GetPointList()->GetSize(), 6);
    EXPECT_EQ(uvw->GetFaceList()->GetSize(), 2);
    EXPECT_FALSE(squares->Weld3DPoints(1e-4, true, CHANNEL_ALL, 0u));

    Owned<C3DObject> cloud(new C3DObject(C3DPointList::Create(), nullptr, nullptr));
    const float nan = std::nanf("");
    SetPoints(*cloud->GetPointList(), {{0, 0, 0}, {5, 0, 0}, {0, 0, 0}, {nan, 0, 0}, {nan, 0, 0}, {5, 0, 0}, {1000, 0, 0}});
    EXPECT_TRUE(cloud->Weld3DPoints(0.1, true, CHANNEL_ALL, 0u));
    EXPECT_EQ(cloud->GetPointNbr(), 5);    // what is not a number is near to nothing
}

TEST(Weld, APileCostsNoMoreThanItsPoints)
{
    // 200,000 points at two places: every pair told, that is 10^10 looks.
    constexpr int COUNT = 200'000;
    Owned<C3DObject> pile(new C3DObject(C3DPointList::Create(), nullptr, nullptr));
    pile->GetPointList()->SetSize(COUNT);
    for (int i = 0; i < COUNT; i++)
        pile->GetPointList()->ElementAt(i)->x = static_cast<float>(i % 2) * 100;
    EXPECT_TRUE(pile->Weld3DPoints(1, true, CHANNEL_ALL, 0u));
    EXPECT_EQ(pile->GetPointNbr(), 2);
}
