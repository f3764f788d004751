// Cleaning: drop the faces and points that are marked, and keep corners, side data and channels in step.
//
//   repair     corners that a face passes twice within three steps go, in the channels too; what is no face is marked
//   faces      the list closes up, and with it those of the channels; a map tells where each face went
//   points     unused points are marked, the list closes up, corners follow, and values that belong to points alone
//   channels   each channel drops its own unused points
//
// Memory may run out at each step. Each one asks for all that it needs before it changes a list, so that geometry and channels are in step
// whenever that happens.

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "channels/Block.h"
#include "channels/DependentChannels.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"
#include "tools/BlockVector.h"

using CRemap = CXArray<unsigned int, unsigned int>;

constexpr unsigned int GONE = 0xFFFFFFFF;

// Closing up

namespace {

/// Old number -> new number, GONE for what goes; the number of elements that stay. `isKept(i)` for each of `size` elements.
template <class KEPT> unsigned int FillMap(unsigned int* map, unsigned int size, KEPT isKept)
{
    unsigned int kept = 0;
    for (unsigned int i = 0; i < size; i++)
        map[i] = isKept(i) ? kept++ : GONE;
    return kept;
}

/// Moves the elements that stay down, in runs; the array keeps its size. Needs no memory. The answer of `isKept` may stand in the element.
template <class KEPT> void MoveKept(CElementArray& array, unsigned int size, KEPT isKept)
{
    const bool block = array.GetMethods() && array.GetMethods()->IsBitwise();
    unsigned int to = 0;
    for (unsigned int from = 0; from < size;) {
        if (!isKept(from)) {
            from++;
            continue;
        }
        unsigned int end = from + 1;
        while (end < size && isKept(end))
            end++;
        if (end > static_cast<unsigned int>(array.GetSize()))
            return;
        if (block && from != to)
            std::memmove(array.GetAt(to), array.GetAt(from), std::size_t{array.GetStride()} * (end - from));
        else if (from != to)
            for (unsigned int i = 0; i < end - from; i++)
                array.CopyElement(to + i, from + i);
        to += end - from;
        from = end;
    }
}

template <class KEPT> void MoveKept(CDataChunk& chunks, unsigned int size, KEPT isKept)
{
    unsigned int id;
    for (unsigned int pos = chunks.GetFirstChunk(); pos != HASH_END;)
        if (CElementArray* array = chunks.GetNextChunk(pos, id))
            MoveKept(*array, size, isKept);
}

template <class LIST> void FreeExtraIfPossible(LIST& list)
{
    try {
        list.FreeExtra();
    } catch (const std::bad_alloc&) {    // a smaller block cannot be had: the larger one does as well
    }
}

/// The corners of the faces that stay.
CFaceList::IndexCollection KeepCorners(const CFaceList& faces, const unsigned int* map, unsigned int kept)
{
    const CFaceList::IndexCollection& all = faces.GetIndexCollection();
    const auto size = static_cast<unsigned int>(faces.GetSize());
    CBlock<unsigned int> from(kept), counts(kept);
    std::uint64_t corners = 0;
    for (unsigned int face = 0; face < size; face++)
        if (map[face] != GONE) {
            from[map[face]] = face;
            corners += counts[map[face]] = all.GetItemCount(face);
        }
    CFaceList::IndexCollection result;
    result.SetDefaultCapacity(all.GetDefaultCapacity());
    result.ReserveExact(kept, corners);
    result.AppendEntries(kept, counts.GetData(), [&](int* to, unsigned int k) {
        unsigned int count;
        const int* items = all.GetItems(from[k], count);
        std::copy_n(items, count, to);
    });
    return result;
}

/// The face lists that lose the faces which the geometry loses, each once.
std::vector<CFaceList*> GetFaceListsInStep(const CGeomInfo* info, CFaceList& geometry)
{
    std::vector<CFaceList*> lists{&geometry};
    CDependentChannels* channels = info ? info->GetSrcChannels() : nullptr;
    for (int i = 0; i < channels->GetSize(); i++) {
        CChannel* channel = channels->GetAt(i);
        CFaceList* faces = channel->GetFaceList();
        if (faces && faces->GetSize() == geometry.GetSize() && !(channel->GetType() & (CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL)) &&
            std::find(lists.begin(), lists.end(), faces) == lists.end())
            lists.push_back(faces);
    }
    return lists;
}

bool HasInvalidFace(const CFaceList& faces)
{
    const CFaceFlags flags(faces);
    for (int face = 0; face < faces.GetSize(); face++)
        if (flags[face] & FACE_INVALID)
            return true;
    return false;
}

}    // namespace

bool CFaceList::Clean(const CGeomInfo* info)
{
    CRemap faceMap, pointMap;
    const unsigned int stamp = m_changedStamp;
    CleanPointsIndex(info);
    if (HasInvalidFace(*this)) {
        const CFaceFlags flags(*this);
        const auto size = static_cast<unsigned int>(m_size);
        faceMap.SetSize(m_size);
        const unsigned int kept = FillMap(faceMap.GetData(), size, [&](unsigned int face) { return !(flags[face] & FACE_INVALID); });
        const std::vector<CFaceList*> lists = GetFaceListsInStep(info, *this);
        std::vector<IndexCollection> corners;
        for (const CFaceList* list : lists)
            corners.push_back(KeepCorners(*list, faceMap.GetData(), kept));
        for (std::size_t i = 0; i < lists.size(); i++) {
            lists[i]->m_indexes.Swap(corners[i]);
            lists[i]->CompressFaces(faceMap.GetData(), kept);
        }
    }
    bool facesChanged = m_changedStamp != stamp;    // faces that went, or corners alone

    CPointList* points = info ? info->GetSrcPointList() : nullptr;
    CDependentChannels* channels = info ? info->GetSrcChannels() : nullptr;
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

    const bool channelsFalse = channels->CleanChannels(info, &faceMap, &pointMap) > 0;
    return pointsChanged || facesChanged || channelsFalse;
}

bool CFaceList::Clean(const CGeomInfo* info, bool cleanIndex, CRemap* faceMap)
{
    if (cleanIndex)
        CleanPointsIndex(info);
    if (faceMap)
        faceMap->RemoveAll();
    if (!HasInvalidFace(*this))
        return false;

    CBlock<unsigned int> own(faceMap ? 0 : m_size);
    if (faceMap)
        faceMap->SetSize(m_size);
    unsigned int* map = faceMap ? faceMap->GetData() : own.GetData();
    const CFaceFlags flags(*this);
    const unsigned int kept =
        FillMap(map, static_cast<unsigned int>(m_size), [&](unsigned int face) { return !(flags[face] & FACE_INVALID); });
    IndexCollection corners = KeepCorners(*this, map, kept);
    m_indexes.Swap(corners);
    CompressFaces(map, kept);
    return true;
}

void CFaceList::CompressFaces(const unsigned int* target, unsigned int kept)
{
    if (kept == 0)
        RemoveAll();
    else {
        MoveKept(m_chunks, static_cast<unsigned int>(m_size), [target](unsigned int face) { return target[face] != GONE; });
        m_size = static_cast<int>(kept);
        m_chunks.SetDataSize(m_size, true, -1);
        FreeExtraIfPossible(m_chunks);
    }
    SetFlag(FACELIST_CHANGED, true);    // last: RemoveAll clears it
}

bool CPointList::Clean(CFaceList* faces, CRemap* pointMap)
{
    if (faces)
        SetInvalidPoints(*faces, false);    // a mark on a point that a live face uses does not count
    if (pointMap)
        pointMap->RemoveAll();
    const auto size = static_cast<unsigned int>(GetSize());
    const auto isKept = [&](unsigned int point) { return !(ElementAt(static_cast<int>(point))->flags & POINT_INVALID); };
    unsigned int kept = 0;
    for (unsigned int point = 0; point < size; point++)
        kept += isKept(point);
    if (kept == size)
        return false;

    if (pointMap) {
        pointMap->SetSize(static_cast<int>(size));
        FillMap(pointMap->GetData(), size, isKept);
    }
    if (kept == 0)
        RemoveAll();
    else {
        MoveKept(GetDataChunks(), size, isKept);
        MoveKept(static_cast<CElementArray&>(*this), size, isKept);    // last: it holds the marks
        SetSize(static_cast<int>(kept), true, -1);
        FreeExtraIfPossible(*this);
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
        m_gone.reserve(static_cast<std::size_t>(count));    // nothing may fail once corners move
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
    // Also when memory runs out between two faces.
    struct Report {
        CFaceList& geometry;
        const std::vector<CFaceList*>& followers;
        bool cut = false;

        ~Report()
        {
            if (!cut)
                return;
            geometry.SetFlag(FACELIST_CHANGED, true);
            for (CFaceList* follower : followers)
                follower->SetFlag(FACELIST_CHANGED, true);
        }
    } report{*this, followers};
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
                report.cut = true;
            }
        }
        if (!dead)
            return;
        flags[face] |= FACE_INVALID;
        for (CFaceList* follower : followers)
            follower->SetFaceFlags(face, FACE_DEAD, true);
    });
}

// Channels

// Channels of a value a point come first: they need no memory, and out of step they would be lost.
int CDependentChannels::CleanChannels(const CGeomInfo* info, CRemap* faceMap, CRemap* pointMap)
{
    int unchanged = 0;
    for (const bool withFaces : {false, true})
        for (int i = 0; i < GetSize(); i++)
            if (!GetAt(i)->GetFaceList() != withFaces)
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
