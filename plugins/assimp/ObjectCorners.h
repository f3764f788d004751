#pragma once

#include <cstddef>
#include <vector>

#include <3dzel.h>

#include "PointJoin.h"

/// Values at the corners of an object: normals, texture coordinates or colours. Equal values are one.
struct CornerLayer {
    CornerLayer(unsigned int id, std::size_t cornerCount) : channelId(id), corners(cornerCount, -1) {}

    bool HasValue(std::size_t corner) const { return corners[corner] >= 0; }
    const Position& At(std::size_t corner) const { return values[static_cast<std::size_t>(corners[corner])]; }

    unsigned int channelId;
    BlockVector<int> corners;        // number of the value; -1 where there is none
    BlockVector<Position> values;    // of colours: PackColor
};

/// The live faces of an object with all that their corners hold, in flat arrays, faces of one material together.
///
/// Materials come in the order in which faces name them first, their faces in the object's order.
class ObjectCorners {
public:
    /// The faces of one material.
    struct Part {
        unsigned int material;
        std::size_t firstFace, faceCount, firstCorner, cornerCount;
    };

    explicit ObjectCorners(C3DGeomObject& object);

    const std::vector<Part>& GetParts() const { return m_parts; }
    std::size_t GetFaceCount() const { return m_sizes.size(); }
    std::size_t GetPointCount() const { return m_pointCount; }
    /// Number of corners of each face.
    const BlockVector<unsigned int>& GetSizes() const { return m_sizes; }
    /// Point of each corner.
    const BlockVector<int>& GetCornerPoints() const { return m_points; }
    const C3DTPoint<float>& GetPoint(int point) const { return m_positions[point]; }
    /// Faces left out because a corner names no point.
    std::size_t GetRefusedCount() const { return m_refused; }

    /// A normal for each corner: the specified one where there is one, else that of the object's smooth mode and angle.
    CornerLayer ReadNormals();
    /// The valid channels of a kind, in their order.
    std::vector<CornerLayer> ReadCoordinates() const;
    std::vector<CornerLayer> ReadColors() const;

private:
    void TakeFaces();
    void PlaceFaces(BlockVector<unsigned int>&& live, const BlockVector<unsigned int>& parts);
    bool IsInStep(const CFaceList* channelFaces) const;
    /// Gives corners without a value that of the channel's corner.
    template <class POINTS>
    void AddLayer(std::vector<CornerLayer>& layers, const CChannel& channel, const CFaceList* faces, const POINTS* points) const;
    void Fill(CornerLayer& layer, const CFaceList& channelFaces, const BlockVector<int>& numbers) const;

    C3DGeomObject& m_object;
    const C3DTPoint<float>* m_positions = nullptr;
    std::size_t m_pointCount = 0, m_refused = 0;
    std::vector<Part> m_parts;
    BlockVector<unsigned int> m_faces;    // of the object
    BlockVector<unsigned int> m_sizes;
    BlockVector<int> m_points;
};
