#include "scene/Primitives.h"

#include "scene/PrimitiveBuilder.h"

C3DSceneNode* CreateCube(const C3DTPoint<float>& centre, double sizeX, double sizeY, double sizeZ, bool hasUVW, unsigned int materialID,
                         unsigned int channelID)
{
    static constexpr int SIGNS[8][3] = {{1, 1, 1}, {1, 1, -1}, {-1, 1, -1}, {-1, 1, 1}, {1, -1, 1}, {1, -1, -1}, {-1, -1, -1}, {-1, -1, 1}};
    static constexpr int QUADS[6][4] = {{1, 2, 3, 0}, {4, 5, 1, 0}, {5, 6, 2, 1}, {6, 7, 3, 2}, {7, 4, 0, 3}, {5, 4, 7, 6}};
    static constexpr int UVW_QUADS[6][4] = {{3, 2, 1, 0}, {0, 3, 2, 1}, {1, 0, 3, 2}, {2, 1, 0, 3}, {3, 2, 1, 0}, {2, 1, 0, 3}};
    static constexpr float UVW_POINTS[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

    CPrimitiveBuilder cube(8, 4, hasUVW ? 4 : 0, channelID);
    for (const auto& sign : SIGNS)
        cube.AddPoint(centre.x + sign[0] * sizeX / 2, centre.y + sign[1] * sizeY / 2, centre.z + sign[2] * sizeZ / 2);
    cube.GetFaces().AppendFaces(6, 4, QUADS[0]);
    if (hasUVW) {
        for (const auto& [u, v] : UVW_POINTS)
            cube.AddUVW(u, v);
        cube.GetChannel()->GetFaceList()->AppendFaces(6, 4, UVW_QUADS[0]);
    }
    return cube.Finish(L"Cube", materialID);
}

C3DSceneNode* CreatePlane(const C3DTPoint<float>& centre, const C3DTVector<float>& normal, double width, double height, unsigned int stepsX,
                          unsigned int stepsY, bool hasUVW, unsigned int materialID, unsigned int channelID)
{
    const std::uint64_t row = std::uint64_t{stepsY} + 1, pointNbr = (std::uint64_t{stepsX} + 1) * row;
    if (!CPrimitiveBuilder::IsSize(stepsX) || !CPrimitiveBuilder::IsSize(stepsY) || !CPrimitiveBuilder::IsSize(pointNbr))
        return nullptr;

    // Two directions in the plane. Their lengths are what the products give.
    C3DTVector<float> n(normal);
    if (n.Length() > 1e-15)
        n.Normalize();
    C3DTVector<float> a = Cross(n, C3DTVector<float>(1, 0, 0));
    if (a.Length() < 0.005)
        a = Cross(n, C3DTVector<float>(0, 1, 0));
    const C3DTVector<float> b = Cross(n, a);
    const C3DTVector<float> stepA = a * (width / stepsX), stepB = b * (height / stepsY);
    const C3DTPoint<float> origin = centre + (-a * 0.5 * width - b * 0.5 * height);

    CPrimitiveBuilder plane(pointNbr, 4, hasUVW ? pointNbr : 0, channelID);
    for (unsigned int ix = 0; ix <= stepsX; ix++)
        for (unsigned int iy = 0; iy <= stepsY; iy++) {
            const C3DTPoint<float> point = origin + stepA * ix + stepB * iy;
            plane.AddPoint(point.x, point.y, point.z);
            plane.AddUVW(PartOf(ix, stepsX), PartOf(iy, stepsY));
        }
    plane.AddFaces(std::uint64_t{stepsX} * stepsY, 4, [=](int* to, unsigned int k) {
        const int next = static_cast<int>(row), p = static_cast<int>(k / stepsY * (stepsY + 1) + k % stepsY);
        to[0] = p, to[1] = p + next, to[2] = p + next + 1, to[3] = p + 1;
    });
    return plane.Finish(L"Plane", materialID);
}
