#pragma once

#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "scene/3DObject.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Owned.h"

inline Owned<C3DObject> ObjectOf(Mesh mesh)
{
    return Owned<C3DObject>(new C3DObject(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr));
}

/// A texture point for each corner; u is `first`, first + 1 ... Faces in `empty` have no data.
inline CUVWChannel* AddCornerUVW(C3DObject& object, unsigned int id, float first = 0, const std::vector<int>& empty = {})
{
    auto* channel = new CUVWChannel(id);
    int next = 0;
    channel->GetFaceList()->AppendCopies(*object.GetFaceList(), nullptr, object.GetFaceNbr(), [&](int) { return next++; });
    channel->GetPointList()->SetSize(next);
    for (int i = 0; i < next; i++)
        (*channel->GetUVWPointList())[i]->u = first + static_cast<float>(i);
    for (const int face : empty)
        channel->GetFaceList()->SetFaceFlag(face, FACE_EMPTY, true);
    object.AddChannel(channel);
    return channel;
}

inline std::vector<float> UsOf(const CUVWChannel& channel, int face)
{
    std::vector<float> us;
    for (const int corner : Corners(*channel.GetFaceList(), face))
        us.push_back((*channel.GetUVWPointList())[corner]->u);
    return us;
}

/// Places of all points of a list.
inline std::vector<XYZ> PlacesOf(const C3DPointList& points)
{
    std::vector<XYZ> places;
    for (int i = 0; i < points.GetSize(); i++)
        places.push_back({points[i]->x, points[i]->y, points[i]->z});
    return places;
}

/// Faces and channels agree: as many faces, as many corners where a face has data, corners inside their points.
inline void CheckInStep(C3DGeomObject& object)
{
    CheckConsistent(*object.GetFaceList(), object.GetPointNbr());
    for (CChannel* channel : *object.GetChannels()) {
        if (!channel->GetFaceList()) {
            EXPECT_EQ(channel->GetPointList()->GetSize(), object.GetPointNbr());
            continue;
        }
        CheckConsistent(*channel->GetFaceList(), channel->GetPointList()->GetSize());
        ASSERT_EQ(channel->GetFaceList()->GetSize(), object.GetFaceNbr());
        for (int i = 0; i < object.GetFaceNbr(); i++) {
            const bool empty = channel->GetFaceList()->IsFaceFlagSet(i, FACE_EMPTY);
            EXPECT_EQ(Corners(*channel->GetFaceList(), i).size(), empty ? 0 : Corners(*object.GetFaceList(), i).size());
        }
    }
}
