// Cleaning: drop the faces and points that are marked, and keep corners, side data and channels in step.
//
//   repair     corners that a face passes twice within three steps go, in the channels too; what is no face is marked
//   faces      the list closes up; a map tells where each face went
//   points     unused points are marked, the list closes up, corners follow
//   channels   each channel follows the two maps and drops its own unused points

#include <algorithm>
#include <cstring>
#include <vector>

#include "channels/Block.h"
#include "channels/DependentChannels.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"
#include "tools/BlockVector.h"

using CRemap = CXArray<unsigned int, unsigned int>;

constexpr unsigned int GONE = 0xFFFFFFFF;

bool CFaceList::Clean(const CGeomInfo* info)
{
    CRemap faceMap, pointMap;
    const unsigned int stamp = m_changedStamp;
    Clean(info, true, &faceMap);
    bool facesChanged = m_changedStamp != stamp;    // faces that went, or corners alone

    CPointList* points = info ? info->GetSrcPointList() : nullptr;
    const bool pointsChanged = points && points->Clean(this, &pointMap);
    if (pointsChanged) {
        // A face that is empty keeps its place, but no corners: their points may be gone.
        const CFaceFlags flags(*this);
        for (int face = 0; face < m_size; face++)
            if (flags.IsDead(face))
                m_indexes.SetEntrySize(face, 0, true);
        facesChanged |= UpdateIndex(&pointMap, true);
        points->SetFlag(POINTLIST_CHANGED, true);
    }
    if (facesChanged)
        SetFlag(FACELIST_CHANGED, true);

    CDependentChannels* channels = info ? info->GetSrcChannels() : nullptr;
    const bool channelsFalse = channels->CleanChannels(info, &faceMap, &pointMap) > 0;
    return pointsChanged || facesChanged || channelsFalse;
}

// Closing up

namespace {

/// Elements of a list that stay, as runs that move down together.
class CKeptRuns {
public:
    /// `isKept(i)` for each of `size` elements.
    template <class KEPT> CKeptRuns(unsigned int size, KEPT isKept)
    {
        for (unsigned int i = 0; i < size; i++) {
            if (!isKept(i))
                continue;
            if (m_runs.empty() || m_runs.back().end != i)
                m_runs.push_back({i, i});
            m_runs.back().end++;
            m_kept++;
        }
    }

    unsigned int GetKept() const { return m_kept; }

    /// Old number -> new number, GONE for what goes.
    void FillMap(unsigned int* map, unsigned int size) const
    {
        std::fill(map, map + size, GONE);
        unsigned int to = 0;
        for (const Run& run : m_runs)
            for (unsigned int from = run.from; from < run.end; from++)
                map[from] = to++;
    }

    /// Moves the elements down; the array keeps its size.
    void Move(CElementArray& array) const
    {
        const bool block = array.GetMethods() && array.GetMethods()->IsBitwise();
        unsigned int to = 0;
        for (const Run& run : m_runs) {
            if (run.end > static_cast<unsigned int>(array.GetSize()))
                return;
            if (block && run.from != to)
                std::memmove(array.GetAt(to), array.GetAt(run.from), std::size_t{array.GetStride()} * (run.end - run.from));
            else if (run.from != to)
                for (unsigned int i = 0; i < run.end - run.from; i++)
                    array.CopyElement(to + i, run.from + i);
            to += run.end - run.from;
        }
    }

    /// The same on every chunk, which then hold the kept elements alone.
    void Move(CDataChunk& chunks) const
    {
        unsigned int id;
        for (unsigned int pos = chunks.GetFirstChunk(); pos != HASH_END;)
            if (CElementArray* array = chunks.GetNextChunk(pos, id))
                Move(*array);
    }

private:
    struct Run {
        unsigned int from, end;
    };
    CBlockVector<Run> m_runs;
    unsigned int m_kept = 0;
};

}    // namespace

bool CFaceList::Clean(const CGeomInfo* info, bool cleanIndex, CRemap* faceMap)
{
    if (cleanIndex)
        CleanPointsIndex(info);
    if (faceMap)
        faceMap->RemoveAll();
    const CFaceFlags flags(*this);
    const CKeptRuns runs(m_size, [&](unsigned int face) { return !(flags[face] & FACE_INVALID); });
    if (runs.GetKept() == static_cast<unsigned int>(m_size))
        return false;

    CBlock<unsigned int> own(faceMap ? 0 : m_size);
    if (faceMap)
        faceMap->SetSize(m_size);
    unsigned int* map = faceMap ? faceMap->GetData() : own.GetData();
    runs.FillMap(map, m_size);
    if (runs.GetKept() == 0)
        RemoveAll();
    else {
        runs.Move(m_chunks);
        CompressFaces(map, runs.GetKept());
    }
    SetFlag(FACELIST_CHANGED, true);
    return true;
}

bool CPointList::Clean(CFaceList* faces, CRemap* pointMap)
{
    if (faces)
        SetInvalidPoints(*faces, false);    // a mark on a point that a live face uses does not count
    if (pointMap)
        pointMap->RemoveAll();
    const unsigned int size = GetSize();
    const CKeptRuns runs(size, [&](unsigned int point) { return !(ElementAt(point)->flags & POINT_INVALID); });
    if (runs.GetKept() == size)
        return false;

    if (pointMap) {
        pointMap->SetSize(size);
        runs.FillMap(pointMap->GetData(), size);
    }
    if (runs.GetKept() == 0)
        RemoveAll();
    else {
        runs.Move(static_cast<CElementArray&>(*this));
        runs.Move(GetDataChunks());
        SetSize(runs.GetKept(), true, -1);
        FreeExtra();
    }
    SetFlag(POINTLIST_CHANGED, true);    // last: RemoveAll clears it
    return true;
}

// Repair

namespace {

/// The corner walk over one face. Corner k goes when its point comes again at corner k + 1 or k + 2, around the face as it
/// then is; the walk stays at k after that.
///
/// The face is at each moment the corners passed, side by side at the front, and the corners still to come. So the walk
/// costs one look ahead for each corner, however many go.
class CRepetitionWalk {
public:
    static bool HasRepetition(const int* corners, int count)
    {
        if (count == 3)
            return corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0];
        for (int k = 0; k < count; k++) {
            const int next = k + 1 < count ? k + 1 : 0, second = next + 1 < count ? next + 1 : 0;
            if (corners[k] == corners[next] || corners[k] == corners[second])
                return true;
        }
        return false;
    }

    /// Closes up the corners that stay; returns their number. Take repeats this on a channel's corners.
    int Run(int* corners, int count)
    {
        m_gone.clear();
        int passed = 0;
        for (int next = 0; next < count; next++) {
            const int size = passed + count - next;
            const auto at = [&](int k) {
                k %= size;
                return corners[k < passed ? k : next + k - passed];
            };
            if (corners[next] == at(passed + 1) || corners[next] == at(passed + 2))
                m_gone.push_back(next);
            else
                corners[passed++] = corners[next];
        }
        return passed;
    }
    int Take(int* corners, int count) const
    {
        int kept = 0;
        std::size_t gone = 0;
        for (int k = 0; k < count; k++)
            if (gone < m_gone.size() && m_gone[gone] == k)
                gone++;
            else
                corners[kept++] = corners[k];
        return kept;
    }

private:
    CBlockVector<int> m_gone;    ///< positions before the walk, ascending
};

/// The face lists of the channels that lose the corners which the geometry loses.
std::vector<CFaceList*> GetFollowers(const CGeomInfo* info, const CFaceList* leader)
{
    std::vector<CFaceList*> followers;
    CDependentChannels* channels = info ? info->GetSrcChannels() : nullptr;
    for (int i = 0; i < channels->GetSize(); i++) {
        CChannel* channel = channels->GetAt(i);
        if (!channel->IsFlagSet(CHANNEL_UNFOLLOWED) && channel->GetFaceList() && channel->GetFaceList() != leader)
            followers.push_back(channel->GetFaceList());
    }
    return followers;
}

void CutFollower(CFaceList& follower, int face, const CRepetitionWalk& walk)
{
    CFace view;
    if (!follower.GetFace(face, view) || view.IsDead())
        return;
    int count;
    int* corners = view.GetData(count);
    view.CCollectionElement::SetSize(walk.Take(corners, count));    // the flags stay: the geometry decides what is dead
}

}    // namespace

void CFaceList::CleanPointsIndex(const CGeomInfo* info)
{
    const std::vector<CFaceList*> followers = GetFollowers(info, this);
    const CFaceFlags flags(*this);
    CRepetitionWalk walk;
    bool cut = false;
    ForEachLiveFace([&](int face, int* corners, int count) {
        bool dead = count < 3;
        if (!dead && CRepetitionWalk::HasRepetition(corners, count)) {
            dead = count == 3;
            if (!dead) {
                count = walk.Run(corners, count);
                m_indexes.SetEntrySize(face, count, true);    // no larger: it stays where it is
                for (CFaceList* follower : followers)
                    CutFollower(*follower, face, walk);
                dead = count < 3;
                cut = true;
            }
        }
        if (!dead)
            return;
        flags[face] |= FACE_INVALID;
        for (CFaceList* follower : followers)
            follower->SetFaceFlags(face, FACE_DEAD, true);
    });
    if (!cut)
        return;
    SetFlag(FACELIST_CHANGED, true);
    for (CFaceList* follower : followers)
        follower->SetFlag(FACELIST_CHANGED, true);
}

// Channels

int CDependentChannels::CleanChannels(const CGeomInfo* info, CRemap* faceMap, CRemap* pointMap)
{
    int unchanged = 0;
    for (int i = 0; i < GetSize(); i++)
        unchanged += !GetAt(i)->Clean(info, faceMap, pointMap);
    return unchanged;
}

bool CChannel::CleanRemoveDuplicateIndex() { return false; }

bool CChannel::Clean(const CGeomInfo* info, CRemap* faceMap, CRemap* pointMap)
{
    bool changed = false;
    if (m_faceList) {
        changed |= CleanFaces(faceMap);
        changed |= CleanCornerPoints();
    } else
        changed |= CleanParallelPoints(pointMap);

    const CFaceList* geometry = info ? info->GetSrcFaceList() : nullptr;
    if (geometry && m_faceList && m_faceList->GetSize() != geometry->GetSize()) {
        SetFlag(CHANNEL_INVALID, true);
        return false;
    }
    if (changed && IsFlagSet(CHANNEL_DERIVED))
        SetFlag(CHANNEL_STALE, true);
    return changed;
}

/// Only faces whose geometry face went go; a face that was marked alone stays as a face without data.
bool CChannel::CleanFaces(const CRemap* faceMap)
{
    const int size = m_faceList->GetSize();
    const bool follows = faceMap && faceMap->GetSize() == size;
    const CFaceFlags flags(*m_faceList);
    for (int i = 0; i < size; i++) {
        const bool gone = follows && (*faceMap)[i] == GONE;
        if (flags[i] & FACE_INVALID && !gone) {
            CFace face;
            m_faceList->GetFace(i, face);
            face.RemoveAll();    // data that nobody reads would keep its points alive
        }
        if (flags[i] & FACE_INVALID)
            flags[i] |= FACE_EMPTY;
        flags[i] = gone ? flags[i] | FACE_INVALID : flags[i] & ~FACE_INVALID;
    }
    // Without an info: a repair of this list is no reason to cut corners out of other channels.
    return m_faceList->Clean(nullptr, CleanRemoveDuplicateIndex(), nullptr);
}

bool CChannel::CleanCornerPoints()
{
    CRemap map;
    if (!m_pointList || !m_pointList->Clean(m_faceList, &map))
        return false;
    if (m_faceList->UpdateIndex(&map, true))
        m_faceList->SetFlag(FACELIST_CHANGED, true);
    return true;
}

/// Points without faces are parallel to the geometry's points.
bool CChannel::CleanParallelPoints(const CRemap* pointMap)
{
    if (!m_pointList || !pointMap || pointMap->GetSize() != m_pointList->GetSize())
        return false;
    for (int i = 0; i < m_pointList->GetSize(); i++)
        m_pointList->ElementAt(i)->SetFlag(POINT_INVALID, (*pointMap)[i] == GONE);
    return m_pointList->Clean(nullptr, nullptr);
}
