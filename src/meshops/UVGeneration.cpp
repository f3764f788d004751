// Texture coordinates out of projections.
//
// A map may ask for a projection in place of coordinates. Each face of its material gets corners in the map's channel: a point of the
// object gives one channel point however many faces use it, for a box projection one a dominant axis. Faces are not cut at the seam of a
// cylinder or a sphere.

#include "meshops/UVGeneration.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"
#include "tools/Progress.h"

namespace {

// Turns as projections have always had them, not quite those of a circle.
constexpr double TURN = 6.2831832, QUARTER_TURN = 1.5707958, HALF_TURN = 3.141592653589793;

struct UV {
    double u, v;
};

double Around(double a, double b)
{
    const double angle = -std::atan2(a, b);
    return angle < 0 ? angle + TURN : angle;
}

double CylinderAngle(double a, double b)
{
    if (a == 0 && b == 0)
        return 0;
    if (b == 0)
        return a < 0 ? QUARTER_TURN : TURN - QUARTER_TURN;
    return Around(a, b);
}

double Wrap(double x)
{
    if (x >= 0 && x <= 1)
        return x;
    x -= std::floor(x);
    return x > 1 ? 0 : x;
}

double Tiled(double value, float tile) { return tile != 1.0f ? Wrap(tile * value) : value; }

/// The rule of one map.
class Projection {
public:
    explicit Projection(const CMaterialMap& map) : m_kind(map.GetProjection()), m_axis(map.GetAxis())
    {
        map.GetTile(0, m_tile);
        map.GetMatrix(0, m_matrix);
        m_offset = C3DTVector<float>(m_matrix.m[0][3], m_matrix.m[1][3], m_matrix.m[2][3]);
    }

    bool IsBox() const { return m_kind == PROJECTION_BOX; }
    UV Project(const C3DTPoint<float>& point) const
    {
        double p[3];
        Turn(point, p);
        switch (m_kind) {
        case PROJECTION_PLANAR: return Planar(p);
        case PROJECTION_CYLINDRICAL: return Cylindrical(p);
        default: return Spherical(p);
        }
    }
    /// For a box: along one of the axes.
    UV ProjectAlong(const C3DTPoint<float>& point, int axis) const
    {
        double p[3];
        Turn(point, p);
        switch (axis) {
        case 0: return {p[2] + 0.5, 0.5 - p[1]};
        case 1: return {p[0] + 0.5, 0.5 - p[2]};
        default: return {p[0] + 0.5, 0.5 - p[1]};
        }
    }

private:
    void Turn(const C3DTPoint<float>& point, double (&p)[3]) const
    {
        const double x = point.x - m_offset.x, y = point.y - m_offset.y, z = point.z - m_offset.z;
        for (int i = 0; i < 3; i++)
            p[i] = m_matrix.m[i][0] * x + m_matrix.m[i][1] * y + m_matrix.m[i][2] * z;
    }
    UV Planar(const double (&p)[3]) const
    {
        switch (m_axis) {
        case MAP_AXIS_Y: return {p[0] + 0.5, 0.5 - p[2]};
        case MAP_AXIS_Z: return {p[0] + 0.5, 0.5 - p[1]};
        default: return {p[2] + 0.5, 0.5 - p[1]};
        }
    }
    UV Cylindrical(const double (&p)[3]) const
    {
        const auto place = [&](double a, double b, double height) {
            return UV{Tiled(1 - CylinderAngle(a, b) / TURN, m_tile.x), 0.5 - height};
        };
        switch (m_axis) {
        case MAP_AXIS_Y: return place(-p[0], p[2], p[1]);
        case MAP_AXIS_Z: return place(-p[0], -p[1], p[2]);
        default: return place(p[2], -p[1], p[0]);
        }
    }
    UV Spherical(const double (&p)[3]) const
    {
        switch (m_axis) {
        case MAP_AXIS_Y: return OnSphere(-p[0], p[1], p[2]);
        case MAP_AXIS_Z: return OnSphere(-p[0], p[2], -p[1]);
        default: return OnSphere(p[2], p[0], -p[1]);
        }
    }
    UV OnSphere(double a, double height, double b) const
    {
        double theta = 0, phi = 0;
        if (a != 0 || b != 0) {
            theta = Around(a, b);
            phi = std::atan(height / std::sqrt(a * a + b * b));
        } else if (height != 0)
            phi = height < 0 ? -QUARTER_TURN : QUARTER_TURN;
        return {Tiled(1 - theta / TURN, m_tile.x), Tiled(0.5 - phi / HALF_TURN, m_tile.y)};
    }

    MapProjection m_kind;
    MapAxis m_axis;
    C3DTVector<float> m_tile;
    C4x4TMatrix<float> m_matrix;
    C3DTVector<float> m_offset;
};

int DominantAxis(double x, double y, double z)
{
    x = std::fabs(x), y = std::fabs(y), z = std::fabs(z);
    if (y > x)
        return y > z ? 1 : 2;
    return x > z ? 0 : 2;
}

/// Dominant axes of the faces, in the space of the map's matrix.
class FaceAxes {
public:
    FaceAxes(C3DGeomObject& object, const CMaterialMap& map)
    {
        const CFaceNormalChannel* channel = object.GetFaceNormalChannel();
        m_normals = channel ? channel->GetNormalVectorList() : nullptr;
        map.GetMatrix(0, m_matrix);
    }
    int operator[](int face) const
    {
        const C3DTVector<float>* normal = m_normals ? m_normals->ElementAt(face) : nullptr;
        if (!normal)
            return 2;
        const auto row = [&](int i) {
            return double{m_matrix.m[i][0]} * normal->x + double{m_matrix.m[i][1]} * normal->y + double{m_matrix.m[i][2]} * normal->z;
        };
        return DominantAxis(row(0), row(1), row(2));
    }

private:
    const C3DVectorList* m_normals;
    C4x4TMatrix<float> m_matrix;
};

/// One run over the faces of a material: the channel's new faces, and its points.
class Mapper {
public:
    Mapper(C3DGeomObject& object, const CMaterialMap& map, CUVWChannel& channel)
        : m_object(object), m_points(*object.GetPointList()), m_map(map), m_projection(map), m_channel(channel),
          m_numbers(std::size_t(m_points.GetSize()) * (m_projection.IsBox() ? 3 : 1), -1)
    {
    }

    void Run(unsigned int material)
    {
        m_used = m_channel.GetPointList()->GetSize();
        m_channel.GetPointList()->SetSize(m_used + static_cast<int>(m_numbers.size()));
        m_uvw = m_channel.GetUVWPointList()->GetFirst();
        CUVWFaceList* faces = CUVWFaceList::Create(m_channel.GetUVWFaceList());
        if (m_projection.IsBox())
            Map(material, *faces, [axes = FaceAxes(m_object, m_map)](int face) { return axes[face]; });
        else
            Map(material, *faces, [](int) { return 0; });
        m_channel.GetPointList()->SetSize(m_used);
        m_channel.SetFaceList(CHANNEL_UVW, faces, true);
    }

private:
    // Faces of the material get new corners, all others keep what they have; beyond the old list that is nothing.
    template <class AXIS> void Map(unsigned int material, CUVWFaceList& to, AXIS axisOf)
    {
        const C3DFaceList& faces = *m_object.GetFaceList();
        const CUVWFaceList& old = *m_channel.GetUVWFaceList();
        const int count = faces.GetSize();
        CBlockVector<unsigned int> sizes(count);
        CBlockVector<int> kept;
        bool uniform = true;
        for (int face = 0; face < count; face++) {
            const bool isOld = faces.GetFaceMaterial(face) != material;
            if (isOld)
                kept.push_back(face);
            sizes[face] =
                (isOld ? old : static_cast<const CFaceList&>(faces)).GetIndexCollection().GetItemCount(static_cast<unsigned int>(face));
            uniform &= sizes[face] == sizes[0];
        }
        std::size_t next = 0;
        const auto fill = [&](int* corners, unsigned int k) {
            const int face = static_cast<int>(k);
            int size;
            if (next < kept.size() && kept[next] == face) {
                const int* from = old.GetIndexes(face, size);
                std::copy_n(from, size, corners);
                next++;
                return;
            }
            const int* points = faces.GetIndexes(face, size);
            const int axis = axisOf(face);
            for (int i = 0; i < size; i++)
                corners[i] = GetNumber(points[i], axis);
        };
        if (uniform && count > 0)
            to.AppendFaces(count, static_cast<int>(sizes[0]), fill);
        else
            to.AppendFaces(count, sizes.data(), fill);
        for (const int face : kept) {
            if (face < old.GetSize())
                to.CopyFace(static_cast<unsigned int>(face), static_cast<unsigned int>(face), old, true);
            else
                to.SetFaceFlag(static_cast<unsigned int>(face), FACE_EMPTY, true);
        }
    }

    // The channel point of a point, made when it is met for the first time; 0 for a point that is not there.
    int GetNumber(int point, int axis)
    {
        if (static_cast<unsigned int>(point) >= static_cast<unsigned int>(m_points.GetSize()))
            return 0;
        int& number = m_projection.IsBox() ? m_numbers[3 * std::size_t(point) + axis] : m_numbers[point];
        if (number < 0) {
            number = m_used++;
            const C3DTPoint<float>& place = *m_points.ElementAt(point);
            const UV uv = m_projection.IsBox() ? m_projection.ProjectAlong(place, axis) : m_projection.Project(place);
            CUVWPoint& to = m_uvw[number];
            to.u = static_cast<float>(uv.u), to.v = static_cast<float>(uv.v);
        }
        return number;
    }

    C3DGeomObject& m_object;
    const C3DPointList& m_points;
    const CMaterialMap& m_map;
    const Projection m_projection;
    CUVWChannel& m_channel;
    CBlockVector<int> m_numbers;    // by point, for a box by point and axis
    int m_used = 0;
    CUVWPoint* m_uvw = nullptr;    // the channel's points
};

CMaterialMap* GetProjectedMap(const C3DScene& scene, unsigned int material)
{
    const C3DMaterial* found = scene.GetMaterialByID(material);
    CMaterialMap* map = found ? found->GetDiffuseMaps() : nullptr;
    return map && map->GetProjection() >= PROJECTION_PLANAR ? map : nullptr;
}

// The ids that the object uses, in the order of its table, which changes of the object take away.
CBlockVector<unsigned int> ListMaterials(C3DGeomObject& object)
{
    CBlockVector<unsigned int> materials;
    if (const C3DGeomObject::MaterialMap* used = object.GetMaterialsHashMap(true))
        for (const auto& entry : *used)
            materials.push_back(entry.first);
    return materials;
}

}

unsigned int C3DGeomObject::CreateUVWChannel(CMaterialMap* map, unsigned int materialID, bool freeExtra)
{
    constexpr unsigned int NOTHING = 0, NO_PROJECTION = 0xFFFFFFFF;
    if (!map || !(GetKindOf() & (OBJECT_POLYGONAL | OBJECT_PATCH)) || !m_faces || !m_points)
        return NOTHING;
    if (map->GetProjection() < PROJECTION_PLANAR || map->GetProjection() > PROJECTION_BOX)
        return NO_PROJECTION;
    if (map->GetChannelID() == NO_CHANNEL_ID)
        map->SetChannelID(CChannel::CreateID());
    const unsigned int id = map->GetChannelID();
    auto* channel = static_cast<CUVWChannel*>(GetChannelByID(id, CHANNEL_UVW));
    const bool isNew = !channel;
    if (isNew) {
        channel = new CUVWChannel(id);
        channel->SetFlag(CHANNEL_UNFOLLOWED, true);
    }
    Mapper(*this, *map, *channel).Run(materialID);
    if (freeExtra)
        channel->GetFaceList()->FreeExtra();
    if (isNew)
        AddChannel(channel);
    Invalidate(CHANGE_UVW, true);
    return id;
}

bool C3DGeomObject::GenerateUVW(C3DScene* scene)
{
    const CBlockVector<unsigned int> materials = scene ? ListMaterials(*this) : CBlockVector<unsigned int>();
    CBlockVector<unsigned int> made;
    CProgress progress(L"Creating UV", materials.size());
    if (progress.IsCancelled())
        return false;
    const CProgressCommit commit;    // objects and materials change one by one
    std::uint64_t done = 0;
    for (const unsigned int material : materials) {
        progress.SetPos(done++);
        if (CMaterialMap* map = GetProjectedMap(*scene, material))
            if (const unsigned int id = CreateUVWChannel(map, material, false); GetChannelByID(id, CHANNEL_UVW))
                made.push_back(id);
    }
    for (const unsigned int id : made)
        GetChannelByID(id, CHANNEL_UVW)->GetFaceList()->FreeExtra();
    if (!made.empty())
        Invalidate(CHANGE_UVW, true);
    return !made.empty();
}

bool C3DScene::GenerateUVW()
{
    bool generated = false;
    std::vector<CMaterialMap*> maps;
    C3DGeomObject* object;
    CProgress progress(L"Creating UV", static_cast<std::uint64_t>(GetChildCount(nullptr, OBJECT_GEOMETRIC)));
    if (progress.IsCancelled())
        return false;
    const CProgressCommit commit;    // objects and materials change one by one
    std::uint64_t done = 0;
    for (C3DNodePos pos = GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        GetNextNode(object, pos);
        progress.SetPos(done++);
        generated |= object->GenerateUVW(this);
        for (const unsigned int material : generated ? ListMaterials(*object) : CBlockVector<unsigned int>())
            if (CMaterialMap* map = GetProjectedMap(*this, material)) {
                if (CChannel* channel = object->GetChannelByID(map->GetChannelID(), CHANNEL_UVW))
                    channel->SetFlag(CHANNEL_UNFOLLOWED, false);
                maps.push_back(map);
            }
    }
    for (CMaterialMap* map : maps)
        map->SetProjection(PROJECTION_UVW);
    return generated;
}

int* GetUVVertexFromUVFace(C3DGeomObject* object, unsigned int channelID, int& count)
{
    count = 0;
    const CChannel* channel = object ? object->GetChannelByID(channelID, CHANNEL_UVW) : nullptr;
    const C3DFaceList* faces = object ? object->GetFaceList() : nullptr;
    const int points = object ? object->GetPointNbr() : 0;
    if (!channel || !channel->GetFaceList() || !faces || points == 0)
        return nullptr;
    const CFaceList& uvs = *channel->GetFaceList();
    int* found = new int[points];
    std::fill_n(found, points, -1);
    bool any = false;
    for (int face = 0; face < std::min(faces->GetSize(), uvs.GetSize()); face++) {
        if (faces->IsFaceFlagSet(face, FACE_INVALID) || uvs.IsFaceOneFlagSet(face, FACE_DEAD))
            continue;
        int size, uvSize;
        const int *corners = faces->GetIndexes(face, size), *values = uvs.GetIndexes(face, uvSize);
        any = true;
        for (int k = 0; k < std::min(size, uvSize); k++)
            if (static_cast<unsigned int>(corners[k]) < static_cast<unsigned int>(points))
                found[corners[k]] = values[k];
    }
    if (!any) {
        delete[] found;
        return nullptr;
    }
    count = points;
    return found;
}
