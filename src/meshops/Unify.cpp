// Unification: one orientation for connected faces, outward where there is an outside.
//
//   flood    a sheet takes the orientation of its first face, edge by edge
//   follow   faces of other sheets that touch a turned face at a point, in its plane and side by side with it, turn after it. What is
//            left seeds the next flood
//   outward  the face that lies flat nearest to a side of the box of all points tells whether the group is inside out
//
// To follow is told as a look by every face that is left at all turned faces around it, after each flood. A look that failed fails again,
// so only faces around which something was turned since are asked, and only about that, in the same order.

#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <utility>
#include <vector>

#include "channels/DependentChannels.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/CornerEdges.h"
#include "geometry/Edge.h"
#include "geometry/GeomInfo.h"
#include "meshops/UnifyTagger.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"
#include "tools/Progress.h"

namespace {

constexpr double NO_LENGTH = 1e-15;
constexpr double PARALLEL = 0.8999999761581421;    // the float 0.9: about 26 degrees
constexpr double IN_LINE = 0.995;

bool NormalizeUnlessTiny(C3DTVector<float>& v)
{
    const double length = v.Length();
    if (!(length > NO_LENGTH))
        return false;
    v /= length;
    return true;
}

}

class CUnifyTagger::Run {
public:
    Run(CGeomInfo& info, CBitArray& flipped)
        : m_info(info), m_faces(*info.GetSrc3DFaceList()), m_points(*info.GetSrc3DPointList()), m_edges(m_faces, &info), m_flipped(flipped),
          m_visited(static_cast<unsigned int>(m_faces.GetSize()), false),
          m_progress(L"Unifying normals", static_cast<std::uint64_t>(m_faces.GetSize()))
    {
        m_points.GetBoundingBox(m_min, m_max);
    }

    void Unify(const unsigned int* faces, unsigned int count);
    bool IsCancelled() const { return m_progress.IsCancelled(); }

private:
    static constexpr unsigned int NONE = 0xFFFFFFFF;

    struct Turned {
        int face;
        C3DTVector<float> normal;
        bool operator<(const Turned& other) const { return face < other.face; }
    };

    void FloodSheet(int seed);
    void Spread(int face);

    void FollowSheet(const unsigned int* faces, unsigned int count);
    void PrepareFollowing(const unsigned int* faces, unsigned int count);
    void Tell(int face);
    CBlockVector<Turned>* GetNews(int point, bool ask);
    unsigned int OpenNews(int point);
    bool Follow(int face);
    bool LiesAlong(const C3DTVector<float> (&edges)[2], int face, int point) const;

    void TurnOutward(const unsigned int* faces, unsigned int count);

    bool IsVisited(int face) const { return m_visited[static_cast<unsigned int>(face)]; }
    void Flip(int face);
    C3DTVector<float> GetNormal(int face) const;
    bool GetEdgesAt(int face, int corner, C3DTVector<float> (&edges)[2]) const;

    CGeomInfo& m_info;
    C3DFaceList& m_faces;
    C3DPointList& m_points;
    const CCornerEdges m_edges;
    CBitArray& m_flipped;
    CBitArray m_visited;
    CProgress m_progress;    // faces that have their orientation
    C3DTPoint<float> m_min, m_max;
    CBlockVector<int> m_sheet;    // the flood's queue: in the end all faces of the sheet

    // Of groups with several sheets; made for the first of them.
    bool m_numbered = false;                     // m_places holds for the group
    CBlockVector<int> m_places;                  // in the group, by face
    unsigned int m_round = 0;                    // counts the floods that left faces
    int m_place = -1;                            // of the face that looks
    CBlockVector<unsigned int> m_askedIn;        // round, by face
    CBlockVector<unsigned int> m_pointRounds;    // for which m_newsOf holds, by point
    CBlockVector<unsigned int> m_newsOf;         // index into m_news, or NONE where no face is left, by point
    std::vector<CBlockVector<Turned>> m_news;    // turned faces around a point that those left have not looked at yet, ascending
    unsigned int m_newsCount = 0;
    CBlockVector<int> m_late;    // turned in the last round: faces that stand before them have not looked at them
    std::priority_queue<int, CBlockVector<int>, std::greater<>> m_asked;    // places of the faces that are to look
};

void CUnifyTagger::Run::Unify(const unsigned int* faces, unsigned int count)
{
    std::size_t done = 0;
    m_numbered = false;
    m_late.clear();
    for (unsigned int first = 0; first < count && !IsCancelled(); first++) {
        const int seed = static_cast<int>(faces[first]);
        if (IsVisited(seed))
            continue;
        FloodSheet(seed);
        done += m_sheet.size();
        if (done == count)
            break;
        FollowSheet(faces, count);
        done += m_late.size();
    }
    TurnOutward(faces, count);
}

// --- Flood ----------------------------------------------------------------------------------------------------------

void CUnifyTagger::Run::FloodSheet(int seed)
{
    m_sheet.assign(1, seed);
    m_visited.SetAt(static_cast<unsigned int>(seed), true);
    for (std::size_t next = 0; next < m_sheet.size() && m_progress.Step(); next++)
        Spread(m_sheet[next]);
}

void CUnifyTagger::Run::Spread(int face)
{
    int size;
    const int* corners = m_faces.GetIndexes(face, size);
    for (int k = 0; k < size; k++) {
        const int a = corners[k], b = corners[k + 1 < size ? k + 1 : 0];
        if (a == b)
            continue;
        int count;
        const int* around = m_edges.GetFaces(face, k, C3DEdge(a, b), count);
        for (int i = 0; i < count; i++) {
            if (IsVisited(around[i]))
                continue;
            C3DFace neighbour;
            m_faces.GetFace(around[i], neighbour);
            if (neighbour.IsFaceEdge(a, b, true) >= 0)
                Flip(around[i]);
            m_visited.SetAt(static_cast<unsigned int>(around[i]), true);
            m_sheet.push_back(around[i]);
        }
    }
}

// --- Follow ---------------------------------------------------------------------------------------------------------

void CUnifyTagger::Run::FollowSheet(const unsigned int* faces, unsigned int count)
{
    PrepareFollowing(faces, count);
    for (const int face : m_late)
        Tell(face);
    for (const int face : m_sheet)
        Tell(face);
    m_late.clear();
    while (!m_asked.empty() && !IsCancelled()) {
        m_place = m_asked.top();
        m_asked.pop();
        const int face = static_cast<int>(faces[m_place]);
        if (!Follow(face))
            continue;
        m_visited.SetAt(static_cast<unsigned int>(face), true);
        m_late.push_back(face);
        m_progress.Step();
        Tell(face);
    }
}

void CUnifyTagger::Run::PrepareFollowing(const unsigned int* faces, unsigned int count)
{
    m_places.resize(m_faces.GetSize());
    m_askedIn.resize(m_faces.GetSize());
    m_pointRounds.resize(m_points.GetSize());
    m_newsOf.resize(m_points.GetSize());
    for (unsigned int i = 0; !m_numbered && i < count; i++)
        m_places[faces[i]] = static_cast<int>(i);
    m_numbered = true;
    m_round++;
    m_newsCount = 0;
    m_place = -1;
}

// A face has been turned: those around its points that have their look before them will see it.
void CUnifyTagger::Run::Tell(int face)
{
    int size;
    const int* corners = m_faces.GetIndexes(face, size);
    Turned turned{-1, {}};
    for (int k = 0; k < size; k++)
        if (CBlockVector<Turned>* news = GetNews(corners[k], true)) {
            if (turned.face < 0)
                turned = {face, GetNormal(face)};
            const auto place = std::lower_bound(news->begin(), news->end(), turned);
            if (place == news->end() || place->face != face)
                news->insert(place, turned);
        }
}

// Null where there are none. `ask` opens the list of a point, and queues the faces around.
CBlockVector<CUnifyTagger::Run::Turned>* CUnifyTagger::Run::GetNews(int point, bool ask)
{
    if (static_cast<std::size_t>(point) >= m_pointRounds.size())
        return nullptr;
    if (m_pointRounds[point] != m_round) {
        if (!ask)
            return nullptr;
        m_pointRounds[point] = m_round;
        m_newsOf[point] = OpenNews(point);
    }
    return m_newsOf[point] != NONE ? &m_news[m_newsOf[point]] : nullptr;
}

unsigned int CUnifyTagger::Run::OpenNews(int point)
{
    int count;
    const int* around = m_faces.GetFacesConnectedToPoint(point, count);
    bool left = false;
    for (int i = 0; i < count; i++) {
        const int face = around[i];
        if (IsVisited(face))
            continue;
        left = true;
        if (m_askedIn[face] != m_round && m_places[face] > m_place) {
            m_askedIn[face] = m_round;
            m_asked.push(m_places[face]);
        }
    }
    if (!left)
        return NONE;
    if (m_newsCount == m_news.size())
        m_news.emplace_back();
    m_news[m_newsCount].clear();
    return m_newsCount++;
}

// Turns the face after the first turned one, corner by corner, that it lies along.
bool CUnifyTagger::Run::Follow(int face)
{
    int size;
    const int* corners = m_faces.GetIndexes(face, size);
    const C3DTVector<float> normal = GetNormal(face);
    for (int k = 0; k < size; k++) {
        const CBlockVector<Turned>* news = GetNews(corners[k], false);
        C3DTVector<float> edges[2];
        if (!news || !GetEdgesAt(face, k, edges))
            continue;
        for (const Turned& other : *news) {
            const double cosine = Dot(normal, other.normal);
            if (std::fabs(cosine) < PARALLEL || !LiesAlong(edges, other.face, corners[k]))
                continue;
            if (cosine < 0)
                Flip(face);
            return true;
        }
    }
    return false;
}

bool CUnifyTagger::Run::LiesAlong(const C3DTVector<float> (&edges)[2], int face, int point) const
{
    C3DFace view;
    m_faces.GetFace(face, view);
    C3DTVector<float> others[2];
    GetEdgesAt(face, view.IsFacePoint(point), others);
    for (const C3DTVector<float>& edge : edges)
        for (const C3DTVector<float>& other : others)
            if (std::fabs(Dot(edge, other)) > IN_LINE)
                return true;
    return false;
}

// --- Outward --------------------------------------------------------------------------------------------------------

void CUnifyTagger::Run::TurnOutward(const unsigned int* faces, unsigned int count)
{
    static const C3DTVector<float> DIRECTIONS[] = {{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    struct Best {
        double distance;
        int face = -1;
    } best[6];
    for (Best& side : best)
        side.distance = (m_max - m_min).Length();
    for (unsigned int i = 0; i < count; i++) {
        const int face = static_cast<int>(faces[i]);
        C3DFace view;
        m_faces.GetFace(face, view);
        C3DTPoint<double> c;
        view.GetCenter(&m_info, c);
        const double distances[] = {c.x - m_min.x, c.y - m_min.y, c.z - m_min.z, m_max.x - c.x, m_max.y - c.y, m_max.z - c.z};
        C3DTVector<float> normal;
        bool known = false;
        for (int k = 0; k < 6; k++) {
            if (!(best[k].distance > distances[k]))
                continue;
            if (!std::exchange(known, true))
                normal = GetNormal(face);
            if (std::fabs(Dot(normal, DIRECTIONS[k])) > PARALLEL)
                best[k] = {distances[k], face};
        }
    }
    int chosen = -1;
    for (int k = 0; k < 6; k++)
        if (best[k].face >= 0 && (chosen < 0 || best[k].distance < best[chosen].distance))
            chosen = k;
    if (chosen >= 0 && Dot(GetNormal(best[chosen].face), DIRECTIONS[chosen]) < 0)
        for (unsigned int i = 0; i < count; i++)
            Flip(static_cast<int>(faces[i]));
}

// --- Faces ----------------------------------------------------------------------------------------------------------

void CUnifyTagger::Run::Flip(int face)
{
    C3DFace view;
    m_faces.GetFace(face, view);
    view.Flip();
    m_flipped.SetAt(static_cast<unsigned int>(face), !m_flipped[static_cast<unsigned int>(face)]);
}

C3DTVector<float> CUnifyTagger::Run::GetNormal(int face) const
{
    C3DFace view;
    C3DTVector<float> normal;
    m_faces.GetFace(face, view);
    view.GetNormal(&m_info, normal, true);
    return normal;
}

// Unit vectors from a corner to the one before and the one behind. False when one has no length.
bool CUnifyTagger::Run::GetEdgesAt(int face, int corner, C3DTVector<float> (&edges)[2]) const
{
    int size;
    const int* corners = m_faces.GetIndexes(face, size);
    if (corner < 0 || corner >= size)
        return false;
    const C3DTPoint<float>* from = m_points.ElementAt(corners[corner]);
    const C3DTPoint<float>* to[] = {m_points.ElementAt(corners[(corner + size - 1) % size]),
                                    m_points.ElementAt(corners[(corner + 1) % size])};
    if (!from || !to[0] || !to[1])
        return false;
    bool sound = true;
    for (int i = 0; i < 2; i++) {
        edges[i] = *to[i] - *from;
        sound &= NormalizeUnlessTiny(edges[i]);
    }
    return sound;
}

// --- The tagger and its callers -------------------------------------------------------------------------------------

CUnifyTagger::CUnifyTagger(CBitArray& flipped) : m_flipped(flipped) { m_takesAll = true; }

CUnifyTagger::~CUnifyTagger() = default;

bool CUnifyTagger::InitProcess(CGeomInfo* info)
{
    if (!info->GetSrc3DFaceList() || !info->GetSrc3DPointList())
        return false;
    m_run = std::make_unique<Run>(*info, m_flipped);
    return true;
}

void CUnifyTagger::EndProcess(unsigned int)
{
    m_cancelled = m_run && m_run->IsCancelled();
    m_run.reset();
    m_faces->DeleteEdgeToFaceGraph();
    m_faces->DeletePointToFaceGraph();    // of the walk
}

void CUnifyTagger::ProcessGroup(unsigned int* faces, unsigned int count) { m_run->Unify(faces, count); }

static void FlipFaces(CFaceList& faces, const CBitArray& which)
{
    for (unsigned int face = 0; face < which.GetSize(); face++)
        if (CFace view; which[face] && faces.GetFace(face, view))
            view.Flip();
}

bool C3DFaceList::UnifyNormals(CGeomInfo* info, CBitArray& flipped)
{
    flipped.SetSize(static_cast<unsigned int>(GetSize()), false);
    CUnifyTagger tagger(flipped);
    if (GetSize() > 0)
        TagFaces(info, tagger, false);
    if (!tagger.IsCancelled())
        return true;
    FlipFaces(*this, flipped);    // back
    flipped.SetSize(static_cast<unsigned int>(GetSize()), false);
    return false;
}

bool C3DGeomObject::UnifyNormals()
{
    if (!m_faces)
        return false;
    CGeomInfo info(this);
    CBitArray flipped;
    if (!m_faces->UnifyNormals(&info, flipped))
        return false;
    for (CChannel* channel : *m_channels) {
        CFaceList* faces = channel->GetFaceList();
        if (!faces || channel->IsOneFlagSet(CHANNEL_INVALID | CHANNEL_UNFOLLOWED))
            continue;
        FlipFaces(*faces, flipped);
    }
    Invalidate(CHANGE_FACES, true);
    return true;
}
