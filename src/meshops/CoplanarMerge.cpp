// One polygon for each flat region.
//
//   plan     regions grow from face to face over the edges between them, in a queue; around each runs its border. What comes out is a list
//            of faces to be copied and of new polygons, with their corners in the geometry and in each channel. Stopping here costs nothing
//   write    the lists of the destination, each in one pass
//   clean    faces that are none, then points that only inner faces had
//
// A region whose border is not one line, has a hole or touches itself stays as its faces.
//
// A corner where a border runs straight on goes. Other regions and faces may go on having its point: their edges then lie on a longer one,
// and the mesh is open there. Where that must not be, the polygons are planned with all corners, and when all are known a corner goes only if
// no other face needs its point.

#include "meshops/CoplanarMerge.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "channels/DependentChannels.h"
#include "channels/EdgeCorners.h"
#include "channels/FaceCorners.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/UVWPoint.h"
#include "channels/VCChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"
#include "meshops/FacesAcross.h"
#include "meshops/GatherFaces.h"
#include "meshops/RegionBorder.h"
#include "scene/GeomObject.h"
#include "scene/UpdateFlags.h"
#include "tools/BitArray.h"
#include "tools/BlockVector.h"
#include "windows/ProgressDlg.h"

namespace {

constexpr int NO_FACE = -1;

/// A channel of the destination with the one that it comes from, and the corners of its new polygons.
struct ChannelPair {
    CChannel* source;
    CChannel* target;
    CBlockVector<int> corners;      // of the polygons that have data, one after the other
    std::vector<bool> hasData{};    // by polygon
};

/// Whether a channel is cut along the edge between two faces.
class CSeam {
public:
    CSeam(const CGeomInfo* info, CChannel* channel) : m_info(info), m_channel(channel) {}

    static bool Parts(_Channel3DType type) { return type & (CHANNEL_UVW | CHANNEL_VC | CHANNEL_SPEC_NORMAL); }
    bool IsSeam(const C3DEdge& edge, int face, int other) const
    {
        constexpr double NORMAL_ANGLE = 0.17453292519943295;
        switch (m_channel->GetType()) {
        case CHANNEL_VC: return static_cast<CVCChannel*>(m_channel)->IsVCFrontier(m_info, 0, edge, face, other);
        case CHANNEL_UVW: return IsUVSeam(edge, face, other);
        case CHANNEL_SPEC_NORMAL:
            return static_cast<CSpecNormalChannel*>(m_channel)->IsNormalFrontier(m_info, NORMAL_ANGLE, edge, face, other);
        default: return false;
        }
    }

private:
    // Any difference counts.
    bool IsUVSeam(const C3DEdge& edge, int face, int other) const
    {
        const CEdgeCorners corners(m_info, *m_channel, edge, face, other);
        if (corners.IsDecided())
            return corners.IsFrontier();
        for (int end = 0; end < 2; end++) {
            const auto* a = static_cast<const CUVWPoint*>(corners.GetPoint(0, end));
            const auto* b = static_cast<const CUVWPoint*>(corners.GetPoint(1, end));
            if (!a || !b || (a != b && !(*a == *b)))
                return true;
        }
        return false;
    }

    const CGeomInfo* m_info;
    CChannel* m_channel;
};

/// Progress by whole percents. A step costs a comparison.
class CPercent {
public:
    explicit CPercent(int size) : m_size(size), m_dialog(L"Merging...")
    {
        m_dialog.SetRange(0, 100);
        m_dialog.SetStatus(L"Merging coplanar  faces");
    }
    /// False when the user wants to stop.
    bool Step()
    {
        if (++m_done < m_next)
            return !m_cancelled;
        const int percent = static_cast<int>(100LL * m_done / m_size);
        m_next = (static_cast<long long>(percent + 1) * m_size + 99) / 100;
        m_dialog.SetPos(percent, false);
        m_cancelled = m_dialog.CheckCancelButton();
        return !m_cancelled;
    }
    bool IsCancelled() const { return m_cancelled; }

private:
    const int m_size;
    long long m_done = 0, m_next = 1;
    bool m_cancelled = false;
    CProgressDlg m_dialog;
};

class CCoplanarMerge {
public:
    CCoplanarMerge(const C3DFaceList& faces, C3DPointList& points, const CGeomInfo* info, double angle, bool closed);

    /// False when the user stopped it.
    bool Plan();
    void Write(C3DFaceList& target);

private:
    void PairChannels();
    bool Grow(int seed);
    int GetOther(int seed, int face, int k);
    int GetOtherOfCrowd(int across, int seed, int face);
    bool IsCopy(int seed, int face) const;
    bool IsJoined(int face, int k, int other) const;
    bool IsSound(int face) const;
    bool Merge(int seed);
    void KeepTurns();
    void KeepAll();
    void AddChannelCorners(ChannelPair& pair);
    void DropStraightCorners();
    void Copy(int face);
    void WriteList(CFaceList& target, const CFaceList& source, const CBlockVector<int>& from, const CBlockVector<int>& corners,
                   const std::vector<bool>* hasData) const;
    unsigned int GetMaterial(int face) const { return *reinterpret_cast<const unsigned int*>(m_materials + face * m_materialStride); }

    const C3DFaceList& m_faces;
    C3DPointList& m_points;
    const CGeomInfo* m_info;
    const double m_threshold;
    const bool m_closed;
    const CFaceFlags m_flags;
    const unsigned char* m_materials;
    std::size_t m_materialStride;
    std::unique_ptr<C3DVectorList, void (*)(C3DVectorList*)> m_normals;
    const CFacesAcross m_across;
    CBlockVector<ChannelPair> m_channels;
    CBlockVector<CSeam> m_seams;
    CFaceCorners m_cornersOfFaces;
    CPercent m_percent;

    CBitArray m_processed;
    CBlockVector<int> m_seedOf;    // by face: the seed of the region that it joined last
    CBlockVector<int> m_region;    // the faces of a region in the order in which they joined; also their queue
    CRegionBorder m_border;
    CBlockVector<CRegionBorder::Corner> m_polygon;    // where the border turns
    CBlockVector<int> m_polygonPoints;

    // The result, face by face. A polygon takes the next of the corners.
    struct Result {
        int from;       // the face that is copied, or the seed of the polygon
        int corners;    // of a polygon; 0 for a copy
    };
    CBlockVector<Result> m_results;
    CBlockVector<int> m_corners;
    CBitArray m_needed;    // by point, where no seam may open: a corner that no face can do without
};

}

CCoplanarMerge::CCoplanarMerge(const C3DFaceList& faces, C3DPointList& points, const CGeomInfo* info, double angle, bool closed)
    : m_faces(faces), m_points(points), m_info(info), m_threshold(std::cos(angle) - 1e-6), m_closed(closed), m_flags(faces),
      m_normals(C3DVectorList::Create(nullptr), [](C3DVectorList* list) { DeleteMe(list); }), m_across(faces, points),
      m_cornersOfFaces(faces), m_percent(faces.GetSize()), m_processed(static_cast<unsigned int>(faces.GetSize()), false),
      m_seedOf(faces.GetSize(), -1), m_needed(closed ? static_cast<unsigned int>(points.GetSize()) : 0, false)
{
    const CElementArray* const main = faces.GetDataChunks().GetMainArray();
    m_materials = static_cast<const unsigned char*>(main->GetBase()) + sizeof(unsigned int);
    m_materialStride = main->GetStride();
    CGeomInfo own(const_cast<C3DFaceList*>(&faces), &points);
    faces.GetNormals(&own, *m_normals, true);
    PairChannels();
    m_results.reserve(faces.GetSize());
}

void CCoplanarMerge::PairChannels()
{
    CDependentChannels* const sources = m_info->GetSrcChannels();
    CDependentChannels* const targets = m_info->GetDstChannels();
    for (int i = 0; i < targets->GetSize(); i++) {
        CChannel* const target = targets->GetAt(i);
        CChannel* const source = sources->GetChannelByID(target->GetChannelID(), target->GetType());
        if (!source)
            continue;
        m_channels.push_back({source, target, {}});
        if (source->GetFaceList() && CSeam::Parts(source->GetType()))
            m_seams.emplace_back(m_info, source);
    }
}

bool CCoplanarMerge::Plan()
{
    for (int face = 0; face < m_faces.GetSize(); face++) {
        if (m_processed[face])
            continue;
        if (m_flags[face] & FACE_INVALID) {
            m_processed.SetAt(face, true);
            m_percent.Step();
        } else if (!Grow(face))
            return false;
        else if (m_region.size() < 2)
            Copy(face);
        else if (!m_border.Trace(m_faces, m_region) || !Merge(face))
            for (const int member : m_border.GetFaces())
                Copy(member);
        if (m_percent.IsCancelled())
            return false;
    }
    if (m_closed)
        DropStraightCorners();
    return true;
}

// --- Regions -----------------------------------------------------------------------------------------------------------------------

bool CCoplanarMerge::Grow(int seed)
{
    m_region.assign(1, seed);
    m_seedOf[seed] = seed;
    const bool grows = !m_flags.IsDead(seed) && IsSound(seed);
    for (std::size_t next = 0; next < m_region.size(); next++) {
        const int face = m_region[next];
        int count;
        m_faces.GetIndexes(face, count);
        for (int k = 0; k < count && grows; k++) {
            const int other = GetOther(seed, face, k);
            if (other >= 0 && !m_processed[other] && m_seedOf[other] != seed && IsJoined(face, k, other)) {
                m_seedOf[other] = seed;
                m_region.push_back(other);
            }
        }
        m_processed.SetAt(face, true);
        if (!m_percent.Step())
            return false;
    }
    return true;
}

/// The face across an edge, or NONE. Copies of the seed do not count where there are more than two; elsewhere they are no neighbours.
int CCoplanarMerge::GetOther(int seed, int face, int k)
{
    const int across = m_across.Get(face, k);
    if (across < CFacesAcross::NONE)
        return GetOtherOfCrowd(across, seed, face);
    return across >= 0 && face == seed && IsCopy(seed, across) ? CFacesAcross::NONE : across;
}

int CCoplanarMerge::GetOtherOfCrowd(int across, int seed, int face)
{
    const CFacesAcross::Crowd crowd = m_across.GetCrowd(across);
    int seedCount;
    const int* const seedCorners = m_faces.GetIndexes(seed, seedCount);
    const std::uint64_t* const endOfShapes = crowd.shapes + crowd.count;
    const auto [first, end] = std::equal_range(crowd.shapes, endOfShapes, CFacesAcross::GetShape(seedCorners, seedCount));
    int copies = 0;
    for (auto shape = first; shape < end; shape++)
        if (const int copy = crowd.faces[shape - crowd.shapes]; copy != seed && IsCopy(seed, copy)) {
            copies++;
            if (!m_processed[copy]) {
                m_processed.SetAt(copy, true);
                m_percent.Step();
            }
        }
    if (crowd.count - copies != 2)
        return CFacesAcross::NONE;
    for (int i = 0; i < crowd.count; i++)
        if (const int other = crowd.faces[i]; other != face && (other == seed || !IsCopy(seed, other)))
            return other;
    return CFacesAcross::NONE;
}

bool CCoplanarMerge::IsCopy(int seed, int face) const
{
    CFace a, b;
    return face != seed && m_faces.GetFace(seed, a) && m_faces.GetFace(face, b) && a.CompareIndexes(b, true);
}

bool CCoplanarMerge::IsJoined(int face, int k, int other) const
{
    const C3DTVector<float>* const normals = m_normals->GetFirst();
    if (GetMaterial(face) != GetMaterial(other) || !(Dot(normals[other], normals[face]) >= m_threshold) || !IsSound(other))
        return false;
    if (m_seams.empty())
        return true;
    int count;
    const int* const corners = m_faces.GetIndexes(face, count);
    const C3DEdge edge(corners[k], corners[k + 1 < count ? k + 1 : 0]);
    return std::none_of(m_seams.begin(), m_seams.end(), [&](const CSeam& seam) { return seam.IsSeam(edge, face, other); });
}

/// Every corner has a point.
bool CCoplanarMerge::IsSound(int face) const
{
    int count;
    const int* const corners = m_faces.GetIndexes(face, count);
    const auto pointCount = static_cast<unsigned int>(m_points.GetSize());
    return std::all_of(corners, corners + count, [=](int corner) { return static_cast<unsigned int>(corner) < pointCount; });
}

// --- Polygons ----------------------------------------------------------------------------------------------------------------------

bool CCoplanarMerge::Merge(int seed)
{
    KeepTurns();
    if (m_polygon.size() < 3)
        return false;
    if (m_closed)
        KeepAll();
    const int count = static_cast<int>(m_polygon.size());
    if (count > CFace::MAX_CORNERS)
        return false;
    const auto fillPoints = [&] {
        m_polygonPoints.clear();
        for (const CRegionBorder::Corner& corner : m_polygon)
            m_polygonPoints.push_back(corner.point);
    };
    fillPoints();
    C3DTVector<float> normal;
    C3DFace::GetNormal(m_points, m_polygonPoints.data(), count, normal, true);
    if (Dot(normal, *m_normals->ElementAt(seed)) < 0) {
        std::reverse(m_polygon.begin(), m_polygon.end());
        fillPoints();
    }
    m_results.push_back({seed, count});
    m_corners.insert(m_corners.end(), m_polygonPoints.begin(), m_polygonPoints.end());
    for (ChannelPair& pair : m_channels)
        if (pair.source->GetFaceList())
            AddChannelCorners(pair);
    return true;
}

/// The unit vectors enclose no angle that shows in single precision.
static bool IsStraight(const C3DTVector<float>& a, const C3DTVector<float>& b)
{
    constexpr double SURELY_BENT = 1e-6;    // of the squared cosine: much wider than what rounding can hide
    const double dot = Dot(a, b);
    if (dot <= 0 || dot * dot < (1 - SURELY_BENT) * (a.LengthSquared() * b.LengthSquared()))
        return false;
    C3DTVector<float> unitA = a, unitB = b;
    unitA.Normalize();
    unitB.Normalize();
    return static_cast<float>(Dot(unitA, unitB)) == 1.0f;
}

/// A corner stays unless it lies on the line from the one before it to the one behind it.
void CCoplanarMerge::KeepTurns()
{
    const CBlockVector<CRegionBorder::Corner>& line = m_border.GetLine();
    const C3DTPoint<float>* const points = m_points.GetFirst();
    m_polygon.clear();
    const std::size_t count = line.size();
    for (std::size_t i = 0; i < count; i++) {
        const C3DTPoint<float>& a = points[line[i > 0 ? i - 1 : count - 1].point];
        const C3DTPoint<float>& b = points[line[i].point];
        const C3DTPoint<float>& c = points[line[i + 1 < count ? i + 1 : 0].point];
        if (!IsStraight(c - a, c - b))
            m_polygon.push_back(line[i]);
    }
}

/// The whole line. DropStraightCorners sees to the corners that are no turns.
void CCoplanarMerge::KeepAll()
{
    for (const CRegionBorder::Corner& corner : m_polygon)
        m_needed.SetAt(static_cast<unsigned int>(corner.point), true);
    const CBlockVector<CRegionBorder::Corner>& line = m_border.GetLine();
    m_polygon.assign(line.begin(), line.end());
}

void CCoplanarMerge::AddChannelCorners(ChannelPair& pair)
{
    const CFaceList& source = *pair.source->GetFaceList();
    const std::size_t before = pair.corners.size();
    bool hasData = true;
    for (const CRegionBorder::Corner& corner : m_polygon) {
        int count;
        const int* const corners = source.GetIndexes(corner.face, count);
        const int place = m_cornersOfFaces.GetFirst(corner.face, corner.point);
        hasData = place >= 0 && place < count && !source.IsFaceOneFlagSet(corner.face, FACE_DEAD);
        if (!hasData)
            break;
        pair.corners.push_back(corners[place]);
    }
    if (!hasData)
        pair.corners.resize(before);
    pair.hasData.push_back(hasData);
}

void CCoplanarMerge::Copy(int face)
{
    m_results.push_back({face, 0});
    if (!m_closed)
        return;
    int count;
    const int* const corners = m_faces.GetIndexes(face, count);
    for (int k = 0; k < count; k++)
        if (static_cast<unsigned int>(corners[k]) < static_cast<unsigned int>(m_points.GetSize()))
            m_needed.SetAt(static_cast<unsigned int>(corners[k]), true);
}

/// Takes the corners out of the polygons whose points no face needs, in the geometry and in each channel.
void CCoplanarMerge::DropStraightCorners()
{
    const CBlockVector<int> all = std::move(m_corners);
    m_corners.clear();
    CBlockVector<CBlockVector<int>> allOfChannels;
    for (ChannelPair& pair : m_channels) {
        allOfChannels.push_back(std::move(pair.corners));
        pair.corners.clear();
    }
    CBlockVector<std::size_t> next(m_channels.size(), 0);    // in the channels' corners
    std::size_t at = 0, polygon = 0;
    for (Result& result : m_results) {
        if (result.corners == 0)
            continue;
        const auto keep = [&](const CBlockVector<int>& from, std::size_t first, CBlockVector<int>& to) {
            for (int k = 0; k < result.corners; k++)
                if (m_needed[static_cast<unsigned int>(all[at + k])])
                    to.push_back(from[first + k]);
        };
        for (std::size_t i = 0; i < m_channels.size(); i++)
            if (ChannelPair& pair = m_channels[i]; pair.source->GetFaceList() && pair.hasData[polygon]) {
                keep(allOfChannels[i], next[i], pair.corners);
                next[i] += static_cast<std::size_t>(result.corners);
            }
        const std::size_t before = m_corners.size();
        keep(all, at, m_corners);
        at += static_cast<std::size_t>(result.corners);
        result.corners = static_cast<int>(m_corners.size() - before);
        polygon++;
    }
}

// --- The destination ---------------------------------------------------------------------------------------------------------------

void CCoplanarMerge::Write(C3DFaceList& target)
{
    CBlockVector<int> from(m_results.size());
    for (std::size_t i = 0; i < from.size(); i++)
        from[i] = m_results[i].from;
    WriteList(target, m_faces, from, m_corners, nullptr);

    for (std::size_t i = 0; i < from.size(); i++)
        if (m_results[i].corners)
            from[i] = NO_FACE;    // a channel's polygon has no face that it takes after
    for (ChannelPair& pair : m_channels) {
        CPointList *values = pair.source->GetPointList(), *copies = pair.target->GetPointList();
        if (values && copies && values != copies)
            *copies = *values;
        CFaceList *source = pair.source->GetFaceList(), *faces = pair.target->GetFaceList();
        if (!source || !faces || source == faces)
            continue;
        faces->Inherit(*source);
        WriteList(*faces, *source, from, pair.corners, &pair.hasData);
    }
    m_across.MarkBorder(m_points);
}

void CCoplanarMerge::WriteList(CFaceList& target, const CFaceList& source, const CBlockVector<int>& from, const CBlockVector<int>& corners,
                               const std::vector<bool>* hasData) const
{
    target.RemoveAll();
    target.SetSize(0, CFaceList::SIZE_GROW, 4);
    CBlockVector<unsigned int> sizes(m_results.size());
    std::size_t polygon = 0;
    for (std::size_t i = 0; i < sizes.size(); i++) {
        int count = m_results[i].corners;
        if (count == 0)
            source.GetIndexes(m_results[i].from, count);
        else if (hasData && !(*hasData)[polygon++])
            count = 0;
        sizes[i] = static_cast<unsigned int>(count);
    }
    const int* next = corners.data();
    target.AppendFaces(static_cast<int>(sizes.size()), sizes.data(), [&](int* to, unsigned int k) {
        const int count = static_cast<int>(sizes[k]);
        if (m_results[k].corners) {
            std::copy_n(next, count, to);
            next += count;
        } else {
            int same;
            std::copy_n(source.GetIndexes(m_results[k].from, same), count, to);
        }
    });
    GatherFaceData(target, source, from.data(), static_cast<int>(from.size()));
    if (!hasData)
        return;
    const CFaceFlags flags(target);    // a channel's face without corners is one without data
    for (std::size_t i = 0; i < sizes.size(); i++)
        if (sizes[i] == 0 && !flags.IsDead(static_cast<unsigned int>(i)))
            flags[static_cast<unsigned int>(i)] |= FACE_EMPTY;
}

// --- The list ----------------------------------------------------------------------------------------------------------------------

/// Where the points that are not marked invalid go; empty when all stay.
static void MapPoints(const C3DPointList& points, CXArray<unsigned int, unsigned int>& map)
{
    const C3DTPoint<float>* const first = points.GetFirst();
    const int size = points.GetSize();
    const auto isInvalid = [](const C3DTPoint<float>& point) { return (point.flags & POINT_INVALID) != 0; };
    if (std::none_of(first, first + size, isInvalid))
        return;
    map.SetSize(size);
    unsigned int kept = 0;
    for (int i = 0; i < size; i++)
        map[i] = isInvalid(first[i]) ? 0xFFFFFFFF : kept++;
}

/// As CFaceList::Clean with all of it, but with as many faces as before the points stay: the source goes on with them. They come last: memory
/// may run out before, and the source is as it was then.
static void CleanMerged(C3DFaceList& target, C3DPointList& points, CDependentChannels* channels, int facesBefore)
{
    CGeomInfo info(&target, &points);
    info.SetChannels(channels, nullptr, 0);
    CXArray<unsigned int, unsigned int> faceMap, pointMap;
    target.Clean(&info, true, &faceMap);
    if (target.GetSize() == facesBefore)
        return;
    points.SetInvalidPoints(&target, false);
    MapPoints(points, pointMap);
    if (pointMap.GetSize() > 0)
        target.UpdateIndex(&pointMap, true);
    target.SetFlag(FACELIST_CHANGED, true);
    channels->CleanChannels(&info, &faceMap, &pointMap);
    if (points.Clean(nullptr, nullptr))    // takes no memory
        points.SetFlag(POINTLIST_CHANGED, true);
}

static int MergeFaces(C3DFaceList& faces, const CGeomInfo* info, double angle, bool closed)
{
    C3DFaceList* const target = info ? info->GetDst3DFaceList() : nullptr;
    C3DPointList* const points = info ? info->GetSrc3DPointList() : nullptr;
    if (!target || target == &faces || !points)
        return 0;
    const int size = faces.GetSize();
    if (size == 0) {
        target->RemoveAll();
        return 0;
    }
    CCoplanarMerge merge(faces, *points, info, angle, closed);
    if (!merge.Plan()) {
        target->RemoveAll();
        return -1;
    }
    merge.Write(*target);
    CleanMerged(*target, *points, info->GetDstChannels(), size);
    return target->GetSize();
}

int C3DFaceList::MergeCoplanarFaces(const CGeomInfo* info, double angle) { return MergeFaces(*this, info, angle, false); }

// --- The object --------------------------------------------------------------------------------------------------------------------

static bool MergeObject(C3DGeomObject& object, double angle, unsigned int channelTypes, bool closed)
{
    constexpr unsigned int SHARED = CHANNEL_COPY_SHARE | CHANNEL_COPY_SKIP_UNFOLLOWED;
    constexpr unsigned int SHAPED = CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_NO_DATA | CHANNEL_COPY_SKIP_UNFOLLOWED;
    C3DFaceList* const faces = object.GetFaceList();
    if (!faces || !object.GetPointList())
        return false;
    CGeomInfo info(&object);
    info.SetFaceList(faces, new C3DFaceList(faces), 2);
    const bool hasChannels = channelTypes && object.GetChannels()->GetSize() > 0;
    if (hasChannels) {
        CDependentChannels* const sources = CDependentChannels::Create();
        CDependentChannels* const targets = CDependentChannels::Create();
        info.SetChannels(sources, targets, 3);
        sources->CopyChannels(*object.GetChannels(), channelTypes, SHARED);
        targets->CopyChannels(*object.GetChannels(), channelTypes, SHAPED);
    }
    const int count = MergeFaces(*faces, &info, angle, closed);
    if (count < 0 || count == faces->GetSize())
        return false;

    object.SetFaceList(info.GetDst3DFaceList(true), true);
    if (hasChannels)
        object.SetChannels(info.GetDstChannels(true), true);
    else
        object.GetChannels()->RemoveChannels(~channelTypes & CHANNEL_ALL, 0, true);
    object.Invalidate(CHANGE_POINTS | CHANGE_FACES, true);    // points went too
    return true;
}

bool C3DGeomObject::MergeCoplanarFaces(double angle, unsigned int channelTypes) { return MergeObject(*this, angle, channelTypes, false); }

bool MergeCoplanarFacesClosed(C3DGeomObject& object, double angle, unsigned int channelTypes)
{
    return MergeObject(object, angle, channelTypes, true);
}
