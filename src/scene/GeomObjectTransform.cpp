#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "scene/GeomObject.h"

/// Determinant of the 3x3 block.
static double Determinant(const C4x4TMatrix<float>& matrix)
{
    const auto m = [&](int row, int column) { return static_cast<double>(matrix.m[row][column]); };
    return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) - m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
           m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

bool C3DGeomObject::MatrixTransform(const C4x4TMatrix<float>& matrix)
{
    if (matrix == C4x4TMatrix<float>())
        return false;
    if (m_points)
        m_points->Transform(matrix);    // no tolerance: the whole model may be small in scene units
    m_channels->MatrixTransform(matrix, CHANNEL_ALL);
    if (Determinant(matrix) < 0)
        FlipNormals();
    Invalidate(CHANGE_POINTS, true);
    return true;
}

bool C3DGeomObject::FlipNormals()
{
    if (!m_faces || IsFlagSet(OBJECT_EMPTY))
        return false;
    m_faces->FlipNormals();
    for (CChannel* channel : *m_channels) {
        if (channel->GetFaceList() && !channel->IsOneFlagSet(CHANNEL_INVALID | CHANNEL_UNFOLLOWED))
            channel->GetFaceList()->FlipNormals();
    }
    Invalidate(CHANGE_FACES, true);
    return true;
}
