// Slicing to look at: each corner of an object gets the colour of the grid cell that it lies in.

#include <algorithm>
#include <cstdint>
#include <memory>

#include "channels/VCChannel.h"
#include "channels/VCFaceList.h"
#include "channels/VCPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "meshops/IntCoordMap.h"
#include "meshops/Slice.h"
#include "meshops/SliceScene.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"

namespace {

struct GridSize {
    unsigned int x, y, z;

    std::uint64_t GetCount() const { return std::uint64_t{x} * y * z; }
};

/// 128 to 255, so that no cell is dark.
unsigned char Shade(unsigned int cell, unsigned int cells)
{
    return static_cast<unsigned char>(std::uint64_t{127} * (cell + 1) / cells + 128);
}

/// A colour a cell, x fastest, and black behind them for what lies in none.
void FillPalette(CVCPointList& colours, const GridSize& size)
{
    colours.SetSize(static_cast<int>(size.GetCount()) + 1, false, 0);
    CVCPoint* colour = colours.GetFirst();
    for (unsigned int z = 0; z < size.z; z++)
        for (unsigned int y = 0; y < size.y; y++)
            for (unsigned int x = 0; x < size.x; x++)
                (colour++)->SetColor({Shade(x, size.x), Shade(y, size.y), Shade(z, size.z)});
    colour->SetColor({});
}

class CGridColours {
public:
    CGridColours(const C3DPointList& points, const CIntCoordMap& grid, const GridSize& size) : m_points(points), m_grid(grid), m_size(size)
    {
    }
    int GetColourOf(int point) const
    {
        CIntCoordMap::Cell cell;
        const C3DTPoint<float>* place = point >= 0 ? m_points.ElementAt(point) : nullptr;
        if (!place || !m_grid.GetCell(*place, cell))
            return static_cast<int>(m_size.GetCount());
        const auto held = [](std::int64_t number, unsigned int count) {
            return static_cast<unsigned int>(std::clamp<std::int64_t>(number, 0, count - 1));
        };
        return static_cast<int>((held(cell.z, m_size.z) * m_size.y + held(cell.y, m_size.y)) * m_size.x + held(cell.x, m_size.x));
    }

private:
    const C3DPointList& m_points;
    const CIntCoordMap& m_grid;
    GridSize m_size;
};

void ColourFaces(CVCFaceList& colours, const C3DFaceList& faces, const CGridColours& grid)
{
    const unsigned int size = static_cast<unsigned int>(faces.GetSize());
    const CFaceFlags flags(faces);
    CBlockVector<unsigned int> sizes(size, 0);
    CBlockVector<int> indexes;
    for (unsigned int face = 0; face < size; face++) {
        int count;
        const int* corners = faces.GetIndexes(face, count);
        if (flags[face] & FACE_INVALID)
            continue;
        sizes[face] = static_cast<unsigned int>(count);
        for (int k = 0; k < count; k++)
            indexes.push_back(grid.GetColourOf(corners[k]));
    }
    colours.AppendFaces(static_cast<int>(size), sizes.data(), indexes.data());
    for (unsigned int face = 0; face < size; face++)
        if (flags[face] & FACE_INVALID)
            colours.SetFaceFlag(face, FACE_INVALID, true);
}

void ColourObject(C3DGeomObject& object, const GridSize& size)
{
    C3DPointList& points = *object.GetPointList();
    const std::unique_ptr<CIntCoordMap> grid(points.InitSlicerMap(false, size.x, size.y, size.z, 0, true));
    auto* channel = new CVCChannel(NO_CHANNEL_ID);
    object.AddChannel(channel);
    object.SetGlobalVCChannel(channel->GetChannelID(), 1.0f);
    FillPalette(*channel->GetVCPointList(), size);
    ColourFaces(*channel->GetVCFaceList(), *object.GetFaceList(), CGridColours(points, *grid, size));
}

}    // namespace

bool ColourObjects(C3DScene& scene, unsigned int nx, unsigned int ny, unsigned int nz)
{
    const GridSize size{nx, ny, nz};
    if (std::uint64_t{nx} * ny > SLICE_MOST_CELLS || size.GetCount() > SLICE_MOST_CELLS)
        return false;
    C3DGeomObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        scene.GetNextNode(object, pos);
        if (object && object->GetPointNbr() > 0 && object->GetFaceList())
            ColourObject(*object, size);
    }
    return true;
}
