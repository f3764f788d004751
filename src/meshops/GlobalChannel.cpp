// One texture channel for all faces of an object, out of those that the maps of its materials use.
//
// Equal corners of one channel stay one point, so that seams stay seams. Points of different channels are never joined.

#include <utility>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "meshops/MapChannelID.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"

namespace {

using ChannelTable = CHashTable<CMapChannelID>;

/// Which channel gives the coordinates of a material, and the numbers that its points have got.
struct Giver {
    unsigned int material;
    const CChannel* channel;
    CBlockVector<int> numbers;    // by old number; -1
};

class GlobalChannel {
public:
    GlobalChannel(const C3DGeomObject& object, const ChannelTable& table, _Channel3DType type)
    {
        for (const CMapChannelID& entry : table) {
            const CChannel* channel = object.GetChannelByID(entry.GetChannelID(), type);
            const bool gives = channel && channel->GetFaceList() && channel->GetPointList();
            std::size_t shared = 0;    // materials with one channel share its points
            while (shared < m_givers.size() && m_givers[shared].channel != channel)
                shared++;
            if (gives && shared == m_givers.size())
                m_givers.push_back({entry.GetMaterialID(), channel, CBlockVector<int>(channel->GetPointList()->GetSize(), -1)});
            if (gives)
                m_giverOf.SetAt(entry.GetMaterialID(), static_cast<int>(shared));
        }
    }

    /// Null when no face gets a value.
    CChannel* Build(const C3DFaceList& faces, _Channel3DType type)
    {
        for (int face = 0; face < faces.GetSize(); face++)
            AddFace(faces, face);
        if (m_points.empty())
            return nullptr;
        CChannel* channel = CChannel::Create(type, NO_CHANNEL_ID);
        CFaceList& to = *channel->GetFaceList();
        to.AppendFaces(faces.GetSize(), m_sizes.data(), m_corners.data());
        for (int face = 0; face < faces.GetSize(); face++)
            if (m_sizes[face] == 0)
                to.SetFaceFlags(face, FACE_DEAD, true);
        channel->GetPointList()->SetSize(static_cast<int>(m_points.size()), false, 0);
        for (std::size_t i = 0; i < m_points.size(); i++)
            channel->GetPointList()->CopyPoint(static_cast<int>(i), m_points[i].second,
                                               *m_givers[m_points[i].first].channel->GetPointList());
        channel->FreeExtra();
        return channel;
    }

private:
    void AddFace(const C3DFaceList& faces, int face)
    {
        const int* found = m_giverOf.Find(faces.GetFaceMaterial(face));
        m_sizes.push_back(0);
        if (!found)
            return;
        Giver& giver = m_givers[*found];
        if (face >= giver.channel->GetFaceList()->GetSize() || giver.channel->GetFaceList()->IsFaceOneFlagSet(face, FACE_DEAD))
            return;
        int size;
        const int* corners = giver.channel->GetFaceList()->GetIndexes(face, size);
        for (int k = 0; k < size; k++) {
            if (static_cast<std::size_t>(corners[k]) >= giver.numbers.size()) {
                m_corners.push_back(0);
                continue;
            }
            int& number = giver.numbers[corners[k]];
            if (number < 0) {
                number = static_cast<int>(m_points.size());
                m_points.push_back({*found, corners[k]});
            }
            m_corners.push_back(number);
        }
        m_sizes.back() = static_cast<unsigned int>(size);
    }

    CBlockVector<Giver> m_givers;
    CHashMap<unsigned int, int> m_giverOf;    // by material
    CBlockVector<unsigned int> m_sizes;
    CBlockVector<int> m_corners;
    CBlockVector<std::pair<int, int>> m_points;    // giver and its point, by new number
};

}

CChannel* C3DGeomObject::MakeGlobalChannel(CHashTable<CMapChannelID>*& table, _Channel3DType type)
{
    if (!table || table->IsEmpty() || !m_faces)
        return nullptr;
    CBlockVector<CMapChannelID> gone;
    for (const CMapChannelID& entry : *table)
        if (!GetChannelByID(entry.GetChannelID(), type))
            gone.push_back(entry);
    for (const CMapChannelID& entry : gone)
        table->Remove(entry);
    return table->IsEmpty() ? nullptr : GlobalChannel(*this, *table, type).Build(*m_faces, type);
}

unsigned int C3DGeomObject::GlobalizeChannels(C3DScene* scene, bool removeOld)
{
    const MaterialMap* materials = GetMaterialsHashMap(removeOld);
    if (!materials || !m_points || IsFlagSet(OBJECT_EMPTY) || !scene)
        return NO_CHANNEL_ID;
    const CChannel* global = GetChannelByID(m_globalUVW, CHANNEL_UVW);
    if (global && !global->IsFlagSet(CHANNEL_INVALID))
        return m_globalUVW;

    ChannelTable table;
    for (const auto& entry : *materials) {
        const C3DMaterial* material = scene->GetMaterialByID(entry.first);
        const CMaterialMap* map = material ? material->GetDiffuseMaps() : nullptr;
        if (map && map->GetType() == MAP_DIFFUSE && map->GetChannelID() != NO_CHANNEL_ID &&
            GetChannelByID(map->GetChannelID(), CHANNEL_UVW))
            table.Insert(CMapChannelID(map->GetChannelID(), entry.first));
    }
    ChannelTable* used = &table;
    CChannel* channel = MakeGlobalChannel(used, CHANNEL_UVW);
    if (!channel)
        return NO_CHANNEL_ID;
    if (removeOld)
        for (const CMapChannelID& entry : table)
            m_channels->RemoveChannelByID(entry.GetChannelID(), CHANNEL_UVW);
    AddChannel(channel);
    m_globalUVW = channel->GetChannelID();
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
    return m_globalUVW;
}
