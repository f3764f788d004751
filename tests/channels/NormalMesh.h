#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/NormalFaceList.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DVectorList.h"
#include "support/Consistent.h"
#include "support/Meshes.h"

using Vector = C3DTVector<float>;

constexpr float PI = std::numbers::pi_v<float>;

inline float Degrees(double degrees) { return static_cast<float>(degrees * std::numbers::pi / 180); }

/// A mesh with channels, as an object holds them.
struct NormalMesh {
    explicit NormalMesh(Mesh&& from, int mode = NORMAL_AREA) : mesh(std::move(from)), info(mesh.faces, mesh.points)
    {
        info.SetChannels(channels, nullptr, 0);
        info.SetSmoothMode(mode);
    }
    NormalMesh(const NormalMesh&) = delete;
    ~NormalMesh() { DeleteMe(channels); }

    CPointNormalChannel& Smooth(float angle)
    {
        CPointNormalChannel* channel = channels->GetPointNormalChannel();
        channel->InitNormals(&info, angle);
        return *channel;
    }
    /// Given normals with those corners; a face without corners is one without data.
    CSpecNormalChannel& Give(const std::vector<XYZ>& values, const std::vector<std::vector<int>>& corners)
    {
        auto* channel = new CSpecNormalChannel;
        channels->AddChannel(channel);
        C3DVectorList& vectors = *channel->GetNormalVectorList();
        vectors.SetSize(static_cast<int>(values.size()));
        for (std::size_t i = 0; i < values.size(); i++) {
            Vector& v = *vectors[static_cast<int>(i)];
            v.x = values[i].x, v.y = values[i].y, v.z = values[i].z;
        }
        AddFaces(*channel->GetNormalFaceList(), corners);
        for (std::size_t i = 0; i < corners.size(); i++)
            if (corners[i].empty())
                channel->GetNormalFaceList()->SetFaceFlags(static_cast<unsigned int>(i), FACE_EMPTY, true);
        return *channel;
    }
    bool HasPointFlag(int point, unsigned int flag) const { return (mesh.points->ElementAt(point)->GetFlags() & flag) != 0; }
    int CountPoints(unsigned int flag) const { return mesh.points->GetNumberOfPoints(flag, true); }

    Mesh mesh;
    CDependentChannels* channels = CDependentChannels::Create();
    CGeomInfo info;
};

/// The vector at a corner of a channel; null where there is none.
template <class CHANNEL> Vector* AtCorner(CHANNEL& channel, int face, int corner)
{
    int count;
    const int* corners = channel.GetNormalFaceList()->GetIndexes(static_cast<unsigned int>(face), count);
    return corner < count ? channel.GetNormalVectorList()->ElementAt(corners[corner]) : nullptr;
}

/// Whether the vector has the direction and is one long.
inline void ExpectDirection(const Vector* v, double x, double y, double z)
{
    ASSERT_NE(v, nullptr);
    const double length = std::sqrt(x * x + y * y + z * z);
    EXPECT_NEAR(v->x, x / length, 1e-6);
    EXPECT_NEAR(v->y, y / length, 1e-6);
    EXPECT_NEAR(v->z, z / length, 1e-6);
}
