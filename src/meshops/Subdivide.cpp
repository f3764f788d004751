// Subdivision of patches: triangles by the scheme of Loop (C. Loop, Smooth subdivision surfaces based on triangles, 1987), quads by that of
// Catmull and Clark (Recursively generated B-spline surfaces on arbitrary topological meshes, 1978).
//
//   parts    triangles, quads and larger faces are cut out; each part is worked on alone, and they are joined again
//   level    every face gives four. The old points move, each edge and for quads each face gives a point; a border stays in place
//   channel  follows in the same pattern: old values stay, new ones are means
//
// New points are numbered in the order in which the faces first need them.

#include <algorithm>
#include <climits>
#include <vector>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "geometry/Edge.h"
#include "geometry/GeomInfo.h"
#include "scene/3DObject.h"
#include "scene/Patch.h"
#include "tools/AssociationMap.h"

namespace {

/// A weighted sum of points, in doubles.
struct Sum {
    double x = 0, y = 0, z = 0;
    int count = 0;

    void Add(const C3DTPoint<float>& p, double weight = 1) { x += weight * p.x, y += weight * p.y, z += weight * p.z, count++; }
    void Add(const Sum& sum, double weight) { x += weight * sum.x, y += weight * sum.y, z += weight * sum.z; }
    void Store(C3DTPoint<float>& to) const { to.x = static_cast<float>(x), to.y = static_cast<float>(y), to.z = static_cast<float>(z); }
};

/// What a new point of a list is made of.
struct Origin {
    int a;    ///< an old point, the first end of an edge, or a face
    int b;    ///< the second end; POINT or FACE
    static constexpr int POINT = -1, FACE = -2;
};

/// The new faces of one list, and what its new points come from. All faces of the list have `corners` corners; others have no data.
class Split {
public:
    Split(CFaceList& faces, int points, int corners);
    Split(const Split&) = delete;
    ~Split() { m_faces.DeleteEdgeToFaceGraph(); }

    /// Numbers the points and lays out four faces for each face.
    ///
    /// @param across  tells the second face of an edge, whose face point is to stand before that of the edge; -1 for none
    template <class ACROSS> void Run(ACROSS across);
    void AppendFaces(CFaceList& to) const;

    CFaceList& GetFaces() const { return m_faces; }
    int GetCorners() const { return m_corners; }
    /// By new point.
    const std::vector<Origin>& GetOrigins() const { return m_origins; }
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

    CFaceList& m_faces;
    const int m_corners;
    std::vector<int> m_ofPoint, m_ofEdge, m_ofFace;    // new numbers; of edges by their entry in the graph
    std::vector<Origin> m_origins;
    std::vector<int> m_newCorners;
    std::vector<int> m_sources;    // old face, by new face
    std::vector<int> m_empty;      // old faces without data
};

Split::Split(CFaceList& faces, int points, int corners) : m_faces(faces), m_corners(corners)
{
    const CGeomInfo info(&faces, nullptr);
    faces.InitEdgeToFaceGraph(&info);
    m_ofPoint.assign(points, -1);
    m_ofEdge.assign(faces.GetEdgeGraph().GetCount(), -1);
    m_ofFace.assign(corners == 4 ? faces.GetSize() : 0, -1);
    m_origins.reserve(m_ofPoint.size() + m_ofEdge.size() + m_ofFace.size());
    m_newCorners.reserve(std::size_t(faces.GetSize()) * 4 * corners);
    m_sources.reserve(std::size_t(faces.GetSize()) * 4);
}

bool Split::IsWhole(const int* corners, int size) const
{
    return size == m_corners &&
           std::all_of(corners, corners + size, [&](int corner) { return static_cast<unsigned int>(corner) < m_ofPoint.size(); });
}

template <class ACROSS> void Split::Run(ACROSS across)
{
    const CFaceFlags flags(m_faces);
    const CFaceList::EdgeGraph& edges = m_faces.GetEdgeGraph();
    const int n = m_corners;
    for (int face = 0; face < m_faces.GetSize(); face++) {
        int size;
        const int* corners = m_faces.GetIndexes(face, size);
        m_sources.insert(m_sources.end(), 4, face);
        if (flags.IsDead(face) || !IsWhole(corners, size)) {
            m_empty.push_back(face);
            m_newCorners.insert(m_newCorners.end(), 4 * n, 0);
            continue;
        }
        int v[4], e[4];
        const int center = n == 4 ? Number(m_ofFace[face], {face, Origin::FACE}) : -1;
        for (int k = 0; k < n; k++)
            v[k] = Number(m_ofPoint[corners[k]], {corners[k], Origin::POINT});
        for (int k = 0; k < n; k++) {
            const C3DEdge edge(corners[k], corners[(k + 1) % n]);
            int& number = m_ofEdge[edges.Find(edge)];
            if (number < 0)
                if (const int other = across(face, edge); other >= 0)
                    Number(m_ofFace[other], {other, Origin::FACE});
            e[k] = Number(number, {edge.GetFirst(), edge.GetSecond()});
        }
        if (n == 3)
            m_newCorners.insert(m_newCorners.end(), {v[0], e[0], e[2], v[1], e[1], e[0], v[2], e[2], e[1], e[0], e[1], e[2]});
        else
            for (int k = 0; k < 4; k++)
                m_newCorners.insert(m_newCorners.end(), {v[k], e[k], center, e[(k + 3) % 4]});
    }
}

void Split::AppendFaces(CFaceList& to) const
{
    const int count = static_cast<int>(m_sources.size());
    to.AppendFaces(count, m_corners, m_newCorners.data());
    to.GetDataChunks().GatherData(0, m_faces.GetDataChunks(), m_sources.data(), count);
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

    C3DPointList* CreatePoints();
    C3DFaceList* CreateFaces() const;
    CDependentChannels* CreateChannels() const;

protected:
    virtual void PlaceCorner(int point, C3DTPoint<float>& to) const = 0;
    virtual void PlaceEdge(int a, int b, C3DTPoint<float>& to) const = 0;

    const C3DTPoint<float>& Old(int point) const { return *m_old.ElementAt(point); }

    C3DObject& m_object;
    C3DPointList& m_old;
    C3DFaceList& m_faces;
    CGeomInfo m_info;
    Split m_split;
    C3DPointList* m_new = nullptr;
};

Level::Level(C3DObject& object, int corners)
    : m_object(object), m_old(*object.GetPointList()), m_faces(*object.GetFaceList()), m_info(&object),
      m_split(m_faces, m_old.GetSize(), corners)
{
    m_old.SetBorderPointsStatus(m_faces.GetEdgeGraph(), false);
}

Level::~Level() = default;

C3DPointList* Level::CreatePoints()
{
    const std::vector<Origin>& origins = m_split.GetOrigins();
    const int count = static_cast<int>(origins.size());
    m_new = C3DPointList::Create(&m_old);
    m_new->SetSize(count, false, 0);
    for (int i = 0; i < count; i++)    // first, for edges look at them
        if (C3DFace face; origins[i].b == Origin::FACE && m_faces.GetFace(origins[i].a, face))
            face.GetCenter(&m_info, *m_new->ElementAt(i));
    const bool hasChunks = m_old.GetDataChunkNbr() > 0;
    for (int i = 0; i < count; i++) {
        const auto [a, b] = origins[i];
        C3DTPoint<float>& to = *m_new->ElementAt(i);
        if (b >= 0)
            PlaceEdge(a, b, to);
        else if (b == Origin::POINT) {
            if (hasChunks)
                m_new->CopyPoint(i, a, m_old);
            to.flags = 0;
            if (Old(a).IsFlagSet(POINT_BORDER))
                to = Old(a);
            else
                PlaceCorner(a, to);
        }
    }
    return m_new;
}

C3DFaceList* Level::CreateFaces() const
{
    C3DFaceList* faces = C3DFaceList::Create(&m_faces);
    m_split.AppendFaces(*faces);
    return faces;
}

// Corners take the value of their point, all others means.
void FillValues(const Split& split, CPointList& from, CPointList& to)
{
    const std::vector<Origin>& origins = split.GetOrigins();
    const CGeomInfo info(&split.GetFaces(), &from);
    to.SetSize(static_cast<int>(origins.size()), false, 0);
    C4DPoint value, second;
    for (std::size_t i = 0; i < origins.size(); i++) {
        const auto [a, b] = origins[i];
        CPt& point = *to.ElementAt(static_cast<int>(i));
        if (b == Origin::POINT)
            to.CopyPoint(static_cast<int>(i), a, from);
        else if (b == Origin::FACE) {
            CFace face;
            split.GetFaces().GetFace(a, face);
            face.GetCenter(&info, value);
            point = value;
        } else if (from.ElementAt(a) && from.ElementAt(b)) {
            from.ElementAt(a)->To4DPoint(value);
            from.ElementAt(b)->To4DPoint(second);
            point = (value + second) * 0.5;
        }
    }
}

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
        split.Run([](int, const C3DEdge&) { return -1; });
        split.AppendFaces(*to->GetFaceList());
        FillValues(split, *from->GetPointList(), *to->GetPointList());
    }
    return channels;
}

// --- Loop -----------------------------------------------------------------------------------------------------------

class LoopLevel : public Level {
public:
    explicit LoopLevel(C3DObject& object) : Level(object, 3), m_neighbours(m_old.GetSize())
    {
        m_split.Run([](int, const C3DEdge&) { return -1; });
        const CFaceList::EdgeGraph& edges = m_faces.GetEdgeGraph();
        for (unsigned int entry = 0; entry < edges.GetCount(); entry++) {
            const int a = edges.GetKey(entry).GetFirst(), b = edges.GetKey(entry).GetSecond();
            if (a < 0 || b >= m_old.GetSize())
                continue;
            m_neighbours[a].Add(Old(b));
            if (a != b)
                m_neighbours[b].Add(Old(a));
        }
    }

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
    void PlaceEdge(int a, int b, C3DTPoint<float>& to) const override
    {
        const std::vector<int>& opposite = GetOpposite(a, b);
        Sum sum;
        sum.Add(Old(a), opposite.size() == 2 ? 0.375 : 0.5);
        sum.Add(Old(b), opposite.size() == 2 ? 0.375 : 0.5);
        if (opposite.size() == 2)
            for (const int point : opposite)
                sum.Add(Old(point), 0.125);
        sum.Store(to);
    }

private:
    // The points of the triangles along an edge besides its ends.
    const std::vector<int>& GetOpposite(int a, int b) const
    {
        int count;
        const int* faces = m_faces.GetFacesConnectedToEdge(C3DEdge(a, b), count);
        m_opposite.clear();
        for (int i = 0; i < count && m_opposite.size() <= 2; i++) {
            int size;
            const int* corners = m_faces.GetIndexes(faces[i], size);
            for (int k = 0; k < size; k++)
                if (corners[k] != a && corners[k] != b && std::find(m_opposite.begin(), m_opposite.end(), corners[k]) == m_opposite.end())
                    m_opposite.push_back(corners[k]);
        }
        return m_opposite;
    }

    std::vector<Sum> m_neighbours;    // along edges, by point
    mutable std::vector<int> m_opposite;
};

// --- Catmull and Clark ----------------------------------------------------------------------------------------------

class CatmullClarkLevel : public Level {
public:
    explicit CatmullClarkLevel(C3DObject& object) : Level(object, 4)
    {
        m_faces.InitPointToFaceGraph(&m_info);
        m_split.Run([this](int face, const C3DEdge& edge) {
            int two[2];
            return GetFacesAt(edge.GetFirst(), edge.GetSecond(), two) ? two[two[0] == face] : -1;
        });
    }
    ~CatmullClarkLevel() override { m_faces.DeletePointToFaceGraph(); }

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
    void PlaceEdge(int a, int b, C3DTPoint<float>& to) const override
    {
        int two[2];
        const bool inner = GetFacesAt(a, b, two);
        Sum sum;
        sum.Add(Old(a), inner ? 0.25 : 0.5);
        sum.Add(Old(b), inner ? 0.25 : 0.5);
        for (int i = 0; inner && i < 2; i++)
            sum.Add(*m_new->ElementAt(m_split.GetFacePoint(two[i])), 0.25);
        sum.Store(to);
    }

private:
    // The faces that hold both points, when these are two.
    bool GetFacesAt(int a, int b, int (&two)[2]) const
    {
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
        for (std::vector<int>* list : {&m_along, &m_across}) {
            std::sort(list->begin(), list->end());
            list->erase(std::unique(list->begin(), list->end()), list->end());
        }
    }

    mutable std::vector<int> m_along, m_across;
};

template <class LEVEL> void Divide(C3DObject& object)
{
    C3DPointList* points;
    C3DFaceList* faces;
    CDependentChannels* channels;
    {
        LEVEL level(object);
        points = level.CreatePoints();
        faces = level.CreateFaces();
        channels = level.CreateChannels();
    }
    object.SetChannels(channels, true);
    object.SetPointList(points, true);
    object.SetFaceList(faces, true);
}

}

void C3DPatch::Subdivide3(C3DObject* object)
{
    for (int i = 0; object && i < m_level; i++)
        Divide<LoopLevel>(*object);
}

void C3DPatch::Subdivide4(C3DObject* object)
{
    for (int i = 0; object && i < m_level; i++)
        Divide<CatmullClarkLevel>(*object);
}

void C3DPatch::Subdivide(int level)
{
    if (level == 0) {
        m_final = GetSourceObject();
        return;
    }
    C3DObject* parts[] = {SubObject(3, SUBOBJECT_EXACT), SubObject(4, SUBOBJECT_EXACT), SubObject(4, SUBOBJECT_MORE)};
    Subdivide3(parts[0]);
    Subdivide4(parts[1]);

    m_final = new C3DObject;
    m_final->InheritFlags(*this, 0);
    m_final->Init(0, 0, 4, 0, 0, 0);
    m_final->C3DGeomObject::Inherit(*this, CHANNEL_ALL,
                                    CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_SKIP_INVALID | CHANNEL_COPY_NO_DATA | CHANNEL_COPY_SKIP_UNFOLLOWED);
    CXArray<C3DGeomObject*, C3DGeomObject*> sources;
    for (C3DObject* part : parts)
        if (part)
            sources.Add(part);
    m_final->Concatenate(GetScene(), sources, nullptr);
    for (C3DObject* part : parts)
        DeleteMe(part);
}
