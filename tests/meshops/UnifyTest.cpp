#include <cmath>

#include "meshops/ObjectCase.h"
#include "support/Checksum.h"
#include "support/RandomMesh.h"
#include "tools/BitArray.h"

TEST(Unify, AgreesWithTheToldRulesOnRandomMeshes)
{
    // Faults in mind: a face looks at turned faces too early, too late or not at all; the order of looks; flips counted twice. Points on
    // a coarse lattice put many faces into one plane and side by side. The sum is that of the rules with every look over everything.
    Checksum sum;
    int flips = 0;
    for (unsigned int seed = 0; seed < 600; seed++) {
        SCOPED_TRACE(seed);
        RandomMesh random(seed, seed % 3 ? RandomMesh::TRIANGLES : RandomMesh::MIXED);
        std::vector<XYZ> points;
        for (int i = 0; i < random.pointCount; i++)
            points.push_back({static_cast<float>(random.Below(4)), static_cast<float>(random.Below(4)),
                              static_cast<float>(seed % 2 ? 0 : random.Below(3))});
        SetPoints(*random.mesh.points, points);

        CGeomInfo info = random.mesh.Info();
        CBitArray flipped;
        EXPECT_TRUE(random.mesh.faces->UnifyNormals(&info, flipped));
        for (int face = 0; face < random.FaceCount(); face++) {
            std::vector<int> turned = random.corners[face];
            if (flipped[face])
                std::reverse(turned.begin(), turned.end());
            EXPECT_EQ(Corners(*random.mesh.faces, face), turned);
            flips += flipped[face];
        }
        sum.Add(AllCorners(*random.mesh.faces));
        EXPECT_FALSE(random.mesh.faces->HasPointToFaceGraph());
        EXPECT_FALSE(random.mesh.faces->HasEdgeToFaceGraph());
    }
    EXPECT_GT(flips, 500);
    EXPECT_EQ(sum.Get(), 0x9B1541F965945182u);
}

TEST(Unify, TurnsShellsOutwardWithTheirChannels)
{
    for (const unsigned int seeds : {0u, 1u, 0x2Au, 0x3Fu}) {    // faces that come in reversed
        SCOPED_TRACE(seeds);
        Mesh cube = Cube();
        const std::vector<std::vector<int>> outward = AllCorners(*cube.faces);
        Owned<C3DObject> object = ObjectOf(std::move(cube));
        auto* channel = new CUVWChannel;
        channel->GetFaceList()->AppendCopies(*object->GetFaceList(), nullptr, 6, [](int corner) { return corner; });
        channel->GetPointList()->SetSize(8);
        object->AddChannel(channel);
        for (unsigned int face = 0; face < 6; face++)
            if (CFace view; seeds >> face & 1) {
                object->GetFaceList()->GetFace(face, view);
                view.Flip();
                channel->GetFaceList()->GetFace(face, view);
                view.Flip();
            }
        EXPECT_TRUE(object->UnifyNormals());
        EXPECT_EQ(AllCorners(*object->GetFaceList()), outward);
        EXPECT_EQ(AllCorners(*channel->GetFaceList()), outward);
    }
}

TEST(Unify, AFlatSheetLooksDown)
{
    Mesh grid = QuadGrid(3);
    CGeomInfo info = grid.Info();
    CBitArray flipped;
    grid.faces->UnifyNormals(&info, flipped);
    EXPECT_EQ(flipped.GetCount(), 9u);    // both sides of the box touch it; the lower one comes first
}

TEST(Unify, SheetsThatShareOnePointKeepTheirSense)
{
    // A pinwheel: blades that share the hub alone, each a sheet of its own.
    constexpr int BLADES = 2'000;
    Mesh mesh;
    mesh.points->SetSize(2 * BLADES + 1);
    for (int i = 0; i < 2 * BLADES; i++) {
        C3DTPoint<float>& point = *mesh.points->ElementAt(i + 1);
        const double angle = 6.28318530717958648 * i / (2 * BLADES);
        point.x = static_cast<float>(std::cos(angle)), point.y = static_cast<float>(std::sin(angle)), point.z = 1;
    }
    mesh.faces->AppendFaces(BLADES, 3, [](int* to, unsigned int k) {
        to[0] = 0, to[1] = 1 + 2 * static_cast<int>(k) + k % 2, to[2] = 2 + 2 * static_cast<int>(k) - k % 2;
    });
    CGeomInfo info = mesh.Info();
    CBitArray flipped;
    mesh.faces->UnifyNormals(&info, flipped);
    EXPECT_EQ(flipped.GetCount(), BLADES / 2u);
}
