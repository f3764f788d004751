#pragma once

#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "support/Consistent.h"

using Corners = std::vector<std::vector<int>>;

inline void SetFaces(CFaceList& list, const Corners& faces)
{
    list.SetSize(static_cast<int>(faces.size()), 3, CFaceList::SIZE_GROW, -1);
    for (unsigned int i = 0; i < faces.size(); i++) {
        CFace face;
        ASSERT_TRUE(list.GetFace(i, face));
        face.SetSize(static_cast<int>(faces[i].size()));
        for (int k = 0; k < static_cast<int>(faces[i].size()); k++)
            face.SetAt(k, faces[i][k]);
        face.SetFlags(0);
    }
}

inline std::vector<int> CornersOf(const CFaceList& list, int face)
{
    int count;
    const int* corners = list.GetIndexes(face, count);
    return std::vector<int>(corners, corners + count);
}

/// Geometry with its channels, as an object holds them.
class CMesh {
public:
    CMesh(int pointCount, const Corners& corners)
        : points(C3DPointList::Create(nullptr)), faces(C3DFaceList::Create(nullptr)), channels(CDependentChannels::Create())
    {
        points->SetSize(pointCount, false, 0);
        SetFaces(*faces, corners);
    }
    ~CMesh()
    {
        DeleteMe(channels);
        DeleteMe(faces);
        DeleteMe(points);
    }
    CMesh(const CMesh&) = delete;
    CMesh& operator=(const CMesh&) = delete;

    CGeomInfo Info() const
    {
        CGeomInfo info(faces, points);
        info.SetChannels(channels, nullptr, 0);
        return info;
    }

    /// Texture coordinates: point i has u = us[i]. A face without corners is one without data.
    CUVWChannel* AddUVW(const std::vector<float>& us, const Corners& corners)
    {
        CUVWChannel* channel = new CUVWChannel;
        channels->AddChannel(channel);
        channel->GetPointList()->SetSize(static_cast<int>(us.size()), false, 0);
        for (int i = 0; i < static_cast<int>(us.size()); i++)
            (*channel->GetUVWPointList())[i]->u = us[i];
        SetFaces(*channel->GetFaceList(), corners);
        for (unsigned int i = 0; i < corners.size(); i++)
            if (corners[i].empty())
                channel->GetFaceList()->SetFaceFlags(i, FACE_EMPTY, true);
        return channel;
    }

    C3DPointList* points;
    C3DFaceList* faces;
    CDependentChannels* channels;
};

/// The u of each corner of a channel face.
inline std::vector<float> UsOf(const CUVWChannel& channel, int face)
{
    std::vector<float> us;
    for (const int corner : CornersOf(*channel.GetFaceList(), face))
        us.push_back((*channel.GetUVWPointList())[corner]->u);
    return us;
}

/// A list that is whole, with live corners inside the points and none on dead faces.
inline void CheckList(const CFaceList& faces, const CPointList& points)
{
    CheckConsistent(faces, points.GetSize());
    for (int f = 0; f < faces.GetSize(); f++) {
        if (faces.IsFaceOneFlagSet(f, FACE_DEAD)) {
            EXPECT_TRUE(CornersOf(faces, f).empty()) << "dead face " << f << " holds corners";
        }
    }
    EXPECT_EQ(static_cast<int>(points.GetDataChunks().GetDataSize()), points.GetSize());
}

/// The graph of a channel against a walk over all corners.
inline void CheckGraph(const CMesh& mesh, CChannel& channel)
{
    std::map<int, std::vector<std::pair<int, int>>> items;
    std::map<int, int> references;
    for (int f = 0; f < mesh.faces->GetSize(); f++) {
        if (mesh.faces->IsFaceFlagSet(f, FACE_INVALID))
            continue;
        const std::vector<int> corners = CornersOf(*mesh.faces, f), data = CornersOf(*channel.GetFaceList(), f);
        const bool live = !channel.GetFaceList()->IsFaceOneFlagSet(f, FACE_DEAD);
        for (std::size_t k = 0; k < corners.size(); k++) {
            references[corners[k]]++;
            if (live && k < data.size() && data[k] >= 0 && data[k] < channel.GetPointList()->GetSize() &&
                !(channel.IsFlagSet(CHANNEL_SKIP_UNSET) && channel.GetPointList()->ElementAt(data[k])->IsFlagSet(POINT_UNSET)))
                items[corners[k]].push_back({data[k], f});
        }
    }
    const CGeomInfo info = mesh.Info();
    channel.InitGraph(&info);
    for (int p = 0; p < mesh.points->GetSize(); p++) {
        int count, referenceCount;
        const _ChannelConnectionInfo* found = channel.GetChannelPointsConnectedToPoint(p, count, referenceCount);
        std::vector<std::pair<int, int>> actual;
        for (int i = 0; i < count; i++)
            actual.push_back({found[i].channelPoint, found[i].face});
        EXPECT_EQ(actual, items[p]) << "point " << p;
        EXPECT_EQ(referenceCount, items[p].empty() ? 0 : references[p]) << "point " << p;
    }
    channel.DeleteGraph();
}

/// After a clean: geometry and channels in step.
inline void CheckConsistent(const CMesh& mesh)
{
    CheckList(*mesh.faces, *mesh.points);
    for (int i = 0; i < mesh.channels->GetSize(); i++) {
        CChannel* channel = mesh.channels->GetAt(i);
        if (!channel->GetFaceList() || channel->IsFlagSet(CHANNEL_INVALID))
            continue;
        EXPECT_EQ(channel->GetFaceList()->GetSize(), mesh.faces->GetSize());
        CheckList(*channel->GetFaceList(), *channel->GetPointList());
        CheckGraph(mesh, *channel);
    }
}
