// Concatenation: several objects become one, with their channels; of a filter's choice of faces only what it takes.
//
//   plan    which faces of which sources come in, and which channel joins which; touches nothing but for channels that the destination
//           lacks
//   append  source by source: faces, points, channels. What no face that comes in uses stays out
//   close   a clean, and the channels' new ids in materials
//
// A channel joins the one at its place among those of its type: the second texture channel of a source joins the second one here, whatever
// their ids, and the materials of the source's faces follow. A material that would have to name two channels at once can't follow: then
// every channel joins the one of its id.

#include "meshops/Concatenate.h"

#include <algorithm>
#include <map>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Curve.h"
#include "scene/Filter.h"
#include "tools/BlockVector.h"
#include "tools/Progress.h"

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
    CChannelMap names;                                         // the ids of the former to those of the latter

    const int* GetFaces() const { return allFaces ? nullptr : faces.data(); }
    PointChoice Choose(const CPointList& points, const CFaceList* list, bool filtered) const
    {
        return list && filtered && !allFaces ? PointChoice(points, *list, faces) : PointChoice(points);
    }
};

/// What the channels that the materials name are called in the result.
class MaterialNames {
public:
    explicit MaterialNames(C3DScene* scene) : m_scene(scene) {}

    /// Faces of the object take their data from the channels of `names`. False when a material that it uses has to name another channel
    /// for other faces.
    bool Add(C3DGeomObject& object, const CChannelMap& names);
    /// The same for an object whose channels keep their ids.
    bool AddUnchanged(C3DGeomObject& object);
    bool IsAnyRenamed() const;
    /// Renames the channels in those of the materials that the object uses.
    void Apply(C3DGeomObject& object) const;

private:
    C3DScene* m_scene;
    std::map<unsigned int, CChannelMap> m_names;    // by material
};

/// One run of C3DGeomObject::Concatenate.
class Concatenation {
public:
    Concatenation(C3DGeomObject& to, C3DScene* scene, const C3DFilter* filter, bool sourcesStay)
        : m_to(to), m_scene(scene), m_filter(filter), m_sourcesStay(sourcesStay), m_mayStop(to.GetFaceNbr() == 0 && to.GetPointNbr() == 0),
          m_materials(scene)
    {
    }

    bool Plan(const CXArray<C3DGeomObject*, C3DGeomObject*>& sources);
    /// False when the user stopped it.
    bool Append();
    void RenameInMaterials() { m_materials.Apply(m_to); }

private:
    enum Matching { BY_PLACE, BY_ID };

    bool CanJoin(C3DGeomObject* object) const;
    bool ListFaces(Source& source);
    void MatchChannels(Matching matching);
    void MatchChannels(Source& source, Matching matching);
    void ForgetChannels();
    CChannel* FindPartner(const Source& source, const CChannel& channel, Matching matching) const;
    CChannel* AddPartner(const CChannel& channel);
    bool CanMaterialsFollow();
    bool AreOthersUntouched();

    void EmptyDestination();
    void Reserve();
    void ReserveChannel(CChannel& channel);
    void AppendSource(Source& source);
    void TakeGlobalChannels(const Source& source);
    void AppendChannel(const Source& source, const CChannel& from, CChannel& to, const PointChoice& points);
    void LevelChannels();

    C3DGeomObject& m_to;
    C3DScene* const m_scene;
    const C3DFilter* const m_filter;
    const bool m_sourcesStay, m_mayStop;
    CBlockVector<Source> m_sources;
    CBlockVector<CChannel*> m_added;    // to the destination
    MaterialNames m_materials;
    std::int64_t m_faces = 0, m_corners = 0, m_points = 0;
};

// --- Plan -----------------------------------------------------------------------------------------------------------

bool Concatenation::Plan(const CXArray<C3DGeomObject*, C3DGeomObject*>& sources)
{
    // From the last to the first: the last source gives the order of the channels that the destination lacks.
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
    MatchChannels(BY_PLACE);
    if (!CanMaterialsFollow()) {
        ForgetChannels();
        MatchChannels(BY_ID);
        CanMaterialsFollow();    // as far as they can: one object may have two channels of one id
    }
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

void Concatenation::MatchChannels(Matching matching)
{
    for (Source& source : m_sources)
        MatchChannels(source, matching);
}

void Concatenation::MatchChannels(Source& source, Matching matching)
{
    for (CChannel* channel : *source.object->GetChannels()) {
        if (channel->IsOneFlagSet(CHANNEL_INVALID | CHANNEL_UNFOLLOWED) || !channel->GetPointList() ||
            channel->GetType() & (CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL))    // these are worked out again
            continue;
        if (channel->GetFaceList() && channel->GetFaceList()->GetSize() != source.object->GetFaceNbr())
            continue;
        CChannel* partner = FindPartner(source, *channel, matching);
        if (!partner)
            partner = AddPartner(*channel);
        source.channels.push_back({channel, partner});
        if (!source.names.Find(CChannelInfo(channel)))    // of two with one id the first is the one that is found
            source.names.SetAt(CChannelInfo(channel), CChannelInfo(partner));
    }
}

void Concatenation::ForgetChannels()
{
    for (Source& source : m_sources) {
        source.channels.clear();
        source.names.RemoveAll();
    }
    for (CChannel* channel : m_added)
        m_to.GetChannels()->RemoveChannel(channel);
    m_added.clear();
}

// A channel of the same form that no other one of the source has joined.
CChannel* Concatenation::FindPartner(const Source& source, const CChannel& channel, Matching matching) const
{
    CDependentChannels& from = *source.object->GetChannels();
    CDependentChannels& to = *m_to.GetChannels();
    CChannel* const partner =
        matching == BY_ID
            ? to.GetChannelByID(channel.GetChannelID(), channel.GetType())
            : to.GetChannelByIndex(from.GetChannelIndex(channel.GetChannelID(), channel.GetType(), true), channel.GetType(), true);
    if (!partner || partner->IsFlagSet(CHANNEL_INVALID) || !partner->GetFaceList() != !channel.GetFaceList())
        return nullptr;
    const auto isPartner = [&](const auto& pair) { return pair.second == partner; };
    return std::any_of(source.channels.begin(), source.channels.end(), isPartner) ? nullptr : partner;
}

// An empty channel of that form, with that id unless the destination has one that is called so.
CChannel* Concatenation::AddPartner(const CChannel& channel)
{
    const bool taken = m_to.GetChannelByID(channel.GetChannelID(), channel.GetType());
    CChannel* const partner = channel.Copy(taken ? CHANNEL_COPY_NO_DATA : CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_NO_DATA);
    m_to.AddChannel(partner);
    m_added.push_back(partner);
    return partner;
}

bool Concatenation::CanMaterialsFollow()
{
    m_materials = MaterialNames(m_scene);
    if (!m_scene)
        return true;
    bool all = m_materials.AddUnchanged(m_to);
    for (const Source& source : m_sources)
        all &= m_materials.Add(*source.object, source.names);
    return all && (!m_materials.IsAnyRenamed() || AreOthersUntouched());
}

// Objects of the scene that stay as they are go on finding their channels.
bool Concatenation::AreOthersUntouched()
{
    CHashTable<C3DBaseObject*> leaving;
    if (!m_sourcesStay)
        for (const Source& source : m_sources)
            leaving.Insert(source.object);
    C3DGeomObject* object;
    for (C3DNodePos pos = m_scene->GetFirstNode(OBJECT_GEOMETRIC); m_scene->GetNextNode(object, pos);)
        if (object && object != &m_to && !leaving.Find(object) && !m_materials.AddUnchanged(*object))
            return false;
    return true;
}

// --- Materials ------------------------------------------------------------------------------------------------------

// What a material names.
template <class BODY> void ForEachName(const C3DMaterial& material, BODY body)
{
    float strength;
    body(CChannelInfo(material.GetVertexColor(0, strength), CHANNEL_VC));
    for (const CMaterialMap* map : {material.GetAmbientMaps(), material.GetDiffuseMaps(), material.GetSpecularMaps(),
                                    material.GetTransparencyMaps(), material.GetBumpMaps()})
        if (map)
            body(CChannelInfo(map->GetChannelID(), CHANNEL_UVW));
}

bool MaterialNames::Add(C3DGeomObject& object, const CChannelMap& names)
{
    if (object.GetFaceList())
        object.GetFaceList()->DeleteMaterialsHashMap();    // faces may have got materials since it was made
    const C3DGeomObject::MaterialMap* const used = names.IsEmpty() ? nullptr : object.GetMaterialsHashMap(true);
    if (!used)
        return true;
    bool agrees = true;
    for (const auto& entry : *used)
        if (const C3DMaterial* const material = m_scene->GetMaterialByID(entry.first))
            ForEachName(*material, [&](const CChannelInfo& name) {
                const CChannelInfo* const now = names.Find(name);
                if (!now)
                    return;
                CChannelMap& known = m_names[entry.first];
                if (const CChannelInfo* const other = known.Find(name))
                    agrees &= *other == *now;
                else
                    known.SetAt(name, *now);
            });
    return agrees;
}

bool MaterialNames::AddUnchanged(C3DGeomObject& object)
{
    CChannelMap names;
    for (CChannel* channel : *object.GetChannels())
        names.SetAt(CChannelInfo(channel), CChannelInfo(channel));
    return Add(object, names);
}

bool MaterialNames::IsAnyRenamed() const
{
    for (const auto& [material, names] : m_names)
        for (const auto& [from, to] : names)
            if (!(from == to))
                return true;
    return false;
}

void MaterialNames::Apply(C3DGeomObject& object) const
{
    const C3DGeomObject::MaterialMap* const used = IsAnyRenamed() ? object.GetMaterialsHashMap(true) : nullptr;
    if (!used)
        return;
    for (const auto& entry : *used)
        if (const auto names = m_names.find(entry.first); names != m_names.end())
            if (C3DMaterial* const material = m_scene->GetMaterialByID(entry.first))
                material->ChangeChannelID(names->second);
}

// --- Append ---------------------------------------------------------------------------------------------------------

bool Concatenation::Append()
{
    CProgress progress(L"Concatenating", static_cast<std::uint64_t>(m_faces + m_points));
    const unsigned int uvw = m_to.GetGlobalUVWChannel();
    float strength;
    const unsigned int colours = m_to.GetGlobalVCChannel(strength);
    Reserve();
    LevelChannels();    // a destination that has faces already: new channels are out of step
    for (Source& source : m_sources) {
        AppendSource(source);
        if (progress.Step(static_cast<std::uint64_t>(source.faceCount) + source.object->GetPointNbr()) || !m_mayStop)
            continue;
        EmptyDestination();
        m_to.SetGlobalUVWChannel(uvw);
        m_to.SetGlobalVCChannel(colours, strength);
        return false;
    }
    return true;
}

void Concatenation::EmptyDestination()
{
    ForgetChannels();
    m_to.GetFaceList()->RemoveAll();
    m_to.GetPointList()->RemoveAll();
    for (CChannel* channel : *m_to.GetChannels()) {
        if (channel->GetFaceList())
            channel->GetFaceList()->RemoveAll();
        if (channel->GetPointList())
            channel->GetPointList()->RemoveAll();
    }
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
    TakeGlobalChannels(source);
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

// The first source that has one gives its global channels, by the names that they have here.
void Concatenation::TakeGlobalChannels(const Source& source)
{
    const auto rename = [&](unsigned int id, _Channel3DType type) {
        CChannelMap names;
        if (const CChannelInfo* const now = source.names.Find(CChannelInfo(id, type)); now && now->GetChannelID() != id)
            names.SetAt(CChannelInfo(id, type), *now);
        m_to.ChangeChannelID(nullptr, names);
    };
    float strength;
    if (const unsigned int id = source.object->GetGlobalUVWChannel(); id != NO_CHANNEL_ID && m_to.GetGlobalUVWChannel() == NO_CHANNEL_ID) {
        m_to.SetGlobalUVWChannel(id);
        rename(id, CHANNEL_UVW);
    }
    if (m_to.GetGlobalVCChannel(strength) == NO_CHANNEL_ID)
        if (const unsigned int id = source.object->GetGlobalVCChannel(strength); id != NO_CHANNEL_ID) {
            m_to.SetGlobalVCChannel(id, strength);
            rename(id, CHANNEL_VC);
        }
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

bool Concatenate(C3DGeomObject& destination, C3DScene* scene, const CXArray<C3DGeomObject*, C3DGeomObject*>& sources,
                 const C3DFilter* filter, bool sourcesStay, int* droppedFaces)
{
    if (!destination.GetPointList() || !destination.GetFaceList())
        return false;
    Concatenation run(destination, scene, filter, sourcesStay);
    if (!run.Plan(sources) || !run.Append())
        return false;
    destination.SetFlag(OBJECT_EMPTY, false);
    const int faces = destination.GetFaceNbr();
    destination.Clean();
    if (droppedFaces)
        *droppedFaces += faces - destination.GetFaceNbr();
    run.RenameInMaterials();
    destination.Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
    return true;
}

bool C3DGeomObject::Concatenate(C3DScene* scene, const CXArray<C3DGeomObject*, C3DGeomObject*>& sources, const C3DFilter* filter)
{
    return ::Concatenate(*this, scene, sources, filter, false, nullptr);
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
