// Disconnection: a point where channels differ from face to face becomes several, one for each set of values, as formats with one value a
// point need it.
//
//   mark     each channel marks the points where its values differ
//   divide   the faces around a marked point are told apart channel by channel; a face that differs from those before gets a copy.
//            Stopping here costs nothing
//   room     for the copies in each list: what runs out of memory leaves the object as it was
//   apply    corners go to the copies
//   channel  the channels that had a part in it are numbered anew, as the object's own corners

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/VCChannel.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "meshops/GroupMap.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"
#include "tools/HashMix.h"
#include "tools/Progress.h"

namespace {

constexpr double BREAK_ANGLE = 0.17453292519943295;    // 10 degrees
constexpr unsigned int GIVEN_MARKS = POINT_SHARE_UV | POINT_VC_FRONTIER | POINT_NORMAL_BREAK;

/// A channel value, compared exactly; what is not a number equals nothing.
struct Value {
    std::array<double, 4> v{};

    bool operator==(const Value& other) const { return v == other.v; }
    struct Hash {
        std::size_t operator()(const Value& value) const
        {
            std::uint64_t hash = 0;
            for (const double x : value.v) {
                const double positive = x + 0.0;    // both zeros are equal
                std::uint64_t bits;
                std::memcpy(&bits, &positive, sizeof bits);
                hash = HashMix64(hash ^ bits);
            }
            return hash;
        }
    };
};

/// The mark that a kind of channel leaves on points where it differs; 0 for kinds that part no faces.
unsigned int MarkOf(_Channel3DType type)
{
    switch (type) {
    case CHANNEL_UVW: return POINT_SHARE_UV;
    case CHANNEL_VC: return POINT_VC_FRONTIER;
    case CHANNEL_SPEC_NORMAL: return POINT_NORMAL_BREAK;
    case CHANNEL_POINT_NORMAL: return POINT_SMOOTH_SPLIT;
    default: return 0;
    }
}

/// One run of C3DGeomObject::DisconnectBorderFaces.
class Disconnection {
public:
    Disconnection(C3DGeomObject& object, unsigned int options, unsigned int pointFlag, unsigned int faceFlag,
                  CGroupMap<int, unsigned short>* groups, bool noPoints, C3DFaceList* extra)
        : m_object(object), m_faces(*object.GetFaceList()), m_points(*object.GetPointList()), m_info(&object), m_options(options),
          m_pointFlag(pointFlag), m_faceFlag(faceFlag), m_groups(groups), m_noPoints(noPoints), m_extra(extra)
    {
        m_faces.InitPointToFaceGraph(&m_info);
    }
    ~Disconnection() { m_faces.DeletePointToFaceGraph(); }

    bool Run();

private:
    /// A list of points that a channel will get.
    struct NewPoints {
        CChannel* channel;
        std::unique_ptr<CPointList, void (*)(CPointList*)> points;
    };

    unsigned int MarkPoints();
    bool Prepare(unsigned int marks);
    void DividePoint(int point);
    void DivideByChannel(int point, const int* faces, int count, CChannel& channel);
    Value GetValue(const CChannel& channel, int face, int point) const;
    int AddCopy(int point);
    void KeepFace(int face);
    void MakeRoom();
    void SizeLists(int points);
    bool IsRenumbered(int channel) const;
    void Mark();
    void Apply();
    void MoveCorners(int point, const int* slots);
    void Renumber(CChannel& channel, CPointList& points);

    C3DGeomObject& m_object;
    C3DFaceList& m_faces;
    C3DPointList& m_points;
    CGeomInfo m_info;
    unsigned int m_options;
    const unsigned int m_pointFlag, m_faceFlag;
    CGroupMap<int, unsigned short>* const m_groups;
    const bool m_noPoints;
    C3DFaceList* const m_extra;

    int m_before = 0;                   // points
    int m_next = 0;                     // number of the next copy
    CBlockVector<int> m_originals;      // of the copies
    std::vector<char> m_used;           // channels that had a part in it, by place
    CBlockVector<int> m_divided;        // marked points with faces
    CBlockVector<int> m_allSlots;       // their slots, one point after the other
    CBlockVector<int> m_openers;        // faces that opened a slot
    CBlockVector<CChannel*> m_grown;    // channels of a value a point, in step with the copies
    std::vector<NewPoints> m_fresh;     // of the channels that are numbered anew
    // Of the current point.
    CBlockVector<int> m_slots;       // the point that each face around gets
    std::vector<char> m_assigned;    // faces that opened one
    int m_distinct = 0;
};

bool Disconnection::Run()
{
    const unsigned int marks = MarkPoints();
    if (marks == 0 || !Prepare(marks))
        return false;
    CProgress progress(L"Disconnecting faces", static_cast<std::uint64_t>(m_before));
    for (int point = 0; point < m_before; point++) {
        if (m_points.ElementAt(point)->IsOneFlagSet(static_cast<int>(marks)))
            DividePoint(point);
        if (!progress.Step())
            return false;
    }
    if (!m_noPoints)
        MakeRoom();
    Mark();
    if (!m_noPoints) {
        Apply();
        m_points.FreeExtra();
        m_object.Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
    }
    if (m_groups)
        m_groups->FreeExtra();
    if (m_extra)
        m_extra->FreeExtra();
    return true;
}

// --- Mark -----------------------------------------------------------------------------------------------------------

unsigned int Disconnection::MarkPoints()
{
    m_points.SetPointsFlags(GIVEN_MARKS, false);
    CDependentChannels& channels = *m_object.GetChannels();
    if (m_options & CHANNEL_SPEC_NORMAL && channels.GetSpecNormalChannel())
        m_options &= ~static_cast<unsigned int>(CHANNEL_POINT_NORMAL);    // given normals rule out computed ones
    if (m_options & CHANNEL_POINT_NORMAL)
        m_object.GetPointNormalChannel();    // brought up to date, with its marks
    unsigned int marks = 0;
    for (CChannel* channel : channels) {
        const unsigned int mark = channel->GetType() & m_options ? MarkOf(channel->GetType()) : 0;
        if (mark == 0 || channel->IsFlagSet(CHANNEL_INVALID))
            continue;
        marks |= mark;
        switch (channel->GetType()) {
        case CHANNEL_UVW: static_cast<CUVWChannel*>(channel)->InitShareUVFlag(&m_info, 0, false); break;
        case CHANNEL_VC: static_cast<CVCChannel*>(channel)->InitVCFrontierFlag(&m_info, 0, false); break;
        case CHANNEL_SPEC_NORMAL:
            static_cast<CSpecNormalChannel*>(channel)->InitNormalBreakFlag(&m_info, BREAK_ANGLE, false, NORMAL_AREA);
            break;
        default: break;
        }
    }
    return marks;
}

// False without a marked point.
bool Disconnection::Prepare(unsigned int marks)
{
    std::int64_t most = 0;
    int marked = 0;
    for (int point = 0; point < m_points.GetSize(); point++) {
        if (!m_points.ElementAt(point)->IsOneFlagSet(static_cast<int>(marks)))
            continue;
        int count;
        m_faces.GetFacesConnectedToPoint(point, count);
        most += std::max(count - 1, 0);
        marked++;
    }
    m_next = m_before = m_points.GetSize();
    if (marked == 0 || most > INT32_MAX - m_next)
        return false;
    m_used.resize(m_object.GetChannels()->GetSize());
    if (m_groups) {
        m_groups->RemoveAll();
        m_groups->Reserve(marked);
    }
    if (m_extra) {
        m_extra->RemoveAll();
        m_extra->SetSizeAndFlags(m_faces.GetSize(), FACE_INVALID);
    }
    return true;
}

// --- Divide ---------------------------------------------------------------------------------------------------------

void Disconnection::DividePoint(int point)
{
    int count;
    const int* faces = m_faces.GetFacesConnectedToPoint(point, count);
    if (count == 0)
        return;
    m_slots.assign(count, -1);
    m_assigned.assign(count, false);
    m_slots[0] = point;
    m_assigned[0] = true;
    m_distinct = 1;
    m_openers.push_back(faces[0]);
    if (m_groups)
        m_groups->Add(point);
    for (int i = 0; i < m_object.GetChannels()->GetSize(); i++) {
        CChannel& channel = *m_object.GetChannels()->GetAt(i);
        const unsigned int mark = channel.GetType() & m_options ? MarkOf(channel.GetType()) : 0;
        if (mark == 0 || channel.IsFlagSet(CHANNEL_INVALID) || !m_points.ElementAt(point)->IsOneFlagSet(static_cast<int>(mark)))
            continue;
        m_used[i] = true;
        DivideByChannel(point, faces, count, channel);
        if (m_distinct == count)
            break;    // each face has a point of its own: nothing more to tell apart
    }
    m_divided.push_back(point);
    m_allSlots.insert(m_allSlots.end(), m_slots.begin(), m_slots.end());
    for (int i = 0; i < count && m_extra && !m_noPoints; i++)
        KeepFace(faces[i]);
}

void Disconnection::DivideByChannel(int point, const int* faces, int count, CChannel& channel)
{
    std::unordered_map<Value, int, Value::Hash> known;
    for (int i = 0; i < count; i++) {
        const Value value = GetValue(channel, faces[i], point);
        if (m_assigned[i]) {
            known[value] = m_slots[i];
            continue;
        }
        const auto found = known.find(value);
        if (found != known.end() && (m_slots[i] < 0 || m_slots[i] == found->second)) {
            m_slots[i] = found->second;
            continue;
        }
        m_slots[i] = known[value] = AddCopy(point);
        m_assigned[i] = true;
        m_distinct++;
        m_openers.push_back(faces[i]);
    }
}

// All zero where the channel has no value.
Value Disconnection::GetValue(const CChannel& channel, int face, int point) const
{
    Value value;
    const CFaceList* faces = channel.GetFaceList();
    CFace view;
    if (!faces || !channel.GetPointList() || faces->IsFaceOneFlagSet(face, FACE_DEAD) || !m_faces.GetFace(face, view))
        return value;
    int size;
    const int* corners = faces->GetIndexes(face, size);
    const int corner = view.IsFacePoint(point);
    const CPt* found = corner >= 0 && corner < size ? channel.GetPointList()->ElementAt(corners[corner]) : nullptr;
    if (!found)
        return value;
    C4DPoint coordinates;
    found->To4DPoint(coordinates);
    std::copy_n(coordinates.values, coordinates.dimension, value.v.begin());
    return value;
}

int Disconnection::AddCopy(int point)
{
    const int copy = m_next++;
    m_originals.push_back(point);
    if (m_groups)
        m_groups->Add(point, copy);
    return copy;
}

void Disconnection::KeepFace(int face)
{
    if (m_extra->IsFaceFlagSet(face, FACE_INVALID)) {
        m_extra->CopyFace(face, face, m_faces, false);
        m_extra->SetFaceFlag(face, FACE_INVALID, false);
    }
}

// --- Room -----------------------------------------------------------------------------------------------------------

void Disconnection::MakeRoom()
{
    CDependentChannels& channels = *m_object.GetChannels();
    for (int i = 0; i < channels.GetSize(); i++) {
        CChannel* channel = channels.GetAt(i);
        CPointList* points = channel->GetPointList();
        if (IsRenumbered(i)) {
            CChannel* shape = channel->Copy(CHANNEL_COPY_NO_DATA);    // has a list of the same class
            shape->GetPointList()->AddRef();
            m_fresh.push_back({channel, {shape->GetPointList(), [](CPointList* list) { DeleteMe(list); }}});
            DeleteMe(shape);
            m_fresh.back().points->SetSize(m_next, false, 0);
        } else if (points && !channel->GetFaceList() && channel->GetType() == CHANNEL_WEIGHT && points->GetSize() == m_before)
            m_grown.push_back(channel);
    }
    try {
        SizeLists(m_next);
    } catch (...) {
        SizeLists(m_before);    // smaller needs no memory
        throw;
    }
}

void Disconnection::SizeLists(int points)
{
    m_points.SetSize(points);
    for (CChannel* channel : m_grown)
        channel->GetPointList()->SetSize(points);
}

// Computed normals are worked out again.
bool Disconnection::IsRenumbered(int channel) const
{
    CChannel& c = *m_object.GetChannels()->GetAt(channel);
    return m_used[channel] && c.GetType() != CHANNEL_POINT_NORMAL && c.GetFaceList() && c.GetPointList() &&
           c.GetFaceList()->GetSize() == m_faces.GetSize();
}

// --- Apply ----------------------------------------------------------------------------------------------------------

void Disconnection::Mark()
{
    for (const int point : m_divided)
        m_points.ElementAt(point)->SetFlags(m_pointFlag, true);
    for (const int face : m_openers)
        m_faces.SetFaceFlags(face, m_faceFlag, true);
}

void Disconnection::Apply()
{
    for (std::size_t i = 0; i < m_originals.size(); i++) {
        const int copy = m_before + static_cast<int>(i);
        m_points.CopyPoint(copy, m_originals[i]);
        for (CChannel* channel : m_grown)
            channel->GetPointList()->CopyPoint(copy, m_originals[i]);
    }
    const int* slots = m_allSlots.data();
    for (const int point : m_divided) {
        MoveCorners(point, slots);
        int count;
        m_faces.GetFacesConnectedToPoint(point, count);
        slots += count;
    }
    for (NewPoints& fresh : m_fresh)
        Renumber(*fresh.channel, *fresh.points.release());
}

void Disconnection::MoveCorners(int point, const int* slots)
{
    int count;
    const int* faces = m_faces.GetFacesConnectedToPoint(point, count);
    for (int i = 0; i < count; i++) {
        CFace face;
        if (slots[i] >= 0 && slots[i] != point && m_faces.GetFace(faces[i], face))
            face.ReplaceIndex(point, slots[i]);
    }
}

// --- Channels -------------------------------------------------------------------------------------------------------

// The channel's corners become those of the object. `points` are the channel's from now on.
void Disconnection::Renumber(CChannel& channel, CPointList& points)
{
    CFaceList* faces = channel.GetFaceList();
    CPointList* old = channel.GetPointList();
    const CFaceFlags flags(m_faces);
    for (int face = 0; face < m_faces.GetSize(); face++) {
        int size, valueCount;
        const int* corners = m_faces.GetIndexes(face, size);
        int* values = faces->GetIndexes(face, valueCount);
        if (flags.IsDead(face) || faces->IsFaceOneFlagSet(face, FACE_DEAD))
            continue;
        for (int k = 0; k < std::min(size, valueCount); k++) {
            points.CopyPoint(corners[k], values[k], *old);
            values[k] = corners[k];
        }
    }
    faces->SetFlag(FACELIST_CHANGED, true);
    channel.SetPointList(channel.GetType(), &points, true);
}

}

bool C3DGeomObject::DisconnectBorderFaces(unsigned int options, unsigned int pointFlag, unsigned int faceFlag,
                                          CGroupMap<int, unsigned short>* map, bool noPoints, C3DFaceList* extra)
{
    if (!m_points || !m_faces || IsFlagSet(OBJECT_EMPTY))
        return false;
    return Disconnection(*this, options, pointFlag, faceFlag, map, noPoints, extra).Run();
}

bool C3DScene::DisconnectBorderFaces(unsigned int options, unsigned int pointFlag, unsigned int faceFlag)
{
    bool changed = false;
    C3DGeomObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        GetNextNode(object, pos);
        changed |= object->DisconnectBorderFaces(options, pointFlag, faceFlag, nullptr, false, nullptr);
    }
    return changed;
}
