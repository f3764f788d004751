// Subdivision of patches: triangles by the scheme of Loop (C. Loop, Smooth subdivision surfaces based on triangles, 1987), quads by that of
// Catmull and Clark (Recursively generated B-spline surfaces on arbitrary topological meshes, 1978).
//
//   parts    triangles, quads and larger faces are cut out; each part is worked on alone, and they are joined again
//   level    every face gives four. The old points move, each edge and for quads each face gives a point; a border stays in place
//   channel  follows in the same pattern: old values stay, new ones are means
//
// New points are numbered in the order in which the faces first need them.

#include <algorithm>
#include <array>
#include <cstdint>

#include "channels/DependentChannels.h"
#include "channels/UVWPointList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "scene/3DObject.h"
#include "scene/Patch.h"
#include "tools/BlockVector.h"
#include "tools/Progress.h"

namespace {

/// A weighted sum of points, in doubles.
struct Sum {
    double x = 0, y = 0, z = 0;
    int count = 0;

    void Add(const C3DTPoint<float>& p, double weight = 1) { x += weight * p.x, y += weight * p.y, z += weight * p.z, count++; }
    void Add(const Sum& sum, double weight) { x += weight * sum.x, y += weight * sum.y, z += weight * sum.z; }
    void Store(C3DTPoint<float>& to) const { to.x = static_cast<float>(x), to.y = static_cast<float>(y), to.z = static_cast<float>(z); }
};

/// The edges of a list, each once, by their smaller end. Such with an end beyond the points, and dead faces, have none.
class Edges {
public:
    Edges(const CFaceList& faces, int points, int corners);

    int GetCount() const { return static_cast<int>(m_first.size()) - 1; }
    /// Of the edge from corner k of a face to the next one; -1 for none.
    int Find(int face, int k) const { return m_edgeOf[static_cast<std::size_t>(face) * m_corners + k]; }

    /// One side of an edge: the face, and its corner k where the edge starts.
    struct Side {
        int face, k;
    };
    int CountSides(int edge) const { return static_cast<int>(m_first[edge + 1] - m_first[edge]); }
    /// Sides come by ascending face.
    Side GetSide(int edge, int i) const
    {
        const unsigned int side = static_cast<unsigned int>(m_sides[m_first[edge] + i]);
        return {static_cast<int>(side / m_corners), static_cast<int>(side % m_corners)};
    }
    struct Ends {
        int a, b;    ///< the smaller one first
    };
    Ends GetEnds(int edge) const
    {
        const auto [face, k] = GetSide(edge, 0);
        int size;
        const int* corners = m_faces.GetIndexes(face, size);
        const auto [a, b] = std::minmax(corners[k], corners[k + 1 < size ? k + 1 : 0]);
        return {a, b};
    }

private:
    template <class VISIT> void ForEachSide(int points, VISIT visit) const;

    const CFaceList& m_faces;
    const unsigned int m_corners;
    CBlockVector<std::uint64_t> m_sides;    // larger end, and number of the side (face by face): sorted for each smaller end
    CBlockVector<unsigned int> m_first;     // of the sides, by edge
    CBlockVector<int> m_edgeOf;             // by side
};

Edges::Edges(const CFaceList& faces, int points, int corners)
    : m_faces(faces), m_corners(corners), m_edgeOf(static_cast<std::size_t>(faces.GetSize()) * corners, -1)
{
    CBlockVector<unsigned int> ends(points + 1, 0);    // of the sides of a smaller end; first their starts
    ForEachSide(points, [&](int a, int, unsigned int) { ends[a + 1]++; });
    for (int a = 0; a < points; a++)
        ends[a + 1] += ends[a];
    m_sides.resize(ends[points]);
    ForEachSide(points, [&](int a, int b, unsigned int side) { m_sides[ends[a]++] = std::uint64_t(unsigned(b)) << 32 | side; });
    m_first.reserve(m_sides.size() / 2 + points / 16 + 1);
    std::uint64_t* const all = m_sides.data();
    for (int a = 0; a < points; a++) {
        std::uint64_t* const first = all + (a ? ends[a - 1] : 0);
        std::uint64_t* const end = all + ends[a];
        std::sort(first, end);
        for (std::uint64_t* side = first; side < end; side++) {
            if (side == first || side[0] >> 32 != side[-1] >> 32)
                m_first.push_back(static_cast<unsigned int>(side - all));
            m_edgeOf[static_cast<unsigned int>(*side)] = static_cast<int>(m_first.size()) - 1;
        }
    }
    m_first.push_back(static_cast<unsigned int>(m_sides.size()));
}

// `visit(smaller end, larger end, number of the side)`.
template <class VISIT> void Edges::ForEachSide(int points, VISIT visit) const
{
    m_faces.ForEachLiveFace([&](int face, const int* corners, int size) {
        for (int k = 0; k < size && size == static_cast<int>(m_corners); k++) {
            const auto [a, b] = std::minmax(corners[k], corners[k + 1 < size ? k + 1 : 0]);
            if (a >= 0 && b < points)
                visit(a, b, static_cast<unsigned int>(face) * m_corners + k);
        }
    });
}

/// What a new point of a list is made of.
struct Origin {
    int index;
    enum Kind : int { POINT, EDGE, FACE } kind;
};

/// The new faces of one list, and what its new points come from. All faces of the list have `corners` corners; others have no data.
class Split {
public:
    Split(CFaceList& faces, int points, int corners);

    /// Appends four faces for each face and numbers the points.
    ///
    /// @param across  tells the second face of an edge, whose face point is to stand before that of the edge; -1 for none
    template <class ACROSS> void Run(CFaceList& to, ACROSS across);

    CFaceList& GetFaces() const { return m_faces; }
    const Edges& GetEdges() const { return m_edges; }
    int GetCorners() const { return m_corners; }
    /// By new point.
    const CBlockVector<Origin>& GetOrigins() const { return m_origins; }
    /// Number of the new point of a face.
    int GetFacePoint(int face) const { return m_ofFace[face]; }

private:
    int Number(int& number, Origin origin)
    {
        if (number < 0) {
            number = static_cast<int>(m_origins.size());
            m_origins.push_back(origin);
        }
        return number;
    }
    bool IsWhole(const int* corners, int size) const;
    template <class ACROSS> void LayOut(int face, const int* corners, int (&children)[16], ACROSS across);
    void Empty(CFaceList& to) const;

    CFaceList& m_faces;
    const int m_corners;
    const Edges m_edges;
    CBlockVector<int> m_ofPoint, m_ofEdge, m_ofFace;    // new numbers
    CBlockVector<Origin> m_origins;
    CBlockVector<int> m_empty;    // old faces without data
};

Split::Split(CFaceList& faces, int points, int corners)
    : m_faces(faces), m_corners(corners), m_edges(faces, points, corners), m_ofPoint(points, -1), m_ofEdge(m_edges.GetCount(), -1),
      m_ofFace(corners == 4 ? faces.GetSize() : 0, -1)
{
    m_origins.reserve(m_ofPoint.size() + m_ofEdge.size() + m_ofFace.size());
}

bool Split::IsWhole(const int* corners, int size) const
{
    return size == m_corners &&
           std::all_of(corners, corners + size, [&](int corner) { return static_cast<unsigned int>(corner) < m_ofPoint.size(); });
}

// The corners of the four faces that one gives.
template <class ACROSS> void Split::LayOut(int face, const int* corners, int (&children)[16], ACROSS across)
{
    const int n = m_corners;
    int v[4], e[4];
    const int center = n == 4 ? Number(m_ofFace[face], {face, Origin::FACE}) : -1;
    for (int k = 0; k < n; k++)
        v[k] = Number(m_ofPoint[corners[k]], {corners[k], Origin::POINT});
    for (int k = 0; k < n; k++) {
        const int edge = m_edges.Find(face, k);
        int& number = m_ofEdge[edge];
        if (number < 0)
            if (const int other = across(face, edge); other >= 0)
                Number(m_ofFace[other], {other, Origin::FACE});
        e[k] = Number(number, {edge, Origin::EDGE});
    }
    if (n == 3)
        std::ranges::copy(std::array{v[0], e[0], e[2], v[1], e[1], e[0], v[2], e[2], e[1], e[0], e[1], e[2]}, children);
    else
        for (int k = 0; k < 4; k++)
            std::ranges::copy(std::array{v[k], e[k], center, e[(k + 3) % 4]}, children + 4 * k);
}

template <class ACROSS> void Split::Run(CFaceList& to, ACROSS across)
{
    const CFaceFlags flags(m_faces);
    const int count = 4 * m_faces.GetSize();
    int children[16];
    to.AppendFaces(count, m_corners, [&](int* indexes, unsigned int k) {
        if (k % 4 == 0) {
            const int face = static_cast<int>(k / 4);
            int size;
            const int* corners = m_faces.GetIndexes(face, size);
            if (!flags.IsDead(face) && IsWhole(corners, size))
                LayOut(face, corners, children, across);
            else {
                m_empty.push_back(face);
                std::ranges::fill(children, 0);
            }
        }
        std::copy_n(children + k % 4 * m_corners, m_corners, indexes);
    });
    CBlockVector<int> sources(count);
    for (int child = 0; child < count; child++)
        sources[child] = child / 4;
    to.GetDataChunks().GatherData(0, m_faces.GetDataChunks(), sources.data(), count);
    Empty(to);
}

void Split::Empty(CFaceList& to) const
{
    CFace view;
    for (const int face : m_empty)
        for (int child = 4 * face; child < 4 * face + 4; child++)
            if (to.GetFace(child, view)) {
                view.SetSize(0);
                view.SetFlags(m_faces.IsFaceFlagSet(face, FACE_INVALID) ? FACE_DEAD : FACE_EMPTY);
            }
}

// --- One level ------------------------------------------------------------------------------------------------------

/// What both schemes share. Lives while the object has its old lists.
class Level {
public:
    Level(C3DObject& object, int corners);
    virtual ~Level();

    /// First the faces: they number the points.
    virtual C3DFaceList* CreateFaces() = 0;
    C3DPointList* CreatePoints();
    CDependentChannels* CreateChannels() const;

protected:
    template <class ACROSS> C3DFaceList* SplitFaces(ACROSS across)
    {
        C3DFaceList* faces = C3DFaceList::Create(&m_faces);
        m_split.Run(*faces, across);
        return faces;
    }
    virtual void PlaceCorner(int point, C3DTPoint<float>& to) const = 0;
    virtual void PlaceEdge(int edge, C3DTPoint<float>& to) const = 0;

    const C3DTPoint<float>& Old(int point) const { return m_points[point]; }

    C3DObject& m_object;
    C3DPointList& m_old;
    C3DFaceList& m_faces;
    CGeomInfo m_info;
    Split m_split;
    C3DTPoint<float>* m_points;    // old ones
    C3DPointList* m_new = nullptr;

private:
    void MarkBorder();
};

Level::Level(C3DObject& object, int corners)
    : m_object(object), m_old(*object.GetPointList()), m_faces(*object.GetFaceList()), m_info(&object),
      m_split(m_faces, m_old.GetSize(), corners), m_points(m_old.GetFirst())
{
    MarkBorder();
}

Level::~Level() = default;

// As CPointList::SetBorderPointsStatus does.
void Level::MarkBorder()
{
    m_old.SetPointsFlags(POINT_BORDER | POINT_INNER_EDGE | POINT_BORDER_LINK, false);
    const Edges& edges = m_split.GetEdges();
    for (int edge = 0; edge < edges.GetCount(); edge++) {
        const _POINT_PROPERTIES status = edges.CountSides(edge) == 1 ? POINT_BORDER : POINT_INNER_EDGE;
        const auto [a, b] = edges.GetEnds(edge);
        m_points[a].SetFlag(status, true);
        m_points[b].SetFlag(status, true);
    }
}

C3DPointList* Level::CreatePoints()
{
    const CBlockVector<Origin>& origins = m_split.GetOrigins();
    const int count = static_cast<int>(origins.size());
    m_new = C3DPointList::Create(&m_old);
    m_new->SetSize(count, false, 0);
    for (int i = 0; i < count && m_split.GetCorners() == 4; i++)    // first, for edges look at them
        if (C3DFace face; origins[i].kind == Origin::FACE && m_faces.GetFace(origins[i].index, face))
            face.GetCenter(&m_info, *m_new->ElementAt(i));
    const bool hasChunks = m_old.GetDataChunkNbr() > 0;
    for (int i = 0; i < count; i++) {
        const auto [index, kind] = origins[i];
        C3DTPoint<float>& to = *m_new->ElementAt(i);
        if (kind == Origin::EDGE)
            PlaceEdge(index, to);
        else if (kind == Origin::POINT) {
            if (hasChunks)
                m_new->CopyPoint(i, index, m_old);
            to.flags = 0;
            if (Old(index).IsFlagSet(POINT_BORDER))
                to = Old(index);
            else
                PlaceCorner(index, to);
        }
    }
    return m_new;
}

// Corners take the value of their point, all others means. Texture coordinates without a call a point; the sums are those of C4DPoint.
void FillUVW(const Split& split, const CUVWPoint* from, CUVWPoint* to)
{
    for (const auto& [index, kind] : split.GetOrigins()) {
        if (kind == Origin::POINT) {
            *to++ = from[index];
            continue;
        }
        double sum[3] = {};
        int count = 0;
        const auto add = [&](const CUVWPoint& point) { sum[0] += point.u, sum[1] += point.v, sum[2] += point.w, count++; };
        if (kind == Origin::EDGE) {
            const auto [a, b] = split.GetEdges().GetEnds(index);
            add(from[a]);
            add(from[b]);
        } else {
            int size;
            const int* corners = split.GetFaces().GetIndexes(index, size);
            for (int k = 0; k < size; k++)
                add(from[corners[k]]);
        }
        to->u = static_cast<float>(sum[0] / count), to->v = static_cast<float>(sum[1] / count), to->w = static_cast<float>(sum[2] / count);
        to++;
    }
}

// The same for any kind of value.
void FillAny(const Split& split, CPointList& from, CPointList& to)
{
    const CBlockVector<Origin>& origins = split.GetOrigins();
    const CGeomInfo info(&split.GetFaces(), &from);
    C4DPoint value, second;
    for (std::size_t i = 0; i < origins.size(); i++) {
        const auto [index, kind] = origins[i];
        CPt& point = *to.ElementAt(static_cast<int>(i));
        if (kind == Origin::POINT)
            to.CopyPoint(static_cast<int>(i), index, from);
        else if (kind == Origin::FACE) {
            CFace face;
            split.GetFaces().GetFace(index, face);
            face.GetCenter(&info, value);
            point = value;
        } else {
            const auto [a, b] = split.GetEdges().GetEnds(index);
            from.ElementAt(a)->To4DPoint(value);
            from.ElementAt(b)->To4DPoint(second);
            point = (value + second) * 0.5;
        }
    }
}

void FillValues(const Split& split, CPointList& from, CPointList& to)
{
    to.SetSize(static_cast<int>(split.GetOrigins().size()), false, 0);
    auto* const uvw = dynamic_cast<CUVWPointList*>(&from);
    auto* const newUVW = dynamic_cast<CUVWPointList*>(&to);
    if (uvw && newUVW && uvw->GetDataChunkNbr() == 0)
        FillUVW(split, uvw->GetFirst(), newUVW->GetFirst());
    else
        FillAny(split, from, to);
}

int NoFaceAcross(int, int) { return -1; }

CDependentChannels* Level::CreateChannels() const
{
    CDependentChannels* channels = CDependentChannels::Create();
    channels->CopyChannels(*m_object.GetChannels(), CHANNEL_ALL,
                           CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_NO_DATA | CHANNEL_COPY_SKIP_UNFOLLOWED | CHANNEL_COPY_SKIP_INVALID);
    for (CChannel* to : *channels) {
        const CChannel* from = m_object.GetChannelByID(to->GetChannelID(), to->GetType());
        if (!from || !from->GetPointList() || !to->GetPointList())
            continue;
        if (!from->GetFaceList()) {    // a value for each point of the object
            FillValues(m_split, *from->GetPointList(), *to->GetPointList());
            continue;
        }
        Split split(*from->GetFaceList(), from->GetPointList()->GetSize(), m_split.GetCorners());
        split.Run(*to->GetFaceList(), NoFaceAcross);
        FillValues(split, *from->GetPointList(), *to->GetPointList());
    }
    return channels;
}

// --- Loop -----------------------------------------------------------------------------------------------------------

class LoopLevel : public Level {
public:
    explicit LoopLevel(C3DObject& object) : Level(object, 3), m_neighbours(m_old.GetSize())
    {
        const Edges& edges = m_split.GetEdges();
        for (int edge = 0; edge < edges.GetCount(); edge++) {
            const auto [a, b] = edges.GetEnds(edge);
            m_neighbours[a].Add(Old(b));
            if (a != b)
                m_neighbours[b].Add(Old(a));
        }
    }
    C3DFaceList* CreateFaces() override { return SplitFaces(NoFaceAcross); }

protected:
    void PlaceCorner(int point, C3DTPoint<float>& to) const override
    {
        const Sum& around = m_neighbours[point];
        const double weight = around.count == 3 ? 0.1875 : 0.375 / around.count;
        Sum sum;
        sum.Add(Old(point), 1 - around.count * weight);
        sum.Add(around, weight);
        sum.Store(to);
    }
    void PlaceEdge(int edge, C3DTPoint<float>& to) const override
    {
        const auto [a, b] = m_split.GetEdges().GetEnds(edge);
        int opposite[2];
        const bool inner = CollectOpposite(edge, a, b, opposite);
        Sum sum;
        sum.Add(Old(a), inner ? 0.375 : 0.5);
        sum.Add(Old(b), inner ? 0.375 : 0.5);
        for (int i = 0; inner && i < 2; i++)
            sum.Add(Old(opposite[i]), 0.125);
        sum.Store(to);
    }

private:
    // The points of the triangles along an edge besides its ends, when these are two.
    bool CollectOpposite(int edge, int a, int b, int (&opposite)[2]) const
    {
        const Edges& edges = m_split.GetEdges();
        int found = 0;
        for (int i = 0; i < edges.CountSides(edge); i++) {
            const auto [face, k] = edges.GetSide(edge, i);
            int size;
            const int point = m_faces.GetIndexes(face, size)[(k + 2) % 3];
            if (point == a || point == b || (found > 0 && point == opposite[0]) || (found > 1 && point == opposite[1]))
                continue;
            if (found == 2 || static_cast<unsigned int>(point) >= static_cast<unsigned int>(m_old.GetSize()))
                return false;
            opposite[found++] = point;
        }
        return found == 2;
    }

    CBlockVector<Sum> m_neighbours;    // along edges, by point
};

// --- Catmull and Clark ----------------------------------------------------------------------------------------------

class CatmullClarkLevel : public Level {
public:
    explicit CatmullClarkLevel(C3DObject& object) : Level(object, 4) { m_faces.InitPointToFaceGraph(&m_info); }
    ~CatmullClarkLevel() override { m_faces.DeletePointToFaceGraph(); }

    C3DFaceList* CreateFaces() override
    {
        return SplitFaces([this](int face, int edge) {
            int two[2];
            return GetFacesAt(edge, two) ? two[two[0] == face] : -1;
        });
    }

protected:
    void PlaceCorner(int point, C3DTPoint<float>& to) const override
    {
        CollectAround(point);
        Sum sum;
        if (m_along.size() != m_across.size())
            sum.Add(Old(point));
        else {
            const double n = static_cast<double>(m_along.size());
            sum.Add(Old(point), 1 - 1.5 / n - 0.25 / n);
            for (const int other : m_along)
                sum.Add(Old(other), 1.5 / (n * n));
            for (const int other : m_across)
                sum.Add(Old(other), 0.25 / (n * n));
        }
        sum.Store(to);
    }
    void PlaceEdge(int edge, C3DTPoint<float>& to) const override
    {
        const auto [a, b] = m_split.GetEdges().GetEnds(edge);
        int two[2];
        const bool inner = GetFacesAt(edge, two);
        Sum sum;
        sum.Add(Old(a), inner ? 0.25 : 0.5);
        sum.Add(Old(b), inner ? 0.25 : 0.5);
        for (int i = 0; inner && i < 2; i++)
            sum.Add(*m_new->ElementAt(m_split.GetFacePoint(two[i])), 0.25);
        sum.Store(to);
    }

private:
    // The faces that hold both ends, when these are two.
    bool GetFacesAt(int edge, int (&two)[2]) const
    {
        const auto [a, b] = m_split.GetEdges().GetEnds(edge);
        int countA, countB;
        const int *ofA = m_faces.GetFacesConnectedToPoint(a, countA), *ofB = m_faces.GetFacesConnectedToPoint(b, countB);
        if (countA > countB) {
            std::swap(ofA, ofB);
            std::swap(countA, countB);
        }
        int found = 0;
        for (int i = 0; i < countA && found <= 2; i++)
            if (std::binary_search(ofB, ofB + countB, ofA[i]) && found++ < 2)
                two[found - 1] = ofA[i];
        return found == 2;
    }
    // Different points along the edges of a point, and across its faces.
    void CollectAround(int point) const
    {
        m_along.clear();
        m_across.clear();
        int count;
        const int* faces = m_faces.GetFacesConnectedToPoint(point, count);
        for (int i = 0; i < count; i++) {
            int size;
            const int* corners = m_faces.GetIndexes(faces[i], size);
            for (int k = 0; k < size; k++)
                if (corners[k] == point) {
                    m_along.push_back(corners[(k + size - 1) % size]);
                    m_along.push_back(corners[(k + 1) % size]);
                }
            m_across.push_back(corners[(std::find(corners, corners + size, point) - corners + 2) % size]);
        }
        for (CBlockVector<int>* list : {&m_along, &m_across}) {
            std::sort(list->begin(), list->end());
            list->erase(std::unique(list->begin(), list->end()), list->end());
        }
    }

    mutable CBlockVector<int> m_along, m_across;
};

// False when the user stopped it: the object is as it was.
template <class LEVEL> bool Divide(C3DObject& object)
{
    CProgress progress(L"Subdividing", 3);
    C3DPointList* points;
    C3DFaceList* faces;
    CDependentChannels* channels;
    {
        LEVEL level(object);
        faces = level.CreateFaces();
        progress.Step();
        points = level.CreatePoints();
        progress.Step();
        channels = level.CreateChannels();
    }
    if (!progress.Step()) {
        DeleteMe(points);
        DeleteMe(faces);
        DeleteMe(channels);
        return false;
    }
    object.SetChannels(channels, true);
    object.SetPointList(points, true);
    object.SetFaceList(faces, true);
    return true;
}

// Level by level, until the user stops it.
template <class LEVEL> void Divide(C3DObject& object, int levels)
{
    const auto work = [](int level) { return std::uint64_t{1} << 2 * level; };    // each level has four times the faces
    CProgress progress(L"Subdividing", work(levels));
    for (int level = 0; level < levels && progress.SetPos(work(level)); level++)
        if (!Divide<LEVEL>(object))
            return;
}

}

void C3DPatch::Subdivide3(C3DObject* object)
{
    if (object)
        Divide<LoopLevel>(*object, m_level);
}

void C3DPatch::Subdivide4(C3DObject* object)
{
    if (object)
        Divide<CatmullClarkLevel>(*object, m_level);
}

void C3DPatch::Subdivide(int level)
{
    if (level == 0) {
        m_final = GetSourceObject();
        return;
    }
    CXArray<C3DGeomObject*, C3DGeomObject*> parts;
    if (C3DObject* triangles = SubObject(3, SUBOBJECT_EXACT)) {
        Subdivide3(triangles);
        parts.Add(triangles);
    }
    if (C3DObject* quads = SubObject(4, SUBOBJECT_EXACT)) {
        Subdivide4(quads);
        parts.Add(quads);
    }
    if (C3DObject* others = SubObject(4, SUBOBJECT_MORE))
        parts.Add(others);
    m_final = Join(parts);
    if (CProgressScope::IsCancelled()) {
        DeleteMe(m_final);
        m_final = nullptr;
    }
}

// Makes one object of the parts, which go.
C3DObject* C3DPatch::Join(const CXArray<C3DGeomObject*, C3DGeomObject*>& parts)
{
    C3DObject* whole = new C3DObject;
    whole->InheritFlags(*this, 0);
    whole->Init(0, 0, 4, 0, 0, 0);
    whole->C3DGeomObject::Inherit(*this, CHANNEL_ALL,
                                  CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_SKIP_INVALID | CHANNEL_COPY_NO_DATA | CHANNEL_COPY_SKIP_UNFOLLOWED);
    // One part alone, with all channels, has it all in the right order already.
    if (parts.GetSize() == 1 && parts[0]->GetChannels()->GetSize() == whole->GetChannels()->GetSize()) {
        DeleteMe(whole);
        whole = static_cast<C3DObject*>(parts[0]);
        whole->Clean();
        whole->Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
        return whole;
    }
    whole->Concatenate(GetScene(), parts, nullptr);
    for (C3DGeomObject* part : parts)
        DeleteMe(part);
    return whole;
}
