#include "ChannelMesh.h"

#include "channels/VCChannel.h"
#include "channels/VCPointList.h"
#include "geometry/Edge.h"

namespace {

/// A fan around point 0 with one face for each coordinate of the hub; a negative one is a face without data.
struct CFan {
    explicit CFan(const std::vector<float>& hub) : mesh(static_cast<int>(hub.size()) + 2, {})
    {
        Corners corners, data;
        std::vector<float> us;
        for (int i = 0; i < static_cast<int>(hub.size()); i++) {
            corners.push_back({0, i + 1, i + 2});
            data.emplace_back();
            if (hub[i] < 0)
                continue;
            const int first = static_cast<int>(us.size());
            us.insert(us.end(), {hub[i], 50.0f + i, 51.0f + i});
            data.back() = {first, first + 1, first + 2};
        }
        SetFaces(*mesh.faces, corners);
        channel = mesh.AddUVW(us, data);
    }
    CMesh mesh;
    CUVWChannel* channel;
};

}    // namespace

TEST(BreakFlags, CountGroupsOfTextureCoordinates)
{
    const unsigned int share = POINT_SHARE_UV, seam = POINT_SHARE_UV | POINT_UV_SEAM;
    const struct {
        const char* name;
        std::vector<float> hub;
        float tolerance;
        unsigned int flags;
    } rows[] = {
        {"three", {1, 2, 3}, 0, seam},
        {"four stop at three", {1, 2, 3, 4}, 0, seam},
        {"equal and one without", {1, 1, -1}, 0, share},
        {"two and one without", {1, 2, -1}, 0, seam},
        {"one and one without", {1, -1}, 0, 0},
        {"at the tolerance", {1, 1.5f}, 0.5f, share},
        {"groups do not chain", {1, 1.25f, 1.5f}, 0.3f, share},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CFan fan(row.hub);
        const CGeomInfo info = fan.mesh.Info();
        fan.mesh.points->SetPointsFlags(seam, true);
        fan.channel->GetPointList()->SetPointsFlags(share, true);
        fan.channel->InitShareUVFlag(&info, row.tolerance, true);
        EXPECT_EQ(fan.mesh.points->ElementAt(0)->GetFlags(), row.flags);
        EXPECT_EQ(fan.channel->GetPointList()->ElementAt(0)->GetFlags(), row.flags & share);
        EXPECT_EQ(fan.channel->GetPointList()->ElementAt(1)->GetFlags(), 0u);
    }
}

TEST(BreakFlags, TextureFrontiers)
{
    // faces 0 and 1 share the edge 0-2; face 2 has no data, face 3 is far off
    CMesh mesh(7, {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {4, 5, 6}, {0, 4, 5}});
    CUVWChannel* channel = mesh.AddUVW({1, 2, 3, 1, 3.5f, 4}, {{0, 1, 2}, {3, 4, 5}, {}, {0, 1, 2}, {}});
    const CGeomInfo info = mesh.Info();
    const C3DEdge edge(0, 2), away(5, 6);
    EXPECT_FALSE(channel->IsUVFrontier(&info, 0, edge, 0, 1));    // tolerance 0 finds no difference
    EXPECT_FALSE(channel->IsUVFrontier(&info, 0.5f, edge, 0, 1));
    EXPECT_TRUE(channel->IsUVFrontier(&info, 0.4f, edge, 0, 1));
    EXPECT_TRUE(channel->IsUVFrontier(&info, 0.5f, C3DEdge(0, 3), 1, 2));
    EXPECT_FALSE(channel->IsUVFrontier(&info, 0.5f, C3DEdge(0, 4), 2, 4));
    EXPECT_TRUE(channel->IsUVFrontier(&info, 0.5f, away, 0, 3));
    EXPECT_TRUE(channel->IsUVFrontier(&info, 0.5f, edge, 0, 99));
    EXPECT_TRUE(channel->IsUVFrontier(nullptr, 0.5f, edge, 0, 1));
}

TEST(BreakFlags, ColoursBreakAtPointsAndAlongEdges)
{
    CMesh mesh(7, {{0, 1, 2}, {0, 2, 3}, {4, 5, 6}});
    CVCChannel* channel = new CVCChannel;
    mesh.channels->AddChannel(channel);
    CVCPointList& points = *channel->GetVCPointList();
    points.SetSize(4, false, 0);
    points[0]->SetColor(CRGBColor(10, 10, 10));
    points[1]->SetColor(CRGBColor(20, 10, 10));
    points[2]->SetColor(CRGBColor(10, 10, 10, 0));
    points[3]->SetColor(CRGBColor(10, 10, 10));
    SetFaces(*channel->GetFaceList(), {{0, 0, 0}, {1, 0, 2}, {3, 3, 3}});
    const CGeomInfo info = mesh.Info();
    const auto marked = [](const CPointList& list) {
        std::vector<int> numbers;
        for (int i = 0; i < list.GetSize(); i++)
            if (list.ElementAt(i)->IsFlagSet(POINT_VC_FRONTIER))
                numbers.push_back(i);
        return numbers;
    };
    channel->InitVCFrontierFlag(&info, 9, true);
    EXPECT_EQ(marked(*mesh.points), (std::vector<int>{0, 2, 3}));    // 0 at the point, 2 and 3 along edges from it
    EXPECT_EQ(marked(points), (std::vector<int>{0, 1, 2}));
    channel->InitVCFrontierFlag(&info, 10, true);
    EXPECT_TRUE(marked(*mesh.points).empty());
    EXPECT_TRUE(marked(points).empty());

    EXPECT_TRUE(channel->IsVCFrontier(&info, 9, C3DEdge(0, 2), 0, 1));
    EXPECT_FALSE(channel->IsVCFrontier(&info, 10, C3DEdge(0, 2), 0, 1));
    channel->GetFaceList()->SetFaceFlags(2, FACE_EMPTY, true);
    channel->InitVCFrontierFlag(&info, 10, true);
    EXPECT_TRUE(marked(*mesh.points).empty());    // no data at all is no frontier
    EXPECT_TRUE(channel->IsVCFrontier(&info, 10, C3DEdge(0, 2), 0, 2));
}
