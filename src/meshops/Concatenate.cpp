// Concatenation: several objects become one, with their channels; of a filter's choice of faces only what it takes.
//
//   plan    which faces of which sources come in, and which channel joins which; touches nothing but for channels that the destination
//           lacks
//   append  source by source: faces, points, channels. What no face that comes in uses stays out
//   close   a clean, and the channels' new ids in materials
//
// A channel joins the one at its place among those of its type: the second texture channel of a source joins the second one here, whatever
// their ids.

#include <algorithm>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Curve.h"
#include "scene/Filter.h"
#include "tools/BlockVector.h"

namespace {

/// Points of one list that come in, in their order, and where they stand then.
class PointChoice {
public:
    /// All points.
    explicit PointChoice(const CPointList& points) : m_count(points.GetSize()) {}
    /// Those that the faces use.
    PointChoice(const CPointList& points, const CFaceList& faces, const CBlockVector<int>& chosen);

    int GetCount() const { return m_count; }
    /// Null for all.
    const int* GetPoints() const { return m_all ? nullptr : m_points.data(); }
    /// Number of a point behind `base` others; -1 for one that is not there.
    int operator()(int point, int base) const
    {
        if (m_all)
            return static_cast<unsigned int>(point) < static_cast<unsigned int>(m_count) ? base + point : -1;
        return static_cast<std::size_t>(point) < m_numbers.size() ? base + m_numbers[point] : -1;
    }

private:
    bool m_all = true;
    int m_count;
    CBlockVector<int> m_points;
    CBlockVector<int> m_numbers;    // by old number
};

PointChoice::PointChoice(const CPointList& points, const CFaceList& faces, const CBlockVector<int>& chosen)
    : m_all(false), m_numbers(points.GetSize(), 0)
{
    for (const int face : chosen) {
        int size;
        const int* corners = faces.GetIndexes(face, size);
        for (int k = 0; k < size; k++)
            if (static_cast<std::size_t>(corners[k]) < m_numbers.size())
                m_numbers[corners[k]] = 1;
    }
    for (int point = 0; point < points.GetSize(); point++)
        if (m_numbers[point]) {
            m_numbers[point] = static_cast<int>(m_points.size());
            m_points.push_back(point);
        }
    m_count = static_cast<int>(m_points.size());
}

/// An object on its way in.
struct Source {
    C3DGeomObject* object = nullptr;
    bool allFaces = true;
    CBlockVector<int> faces;    // unless all of them
    int faceCount = 0;
    CBlockVector<std::pair<CChannel*, CChannel*>> channels;    // of the source, of the destination

    const int* GetFaces() const { return allFaces ? nullptr : faces.data(); }
    PointChoice Choose(const CPointList& points, const CFaceList* list, bool filtered) const
    {
        return list && filtered && !allFaces ? PointChoice(points, *list, faces) : PointChoice(points);
    }
};

/// One run of C3DGeomObject::Concatenate.
class Concatenation {
public:
    Concatenation(C3DGeomObject& to, const C3DFilter* filter) : m_to(to), m_filter(filter) {}

    bool Plan(const CXArray<C3DGeomObject*, C3DGeomObject*>& sources);
    void Append();
    /// From each channel that came in to the one that took it, where their ids differ.
    CChannelMap GetRenamedChannels() const;

private:
    bool CanJoin(C3DGeomObject* object) const;
    bool ListFaces(Source& source);
    void MatchChannels(Source& source);
    CChannel* FindPartner(C3DGeomObject& object, const CChannel& channel) const;

    void Reserve();
    void ReserveChannel(CChannel& channel);
    void AppendSource(Source& source);
    void TakeGlobalChannels(C3DGeomObject& object);
    void AppendChannel(const Source& source, const CChannel& from, CChannel& to, const PointChoice& points);
    void LevelChannels();

    C3DGeomObject& m_to;
    const C3DFilter* const m_filter;
    CBlockVector<Source> m_sources;
    CChannelMap m_channels;
    std::int64_t m_faces = 0, m_corners = 0, m_points = 0;
};

// --- Plan -----------------------------------------------------------------------------------------------------------

bool Concatenation::Plan(const CXArray<C3DGeomObject*, C3DGeomObject*>& sources)
{
    // From the last to the first: where sources disagree about what a channel becomes, the first one has the last word.
    for (int i = static_cast<int>(sources.GetSize()); i-- > 0;) {
        Source source;
        source.object = sources[i];
        if (!CanJoin(source.object) || !ListFaces(source))
            continue;
        m_faces += source.faceCount;
        m_points += source.object->GetPointNbr();
        m_sources.push_back(std::move(source));
    }
    if (m_faces == 0 || m_points == 0 || m_faces > INT32_MAX - m_to.GetFaceNbr() || m_points > INT32_MAX - m_to.GetPointNbr())
        return false;
    for (Source& source : m_sources)
        MatchChannels(source);
    std::reverse(m_sources.begin(), m_sources.end());
    return true;
}

bool Concatenation::CanJoin(C3DGeomObject* object) const
{
    return object && object != &m_to && !object->IsFlagSet(OBJECT_EMPTY) && object->GetPointList() &&
           (object->GetKindOf() == OBJECT_CURVE) == (m_to.GetKindOf() == OBJECT_CURVE);
}

// False for a source whose faces all stay out.
bool Concatenation::ListFaces(Source& source)
{
    const C3DFaceList* faces = source.object->GetFaceList();
    if (!faces)
        return true;
    const CFaceFlags flags(*faces);
    const int count = faces->GetSize();
    std::int64_t corners = 0;
    source.faces.reserve(m_filter ? 0 : count);
    for (int face = 0; face < count; face++) {
        C3DFace view;
        if (flags[face] & FACE_INVALID || (m_filter && !(faces->GetFace(face, view) && m_filter->ProcessFace(source.object, &view))))
            continue;
        corners += faces->GetIndexCollection().GetItemCount(static_cast<unsigned int>(face));
        source.faces.push_back(face);
    }
    source.faceCount = static_cast<int>(source.faces.size());
    source.allFaces = source.faceCount == count;
    if (source.allFaces)
        CBlockVector<int>().swap(source.faces);
    m_corners += corners;
    return corners > 0;
}

void Concatenation::MatchChannels(Source& source)
{
    for (CChannel* channel : *source.object->GetChannels()) {
        if (channel->IsOneFlagSet(CHANNEL_INVALID | CHANNEL_UNFOLLOWED) || !channel->GetPointList() ||
            channel->GetType() & (CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL))    // these are worked out again
            continue;
        if (channel->GetFaceList() && channel->GetFaceList()->GetSize() != source.object->GetFaceNbr())
            continue;
        CChannel* partner = FindPartner(*source.object, *channel);
        if (!partner) {
            partner = channel->Copy(CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_NO_DATA);
            m_to.AddChannel(partner);
        }
        source.channels.push_back({channel, partner});
        m_channels.SetAt(CChannelInfo(channel), CChannelInfo(partner));
    }
}

// The channel at the same place, when it is of the same form.
CChannel* Concatenation::FindPartner(C3DGeomObject& object, const CChannel& channel) const
{
    const int place = object.GetChannels()->GetChannelIndex(channel.GetChannelID(), channel.GetType(), true);
    CChannel* partner = m_to.GetChannels()->GetChannelByIndex(place, channel.GetType(), true);
    return partner && !partner->GetFaceList() == !channel.GetFaceList() ? partner : nullptr;
}

CChannelMap Concatenation::GetRenamedChannels() const
{
    CChannelMap renamed;
    for (const auto& [from, to] : m_channels)
        if (!(from == to))
            renamed.SetAt(from, to);
    return renamed;
}

// --- Append ---------------------------------------------------------------------------------------------------------

void Concatenation::Append()
{
    Reserve();
    LevelChannels();    // a destination that has faces already: new channels are out of step
    for (Source& source : m_sources)
        AppendSource(source);
}

void Concatenation::Reserve()
{
    if (m_to.GetFaceNbr() == 0)
        m_to.GetFaceList()->PreAllocateExact(static_cast<int>(m_faces), m_corners);
    if (m_to.GetPointNbr() == 0)
        m_to.GetPointList()->PreAllocate(static_cast<int>(m_points), false);
    for (CChannel* channel : *m_to.GetChannels())
        if (channel->GetPointList() && channel->GetPointList()->GetSize() == 0)
            ReserveChannel(*channel);
}

// Room in a channel that is empty yet for all that comes.
void Concatenation::ReserveChannel(CChannel& channel)
{
    std::int64_t points = 0, corners = 0;
    for (const Source& source : m_sources)
        for (const auto& [from, to] : source.channels)
            if (to == &channel) {
                points += from->GetPointList()->GetSize();
                if (from->GetFaceList())
                    corners += static_cast<std::int64_t>(from->GetFaceList()->GetIndexCollection().GetPoolUsed() / sizeof(int)) -
                               from->GetFaceList()->GetSize();
            }
    if (points > INT32_MAX)
        return;
    channel.GetPointList()->PreAllocate(static_cast<int>(points), false);
    if (channel.GetFaceList() && channel.GetFaceList()->GetSize() == 0)
        channel.GetFaceList()->PreAllocateExact(static_cast<int>(m_faces), corners);
}

void Concatenation::AppendSource(Source& source)
{
    TakeGlobalChannels(*source.object);
    C3DPointList& points = *source.object->GetPointList();
    C3DFaceList* faces = source.object->GetFaceList();
    const PointChoice choice = source.Choose(points, faces, m_filter != nullptr);
    for (const auto& [from, to] : source.channels)
        if (!to->GetFaceList())
            AppendChannel(source, *from, *to, choice);

    const int pointBase = m_to.GetPointNbr();
    m_to.GetPointList()->AppendDataChunks(&points, true);
    m_to.GetPointList()->SetSize(pointBase + choice.GetCount());
    m_to.GetPointList()->GatherPoints(pointBase, points, choice.GetPoints(), choice.GetCount());
    if (faces) {
        m_to.GetFaceList()->AppendDataChunks(faces, true);
        m_to.GetFaceList()->AppendCopies(*faces, source.GetFaces(), source.faceCount, [&](int point) { return choice(point, pointBase); });
        for (const auto& [from, to] : source.channels)
            if (to->GetFaceList())
                AppendChannel(source, *from, *to, source.Choose(*from->GetPointList(), from->GetFaceList(), m_filter != nullptr));
    }
    LevelChannels();
}

// The first source that has one gives its global channels.
void Concatenation::TakeGlobalChannels(C3DGeomObject& object)
{
    float strength;
    if (m_to.GetGlobalUVWChannel() == NO_CHANNEL_ID && object.GetGlobalUVWChannel() != NO_CHANNEL_ID)
        m_to.SetGlobalUVWChannel(object.GetGlobalUVWChannel());
    if (m_to.GetGlobalVCChannel(strength) == NO_CHANNEL_ID)
        if (const unsigned int id = object.GetGlobalVCChannel(strength); id != NO_CHANNEL_ID)
            m_to.SetGlobalVCChannel(id, strength);
}

void Concatenation::AppendChannel(const Source& source, const CChannel& from, CChannel& to, const PointChoice& choice)
{
    const int base = to.GetPointList()->GetSize();
    to.GetPointList()->AppendDataChunks(from.GetPointList(), true);
    to.GetPointList()->SetSize(base + choice.GetCount());
    to.GetPointList()->GatherPoints(base, *from.GetPointList(), choice.GetPoints(), choice.GetCount());
    if (!to.GetFaceList())
        return;
    to.GetFaceList()->AppendDataChunks(from.GetFaceList(), true);
    to.GetFaceList()->AppendCopies(*from.GetFaceList(), source.GetFaces(), source.faceCount,
                                   [&](int point) { return choice(point, base); });
}

// Channels that had nothing for what came in stay in step: faces without data, points with default values.
void Concatenation::LevelChannels()
{
    for (CChannel* channel : *m_to.GetChannels()) {
        if (channel->IsFlagSet(CHANNEL_INVALID) || channel->GetType() & (CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL))
            continue;
        CFaceList* faces = channel->GetFaceList();
        if (faces && faces->GetSize() < m_to.GetFaceNbr())
            faces->SetSizeAndFlags(m_to.GetFaceNbr(), FACE_EMPTY);
        else if (!faces && channel->GetPointList() && channel->GetPointList()->GetSize() < m_to.GetPointNbr())
            channel->GetPointList()->SetSize(m_to.GetPointNbr());
    }
}

}

bool C3DGeomObject::Concatenate(C3DScene* scene, const CXArray<C3DGeomObject*, C3DGeomObject*>& sources, const C3DFilter* filter)
{
    if (!m_points || !m_faces)
        return false;
    Concatenation run(*this, filter);
    if (!run.Plan(sources))
        return false;
    run.Append();
    SetFlag(OBJECT_EMPTY, false);
    Clean();
    ChangeChannelID(scene, run.GetRenamedChannels());
    Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
    return true;
}

void C3DGeomObject::ChangeChannelID(C3DScene* scene, const CChannelMap& map)
{
    if (const CChannelInfo* uvw = map.Find(CChannelInfo(m_globalUVW, CHANNEL_UVW))) {
        m_globalUVW = uvw->GetChannelID();
        SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
    }
    if (const CChannelInfo* colours = map.Find(CChannelInfo(m_globalVC, CHANNEL_VC))) {
        m_globalVC = colours->GetChannelID();
        m_vcStrength = 1;
        SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
    }
    ChangeMaterialsChannelID(scene, map);
}

void C3DGeomObject::ChangeMaterialsChannelID(C3DScene* scene, const CChannelMap& map)
{
    const MaterialMap* used = scene && !map.IsEmpty() ? GetMaterialsHashMap(true) : nullptr;
    if (!used)
        return;
    for (const auto& entry : *used)
        if (C3DMaterial* material = scene->GetMaterialByID(entry.first))
            material->ChangeChannelID(map);
}
