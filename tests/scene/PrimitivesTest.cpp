#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "scene/Primitives.h"
#include "scene/SceneBuilders.h"
#include "support/Checksum.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Surface.h"

namespace {

const C3DTPoint<float> ORIGIN, CENTRE(10, 20, 30);

/// A new node that goes with the test, and what is in its object.
struct Solid {
    explicit Solid(C3DSceneNode* node_) : node(node_)
    {
        EXPECT_NE(node, nullptr);
        object = *node->GetBaseObject();
        points = AllPoints(*object->GetPointList());
        faces = AllCorners(*object->GetFaceList());
        CheckConsistent(*object->GetFaceList(), object->GetPointNbr());
        if ((uvw = static_cast<CUVWChannel*>(object->GetChannelByIndex(0, CHANNEL_UVW, false)))) {
            CheckConsistent(*uvw->GetFaceList(), uvw->GetPointList()->GetSize());
            EXPECT_EQ(uvw->GetFaceList()->GetSize(), object->GetFaceNbr());
        }
    }
    ~Solid() { node->Delete(); }
    std::vector<float> UVW(int i) const { return {(*uvw->GetUVWPointList())[i]->u, (*uvw->GetUVWPointList())[i]->v}; }

    C3DSceneNode* node;
    C3DObject* object;
    CUVWChannel* uvw = nullptr;
    std::vector<Vec> points;
    FaceCorners faces;
};

C3DSceneNode* Cube(bool hasUVW) { return CreateCube(CENTRE, 2, 4, 6, hasUVW, 7, 20); }
C3DSceneNode* Capsule(float length, unsigned int S, unsigned int C, unsigned int B, _AXIS_INFO axis)
{
    return CreateCapsule(CENTRE, 1, length, S, C, B, axis, 0, 7, 0);
}

}

TEST(Primitives, PointsFacesAndCoordinatesStandInTheirOrder)
{
    // The sums were written down while rows ran from pole to pole, seams and lids had points of their own, and caps lay around their pivot.
    const struct {
        const char* name;
        C3DSceneNode* node;
        std::uint64_t sum;
    } rows[] = {
        {"cube", Cube(true), 0x5C62540A41EC8956u},
        {"plane", CreatePlane(CENTRE, {0, 0, 2}, 4, 2, 2, 1, true, 0, 20), 0x65D9E8B73D875A30u},
        {"tilted plane", CreatePlane(ORIGIN, {3, 0, 4}, 10, 10, 1, 1, false, 0, 0), 0x43AC5375F63BF756u},
        {"sphere", CreateSphere(ORIGIN, 2, 2, 4, true, 0, 20), 0xA3BD207D9FDC0D9u},
        {"cylinder", CreateCylinder(CENTRE, 2, 6, 4, 1, true, true, 0, 20), 0x13811058E3DE4A12u},
        {"cone", CreateCone(CENTRE, 2, 6, 4, 2, true, 0, 20), 0x28A72A94AFC2515u},
        {"capsule", Capsule(5, 3, 1, 2, AXIS_X), 0x9500DBB0050AD087u},
        {"capsule of two rings a cap", Capsule(5, 2, 2, 1, AXIS_Y), 0x52F38ABBB81698D4u},
        {"capsule along z", Capsule(5, 4, 3, 2, AXIS_Z), 0x1AEA15EA51715576u},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Solid solid(row.node);
        Checksum sum;
        for (const Vec& point : solid.points)
            for (const double value : point)
                sum.Add(std::lround(1e4 * value));
        sum.Add(solid.faces);
        for (int i = 0; solid.uvw && i < solid.uvw->GetPointList()->GetSize(); i++)
            for (const float value : solid.UVW(i))
                sum.Add(std::lround(1e4 * value));
        C4x4TMatrix<float> matrix;
        solid.node->GetNodeTM(0, matrix, true);
        for (int i = 0; i < 3; i++)
            sum.Add(std::lround(1e3 * matrix.m[i][3]));
        EXPECT_EQ(sum.Get(), row.sum);
    }
}

TEST(Primitives, NothingWithoutSteps)
{
    const C3DTVector<float> up(0, 0, 1);
    const unsigned int many = 70000, most = 0xFFFFFFFF;    // 4.9e9 points, and sums that come round to 0
    for (const C3DSceneNode* node :
         {CreatePlane(ORIGIN, up, 1, 1, 0, 1, true, 0, 0), CreatePlane(ORIGIN, up, 1, 1, 1, 0, true, 0, 0),
          CreatePlane(ORIGIN, up, 1, 1, many, many, true, 0, 0), CreatePlane(ORIGIN, up, 1, 1, most, most, true, 0, 0),
          CreateSphere(ORIGIN, 1, 0, 4, true, 0, 0), CreateSphere(ORIGIN, 1, 4, -1, true, 0, 0),
          CreateSphere(ORIGIN, 1, 0x7FFFFFFF, 0x7FFFFFFF, true, 0, 0), CreateCylinder(ORIGIN, 1, 1, 0, 1, true, true, 0, 0),
          CreateCylinder(ORIGIN, 1, 1, 1, 0, true, true, 0, 0), CreateCylinder(ORIGIN, 1, 1, most, most, true, true, 0, 0),
          CreateCone(ORIGIN, 1, 1, 0, 1, true, 0, 0), CreateCone(ORIGIN, 1, 1, 1, 0, true, 0, 0),
          CreateCone(ORIGIN, 1, 1, most, 1, true, 0, 0), Capsule(0, 4, 4, 4, AXIS_X), Capsule(4, 0, 4, 4, AXIS_X),
          Capsule(4, 4, 0, 4, AXIS_X), Capsule(4, most, most, most, AXIS_X), Capsule(4, 4, 4, 4, _AXIS_INFO(3))})
        EXPECT_EQ(node, nullptr);
}
