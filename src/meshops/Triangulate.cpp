// Faces into triangles.
//
//   plan     one Cut for each face of the result, in order: the source face and which of its corners, or the face as it stands
//   write    each list in one pass, the geometry and the channels alike; then the side data, a chunk at a time
//
// Splitting makes no points, so that every list goes on with the points that it had.

#include <algorithm>
#include <climits>

#include "channels/Block.h"
#include "channels/DependentChannels.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "meshops/EarClipping.h"
#include "meshops/GatherFaces.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"
#include "tools/Progress.h"

namespace {

/// The faces that are to be split.
class CSelection {
public:
    CSelection(const CFaceList& faces, _FACE_PROPERTIES properties, bool wanted)
        : m_faces(faces), m_flags(faces), m_mask(properties), m_wanted(wanted)
    {
    }
    /// `count`: the corners of the face.
    bool IsSplit(int face, int count) const { return count > 3 && ((m_flags[face] & m_mask) == m_mask) == m_wanted; }

private:
    const CFaceList& m_faces;
    const CFaceFlags m_flags;
    const unsigned int m_mask;
    const bool m_wanted;
};

/// What each face of the result is made of.
class CSplitPlan {
public:
    CSplitPlan(const C3DFaceList& faces, const C3DPointList& points, const CSelection& selection, int total)
    {
        m_from.reserve(total);
        m_ears.reserve(total);
        CEarClipping clipping;
        CProgress progress(L"Triangulating", static_cast<std::uint64_t>(faces.GetSize()));
        for (int face = 0, size = faces.GetSize(); face < size && progress.Step(); face++) {
            int count;
            const int* corners = faces.GetIndexes(face, count);
            if (selection.IsSplit(face, count))
                m_from.insert(m_from.end(), clipping.Cut(points, corners, count, m_ears), face);
            else {
                m_from.push_back(face);
                m_ears.push_back(AS_IT_STANDS);
            }
        }
        m_cancelled = progress.IsCancelled();
    }

    bool IsCancelled() const { return m_cancelled; }
    int GetCount() const { return static_cast<int>(m_from.size()); }

    /// Fills `target` with the faces of `source` as planned. `geometry` tells how many corners a face has that was split: a channel face
    /// that has another number, or that is dead, gives faces without data.
    void Write(CFaceList& target, const CFaceList& source, const CFaceList& geometry) const
    {
        target.RemoveAll();
        target.SetSize(0, CFaceList::SIZE_GROW, 3);
        const CBlock<unsigned int> sizes = GetSizes(source, geometry);
        const auto fill = [&](int* to, unsigned int k) {
            int count;
            const int* corners = source.GetIndexes(m_from[k], count);
            const Ear& ear = m_ears[k];
            if (!IsCut(ear))
                std::copy_n(corners, count, to);
            else if (sizes.GetSize() == 0 || sizes[k]) {
                to[0] = corners[ear.corner];
                to[1] = corners[ear.next];
                to[2] = corners[ear.prev];
            }
        };
        if (sizes.GetSize() == 0)
            target.AppendFaces(GetCount(), 3, fill);
        else
            target.AppendFaces(GetCount(), sizes.GetData(), fill);
        GatherFaceData(target, source, m_from.data(), GetCount());
        if (&source != &geometry)
            MarkEmpty(target);
        target.SetFlag(FACELIST_CHANGED, true);
    }

private:
    static constexpr Ear AS_IT_STANDS = {0, 0, 0};
    static bool IsCut(const Ear& ear) { return ear.corner != ear.next; }

    /// The number of corners of each face of the result; none when all have 3.
    CBlock<unsigned int> GetSizes(const CFaceList& source, const CFaceList& geometry) const
    {
        const CFaceFlags flags(source);
        const int sourceSize = source.GetSize();
        const auto sizeOf = [&](std::size_t k) -> unsigned int {
            const int face = m_from[k];
            int count, corners;
            source.GetIndexes(face, count);
            if (!IsCut(m_ears[k]))
                return count;
            if (&source == &geometry)
                return 3;
            geometry.GetIndexes(face, corners);
            return face < sourceSize && !flags.IsDead(face) && count == corners ? 3 : 0;
        };
        std::size_t k = 0;
        while (k < m_from.size() && sizeOf(k) == 3)
            k++;
        if (k == m_from.size())
            return {};
        CBlock<unsigned int> sizes(m_from.size());
        std::fill_n(sizes.GetData(), k, 3u);
        for (; k < m_from.size(); k++)
            sizes[k] = sizeOf(k);
        return sizes;
    }
    /// A channel's face without corners is one without data.
    static void MarkEmpty(CFaceList& target)
    {
        const CFaceFlags flags(target);
        for (int k = 0; k < target.GetSize(); k++) {
            int count;
            target.GetIndexes(k, count);
            if (count == 0 && !flags.IsDead(k))
                flags[k] |= FACE_EMPTY;
        }
    }

    CBlockVector<int> m_from;    // source face by face of the result
    EarArray m_ears;
    bool m_cancelled;
};

}

// --- The list --------------------------------------------------------------------------------------------------------------------

int C3DFaceList::GetTriangularCount(const CGeomInfo*, _TriangularInfo* out, _FACE_PROPERTIES properties, bool wanted)
{
    const CSelection selection(*this, properties, wanted);
    long long total = 0;
    int split = 0;
    for (int face = 0; face < m_size; face++) {
        int count;
        GetIndexes(face, count);
        const bool isSplit = selection.IsSplit(face, count);
        total += isSplit ? count - 2 : 1;
        split += isSplit;
    }
    if (out)
        *out = split == 0 ? TRIANGULAR_NOTHING : split == m_size ? TRIANGULAR_ALL : TRIANGULAR_SOME;
    return static_cast<int>(std::min<long long>(total, INT_MAX));
}

int C3DFaceList::DoTriangulation(const CGeomInfo* info, int total, _TriangularInfo, _FACE_PROPERTIES properties, bool wanted)
{
    C3DFaceList* const target = info->GetDst3DFaceList();
    const C3DPointList* const points = info->GetSrc3DPointList();
    if (!target || target == this || !points)
        return 0;
    const CSplitPlan plan(*this, *points, CSelection(*this, properties, wanted), total);
    if (plan.IsCancelled())
        return -1;
    plan.Write(*target, *this, *this);
    for (int i = 0; i < info->GetChannelSize(); i++) {
        CFaceList *from, *to;
        info->GetChannelFaceList(i, from, to);
        if (from && to && from != to)
            plan.Write(*to, *from, *this);
    }
    return target->GetSize();
}

/// Each channel of the destination goes on with the points of its source.
static void SharePoints(CDependentChannels& sources, CDependentChannels& targets)
{
    for (int i = 0; i < targets.GetSize(); i++) {
        CChannel* const target = targets.GetAt(i);
        const auto isSource = [&](CChannel* channel) {
            return channel && channel->GetChannelID() == target->GetChannelID() && channel->GetType() == target->GetType();
        };
        CChannel* source = sources.GetChannelByIndex(i, 0, false);
        if (!isSource(source))
            source = sources.GetChannelByID(target->GetChannelID(), target->GetType());
        if (!source || !source->GetPointList() || source->GetPointList() == target->GetPointList())
            continue;
        source->GetPointList()->AddRef();
        target->SetPointList(target->GetType(), source->GetPointList(), true);
    }
}

int C3DFaceList::Triangulate(CGeomInfo* info, unsigned int channelTypes, _FACE_PROPERTIES properties, bool wanted)
{
    constexpr unsigned int OWN_SOURCE = 1, OWN_TARGET = 2;
    constexpr unsigned int SHARED = CHANNEL_COPY_APPEND | CHANNEL_COPY_SKIP_UNFOLLOWED | CHANNEL_COPY_SHARE;
    constexpr unsigned int SHAPED = CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_APPEND | CHANNEL_COPY_NO_DATA;
    if (!info)
        return 0;
    _TriangularInfo what;
    const int total = GetTriangularCount(info, &what, properties, wanted);

    const auto share = [](auto* list) {
        if (list)
            list->AddRef();
        return list;
    };
    if (CPointList* const points = info->GetSrcPointList(); points != info->GetDstPointList())
        info->SetPointList(points, share(points), points ? OWN_TARGET : 0);
    CDependentChannels* const channels = info->GetSrcChannels();
    if (what == TRIANGULAR_NOTHING) {
        info->SetFaceList(this, share(this), OWN_TARGET);
        info->SetChannels(channels, share(channels), channels ? OWN_TARGET : 0);
        return total;
    }

    if (C3DFaceList* const target = info->GetDst3DFaceList(); target && target != this)
        target->Inherit(*this);
    else
        info->SetFaceList(this, new C3DFaceList(this), OWN_TARGET);
    if (channels) {
        CDependentChannels* const sources = CDependentChannels::Create();
        CDependentChannels* const targets = CDependentChannels::Create();
        sources->CopyChannels(*channels, channelTypes, SHARED);
        targets->CopyChannels(*sources, channelTypes, SHAPED);
        info->SetChannels(sources, targets, OWN_SOURCE | OWN_TARGET);
    }
    const int count = DoTriangulation(info, total, what, properties, wanted);
    if (count > 0 && channels)
        SharePoints(*info->GetSrcChannels(), *info->GetDstChannels());
    return count;
}

// --- One face --------------------------------------------------------------------------------------------------------------------

/// A face of a channel's destination: the side data of the source's, and its corners as the geometry's were cut.
static void WriteChannelFace(CFaceList& target, int at, const CFaceList& source, int face, int count, const Ear* ear)
{
    CFace from, to;
    if (!target.GetFace(at, to))
        return;
    if (!source.GetFace(face, from)) {
        to.RemoveAll();
        to.SetFlags(FACE_EMPTY);
    } else if (!ear)
        to.Copy(from);
    else if (from.IsDead() || from.GetSize() != count) {
        to.RemoveAll();
        to.Inherit(from);
        to.SetFlag(FACE_EMPTY, true);
    } else {
        to.SetTriangle(from[ear->corner], from[ear->next], from[ear->prev]);
        to.Inherit(from);
    }
}

int C3DFace::Triangulate(const CGeomInfo* info, int sourceFace, int firstTarget)
{
    C3DFaceList* const target = info ? info->GetDst3DFaceList() : nullptr;
    if (!target || !m_list || target == m_list)
        return 0;
    const auto forEachChannel = [info](auto body) {
        for (int i = 0; i < info->GetChannelSize(); i++) {
            CFaceList *from, *to;
            info->GetChannelFaceList(i, from, to);
            if (from && to && from != to)
                body(*from, *to);
        }
    };
    const auto size = [&](int faces) {
        target->SetSize(faces, 3, CFaceList::SIZE_GROW);
        forEachChannel([=](CFaceList&, CFaceList& to) { to.SetSize(faces, 3, CFaceList::SIZE_GROW); });
    };
    const int count = GetSize();
    const bool sized = firstTarget == -1;
    if (sized) {
        size(std::max(count - 2, 1));
        firstTarget = 0;
    }
    C3DFace to;
    if (count < 4) {
        if (!target->GetFace(firstTarget, to))
            return 0;
        to.Copy(*this);
        forEachChannel(
            [=](CFaceList& from, CFaceList& channel) { WriteChannelFace(channel, firstTarget, from, sourceFace, count, nullptr); });
        return 1;
    }

    static thread_local CEarClipping clipping;    // kept: faces come one by one
    static thread_local EarArray ears;
    ears.clear();
    const C3DPointList* const points = info->GetSrc3DPointList();
    const int found = points ? clipping.Cut(*points, GetData(), count, ears) : 0;
    int written = 0;
    for (; written < found && target->GetFace(firstTarget + written, to); written++) {
        const Ear& ear = ears[written];
        to.SetTriangle(m_items[ear.corner], m_items[ear.next], m_items[ear.prev]);
        to.Inherit(*this);
        const int at = firstTarget + written;
        forEachChannel([&](CFaceList& from, CFaceList& channel) { WriteChannelFace(channel, at, from, sourceFace, count, &ear); });
    }
    if (sized && written < count - 2)
        size(written);
    return written;
}

// --- The object ------------------------------------------------------------------------------------------------------------------

bool C3DGeomObject::Triangulate(unsigned int channelTypes, _FACE_PROPERTIES properties, bool wanted)
{
    if (!(GetKindOf() & (OBJECT_POLYGONAL | OBJECT_PATCH)) || IsFlagSet(OBJECT_EMPTY) || !m_faces)
        return false;
    CGeomInfo info(this);
    if (m_faces->Triangulate(&info, channelTypes, properties, wanted) < 0 || info.GetDstFaceList() == m_faces)
        return false;
    SetFaceList(info.GetDst3DFaceList(true), true);
    SetChannels(info.GetDstChannels(true), true);
    CleanChannels(0xFFFFFFFF, true);
    return true;
}

bool C3DGeomObject::Quadrangulate(unsigned int channelTypes)
{
    if (!m_faces)
        return false;
    const auto mark = [this](bool largeOnes) {
        const CFaceFlags flags(*m_faces);
        for (int face = 0; face < m_faces->GetSize(); face++) {
            int count;
            m_faces->GetIndexes(face, count);
            flags[face] = largeOnes && count > 4 ? flags[face] | FACE_TO_SPLIT : flags[face] & ~static_cast<unsigned int>(FACE_TO_SPLIT);
        }
    };
    mark(true);
    const bool split = Triangulate(channelTypes, FACE_TO_SPLIT, true);
    mark(false);    // the triangles bear the mark of the face that they come from
    return split;
}
