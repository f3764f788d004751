#include "ObjectCorners.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "Convert.h"

// Faces, part by part

ObjectCorners::ObjectCorners(C3DGeomObject& object) : m_object(object)
{
    if (const C3DPointList* points = object.GetPointList()) {
        m_positions = points->GetFirst();
        m_pointCount = static_cast<std::size_t>(points->GetSize());
    }
    if (object.GetFaceList() && object.GetKindOf() != OBJECT_CURVE)
        TakeFaces();
}

void ObjectCorners::TakeFaces()
{
    const C3DFaceList& faces = *m_object.GetFaceList();
    const CFaceFlags flags(faces);
    std::unordered_map<unsigned int, unsigned int> partOf;
    BlockVector<unsigned int> live, parts;
    live.reserve(static_cast<std::size_t>(faces.GetSize()));
    parts.reserve(static_cast<std::size_t>(faces.GetSize()));
    unsigned int lastMaterial = 0, lastPart = 0;
    for (unsigned int i = 0; i < static_cast<unsigned int>(faces.GetSize()); i++) {
        int count;
        const int* corners = faces.GetIndexes(i, count);
        if (flags.IsDead(i) || count < 3)
            continue;
        if (!std::all_of(corners, corners + count, [this](int point) { return static_cast<unsigned int>(point) < m_pointCount; })) {
            m_refused++;
            continue;
        }
        const unsigned int material = static_cast<const C3DFacePropertyData*>(faces.GetMainData(i))->material;
        if (m_parts.empty() || material != lastMaterial) {
            const auto [place, isNew] = partOf.try_emplace(material, static_cast<unsigned int>(m_parts.size()));
            if (isNew)
                m_parts.push_back({material, 0, 0, 0, 0});
            lastMaterial = material, lastPart = place->second;
        }
        m_parts[lastPart].faceCount++;
        m_parts[lastPart].cornerCount += static_cast<std::size_t>(count);
        live.push_back(i);
        parts.push_back(lastPart);
    }
    PlaceFaces(std::move(live), parts);
}

// A counting sort by part: the object's order stays within each.
void ObjectCorners::PlaceFaces(BlockVector<unsigned int>&& live, const BlockVector<unsigned int>& parts)
{
    std::size_t face = 0, corner = 0;
    std::vector<std::size_t> next;
    for (Part& part : m_parts) {
        part.firstFace = face, part.firstCorner = corner;
        next.push_back(face);
        face += part.faceCount, corner += part.cornerCount;
    }
    if (m_parts.size() > 1) {
        m_faces.resize(live.size());
        for (std::size_t i = 0; i < live.size(); i++)
            m_faces[next[parts[i]]++] = live[i];
    } else {
        m_faces = std::move(live);
    }
    m_sizes.reserve(face);
    m_points.reserve(corner);
    for (const unsigned int i : m_faces) {
        int count;
        const int* points = m_object.GetFaceList()->GetIndexes(i, count);
        m_sizes.push_back(static_cast<unsigned int>(count));
        m_points.insert(m_points.end(), points, points + count);
    }
}

// Layers

namespace {

Position ToPosition(const C3DTVector<float>& vector) { return {vector.x, vector.y, vector.z}; }
Position ToPosition(const CUVWPoint& point) { return {point.u, point.v, point.w}; }
Position ToPosition(const CVCPoint& point) { return PackColor(point.GetColor()); }

/// Appends the values of a channel that nobody has yet, and gives the number of each of its points: -1 for one that is not `usable`.
template <class POINTS, class USABLE> BlockVector<int> NumberPoints(const POINTS& points, PointJoin& join, USABLE usable)
{
    const auto* first = points.GetFirst();
    const auto count = static_cast<std::size_t>(points.GetSize());
    BlockVector<Position> values(count);
    for (std::size_t i = 0; i < count; i++)
        values[i] = ToPosition(first[i]);
    BlockVector<int> numbers;
    join.Add(values.data(), count, numbers);
    for (std::size_t i = 0; i < count; i++)
        if (first[i].IsFlagSet(POINT_UNSET) || !usable(first[i]))
            numbers[i] = -1;
    return numbers;
}

bool IsDirection(const C3DTVector<float>& vector)
{
    const double length = vector.LengthSquared();
    return length > 0 && std::isfinite(length);
}

bool IsAlways(const CPt&) { return true; }

}

bool ObjectCorners::IsInStep(const CFaceList* channelFaces) const
{
    return channelFaces && channelFaces->GetSize() == m_object.GetFaceNbr();
}

void ObjectCorners::Fill(CornerLayer& layer, const CFaceList& channelFaces, const BlockVector<int>& numbers) const
{
    const CFaceFlags flags(channelFaces);
    std::size_t corner = 0;
    for (std::size_t i = 0; i < m_faces.size(); corner += m_sizes[i++]) {
        int count;
        const int* indexes = channelFaces.GetIndexes(m_faces[i], count);
        if (flags.IsDead(m_faces[i]) || static_cast<unsigned int>(count) != m_sizes[i])
            continue;
        for (int k = 0; k < count; k++)
            if (int& value = layer.corners[corner + static_cast<std::size_t>(k)];
                value < 0 && static_cast<unsigned int>(indexes[k]) < numbers.size())
                value = numbers[static_cast<std::size_t>(indexes[k])];
    }
}

CornerLayer ObjectCorners::ReadNormals()
{
    CornerLayer layer(NO_CHANNEL_ID, m_points.size());
    PointJoin join(m_pointCount);
    const CGeomInfo info(&m_object);
    CSpecNormalChannel* given = m_object.GetChannels()->GetSpecNormalChannel();
    if (given && IsInStep(given->GetNormalFaceList())) {
        given->ComputeNormals(&info, m_object.GetSmoothMode());
        Fill(layer, *given->GetNormalFaceList(), NumberPoints(*given->GetNormalVectorList(), join, IsDirection));
    }
    const auto isMissing = [](int value) { return value < 0; };
    if (std::ranges::any_of(layer.corners, isMissing))
        if (CPointNormalChannel* smooth = m_object.GetPointNormalChannel(); smooth && IsInStep(smooth->GetNormalFaceList()))
            Fill(layer, *smooth->GetNormalFaceList(), NumberPoints(*smooth->GetNormalVectorList(), join, IsDirection));
    if (std::ranges::any_of(layer.corners, isMissing)) {    // of faces without area
        const Position up = {0, 0, 1};
        BlockVector<int> number;
        join.Add(&up, 1, number);
        std::ranges::replace_if(layer.corners, isMissing, number.front());
    }
    layer.values = join.TakePositions();
    return layer;
}

std::vector<CornerLayer> ObjectCorners::ReadCoordinates() const
{
    std::vector<CornerLayer> layers;
    CUVWFaceList* faces;
    CUVWPointList* points;
    for (int i = 0; const CChannel* channel = m_object.GetChannels()->GetUVWChannelByIndex(i, faces, points); i++)
        AddLayer(layers, *channel, faces, points);
    return layers;
}

std::vector<CornerLayer> ObjectCorners::ReadColors() const
{
    std::vector<CornerLayer> layers;
    CVCFaceList* faces;
    CVCPointList* points;
    for (int i = 0; const CChannel* channel = m_object.GetChannels()->GetVCChannelByIndex(i, faces, points); i++)
        AddLayer(layers, *channel, faces, points);
    return layers;
}

template <class POINTS>
void ObjectCorners::AddLayer(std::vector<CornerLayer>& layers, const CChannel& channel, const CFaceList* faces, const POINTS* points) const
{
    if (!IsInStep(faces))
        return;
    CornerLayer& layer = layers.emplace_back(channel.GetChannelID(), m_points.size());
    PointJoin join(static_cast<std::size_t>(points->GetSize()));
    Fill(layer, *faces, NumberPoints(*points, join, IsAlways));
    layer.values = join.TakePositions();
}
